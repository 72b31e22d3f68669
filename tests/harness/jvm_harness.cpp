#include "jvm_harness.h"

#include <dlfcn.h>
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <atomic>

#include <android/log.h>

#include "host_properties.h"
#include "jvm_boot.h"
#include "zel_sim.h"

// The JDK's jvmti.h includes its own jni.h; the platform's is already in.
#define _JAVASOFT_JNI_H_
#include ORVELLA_JVMTI_H

namespace harness {

namespace {

JavaVM* gVm = nullptr;
JNIEnv* gEnv = nullptr;
std::string gLoadError;
std::vector<LogLine> gLoadLines;
std::atomic<int> gWarnings{0};
std::atomic<int> gExpectedWarnings{0};
std::atomic<bool> gExpectingWarnings{false};
std::atomic<bool> gInsideWarning{false};

std::mutex gLogLock;
std::function<void(const LogLine&)> gLogHook;  // guarded by gLogLock
std::vector<LogLine>& logStore() {
    static std::vector<LogLine> lines;
    return lines;
}

bool verbose() { return getenv("ORVELLA_TEST_VERBOSE") != nullptr; }

void captureLog(const struct __android_logger_data* data, const char* message) {
    LogLine line{data->priority, data->tag != nullptr ? data->tag : "", message};
    if (verbose() || data->priority >= ANDROID_LOG_FATAL) {
        fprintf(stderr, "log %d %s: %s\n", line.priority, line.tag.c_str(), message);
    }
    std::function<void(const LogLine&)> hook;
    {
        std::lock_guard<std::mutex> lock(gLogLock);
        logStore().push_back(line);
        hook = gLogHook;
    }
    if (hook) hook(line);
}

// Every line the VM prints (CheckJNI's warnings among them) comes through here.
jint JNICALL vmPrint(FILE* fp, const char* format, va_list args) {
    char buf[4096];
    int n = vsnprintf(buf, sizeof(buf), format, args);
    bool warning = jvmboot::isCheckJniWarning(buf);
    if (warning) {
        (gExpectingWarnings ? gExpectedWarnings : gWarnings).fetch_add(1);
        gInsideWarning = true;
    } else if (buf[0] != '\t' && buf[0] != ' ' && strchr("VCjJN\n", buf[0]) == nullptr) {
        gInsideWarning = false;  // past the warning's stack lines
    }
    if (!(gExpectingWarnings && gInsideWarning)) {
        fputs(buf, stderr);
    }
    return n;
}

}  // namespace

JavaVM* vm() { return gVm; }
JNIEnv* env() { return gEnv; }
const std::string& loadError() { return gLoadError; }
const std::vector<LogLine>& loadLogs() { return gLoadLines; }
int checkJniWarnings() { return gWarnings.load(); }

ExpectCheckJniWarnings::ExpectCheckJniWarnings() {
    gExpectedWarnings = 0;
    gExpectingWarnings = true;
}
ExpectCheckJniWarnings::~ExpectCheckJniWarnings() { gExpectingWarnings = false; }
int ExpectCheckJniWarnings::expected() const { return gExpectedWarnings; }

void Logs::setHook(std::function<void(const LogLine&)> hook) {
    std::lock_guard<std::mutex> lock(gLogLock);
    gLogHook = std::move(hook);
}

std::string functionOf(const std::string& text) {
    size_t open = text.find('{');
    if (text.rfind("[INFO ][", 0) == 0 || text.rfind("[ERROR][", 0) == 0) {
        size_t close = text.find('}', open);
        return open == std::string::npos || close == std::string::npos
                   ? ""
                   : text.substr(open + 1, close - open - 1);
    }
    size_t end = text.find("][");
    return text.empty() || text[0] != '[' || end == std::string::npos ? "" : text.substr(1, end - 1);
}

std::set<std::string> Logs::functions(const std::string& tag, const std::string& part) {
    std::set<std::string> out;
    for (const LogLine& l : containing(tag, part)) out.insert(functionOf(l.text));
    return out;
}

void Logs::clear() {
    std::lock_guard<std::mutex> lock(gLogLock);
    logStore().clear();
}

std::vector<LogLine> Logs::lines() {
    std::lock_guard<std::mutex> lock(gLogLock);
    return logStore();
}

int Logs::count(int priority, const std::string& tag, const std::string& text) {
    int n = 0;
    for (const LogLine& l : lines()) {
        n += (l.priority == priority && l.tag == tag && l.text == text) ? 1 : 0;
    }
    return n;
}

std::vector<LogLine> Logs::starting(const std::string& tag, const std::string& prefix) {
    std::vector<LogLine> out;
    for (const LogLine& l : lines()) {
        if (l.tag == tag && l.text.compare(0, prefix.size(), prefix) == 0) out.push_back(l);
    }
    return out;
}

std::vector<LogLine> Logs::containing(const std::string& tag, const std::string& part) {
    std::vector<LogLine> out;
    for (const LogLine& l : lines()) {
        if (l.tag == tag && l.text.find(part) != std::string::npos) out.push_back(l);
    }
    return out;
}

void setProperty(const char* key, const char* value) { host_property_set(key, value); }

void logEverything() {
    host_property_clear_all();
    // An empty value masks what the environment may say.
    setProperty("vendor.zel.broadcast.log.level", "V");
    setProperty("persist.vendor.zel.broadcast.log.level", "");
    setProperty("vendor.zel.default.log.level", "V");
}

std::string exceptionText(JNIEnv* e) { return jvmboot::exceptionText(e); }

jclass findClass(const char* name) {
    jclass c = gEnv->FindClass(name);
    std::string thrown = exceptionText(gEnv);
    EXPECT_TRUE(thrown.empty()) << "FindClass(" << name << "): " << thrown;
    return c;
}

jobject newObject(const char* className, const char* ctorSig, ...) {
    jclass c = findClass(className);
    if (c == nullptr) return nullptr;
    jmethodID ctor = gEnv->GetMethodID(c, "<init>", ctorSig);
    EXPECT_NE(ctor, nullptr) << className << ctorSig;
    if (ctor == nullptr) {
        exceptionText(gEnv);
        return nullptr;
    }
    va_list args;
    va_start(args, ctorSig);
    jobject o = gEnv->NewObjectV(c, ctor, args);
    va_end(args);
    std::string thrown = exceptionText(gEnv);
    EXPECT_TRUE(thrown.empty()) << className << ": " << thrown;
    gEnv->DeleteLocalRef(c);
    return o;
}

#define HARNESS_CALL(Type, Kind)                                        \
    Type call##Kind(jobject obj, jmethodID method, ...) {                \
        va_list args;                                                    \
        va_start(args, method);                                          \
        Type result = gEnv->Call##Kind##MethodV(obj, method, args);      \
        va_end(args);                                                    \
        std::string thrown = exceptionText(gEnv);                        \
        EXPECT_TRUE(thrown.empty()) << thrown;                           \
        return result;                                                   \
    }
