// The DVB-T service-update notification as the builder sends it (the function and tag of
// the configuration's scan block), from threads not attached to the VM: any counts, and
// a null tag.
#include "fuzz_support.h"
#include "x_mw_api.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::boot();
    static const auto* block = static_cast<const SB_DVB_SCAN_DATA_T*>(fuzz::rigConfig()->getSbScanParams(0));
    fuzz::Input in(data, size);
    do {
        const bool nullTag = (in.u8() & 0x80) != 0;
        SB_DVB_SVC_UPDATE_NFY_DATA_T record = in.record<SB_DVB_SVC_UPDATE_NFY_DATA_T>();
        void* tag = nullTag ? nullptr : block->pv_svc_update_nfy_tag;
        fuzz::onBuilderThread([&] { block->pf_svc_update_nfy(&record, tag); });
    } while (in.remaining() > 0);
    return 0;
}
