// The scan-builder simulator as the library sees it: plain C callbacks, no JVM. Checks the
// wire blocks it records, the order in which it plays scenarios, refusals, cancel and close,
// key answers and list filters.
#include <string.h>

#include <algorithm>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "zel_sim.h"

namespace {

constexpr int kTimeoutMs = 10000;

// What the library's callbacks saw, in order, and on which threads.
struct Event {
    std::string what;
    std::vector<int64_t> v;
    std::string text;
};

struct Recorder {
    std::mutex mu;
    std::vector<Event> events;
    std::vector<std::string> hooks;
    bool hookOnCallerThread = false;
    std::thread::id caller;
    HANDLE_T cancelOnProgress = 0;  // builder to cancel from inside the first progress report

    void add(Event e) {
        std::lock_guard<std::mutex> lock(mu);
        events.push_back(std::move(e));
    }
    std::vector<Event> snapshot() {
        std::lock_guard<std::mutex> lock(mu);
        return events;
    }
    // Scan notifications as {reason, data} pairs.
    std::vector<std::pair<int64_t, int64_t>> notifications() {
        std::vector<std::pair<int64_t, int64_t>> out;
        for (const Event& e : snapshot()) {
            if (e.what == "nfy") out.emplace_back(e.v[0], e.v[1]);
        }
        return out;
    }
};
Recorder gRec;
int gTag;  // address used as the library's tag

void scanNfy(HANDLE_T h, uint32_t reason, uint32_t data, void* tag) {
    gRec.add({"nfy", {reason, data, tag == &gTag}, {}});
    HANDLE_T cancel = 0;
    {
        std::lock_guard<std::mutex> lock(gRec.mu);
        if (reason == SB_REASON_PROGRESS) std::swap(cancel, gRec.cancelOnProgress);
    }
    if (cancel != 0) x_sb_cancel_scan(cancel);  // must not wait for this very thread
}

void builderNfy(HANDLE_T h, SB_COND_T cond, void* tag) { gRec.add({"cond", {cond}, {}}); }

void svcUpdate(SB_DVB_SVC_UPDATE_NFY_DATA_T* d, void* tag) {
    gRec.add({"svc", {d->ui2_num_added, d->ui2_num_deleted, tag == &gTag}, {}});
}

int32_t scanMaps(SCAN_MAPS_CMD_T cmd, char* country, void* in, void* out, uint32_t* len, void* tag) {
    Event e{"maps", {cmd, tag == &gTag}, country};
    if (cmd == 16) {
        SB_DVB_SCAN_MAPS_RULES_T rules{};
        rules.aui4_rule[0] = 7;
        rules.ui2_num_rules = 1;
        memcpy(out, &rules, sizeof(rules));
        *len = sizeof(rules);
    } else if (cmd == 27) {
        const auto* text = static_cast<const SB_DVB_SCAN_MAPS_TEXT_INPUT_T*>(in);
        e.v.insert(e.v.end(), {text->aui2_value[0], text->aui2_value[1], text->aui2_value[2]});
        e.text += "|" + std::string(text->ac_text);
        *len = 2;
    } else if (cmd == 9) {
        memset(out, 1, 4);  // a faulty answer: four bytes into a one-byte buffer
    } else {
        e.v.push_back(static_cast<int64_t>(reinterpret_cast<uintptr_t>(in)));
    }
    gRec.add(std::move(e));
    return cmd == 2 ? -6 : 0;
}

std::vector<int64_t> changeIds(uint32_t count, const SVL_EVERY_NTF_EVT* c) {
    std::vector<int64_t> v;
    for (uint32_t i = 0; i < count; ++i) v.insert(v.end(), {c[i].ui2_event_type, c[i].ui2_event_record});
    return v;
}
void svlNfy(uint16_t id, uint32_t n, const SVL_EVERY_NTF_EVT* c, void* tag) {
    gRec.add({"svl", changeIds(n, c), std::to_string(id)});
}
void tslNfy(uint16_t id, uint32_t n, const TSL_EVERY_NTF_EVT* c, void* tag) {
    gRec.add({"tsl", changeIds(n, c), std::to_string(id)});
}
void nwlNfy(uint16_t id, uint32_t n, const NWL_EVERY_NTF_EVT* c, void* tag) {
    gRec.add({"nwl", changeIds(n, c), std::to_string(id)});
}
// Lets additions through and modifications only when the name changed.
MW_BOOL svlFilter(uint16_t id, uint16_t reason, SVL_REC_T* n, const SVL_REC_T* o) {
    gRec.add({"filter", {reason, n ? n->ui2_svl_id : -1}, n ? n->ac_name : "(null)"});
    if (reason != LIST_REASON_RECORD_MOD) return 1;
    return n && o && strcmp(n->ac_name, o->ac_name) != 0;
}
MW_BOOL rejectAll(uint16_t, uint16_t, SVL_REC_T*, const SVL_REC_T*) { return 0; }

SB_DVB_SCAN_DATA_T dvbBlock() {
    SB_DVB_SCAN_DATA_T b{};
    memcpy(b.t_country_code, "GBR", 4);
    b.pf_svc_update_nfy = svcUpdate;
    b.pv_svc_update_nfy_tag = &gTag;
    return b;
}

HANDLE_T open(const char* name, const char* svlName = "fs_Svl_0") {
    SB_DVBS_OPEN_DATA_T data{};
    data.t_common = SB_OPEN_DATA_T{1, svlName, "/dev", "tuner_ter_dig_0", 1, {0, 0, 0}, 0x2001};
    HANDLE_T h = 0;
    SB_COND_T cond = 0;
    EXPECT_EQ(MWR_OK, x_sb_open_builder(name, &data, &gTag, builderNfy, &h, &cond)) << name;
    return h;
}

void registerLists(uint16_t id) {
    HANDLE_T h;
    ASSERT_EQ(MWR_OK, c_svl_register_every_notify(id, svlFilter, svlNfy, &gTag, &h));
    ASSERT_EQ(MWR_OK, c_tsl_register_every_notify(id, nullptr, tslNfy, &gTag, &h));
    ASSERT_EQ(MWR_OK, c_nwl_register_every_notify(id, nullptr, nwlNfy, &gTag, &h));
}

std::string scenarioPath(const char* file) { return std::string(ZEL_SCENARIO_DIR) + "/" + file; }

class SimulatorTest : public ::testing::Test {
protected:
    void SetUp() override {
        zelsim::reset();
        zelsim::setTimeScale(0);
        {
            std::lock_guard<std::mutex> lock(gRec.mu);
            gRec.events.clear();
            gRec.hooks.clear();
            gRec.hookOnCallerThread = false;
            gRec.caller = std::this_thread::get_id();
            gRec.cancelOnProgress = 0;
        }
        zelsim::setCallbackHook([](const char* what) {
            std::lock_guard<std::mutex> lock(gRec.mu);
            gRec.hooks.push_back(what);
            gRec.hookOnCallerThread = gRec.hookOnCallerThread || std::this_thread::get_id() == gRec.caller;
        });
    }
    void TearDown() override { zelsim::reset(); }

