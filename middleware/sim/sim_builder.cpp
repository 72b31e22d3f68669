// The scan builder: open, scan-maps registration, start, cancel and close, and the thread
// that plays a scenario's scan (or monitor) steps into the library's callbacks.
#include <stdio.h>
#include <string.h>

#include <chrono>

#include "sim_standards.h"
#include "sim_state.h"

using zelsim::Call;
using zelsim::ScanMapsAnswer;

namespace zelsim::detail {

namespace {

// Bytes behind the scan-maps output buffer that a correct answer leaves alone.
constexpr size_t kGuardBytes = 16;
constexpr uint8_t kGuardFill = 0xA5;

std::vector<uint8_t> copyBlock(const void* p, size_t size) {
    if (p == nullptr) return {};
    const auto* b = static_cast<const uint8_t*>(p);
    return std::vector<uint8_t>(b, b + size);
}

std::string cString(const char* s) { return s ? s : ""; }

bool interrupted(const Run& run) { return run.cancel || run.stop; }

}  // namespace

bool pause(Run& run, uint32_t ms) {
    Sim& sim = Sim::get();
    std::unique_lock<std::mutex> lock(sim.mu);
    const auto scaled = std::chrono::duration<double, std::milli>(ms * sim.timeScale);
    if (scaled.count() > 0) {
        sim.cv.wait_for(lock, scaled, [&] { return interrupted(run); });
    }
    return !interrupted(run);
}

namespace {

// Blocks at a {"wait": label} step until release(label); false when interrupted instead.
bool waitAtLabel(const Run& run, const std::string& label) {
    Sim& sim = Sim::get();
    std::unique_lock<std::mutex> lock(sim.mu);
    sim.waitingLabels.insert(label);
    sim.cv.notify_all();
    sim.cv.wait(lock, [&] { return sim.releasedLabels.count(label) != 0 || interrupted(run); });
    sim.waitingLabels.erase(sim.waitingLabels.find(label));
    auto released = sim.releasedLabels.find(label);
    const bool passed = released != sim.releasedLabels.end() && !interrupted(run);
    if (passed) sim.releasedLabels.erase(released);
    sim.cv.notify_all();
    return passed;
}

}  // namespace

void notifyScan(const Run& run, uint32_t reason, uint32_t data) {
    if (run.scanNfy == nullptr) return;  // monitor mode asks for no scan notifications
    run.scanNfy(run.builder, reason, data, run.scanTag);
    Sim::get().afterCallback("scan_nfy");
}

bool endScan(Run& run, uint32_t reason) {
    {
        std::lock_guard<std::mutex> lock(Sim::get().mu);
        run.ended = true;
    }
    notifyScan(run, reason, 0);
    return true;
}

namespace {

std::string countryOf(const Run& run, const Step& step) {
    return step.country ? *step.country : blockCountry(run);
}

// A scan-maps question as the scenario asks it; an answer other than the status the step
// expects is reported, so that a scenario doubles as a check of the library's answers.
void askScanMaps(const Run& run, const Step& step) {
    ScanMapsAnswer a = callScanMaps(run.name, step.cmd, countryOf(run, step), step.input, step.inputValue,
                                    step.outputLen, step.outputFill, step.value);
    if (!step.expect || a.status == *step.expect) return;
    std::string what = run.name + " scan-maps command " + std::to_string(step.cmd) + " with " +
                       std::to_string(step.outputLen) + " bytes answered " + std::to_string(a.status) +
                       ", expected " + std::to_string(*step.expect);
    (void)fprintf(stderr, "zel_sim: %s\n", what.c_str());
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.mismatches.push_back(std::move(what));
}

// Plays one step; true when it ended the scan.
bool playStep(Run& run, const Step& step) {
    switch (step.kind) {
        case Step::Kind::kScanMaps:
            askScanMaps(run, step);
            return false;
        case Step::Kind::kNotify:
            notifyScan(run, step.reason, step.data);
            return false;
        case Step::Kind::kEnd:
            return endScan(run, step.reason);
        case Step::Kind::kServiceUpdate:
            blockServiceUpdate(run, step.added, step.deleted);
            return false;
        case Step::Kind::kScanning:
            blockScanningNotify(run, step.nfyType, step.data, step.label);
            return false;
        case Step::Kind::kListChange:
            deliverListChanges(step.list, step.listId, step.changes);
            return false;
        case Step::Kind::kSleep:
            pause(run, step.ms);
            return false;
        case Step::Kind::kWait:
            waitAtLabel(run, step.label);
            return false;
        case Step::Kind::kSatellite:
            return playSatelliteScan(run, *step.satellite);
        case Step::Kind::kDvbsNotify:
            playDvbsNotify(run, *step.dvbsNotify);
            return false;
        case Step::Kind::kBuilderNfy:
            if (run.builderNfy != nullptr) {
                run.builderNfy(run.builder, step.cond, run.builderTag);
                Sim::get().afterCallback("builder_nfy");
            }
            return false;
    }
    return false;
}

void runSteps(const std::shared_ptr<Run>& run, const std::shared_ptr<const Scenario>& sc) {
    markSimThread();
    Sim& sim = Sim::get();
    const bool monitor = run->scanNfy == nullptr;
    const std::vector<Step>& steps = monitor ? sc->monitor : sc->scan;
    bool ended = false;
    for (size_t i = 0; i < steps.size() && !ended; ++i) {
        if (i > 0 && !pause(*run, sc->stepDelayMs)) break;
        {
            std::lock_guard<std::mutex> lock(sim.mu);
            if (interrupted(*run)) break;
        }
        ended = playStep(*run, steps[i]);
    }
    bool cancelled = false;
    {
        std::lock_guard<std::mutex> lock(sim.mu);
        cancelled = !ended && run->cancel && !run->stop;
    }
    // A cancelled scan reports it at the step boundary; a cancelled monitor just stops.
    if (cancelled) notifyScan(*run, SB_REASON_CANCEL, 0);
    std::lock_guard<std::mutex> lock(sim.mu);
    run->running = false;
    --sim.runningThreads;
    sim.cv.notify_all();
}

std::shared_ptr<Builder> findBuilder(HANDLE_T h) {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    auto it = sim.builders.find(h);
    return it == sim.builders.end() ? nullptr : it->second;
}

void joinOrDetach(std::thread& t) {
    if (!t.joinable()) return;
    if (t.get_id() == std::this_thread::get_id()) t.detach();
    else t.join();
}

}  // namespace

void stopRun(const std::shared_ptr<Run>& run) {
    if (!run) return;
    Sim& sim = Sim::get();
    std::thread t;
    {
        std::lock_guard<std::mutex> lock(sim.mu);
        run->stop = true;
        t = std::move(run->thread);
        sim.cv.notify_all();
    }
    joinOrDetach(t);
}

ScanMapsAnswer callScanMaps(const std::string& builderName, uint32_t cmd, const std::string& country,
                            const std::vector<uint8_t>& input, uintptr_t inputValue, uint32_t outputLen,
                            uint8_t fill, uint32_t value) {
    Sim& sim = Sim::get();
    ScanMapRegistration reg;
    {
        std::lock_guard<std::mutex> lock(sim.mu);
        auto it = sim.scanMaps.find(builderName);
        if (it != sim.scanMaps.end()) reg = it->second;
    }
    ScanMapsAnswer answer{cmd, MWR_NOT_FOUND, outputLen, std::vector<uint8_t>(outputLen, fill), false};
    if (reg.fn == nullptr) return answer;

    std::vector<uint8_t> in = input;
    // A scenario may give the input as a bare value, which the middleware passes as a pointer.
    void* pvInput = in.empty() ? reinterpret_cast<void*>(inputValue) : in.data();  // NOLINT(performance-no-int-to-ptr)
    std::vector<uint8_t> out(outputLen + kGuardBytes, fill);
    memset(out.data() + outputLen, kGuardFill, kGuardBytes);
    std::vector<char> countryBuf(country.begin(), country.end());
    countryBuf.resize(country.size() < 4 ? 5 : country.size() + 1, '\0');

    uint32_t len = outputLen;
    answer.status = invokeScanMaps(builderName, reg.fn, cmd, countryBuf.data(), value, pvInput, out.data(), &len,
                                   reg.tag);
    answer.outputLen = len;
    answer.output.assign(out.begin(), out.begin() + static_cast<std::ptrdiff_t>(outputLen));
    for (size_t i = outputLen; i < out.size(); ++i) answer.overrun = answer.overrun || out[i] != kGuardFill;
    {
        std::lock_guard<std::mutex> lock(sim.mu);
        sim.answers.push_back(answer);
    }
    sim.afterCallback("scan_maps");
    return answer;
}

}  // namespace zelsim::detail

