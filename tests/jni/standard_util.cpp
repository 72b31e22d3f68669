#include "standard_util.h"

#include <stdarg.h>

#include <mutex>

#include <gtest/gtest.h>

#include "scan_test_util.h"

namespace scantest {

using harness::env;

namespace {

constexpr const char* kRecorder = "com/brinova/tv/orvella/testsupport/StandardRecorder";

jobject call(jobject obj, const char* name, const char* sig) {
    return harness::callObject(obj, harness::methodOf(obj, name, sig));
}

jfieldID recorderField(jobject recorder, const char* name, const char* sig) {
    jclass c = env()->GetObjectClass(recorder);
    jfieldID id = env()->GetFieldID(c, name, sig);
    env()->DeleteLocalRef(c);
    EXPECT_NE(id, nullptr) << name;
    return id;
}

std::string classPath(const char* name) { return std::string(kScanPackage) + name; }

}  // namespace

jstring jstr(const char* s) { return s == nullptr ? nullptr : env()->NewStringUTF(s); }

android::JINativeScanConfig* StandardConfig::native() const { return nativeConfig(config); }

std::vector<std::string> StandardConfig::events() const {
    return stringArray(env(), static_cast<jobjectArray>(call(recorder, "eventNames", "()[Ljava/lang/String;")));
}

std::vector<std::string> StandardConfig::eventsWithThreads() const {
    return stringArray(env(), static_cast<jobjectArray>(call(recorder, "events", "()[Ljava/lang/String;")));
}

void StandardConfig::clearEvents() const {
    harness::callVoid(recorder, harness::methodOf(recorder, "clearEvents", "()V"));
}

void StandardConfig::setAnswer(const std::vector<int>& answer) const {
    jintArray a = newIntArray(env(), answer);
    env()->SetObjectField(recorder, recorderField(recorder, "answer", "[I"), a);
    env()->DeleteLocalRef(a);
}

std::vector<int> StandardConfig::lastInput() const {
    return intArray(env(), static_cast<jintArray>(
                               env()->GetObjectField(recorder, recorderField(recorder, "lastInput", "[I"))));
}

int StandardConfig::lastOutputLength() const {
    return env()->GetIntField(recorder, recorderField(recorder, "lastOutputLength", "I"));
}

std::string StandardConfig::lastServiceName() const {
    auto s = static_cast<jstring>(
        env()->GetObjectField(recorder, recorderField(recorder, "lastServiceName", "Ljava/lang/String;")));
    if (s == nullptr) return "<null>";
    const char* chars = env()->GetStringUTFChars(s, nullptr);
    std::string out(chars);
    env()->ReleaseStringUTFChars(s, chars);
    env()->DeleteLocalRef(s);
    return out;
}

int StandardConfig::lastValue() const {
    return env()->GetIntField(recorder, recorderField(recorder, "lastValue", "I"));
}

std::vector<uint8_t> StandardConfig::block(size_t size) const {
    const auto* p = static_cast<const uint8_t*>(native()->getSbScanParams(0));
    return std::vector<uint8_t>(p, p + size);
}

jint StandardConfig::release() const {
    return harness::callInt(config, harness::methodOf(config, "release", "()I"));
}

StandardConfig configFromSettings(const char* configClass, jobject settings, std::string* thrown) {
    StandardConfig c;
    const std::string path = classPath(configClass);
    jclass clazz = harness::findClass(path.c_str());
    std::string sig = "(L" + classPath(configClass).replace(path.find("Config"), 6, "Settings") + ";)V";
    jmethodID ctor = env()->GetMethodID(clazz, "<init>", sig.c_str());
    EXPECT_NE(ctor, nullptr) << sig;
    c.config = env()->NewObject(clazz, ctor, settings);
    std::string text = harness::exceptionText(env());
    if (thrown != nullptr) *thrown = text;
    else EXPECT_EQ(text, "");
    env()->DeleteLocalRef(clazz);
    if (c.config == nullptr) return c;
    jclass recorder = harness::findClass(kRecorder);
    jmethodID attach = env()->GetStaticMethodID(
        recorder, "attach",
        "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanConfig;)"
        "Lcom/brinova/tv/orvella/testsupport/StandardRecorder;");
    c.recorder = env()->CallStaticObjectMethod(recorder, attach, c.config);
    EXPECT_EQ(harness::exceptionText(env()), "");
    env()->DeleteLocalRef(recorder);
    return c;
}

StandardConfig newStandardConfig(const char* settingsClass, const char* ctorSig, ...) {
    const std::string path = classPath(settingsClass);
    jclass clazz = harness::findClass(path.c_str());
    jmethodID ctor = env()->GetMethodID(clazz, "<init>", ctorSig);
    EXPECT_NE(ctor, nullptr) << ctorSig;
    va_list args;
    va_start(args, ctorSig);
    jobject settings = env()->NewObjectV(clazz, ctor, args);
    va_end(args);
    EXPECT_EQ(harness::exceptionText(env()), "");
    env()->DeleteLocalRef(clazz);
    std::string configClass(settingsClass);
    configClass.replace(configClass.find("Settings"), 8, "Config");
    return configFromSettings(configClass.c_str(), settings);
}

jobject settingsFrom(const char* settingsClass, const char* factory, const char* sig, ...) {
    const std::string path = classPath(settingsClass);
    jclass clazz = harness::findClass(path.c_str());
    jmethodID m = env()->GetStaticMethodID(clazz, factory, sig);
    EXPECT_NE(m, nullptr) << factory << sig;
    va_list args;
    va_start(args, sig);
    jobject settings = env()->CallStaticObjectMethodV(clazz, m, args);
    va_end(args);
    EXPECT_EQ(harness::exceptionText(env()), "");
    env()->DeleteLocalRef(clazz);
    return settings;
}

uint32_t wordAt(const std::vector<uint8_t>& bytes, size_t offset) {
    uint32_t w = 0;
    memcpy(&w, bytes.data() + offset, 4);
    return w;
}

uint16_t halfAt(const std::vector<uint8_t>& bytes, size_t offset) {
    uint16_t h = 0;
    memcpy(&h, bytes.data() + offset, 2);
    return h;
}

bool zeroAt(const std::vector<uint8_t>& bytes, size_t offset, size_t count) {
    for (size_t i = offset; i < offset + count; ++i) {
        if (bytes[i] != 0) return false;
    }
    return true;
}

struct AttachWatch::State {
    mutable std::mutex mu;
    std::vector<bool> attached;
};

AttachWatch::AttachWatch() : state_(new State) {
    State* s = state_;
    zelsim::setCallbackHook([s](const char*) {
        bool attached = threadAttached();
        {
            std::lock_guard<std::mutex> lock(s->mu);
            s->attached.push_back(attached);
        }
        if (attached) harness::vm()->DetachCurrentThread();
    });
}

AttachWatch::~AttachWatch() {
    zelsim::setCallbackHook(nullptr);
    delete state_;
}

std::vector<bool> AttachWatch::attachedAfter() const {
    std::lock_guard<std::mutex> lock(state_->mu);
    return state_->attached;
}

}  // namespace scantest