HARNESS_CALL(jint, Int)
HARNESS_CALL(jlong, Long)
HARNESS_CALL(jobject, Object)
#undef HARNESS_CALL

void callVoid(jobject obj, jmethodID method, ...) {
    va_list args;
    va_start(args, method);
    gEnv->CallVoidMethodV(obj, method, args);
    va_end(args);
    std::string thrown = exceptionText(gEnv);
    EXPECT_TRUE(thrown.empty()) << thrown;
}

jmethodID methodOf(jobject obj, const char* name, const char* sig) {
    jclass c = gEnv->GetObjectClass(obj);
    jmethodID m = gEnv->GetMethodID(c, name, sig);
    gEnv->DeleteLocalRef(c);
    std::string thrown = exceptionText(gEnv);
    EXPECT_NE(m, nullptr) << name << sig << " " << thrown;
    return m;
}

namespace {

jvmtiEnv* jvmti() {
    static jvmtiEnv* env = [] {
        jvmtiEnv* e = nullptr;
        if (gVm->GetEnv(reinterpret_cast<void**>(&e), JVMTI_VERSION_1_2) != JNI_OK) {
            return static_cast<jvmtiEnv*>(nullptr);
        }
        jvmtiCapabilities caps{};
        caps.can_tag_objects = 1;
        return e->AddCapabilities(&caps) == JVMTI_ERROR_NONE ? e : nullptr;
    }();
    return env;
}

jint JNICALL countGlobalRoot(jvmtiHeapReferenceKind kind, const jvmtiHeapReferenceInfo*, jlong,
                             jlong, jlong, jlong*, jlong*, jint, void* count) {
    if (kind == JVMTI_HEAP_REFERENCE_JNI_GLOBAL) ++*static_cast<int*>(count);
    return 0;  // roots only: nothing behind them is visited
}

}  // namespace

