// The Java API's order of release: the native engine refers to its configuration by bare
// address and its builder calls back into it, so the Java classes make the wrong orders
// harmless: a configuration released while an engine uses it goes only when that engine
// does, and an engine released without close closes its builder first.
#include <string>

#include <gtest/gtest.h>

#include "engine_util.h"
#include "scan_test_util.h"

namespace {

using harness::callInt;
using harness::methodOf;

class JavaReleaseOrderTest : public harness::JvmTest {
protected:
    jint call(jobject obj, const char* method) { return callInt(obj, methodOf(obj, method, "()I")); }
    jboolean flag(jobject obj, const char* method) {
        jboolean b = env_->CallBooleanMethod(obj, methodOf(obj, method, "()Z"));
        EXPECT_EQ(harness::exceptionText(env_), "");
        return b;
    }
    jint configure(scantest::Engine& e, jobject config) {
        return callInt(e.object, methodOf(e.object, "configure",
                                          "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanConfig;I)I"),
                       config, 1);
    }
    // The native configuration's destructor logs this once per configuration.
    size_t configsDestroyed() {
        return harness::Logs::starting("mdbgin_ZelTvDvbtScanConfig_JNI", "native config release instance").size();
    }
};

TEST_F(JavaReleaseOrderTest, ConfigurationReleasedInUseGoesWithItsLastEngine) {
    scantest::Engine first = scantest::Engine::create();
    scantest::Engine second = scantest::Engine::create();
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    ASSERT_EQ(configure(first, config), 0);
    ASSERT_EQ(configure(second, config), 0);

    EXPECT_EQ(call(config, "release"), 0);
    EXPECT_TRUE(flag(config, "isValid"));
    EXPECT_TRUE(flag(config, "isReleasePending"));
    EXPECT_EQ(configsDestroyed(), 0u);
    // The engine still scans with it: the native configuration answers and hears the status.
    scantest::clearEvents(config);
    ASSERT_EQ(call(first.object, "start"), 0);
    ASSERT_TRUE(first.awaitEnds(1));
    EXPECT_EQ(scantest::events(config).front(), "check");
    // A configuration whose release is pending is not taken by another configure.
    scantest::Engine third = scantest::Engine::create();
    EXPECT_EQ(configure(third, config), -22);
    EXPECT_EQ(call(third.object, "release"), 0);

    EXPECT_EQ(call(first.object, "close"), 0);
    EXPECT_EQ(call(first.object, "release"), 0);
    EXPECT_TRUE(flag(config, "isValid"));  // the second engine still uses it
    EXPECT_EQ(call(second.object, "release"), 0);
    EXPECT_FALSE(flag(config, "isValid"));
    EXPECT_FALSE(flag(config, "isReleasePending"));
    EXPECT_EQ(configsDestroyed(), 1u);
    EXPECT_EQ(call(config, "release"), 0);  // nothing left to release
}

TEST_F(JavaReleaseOrderTest, EngineReleasedDuringAScanClosesItsBuilderFirst) {
    std::string error;
    ASSERT_TRUE(zelsim::loadScenarioFile(ORVELLA_SOURCE_DIR "/scenarios/dvbt-cancelled.json", &error)) << error;
    scantest::Engine e = scantest::Engine::create();
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    ASSERT_EQ(configure(e, config), 0);
    ASSERT_EQ(call(e.object, "start"), 0);
    ASSERT_TRUE(zelsim::waitForLabel("mid-scan", 10000));

    EXPECT_EQ(call(e.object, "release"), 0);
    EXPECT_FALSE(flag(e.object, "isValid"));
    EXPECT_EQ(zelsim::openBuilders(), 0u);
    EXPECT_EQ(zelsim::listRegistrations("svl") + zelsim::listRegistrations("tsl") +
                  zelsim::listRegistrations("nwl"),
              0u);
    // The builder's scan is over: letting its step go calls nothing any more.
    harness::Logs::clear();
    zelsim::release("mid-scan");
    EXPECT_TRUE(zelsim::waitIdle(10000));
    EXPECT_EQ(harness::Logs::containing(scantest::kEngineTag, "push scan event").size(), 0u);
    EXPECT_EQ(call(config, "release"), 0);
    EXPECT_FALSE(flag(config, "isValid"));

    // Closed before: release does not close again (no "Service builder is NULL").
    scantest::Engine closed = scantest::Engine::create();
    jobject other = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    ASSERT_EQ(configure(closed, other), 0);
    ASSERT_EQ(call(closed.object, "close"), 0);
    harness::Logs::clear();
    EXPECT_EQ(call(closed.object, "release"), 0);
    EXPECT_TRUE(harness::Logs::containing(scantest::kEngineTag, "Service builder is NULL").empty());
    EXPECT_EQ(call(other, "release"), 0);
}

}  // namespace
