// Scenarios of the scan-builder simulator: what a scan and a monitor do, step by step,
// and what the builder answers for its keys. Parsed once from JSON (scenarios/README.md).
#ifndef ZEL_SIM_SCENARIO_H
#define ZEL_SIM_SCENARIO_H

#include <stdint.h>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "x_mw_api.h"

namespace zelsim::detail {
struct DvbsScan;
struct DvbsNotify;
}  // namespace zelsim::detail

namespace zelsim::detail {

enum class ListKind { kSvl, kTsl, kNwl };
const char* listName(ListKind list);
size_t listRecordSize(ListKind list);

// One change of a list; a record block is empty when the change has no such record.
struct ChangeSpec {
    uint16_t type = 0;
    uint16_t record = 0;
    std::vector<uint8_t> oldRec;
    std::vector<uint8_t> newRec;
};

struct Step {
    enum class Kind {
        kScanMaps, kNotify, kEnd, kServiceUpdate, kListChange, kSleep, kWait, kBuilderNfy,
        kScanning, kSatellite, kDvbsNotify
    };
    Kind kind = Kind::kNotify;
    // kNotify, kEnd
    uint32_t reason = 0;
    uint32_t data = 0;
    // kScanMaps
    uint32_t cmd = 0;
    uint32_t outputLen = 0;
    uint8_t outputFill = 0;
    uintptr_t inputValue = 0;
    std::vector<uint8_t> input;  // pointed-to input block; empty: inputValue is the pointer
    std::optional<std::string> country;
    uint32_t value = 0;            // the cable builders' extra number
    std::optional<int32_t> expect;  // the status the builder expects back
    // kServiceUpdate
    uint16_t added = 0;
    uint16_t deleted = 0;
    // kListChange
    ListKind list = ListKind::kSvl;
    std::optional<uint16_t> listId;
    std::vector<ChangeSpec> changes;
    // kScanning: a cable scanning notification (type, `data` or `label` as the name)
    int32_t nfyType = 0;
    // kSleep, kWait, kBuilderNfy
    uint32_t ms = 0;
    std::string label;
    uint32_t cond = 0;
    // kSatellite, kDvbsNotify (scenario_dvbs.h)
    std::shared_ptr<const DvbsScan> satellite;
    std::shared_ptr<const DvbsNotify> dvbsNotify;
};

// LCN conflict group with the services that claim its LCN.
struct ConflictGroup {
    uint16_t lcn = 0;
    uint16_t data = 0;
    std::vector<std::pair<uint16_t, uint16_t>> channels;  // (svl id, svl record id)
};

// What x_sb_get answers (absent sections answer MWR_NOT_FOUND) and the network list.
struct KeyData {
    std::optional<HANDLE_T> nwlHandle;
    uint32_t nwlVersion = 1;
    std::vector<NWL_REC_T> nwlRecords;
    std::optional<uint8_t> conflictCount;  // key 21
    std::vector<ConflictGroup> conflictGroups;   // keys 22, 23
    std::optional<SB_LCN_GARBAGE_INFO_T> garbage;  // key 80
    std::optional<std::vector<SB_SVC_LCN_INFO_T>> svcLcnInfo;  // key 82
    std::optional<std::vector<SB_LCNV2_CHLIST_REC_T>> lcnv2Lists;  // keys 26, 27
    std::optional<std::vector<SB_REGION_REC_T>> regions;  // keys 31, 32
    std::optional<SB_REGION_REC_T> preferredRegion;  // key 33
    // Any other key: one block, or one block per key-info index.
    struct Raw {
        bool indexed = false;
        std::vector<std::vector<uint8_t>> blocks;
    };
    std::map<uint32_t, Raw> raw;
};

struct Refusal {
    std::string fn;
    std::optional<uint32_t> key;
    int32_t status = MWR_FAIL;
    int count = -1;
    int skip = 0;  // matching calls let through before the refusal applies
};

struct Scenario {
    std::string name;
    uint32_t stepDelayMs = 0;
    std::vector<Step> scan;
    std::vector<Step> monitor;
    KeyData keys;
    std::vector<Refusal> refusals;
};

// Returns null and fills *error when the text is not a valid scenario.
std::shared_ptr<const Scenario> parseScenario(const std::string& text, std::string* error);
// The scan run when no scenario was loaded: a few multiplexes, then the end of the scan.
std::shared_ptr<const Scenario> defaultScenario();

}  // namespace zelsim::detail

#endif  // ZEL_SIM_SCENARIO_H
