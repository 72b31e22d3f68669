// Builder keys (x_sb_get answers from the scenario, x_sb_set recorded) and the network
// list that key 76 names.
#include <string.h>

#include "sim_state.h"

using zelsim::Call;
using zelsim::detail::KeyData;
using zelsim::detail::ptrArg;
using zelsim::detail::Sim;

namespace {

// Keys whose value travels in the value argument itself, not behind it.
bool setByValue(SB_KEY_TYPE_T key) {
    return key == SB_KEY_TYPE_FAV_NWL_REC_ID || key == SB_KEY_TYPE_SELECTED_LCNV2_CHLIST ||
           key == SB_KEY_TYPE_SVC_LCN_NUM || key == SB_KEY_TYPE_NAME_SORTING_NUM;
}

// Keys whose key info points to a region key rather than carrying an index.
bool keyInfoIsRegion(SB_KEY_TYPE_T key) {
    return key == SB_KEY_TYPE_REGION_NUM || key == SB_KEY_TYPE_REGION_TABLE;
}

uint32_t indexOf(SB_KEY_INFO_T info) { return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(info)); }

// Writes an answer into the caller's buffer if it is large enough.
int32_t answer(const void* src, size_t size, uint32_t* pz_len, void* pv_data) {
    if (pz_len == nullptr || pv_data == nullptr || *pz_len < size) return MWR_INV_ARG;
    if (size > 0) memcpy(pv_data, src, size);
    *pz_len = static_cast<uint32_t>(size);
    return MWR_OK;
}

template <typename T>
int32_t answerAt(const std::vector<T>& table, uint32_t index, uint32_t* pz_len, void* pv_data) {
    if (index >= table.size()) return MWR_NOT_FOUND;
    return answer(&table[index], sizeof(T), pz_len, pv_data);
}

// A key given as raw blocks; caller holds Sim::mu.
int32_t getRawKey(const KeyData::Raw& raw, SB_KEY_INFO_T info, uint32_t* pz_len, void* pv_data) {
    const uint32_t i = raw.indexed ? indexOf(info) : 0;
    if (i >= raw.blocks.size()) return MWR_NOT_FOUND;
    const std::vector<uint8_t>& block = raw.blocks[i];
    return answer(block.data(), block.size(), pz_len, pv_data);
}

