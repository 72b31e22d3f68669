// The simulator's process-wide state: call record, refusals, handles and the scenario.
#include "sim_state.h"

#include "SbDvbsScanParams.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <sstream>

namespace zelsim::detail {

namespace {

const BuilderKind kBuilderKinds[] = {
    {"sb_dvb", true, sizeof(SB_OPEN_DATA_T), sizeof(SB_DVB_SCAN_DATA_T)},
    {"sb_dvbc", false, sizeof(SB_OPEN_DATA_T), sizeof(SB_DVBC_SCAN_DATA_T)},
    {"sb_dvbs", false, sizeof(SB_DVBS_OPEN_DATA_T), sizeof(SB_DVBS_SCAN_PARAMS)},
    {"sb_cn_dvbc", false, sizeof(SB_OPEN_DATA_T), sizeof(SB_DVBC_SCAN_DATA_T)},
    {"sb_dtmb", false, sizeof(SB_OPEN_DATA_T), sizeof(SB_DTMB_SCAN_DATA_T)},
    {"sb_atsc", false, sizeof(SB_OPEN_DATA_T), sizeof(SB_ATSC_SCAN_DATA_T)},
    {"sb_cqam", false, sizeof(SB_OPEN_DATA_T), sizeof(SB_CQAM_SCAN_DATA_T)},
    {"sb_isdb", false, sizeof(SB_OPEN_DATA_T), sizeof(SB_ISDB_SCAN_DATA_T)},
};

// Handles are never reused, not even across reset(): the library may still hold one.
std::atomic<HANDLE_T> gNextHandle{0x1001};

}  // namespace

const BuilderKind* builderKind(const char* name) {
    if (name == nullptr) return nullptr;
    for (const BuilderKind& k : kBuilderKinds) {
        const size_t len = strlen(k.name);
        if (k.exact ? strcmp(name, k.name) == 0 : strncmp(name, k.name, len) == 0) return &k;
    }
    return nullptr;
}

Sim& Sim::get() {
    static Sim* sim = new Sim();  // never destroyed: see the header
    return *sim;
}

Sim::Sim() {
    if (const char* scale = getenv("ZEL_SIM_TIME_SCALE")) {
        char* end = nullptr;
        double v = strtod(scale, &end);
        if (end != scale && v >= 0) timeScale = v;
        else (void)fprintf(stderr, "zel_sim: ignoring ZEL_SIM_TIME_SCALE=%s\n", scale);
    }
}

HANDLE_T Sim::newHandle() { return gNextHandle++; }

namespace {
thread_local bool tOnSimThread = false;
}  // namespace

void markSimThread() { tOnSimThread = true; }

std::optional<int32_t> Sim::admit(Call call, std::optional<uint32_t> key) {
    call.simThread = tOnSimThread;
    call.thread = static_cast<int64_t>(syscall(SYS_gettid));
    std::lock_guard<std::mutex> lock(mu);
    checkEnvScenarioLocked();
    std::optional<int32_t> refused;
    for (auto it = refusals.begin(); it != refusals.end(); ++it) {
        if (it->fn != call.fn || (it->key && (!key || *it->key != *key))) continue;
        if (it->skip > 0) {
            --it->skip;
            continue;
        }
        refused = it->status;
        if (it->count > 0 && --it->count == 0) refusals.erase(it);
        break;
    }
    calls.push_back(std::move(call));
    return refused;
}

void Sim::afterCallback(const char* what) {
    std::function<void(const char*)> h;
    {
        std::lock_guard<std::mutex> lock(mu);
        h = hook;
    }
    if (h) h(what);
}

void Sim::installLocked(std::shared_ptr<const Scenario> sc) {
    scenario = std::move(sc);
    keys = scenario ? scenario->keys : KeyData{};
    if (scenario) refusals.insert(refusals.end(), scenario->refusals.begin(), scenario->refusals.end());
}

std::shared_ptr<const Scenario> Sim::currentLocked() const {
    return scenario ? scenario : defaultScenario();
}

void Sim::checkEnvScenarioLocked() {
    if (envScenarioChecked) return;
    envScenarioChecked = true;
    const char* path = getenv("ZEL_SIM_SCENARIO");
    if (path == nullptr || *path == '\0' || scenario) return;
    std::ifstream in(path);
    std::stringstream text;
    text << in.rdbuf();
    std::string error = "cannot read the file";
    auto sc = in ? parseScenario(text.str(), &error) : nullptr;
    if (!sc) {
        // A scan the user did not ask for would pass for the one named: stop here instead.
        (void)fprintf(stderr, "zel_sim: scenario %s (ZEL_SIM_SCENARIO) does not load: %s\n", path, error.c_str());
        (void)fflush(stderr);
        _exit(kScenarioNotLoaded);
    }
    installLocked(sc);
}

}  // namespace zelsim::detail
