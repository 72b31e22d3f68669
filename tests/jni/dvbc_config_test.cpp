// The cable configuration: its 84-byte block with the operator rules by country, its scan-maps
// commands (with their number and service name) answered by Java from builder threads, and
// the four notifications that reach Java from a thread the JVM does not know.
#include <string.h>

#include <string>
#include <thread>
#include <vector>

#include <android/log.h>
#include <gtest/gtest.h>

#include "jvm_harness.h"
#include "scan_test_util.h"
#include "standard_util.h"
#include "zel_sim.h"

namespace {

using harness::Logs;
using scantest::halfAt;
using scantest::StandardConfig;
using scantest::wordAt;
using scantest::zeroAt;

constexpr const char* kTag = "ZelTvDvbcScanConfig_JNI";
constexpr const char* kSettingsCtor = "(Ljava/lang/String;Ljava/lang/String;)V";

class DvbcConfigTest : public harness::JvmTest {
protected:
    // Settings through the builder of the Java API: full, single, quick or advanced.
    StandardConfig make(const char* country, int type, int op, int freq, int nwId, int update = 1) {
        jclass settings = harness::findClass("com/brinova/tv/orvella/services/scan/ZelTvDvbcScanSettings");
        jobject s = env_->NewObject(settings, env_->GetMethodID(settings, "<init>", kSettingsCtor),
                                    scantest::jstr(country), scantest::jstr("deu"));
        auto set = [&](const char* name, int v) {
            harness::callVoid(s, harness::methodOf(s, name, "(I)V"), v);
        };
        set("setScanType", type);
        set("setOperator", op);
        set("setDefaultFreq", freq);
        set("setNetworkId", nwId);
        set("setServiceUpdateType", update);
        return scantest::configFromSettings("ZelTvDvbcScanConfig", s);
    }

    static void registerScanMaps(const StandardConfig& c, void* tag) {
        auto* native = c.native();
        ASSERT_EQ(x_sb_reg_scan_map(native->getSbEbEngineName(),
                                    reinterpret_cast<x_sb_scan_maps_fct>(native->getSbScanMapsNotify()), tag),
                  0);
    }
};

TEST_F(DvbcConfigTest, BlockCarriesTheSettingsAtEveryOffset) {
    StandardConfig c = make("AUTRIA", 4, 33, 306000000, 0x1234, 2);
    ASSERT_NE(c.config, nullptr);
    std::vector<uint8_t> b = c.block(84);
    EXPECT_EQ(0, memcmp(b.data(), "AUT\0", 4));
    EXPECT_EQ(wordAt(b, 4), 1u);  // Austria's operator 33 is UPC
    EXPECT_EQ(wordAt(b, 8), 1u);
    EXPECT_EQ(wordAt(b, 12), 2u);
    EXPECT_EQ(wordAt(b, 16), 1u);
    EXPECT_EQ(0, memcmp(b.data() + 20, "deu\0", 4));
    EXPECT_EQ(halfAt(b, 24), 0x0011);
    EXPECT_EQ(halfAt(b, 26), 0x1234);
    EXPECT_TRUE(zeroAt(b, 28, 12));
    EXPECT_EQ(wordAt(b, 40), 306000000u);
    EXPECT_EQ(wordAt(b, 44), 0u);
    EXPECT_TRUE(zeroAt(b, 48, 8));
    const uint32_t weak = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(c.native()->getSbScanConfigObject()));
    EXPECT_NE(wordAt(b, 56), 0u);
    EXPECT_EQ(wordAt(b, 60), weak);
    EXPECT_TRUE(zeroAt(b, 64, 8));
    EXPECT_NE(wordAt(b, 72), 0u);
    EXPECT_NE(wordAt(b, 72), wordAt(b, 56));
    EXPECT_EQ(wordAt(b, 76), weak);
    EXPECT_TRUE(zeroAt(b, 80, 4));
    EXPECT_EQ(env_->GetObjectRefType(c.native()->getSbScanConfigObject()), JNIWeakGlobalRefType);
    EXPECT_STREQ(c.native()->getSbEbEngineName(), "sb_dvbc");
    EXPECT_EQ(Logs::containing(kTag, "]force to convert operator to UPC").size(), 1u);
}

