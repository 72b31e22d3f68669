// North-American cable (clear QAM) scan configuration: the "sb_cqam" builder's 20-byte block
// (scan type, channel-index range, modulations and frequency plan, read from the config
// object) and its scan-maps table, in the frame ATSC uses.
#define LOG_TAG "ZelTvCqamScanConfig_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_ZelTvCqamScanConfig"

#include <stdint.h>
#include <stdlib.h>

#include <iterator>

#include "AtscFamilyScanMaps.h"
#include "JINativeScanConfig.h"
#include "x_mw_api.h"

namespace android {

namespace {

const char* const kConfigClass = "com/brinova/tv/orvella/services/scan/ZelTvCqamScanConfig";
const char* const kSettingsClass = "com/brinova/tv/orvella/services/scan/ZelTvCqamScanSettings";

struct fields_t {
    jmethodID getNativeConfigId;
    jmethodID setNativeConfigId;
    jmethodID getScanTypeId;
    jmethodID getScanStartIndexId;
    jmethodID getScanEndIndexId;
    jmethodID getModeMaskId;
    jmethodID getFreqPlanId;
    jmethodID onScanMapCommandsId;
    jmethodID onStatusId;
    jmethodID checkScanMapsId;
    struct {
        jmethodID getCountryId;
    } scanSettings;
};
fields_t gFields;

FamilyCommandKind commandKind(uint32_t cmd) {
    switch (cmd) {
        case 0: case 1: case 2:
            return FamilyCommandKind::kWord32;
        case 4: case 5: case 6: case 14:
            return FamilyCommandKind::kWord16;
        default:
            return FamilyCommandKind::kBypass;
    }
}

const AtscFamilyScanMaps kScanMaps = {"_native_sb_cqam_scan_maps_notify", commandKind, false,
                                      &gFields.onScanMapCommandsId};

}  // namespace

extern "C" int32_t _native_sb_cqam_scan_maps_notify(SCAN_MAPS_CQAM_CMD_T cmd, char* country,
                                                    void* pv_input, void* pv_output,
                                                    uint32_t* pz_output_len, void* pv_tag) {
    return atscFamilyScanMaps(kScanMaps, SCAN_SITE, cmd, country, pv_input, pv_output,
                              pz_output_len, pv_tag);
}

class JNativeCqamScanConfig : public ScanConfigPeer<SB_CQAM_SCAN_DATA_T> {
public:
    JNativeCqamScanConfig(JNIEnv* env, jobject obj) : ScanConfigPeer(env, obj, SCAN_SITE) {}

    const char* getSbEbEngineName() override { return "sb_cqam"; }
    void* getSbScanMapsNotify() override {
        void* notify = reinterpret_cast<void*>(&_native_sb_cqam_scan_maps_notify);
        BLOGD_RAW("[debug]getSbScanMapsNotify: %p", notify);
        return notify;
    }
    int checkScanMaps() override { return callCheckSettings(gFields.checkScanMapsId, SCAN_SITE); }
    void onStatus(int status) override { callOnStatus(gFields.onStatusId, status, SCAN_SITE); }

    SB_CQAM_SCAN_DATA_T& block() { return mBlock; }

protected:
    ~JNativeCqamScanConfig() override {
        if (!releaseRefs(SCAN_SITE)) {
            BLOGI(" jenv is null, going to abort().");
            abort();
        }
    }
};

namespace {

sp<JINativeScanConfig> setCqamScanConfig(JNIEnv* env, jobject thiz,
                                         const sp<JINativeScanConfig>& config) {
    return exchangeNativeConfig(env, thiz, config, gFields.getNativeConfigId,
                                gFields.setNativeConfigId, SCAN_SITE, "setCqamScanConfig");
}

jint com_brinova_tv_orvella_scan_native_setup(JNIEnv* env, jobject thiz, jobject /* settings */) {
    JavaCallerScope scope(env);
    BLOGD("enter");
    sp<JNativeCqamScanConfig> config = new JNativeCqamScanConfig(env, thiz);
    SB_CQAM_SCAN_DATA_T& block = config->block();
    x_memset(&block, 0, sizeof(block));
    const jint type = env->CallIntMethod(thiz, gFields.getScanTypeId);
    checkJavaException(env, SCAN_SITE, "getScanType");
    block.e_scan_type = static_cast<uint32_t>(type);
    block.ui4_mode_mask = static_cast<uint32_t>(env->CallIntMethod(thiz, gFields.getModeMaskId));
    checkJavaException(env, SCAN_SITE, "getModeMask");
    block.ui1_freq_plan = static_cast<uint8_t>(env->CallIntMethod(thiz, gFields.getFreqPlanId));
    checkJavaException(env, SCAN_SITE, "getFreqPlan");
    block.ui4_index_range = readIndexRange(env, thiz, type, gFields.getScanStartIndexId,
                                           gFields.getScanEndIndexId, SCAN_SITE);
    setCqamScanConfig(env, thiz, config);
    return 0;
}

jint com_brinova_tv_orvella_scan_native_release(JNIEnv* env, jobject thiz) {
    JavaCallerScope scope(env);
    setCqamScanConfig(env, thiz, nullptr);
    return 0;
}

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "(Lcom/brinova/tv/orvella/services/scan/ZelTvCqamScanSettings;)I",
     reinterpret_cast<void*>(com_brinova_tv_orvella_scan_native_setup)},
    {"nativeRelease", "()I", reinterpret_cast<void*>(com_brinova_tv_orvella_scan_native_release)},
};

const MethodSpec gConfigMethods[] = {
    {&gFields.getNativeConfigId, "getNativeConfig", "()J", "!(gFields.getNativeConfigId != __null)"},
    {&gFields.setNativeConfigId, "setNativeConfig", "(J)V", "!(gFields.setNativeConfigId != __null)"},
    {&gFields.getScanTypeId, "getScanType", "()I", "!(gFields.getScanTypeId != __null)"},
    {&gFields.getScanStartIndexId, "getScanStartIndex", "()I",
     "!(gFields.getScanStartIndexId != __null)"},
    {&gFields.getScanEndIndexId, "getScanEndIndex", "()I", "!(gFields.getScanEndIndexId != __null)"},
    {&gFields.getModeMaskId, "getModeMask", "()I", "!(gFields.getModeMaskId != __null)"},
    {&gFields.getFreqPlanId, "getFreqPlan", "()I", "!(gFields.getFreqPlanId != __null)"},
    {&gFields.onScanMapCommandsId, "onScanMapCommands", "(ILjava/lang/String;[I[I)V",
     "!(gFields.onScanMapCommandsId != __null)"},
    {&gFields.onStatusId, "onStatus", "(I)V", "!(gFields.onStatusId != __null)"},
    {&gFields.checkScanMapsId, "checkSettings", "()I", "!(gFields.checkScanMapsId != __null)"},
};

const MethodSpec gSettingsMethods[] = {
    {&gFields.scanSettings.getCountryId, "getCountry", "()Ljava/lang/String;",
     "!(gFields.scanSettings.getCountryId != __null)"},
};

}  // namespace

}  // namespace android

using namespace android;

int register_com_brinova_tv_orvella_scan_ZelTvScanCqamConfig(JNIEnv* env) {
    if (registerClass(env, kConfigClass, gMethods, tableSize(gMethods), gConfigMethods,
                      std::size(gConfigMethods), SCAN_SITE) == 0) {
        return 0;
    }
    cacheClassMethods(env, kSettingsClass, gSettingsMethods, std::size(gSettingsMethods),
                      SCAN_SITE);
    return 1;
}
