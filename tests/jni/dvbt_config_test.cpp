// The DVB-T configuration: its parameter block, its scan-maps commands answered by Java
// from builder threads, its service-update notification and its lifetime.
#include <string.h>

#include <string>
#include <thread>
#include <vector>

#include <android/log.h>
#include <gtest/gtest.h>

#include "JINativeScanConfig.h"
#include "jvm_harness.h"
#include "scan_test_util.h"
#include "zel_sim.h"

namespace {

using android::JINativeScanConfig;
using harness::Logs;
using scantest::events;

constexpr const char* kTag = "mdbgin_ZelTvDvbtScanConfig_JNI";

class DvbtConfigTest : public harness::JvmTest {
protected:
    void TearDown() override {
        zelsim::setCallbackHook(nullptr);
        harness::JvmTest::TearDown();
    }

    // Lets the simulator's builder call `config`'s scan-maps function, as the engine does.
    static void registerScanMaps(JINativeScanConfig* config, void* tag) {
        ASSERT_EQ(x_sb_reg_scan_map("sb_dvb",
                                    reinterpret_cast<x_sb_scan_maps_fct>(config->getSbScanMapsNotify()),
                                    tag),
                  0);
    }

    // Records, after every callback on a builder thread, whether it was left attached, and
    // detaches it if so (a deliberate leak of the too-small-buffer answer).
    std::vector<bool>& watchAttachment() {
        attachedAfter_.clear();
        zelsim::setCallbackHook([this](const char*) {
            bool attached = scantest::threadAttached();
            attachedAfter_.push_back(attached);
            if (attached) harness::vm()->DetachCurrentThread();
        });
        return attachedAfter_;
    }