TEST_F(DvbcConfigTest, ScanTypesAndCountriesChooseFieldsOperatorsAndBuilder) {
    struct Case {
        const char* country;
        int type, op, freq, nwId;
        uint32_t scanMode, searchMode, flags, nw, start, end;
        int32_t storedOp;
        const char* builder;
    };
    const Case cases[] = {
        {"TUR", 1, 41, 0, -1, 1, 0, 0, 0, 0, 0, 0, "sb_dvbc"},
        {"TUR", 1, 34, 0, -1, 1, 0, 0, 0, 0, 0, 0, "sb_dvbc"},
        {"FIN", 2, 35, 346000000, 7, 2, 0, 0x30, 0, 346000000, 346000000, 0, "sb_dvbc"},
        {"AUT", 5, 34, 0, 7, 1, 2, 0x01, 7, 0, 0, 34, "sb_dvbc"},
        {"DEU", 4, 33, 330000000, -1, 1, 1, 0x10, 0, 330000000, 0, 33, "sb_dvbc"},
        {"NLD", 3, 5, 330000000, 9, 0, 0, 0, 0, 0, 0, 0, "sb_dvbc"},  // type 3 sets nothing
        {"CHN", 1, 2, 0, -1, 1, 0, 0, 0, 0, 0, 2, "sb_cn_dvbc"},
        {"CHNA", 9, 2, 0, -1, 0, 0, 0, 0, 0, 0, 0, "sb_cn_dvbc"},  // cut to "CHN"
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(std::string(k.country) + " type " + std::to_string(k.type));
        StandardConfig c = make(k.country, k.type, k.op, k.freq, k.nwId);
        ASSERT_NE(c.config, nullptr);
        std::vector<uint8_t> b = c.block(84);
        EXPECT_EQ(static_cast<int32_t>(wordAt(b, 4)), k.storedOp);
        EXPECT_EQ(wordAt(b, 8), k.scanMode);
        EXPECT_EQ(wordAt(b, 16), k.searchMode);
        EXPECT_EQ(halfAt(b, 24), k.flags);
        EXPECT_EQ(halfAt(b, 26), k.nw);
        EXPECT_EQ(wordAt(b, 40), k.start);
        EXPECT_EQ(wordAt(b, 44), k.end);
        EXPECT_STREQ(c.native()->getSbEbEngineName(), k.builder);
        EXPECT_EQ(c.release(), 0);
    }
}

