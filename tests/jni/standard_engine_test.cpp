// Every builder of the cable, DTMB, ATSC, clear-QAM and ISDB configurations driven by the
// engine from a real Java configuration: the builder opened with its open data, the
// configuration's scan-maps function registered, the block handed to the scan start, the
// progress computed for that builder, and the monitor's copy of the block with its mode word.
#include <string.h>

#include <algorithm>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine_util.h"
#include "jvm_harness.h"
#include "scan_test_util.h"
#include "standard_util.h"
#include "zel_sim.h"

namespace {

using scantest::Engine;
using scantest::lastCall;
using scantest::StandardConfig;

constexpr const char* kHoldScan = R"({"scan": [{"wait": "hold"}, {"end": 1}]})";

struct Builder {
    const char* name;
    const char* tuner;
    size_t blockSize, modeOffset;
    uint32_t mode;
    uint32_t progressData;
    const char* progress;  // the status event of one reason-2 report
};

StandardConfig configFor(const Builder& b) {
    const std::string name = b.name;
    auto country = [](const char* c) { return scantest::jstr(c); };
    if (name == "sb_dvbc" || name == "sb_cn_dvbc") {
        return scantest::newStandardConfig("ZelTvDvbcScanSettings", "(Ljava/lang/String;Ljava/lang/String;)V",
                                           country(name == "sb_dvbc" ? "AUT" : "CHN"), country("deu"));
    }
    if (name == "sb_dtmb") {
        return scantest::newStandardConfig("ZelTvDtmbScanSettings", "(Ljava/lang/String;Ljava/lang/String;)V",
                                           country("CHN"), country("chi"));
    }
    const char* settings = name == "sb_atsc" ? "ZelTvAtscScanSettings"
                           : name == "sb_cqam" ? "ZelTvCqamScanSettings" : "ZelTvIsdbScanSettings";
    return scantest::newStandardConfig(settings, "(Ljava/lang/String;)V", country(name == "sb_isdb" ? "BRA" : "USA"));
}

class StandardEngineTest : public harness::JvmTest {};

TEST_F(StandardEngineTest, EachStandardConfiguresScansAndMonitorsThroughTheEngine) {
    const Builder builders[] = {
        {"sb_dvbc", "tuner_cab_dig_0", 84, 8, 4, 0x00320004, "status 1 4 50"},
        {"sb_cn_dvbc", "tuner_cab_dig_0", 84, 8, 4, 0x00210001, "status 1 1 33"},
        {"sb_dtmb", "tuner_ter_dig_0", 48, 8, 7, 0x00040001, "status 1 1 25"},
        {"sb_atsc", "tuner_ter_dig_0", 8, 0, 6, 0x00040003, "status 1 3 25"},
        {"sb_cqam", "tuner_cab_dig_0", 20, 0, 6, 0x00020002, "status 1 2 50"},
        {"sb_isdb", "tuner_ter_dig_0", 28, 4, 8, 0x00010005, "status 1 5 100"},
    };
    for (const Builder& b : builders) {
        SCOPED_TRACE(b.name);
        zelsim::reset();
        zelsim::setTimeScale(0);
        ASSERT_TRUE(zelsim::loadScenarioText(kHoldScan));
        StandardConfig c = configFor(b);
        ASSERT_NE(c.config, nullptr);
        android::JINativeScanConfig* native = c.native();
        Engine e = Engine::create();
        ASSERT_EQ(e.configure(c.config, 3), 0);
        zelsim::Call open = lastCall("x_sb_open_builder");
        EXPECT_EQ(open.text, b.name);
        EXPECT_EQ(open.strings, (std::vector<std::string>{"fs_Svl_2", "/dev", b.tuner}));
        zelsim::Call reg = lastCall("x_sb_reg_scan_map");
        EXPECT_EQ(reg.text, b.name);
        EXPECT_EQ(reg.args[0], static_cast<int64_t>(reinterpret_cast<uintptr_t>(native->getSbScanMapsNotify())));
        EXPECT_EQ(reg.args[1], static_cast<int64_t>(reinterpret_cast<uintptr_t>(native)));

        const auto* block = static_cast<const uint8_t*>(native->getSbScanParams(0));
        const std::vector<uint8_t> bytes(block, block + b.blockSize);
        ASSERT_EQ(e.native("nativeStart"), 0);
        ASSERT_TRUE(zelsim::waitForLabel("hold", 5000));
        zelsim::Call start = lastCall("x_sb_start_scan");
        EXPECT_EQ(start.bytes, bytes);
        zelsim::runScanNotify(static_cast<HANDLE_T>(start.args[0]), SB_REASON_PROGRESS, b.progressData);
        ASSERT_TRUE(e.awaitCount(1));
        EXPECT_EQ(e.events("status"), std::vector<std::string>{b.progress});
        zelsim::release("hold");
        ASSERT_TRUE(e.awaitEnds(1));
        EXPECT_EQ(c.events(), (std::vector<std::string>{"status 1", "status 0"}));

        ASSERT_EQ(e.native("nativeStartMonitor"), 0);
        std::vector<uint8_t> monitor = bytes;
        memcpy(monitor.data() + b.modeOffset, &b.mode, 4);
        EXPECT_EQ(lastCall("x_sb_start_scan").bytes, monitor);
        EXPECT_EQ(bytes, std::vector<uint8_t>(block, block + b.blockSize)) << "the monitor wrote into the block";
        EXPECT_EQ(e.native("nativeStopMonitor"), 0);
        EXPECT_EQ(e.native("nativeClose"), 0);
        EXPECT_EQ(e.native("nativeRelease"), 0);
        EXPECT_EQ(c.release(), 0);
    }
}

// The scenarios of the five standards, played whole: every scan-maps question each builder
// asks (too-small buffers and unknown commands among them) gets the status the scenario
// expects, and the scan ends.
TEST_F(StandardEngineTest, EveryStandardScenarioGetsTheStatusesItExpects) {
    const std::pair<const char*, const char*> scenarios[] = {
        {"dvbc-austria", "sb_dvbc"}, {"dvbc-china", "sb_cn_dvbc"}, {"dtmb-auto", "sb_dtmb"},
        {"atsc-washington", "sb_atsc"}, {"cqam-hrc", "sb_cqam"}, {"isdb-sao-paulo", "sb_isdb"},
    };
    for (const auto& [file, name] : scenarios) {
        SCOPED_TRACE(file);
        Builder builder{};
        builder.name = name;
        zelsim::reset();
        zelsim::setTimeScale(0);
        std::string error;
        ASSERT_TRUE(zelsim::loadScenarioFile(std::string(ORVELLA_SOURCE_DIR) + "/scenarios/" + file + ".json", &error))
            << error;
        scantest::AttachWatch watch;  // the refusals leave builder threads attached
        StandardConfig c = configFor(builder);
        Engine e = Engine::create();
        ASSERT_EQ(e.configure(c.config, 1), 0);
        ASSERT_EQ(e.native("nativeStart"), 0);
        ASSERT_TRUE(e.awaitEnds(1));
        EXPECT_EQ(zelsim::scanMapsMismatches(), std::vector<std::string>{});
        std::vector<zelsim::ScanMapsAnswer> answers = zelsim::scanMapsAnswers();
        EXPECT_GE(answers.size(), 5u);
        EXPECT_TRUE(std::any_of(answers.begin(), answers.end(), [](const auto& a) { return a.status == -6; }));
        EXPECT_EQ(e.native("nativeClose"), 0);
        EXPECT_EQ(e.native("nativeRelease"), 0);
        EXPECT_EQ(c.release(), 0);
    }
}

}  // namespace
