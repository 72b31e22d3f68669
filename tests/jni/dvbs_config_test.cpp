// The two satellite configurations: the 780-byte block at every offset they write, the
// satellite identity text, every scan-maps command row with its checks and records, Java's
// status passed through, and the four notifications from builder threads not attached to
// the VM.
#include <string.h>

#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "JINativeScanConfig.h"
#include "SbDvbsScanParams.h"
#include "jvm_harness.h"
#include "scan_test_util.h"
#include "zel_sim.h"

namespace {

using android::JINativeScanConfig;
using harness::Logs;

constexpr const char* kTag = "ZelTvDvbsScanConfig_JNI";
constexpr const char* kRecording = "com/brinova/tv/orvella/testsupport/RecordingDvbsConfig";
constexpr const char* kScripted = "com/brinova/tv/orvella/testsupport/RecordingDvbsConfig$ScriptedSettings";
constexpr const char* kSettingsSig = "(Lcom/brinova/tv/orvella/services/scan/ZelTvDvbsScanSettings;)I";
constexpr uint8_t kCallerFill = 0x5A;  // what the builder's output buffers hold before a command

template <typename T>
T at(const JINativeScanConfig* c, size_t offset) {
    T v;
    memcpy(&v, static_cast<const uint8_t*>(const_cast<JINativeScanConfig*>(c)->getSbScanParams(0)) + offset,
           sizeof(v));
    return v;
}

// Every byte of the block outside the listed ranges is 0.
bool zeroOutside(JINativeScanConfig* c, std::vector<std::pair<size_t, size_t>> used) {
    const auto* b = static_cast<const uint8_t*>(c->getSbScanParams(0));
    for (size_t i = 0; i < sizeof(SB_DVBS_SCAN_PARAMS); ++i) {
        bool inside = false;
        for (auto [from, len] : used) inside = inside || (i >= from && i < from + len);
        if (!inside && b[i] != 0) return false;
    }
    return true;
}

class DvbsConfigTest : public harness::JvmTest {
protected:
    void TearDown() override {
        zelsim::setCallbackHook(nullptr);
        zelsim::reset();
        harness::JvmTest::TearDown();
    }