TEST_F(DvbcConfigTest, EveryCommandRowChecksPassesAndWritesFromABuilderThread) {
    StandardConfig c = make("AUT", 1, 0, 0, -1);
    registerScanMaps(c, c.native());
    scantest::AttachWatch watch;
    struct Case {
        uint32_t cmd, outSize, value;
        std::vector<int> answer;
        int32_t status;
        uint32_t len;
        int javaOut;                      // Java's output array length; 0: Java not called
        std::vector<uint8_t> written;     // the start of the buffer
    };
    const std::vector<Case> cases = {
        {1, 8, 0, {0x11223344}, 0, 4, 1, {0x44, 0x33, 0x22, 0x11, 0, 0}},
        {57, 4, 5, {-2}, 0, 4, 1, {0xfe, 0xff, 0xff, 0xff}},
        {3, 4, 0, {70}, 0, 4, 1, {70, 0, 0, 0}},
        {4, 4, 0, {-1}, -26, 4, 1, {0, 0, 0, 0}},   // out of range: nothing written
        {16, 6, 0, {0x100}, 0, 1, 1, {1, 0}},
        {55, 1, 0, {0}, 0, 1, 1, {0}},
        {12, 3, 0, {9}, -6, 3, 0, {0, 0, 0}},       // too small for a word
        {31, 0, 0, {9}, -6, 0, 0, {}},              // no room for a byte
        {5, 4, 0, {9}, -6, 4, 0, {0, 0, 0, 0}},     // inside 1 to 58, not in the table
        {60, 4, 0, {9}, -6, 4, 0, {0, 0, 0, 0}},
        {0, 4, 0, {9}, -6, 4, 0, {0, 0, 0, 0}},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(k.cmd);
        c.clearEvents();
        c.setAnswer(k.answer);
        zelsim::ScanMapsAnswer a = zelsim::runScanMaps("sb_dvbc", k.cmd, "AUT", {}, k.outSize, 0x55, k.value);
        EXPECT_EQ(a.status, k.status);
        EXPECT_EQ(a.outputLen, k.len);
        EXPECT_FALSE(a.overrun);
        EXPECT_EQ(std::vector<uint8_t>(a.output.begin(), a.output.begin() + k.written.size()), k.written);
        if (k.javaOut == 0) {
            EXPECT_TRUE(c.events().empty());
            continue;
        }
        EXPECT_EQ(c.events(), std::vector<std::string>{"cmd " + std::to_string(k.cmd) + " AUT"});
        EXPECT_EQ(c.lastOutputLength(), k.javaOut);
        EXPECT_EQ(c.lastInput(), std::vector<int>{0x55});
        EXPECT_EQ(c.lastValue(), static_cast<int>(k.value));
        EXPECT_EQ(c.lastServiceName(), "<null>");
    }
    // Only the -6 refusals leave the builder thread attached.
    std::vector<bool> expected;
    for (const Case& k : cases) expected.push_back(k.status == -6);
    EXPECT_EQ(watch.attachedAfter(), expected);
    EXPECT_EQ(Logs::containing(kTag, "_native_sb_dvbc_scan_maps_notify, bypass command: 60").size(), 1u);
    EXPECT_EQ(Logs::count(ANDROID_LOG_ERROR, kTag, "Out of Range."), 1);
}

TEST_F(DvbcConfigTest, ServiceNameCommandsPassThreeWordsAndTheBoundedName) {
    StandardConfig c = make("AUT", 1, 0, 0, -1);
    registerScanMaps(c, c.native());
    c.setAnswer({0x0A0B0C0D});
    SB_DVBC_SCAN_MAPS_SVC_INPUT_T in{};
    in.aui4_value[0] = 1;
    in.aui4_value[1] = 0xFFFFFFFF;
    in.aui4_value[2] = 1001;
    memcpy(in.s_svc_name, "ORF1 HD", 8);
    std::vector<uint8_t> bytes(reinterpret_cast<uint8_t*>(&in), reinterpret_cast<uint8_t*>(&in) + sizeof(in));
    zelsim::ScanMapsAnswer a = zelsim::runScanMaps("sb_dvbc", 17, "AUT", bytes, 8, 0, 3);
    EXPECT_EQ(a.status, 0);
    EXPECT_EQ(a.outputLen, 8u);  // unchanged: the length of this row is never set
    EXPECT_EQ(wordAt(a.output, 0), 0x0A0B0C0Du);
    EXPECT_EQ(c.lastInput(), (std::vector<int>{1, -1, 1001}));
    EXPECT_EQ(c.lastServiceName(), "ORF1 HD");
    EXPECT_EQ(c.lastValue(), 3);
    EXPECT_EQ(c.lastOutputLength(), 8);

    // A name that fills its room without a terminator, with bytes that are not UTF-8.
    memset(in.s_svc_name, 'A', sizeof(in.s_svc_name));
    in.s_svc_name[1] = '\xff';
    bytes.assign(reinterpret_cast<uint8_t*>(&in), reinterpret_cast<uint8_t*>(&in) + sizeof(in));
    bytes.insert(bytes.end(), {'Z', 'Z', 0});
    a = zelsim::runScanMaps("sb_dvbc", 58, "AUT", bytes, 2);
    EXPECT_EQ(a.status, 0);
    EXPECT_EQ(a.output, (std::vector<uint8_t>{0, 0}));  // no room for the word: nothing written
    EXPECT_FALSE(a.overrun);
    EXPECT_EQ(c.lastServiceName(), "A?" + std::string(SB_DVBC_SVC_NAME_LEN - 2, 'A'));
}

