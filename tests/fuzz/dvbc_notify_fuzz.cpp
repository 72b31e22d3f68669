// The cable configuration's notifications as the builder sends them (the functions and tags
// of its scan block), from threads not attached to the VM: scanning records of any bytes
// (any kind, a network name that fills its room without a terminator, any country bytes)
// and service-update records of any counts, with a null tag now and then.
#include "fuzz_support.h"
#include "zel_sim.h"
#include "standard_fuzz_rig.h"
#include "x_mw_api.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::boot();
    static const auto* block =
        static_cast<const SB_DVBC_SCAN_DATA_T*>(fuzz::standardConfig(fuzz::kDvbc)->getSbScanParams(0));
    // The simulator records every middleware call (x_memcpy included): keep one input's.
    zelsim::clearCalls();
    fuzz::Input in(data, size);
    do {
        const uint8_t op = in.u8();
        if (op & 1) {
            // The kind is kept to the three the builder sends, or one past them, now and then.
            auto record = in.record<SB_DVBC_SCANNING_NFY_DATA_T>();
            if ((op & 2) == 0) record.e_nfy_type = static_cast<int32_t>(static_cast<uint32_t>(record.e_nfy_type) % 4);
            fuzz::onBuilderThread([&] { block->pf_scanning_nfy(&record, block->pv_scanning_nfy_tag); });
        } else {
            auto record = in.record<SB_DVBC_SVC_UPDATE_NFY_DATA_T>();
            void* tag = (op & 0x80) ? nullptr : block->pv_svc_update_nfy_tag;
            fuzz::onBuilderThread([&] { block->pf_svc_update_nfy(&record, tag); });
        }
    } while (in.remaining() > 0);
    return 0;
}
