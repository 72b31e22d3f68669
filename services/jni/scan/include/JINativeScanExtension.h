/*
 * A scan extension: an optional native object that adds one feature to a scan. The
 * engine keeps bare 64-bit handles whose low 32 bits are the extension's address and
 * calls these hooks at fixed moments of a scan.
 */
#ifndef JI_NATIVE_SCAN_EXTENSION_H
#define JI_NATIVE_SCAN_EXTENSION_H

#include <stddef.h>
#include <stdint.h>

#include <utils/RefBase.h>

namespace android {

class JINativeScanExtension : public RefBase {
public:
    /* The open builder's handle; later x_sb_get/x_sb_set calls use it. Result ignored. */
    virtual int attach(unsigned int builderHandle) = 0;
    /* Clears the stored handle; returns 0. */
    virtual int detach(unsigned int builderHandle) = 0;
    /* End of scan; the engine always passes 1. Does nothing unless overridden. */
    virtual void onScanComplete(int complete);
    /* The scan-parameter block about to go to x_sb_start_scan. Does nothing unless overridden. */
    virtual void onPreScan(void* scanParams);

    /* The extension a handle names: its low 32 bits are the address, trusted as is. */
    static JINativeScanExtension* fromHandle(int64_t handle) {
        return reinterpret_cast<JINativeScanExtension*>(  // NOLINT(performance-no-int-to-ptr)
            static_cast<uintptr_t>(static_cast<uint32_t>(handle)));
    }

#ifdef ORVELLA_RACE_CHECK
    /* The race-checking build is x86-64: extensions live below 2 GiB, where the 32-bit
     * address that their handle carries still reaches them. */
    static void* operator new(size_t size);
    static void operator delete(void* object);
#endif

protected:
    ~JINativeScanExtension() override = default;
};

/*
 * The block that the engine is handing to its extensions' onPreScan on this thread, with
 * the name of the builder it belongs to; open around the engine's onPreScan walk. An
 * extension of one standard may be added to an engine of another, whose block is laid out
 * (and sized) differently: the extension asks whose block it was given.
 */
class PreScanBlock {
public:
    PreScanBlock(const void* block, const char* builderName);
    ~PreScanBlock();
    /* The builder name of `block` while the engine prepares it on this thread, else null
     * (a block handed to onPreScan by someone else). */
    static const char* builderOf(const void* block);

    PreScanBlock(const PreScanBlock&) = delete;
    PreScanBlock& operator=(const PreScanBlock&) = delete;

private:
    const void* mBlock;
    const char* mBuilderName;
    PreScanBlock* mOuter;
};

}  // namespace android

#endif /* JI_NATIVE_SCAN_EXTENSION_H */
