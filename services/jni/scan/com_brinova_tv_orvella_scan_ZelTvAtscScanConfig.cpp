// ATSC terrestrial scan configuration: the "sb_atsc" builder's 8-byte block (scan type and
// channel-index range, read from the config object) and its scan-maps table.
#define LOG_TAG "ZelTvAtscScanConfig_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_ZelTvAtscScanConfig"

#include <stdint.h>
#include <stdlib.h>

#include <iterator>

#include "AtscFamilyScanMaps.h"
#include "JINativeScanConfig.h"
#include "x_mw_api.h"

namespace android {

namespace {

const char* const kConfigClass = "com/brinova/tv/orvella/services/scan/ZelTvAtscScanConfig";
const char* const kSettingsClass = "com/brinova/tv/orvella/services/scan/ZelTvAtscScanSettings";

struct fields_t {
    jmethodID getNativeConfigId;
    jmethodID setNativeConfigId;
    jmethodID getScanTypeId;
    jmethodID getScanStartIndexId;
    jmethodID getScanEndIndexId;
    jmethodID onScanMapCommandsId;
    jmethodID onStatusId;
    jmethodID checkScanMapsId;
    struct {
        jmethodID getCountryId;
    } scanSettings;
};
fields_t gFields;

const AtscFamilyScanMaps kScanMaps = {"_native_sb_atsc_scan_maps_notify", atscCommandKind, true,
                                      &gFields.onScanMapCommandsId};

}  // namespace

extern "C" int32_t _native_sb_atsc_scan_maps_notify(SCAN_MAPS_ATSC_CMD_T cmd, char* country,
                                                    void* pv_input, void* pv_output,
                                                    uint32_t* pz_output_len, void* pv_tag) {
    return atscFamilyScanMaps(kScanMaps, SCAN_SITE, cmd, country, pv_input, pv_output,
                              pz_output_len, pv_tag);
}

class JNativeAtscScanConfig : public ScanConfigPeer<SB_ATSC_SCAN_DATA_T> {
public:
    JNativeAtscScanConfig(JNIEnv* env, jobject obj) : ScanConfigPeer(env, obj, SCAN_SITE) {}

    const char* getSbEbEngineName() override { return "sb_atsc"; }
    void* getSbScanMapsNotify() override {
        void* notify = reinterpret_cast<void*>(&_native_sb_atsc_scan_maps_notify);
        BLOGD_RAW("[debug]getSbScanMapsNotify: %p", notify);
        return notify;
    }
    int checkScanMaps() override { return callCheckSettings(gFields.checkScanMapsId, SCAN_SITE); }
    void onStatus(int status) override { callOnStatus(gFields.onStatusId, status, SCAN_SITE); }

    SB_ATSC_SCAN_DATA_T& block() { return mBlock; }

protected:
    ~JNativeAtscScanConfig() override {
        if (!releaseRefs(SCAN_SITE)) {
            BLOGI(" jenv is null, going to abort().");
            abort();
        }
    }
};

namespace {

sp<JINativeScanConfig> setAtscScanConfig(JNIEnv* env, jobject thiz,
                                         const sp<JINativeScanConfig>& config) {
    return exchangeNativeConfig(env, thiz, config, gFields.getNativeConfigId,
                                gFields.setNativeConfigId, SCAN_SITE, "setAtscScanConfig");
}

jint com_brinova_tv_orvella_scan_native_setup(JNIEnv* env, jobject thiz, jobject /* settings */) {
    JavaCallerScope scope(env);
    BLOGD("enter");
    sp<JNativeAtscScanConfig> config = new JNativeAtscScanConfig(env, thiz);
    SB_ATSC_SCAN_DATA_T& block = config->block();
    x_memset(&block, 0, sizeof(block));
    const jint type = env->CallIntMethod(thiz, gFields.getScanTypeId);
    checkJavaException(env, SCAN_SITE, "getScanType");
    block.e_scan_type = static_cast<uint32_t>(type);
    block.ui4_index_range = readIndexRange(env, thiz, type, gFields.getScanStartIndexId,
                                           gFields.getScanEndIndexId, SCAN_SITE);
    setAtscScanConfig(env, thiz, config);
    return 0;
}

jint com_brinova_tv_orvella_scan_native_release(JNIEnv* env, jobject thiz) {
    JavaCallerScope scope(env);
    setAtscScanConfig(env, thiz, nullptr);
    return 0;
}

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "(Lcom/brinova/tv/orvella/services/scan/ZelTvAtscScanSettings;)I",
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

int register_com_brinova_tv_orvella_scan_ZelTvScanAtscConfig(JNIEnv* env) {
    if (registerClass(env, kConfigClass, gMethods, tableSize(gMethods), gConfigMethods,
                      std::size(gConfigMethods), SCAN_SITE) == 0) {
        return 0;
    }
    cacheClassMethods(env, kSettingsClass, gSettingsMethods, std::size(gSettingsMethods),
                      SCAN_SITE);
    return 1;
}
