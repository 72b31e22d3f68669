// The satellite builder ("sb_dvbs"): plays a "satellite" step against the 780-byte block
// it was started with. It asks the application about the satellite and its transponders
// through the scan-maps function with the buffer sizes of the real records, tunes the
// transponders the scan type calls for, reports them with their services, and calls the
// notification functions the block holds.
#include <string.h>

#include "SbDvbsScanParams.h"
#include "scenario_dvbs_install.h"
#include "scenario_parse.h"
#include "sim_standards.h"
#include "sim_state.h"

namespace zelsim::detail {

namespace {

// What a scan found on one transponder, and where it was told of it.
struct Tuned {
    uint32_t freqMhz = 0;
    uint32_t pol = 0;
    uint32_t symRate = 0;
    const DvbsTransponder* known = nullptr;  // the scenario's transponder there, if any
};

struct Totals {
    uint16_t svlRecId = 1;
    uint16_t tslRecId = 1;
    uint32_t serviceIndex = 0;
    uint16_t tv = 0, radio = 0, app = 0;
};

bool isDvbs(const Run& run) {
    return run.kind != nullptr && strcmp(run.kind->name, "sb_dvbs") == 0 &&
           run.scanData.size() >= sizeof(SB_DVBS_SCAN_PARAMS);
}

SB_DVBS_SCAN_PARAMS blockOf(const Run& run) {
    SB_DVBS_SCAN_PARAMS b;
    memcpy(&b, run.scanData.data(), sizeof(b));
    return b;
}

enum class Kind { kTv, kRadio, kApp };
Kind kindOf(uint8_t svcType) {
    switch (svcType) {
        case 0x01: case 0x11: case 0x16: case 0x19: case 0x1F: return Kind::kTv;
        case 0x02: case 0x0A: return Kind::kRadio;
        default: return Kind::kApp;
    }
}

const DvbsSatellite& satelliteFor(const DvbsScan& scan, uint16_t recId) {
    for (const DvbsSatellite& s : scan.satellites) {
        if (s.recId == recId) return s;
    }
    return scan.satellites.front();
}

// The scenario's transponder at a frequency the application gave (2 MHz either way, as a
// tuner would lock), on the same polarisation.
Tuned tunedAt(const DvbsSatellite& sat, uint32_t freqMhz, uint32_t pol, uint32_t symRate) {
    Tuned t{freqMhz, pol, symRate, nullptr};
    for (const DvbsTransponder& tp : sat.transponders) {
        const uint32_t diff = tp.freqMhz > freqMhz ? tp.freqMhz - freqMhz : freqMhz - tp.freqMhz;
        if (diff <= 2 && tp.pol == pol) t.known = &tp;
    }
    return t;
}

Tuned tunedOf(const DvbsTransponder& tp) { return Tuned{tp.freqMhz, tp.pol, tp.symRate, &tp}; }

ScanMapsAnswer ask(const Run& run, uint32_t cmd, uintptr_t input, uint32_t outputLen,
                   const std::vector<uint8_t>& inputRecord = {}) {
    return callScanMaps(run.name, cmd, blockCountry(run), inputRecord, input, outputLen, 0);
}

template <typename Rec>
bool answered(const ScanMapsAnswer& a, Rec* rec) {
    if (a.status != 0 || a.output.size() < sizeof(Rec)) return false;
    memcpy(rec, a.output.data(), sizeof(Rec));
    return true;
}

// A network scan tunes the home transponder given in the block, then every transponder its
// network information lists; the builder asks which satellite record holds that network.
std::vector<Tuned> networkTransponders(const Run& run, const SB_DVBS_SCAN_PARAMS& b,
                                       const DvbsScan& scan, const DvbsSatellite& sat) {
    std::vector<Tuned> list{tunedAt(sat, b.ui4_freq, b.e_pol, b.ui4_sym_rate)};
    if (list[0].known == nullptr) return list;  // nothing there: no network information
    SB_DVBS_QUERY_SAT_T q;
    memset(&q, 0, sizeof(q));
    q.aui2_value[0] = static_cast<uint16_t>(sat.orbit);
    q.aui2_value[1] = scan.onId;
    q.aui2_value[2] = scan.nwId;
    putName(q.ac_name, sizeof(q.ac_name), scan.networkName);
    q.ui4_value_76 = b.ui4_freq;
    q.ui4_value_80 = b.ui4_sym_rate;
    ask(run, DVBS_SCAN_MAPS_CMD_QUERY_SAT, 0, sizeof(uint16_t), bytesOf(q));
    for (const DvbsTransponder& tp : sat.transponders) {
        if (tp.inNit && &tp != list[0].known) list.push_back(tunedOf(tp));
    }
    return list;
}

// Any other scan asks the application for the transponders one by one, until it answers
// with a non-zero status or an empty record.
std::vector<Tuned> queriedTransponders(const Run& run, const SB_DVBS_SCAN_PARAMS& b,
                                       const DvbsScan& scan, const DvbsSatellite& sat) {
    std::vector<Tuned> list;
    for (uint32_t i = 0; i < scan.maxTransponders; ++i) {
        uint32_t freq = 0, pol = 0, sr = 0;
        if (scan.tpQuery == DvbsTpQuery::kTpInfo) {
            SB_DVBS_TP_INFO_T tp;
            if (!answered(ask(run, DVBS_SCAN_MAPS_CMD_GET_TP_INFO, i, sizeof(tp)), &tp)) break;
            freq = tp.ui4_freq, pol = tp.e_pol, sr = tp.ui4_sym_rate;
        } else {
            const uint16_t index = static_cast<uint16_t>(i);
            SB_DVBS_SAT_TP_REC_T tp;
            if (!answered(ask(run, DVBS_SCAN_MAPS_CMD_SAT_TP_REC, 0, sizeof(tp), bytesOf(index)), &tp)) break;
            freq = tp.ui4_freq, pol = tp.e_pol, sr = tp.ui4_sym_rate;
        }
        if (freq == 0) break;
        list.push_back(tunedAt(sat, freq, pol, sr));
    }
    if (scan.tpQuery == DvbsTpQuery::kSatTpRecord && b.ui2_asso_sat_num != 0) {
        ask(run, DVBS_SCAN_MAPS_CMD_SAT_TP_SHORT, 0, sizeof(SB_DVBS_SAT_TP_SHORT_T),
            bytesOf(b.aui2_asso_sat_rec_id[0]));
    }
    return list;
}

std::vector<Tuned> transpondersToScan(const Run& run, const SB_DVBS_SCAN_PARAMS& b, const DvbsScan& scan,
                                      const DvbsSatellite& sat) {
    switch (b.e_scan_type) {
        case SB_DVBS_SCAN_TYPE_SINGLE_TP: return {tunedAt(sat, b.ui4_freq, b.e_pol, b.ui4_sym_rate)};
        case SB_DVBS_SCAN_TYPE_NETWORK: return networkTransponders(run, b, scan, sat);
        default: return queriedTransponders(run, b, scan, sat);
    }
}

void callBlock(const Run& run, uint32_t at, const std::vector<uint8_t>& record) {
    DvbsNotify n;
    n.at = at;
    n.record = record;
    playDvbsNotify(run, n);
}

// The services of one transponder: the list additions, the service update by kind, and
// the application's rank and name of each.
void reportServices(const Run& run, const SB_DVBS_SCAN_PARAMS& b, const Tuned& tp, Totals& totals) {
    if (tp.known == nullptr || tp.known->services.empty()) return;
    SB_DVBS_SVC_UPDATE_NFY_DATA_T update;
    memset(&update, 0, sizeof(update));
    std::vector<ChangeSpec> svl;
    for (const DvbsService& s : tp.known->services) {
        SVL_REC_T r;
        memset(&r, 0, sizeof(r));
        r.ui2_svl_rec_id = totals.svlRecId;
        r.ui2_on_id = tp.known->onId;
        r.ui2_ts_id = tp.known->tsId;
        r.ui2_svc_id = s.svcId;
        r.ui1_svc_type = s.type;
        r.ui2_lcn = s.lcn;
        r.ui4_channel_id = totals.svlRecId;
        putName(r.ac_name, sizeof(r.ac_name), s.name);
        r.ui4_freq = tp.freqMhz;
        svl.push_back(ChangeSpec{LIST_REASON_RECORD_ADD, totals.svlRecId++, {}, bytesOf(r)});
        switch (kindOf(s.type)) {
            case Kind::kTv: ++update.ui4_tv_add, ++totals.tv; break;
            case Kind::kRadio: ++update.ui4_radio_add, ++totals.radio; break;
            case Kind::kApp: ++update.ui4_app_add, ++totals.app; break;
        }
    }
    deliverListChanges(ListKind::kSvl, std::nullopt, svl);
    TSL_REC_T ts;
    memset(&ts, 0, sizeof(ts));
    ts.ui2_tsl_rec_id = totals.tslRecId;
    ts.ui2_on_id = tp.known->onId;
    ts.ui2_ts_id = tp.known->tsId;
    ts.ui4_freq = tp.freqMhz;
    deliverListChanges(ListKind::kTsl, std::nullopt,
                       {ChangeSpec{LIST_REASON_RECORD_ADD, totals.tslRecId++, {}, bytesOf(ts)}});
    if (b.b_svc_update != 0) callBlock(run, offsetof(SB_DVBS_SCAN_PARAMS, pf_svc_update_nfy), bytesOf(update));
    for (size_t i = 0; i < tp.known->services.size(); ++i) {
        ask(run, DVBS_SCAN_MAPS_CMD_GET_SVC_INFO, totals.serviceIndex++, sizeof(SB_DVBS_SVC_INFO_T));
    }
}

void reportOrbitSlot(const Run& run, const SB_DVBS_SCAN_PARAMS& b, const DvbsSatellite& sat) {
    SB_SAT_NAME_NFY_DATA_T d;
    memset(&d, 0, sizeof(d));
    d.ui2_sat_id = b.ui2_sat_id;
    d.ui2_sat_rec_id = b.ui2_sat_rec_id;
    d.i2_orbit = sat.orbit;
    putName(d.ac_sat_name, sizeof(d.ac_sat_name), sat.name);
    callBlock(run, offsetof(SB_DVBS_SCAN_PARAMS, pf_sat_name_nfy), bytesOf(d));
}

void reportTotals(const Run& run, const DvbsScan& scan, const Totals& totals) {
    DvbsNotify details;
    details.kind = DvbsNotify::Kind::kSvcnumDetails;
    details.at = offsetof(SB_DVBS_SCAN_PARAMS, pf_svcnum_details_nfy);
    details.numbers[0] = totals.tv;
    details.numbers[1] = totals.radio;
    details.numbers[2] = totals.app;
    playDvbsNotify(run, details);
    if (scan.categories.empty()) return;
    DVBS_TKGS_CATEGORY_LIST_T list;
    memset(&list, 0, sizeof(list));
    for (size_t i = 0; i < scan.categories.size() && i < DVBS_TKGS_CATEGORY_MAX; ++i) {
        putName(list.aac_name[i], sizeof(list.aac_name[i]), scan.categories[i]);
        list.ui2_num = static_cast<uint16_t>(i + 1);
    }
    callBlock(run, offsetof(SB_DVBS_SCAN_PARAMS, pf_category_nfy), bytesOf(list));
}

std::string text(const char* field, size_t size) { return std::string(field, strnlen(field, size)); }
std::string fn(const void* p) { return p != nullptr ? "set" : "none"; }

}  // namespace

std::vector<std::string> describeDvbsBlock(const std::vector<uint8_t>& data) {
    if (data.size() < sizeof(SB_DVBS_SCAN_PARAMS)) return {};
    SB_DVBS_SCAN_PARAMS b;
    memcpy(&b, data.data(), sizeof(b));
    using std::to_string;
    std::vector<std::string> lines = {"country=" + text(b.t_country_code, 4), "language=" + text(b.t_ui_lang, 4),
            "operator=" + to_string(b.ui4_operator), "scan_type=" + to_string(b.e_scan_type),
            "satellite=" + to_string(b.ui2_sat_id) + "," + to_string(b.ui2_sat_rec_id),
            "transponder=" + to_string(b.ui4_freq) + "/" + to_string(b.e_pol) + "/" + to_string(b.ui4_sym_rate),
            "asso_sat_num=" + to_string(b.ui2_asso_sat_num), "cfg_flag=" + to_string(b.t_eng_cfg_flag),
            "svc_update=" + to_string(b.b_svc_update) + "/" + to_string(b.e_svc_update_type) + "/" +
                fn(reinterpret_cast<void*>(b.pf_svc_update_nfy)),
            "sat_name=" + fn(reinterpret_cast<void*>(b.pf_sat_name_nfy)),
            "svcnum_details=" + fn(reinterpret_cast<void*>(b.pf_svcnum_details_nfy)),
            "category=" + fn(reinterpret_cast<void*>(b.pf_category_nfy))};
    describeDvbsInstallation(data, lines);
    for (std::string& line : describeDvbsOperatorFields(b)) lines.push_back(std::move(line));
    return lines;
}

void playDvbsNotify(const Run& run, const DvbsNotify& n) {
    if (!isDvbs(run) || n.at + 2 * sizeof(void*) > sizeof(SB_DVBS_SCAN_PARAMS)) return;
    void* fn = nullptr;
    void* tag = nullptr;
    memcpy(&fn, run.scanData.data() + n.at, sizeof(fn));
    memcpy(&tag, run.scanData.data() + n.at + sizeof(fn), sizeof(tag));
    if (fn == nullptr) return;  // the block asks for no such notification
    if (n.kind == DvbsNotify::Kind::kSvcnumDetails) {
        reinterpret_cast<x_sb_svcnum_details_nfy_fct>(fn)(n.numbers[0], n.numbers[1], n.numbers[2], tag);
    } else {
        // The library gets its own copy, as it would get the builder's buffer.
        std::vector<uint8_t> record = n.record;
        if (n.adjust != nullptr && !record.empty()) n.adjust(blockOf(run), record);
        reinterpret_cast<x_sb_dvbs_built_nfy_fct>(fn)(record.empty() ? nullptr : record.data(), tag);
    }
    Sim::get().afterCallback("dvbs_nfy");
}

bool playSatelliteScan(Run& run, const DvbsScan& scan) {
    if (!isDvbs(run)) return false;
    const SB_DVBS_SCAN_PARAMS b = blockOf(run);
    const DvbsSatellite& sat = satelliteFor(scan, b.ui2_sat_rec_id);
    // An installation first finds what the dish receives, then scans.
    if (scan.installation) playDvbsInstallation(run, *scan.installation);
    ask(run, DVBS_SCAN_MAPS_CMD_GET_SAT_INFO, b.ui2_sat_rec_id, sizeof(SB_DVBS_SAT_INFO_T));
    reportOrbitSlot(run, b, sat);
    const std::vector<Tuned> tps = transpondersToScan(run, b, scan, sat);
    Totals totals;
    for (size_t k = 0; k < tps.size(); ++k) {
        if (!pause(run, scan.tpDelayMs)) return false;
        notifyScan(run, SB_REASON_FREQ_REPORT, tps[k].freqMhz);
        reportServices(run, b, tps[k], totals);
        const uint32_t found = tps[k].known ? static_cast<uint32_t>(tps[k].known->services.size()) : 0;
        const uint32_t percent = static_cast<uint32_t>((k + 1) * 100 / tps.size());
        notifyScan(run, SB_REASON_PROGRESS, (percent << 16) | (found & 0xFFFF));
    }
    reportTotals(run, scan, totals);
    return scan.end != 0 && endScan(run, scan.end);
}

}  // namespace zelsim::detail
