// Terrestrial DVB scan configuration: the "sb_dvb" builder's 64-byte parameter block,
// its scan-maps commands answered by Java, and its service-update notification.
#define LOG_TAG "mdbgin_ZelTvDvbtScanConfig_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_ZelTvDvbtScanConfig"

#include <stdint.h>

#include <vector>

#include <nativehelper/ScopedLocalRef.h>
#include <nativehelper/ScopedUtfChars.h>

#include "JINativeScanConfig.h"
#include "x_mw_api.h"

namespace android {

namespace {

const char* const kConfigClass = "com/brinova/tv/orvella/services/scan/ZelTvDvbtScanConfig";
const char* const kSettingsClass = "com/brinova/tv/orvella/services/scan/ZelTvDvbtScanSettings";

struct fields_t {
    jmethodID getNativeConfigId;
    jmethodID setNativeConfigId;
    jmethodID onScanMapCommandsId;
    jmethodID onDvbtServiceUpdateNotifyId;
    jmethodID onStatusId;
    jmethodID checkScanMapsId;
    struct {
        jmethodID getCountryId;
        jmethodID getScanTypeId;
        jmethodID getUiLanguageId;
        jmethodID getServiceUpdateTypeId;
    } scanSettings;
};
fields_t gFields;

// Java scan types and service-update types and the builder's codes for them.
uint32_t builderScanType(jint javaType) {
    switch (javaType) {
        case 1: return 1;
        case 2: return 7;
        case 5: return 3;
        default: return 0;
    }
}

uint32_t builderUpdateType(jint javaType) {
    switch (javaType) {
        case 1: return 1;
        case 2: return 2;
        default: return 0;
    }
}

// What the native side checks, passes and writes per scan-maps command.
enum class CommandKind { kWord32, kWord16, kText16, kRules, kBoolean, kBypass };

CommandKind commandKind(SCAN_MAPS_CMD_T cmd) {
    switch (cmd) {
        case 0: case 1: case 13: case 18: case 20: case 21: case 25:
            return CommandKind::kWord32;
        case 2: case 3: case 4: case 8:
            return CommandKind::kWord16;
        case 27: case 28:
            return CommandKind::kText16;
        case 16:
            return CommandKind::kRules;
        case 9: case 10: case 11: case 22: case 23: case 24: case 26:
            return CommandKind::kBoolean;
        default:
            return CommandKind::kBypass;
    }
}

uint32_t requiredOutputLen(CommandKind kind) {
    switch (kind) {
        case CommandKind::kWord32: return sizeof(uint32_t);
        case CommandKind::kWord16:
        case CommandKind::kText16: return sizeof(uint16_t);
        case CommandKind::kRules: return sizeof(SB_DVB_SCAN_MAPS_RULES_T);
        default: return 0;
    }
}

// Commands 27 and 28: three 16-bit values, then the text one int per byte (at most 65).
constexpr int kTextInputInts = 68;
constexpr size_t kTextMaxBytes = 64;

jsize buildTextInput(const SB_DVB_SCAN_MAPS_TEXT_INPUT_T* in, jint* out) {
    out[0] = in->aui2_value[0];
    out[1] = in->aui2_value[1];
    out[2] = in->aui2_value[2];
    size_t len = x_strlen(in->ac_text);
    size_t n = len <= kTextMaxBytes ? len : kTextMaxBytes + 1;
    const uint8_t* text = reinterpret_cast<const uint8_t*>(in->ac_text);
    for (size_t i = 0; i < n; ++i) {
        out[3 + i] = text[i];
    }
    return kTextInputInts;
}

}  // namespace

class JNativeDvbtScanConfig : public ScanConfigPeer<SB_DVB_SCAN_DATA_T> {
public:
    JNativeDvbtScanConfig(JNIEnv* env, jobject obj) : ScanConfigPeer(env, obj, SCAN_SITE) {}

    const char* getSbEbEngineName() override { return "sb_dvb"; }
    void* getSbScanMapsNotify() override;
    void* getSbScanParams(int unused) override {
        XLOGI(" \n");
        return ScanConfigPeer::getSbScanParams(unused);
    }
    jobject getSbScanConfigObject() override {
        XLOGI(" \n");
        return ScanConfigPeer::getSbScanConfigObject();
    }
    int checkScanMaps() override { return callCheckSettings(gFields.checkScanMapsId, SCAN_SITE); }
    void onStatus(int status) override { callOnStatus(gFields.onStatusId, status, SCAN_SITE); }