TEST_F(DvbcConfigTest, NotificationsReachJavaFromAThreadTheJvmDoesNotKnow) {
    StandardConfig c = make("AUT", 4, 33, 306000000, 0x0A01);
    std::vector<uint8_t> block = c.block(84);
    scantest::AttachWatch watch;
    zelsim::runServiceUpdate("sb_dvbc", block.data(), 4, 1);
    zelsim::runScanningNotify("sb_dvbc", block.data(), SB_DVBC_NFY_NW_NAME, 0, "Magenta");
    zelsim::runScanningNotify("sb_dvbc", block.data(), SB_DVBC_NFY_FREQ_UNLOCK, 354000000);
    zelsim::runScanningNotify("sb_dvbc", block.data(), SB_DVBC_NFY_NO_NW_ID, 0x0A01);
    zelsim::runScanningNotify("sb_dvbc", block.data(), 3, 7);  // no such kind: nothing
    std::vector<std::string> seen = c.eventsWithThreads();
    ASSERT_EQ(seen.size(), 4u);
    const char* expected[] = {"update 4 1 @", "name Magenta @", "unlocked 354000000 @", "no network 2561 @"};
    for (size_t i = 0; i < seen.size(); ++i) {
        EXPECT_EQ(seen[i].rfind(expected[i], 0), 0u) << seen[i];
        EXPECT_EQ(seen[i].find("@main"), std::string::npos) << seen[i];
    }
    EXPECT_EQ(watch.attachedAfter(), std::vector<bool>(5, false));
    EXPECT_EQ(Logs::containing(kTag, "]add=4, del=1").size(), 1u);
    EXPECT_EQ(Logs::containing(kTag, "t_country = AUT, t_operator_name = 1, s_nw_name = Magenta").size(), 1u);

    // A name that fills the record without a terminator is cut to the record.
    SB_DVBC_SCAN_DATA_T b;
    memcpy(&b, block.data(), sizeof(b));
    SB_DVBC_SCANNING_NFY_DATA_T nfy;
    memset(&nfy, 'N', sizeof(nfy));
    nfy.e_nfy_type = SB_DVBC_NFY_NW_NAME;
    std::thread([&] { b.pf_scanning_nfy(&nfy, b.pv_scanning_nfy_tag); }).join();
    seen = c.events();
    ASSERT_EQ(seen.size(), 5u);
    EXPECT_EQ(seen[4], "name " + std::string(SB_DVBC_NW_NAME_LEN, 'N'));
}

TEST_F(DvbcConfigTest, SetupWithoutCountryOrLanguageStoresNothing) {
    StandardConfig c = make("DEU", 1, 0, 0, -1);
    jclass clazz = harness::findClass("com/brinova/tv/orvella/services/scan/ZelTvDvbcScanConfig");
    jmethodID setup = env_->GetMethodID(clazz, "nativeSetup",
                                        "(Lcom/brinova/tv/orvella/services/scan/ZelTvDvbcScanSettings;)I");
    auto destroyed = [] { return Logs::containing(kTag, "native config release instance, ").size(); };
    jobject noCountry = harness::newObject("com/brinova/tv/orvella/testsupport/ScriptedStandardSettings$Dvbc",
                                           kSettingsCtor, nullptr, scantest::jstr("deu"));
    EXPECT_EQ(harness::callInt(c.config, setup, noCountry), 0);
    EXPECT_EQ(Logs::containing(kTag, "] Get country id failed.").size(), 1u);
    // The new configuration was dropped; Java's stays.
    EXPECT_NE(scantest::nativeConfigValue(c.config), 0);
    jobject noLanguage = harness::newObject("com/brinova/tv/orvella/testsupport/ScriptedStandardSettings$Dvbc",
                                            kSettingsCtor, scantest::jstr("DEU"), nullptr);
    EXPECT_EQ(harness::callInt(c.config, setup, noLanguage), 0);
    EXPECT_EQ(Logs::containing(kTag, "] Get uiLanguage id failed.").size(), 1u);
    EXPECT_EQ(destroyed(), 2u);
}

}  // namespace