// Caller holds Sim::mu.
int32_t getKey(const KeyData& k, SB_KEY_TYPE_T key, SB_KEY_INFO_T info, uint32_t* pz_len, void* pv_data) {
    auto raw = k.raw.find(key);
    if (raw != k.raw.end()) return getRawKey(raw->second, info, pz_len, pv_data);
    switch (key) {
        case SB_KEY_TYPE_NWL_HANDLE:
            if (!k.nwlHandle) break;
            return answer(&*k.nwlHandle, sizeof(HANDLE_T), pz_len, pv_data);
        case SB_KEY_TYPE_LCN_CONFLICT_NUM:
            if (!k.conflictCount) break;
            return answer(&*k.conflictCount, 1, pz_len, pv_data);
        case SB_KEY_TYPE_LCN_CONFLICT_GROUP: {
            if (!k.conflictCount) break;
            const uint32_t g = indexOf(info);
            if (g >= k.conflictGroups.size()) return MWR_NOT_FOUND;
            SB_LCN_CONFLICT_GROUP_T rec{static_cast<uint8_t>(g), 0, k.conflictGroups[g].lcn, k.conflictGroups[g].data};
            return answer(&rec, sizeof(rec), pz_len, pv_data);
        }
        case SB_KEY_TYPE_LCN_CONFLICT_CHANNEL: {
            if (!k.conflictCount) break;
            const uint32_t g = indexOf(info);
            if (g >= k.conflictGroups.size()) return MWR_NOT_FOUND;
            if (pz_len == nullptr || pv_data == nullptr || *pz_len < sizeof(SB_LCN_CONFLICT_CHANNEL_T)) {
                return MWR_INV_ARG;
            }
            // The caller names the channel in the record it passes.
            SB_LCN_CONFLICT_CHANNEL_T rec;
            memcpy(&rec, pv_data, sizeof(rec));
            const auto& channels = k.conflictGroups[g].channels;
            if (rec.ui2_ch_idx >= channels.size()) return MWR_NOT_FOUND;
            const uint16_t ch = rec.ui2_ch_idx;
            memset(&rec, 0, sizeof(rec));
            rec.ui2_ch_idx = ch;
            rec.ui2_svl_id = channels[ch].first;
            rec.ui2_svl_rec_id = channels[ch].second;
            return answer(&rec, sizeof(rec), pz_len, pv_data);
        }
        case SB_KEY_TYPE_LCN_GARBAGE_INFO:
            if (!k.garbage) break;
            return answer(&*k.garbage, sizeof(*k.garbage), pz_len, pv_data);
        case SB_KEY_TYPE_SVC_LCN_INFO:
            if (!k.svcLcnInfo) break;
            return answerAt(*k.svcLcnInfo, indexOf(info), pz_len, pv_data);
        case SB_KEY_TYPE_LCNV2_CHLIST_NUM: {
            if (!k.lcnv2Lists) break;
            const uint8_t n = static_cast<uint8_t>(k.lcnv2Lists->size());
            return answer(&n, 1, pz_len, pv_data);
        }
        case SB_KEY_TYPE_LCNV2_CHLIST_INFO:
            if (!k.lcnv2Lists) break;
            return answerAt(*k.lcnv2Lists, indexOf(info), pz_len, pv_data);
        case SB_KEY_TYPE_REGION_NUM: {
            if (!k.regions) break;
            const uint16_t n = static_cast<uint16_t>(k.regions->size());
            return answer(&n, sizeof(n), pz_len, pv_data);
        }
        case SB_KEY_TYPE_REGION_TABLE:
            if (!k.regions) break;
            return answer(k.regions->data(), k.regions->size() * sizeof(SB_REGION_REC_T), pz_len, pv_data);
        case SB_KEY_TYPE_QUERY_PREFERED_REGION:
            if (!k.preferredRegion) break;
            return answer(&*k.preferredRegion, sizeof(*k.preferredRegion), pz_len, pv_data);
        default:
            break;
    }
    return MWR_NOT_FOUND;
}

// Sets that change what later gets answer; caller holds Sim::mu.
void applySet(KeyData& k, SB_KEY_TYPE_T key, SB_KEY_INFO_T info, const std::vector<uint8_t>& value) {
    if (key == SB_KEY_TYPE_SET_LCN_GARBAGE_INFO && value.size() >= sizeof(SB_LCN_GARBAGE_INFO_T)) {
        SB_LCN_GARBAGE_INFO_T g;
        memcpy(&g, value.data(), sizeof(g));
        k.garbage = g;
    } else if (key == SB_KEY_TYPE_SET_SVC_LCN_INFO && value.size() >= sizeof(SB_SVC_LCN_INFO_T)) {
        const uint32_t i = indexOf(info);
        if (i > 0xFFFF) return;
        if (!k.svcLcnInfo) k.svcLcnInfo.emplace();
        if (k.svcLcnInfo->size() <= i) k.svcLcnInfo->resize(i + 1, SB_SVC_LCN_INFO_T{});
        memcpy(&(*k.svcLcnInfo)[i], value.data(), sizeof(SB_SVC_LCN_INFO_T));
    }
}

}  // namespace

