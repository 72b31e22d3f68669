// Associated satellites: up to 15 satellite record ids from Java, copied into every scan.
#define LOG_TAG "ZelTvScanAsso_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvScanAssoList"

#include <nativehelper/ScopedLocalRef.h>
#include <nativehelper/ScopedUtfChars.h>

#include "DvbsScanConfigCommon.h"
#include "ScanRegistrations.h"
#include "SatelliteExtensionCommon.h"

namespace android {

namespace {

const char* const kAssoListClass = "com/brinova/tv/orvella/services/scan/ZelTvScanAssociateList";

struct {
    jmethodID getNativeExtension;
} gFields;

}  // namespace

class NativeZelTvScanAssoList : public SatelliteExtension {
public:
    NativeZelTvScanAssoList(JNIEnv* env, jobject thiz)
        : SatelliteExtension(LOG_TAG), mPeer(env, thiz, this, "NativeZelTvScanAssoList", SCAN_SITE) {}

    void onPreScan(void* scanParams) override {
        XLOGI(" enter\n");
        SB_DVBS_SCAN_PARAMS* block = satelliteBlockOf(scanParams, SCAN_SITE);
        if (block == nullptr) return;
        block->ui2_asso_sat_num = ui2_associated_satl_rec_num;
        // All 15 slots, whatever the count: slots past it keep an earlier, longer list.
        static_assert(sizeof(block->aui2_asso_sat_rec_id) == sizeof(mRecIds), "15 record ids");
        memcpy(block->aui2_asso_sat_rec_id, mRecIds, sizeof(mRecIds));
        XLOGI(" leave\n");
    }

    void setSatellites(JNIEnv* env, jobjectArray list, const ScanSite& site);

protected:
    ~NativeZelTvScanAssoList() override = default;

private:
    uint16_t ui2_associated_satl_rec_num = 0;
    uint16_t mRecIds[SB_DVBS_ASSO_SAT_MAX] = {};
    ExtensionPeer mPeer;
};

void NativeZelTvScanAssoList::setSatellites(JNIEnv* env, jobjectArray list, const ScanSite& site) {
    // A null array is taken as an empty list.
    uint32_t num = list != nullptr ? static_cast<uint32_t>(env->GetArrayLength(list)) : 0;
    if ((num & ~0xFu) != 0) {
        SITE_LOGD(site, " num=%u over maximum=%u and make it as maximum\n", num,
                  SB_DVBS_ASSO_SAT_MAX);
        num = SB_DVBS_ASSO_SAT_MAX;
    }
    ui2_associated_satl_rec_num = static_cast<uint16_t>(num);
    SITE_LOGD(site, "ui2_associated_satl_rec_num=%u\n", ui2_associated_satl_rec_num);
    for (uint32_t i = 0; i < num; ++i) {
        ScopedLocalRef<jstring> text(
            env, static_cast<jstring>(env->GetObjectArrayElement(list, static_cast<jsize>(i))));
        // A null element reads as an empty text: record id 0. The satellite id is only logged.
        const SatelliteIdentity parsed =
            text.get() != nullptr ? parseSatelliteIdText(ScopedUtfChars(env, text.get()).c_str(), site)
                                  : SatelliteIdentity{0, 0};
        mRecIds[i] = parsed.recordId;
    }
}

}  // namespace android

using namespace android;

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanAssoList_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvScanAssoList>(env, thiz, array, SCAN_SITE);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_ZelTvScanAssoList_NativeSetAssoSateInfo(JNIEnv* env, jobject thiz,
                                                                         jobjectArray list) {
    JavaCallerScope scope(env);
    InfoCall<NativeZelTvScanAssoList> call(env, thiz, nullptr, gFields.getNativeExtension, SCAN_SITE);
    if (NativeZelTvScanAssoList* extension = call.extension()) {
        extension->setSatellites(env, list, SCAN_SITE);
    }
    return 0;
}

namespace {

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanAssoList_nativeSetup)},
    {"NativeSetAssoSateInfo", "([Ljava/lang/String;)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanAssoList_NativeSetAssoSateInfo)},
};

const MethodSpec gCallbacks[] = {
    {&gFields.getNativeExtension, "getNativeExtension", "()J",
     "!(gFields.getNativeExtension != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvScanAssoList(JNIEnv* env) {
    return registerExtensionClass(env, kAssoListClass, gMethods, tableSize(gMethods), gCallbacks,
                                  std::size(gCallbacks), SCAN_SITE);
}
