// What the simulator knows of each builder's scan data beyond its size: where the country
// code, the service-update function and the cable scanning function sit, how the builder
// calls its scan-maps function, and how the block reads as text.
#ifndef ZEL_SIM_STANDARDS_H
#define ZEL_SIM_STANDARDS_H

#include <stdint.h>

#include <string>
#include <vector>

#include "sim_state.h"

namespace zelsim::detail {

// The country code at the start of the scan data, for the builders whose block begins
// with one ("sb_dvb", the cable builders, "sb_dtmb", "sb_isdb"); empty for the others.
std::string blockCountry(const Run& run);

// Calls the service-update function of the run's scan data, if the builder's block has one
// and it is set. ISDB's block has no tag: its function is called with a null one.
void blockServiceUpdate(const Run& run, uint16_t added, uint16_t deleted);

// Calls the cable builders' scanning function (offset 72, tag at 76) with one notification:
// SB_DVBC_NFY_NW_NAME carries `name`, the other types `value`. Nothing for other builders.
void blockScanningNotify(const Run& run, int32_t type, uint32_t value, const std::string& name);

// Calls a registered scan-maps function the way the builder named `builderName` does:
// the cable builders pass `value` and a null reserved pointer as well.
int32_t invokeScanMaps(const std::string& builderName, x_sb_scan_maps_fct fn, uint32_t cmd,
                       char* country, uint32_t value, void* input, void* output, uint32_t* len,
                       void* tag);

// The scan data as "field=value" texts (numbers in decimal, functions and tags as set or
// not), recorded with x_sb_start_scan; empty for a builder the simulator does not decode.
std::vector<std::string> describeScanData(const BuilderKind* kind, const std::vector<uint8_t>& data);

}  // namespace zelsim::detail

#endif  // ZEL_SIM_STANDARDS_H
