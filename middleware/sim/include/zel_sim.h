/*
 * Control side of the scan-builder simulator: what tests and the demo use to choose a
 * scenario, make calls fail, wait for a scan and read back every call the library made.
 * The middleware API itself (x_sb_*, c_*_every_notify, handles, memory) is in
 * middleware/include and is what the library links against.
 */
#ifndef ZEL_SIM_H
#define ZEL_SIM_H

#include <stdint.h>

#include <functional>
#include <string>
#include <vector>

#include <jni.h>

#include "x_mw_api.h"

namespace zelsim {

// One call the library made into the middleware, as received. What each function records
// (pointers as their 32-bit value; a name argument goes to `text`, not to `args`):
//   x_sb_open_builder    text name; args {open data, tag, notify, ph_builder, pe_cond};
//                        bytes: the open data (24 bytes, 48 for "sb_dvbs");
//                        strings: {svl name, file name, tuner name}, copied at the call
//   x_sb_reg_scan_map    text name; args {function, tag}
//   x_sb_start_scan      args {builder, scan data, tag, notify, pe_cond}; bytes: the scan data,
//                        as large as the builder's (sb_dvb 64, sb_dvbc and sb_cn_dvbc 84,
//                        sb_dvbs 780, sb_dtmb 48, sb_atsc 8, sb_cqam 20, sb_isdb 28), empty
//                        for an unknown builder; strings: the terrestrial and cable blocks
//                        decoded as "field=value" ("country=DEU", "nw_id=4660", ...)
//   x_sb_cancel_scan, x_sb_close_builder   args {builder}
//   x_sb_get             args {builder, key, key info, *pz_key_data_len as given (-1 when the
//                        pointer is null), value buffer}; bytes: the 8-byte region key that
//                        the key info points to, for keys 31 and 32
//   x_sb_set             args {builder, key, key info, length, value}; bytes: the `length`
//                        bytes behind the value, except for keys 19, 78, 79 and 84, whose
//                        value is args[4] itself (bytes empty)
//   c_{svl,tsl,nwl}_register_every_notify  args {list id, filter, notify, tag, ph_nfy}
//   c_{svl,tsl,nwl}_unreg_every_notify     args {handle}
//   x_nwl_get_num_rec    args {nwl handle};  x_nwl_get_rec  args {nwl handle, record id}
//   handle_alloc         args {type, object, tag, free function};  handle_get_obj,
//                        x_handle_free  args {handle}
//   x_orvella_filter_register_get_pipeline_obj  args {function}
//   x_mem_alloc {size}, x_mem_free {pointer}, x_memset {to, value, length},
//   x_memcpy and x_strncpy and x_strncmp {a, b, length}, x_strlen {string} with text the
//   string, x_sprintf {buffer} with text the formatted result
struct Call {
    std::string fn;               // "x_sb_open_builder", "x_sb_set", ...
    std::vector<int64_t> args;    // integer arguments in order (pointers as their 32-bit value)
    std::string text;             // a string argument (builder name, ...), else empty
    std::vector<uint8_t> bytes;   // the block a pointer argument pointed to (see each function)
    std::vector<std::string> strings;  // strings a block pointed to (open data: svl name, "/dev", tuner)
    bool simThread = false;       // made on a thread of the simulator (inside one of its callbacks)
    int64_t thread = 0;           // the calling thread's kernel id
};

// Forgets the scenario, recorded calls, failures, registrations, builders, answers and the
// callback hook; stops and joins every simulator thread. Handles given out earlier stay
// valid (the library may still hold one), and so does the time scale. ZEL_SIM_SCENARIO is
// loaded again on the next use, as in a fresh process.
void reset();

// Loads a scenario (JSON, format in scenarios/README.md) in place of the current one; its
// "fail" list is added to the refusals. Returns false and fills *error when it does not
// parse. Without a scenario a small built-in scan runs; ZEL_SIM_SCENARIO (a path) is
// loaded on first use when set and no scenario was loaded explicitly; when that file does
// not load, the process ends with kScenarioNotLoaded after printing the file, the place in
// it and the reason.
constexpr int kScenarioNotLoaded = 3;
bool loadScenarioFile(const std::string& path, std::string* error = nullptr);
bool loadScenarioText(const std::string& json, std::string* error = nullptr);

// Simulated time: every "sleep_ms" and the scenario's step delay are multiplied by this
// (0 runs the scan as fast as it can). Default 1, or ZEL_SIM_TIME_SCALE from the environment.
void setTimeScale(double scale);

// Recorded calls, in the order received (all functions, or only those named `fn`).
std::vector<Call> calls();
std::vector<Call> calls(const std::string& fn);
void clearCalls();

// Refusals: the next `count` calls of `fn` (count < 0: every call) answer `status`
// without doing anything (they are still recorded). For x_sb_get and x_sb_set,
// failKey restricts the refusal to one key. The first matching refusal, in the order
// given, applies. A refused x_mem_alloc answers null.
void failNext(const std::string& fn, int32_t status, int count = 1);
void failKey(const std::string& fn, uint32_t key, int32_t status, int count = -1);
// Refuses exactly one call: the `nth` (0 for the next) of the calls of `fn` from now on
// (the fault sweep refuses each call of a lifecycle in turn this way).
void failNth(const std::string& fn, int nth, int32_t status);
void clearFailures();

// Builder keys given directly, for fuzzing the library's decoding of the builder's records.
// setKeyBlocks: x_sb_get of `key` answers `blocks[0]`, or (indexed) the block at the key
// info's index, byte for byte, in place of the scenario's answer. setNetworkList: the
// network list that key 76 names, and its records. resetKeys forgets every key answer.
void setKeyBlocks(uint32_t key, bool indexed, std::vector<std::vector<uint8_t>> blocks);
void setNetworkList(HANDLE_T nwl, std::vector<NWL_REC_T> records);
void resetKeys();

// Waits until no scan or monitor thread is running any more (true) or the timeout passes.
bool waitIdle(int timeoutMs);
// Waits until the running scan of any builder has reached a {"wait": "..."} step named
// `label` and is blocked there; release() lets it go on (a release given before a scan
// reaches the label is kept for it). Cancelling or closing the builder also ends the wait.
bool waitForLabel(const std::string& label, int timeoutMs);
void release(const std::string& label);

// Called on the simulator thread right after every callback into the library returns,
// with what was called ("scan_maps", "svc_update", "scanning_nfy", "scan_nfy", "svl_nfy", "tsl_nfy",
// "nwl_nfy", "builder_nfy", and "svl_filter", "tsl_filter", "nwl_filter" after a list
// filter). Tests use it to check that the thread was left detached.
void setCallbackHook(std::function<void(const char* what)> hook);

// Answers the simulator thread got from scan-maps callbacks, in order.
struct ScanMapsAnswer {
    uint32_t cmd;
    int32_t status;
    uint32_t outputLen;           // *pz_output_len after the call
    std::vector<uint8_t> output;  // the output buffer after the call (its given size)
    bool overrun = false;         // bytes behind the given size were written
};
std::vector<ScanMapsAnswer> scanMapsAnswers();

// Runs one scan-maps command on a fresh simulator thread through the function registered
// for `builderName`, and waits for it. Without a registered function the answer has the
// status MWR_NOT_FOUND and is not added to scanMapsAnswers(). `input` is what pv_input points to (null when
// empty and `inputValue` is 0; otherwise pv_input is `inputValue` cast to a pointer).
// The cable builders ("sb_dvbc", "sb_cn_dvbc") also pass `value` and a null reserved pointer.
// The output buffer holds `outputFill` in every byte before the call, so that a test sees
// which bytes the library wrote and which it left as the caller had them.
ScanMapsAnswer runScanMaps(const std::string& builderName, uint32_t cmd,
                           const std::string& country, const std::vector<uint8_t>& input,
                           uint32_t outputSize, uintptr_t inputValue = 0, uint32_t value = 0,
                           uint8_t outputFill = 0);

// Scan-maps steps whose answer had another status than the step's "expect", one line each
// (also printed on stderr as they happen).
std::vector<std::string> scanMapsMismatches();

// Calls a DVB service-update callback taken from a 64-byte "sb_dvb" scan block on a
// fresh simulator thread, and waits for it.
void runServiceUpdate(const SB_DVB_SCAN_DATA_T& block, uint16_t added, uint16_t deleted);
// The same for the scan data of any builder whose block has a service-update function
// ("sb_dvbc", "sb_cn_dvbc", "sb_dtmb", "sb_isdb"; ISDB's is called with a null tag).
void runServiceUpdate(const std::string& builderName, const void* block, uint16_t added,
                      uint16_t deleted);
// Calls the scanning function of a cable scan block (offsets 72 and 76) with one
// notification on a fresh simulator thread, and waits: SB_DVBC_NFY_NW_NAME carries `name`,
// the other types `value` as the payload word.
void runScanningNotify(const std::string& builderName, const void* block, int32_t type,
                       uint32_t value, const std::string& name = "");

// Pushes list changes through the filter and notify function of every registration of that
// list ("svl", "tsl" or "nwl") made for `listId`, on a simulator thread, and waits. Each
// registration's notify function gets the changes its filter passed, and is not called
// when none passed. Records are used for the filter (only the SVL filter looks at them;
// TSL and NWL filters get records that carry only the record id).
struct ListChange {
    uint16_t type;
    uint16_t record;
    SVL_REC_T oldRec;
    SVL_REC_T newRec;
    bool hasOld = false;
    bool hasNew = false;
};
void runListChanges(const std::string& list, uint16_t listId, const std::vector<ListChange>& changes);

// Emits one scan notification through the running (or last) scan of `builder` on a
// simulator thread, and waits.
void runScanNotify(HANDLE_T builder, uint32_t reason, uint32_t data);

// State the library left behind.
size_t liveHandles();                        // handles allocated and not freed
size_t liveAllocations();                    // x_mem_alloc blocks not freed
size_t listRegistrations(const std::string& list);  // every-notify registrations held
size_t openBuilders();
// The pipeline lookup the library registered; null when none.
x_orvella_get_pipeline_obj_fct pipelineLookup();

}  // namespace zelsim

#endif  // ZEL_SIM_H
