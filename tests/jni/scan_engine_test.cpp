// The scan engine: a scan's whole road from Java to the builder and back, the engine's
// states and statuses under refusals, the progress arithmetic per builder, its event
// thread, the monitor mode and the channel-list callbacks.
#include <string.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include <android/log.h>
#include <gtest/gtest.h>

#include "engine_util.h"
#include "jvm_harness.h"
#include "scan_test_util.h"
#include "zel_sim.h"

namespace {

using android::JScanEngine;
using android::sp;
using harness::Logs;
using scantest::Engine;
using scantest::FakeConfig;
using scantest::kEngineTag;
using scantest::lastCall;
using scantest::word;
using Strings = std::vector<std::string>;

class ScanEngineTest : public harness::JvmTest {
protected:
    void TearDown() override {
        zelsim::setCallbackHook(nullptr);
        harness::JvmTest::TearDown();
    }
    void load(const char* json) {
        std::string error;
        ASSERT_TRUE(zelsim::loadScenarioText(json, &error)) << error;
    }
    // Configures `e` with `config`, starts a scan and waits until the builder holds it at
    // the label "hold"; returns the builder's handle.
    HANDLE_T startHeldScan(Engine& e, jobject config) {
        EXPECT_EQ(e.configure(config, 1), 0);
        EXPECT_EQ(e.native("nativeStart"), 0);
        EXPECT_TRUE(zelsim::waitForLabel("hold", 5000));
        return static_cast<HANDLE_T>(lastCall("x_sb_start_scan").args[0]);
    }
    // Makes the listener of `e` hold every status event until the returned latch opens.
    jobject closeGate(Engine& e) {
        jobject gate = harness::newObject("java/util/concurrent/CountDownLatch", "(I)V", 1);
        env_->SetObjectField(e.listener,
                             env_->GetFieldID(env_->GetObjectClass(e.listener), "gate",
                                              "Ljava/util/concurrent/CountDownLatch;"),
                             gate);
        return gate;
    }
    void openGate(jobject gate) {
        harness::callVoid(gate, harness::methodOf(gate, "countDown", "()V"));
    }
    // Ends an engine's life as Java would.
    static void finish(Engine& e) {
        e.native("nativeClose");
        EXPECT_EQ(e.native("nativeRelease"), 0);
    }
};

constexpr const char* kHoldScan = R"({"scan": [{"wait": "hold"}, {"end": 1}]})";

jobject newWeak(jobject obj) {
    return harness::newObject("java/lang/ref/WeakReference", "(Ljava/lang/Object;)V", obj);
}

bool cleared(jobject weak) {
    jobject target = harness::callObject(weak, harness::methodOf(weak, "get", "()Ljava/lang/Object;"));
    bool gone = target == nullptr;
    harness::env()->DeleteLocalRef(target);
    return gone;
}

TEST_F(ScanEngineTest, WholeScanFromSetupToRelease) {
    load(R"({"scan": [
        {"scan_maps": {"cmd": 0, "output_len": 4}},
        {"freq": 474000000},
        {"progress": {"channels": 3, "transponders": 5}},
        {"service_update": {"added": 3, "deleted": 0}},
        {"list_change": {"list": "svl", "changes": [{"type": 1, "record": 1},
                                                    {"type": 1, "record": 2},
                                                    {"type": 1, "record": 3}]}},
        {"progress_only": {"channels": 2, "high": 0}},
        {"freq": 482000000},
        {"progress": {"channels": 0, "transponders": 5}},
        {"notify": {"reason": 64, "data": 7}},
        {"end": 1}]})");
    size_t handlesBefore = zelsim::liveHandles();
    Engine e = Engine::create();
    ASSERT_NE(e.object, nullptr);
    uint32_t pipeline = static_cast<uint32_t>(e.pipelineHandle());
    ASSERT_NE(pipeline, 0u);
    EXPECT_EQ(lastCall("handle_alloc").args[0], 194);
    EXPECT_EQ(zelsim::calls("x_orvella_filter_register_get_pipeline_obj").size(), 1u);

    // The middleware's filters can turn the handle back into the pipeline object.
    x_orvella_get_pipeline_obj_fct lookup = zelsim::pipelineLookup();
    ASSERT_NE(lookup, nullptr);
    jobject found = lookup(env_, pipeline);
    EXPECT_TRUE(env_->IsSameObject(found, e.pipeline));
    EXPECT_EQ(env_->GetObjectRefType(found), JNIGlobalRefType);
    env_->DeleteGlobalRef(found);
    EXPECT_EQ(lookup(env_, 0), nullptr);
    EXPECT_EQ(Logs::count(ANDROID_LOG_ERROR, kEngineTag,
                          "getPipelineObjectFromScanEngine, h_pipeline  == NULL_HANDLE"), 1);
    EXPECT_EQ(lookup(env_, 0xdead), nullptr);
    EXPECT_EQ(Logs::count(ANDROID_LOG_ERROR, kEngineTag,
                          "getPipelineObjectFromScanEngine, handle_get_obj fail, pipeline handle: 0xdead"),
              1);

    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    uintptr_t nativeConfig = static_cast<uintptr_t>(scantest::nativeConfigValue(config));
    zelsim::clearCalls();
    ASSERT_EQ(e.configure(config, 3), 0);
    // Lists first, in the order services, transport streams, networks, for SVL id 3.
    std::vector<zelsim::Call> calls = zelsim::calls();
    std::vector<std::string> order;
    for (const zelsim::Call& c : calls) {
        if (c.fn.find("register_every_notify") != std::string::npos || c.fn == "x_sb_open_builder" ||
            c.fn == "x_sb_reg_scan_map") {
            order.push_back(c.fn);
            if (c.fn[0] == 'c') {
                EXPECT_EQ(c.args[0], 3);
            }
        }
    }
    EXPECT_EQ(order, (Strings{"c_svl_register_every_notify", "c_tsl_register_every_notify",
                              "c_nwl_register_every_notify", "x_sb_open_builder", "x_sb_reg_scan_map"}));
    zelsim::Call open = lastCall("x_sb_open_builder");
    EXPECT_EQ(open.text, "sb_dvb");
    ASSERT_EQ(open.bytes.size(), 24u);
    EXPECT_EQ(word(open.bytes, 0), 3u);
    EXPECT_EQ(open.bytes[16], 1);
    EXPECT_EQ(open.bytes[17] | open.bytes[18] | open.bytes[19], 0);
    EXPECT_EQ(word(open.bytes, 20), pipeline);
    EXPECT_EQ(open.strings, (Strings{"fs_Svl_2", "/dev", "tuner_ter_dig_0"}));
    EXPECT_EQ(open.args[1], static_cast<int64_t>(static_cast<uintptr_t>(e.context())));
    zelsim::Call reg = lastCall("x_sb_reg_scan_map");
    EXPECT_EQ(reg.text, "sb_dvb");
    EXPECT_EQ(static_cast<uintptr_t>(reg.args[1]), nativeConfig);
    EXPECT_EQ(e.state(), JScanEngine::STATE_BUILDER_OPEN);

    ASSERT_EQ(e.native("nativeStart"), 0);
    zelsim::Call start = lastCall("x_sb_start_scan");
    EXPECT_EQ(0, memcmp(start.bytes.data(), scantest::nativeConfig(config)->getSbScanParams(0), 64));
    ASSERT_TRUE(e.awaitEnds(1));
    ASSERT_TRUE(zelsim::waitIdle(5000));

    // Status events in the builder's order, from the engine's event thread (attached anew for
    // each event, so under a new Java thread name each time), never the caller's.
    EXPECT_EQ(e.events("status"),
              (Strings{"status 3 474000000 0", "status 1 3 20", "status 1 5 20",
                       "status 3 482000000 0", "status 1 5 40", "status 2 1 0"}));
    EXPECT_EQ(e.events("services"), (Strings{"services 3 3 [1, 1, 1] [1, 2, 3]"}));
    std::set<std::string> threads;
    for (const std::string& ev : e.eventsWithThreads()) {
        if (ev.rfind("status", 0) == 0) threads.insert(ev.substr(ev.rfind('@')));
    }
    EXPECT_EQ(threads.size(), 6u) << "one attach per event";
    EXPECT_EQ(threads.count("@main"), 0u);
    // The builder may ask before the engine reports the start: only the order of the
    // engine's own calls is fixed.
    Strings configEvents = scantest::events(config);
    ASSERT_EQ(configEvents.size(), 5u);
    EXPECT_EQ(configEvents.front(), "check");
    EXPECT_EQ(configEvents.back(), "status 0");
    std::sort(configEvents.begin() + 1, configEvents.end() - 1);
    EXPECT_EQ(configEvents, (Strings{"check", "cmd 0", "status 1", "update 3 0", "status 0"}));
    EXPECT_EQ(e.state(), JScanEngine::STATE_SCAN_ENDED);
    EXPECT_EQ(Logs::containing(kEngineTag, "Scan nofity reason not handle currently.").size(), 1u);

    zelsim::clearCalls();
    ASSERT_EQ(e.native("nativeClose"), 0);
    order.clear();
    for (const zelsim::Call& c : zelsim::calls()) {
        if (c.fn.find("unreg") != std::string::npos || c.fn == "x_sb_close_builder") order.push_back(c.fn);
    }
    EXPECT_EQ(order, (Strings{"c_svl_unreg_every_notify", "c_tsl_unreg_every_notify",
                              "c_nwl_unreg_every_notify", "x_sb_close_builder"}));
    EXPECT_EQ(zelsim::openBuilders(), 0u);
    EXPECT_EQ(zelsim::listRegistrations("svl") + zelsim::listRegistrations("tsl") +
                  zelsim::listRegistrations("nwl"),
              0u);
    EXPECT_EQ(e.state(), JScanEngine::STATE_NO_BUILDER);
    // Lines written by shared steps name the function they run for.
    using Names = std::set<std::string>;
    EXPECT_EQ(Logs::functions(kEngineTag, "ui2_svl_id = 3, ui4_nfy_count = 3"),
              Names{"native_sb_eng_svl_every_nfy_fct"});
    EXPECT_EQ(Logs::functions(kEngineTag, "eventType=1, eventRecord="),
              Names{"native_sb_eng_svl_every_nfy_fct"});
    EXPECT_EQ(Logs::functions(kEngineTag, "mListExtension is empty."),
              (Names{"start", "sbEventThreadLoop", "close"}));
    EXPECT_EQ(Logs::functions(kEngineTag, "OK.ScanEngine="), Names{"close"});
    EXPECT_EQ(Logs::functions(kEngineTag, "progress = "), Names{"sbEventThreadLoop"});

    // After release the native side holds no reference: engine and pipeline can go.
    jobject weakEngine = newWeak(e.object);
    jobject weakPipeline = newWeak(e.pipeline);
    ASSERT_EQ(e.native("nativeRelease"), 0);
    EXPECT_EQ(e.context(), 0);
    env_->DeleteLocalRef(e.object);
    env_->DeleteLocalRef(e.pipeline);
    env_->DeleteLocalRef(e.listener);
    EXPECT_TRUE(scantest::eventually([&] { return cleared(weakEngine) && cleared(weakPipeline); }))
        << "a global reference of the engine or its pipeline was kept";
    ASSERT_EQ(zelsim::calls("x_handle_free").size(), 1u);
    EXPECT_EQ(lastCall("x_handle_free").args[0], pipeline);
    EXPECT_EQ(zelsim::liveHandles(), handlesBefore);
    EXPECT_EQ(Logs::containing(kEngineTag, "]release success.").size(), 1u);
    EXPECT_EQ(Logs::functions(kEngineTag, "start native release."), Names{"native_release"});
}