    std::vector<bool> attachedAfter_;
};

SB_DVB_SCAN_DATA_T blockOf(JINativeScanConfig* config) {
    SB_DVB_SCAN_DATA_T block;
    memcpy(&block, config->getSbScanParams(0), sizeof(block));
    return block;
}

bool allZero(const uint8_t* p, size_t n) {
    for (size_t i = 0; i < n; ++i) {
        if (p[i] != 0) return false;
    }
    return true;
}

TEST_F(DvbtConfigTest, ParameterBlockCarriesTheSettingsAtTheirOffsets) {
    jobject config = scantest::newDvbtConfig("GBRX", "english", 2, 2);
    ASSERT_NE(config, nullptr);
    JINativeScanConfig* native = scantest::nativeConfig(config);
    ASSERT_NE(native, nullptr);
    EXPECT_STREQ(native->getSbEbEngineName(), "sb_dvb");

    const auto* bytes = static_cast<const uint8_t*>(native->getSbScanParams(0));
    EXPECT_EQ(0, memcmp(bytes, "GBR\0", 4));
    uint32_t word;
    memcpy(&word, bytes + 4, 4);
    EXPECT_EQ(word, 7u);  // Java scan type 2
    memcpy(&word, bytes + 8, 4);
    EXPECT_EQ(word, 2u);
    EXPECT_EQ(0, memcmp(bytes + 12, "eng\0", 4));
    EXPECT_TRUE(allZero(bytes + 16, 16));
    uint32_t callback, tag;
    memcpy(&callback, bytes + 32, 4);
    memcpy(&tag, bytes + 36, 4);
    EXPECT_NE(callback, 0u);
    EXPECT_EQ(tag, reinterpret_cast<uintptr_t>(native->getSbScanConfigObject()));
    EXPECT_EQ(env_->GetObjectRefType(native->getSbScanConfigObject()), JNIWeakGlobalRefType);
    EXPECT_TRUE(allZero(bytes + 40, 24));
    EXPECT_EQ(Logs::containing(kTag, "uiLanguage=english").size(), 1u);
}

TEST_F(DvbtConfigTest, ScanAndUpdateTypesMapToTheBuilderCodes) {
    struct Case {
        int scanType, updateType;
        uint32_t builderScan, builderUpdate;
    };
    const Case cases[] = {{1, 1, 1, 1}, {2, 2, 7, 2}, {5, 1, 3, 1}, {3, 0, 0, 0}, {4, 3, 0, 0}};
    for (const Case& c : cases) {
        Logs::clear();
        jobject config = scantest::newDvbtConfig("GB", "", c.scanType, c.updateType);
        ASSERT_NE(config, nullptr);
        SB_DVB_SCAN_DATA_T block = blockOf(scantest::nativeConfig(config));
        EXPECT_EQ(block.e_scan_type, c.builderScan) << c.scanType;
        EXPECT_EQ(block.e_svc_update_type, c.builderUpdate) << c.updateType;
        EXPECT_EQ(Logs::containing(kTag, "] un-implement scan type.").size(),
                  c.builderScan == 0 ? 1u : 0u);
        EXPECT_EQ(Logs::containing(kTag, "] un-implement update type.").size(),
                  c.builderUpdate == 0 ? 1u : 0u);
        // A short country keeps its terminator; an empty language gives four zero bytes.
        EXPECT_EQ(0, memcmp(block.t_country_code, "GB\0\0", 4));
        EXPECT_EQ(0, memcmp(block.t_ui_lang, "\0\0\0\0", 4));
        harness::callInt(config, harness::methodOf(config, "release", "()I"));
        env_->DeleteLocalRef(config);
    }
}

TEST_F(DvbtConfigTest, ScanMapsCommandsAreAnsweredByJavaFromABuilderThread) {
    jobject config = scantest::newDvbtConfig("DEU", "deu", 1, 1);
    JINativeScanConfig* native = scantest::nativeConfig(config);
    registerScanMaps(native, native);
    std::vector<bool>& attached = watchAttachment();

    struct Case {
        uint32_t cmd;
        uint32_t outSize;
        std::vector<int> answer;
        uint32_t expectLen;
        int javaOutLen;                   // length of Java's output array
        std::vector<uint8_t> expectBytes;  // the start of the output buffer
    };
    const std::vector<Case> cases = {
        {0, 8, {0x11223344}, 4, 1, {0x44, 0x33, 0x22, 0x11}},
        {25, 4, {-2}, 4, 1, {0xfe, 0xff, 0xff, 0xff}},
        {2, 2, {0x12345}, 2, 1, {0x45, 0x23}},
        {8, 6, {7}, 2, 1, {7, 0}},
        {9, 4, {5}, 1, 1, {1}},
        {10, 8, {0}, 1, 8, {0}},
        {5, 100, {9}, 100, 100, {}},  // passed through: Java answers, nothing is written
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.cmd);
        scantest::clearEvents(config);
        scantest::setAnswer(config, c.answer);
        zelsim::ScanMapsAnswer a = zelsim::runScanMaps("sb_dvb", c.cmd, "DEU", {}, c.outSize, 0x1234);
        EXPECT_EQ(a.status, 0);
        EXPECT_EQ(a.outputLen, c.expectLen);
        EXPECT_EQ(scantest::lastOutputLength(config), c.javaOutLen);
        EXPECT_EQ(scantest::lastInput(config), std::vector<int>{0x1234});
        ASSERT_GE(a.output.size(), c.expectBytes.size());
        EXPECT_EQ(std::vector<uint8_t>(a.output.begin(), a.output.begin() + c.expectBytes.size()),
                  c.expectBytes);
        EXPECT_EQ(events(config), std::vector<std::string>{"cmd " + std::to_string(c.cmd)});
    }
    // A boolean command with no room writes nothing and keeps the length.
    zelsim::ScanMapsAnswer none = zelsim::runScanMaps("sb_dvb", 9, "DEU", {}, 0);
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(none.outputLen, 0u);
    EXPECT_EQ(scantest::lastOutputLength(config), 1);

    EXPECT_EQ(std::count(attached.begin(), attached.end(), true), 0)
        << "a builder thread was left attached after an answered command";
}

TEST_F(DvbtConfigTest, RulesCommandStoresTheCountButAtMostSeventeenRules) {
    jobject config = scantest::newDvbtConfig("ITA", "ita", 1, 1);
    JINativeScanConfig* native = scantest::nativeConfig(config);
    registerScanMaps(native, native);
    std::vector<int> answer = {20};
    for (int i = 1; i <= 20; ++i) answer.push_back(100 + i);
    scantest::setAnswer(config, answer);

    zelsim::ScanMapsAnswer a = zelsim::runScanMaps("sb_dvb", 16, "ITA", {}, 80);
    ASSERT_EQ(a.status, 0);
    EXPECT_EQ(a.outputLen, 72u);
    EXPECT_EQ(scantest::lastOutputLength(config), 72);
    SB_DVB_SCAN_MAPS_RULES_T rules;
    ASSERT_GE(a.output.size(), sizeof(rules));
    memcpy(&rules, a.output.data(), sizeof(rules));
    EXPECT_EQ(rules.ui2_num_rules, 20);
    for (int i = 0; i < 17; ++i) EXPECT_EQ(rules.aui4_rule[i], 101u + i) << i;
    EXPECT_EQ(Logs::containing(kTag, ", rules:").size(), 17u);
}

