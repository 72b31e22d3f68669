// Satellite detection: the builder reports each satellite it identifies, with its orbital
// position and the signal level. It shares the satellite-name function of the block with
// LNB detection: of the two, the one whose onPreScan runs last receives the reports.
#define LOG_TAG "ZelTvScanDetectSAT_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvScanDetectSAT"

#include <nativehelper/ScopedLocalRef.h>

#include "ScanDetection.h"
#include "ScanRegistrations.h"

namespace android {

namespace {

const char* const kDetectSatClass = "com/brinova/tv/orvella/services/scan/ZelTvScanDetectSatellite";

struct {
    jmethodID getNativeExtension;
    jmethodID onScanDetectSATInfo;
} gFields;

void _dvbs_detected_sat_notify(void* pt_nfy_data, void* pv_nfy_tag) {
    BuilderNotify frame(SCAN_SITE, pt_nfy_data, pv_nfy_tag, kInstallationNotify);
    const auto data = notifyRecord<SB_SAT_NAME_NFY_DATA_T>(pt_nfy_data);
    BLOGD_RAW("MW notify sateRecId=%u:%u orbit=%d signal=%u\n", data.ui2_sat_id,
              data.ui2_sat_rec_id, data.i2_orbit, data.ui2_signal_level);
    JNIEnv* env = frame.env();
    if (env == nullptr) return;
    ScopedLocalRef<jstring> id(env, newIdString(env, data.ui2_sat_id, data.ui2_sat_rec_id));
    env->CallVoidMethod(static_cast<jobject>(pv_nfy_tag), gFields.onScanDetectSATInfo, id.get(),
                        static_cast<jint>(data.i2_orbit), static_cast<jint>(data.ui2_signal_level));
    frame.checkCallback("onDetectSatellite");
}

const DetectionKind kSatDetection = {
    "NativeZelTvScanDetectSAT", LOG_TAG, SCAN_SOURCE_NAME,
    offsetof(SB_DVBS_SCAN_PARAMS, b_sat_name), offsetof(SB_DVBS_SCAN_PARAMS, pf_sat_name_nfy),
    offsetof(SB_DVBS_SCAN_PARAMS, pv_sat_name_nfy_tag), "pv_sat_name_nfy_tag",
    _dvbs_detected_sat_notify,
};

}  // namespace

class NativeZelTvScanDetectSAT : public NativeZelTvScanDetection {
public:
    NativeZelTvScanDetectSAT(JNIEnv* env, jobject thiz)
        : NativeZelTvScanDetection(env, thiz, kSatDetection) {}
};

}  // namespace android

using namespace android;

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanDetectSAT_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvScanDetectSAT>(env, thiz, array, SCAN_SITE,
                                                    &NativeZelTvScanDetection::enable);
}

namespace {

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanDetectSAT_nativeSetup)},
};

const MethodSpec gCallbacks[] = {
    {&gFields.getNativeExtension, "getNativeExtension", "()J",
     "!(gFields.getNativeExtension != __null)"},
    {&gFields.onScanDetectSATInfo, "onDetectSatellite", "(Ljava/lang/String;II)V",
     "!(gFields.onScanDetectSATInfo != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvScanDetectSAT(JNIEnv* env) {
    return registerExtensionClass(env, kDetectSatClass, gMethods, tableSize(gMethods), gCallbacks,
                                  std::size(gCallbacks), SCAN_SITE);
}