    void load(const std::string& json) {
        std::string error;
        ASSERT_TRUE(zelsim::loadScenarioText(json, &error)) << error;
    }
    void loadFile(const char* file) {
        std::string error;
        ASSERT_TRUE(zelsim::loadScenarioFile(scenarioPath(file), &error)) << error;
    }
    // Opens "sb_dvb" with the lists registered, scans and waits for the end.
    HANDLE_T scanDvb() {
        registerLists(1);
        HANDLE_T h = open("sb_dvb");
        EXPECT_EQ(MWR_OK, x_sb_reg_scan_map("sb_dvb", scanMaps, &gTag));
        SB_DVB_SCAN_DATA_T block = dvbBlock();
        uint32_t out = 0;
        EXPECT_EQ(MWR_OK, x_sb_start_scan(h, &block, &gTag, scanNfy, &out));
        EXPECT_TRUE(zelsim::waitIdle(kTimeoutMs));
        return h;
    }
};

TEST_F(SimulatorTest, EveryScenarioFileParsesAndMistakesAreNamed) {
    size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ZEL_SCENARIO_DIR)) {
        if (entry.path().extension() != ".json") continue;
        std::string error;
        EXPECT_TRUE(zelsim::loadScenarioFile(entry.path().string(), &error)) << error;
        ++files;
    }
    EXPECT_GE(files, 9u);

    const std::pair<const char*, const char*> bad[] = {
        {R"({"scan": [{"progess": {"channels": 1}}]})", "scan[0]"},
        {R"({"scan": [{"freq": 474000000}, {"end": 3}]})", "scan[1]"},
        {R"({"scan": [{"progress": {"channels": 70000}}]})", "channels"},
        {R"({"scan": [{"scan_maps": {"cmd": 27, "input": 4, "input_text": "x"}}]})", "exclude"},
        {R"({"network": {"multiplexes": [{"channel": 70}]}})", "multiplexes[0]"},
        {R"({"keys": {"nwl": {"handle": 5, "records": [{"rec_id": 2}, {"rec_id": 2}]}}})", "unique"},
        {R"({"keys": {"regions": []}})", "regions"},
        {R"({"step_delay": 5})", "step_delay"},
        {R"({"scan": [)", ""},
    };
    for (const auto& [json, where] : bad) {
        std::string error;
        EXPECT_FALSE(zelsim::loadScenarioText(json, &error)) << json;
        EXPECT_NE(std::string::npos, error.find(where)) << json << " -> " << error;
    }
    std::string error;
    EXPECT_FALSE(zelsim::loadScenarioFile(scenarioPath("no-such.json"), &error));
    EXPECT_FALSE(error.empty());
}

