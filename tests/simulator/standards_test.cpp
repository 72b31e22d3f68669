// The simulator's knowledge of the cable, DTMB, ATSC, US cable and ISDB builders: how it
// calls their scan-maps functions, which callbacks of their scan data it plays, how it reads
// the blocks, and the statuses a scenario expects back.
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "zel_sim.h"

namespace {

constexpr int kTimeoutMs = 10000;

struct Seen {
    std::vector<std::string> lines;
};
Seen gSeen;
int gTag;

int32_t cableMaps(DVBC_SCAN_MAPS_CMD_T cmd, char* country, uint32_t value, void* in,
                  void* reserved, void* out, uint32_t* len, void* tag) {
    gSeen.lines.push_back("maps " + std::to_string(cmd) + " " + country + " v" + std::to_string(value) +
                          (reserved == nullptr ? " r0" : " r?") + (tag == &gTag ? " tag" : ""));
    return cmd == 60 ? -6 : 0;
}

void cableUpdate(SB_DVBC_SVC_UPDATE_NFY_DATA_T* d, void* tag) {
    gSeen.lines.push_back("update " + std::to_string(d->ui2_num_added) + " " +
                          std::to_string(d->ui2_num_deleted) + (tag == &gTag ? " tag" : ""));
}

void cableScanning(SB_DVBC_SCANNING_NFY_DATA_T* d, void* tag) {
    std::string payload = d->e_nfy_type == SB_DVBC_NFY_NW_NAME ? std::string(d->u.s_nw_name)
                                                                : std::to_string(d->u.ui4_freq);
    gSeen.lines.push_back("scanning " + std::to_string(d->e_nfy_type) + " " +
                          std::string(d->t_country) + " op" + std::to_string(d->t_operator_name) +
                          " " + payload + (tag == &gTag ? " tag" : ""));
}

void isdbUpdate(SB_ISDB_SVC_UPDATE_NFY_DATA_T* d, void* tag) {
    gSeen.lines.push_back("isdb update " + std::to_string(d->ui2_num_added) +
                          (tag == nullptr ? " null" : " tag"));
}

void scanNfy(HANDLE_T, uint32_t, uint32_t, void*) {}

class StandardsTest : public ::testing::Test {
protected:
    void SetUp() override {
        zelsim::reset();
        zelsim::setTimeScale(0);
        gSeen.lines.clear();
    }
    void TearDown() override { zelsim::reset(); }

    HANDLE_T open(const char* name) {
        SB_OPEN_DATA_T open{};
        HANDLE_T h = 0;
        SB_COND_T cond = 0;
        EXPECT_EQ(x_sb_open_builder(name, &open, nullptr, nullptr, &h, &cond), 0);
        return h;
    }
};

SB_DVBC_SCAN_DATA_T cableBlock() {
    SB_DVBC_SCAN_DATA_T b{};
    memcpy(b.t_country_code, "AUT", 4);
    b.t_operator_name = 1;
    b.ui2_valid_mask = SB_DVBC_VALID_NW_ID | SB_DVBC_VALID_START_FREQ;
    b.ui2_nw_id = 0xF00D;
    b.ui4_start_freq = 306000000;
    b.pf_svc_update_nfy = cableUpdate;
    b.pv_svc_update_nfy_tag = &gTag;
    b.pf_scanning_nfy = cableScanning;
    b.pv_scanning_nfy_tag = &gTag;
    return b;
}

TEST_F(StandardsTest, CableScanPlaysItsCallbacksAndChecksTheAnswers) {
    ASSERT_TRUE(zelsim::loadScenarioText(R"({"scan": [
        {"scan_maps": {"cmd": 17, "output_len": 4, "value": 9, "expect": 0}},
        {"scan_maps": {"cmd": 60, "output_len": 4, "expect": -6}},
        {"scan_maps": {"cmd": 3, "output_len": 4, "expect": -26}},
        {"network_name": "Magenta"},
        {"freq_unlock": 602000000},
        {"no_network_id": 61453},
        {"service_update": {"added": 4, "deleted": 1}},
        {"end": 1}]})"));
    HANDLE_T h = open("sb_dvbc");
    auto maps = reinterpret_cast<x_sb_scan_maps_fct>(reinterpret_cast<void*>(cableMaps));
    ASSERT_EQ(x_sb_reg_scan_map("sb_dvbc", maps, &gTag), 0);
    SB_DVBC_SCAN_DATA_T block = cableBlock();
    ASSERT_EQ(x_sb_start_scan(h, &block, nullptr, scanNfy, nullptr), 0);
    ASSERT_TRUE(zelsim::waitIdle(kTimeoutMs));

