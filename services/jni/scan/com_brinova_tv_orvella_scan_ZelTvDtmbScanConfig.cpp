// DTMB scan configuration: the "sb_dtmb" builder's 48-byte block, filled from strictly
// validated settings (a manual scan's frequency asked of Java through this file's own
// scan-maps callback), and the DTMB scan-maps table. Lines carry file, function and line.
#define LOG_TAG "ZelTvDtmbScanConfig_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_ZelTvDtmbScanConfig"

#include <stdint.h>
#include <stdlib.h>

#include <iterator>

#include <nativehelper/ScopedLocalRef.h>

#include "JINativeScanConfig.h"
#include "ScanConfigShared.h"
#include "x_mw_api.h"

#define DLOGD(fmt, ...) SITE_FLOG(SCAN_SITE, BRINOVA_LOG_DEBUG, fmt, ##__VA_ARGS__)
#define DLOGE(fmt, ...) SITE_FLOG(SCAN_SITE, BRINOVA_LOG_ERROR, fmt, ##__VA_ARGS__)

namespace android {

namespace {

const char* const kConfigClass = "com/brinova/tv/orvella/services/scan/ZelTvDtmbScanConfig";
const char* const kSettingsClass = "com/brinova/tv/orvella/services/scan/ZelTvDtmbScanSettings";
const char* const kScanTypeClass =
    "com/brinova/tv/orvella/services/scan/ZelTvDtmbScanSettings$DtmbScanType";

struct fields_t {
    jmethodID getNativeConfigId;
    jmethodID setNativeConfigId;
    jmethodID onScanMapCommandsId;
    jmethodID onStatusId;
    jmethodID checkSettingsId;
    struct {
        jmethodID getCountryId;
        jmethodID getUiLanguageId;
        jmethodID getScanTypeId;
        jmethodID getServiceIdRuleId;
        jmethodID getServiceUpdateTypeId;
        jmethodID isLcnDisabledId;
        struct {
            jmethodID idOfId;
        } type;
    } scanSettings;
};
fields_t gFields;

// What a DTMB command checks and writes.
enum class CommandKind { kWord32, kLowByte, kBoolean, kUnknown };

CommandKind commandKind(DTMB_SCAN_MAPS_CMD_T cmd) {
    switch (cmd) {
        case 0: return CommandKind::kWord32;
        case 1: case 2: case 3: case 5: return CommandKind::kLowByte;
        case 6: return CommandKind::kBoolean;
        default: return CommandKind::kUnknown;  // 4 among them
    }
}

// The builder's buffer must hold 4 bytes for a word, and not be empty for a byte.
bool roomFor(CommandKind kind, uint32_t len) {
    return kind == CommandKind::kWord32 ? len >= sizeof(uint32_t) : len != 0;
}

void writeAnswer(const ScanSite& site, DTMB_SCAN_MAPS_CMD_T cmd, CommandKind kind, jint answer,
                 void* pv_output, uint32_t* pz_output_len) {
    switch (kind) {
        case CommandKind::kWord32:
            *static_cast<uint32_t*>(pv_output) = static_cast<uint32_t>(answer);
            *pz_output_len = sizeof(uint32_t);
            break;
        case CommandKind::kLowByte:
            *static_cast<uint8_t*>(pv_output) = static_cast<uint8_t>(answer);
            *pz_output_len = 1;
            break;
        case CommandKind::kBoolean:
            *static_cast<uint8_t*>(pv_output) = answer != 0 ? 1 : 0;
            *pz_output_len = 1;
            SITE_FLOG(site, BRINOVA_LOG_DEBUG, "cmd: %d, output:%d", cmd, answer);
            break;
        case CommandKind::kUnknown:
            break;
    }
}

}  // namespace

extern "C" int32_t _native_sb_dtmb_scan_maps_notify(DTMB_SCAN_MAPS_CMD_T cmd, char* country,
                                                    void* pv_input, void* pv_output,
                                                    uint32_t* pz_output_len, void* pv_tag) {
    DLOGD("cmd = %d, country = %s, out_buf_len = %d, pv_tag: %p", cmd, country,
          pz_output_len != nullptr ? *pz_output_len : 0, pv_tag);
    SCAN_ASSERT(pv_output != NULL);
    SCAN_ASSERT(pz_output_len != NULL);
    // A tag that names no live configuration is answered as no tag.
    sp<JINativeScanConfig> config = scanConfigOfTag(pv_tag);
    if (config == nullptr) {
        DLOGD("pv_tag(native config instance) is NULL!");
        return 0;
    }
    ScanMapsCall call(SCAN_SITE, country);
    JNIEnv* env = call.env();
    const CommandKind kind = commandKind(cmd);
    if (kind == CommandKind::kUnknown) {
        DLOGD("bypass command: %d", cmd);
        call.keepAttached();  // a refusal returns before the detach, like the size check
        return -6;
    }
    if (!roomFor(kind, *pz_output_len)) {
        DLOGE("cmd: %d, invalid buffer size: %d.", cmd, *pz_output_len);
        call.keepAttached();
        return -6;
    }
    const jint inputValue = static_cast<jint>(reinterpret_cast<uintptr_t>(pv_input));
    ScopedLocalRef<jintArray> intInput(env, call.newInput(SCAN_SITE, &inputValue, 1));
    ScopedLocalRef<jintArray> intOutput(env, call.newOutput(SCAN_SITE, 1));
    jobject javaConfig = config->getSbScanConfigObject();
    env->CallVoidMethod(javaConfig, gFields.onScanMapCommandsId, static_cast<jint>(cmd),
                        call.country(), intInput.get(), intOutput.get());
    checkJavaException(env, SCAN_SITE, "onScanMapCommands");
    jint answer = 0;
    call.readOutput(intOutput.get(), 1, &answer);
    writeAnswer(SCAN_SITE, cmd, kind, answer, pv_output, pz_output_len);
    return 0;
}

namespace {

// Only logs: the DTMB builder's service updates are not passed to Java.
void _native_sb_service_update_notify(SB_DTMB_SVC_UPDATE_NFY_DATA_T* /* data */, void* tag) {
    DLOGD("notify tag: %p", tag);
}

}  // namespace

class JNativeDtmbScanConfig : public ScanConfigPeer<SB_DTMB_SCAN_DATA_T> {
public:
    JNativeDtmbScanConfig(JNIEnv* env, jobject obj) : ScanConfigPeer(env, obj, SCAN_SITE) {}