TEST_F(DvbtConfigTest, TextCommandsPassTheInputRecordAsSixtyEightInts) {
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    JINativeScanConfig* native = scantest::nativeConfig(config);
    registerScanMaps(native, native);
    scantest::setAnswer(config, {0xBEEF});

    auto input = [](const std::string& text) {
        std::vector<uint8_t> in = {1, 0, 0x34, 0x12, 0xff, 0xff};  // 1, 0x1234, 0xffff
        in.insert(in.end(), text.begin(), text.end());
        in.push_back(0);
        return in;
    };
    zelsim::ScanMapsAnswer a = zelsim::runScanMaps("sb_dvb", 27, "GBR", input("BBC"), 2);
    ASSERT_EQ(a.status, 0);
    EXPECT_EQ(a.outputLen, 2u);
    EXPECT_EQ(a.output[0] | (a.output[1] << 8), 0xBEEF);
    std::vector<int> expected(68, 0);
    expected[0] = 1;
    expected[1] = 0x1234;
    expected[2] = 0xffff;
    expected[3] = 'B';
    expected[4] = 'B';
    expected[5] = 'C';
    EXPECT_EQ(scantest::lastInput(config), expected);

    // Longer than 64 bytes: 65 of them are passed, filling the array.
    std::string longText(100, '\xe9');
    ASSERT_EQ(zelsim::runScanMaps("sb_dvb", 28, "GBR", input(longText), 2).status, 0);
    std::vector<int> in = scantest::lastInput(config);
    ASSERT_EQ(in.size(), 68u);
    EXPECT_EQ(std::count(in.begin() + 3, in.end(), 0xe9), 65);
}

TEST_F(DvbtConfigTest, TooSmallBufferIsRefusedBeforeJavaAndLeavesTheThreadAttached) {
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    JINativeScanConfig* native = scantest::nativeConfig(config);
    registerScanMaps(native, native);
    std::vector<bool>& attached = watchAttachment();

    struct Case {
        uint32_t cmd, outSize;
        bool nullInput;
    };
    for (const Case& c : {Case{0, 3, false}, Case{3, 1, false}, Case{16, 71, false},
                          Case{27, 2, true}}) {
        SCOPED_TRACE(c.cmd);
        Logs::clear();
        std::vector<uint8_t> text = {1, 0, 2, 0, 3, 0, 'x', 0};
        zelsim::ScanMapsAnswer a =
            zelsim::runScanMaps("sb_dvb", c.cmd, "GBR", c.nullInput ? std::vector<uint8_t>{} : text,
                                c.outSize);
        EXPECT_EQ(a.status, -6);
        EXPECT_EQ(a.outputLen, c.outSize);
        EXPECT_EQ(Logs::containing(kTag, "invalid buffer size: " + std::to_string(c.outSize) + ".")
                      .size(),
                  1u);
    }
    EXPECT_TRUE(events(config).empty());
    // The refusal skips the detach: each of the four builder threads stayed attached.
    EXPECT_EQ(attached, std::vector<bool>(4, true));
}

TEST_F(DvbtConfigTest, NullTagAnswersWithoutCallingJava) {
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    JINativeScanConfig* native = scantest::nativeConfig(config);
    registerScanMaps(native, nullptr);
    zelsim::ScanMapsAnswer a = zelsim::runScanMaps("sb_dvb", 0, "GBR", {}, 4);
    EXPECT_EQ(a.status, 0);
    EXPECT_EQ(a.outputLen, 4u);
    EXPECT_TRUE(events(config).empty());
    EXPECT_EQ(Logs::count(ANDROID_LOG_DEBUG, kTag,
                          "_native_sb_dvb_scan_maps_notify, pv_tag(native config instance) is NULL!"),
              1);
}

