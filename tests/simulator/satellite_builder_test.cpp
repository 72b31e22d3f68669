// The satellite builder of the simulator, seen from plain C callbacks: what it asks through
// the scan-maps function for each scan type, and the records it hands to the notification
// functions of the 780-byte block.
#include <string.h>

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "SbDvbsScanParams.h"
#include "zel_sim.h"

namespace {

struct Seen {
    std::mutex mu;
    std::vector<std::string> log;
    void add(std::string s) {
        std::lock_guard<std::mutex> lock(mu);
        log.push_back(std::move(s));
    }
};
Seen gSeen;
int gTag;

std::string tagged(void* tag) { return tag == &gTag ? "" : " (wrong tag)"; }

// An application with three transponders: 11494 H, 11836 H, 12266 H.
const uint32_t kFreqs[] = {11494, 11836, 12266};

int32_t scanMaps(DVBS_SCAN_MAPS_CMD_T cmd, char* country, void* in, void* out, uint32_t* len, void* tag) {
    const auto index = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(in));
    std::string what = "maps " + std::to_string(cmd) + " len " + std::to_string(*len) + " " + country;
    if (cmd == DVBS_SCAN_MAPS_CMD_GET_TP_INFO || cmd == DVBS_SCAN_MAPS_CMD_SAT_TP_REC) {
        const uint32_t i = cmd == DVBS_SCAN_MAPS_CMD_GET_TP_INFO ? index : *static_cast<uint16_t*>(in);
        what += " #" + std::to_string(i);
        gSeen.add(what);
        if (i >= 3) return -1;  // past the last one
        if (cmd == DVBS_SCAN_MAPS_CMD_GET_TP_INFO) {
            *static_cast<SB_DVBS_TP_INFO_T*>(out) = SB_DVBS_TP_INFO_T{kFreqs[i], SB_DVBS_POL_H, 22000};
        } else {
            static_cast<SB_DVBS_SAT_TP_REC_T*>(out)->ui4_freq = kFreqs[i];
            static_cast<SB_DVBS_SAT_TP_REC_T*>(out)->e_pol = SB_DVBS_POL_H;
        }
        return 0;
    }
    if (cmd == DVBS_SCAN_MAPS_CMD_QUERY_SAT) {
        const auto* q = static_cast<const SB_DVBS_QUERY_SAT_T*>(in);
        what += " orbit " + std::to_string(static_cast<int16_t>(q->aui2_value[0])) + " " + q->ac_name +
                " " + std::to_string(q->ui4_value_76);
    } else if (cmd == DVBS_SCAN_MAPS_CMD_SAT_TP_SHORT) {
        what += " rec " + std::to_string(*static_cast<uint16_t*>(in));
    } else {
        what += " in " + std::to_string(index);
    }
    gSeen.add(what + tagged(tag));
    return 0;
}

void scanNfy(HANDLE_T, uint32_t reason, uint32_t data, void*) {
    if (reason == SB_REASON_FREQ_REPORT) gSeen.add("freq " + std::to_string(data));
    if (reason == SB_REASON_PROGRESS) gSeen.add("progress " + std::to_string(data >> 16) + " " + std::to_string(data & 0xFFFF));
    if (reason == SB_REASON_COMPLETE) gSeen.add("end");
}

void svcUpdate(SB_DVBS_SVC_UPDATE_NFY_DATA_T* d, void* tag) {
    gSeen.add("update " + std::to_string(d->ui4_tv_add) + "/" + std::to_string(d->ui4_radio_add) + "/" +
              std::to_string(d->ui4_app_add) + tagged(tag));
}
void orbitSlot(SB_SAT_NAME_NFY_DATA_T* d, void* tag) {
    gSeen.add("slot " + std::to_string(d->ui2_sat_id) + "," + std::to_string(d->ui2_sat_rec_id) + " " +
              std::to_string(d->i2_orbit) + " " + d->ac_sat_name + tagged(tag));
}
void svcnum(uint16_t tv, uint16_t radio, uint16_t app, void* tag) {
    gSeen.add("svcnum " + std::to_string(tv) + "/" + std::to_string(radio) + "/" + std::to_string(app) + tagged(tag));
}
void categories(DVBS_TKGS_CATEGORY_LIST_T* d, void* tag) {
    gSeen.add("categories " + std::to_string(d->ui2_num) + " " + d->aac_name[0] + " " + d->aac_name[1] + tagged(tag));
}
void fstBuilt(void* record, void* tag) {
    gSeen.add("fst " + std::to_string(static_cast<uint8_t*>(record)[0]) + tagged(tag));
}