TEST_F(SimulatorTest, NetworkShorthandPlaysAsARealScanInOrder) {
    load(R"({"network": {"on_id": 9018,
        "networks": [{"nw_id": 12289, "name": "Crystal Palace", "rec_id": 3}],
        "multiplexes": [
          {"channel": 21, "ts_id": 4164, "services": [{"name": "BBC ONE", "lcn": 1}, {"name": "BBC TWO", "lcn": 2}]},
          {"channel": 22},
          {"hz": 490000000, "services": [{"name": "ITV1", "lcn": 3, "type": "hd"}]}]}})");
    scanDvb();

    std::vector<std::string> order;
    for (const Event& e : gRec.snapshot()) {
        if (e.what != "filter") order.push_back(e.what);
    }
    const std::vector<std::string> expected = {"nfy", "nfy", "svc", "svl", "tsl", "nwl", "nfy", "nfy",
                                               "nfy", "nfy", "svc", "svl", "tsl", "nfy"};
    EXPECT_EQ(expected, order);
    const std::vector<std::pair<int64_t, int64_t>> nfy = {
        {16, 474000000}, {2, (3 << 16) | 2}, {16, 482000000}, {2, 3 << 16}, {16, 490000000}, {2, (3 << 16) | 1},
        {1, 0}};
    EXPECT_EQ(nfy, gRec.notifications());

    std::vector<Event> svl, svc, nwl;
    for (const Event& e : gRec.snapshot()) {
        if (e.what == "svl") svl.push_back(e);
        if (e.what == "svc") svc.push_back(e);
        if (e.what == "nwl") nwl.push_back(e);
    }
    ASSERT_EQ(2u, svl.size());
    EXPECT_EQ((std::vector<int64_t>{1, 1, 1, 2}), svl[0].v);  // additions of records 1 and 2
    EXPECT_EQ((std::vector<int64_t>{1, 3}), svl[1].v);
    EXPECT_EQ("1", svl[0].text);                            // the registration's list id
    EXPECT_EQ((std::vector<int64_t>{2, 0, 1}), svc[0].v);   // 2 added, tag of the scan block
    EXPECT_EQ((std::vector<int64_t>{1, 3}), nwl[0].v);      // the network's own record id

    // The filter saw the records with the registration's list id filled in.
    const Event filter = gRec.snapshot()[3];
    EXPECT_EQ("filter", filter.what);
    EXPECT_EQ((std::vector<int64_t>{1, 1}), filter.v);
    EXPECT_EQ("BBC ONE", filter.text);

    std::lock_guard<std::mutex> lock(gRec.mu);
    EXPECT_FALSE(gRec.hookOnCallerThread);
    EXPECT_EQ(1, std::count(gRec.hooks.begin(), gRec.hooks.end(), "nwl_nfy"));
    EXPECT_EQ(3, std::count(gRec.hooks.begin(), gRec.hooks.end(), "svl_filter"));
    EXPECT_EQ(7, std::count(gRec.hooks.begin(), gRec.hooks.end(), "scan_nfy"));
}

TEST_F(SimulatorTest, SmallScenarioAsksItsQuestionsAndReportsInOrder) {
    loadFile("dvbt-small.json");
    scanDvb();

    const std::vector<std::pair<int64_t, int64_t>> nfy = {
        {16, 474000000}, {2, 4 << 16}, {16, 482000000}, {2, (4 << 16) | 3}, {32, (60 << 16) | 1},
        {16, 506000000}, {2, (4 << 16) | 2}, {64, 7}, {16, 530000000}, {2, 4 << 16}, {1, 0}};
    EXPECT_EQ(nfy, gRec.notifications());

    std::vector<Event> maps;
    for (const Event& e : gRec.snapshot()) {
        if (e.what == "maps") maps.push_back(e);
    }
    ASSERT_EQ(5u, maps.size());
    for (const Event& e : maps) EXPECT_EQ(1, e.v[1]) << "tag of x_sb_reg_scan_map";
    EXPECT_EQ("GBR", maps[0].text);  // country from the first bytes of the scan block
    EXPECT_EQ(1, maps[1].v[2]);      // "input": 1 passed as the pointer value
    EXPECT_EQ((std::vector<int64_t>{27, 1, 9018, 4164, 1}), maps[4].v);
    EXPECT_EQ("GBR|BBC ONE London", maps[4].text);

    const auto answers = zelsim::scanMapsAnswers();
    ASSERT_EQ(5u, answers.size());
    EXPECT_EQ(-6, answers[1].status);
    EXPECT_TRUE(answers[2].overrun);  // four bytes written into one
    EXPECT_FALSE(answers[3].overrun);
    ASSERT_EQ(72u, answers[3].output.size());
    EXPECT_EQ(7, answers[3].output[0]);
    EXPECT_EQ(1, answers[3].output[68]);
    EXPECT_EQ(2u, answers[4].outputLen);

    // The monitor plays its own steps without scan notifications; the filter drops the
    // modification that keeps the name.
    HANDLE_T h = open("sb_dvb");
    {
        std::lock_guard<std::mutex> lock(gRec.mu);
        gRec.events.clear();
    }
    SB_DVB_SCAN_DATA_T block = dvbBlock();
    ASSERT_EQ(MWR_OK, x_sb_start_scan(h, &block, nullptr, nullptr, nullptr));
    ASSERT_TRUE(zelsim::waitIdle(kTimeoutMs));
    EXPECT_TRUE(gRec.notifications().empty());
    std::vector<Event> lists;
    for (const Event& e : gRec.snapshot()) {
        if (e.what == "svl" || e.what == "tsl") lists.push_back(e);
    }
    ASSERT_EQ(2u, lists.size());
    EXPECT_EQ((std::vector<int64_t>{4, 4}), lists[0].v);
    EXPECT_EQ("tsl", lists[1].what);
}