    EXPECT_EQ(gSeen.lines, (std::vector<std::string>{
                               "maps 17 AUT v9 r0 tag", "maps 60 AUT v0 r0 tag", "maps 3 AUT v0 r0 tag",
                               "scanning 0 AUT op1 Magenta tag", "scanning 1 AUT op1 602000000 tag",
                               "scanning 2 AUT op1 61453 tag", "update 4 1 tag"}));
    // Command 3 answered 0 where the scenario expected -26.
    std::vector<std::string> mismatches = zelsim::scanMapsMismatches();
    ASSERT_EQ(mismatches.size(), 1u);
    EXPECT_NE(mismatches[0].find("command 3 with 4 bytes answered 0, expected -26"), std::string::npos);

    std::vector<zelsim::Call> starts = zelsim::calls("x_sb_start_scan");
    ASSERT_EQ(starts.size(), 1u);
    const std::vector<std::string>& f = starts[0].strings;
    for (const char* want : {"country=AUT", "operator=1", "valid_mask=17", "nw_id=61453",
                             "start_freq=306000000", "scanning=set"}) {
        EXPECT_NE(std::find(f.begin(), f.end(), want), f.end()) << want;
    }
}

TEST_F(StandardsTest, NameLongerThanTheRecordIsCutAndIsdbUpdatesHaveNoTag) {
    SB_DVBC_SCAN_DATA_T block = cableBlock();
    zelsim::runScanningNotify("sb_cn_dvbc", &block, SB_DVBC_NFY_NW_NAME, 0, std::string(50, 'x'));
    ASSERT_EQ(gSeen.lines.size(), 1u);
    EXPECT_EQ(gSeen.lines[0], "scanning 0 AUT op1 " + std::string(SB_DVBC_NW_NAME_LEN - 1, 'x') + " tag");

    SB_ISDB_SCAN_DATA_T isdb{};
    isdb.pf_svc_update_nfy = isdbUpdate;
    zelsim::runServiceUpdate("sb_isdb", &isdb, 7, 0);
    // Builders without the function in their block (ATSC) get nothing.
    SB_ATSC_SCAN_DATA_T atsc{};
    zelsim::runServiceUpdate("sb_atsc", &atsc, 1, 0);
    EXPECT_EQ(gSeen.lines.back(), "isdb update 7 null");
    EXPECT_EQ(gSeen.lines.size(), 2u);
}

TEST_F(StandardsTest, EveryBuilderBlockIsDecodedWithTheCountryFromItsOwnOffset) {
    struct Case {
        const char* name;
        std::vector<uint8_t> block;
        std::vector<std::string> expect;
    };
    SB_DTMB_SCAN_DATA_T dtmb{};
    memcpy(dtmb.t_country_code, "CHN", 4);
    dtmb.e_scan_mode = SB_DTMB_SCAN_MODE_MANUAL;
    dtmb.ui4_manual_freq = 714000000;
    SB_ATSC_SCAN_DATA_T atsc{5, (14u << 16) | 36u};
    SB_CQAM_SCAN_DATA_T cqam{};
    cqam.ui1_freq_plan = 2;
    SB_ISDB_SCAN_DATA_T isdb{};
    memcpy(isdb.t_country_code, "BRA", 4);
    isdb.ui2_first_ch = 4;
    auto bytes = [](const auto& b) {
        const auto* p = reinterpret_cast<const uint8_t*>(&b);
        return std::vector<uint8_t>(p, p + sizeof(b));
    };
    const Case cases[] = {
        {"sb_dtmb", bytes(dtmb), {"country=CHN", "scan_mode=6", "manual_freq=714000000"}},
        {"sb_atsc", bytes(atsc), {"scan_type=5", "index_range=14-36"}},
        {"sb_cqam", bytes(cqam), {"freq_plan=2"}},
        {"sb_isdb", bytes(isdb), {"country=BRA", "first_ch=4", "svc_update=none"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        zelsim::clearCalls();
        HANDLE_T h = open(c.name);
        ASSERT_EQ(x_sb_start_scan(h, const_cast<uint8_t*>(c.block.data()), nullptr, scanNfy, nullptr), 0);
        ASSERT_TRUE(zelsim::waitIdle(kTimeoutMs));
        std::vector<std::string> f = zelsim::calls("x_sb_start_scan").at(0).strings;
        for (const std::string& want : c.expect) {
            EXPECT_NE(std::find(f.begin(), f.end(), want), f.end()) << want;
        }
    }
}

}  // namespace
