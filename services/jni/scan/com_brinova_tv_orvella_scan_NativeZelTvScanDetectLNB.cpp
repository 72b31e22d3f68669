// LNB detection: the builder reports which satellite each LNB input of the dish receives.
#define LOG_TAG "ZelTvScanDetectLNB_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvScanDetectLNB"

#include <nativehelper/ScopedLocalRef.h>

#include "ScanDetection.h"
#include "ScanRegistrations.h"

namespace android {

namespace {

const char* const kDetectLnbClass = "com/brinova/tv/orvella/services/scan/ZelTvScanDetectLNB";

struct {
    jmethodID getNativeExtension;
    jmethodID onScanDetectLNBInfo;
} gFields;

void _dvbs_detected_lnb_notify(void* pt_nfy_data, void* pv_nfy_tag) {
    BuilderNotify frame(SCAN_SITE, pt_nfy_data, pv_nfy_tag, kInstallationNotify);
    const auto data = notifyRecord<SB_SAT_NAME_NFY_DATA_T>(pt_nfy_data);
    char name[sizeof(data.ac_sat_name) + 1] = {};
    memcpy(name, data.ac_sat_name, sizeof(data.ac_sat_name));
    BLOGD_RAW("MW notify sateRecId=%u:%u orbit=%d sateName=%s\n", data.ui2_sat_id,
              data.ui2_sat_rec_id, data.i2_orbit, name);
    JNIEnv* env = frame.env();
    if (env == nullptr) return;
    ScopedLocalRef<jstring> id(env, newIdString(env, data.ui2_sat_id, data.ui2_sat_rec_id));
    ScopedLocalRef<jstring> satName(env, newBuilderString(env, data.ac_sat_name,
                                                          sizeof(data.ac_sat_name),
                                                          ForeignText::kLatin1));
    env->CallVoidMethod(static_cast<jobject>(pv_nfy_tag), gFields.onScanDetectLNBInfo, id.get(),
                        static_cast<jint>(data.i2_orbit), satName.get());
    frame.checkCallback("onDetectedLNBInfo");
}

const DetectionKind kLnbDetection = {
    "NativeZelTvScanDetectLNB", LOG_TAG, SCAN_SOURCE_NAME,
    offsetof(SB_DVBS_SCAN_PARAMS, b_sat_name), offsetof(SB_DVBS_SCAN_PARAMS, pf_sat_name_nfy),
    offsetof(SB_DVBS_SCAN_PARAMS, pv_sat_name_nfy_tag), "pv_sat_name_nfy_tag",
    _dvbs_detected_lnb_notify,
};

}  // namespace

class NativeZelTvScanDetectLNB : public NativeZelTvScanDetection {
public:
    NativeZelTvScanDetectLNB(JNIEnv* env, jobject thiz)
        : NativeZelTvScanDetection(env, thiz, kLnbDetection) {}
};

}  // namespace android

using namespace android;

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanDetectLNB_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvScanDetectLNB>(env, thiz, array, SCAN_SITE,
                                                    &NativeZelTvScanDetection::enable);
}

namespace {

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanDetectLNB_nativeSetup)},
};

const MethodSpec gCallbacks[] = {
    {&gFields.getNativeExtension, "getNativeExtension", "()J",
     "!(gFields.getNativeExtension != __null)"},
    {&gFields.onScanDetectLNBInfo, "onDetectedLNBInfo", "(Ljava/lang/String;ILjava/lang/String;)V",
     "!(gFields.onScanDetectLNBInfo != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvScanDetectLNB(JNIEnv* env) {
    return registerExtensionClass(env, kDetectLnbClass, gMethods, tableSize(gMethods), gCallbacks,
                                  std::size(gCallbacks), SCAN_SITE);
}
