// ISDB-T scan configuration: the "sb_isdb" builder's 28-byte block (country, scan type and
// channels, the channels turned into the builder's indexes by Java's getScanIndex) and the
// scan-maps table it shares with ATSC, in the frame ATSC uses.
#define LOG_TAG "ZelTvIsdbScanConfig_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_ZelTvIsdbScanConfig"

#include <stdint.h>
#include <stdlib.h>

#include "AtscFamilyScanMaps.h"
#include "JINativeScanConfig.h"
#include "ScanConfigShared.h"
#include "x_mw_api.h"

namespace android {

namespace {

const char* const kConfigClass = "com/brinova/tv/orvella/services/scan/ZelTvIsdbScanConfig";
const char* const kSettingsClass = "com/brinova/tv/orvella/services/scan/ZelTvIsdbScanSettings";

struct fields_t : AtscFamilyFields {
    jmethodID getScanIndexId;
};
fields_t gFields;

const AtscFamilyScanMaps kScanMaps = {"_native_sb_isdb_scan_maps_notify", atscCommandKind, true,
                                      &gFields.onScanMapCommandsId};

}  // namespace

extern "C" int32_t _native_sb_isdb_scan_maps_notify(SCAN_MAPS_ISDB_CMD_T cmd, char* country,
                                                    void* pv_input, void* pv_output,
                                                    uint32_t* pz_output_len, void* pv_tag) {
    return atscFamilyScanMaps(kScanMaps, SCAN_SITE, cmd, country, pv_input, pv_output,
                              pz_output_len, pv_tag);
}

namespace {

// The builder calls it with a null tag (the block has no room for one); it only logs.
void _native_sb_service_update_notify(SB_ISDB_SVC_UPDATE_NFY_DATA_T* data, void* /* tag */) {
    BLOGD_RAW("_native_sb_service_update_notify, %p", data);
}

}  // namespace

class JNativeIsdbScanConfig : public AtscFamilyConfig<SB_ISDB_SCAN_DATA_T> {
public:
    JNativeIsdbScanConfig(JNIEnv* env, jobject obj)
        : AtscFamilyConfig(env, obj, SCAN_SITE, gFields, "sb_isdb",
                           reinterpret_cast<void*>(&_native_sb_isdb_scan_maps_notify)) {}

protected:
    ~JNativeIsdbScanConfig() override {
        if (!this->releaseRefs(SCAN_SITE)) {
            BLOGI(" jenv is null, going to abort().");
            abort();
        }
    }
};

namespace {

sp<JINativeScanConfig> setIsdbScanConfig(JNIEnv* env, jobject thiz,
                                         const sp<JINativeScanConfig>& config) {
    return setFamilyScanConfig(env, thiz, config, gFields, SCAN_SITE, "setIsdbScanConfig");
}

// The builder's index of the channel that Java's `getter` gives (its low 16 bits).
uint16_t scanIndexOf(JNIEnv* env, jobject thiz, jmethodID getter, const char* what,
                     const ScanSite& site) {
    const jint channel = env->CallIntMethod(thiz, getter);
    checkJavaException(env, site, what);
    const jint index = env->CallIntMethod(thiz, gFields.getScanIndexId, channel & 0xFFFF);
    checkJavaException(env, site, "getScanIndex");
    return static_cast<uint16_t>(index);
}

jint com_brinova_tv_orvella_scan_native_setup(JNIEnv* env, jobject thiz, jobject settings) {
    JavaCallerScope scope(env);
    BLOGD("enter");
    sp<JNativeIsdbScanConfig> config = new JNativeIsdbScanConfig(env, thiz);
    SettingText country(env, settings, gFields.scanSettings.getCountryId, SCAN_SITE, "getCountry");
    if (country.isNull()) {
        BLOGE_FILE(" Get country id failed.");
        return 0;
    }
    if (country.c_str() == nullptr) {
        BLOGE_FILE(" Out of memory.");
        return -4;
    }
    SB_ISDB_SCAN_DATA_T& block = config->block();
    x_memset(&block, 0, sizeof(block));
    const jint type = env->CallIntMethod(thiz, gFields.getScanTypeId);
    checkJavaException(env, SCAN_SITE, "getScanType");
    block.e_scan_type = static_cast<uint32_t>(type);
    if (type == 7 || type == 6) {
        block.ui2_first_ch =
            scanIndexOf(env, thiz, gFields.getScanStartIndexId, "getScanStartIndex", SCAN_SITE);
    }
    if (type == 7) {
        block.ui2_last_ch =
            scanIndexOf(env, thiz, gFields.getScanEndIndexId, "getScanEndIndex", SCAN_SITE);
    }
    copyCode(block.t_country_code, country.c_str());
    block.pf_svc_update_nfy = _native_sb_service_update_notify;
    setIsdbScanConfig(env, thiz, config);
    return 0;
}

jint com_brinova_tv_orvella_scan_native_release(JNIEnv* env, jobject thiz) {
    JavaCallerScope scope(env);
    setIsdbScanConfig(env, thiz, nullptr);
    return 0;
}

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "(Lcom/brinova/tv/orvella/services/scan/ZelTvIsdbScanSettings;)I",
     reinterpret_cast<void*>(com_brinova_tv_orvella_scan_native_setup)},
    {"nativeRelease", "()I", reinterpret_cast<void*>(com_brinova_tv_orvella_scan_native_release)},
};

}  // namespace

}  // namespace android

using namespace android;

int register_com_brinova_tv_orvella_scan_ZelTvScanIsdbConfig(JNIEnv* env) {
    return registerAtscFamily(env, kConfigClass, kSettingsClass, gMethods, gFields,
                              {{&gFields.getScanIndexId, "getScanIndex", "(I)I",
                                "!(gFields.getScanIndexId != __null)"}},
                              SCAN_SITE);
}
