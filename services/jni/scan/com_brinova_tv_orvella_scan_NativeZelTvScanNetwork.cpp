// Network information: the builder gets the NIT version Java knows and reports the version
// it found.
#define LOG_TAG "ZelTvScanNetwork_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvScanNetwork"

#include "ScanRegistrations.h"
#include "SatelliteExtensionCommon.h"
#include "x_sb_dvbs_install.h"

namespace android {

namespace {

const char* const kNetworkClass = "com/brinova/tv/orvella/services/scan/ZelTvScanNetwork";
const char* const kNetworkInfoClass =
    "com/brinova/tv/orvella/services/scan/ZelTvScanNetwork$NetworkInfo";

struct {
    jmethodID getNativeExtension;
    jmethodID onScanNetworkInfo;
    struct {
        jmethodID getNitVersion;
    } nitInfo;
} gFields;

void _dvbs_nit_built_nfy_fct(void* pt_nfy_data, void* pv_nfy_tag) {
    BuilderNotify frame(SCAN_SITE, pt_nfy_data, pv_nfy_tag, kInstallationNotify);
    const auto data = notifyRecord<SB_DVBS_NIT_NFY_DATA_T>(pt_nfy_data);
    BLOGD_RAW("MW notify nit version=%u\n", data.ui1_nit_version);
    JNIEnv* env = frame.env();
    if (env == nullptr) return;
    env->CallVoidMethod(static_cast<jobject>(pv_nfy_tag), gFields.onScanNetworkInfo,
                        static_cast<jint>(data.ui1_nit_version));
    frame.checkCallback("onNetworkInfo");
}

}  // namespace

class NativeZelTvScanNetwork : public SatelliteExtension {
public:
    NativeZelTvScanNetwork(JNIEnv* env, jobject thiz)
        : SatelliteExtension(LOG_TAG), mPeer(env, thiz, this, "NativeZelTvScanNetwork", SCAN_SITE) {}

    void onPreScan(void* scanParams) override {
        XLOGI(" enter\n");
        SB_DVBS_SCAN_PARAMS* block = satelliteBlockOf(scanParams, SCAN_SITE);
        if (block == nullptr) return;
        block->pf_nit_built_nfy = _dvbs_nit_built_nfy_fct;
        block->pv_nit_built_nfy_tag = mPeer.object();
        block->ui1_nit_version = mNitVersion;
        XLOGI(" pv_nit_built_nfy_tag=%p, nit version=%u\n", mPeer.object(), mNitVersion);
        XLOGI(" leave\n");
    }

    void setNitVersion(jint version) { mNitVersion = static_cast<uint8_t>(version); }

protected:
    ~NativeZelTvScanNetwork() override = default;

private:
    uint8_t mNitVersion = 0;
    ExtensionPeer mPeer;
};

}  // namespace android

using namespace android;

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanNetwork_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvScanNetwork>(env, thiz, array, SCAN_SITE);
}

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanNetwork_NativeSetNetwork(
    JNIEnv* env, jobject thiz, jobject info) {
    JavaCallerScope scope(env);
    InfoCall<NativeZelTvScanNetwork> call(env, thiz, info, gFields.getNativeExtension, SCAN_SITE);
    const jint version = call.getInt(gFields.nitInfo.getNitVersion);
    if (NativeZelTvScanNetwork* extension = call.extension()) {
        extension->setNitVersion(version);
    }
    return 0;
}

namespace {

const JNINativeMethod gMethods[] = {
    {"NativeSetNetwork", "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanNetwork$NetworkInfo;)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanNetwork_NativeSetNetwork)},
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanNetwork_nativeSetup)},
};

const MethodSpec gCallbacks[] = {
    {&gFields.getNativeExtension, "getNativeExtension", "()J",
     "!(gFields.getNativeExtension != __null)"},
    {&gFields.onScanNetworkInfo, "onNetworkInfo", "(I)V", "!(gFields.onScanNetworkInfo != __null)"},
};

const MethodSpec gInfoGetters[] = {
    {&gFields.nitInfo.getNitVersion, "getNitVersion", "()I",
     "!(gFields.nitInfo.getNitVersion != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvScanNetwork(JNIEnv* env) {
    const SatelliteRegistration registration = {
        kNetworkClass, gMethods, tableSize(gMethods), gCallbacks, std::size(gCallbacks),
        kRegistrationFailed, nullptr, 0, nullptr, kNetworkInfoClass, gInfoGetters, std::size(gInfoGetters)};
    return registerSatelliteClass(env, registration, SCAN_SITE);
}
