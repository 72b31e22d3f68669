// The "installation" table of a satellite scenario, and how the builder plays it: every
// report goes through a function the extensions wrote into the block, and only when the
// block asks for it.
#include "scenario_dvbs_install.h"

#include "SbDvbsScanParams.h"
#include "scenario_parse.h"
#include "sim_state.h"
#include "x_sb_dvbs_install.h"

namespace zelsim::detail {

namespace {

DvbsLnbInput lnbInput(const json& j, const std::string& where) {
    checkFields(j, where, {"port", "name", "orbit", "sat_id", "rec_id", "signal"});
    DvbsLnbInput in;
    in.port = field<uint8_t>(j, "port", where);
    in.name = textField(j, "name", where);
    in.orbit = field<int16_t>(j, "orbit", where);
    in.satId = field<uint16_t>(j, "sat_id", where);
    in.recId = field<uint16_t>(j, "rec_id", where);
    in.signal = field<uint16_t>(j, "signal", where, 0);
    return in;
}

void homeTransponder(const json& j, const std::string& where, DvbsInstallation& out) {
    checkFields(j, where, {"rec_id", "values"});
    const json& ids = j.at("rec_id");
    const json& values = j.at("values");
    if (!ids.is_array() || ids.size() != 2 || !values.is_array() || values.size() != 3) {
        fail(where, "\"rec_id\" takes two numbers and \"values\" three");
    }
    for (size_t i = 0; i < 2; ++i) out.homeRecId[i] = asNumber<uint16_t>(ids[i], where + ".rec_id");
    for (size_t i = 0; i < 3; ++i) out.homeValues[i] = asNumber<uint32_t>(values[i], where + ".values");
    out.hasHomeTransponder = true;
}

DvbsRegionList regionList(const json& j, const std::string& where) {
    checkFields(j, where, {"rec_id", "name"});
    return DvbsRegionList{field<uint16_t>(j, "rec_id", where), textField(j, "name", where)};
}

template <typename Rec>
void report(const Run& run, size_t at, const Rec& record) {
    DvbsNotify n;
    n.at = static_cast<uint32_t>(at);
    n.record = bytesOf(record);
    playDvbsNotify(run, n);
}

bool offersLists(uint32_t selector) {
    return selector == SB_DVBS_REGION_SELECTOR_A || selector == SB_DVBS_REGION_SELECTOR_B ||
           selector == SB_DVBS_REGION_SELECTOR_C;
}

void reportInputs(const Run& run, const DvbsInstallation& inst) {
    for (const DvbsLnbInput& in : inst.inputs) {
        SB_SAT_NAME_NFY_DATA_T d;
        memset(&d, 0, sizeof(d));
        d.ui2_sat_id = in.satId;
        d.ui2_sat_rec_id = in.recId;
        d.i2_orbit = in.orbit;
        putName(d.ac_sat_name, sizeof(d.ac_sat_name), in.name);
        d.ui2_signal_level = in.signal;
        report(run, offsetof(SB_DVBS_SCAN_PARAMS, pf_sat_name_nfy), d);
    }
}

// The information function reports the region lists under the selectors that offer them,
// and the home transponder under any other.
void reportInformation(const Run& run, const SB_DVBS_SCAN_PARAMS& b, const DvbsInstallation& inst) {
    SB_DVBS_GET_INFO_NFY_DATA_T d;
    memset(&d, 0, sizeof(d));
    if (offersLists(b.ui4_operator)) {
        if (inst.regionLists.empty()) return;
        d.ui1_flags = SB_DVBS_INFO_FLAG_LIST;
        for (size_t i = 0; i < inst.regionLists.size() && i < SB_DVBS_REGION_LIST_MAX; ++i) {
            d.at_list[i].ui2_rec_id = inst.regionLists[i].recId;
            putName(d.at_list[i].ac_name, sizeof(d.at_list[i].ac_name), inst.regionLists[i].name);
        }
        d.ui2_list_num = inst.listCount.value_or(static_cast<uint16_t>(inst.regionLists.size()));
    } else {
        if (!inst.hasHomeTransponder) return;
        d.t_htp.ui2_rec_id_0 = inst.homeRecId[0];
        d.t_htp.ui2_rec_id_1 = inst.homeRecId[1];
        d.t_htp.ui4_tp_value_1 = inst.homeValues[0];
        d.t_htp.ui4_tp_value_2 = inst.homeValues[1];
        d.t_htp.ui4_tp_value_3 = inst.homeValues[2];
    }
    report(run, offsetof(SB_DVBS_SCAN_PARAMS, pf_get_info_nfy), d);
}

}  // namespace

std::shared_ptr<const DvbsInstallation> parseDvbsInstallation(const json& v, const std::string& where) {
    checkFields(v, where, {"inputs", "mdu", "home_transponder", "nit_version", "bat", "region_lists",
                           "list_count"});
    auto inst = std::make_shared<DvbsInstallation>();
    inst->inputs = parseArray<DvbsLnbInput>(v, "inputs", where, 64, lnbInput);
    if (v.contains("mdu")) {
        checkFields(v["mdu"], where + ".mdu", {"type", "signal"});
        inst->mdu.emplace(field<uint32_t>(v["mdu"], "type", where + ".mdu"),
                          field<uint16_t>(v["mdu"], "signal", where + ".mdu", 0));
    }
    if (v.contains("home_transponder")) homeTransponder(v["home_transponder"], where + ".home_transponder", *inst);
    if (v.contains("nit_version")) inst->nitVersion = field<uint8_t>(v, "nit_version", where);
    if (v.contains("bat")) {
        checkFields(v["bat"], where + ".bat", {"id", "version"});
        inst->batId = field<uint16_t>(v["bat"], "id", where + ".bat");
        inst->batVersion = field<uint8_t>(v["bat"], "version", where + ".bat");
    }
    inst->regionLists = parseArray<DvbsRegionList>(v, "region_lists", where, SB_DVBS_REGION_LIST_MAX, regionList);
    if (v.contains("list_count")) inst->listCount = field<uint16_t>(v, "list_count", where);
    return inst;
}

void playDvbsInstallation(const Run& run, const DvbsInstallation& inst) {
    if (run.scanData.size() < sizeof(SB_DVBS_SCAN_PARAMS)) return;
    SB_DVBS_SCAN_PARAMS b;
    memcpy(&b, run.scanData.data(), sizeof(b));
    if (b.b_mdu != 0 && inst.mdu) {
        SB_DVBS_MDU_NFY_DATA_T d{inst.mdu->first, inst.mdu->second, {0, 0}};
        report(run, offsetof(SB_DVBS_SCAN_PARAMS, pf_mdu_nfy), d);
    }
    if (b.b_sat_name != 0) reportInputs(run, inst);
    if (b.b_get_info != 0) reportInformation(run, b, inst);
    if (inst.nitVersion) {
        SB_DVBS_NIT_NFY_DATA_T d{*inst.nitVersion, {0, 0, 0}};
        report(run, offsetof(SB_DVBS_SCAN_PARAMS, pf_nit_built_nfy), d);
    }
    // The builder reads the bouquet the block names; another one on air is not reported.
    if (inst.batVersion && b.ui2_bat_id == inst.batId) {
        SB_DVBS_BAT_NFY_DATA_T d{inst.batId, *inst.batVersion, 0};
        report(run, offsetof(SB_DVBS_SCAN_PARAMS, pf_bat_built_nfy), d);
    }
}

void describeDvbsInstallation(const std::vector<uint8_t>& data, std::vector<std::string>& out) {
    SB_DVBS_SCAN_PARAMS b;
    memcpy(&b, data.data(), sizeof(b));
    using std::to_string;
    std::string asso = "asso_sat=" + to_string(b.ui2_asso_sat_num) + ":";
    for (uint16_t id : b.aui2_asso_sat_rec_id) asso += " " + to_string(id);
    out.push_back(asso);
    out.push_back("customized_lnb=" + to_string(b.u_160.b_customized_lnb));
    out.push_back("nit_version=" + to_string(b.ui1_nit_version));
    out.push_back("bat=" + to_string(b.ui2_bat_id) + "/" + to_string(b.ui1_bat_version));
    out.push_back("svl_name=" + std::string(b.s_svl_name, strnlen(b.s_svl_name, sizeof(b.s_svl_name))));
    out.push_back("detect=sat_name:" + to_string(b.b_sat_name) + " mdu:" + to_string(b.b_mdu) +
                  " get_info:" + to_string(b.b_get_info));
}

}  // namespace zelsim::detail
