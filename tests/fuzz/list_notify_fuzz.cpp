// The engine's service, transport-stream and network list callbacks and their filters, as
// the builder calls them (the functions and tag the engine registered), from threads not
// attached to the VM: any list id, any number of changes in an array of exactly that
// many entries, and any old and new records for the filters (or none).
#include <memory>

#include "fuzz_support.h"
#include "x_mw_api.h"
#include "zel_sim.h"

namespace {

struct Registration {
    void* filter;
    void* notify;
    void* tag;
};

// What the engine registered when the rig configured it: {list id, filter, notify, tag, ...}.
Registration registration(const char* fn) {
    std::vector<zelsim::Call> calls = zelsim::calls(fn);
    if (calls.empty()) abort();
    const std::vector<int64_t>& a = calls.front().args;
    auto ptr = [](int64_t v) { return reinterpret_cast<void*>(static_cast<uintptr_t>(v)); };
    return Registration{ptr(a[1]), ptr(a[2]), ptr(a[3])};
}

const Registration& registrationOf(unsigned list) {
    static const Registration regs[] = {registration("c_svl_register_every_notify"),
                                        registration("c_tsl_register_every_notify"),
                                        registration("c_nwl_register_every_notify")};
    return regs[list];
}

// A record for a filter, or null; every list's record is read as the bytes of its type.
template <typename Rec>
std::unique_ptr<Rec> maybeRecord(fuzz::Input& in, bool present) {
    if (!present) return nullptr;
    return std::make_unique<Rec>(in.record<Rec>());
}

template <typename Rec, typename Filter>
void runFilter(const Registration& reg, uint16_t listId, fuzz::Input& in) {
    const uint16_t reason = in.u16();
    const uint8_t which = in.u8();
    std::unique_ptr<Rec> newRec = maybeRecord<Rec>(in, which & 1);
    std::unique_ptr<Rec> oldRec = maybeRecord<Rec>(in, which & 2);
    fuzz::onBuilderThread(
        [&] { reinterpret_cast<Filter>(reg.filter)(listId, reason, newRec.get(), oldRec.get()); });
}

void runFilter(unsigned list, const Registration& reg, uint16_t listId, fuzz::Input& in) {
    switch (list) {
        case 0: return runFilter<SVL_REC_T, svl_every_filter_fct>(reg, listId, in);
        case 1: return runFilter<TSL_REC_T, tsl_every_filter_fct>(reg, listId, in);
        default: return runFilter<NWL_REC_T, nwl_every_filter_fct>(reg, listId, in);
    }
}

void runNotify(const Registration& reg, uint16_t listId, fuzz::Input& in) {
    const uint32_t count = in.u8();
    // Exactly `count` entries, so that reading past them is reported.
    std::unique_ptr<SVL_EVERY_NTF_EVT[]> changes(new SVL_EVERY_NTF_EVT[count]);
    for (uint32_t i = 0; i < count; ++i) changes[i] = in.record<SVL_EVERY_NTF_EVT>();
    // The three notify functions share one signature.
    auto notify = reinterpret_cast<svl_every_nfy_fct>(reg.notify);
    fuzz::onBuilderThread([&] { notify(listId, count, changes.get(), reg.tag); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::boot();
    fuzz::Input in(data, size);
    do {
        const uint8_t op = in.u8();
        const unsigned list = (op >> 1) % 3;
        const uint16_t listId = in.u16();
        const Registration& reg = registrationOf(list);
        if (op & 1) {
            runFilter(list, reg, listId, in);
        } else {
            runNotify(reg, listId, in);
        }
    } while (in.remaining() > 0);
    return 0;
}
