// The DVB-T scan-maps callback as the builder calls it, from a thread not attached to the
// VM: any command, any output buffer size (allocated exactly, so that a write past it is
// reported), the name input of commands 27 and 28 (or none), any country bytes, and any
// answer from Java (length and values) read back into the builder's buffer.
#include <memory>

#include "fuzz_support.h"
#include "x_mw_api.h"

namespace {

// Commands 27 and 28: three 16-bit values and a NUL-terminated name.
std::vector<uint8_t> textInput(fuzz::Input& in) {
    std::vector<uint8_t> record = in.bytes(6);
    record.resize(6, 0);
    std::vector<uint8_t> text = in.bytes(in.u8());
    record.insert(record.end(), text.begin(), text.end());
    record.push_back(0);
    return record;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::boot();
    static android::JINativeScanConfig* tag = fuzz::rigConfig();
    static auto scanMaps = reinterpret_cast<x_sb_scan_maps_fct>(tag->getSbScanMapsNotify());
    fuzz::Input in(data, size);

    const uint32_t cmd = in.u8();
    uint32_t outputLen = in.u16() % 1025;
    char country[4] = {0, 0, 0, 0};
    std::vector<uint8_t> c = in.bytes(3);
    memcpy(country, c.data(), c.size());
    const bool textCommand = cmd == 27 || cmd == 28;
    const uint8_t inputKind = in.u8();
    std::vector<uint8_t> record;
    uintptr_t inputValue = in.u32();
    if (textCommand) {
        if (inputKind & 1) record = textInput(in);
        inputValue = 0;
    }
    std::vector<jint> answer(in.u8() % 80);
    for (jint& a : answer) a = static_cast<jint>(in.u32());
    fuzz::setRigAnswer(answer);

    std::unique_ptr<uint8_t[]> output(new uint8_t[outputLen]);
    void* input = record.empty() ? reinterpret_cast<void*>(inputValue) : record.data();
    fuzz::onBuilderThread([&] { scanMaps(cmd, country, input, output.get(), &outputLen, tag); });
    return 0;
}
