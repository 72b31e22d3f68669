// MDU detection: in a multi-dwelling unit the builder reports the kind of distribution
// system it detects, with the signal level. Built like the other detections, on block
// fields of its own.
#define LOG_TAG "ZelTvScanMDU_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvScanMDU"

#include "ScanDetection.h"
#include "ScanRegistrations.h"
#include "x_sb_dvbs_install.h"

namespace android {

namespace {

const char* const kMduClass = "com/brinova/tv/orvella/services/scan/ZelTvScanMDU";

struct {
    jmethodID getNativeExtension;
    jmethodID onScanMDUInfo;
} gFields;

void _dvbs_mdu_built_nfy_fct(void* pt_nfy_data, void* pv_nfy_tag) {
    BuilderNotify frame(SCAN_SITE, pt_nfy_data, pv_nfy_tag, kInstallationNotify);
    const auto data = notifyRecord<SB_DVBS_MDU_NFY_DATA_T>(pt_nfy_data);
    BLOGD_RAW("MW notify mdu type=%u signal level=%u\n", data.ui4_mdu_type, data.ui2_signal_level);
    JNIEnv* env = frame.env();
    if (env == nullptr) return;
    // The 32-bit type goes to Java as it is: above 2^31 it reads as a negative int.
    env->CallVoidMethod(static_cast<jobject>(pv_nfy_tag), gFields.onScanMDUInfo,
                        static_cast<jint>(data.ui4_mdu_type),
                        static_cast<jint>(data.ui2_signal_level));
    frame.checkCallback("onMDUInfo");
}

const DetectionKind kMduDetection = {
    "NativeZelTvScanMDU", LOG_TAG, SCAN_SOURCE_NAME,
    offsetof(SB_DVBS_SCAN_PARAMS, b_mdu), offsetof(SB_DVBS_SCAN_PARAMS, pf_mdu_nfy),
    offsetof(SB_DVBS_SCAN_PARAMS, pv_mdu_nfy_tag), "pv_get_info_nfy_tag",
    _dvbs_mdu_built_nfy_fct,
};

}  // namespace

class NativeZelTvScanMDU : public NativeZelTvScanDetection {
public:
    NativeZelTvScanMDU(JNIEnv* env, jobject thiz) : NativeZelTvScanDetection(env, thiz, kMduDetection) {}
};

}  // namespace android

using namespace android;

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanMDU_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvScanMDU>(env, thiz, array, SCAN_SITE,
                                              &NativeZelTvScanDetection::enable);
}

namespace {

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanMDU_nativeSetup)},
};

const MethodSpec gCallbacks[] = {
    {&gFields.getNativeExtension, "getNativeExtension", "()J",
     "!(gFields.getNativeExtension != __null)"},
    {&gFields.onScanMDUInfo, "onMDUInfo", "(II)V", "!(gFields.onScanMDUInfo != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvScanMDU(JNIEnv* env) {
    return registerExtensionClass(env, kMduClass, gMethods, tableSize(gMethods), gCallbacks,
                                  std::size(gCallbacks), SCAN_SITE);
}
