// Scenario parsing: JSON to steps and key answers, with the "network" shorthand
// expanded into the notifications a real terrestrial scan produces.
#include "scenario.h"
#include "scenario_dvbs.h"
#include "scenario_parse.h"

#include <string.h>

#include <limits>
#include <set>
#include <stdexcept>

#include <nlohmann/json.hpp>

namespace zelsim::detail {

namespace {

// A scalar shorthand ({"end": 1}) or the object form ({"end": {"reason": 1}}).
template <typename T>
T scalarOr(const json& v, const char* name, const std::string& where) {
    if (v.is_object()) {
        checkFields(v, where, {name});
        return field<T>(v, name, where);
    }
    return asNumber<T>(v, where);
}

// List records, from the fields a scenario gives (the rest 0).
std::vector<uint8_t> svlRecord(const json& j, const std::string& where, uint16_t recordId) {
    checkFields(j, where, {"rec_id", "svl_id", "on_id", "ts_id", "svc_id", "nw_id", "svc_type",
                           "brdcst_type", "lcn", "channel_id", "nw_mask", "name", "freq"});
    SVL_REC_T r;
    memset(&r, 0, sizeof(r));
    r.ui2_svl_rec_id = field<uint16_t>(j, "rec_id", where, recordId);
    r.ui2_svl_id = field<uint16_t>(j, "svl_id", where, 0);
    r.ui2_on_id = field<uint16_t>(j, "on_id", where, 0);
    r.ui2_ts_id = field<uint16_t>(j, "ts_id", where, 0);
    r.ui2_svc_id = field<uint16_t>(j, "svc_id", where, 0);
    r.ui2_nw_id = field<uint16_t>(j, "nw_id", where, 0);
    r.ui1_svc_type = j.contains("svc_type") ? serviceType(j["svc_type"], where + ".svc_type") : 0;
    r.ui1_brdcst_type = field<uint8_t>(j, "brdcst_type", where, 0);
    r.ui2_lcn = field<uint16_t>(j, "lcn", where, 0);
    r.ui4_channel_id = field<uint32_t>(j, "channel_id", where, 0);
    r.ui4_nw_mask = field<uint32_t>(j, "nw_mask", where, 0);
    putName(r.ac_name, sizeof(r.ac_name), textField(j, "name", where, ""));
    r.ui4_freq = field<uint32_t>(j, "freq", where, 0);
    const auto* p = reinterpret_cast<const uint8_t*>(&r);
    return std::vector<uint8_t>(p, p + sizeof(r));
}

std::vector<uint8_t> tslRecord(const json& j, const std::string& where, uint16_t recordId) {
    checkFields(j, where, {"rec_id", "on_id", "ts_id", "nwl_rec_id", "freq"});
    TSL_REC_T r;
    memset(&r, 0, sizeof(r));
    r.ui2_tsl_rec_id = field<uint16_t>(j, "rec_id", where, recordId);
    r.ui2_on_id = field<uint16_t>(j, "on_id", where, 0);
    r.ui2_ts_id = field<uint16_t>(j, "ts_id", where, 0);
    r.ui2_nwl_rec_id = field<uint16_t>(j, "nwl_rec_id", where, 0);
    r.ui4_freq = field<uint32_t>(j, "freq", where, 0);
    const auto* p = reinterpret_cast<const uint8_t*>(&r);
    return std::vector<uint8_t>(p, p + sizeof(r));
}

NWL_REC_T nwlRecord(const json& j, const std::string& where, std::optional<uint16_t> recordId) {
    checkFields(j, where, {"rec_id", "flags", "nw_id", "on_id", "name"});
    NWL_REC_T r;
    memset(&r, 0, sizeof(r));
    r.ui1_flags = field<uint8_t>(j, "flags", where, 0);
    r.ui2_nwl_rec_id = field<uint16_t>(j, "rec_id", where, recordId);
    r.ui2_nw_id = field<uint16_t>(j, "nw_id", where, 0);
    r.ui2_on_id = field<uint16_t>(j, "on_id", where, 0);
    putName(r.ac_nw_name, sizeof(r.ac_nw_name), textField(j, "name", where, ""));
    return r;
}

std::vector<uint8_t> listRecord(ListKind list, const json& j, const std::string& where, uint16_t recordId) {
    switch (list) {
        case ListKind::kSvl: return svlRecord(j, where, recordId);
        case ListKind::kTsl: return tslRecord(j, where, recordId);
        case ListKind::kNwl: {
            NWL_REC_T r = nwlRecord(j, where, recordId);
            const auto* p = reinterpret_cast<const uint8_t*>(&r);
            return std::vector<uint8_t>(p, p + sizeof(r));
        }
    }
    return {};
}

ListKind parseList(const std::string& name, const std::string& where) {
    if (name == "svl") return ListKind::kSvl;
    if (name == "tsl") return ListKind::kTsl;
    if (name == "nwl") return ListKind::kNwl;
    fail(where, "unknown list \"" + name + "\" (svl, tsl or nwl)");
}

Step notifyStep(uint32_t reason, uint32_t data) {
    Step s;
    s.kind = Step::Kind::kNotify;
    s.reason = reason;
    s.data = data;
    return s;
}

Step scanningStep(int32_t type, uint32_t value, const std::string& name) {
    Step s;
    s.kind = Step::Kind::kScanning;
    s.nfyType = type;
    s.data = value;
    s.label = name;
    return s;
}

Step listAdd(ListKind list, std::vector<ChangeSpec> changes) {
    Step s;
    s.kind = Step::Kind::kListChange;
    s.list = list;
    s.changes = std::move(changes);
    return s;
}

Step endStep(uint32_t reason, const std::string& where) {
    if (reason != SB_REASON_COMPLETE && reason != SB_REASON_CANCEL && reason != SB_REASON_ABORT &&
        reason != SB_REASON_STOPPED) {
        fail(where, "an end reason is 1, 4, 8 or 512");
    }
    Step s;
    s.kind = Step::Kind::kEnd;
    s.reason = reason;
    return s;
}

// UHF channel N is centred on (306 + 8 N) MHz: channel 21 is 474 MHz.
uint32_t uhfHz(uint32_t channel) { return (306u + 8u * channel) * 1000000u; }

// The "network" shorthand: per multiplex the frequency, a progress report (transponder total
// = number of multiplexes, low half = services found on it) and, when services were found,
// the service update and the list additions; then the end of the scan.
void expandNetwork(const json& net, const std::string& where, std::vector<Step>& out) {
    checkFields(net, where, {"on_id", "networks", "multiplexes", "first_svl_rec_id", "end", "progress"});
    // Cable builders report their own percentage in the high half instead of the total.
    const std::string progressKind = textField(net, "progress", where, "transponders");
    if (progressKind != "transponders" && progressKind != "percent") {
        fail(where + ".progress", "\"transponders\" or \"percent\"");
    }
    const uint16_t onId = field<uint16_t>(net, "on_id", where, 0x233A);
    struct Network { uint16_t nwId; std::string name; uint8_t flags; uint16_t recId; };
    std::vector<Network> networks;
    if (net.contains("networks")) {
        const json& list = net["networks"];
        if (!list.is_array() || list.empty()) fail(where + ".networks", "expected a non-empty array");
        for (size_t i = 0; i < list.size(); ++i) {
            const std::string w = where + ".networks[" + std::to_string(i) + "]";
            checkFields(list[i], w, {"nw_id", "name", "flags", "rec_id"});
            networks.push_back({field<uint16_t>(list[i], "nw_id", w, static_cast<uint16_t>(0x3001 + i)),
                                textField(list[i], "name", w, "Network " + std::to_string(i + 1)),
                                field<uint8_t>(list[i], "flags", w, 0),
                                field<uint16_t>(list[i], "rec_id", w, static_cast<uint16_t>(i + 1))});
        }
    } else {
        networks.push_back({0x3001, "Terrestrial", 0, 1});
    }
    if (!net.contains("multiplexes") || !net["multiplexes"].is_array() || net["multiplexes"].empty()) {
        fail(where, "\"multiplexes\" must be a non-empty array");
    }
    const json& muxes = net["multiplexes"];
    if (muxes.size() > 0x7FFF) fail(where, "too many multiplexes");
    const uint32_t total = static_cast<uint32_t>(muxes.size());
    uint16_t svlRecId = field<uint16_t>(net, "first_svl_rec_id", where, 1);
    uint16_t tslRecId = 1;
    std::set<size_t> announced;
    for (size_t m = 0; m < muxes.size(); ++m) {
        const std::string w = where + ".multiplexes[" + std::to_string(m) + "]";
        const json& mux = muxes[m];
        checkFields(mux, w, {"channel", "hz", "ts_id", "on_id", "network", "services", "locks"});
        uint32_t hz = 0;
        if (mux.contains("hz")) {
            hz = field<uint32_t>(mux, "hz", w);
        } else {
            uint32_t ch = field<uint32_t>(mux, "channel", w);
            if (ch < 21 || ch > 69) fail(w, "UHF channels are 21 to 69");
            hz = uhfHz(ch);
        }
        const uint16_t tsId = field<uint16_t>(mux, "ts_id", w, static_cast<uint16_t>(0x1000 + m));
        const uint16_t muxOnId = field<uint16_t>(mux, "on_id", w, onId);
        const size_t netIdx = field<uint32_t>(mux, "network", w, 0);
        if (netIdx >= networks.size()) fail(w, "no such network");
        const Network& nw = networks[netIdx];
        const json services = mux.value("services", json::array());
        if (!services.is_array()) fail(w + ".services", "expected an array");
        if (services.size() > 0xFFFF) fail(w, "too many services");

        out.push_back(notifyStep(SB_REASON_FREQ_REPORT, hz));
        const bool locks = !mux.contains("locks") || mux["locks"].get<bool>();
        if (!locks && !services.empty()) fail(w, "a multiplex that does not lock has no services");
        if (!locks) out.push_back(scanningStep(SB_DVBC_NFY_FREQ_UNLOCK, hz, ""));
        const uint32_t high = progressKind == "percent" ? static_cast<uint32_t>((m + 1) * 100 / total) : total;
        out.push_back(notifyStep(SB_REASON_PROGRESS, (high << 16) | static_cast<uint32_t>(services.size())));
        if (services.empty()) continue;

        Step update;
        update.kind = Step::Kind::kServiceUpdate;
        update.added = static_cast<uint16_t>(services.size());
        out.push_back(update);

        std::vector<ChangeSpec> svl;
        for (size_t s = 0; s < services.size(); ++s) {
            const std::string sw = w + ".services[" + std::to_string(s) + "]";
            const json& svc = services[s];
            checkFields(svc, sw, {"name", "lcn", "svc_id", "type", "nw_mask"});
            json rec = {{"rec_id", svlRecId},
                        {"on_id", muxOnId},
                        {"ts_id", tsId},
                        {"svc_id", field<uint16_t>(svc, "svc_id", sw, static_cast<uint16_t>((tsId << 4) + s + 1))},
                        {"nw_id", nw.nwId},
                        {"lcn", field<uint16_t>(svc, "lcn", sw, 0)},
                        {"channel_id", svlRecId},
                        {"nw_mask", field<uint32_t>(svc, "nw_mask", sw, 0)},
                        {"name", textField(svc, "name", sw)},
                        {"freq", hz}};
            if (svc.contains("type")) rec["svc_type"] = svc["type"];
            else rec["svc_type"] = "tv";
            ChangeSpec c;
            c.type = LIST_REASON_RECORD_ADD;
            c.record = svlRecId;
            c.newRec = svlRecord(rec, sw, svlRecId);
            svl.push_back(std::move(c));
            ++svlRecId;
        }
        out.push_back(listAdd(ListKind::kSvl, std::move(svl)));

        ChangeSpec ts;
        ts.type = LIST_REASON_RECORD_ADD;
        ts.record = tslRecId;
        ts.newRec = tslRecord({{"on_id", muxOnId}, {"ts_id", tsId},
                               {"nwl_rec_id", nw.recId}, {"freq", hz}}, w, tslRecId);
        out.push_back(listAdd(ListKind::kTsl, {ts}));
        ++tslRecId;

        if (announced.insert(netIdx).second) {
            ChangeSpec n;
            n.type = LIST_REASON_RECORD_ADD;
            n.record = nw.recId;
            n.newRec = listRecord(ListKind::kNwl, {{"flags", nw.flags}, {"nw_id", nw.nwId},
                                                   {"on_id", muxOnId}, {"name", nw.name}},
                                  w, n.record);
            out.push_back(listAdd(ListKind::kNwl, {n}));
        }
    }
    const uint32_t end = field<uint32_t>(net, "end", where, SB_REASON_COMPLETE);
    if (end != 0) out.push_back(endStep(end, where + ".end"));
}

std::vector<uint8_t> textInput(const json& step, const std::string& where) {
    SB_DVB_SCAN_MAPS_TEXT_INPUT_T head;
    memset(&head, 0, sizeof(head));
    if (step.contains("input_values")) {
        const json& v = step["input_values"];
        if (!v.is_array() || v.size() != 3) fail(where + ".input_values", "expected three numbers");
        for (size_t i = 0; i < 3; ++i) head.aui2_value[i] = asNumber<uint16_t>(v[i], where + ".input_values");
    }
    const std::string text = textField(step, "input_text", where, "");
    std::vector<uint8_t> block(sizeof(head) + text.size() + 1, 0);
    memcpy(block.data(), &head, sizeof(head));
    memcpy(block.data() + offsetof(SB_DVB_SCAN_MAPS_TEXT_INPUT_T, ac_text), text.data(), text.size());
    return block;
}

void parseSteps(const json& list, const std::string& where, std::vector<Step>& out);

void parseStep(const json& j, const std::string& where, std::vector<Step>& out) {
    if (!j.is_object() || j.size() != 1) fail(where, "a step is an object with one field naming its kind");
    const std::string kind = j.begin().key();
    const json& v = j.begin().value();
    const std::string w = where + " (" + kind + ")";
    Step s;
    if (kind == "scan_maps") {
        checkFields(v, w, {"cmd", "output_len", "output_fill", "input", "input_values", "input_text", "input_hex",
                           "country", "value", "expect"});
        s.kind = Step::Kind::kScanMaps;
        s.cmd = field<uint32_t>(v, "cmd", w);
        s.outputLen = field<uint32_t>(v, "output_len", w, 4);
        if (s.outputLen > 0x10000) fail(w, "output_len above 65536");
        s.outputFill = field<uint8_t>(v, "output_fill", w, 0);
        const bool text = v.contains("input_values") || v.contains("input_text");
        if (int(text) + int(v.contains("input")) + int(v.contains("input_hex")) > 1) {
            fail(w, "\"input\", \"input_hex\" and a text input exclude each other");
        }
        if (text) s.input = textInput(v, w);
        else if (v.contains("input_hex")) s.input = hexBlock(v["input_hex"], w + ".input_hex");
        else s.inputValue = field<uint32_t>(v, "input", w, 0);
        if (v.contains("input_hex") && s.input.empty()) fail(w, "\"input_hex\" is empty");
        if (v.contains("country")) s.country = textField(v, "country", w);
        s.value = field<uint32_t>(v, "value", w, 0);
        if (v.contains("expect")) s.expect = field<int32_t>(v, "expect", w);
    } else if (kind == "network_name") {
        if (!v.is_string()) fail(w, "expected the network's name");
        s = scanningStep(SB_DVBC_NFY_NW_NAME, 0, v.get<std::string>());
    } else if (kind == "freq_unlock") {
        s = scanningStep(SB_DVBC_NFY_FREQ_UNLOCK, scalarOr<uint32_t>(v, "hz", w), "");
    } else if (kind == "no_network_id") {
        s = scanningStep(SB_DVBC_NFY_NO_NW_ID, scalarOr<uint16_t>(v, "nw_id", w), "");
    } else if (kind == "progress") {
        checkFields(v, w, {"channels", "transponders"});
        uint32_t t = field<uint16_t>(v, "transponders", w, 0);
        if (t > 0x7FFF) fail(w, "transponders above 32767");
        s = notifyStep(SB_REASON_PROGRESS, (t << 16) | field<uint16_t>(v, "channels", w));
    } else if (kind == "progress_only") {
        checkFields(v, w, {"channels", "high"});
        s = notifyStep(SB_REASON_PROGRESS_ONLY,
                       (static_cast<uint32_t>(field<uint16_t>(v, "high", w, 0)) << 16) |
                           field<uint16_t>(v, "channels", w));
    } else if (kind == "freq") {
        s = notifyStep(SB_REASON_FREQ_REPORT, scalarOr<uint32_t>(v, "hz", w));
    } else if (kind == "notify") {
        checkFields(v, w, {"reason", "data"});
        s = notifyStep(field<uint32_t>(v, "reason", w), field<uint32_t>(v, "data", w, 0));
    } else if (kind == "end") {
        s = endStep(scalarOr<uint32_t>(v, "reason", w), w);
    } else if (kind == "service_update") {
        checkFields(v, w, {"added", "deleted"});
        s.kind = Step::Kind::kServiceUpdate;
        s.added = field<uint16_t>(v, "added", w, 0);
        s.deleted = field<uint16_t>(v, "deleted", w, 0);
    } else if (kind == "list_change") {
        checkFields(v, w, {"list", "list_id", "changes"});
        s.kind = Step::Kind::kListChange;
        s.list = parseList(textField(v, "list", w), w);
        if (v.contains("list_id")) s.listId = field<uint16_t>(v, "list_id", w);
        if (!v.contains("changes") || !v["changes"].is_array() || v["changes"].empty()) {
            fail(w, "\"changes\" must be a non-empty array");
        }
        for (size_t i = 0; i < v["changes"].size(); ++i) {
            const json& c = v["changes"][i];
            const std::string cw = w + ".changes[" + std::to_string(i) + "]";
            checkFields(c, cw, {"type", "record", "old", "new"});
            ChangeSpec change;
            change.type = field<uint16_t>(c, "type", cw);
            change.record = field<uint16_t>(c, "record", cw);
            if (c.contains("old")) change.oldRec = listRecord(s.list, c["old"], cw + ".old", change.record);
            if (c.contains("new")) change.newRec = listRecord(s.list, c["new"], cw + ".new", change.record);
            s.changes.push_back(std::move(change));
        }
    } else if (kind == "sleep_ms") {
        s.kind = Step::Kind::kSleep;
        s.ms = scalarOr<uint32_t>(v, "ms", w);
    } else if (kind == "wait") {
        s.kind = Step::Kind::kWait;
        if (v.is_object()) {
            checkFields(v, w, {"label"});
            s.label = textField(v, "label", w);
        } else if (v.is_string()) {
            s.label = v.get<std::string>();
        } else {
            fail(w, "expected a label");
        }
        if (s.label.empty()) fail(w, "empty label");
    } else if (kind == "builder_nfy") {
        s.kind = Step::Kind::kBuilderNfy;
        s.cond = scalarOr<uint32_t>(v, "cond", w);
    } else if (kind == "network") {
        expandNetwork(v, w, out);
        return;
    } else if (parseDvbsStep(kind, v, w, s)) {
        // a satellite step
    } else {
        fail(where, "unknown step kind \"" + kind + "\"");
    }
    out.push_back(std::move(s));
}

void parseSteps(const json& list, const std::string& where, std::vector<Step>& out) {
    if (!list.is_array()) fail(where, "expected an array of steps");
    for (size_t i = 0; i < list.size(); ++i) {
        parseStep(list[i], where + "[" + std::to_string(i) + "]", out);
    }
}

SB_REGION_REC_T regionRecord(const json& j, const std::string& where) {
    checkFields(j, where, {"level", "codes", "name"});
    SB_REGION_REC_T r;
    memset(&r, 0, sizeof(r));
    r.t_key.ui1_level = field<uint8_t>(j, "level", where);
    if (r.t_key.ui1_level > 3) fail(where, "a region level is 0 to 3");
    const json codes = j.value("codes", json::array());
    if (!codes.is_array() || codes.size() > 3) fail(where + ".codes", "expected up to three codes");
    for (size_t i = 0; i < codes.size(); ++i) r.t_key.ui2_code[i] = asNumber<uint16_t>(codes[i], where + ".codes");
    putName(r.ac_name, sizeof(r.ac_name), textField(j, "name", where, ""));
    return r;
}

const json& arrayField(const json& obj, const char* name, const std::string& where) {
    const json& v = obj.at(name);
    if (!v.is_array()) fail(where + "." + name, "expected an array");
    return v;
}

void parseKeys(const json& keys, const std::string& where, KeyData& out) {
    checkFields(keys, where, {"nwl", "lcn_conflict", "lcn_garbage", "svc_lcn_info", "lcnv2_chlists",
                              "target_regions", "preferred_region", "raw"});
    if (keys.contains("nwl")) {
        const json& n = keys["nwl"];
        const std::string w = where + ".nwl";
        checkFields(n, w, {"handle", "version", "records"});
        out.nwlHandle = field<uint32_t>(n, "handle", w);
        out.nwlVersion = field<uint32_t>(n, "version", w, 1);
        std::set<uint16_t> ids;
        for (size_t i = 0; n.contains("records") && i < arrayField(n, "records", w).size(); ++i) {
            NWL_REC_T r = nwlRecord(n["records"][i], w + ".records[" + std::to_string(i) + "]", std::nullopt);
            if (!ids.insert(r.ui2_nwl_rec_id).second || r.ui2_nwl_rec_id == 0) {
                fail(w, "record ids must be unique and non-zero");
            }
            out.nwlRecords.push_back(r);
        }
    }
    if (keys.contains("lcn_conflict")) {
        const json& c = keys["lcn_conflict"];
        const std::string w = where + ".lcn_conflict";
        checkFields(c, w, {"count", "groups"});
        for (size_t g = 0; c.contains("groups") && g < arrayField(c, "groups", w).size(); ++g) {
            const json& gj = c["groups"][g];
            const std::string gw = w + ".groups[" + std::to_string(g) + "]";
            checkFields(gj, gw, {"lcn", "data", "channels"});
            ConflictGroup group;
            group.lcn = field<uint16_t>(gj, "lcn", gw);
            group.data = field<uint16_t>(gj, "data", gw, 0);
            for (size_t k = 0; gj.contains("channels") && k < arrayField(gj, "channels", gw).size(); ++k) {
                const json& ch = gj["channels"][k];
                const std::string cw = gw + ".channels[" + std::to_string(k) + "]";
                checkFields(ch, cw, {"svl_id", "svl_rec_id"});
                group.channels.emplace_back(field<uint16_t>(ch, "svl_id", cw, 1), field<uint16_t>(ch, "svl_rec_id", cw));
            }
            out.conflictGroups.push_back(std::move(group));
        }
        if (out.conflictGroups.size() > 255) fail(w, "at most 255 groups");
        out.conflictCount = c.contains("count") ? field<uint8_t>(c, "count", w)
                                                : static_cast<uint8_t>(out.conflictGroups.size());
    }
    if (keys.contains("lcn_garbage")) {
        const json& g = keys["lcn_garbage"];
        const std::string w = where + ".lcn_garbage";
        checkFields(g, w, {"tv", "radio", "data"});
        out.garbage = SB_LCN_GARBAGE_INFO_T{field<uint16_t>(g, "tv", w, 0), field<uint16_t>(g, "radio", w, 0),
                                            field<uint16_t>(g, "data", w, 0)};
    }
    if (keys.contains("svc_lcn_info")) {
        const json& list = keys["svc_lcn_info"];
        const std::string w = where + ".svc_lcn_info";
        if (!list.is_array()) fail(w, "expected an array of [four 16-bit, two 8-bit values]");
        out.svcLcnInfo.emplace();
        for (size_t i = 0; i < list.size(); ++i) {
            const std::string iw = w + "[" + std::to_string(i) + "]";
            if (!list[i].is_array() || list[i].size() != 6) fail(iw, "expected six values");
            SB_SVC_LCN_INFO_T info;
            for (size_t k = 0; k < 4; ++k) info.aui2_value[k] = asNumber<uint16_t>(list[i][k], iw);
            for (size_t k = 0; k < 2; ++k) info.aui1_value[k] = asNumber<uint8_t>(list[i][4 + k], iw);
            out.svcLcnInfo->push_back(info);
        }
    }
    if (keys.contains("lcnv2_chlists")) {
        const json& list = keys["lcnv2_chlists"];
        const std::string w = where + ".lcnv2_chlists";
        if (!list.is_array() || list.size() > 255) fail(w, "expected an array of up to 255 lists");
        out.lcnv2Lists.emplace();
        for (size_t i = 0; i < list.size(); ++i) {
            const std::string iw = w + "[" + std::to_string(i) + "]";
            checkFields(list[i], iw, {"id", "name"});
            SB_LCNV2_CHLIST_REC_T r;
            putName(r.ac_name, sizeof(r.ac_name), textField(list[i], "name", iw));
            r.ui1_lcnv2_chlist_id = field<uint8_t>(list[i], "id", iw);
            out.lcnv2Lists->push_back(r);
        }
    }
    if (keys.contains("target_regions")) {
        const json& list = keys["target_regions"];
        const std::string w = where + ".target_regions";
        if (!list.is_array() || list.size() > 0xFFFF) fail(w, "expected an array of regions");
        out.regions.emplace();
        for (size_t i = 0; i < list.size(); ++i) {
            out.regions->push_back(regionRecord(list[i], w + "[" + std::to_string(i) + "]"));
        }
    }
    if (keys.contains("preferred_region")) {
        out.preferredRegion = regionRecord(keys["preferred_region"], where + ".preferred_region");
    }
    if (keys.contains("raw")) {
        const json& raw = keys["raw"];
        if (!raw.is_object()) fail(where + ".raw", "expected an object keyed by key number");
        for (auto it = raw.begin(); it != raw.end(); ++it) {
            const std::string w = where + ".raw." + it.key();
            size_t used = 0;
            unsigned long key = 0;
            try {
                key = std::stoul(it.key(), &used, 10);
            } catch (const std::exception&) {
                used = 0;
            }
            if (used == 0 || used != it.key().size()) fail(w, "raw keys are key numbers");
            KeyData::Raw entry;
            if (it->is_array()) {
                entry.indexed = true;
                for (const json& b : *it) entry.blocks.push_back(hexBlock(b, w));
            } else {
                entry.blocks.push_back(hexBlock(*it, w));
            }
            out.raw[static_cast<uint32_t>(key)] = std::move(entry);
        }
    }
}

std::shared_ptr<Scenario> parse(const json& root) {
    checkFields(root, "scenario", {"name", "description", "step_delay_ms", "fail", "scan", "monitor",
                                   "network", "satellite", "keys"});
    auto sc = std::make_shared<Scenario>();
    sc->name = textField(root, "name", "scenario", "");
    sc->stepDelayMs = field<uint32_t>(root, "step_delay_ms", "scenario", 0);
    if (root.contains("scan")) parseSteps(root["scan"], "scan", sc->scan);
    if (root.contains("network")) expandNetwork(root["network"], "network", sc->scan);
    if (root.contains("satellite")) {
        Step satellite;
        parseDvbsStep("satellite", root["satellite"], "satellite", satellite);
        sc->scan.push_back(std::move(satellite));
    }
    if (root.contains("monitor")) parseSteps(root["monitor"], "monitor", sc->monitor);
    if (root.contains("keys")) parseKeys(root["keys"], "keys", sc->keys);
    if (root.contains("fail")) {
        const json& list = root["fail"];
        if (!list.is_array()) fail("fail", "expected an array");
        for (size_t i = 0; i < list.size(); ++i) {
            const std::string w = "fail[" + std::to_string(i) + "]";
            checkFields(list[i], w, {"fn", "key", "status", "count"});
            Refusal r;
            r.fn = textField(list[i], "fn", w);
            if (list[i].contains("key")) r.key = field<uint32_t>(list[i], "key", w);
            r.status = field<int32_t>(list[i], "status", w, MWR_FAIL);
            r.count = field<int>(list[i], "count", w, -1);
            sc->refusals.push_back(r);
        }
    }
    return sc;
}

const char* const kDefaultScenario = R"({
  "name": "built-in default",
  "step_delay_ms": 50,
  "network": {
    "on_id": 9018,
    "networks": [{"nw_id": 12290, "name": "Sim Terrestrial"}],
    "multiplexes": [
      {"channel": 22, "ts_id": 4097, "services": [
        {"name": "Sim One", "lcn": 1, "svc_id": 4161},
        {"name": "Sim Two", "lcn": 2, "svc_id": 4162}]},
      {"channel": 25},
      {"channel": 28, "ts_id": 8193, "services": [
        {"name": "Sim News", "lcn": 3, "svc_id": 8257},
        {"name": "Sim Radio", "lcn": 700, "svc_id": 8258, "type": "radio"}]}
    ]
  }
})";

}  // namespace

const char* listName(ListKind list) {
    switch (list) {
        case ListKind::kSvl: return "svl";
        case ListKind::kTsl: return "tsl";
        case ListKind::kNwl: return "nwl";
    }
    return "?";
}

size_t listRecordSize(ListKind list) {
    switch (list) {
        case ListKind::kSvl: return sizeof(SVL_REC_T);
        case ListKind::kTsl: return sizeof(TSL_REC_T);
        case ListKind::kNwl: return sizeof(NWL_REC_T);
    }
    return 0;
}

std::shared_ptr<const Scenario> parseScenario(const std::string& text, std::string* error) {
    try {
        return parse(json::parse(text));
    } catch (const std::exception& e) {
        if (error) *error = e.what();
        return nullptr;
    }
}

std::shared_ptr<const Scenario> defaultScenario() {
    static const std::shared_ptr<const Scenario> sc = parseScenario(kDefaultScenario, nullptr);
    return sc;
}

}  // namespace zelsim::detail
