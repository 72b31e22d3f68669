// The DTMB configuration: strict settings that leave no configuration in Java when refused,
// the manual frequency asked of Java through the configuration's own scan-maps callback,
// the 48-byte block, and the DTMB command table.
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

constexpr const char* kTag = "ZelTvDtmbScanConfig_JNI";
constexpr const char* kSource = "com_brinova_tv_orvella_scan_ZelTvDtmbScanConfig";
constexpr const char* kStrings = "(Ljava/lang/String;Ljava/lang/String;)V";
constexpr const char* kScripted = "com/brinova/tv/orvella/testsupport/ScriptedStandardSettings$Dtmb";
constexpr const char* kSetupSig = "(Lcom/brinova/tv/orvella/services/scan/ZelTvDtmbScanSettings;)I";

class DtmbConfigTest : public harness::JvmTest {
protected:
    jobject scripted(const char* country, const char* language) {
        return harness::newObject(kScripted, kStrings, scantest::jstr(country), scantest::jstr(language));
    }
    void setInt(jobject settings, const char* setter, int value) {
        harness::callVoid(settings, harness::methodOf(settings, setter, "(I)V"), value);
    }
    jint setup(jobject config, jobject settings) {
        jclass clazz = harness::findClass("com/brinova/tv/orvella/services/scan/ZelTvDtmbScanConfig");
        jint status = harness::callInt(config, env_->GetMethodID(clazz, "nativeSetup", kSetupSig), settings);
        env_->DeleteLocalRef(clazz);
        return status;
    }
    // A scan type's id, changed in place so that idOf() answers what no constant does.
    void setTypeId(const char* constant, int id) {
        jclass type = harness::findClass("com/brinova/tv/orvella/services/scan/ZelTvDtmbScanSettings$DtmbScanType");
        jobject value = env_->GetStaticObjectField(
            type, env_->GetStaticFieldID(type, constant,
                                         "Lcom/brinova/tv/orvella/services/scan/ZelTvDtmbScanSettings$DtmbScanType;"));
        env_->SetIntField(value, env_->GetFieldID(type, "mId", "I"), id);
    }
};

TEST_F(DtmbConfigTest, ManualBlockCarriesTheFrequencyJavaAnsweredAtSetup) {
    jobject settings = scantest::settingsFrom(
        "ZelTvDtmbScanSettings", "manual",
        "(Ljava/lang/String;Ljava/lang/String;I)Lcom/brinova/tv/orvella/services/scan/ZelTvDtmbScanSettings;",
        scantest::jstr("CHNX"), scantest::jstr("chi"), 674000000);
    setInt(settings, "setServiceIdRule", 12);
    setInt(settings, "setServiceUpdateType", 2);
    StandardConfig c = scantest::configFromSettings("ZelTvDtmbScanConfig", settings);
    ASSERT_NE(c.config, nullptr);
    std::vector<uint8_t> b = c.block(48);
    EXPECT_EQ(0, memcmp(b.data(), "CHN\0", 4));
    EXPECT_EQ(0, memcmp(b.data() + 4, "chi\0", 4));
    EXPECT_EQ(wordAt(b, 8), 6u);
    EXPECT_EQ(wordAt(b, 12), 12u);
    EXPECT_EQ(wordAt(b, 16), 674000000u);
    EXPECT_TRUE(zeroAt(b, 20, 4));
    EXPECT_EQ(wordAt(b, 24), 2u);
    EXPECT_TRUE(zeroAt(b, 28, 4));
    EXPECT_NE(wordAt(b, 32), 0u);
    // The tag is the native configuration itself, not a Java reference.
    EXPECT_NE(wordAt(b, 36), 0u);
    EXPECT_NE(wordAt(b, 36), static_cast<uint32_t>(reinterpret_cast<uintptr_t>(c.native()->getSbScanConfigObject())));
    EXPECT_TRUE(zeroAt(b, 40, 8));
    EXPECT_STREQ(c.native()->getSbEbEngineName(), "sb_dtmb");
    // Logged at error level with the setup's file and function ahead of the text.
    std::vector<harness::LogLine> manual = Logs::containing(kTag, "]manual frequency: 674000000");
    ASSERT_EQ(manual.size(), 1u);
    EXPECT_EQ(manual[0].priority, ANDROID_LOG_ERROR);
    EXPECT_EQ(manual[0].text.rfind(std::string("[") + kSource + "][com_brinova_tv_orvella_scan_native_setup][", 0), 0u)
        << manual[0].text;
    EXPECT_EQ(Logs::containing(kTag, "service update type(2) test111.").size(), 1u);

    // The automatic scan asks nothing and leaves the frequency 0.
    StandardConfig automatic = scantest::newStandardConfig("ZelTvDtmbScanSettings", kStrings,
                                                           scantest::jstr("CHN"), scantest::jstr("chi"));
    std::vector<uint8_t> a = automatic.block(48);
    EXPECT_EQ(wordAt(a, 8), 1u);
    EXPECT_EQ(wordAt(a, 16), 0u);
    EXPECT_EQ(wordAt(a, 24), 1u);
}