extern "C" {

int32_t x_sb_get(HANDLE_T h_builder, SB_KEY_TYPE_T e_key_type, SB_KEY_INFO_T pv_key_info, uint32_t* pz_key_data_len,
                 void* pv_key_data) {
    Sim& sim = Sim::get();
    Call call{"x_sb_get",
              {h_builder, e_key_type, ptrArg(pv_key_info), pz_key_data_len ? int64_t{*pz_key_data_len} : -1,
               ptrArg(pv_key_data)},
              {}, {}, {}};
    if (keyInfoIsRegion(e_key_type) && pv_key_info != nullptr) {
        const auto* p = static_cast<const uint8_t*>(pv_key_info);
        call.bytes.assign(p, p + sizeof(SB_REGION_KEY_T));
    }
    if (auto refused = sim.admit(std::move(call), e_key_type)) return *refused;
    std::lock_guard<std::mutex> lock(sim.mu);
    if (sim.builders.count(h_builder) == 0) return MWR_INV_HANDLE;
    return getKey(sim.keys, e_key_type, pv_key_info, pz_key_data_len, pv_key_data);
}

int32_t x_sb_set(HANDLE_T h_builder, SB_KEY_TYPE_T e_key_type, SB_KEY_INFO_T pv_key_info, uint32_t z_key_data_len,
                 void* pv_key_data) {
    Sim& sim = Sim::get();
    Call call{"x_sb_set", {h_builder, e_key_type, ptrArg(pv_key_info), z_key_data_len, ptrArg(pv_key_data)}, {}, {},
              {}};
    const bool byValue = setByValue(e_key_type);
    if (!byValue && pv_key_data != nullptr) {
        const auto* p = static_cast<const uint8_t*>(pv_key_data);
        call.bytes.assign(p, p + z_key_data_len);
    }
    std::vector<uint8_t> value = call.bytes;
    if (auto refused = sim.admit(std::move(call), e_key_type)) return *refused;
    std::lock_guard<std::mutex> lock(sim.mu);
    if (sim.builders.count(h_builder) == 0) return MWR_INV_HANDLE;
    if (!byValue && pv_key_data == nullptr && z_key_data_len > 0) return MWR_INV_ARG;
    applySet(sim.keys, e_key_type, pv_key_info, value);
    return MWR_OK;
}

int32_t x_nwl_get_num_rec(HANDLE_T h_nwl, uint16_t* pui2_num_recs, uint32_t* pui4_ver_id) {
    Sim& sim = Sim::get();
    if (auto refused = sim.admit(Call{"x_nwl_get_num_rec", {h_nwl}, {}, {}, {}})) return *refused;
    if (pui2_num_recs == nullptr) return MWR_INV_ARG;
    std::lock_guard<std::mutex> lock(sim.mu);
    if (!sim.keys.nwlHandle || *sim.keys.nwlHandle != h_nwl || h_nwl == NULL_HANDLE) return MWR_INV_HANDLE;
    *pui2_num_recs = static_cast<uint16_t>(sim.keys.nwlRecords.size());
    if (pui4_ver_id != nullptr) *pui4_ver_id = sim.keys.nwlVersion;
    return MWR_OK;
}

int32_t x_nwl_get_rec(HANDLE_T h_nwl, uint16_t ui2_nwl_rec_id, NWL_REC_T* pt_nwl_rec, uint32_t* pui4_ver_id) {
    Sim& sim = Sim::get();
    if (auto refused = sim.admit(Call{"x_nwl_get_rec", {h_nwl, ui2_nwl_rec_id}, {}, {}, {}})) return *refused;
    if (pt_nwl_rec == nullptr) return MWR_INV_ARG;
    std::lock_guard<std::mutex> lock(sim.mu);
    if (!sim.keys.nwlHandle || *sim.keys.nwlHandle != h_nwl || h_nwl == NULL_HANDLE) return MWR_INV_HANDLE;
    for (const NWL_REC_T& r : sim.keys.nwlRecords) {
        if (r.ui2_nwl_rec_id != ui2_nwl_rec_id) continue;
        *pt_nwl_rec = r;
        if (pui4_ver_id != nullptr) *pui4_ver_id = sim.keys.nwlVersion;
        return MWR_OK;
    }
    return MWR_NOT_FOUND;
}

}  // extern "C"

namespace zelsim {

void setKeyBlocks(uint32_t key, bool indexed, std::vector<std::vector<uint8_t>> blocks) {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.keys.raw[key] = KeyData::Raw{indexed, std::move(blocks)};
}

void setNetworkList(HANDLE_T nwl, std::vector<NWL_REC_T> records) {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.keys.nwlHandle = nwl;
    sim.keys.nwlRecords = std::move(records);
}

void resetKeys() {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.keys = KeyData{};
}

}  // namespace zelsim
