// The scan-maps callbacks of the cable, DTMB, ATSC, clear-QAM and ISDB configurations as
// their builders call them, from a thread not attached to the VM: any command, any output
// buffer size (allocated exactly), any country bytes, the cable builders' number and the
// service-name record of their commands 17 and 58 (any bytes, its name unterminated too,
// or none), and any answer from Java.
#include <memory>

#include "fuzz_support.h"
#include "zel_sim.h"
#include "standard_fuzz_rig.h"
#include "x_mw_api.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::boot();
    // The simulator records every middleware call (x_memcpy included): keep one input's.
    zelsim::clearCalls();
    fuzz::Input in(data, size);
    const auto standard = static_cast<fuzz::Standard>(in.u8() % fuzz::kStandards);
    android::JINativeScanConfig* tag = fuzz::standardConfig(standard);
    void* fn = tag->getSbScanMapsNotify();

    const uint32_t cmd = in.u8();
    uint32_t outputLen = in.u16() % 1025;
    char country[4] = {0, 0, 0, 0};
    std::vector<uint8_t> c = in.bytes(3);
    memcpy(country, c.data(), c.size());
    const uint32_t value = in.u32();
    const uint8_t inputKind = in.u8();
    uintptr_t inputValue = in.u32();
    std::unique_ptr<SB_DVBC_SCAN_MAPS_SVC_INPUT_T> record;
    if (standard == fuzz::kDvbc && (cmd == 17 || cmd == 58)) {
        // The builder passes its record, or (kind bit 0 clear) no input at all.
        if (inputKind & 1) record.reset(new SB_DVBC_SCAN_MAPS_SVC_INPUT_T(in.record<SB_DVBC_SCAN_MAPS_SVC_INPUT_T>()));
        inputValue = 0;
    }
    std::vector<jint> answer(in.u8() % 80);
    for (jint& a : answer) a = static_cast<jint>(in.u32());
    fuzz::setStandardAnswer(answer);

    std::unique_ptr<uint8_t[]> output(new uint8_t[outputLen]);
    void* input = record ? static_cast<void*>(record.get()) : reinterpret_cast<void*>(inputValue);
    fuzz::onBuilderThread([&] {
        if (standard == fuzz::kDvbc) {
            reinterpret_cast<x_sb_dvbc_scan_maps_fct>(fn)(cmd, country, value, input, nullptr,
                                                          output.get(), &outputLen, tag);
        } else {
            reinterpret_cast<x_sb_scan_maps_fct>(fn)(cmd, country, input, output.get(), &outputLen, tag);
        }
    });
    return 0;
}
