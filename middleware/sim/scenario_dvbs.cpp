// Parsing of the satellite steps: the "satellite" description of a dish and what the
// builder finds there, and the notifications sent through the functions of the block.
#include "scenario_dvbs.h"

#include <memory>

#include "scenario.h"
#include "scenario_dvbs_install.h"
#include "scenario_parse.h"
#include "SbDvbsScanParams.h"

namespace zelsim::detail {

uint32_t polarisation(const json& v, const std::string& where) {
    if (v.is_string()) {
        const std::string p = v.get<std::string>();
        if (p == "H") return SB_DVBS_POL_H;
        if (p == "V") return SB_DVBS_POL_V;
        fail(where, "a polarisation is \"H\", \"V\" or a number");
    }
    return asNumber<uint32_t>(v, where);
}

namespace {

DvbsService service(const json& j, const std::string& where) {
    checkFields(j, where, {"name", "svc_id", "type", "lcn"});
    DvbsService s;
    s.name = textField(j, "name", where);
    s.svcId = field<uint16_t>(j, "svc_id", where);
    s.type = j.contains("type") ? serviceType(j["type"], where + ".type") : 0x01;
    s.lcn = field<uint16_t>(j, "lcn", where, 0);
    return s;
}

DvbsTransponder transponder(const json& j, const std::string& where) {
    checkFields(j, where, {"freq", "pol", "sr", "ts_id", "on_id", "nit", "services"});
    DvbsTransponder t;
    t.freqMhz = field<uint32_t>(j, "freq", where);
    if (!j.contains("pol")) fail(where, "missing \"pol\"");
    t.pol = polarisation(j["pol"], where + ".pol");
    t.symRate = field<uint32_t>(j, "sr", where);
    t.tsId = field<uint16_t>(j, "ts_id", where, 0);
    t.onId = field<uint16_t>(j, "on_id", where, 0);
    t.inNit = j.value("nit", true);
    t.services = parseArray<DvbsService>(j, "services", where, 0xFFFF, service);
    return t;
}

DvbsSatellite satellite(const json& j, const std::string& where) {
    checkFields(j, where, {"name", "orbit", "sat_id", "rec_id", "transponders"});
    DvbsSatellite s;
    s.name = textField(j, "name", where);
    s.orbit = field<int16_t>(j, "orbit", where);
    s.satId = field<uint16_t>(j, "sat_id", where);
    s.recId = field<uint16_t>(j, "rec_id", where);
    s.transponders = parseArray<DvbsTransponder>(j, "transponders", where, 0xFFFF, transponder);
    return s;
}

std::string text(const json& j, const std::string& where) {
    if (!j.is_string()) fail(where, "expected a string");
    return j.get<std::string>();
}

std::shared_ptr<DvbsScan> satelliteScan(const json& v, const std::string& where) {
    checkFields(v, where, {"satellites", "network", "categories", "tp_query", "max_transponders",
                           "tp_ms", "end", "installation"});
    auto scan = std::make_shared<DvbsScan>();
    scan->satellites = parseArray<DvbsSatellite>(v, "satellites", where, 64, satellite);
    if (scan->satellites.empty()) fail(where, "\"satellites\" must name at least one satellite");
    if (v.contains("network")) {
        const json& n = v["network"];
        checkFields(n, where + ".network", {"nw_id", "on_id", "name"});
        scan->nwId = field<uint16_t>(n, "nw_id", where + ".network");
        scan->onId = field<uint16_t>(n, "on_id", where + ".network", 0);
        scan->networkName = textField(n, "name", where + ".network", "");
    }
    scan->categories = parseArray<std::string>(v, "categories", where, 0xFFFF, text);
    const std::string query = textField(v, "tp_query", where, "tp_info");
    if (query == "sat_tp_record") scan->tpQuery = DvbsTpQuery::kSatTpRecord;
    else if (query != "tp_info") fail(where + ".tp_query", "\"tp_info\" or \"sat_tp_record\"");
    scan->maxTransponders = field<uint32_t>(v, "max_transponders", where, 200);
    scan->tpDelayMs = field<uint32_t>(v, "tp_ms", where, 60);
    scan->end = field<uint32_t>(v, "end", where, SB_REASON_COMPLETE);
    if (v.contains("installation")) {
        scan->installation = parseDvbsInstallation(v["installation"], where + ".installation");
    }
    return scan;
}

DvbsNotify serviceUpdate(const json& v, const std::string& where) {
    checkFields(v, where, {"tv_add", "tv_del", "radio_add", "radio_del", "app_add", "app_del"});
    SB_DVBS_SVC_UPDATE_NFY_DATA_T d{
        field<uint32_t>(v, "tv_add", where, 0),    field<uint32_t>(v, "tv_del", where, 0),
        field<uint32_t>(v, "radio_add", where, 0), field<uint32_t>(v, "radio_del", where, 0),
        field<uint32_t>(v, "app_add", where, 0),   field<uint32_t>(v, "app_del", where, 0)};
    return DvbsNotify{DvbsNotify::Kind::kRecord, offsetof(SB_DVBS_SCAN_PARAMS, pf_svc_update_nfy),
                      bytesOf(d), {}};
}

DvbsNotify orbitSlot(const json& v, const std::string& where) {
    checkFields(v, where, {"sat_id", "rec_id", "orbit", "name", "signal"});
    SB_SAT_NAME_NFY_DATA_T d;
    memset(&d, 0, sizeof(d));
    d.ui2_sat_id = field<uint16_t>(v, "sat_id", where);
    d.ui2_sat_rec_id = field<uint16_t>(v, "rec_id", where);
    d.i2_orbit = field<int16_t>(v, "orbit", where);
    putName(d.ac_sat_name, sizeof(d.ac_sat_name), textField(v, "name", where, ""));
    d.ui2_signal_level = field<uint16_t>(v, "signal", where, 0);
    return DvbsNotify{DvbsNotify::Kind::kRecord, offsetof(SB_DVBS_SCAN_PARAMS, pf_sat_name_nfy),
                      bytesOf(d), {}};
}

DvbsNotify svcnumDetails(const json& v, const std::string& where) {
    checkFields(v, where, {"tv", "radio", "app"});
    return DvbsNotify{DvbsNotify::Kind::kSvcnumDetails,
                      offsetof(SB_DVBS_SCAN_PARAMS, pf_svcnum_details_nfy),
                      {},
                      {field<uint16_t>(v, "tv", where, 0), field<uint16_t>(v, "radio", where, 0),
                       field<uint16_t>(v, "app", where, 0)}};
}

// Categories: a list of names, or {"count": n, "names": [...]} to send a count that differs
// from the names given (the record always has room for 30).
DvbsNotify categories(const json& v, const std::string& where) {
    const json& names = v.is_object() ? v.at("names") : v;
    if (v.is_object()) checkFields(v, where, {"count", "names"});
    if (!names.is_array() || names.size() > DVBS_TKGS_CATEGORY_MAX) {
        fail(where, "expected at most 30 category names");
    }
    DVBS_TKGS_CATEGORY_LIST_T d;
    memset(&d, 0, sizeof(d));
    for (size_t i = 0; i < names.size(); ++i) {
        putName(d.aac_name[i], sizeof(d.aac_name[i]), text(names[i], where));
    }
    d.ui2_num = v.is_object() && v.contains("count") ? field<uint16_t>(v, "count", where)
                                                     : static_cast<uint16_t>(names.size());
    return DvbsNotify{DvbsNotify::Kind::kRecord, offsetof(SB_DVBS_SCAN_PARAMS, pf_category_nfy),
                      bytesOf(d), {}};
}

// Any function of the block, with a record given as hex: what the satellite extensions'
// tables use.
DvbsNotify blockNotify(const json& v, const std::string& where) {
    checkFields(v, where, {"at", "record"});
    const uint32_t at = field<uint32_t>(v, "at", where);
    if (at % 4 != 0 || at + 8 > sizeof(SB_DVBS_SCAN_PARAMS)) {
        fail(where + ".at", "the offset of a function in the block (a multiple of 4 below 772)");
    }
    return DvbsNotify{DvbsNotify::Kind::kRecord, at, hexBlock(v.at("record"), where + ".record"), {}};
}

}  // namespace

bool parseDvbsStep(const std::string& kind, const json& v, const std::string& where, Step& out) {
    DvbsNotify (*notify)(const json&, const std::string&) = nullptr;
    if (kind == "satellite") {
        out.kind = Step::Kind::kSatellite;
        out.satellite = satelliteScan(v, where);
        return true;
    }
    if (kind == "dvbs_svc_update") notify = serviceUpdate;
    else if (kind == "orbit_slot") notify = orbitSlot;
    else if (kind == "svcnum_details") notify = svcnumDetails;
    else if (kind == "categories") notify = categories;
    else if (kind == "block_nfy") notify = blockNotify;
    else {
        DvbsNotify table;
        if (!parseDvbsOperatorTable(kind, v, where, table)) return false;
        out.kind = Step::Kind::kDvbsNotify;
        out.dvbsNotify = std::make_shared<DvbsNotify>(std::move(table));
        return true;
    }
    out.kind = Step::Kind::kDvbsNotify;
    out.dvbsNotify = std::make_shared<DvbsNotify>(notify(v, where));
    return true;
}

}  // namespace zelsim::detail
