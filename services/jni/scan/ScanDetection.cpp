// The detection family's one implementation; the class files give the rows.

#include "ScanDetection.h"

namespace android {

NativeZelTvScanDetection::NativeZelTvScanDetection(JNIEnv* env, jobject thiz,
                                                   const DetectionKind& kind)
    : mKind(kind), mPeer(env, thiz, this, kind.nativeClass, DETECTION_SITE(kind)) {}

int NativeZelTvScanDetection::attach(unsigned int builderHandle) {
    // Printed whatever the level property says.
    __android_log_print(ANDROID_LOG_DEBUG, mKind.tag, "attach");
    mBuilderHandle = builderHandle;
    return 0;
}

int NativeZelTvScanDetection::detach(unsigned int) {
    __android_log_print(ANDROID_LOG_DEBUG, mKind.tag, "detach");
    mBuilderHandle = 0;
    return 0;
}

void NativeZelTvScanDetection::onPreScan(void* scanParams) {
    SITE_XLOGI(DETECTION_SITE(mKind), " enter\n");
    checkedBlock(scanParams, DETECTION_SITE(mKind));
    putBlockField<uint8_t>(scanParams, mKind.enableAt, mEnabled);
    if (mEnabled != 0) {
        putBlockField(scanParams, mKind.notifyAt, mKind.notify);
        putBlockField(scanParams, mKind.tagAt, mPeer.object());
        SITE_XLOGI(DETECTION_SITE(mKind), " %s=%p\n", mKind.tagName, mPeer.object());
    } else {
        putBlockField<void*>(scanParams, mKind.notifyAt, nullptr);
        putBlockField<void*>(scanParams, mKind.tagAt, nullptr);
    }
    SITE_XLOGI(DETECTION_SITE(mKind), " leave\n");
}

}  // namespace android
