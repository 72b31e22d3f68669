// Every-notify registrations of the service, transport-stream and network lists, and the
// delivery of list changes through each registration's filter.
#include <string.h>

#include "sim_state.h"

using zelsim::Call;
using zelsim::detail::ChangeSpec;
using zelsim::detail::ListKind;
using zelsim::detail::ListRegistration;
using zelsim::detail::ptrArg;
using zelsim::detail::Sim;

namespace zelsim::detail {

namespace {

// Marks a callback of `reg` as under way on this thread; false once it was unregistered.
bool beginCallback(ListRegistration& reg) {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    if (reg.removed) return false;
    reg.inFlight.insert(std::this_thread::get_id());
    return true;
}

void endCallback(ListRegistration& reg) {
    Sim& sim = Sim::get();
    std::lock_guard<std::mutex> lock(sim.mu);
    reg.inFlight.erase(reg.inFlight.find(std::this_thread::get_id()));
    sim.cv.notify_all();
}

template <typename Rec>
Rec* recordOf(const std::vector<uint8_t>& block, Rec& storage) {
    if (block.size() != sizeof(Rec)) return nullptr;
    memcpy(&storage, block.data(), sizeof(Rec));
    return &storage;
}

// The registration's filter on one change; a registration without one lets all through.
MW_BOOL filter(const ListRegistration& reg, const ChangeSpec& c) {
    if (reg.filter == nullptr) return 1;
    switch (reg.list) {
        case ListKind::kSvl: {
            SVL_REC_T n, o;
            SVL_REC_T* pn = recordOf(c.newRec, n);
            SVL_REC_T* po = recordOf(c.oldRec, o);
            // Records of the scenario leave the list id to the registration's.
            if (pn && pn->ui2_svl_id == 0) pn->ui2_svl_id = reg.listId;
            if (po && po->ui2_svl_id == 0) po->ui2_svl_id = reg.listId;
            return reinterpret_cast<svl_every_filter_fct>(reg.filter)(reg.listId, c.type, pn, po);
        }
        case ListKind::kTsl: {
            TSL_REC_T n, o;
            return reinterpret_cast<tsl_every_filter_fct>(reg.filter)(reg.listId, c.type, recordOf(c.newRec, n),
                                                                       recordOf(c.oldRec, o));
        }
        case ListKind::kNwl: {
            NWL_REC_T n, o;
            return reinterpret_cast<nwl_every_filter_fct>(reg.filter)(reg.listId, c.type, recordOf(c.newRec, n),
                                                                       recordOf(c.oldRec, o));
        }
    }
    return 1;
}

void notify(const ListRegistration& reg, const std::vector<SVL_EVERY_NTF_EVT>& passed) {
    const auto count = static_cast<uint32_t>(passed.size());
    switch (reg.list) {
        case ListKind::kSvl:
            reinterpret_cast<svl_every_nfy_fct>(reg.nfy)(reg.listId, count, passed.data(), reg.tag);
            break;
        case ListKind::kTsl:
            reinterpret_cast<tsl_every_nfy_fct>(reg.nfy)(reg.listId, count, passed.data(), reg.tag);
            break;
        case ListKind::kNwl:
            reinterpret_cast<nwl_every_nfy_fct>(reg.nfy)(reg.listId, count, passed.data(), reg.tag);
            break;
    }
}

int32_t registerList(const char* fn, ListKind list, uint16_t listId, void* pf_filter, void* pf_nfy, void* pv_tag,
                     HANDLE_T* ph_nfy) {
    Sim& sim = Sim::get();
    Call call{fn, {listId, ptrArg(pf_filter), ptrArg(pf_nfy), ptrArg(pv_tag), ptrArg(ph_nfy)}, {}, {}, {}};
    if (auto refused = sim.admit(std::move(call))) return *refused;
    if (pf_nfy == nullptr || ph_nfy == nullptr) return MWR_INV_ARG;
    auto reg = std::make_shared<ListRegistration>();
    reg->list = list;
    reg->handle = sim.newHandle();
    reg->listId = listId;
    reg->filter = pf_filter;
    reg->nfy = pf_nfy;
    reg->tag = pv_tag;
    {
        std::lock_guard<std::mutex> lock(sim.mu);
        sim.listRegs[reg->handle] = reg;
    }
    *ph_nfy = reg->handle;
    return MWR_OK;
}

// After this returns no callback of the registration runs on another thread (the library
// may destroy the tag next); one under way on this thread is its own caller.
int32_t unregisterList(const char* fn, ListKind list, HANDLE_T h_nfy) {
    Sim& sim = Sim::get();
    if (auto refused = sim.admit(Call{fn, {h_nfy}, {}, {}, {}})) return *refused;
    std::unique_lock<std::mutex> lock(sim.mu);
    auto it = sim.listRegs.find(h_nfy);
    if (it == sim.listRegs.end() || it->second->list != list) return MWR_INV_HANDLE;
    std::shared_ptr<ListRegistration> reg = it->second;
    sim.listRegs.erase(it);
    reg->removed = true;
    const auto self = std::this_thread::get_id();
    sim.cv.wait(lock, [&] { return reg->inFlight.size() == reg->inFlight.count(self); });
    return MWR_OK;
}

}  // namespace

void deliverListChanges(ListKind list, std::optional<uint16_t> listId, const std::vector<ChangeSpec>& changes) {
    Sim& sim = Sim::get();
    std::vector<std::shared_ptr<ListRegistration>> regs;
    {
        std::lock_guard<std::mutex> lock(sim.mu);
        for (const auto& entry : sim.listRegs) {
            if (entry.second->list == list && (!listId || *listId == entry.second->listId)) {
                regs.push_back(entry.second);
            }
        }
    }
    const std::string filterHook = std::string(listName(list)) + "_filter";
    const std::string nfyHook = std::string(listName(list)) + "_nfy";
    for (const auto& reg : regs) {
        std::vector<SVL_EVERY_NTF_EVT> passed;
        bool live = true;
        for (const ChangeSpec& c : changes) {
            if (!(live = beginCallback(*reg))) break;
            const MW_BOOL pass = filter(*reg, c);
            endCallback(*reg);
            if (reg->filter != nullptr) sim.afterCallback(filterHook.c_str());
            if (pass) passed.push_back(SVL_EVERY_NTF_EVT{c.type, c.record});
        }
        if (!live || passed.empty() || !beginCallback(*reg)) continue;
        notify(*reg, passed);
        endCallback(*reg);
        sim.afterCallback(nfyHook.c_str());
    }
}

}  // namespace zelsim::detail

