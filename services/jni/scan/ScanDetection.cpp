// The detection family's one implementation; the class files give the rows.

#include "ScanDetection.h"

namespace android {

NativeZelTvScanDetection::NativeZelTvScanDetection(JNIEnv* env, jobject thiz,
                                                   const DetectionKind& kind)
    : SatelliteExtension(kind.tag),
      mKind(kind),
      mPeer(env, thiz, this, kind.nativeClass, DETECTION_SITE(kind)) {}

void NativeZelTvScanDetection::onPreScan(void* scanParams) {
    SITE_XLOGI(DETECTION_SITE(mKind), " enter\n");
    SB_DVBS_SCAN_PARAMS* block = satelliteBlockOf(scanParams, DETECTION_SITE(mKind));
    if (block == nullptr) return;
    putBlockField<uint8_t>(block, mKind.enableAt, mEnabled);
    if (mEnabled != 0) {
        putBlockField(block, mKind.notifyAt, mKind.notify);
        putBlockField<void*>(block, mKind.tagAt, mPeer.object());
        SITE_XLOGI(DETECTION_SITE(mKind), " %s=%p\n", mKind.tagName, mPeer.object());
    } else {
        putBlockField<void*>(block, mKind.notifyAt, nullptr);
        putBlockField<void*>(block, mKind.tagAt, nullptr);
    }
    SITE_XLOGI(DETECTION_SITE(mKind), " leave\n");
}

}  // namespace android