// The Fastscan function's offset is the block's own (724 on the TV).
const std::string kScenario = R"({"scan": [
  {"block_nfy": {"at": )" + std::to_string(offsetof(SB_DVBS_SCAN_PARAMS, pf_fst_built_nfy)) + R"(, "record": "2a00"}},
  {"satellite": {
    "satellites": [{"name": "ASTRA 1KR", "orbit": 192, "sat_id": 1, "rec_id": 3, "transponders": [
      {"freq": 11494, "pol": "H", "sr": 22000, "ts_id": 1019, "services": [
        {"name": "Das Erste HD", "svc_id": 10301, "type": "hd"}, {"name": "arte HD", "svc_id": 10302, "type": "hd"}]},
      {"freq": 11836, "pol": "H", "sr": 27500, "ts_id": 1101, "nit": false, "services": [
        {"name": "Das Erste", "svc_id": 28106}]},
      {"freq": 12266, "pol": "H", "sr": 27500, "ts_id": 1093, "services": [
        {"name": "Bayern 1", "svc_id": 28400, "type": "radio"}, {"name": "ASTRA Portal", "svc_id": 28401, "type": "data"}]}]}],
    "network": {"nw_id": 1, "on_id": 1, "name": "ASTRA"},
    "categories": ["Ulusal", "Haber"], "tp_ms": 0}}]})";

class SatelliteBuilderTest : public ::testing::Test {
protected:
    void SetUp() override {
        zelsim::reset();
        zelsim::setTimeScale(0);
        std::lock_guard<std::mutex> lock(gSeen.mu);
        gSeen.log.clear();
    }
    void TearDown() override { zelsim::reset(); }

    SB_DVBS_SCAN_PARAMS block(uint32_t scanType, uint32_t freq = 0) {
        SB_DVBS_SCAN_PARAMS b{};
        memcpy(b.t_country_code, "DEU", 4);
        b.e_scan_type = scanType;
        b.ui2_sat_id = 1;
        b.ui2_sat_rec_id = 3;
        b.ui4_freq = freq;
        b.e_pol = SB_DVBS_POL_H;
        b.b_svc_update = 1;
        b.pf_svc_update_nfy = svcUpdate;
        b.pv_svc_update_nfy_tag = &gTag;
        b.pf_sat_name_nfy = orbitSlot;
        b.pv_sat_name_nfy_tag = &gTag;
        b.pf_svcnum_details_nfy = svcnum;
        b.pv_svcnum_details_nfy_tag = &gTag;
        b.pf_category_nfy = categories;
        b.pv_category_nfy_tag = &gTag;
        b.pf_fst_built_nfy = fstBuilt;
        b.pv_fst_built_nfy_tag = &gTag;
        return b;
    }

    std::vector<std::string> scan(const char* scenario, SB_DVBS_SCAN_PARAMS b) {
        std::string error;
        EXPECT_TRUE(zelsim::loadScenarioText(scenario, &error)) << error;
        SB_DVBS_OPEN_DATA_T open{};
        open.t_common = SB_OPEN_DATA_T{1, "fs_Svl_0", "/dev", "tuner_sat_dig_0", 1, {0, 0, 0}, 0x2001};
        HANDLE_T h = 0;
        SB_COND_T cond = 0;
        EXPECT_EQ(MWR_OK, x_sb_open_builder("sb_dvbs", &open, &gTag, nullptr, &h, &cond));
        EXPECT_EQ(MWR_OK, x_sb_reg_scan_map("sb_dvbs", scanMaps, &gTag));
        uint32_t out = 0;
        EXPECT_EQ(MWR_OK, x_sb_start_scan(h, &b, &gTag, scanNfy, &out));
        EXPECT_TRUE(zelsim::waitIdle(10000));
        std::lock_guard<std::mutex> lock(gSeen.mu);
        return gSeen.log;
    }
};

using Log = std::vector<std::string>;

