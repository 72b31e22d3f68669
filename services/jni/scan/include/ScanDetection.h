/*
 * The detection extensions of a satellite scan: LNB, satellite, home-transponder and MDU
 * detection. Each one, before the scan starts, writes its enable byte, notify function and
 * tag into the block; the builder then calls the notify function on its own thread, which
 * calls Java. They differ only in the row of DetectionKind that each class file gives.
 */
#ifndef SCAN_DETECTION_H
#define SCAN_DETECTION_H

#include <stddef.h>
#include <stdint.h>

#include "SatelliteExtensionCommon.h"

namespace android {

/* What one detection extension differs in. */
struct DetectionKind {
    const char* nativeClass;  // logged by the constructor
    const char* tag;          // the class's log tag
    const char* source;       // the class's source name, for assertions
    size_t enableAt;          // block offsets of the enable byte, the function and its tag
    size_t notifyAt;
    size_t tagAt;
    const char* tagName;      // the tag field's name in the onPreScan line
    x_sb_dvbs_built_nfy_fct notify;
};

/* A site of the detection kind's own class. */
#define DETECTION_SITE(kind) (::android::ScanSite{(kind).tag, (kind).source, __FUNCTION__, __LINE__})

class NativeZelTvScanDetection : public SatelliteExtension {
public:
    NativeZelTvScanDetection(JNIEnv* env, jobject thiz, const DetectionKind& kind);

    void onPreScan(void* scanParams) override;

    /* nativeSetup turns the detection on right after construction; nothing turns it off. */
    void enable(IntArrayCall<kExtensionArrayLimit>&) { mEnabled = 1; }

protected:
    ~NativeZelTvScanDetection() override = default;

private:
    const DetectionKind& mKind;
    uint8_t mEnabled = 0;
    ExtensionPeer mPeer;
};

}  // namespace android

#endif /* SCAN_DETECTION_H */