    jobject newConfig() {
        jobject settings = harness::newObject(kScripted, "()V");
        jobject config = harness::newObject(kRecording, "(Lcom/brinova/tv/orvella/services/scan/ZelTvDvbsScanSettings;)V",
                                            settings);
        env_->DeleteLocalRef(settings);
        return config;
    }
    jobject scripted() { return harness::newObject(kScripted, "()V"); }
    void setInt(jobject o, const char* f, int v) {
        env_->SetIntField(o, env_->GetFieldID(env_->GetObjectClass(o), f, "I"), v);
    }
    void setText(jobject o, const char* f, const char* v) {
        jstring s = v ? env_->NewStringUTF(v) : nullptr;
        env_->SetObjectField(o, env_->GetFieldID(env_->GetObjectClass(o), f, "Ljava/lang/String;"), s);
    }
    // A second native setup of `config` from `settings`; its status.
    int setup(jobject config, jobject settings) {
        jclass cls = env_->FindClass("com/brinova/tv/orvella/services/scan/ZelTvDvbsScanConfig");
        jint status = env_->CallIntMethod(config, env_->GetMethodID(cls, "nativeSetup", kSettingsSig), settings);
        EXPECT_EQ(harness::exceptionText(env_), "");
        env_->DeleteLocalRef(cls);
        return status;
    }
    std::vector<std::string> events(jobject config) {
        return scantest::stringArray(env_, static_cast<jobjectArray>(harness::callObject(
                                               config, harness::methodOf(config, "eventNames", "()[Ljava/lang/String;"))));
    }
    void registerMaps(JINativeScanConfig* c) {
        ASSERT_EQ(0, x_sb_reg_scan_map("sb_dvbs", reinterpret_cast<x_sb_scan_maps_fct>(c->getSbScanMapsNotify()), c));
    }
    void answer(jobject config, std::vector<int> values, int status) {
        jintArray a = scantest::newIntArray(env_, values);
        env_->SetObjectField(config, env_->GetFieldID(env_->GetObjectClass(config), "answer", "[I"), a);
        setInt(config, "status", status);
    }
};

TEST_F(DvbsConfigTest, BlockCarriesEverySettingAtItsOffsetForEachScanTypeAndFlag) {
    jobject config = newConfig();
    JINativeScanConfig* c = scantest::nativeConfig(config);
    ASSERT_NE(c, nullptr);
    EXPECT_STREQ(c->getSbEbEngineName(), "sb_dvbs");
    struct Case {
        int scanType, channel, service, update;
        uint32_t flags;
        bool manual;
    };
    const Case cases[] = {{3, 1, 1, 1, 0x18, true},      {4, 2, 2, 2, 0x40040, true},
                          {1, 3, 0, 0, 0x20, false},     {0, 4, 3, 3, 0, false}};
    for (const Case& k : cases) {
        jobject s = scripted();
        setText(s, "country", "DEUX");
        setText(s, "language", "deutsch");
        setText(s, "satellite", "12,3");
        setInt(s, "operator", 121);
        setInt(s, "scanType", k.scanType);
        setInt(s, "channelType", k.channel);
        setInt(s, "serviceType", k.service);
        setInt(s, "updateType", k.update);
        setInt(s, "frequency", 11494);
        setInt(s, "polarization", 1);
        setInt(s, "symbolRate", 22000);
        Logs::clear();
        ASSERT_EQ(0, setup(config, s)) << k.scanType;
        c = scantest::nativeConfig(config);
        EXPECT_EQ(0, memcmp(c->getSbScanParams(0), "DEU\0deu\0", 8));
        EXPECT_EQ(at<uint32_t>(c, 8), 121u);
        EXPECT_EQ(at<uint32_t>(c, 12), static_cast<uint32_t>(k.scanType));
        EXPECT_EQ(at<uint16_t>(c, 16), 12u);
        EXPECT_EQ(at<uint16_t>(c, 18), 3u);
        EXPECT_EQ(at<uint32_t>(c, 164), k.manual ? 11494u : 0u);
        EXPECT_EQ(at<uint32_t>(c, 168), k.manual ? 1u : 0u);
        EXPECT_EQ(at<uint32_t>(c, 172), k.manual ? 22000u : 0u);
        EXPECT_EQ(at<uint32_t>(c, 656), k.flags) << k.channel << " " << k.service;
        const bool enabled = k.update == 1 || k.update == 2;
        EXPECT_EQ(at<uint8_t>(c, 764), enabled ? 1u : 0u);
        EXPECT_EQ(at<uint32_t>(c, 768), enabled ? static_cast<uint32_t>(k.update) : 0u);
        EXPECT_EQ(at<uint32_t>(c, 660) != 0, enabled);
        const auto tag = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(c->getSbScanConfigObject()));
        EXPECT_EQ(at<uint32_t>(c, 664), enabled ? tag : 0u);
        for (size_t fn : {676u, 748u, 756u}) {
            EXPECT_NE(at<uint32_t>(c, fn), 0u) << fn;
            EXPECT_EQ(at<uint32_t>(c, fn + 4), tag) << fn;
        }
        EXPECT_TRUE(zeroOutside(c, {{0, 20}, {164, 12}, {656, 12}, {676, 8}, {748, 16}, {764, 8}}));
        EXPECT_EQ(Logs::containing(kTag, "] un-implement update type.").size(), k.update == 3 ? 1u : 0u);
        EXPECT_EQ(Logs::containing(kTag, k.scanType == 3 ? "]network scan frequency=11494, pol=1, symbolrate=22000"
                                                         : "] SINGLE_TP_SCAN frequency=11494")
                      .size(),
                  k.manual ? 1u : 0u);
        EXPECT_EQ(Logs::containing(kTag, "] version20220105").size(), 1u);
        env_->DeleteLocalRef(s);
    }
}