    SB_DVB_SCAN_DATA_T& block() { return mBlock; }
    jobject javaObject() const { return mRefs.object(); }

protected:
    ~JNativeDvbtScanConfig() override {
        if (!releaseRefs(SCAN_SITE)) {
            BLOGD_RAW("JNativeDvbtScanConfig, jenv is null, going to abort().");
            abort();
        }
    }
};

namespace {

// The first stage of a command: its size check and its input. False, after the error line,
// when the output buffer is too small or command 27 or 28 comes without input.
bool prepareCommand(const ScanSite& site, SCAN_MAPS_CMD_T cmd, CommandKind kind, void* pv_input,
                    uint32_t* pz_output_len, jint* input, jsize* inputLen) {
    *inputLen = 1;
    input[0] = static_cast<jint>(reinterpret_cast<uintptr_t>(pv_input));
    uint32_t required = requiredOutputLen(kind);
    if (required == 0) {
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "_native_sb_dvb_scan_maps_notify, bypass command: %d",
                 cmd);
        return true;
    }
    if (*pz_output_len < required || (kind == CommandKind::kText16 && pv_input == nullptr)) {
        SITE_LOG_RAW(site, BRINOVA_LOG_ERROR,
                 "_native_sb_dvb_scan_maps_notify, [%d][%d] invalid buffer size: %d.", cmd,
                 site.line, *pz_output_len);
        return false;
    }
    *pz_output_len = required;
    if (kind == CommandKind::kText16) {
        *inputLen =
            buildTextInput(static_cast<const SB_DVB_SCAN_MAPS_TEXT_INPUT_T*>(pv_input), input);
    }
    return true;
}

// The second stage: Java's answer written into the builder's buffer as the command says.
void writeAnswer(const ScanSite& site, SCAN_MAPS_CMD_T cmd, CommandKind kind, const jint* output,
                 void* pv_output, uint32_t* pz_output_len) {
    switch (kind) {
        case CommandKind::kWord32:
            *static_cast<uint32_t*>(pv_output) = static_cast<uint32_t>(output[0]);
            break;
        case CommandKind::kWord16:
        case CommandKind::kText16:
            *static_cast<uint16_t*>(pv_output) = static_cast<uint16_t>(output[0]);
            break;
        case CommandKind::kRules: {
            auto* rules = static_cast<SB_DVB_SCAN_MAPS_RULES_T*>(pv_output);
            rules->ui2_num_rules = static_cast<uint16_t>(output[0]);
            for (int i = 0; i < output[0] && i < SB_DVB_SCAN_MAPS_MAX_RULES; ++i) {
                rules->aui4_rule[i] = static_cast<uint32_t>(output[i + 1]);
                SITE_XLOGI(site, ", rules:%d\n", output[i + 1]);
            }
            break;
        }
        case CommandKind::kBoolean:
            if (*pz_output_len != 0) {
                *static_cast<uint8_t*>(pv_output) = output[0] != 0 ? 1 : 0;
                *pz_output_len = 1;
                SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG,
                         "_native_sb_dvb_scan_maps_notify, SCAN_MAPS_CMD: %d, line:%d, output:%d",
                         cmd, site.line, output[0]);
            }
            break;
        case CommandKind::kBypass:
            SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "_native_sb_dvb_scan_maps_notify, bypass command:[%d] %d",
                     cmd, site.line);
            break;
    }
}

}  // namespace