TEST_F(ScanEngineTest, ProgressIsComputedPerBuilder) {
    load(kHoldScan);
    struct Step {
        uint32_t reason, data;
        const char* expected;  // the status event, or null for none
    };
    struct Case {
        const char* builder;
        std::vector<Step> steps;
    };
    const std::vector<Case> cases = {
        {"sb_dvb",
         {{2, 0x00050003, "status 1 3 20"}, {2, 0x00050000, "status 1 3 40"},
          {2, 0x00050000, "status 1 3 60"}, {2, 0x00050000, "status 1 3 80"},
          {2, 0x00050000, "status 1 3 100"}, {2, 0x00050000, "status 1 3 100"},
          {2, 0x00050002, "status 1 5 100"}, {32, 0x00000001, "status 1 6 100"},
          {1, 0, "status 2 1 0"}, {32, 0x00000004, "status 1 4 0"},
          {2, 0x00020001, "status 1 5 50"}}},
        {"sb_dvbs", {{2, 0x80010000, "status 1 0 32769"}, {32, 0x00640002, "status 1 2 100"}}},
        {"sb_dvbc", {{2, 0x00320004, "status 1 4 50"}, {32, 0x80460000, "status 1 4 70"}}},
        {"sb_cn_dvbc", {{32, 0x00210001, "status 1 1 33"}}},
        {"sb_isdb", {{32, 0x00210001, "status 1 1 0"}, {2, 0x00040001, "status 1 2 25"}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.builder);
        sp<FakeConfig> config = new FakeConfig(c.builder);
        Engine e = Engine::create();
        ASSERT_EQ(e.configure(config->pointer(), 1), 0);
        ASSERT_EQ(e.native("nativeStart"), 0);
        ASSERT_TRUE(zelsim::waitForLabel("hold", 5000));
        HANDLE_T builder = static_cast<HANDLE_T>(lastCall("x_sb_start_scan").args[0]);
        Strings expected;
        for (const Step& s : c.steps) {
            zelsim::runScanNotify(builder, s.reason, s.data);
            expected.push_back(s.expected);
        }
        ASSERT_TRUE(e.awaitCount(static_cast<int>(expected.size())));
        EXPECT_EQ(e.events("status"), expected);
        zelsim::release("hold");
        ASSERT_TRUE(e.awaitEnds(expected.size() > 8 ? 2 : 1));
        finish(e);
    }
}

TEST_F(ScanEngineTest, BuilderNameChoosesOpenDataTunerAndMonitorBlock) {
    struct Case {
        const char* name;
        const char* tuner;  // null: no builder of that name
        size_t openSize;
        size_t monitorSize, modeOffset;
        uint32_t mode;
    };
    const Case cases[] = {
        {"sb_dvb", "tuner_ter_dig_0", 24, 64, 4, 9},
        {"sb_dvbcx", "tuner_cab_dig_0", 24, 84, 8, 4},
        {"sb_dvbs", "tuner_sat_dig_0", 48, 780, 12, 9},
        {"sb_isdb", "tuner_ter_dig_0", 24, 28, 4, 8},
        {"sb_atsc", "tuner_ter_dig_0", 24, 8, 0, 6},
        {"sb_cqam", "tuner_cab_dig_0", 24, 20, 0, 6},
        {"sb_dtmb", "tuner_ter_dig_0", 24, 48, 8, 7},
        {"sb_cn_dvbc", "tuner_cab_dig_0", 24, 84, 8, 4},
        {"sb_dvbt", nullptr, 0, 0, 0, 0},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        zelsim::clearCalls();
        Logs::clear();
        sp<FakeConfig> config = new FakeConfig(c.name);
        Engine e = Engine::create();
        ASSERT_EQ(e.configure(config->pointer(), 12), 0);
        EXPECT_EQ(e.state(), JScanEngine::STATE_BUILDER_OPEN);
        if (c.tuner == nullptr) {
            // Nothing opened: the engine goes on as if a builder with handle 0 were open.
            EXPECT_TRUE(zelsim::calls("x_sb_open_builder").empty());
            EXPECT_EQ(Logs::containing(kEngineTag, "]unknow builder name: sb_dvbt.").size(), 1u);
            EXPECT_EQ(lastCall("x_sb_reg_scan_map").text, "sb_dvbt");
        } else {
            zelsim::Call open = lastCall("x_sb_open_builder");
            EXPECT_EQ(open.text, c.name);
            EXPECT_EQ(open.bytes.size(), c.openSize);
            EXPECT_EQ(open.strings, (Strings{"fs_Svl_11", "/dev", c.tuner}));
            if (c.openSize == 48) {
                EXPECT_TRUE(std::all_of(open.bytes.begin() + 24, open.bytes.end(),
                                        [](uint8_t b) { return b == 0; }));
            }
        }
        zelsim::clearCalls();
        ASSERT_EQ(e.native("nativeStartMonitor"), 0);
        EXPECT_EQ(e.state(), JScanEngine::STATE_MONITORING);
        EXPECT_EQ(config->statuses(), std::vector<int>{1});
        std::vector<zelsim::Call> starts = zelsim::calls("x_sb_start_scan");
        if (c.tuner == nullptr) {
            EXPECT_TRUE(starts.empty());
        } else {
            ASSERT_EQ(starts.size(), 1u);
            EXPECT_EQ(starts[0].args[2], 0);  // no tag
            EXPECT_EQ(starts[0].args[3], 0);  // no notify function: no scan events
            std::vector<uint8_t> expected(config->block, config->block + c.monitorSize);
            memcpy(expected.data() + c.modeOffset, &c.mode, 4);
            EXPECT_EQ(starts[0].bytes, expected);
        }
        EXPECT_EQ(e.native("nativeStopMonitor"), c.tuner == nullptr ? -22 : 0);
        finish(e);
    }
}

TEST_F(ScanEngineTest, RefusalsAreMappedToStatusesAndStates) {
    load(kHoldScan);
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    Engine e = Engine::create();

    zelsim::failNext("x_sb_open_builder", -1);
    EXPECT_EQ(e.configure(config, 1), -22);
    EXPECT_EQ(Logs::containing(kEngineTag, "]open sb_dvb builder failed").size(), 1u);
    EXPECT_EQ(Logs::count(ANDROID_LOG_ERROR, kEngineTag, "engine start failed, return err = 0x80000000"), 1);
    EXPECT_EQ(e.state(), JScanEngine::STATE_NO_BUILDER);
    EXPECT_EQ(zelsim::listRegistrations("svl"), 1u) << "registrations stay until close";
    EXPECT_EQ(e.native("nativeClose"), -38);
    EXPECT_EQ(Logs::containing(kEngineTag, "]Service builder is NULL\n").size(), 1u);
    EXPECT_EQ(zelsim::listRegistrations("svl"), 0u);

    zelsim::failNext("x_sb_reg_scan_map", -1);
    EXPECT_EQ(e.configure(config, 1), -22);
    EXPECT_EQ(e.state(), JScanEngine::STATE_BUILDER_OPEN) << "the builder stays open";
    zelsim::clearCalls();
    EXPECT_EQ(e.configure(config, 1), 0);  // same configuration: nothing to register again
    EXPECT_TRUE(zelsim::calls("x_sb_open_builder").empty());
    EXPECT_TRUE(zelsim::calls("x_sb_reg_scan_map").empty());
    jobject other = scantest::newDvbtConfig("FRA", "fre", 1, 1);
    EXPECT_EQ(e.configure(other, 1), 0);  // another one: registered on the open builder
    EXPECT_EQ(static_cast<uintptr_t>(lastCall("x_sb_reg_scan_map").args[1]),
              reinterpret_cast<uintptr_t>(scantest::nativeConfig(other)));
    EXPECT_TRUE(zelsim::calls("x_sb_open_builder").empty());

    scantest::setCheckResult(other, 5);
    zelsim::clearCalls();
    EXPECT_EQ(e.native("nativeStart"), -22);
    EXPECT_EQ(Logs::containing(kEngineTag, "]checkScanMaps failed,ret=5\n").size(), 1u);
    EXPECT_TRUE(zelsim::calls("x_sb_start_scan").empty());
    scantest::setCheckResult(other, 0);
    zelsim::failNext("x_sb_start_scan", -3);
    EXPECT_EQ(e.native("nativeStart"), -22);
    EXPECT_EQ(Logs::containing(kEngineTag, "]start failed,ret=-3\n").size(), 1u);
    EXPECT_EQ(scantest::events(other), (Strings{"check", "check"})) << "no status before a start";
    EXPECT_TRUE(scantest::events(config).empty()) << "the replaced configuration is not asked";

    ASSERT_EQ(e.native("nativeStart"), 0);
    EXPECT_EQ(e.state(), JScanEngine::STATE_SCANNING);
    ASSERT_TRUE(zelsim::waitForLabel("hold", 5000));
    zelsim::failNext("x_sb_cancel_scan", -1);
    EXPECT_EQ(e.native("nativeCancel"), -38);
    EXPECT_EQ(e.state(), JScanEngine::STATE_STOP_REQUESTED);
    EXPECT_EQ(e.native("nativeCancel"), 0);
    // The builder ends the scan with reason 4; the event thread reports it.
    ASSERT_TRUE(e.awaitEnds(1));
    EXPECT_EQ(e.events("status"), Strings{"status 2 4 0"});
    // cancel() ends by setting "cancelled" while the event thread sets "ended" for the
    // builder's reason 4: either may come last.
    int ended = e.state();
    EXPECT_TRUE(ended == JScanEngine::STATE_CANCELLED || ended == JScanEngine::STATE_SCAN_ENDED)
        << ended;
    EXPECT_TRUE(scantest::eventually([&] { return scantest::events(other).size() == 6u; }));
    EXPECT_EQ(scantest::events(other),
              (Strings{"check", "check", "check", "status 1", "status 0", "status 0"}));

    zelsim::failNext("x_sb_close_builder", -1);
    EXPECT_EQ(e.native("nativeClose"), -38);
    EXPECT_EQ(e.state(), ended);
    EXPECT_EQ(e.native("nativeClose"), 0);
    EXPECT_EQ(e.native("nativeClose"), -38);

    ASSERT_EQ(e.native("nativeRelease"), 0);
    // Released: every native answers -22.
    for (const char* native : {"nativeStart", "nativeCancel", "nativeClose", "nativeRelease",
                               "nativeStartMonitor", "nativeStopMonitor"}) {
        EXPECT_EQ(e.native(native), -22) << native;
    }
    EXPECT_EQ(e.configure(config, 1), -22);
    EXPECT_EQ(Logs::starting(kEngineTag, "services/jni/scan/com_brinova_tv_orvella_scan_ScanEngine][")
                  .size(),
              1u);
}

TEST_F(ScanEngineTest, EnginesWithoutAPipelineHandleOrABuilder) {
    // A failed handle allocation still makes an engine, which cannot be configured.
    zelsim::failNext("handle_alloc", -5);
    Engine e = Engine::create();
    ASSERT_NE(e.object, nullptr);
    EXPECT_EQ(e.pipelineHandle(), 0);
    EXPECT_EQ(Logs::count(ANDROID_LOG_ERROR, kEngineTag,
                          "orvella_scan_ZelTvScanEngine_setUp fail to alloc handle"),
              1);
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    EXPECT_EQ(e.configure(config, 1), -22);
    EXPECT_EQ(Logs::containing(kEngineTag, "] h_pipeline is null handler.").size(), 1u);
    // Cancel without a builder still asks the middleware, with handle 0.
    zelsim::clearCalls();
    EXPECT_EQ(e.native("nativeCancel"), -38);
    EXPECT_EQ(lastCall("x_sb_cancel_scan").args[0], 0);
    EXPECT_EQ(e.state(), JScanEngine::STATE_STOP_REQUESTED);
    EXPECT_EQ(e.native("nativeRelease"), 0);
    EXPECT_EQ(e.context(), 0);

    // An engine made from a given handle allocates and registers nothing.
    zelsim::clearCalls();
    Engine given = Engine::create(0x4242);
    EXPECT_EQ(given.pipelineHandle(), 0x4242);
    EXPECT_TRUE(zelsim::calls("handle_alloc").empty());
    EXPECT_TRUE(zelsim::calls("x_orvella_filter_register_get_pipeline_obj").empty());
    ASSERT_EQ(given.configure(config, 1), 0);
    EXPECT_EQ(word(lastCall("x_sb_open_builder").bytes, 20), 0x4242u);
    finish(given);
    // The last reference may be dropped by the event thread or a builder
    // callback that holds the engine just after release returns,
    // so the destructor's free is awaited; only this engine's handle counts.
    auto freedGiven = [] {
        size_t n = 0;
        for (const zelsim::Call& c : zelsim::calls("x_handle_free")) n += c.args.at(0) == 0x4242;
        return n;
    };
    EXPECT_TRUE(scantest::eventually([&] { return freedGiven() > 0; }));
    EXPECT_EQ(freedGiven(), 1u) << "the destructor frees the given handle";
}

TEST_F(ScanEngineTest, EventThreadDeliversWhatWasQueuedThenExits) {
    load(R"({"scan": [{"wait": "hold"}]})");
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    Engine e = Engine::create();
    HANDLE_T builder = startHeldScan(e, config);

    // Events queued behind a slow Java handler all arrive, in order, before the exit.
    jobject gate = closeGate(e);
    for (uint32_t f = 1; f <= 5; ++f) zelsim::runScanNotify(builder, 16, f);
    openGate(gate);
    ASSERT_EQ(e.native("nativeRelease"), 0);
    ASSERT_TRUE(e.awaitCount(5));
    EXPECT_EQ(e.events(), (Strings{"status 3 1 0", "status 3 2 0", "status 3 3 0", "status 3 4 0",
                                   "status 3 5 0"}));
    EXPECT_TRUE(scantest::eventually([] {
        return Logs::containing(kEngineTag, "]sbEventThreadFunc exited.").size() == 1;
    }));
    EXPECT_EQ(Logs::containing(kEngineTag, "]send event to exit mSbEventThread.retryTimes=").size(), 1u);
}

TEST_F(ScanEngineTest, EventsLeftWhenTheBuilderClosesAreDropped) {
    load(R"({"scan": [{"wait": "hold"}]})");
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    Engine e = Engine::create();
    HANDLE_T builder = startHeldScan(e, config);

    jobject gate = closeGate(e);
    zelsim::runScanNotify(builder, 16, 1);  // the event thread now waits in Java
    zelsim::runScanNotify(builder, 16, 2);
    zelsim::runScanNotify(builder, 16, 3);
    ASSERT_EQ(e.native("nativeClose"), 0);
    openGate(gate);
    ASSERT_TRUE(e.awaitCount(1));
    EXPECT_TRUE(scantest::eventually(
        [] { return Logs::containing(kEngineTag, "]clear all event.\n").size() == 1; }));
    EXPECT_EQ(e.events(), Strings{"status 3 1 0"});
    EXPECT_EQ(e.native("nativeRelease"), 0);
}

TEST_F(ScanEngineTest, ReleaseEndsTheEventThreadWhateverItsStage) {
    // Released right after creation, a thread may not have reached its loop yet: either
    // way the engine is destroyed and its thread gone.
    for (int i = 0; i < 10; ++i) {
        Engine e = Engine::create();
        ASSERT_EQ(e.native("nativeRelease"), 0);
        EXPECT_EQ(e.context(), 0);
        env_->DeleteLocalRef(e.object);
        env_->DeleteLocalRef(e.pipeline);
        env_->DeleteLocalRef(e.listener);
    }
    EXPECT_TRUE(scantest::eventually(
        [] { return Logs::containing(kEngineTag, "]release success.").size() == 10; }));
    size_t looped = Logs::containing(kEngineTag, "]send event to exit mSbEventThread.retryTimes=").size();
    size_t forced = Logs::containing(kEngineTag, "]scanengine thread exit OK.").size();
    EXPECT_EQ(looped + forced, 10u);
    EXPECT_EQ(Logs::containing(kEngineTag, "]sbEventThreadFunc forced exit!").size(), forced);
}

TEST_F(ScanEngineTest, MonitorForwardsListChangesThatPassTheFilter) {
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    Engine e = Engine::create();
    ASSERT_EQ(e.configure(config, 2), 0);
    ASSERT_EQ(e.native("nativeStartMonitor"), 0);
    std::vector<bool> attachedAfter;
    zelsim::setCallbackHook([&](const char* what) {
        if (strstr(what, "_nfy") != nullptr) attachedAfter.push_back(scantest::threadAttached());
    });

    auto service = [](uint16_t rec, const char* name, uint16_t lcn) {
        SVL_REC_T r{};
        r.ui2_svl_rec_id = rec;
        r.ui2_on_id = 9018;
        r.ui2_svc_id = static_cast<uint16_t>(4000 + rec);
        r.ui1_svc_type = 1;
        r.ui2_lcn = lcn;
        strncpy(r.ac_name, name, sizeof(r.ac_name) - 1);
        return r;
    };
    auto change = [](uint16_t type, uint16_t rec, const SVL_REC_T* oldRec, const SVL_REC_T* newRec) {
        zelsim::ListChange c{type, rec, {}, {}, false, false};
        if (oldRec) c.oldRec = *oldRec, c.hasOld = true;
        if (newRec) c.newRec = *newRec, c.hasNew = true;
        return c;
    };
    SVL_REC_T bbc = service(7, "BBC ONE", 1);
    SVL_REC_T bbcRenumbered = service(7, "BBC ONE", 101);
    SVL_REC_T bbcRenamed = service(7, "BBC ONE HD", 1);
    SVL_REC_T bbcRetyped = bbc;
    bbcRetyped.ui1_svc_type = 2;

    zelsim::runListChanges("svl", 2, {change(1, 7, nullptr, &bbc), change(1, 8, nullptr, nullptr),
                                      change(2, 9, &bbc, nullptr)});
    zelsim::runListChanges("svl", 2, {change(4, 7, &bbc, &bbcRenumbered)});  // not reported
    zelsim::runListChanges("svl", 2, {change(4, 7, &bbc, &bbcRenumbered), change(4, 7, &bbc, &bbcRenamed),
                                      change(4, 7, &bbc, &bbcRetyped), change(4, 7, nullptr, &bbc),
                                      change(4, 7, &bbc, nullptr)});
    zelsim::runListChanges("tsl", 2, {change(4, 3, nullptr, nullptr)});
    zelsim::runListChanges("nwl", 2, {change(1, 1, nullptr, nullptr), change(4, 1, nullptr, nullptr)});
    EXPECT_EQ(e.events(), (Strings{"services 2 3 [1, 1, 2] [7, 8, 9]",
                                   "services 2 3 [4, 4, 4] [7, 7, 7]",
                                   "transport_streams 2 1 [4] [3]",
                                   "networks 2 2 [1, 4] [1, 1]"}));
    EXPECT_EQ(attachedAfter, std::vector<bool>(4, false)) << "a list callback left its thread attached";

    zelsim::failNext("x_sb_cancel_scan", -1);
    EXPECT_EQ(e.native("nativeStopMonitor"), -22);
    EXPECT_EQ(e.state(), JScanEngine::STATE_STOP_REQUESTED);
    EXPECT_EQ(Logs::count(ANDROID_LOG_ERROR, kEngineTag, "stopMonitor failed, return err = 0xffffffda"), 1);
    EXPECT_EQ(e.native("nativeStopMonitor"), 0);
    EXPECT_EQ(e.state(), JScanEngine::STATE_SCAN_ENDED);
    EXPECT_EQ(scantest::events(config), (Strings{"check", "status 1", "status 0"}));

    scantest::setCheckResult(config, 1);
    EXPECT_EQ(e.native("nativeStartMonitor"), -22);
    EXPECT_EQ(Logs::count(ANDROID_LOG_ERROR, kEngineTag, "startMonitor failed, return err = 0xffffffda"), 1);
    finish(e);
}

// Released without a close, the engine's destructor gives the list registrations up in its
// own words.
TEST_F(ScanEngineTest, DestructorReleasesTheListsInItsOwnWords) {
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    Engine e = Engine::create();
    ASSERT_EQ(e.configure(config, 1), 0);
    zelsim::failNext("c_tsl_unreg_every_notify", -1);
    Logs::clear();
    ASSERT_EQ(e.native("nativeRelease"), 0);
    ASSERT_TRUE(scantest::eventually(
        [] { return Logs::containing(kEngineTag, "]release success.").size() == 1; }));
    using Names = std::set<std::string>;
    EXPECT_EQ(Logs::functions(kEngineTag, "]unreg SVL OK."), Names{"~JScanEngine"});
    size_t done = 0;
    for (const harness::LogLine& l : Logs::containing(kEngineTag, "]unreg SVL OK.")) {
        done += l.text.size() >= 14 && l.text.compare(l.text.size() - 14, 14, "]unreg SVL OK.") == 0;
    }
    EXPECT_EQ(done, 3u) << "one line for each list";
    EXPECT_EQ(Logs::functions(kEngineTag, "]x_tsl_unreg_every_notify fail."), Names{"~JScanEngine"});
    EXPECT_TRUE(Logs::containing(kEngineTag, "OK.ScanEngine=").empty()) << "close's words";
    EXPECT_EQ(zelsim::listRegistrations("svl") + zelsim::listRegistrations("nwl"), 0u);
}

// Exit polls: a sleep before each look at the thread, at most ten, and the count logged.
TEST_F(ScanEngineTest, ReleaseSleepsBeforeEachLookAtTheEventThread) {
    load(R"({"scan": [{"wait": "hold"}]})");
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    // The thread gone before the first look still costs one sleep.
    Engine quick = Engine::create();
    ASSERT_TRUE(scantest::eventually(
        [] { return !Logs::containing(kEngineTag, "]wait mSbEventSem").empty(); }));
    Logs::setHook([](const harness::LogLine& l) {
        if (l.text.find("]send event to exit mSbEventThread.") == std::string::npos ||
            l.text.find("retryTimes") != std::string::npos) {
            return;
        }
        scantest::eventually(
            [] { return !Logs::containing(kEngineTag, "]exit mSbEventThread").empty(); });
    });
    ASSERT_EQ(quick.native("nativeRelease"), 0);
    Logs::setHook(nullptr);
    ASSERT_FALSE(Logs::containing(kEngineTag, "]exit mSbEventThread").empty());
    EXPECT_EQ(Logs::containing(kEngineTag, "]send event to exit mSbEventThread.retryTimes=1").size(), 1u);

    // A thread held in Java is looked at ten times; release returns without it.
    Engine held = Engine::create();
    HANDLE_T builder = startHeldScan(held, config);
    jobject gate = closeGate(held);
    zelsim::runScanNotify(builder, 16, 1);
    ASSERT_TRUE(scantest::eventually(
        [] { return !Logs::containing(kEngineTag, "SB_REASON_FREQ_REPORT").empty(); }));
    Logs::clear();
    ASSERT_EQ(held.native("nativeRelease"), 0);
    EXPECT_EQ(Logs::containing(kEngineTag, "]send event to exit mSbEventThread.retryTimes=10").size(), 1u);
    EXPECT_TRUE(Logs::containing(kEngineTag, "]exit mSbEventThread").empty());
    openGate(gate);
    EXPECT_TRUE(scantest::eventually(
        [] { return Logs::containing(kEngineTag, "]release success.").size() == 1; }));
    zelsim::release("hold");
}

// The queue frees its storage a block of 64 events at a time, and says so then, not when it
// merely runs empty.
TEST_F(ScanEngineTest, RemovalIsLoggedWhenAQueueBlockIsFreed) {
    load(R"({"scan": [{"wait": "hold"}]})");
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    Engine e = Engine::create();
    HANDLE_T builder = startHeldScan(e, config);
    jobject gate = closeGate(e);
    for (uint32_t f = 1; f <= 3; ++f) zelsim::runScanNotify(builder, 16, f);
    openGate(gate);
    ASSERT_TRUE(e.awaitCount(3));
    EXPECT_TRUE(Logs::containing(kEngineTag, "Remove the processed event from queue.").empty());

    // Three events went: the first block frees at its 64th, one more event from here.
    gate = closeGate(e);
    for (uint32_t f = 4; f <= 70; ++f) zelsim::runScanNotify(builder, 16, f);
    Logs::clear();
    openGate(gate);
    ASSERT_TRUE(e.awaitCount(70));
    std::vector<std::string> order;
    for (const harness::LogLine& l : Logs::lines()) {
        if (l.text.find("Remove the processed event") != std::string::npos) order.push_back("removed");
        if (l.text.find("ui4_nfy_reason = 0x10, data=0x") != std::string::npos &&
            harness::functionOf(l.text) == "sbEventThreadLoop") {
            order.push_back(l.text.substr(l.text.find("data=")));
        }
    }
    auto removed = std::find(order.begin(), order.end(), "removed");
    ASSERT_NE(removed, order.end());
    EXPECT_EQ(*(removed - 1), "data=0x40") << "the 64th event freed the first block";
    EXPECT_EQ(std::count(order.begin(), order.end(), "removed"), 1);
    zelsim::release("hold");
    finish(e);
}

// An error thrown by the settings check under nativeStart reaches the caller of start; the
// start's steps still run, with JNI clean, as they do for a check that answers 0.
TEST_F(ScanEngineTest, ErrorOfTheSettingsCheckReachesTheCallerOfStart) {
    load(kHoldScan);
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    Engine e = Engine::create();
    ASSERT_EQ(e.configure(config, 1), 0);
    jobject error = harness::newObject("java/lang/AssertionError", "(Ljava/lang/Object;)V",
                                       env_->NewStringUTF("settings broken"));
    env_->SetObjectField(config,
                         env_->GetFieldID(env_->GetObjectClass(config), "checkError",
                                          "Ljava/lang/Error;"),
                         error);
    zelsim::clearCalls();
    jmethodID start = env_->GetMethodID(harness::findClass(scantest::kEngineClass), "nativeStart", "()I");
    EXPECT_EQ(env_->CallIntMethod(e.object, start), 0);
    EXPECT_EQ(harness::exceptionText(env_), "java.lang.AssertionError: settings broken");
    EXPECT_EQ(zelsim::calls("x_sb_start_scan").size(), 1u);
    EXPECT_EQ(e.state(), JScanEngine::STATE_SCANNING);
    EXPECT_EQ(scantest::events(config), (Strings{"check", "status 1"}));
    EXPECT_TRUE(Logs::containing("mdbgin_ZelTvDvbtScanConfig_JNI", "Java exception").empty());
    ASSERT_TRUE(zelsim::waitForLabel("hold", 5000));
    zelsim::release("hold");
    ASSERT_TRUE(e.awaitEnds(1));
    finish(e);
}

using ScanEngineDeathTest = ScanEngineTest;

// A list callback that cannot get its memory ends the process at its own line, not at one
// of a helper shared by the three lists. The dying call runs in a fresh process (the
// "threadsafe" style, set for every test binary): a bare fork of this one could copy a lock
// that the engine's event thread or a JVM thread holds at that moment (the log capture's, the
// property store's, the live-engine registry's) and the child would wait on it for ever.
TEST_F(ScanEngineDeathTest, ListCallbacksAssertAtTheirOwnLines) {
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    Engine e = Engine::create();
    ASSERT_EQ(e.configure(config, 2), 0);
    SVL_EVERY_NTF_EVT change{1, 7};
    auto assertion = [&](const char* registration) {
        zelsim::Call reg = lastCall(registration);
        auto notify = reinterpret_cast<svl_every_nfy_fct>(static_cast<uintptr_t>(reg.args[2]));
        void* tag = reinterpret_cast<void*>(static_cast<uintptr_t>(reg.args[3]));
        std::string line;
        EXPECT_DEATH(
            {
                zelsim::failNext("x_mem_alloc", -1);
                notify(2, 1, &change, tag);
            },
            scantest::assertionPrinted(&line));
        return line;
    };
    std::string svl = assertion("c_svl_register_every_notify");
    std::string tsl = assertion("c_tsl_register_every_notify");
    const std::string prefix =
        "cond=<!(eventType != __null)> msg=<com_brinova_tv_orvella_scan_ScanEngine FATAL Error at :";
    ASSERT_EQ(svl.compare(0, prefix.size(), prefix), 0) << svl;
    ASSERT_EQ(tsl.compare(0, prefix.size(), prefix), 0) << tsl;
    EXPECT_NE(svl, tsl) << "both lists report the same line";
    finish(e);
}

}  // namespace
