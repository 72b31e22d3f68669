// Installation of a satellite dish (the "installation" table of a "satellite" scenario):
// what the satellite builder detects and reads before it scans, reported through the
// detection, table and information functions of the block (scenarios/README.md,
// "Installation").
#ifndef ZEL_SIM_SCENARIO_DVBS_INSTALL_H
#define ZEL_SIM_SCENARIO_DVBS_INSTALL_H

#include <stdint.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace zelsim::detail {

struct Run;

// A satellite received on one input of the dish (a DiSEqC port).
struct DvbsLnbInput {
    uint8_t port = 0;
    std::string name;
    int16_t orbit = 0;   // tenths of a degree, east positive
    uint16_t satId = 0;
    uint16_t recId = 0;
    uint16_t signal = 0;
};

struct DvbsRegionList {
    uint16_t recId = 0;
    std::string name;
};

struct DvbsInstallation {
    std::vector<DvbsLnbInput> inputs;
    std::optional<std::pair<uint32_t, uint16_t>> mdu;  // type, signal level
    bool hasHomeTransponder = false;
    uint16_t homeRecId[2] = {0, 0};
    uint32_t homeValues[3] = {0, 0, 0};                 // frequency, polarisation, symbol rate
    std::optional<uint8_t> nitVersion;                  // the NIT version on air
    uint16_t batId = 0;                                 // the BAT on air
    std::optional<uint8_t> batVersion;
    std::vector<DvbsRegionList> regionLists;
    std::optional<uint16_t> listCount;                  // a count that differs from the lists
};

// Parses an "installation" table; throws ParseError naming `where`.
std::shared_ptr<const DvbsInstallation> parseDvbsInstallation(const nlohmann::json& v,
                                                              const std::string& where);

// Plays the installation against the block the scan was started with.
void playDvbsInstallation(const Run& run, const DvbsInstallation& installation);

// The block's installation fields, as the builder read them.
void describeDvbsInstallation(const std::vector<uint8_t>& block, std::vector<std::string>& out);

}  // namespace zelsim::detail

#endif  // ZEL_SIM_SCENARIO_DVBS_INSTALL_H