TEST_F(DvbtConfigTest, ServiceUpdatesReachJavaFromABuilderThread) {
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    SB_DVB_SCAN_DATA_T block = blockOf(scantest::nativeConfig(config));
    std::vector<bool>& attached = watchAttachment();

    zelsim::runServiceUpdate(block, 3, 1);
    std::vector<std::string> seen = scantest::eventsWithThreads(config);
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_EQ(seen[0].rfind("update 3 1 @", 0), 0u) << seen[0];
    EXPECT_EQ(seen[0].find("@main"), std::string::npos) << "delivered on the test's own thread";
    EXPECT_EQ(Logs::containing(kTag, "]add=3,del=1").size(), 1u);

    block.pv_svc_update_nfy_tag = nullptr;
    zelsim::runServiceUpdate(block, 5, 0);
    EXPECT_EQ(events(config).size(), 1u);
    EXPECT_EQ(Logs::count(ANDROID_LOG_ERROR, kTag, "_native_sb_service_update_notify, pv_tag is NULL!"),
              1);
    EXPECT_EQ(attached, (std::vector<bool>{false, false}));
}

TEST_F(DvbtConfigTest, SettingsCheckAndStatusWorkFromAnyThread) {
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    JINativeScanConfig* native = scantest::nativeConfig(config);
    scantest::setCheckResult(config, 7);
    int checked = 0;
    bool attachedAfter = true;
    std::thread foreign([&] {
        checked = native->checkScanMaps();
        native->onStatus(1);
        attachedAfter = scantest::threadAttached();
    });
    foreign.join();
    EXPECT_EQ(checked, 7);
    EXPECT_FALSE(attachedAfter);
    EXPECT_EQ(events(config), (std::vector<std::string>{"check", "status 1"}));
    EXPECT_EQ(Logs::count(ANDROID_LOG_DEBUG, kTag, "native checkScanMaps, 7"), 1);

    // On a thread that is already attached, nothing is detached.
    EXPECT_EQ(native->checkScanMaps(), 7);
    EXPECT_TRUE(scantest::threadAttached());
}

// Java holds the configuration: a second setup replaces it, and release destroys it.
TEST_F(DvbtConfigTest, SecondSetupReplacesTheFirstAndReleaseDestroysIt) {
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    jlong first = scantest::nativeConfigValue(config);
    ASSERT_NE(first, 0);
    jclass clazz = harness::findClass("com/brinova/tv/orvella/services/scan/ZelTvDvbtScanConfig");
    jmethodID setup = env_->GetMethodID(
        clazz, "nativeSetup", "(Lcom/brinova/tv/orvella/services/scan/ZelTvDvbtScanSettings;)I");
    jmethodID release = env_->GetMethodID(clazz, "nativeRelease", "()I");
    jstring fra = env_->NewStringUTF("FRA");
    jstring fre = env_->NewStringUTF("fre");
    jobject settings = harness::newObject("com/brinova/tv/orvella/services/scan/ZelTvDvbtScanSettings",
                                          "(Ljava/lang/String;Ljava/lang/String;II)V", fra, fre, 1, 1);
    auto destroyed = [] { return Logs::containing(kTag, "native config release instance, ").size(); };

    EXPECT_EQ(harness::callInt(config, setup, settings), 0);
    jlong second = scantest::nativeConfigValue(config);
    EXPECT_NE(second, 0);
    EXPECT_NE(second, first);
    EXPECT_EQ(destroyed(), 1u) << "the first was not destroyed";
    EXPECT_STREQ(scantest::nativeConfig(config)->getSbEbEngineName(), "sb_dvb");

    EXPECT_EQ(harness::callInt(config, release), 0);
    EXPECT_EQ(scantest::nativeConfigValue(config), 0);
    EXPECT_EQ(destroyed(), 2u);
    EXPECT_EQ(harness::callInt(config, release), 0);  // nothing stored: still 0

    // Settings without a country or a language store nothing.
    jstring eng = env_->NewStringUTF("eng");
    jobject scripted = harness::newObject("com/brinova/tv/orvella/testsupport/ScriptedDvbtSettings",
                                          "(Ljava/lang/String;Ljava/lang/String;)V", nullptr, eng);
    EXPECT_EQ(harness::callInt(config, setup, scripted), 0);
    EXPECT_EQ(scantest::nativeConfigValue(config), 0);
    EXPECT_EQ(Logs::containing(kTag, "] Get country id failed.").size(), 1u);
    jobject noLanguage = harness::newObject(
        "com/brinova/tv/orvella/testsupport/ScriptedDvbtSettings",
        "(Ljava/lang/String;Ljava/lang/String;)V", fra, nullptr);
    EXPECT_EQ(harness::callInt(config, setup, noLanguage), 0);
    EXPECT_EQ(scantest::nativeConfigValue(config), 0);
    EXPECT_EQ(Logs::containing(kTag, "] Get uiLanguage id failed.").size(), 1u);
    // Both configurations made for them were destroyed again.
    EXPECT_EQ(destroyed(), 4u);
    env_->DeleteLocalRef(fre);
}