extern "C" int32_t _native_sb_dvb_scan_maps_notify(SCAN_MAPS_CMD_T cmd, char* country,
                                                   void* pv_input, void* pv_output,
                                                   uint32_t* pz_output_len, void* pv_tag) {
    SCAN_ASSERT(pv_output != NULL);
    SCAN_ASSERT(pz_output_len != NULL);
    // A tag that names no live configuration is answered as no tag.
    sp<JINativeScanConfig> config = scanConfigOfTag(pv_tag);
    if (config == nullptr) {
        BLOGD_RAW("_native_sb_dvb_scan_maps_notify, pv_tag(native config instance) is NULL!");
        return 0;
    }
    ScanMapsCall call(SCAN_SITE, country);
    JNIEnv* env = call.env();

    const CommandKind kind = commandKind(cmd);
    jint input[kTextInputInts] = {};
    jsize inputLen = 1;
    if (!prepareCommand(SCAN_SITE, cmd, kind, pv_input, pz_output_len, input, &inputLen)) {
        call.keepAttached();
        return -6;
    }
    ScopedLocalRef<jintArray> intInput(env, call.newInput(SCAN_SITE, input, inputLen));
    jsize outputLen = 1;
    if (*pz_output_len >= 5) {
        outputLen = static_cast<jsize>(*pz_output_len);
    } else {
        XLOGI(" \n");
    }
    ScopedLocalRef<jintArray> intOutput(env, call.newOutput(SCAN_SITE, outputLen));
    jobject javaConfig = config->getSbScanConfigObject();
    env->CallVoidMethod(javaConfig, gFields.onScanMapCommandsId, static_cast<jint>(cmd),
                        call.country(), intInput.get(), intOutput.get());
    checkJavaException(env, SCAN_SITE, "onScanMapCommands");
    std::vector<jint> output(outputLen);
    call.readOutput(intOutput.get(), outputLen, output.data());
    writeAnswer(SCAN_SITE, cmd, kind, output.data(), pv_output, pz_output_len);
    return 0;
}

void* JNativeDvbtScanConfig::getSbScanMapsNotify() {
    void* notify = reinterpret_cast<void*>(&_native_sb_dvb_scan_maps_notify);
    BLOGD_RAW("[debug]getSbScanMapsNotify: %p", notify);
    return notify;
}

extern "C" void _native_sb_service_update_notify(SB_DVB_SVC_UPDATE_NFY_DATA_T* data,
                                                 void* pv_nfy_tag) {
    BLOGD_RAW("_native_sb_service_update_notify, %p", data);
    if (pv_nfy_tag == nullptr) {
        BLOGE_RAW("_native_sb_service_update_notify, pv_tag is NULL!");
        return;
    }
    BLOGD_RAW("_native_sb_service_update_notify pv_nfy_tag=%p", pv_nfy_tag);
    ScopedJniThread thread(SCAN_SITE, ScopedJniThread::kSts);
    JNIEnv* env = thread.env();
    jint counts[2] = {data->ui2_num_added, data->ui2_num_deleted};
    BLOGD("add=%d,del=%d", counts[0], counts[1]);
    jintArray intInput = env->NewIntArray(2);
    SCAN_ASSERT(intInput != NULL);
    ScopedLocalRef<jintArray> inputRef(env, intInput);
    env->SetIntArrayRegion(intInput, 0, 2, counts);
    env->CallVoidMethod(static_cast<jobject>(pv_nfy_tag), gFields.onDvbtServiceUpdateNotifyId,
                        intInput);
    checkJavaException(env, SCAN_SITE, "onDvbtServiceUpdateNotify");
}

