#include "fuzz_support.h"

#include <stdio.h>
#include <stdlib.h>

#include <thread>

#include <android/log.h>

#include "host_properties.h"
#include "jvm_boot.h"
#include "zel_sim.h"

namespace fuzz {

namespace {

JavaVM* gVm = nullptr;
JNIEnv* gEnv = nullptr;
jobject gRig = nullptr;

// A CheckJNI warning is a finding: print it and crash so that the fuzzer keeps the input.
jint JNICALL vmPrint(FILE*, const char* format, va_list args) {
    char buf[4096];
    int n = vsnprintf(buf, sizeof(buf), format, args);
    fputs(buf, stderr);
    if (jvmboot::isCheckJniWarning(buf)) {
        fflush(stderr);
        abort();
    }
    return n;
}

// Every level is formatted (a bad format argument is a finding too) and then dropped,
// unless ORVELLA_FUZZ_VERBOSE is set.
void dropLog(const struct __android_logger_data* data, const char* message) {
    static const bool verbose = getenv("ORVELLA_FUZZ_VERBOSE") != nullptr;
    if (verbose) fprintf(stderr, "log %d %s: %s\n", data->priority, data->tag ? data->tag : "", message);
}

void quietLogs() {
    __android_log_set_logger(dropLog);
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    host_property_set("vendor.zel.broadcast.log.level", "V");
    host_property_set("persist.vendor.zel.broadcast.log.level", "");
    host_property_set("vendor.zel.default.log.level", "V");
}

jobject newRig(JNIEnv* env) {
    jclass c = env->FindClass("com/brinova/tv/orvella/testsupport/FuzzRig");
    checkNoException(env, "FindClass FuzzRig");
    jobject local = env->NewObject(c, env->GetMethodID(c, "<init>", "()V"));
    checkNoException(env, "new FuzzRig");
    jobject global = env->NewGlobalRef(local);
    env->DeleteLocalRef(local);
    env->DeleteLocalRef(c);
    return global;
}

jlong callLong(jobject object, const char* method) {
    jclass c = gEnv->GetObjectClass(object);
    jlong value = gEnv->CallLongMethod(object, gEnv->GetMethodID(c, method, "()J"));
    gEnv->DeleteLocalRef(c);
    checkNoException(gEnv, method);
    return value;
}

bool attached() {
    JNIEnv* env = nullptr;
    return gVm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_4) == JNI_OK;
}

}  // namespace

std::vector<uint8_t> Input::bytes(size_t n) {
    if (n > remaining()) n = remaining();
    std::vector<uint8_t> out(mData + mPos, mData + mPos + n);
    mPos += n;
    return out;
}

uint64_t Input::take(size_t n) {
    uint64_t v = 0;
    for (size_t i = 0; i < n && mPos < mSize; ++i) v |= uint64_t{mData[mPos++]} << (8 * i);
    return v;
}

void checkNoException(JNIEnv* env, const char* what) {
    std::string thrown = jvmboot::exceptionText(env);
    if (thrown.empty()) return;
    fprintf(stderr, "%s: Java threw %s\n", what, thrown.c_str());
    abort();
}

JNIEnv* boot() {
    if (gEnv != nullptr) return gEnv;
    quietLogs();
    zelsim::setTimeScale(0);
    jvmboot::Booted booted = jvmboot::start(ORVELLA_FUZZ_CLASSPATH, &vmPrint);
    if (!booted.loadError.empty()) {
        fprintf(stderr, "the library did not load: %s\n", booted.loadError.c_str());
        abort();
    }
    gVm = booted.vm;
    gEnv = booted.env;
    gRig = newRig(gEnv);
    return gEnv;
}

void onBuilderThread(const std::function<void()>& fn) {
    std::thread t([&] {
        if (attached()) abort();  // a new thread is never attached
        fn();
        if (attached()) gVm->DetachCurrentThread();
    });
    t.join();
}

jobject rig() { return gRig; }

jobject rigObject(const char* field, const char* signature) {
    jclass c = gEnv->GetObjectClass(gRig);
    jobject value = gEnv->GetObjectField(gRig, gEnv->GetFieldID(c, field, signature));
    gEnv->DeleteLocalRef(c);
    checkNoException(gEnv, field);
    return value;
}

void setRigAnswer(const std::vector<jint>& answer) {
    jintArray a = gEnv->NewIntArray(static_cast<jsize>(answer.size()));
    gEnv->SetIntArrayRegion(a, 0, static_cast<jsize>(answer.size()), answer.data());
    jclass c = gEnv->GetObjectClass(gRig);
    gEnv->SetObjectField(gRig, gEnv->GetFieldID(c, "answer", "[I"), a);
    gEnv->DeleteLocalRef(c);
    gEnv->DeleteLocalRef(a);
    checkNoException(gEnv, "answer");
}

void setRigPick(jint pick) {
    jclass c = gEnv->GetObjectClass(gRig);
    gEnv->SetIntField(gRig, gEnv->GetFieldID(c, "pick", "I"), pick);
    gEnv->DeleteLocalRef(c);
    checkNoException(gEnv, "pick");
}

android::JINativeScanConfig* rigConfig() {
    jobject config = rigObject("config", "Lcom/brinova/tv/orvella/services/scan/ZelTvDvbtScanConfig;");
    jlong pointer = callLong(config, "getNativeConfig");
    gEnv->DeleteLocalRef(config);
    return reinterpret_cast<android::JINativeScanConfig*>(static_cast<uintptr_t>(pointer));
}

android::JINativeScanExtension* nativeExtension(jobject extension) {
    return android::JINativeScanExtension::fromHandle(callLong(extension, "getNativeExtension"));
}

}  // namespace fuzz