TEST_F(SimulatorTest, RecordsOpenDataAndScanBlocksAsLargeAsTheBuilder) {
    char svlName[11] = "fs_Svl_41";
    HANDLE_T dvbs = open("sb_dvbs", svlName);
    memset(svlName, 'x', sizeof(svlName) - 1);  // the library frees its buffer after the call
    HANDLE_T dvb = open("sb_dvb");

    auto opens = zelsim::calls("x_sb_open_builder");
    ASSERT_EQ(2u, opens.size());
    EXPECT_EQ("sb_dvbs", opens[0].text);
    EXPECT_EQ(48u, opens[0].bytes.size());
    EXPECT_EQ(24u, opens[1].bytes.size());
    EXPECT_EQ((std::vector<std::string>{"fs_Svl_41", "/dev", "tuner_ter_dig_0"}), opens[0].strings);
    EXPECT_EQ(1, opens[0].bytes[0]);          // SVL id
    EXPECT_EQ(1, opens[0].bytes[16]);         // flags
    EXPECT_EQ(0x01, opens[0].bytes[20]);      // data source 0x2001, little-endian
    EXPECT_EQ(0x20, opens[0].bytes[21]);
    EXPECT_NE(dvb, dvbs);
    EXPECT_NE(0u, dvb);

    uint8_t block[780];
    for (size_t i = 0; i < sizeof(block); ++i) block[i] = static_cast<uint8_t>(i * 7);
    const std::pair<const char*, size_t> kinds[] = {
        {"sb_dvb", 64}, {"sb_dvbc", 84}, {"sb_dvbcx", 84}, {"sb_cn_dvbc", 84}, {"sb_dvbs", 780},
        {"sb_dtmb", 48}, {"sb_atsc", 8}, {"sb_cqam", 20}, {"sb_isdb", 28}};
    for (const auto& [name, size] : kinds) {
        zelsim::clearCalls();
        HANDLE_T h = open(name);
        ASSERT_EQ(MWR_OK, x_sb_start_scan(h, block, nullptr, nullptr, nullptr)) << name;  // monitor: no steps
        auto starts = zelsim::calls("x_sb_start_scan");
        ASSERT_EQ(1u, starts.size());
        EXPECT_EQ(std::vector<uint8_t>(block, block + size), starts[0].bytes) << name;
        EXPECT_EQ(MWR_OK, x_sb_close_builder(h));
    }
    HANDLE_T none = 1;
    SB_OPEN_DATA_T data{};
    EXPECT_EQ(MWR_NOT_FOUND, x_sb_open_builder("sb_dvbt", &data, nullptr, nullptr, &none, nullptr));
    EXPECT_EQ(MWR_INV_HANDLE, x_sb_start_scan(0, block, nullptr, scanNfy, nullptr));
    EXPECT_EQ(MWR_INV_HANDLE, x_sb_cancel_scan(0));
    EXPECT_EQ(MWR_OK, x_sb_close_builder(dvb));
    EXPECT_EQ(MWR_INV_HANDLE, x_sb_close_builder(dvb));
    EXPECT_EQ(1u, zelsim::openBuilders());

    // Sets record the value bytes, or the value itself for the by-value keys.
    zelsim::clearCalls();
    SB_REGION_KEY_T key{2, 0, {1, 2, 0}};
    uint8_t id = 44;
    EXPECT_EQ(MWR_OK, x_sb_set(dvbs, SB_KEY_TYPE_SELECTED_TARGET_REGION, nullptr, sizeof(key), &key));
    EXPECT_EQ(MWR_OK, x_sb_set(dvbs, SB_KEY_TYPE_SET_LCNV2_CHLIST, nullptr, 1, &id));
    EXPECT_EQ(MWR_OK, x_sb_set(dvbs, SB_KEY_TYPE_SELECTED_LCNV2_CHLIST, nullptr, 1, reinterpret_cast<void*>(44)));
    EXPECT_EQ(MWR_OK, x_sb_set(dvbs, SB_KEY_TYPE_NAME_SORTING_INFO, reinterpret_cast<void*>(3), 1, &id));
    EXPECT_EQ(MWR_INV_HANDLE, x_sb_set(0, SB_KEY_TYPE_FAV_NWL_REC_ID, nullptr, 2, reinterpret_cast<void*>(7)));
    auto sets = zelsim::calls("x_sb_set");
    ASSERT_EQ(5u, sets.size());
    EXPECT_EQ((std::vector<uint8_t>{2, 0, 1, 0, 2, 0, 0, 0}), sets[0].bytes);
    EXPECT_EQ(std::vector<uint8_t>{44}, sets[1].bytes);
    EXPECT_TRUE(sets[2].bytes.empty());
    EXPECT_EQ(44, sets[2].args[4]);
    EXPECT_EQ(3, sets[3].args[2]);  // key info as passed
    EXPECT_EQ(7, sets[4].args[4]);
}

