// The HD+ service guide of DVB-S: the known SGT version, the blind-scan and HD-mode settings
// go into the scan block before the scan; the SGT version the builder finds comes back
// through a notify function on the builder's thread.
#define LOG_TAG "ZelTvScanHDPlus_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvScanHDPlus"

#include "SatelliteExtensionCommon.h"
#include "ScanRegistrations.h"
#include "x_sb_dvbs_operator.h"

namespace android {

namespace {

const char* const kHdPlusClass = "com/brinova/tv/orvella/services/scan/ZelTvScanHDPlus";
const char* const kHdPlusInfoClass = "com/brinova/tv/orvella/services/scan/ZelTvScanHDPlus$HDPlusInfo";

// The network id that tells the builder to go on scanning after the HD+ networks.
constexpr uint16_t kBlindScanContinueNetwork = 0xFFFF;

struct fields_t {
    jmethodID getNativeExtension;
    jmethodID onScanSGTVersion;  // may stay null: the notify then returns at once
    struct {
        jmethodID getSGTVersion;  // may stay null: the version then reads 0
        jmethodID getIsBlindScan;
        jmethodID getIsHDMode;
    } hdPlusInfo;
};
fields_t gFields;

}  // namespace

extern "C" void _dvbs_sgt_built_nfy_fct(void* pt_nfy_data, void* pv_nfy_tag);

class NativeZelTvScanHDPlus : public SatelliteExtension {
public:
    NativeZelTvScanHDPlus(JNIEnv* env, jobject thiz)
        : SatelliteExtension(LOG_TAG, AttachLog::kGated),
          mPeer(env, thiz, this, "NativeZelTvScanHDPlus", SCAN_SITE) {}

    void onPreScan(void* scanParames) override;

    void set(uint8_t sgtVersion, bool blindScanContinue, bool hdMode) {
        mHdMode = hdMode;
        mBlindScanContinue = blindScanContinue;
        mSgtVersion = sgtVersion;
    }

protected:
    ~NativeZelTvScanHDPlus() override = default;  // never reached: nothing owns an extension

private:
    uint8_t mBlindScanContinue = 0;
    uint8_t mHdMode = 0;
    uint8_t mSgtVersion = 0;
    ExtensionPeer mPeer;
};

void NativeZelTvScanHDPlus::onPreScan(void* scanParames) {
    XLOGI(" enter\n");
    SB_DVBS_SCAN_PARAMS* block = satelliteBlockOf(scanParames, SCAN_SITE);
    if (block == nullptr) return;
    putNotify(&block->pf_sgt_built_nfy, &block->pv_sgt_built_nfy_tag, &_dvbs_sgt_built_nfy_fct, mPeer);
    block->ui1_tkgs_version = mSgtVersion;
    // Settings that are off leave the configuration's values as they are.
    if (mBlindScanContinue) {
        block->u_160.ui2_nw_id = kBlindScanContinueNetwork;
    }
    if (mHdMode) {
        block->t_eng_cfg_flag |= SB_DVBS_CFG_HD_MODE;
    }
    XLOG_AT(BRINOVA_LOG_ERROR, "INFO ",
            " pv_table_built_nfy_tag=%p, SGT version=%u, ui2_nw_id=%d, t_eng_cfg_flag=0x%x\n",
            block->pv_sgt_built_nfy_tag, block->ui1_tkgs_version, block->u_160.ui2_nw_id,
            block->t_eng_cfg_flag);
}

}  // namespace android

using namespace android;

extern "C" void _dvbs_sgt_built_nfy_fct(void* pt_nfy_data, void* pv_nfy_tag) {
    BuilderNotify frame(SCAN_SITE, pt_nfy_data, pv_nfy_tag, BuilderNotify::kGetEnvLine);
    if (gFields.onScanSGTVersion == nullptr) {
        BLOGE(" onScanSGTVersion is null, directly return.");
        return;
    }
    const auto* data = static_cast<const SB_DVBS_SGT_BUILT_NFY_DATA_T*>(pt_nfy_data);
    BLOGE_RAW("MW notify SGT version=%u\n", data->ui1_sgt_version);
    if (frame.env() == nullptr) return;  // no JavaVM recorded: nobody to tell
    callJavaVoid(frame.env(), static_cast<jobject>(pv_nfy_tag), gFields.onScanSGTVersion,
                 SCAN_SITE, "onSGTVersion", static_cast<jint>(data->ui1_sgt_version));
}

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanHDPlus_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvScanHDPlus>(env, thiz, array, SCAN_SITE);
}

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanHDPlus_NativeSetHDPlus(
    JNIEnv* env, jobject thiz, jobject info) {
    JavaCallerScope scope(env);
    if (info == nullptr) {
        return 0;  // no settings given: nothing to store
    }
    jint version = 0;
    if (gFields.hdPlusInfo.getSGTVersion != nullptr) {
        version = env->CallIntMethod(info, gFields.hdPlusInfo.getSGTVersion);
        checkJavaException(env, SCAN_SITE, "getSGTVersion");
    }
    jboolean blind = env->CallBooleanMethod(info, gFields.hdPlusInfo.getIsBlindScan);
    checkJavaException(env, SCAN_SITE, "getIsBlindScanContinue");
    jboolean hdMode = env->CallBooleanMethod(info, gFields.hdPlusInfo.getIsHDMode);
    checkJavaException(env, SCAN_SITE, "getIsHDMode");
    auto* hdPlus = static_cast<NativeZelTvScanHDPlus*>(
        peerExtension(env, thiz, gFields.getNativeExtension, SCAN_SITE));
    if (hdPlus != nullptr) {
        hdPlus->set(static_cast<uint8_t>(version), blind == JNI_TRUE, hdMode == JNI_TRUE);
        XLOG_AT(BRINOVA_LOG_ERROR, "INFO ", " sgtVersion=%u blind=%u HDMode=%u\n",
                static_cast<uint8_t>(version), blind == JNI_TRUE ? 1u : 0u,
                hdMode == JNI_TRUE ? 1u : 0u);
    }
    return 0;
}

namespace {

const JNINativeMethod gMethods[] = {
    {"NativeSetHDPlus", "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanHDPlus$HDPlusInfo;)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanHDPlus_NativeSetHDPlus)},
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanHDPlus_nativeSetup)},
};

const MethodSpec gLookUp[] = {
    GET_NATIVE_EXTENSION_SPEC(gFields.getNativeExtension),
};

const MethodSpec gInfoGetters[] = {
    {&gFields.hdPlusInfo.getIsBlindScan, "getIsBlindScanContinue", "()Z",
     "!(gFields.hdPlusInfo.getIsBlindScan != __null)"},
    {&gFields.hdPlusInfo.getIsHDMode, "getIsHDMode", "()Z",
     "!(gFields.hdPlusInfo.getIsHDMode != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvScanHDPlus(JNIEnv* env) {
    const SatelliteRegistration registration = {
        kHdPlusClass, gMethods, tableSize(gMethods), gLookUp, std::size(gLookUp), kRegistrationFailed,
        nullptr, 0, nullptr, nullptr, nullptr, 0};
    if (registerSatelliteClass(env, registration, SCAN_SITE) == 0) {
        return 0;
    }
    gFields.onScanSGTVersion = lookUpOptionalMethod(env, kHdPlusClass, "onSGTVersion", "(I)V");
    cacheClassMethods(env, kHdPlusInfoClass, gInfoGetters, std::size(gInfoGetters), SCAN_SITE);
    gFields.hdPlusInfo.getSGTVersion =
        lookUpOptionalMethod(env, kHdPlusInfoClass, "getSGTVersion", "()I");
    return 1;
}