TEST_F(DtmbConfigTest, RefusedSettingsLeaveNoConfigurationInJava) {
    StandardConfig c = scantest::newStandardConfig("ZelTvDtmbScanSettings", kStrings, scantest::jstr("CHN"),
                                                   scantest::jstr("chi"));
    ASSERT_NE(scantest::nativeConfigValue(c.config), 0);
    struct Case {
        const char* what;
        const char* country;
        const char* language;
        bool nullType;
        int typeId, rule, update;
        jint status;
        const char* line;
    };
    const Case cases[] = {
        {"type id 3", "CHN", "chi", false, 3, 0, 1, -1, "scan type(3) is invalid."},
        {"update 3", "CHN", "chi", false, 1, 0, 3, -1, "service update type(3) is invalid."},
        {"update -1", "CHN", "chi", false, 1, 0, -1, -1, "service update type(-1) is invalid."},
        {"rule 13", "CHN", "chi", false, 1, 13, 1, -1, "service id rule(13) is invalid."},
        {"no country", nullptr, "chi", false, 1, 0, 1, -1, "Get country id failed."},
        {"no language", "CHN", nullptr, false, 1, 0, 1, -4, "Get ui language id failed."},
        {"no scan type", "CHN", "chi", true, 1, 0, 1, -1, "Get scanType id failed."},
        {"accepted", "CHN", "chi", false, 1, -5, 2, 0, "service update type(2) test111."},
    };
    bool stored = true;  // the constructor's configuration
    for (const Case& k : cases) {
        SCOPED_TRACE(k.what);
        Logs::clear();
        jobject s = scripted(k.country, k.language);
        env_->SetBooleanField(s, env_->GetFieldID(env_->GetObjectClass(s), "nullScanType", "Z"), k.nullType);
        setInt(s, "setServiceIdRule", k.rule);
        setInt(s, "setServiceUpdateType", k.update);
        setTypeId("AUTO", k.typeId);
        EXPECT_EQ(setup(c.config, s), k.status);
        setTypeId("AUTO", 1);
        EXPECT_EQ(scantest::nativeConfigValue(c.config) != 0, k.status == 0);
        EXPECT_EQ(Logs::containing(kTag, k.line).size(), 1u);
        // What Java held was replaced first, then the refused one removed: both are gone.
        EXPECT_EQ(Logs::containing(kTag, "native config release instance, ").size(),
                  (stored ? 1u : 0u) + (k.status == 0 ? 0u : 1u));
        stored = k.status == 0;
        env_->DeleteLocalRef(s);
    }
}

TEST_F(DtmbConfigTest, CommandTableChecksWritesAndRefusesUnknownCommands) {
    // A manual scan: the configuration answers command 0 with its frequency itself.
    jobject settings = scantest::settingsFrom(
        "ZelTvDtmbScanSettings", "manual",
        "(Ljava/lang/String;Ljava/lang/String;I)Lcom/brinova/tv/orvella/services/scan/ZelTvDtmbScanSettings;",
        scantest::jstr("CHN"), scantest::jstr("chi"), 0x11223344);
    StandardConfig c = scantest::configFromSettings("ZelTvDtmbScanConfig", settings);
    auto* native = c.native();
    ASSERT_EQ(x_sb_reg_scan_map("sb_dtmb", reinterpret_cast<x_sb_scan_maps_fct>(native->getSbScanMapsNotify()),
                                native),
              0);
    scantest::AttachWatch watch;
    struct Case {
        uint32_t cmd, outSize;
        int answer;
        int32_t status;
        uint32_t len;
        std::vector<uint8_t> written;
    };
    const std::vector<Case> cases = {
        {0, 8, 0x11223344, 0, 4, {0x44, 0x33, 0x22, 0x11, 0}},
        {2, 4, 0x1FF, 0, 1, {0xFF, 0}},
        {5, 1, 0x80, 0, 1, {0x80}},
        {6, 2, 0x100, 0, 1, {1, 0}},
        {6, 100, 0, 0, 1, {0}},
        {0, 3, 1, -6, 3, {0, 0, 0}},
        {1, 0, 1, -6, 0, {}},
        {4, 4, 1, -6, 4, {0, 0, 0, 0}},
        {7, 4, 1, -6, 4, {0, 0, 0, 0}},
    };
    for (const Case& k : cases) {
        SCOPED_TRACE(k.cmd);
        c.clearEvents();
        c.setAnswer({k.answer});
        zelsim::ScanMapsAnswer a = zelsim::runScanMaps("sb_dtmb", k.cmd, "CHN", {}, k.outSize, 9);
        EXPECT_EQ(a.status, k.status);
        EXPECT_EQ(a.outputLen, k.len);
        EXPECT_FALSE(a.overrun);
        EXPECT_EQ(std::vector<uint8_t>(a.output.begin(), a.output.begin() + k.written.size()), k.written);
        const bool handled = k.status == 0 && k.cmd != 0;
        EXPECT_EQ(c.events().size(), handled ? 1u : 0u);
        if (handled) {
            EXPECT_EQ(c.lastOutputLength(), 1);  // always one element, whatever the buffer
            EXPECT_EQ(c.lastInput(), std::vector<int>{9});
        }
    }
    std::vector<bool> expected;
    for (const Case& k : cases) expected.push_back(k.status != 0);
    EXPECT_EQ(watch.attachedAfter(), expected);
    EXPECT_EQ(Logs::containing(kTag, "]cmd: 6, output:256").size(), 1u);
    EXPECT_EQ(Logs::containing(kTag, "]bypass command: 4").size(), 1u);
    EXPECT_EQ(Logs::containing(kTag, "]cmd: 0, invalid buffer size: 3.").size(), 1u);

    // The service-update function only logs its tag.
    zelsim::runServiceUpdate("sb_dtmb", native->getSbScanParams(0), 3, 0);
    EXPECT_TRUE(c.events().empty());
    EXPECT_EQ(Logs::containing(kTag, "]notify tag: ").size(), 1u);
}

}  // namespace
