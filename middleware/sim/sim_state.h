// Shared state of the scan-builder simulator. One process-wide instance, never destroyed
// (builder threads may still run at exit). Rule of the simulator: its lock is never held
// while calling into the library, whose callbacks call Java, which may call back in here.
#ifndef ZEL_SIM_STATE_H
#define ZEL_SIM_STATE_H

#include <stdint.h>

#include <condition_variable>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "scenario.h"
#include "scenario_dvbs.h"
#include "zel_sim.h"

namespace zelsim::detail {

// Builder engines, as the library names them; a longer name that starts with one of the
// seven-character names counts as it, "sb_dvb" counts only as itself.
struct BuilderKind {
    const char* name;
    bool exact;
    size_t openDataSize;
    size_t scanDataSize;
};
const BuilderKind* builderKind(const char* name);

// One scan or monitor started on a builder, with what its thread needs of the builder.
struct Run {
    HANDLE_T builder = 0;
    std::string name;
    const BuilderKind* kind = nullptr;
    void* builderTag = nullptr;
    x_sb_nfy_fct builderNfy = nullptr;
    x_sb_scan_nfy_fct scanNfy = nullptr;  // null: monitor mode
    void* scanTag = nullptr;
    std::vector<uint8_t> scanData;
    // Guarded by Sim::mu.
    std::thread thread;
    bool running = false;
    bool ended = false;  // the end was reported: a new start may follow at once
    bool cancel = false;
    bool stop = false;
};

struct Builder {
    HANDLE_T handle = 0;
    std::string name;
    const BuilderKind* kind = nullptr;
    void* tag = nullptr;
    x_sb_nfy_fct nfy = nullptr;
    std::shared_ptr<Run> run;  // the last scan or monitor; guarded by Sim::mu
};

struct ListRegistration {
    ListKind list = ListKind::kSvl;
    HANDLE_T handle = 0;
    uint16_t listId = 0;
    void* filter = nullptr;  // the list's filter function type
    void* nfy = nullptr;     // the list's notify function type
    void* tag = nullptr;
    // Callbacks under way; unregistering waits for those of other threads.
    bool removed = false;
    std::multiset<std::thread::id> inFlight;
};

struct ScanMapRegistration {
    x_sb_scan_maps_fct fn = nullptr;
    void* tag = nullptr;
};

struct HandleEntry {
    HANDLE_TYPE_T type = 0;
    void* obj = nullptr;
    void* tag = nullptr;
    handle_free_fct freeFct = nullptr;
};

struct Sim {
    static Sim& get();

    std::mutex mu;
    std::condition_variable cv;  // any change a waiter may look for

    std::vector<Call> calls;
    std::vector<Refusal> refusals;
    std::vector<ScanMapsAnswer> answers;
    std::vector<std::string> mismatches;  // scan-maps statuses other than a step expected
    std::function<void(const char*)> hook;

    std::shared_ptr<const Scenario> scenario;  // null: the built-in default
    KeyData keys;                              // the scenario's, changed by some sets
    bool envScenarioChecked = false;
    double timeScale = 1.0;

    std::map<HANDLE_T, HandleEntry> handles;
    std::set<void*> allocations;
    std::map<HANDLE_T, std::shared_ptr<Builder>> builders;
    std::map<std::string, ScanMapRegistration> scanMaps;
    std::map<HANDLE_T, std::shared_ptr<ListRegistration>> listRegs;
    x_orvella_get_pipeline_obj_fct pipelineLookup = nullptr;

    std::multiset<std::string> waitingLabels;
    std::multiset<std::string> releasedLabels;
    int runningThreads = 0;

    // Records `call` and answers the status of a refusal that applies to it, if any.
    std::optional<int32_t> admit(Call call, std::optional<uint32_t> key = std::nullopt);
    HANDLE_T newHandle();
    // Calls the test hook after a callback into the library (on the calling thread).
    void afterCallback(const char* what);
    // Installs a scenario (null: the default) and its refusals; caller holds mu.
    void installLocked(std::shared_ptr<const Scenario> sc);
    std::shared_ptr<const Scenario> currentLocked() const;
    // Loads ZEL_SIM_SCENARIO the first time the simulator is used; caller holds mu.
    void checkEnvScenarioLocked();

private:
    Sim();
};

// Marks the calling thread as one of the simulator's for the calls it makes (Call::simThread).
void markSimThread();

// Pointers as the 32-bit values recorded in calls.
inline int64_t ptrArg(const void* p) { return static_cast<int64_t>(reinterpret_cast<uintptr_t>(p)); }

// Sleeps `ms` of simulated time; false when the run was cancelled or stopped meanwhile.
bool pause(Run& run, uint32_t ms);
// Calls the run's scan notify function (none in monitor mode).
void notifyScan(const Run& run, uint32_t reason, uint32_t data);
// Reports the end of the scan with `reason`, after which a new start may follow; true.
bool endScan(Run& run, uint32_t reason);

// The satellite builder (sim_dvbs.cpp): a whole scan of a "satellite" step, true when it
// reported the end; and one notification through a function of the 780-byte block.
bool playSatelliteScan(Run& run, const DvbsScan& scan);
void playDvbsNotify(const Run& run, const DvbsNotify& notify);
// The 780-byte block as "field=value" texts.
std::vector<std::string> describeDvbsBlock(const std::vector<uint8_t>& data);

// Stops a run without notifying and joins its thread (detaches it when called on it).
void stopRun(const std::shared_ptr<Run>& run);

// Delivery of list changes to every registration of `list` (only those of `listId` when
// given), through each one's filter; on the calling thread.
void deliverListChanges(ListKind list, std::optional<uint16_t> listId, const std::vector<ChangeSpec>& changes);

// Calls a scan-maps function registered for `builderName` and records the answer; on the
// calling thread. `input` empty: pv_input is `inputValue`. `value` is the cable builders'
// extra argument.
ScanMapsAnswer callScanMaps(const std::string& builderName, uint32_t cmd, const std::string& country,
                            const std::vector<uint8_t>& input, uintptr_t inputValue, uint32_t outputLen,
                            uint8_t fill, uint32_t value = 0);

}  // namespace zelsim::detail

#endif  // ZEL_SIM_STATE_H
