// Every middleware call of a standard's scan lifecycle refused in turn: the process lives,
// nothing hangs, the natives answer the statuses a refusal of that call gives, and threads,
// descriptors, JNI global references and the middleware's handles, allocations, list
// registrations and builders are given back. FaultSweep runs one call per function and
// site for each standard; FullFaultSweep (label "full-sweep", scripts/sweep.sh) runs every
// call and prints the table of outcomes.
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine_util.h"
#include "fault_sweep.h"
#include "scan_test_util.h"
#include "jvm_harness.h"
#include "zel_sim.h"

namespace {

using sweep::MiddlewareCall;
using sweep::Resources;
using sweep::Standard;
using Strings = std::vector<std::string>;

constexpr const char* kApplication = "com/brinova/tv/orvella/testsupport/SweepApplication";

// A row per standard and scenario: configuration, the extensions an application adds (in
// this order), and the scenario the builder plays.
const std::vector<const char*> kTerrestrialExtensions = {
    "favourite network", "lcn conflict", "name sorting", "target region", "lcn v2"};
const std::vector<const char*> kInstallationExtensions = {
    "lnb detection", "satellite detection", "transponder detection", "mdu", "network",
    "bouquet", "associated list", "satellite search", "region list"};
const Standard kStandards[] = {
    {"dvbt_favourite_network", "dvbt", kTerrestrialExtensions, "dvbt-favourite-network.json"},
    {"dvbt_target_region", "dvbt", kTerrestrialExtensions, "dvbt-target-region.json"},
    {"dvbt_lcn_conflict", "dvbt", kTerrestrialExtensions, "dvbt-lcn-conflict.json"},
    {"dvbt_lcn_v2", "dvbt", kTerrestrialExtensions, "dvbt-lcnv2.json"},
    {"dvbt_cancelled", "dvbt cancelled", kTerrestrialExtensions, "dvbt-cancelled.json"},
    {"dvbt_monitored", "dvbt monitored", kTerrestrialExtensions, "dvbt-small.json"},
    {"dvbc_austria", "dvbc", {}, "dvbc-austria.json"},
    {"dvbc_china", "dvbc china", {}, "dvbc-china.json"},
    {"dtmb_beijing", "dtmb", {}, "dtmb-auto.json"},
    {"dtmb_manual", "dtmb manual", {}, "dtmb-manual.json"},
    {"atsc_washington", "atsc", {}, "atsc-washington.json"},
    {"cqam_standard_plan", "cqam", {}, "cqam-std.json"},
    {"isdb_sao_paulo", "isdb", {}, "isdb-sao-paulo.json"},
    {"dvbs_astra_19e", "dvbs", {}, "dvbs-astra-19e.json"},
    {"dvbs_single_satellite", "dvbs satellite", {}, "dvbs-turksat-42e.json"},
    {"dvbs_fastscan", "dvbs", {"fastscan"}, "dvbs-fastscan.json"},
    {"dvbs_tkgs", "dvbs", {"tkgs"}, "dvbs-tkgs.json", false},
    {"dvbs_hd_plus", "dvbs", {"hd plus"}, "dvbs-hdplus.json"},
    {"dvbs_installation", "dvbs install", kInstallationExtensions, "dvbs-installation.json"},
};

// What a refusal changes in the application's steps: the statuses of the steps named (see
// names() for the patterns), and steps that no longer happen.
struct Change {
    const char* step;
    const char* status;  // null: the step does not happen
};

struct StatusRule {
    const char* fn;
    const char* site;
    std::vector<Change> changes;
};

// Without a scan nothing is cancelled or monitored afterwards.
const std::vector<Change> kNoScan = {
    {"cancel", nullptr}, {"end", nullptr}, {"* monitor", nullptr}, {"monitor *", nullptr}};
std::vector<Change> operator+(std::vector<Change> a, const std::vector<Change>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}
const std::vector<Change> kNoBuilder =
    std::vector<Change>{{"configure", "-22"}, {"start", "-22"}, {"close", "-38"}} + kNoScan;
// The engine's answers to a refused call; every other refusal leaves every status as in the
// clean run (it is logged, or the extension answers it with -6 inside the user's choice).
const StatusRule kStatusRules[] = {
    // No pipeline handle: configure refuses, nothing is ever configured.
    {"handle_alloc", "setup",
     std::vector<Change>{{"configure", "-22"}, {"add *", "-22"}, {"start", "-22"}, {"close", "-38"}} +
         kNoScan},
    // No builder: extensions are listed but never attached; start and close find handle 0.
    {"x_sb_open_builder", "configure", kNoBuilder},
    {"x_mem_alloc", "configure", kNoBuilder},
    // The builder stays open without the scan map; the scan runs unanswered.
    {"x_sb_reg_scan_map", "configure", {{"configure", "-22"}}},
    {"x_sb_start_scan", "start", std::vector<Change>{{"start", "-22"}} + kNoScan},
    // The monitor's start and stop answer a refusal with -22.
    {"x_sb_start_scan", "start monitor", {{"start monitor", "-22"}, {"monitor *", nullptr}}},
    {"x_sb_cancel_scan", "stop monitor", {{"stop monitor", "-22"}}},
    // Without its registration the monitor's transport-stream change reaches nobody.
    {"c_tsl_register_every_notify", "configure", {{"monitor transport_streams", "0"}}},
    {"x_sb_close_builder", "close", {{"close", "-38"}}},
    // A refused cancel leaves the scan waiting half-way; the application closes it.
    {"x_sb_cancel_scan", "cancel", {{"cancel", "-38"}, {"end", nullptr}}},
};

// Refusals that end the process by design: the list callbacks assert on a failed
// allocation, with this condition.
struct Crash {
    const char* fn;
    const char* site;
    const char* assertion;  // a regular expression
};
const Crash kCrashes[] = {
    {"x_mem_alloc", "builder thread", "!\\(event(Type|Record) != __null\\)"},
};

// What a refused key changes in the user's choices ("favourite network 1 0"): the choice
// that begins with `decision` ends with `now` instead (a refused write answers -6, a refused
// read leaves nothing to write back).
struct DecisionRule {
    const char* fn;
    int64_t key;
    const char* decision;
    const char* now;
};
const DecisionRule kDecisionRules[] = {
    {"x_sb_set", 19, "favourite network", "-6"},
    {"x_sb_set", 30, "target region", "-6"},
    {"x_sb_set", 28, "channel list", "-6"},
    {"x_sb_set", 81, "garbage info", "-6"},
    {"x_sb_get", 80, "garbage info", "missing"},
    {"x_sb_set", 79, "service lcn", "-6"},  // the number of services goes first
    {"x_sb_set", 83, "service lcn", "-6"},
};

const DecisionRule* decisionRuleFor(const MiddlewareCall& call) {
    if (call.site.compare(0, 12, "event thread") != 0) return nullptr;
    for (const DecisionRule& rule : kDecisionRules) {
        if (call.fn == rule.fn && call.key == rule.key) return &rule;
    }
    return nullptr;
}

// Refusals whose result the library does not look at or that end a read without a line: a
// refusal survived without a new log line must be one of these.
struct Silent {
    const char* fn;
    const char* site;  // the site, or the beginning of it
    int64_t key;       // -1: any
};
const Silent kSilentByDesign[] = {
    {"x_handle_free", "release", -1},  // the destructor frees the pipeline handle
    {"x_orvella_filter_register_get_pipeline_obj", "setup", -1},
    {"x_sb_set", "add target region", 77},  // the preselected region, set at attach
    // The decisions' reads and tables: a refused one ends the walk or the fetch, or answers
    // -6 to Java's read.
    {"x_sb_get", "event thread", -1},
    {"x_mem_alloc", "event thread", -1},
    {"x_nwl_get_num_rec", "event thread", -1},
    {"x_nwl_get_rec", "event thread", -1},
};

bool silentByDesign(const MiddlewareCall& call) {
    for (const Silent& s : kSilentByDesign) {
        if (call.fn == s.fn && call.site.compare(0, strlen(s.site), s.site) == 0 &&
            (s.key < 0 || s.key == call.key)) {
            return true;
        }
    }
    return false;
}

// Refusals that ended the process until fixed.
struct Fixed {
    const char* fn;
    const char* site;
};
const Fixed kFixedRefusals[] = {
    // The SVL name was cleared through the null of the refused allocation.
    {"x_mem_alloc", "configure"},
    // The favourite-network table likewise, before the allocation was tested.
    {"x_mem_alloc", "event thread after x_sb_get(76)"},
};

template <typename Rows>
const auto* ruleFor(const Rows& rows, const MiddlewareCall& call) {
    for (const auto& row : rows) {
        if (call.fn == row.fn && call.site == row.site) return &row;
    }
    return static_cast<decltype(&*std::begin(rows))>(nullptr);
}

// A pattern ending in '*' names every step that begins so, one beginning with '*' every step
// that ends so.
bool names(const char* pattern, const std::string& step) {
    std::string p(pattern);
    if (!p.empty() && p.back() == '*') return step.compare(0, p.size() - 1, p, 0, p.size() - 1) == 0;
    if (!p.empty() && p.front() == '*') {
        return step.size() >= p.size() - 1 && step.compare(step.size() - (p.size() - 1), p.size() - 1, p, 1) == 0;
    }
    return step == p;
}

// The choices a refused call leaves, or false when what it changes is not foreseen: a refused
// read on the event thread changes what the user is offered.
bool expectedDecisions(const Strings& clean, const MiddlewareCall& call, const StatusRule* rule,
                       Strings* out) {
    *out = clean;
    if (const DecisionRule* change = decisionRuleFor(call)) {
        const std::string prefix = std::string(change->decision) + " ";
        for (std::string& d : *out) {
            if (d.compare(0, prefix.size(), prefix) == 0) d = d.substr(0, d.rfind(' ') + 1) + change->now;
        }
        return true;
    }
    if (call.site.compare(0, 12, "event thread") == 0) return false;
    bool scans = true;  // a refusal that stops the scan leaves nothing to choose
    for (const Change& c : rule != nullptr ? rule->changes : std::vector<Change>{}) {
        scans = scans && !(std::string(c.step) == "end" && c.status == nullptr);
    }
    if (!scans) out->clear();
    return true;
}

// The clean run's steps with the rule's changes made.
Strings expectedSteps(const Strings& clean, const StatusRule* rule) {
    if (rule == nullptr) return clean;
    Strings out;
    for (const std::string& step : clean) {
        const size_t space = step.rfind(' ');
        const std::string name = space == std::string::npos || step == "end" ? step : step.substr(0, space);
        const Change* change = nullptr;
        for (const Change& c : rule->changes) {
            if (names(c.step, name)) change = &c;
        }
        if (change == nullptr) out.push_back(step);
        else if (change->status != nullptr) out.push_back(name + " " + change->status);
    }
    return out;
}

std::string join(const Strings& items) {
    std::string out;
    for (const std::string& item : items) out += (out.empty() ? "" : ", ") + item;
    return out;
}

enum Outcome { kAsSpecified, kSurvived, kIgnored, kFixed, kPrescribedCrash, kOutcomes };
const char* const kOutcomeNames[kOutcomes] = {"status as specified", "logged and survived",
                                              "ignored and survived", "fixed", "prescribed crash"};

class FaultSweep : public harness::JvmTest, public ::testing::WithParamInterface<Standard> {
protected:
    void SetUp() override {
        harness::JvmTest::SetUp();
        // Every line: a refusal that is survived must have been logged (or be one whose
        // result the library ignores by design).
        harness::setProperty("vendor.zel.broadcast.log.level", "V");
        // Classes, the JVMTI environment and the library's first-use state settle in a
        // first run, so that the baseline does not count them.
        warm_ = sweep::runLifecycle(GetParam(), nullptr);
        ASSERT_TRUE(warm_.error.empty()) << warm_.error;
        const Resources before = settled();
        clean_ = sweep::runLifecycle(GetParam(), nullptr);
        baseline_ = settled();
        cleanAllocations_ = baseline_.allocations - before.allocations;
        cleanGlobalRefs_ = baseline_.globalRefs - before.globalRefs;
        cleanRegistrations_ = baseline_.registrations;
        cleanBuilders_ = baseline_.builders;
        ASSERT_TRUE(clean_.error.empty()) << clean_.error;
        ASSERT_FALSE(clean_.calls.empty());
        ASSERT_GE(baseline_.globalRefs, 0) << "no JVMTI environment to count global references";
        // The scan reached the satellite extensions: at least one heard the builder.
        bool heard = clean_.heard.empty();
        for (const std::string& line : clean_.heard) heard = heard || line.back() != ':';
        EXPECT_TRUE(heard) << "no extension heard the builder: " << join(clean_.heard);
        EXPECT_EQ(clean_.scanMapsMismatches, Strings{});
    }

