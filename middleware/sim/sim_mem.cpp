// Memory, string and handle functions of the middleware, with their C library meaning.
// Each call is recorded; x_mem_alloc and handle_alloc can be refused.
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "sim_state.h"

using zelsim::Call;
using zelsim::detail::HandleEntry;
using zelsim::detail::ptrArg;
using zelsim::detail::Sim;

namespace {
constexpr HANDLE_T kRefusedHandleJunk = 0x5eed;
}  // namespace

extern "C" {

void* x_mem_alloc(size_t z_size) {
    Sim& sim = Sim::get();
    if (sim.admit(Call{"x_mem_alloc", {static_cast<int64_t>(z_size)}, {}, {}, {}})) return nullptr;
    void* p = malloc(z_size == 0 ? 1 : z_size);
    if (p != nullptr) {
        std::lock_guard<std::mutex> lock(sim.mu);
        sim.allocations.insert(p);
    }
    return p;
}

void x_mem_free(void* pv_mem) {
    Sim& sim = Sim::get();
    sim.admit(Call{"x_mem_free", {ptrArg(pv_mem)}, {}, {}, {}});
    if (pv_mem == nullptr) return;
    {
        std::lock_guard<std::mutex> lock(sim.mu);
        sim.allocations.erase(pv_mem);
    }
    free(pv_mem);
}

void* x_memset(void* pv_to, int32_t i4_value, size_t z_len) {
    Sim::get().admit(Call{"x_memset", {ptrArg(pv_to), i4_value, static_cast<int64_t>(z_len)}, {}, {}, {}});
    return memset(pv_to, i4_value, z_len);
}

void* x_memcpy(void* pv_to, const void* pv_from, size_t z_len) {
    Sim::get().admit(
        Call{"x_memcpy", {ptrArg(pv_to), ptrArg(pv_from), static_cast<int64_t>(z_len)}, {}, {}, {}});
    return memcpy(pv_to, pv_from, z_len);
}

size_t x_strlen(const char* ps_str) {
    Sim::get().admit(Call{"x_strlen", {ptrArg(ps_str)}, ps_str ? ps_str : "", {}, {}});
    return strlen(ps_str);
}

char* x_strncpy(char* ps_to, const char* ps_from, size_t z_len) {
    Sim::get().admit(
        Call{"x_strncpy", {ptrArg(ps_to), ptrArg(ps_from), static_cast<int64_t>(z_len)}, {}, {}, {}});
    return strncpy(ps_to, ps_from, z_len);
}

int32_t x_strncmp(const char* ps_a, const char* ps_b, size_t z_len) {
    Sim::get().admit(Call{"x_strncmp", {ptrArg(ps_a), ptrArg(ps_b), static_cast<int64_t>(z_len)}, {}, {}, {}});
    return strncmp(ps_a, ps_b, z_len);
}

int32_t x_sprintf(char* ps_buf, const char* ps_format, ...) {
    va_list ap;
    va_start(ap, ps_format);
    int n = vsprintf(ps_buf, ps_format, ap);
    va_end(ap);
    Sim::get().admit(Call{"x_sprintf", {ptrArg(ps_buf)}, n >= 0 ? ps_buf : "", {}, {}});
    return n;
}

int32_t handle_alloc(HANDLE_TYPE_T e_type, void* pv_obj, void* pv_tag, handle_free_fct pf_free,
                     HANDLE_T* ph_handle) {
    Sim& sim = Sim::get();
    Call call{"handle_alloc", {e_type, ptrArg(pv_obj), ptrArg(pv_tag), ptrArg(reinterpret_cast<void*>(pf_free))},
              {}, {}, {}};
    if (auto refused = sim.admit(std::move(call))) {
        // A refusing middleware may leave anything in the out parameter.
        if (ph_handle != nullptr) *ph_handle = kRefusedHandleJunk;
        return *refused;
    }
    if (ph_handle == nullptr) return MWR_INV_ARG;
    HANDLE_T h = sim.newHandle();
    {
        std::lock_guard<std::mutex> lock(sim.mu);
        sim.handles[h] = HandleEntry{e_type, pv_obj, pv_tag, pf_free};
    }
    *ph_handle = h;
    return MWR_OK;
}

int32_t handle_get_obj(HANDLE_T h_handle, void** ppv_obj) {
    Sim& sim = Sim::get();
    if (auto refused = sim.admit(Call{"handle_get_obj", {h_handle}, {}, {}, {}})) return *refused;
    if (ppv_obj == nullptr) return MWR_INV_ARG;
    std::lock_guard<std::mutex> lock(sim.mu);
    auto it = sim.handles.find(h_handle);
    if (it == sim.handles.end()) return MWR_INV_HANDLE;
    *ppv_obj = it->second.obj;
    return MWR_OK;
}

int32_t x_handle_free(HANDLE_T h_handle) {
    Sim& sim = Sim::get();
    if (auto refused = sim.admit(Call{"x_handle_free", {h_handle}, {}, {}, {}})) return *refused;
    HandleEntry entry;
    {
        std::lock_guard<std::mutex> lock(sim.mu);
        auto it = sim.handles.find(h_handle);
        if (it == sim.handles.end()) return MWR_INV_HANDLE;
        entry = it->second;
    }
    // The owner is asked first (library code: no lock held); a false answer keeps the handle.
    if (entry.freeFct != nullptr && !entry.freeFct(h_handle, entry.type, entry.obj, entry.tag, 1)) {
        return MWR_NOT_ALLOWED;
    }
    std::lock_guard<std::mutex> lock(sim.mu);
    return sim.handles.erase(h_handle) ? MWR_OK : MWR_INV_HANDLE;
}

int32_t x_orvella_filter_register_get_pipeline_obj(x_orvella_get_pipeline_obj_fct pf_get) {
    Sim& sim = Sim::get();
    Call call{"x_orvella_filter_register_get_pipeline_obj", {ptrArg(reinterpret_cast<void*>(pf_get))}, {}, {}, {}};
    if (auto refused = sim.admit(std::move(call))) return *refused;
    std::lock_guard<std::mutex> lock(sim.mu);
    sim.pipelineLookup = pf_get;
    return MWR_OK;
}

}  // extern "C"
