// Bouquet: the builder gets the BAT id to read and the version Java knows, and reports the
// BAT it found.
#define LOG_TAG "ZelTvScanBouquet_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvScanBouquet"

#include "ScanRegistrations.h"
#include "SatelliteExtensionCommon.h"
#include "x_sb_dvbs_install.h"

namespace android {

namespace {

const char* const kBouquetClass = "com/brinova/tv/orvella/services/scan/ZelTvScanBouquet";
const char* const kBouquetInfoClass =
    "com/brinova/tv/orvella/services/scan/ZelTvScanBouquet$BouquetInfo";

struct {
    jmethodID getNativeExtension;
    jmethodID onScanBouquetInfo;
    struct {
        jmethodID getBatId;
        jmethodID getBatVersion;
    } batInfo;
} gFields;

void _dvbs_bat_built_nfy_fct(void* pt_nfy_data, void* pv_nfy_tag) {
    BuilderNotify frame(SCAN_SITE, pt_nfy_data, pv_nfy_tag, kInstallationNotify);
    const auto data = notifyRecord<SB_DVBS_BAT_NFY_DATA_T>(pt_nfy_data);
    BLOGD_RAW("MW notify bat id=%u bat version=%u\n", data.ui2_bat_id, data.ui1_bat_version);
    JNIEnv* env = frame.env();
    if (env == nullptr) return;
    env->CallVoidMethod(static_cast<jobject>(pv_nfy_tag), gFields.onScanBouquetInfo,
                        static_cast<jint>(data.ui2_bat_id), static_cast<jint>(data.ui1_bat_version));
    frame.checkCallback("onBouquetInfo");
}

}  // namespace

class NativeZelTvScanBouquet : public SatelliteExtension {
public:
    NativeZelTvScanBouquet(JNIEnv* env, jobject thiz)
        : SatelliteExtension(LOG_TAG), mPeer(env, thiz, this, "NativeZelTvScanBouquet", SCAN_SITE) {}

    void onPreScan(void* scanParams) override {
        XLOGI(" enter\n");
        SB_DVBS_SCAN_PARAMS* block = satelliteBlockOf(scanParams, SCAN_SITE);
        if (block == nullptr) return;
        block->pf_bat_built_nfy = _dvbs_bat_built_nfy_fct;
        block->pv_bat_built_nfy_tag = mPeer.object();
        block->ui2_bat_id = mBatId;
        block->ui1_bat_version = mBatVersion;
        XLOGI(" pv_bat_built_nfy_tag=%p bat id=%u, bat version=%u\n", mPeer.object(), mBatId,
              mBatVersion);
        XLOGI(" leave\n");
    }

    void setBouquet(jint id, jint version) {
        mBatId = static_cast<uint16_t>(id);
        mBatVersion = static_cast<uint8_t>(version);
    }

protected:
    ~NativeZelTvScanBouquet() override = default;

private:
    uint16_t mBatId = 0;
    uint8_t mBatVersion = 0;
    ExtensionPeer mPeer;
};

}  // namespace android

using namespace android;

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanBouquet_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvScanBouquet>(env, thiz, array, SCAN_SITE);
}

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanBouquet_NativeSetBouquet(
    JNIEnv* env, jobject thiz, jobject info) {
    JavaCallerScope scope(env);
    InfoCall<NativeZelTvScanBouquet> call(env, thiz, info, gFields.getNativeExtension, SCAN_SITE);
    const jint id = call.getInt(gFields.batInfo.getBatId);
    const jint version = call.getInt(gFields.batInfo.getBatVersion);
    if (NativeZelTvScanBouquet* extension = call.extension()) {
        extension->setBouquet(id, version);
    }
    return 0;
}

namespace {

const JNINativeMethod gMethods[] = {
    {"NativeSetBouquet", "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanBouquet$BouquetInfo;)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanBouquet_NativeSetBouquet)},
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanBouquet_nativeSetup)},
};

const MethodSpec gCallbacks[] = {
    {&gFields.getNativeExtension, "getNativeExtension", "()J",
     "!(gFields.getNativeExtension != __null)"},
    {&gFields.onScanBouquetInfo, "onBouquetInfo", "(II)V", "!(gFields.onScanBouquetInfo != __null)"},
};

const MethodSpec gInfoGetters[] = {
    {&gFields.batInfo.getBatId, "getBatId", "()I", "!(gFields.batInfo.getBatId != __null)"},
    {&gFields.batInfo.getBatVersion, "getBatVersion", "()I",
     "!(gFields.batInfo.getBatVersion != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvScanBouquet(JNIEnv* env) {
    const SatelliteRegistration registration = {
        kBouquetClass, gMethods, tableSize(gMethods), gCallbacks, std::size(gCallbacks),
        kRegistrationFailed, nullptr, 0, nullptr, kBouquetInfoClass, gInfoGetters, std::size(gInfoGetters)};
    return registerSatelliteClass(env, registration, SCAN_SITE);
}
