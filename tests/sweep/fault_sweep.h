// The fault sweep: a standard's whole scan lifecycle, run as an application runs it (Java
// SweepApplication), once clean and then once per middleware call with exactly that call
// refused; what each run returned and what it left behind in the process.
#ifndef ORVELLA_TESTS_FAULT_SWEEP_H
#define ORVELLA_TESTS_FAULT_SWEEP_H

#include <stddef.h>
#include <stdint.h>

#include <ostream>
#include <set>
#include <string>
#include <vector>

namespace sweep {

// One row of the sweep: a standard's configuration, the extensions an application adds,
// and the scenario the builder plays.
struct Standard {
    const char* name;                      // test name: letters, digits and '_'
    const char* config;                    // SweepApplication's configuration key ("dvbt")
    std::vector<const char*> extensions;   // SweepApplication's extension names, in add order
    const char* scenario;                  // file under scenarios/
    bool listChanges = true;               // the builder reports list changes during the scan
};
// How test names show a row.
inline void PrintTo(const Standard& standard, std::ostream* out) { *out << standard.name; }

// One middleware call of the clean run: the `nth` call of `fn`, where it was made.
struct MiddlewareCall {
    std::string fn;
    int nth = 0;
    // The application's step ("configure"), or "builder thread", or "event thread" with the
    // key that thread asked last (which extension's hook runs).
    std::string site;
    int64_t key = -1;  // the builder key of x_sb_get and x_sb_set
    std::string name() const;  // "x_sb_get(76) #0 at event thread"
};

// What the process holds that a run must give back.
struct Resources {
    int threads = 0;         // threads of this process not named by the VM
    int descriptors = 0;     // open file descriptors
    int globalRefs = 0;      // JNI global references (JVMTI roots)
    size_t handles = 0;      // middleware handles, allocations, list registrations, builders
    size_t allocations = 0;
    size_t registrations = 0;
    size_t builders = 0;
    std::string describe() const;
};
Resources measure();

struct Run {
    std::vector<std::string> steps;      // "configure 0", "end", ... (SweepApplication.run)
    std::vector<std::string> decisions;  // what the scripted user decided
    std::vector<std::string> heard;      // per satellite extension: "mdu: Detection[...]"
    std::set<std::string> logs;          // the library's lines, addresses and ids blanked
    size_t scanMapsAnswers = 0;          // scan-maps commands the builder had answered
    std::vector<std::string> scanMapsMismatches;  // answers with another status than foreseen
    std::vector<std::string> reachable;  // lifecycle objects not collected after release
    std::vector<MiddlewareCall> calls;   // every call that can be refused, in order
    std::string error;                   // set when the run could not be made at all
};

// Runs the lifecycle once, refusing `refuse` (when given) with a failure status (a null
// result for x_mem_alloc); waits until the objects are collected and the threads gone.
Run runLifecycle(const Standard& standard, const MiddlewareCall* refuse);

// Functions that answer a status (or a pointer) and so can refuse; the memory and string
// helpers that cannot fail are not swept.
bool refusable(const std::string& fn);

}  // namespace sweep

#endif  // ORVELLA_TESTS_FAULT_SWEEP_H