TEST_F(DvbsConfigTest, SatelliteTextIsParsedAsWrittenAndMissingTextsRefuseTheSetup) {
    jobject config = newConfig();
    const std::pair<const char*, std::pair<uint16_t, uint16_t>> texts[] = {
        {"12,3", {12, 3}}, {"12", {12, 0}}, {",5", {0, 5}}, {"", {0, 0}},
        {"1a,2", {static_cast<uint16_t>(10 + ('a' - '0')), 2}}, {"70000,1,2", {4464, 62}}};
    for (const auto& [text, ids] : texts) {
        jobject s = scripted();
        setText(s, "satellite", text);
        Logs::clear();
        ASSERT_EQ(0, setup(config, s)) << text;
        JINativeScanConfig* c = scantest::nativeConfig(config);
        EXPECT_EQ(at<uint16_t>(c, 16), ids.first) << text;
        EXPECT_EQ(at<uint16_t>(c, 18), ids.second) << text;
        const std::string line = std::string("satelliteStr=<") + text + ">,satStrLen=" + std::to_string(strlen(text)) +
                                 ",idxBase=" + std::to_string(strchr(text, ',') ? strchr(text, ',') - text : strlen(text));
        EXPECT_EQ(Logs::containing(kTag, line).size(), 1u) << line;
        env_->DeleteLocalRef(s);
    }
    // A null text is -6 and leaves the configuration Java holds as it was.
    const jlong before = scantest::nativeConfigValue(config);
    for (const char* field : {"country", "language", "satellite"}) {
        jobject s = scripted();
        setText(s, field, nullptr);
        EXPECT_EQ(-6, setup(config, s)) << field;
        EXPECT_EQ(before, scantest::nativeConfigValue(config));
        env_->DeleteLocalRef(s);
    }
    EXPECT_EQ(Logs::containing(kTag, "] Get satellite id failed.").size(), 1u);
}

