// North-American cable (clear QAM) scan configuration: the "sb_cqam" builder's 20-byte block
// (scan type, channel-index range, modulations and frequency plan, read from the config
// object) and its scan-maps table, in the frame ATSC uses.
#define LOG_TAG "ZelTvCqamScanConfig_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_ZelTvCqamScanConfig"

#include <stdint.h>
#include <stdlib.h>

#include "AtscFamilyScanMaps.h"
#include "JINativeScanConfig.h"
#include "x_mw_api.h"

namespace android {

namespace {

const char* const kConfigClass = "com/brinova/tv/orvella/services/scan/ZelTvCqamScanConfig";
const char* const kSettingsClass = "com/brinova/tv/orvella/services/scan/ZelTvCqamScanSettings";

struct fields_t : AtscFamilyFields {
    jmethodID getModeMaskId;
    jmethodID getFreqPlanId;
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

class JNativeCqamScanConfig : public AtscFamilyConfig<SB_CQAM_SCAN_DATA_T> {
public:
    JNativeCqamScanConfig(JNIEnv* env, jobject obj)
        : AtscFamilyConfig(env, obj, SCAN_SITE, gFields, "sb_cqam",
                           reinterpret_cast<void*>(&_native_sb_cqam_scan_maps_notify)) {}

protected:
    ~JNativeCqamScanConfig() override {
        if (!this->releaseRefs(SCAN_SITE)) {
            BLOGI(" jenv is null, going to abort().");
            abort();
        }
    }
};

namespace {

sp<JINativeScanConfig> setCqamScanConfig(JNIEnv* env, jobject thiz,
                                         const sp<JINativeScanConfig>& config) {
    return setFamilyScanConfig(env, thiz, config, gFields, SCAN_SITE, "setCqamScanConfig");
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

}  // namespace

}  // namespace android

using namespace android;

int register_com_brinova_tv_orvella_scan_ZelTvScanCqamConfig(JNIEnv* env) {
    return registerAtscFamily(env, kConfigClass, kSettingsClass, gMethods, gFields,
                              {{&gFields.getModeMaskId, "getModeMask", "()I",
                                "!(gFields.getModeMaskId != __null)"},
                               {&gFields.getFreqPlanId, "getFreqPlan", "()I",
                                "!(gFields.getFreqPlanId != __null)"}},
                              SCAN_SITE);
}
