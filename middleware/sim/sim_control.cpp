// The simulator's control side (zel_sim.h): scenarios, refusals, the call record, and
// single callbacks run on a simulator thread for tests.
#include <string.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <sstream>

#include "scenario_parse.h"
#include "sim_state.h"

namespace zelsim {

using detail::ChangeSpec;
using detail::ListKind;
using detail::Refusal;
using detail::Run;
using detail::Sim;
using detail::bytesOf;

namespace {

// Runs `fn` on a thread of its own, as the builder would, and waits for it.
template <typename Fn>
void onSimThread(Fn fn) {
    std::thread t([&] {
        detail::markSimThread();
        fn();
    });
    t.join();
}

std::vector<uint8_t> recordFor(ListKind list, const SVL_REC_T& svl, uint16_t record) {
    switch (list) {
        case ListKind::kSvl:
            return bytesOf(svl);
        case ListKind::kTsl: {
            TSL_REC_T r;
            memset(&r, 0, sizeof(r));
            r.ui2_tsl_rec_id = record;
            return bytesOf(r);
        }
        case ListKind::kNwl: {
            NWL_REC_T r;
            memset(&r, 0, sizeof(r));
            r.ui2_nwl_rec_id = record;
            return bytesOf(r);
        }
    }
    return {};
}

}  // namespace

void reset() {
    Sim& sim = Sim::get();
    std::vector<std::shared_ptr<Run>> runs;
    {
        std::lock_guard<std::mutex> lock(sim.mu);
        for (auto& entry : sim.builders) {
            if (entry.second->run) runs.push_back(entry.second->run);
        }
        sim.builders.clear();
    }
    for (const auto& run : runs) detail::stopRun(run);
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.calls.clear();
    sim.refusals.clear();
    sim.answers.clear();
    sim.mismatches.clear();
    sim.hook = nullptr;
    sim.scenario = nullptr;
    sim.keys = detail::KeyData{};
    sim.envScenarioChecked = false;
    sim.scanMaps.clear();
    for (const auto& entry : sim.listRegs) entry.second->removed = true;
    sim.listRegs.clear();
    sim.pipelineLookup = nullptr;
    sim.releasedLabels.clear();
    sim.cv.notify_all();
}

bool loadScenarioText(const std::string& json, std::string* error) {
    auto sc = detail::parseScenario(json, error);
    if (!sc) return false;
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.envScenarioChecked = true;  // an explicit scenario wins over ZEL_SIM_SCENARIO
    sim.installLocked(sc);
    return true;
}

bool loadScenarioFile(const std::string& path, std::string* error) {
    std::ifstream in(path);
    if (!in) {
        if (error) *error = "cannot read " + path;
        return false;
    }
    std::stringstream text;
    text << in.rdbuf();
    std::string why;
    if (loadScenarioText(text.str(), &why)) return true;
    if (error) *error = path + ": " + why;
    return false;
}

void setTimeScale(double scale) {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.timeScale = scale > 0 ? scale : 0;
    sim.cv.notify_all();
}

std::vector<Call> calls() {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    return sim.calls;
}

std::vector<Call> calls(const std::string& fn) {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    std::vector<Call> out;
    std::copy_if(sim.calls.begin(), sim.calls.end(), std::back_inserter(out),
                 [&](const Call& c) { return c.fn == fn; });
    return out;
}

void clearCalls() {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.calls.clear();
}

void failNext(const std::string& fn, int32_t status, int count) {
    if (count == 0) return;
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.refusals.push_back(Refusal{fn, std::nullopt, status, count < 0 ? -1 : count});
}

void failNth(const std::string& fn, int nth, int32_t status) {
    if (nth < 0) return;
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.refusals.push_back(Refusal{fn, std::nullopt, status, 1, nth});
}

void failKey(const std::string& fn, uint32_t key, int32_t status, int count) {
    if (count == 0) return;
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.refusals.push_back(Refusal{fn, key, status, count < 0 ? -1 : count});
}

void clearFailures() {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.refusals.clear();
}

bool waitIdle(int timeoutMs) {
    Sim& sim = Sim::get();
    std::unique_lock<std::mutex> lock(sim.mu);
    return sim.cv.wait_for(lock, std::chrono::milliseconds(timeoutMs), [&] { return sim.runningThreads == 0; });
}

bool waitForLabel(const std::string& label, int timeoutMs) {
    Sim& sim = Sim::get();
    std::unique_lock<std::mutex> lock(sim.mu);
    return sim.cv.wait_for(lock, std::chrono::milliseconds(timeoutMs),
                           [&] { return sim.waitingLabels.count(label) != 0; });
}

void release(const std::string& label) {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.releasedLabels.insert(label);
    sim.cv.notify_all();
}

void setCallbackHook(std::function<void(const char* what)> hook) {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.hook = std::move(hook);
}

std::vector<ScanMapsAnswer> scanMapsAnswers() {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    return sim.answers;
}

ScanMapsAnswer runScanMaps(const std::string& builderName, uint32_t cmd, const std::string& country,
                           const std::vector<uint8_t>& input, uint32_t outputSize, uintptr_t inputValue,
                           uint32_t value, uint8_t outputFill) {
    ScanMapsAnswer answer;
    onSimThread([&] {
        answer = detail::callScanMaps(builderName, cmd, country, input, inputValue, outputSize, outputFill, value);
    });
    return answer;
}

std::vector<std::string> scanMapsMismatches() {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    return sim.mismatches;
}

void runServiceUpdate(const SB_DVB_SCAN_DATA_T& block, uint16_t added, uint16_t deleted) {
    if (block.pf_svc_update_nfy == nullptr) return;
    onSimThread([&] {
        SB_DVB_SVC_UPDATE_NFY_DATA_T data{added, deleted};
        block.pf_svc_update_nfy(&data, block.pv_svc_update_nfy_tag);
        Sim::get().afterCallback("svc_update");
    });
}

void runListChanges(const std::string& list, uint16_t listId, const std::vector<ListChange>& changes) {
    ListKind kind;
    if (list == "svl") kind = ListKind::kSvl;
    else if (list == "tsl") kind = ListKind::kTsl;
    else if (list == "nwl") kind = ListKind::kNwl;
    else return;
    std::vector<ChangeSpec> specs;
    for (const ListChange& c : changes) {
        ChangeSpec s;
        s.type = c.type;
        s.record = c.record;
        if (c.hasOld) s.oldRec = recordFor(kind, c.oldRec, c.record);
        if (c.hasNew) s.newRec = recordFor(kind, c.newRec, c.record);
        specs.push_back(std::move(s));
    }
    onSimThread([&] { detail::deliverListChanges(kind, listId, specs); });
}

void runScanNotify(HANDLE_T builder, uint32_t reason, uint32_t data) {
    Sim& sim = Sim::get();
    std::shared_ptr<Run> run;
    {
        std::lock_guard<std::mutex> lock(sim.mu);
        auto it = sim.builders.find(builder);
        if (it != sim.builders.end()) run = it->second->run;
    }
    if (!run || run->scanNfy == nullptr) return;
    onSimThread([&] {
        run->scanNfy(run->builder, reason, data, run->scanTag);
        Sim::get().afterCallback("scan_nfy");
    });
}

size_t liveHandles() {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    return sim.handles.size();
}

size_t liveAllocations() {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    return sim.allocations.size();
}

size_t listRegistrations(const std::string& list) {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    return static_cast<size_t>(std::count_if(sim.listRegs.begin(), sim.listRegs.end(), [&](const auto& entry) {
        return list == detail::listName(entry.second->list);
    }));
}

size_t openBuilders() {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    return sim.builders.size();
}

x_orvella_get_pipeline_obj_fct pipelineLookup() {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    return sim.pipelineLookup;
}

}  // namespace zelsim