using zelsim::detail::registerList;
using zelsim::detail::unregisterList;

extern "C" {

int32_t c_svl_register_every_notify(uint16_t ui2_svl_id, svl_every_filter_fct pf_filter, svl_every_nfy_fct pf_nfy,
                                    void* pv_tag, HANDLE_T* ph_nfy) {
    return registerList("c_svl_register_every_notify", ListKind::kSvl, ui2_svl_id,
                        reinterpret_cast<void*>(pf_filter), reinterpret_cast<void*>(pf_nfy), pv_tag, ph_nfy);
}

int32_t c_svl_unreg_every_notify(HANDLE_T h_nfy) {
    return unregisterList("c_svl_unreg_every_notify", ListKind::kSvl, h_nfy);
}

int32_t c_tsl_register_every_notify(uint16_t ui2_tsl_id, tsl_every_filter_fct pf_filter, tsl_every_nfy_fct pf_nfy,
                                    void* pv_tag, HANDLE_T* ph_nfy) {
    return registerList("c_tsl_register_every_notify", ListKind::kTsl, ui2_tsl_id,
                        reinterpret_cast<void*>(pf_filter), reinterpret_cast<void*>(pf_nfy), pv_tag, ph_nfy);
}

int32_t c_tsl_unreg_every_notify(HANDLE_T h_nfy) {
    return unregisterList("c_tsl_unreg_every_notify", ListKind::kTsl, h_nfy);
}

int32_t c_nwl_register_every_notify(uint16_t ui2_nwl_id, nwl_every_filter_fct pf_filter, nwl_every_nfy_fct pf_nfy,
                                    void* pv_tag, HANDLE_T* ph_nfy) {
    return registerList("c_nwl_register_every_notify", ListKind::kNwl, ui2_nwl_id,
                        reinterpret_cast<void*>(pf_filter), reinterpret_cast<void*>(pf_nfy), pv_tag, ph_nfy);
}

int32_t c_nwl_unreg_every_notify(HANDLE_T h_nfy) {
    return unregisterList("c_nwl_unreg_every_notify", ListKind::kNwl, h_nfy);
}

}  // extern "C"
