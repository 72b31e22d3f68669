// Satellite scenarios: the dish's satellites with their transponders and services, played
// by the satellite builder against the scan-parameter block it was started with, and the
// notifications that the block's functions receive (scenarios/README.md, "Satellite").
#ifndef ZEL_SIM_SCENARIO_DVBS_H
#define ZEL_SIM_SCENARIO_DVBS_H

#include <stdint.h>

#include <memory>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "SbDvbsScanParams.h"

namespace zelsim::detail {

struct Step;
struct DvbsInstallation;

struct DvbsService {
    std::string name;
    uint16_t svcId = 0;
    uint8_t type = 0x01;  // DVB service type: 0x01 TV, 0x02 radio, 0x19 HD, 0x0C data...
    uint16_t lcn = 0;
};

struct DvbsTransponder {
    uint32_t freqMhz = 0;
    uint32_t pol = 0;        // SB_DVBS_POL_*
    uint32_t symRate = 0;    // kBd
    uint16_t tsId = 0;
    uint16_t onId = 0;
    bool inNit = true;       // listed in the network information of the home transponder
    std::vector<DvbsService> services;
};

struct DvbsSatellite {
    std::string name;
    int16_t orbit = 0;       // tenths of a degree, east positive
    uint16_t satId = 0;
    uint16_t recId = 0;
    std::vector<DvbsTransponder> transponders;
};

// How a scan that is neither a single-transponder nor a network scan learns the
// transponders: the operator configuration's transponder query, or the single-satellite
// configuration's transponder records (and its short record for the associated satellite).
enum class DvbsTpQuery { kTpInfo, kSatTpRecord };

struct DvbsScan {
    std::vector<DvbsSatellite> satellites;
    uint16_t nwId = 0;
    uint16_t onId = 0;
    std::string networkName;
    std::vector<std::string> categories;  // TKGS categories reported at the end
    DvbsTpQuery tpQuery = DvbsTpQuery::kTpInfo;
    uint32_t maxTransponders = 200;       // the builder stops asking after this many
    uint32_t tpDelayMs = 60;              // tuning time per transponder
    uint32_t end = 1;                     // scan-end reason, 0 for none
    std::shared_ptr<const DvbsInstallation> installation;  // scenario_dvbs_install.h
};

// A notification through a function of the block. `at` is the function's offset in the
// 780-byte block (its tag follows it); the record is passed by address, except for the
// service-number details, which take three numbers.
struct DvbsNotify {
    enum class Kind { kRecord, kSvcnumDetails };
    Kind kind = Kind::kRecord;
    uint32_t at = 0;
    std::vector<uint8_t> record;
    uint16_t numbers[3] = {0, 0, 0};
    // The builder's own look at the block before it sends the record (operator tables).
    void (*adjust)(const SB_DVBS_SCAN_PARAMS& block, std::vector<uint8_t>& record) = nullptr;
};

// A polarisation: "H", "V" or the builder's number.
uint32_t polarisation(const nlohmann::json& value, const std::string& where);

// The operator tables ("fastscan", "tkgs", "sgt"; scenarios/README.md) as the records of
// their notify functions; false for any other kind.
bool parseDvbsOperatorTable(const std::string& kind, const nlohmann::json& value,
                            const std::string& where, DvbsNotify& out);
// What the operator services wrote into a block, one "name=value" line each.
std::vector<std::string> describeDvbsOperatorFields(const SB_DVBS_SCAN_PARAMS& block);

// Parses the satellite steps ("satellite", "dvbs_svc_update", "orbit_slot",
// "svcnum_details", "categories", "block_nfy") into `out`; false for any other kind.
// Throws std::runtime_error naming `where` for a malformed step.
bool parseDvbsStep(const std::string& kind, const nlohmann::json& value, const std::string& where,
                   Step& out);

}  // namespace zelsim::detail

#endif  // ZEL_SIM_SCENARIO_DVBS_H