TEST_F(DvbsConfigTest, EveryCommandRowChecksItsBufferAndWritesItsRecord) {
    jobject config = newConfig();
    JINativeScanConfig* c = scantest::nativeConfig(config);
    registerMaps(c);
    // Without a satellite list the handler answers: the record is written field by field,
    // the name cut at 64 characters and terminated, the bytes between fields left alone.
    std::vector<int> sat = {-50, 0x100, 80, 11494, 84, 100, 1019, 104, 106};
    for (char ch : std::string(64, 'S')) sat.push_back(ch);
    sat.push_back('X');
    answer(config, sat, 0);
    scantest::clearEvents(config);
    // Command 27: 111 bytes are refused before Java is asked, and not a byte is written.
    auto shortAnswer = zelsim::runScanMaps("sb_dvbs", 27, "DEU", {}, 111, 3, 0, kCallerFill);
    EXPECT_EQ(shortAnswer.status, -24);
    EXPECT_EQ(shortAnswer.outputLen, 111u);
    EXPECT_EQ(shortAnswer.output, std::vector<uint8_t>(111, kCallerFill));
    EXPECT_TRUE(events(config).empty());
    auto full = zelsim::runScanMaps("sb_dvbs", 27, "DEU", {}, 112, 3, 0, kCallerFill);
    ASSERT_EQ(full.status, 0);
    EXPECT_EQ(full.outputLen, 112u);
    EXPECT_FALSE(full.overrun);
    for (size_t gap : {65u, 92u, 93u, 94u, 95u, 96u, 97u, 98u, 99u, 108u, 109u, 110u, 111u}) {
        EXPECT_EQ(full.output[gap], kCallerFill) << gap;
    }
    SB_DVBS_SAT_INFO_T r;
    memcpy(&r, full.output.data(), sizeof(r));
    EXPECT_EQ(std::string(r.ac_name), std::string(64, 'S'));
    EXPECT_EQ(r.i2_orbit, -50);
    EXPECT_EQ(r.e_lnb_type, 2u);  // only the low byte of [1] counts: 0 is the universal LNB
    EXPECT_EQ(r.ui2_lnb_low_freq, 9750u);
    EXPECT_EQ(r.ui2_lnb_high_freq, 10600u);
    EXPECT_EQ(r.ui4_lnb_switch_freq, 11700u);
    EXPECT_EQ(r.ui4_value_80, 80u);
    EXPECT_EQ(r.ui4_value_84, 84u);
    EXPECT_EQ(r.ui4_freq, 11494u);
    EXPECT_EQ(r.ui2_value_100, 100u);
    EXPECT_EQ(r.ui2_ts_id, 1019u);
    EXPECT_EQ(r.ui2_value_104, 104u);
    EXPECT_EQ(r.ui2_value_106, 106u);
    sat[1] = 1;
    answer(config, sat, 0);
    full = zelsim::runScanMaps("sb_dvbs", 27, "DEU", {}, 112, 3);
    memcpy(&r, full.output.data(), sizeof(r));
    EXPECT_EQ(r.e_lnb_type, 1u);
    EXPECT_EQ(r.ui2_lnb_low_freq, 10750u);
    EXPECT_EQ(r.ui4_lnb_switch_freq, 0u);
    answer(config, {5, 1234, 'D', 'a', 's'}, 0);
    auto svc = zelsim::runScanMaps("sb_dvbs", 66, "DEU", {}, 80, 0);
    ASSERT_EQ(svc.status, 0);
    SB_DVBS_SVC_INFO_T v;
    memcpy(&v, svc.output.data(), sizeof(v));
    EXPECT_EQ(v.ui2_rank, 5u);
    EXPECT_EQ(v.ui1_valid, 1u);
    EXPECT_EQ(v.ui2_vtul_svc_id, 1234u);
    EXPECT_STREQ(v.ac_name, "Das");
    scantest::clearEvents(config);

    // Rows answered by the handler: booleans, numbers, the query, with Java's arrays.
    struct Row {
        uint32_t cmd, size;
        std::vector<uint8_t> input;
        uintptr_t value;
        std::vector<uint8_t> expect;
        const char* event;
    };
    SB_DVBS_QUERY_SAT_T q{};
    q.aui2_value[0] = 192;
    q.ui4_value_76 = 11836;
    memcpy(q.ac_name, std::string(68, 'N').data(), 68);  // unterminated: 65 characters go
    std::vector<uint8_t> qBytes(reinterpret_cast<uint8_t*>(&q), reinterpret_cast<uint8_t*>(&q) + sizeof(q));
    answer(config, {0x12345678}, 0);
    const Row rows[] = {{7, 1, {}, 0, {1}, "cmd 7 in=null out=1"},
                        {51, 4, {}, 0, {0x78, 0x56, 0x34, 0x12}, "cmd 51 in=null out=1"},
                        {59, 2, {}, 0, {0x78, 0x56}, "cmd 59 in=null out=1"}};
    for (const Row& r : rows) {
        scantest::clearEvents(config);
        auto a = zelsim::runScanMaps("sb_dvbs", r.cmd, "DEU", r.input, r.size + 3, r.value);
        EXPECT_EQ(a.status, 0) << r.cmd;
        EXPECT_EQ(a.outputLen, r.size) << r.cmd;
        EXPECT_EQ(std::vector<uint8_t>(a.output.begin(), a.output.begin() + r.size), r.expect) << r.cmd;
        EXPECT_EQ(a.output[r.size], 0) << r.cmd;  // nothing past the value
        ASSERT_EQ(events(config).size(), 1u);
        EXPECT_EQ(events(config)[0], r.event);
    }
    // Command 8: the record becomes 70 ints, the unterminated name 65 of them.
    scantest::clearEvents(config);
    auto query = zelsim::runScanMaps("sb_dvbs", 8, "DEU", qBytes, 2);
    EXPECT_EQ(query.status, 0);
    std::string expect = "cmd 8 in=[192, 0, 0, 11836, 0";
    for (int i = 0; i < 65; ++i) expect += ", 78";
    expect += "] out=1";  // 5 + 65 = all 70
    ASSERT_EQ(events(config).size(), 1u);
    EXPECT_EQ(events(config)[0], expect);
    EXPECT_EQ(zelsim::runScanMaps("sb_dvbs", 8, "DEU", {}, 2).status, -6);
    EXPECT_EQ(Logs::containing(kTag, "_native_sb_dvbs_scan_maps_notify, [8] null pointer").size(), 1u);
    EXPECT_EQ(zelsim::runScanMaps("sb_dvbs", 24, "DEU", {}, 11, 0).status, -24);
    EXPECT_EQ(Logs::containing(kTag, "_native_sb_dvbs_scan_maps_notify, [24] invalid output length=11").size(), 1u);
}