TEST_F(SimulatorTest, RefusedCallsAreRecordedAndDoNothingElse) {
    zelsim::failNext("x_sb_open_builder", MWR_NOT_ALLOWED, 2);
    SB_OPEN_DATA_T data{1, "fs_Svl_0", "/dev", "tuner_ter_dig_0", 1, {0, 0, 0}, 5};
    HANDLE_T h = 0;
    EXPECT_EQ(MWR_NOT_ALLOWED, x_sb_open_builder("sb_dvb", &data, nullptr, nullptr, &h, nullptr));
    EXPECT_EQ(MWR_NOT_ALLOWED, x_sb_open_builder("sb_dvb", &data, nullptr, nullptr, &h, nullptr));
    EXPECT_EQ(0u, h);
    EXPECT_EQ(0u, zelsim::openBuilders());
    EXPECT_EQ(2u, zelsim::calls("x_sb_open_builder").size());
    EXPECT_EQ(MWR_OK, x_sb_open_builder("sb_dvb", &data, nullptr, nullptr, &h, nullptr));
    EXPECT_EQ(3u, zelsim::calls("x_sb_open_builder").size());

    // A key refusal leaves the other keys alone; the first matching refusal wins.
    load(R"({"keys": {"lcn_garbage": {"tv": 1}, "lcnv2_chlists": []}})");
    zelsim::failKey("x_sb_get", SB_KEY_TYPE_LCN_GARBAGE_INFO, MWR_FAIL, 1);
    zelsim::failNext("x_sb_get", MWR_INV_ARG, 1);
    SB_LCN_GARBAGE_INFO_T g{};
    uint32_t len = sizeof(g);
    uint8_t count = 9;
    uint32_t countLen = 1;
    EXPECT_EQ(MWR_INV_ARG, x_sb_get(h, SB_KEY_TYPE_LCNV2_CHLIST_NUM, nullptr, &countLen, &count));
    EXPECT_EQ(9, count);
    EXPECT_EQ(MWR_OK, x_sb_get(h, SB_KEY_TYPE_LCNV2_CHLIST_NUM, nullptr, &countLen, &count));
    EXPECT_EQ(0, count);
    EXPECT_EQ(MWR_FAIL, x_sb_get(h, SB_KEY_TYPE_LCN_GARBAGE_INFO, nullptr, &len, &g));
    EXPECT_EQ(0, g.ui2_tv);
    EXPECT_EQ(MWR_OK, x_sb_get(h, SB_KEY_TYPE_LCN_GARBAGE_INFO, nullptr, &len, &g));
    EXPECT_EQ(1, g.ui2_tv);

    zelsim::failNext("x_mem_alloc", MWR_OUT_OF_MEM);
    const size_t blocks = zelsim::liveAllocations();
    EXPECT_EQ(nullptr, x_mem_alloc(16));
    void* p = x_mem_alloc(16);
    EXPECT_NE(nullptr, p);
    EXPECT_EQ(blocks + 1, zelsim::liveAllocations());
    x_mem_free(p);
    EXPECT_EQ(blocks, zelsim::liveAllocations());

    // The scenario's own list, applied at load.
    loadFile("dvbt-open-refused.json");
    EXPECT_EQ(MWR_FAIL, x_sb_open_builder("sb_dvb", &data, nullptr, nullptr, &h, nullptr));
    loadFile("dvbt-start-refused.json");
    SB_DVB_SCAN_DATA_T block = dvbBlock();
    EXPECT_EQ(MWR_NOT_ALLOWED, x_sb_start_scan(h, &block, &gTag, scanNfy, nullptr));
    EXPECT_TRUE(gRec.notifications().empty());
    EXPECT_EQ(MWR_OK, x_sb_start_scan(h, &block, &gTag, scanNfy, nullptr));
    ASSERT_TRUE(zelsim::waitIdle(kTimeoutMs));
    EXPECT_EQ((std::pair<int64_t, int64_t>{1, 0}), gRec.notifications().back());
}

