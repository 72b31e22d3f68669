// The engine under concurrency, as an application drives it: engines scanning at once, a
// reconfiguration during a scan, an extension removed from inside its end-of-scan callback,
// a list listener that calls the engine while close() runs, and bad input to the natives.
// The race-checking build (tsan preset) runs these too: any report there fails them.
#include <atomic>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "engine_util.h"
#include "extension_test_util.h"
#include "scan_test_util.h"

namespace {

using android::JINativeScanConfig;
using harness::callInt;
using harness::methodOf;
using scantest::Engine;

constexpr const char* kConfigSig = "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanConfig;I)I";
constexpr const char* kExtensionSig = "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanExtension;)I";

class EngineConcurrencyTest : public harness::JvmTest {
protected:
    jint configure(Engine& e, jobject config) {
        return callInt(e.object, methodOf(e.object, "configure", kConfigSig), config, 1);
    }
    jint call(jobject obj, const char* method) { return callInt(obj, methodOf(obj, method, "()I")); }
    void finish(Engine& e) {
        call(e.object, "release");
    }
};

// Progress is shared by every engine of the process; each engine still gets its whole scan.
TEST_F(EngineConcurrencyTest, TwoEnginesScanAtOnce) {
    Engine a = Engine::create(), b = Engine::create();
    jobject ca = scantest::newDvbtConfig("GBR", "eng", 1, 1), cb = scantest::newDvbtConfig("NOR", "nor", 1, 1);
    ASSERT_EQ(configure(a, ca), 0);
    ASSERT_EQ(configure(b, cb), 0);
    for (int round = 1; round <= 5; ++round) {
        ASSERT_EQ(call(a.object, "start"), 0);
        ASSERT_EQ(call(b.object, "start"), 0);
        ASSERT_TRUE(a.awaitEnds(round));
        ASSERT_TRUE(b.awaitEnds(round));
    }
    for (Engine* e : {&a, &b}) {
        for (const std::string& p : e->events("status 1 ")) {
            int channels = 0, percent = 0;
            ASSERT_EQ(sscanf(p.c_str(), "status 1 %d %d", &channels, &percent), 2) << p;
            EXPECT_GE(percent, 0) << p;
            EXPECT_LE(percent, 100) << p;
            EXPECT_GE(channels, 0) << p;
        }
    }
    finish(a);
    finish(b);
}

// The event thread reads the configuration while Java switches it.
TEST_F(EngineConcurrencyTest, ReconfigureDuringAScan) {
    Engine e = Engine::create();
    jobject first = scantest::newDvbtConfig("GBR", "eng", 1, 1), second = scantest::newDvbtConfig("DEU", "deu", 1, 1);
    ASSERT_EQ(configure(e, first), 0);
    for (int round = 1; round <= 10; ++round) {
        ASSERT_EQ(call(e.object, "start"), 0);
        // Switched until the scan has ended, so that the switches meet every event.
        int switches = 0;
        while (switches < 20000 && !e.awaitEnds(round, 0)) {
            ASSERT_EQ(configure(e, switches++ % 2 ? first : second), 0);
        }
        ASSERT_TRUE(e.awaitEnds(round));
    }
    EXPECT_EQ(e.events("status 2 ").size(), 10u);
    finish(e);
}

// A user who removes the extension while the engine walks its extensions at the scan's end:
// the walk goes on to the next extension, and a second scan no longer asks the removed one.
TEST_F(EngineConcurrencyTest, ExtensionRemovedFromItsEndOfScanCallback) {
    std::string error;
    ASSERT_TRUE(zelsim::loadScenarioFile(ORVELLA_SOURCE_DIR "/scenarios/dvbt-favourite-network.json", &error))
        << error;
    Engine e = Engine::create();
    jobject config = scantest::newDvbtConfig("NOR", "nor", 1, 1);
    jobject removing = harness::newObject(EXT_CLASS("ZelTvScanFavNetwork"), "()V");
    jobject staying = harness::newObject(EXT_CLASS("ZelTvScanFavNetwork"), "()V");
    jclass calls = harness::findClass("com/brinova/tv/orvella/testsupport/ReentrantCalls");
    jmethodID removeWhenAsked = env_->GetStaticMethodID(
        calls, "removeWhenAsked",
        "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanEngine;"
        "Lcom/brinova/tv/orvella/services/scan/ZelTvScanFavNetwork;)V");
    for (jobject extension : {removing, staying}) {
        env_->CallStaticVoidMethod(calls, removeWhenAsked, e.object, extension);
        ASSERT_EQ(harness::exceptionText(env_), "");
    }
    ASSERT_EQ(configure(e, config), 0);
    jobject again = harness::newObject(EXT_CLASS("ZelTvScanFavNetwork"), "()V");  // unattached
    ASSERT_EQ(callInt(e.object, methodOf(e.object, "addExtension", kExtensionSig), removing), 0);
    ASSERT_EQ(callInt(e.object, methodOf(e.object, "addExtension", kExtensionSig), staying), 0);
    ASSERT_EQ(call(e.object, "start"), 0);
    ASSERT_TRUE(e.awaitEnds(1));
    // Both were asked (each removed itself), in order, before the end reached Java.
    EXPECT_EQ(harness::Logs::containing("ZelTvFavNetwork_JNI", "{onScanComplete} enter").size(), 2u);
    EXPECT_EQ(harness::Logs::containing(scantest::kEngineTag, "]find and remove extension=").size(), 2u);
    harness::Logs::clear();
    ASSERT_EQ(call(e.object, "start"), 0);
    ASSERT_TRUE(e.awaitEnds(2));
    EXPECT_TRUE(harness::Logs::containing("ZelTvFavNetwork_JNI", "{onScanComplete} enter").empty());
    env_->DeleteLocalRef(again);
    env_->DeleteLocalRef(calls);
    finish(e);
}

// close() waits for list callbacks in progress; their listener may call the engine meanwhile.
TEST_F(EngineConcurrencyTest, ListListenerCancelsWhileCloseWaitsForIt) {
    std::string error;
    ASSERT_TRUE(zelsim::loadScenarioText(R"({"scan": [{"wait": "mid-scan"}, {"end": 1}]})", &error)) << error;
    Engine e = Engine::create();
    jobject listener = harness::newObject("com/brinova/tv/orvella/testsupport/ReentrantCalls$CancelOnListUpdate",
                                          "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanEngine;)V", e.object);
    harness::callVoid(e.object, methodOf(e.object, "setListener",
                                         "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanEngine$Listener;)V"),
                      listener);
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    ASSERT_EQ(configure(e, config), 0);
    ASSERT_EQ(call(e.object, "start"), 0);
    ASSERT_TRUE(zelsim::waitForLabel("mid-scan", 10000));

    zelsim::ListChange added{};
    added.type = 1;
    added.record = 9;
    std::thread builder([added] { zelsim::runListChanges("svl", 1, {added}); });
    jboolean entered = env_->CallBooleanMethod(listener, methodOf(listener, "awaitEntered", "()Z"));
    ASSERT_EQ(harness::exceptionText(env_), "");
    ASSERT_TRUE(entered);
    std::atomic<bool> closed{false};
    std::atomic<jint> closeStatus{1};
    jobject engine = env_->NewGlobalRef(e.object);
    std::thread closer([&] {
        JNIEnv* env = nullptr;
        harness::vm()->AttachCurrentThread(&env, nullptr);
        jclass c = env->GetObjectClass(engine);
        closeStatus = env->CallIntMethod(engine, env->GetMethodID(c, "close", "()I"));
        env->DeleteLocalRef(c);
        harness::vm()->DetachCurrentThread();
        closed = true;
    });
    // close() is waiting for the callback when it has asked to unregister the service list.
    EXPECT_TRUE(scantest::eventually([] { return !zelsim::calls("c_svl_unreg_every_notify").empty(); }));
    harness::callVoid(listener, methodOf(listener, "open", "()V"));
    bool done = scantest::eventually([&] { return closed.load(); });
    EXPECT_TRUE(done) << "close() and the listener's cancel() wait for each other";
    if (!done) _exit(1);  // the two threads stay stuck: nothing else can be checked
    builder.join();
    closer.join();
    env_->DeleteGlobalRef(engine);
    EXPECT_EQ(closeStatus.load(), 0);
    EXPECT_EQ(env_->GetIntField(listener, env_->GetFieldID(env_->GetObjectClass(listener), "cancelStatus", "I")), 0);
    finish(e);
}

// Bad input from Java fails instead of crashing.
TEST_F(EngineConcurrencyTest, ZeroHandleAndCutCharactersAreRefusedOrDropped) {
    jobject fav = harness::newObject(EXT_CLASS("ZelTvScanFavNetwork"), "()V");
    std::vector<int> values = {9, 0, 0};
    EXPECT_EQ(exttest::callArray(fav, "nativeGetFavNetwork", values), -6);
    EXPECT_EQ(values[0], -6);

    // "GBÅ" is G, B and the two bytes of Å: three bytes would cut Å in half.
    jobject config = scantest::newDvbtConfig("GB\xc3\x85", "\xc3\xa6\xc3\xb8", 1, 1);
    auto* block = static_cast<const uint8_t*>(scantest::nativeConfig(config)->getSbScanParams(0));
    EXPECT_EQ(0, memcmp(block, "GB\0\0", 4));
    EXPECT_EQ(0, memcmp(block + 12, "\xc3\xa6\0\0", 4));

    // A country the builder itself cuts inside a character reaches Java without the piece.
    JINativeScanConfig* native = scantest::nativeConfig(config);
    ASSERT_EQ(x_sb_reg_scan_map("sb_dvb", reinterpret_cast<x_sb_scan_maps_fct>(native->getSbScanMapsNotify()),
                                native),
              0);
    ASSERT_EQ(zelsim::runScanMaps("sb_dvb", 0, "GB\xc3", {}, 4).status, 0);
    jclass recording = env_->GetObjectClass(config);
    auto country = static_cast<jstring>(
        env_->GetObjectField(config, env_->GetFieldID(recording, "lastCountry", "Ljava/lang/String;")));
    ASSERT_NE(country, nullptr);
    const jchar* units = env_->GetStringChars(country, nullptr);
    EXPECT_EQ(std::u16string(reinterpret_cast<const char16_t*>(units), env_->GetStringLength(country)), u"GB");
    env_->ReleaseStringChars(country, units);
    env_->DeleteLocalRef(country);
    env_->DeleteLocalRef(recording);
}

}  // namespace