TEST_F(DvbsConfigTest, JavaStatusIsPassedThroughWithNothingWrittenAndUnknownCommandsGetNullArrays) {
    jobject config = newConfig();
    registerMaps(scantest::nativeConfig(config));
    answer(config, {1}, 7);
    auto refused = zelsim::runScanMaps("sb_dvbs", 62, "DEU", {}, 4);
    EXPECT_EQ(refused.status, 7);
    EXPECT_EQ(refused.outputLen, 4u);
    EXPECT_EQ(refused.output, std::vector<uint8_t>(4, 0));
    answer(config, {1}, 0);
    auto bypass = zelsim::runScanMaps("sb_dvbs", 99, "DEU", {}, 8, 5, 0, kCallerFill);
    EXPECT_EQ(bypass.status, 0);
    EXPECT_EQ(bypass.outputLen, 8u);
    EXPECT_EQ(bypass.output, std::vector<uint8_t>(8, kCallerFill));
    answer(config, {1}, -3);
    EXPECT_EQ(zelsim::runScanMaps("sb_dvbs", 3, "DEU", {}, 8, 5).status, -3);
    EXPECT_EQ(events(config), (std::vector<std::string>{"cmd 62 in=null out=1", "cmd 99 in=null out=null",
                                                         "cmd 3 in=null out=null"}));
    EXPECT_EQ(Logs::containing(kTag, "_native_sb_dvbs_scan_maps_notify, bypass command: 99").size(), 1u);
    // A null tag answers 0 and asks nobody.
    ASSERT_EQ(0, x_sb_reg_scan_map("sb_dvbs",
                                   reinterpret_cast<x_sb_scan_maps_fct>(scantest::nativeConfig(config)->getSbScanMapsNotify()),
                                   nullptr));
    EXPECT_EQ(zelsim::runScanMaps("sb_dvbs", 62, "DEU", {}, 4).status, 0);
    EXPECT_EQ(events(config).size(), 3u);
}

TEST_F(DvbsConfigTest, NotificationsFromUnattachedBuilderThreadsReachJava) {
    jobject config = newConfig();
    jobject s = scripted();
    setInt(s, "updateType", 2);
    ASSERT_EQ(0, setup(config, s));
    JINativeScanConfig* c = scantest::nativeConfig(config);
    SB_DVBS_SCAN_PARAMS b;
    memcpy(&b, c->getSbScanParams(0), sizeof(b));
    std::vector<bool> attachedAfter;
    auto onBuilderThread = [&](auto fn) {
        std::thread t([&] {
            EXPECT_FALSE(scantest::threadAttached());
            fn();
            attachedAfter.push_back(scantest::threadAttached());
        });
        t.join();
    };
    SB_DVBS_SVC_UPDATE_NFY_DATA_T update{1, 2, 3, 4, 5, 6};
    onBuilderThread([&] { b.pf_svc_update_nfy(&update, b.pv_svc_update_nfy_tag); });
    SB_SAT_NAME_NFY_DATA_T slot{};
    slot.ui2_sat_id = 1;
    slot.ui2_sat_rec_id = 65535;
    slot.i2_orbit = -300;  // 30.0 W
    onBuilderThread([&] { b.pf_sat_name_nfy(&slot, b.pv_sat_name_nfy_tag); });
    onBuilderThread([&] { b.pf_svcnum_details_nfy(120, 60, 65535, b.pv_svcnum_details_nfy_tag); });
    static DVBS_TKGS_CATEGORY_LIST_T list{};
    list.ui2_num = 40;  // more than the record holds: 30 are read
    memcpy(list.aac_name[0], "Ulusal", 7);
    memset(list.aac_name[29], 'z', sizeof(list.aac_name[29]));  // fills its field unterminated
    onBuilderThread([&] { b.pf_category_nfy(&list, b.pv_category_nfy_tag); });
    std::vector<std::string> e = events(config);
    ASSERT_EQ(e.size(), 4u);
    EXPECT_EQ(e[0], "update 1,2,3,4,5,6");
    EXPECT_EQ(e[1], "slot 1,65535 -300");
    EXPECT_EQ(e[2], "count 120,60,65535");
    EXPECT_EQ(e[3], "categories Ulusal" + std::string(28, '|') + "|" + std::string(130, 'z'));
    EXPECT_EQ(attachedAfter, std::vector<bool>(4, false));
}