int jniGlobalRefCount() {
    jvmtiEnv* e = jvmti();
    if (e == nullptr) return -1;
    jvmtiHeapCallbacks callbacks{};
    callbacks.heap_reference_callback = countGlobalRoot;
    int count = 0;
    return e->FollowReferences(0, nullptr, nullptr, &callbacks, &count) == JVMTI_ERROR_NONE ? count
                                                                                          : -1;
}

void collectGarbage() {
    jclass system = gEnv->FindClass("java/lang/System");
    jmethodID gc = gEnv->GetStaticMethodID(system, "gc", "()V");
    jmethodID fin = gEnv->GetStaticMethodID(system, "runFinalization", "()V");
    for (int i = 0; i < 3; ++i) {
        gEnv->CallStaticVoidMethod(system, gc);
        exceptionText(gEnv);
        gEnv->CallStaticVoidMethod(system, fin);
        exceptionText(gEnv);
    }
    gEnv->DeleteLocalRef(system);
}

void JvmTest::SetUp() {
    env_ = gEnv;
    ASSERT_NE(env_, nullptr);
    ASSERT_TRUE(gLoadError.empty()) << gLoadError;
    zelsim::reset();
    zelsim::setTimeScale(0);
    logEverything();
    Logs::clear();
    warningsAtStart_ = checkJniWarnings();
    // Test bodies make their local references on the main thread, outside any native call:
    // a frame of their own declares the room they use and frees them when the test ends.
    ASSERT_EQ(env_->PushLocalFrame(kTestLocalRefs), 0);
    framePushed_ = true;
}

void JvmTest::TearDown() {
    Logs::setHook(nullptr);
    for (const LogLine& l : Logs::lines()) {
        EXPECT_NE(functionOf(l.text), "operator()") << l.tag << ": " << l.text;
    }
    EXPECT_FALSE(env_->ExceptionCheck()) << exceptionText(env_);
    zelsim::reset();
    if (framePushed_) env_->PopLocalFrame(nullptr);
    framePushed_ = false;
    EXPECT_EQ(checkJniWarnings(), warningsAtStart_) << "CheckJNI warned during the test";
}

// Starts the VM with CheckJNI and loads the library from Java, as an application would.
void startJvm(const char* classPath) {
    jvmboot::Booted booted = jvmboot::start(classPath, &vmPrint);
    gVm = booted.vm;
    gEnv = booted.env;
    gLoadError = booted.loadError;
    gLoadLines = Logs::lines();
}

void installLogCapture() {
    __android_log_set_logger(captureLog);
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
    logEverything();
}

}  // namespace harness

// The assertion texts the library passes to liblog: liblog prints only the message when
// there is one, so the condition is printed here before liblog's own handling runs.
extern "C" void __android_log_assert(const char* cond, const char* tag, const char* fmt, ...) {
    char msg[1024] = "";
    if (fmt != nullptr) {
        va_list args;
        va_start(args, fmt);
        vsnprintf(msg, sizeof(msg), fmt, args);
        va_end(args);
    }
    fprintf(stderr, "assertion [%s] cond=<%s> msg=<%s>\n", tag != nullptr ? tag : "",
            cond != nullptr ? cond : "", msg);
    fflush(stderr);
    using Assert = void (*)(const char*, const char*, const char*, ...);
    auto real = reinterpret_cast<Assert>(dlsym(RTLD_NEXT, "__android_log_assert"));
    if (real != nullptr) real(cond, tag, "%s", msg);
    abort();
}