namespace {

sp<JINativeScanConfig> setDvbtScanConfig(JNIEnv* env, jobject thiz,
                                         const sp<JINativeScanConfig>& config) {
    return exchangeNativeConfig(env, thiz, config, gFields.getNativeConfigId,
                                gFields.setNativeConfigId, SCAN_SITE, "setDvbtScanConfig");
}

jint com_brinova_tv_orvella_scan_native_setup(JNIEnv* env, jobject thiz, jobject settings) {
    JavaCallerScope scope(env);
    BLOGD("enter");
    sp<JNativeDvbtScanConfig> config = new JNativeDvbtScanConfig(env, thiz);

    ScopedLocalRef<jstring> country(
        env, static_cast<jstring>(env->CallObjectMethod(settings, gFields.scanSettings.getCountryId)));
    checkJavaException(env, SCAN_SITE, "getCountry");
    if (country.get() == nullptr) {
        BLOGE_FILE(" Get country id failed.");
        return 0;
    }
    ScopedUtfChars countryChars(env, country.get());
    if (countryChars.c_str() == nullptr) {
        BLOGE_FILE(" Out of memory.");
        return -4;
    }
    ScopedLocalRef<jstring> uiLanguage(
        env,
        static_cast<jstring>(env->CallObjectMethod(settings, gFields.scanSettings.getUiLanguageId)));
    checkJavaException(env, SCAN_SITE, "getUiLanguage");
    if (uiLanguage.get() == nullptr) {
        BLOGE_FILE(" Get uiLanguage id failed.");
        return 0;
    }
    ScopedUtfChars languageChars(env, uiLanguage.get());
    if (languageChars.c_str() == nullptr) {
        BLOGE_FILE(" Out of memory.");
        return -4;
    }
    XLOGI(" uiLanguage=%s\n", languageChars.c_str());

    SB_DVB_SCAN_DATA_T& block = config->block();
    x_memset(&block, 0, sizeof(block));
    jint scanType = env->CallIntMethod(settings, gFields.scanSettings.getScanTypeId);
    checkJavaException(env, SCAN_SITE, "getScanType");
    BLOGD_LINE(" scanType=%d", scanType);
    block.e_scan_type = builderScanType(scanType);
    if (block.e_scan_type == 0) {
        BLOGD_LINE(" un-implement scan type.");
    }
    jint updateType = env->CallIntMethod(settings, gFields.scanSettings.getServiceUpdateTypeId);
    checkJavaException(env, SCAN_SITE, "getServiceUpdateType");
    BLOGD_LINE(" serviceUpdateType=%d", updateType);
    block.e_svc_update_type = builderUpdateType(updateType);
    if (block.e_svc_update_type == 0) {
        BLOGD_LINE(" un-implement update type.");
    }
    copyCode(block.t_country_code, countryChars.c_str());
    copyCode(block.t_ui_lang, languageChars.c_str());
    block.pf_svc_update_nfy = _native_sb_service_update_notify;
    block.pv_svc_update_nfy_tag = config->javaObject();

    setDvbtScanConfig(env, thiz, config);
    return 0;
}

jint com_brinova_tv_orvella_scan_native_release(JNIEnv* env, jobject thiz) {
    JavaCallerScope scope(env);
    setDvbtScanConfig(env, thiz, nullptr);
    return 0;
}

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "(Lcom/brinova/tv/orvella/services/scan/ZelTvDvbtScanSettings;)I",
     reinterpret_cast<void*>(com_brinova_tv_orvella_scan_native_setup)},
    {"nativeRelease", "()I", reinterpret_cast<void*>(com_brinova_tv_orvella_scan_native_release)},
};

const MethodSpec gConfigMethods[] = {
    {&gFields.getNativeConfigId, "getNativeConfig", "()J", "!(gFields.getNativeConfigId != __null)"},
    {&gFields.setNativeConfigId, "setNativeConfig", "(J)V", "!(gFields.setNativeConfigId != __null)"},
    {&gFields.onScanMapCommandsId, "onScanMapCommands", "(ILjava/lang/String;[I[I)V",
     "!(gFields.onScanMapCommandsId != __null)"},
    {&gFields.onDvbtServiceUpdateNotifyId, "onDvbtServiceUpdateNotify", "([I)V",
     "!(gFields.onDvbtServiceUpdateNotifyId != __null)"},
    {&gFields.onStatusId, "onStatus", "(I)V", "!(gFields.onStatusId != __null)"},
    {&gFields.checkScanMapsId, "checkSettings", "()I", "!(gFields.checkScanMapsId != __null)"},
};

const MethodSpec gSettingsMethods[] = {
    {&gFields.scanSettings.getCountryId, "getCountry", "()Ljava/lang/String;",
     "!(gFields.scanSettings.getCountryId != __null)"},
    {&gFields.scanSettings.getScanTypeId, "getScanType", "()I",
     "!(gFields.scanSettings.getScanTypeId != __null)"},
    {&gFields.scanSettings.getUiLanguageId, "getUiLanguage", "()Ljava/lang/String;",
     "!(gFields.scanSettings.getUiLanguageId != __null)"},
    {&gFields.scanSettings.getServiceUpdateTypeId, "getServiceUpdateType", "()I",
     "!(gFields.scanSettings.getServiceUpdateTypeId != __null)"},
};

}  // namespace

}  // namespace android

using namespace android;

int register_com_brinova_tv_orvella_scan_ZelTvScanDvbtConfig(JNIEnv* env) {
    return registerConfigClass(env, kConfigClass, gMethods, gConfigMethods,
                               {{kSettingsClass, gSettingsMethods, std::size(gSettingsMethods)}},
                               SCAN_SITE);
}