// A settings getter that throws on the Java thread: the setup still does its steps with JNI
// clean, and its Java caller receives the exception when the native returns.
TEST_F(DvbtConfigTest, SettingsExceptionsReachTheCallerOfSetup) {
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    jmethodID setup = harness::methodOf(
        config, "nativeSetup", "(Lcom/brinova/tv/orvella/services/scan/ZelTvDvbtScanSettings;)I");
    jstring nor = env_->NewStringUTF("NOR");
    jstring nob = env_->NewStringUTF("nob");
    jobject settings = harness::newObject("com/brinova/tv/orvella/testsupport/ScriptedDvbtSettings",
                                          "(Ljava/lang/String;Ljava/lang/String;)V", nor, nob);
    auto setFailure = [&](const char* field, const char* message) {
        jobject failure = message == nullptr ? nullptr
                                             : harness::newObject("java/lang/IllegalStateException",
                                                                  "(Ljava/lang/String;)V",
                                                                  env_->NewStringUTF(message));
        env_->SetObjectField(settings,
                             env_->GetFieldID(env_->GetObjectClass(settings), field,
                                              "Ljava/lang/RuntimeException;"),
                             failure);
    };

    // After the scan type: the block is still filled and stored, with scan type 0.
    jlong before = scantest::nativeConfigValue(config);
    setFailure("scanTypeFailure", "no scan type");
    Logs::clear();
    EXPECT_EQ(env_->CallIntMethod(config, setup, settings), 0);
    EXPECT_EQ(harness::exceptionText(env_), "java.lang.IllegalStateException: no scan type");
    jlong stored = scantest::nativeConfigValue(config);
    EXPECT_NE(stored, before);
    SB_DVB_SCAN_DATA_T block = blockOf(scantest::nativeConfig(config));
    EXPECT_STREQ(block.t_country_code, "NOR");
    EXPECT_STREQ(block.t_ui_lang, "nob");
    EXPECT_EQ(block.e_scan_type, 0u);
    EXPECT_EQ(Logs::containing(kTag, "] un-implement scan type.").size(), 1u);
    EXPECT_TRUE(Logs::containing(kTag, "Java exception").empty()) << "given to Java, not logged";

    // Of the country: nothing is stored, as for a null country.
    setFailure("scanTypeFailure", nullptr);
    setFailure("countryFailure", "no country");
    EXPECT_EQ(env_->CallIntMethod(config, setup, settings), 0);
    EXPECT_EQ(harness::exceptionText(env_), "java.lang.IllegalStateException: no country");
    EXPECT_EQ(scantest::nativeConfigValue(config), stored);
    EXPECT_EQ(Logs::containing(kTag, "] Get country id failed.").size(), 1u);
}

using DvbtConfigDeathTest = DvbtConfigTest;

TEST_F(DvbtConfigDeathTest, ScanMapsWithoutAnOutputBufferEndsTheProcess) {
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    JINativeScanConfig* native = scantest::nativeConfig(config);
    auto fn = reinterpret_cast<x_sb_scan_maps_fct>(native->getSbScanMapsNotify());
    char country[] = "GBR";
    uint32_t len = 4;
    uint32_t out = 0;
    EXPECT_DEATH(fn(0, country, nullptr, nullptr, &len, native),
                 "cond=<!\\(pv_output != __null\\)> "
                 "msg=<com_brinova_tv_orvella_scan_ZelTvDvbtScanConfig FATAL Error at :[0-9]+>");
    EXPECT_DEATH(fn(0, country, nullptr, &out, nullptr, native),
                 "cond=<!\\(pz_output_len != __null\\)>");
}

}  // namespace
