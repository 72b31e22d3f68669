// The ATSC, clear-QAM and ISDB configurations: their blocks read from the config object,
// and the scan-maps frame they share, with each one's command table, which never changes
// the builder's length word.
#include <string.h>

#include <string>
#include <vector>

#include <android/log.h>
#include <gtest/gtest.h>

#include "jvm_harness.h"
#include "scan_test_util.h"
#include "standard_util.h"
#include "zel_sim.h"

namespace {

using harness::Logs;
using scantest::StandardConfig;
using scantest::wordAt;
using scantest::zeroAt;

constexpr const char* kAtscCtor = "(Ljava/lang/String;III)V";

class AtscFamilyTest : public harness::JvmTest {};

TEST_F(AtscFamilyTest, AtscAndCqamBlocksPackTheIndexRangeByScanType) {
    struct Case {
        int type, start, end;
        uint32_t range;
    };
    for (const Case& k : {Case{4, 0x0102, 0x7777, 0x01020102}, Case{5, 3, 0x12345, 0x00032345},
                          Case{1, 9, 9, 0}, Case{6, 9, 9, 0}}) {
        SCOPED_TRACE(k.type);
        StandardConfig atsc = scantest::newStandardConfig("ZelTvAtscScanSettings", kAtscCtor,
                                                          scantest::jstr("USA"), k.type, k.start, k.end);
        std::vector<uint8_t> b = atsc.block(8);
        EXPECT_EQ(wordAt(b, 0), static_cast<uint32_t>(k.type));
        EXPECT_EQ(wordAt(b, 4), k.range);
        EXPECT_STREQ(atsc.native()->getSbEbEngineName(), "sb_atsc");

        jobject s = harness::newObject("com/brinova/tv/orvella/services/scan/ZelTvCqamScanSettings",
                                       "(Ljava/lang/String;)V", scantest::jstr("USA"));
        const char* shape = k.type == 4 ? "single" : "range";
        jobject shaped = k.type == 4
            ? harness::callObject(s, harness::methodOf(s, shape, "(I)Lcom/brinova/tv/orvella/services/scan/ZelTvCqamScanSettings;"), k.start)
            : harness::callObject(s, harness::methodOf(s, shape, "(II)Lcom/brinova/tv/orvella/services/scan/ZelTvCqamScanSettings;"), k.start, k.end);
        harness::callVoid(shaped, harness::methodOf(shaped, "setScanType", "(I)V"), k.type);
        harness::callObject(shaped, harness::methodOf(shaped, "modes", "(I)Lcom/brinova/tv/orvella/services/scan/ZelTvCqamScanSettings;"), 0x12345678);
        harness::callObject(shaped, harness::methodOf(shaped, "plan", "(I)Lcom/brinova/tv/orvella/services/scan/ZelTvCqamScanSettings;"), 0x1FF);
        StandardConfig cqam = scantest::configFromSettings("ZelTvCqamScanConfig", shaped);
        std::vector<uint8_t> q = cqam.block(20);
        EXPECT_EQ(wordAt(q, 0), static_cast<uint32_t>(k.type));
        EXPECT_EQ(wordAt(q, 4), k.range);
        EXPECT_EQ(wordAt(q, 8), 0x12345678u);
        EXPECT_EQ(q[12], 0xFF);  // the plan's low byte only
        EXPECT_TRUE(zeroAt(q, 13, 7));
        EXPECT_STREQ(cqam.native()->getSbEbEngineName(), "sb_cqam");
    }
}

TEST_F(AtscFamilyTest, IsdbBlockTranslatesChannelsThroughGetScanIndex) {
    struct Case {
        int type, start, end;
        std::vector<int> asked;
        uint16_t first, last;
    };
    const Case cases[] = {
        {7, 0x10005, 0x20018, {5, 24}, 105, 124},
        {6, 18, 40, {18}, 118, 0},
        {1, 18, 40, {}, 0, 0},
    };
    jclass recording = harness::findClass("com/brinova/tv/orvella/testsupport/RecordingIsdbConfig");
    jmethodID take = env_->GetStaticMethodID(recording, "takeAsked", "()[I");
    for (const Case& k : cases) {
        SCOPED_TRACE(k.type);
        jobject s = harness::newObject("com/brinova/tv/orvella/services/scan/ZelTvIsdbScanSettings",
                                       kAtscCtor, scantest::jstr("BRAZIL"), k.type, k.start, k.end);
        jobject config = harness::newObject("com/brinova/tv/orvella/testsupport/RecordingIsdbConfig",
                                            "(Lcom/brinova/tv/orvella/services/scan/ZelTvIsdbScanSettings;)V", s);
        ASSERT_NE(config, nullptr);
        auto asked = static_cast<jintArray>(env_->CallStaticObjectMethod(recording, take));
        ASSERT_EQ(harness::exceptionText(env_), "");
        EXPECT_EQ(scantest::intArray(env_, asked), k.asked);
        const auto* b = static_cast<const uint8_t*>(scantest::nativeConfig(config)->getSbScanParams(0));
        std::vector<uint8_t> block(b, b + 28);
        EXPECT_EQ(0, memcmp(block.data(), "BRA\0", 4));
        EXPECT_EQ(wordAt(block, 4), static_cast<uint32_t>(k.type));
        EXPECT_EQ(scantest::halfAt(block, 8), k.first);
        EXPECT_EQ(scantest::halfAt(block, 10), k.last);
        EXPECT_TRUE(zeroAt(block, 12, 8));
        EXPECT_NE(wordAt(block, 20), 0u);
        EXPECT_TRUE(zeroAt(block, 24, 4));
    }
    // Without a country nothing is stored.
    jobject noCountry = harness::newObject("com/brinova/tv/orvella/testsupport/ScriptedStandardSettings$Isdb",
                                           "(Ljava/lang/String;)V", nullptr);
    StandardConfig c = scantest::newStandardConfig("ZelTvIsdbScanSettings", "(Ljava/lang/String;)V",
                                                   scantest::jstr("BRA"));
    jclass clazz = harness::findClass("com/brinova/tv/orvella/services/scan/ZelTvIsdbScanConfig");
    jmethodID setup = env_->GetMethodID(clazz, "nativeSetup",
                                        "(Lcom/brinova/tv/orvella/services/scan/ZelTvIsdbScanSettings;)I");
    jlong before = scantest::nativeConfigValue(c.config);
    EXPECT_EQ(harness::callInt(c.config, setup, noCountry), 0);
    EXPECT_EQ(scantest::nativeConfigValue(c.config), before);
    EXPECT_EQ(Logs::containing("ZelTvIsdbScanConfig_JNI", "] Get country id failed.").size(), 1u);
}

// One standard's scan-maps table: what each command needs, writes and hands Java.
struct Standard {
    const char* name;
    const char* tag;
    const char* callback;
    std::vector<uint32_t> word32, word16;
    bool bandwidthLine;
};

StandardConfig makeConfig(const Standard& s) {
    if (strcmp(s.name, "sb_cqam") == 0) {
        return scantest::newStandardConfig("ZelTvCqamScanSettings", "(Ljava/lang/String;)V", scantest::jstr("USA"));
    }
    if (strcmp(s.name, "sb_isdb") == 0) {
        return scantest::newStandardConfig("ZelTvIsdbScanSettings", "(Ljava/lang/String;)V", scantest::jstr("BRA"));
    }
    return scantest::newStandardConfig("ZelTvAtscScanSettings", "(Ljava/lang/String;)V", scantest::jstr("USA"));
}

bool contains(const std::vector<uint32_t>& v, uint32_t x) { return std::find(v.begin(), v.end(), x) != v.end(); }

TEST_F(AtscFamilyTest, EveryCommandOfEachTableFromABuilderThreadLeavesTheLengthAlone) {
    const Standard standards[] = {
        {"sb_atsc", "ZelTvAtscScanConfig_JNI", "_native_sb_atsc_scan_maps_notify", {0, 1}, {2, 3, 4, 9, 12}, true},
        {"sb_isdb", "ZelTvIsdbScanConfig_JNI", "_native_sb_isdb_scan_maps_notify", {0, 1}, {2, 3, 4, 9, 12}, true},
        {"sb_cqam", "ZelTvCqamScanConfig_JNI", "_native_sb_cqam_scan_maps_notify", {0, 1, 2}, {4, 5, 6, 14}, false},
    };
    for (const Standard& s : standards) {
        SCOPED_TRACE(s.name);
        StandardConfig c = makeConfig(s);
        auto* native = c.native();
        ASSERT_EQ(x_sb_reg_scan_map(s.name, reinterpret_cast<x_sb_scan_maps_fct>(native->getSbScanMapsNotify()),
                                    native),
                  0);
        c.setAnswer({0x11223344, 7, 7, 7, 7, 7});
        scantest::AttachWatch watch;
        std::vector<bool> expectAttached;
        for (uint32_t cmd = 0; cmd <= 16; ++cmd) {
            SCOPED_TRACE(cmd);
            const bool w32 = contains(s.word32, cmd), w16 = contains(s.word16, cmd);
            const uint32_t need = w32 ? 4 : w16 ? 2 : 0;
            for (uint32_t size : {need == 0 ? 1u : need - 1, need == 0 ? 6u : need + 3}) {
                c.clearEvents();
                zelsim::ScanMapsAnswer a = zelsim::runScanMaps(s.name, cmd, "USA", {}, size, 0x42);
                const bool refused = need != 0 && size < need;
                expectAttached.push_back(refused);
                EXPECT_EQ(a.status, refused ? -6 : 0) << size;
                EXPECT_EQ(a.outputLen, size);  // never changed
                EXPECT_FALSE(a.overrun);
                EXPECT_EQ(c.events().size(), refused ? 0u : 1u);
                if (refused) continue;
                EXPECT_EQ(c.lastInput(), std::vector<int>{0x42});
                EXPECT_EQ(c.lastOutputLength(), need != 0 || size < 5 ? 1 : static_cast<int>(size));
                std::vector<uint8_t> expected(size, 0);
                if (w32) memcpy(expected.data(), "\x44\x33\x22\x11", 4);
                if (w16) memcpy(expected.data(), "\x44\x33", 2);
                EXPECT_EQ(a.output, expected);
            }
        }
        EXPECT_EQ(watch.attachedAfter(), expectAttached);
        EXPECT_EQ(Logs::containing(s.tag, "$$$$$$$$$$$$$$$$$$$$$$$$$$$$$$$$$$$$").size(), 34u);
        EXPECT_EQ(Logs::containing(s.tag, std::string(s.callback) + ", sizeof(TUNER_BANDWIDTH_T): 4").empty(),
                  !s.bandwidthLine);
        EXPECT_EQ(Logs::containing(s.tag, std::string(s.callback) + "[").empty(), false);
        Logs::clear();
    }
}

TEST_F(AtscFamilyTest, NullTagAnswersWithoutJava) {
    StandardConfig c = scantest::newStandardConfig("ZelTvAtscScanSettings", "(Ljava/lang/String;)V", scantest::jstr("USA"));
    auto* native = c.native();
    ASSERT_EQ(x_sb_reg_scan_map("sb_atsc", reinterpret_cast<x_sb_scan_maps_fct>(native->getSbScanMapsNotify()), nullptr), 0);
    zelsim::ScanMapsAnswer a = zelsim::runScanMaps("sb_atsc", 0, "USA", {}, 4);
    EXPECT_EQ(a.status, 0);
    EXPECT_TRUE(c.events().empty());
    EXPECT_EQ(Logs::count(ANDROID_LOG_DEBUG, "ZelTvAtscScanConfig_JNI",
                          "_native_sb_atsc_scan_maps_notify, pv_tag(native config instance) is NULL!"),
              1);
}

}  // namespace
