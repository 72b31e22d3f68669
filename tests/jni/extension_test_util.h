// Helpers of the scan-extension tests: an engine with a DVB-T configuration (svl id 1) to
// attach extensions to, a scripted user (ScriptedDecisions), the extensions' int[] natives
// called directly, and the builder keys the simulator recorded.
#ifndef ORVELLA_TESTS_EXTENSION_TEST_UTIL_H
#define ORVELLA_TESTS_EXTENSION_TEST_UTIL_H

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine_util.h"
#include "scan_test_util.h"

namespace exttest {

#define EXT_CLASS(name) "com/brinova/tv/orvella/services/scan/" name

inline jlong handleOf(jobject extension) {
    return harness::callLong(extension, harness::methodOf(extension, "getNativeExtension", "()J"));
}

// Calls an int[] native with `values` and reads the array back into them.
inline jint callArray(jobject extension, const char* native, std::vector<int>& values) {
    JNIEnv* env = harness::env();
    const auto length = static_cast<jsize>(values.size());
    jintArray array = env->NewIntArray(length);
    if (length > 0) env->SetIntArrayRegion(array, 0, length, values.data());
    jint status = harness::callInt(extension, harness::methodOf(extension, native, "([I)I"), array);
    if (length > 0) env->GetIntArrayRegion(array, 0, length, values.data());
    env->DeleteLocalRef(array);
    return status;
}

// An int[] of `length`: the extension's handle in element 1, then `inputs` from element 2,
// and 1 in every other element (what the native must clear or leave).
inline std::vector<int> arrayFor(jobject extension, size_t length, const std::vector<int>& inputs) {
    std::vector<int> values(length, 1);
    values[0] = 9;
    if (length > 1) values[1] = static_cast<int>(handleOf(extension));
    for (size_t i = 0; i < inputs.size() && 2 + i < length; ++i) values[2 + i] = inputs[i];
    return values;
}

// The x_sb_get or x_sb_set calls of one key.
inline std::vector<zelsim::Call> keyCalls(const std::string& fn, uint32_t key) {
    std::vector<zelsim::Call> out;
    for (const zelsim::Call& c : zelsim::calls(fn)) {
        if (c.args[1] == key) out.push_back(c);
    }
    return out;
}

class ExtensionTest : public harness::JvmTest {
protected:
    void SetUp() override {
        harness::JvmTest::SetUp();
        engine_ = scantest::Engine::create();
        config_ = scantest::newDvbtConfig("GBR", "eng", 1, 1);
        decisions_ = harness::newObject("com/brinova/tv/orvella/testsupport/ScriptedDecisions",
                                        "(Lcom/brinova/tv/orvella/testsupport/RecordingEngineListener;)V",
                                        engine_.listener);
        ASSERT_NE(decisions_, nullptr);
    }
    void TearDown() override {
        engine_.native("nativeClose");
        engine_.native("nativeRelease");
        harness::JvmTest::TearDown();
    }

    jint configure() { return engine_.configure(config_, 1); }
    jint add(jobject extension) { return engineCall("nativeAddExtension", handleOf(extension)); }
    jint remove(jobject extension) { return engineCall("nativeRemoveExtension", handleOf(extension)); }
    jint engineCall(const char* native, jlong handle) {
        return harness::callInt(engine_.object, harness::methodOf(engine_.object, native, "(J)I"),
                                handle);
    }

    // Runs one scan to its end, with a scenario of scenarios/ or the one loaded.
    void scan(const char* scenarioFile = nullptr, int endsSoFar = 1) {
        std::string error;
        if (scenarioFile != nullptr) {
            ASSERT_TRUE(zelsim::loadScenarioFile(
                std::string(ORVELLA_SOURCE_DIR "/scenarios/") + scenarioFile, &error))
                << error;
        }
        ASSERT_EQ(engine_.native("nativeStart"), 0);
        ASSERT_TRUE(engine_.awaitEnds(endsSoFar));
    }

    // ScriptedDecisions.<method>(extension, pick...).
    template <typename... Pick>
    void decide(const char* method, const char* signature, jobject extension, Pick... pick) {
        harness::callVoid(decisions_, harness::methodOf(decisions_, method, signature), extension,
                          pick...);
    }
    std::vector<std::string> shown() { return strings("shown"); }
    std::vector<std::string> decisions() { return strings("decisions"); }
    std::vector<std::string> strings(const char* method) {
        return scantest::stringArray(harness::env(), static_cast<jobjectArray>(harness::callObject(
                                         decisions_, harness::methodOf(decisions_, method,
                                                                       "()[Ljava/lang/String;"))));
    }
    // What a decision made on the event thread before the end reads like.
    std::string beforeTheEnd(const std::string& what) {
        for (const std::string& e : engine_.eventsWithThreads()) {
            if (e.compare(0, 9, "status 2 ") == 0) return what + " ends=0 @" + e.substr(e.rfind('@') + 1);
        }
        return "no end event";
    }

    scantest::Engine engine_;
    jobject config_ = nullptr;
    jobject decisions_ = nullptr;
};

}  // namespace exttest

#endif  // ORVELLA_TESTS_EXTENSION_TEST_UTIL_H