    // The VM's own threads hold global references for a moment now and then: the fewest
    // of a few measurements is what the process keeps.
    static Resources settled() {
        Resources r = sweep::measure();
        for (int i = 0; i < 4; ++i) {
            harness::collectGarbage();
            r.globalRefs = std::min(r.globalRefs, sweep::measure().globalRefs);
        }
        return r;
    }

    // Refuses `call`, checks the run, and answers its outcome.
    Outcome sweepOne(const MiddlewareCall& call);
    void checkResources(const MiddlewareCall& call);
    bool logged(const sweep::Run& run) const;
    void sweepAll(const std::vector<MiddlewareCall>& calls);

    sweep::Run warm_;
    sweep::Run clean_;
    Resources baseline_;
    // What a clean run keeps by design: extensions are never destroyed, so their class
    // references stay, and so do their last tables.
    size_t cleanAllocations_ = 0;
    int cleanGlobalRefs_ = 0;
    size_t cleanRegistrations_ = 0;
    size_t cleanBuilders_ = 0;
};

// One call per function and site (and key): the representative subset.
std::vector<MiddlewareCall> representative(const std::vector<MiddlewareCall>& calls) {
    std::vector<MiddlewareCall> out;
    std::map<std::string, bool> seen;
    for (const MiddlewareCall& c : calls) {
        const std::string kind = c.fn + "|" + c.site + "|" + std::to_string(c.key);
        if (!seen[kind]) out.push_back(c);
        seen[kind] = true;
    }
    return out;
}

Outcome FaultSweep::sweepOne(const MiddlewareCall& call) {
    SCOPED_TRACE("refusing " + call.name());
    if (ruleFor(kCrashes, call) != nullptr) return kPrescribedCrash;
    sweep::Run run = sweep::runLifecycle(GetParam(), &call);
    EXPECT_TRUE(run.error.empty()) << run.error;
    // The same call was refused: the lifecycle is deterministic up to it.
    bool found = false;
    for (const MiddlewareCall& c : run.calls) {
        if (c.fn == call.fn && c.nth == call.nth) {
            EXPECT_EQ(c.name(), call.name());
            found = true;
        }
    }
    EXPECT_TRUE(found) << "the refused call was not made";
    const StatusRule* rule = ruleFor(kStatusRules, call);
    EXPECT_EQ(run.steps, expectedSteps(clean_.steps, rule));
    // Without the scan map registered the builder's questions go unanswered; every other
    // refusal leaves each answer's status as the builder expects it.
    if (call.fn != "x_sb_reg_scan_map") {
        EXPECT_EQ(run.scanMapsMismatches, Strings{});
    }
    Strings decisions;
    if (expectedDecisions(clean_.decisions, call, rule, &decisions)) {
        EXPECT_EQ(run.decisions, decisions);
    }
    EXPECT_EQ(run.reachable, Strings{}) << "objects still reachable after release";
    checkResources(call);
    if (ruleFor(kFixedRefusals, call) != nullptr) return kFixed;
    if (expectedSteps(clean_.steps, rule) != clean_.steps || decisionRuleFor(call) != nullptr) {
        return kAsSpecified;
    }
    if (logged(run)) return kSurvived;
    EXPECT_TRUE(silentByDesign(call)) << "survived without a line";
    return kIgnored;
}

// The refused run logged a line that the clean run did not.
// (The event thread's "clear all event." depends on what is still queued when it is told to
// end: timing, not the refusal.)
bool FaultSweep::logged(const sweep::Run& run) const {
    for (const std::string& line : run.logs) {
        if (clean_.logs.count(line) == 0 && warm_.logs.count(line) == 0 &&
            line.find("clear all event.") == std::string::npos) {
            return true;
        }
    }
    return false;
}

void FaultSweep::checkResources(const MiddlewareCall& call) {
    Resources now = sweep::measure();
    // The VM's own threads may hold a global reference for a moment: measured again before
    // a surplus counts.
    for (int i = 0; i < 20 && now.globalRefs > baseline_.globalRefs + cleanGlobalRefs_; ++i) {
        harness::collectGarbage();
        now = sweep::measure();
    }
    // A thread just joined may still be listed for a moment (longer under the sanitizers).
    // A thread left behind is one more; one fewer is a VM thread that was still unnamed
    // when the baseline was taken on a busy machine, and that is no fault of ours.
    for (int i = 0; i < 200 && now.threads > baseline_.threads; ++i) {
        usleep(10000);
        now = sweep::measure();
    }
    EXPECT_LE(now.threads, baseline_.threads) << now.describe();
    EXPECT_EQ(now.descriptors, baseline_.descriptors) << now.describe();
    // No more kept than a clean run keeps by design.
    EXPECT_LE(now.globalRefs, baseline_.globalRefs + cleanGlobalRefs_) << now.describe();
    EXPECT_LE(now.allocations, baseline_.allocations + cleanAllocations_) << now.describe();
    // The middleware keeps what it refused to free, unregister or close. (Registrations
    // and builders are forgotten by the simulator before each run; handles are not.)
    const bool unreg = call.fn.find("_unreg_every_notify") != std::string::npos;
    EXPECT_LE(now.registrations, cleanRegistrations_ + (unreg ? 1 : 0)) << now.describe();
    EXPECT_LE(now.builders, cleanBuilders_ + (call.fn == "x_sb_close_builder" ? 1 : 0))
        << now.describe();
    EXPECT_EQ(now.handles, baseline_.handles + (call.fn == "x_handle_free" ? 1 : 0))
        << now.describe();
    baseline_ = now;
}

void FaultSweep::sweepAll(const std::vector<MiddlewareCall>& calls) {
    int counts[kOutcomes] = {};
    std::map<std::string, std::pair<int, Outcome>> sites;
    for (const MiddlewareCall& call : calls) {
        Outcome o = sweepOne(call);
        ++counts[o];
        auto& site = sites[call.fn + (call.key >= 0 ? "(" + std::to_string(call.key) + ")" : "") +
                           " at " + call.site];
        site.first++;
        site.second = o;
        if (HasFatalFailure()) return;
    }
    printf("fault sweep clean run: %s: %s; scan-maps answers %zu; decisions: %s; heard: %s\n",
           GetParam().name, join(clean_.steps).c_str(), clean_.scanMapsAnswers,
           join(clean_.decisions).c_str(), join(clean_.heard).c_str());
    printf("fault sweep table: %s: %zu calls swept", GetParam().name, calls.size());
    for (int o = 0; o < kOutcomes; ++o) printf(", %s %d", kOutcomeNames[o], counts[o]);
    printf("\n");
    for (const auto& [site, what] : sites) {
        printf("fault sweep site: %s: %s x%d: %s\n", GetParam().name, site.c_str(), what.first,
               kOutcomeNames[what.second]);
    }
    fflush(stdout);
}

TEST_P(FaultSweep, OneCallOfEachKindRefused) { sweepAll(representative(clean_.calls)); }

using FullFaultSweep = FaultSweep;
using KeptByTheMiddleware = harness::JvmTest;

TEST_P(FullFaultSweep, EveryCallRefused) { sweepAll(clean_.calls); }

using FaultSweepDeathTest = FaultSweep;

// Each refusal that ends the process by design does so with its assertion; the first two
// calls of each such site are run (a list callback's two arrays).
TEST_P(FaultSweepDeathTest, RefusalsThatEndTheProcess) {
    std::map<std::string, int> seen;
    int run = 0;
    for (const MiddlewareCall& call : clean_.calls) {
        const Crash* crash = ruleFor(kCrashes, call);
        if (crash == nullptr || seen[call.fn + call.site]++ >= 2) continue;
        EXPECT_DEATH(sweep::runLifecycle(GetParam(), &call), crash->assertion) << call.name();
        ++run;
    }
    EXPECT_GT(run, 0) << "no list change was reported";
}

// A list registration the middleware refused to give back outlives the released engine:
// its changes, delivered later, must not reach the engine's freed memory (under the
// sanitizers a use after free ends the test) nor any Java object.
TEST_F(KeptByTheMiddleware, ListRegistrationOutlivingTheEngine) {
    const Standard& row = kStandards[0];
    sweep::Run clean = sweep::runLifecycle(row, nullptr);
    for (const MiddlewareCall& call : clean.calls) {
        if (call.fn != "c_svl_unreg_every_notify") continue;
        sweep::Run refused = sweep::runLifecycle(row, &call);
        EXPECT_EQ(refused.reachable, Strings{});
        ASSERT_EQ(zelsim::listRegistrations("svl"), 1u) << "the refused registration is kept";
        harness::Logs::clear();
        harness::logEverything();
        zelsim::ListChange change{};
        change.type = 1;
        change.record = 7;
        zelsim::runListChanges("svl", 1, {change});
        // Delivered as with no tag: logged, no Java call.
        EXPECT_EQ(harness::Logs::containing("ZEL_MW", "ui2_svl_id = 1, ui4_nfy_count = 1").size(), 1u);
        EXPECT_TRUE(harness::Logs::containing("ZEL_MW", "mObject=0x").empty());
        return;
    }
    FAIL() << "the lifecycle unregisters no service list";
}

// A builder the middleware refused to close, even again at release, outlives the engine and
// the configuration that Java released after it: a scan notification or a scan-maps
// question it sends later must reach neither freed object (under the sanitizers a use after
// free ends the test).
TEST_F(KeptByTheMiddleware, BuilderOutlivingTheEngineAndTheConfiguration) {
    zelsim::reset();
    zelsim::setTimeScale(0);
    std::string error;
    ASSERT_TRUE(zelsim::loadScenarioFile(ORVELLA_SOURCE_DIR "/scenarios/dvbt-small.json", &error)) << error;
    jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
    scantest::Engine e = scantest::Engine::create();
    ASSERT_EQ(e.configure(config, 1), 0);
    ASSERT_EQ(e.native("nativeStart"), 0);
    ASSERT_TRUE(e.awaitEnds(1));
    zelsim::failNext("x_sb_close_builder", MWR_FAIL, -1);
    EXPECT_EQ(e.native("nativeClose"), -38);
    EXPECT_EQ(e.native("nativeRelease"), 0);
    EXPECT_EQ(harness::callInt(config, harness::methodOf(config, "nativeRelease", "()I")), 0);
    ASSERT_EQ(zelsim::openBuilders(), 1u) << "the refused builder is kept";
    std::vector<std::string> callbacks;
    zelsim::setCallbackHook([&callbacks](const char* what) { callbacks.push_back(what); });
    harness::Logs::clear();
    harness::logEverything();
    zelsim::runScanNotify(zelsim::calls("x_sb_close_builder").back().args[0], SB_REASON_PROGRESS, 3);
    zelsim::ScanMapsAnswer answer = zelsim::runScanMaps("sb_dvb", 0, "GBR", {}, 4);
    zelsim::setCallbackHook(nullptr);
    EXPECT_EQ(callbacks, (Strings{"scan_nfy", "scan_maps"}));
    // Answered as with no tag: 0, nothing written, no Java call.
    EXPECT_EQ(answer.status, 0);
    EXPECT_EQ(harness::Logs::containing(
                  "mdbgin_ZelTvDvbtScanConfig_JNI",
                  "_native_sb_dvb_scan_maps_notify, pv_tag(native config instance) is NULL!")
                  .size(),
              1u);
    EXPECT_EQ(answer.output, std::vector<uint8_t>(4, 0));
}

// The same question reaches every standard's scan-maps function with the tag of a
// configuration released since: answered as with no tag.
TEST_F(KeptByTheMiddleware, ScanMapsTagOfAReleasedConfigurationOfEveryStandard) {
    JNIEnv* env = harness::env();
    jclass app = harness::findClass(kApplication);
    jmethodID make = env->GetStaticMethodID(app, "configuration",
                                            "(Ljava/lang/String;)Lcom/brinova/tv/orvella/services/scan/ZelTvScanConfig;");
    ASSERT_NE(make, nullptr);
    for (const char* key : {"dvbt", "dvbc", "dvbc china", "dtmb", "atsc", "cqam", "isdb", "dvbs",
                            "dvbs satellite"}) {
        SCOPED_TRACE(key);
        zelsim::reset();
        jstring name = env->NewStringUTF(key);
        jobject config = env->CallStaticObjectMethod(app, make, name);
        ASSERT_FALSE(env->ExceptionCheck());
        auto* native = reinterpret_cast<android::JINativeScanConfig*>(static_cast<uintptr_t>(
            harness::callLong(config, harness::methodOf(config, "getNativeConfig", "()J"))));
        ASSERT_NE(native, nullptr);
        const std::string builder = native->getSbEbEngineName();
        auto function = reinterpret_cast<x_sb_scan_maps_fct>(native->getSbScanMapsNotify());
        EXPECT_EQ(harness::callInt(config, harness::methodOf(config, "release", "()I")), 0);
        ASSERT_EQ(x_sb_reg_scan_map(builder.c_str(), function, native), MWR_OK);
        harness::Logs::clear();
        harness::logEverything();
        zelsim::ScanMapsAnswer answer = zelsim::runScanMaps(builder, 0, "GBR", {}, 4);
        EXPECT_EQ(answer.status, 0);
        int nullTag = 0;
        for (const harness::LogLine& line : harness::Logs::lines()) {
            nullTag += line.text.find("pv_tag(native config instance) is NULL!") != std::string::npos;
        }
        EXPECT_EQ(nullTag, 1);
        EXPECT_EQ(answer.output, std::vector<uint8_t>(4, 0));
        env->DeleteLocalRef(config);
        env->DeleteLocalRef(name);
    }
    env->DeleteLocalRef(app);
}

std::string nameOf(const ::testing::TestParamInfo<Standard>& info) { return info.param.name; }

INSTANTIATE_TEST_SUITE_P(Standards, FaultSweep, ::testing::ValuesIn(kStandards), nameOf);
INSTANTIATE_TEST_SUITE_P(Standards, FullFaultSweep, ::testing::ValuesIn(kStandards), nameOf);
// The rows whose scans report list changes (whose list callbacks allocate).
std::vector<Standard> withListChanges() {
    std::vector<Standard> out;
    for (const Standard& row : kStandards) {
        if (row.listChanges) out.push_back(row);
    }
    return out;
}

INSTANTIATE_TEST_SUITE_P(Standards, FaultSweepDeathTest, ::testing::ValuesIn(withListChanges()),
                         nameOf);

}  // namespace