TEST_F(SimulatorTest, CancelEndsWithReasonFourAndCloseStopsSilently) {
    loadFile("dvbt-cancelled.json");
    HANDLE_T h = open("sb_dvb");
    SB_DVB_SCAN_DATA_T block = dvbBlock();
    ASSERT_EQ(MWR_OK, x_sb_start_scan(h, &block, &gTag, scanNfy, nullptr));
    ASSERT_TRUE(zelsim::waitForLabel("mid-scan", kTimeoutMs));
    EXPECT_EQ(MWR_NOT_ALLOWED, x_sb_start_scan(h, &block, &gTag, scanNfy, nullptr));  // still scanning
    EXPECT_EQ(MWR_OK, x_sb_cancel_scan(h));
    ASSERT_TRUE(zelsim::waitIdle(kTimeoutMs));
    auto nfy = gRec.notifications();
    ASSERT_FALSE(nfy.empty());
    EXPECT_EQ((std::pair<int64_t, int64_t>{SB_REASON_CANCEL, 0}), nfy.back());
    EXPECT_EQ(7u, nfy.size());  // six reports before the label, then the cancel
    EXPECT_EQ(1, std::count_if(nfy.begin(), nfy.end(), [](auto& n) { return n.first == SB_REASON_CANCEL; }));

    // Released, the same scan runs to its end; cancelling afterwards reports nothing.
    ASSERT_EQ(MWR_OK, x_sb_start_scan(h, &block, &gTag, scanNfy, nullptr));
    ASSERT_TRUE(zelsim::waitForLabel("mid-scan", kTimeoutMs));
    zelsim::release("mid-scan");
    ASSERT_TRUE(zelsim::waitIdle(kTimeoutMs));
    EXPECT_EQ(MWR_OK, x_sb_cancel_scan(h));
    nfy = gRec.notifications();
    EXPECT_EQ((std::pair<int64_t, int64_t>{SB_REASON_COMPLETE, 0}), nfy.back());
    EXPECT_EQ((std::pair<int64_t, int64_t>{16, 498000000}), nfy[nfy.size() - 7]);

    // Closed at the label: joined at once, no notification.
    const size_t before = gRec.notifications().size();
    ASSERT_EQ(MWR_OK, x_sb_start_scan(h, &block, &gTag, scanNfy, nullptr));
    ASSERT_TRUE(zelsim::waitForLabel("mid-scan", kTimeoutMs));
    EXPECT_EQ(MWR_OK, x_sb_close_builder(h));
    EXPECT_TRUE(zelsim::waitIdle(0));
    EXPECT_EQ(before + 6, gRec.notifications().size());
    EXPECT_EQ(0u, zelsim::openBuilders());

    // Cancelled from inside its own notification: no deadlock, reason 4 next.
    zelsim::reset();
    zelsim::setTimeScale(0);
    {
        std::lock_guard<std::mutex> lock(gRec.mu);
        gRec.events.clear();
    }
    h = open("sb_dvb");
    {
        std::lock_guard<std::mutex> lock(gRec.mu);
        gRec.cancelOnProgress = h;
    }
    ASSERT_EQ(MWR_OK, x_sb_start_scan(h, &block, &gTag, scanNfy, nullptr));
    ASSERT_TRUE(zelsim::waitIdle(kTimeoutMs));
    const std::vector<std::pair<int64_t, int64_t>> expected = {{16, 482000000}, {2, (3 << 16) | 2}, {4, 0}};
    EXPECT_EQ(expected, gRec.notifications());
}

