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

// A scenario named in the environment that does not load ends the process, naming the
// file, the place in it and the reason, instead of playing the built-in scan.
TEST_F(SimulatorTest, NamedScenarioThatDoesNotLoadEndsTheProcess) {
    const std::string path = ::testing::TempDir() + "bogus-step.json";
    FILE* f = fopen(path.c_str(), "w");
    ASSERT_NE(f, nullptr);
    fputs(R"({"scan": [{"freq": 474000000}, {"bogus": 1}]})", f);
    fclose(f);
    auto useNamed = [](const std::string& file) {
        setenv("ZEL_SIM_SCENARIO", file.c_str(), 1);
        zelsim::reset();
        HANDLE_T h = 0;
        handle_alloc(1, nullptr, nullptr, nullptr, &h);
        unsetenv("ZEL_SIM_SCENARIO");
        exit(0);
    };
    EXPECT_EXIT(useNamed(path), ::testing::ExitedWithCode(zelsim::kScenarioNotLoaded),
                "bogus-step.json.*scan\\[1\\]: unknown step kind \"bogus\"");
    EXPECT_EXIT(useNamed(scenarioPath("no-such.json")),
                ::testing::ExitedWithCode(zelsim::kScenarioNotLoaded), "no-such.json.*cannot read");
    EXPECT_EXIT(useNamed(scenarioPath("dvbt-small.json")), ::testing::ExitedWithCode(0), "");
    remove(path.c_str());
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

}  // namespace