TEST_F(DvbsConfigTest, SingleSatelliteConfigurationFillsItsFieldsAndCrossesTheRecords) {
    const char* cls = "com/brinova/tv/orvella/testsupport/RecordingDvbsSatelliteConfig";
    const char* sig = "(Ljava/lang/String;ILjava/lang/String;Ljava/lang/String;III)V";
    jobject none = harness::newObject(cls, sig, env_->NewStringUTF("TURK"), 1, env_->NewStringUTF("5,9"),
                                      env_->NewStringUTF("5,0"), 11054, 1, 30000);
    JINativeScanConfig* c = scantest::nativeConfig(none);
    ASSERT_NE(c, nullptr);
    EXPECT_EQ(0, memcmp(c->getSbScanParams(0), "TUR\0", 4));
    EXPECT_EQ(at<uint32_t>(c, 8), 77u);
    EXPECT_EQ(at<uint16_t>(c, 18), 9u);
    EXPECT_EQ(at<uint32_t>(c, 164), 11054u);
    EXPECT_EQ(at<uint32_t>(c, 172), 30000u);
    EXPECT_EQ(at<uint16_t>(c, 176), 0u);  // record part 0: no associated satellite
    EXPECT_TRUE(zeroOutside(c, {{0, 4}, {8, 12}, {164, 12}}));
    jobject asso = harness::newObject(cls, sig, env_->NewStringUTF("TUR"), 4, env_->NewStringUTF("5,9"),
                                      env_->NewStringUTF("2,9"), 11096, 2, 27500);
    c = scantest::nativeConfig(asso);
    EXPECT_EQ(at<uint16_t>(c, 176), 1u);
    EXPECT_EQ(at<uint16_t>(c, 178), 9u);
    EXPECT_EQ(Logs::containing("ZelTvDvbsSatelliteConfig_JNI", "] version202201105").size(), 2u);

    registerMaps(c);
    const uint16_t index = 1;
    std::vector<uint8_t> in(reinterpret_cast<const uint8_t*>(&index), reinterpret_cast<const uint8_t*>(&index) + 2);
    auto refused = zelsim::runScanMaps("sb_dvbs", 45, "TUR", in, 95, 0, 0, kCallerFill);
    EXPECT_EQ(refused.status, -24);
    EXPECT_EQ(refused.output, std::vector<uint8_t>(95, kCallerFill));
    auto rec = zelsim::runScanMaps("sb_dvbs", 45, "TUR", in, 96, 0, 0, kCallerFill);
    ASSERT_EQ(rec.status, 0);
    EXPECT_EQ(rec.outputLen, 96u);
    EXPECT_FALSE(rec.overrun);
    // The six fields, and every other byte as the builder had it.
    SB_DVBS_SAT_TP_REC_T r;
    memset(&r, kCallerFill, sizeof(r));
    r.ui2_value_0 = 2;   // transport stream id, o[2]
    r.ui2_value_68 = 5;  // satellite id, o[0]
    r.ui2_value_70 = 9;  // record id, o[1]
    r.ui4_freq = 11096;
    r.ui4_sym_rate = 27500;  // o[5] at 76
    r.e_pol = 2;             // o[4] at 80
    const auto* expected = reinterpret_cast<const uint8_t*>(&r);
    EXPECT_EQ(rec.output, std::vector<uint8_t>(expected, expected + sizeof(r)));
    const uint16_t recordId = 9;
    std::vector<uint8_t> rid(reinterpret_cast<const uint8_t*>(&recordId), reinterpret_cast<const uint8_t*>(&recordId) + 2);
    auto shortRec = zelsim::runScanMaps("sb_dvbs", 56, "TUR", rid, 20);
    ASSERT_EQ(shortRec.status, 0);
    SB_DVBS_SAT_TP_SHORT_T sr;
    memcpy(&sr, shortRec.output.data(), sizeof(sr));
    EXPECT_EQ(sr.ui2_value_2, 1u);
    EXPECT_EQ(sr.ui4_freq, 11054u);
    EXPECT_EQ(sr.ui4_sym_rate, 30000u);
    EXPECT_EQ(sr.e_pol, 1u);
    EXPECT_EQ(zelsim::runScanMaps("sb_dvbs", 56, "TUR", {}, 20).status, -6);
}

}  // namespace