    const char* getSbEbEngineName() override { return "sb_dtmb"; }
    void* getSbScanMapsNotify() override {
        void* notify = reinterpret_cast<void*>(&_native_sb_dtmb_scan_maps_notify);
        DLOGD("scan maps fct: %p", notify);
        return notify;
    }
    int checkScanMaps() override {
        // The settings check, logged in this file's own form.
        ScopedJniThread thread(SCAN_SITE, ScopedJniThread::kSts);
        int ret = thread.env()->CallIntMethod(mRefs.object(), gFields.checkSettingsId);
        checkJavaException(thread.env(), SCAN_SITE, "checkSettings");
        DLOGD("ret: %d", ret);
        return ret;
    }
    void onStatus(int status) override { callOnStatus(gFields.onStatusId, status, SCAN_SITE); }

    SB_DTMB_SCAN_DATA_T& block() { return mBlock; }

protected:
    ~JNativeDtmbScanConfig() override {
        if (!releaseRefs(SCAN_SITE)) {
            BLOGI(" jenv is null, going to abort().");
            abort();
        }
    }
};

namespace {

sp<JINativeScanConfig> setDtmbScanConfig(JNIEnv* env, jobject thiz,
                                         const sp<JINativeScanConfig>& config) {
    return exchangeNativeConfig(env, thiz, config, gFields.getNativeConfigId,
                                gFields.setNativeConfigId, SCAN_SITE, "setDtmbScanConfig");
}

jint callIntGetter(JNIEnv* env, jobject obj, jmethodID getter, const char* what,
                   const ScanSite& site) {
    jint value = env->CallIntMethod(obj, getter);
    checkJavaException(env, site, what);
    return value;
}

// Scan mode from the scan type's idOf(); a manual scan asks Java for its frequency through
// the scan-maps callback, with the configuration Java now holds as the tag.
jint readScanMode(JNIEnv* env, jobject thiz, jobject settings, SB_DTMB_SCAN_DATA_T& block,
                  const ScanSite& site) {
    ScopedLocalRef<jobject> type(env, env->CallObjectMethod(settings, gFields.scanSettings.getScanTypeId));
    if (checkJavaException(env, site, "getScanType") || type.get() == nullptr) {
        SITE_FLOG(site, BRINOVA_LOG_ERROR, "Get scanType id failed.");
        return -1;
    }
    const jint id = callIntGetter(env, type.get(), gFields.scanSettings.type.idOfId, "idOf", site);
    if (id == 1) {
        block.e_scan_mode = SB_DTMB_SCAN_MODE_AUTO;
        return 0;
    }
    if (id != 2) {
        SITE_FLOG(site, BRINOVA_LOG_ERROR, "scan type(%d) is invalid.", id);
        return -1;
    }
    block.e_scan_mode = SB_DTMB_SCAN_MODE_MANUAL;
    const jlong stored = env->CallLongMethod(thiz, gFields.getNativeConfigId);
    checkJavaException(env, site, "getNativeConfig");
    // Java holds the configuration as its address.
    void* tag = reinterpret_cast<JINativeScanConfig*>(static_cast<uintptr_t>(stored));  // NOLINT(performance-no-int-to-ptr)
    uint32_t frequency = 0;
    uint32_t len = sizeof(frequency);
    const int32_t ret = _native_sb_dtmb_scan_maps_notify(0, block.t_country_code,
                                                         reinterpret_cast<void*>(1), &frequency,
                                                         &len, tag);
    if (ret != 0) {
        return ret;
    }
    block.ui4_manual_freq = frequency;
    SITE_FLOG(site, BRINOVA_LOG_ERROR, "manual frequency: %d", frequency);
    return 0;
}

// The numbers after the scan type: service id rule (below 13) and update type (0 to 2).
jint readRules(JNIEnv* env, jobject settings, SB_DTMB_SCAN_DATA_T& block, void* config,
               const ScanSite& site) {
    const jint rule = callIntGetter(env, settings, gFields.scanSettings.getServiceIdRuleId,
                                    "getServiceIdRule", site);
    if (rule >= 13) {
        SITE_FLOG(site, BRINOVA_LOG_ERROR, "service id rule(%d) is invalid.", rule);
        return -1;
    }
    block.ui4_svc_id_rule = static_cast<uint32_t>(rule);
    const jint update = callIntGetter(env, settings, gFields.scanSettings.getServiceUpdateTypeId,
                                      "getServiceUpdateType", site);
    if (static_cast<uint32_t>(update) >= 3) {
        SITE_FLOG(site, BRINOVA_LOG_ERROR, "service update type(%d) is invalid.", update);
        return -1;
    }
    SITE_FLOG(site, BRINOVA_LOG_ERROR, "service update type(%d) test111.", update);
    block.e_svc_update_type = static_cast<uint32_t>(update);
    block.pf_svc_update_nfy = _native_sb_service_update_notify;
    SITE_FLOG(site, BRINOVA_LOG_ERROR, "pf_svc_update_nfy(%p).", reinterpret_cast<void*>(block.pf_svc_update_nfy));
    block.pv_svc_update_nfy_tag = config;
    return 0;
}

// Steps 2 to 6 of the setup, logged at the setup's site; the configuration is already
// stored in Java.
jint fillBlock(JNIEnv* env, jobject thiz, jobject settings, JNativeDtmbScanConfig* config,
               const ScanSite& site) {
    SB_DTMB_SCAN_DATA_T& block = config->block();
    SettingText country(env, settings, gFields.scanSettings.getCountryId, site, "getCountry");
    if (country.isNull()) {
        SITE_FLOG(site, BRINOVA_LOG_ERROR, "Get country id failed.");
        return -1;
    }
    if (country.c_str() == nullptr) {
        SITE_FLOG(site, BRINOVA_LOG_ERROR, " Out of memory.");
        return -4;
    }
    copyCode(block.t_country_code, country.c_str());
    SettingText language(env, settings, gFields.scanSettings.getUiLanguageId, site,
                         "getUiLanguage");
    if (language.isNull()) {
        SITE_FLOG(site, BRINOVA_LOG_ERROR, "Get ui language id failed.");
        return -4;
    }
    if (language.c_str() == nullptr) {
        SITE_FLOG(site, BRINOVA_LOG_ERROR, " Out of memory.");
        return -4;
    }
    copyCode(block.t_ui_lang, language.c_str());
    const jint status = readScanMode(env, thiz, settings, block, site);
    return status != 0 ? status : readRules(env, settings, block, config, site);
}

jint com_brinova_tv_orvella_scan_native_setup(JNIEnv* env, jobject thiz, jobject settings) {
    JavaCallerScope scope(env);
    sp<JNativeDtmbScanConfig> config = new JNativeDtmbScanConfig(env, thiz);
    setDtmbScanConfig(env, thiz, config);
    x_memset(&config->block(), 0, sizeof(SB_DTMB_SCAN_DATA_T));
    const jint status = fillBlock(env, thiz, settings, config.get(), SCAN_SITE);
    if (status != 0) {
        setDtmbScanConfig(env, thiz, nullptr);
    }
    return status;
}

jint com_brinova_tv_orvella_scan_native_release(JNIEnv* env, jobject thiz) {
    JavaCallerScope scope(env);
    setDtmbScanConfig(env, thiz, nullptr);
    return 0;
}

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "(Lcom/brinova/tv/orvella/services/scan/ZelTvDtmbScanSettings;)I",
     reinterpret_cast<void*>(com_brinova_tv_orvella_scan_native_setup)},
    {"nativeRelease", "()I", reinterpret_cast<void*>(com_brinova_tv_orvella_scan_native_release)},
};

