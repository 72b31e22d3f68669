// Home-transponder detection: the builder reports the home transponder it has found.
#define LOG_TAG "ZelTvScanDetectHTP_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvScanDetectHTP"

#include <nativehelper/ScopedLocalRef.h>

#include "ScanDetection.h"
#include "ScanRegistrations.h"
#include "x_sb_dvbs_install.h"

namespace android {

namespace {

const char* const kDetectHtpClass =
    "com/brinova/tv/orvella/services/scan/ZelTvScanDetectTransponder";

struct {
    jmethodID getNativeExtension;
    jmethodID onScanDetectHTPInfo;
} gFields;

void _dvbs_detected_htp_notify(void* pt_nfy_data, void* pv_nfy_tag) {
    BuilderNotify frame(SCAN_SITE, pt_nfy_data, pv_nfy_tag, kInstallationNotify);
    // The information report's first part; the rest of the record is not read.
    const auto data = notifyRecord<SB_DVBS_HTP_INFO_T>(pt_nfy_data);
    BLOGD_RAW("MW notify htp RecId=%u:%u TP=%u:%u:%u\n", data.ui2_rec_id_0, data.ui2_rec_id_1,
              data.ui4_tp_value_1, data.ui4_tp_value_2, data.ui4_tp_value_3);
    JNIEnv* env = frame.env();
    if (env == nullptr) return;
    ScopedLocalRef<jstring> id(env, newIdString(env, data.ui2_rec_id_0, data.ui2_rec_id_1));
    env->CallVoidMethod(static_cast<jobject>(pv_nfy_tag), gFields.onScanDetectHTPInfo, id.get(),
                        static_cast<jint>(data.ui4_tp_value_1),
                        static_cast<jint>(data.ui4_tp_value_2),
                        static_cast<jint>(data.ui4_tp_value_3));
    frame.checkCallback("onDetectTransponder");
}

const DetectionKind kHtpDetection = {
    "NativeZelTvScanDetectHTP", LOG_TAG, SCAN_SOURCE_NAME,
    offsetof(SB_DVBS_SCAN_PARAMS, b_get_info), offsetof(SB_DVBS_SCAN_PARAMS, pf_get_info_nfy),
    offsetof(SB_DVBS_SCAN_PARAMS, pv_get_info_nfy_tag), "pv_get_info_nfy_tag",
    _dvbs_detected_htp_notify,
};

}  // namespace

class NativeZelTvScanDetectHTP : public NativeZelTvScanDetection {
public:
    NativeZelTvScanDetectHTP(JNIEnv* env, jobject thiz)
        : NativeZelTvScanDetection(env, thiz, kHtpDetection) {}
};

}  // namespace android

using namespace android;

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanDetectHTP_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvScanDetectHTP>(env, thiz, array, SCAN_SITE,
                                                    &NativeZelTvScanDetection::enable);
}

namespace {

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanDetectHTP_nativeSetup)},
};

const MethodSpec gCallbacks[] = {
    {&gFields.getNativeExtension, "getNativeExtension", "()J",
     "!(gFields.getNativeExtension != __null)"},
    {&gFields.onScanDetectHTPInfo, "onDetectTransponder", "(Ljava/lang/String;III)V",
     "!(gFields.onScanDetectHTPInfo != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvScanDetectHTP(JNIEnv* env) {
    return registerExtensionClass(env, kDetectHtpClass, gMethods, tableSize(gMethods), gCallbacks,
                                  std::size(gCallbacks), SCAN_SITE);
}
