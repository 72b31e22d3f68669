// ATSC terrestrial scan configuration: the "sb_atsc" builder's 8-byte block (scan type and
// channel-index range, read from the config object) and its scan-maps table.
#define LOG_TAG "ZelTvAtscScanConfig_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_ZelTvAtscScanConfig"

#include <stdint.h>
#include <stdlib.h>

#include "AtscFamilyScanMaps.h"
#include "JINativeScanConfig.h"
#include "x_mw_api.h"

namespace android {

namespace {

const char* const kConfigClass = "com/brinova/tv/orvella/services/scan/ZelTvAtscScanConfig";
const char* const kSettingsClass = "com/brinova/tv/orvella/services/scan/ZelTvAtscScanSettings";

struct fields_t : AtscFamilyFields {
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

class JNativeAtscScanConfig : public AtscFamilyConfig<SB_ATSC_SCAN_DATA_T> {
public:
    JNativeAtscScanConfig(JNIEnv* env, jobject obj)
        : AtscFamilyConfig(env, obj, SCAN_SITE, gFields, "sb_atsc",
                           reinterpret_cast<void*>(&_native_sb_atsc_scan_maps_notify)) {}

protected:
    ~JNativeAtscScanConfig() override {
        if (!this->releaseRefs(SCAN_SITE)) {
            BLOGI(" jenv is null, going to abort().");
            abort();
        }
    }
};

namespace {

sp<JINativeScanConfig> setAtscScanConfig(JNIEnv* env, jobject thiz,
                                         const sp<JINativeScanConfig>& config) {
    return setFamilyScanConfig(env, thiz, config, gFields, SCAN_SITE, "setAtscScanConfig");
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

}  // namespace

}  // namespace android

using namespace android;

int register_com_brinova_tv_orvella_scan_ZelTvScanAtscConfig(JNIEnv* env) {
    return registerAtscFamily(env, kConfigClass, kSettingsClass, gMethods, gFields, {},
                              SCAN_SITE);
}
