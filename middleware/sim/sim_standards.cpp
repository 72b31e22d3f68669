// The builders' scan data as the simulator reads it: one row per builder with the offsets
// of what it calls back, and one decoder per block layout.
#include "sim_standards.h"

#include <stdio.h>
#include <string.h>

#include <thread>

namespace zelsim::detail {

namespace {

using Fields = std::vector<std::string>;

constexpr int kNone = -1;

template <typename Block>
bool readBlock(const std::vector<uint8_t>& data, Block* out) {
    if (data.size() < sizeof(Block)) return false;
    memcpy(out, data.data(), sizeof(Block));
    return true;
}

std::string code(const char (&c)[4]) { return std::string(c, strnlen(c, sizeof(c))); }
std::string num(uint64_t v) { return std::to_string(v); }
std::string set(const void* p) { return p != nullptr ? "set" : "none"; }

Fields describeDvb(const std::vector<uint8_t>& data) {
    SB_DVB_SCAN_DATA_T b;
    if (!readBlock(data, &b)) return {};
    return {"country=" + code(b.t_country_code), "scan_type=" + num(b.e_scan_type),
            "update_type=" + num(b.e_svc_update_type), "language=" + code(b.t_ui_lang),
            "svc_update=" + set(reinterpret_cast<void*>(b.pf_svc_update_nfy))};
}

Fields describeDvbc(const std::vector<uint8_t>& data) {
    SB_DVBC_SCAN_DATA_T b;
    if (!readBlock(data, &b)) return {};
    return {"country=" + code(b.t_country_code), "operator=" + std::to_string(b.t_operator_name),
            "scan_mode=" + num(b.e_scan_mode), "update_type=" + num(b.e_svc_update_type),
            "search_mode=" + num(b.e_search_mode), "language=" + code(b.t_ui_lang),
            "valid_mask=" + num(b.ui2_valid_mask), "nw_id=" + num(b.ui2_nw_id),
            "start_freq=" + num(b.ui4_start_freq), "end_freq=" + num(b.ui4_end_freq),
            "svc_update=" + set(reinterpret_cast<void*>(b.pf_svc_update_nfy)),
            "scanning=" + set(reinterpret_cast<void*>(b.pf_scanning_nfy))};
}

Fields describeDtmb(const std::vector<uint8_t>& data) {
    SB_DTMB_SCAN_DATA_T b;
    if (!readBlock(data, &b)) return {};
    return {"country=" + code(b.t_country_code), "language=" + code(b.t_ui_lang),
            "scan_mode=" + num(b.e_scan_mode), "svc_id_rule=" + num(b.ui4_svc_id_rule),
            "manual_freq=" + num(b.ui4_manual_freq), "update_type=" + num(b.e_svc_update_type),
            "svc_update=" + set(reinterpret_cast<void*>(b.pf_svc_update_nfy))};
}

std::string indexRange(uint32_t range) {
    return num(range >> 16) + "-" + num(range & 0xFFFF);
}

Fields describeAtsc(const std::vector<uint8_t>& data) {
    SB_ATSC_SCAN_DATA_T b;
    if (!readBlock(data, &b)) return {};
    return {"scan_type=" + num(b.e_scan_type), "index_range=" + indexRange(b.ui4_index_range)};
}

Fields describeCqam(const std::vector<uint8_t>& data) {
    SB_CQAM_SCAN_DATA_T b;
    if (!readBlock(data, &b)) return {};
    return {"scan_type=" + num(b.e_scan_type), "index_range=" + indexRange(b.ui4_index_range),
            "mode_mask=" + num(b.ui4_mode_mask), "freq_plan=" + num(b.ui1_freq_plan)};
}

Fields describeIsdb(const std::vector<uint8_t>& data) {
    SB_ISDB_SCAN_DATA_T b;
    if (!readBlock(data, &b)) return {};
    return {"country=" + code(b.t_country_code), "scan_type=" + num(b.e_scan_type),
            "first_ch=" + num(b.ui2_first_ch), "last_ch=" + num(b.ui2_last_ch),
            "svc_update=" + set(reinterpret_cast<void*>(b.pf_svc_update_nfy))};
}

// Where each builder's block keeps what the simulator calls back.
struct Layout {
    const char* builder;     // a BuilderKind name
    bool countryFirst;       // the block starts with the country code
    int svcUpdateFn;         // offset of the service-update function, or kNone
    int svcUpdateTag;        // offset of its tag, or kNone (called with a null tag)
    bool cable;              // scan-maps with value and reserved; scanning function at 72
    Fields (*describe)(const std::vector<uint8_t>&);
};

const Layout kLayouts[] = {
    {"sb_dvb", true, offsetof(SB_DVB_SCAN_DATA_T, pf_svc_update_nfy),
     offsetof(SB_DVB_SCAN_DATA_T, pv_svc_update_nfy_tag), false, describeDvb},
    {"sb_dvbc", true, offsetof(SB_DVBC_SCAN_DATA_T, pf_svc_update_nfy),
     offsetof(SB_DVBC_SCAN_DATA_T, pv_svc_update_nfy_tag), true, describeDvbc},
    {"sb_cn_dvbc", true, offsetof(SB_DVBC_SCAN_DATA_T, pf_svc_update_nfy),
     offsetof(SB_DVBC_SCAN_DATA_T, pv_svc_update_nfy_tag), true, describeDvbc},
    {"sb_dtmb", true, offsetof(SB_DTMB_SCAN_DATA_T, pf_svc_update_nfy),
     offsetof(SB_DTMB_SCAN_DATA_T, pv_svc_update_nfy_tag), false, describeDtmb},
    {"sb_atsc", false, kNone, kNone, false, describeAtsc},
    {"sb_cqam", false, kNone, kNone, false, describeCqam},
    {"sb_isdb", true, offsetof(SB_ISDB_SCAN_DATA_T, pf_svc_update_nfy), kNone, false, describeIsdb},
    // The satellite block's notifications have records of their own (sim_dvbs.cpp).
    {"sb_dvbs", true, kNone, kNone, false, describeDvbsBlock},
};

const Layout* layoutOf(const BuilderKind* kind) {
    if (kind == nullptr) return nullptr;
    for (const Layout& l : kLayouts) {
        if (strcmp(l.builder, kind->name) == 0) return &l;
    }
    return nullptr;
}

void* pointerAt(const std::vector<uint8_t>& data, int offset) {
    if (offset == kNone || data.size() < static_cast<size_t>(offset) + sizeof(void*)) return nullptr;
    void* p = nullptr;
    memcpy(&p, data.data() + offset, sizeof(p));
    return p;
}

}  // namespace

std::string blockCountry(const Run& run) {
    const Layout* l = layoutOf(run.kind);
    if (l == nullptr || !l->countryFirst || run.scanData.size() < 4) return "";
    const char* c = reinterpret_cast<const char*>(run.scanData.data());
    return std::string(c, strnlen(c, 4));
}

void blockServiceUpdate(const Run& run, uint16_t added, uint16_t deleted) {
    const Layout* l = layoutOf(run.kind);
    if (l == nullptr) return;
    void* fn = pointerAt(run.scanData, l->svcUpdateFn);
    if (fn == nullptr) return;
    // Every builder's service-update record is the same two counts.
    SB_DVB_SVC_UPDATE_NFY_DATA_T data{added, deleted};
    reinterpret_cast<x_sb_dvb_svc_update_nfy_fct>(fn)(&data, pointerAt(run.scanData, l->svcUpdateTag));
    Sim::get().afterCallback("svc_update");
}

void blockScanningNotify(const Run& run, int32_t type, uint32_t value, const std::string& name) {
    const Layout* l = layoutOf(run.kind);
    SB_DVBC_SCAN_DATA_T block;
    if (l == nullptr || !l->cable || !readBlock(run.scanData, &block) ||
        block.pf_scanning_nfy == nullptr) {
        return;
    }
    SB_DVBC_SCANNING_NFY_DATA_T nfy;
    memset(&nfy, 0, sizeof(nfy));
    nfy.e_nfy_type = type;
    memcpy(nfy.t_country, block.t_country_code, sizeof(nfy.t_country));
    nfy.t_operator_name = block.t_operator_name;
    if (type == SB_DVBC_NFY_NW_NAME) {
        (void)snprintf(nfy.u.s_nw_name, sizeof(nfy.u.s_nw_name), "%s", name.c_str());
    } else {
        nfy.u.ui4_freq = value;
    }
    block.pf_scanning_nfy(&nfy, block.pv_scanning_nfy_tag);
    Sim::get().afterCallback("scanning_nfy");
}

int32_t invokeScanMaps(const std::string& builderName, x_sb_scan_maps_fct fn, uint32_t cmd,
                       char* country, uint32_t value, void* input, void* output, uint32_t* len,
                       void* tag) {
    const Layout* l = layoutOf(builderKind(builderName.c_str()));
    if (l != nullptr && l->cable) {
        auto cable = reinterpret_cast<x_sb_dvbc_scan_maps_fct>(reinterpret_cast<void*>(fn));
        return cable(cmd, country, value, input, nullptr, output, len, tag);
    }
    return fn(cmd, country, input, output, len, tag);
}

std::vector<std::string> describeScanData(const BuilderKind* kind, const std::vector<uint8_t>& data) {
    const Layout* l = layoutOf(kind);
    return l != nullptr ? l->describe(data) : Fields{};
}

}  // namespace zelsim::detail

namespace zelsim {

namespace {

// A run of `builderName` holding `block`, as the callbacks of a started scan would see it.
detail::Run runWithBlock(const std::string& builderName, const void* block) {
    detail::Run run;
    run.name = builderName;
    run.kind = detail::builderKind(builderName.c_str());
    if (run.kind != nullptr && block != nullptr) {
        const auto* b = static_cast<const uint8_t*>(block);
        run.scanData.assign(b, b + run.kind->scanDataSize);
    }
    return run;
}

}  // namespace

void runServiceUpdate(const std::string& builderName, const void* block, uint16_t added,
                      uint16_t deleted) {
    detail::Run run = runWithBlock(builderName, block);
    std::thread([&] { detail::blockServiceUpdate(run, added, deleted); }).join();
}

void runScanningNotify(const std::string& builderName, const void* block, int32_t type,
                       uint32_t value, const std::string& name) {
    detail::Run run = runWithBlock(builderName, block);
    std::thread([&] { detail::blockScanningNotify(run, type, value, name); }).join();
}

}  // namespace zelsim