const MethodSpec gConfigMethods[] = {
    {&gFields.getNativeConfigId, "getNativeConfig", "()J", "!(gFields.getNativeConfigId != __null)"},
    {&gFields.setNativeConfigId, "setNativeConfig", "(J)V", "!(gFields.setNativeConfigId != __null)"},
    {&gFields.onScanMapCommandsId, "onScanMapCommands", "(ILjava/lang/String;[I[I)V",
     "!(gFields.onScanMapCommandsId != __null)"},
    {&gFields.onStatusId, "onStatus", "(I)V", "!(gFields.onStatusId != __null)"},
    {&gFields.checkSettingsId, "checkSettings", "()I", "!(gFields.checkSettingsId != __null)"},
};

const MethodSpec gSettingsMethods[] = {
    {&gFields.scanSettings.getCountryId, "getCountry", "()Ljava/lang/String;",
     "!(gFields.scanSettings.getCountryId != __null)"},
    {&gFields.scanSettings.getUiLanguageId, "getUiLanguage", "()Ljava/lang/String;",
     "!(gFields.scanSettings.getUiLanguageId != __null)"},
    {&gFields.scanSettings.getScanTypeId, "getScanType",
     "()Lcom/brinova/tv/orvella/services/scan/ZelTvDtmbScanSettings$DtmbScanType;",
     "!(gFields.scanSettings.getScanTypeId != __null)"},
    {&gFields.scanSettings.getServiceIdRuleId, "getServiceIdRule", "()I",
     "!(gFields.scanSettings.getServiceIdRuleId != __null)"},
    {&gFields.scanSettings.getServiceUpdateTypeId, "getServiceUpdateType", "()I",
     "!(gFields.scanSettings.getServiceUpdateTypeId != __null)"},
    {&gFields.scanSettings.isLcnDisabledId, "isLcnDisabled", "()Z",
     "!(gFields.scanSettings.isLcnDisabledId != __null)"},
};

const MethodSpec gScanTypeMethods[] = {
    {&gFields.scanSettings.type.idOfId, "idOf", "()I",
     "!(gFields.scanSettings.type.idOfId != __null)"},
};

}  // namespace

}  // namespace android

using namespace android;

int register_com_brinova_tv_orvella_scan_ZelTvScanDtmbConfig(JNIEnv* env) {
    return registerConfigClass(env, kConfigClass, gMethods, gConfigMethods,
                               {{kSettingsClass, gSettingsMethods, std::size(gSettingsMethods)},
                                {kScanTypeClass, gScanTypeMethods, std::size(gScanTypeMethods)}},
                               SCAN_SITE);
}