using zelsim::detail::Builder;
using zelsim::detail::BuilderKind;
using zelsim::detail::copyBlock;
using zelsim::detail::cString;
using zelsim::detail::findBuilder;
using zelsim::detail::joinOrDetach;
using zelsim::detail::ptrArg;
using zelsim::detail::Run;
using zelsim::detail::Sim;

extern "C" {

int32_t x_sb_open_builder(const char* ps_builder_name, void* pv_open_data, void* pv_tag, x_sb_nfy_fct pf_nfy,
                          HANDLE_T* ph_builder, SB_COND_T* pe_builder_cond) {
    Sim& sim = Sim::get();
    const BuilderKind* kind = zelsim::detail::builderKind(ps_builder_name);
    Call call{"x_sb_open_builder",
              {ptrArg(pv_open_data), ptrArg(pv_tag), ptrArg(reinterpret_cast<void*>(pf_nfy)), ptrArg(ph_builder),
               ptrArg(pe_builder_cond)},
              cString(ps_builder_name), {}, {}};
    if (pv_open_data != nullptr) {
        // The builder keeps copies: the library frees the SVL name once the call returns.
        call.bytes = copyBlock(pv_open_data, kind ? kind->openDataSize : sizeof(SB_OPEN_DATA_T));
        const auto* open = static_cast<const SB_OPEN_DATA_T*>(pv_open_data);
        call.strings = {cString(open->ps_svl_name), cString(open->ps_file_name), cString(open->ps_tuner_name)};
    }
    if (auto refused = sim.admit(std::move(call))) return *refused;
    if (ps_builder_name == nullptr || pv_open_data == nullptr || ph_builder == nullptr) return MWR_INV_ARG;
    if (kind == nullptr) return MWR_NOT_FOUND;

    auto b = std::make_shared<Builder>();
    b->handle = sim.newHandle();
    b->name = ps_builder_name;
    b->kind = kind;
    b->tag = pv_tag;
    b->nfy = pf_nfy;
    {
        std::lock_guard<std::mutex> lock(sim.mu);
        sim.builders[b->handle] = b;
    }
    *ph_builder = b->handle;
    return MWR_OK;
}

int32_t x_sb_reg_scan_map(const char* ps_builder_name, x_sb_scan_maps_fct pf_scan_maps, void* pv_tag) {
    Sim& sim = Sim::get();
    Call call{"x_sb_reg_scan_map", {ptrArg(reinterpret_cast<void*>(pf_scan_maps)), ptrArg(pv_tag)},
              cString(ps_builder_name), {}, {}};
    if (auto refused = sim.admit(std::move(call))) return *refused;
    if (ps_builder_name == nullptr) return MWR_INV_ARG;
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.scanMaps[ps_builder_name] = zelsim::detail::ScanMapRegistration{pf_scan_maps, pv_tag};
    return MWR_OK;
}

int32_t x_sb_start_scan(HANDLE_T h_builder, void* pv_scan_data, void* pv_tag, x_sb_scan_nfy_fct pf_nfy,
                        SB_COND_T* pe_builder_cond) {
    Sim& sim = Sim::get();
    std::shared_ptr<Builder> b = findBuilder(h_builder);
    Call call{"x_sb_start_scan",
              {h_builder, ptrArg(pv_scan_data), ptrArg(pv_tag), ptrArg(reinterpret_cast<void*>(pf_nfy)),
               ptrArg(pe_builder_cond)},
              {}, {}, {}};
    if (b) {
        call.bytes = copyBlock(pv_scan_data, b->kind->scanDataSize);
        call.strings = zelsim::detail::describeScanData(b->kind, call.bytes);
    }
    std::vector<uint8_t> scanData = call.bytes;
    if (auto refused = sim.admit(std::move(call))) return *refused;
    if (!b) return MWR_INV_HANDLE;
    if (pv_scan_data == nullptr) return MWR_INV_ARG;

    // A finished or cancelled run is joined first; one still scanning refuses the start.
    std::thread previous;
    {
        std::lock_guard<std::mutex> lock(sim.mu);
        if (b->run && b->run->running && !b->run->cancel && !b->run->stop && !b->run->ended) {
            return MWR_NOT_ALLOWED;
        }
        if (b->run) previous = std::move(b->run->thread);
    }
    joinOrDetach(previous);

    auto run = std::make_shared<Run>();
    run->builder = b->handle;
    run->name = b->name;
    run->kind = b->kind;
    run->builderTag = b->tag;
    run->builderNfy = b->nfy;
    run->scanNfy = pf_nfy;
    run->scanTag = pv_tag;
    run->scanData = std::move(scanData);
    std::lock_guard<std::mutex> lock(sim.mu);
    if (sim.builders.count(h_builder) == 0) return MWR_INV_HANDLE;  // closed meanwhile
    if (b->run && b->run->running && !b->run->cancel && !b->run->stop && !b->run->ended) {
        return MWR_NOT_ALLOWED;
    }
    run->running = true;
    ++sim.runningThreads;
    b->run = run;
    run->thread = std::thread(zelsim::detail::runSteps, run, sim.currentLocked());
    return MWR_OK;
}

int32_t x_sb_cancel_scan(HANDLE_T h_builder) {
    Sim& sim = Sim::get();
    if (auto refused = sim.admit(Call{"x_sb_cancel_scan", {h_builder}, {}, {}, {}})) return *refused;
    // Only a flag: this may run inside a callback on the scan thread itself.
    std::lock_guard<std::mutex> lock(sim.mu);
    auto it = sim.builders.find(h_builder);
    if (it == sim.builders.end()) return MWR_INV_HANDLE;
    if (it->second->run) it->second->run->cancel = true;
    sim.cv.notify_all();
    return MWR_OK;
}

int32_t x_sb_close_builder(HANDLE_T h_builder) {
    Sim& sim = Sim::get();
    if (auto refused = sim.admit(Call{"x_sb_close_builder", {h_builder}, {}, {}, {}})) return *refused;
    std::shared_ptr<Run> run;
    {
        std::lock_guard<std::mutex> lock(sim.mu);
        auto it = sim.builders.find(h_builder);
        if (it == sim.builders.end()) return MWR_INV_HANDLE;
        run = it->second->run;
        sim.builders.erase(it);
    }
    zelsim::detail::stopRun(run);
    return MWR_OK;
}

}  // extern "C"