TEST_F(SimulatorTest, KeysAnswerFromTheScenario) {
    load(R"({"keys": {
        "nwl": {"handle": 77, "version": 5, "records": [{"rec_id": 1, "flags": 2, "name": "NRK Hordaland"},
                                                        {"rec_id": 4, "flags": 0, "name": "RiksTV"}]},
        "lcn_conflict": {"groups": [{"lcn": 3, "channels": [{"svl_rec_id": 3}, {"svl_rec_id": 6}]},
                                    {"lcn": 11, "data": 3, "channels": [{"svl_id": 2, "svl_rec_id": 16},
                                                                        {"svl_rec_id": 17}, {"svl_rec_id": 20}]}]},
        "svc_lcn_info": [[3, 3, 1, 11, 25, 1]],
        "lcnv2_chlists": [{"id": 1, "name": "Danmark"}, {"id": 17, "name": "Regional"}],
        "target_regions": [{"level": 1, "codes": [1], "name": "England"},
                           {"level": 2, "codes": [1, 2], "name": "South East"}],
        "raw": {"90": ["0a00", "0b00"]}}})");
    HANDLE_T h = open("sb_dvb");
    auto get = [&](SB_KEY_TYPE_T key, uintptr_t info, void* out, uint32_t size) {
        uint32_t len = size;
        int32_t st = x_sb_get(h, key, reinterpret_cast<void*>(info), &len, out);
        EXPECT_TRUE(st != MWR_OK || len <= size) << key;
        return st;
    };

    HANDLE_T nwl = 0;
    ASSERT_EQ(MWR_OK, get(SB_KEY_TYPE_NWL_HANDLE, 0, &nwl, 4));
    uint16_t num = 0;
    uint32_t version = 0;
    ASSERT_EQ(MWR_OK, x_nwl_get_num_rec(nwl, &num, &version));
    EXPECT_EQ(2, num);
    EXPECT_EQ(5u, version);
    NWL_REC_T rec{};
    EXPECT_EQ(MWR_NOT_FOUND, x_nwl_get_rec(nwl, 2, &rec, &version));  // a gap in the ids
    ASSERT_EQ(MWR_OK, x_nwl_get_rec(nwl, 4, &rec, &version));
    EXPECT_STREQ("RiksTV", rec.ac_nw_name);
    EXPECT_EQ(MWR_INV_HANDLE, x_nwl_get_num_rec(nwl + 1, &num, &version));

    uint8_t count = 0;
    ASSERT_EQ(MWR_OK, get(SB_KEY_TYPE_LCN_CONFLICT_NUM, 0, &count, 1));
    EXPECT_EQ(2, count);
    SB_LCN_CONFLICT_GROUP_T group{};
    ASSERT_EQ(MWR_OK, get(SB_KEY_TYPE_LCN_CONFLICT_GROUP, 1, &group, sizeof(group)));
    EXPECT_EQ(11, group.ui2_lcn);
    EXPECT_EQ(3, group.ui2_grp_data);
    SB_LCN_CONFLICT_CHANNEL_T ch{};
    ch.ui2_ch_idx = 2;
    ASSERT_EQ(MWR_OK, get(SB_KEY_TYPE_LCN_CONFLICT_CHANNEL, 1, &ch, sizeof(ch)));
    EXPECT_EQ(20, ch.ui2_svl_rec_id);
    EXPECT_EQ(1, ch.ui2_svl_id);
    ch.ui2_ch_idx = 0;
    ASSERT_EQ(MWR_OK, get(SB_KEY_TYPE_LCN_CONFLICT_CHANNEL, 1, &ch, sizeof(ch)));
    EXPECT_EQ(2, ch.ui2_svl_id);
    EXPECT_EQ(16, ch.ui2_svl_rec_id);
    ch.ui2_ch_idx = 2;
    EXPECT_EQ(MWR_NOT_FOUND, get(SB_KEY_TYPE_LCN_CONFLICT_CHANNEL, 0, &ch, sizeof(ch)));
    EXPECT_EQ(MWR_NOT_FOUND, get(SB_KEY_TYPE_LCN_CONFLICT_GROUP, 2, &group, sizeof(group)));
    EXPECT_EQ(MWR_INV_ARG, get(SB_KEY_TYPE_LCN_CONFLICT_GROUP, 0, &group, 5));

    SB_REGION_KEY_T zero{};
    uint16_t regions = 0;
    uint32_t len = 2;
    ASSERT_EQ(MWR_OK, x_sb_get(h, SB_KEY_TYPE_REGION_NUM, &zero, &len, &regions));
    EXPECT_EQ(2, regions);
    SB_REGION_REC_T table[2];
    len = sizeof(table);
    ASSERT_EQ(MWR_OK, x_sb_get(h, SB_KEY_TYPE_REGION_TABLE, &zero, &len, table));
    EXPECT_EQ(84u, len);
    EXPECT_EQ(2, table[1].t_key.ui1_level);
    EXPECT_EQ(2, table[1].t_key.ui2_code[1]);
    EXPECT_STREQ("South East", table[1].ac_name);
    len = sizeof(table) - 1;
    EXPECT_EQ(MWR_INV_ARG, x_sb_get(h, SB_KEY_TYPE_REGION_TABLE, &zero, &len, table));
    EXPECT_EQ(std::vector<uint8_t>(8, 0), zelsim::calls("x_sb_get").back().bytes);  // the key it was given
    EXPECT_EQ(static_cast<int64_t>(sizeof(table) - 1), zelsim::calls("x_sb_get").back().args[3]);

    SB_LCNV2_CHLIST_REC_T list{};
    ASSERT_EQ(MWR_OK, get(SB_KEY_TYPE_LCNV2_CHLIST_INFO, 1, &list, sizeof(list)));
    EXPECT_EQ(17, list.ui1_lcnv2_chlist_id);
    EXPECT_STREQ("Regional", list.ac_name);
    uint16_t raw = 0;
    ASSERT_EQ(MWR_OK, get(90, 1, &raw, 2));
    EXPECT_EQ(0x0b, raw);

    // Not provided, unknown builder, and sets that later gets see.
    SB_LCN_GARBAGE_INFO_T garbage{};
    EXPECT_EQ(MWR_NOT_FOUND, get(SB_KEY_TYPE_LCN_GARBAGE_INFO, 0, &garbage, sizeof(garbage)));
    EXPECT_EQ(MWR_NOT_FOUND, get(SB_KEY_TYPE_QUERY_PREFERED_REGION, 0, &table[0], sizeof(table[0])));
    len = 1;
    EXPECT_EQ(MWR_INV_HANDLE, x_sb_get(0, SB_KEY_TYPE_LCN_CONFLICT_NUM, nullptr, &len, &count));
    SB_LCN_GARBAGE_INFO_T set{4, 5, 6};
    ASSERT_EQ(MWR_OK, x_sb_set(h, SB_KEY_TYPE_SET_LCN_GARBAGE_INFO, nullptr, sizeof(set), &set));
    ASSERT_EQ(MWR_OK, get(SB_KEY_TYPE_LCN_GARBAGE_INFO, 0, &garbage, sizeof(garbage)));
    EXPECT_EQ(5, garbage.ui2_radio);
    SB_SVC_LCN_INFO_T info{{9, 8, 7, 6}, {5, 4}};
    ASSERT_EQ(MWR_OK, x_sb_set(h, SB_KEY_TYPE_SET_SVC_LCN_INFO, reinterpret_cast<void*>(2), sizeof(info), &info));
    SB_SVC_LCN_INFO_T back{};
    ASSERT_EQ(MWR_OK, get(SB_KEY_TYPE_SVC_LCN_INFO, 2, &back, sizeof(back)));
    EXPECT_EQ(0, memcmp(&info, &back, sizeof(info)));
    ASSERT_EQ(MWR_OK, get(SB_KEY_TYPE_SVC_LCN_INFO, 0, &back, sizeof(back)));
    EXPECT_EQ(11, back.aui2_value[3]);
}

