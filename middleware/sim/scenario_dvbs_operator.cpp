// The operator tables a satellite scan finds: Fastscan (an operator's channel list and its
// sub-lists), TKGS (the Turkish channel-list service) and the HD+ service guide. Each step
// becomes the builder's record for the notify function the block holds for it; before it is
// sent the builder compares the table's version with what the block says the receiver has.
#include <string.h>

#include "SbDvbsScanParams.h"
#include "scenario.h"
#include "scenario_dvbs.h"
#include "scenario_parse.h"
#include "x_sb_dvbs_operator.h"

namespace zelsim::detail {

namespace {

void putCode(char (&to)[SB_DVBS_FST_LANG_SIZE], const json& j, const char* name, const std::string& where) {
    putName(to, sizeof(to), textField(j, name, where, ""));
}

SB_DVBS_FST_OPERATOR_INFO_T fstOperator(const json& j, const std::string& where) {
    checkFields(j, where, {"nw_id", "sub_list_id", "pid", "version", "name", "sub_list", "country",
                           "menu_lang", "audio_lang", "audio2_lang", "subtitle_lang", "orbits",
                           "orbit_count", "parental_rating", "char_set", "subtitles",
                           "special_region", "ott_brand"});
    SB_DVBS_FST_OPERATOR_INFO_T op;
    memset(&op, 0, sizeof(op));
    op.ui2_nw_id = field<uint16_t>(j, "nw_id", where);
    op.ui1_sub_list_id = field<uint8_t>(j, "sub_list_id", where);
    op.ui2_fst_pid = field<uint16_t>(j, "pid", where);
    op.ui1_fst_version = field<uint8_t>(j, "version", where, 0);
    putName(op.ac_name, sizeof(op.ac_name), textField(j, "name", where));
    putName(op.ac_sub_list_name, sizeof(op.ac_sub_list_name), textField(j, "sub_list", where, ""));
    putCode(op.ac_country_code, j, "country", where);
    putCode(op.ac_menu_lang, j, "menu_lang", where);
    putCode(op.ac_aud1_lang, j, "audio_lang", where);
    putCode(op.ac_aud2_lang, j, "audio2_lang", where);
    putCode(op.ac_sbtl_lang, j, "subtitle_lang", where);
    const json orbits = j.value("orbits", json::array());
    if (!orbits.is_array() || orbits.size() > SB_DVBS_FST_ORBIT_MAX) {
        fail(where + ".orbits", "expected at most 16 orbital positions");
    }
    for (size_t i = 0; i < orbits.size(); ++i) {
        op.ai2_orbit[i] = asNumber<int16_t>(orbits[i], where + ".orbits");
    }
    // "orbit_count" sends a count that differs from the positions given.
    op.ui2_orbit_num = field<uint16_t>(j, "orbit_count", where, static_cast<uint16_t>(orbits.size()));
    op.ui1_pare_con_rate = field<uint8_t>(j, "parental_rating", where, 0);
    op.ui1_deft_char_set = field<uint8_t>(j, "char_set", where, 0);
    op.b_sbtl_enabled = j.value("subtitles", false) ? 1 : 0;
    op.b_spec_regn_setup = j.value("special_region", false) ? 1 : 0;
    putName(op.ac_ott_brand_id, sizeof(op.ac_ott_brand_id), textField(j, "ott_brand", where, ""));
    return op;
}

// The version changed bit is the builder's own finding: the block's selected operator has a
// version that differs from the table's.
void adjustFastscan(const SB_DVBS_SCAN_PARAMS& block, std::vector<uint8_t>& record) {
    auto* d = reinterpret_cast<SB_DVBS_FST_BUILT_NFY_DATA_T*>(record.data());
    const SB_DVBS_FST_OPERATOR_SEL_T& sel = block.t_fst_operator;
    if ((d->ui4_mask & SB_DVBS_FST_VERSION_VALID) && sel.ui2_nw_id != 0 &&
        sel.ui1_fst_version != d->ui1_fst_version) {
        d->ui4_mask |= SB_DVBS_FST_VERSION_CHANGED;
    }
}

DvbsNotify fastscan(const json& v, const std::string& where) {
    checkFields(v, where, {"home", "operators", "operator_count", "version", "changed"});
    std::vector<uint8_t> record(sizeof(SB_DVBS_FST_BUILT_NFY_DATA_T), 0);
    auto* d = reinterpret_cast<SB_DVBS_FST_BUILT_NFY_DATA_T*>(record.data());
    if (v.contains("home")) {
        const json& h = v["home"];
        checkFields(h, where + ".home", {"sat_id", "rec_id", "freq", "pol", "sr"});
        d->ui4_mask |= SB_DVBS_FST_HOME_TP_VALID;
        d->ui2_sat_id = field<uint16_t>(h, "sat_id", where + ".home");
        d->ui2_sat_rec_id = field<uint16_t>(h, "rec_id", where + ".home");
        d->ui4_freq = field<uint32_t>(h, "freq", where + ".home");
        d->e_pol = polarisation(h.at("pol"), where + ".home.pol");
        d->ui4_sym_rate = field<uint32_t>(h, "sr", where + ".home");
    }
    if (v.contains("operators")) {
        const json& ops = v["operators"];
        if (!ops.is_array() || ops.size() > SB_DVBS_FST_OPERATOR_MAX) {
            fail(where + ".operators", "expected at most 16 operator sub-lists");
        }
        d->ui4_mask |= SB_DVBS_FST_OPERATOR_VALID;
        for (size_t i = 0; i < ops.size(); ++i) {
            d->at_operator[i] = fstOperator(ops[i], where + ".operators[" + std::to_string(i) + "]");
        }
        d->ui2_operator_num = field<uint16_t>(v, "operator_count", where, static_cast<uint16_t>(ops.size()));
    }
    if (v.contains("version")) {
        d->ui4_mask |= SB_DVBS_FST_VERSION_VALID;
        d->ui1_fst_version = field<uint8_t>(v, "version", where);
    }
    if (v.value("changed", false)) d->ui4_mask |= SB_DVBS_FST_VERSION_CHANGED;
    record.resize(SB_DVBS_FST_BUILT_NFY_DATA_SIZE);  // the builder's buffer ends there
    DvbsNotify n{DvbsNotify::Kind::kRecord, offsetof(SB_DVBS_SCAN_PARAMS, pf_fst_built_nfy), record, {}};
    n.adjust = adjustFastscan;
    return n;
}

SB_DVBS_TKGS_LOCATOR_T tkgsLocator(const json& j, const std::string& where) {
    checkFields(j, where, {"freq", "pol", "sr", "pid"});
    SB_DVBS_TKGS_LOCATOR_T l;
    memset(&l, 0, sizeof(l));
    l.ui4_freq = field<uint32_t>(j, "freq", where);
    l.e_pol = polarisation(j.at("pol"), where + ".pol");
    l.ui4_sym_rate = field<uint32_t>(j, "sr", where);
    l.ui2_pid = field<uint16_t>(j, "pid", where);
    return l;
}

const json& listOf(const json& v, const char* name, size_t max, const std::string& where) {
    const json& list = v.at(name);
    if (!list.is_array() || list.size() > max) {
        fail(where + "." + name, "expected an array of at most " + std::to_string(max));
    }
    return list;
}

void tkgsTables(const json& v, const std::string& where, SB_DVBS_TKGS_BUILT_NFY_DATA_T* d) {
    if (v.contains("hidden_locators")) {
        const json& list = listOf(v, "hidden_locators", SB_DVBS_HIDDEN_LOCATOR_MAX, where);
        d->ui4_mask |= SB_DVBS_TKGS_HIDDEN_LOCATOR;
        for (size_t i = 0; i < list.size(); ++i) d->at_hidden_locator[i] = tkgsLocator(list[i], where);
        d->ui2_hidden_locator_num = static_cast<uint16_t>(list.size());
    }
    if (v.contains("categories")) {
        const json& list = listOf(v, "categories", SB_DVBS_TKGS_CATEGORY_MAX, where);
        d->ui4_mask |= SB_DVBS_TKGS_CATEGORY;
        for (size_t i = 0; i < list.size(); ++i) {
            checkFields(list[i], where + ".categories", {"no", "name"});
            d->at_category[i].ui2_no = field<uint16_t>(list[i], "no", where + ".categories");
            putName(d->at_category[i].ac_name, sizeof(d->at_category[i].ac_name),
                    textField(list[i], "name", where + ".categories"));
        }
        d->ui2_category_num = static_cast<uint16_t>(list.size());
    }
    if (v.contains("service_lists")) {
        const json& list = listOf(v, "service_lists", SB_DVBS_TKGS_SVC_LIST_MAX, where);
        d->ui4_mask |= SB_DVBS_TKGS_SVC_LIST;
        for (size_t i = 0; i < list.size(); ++i) {
            if (!list[i].is_string()) fail(where + ".service_lists", "expected names");
            putName(d->aac_svc_list_name[i], sizeof(d->aac_svc_list_name[i]), list[i].get<std::string>());
        }
        d->ui2_svc_list_num = static_cast<uint16_t>(list.size());
    }
}

// A receiver that already has the table's version hears only the version: the tables are
// the ones it has.
void adjustTkgs(const SB_DVBS_SCAN_PARAMS& block, std::vector<uint8_t>& record) {
    auto* d = reinterpret_cast<SB_DVBS_TKGS_BUILT_NFY_DATA_T*>(record.data());
    if ((d->ui4_mask & SB_DVBS_TKGS_VERSION) && block.ui1_tkgs_version == d->ui1_tkgs_version) {
        d->ui4_mask = SB_DVBS_TKGS_VERSION;
    }
}

DvbsNotify tkgs(const json& v, const std::string& where) {
    checkFields(v, where, {"version", "hidden_locators", "categories", "service_lists", "message"});
    std::vector<uint8_t> record(sizeof(SB_DVBS_TKGS_BUILT_NFY_DATA_T), 0);
    auto* d = reinterpret_cast<SB_DVBS_TKGS_BUILT_NFY_DATA_T*>(record.data());
    tkgsTables(v, where, d);
    if (v.contains("version")) {
        d->ui4_mask |= SB_DVBS_TKGS_VERSION;
        d->ui1_tkgs_version = field<uint8_t>(v, "version", where);
    }
    if (v.contains("message")) {
        d->ui4_mask |= SB_DVBS_TKGS_USER_MSG;
        putName(d->s_user_msg, sizeof(d->s_user_msg), textField(v, "message", where));
    }
    record.resize(SB_DVBS_TKGS_BUILT_NFY_DATA_SIZE);
    DvbsNotify n{DvbsNotify::Kind::kRecord, offsetof(SB_DVBS_SCAN_PARAMS, pf_tkgs_built_nfy), record, {}};
    n.adjust = adjustTkgs;
    return n;
}

DvbsNotify serviceGuide(const json& v, const std::string& where) {
    checkFields(v, where, {"version"});
    SB_DVBS_SGT_BUILT_NFY_DATA_T d{field<uint8_t>(v, "version", where)};
    return DvbsNotify{DvbsNotify::Kind::kRecord, offsetof(SB_DVBS_SCAN_PARAMS, pf_sgt_built_nfy),
                      bytesOf(d), {}};
}

}  // namespace

bool parseDvbsOperatorTable(const std::string& kind, const json& v, const std::string& where,
                            DvbsNotify& out) {
    if (kind == "fastscan") out = fastscan(v, where);
    else if (kind == "tkgs") out = tkgs(v, where);
    else if (kind == "sgt") out = serviceGuide(v, where);
    else return false;
    return true;
}

std::vector<std::string> describeDvbsOperatorFields(const SB_DVBS_SCAN_PARAMS& b) {
    using std::to_string;
    const SB_DVBS_FST_OPERATOR_SEL_T& s = b.t_fst_operator;
    std::string asso;
    for (uint16_t i = 0; i < b.ui2_asso_sat_num && i < SB_DVBS_ASSO_SAT_MAX; ++i) {
        asso += (i ? "," : "") + to_string(b.aui2_asso_sat_rec_id[i]);
    }
    auto locators = [](const SB_DVBS_TKGS_LOCATOR_T* l, size_t n) {
        std::string out;
        for (size_t i = 0; i < n && l[i].ui4_freq != 0; ++i) {
            out += (i ? "," : "") + to_string(l[i].ui4_freq) + (l[i].e_pol == SB_DVBS_POL_V ? "V" : "H") +
                   to_string(l[i].ui4_sym_rate) + "/" + to_string(l[i].ui2_pid);
        }
        return out;
    };
    return {"fst_operator=" + to_string(s.ui2_nw_id) + "/" + to_string(s.ui1_sub_list_id) + " " +
                std::string(s.ac_name, strnlen(s.ac_name, sizeof(s.ac_name))) + "/" +
                std::string(s.ac_sub_list_name, strnlen(s.ac_sub_list_name, sizeof(s.ac_sub_list_name))) +
                " pid " + to_string(s.ui2_fst_pid) + " v" + to_string(s.ui1_fst_version) +
                " charset " + to_string(s.ui1_deft_char_set),
            "asso_sats=" + asso,
            "svl_name=" + std::string(b.s_svl_name, strnlen(b.s_svl_name, sizeof(b.s_svl_name))) +
                " no_pref=" + to_string(b.b_get_info),
            "tkgs=v" + to_string(b.ui1_tkgs_version) + " mode " + to_string(b.ui1_tkgs_mode),
            "hidden=" + locators(b.at_hidden_locator, SB_DVBS_HIDDEN_LOCATOR_MAX),
            "visible=" + locators(b.at_visible_locator, SB_DVBS_VISIBLE_LOCATOR_MAX),
            "nw_id=" + to_string(b.u_160.ui2_nw_id)};
}

}  // namespace zelsim::detail