TEST_F(SatelliteBuilderTest, OperatorScanAsksForTranspondersUntilRefusedAndNotifiesThroughTheBlock) {
    const Log seen = scan(kScenario.c_str(), block(0));
    const Log expected = {
        "fst 42",
        "maps 27 len 112 DEU in 3", "slot 1,3 192 ASTRA 1KR",
        "maps 24 len 12 DEU #0", "maps 24 len 12 DEU #1", "maps 24 len 12 DEU #2", "maps 24 len 12 DEU #3",
        "freq 11494", "update 2/0/0", "maps 66 len 80 DEU in 0", "maps 66 len 80 DEU in 1", "progress 33 2",
        "freq 11836", "update 1/0/0", "maps 66 len 80 DEU in 2", "progress 66 1",
        "freq 12266", "update 0/1/1", "maps 66 len 80 DEU in 3", "maps 66 len 80 DEU in 4", "progress 100 2",
        "svcnum 3/1/1", "categories 2 Ulusal Haber", "end"};
    EXPECT_EQ(expected, seen);
    // The block was recorded whole.
    auto starts = zelsim::calls("x_sb_start_scan");
    ASSERT_EQ(1u, starts.size());
    EXPECT_EQ(sizeof(SB_DVBS_SCAN_PARAMS), starts[0].bytes.size());
}

TEST_F(SatelliteBuilderTest, SingleTransponderAndNetworkScansTuneWhatTheBlockNames) {
    SB_DVBS_SCAN_PARAMS single = block(SB_DVBS_SCAN_TYPE_SINGLE_TP, 11835);
    single.b_svc_update = 0;  // the function is there, but not enabled
    const Log one = scan(kScenario.c_str(), single);
    EXPECT_EQ((Log{"fst 42", "maps 27 len 112 DEU in 3", "slot 1,3 192 ASTRA 1KR", "freq 11835",
                   "maps 66 len 80 DEU in 0", "progress 100 1", "svcnum 1/0/0", "categories 2 Ulusal Haber",
                   "end"}),
              one);

    SetUp();
    const Log network = scan(kScenario.c_str(), block(SB_DVBS_SCAN_TYPE_NETWORK, 12266));
    const Log tuned = {"freq 12266", "freq 11494"};  // home first; 11836 is not in the NIT
    Log freqs;
    for (const std::string& s : network) {
        if (s.rfind("freq", 0) == 0) freqs.push_back(s);
    }
    EXPECT_EQ(tuned, freqs);
    EXPECT_NE(network.end(), std::find(network.begin(), network.end(), "maps 8 len 2 DEU orbit 192 ASTRA 12266"));
}

TEST_F(SatelliteBuilderTest, SingleSatelliteConfigurationReadsTransponderRecordsAndAssociatedSatellite) {
    std::string scenario = kScenario;
    scenario.replace(scenario.find("\"tp_ms\": 0"), 10, "\"tp_ms\": 0, \"tp_query\": \"sat_tp_record\"");
    SB_DVBS_SCAN_PARAMS b{};  // the single-satellite configuration sets no notification
    memcpy(b.t_country_code, "TUR", 4);
    b.ui2_sat_rec_id = 3;
    b.ui2_asso_sat_num = 1;
    b.aui2_asso_sat_rec_id[0] = 9;
    const Log seen = scan(scenario.c_str(), b);
    const Log expected = {"maps 27 len 112 TUR in 3",
                          "maps 45 len 96 TUR #0", "maps 45 len 96 TUR #1", "maps 45 len 96 TUR #2",
                          "maps 45 len 96 TUR #3", "maps 56 len 20 TUR rec 9",
                          "freq 11494", "maps 66 len 80 TUR in 0", "maps 66 len 80 TUR in 1", "progress 33 2",
                          "freq 11836", "maps 66 len 80 TUR in 2", "progress 66 1",
                          "freq 12266", "maps 66 len 80 TUR in 3", "maps 66 len 80 TUR in 4", "progress 100 2",
                          "end"};
    EXPECT_EQ(expected, seen);
}

TEST_F(SatelliteBuilderTest, MalformedSatelliteStepsAreNamed) {
    const std::pair<const char*, const char*> bad[] = {
        {R"({"satellite": {"satellites": []}})", "at least one"},
        {R"({"scan": [{"block_nfy": {"at": 774, "record": "00"}}]})", "offset"},
        {R"({"scan": [{"categories": {"count": 31, "names": ["a", "b", "c", "d", "e", "f", "g", "h", "i", "j", "k",
             "l", "m", "n", "o", "p", "q", "r", "s", "t", "u", "v", "w", "x", "y", "z", "1", "2", "3", "4", "5"]}}]})",
         "at most 30"},
        {R"({"satellite": {"satellites": [{"name": "x", "orbit": 1, "sat_id": 1, "rec_id": 1,
             "transponders": [{"freq": 1, "pol": "L", "sr": 1}]}]}})", "polarisation"},
    };
    for (const auto& [json, words] : bad) {
        std::string error;
        EXPECT_FALSE(zelsim::loadScenarioText(json, &error)) << json;
        EXPECT_NE(std::string::npos, error.find(words)) << error;
    }
}

}  // namespace