TEST_F(SimulatorTest, ListChangesPassEachRegistrationsFilter) {
    HANDLE_T one, two, other, tsl;
    ASSERT_EQ(MWR_OK, c_svl_register_every_notify(1, svlFilter, svlNfy, &gTag, &one));
    ASSERT_EQ(MWR_OK, c_svl_register_every_notify(1, rejectAll, svlNfy, &gTag, &two));
    ASSERT_EQ(MWR_OK, c_svl_register_every_notify(2, nullptr, svlNfy, &gTag, &other));
    ASSERT_EQ(MWR_OK, c_tsl_register_every_notify(1, nullptr, tslNfy, &gTag, &tsl));
    EXPECT_EQ(3u, zelsim::listRegistrations("svl"));

    zelsim::ListChange same{LIST_REASON_RECORD_MOD, 5, {}, {}, true, true};
    strcpy(same.oldRec.ac_name, "BBC TWO");
    same.newRec = same.oldRec;
    same.newRec.ui4_nw_mask = 8;  // not a change the filter reports
    zelsim::ListChange renamed = same;
    renamed.record = 6;
    strcpy(renamed.newRec.ac_name, "BBC TWO HD");
    zelsim::ListChange added{LIST_REASON_RECORD_ADD, 7, {}, {}, false, true};

    zelsim::runListChanges("svl", 1, {same, renamed, added});
    std::vector<Event> notified;
    for (const Event& e : gRec.snapshot()) {
        if (e.what == "svl") notified.push_back(e);
    }
    ASSERT_EQ(1u, notified.size());  // the rejecting registration is not called at all
    EXPECT_EQ((std::vector<int64_t>{4, 6, 1, 7}), notified[0].v);
    EXPECT_EQ("1", notified[0].text);

    zelsim::runListChanges("tsl", 1, {same});
    EXPECT_EQ("tsl", gRec.snapshot().back().what);
    zelsim::runListChanges("svl", 2, {same});
    EXPECT_EQ("2", gRec.snapshot().back().text);  // only the registration of list 2

    EXPECT_EQ(MWR_OK, c_svl_unreg_every_notify(one));
    EXPECT_EQ(MWR_INV_HANDLE, c_svl_unreg_every_notify(one));
    EXPECT_EQ(MWR_INV_HANDLE, c_svl_unreg_every_notify(tsl));  // a TSL registration
    EXPECT_EQ(2u, zelsim::listRegistrations("svl"));
    const size_t before = gRec.snapshot().size();
    zelsim::runListChanges("svl", 1, {renamed});
    EXPECT_EQ(before, gRec.snapshot().size());  // only the rejecting one is left
}

bool gFreeAnswer = true;
std::vector<int64_t> gFreed;
MW_BOOL freeFct(HANDLE_T h, HANDLE_TYPE_T type, void* obj, void* tag, MW_BOOL req) {
    gFreed = {h, type, req, obj == &gTag, tag == nullptr};
    return gFreeAnswer;
}
jobject lookup(JNIEnv*, HANDLE_T) { return nullptr; }

TEST_F(SimulatorTest, HandlesOutliveResetAndAskTheirOwnerBeforeFreeing) {
    HANDLE_T a = 0, b = 0;
    ASSERT_EQ(MWR_OK, handle_alloc(194, &gTag, nullptr, freeFct, &a));
    ASSERT_EQ(MWR_OK, handle_alloc(194, nullptr, nullptr, nullptr, &b));
    EXPECT_NE(0u, a);
    EXPECT_GT(b, a);
    ASSERT_EQ(MWR_OK, x_orvella_filter_register_get_pipeline_obj(lookup));
    EXPECT_EQ(&lookup, zelsim::pipelineLookup());

    zelsim::reset();
    EXPECT_EQ(nullptr, zelsim::pipelineLookup());
    void* obj = nullptr;
    ASSERT_EQ(MWR_OK, handle_get_obj(a, &obj));
    EXPECT_EQ(&gTag, obj);

    gFreeAnswer = false;
    EXPECT_EQ(MWR_NOT_ALLOWED, x_handle_free(a));
    EXPECT_EQ((std::vector<int64_t>{a, 194, 1, 1, 1}), gFreed);
    EXPECT_EQ(MWR_OK, handle_get_obj(a, &obj));
    gFreeAnswer = true;
    EXPECT_EQ(MWR_OK, x_handle_free(a));
    EXPECT_EQ(MWR_INV_HANDLE, handle_get_obj(a, &obj));
    EXPECT_EQ(MWR_INV_HANDLE, x_handle_free(a));
    EXPECT_EQ(MWR_OK, x_handle_free(b));
    EXPECT_EQ(4u, zelsim::calls("x_handle_free").size());
}

}  // namespace
