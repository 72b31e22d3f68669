#include "scan_test_util.h"

#include <gtest/gtest.h>

namespace scantest {

using harness::env;

namespace {

// Every call into Java is followed by an exception check, as CheckJNI requires.
void checked() {
    std::string thrown = harness::exceptionText(env());
    EXPECT_TRUE(thrown.empty()) << thrown;
}

jmethodID method(jobject obj, const char* name, const char* sig) {
    jclass c = env()->GetObjectClass(obj);
    jmethodID id = env()->GetMethodID(c, name, sig);
    env()->DeleteLocalRef(c);
    EXPECT_NE(id, nullptr) << name << sig;
    return id;
}

jfieldID field(jobject obj, const char* name, const char* sig) {
    jclass c = env()->GetObjectClass(obj);
    jfieldID id = env()->GetFieldID(c, name, sig);
    env()->DeleteLocalRef(c);
    EXPECT_NE(id, nullptr) << name << sig;
    return id;
}

}  // namespace

jobject newDvbtConfig(const char* country, const char* language, int scanType, int updateType) {
    jstring c = env()->NewStringUTF(country);
    jstring l = env()->NewStringUTF(language);
    jobject config = harness::newObject(kRecordingConfig, "(Ljava/lang/String;Ljava/lang/String;II)V",
                                        c, l, scanType, updateType);
    env()->DeleteLocalRef(c);
    env()->DeleteLocalRef(l);
    return config;
}

jlong nativeConfigValue(jobject config) {
    jlong value = env()->CallLongMethod(config, method(config, "getNativeConfig", "()J"));
    checked();
    return value;
}

android::JINativeScanConfig* nativeConfig(jobject config) {
    return reinterpret_cast<android::JINativeScanConfig*>(
        static_cast<uintptr_t>(nativeConfigValue(config)));
}

std::vector<std::string> stringArray(JNIEnv* e, jobjectArray array) {
    std::vector<std::string> out;
    if (array == nullptr) return out;
    for (jsize i = 0; i < e->GetArrayLength(array); ++i) {
        auto s = static_cast<jstring>(e->GetObjectArrayElement(array, i));
        const char* chars = e->GetStringUTFChars(s, nullptr);
        out.emplace_back(chars);
        e->ReleaseStringUTFChars(s, chars);
        e->DeleteLocalRef(s);
    }
    e->DeleteLocalRef(array);
    return out;
}

std::vector<int> intArray(JNIEnv* e, jintArray array) {
    std::vector<int> out;
    if (array == nullptr) return out;
    out.resize(e->GetArrayLength(array));
    e->GetIntArrayRegion(array, 0, static_cast<jsize>(out.size()), out.data());
    e->DeleteLocalRef(array);
    return out;
}

jintArray newIntArray(JNIEnv* e, const std::vector<int>& values) {
    jintArray a = e->NewIntArray(static_cast<jsize>(values.size()));
    e->SetIntArrayRegion(a, 0, static_cast<jsize>(values.size()), values.data());
    return a;
}

std::vector<std::string> events(jobject config) {
    auto a = static_cast<jobjectArray>(
        env()->CallObjectMethod(config, method(config, "eventNames", "()[Ljava/lang/String;")));
    checked();
    return stringArray(env(), a);
}

std::vector<std::string> eventsWithThreads(jobject config) {
    auto a = static_cast<jobjectArray>(
        env()->CallObjectMethod(config, method(config, "events", "()[Ljava/lang/String;")));
    checked();
    return stringArray(env(), a);
}

void clearEvents(jobject config) {
    env()->CallVoidMethod(config, method(config, "clearEvents", "()V"));
    checked();
}

void setAnswer(jobject config, const std::vector<int>& answer) {
    jintArray a = newIntArray(env(), answer);
    env()->SetObjectField(config, field(config, "answer", "[I"), a);
    env()->DeleteLocalRef(a);
}

void setCheckResult(jobject config, int result) {
    env()->SetIntField(config, field(config, "checkResult", "I"), result);
}

std::vector<int> lastInput(jobject config) {
    auto a = static_cast<jintArray>(env()->GetObjectField(config, field(config, "lastInput", "[I")));
    return intArray(env(), a);
}

int lastOutputLength(jobject config) {
    return env()->GetIntField(config, field(config, "lastOutputLength", "I"));
}

bool threadAttached() {
    JNIEnv* e = nullptr;
    return harness::vm()->GetEnv(reinterpret_cast<void**>(&e), JNI_VERSION_1_4) == JNI_OK;
}

std::string assertionLine(const std::string& printed) {
    size_t at = printed.find("cond=<");
    return at == std::string::npos ? "" : printed.substr(at, printed.find('\n', at) - at);
}

namespace {

class AssertionPrinted : public ::testing::MatcherInterface<const std::string&> {
public:
    explicit AssertionPrinted(std::string* line) : mLine(line) {}
    bool MatchAndExplain(const std::string& printed, ::testing::MatchResultListener*) const override {
        *mLine = assertionLine(printed);
        return !mLine->empty();
    }
    void DescribeTo(std::ostream* os) const override { *os << "prints an assertion (cond=<...>)"; }

private:
    std::string* mLine;
};

}  // namespace

::testing::Matcher<const std::string&> assertionPrinted(std::string* line) {
    return ::testing::MakeMatcher(new AssertionPrinted(line));
}

}  // namespace scantest
