// Cable DVB scan configuration: the 84-byte block of the "sb_dvbc" builder (or "sb_cn_dvbc"
// for China) with the operator rules by country, the cable scan-maps commands (which carry
// a number and, for two of them, a service name) and four notifications to Java.
#define LOG_TAG "ZelTvDvbcScanConfig_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_ZelTvDvbcScanConfig"

#include <stdint.h>
#include <stdlib.h>

#include <algorithm>
#include <iterator>
#include <vector>

#include <nativehelper/ScopedLocalRef.h>

#include "JINativeScanConfig.h"
#include "ScanConfigShared.h"
#include "x_mw_api.h"

namespace android {

namespace {

const char* const kConfigClass = "com/brinova/tv/orvella/services/scan/ZelTvDvbcScanConfig";
const char* const kSettingsClass = "com/brinova/tv/orvella/services/scan/ZelTvDvbcScanSettings";
const char* const kScanMapsName = "_native_sb_dvbc_scan_maps_notify";

struct fields_t {
    jmethodID getNativeConfigId;
    jmethodID setNativeConfigId;
    jmethodID onScanMapCommandsId;
    jmethodID onDvbcServiceUpdateNotifyId;
    jmethodID onDvbcNetworkNameNotifyId;
    jmethodID onDvbcFreqUnLockNotifyId;
    jmethodID onDvbcNonNetworkIdNotifyId;
    jmethodID onStatusId;
    jmethodID checkScanMapsId;
    struct {
        jmethodID getCountryId;
        jmethodID getOperatorId;
        jmethodID getScanTypeId;
        jmethodID getDefaultFreqId;
        jmethodID getNetworkId;  // the one slot without the "Id" suffix
        jmethodID getUiLanguageId;
        jmethodID getServiceUpdateTypeId;
    } scanSettings;
};
fields_t gFields;

// What a cable command checks, passes and writes.
enum class CommandKind { kWord32, kRangedWord32, kBoolean, kServiceName, kUnknown };

CommandKind commandKind(DVBC_SCAN_MAPS_CMD_T cmd) {
    switch (cmd) {
        case 1: case 2: case 11: case 12: case 28: case 29: case 30: case 43: case 47: case 52:
        case 53: case 56: case 57:
            return CommandKind::kWord32;
        case 3: case 4:
            return CommandKind::kRangedWord32;
        case 16: case 18: case 21: case 24: case 31: case 32: case 36: case 46: case 54: case 55:
            return CommandKind::kBoolean;
        case 17: case 58:
            return CommandKind::kServiceName;
        default:
            return CommandKind::kUnknown;
    }
}

// The first stage: the size check and the length the command sets. False when the buffer
// is too small.
bool checkRoom(CommandKind kind, uint32_t* len) {
    switch (kind) {
        case CommandKind::kWord32:
        case CommandKind::kRangedWord32:
            if (*len < sizeof(uint32_t)) return false;
            *len = sizeof(uint32_t);
            return true;
        case CommandKind::kBoolean:
            if (*len == 0) return false;
            *len = 1;
            return true;
        default:
            return true;  // the service-name commands check nothing and keep the length
    }
}

// Commands 17 and 58: the first three words of the input, and its service name cut to the
// record's room and made valid for Java.
struct ServiceInput {
    jint words[3] = {0, 0, 0};
    char name[SB_DVBC_SVC_NAME_LEN + 1] = {};
    bool hasName = false;
};

ServiceInput readServiceInput(const void* pv_input) {
    ServiceInput in;
    if (pv_input == nullptr) return in;  // nothing to read: zeros and no name
    const auto* rec = static_cast<const SB_DVBC_SCAN_MAPS_SVC_INPUT_T*>(pv_input);
    for (int i = 0; i < 3; ++i) in.words[i] = static_cast<jint>(rec->aui4_value[i]);
    copyModifiedUtf8(in.name, sizeof(in.name), rec->s_svc_name, sizeof(rec->s_svc_name));
    in.hasName = true;
    return in;
}

// The second stage. Returns -26 for an out-of-range answer to 3 or 4, else 0.
int32_t writeAnswer(const ScanSite& site, DVBC_SCAN_MAPS_CMD_T cmd, CommandKind kind,
                    jint answer, void* pv_output, uint32_t len) {
    switch (kind) {
        case CommandKind::kRangedWord32:
            if (answer == -1) {
                SITE_LOG_RAW(site, BRINOVA_LOG_ERROR, "Out of Range.");
                return -26;
            }
            *static_cast<uint32_t*>(pv_output) = static_cast<uint32_t>(answer);
            return 0;
        case CommandKind::kWord32:
            *static_cast<uint32_t*>(pv_output) = static_cast<uint32_t>(answer);
            return 0;
        case CommandKind::kServiceName:
            // Unchecked by the builder's table: only a buffer with room for the word gets it.
            if (len >= sizeof(uint32_t)) *static_cast<uint32_t*>(pv_output) = static_cast<uint32_t>(answer);
            return 0;
        case CommandKind::kBoolean:
            *static_cast<uint8_t*>(pv_output) = answer != 0 ? 1 : 0;
            return 0;
        default:
            SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "[%s:%d]%s, bypass command:%d", site.source,
                         site.line, kScanMapsName, cmd);
            return 0;
    }
}

}  // namespace

extern "C" int32_t _native_sb_dvbc_scan_maps_notify(DVBC_SCAN_MAPS_CMD_T cmd, char* country,
                                                    uint32_t value, void* pv_input,
                                                    void* /* reserved */, void* pv_output,
                                                    uint32_t* pz_output_len, void* pv_tag) {
    SCAN_ASSERT(pv_output != NULL);
    SCAN_ASSERT(pz_output_len != NULL);
    // A tag that names no live configuration is answered as no tag.
    sp<JINativeScanConfig> config = scanConfigOfTag(pv_tag);
    if (config == nullptr) {
        BLOGD_RAW("_native_sb_dvbc_scan_maps_notify, pv_tag(native config instance) is NULL!");
        return 0;
    }
    ScanMapsCall call(SCAN_SITE, country);
    JNIEnv* env = call.env();
    const CommandKind kind = commandKind(cmd);
    if (kind == CommandKind::kUnknown) {
        BLOGD_RAW("_native_sb_dvbc_scan_maps_notify, bypass command: %d", cmd);
        call.keepAttached();  // a refusal returns before the detach, like the size check
        return -6;
    }
    if (!checkRoom(kind, pz_output_len)) {
        BLOGE_RAW("_native_sb_dvbc_scan_maps_notify, [%d][%d] invalid buffer size: %d.", cmd,
                  __LINE__, *pz_output_len);
        call.keepAttached();
        return -6;
    }
    ServiceInput service;
    jint input[3] = {static_cast<jint>(reinterpret_cast<uintptr_t>(pv_input)), 0, 0};
    jsize inputLen = 1;
    if (kind == CommandKind::kServiceName) {
        service = readServiceInput(pv_input);
        std::copy(std::begin(service.words), std::end(service.words), input);
        inputLen = 3;
        BLOGD_RAW("_native_sb_dvbc_scan_maps_notify, serviceName %s", service.name);
    }
    ScopedLocalRef<jintArray> intInput(env, call.newInput(SCAN_SITE, input, inputLen));
    const jsize outputLen = *pz_output_len >= 5 ? static_cast<jsize>(*pz_output_len) : 1;
    ScopedLocalRef<jintArray> intOutput(env, call.newOutput(SCAN_SITE, outputLen));
    ScopedLocalRef<jstring> serviceName(env, service.hasName ? env->NewStringUTF(service.name) : nullptr);
    jobject javaConfig = config->getSbScanConfigObject();
    env->CallVoidMethod(javaConfig, gFields.onScanMapCommandsId, static_cast<jint>(cmd),
                        call.country(), serviceName.get(), static_cast<jint>(value), intInput.get(),
                        intOutput.get());
    checkJavaException(env, SCAN_SITE, "onScanMapCommands");
    jint answer = 0;
    call.readOutput(intOutput.get(), 1, &answer);
    return writeAnswer(SCAN_SITE, cmd, kind, answer, pv_output, *pz_output_len);
}

namespace {

void _native_sb_service_update_notify(SB_DVBC_SVC_UPDATE_NFY_DATA_T* data, void* pv_nfy_tag) {
    BLOGD_RAW("_native_sb_service_update_notify, %p", data);
    if (pv_nfy_tag == nullptr || data == nullptr) {
        BLOGE_RAW("_native_sb_service_update_notify, pv_tag is NULL!");
        return;
    }
    BLOGD_RAW("_native_sb_service_update_notify pv_nfy_tag=%p", pv_nfy_tag);
    ScopedJniThread thread(SCAN_SITE, ScopedJniThread::kSts);
    BLOGD("add=%d, del=%d", data->ui2_num_added, data->ui2_num_deleted);
    sendServiceUpdate(thread.env(), static_cast<jobject>(pv_nfy_tag),
                      gFields.onDvbcServiceUpdateNotifyId, data->ui2_num_added,
                      data->ui2_num_deleted, SCAN_SITE);
}

// One function per kind of scanning notification; the record's texts are read within it.
void notifyNetworkName(JNIEnv* env, jobject tag, const SB_DVBC_SCANNING_NFY_DATA_T& data,
                       const char* country, const ScanSite& site) {
    char name[SB_DVBC_NW_NAME_LEN + 1];
    copyModifiedUtf8(name, sizeof(name), data.u.s_nw_name, sizeof(data.u.s_nw_name));
    SITE_LOGD(site, "e_nfy_type = %d, t_country = %s, t_operator_name = %d, s_nw_name = %s",
              data.e_nfy_type, country, data.t_operator_name, name);
    ScopedLocalRef<jstring> text(env, env->NewStringUTF(name));
    env->CallVoidMethod(tag, gFields.onDvbcNetworkNameNotifyId, text.get());
    checkJavaException(env, site, "onDvbcNetworkNameNotify");
}

void notifyFreqUnlock(JNIEnv* env, jobject tag, const SB_DVBC_SCANNING_NFY_DATA_T& data,
                      const char* country, const ScanSite& site) {
    SITE_LOGD(site, "e_nfy_type = %d, t_country = %s, t_operator_name = %d, ui4_freq = %u",
              data.e_nfy_type, country, data.t_operator_name, data.u.ui4_freq);
    env->CallVoidMethod(tag, gFields.onDvbcFreqUnLockNotifyId, static_cast<jint>(data.u.ui4_freq));
    checkJavaException(env, site, "onDvbcFreqUnLockNotify");
}

void notifyNoNetworkId(JNIEnv* env, jobject tag, const SB_DVBC_SCANNING_NFY_DATA_T& data,
                       const char* country, const ScanSite& site) {
    // The 16-bit id is read as the whole word that holds it, as the builder has always sent it.
    const uint32_t word = data.u.ui4_freq;
    SITE_LOGD(site, "e_nfy_type = %d, t_country = %s, t_operator_name = %d, ui2_nw_id = %u",
              data.e_nfy_type, country, data.t_operator_name, word);
    env->CallVoidMethod(tag, gFields.onDvbcNonNetworkIdNotifyId, static_cast<jint>(word));
    checkJavaException(env, site, "onDvbcNonNetworkIdNotify");
}

void _native_sb_network_name_notify(SB_DVBC_SCANNING_NFY_DATA_T* pt_nfy_data, void* pv_nfy_tag) {
    BLOGD("pt_nfy_data = %p, pv_nfy_tag = %p", pt_nfy_data, pv_nfy_tag);
    if (pt_nfy_data == nullptr) {
        BLOGE(" pt_nfy_data is null, going to abort().");
        abort();
    }
    if (pv_nfy_tag == nullptr) {
        BLOGE(" pv_nfy_tag is null, going to abort().");
        abort();
    }
    if (javaVM == nullptr) {
        BLOGE("jenv is null, going to abort().");
        abort();
    }
    ScopedJniThread thread(SCAN_SITE, ScopedJniThread::kRet);
    char country[sizeof(pt_nfy_data->t_country) + 1] = {};
    x_memcpy(country, pt_nfy_data->t_country, sizeof(pt_nfy_data->t_country));
    auto* tag = static_cast<jobject>(pv_nfy_tag);
    switch (pt_nfy_data->e_nfy_type) {
        case SB_DVBC_NFY_NW_NAME:
            notifyNetworkName(thread.env(), tag, *pt_nfy_data, country, SCAN_SITE);
            break;
        case SB_DVBC_NFY_FREQ_UNLOCK:
            notifyFreqUnlock(thread.env(), tag, *pt_nfy_data, country, SCAN_SITE);
            break;
        case SB_DVBC_NFY_NO_NW_ID:
            notifyNoNetworkId(thread.env(), tag, *pt_nfy_data, country, SCAN_SITE);
            break;
        default:
            break;
    }
}

}  // namespace

class JNativeDvbcScanConfig : public ScanConfigPeer<SB_DVBC_SCAN_DATA_T> {
public:
    JNativeDvbcScanConfig(JNIEnv* env, jobject obj) : ScanConfigPeer(env, obj, SCAN_SITE) {}

    const char* getSbEbEngineName() override {
        return x_strncmp(mBlock.t_country_code, "CHN", 4) == 0 ? "sb_cn_dvbc" : "sb_dvbc";
    }
    void* getSbScanMapsNotify() override {
        void* notify = reinterpret_cast<void*>(&_native_sb_dvbc_scan_maps_notify);
        BLOGD_RAW("[debug]getSbScanMapsNotify: %p", notify);
        return notify;
    }
    int checkScanMaps() override { return callCheckSettings(gFields.checkScanMapsId, SCAN_SITE); }
    void onStatus(int status) override { callOnStatus(gFields.onStatusId, status, SCAN_SITE); }

    SB_DVBC_SCAN_DATA_T& block() { return mBlock; }
    jobject javaObject() const { return mRefs.object(); }

protected:
    ~JNativeDvbcScanConfig() override {
        if (!releaseRefs(SCAN_SITE)) {
            BLOGI(" jenv is null, going to abort().");
            abort();
        }
    }
};

namespace {

sp<JINativeScanConfig> setDvbcScanConfig(JNIEnv* env, jobject thiz,
                                         const sp<JINativeScanConfig>& config) {
    return exchangeNativeConfig(env, thiz, config, gFields.getNativeConfigId,
                                gFields.setNativeConfigId, SCAN_SITE, "setDvbcScanConfig");
}

jint callIntGetter(JNIEnv* env, jobject obj, jmethodID getter, const char* what,
                   const ScanSite& site) {
    jint value = env->CallIntMethod(obj, getter);
    checkJavaException(env, site, what);
    return value;
}

// The scan-type fields of the block (type 3 and unknown types set none of them).
void applyScanType(JNIEnv* env, jobject settings, jint type, jint networkId,
                   SB_DVBC_SCAN_DATA_T& block, const ScanSite& site) {
    const auto& s = gFields.scanSettings;
    if (type == 1) {
        block.e_search_mode = 0;
    } else if (type == 2) {
        block.ui2_valid_mask = SB_DVBC_VALID_START_FREQ | SB_DVBC_VALID_END_FREQ;
        block.ui4_start_freq = static_cast<uint32_t>(callIntGetter(env, settings, s.getDefaultFreqId, "getDefaultFreq", site));
        block.ui4_end_freq = static_cast<uint32_t>(callIntGetter(env, settings, s.getDefaultFreqId, "getDefaultFreq", site));
    } else if (type == 4 || type == 5) {
        block.e_search_mode = type == 4 ? 1 : 2;
        block.ui4_start_freq = static_cast<uint32_t>(callIntGetter(env, settings, s.getDefaultFreqId, "getDefaultFreq", site));
        if (block.ui4_start_freq != 0) block.ui2_valid_mask |= SB_DVBC_VALID_START_FREQ;
        if (networkId >= 0) block.ui2_valid_mask |= SB_DVBC_VALID_NW_ID;
        block.ui2_nw_id = networkId >= 0 ? static_cast<uint16_t>(networkId) : 0;
    } else {
        return;
    }
    block.e_scan_mode = type == 2 ? 2 : 1;
    block.t_operator_name = callIntGetter(env, settings, s.getOperatorId, "getOperator", site);
    if (type == 4 || type == 5) {
        SITE_LINELOG(site, BRINOVA_LOG_DEBUG, " start_freq=%d, ui2_nw_id=%d t_operator_name=%d",
                     block.ui4_start_freq, block.ui2_nw_id, block.t_operator_name);
    }
}

bool countryIs(const char (&code)[4], const char* three) { return x_strncmp(code, three, 4) == 0; }

// Operators that the builder knows under another number in some countries.
void applyOperatorRule(SB_DVBC_SCAN_DATA_T& block, const ScanSite& site) {
    const int32_t op = block.t_operator_name;
    if (((op == 34 || op == 41) && countryIs(block.t_country_code, "TUR")) ||
        (op == 35 && countryIs(block.t_country_code, "FIN"))) {
        block.t_operator_name = 0;
        SITE_LOGD(site, "force to convert operator to Others");
    } else if (op == 33 && countryIs(block.t_country_code, "AUT")) {
        block.t_operator_name = 1;
        SITE_LOGD(site, "force to convert operator to UPC");
    } else {
        SITE_LOGD(site, "don't convert, keep it");
    }
    SITE_LOGD(site, " config->mSbDvbcScanData.t_country_code = \"%s\" t_operator_name = %d",
              block.t_country_code, block.t_operator_name);
}

void applyUpdateType(JNIEnv* env, jobject settings, SB_DVBC_SCAN_DATA_T& block,
                     const ScanSite& site) {
    const jint type = callIntGetter(env, settings, gFields.scanSettings.getServiceUpdateTypeId,
                                    "getServiceUpdateType", site);
    SITE_LINELOG(site, BRINOVA_LOG_DEBUG, " serviceUpdateType=%d", type);
    block.e_svc_update_type = type == 1 || type == 2 ? static_cast<uint32_t>(type) : 0;
    if (block.e_svc_update_type == 0) {
        SITE_LINELOG(site, BRINOVA_LOG_DEBUG, " un-implement update type.");
    }
}

jint com_brinova_tv_orvella_scan_native_setup(JNIEnv* env, jobject thiz, jobject settings) {
    JavaCallerScope scope(env);
    BLOGD("enter");
    sp<JNativeDvbcScanConfig> config = new JNativeDvbcScanConfig(env, thiz);
    const jint networkId = callIntGetter(env, settings, gFields.scanSettings.getNetworkId,
                                         "getNetworkId", SCAN_SITE);
    SettingText country(env, settings, gFields.scanSettings.getCountryId, SCAN_SITE, "getCountry");
    if (country.isNull()) {
        BLOGE_FILE(" Get country id failed.");
        return 0;
    }
    if (country.c_str() == nullptr) {
        BLOGE_FILE(" Out of memory.");
        return -4;
    }
    SettingText language(env, settings, gFields.scanSettings.getUiLanguageId, SCAN_SITE,
                         "getUiLanguage");
    if (language.isNull()) {
        BLOGE_FILE(" Get uiLanguage id failed.");
        return 0;
    }
    if (language.c_str() == nullptr) {
        BLOGE_FILE(" Out of memory.");
        return -4;
    }
    SB_DVBC_SCAN_DATA_T& block = config->block();
    x_memset(&block, 0, sizeof(block));
    const jint type = callIntGetter(env, settings, gFields.scanSettings.getScanTypeId,
                                    "getScanType", SCAN_SITE);
    BLOGD_LINE(" scanType=%d", type);
    copyCode(block.t_country_code, country.c_str());
    copyCode(block.t_ui_lang, language.c_str());
    block.pf_svc_update_nfy = _native_sb_service_update_notify;
    block.pv_svc_update_nfy_tag = config->javaObject();
    block.pf_scanning_nfy = _native_sb_network_name_notify;
    block.pv_scanning_nfy_tag = config->javaObject();
    BLOGD("pf_scanning_nfy = %p", reinterpret_cast<void*>(block.pf_scanning_nfy));
    BLOGD("pv_scanning_nfy_tag = %p", block.pv_scanning_nfy_tag);
    applyScanType(env, settings, type, networkId, block, SCAN_SITE);
    applyOperatorRule(block, SCAN_SITE);
    applyUpdateType(env, settings, block, SCAN_SITE);
    setDvbcScanConfig(env, thiz, config);
    return 0;
}

jint com_brinova_tv_orvella_scan_native_release(JNIEnv* env, jobject thiz) {
    JavaCallerScope scope(env);
    setDvbcScanConfig(env, thiz, nullptr);
    return 0;
}

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "(Lcom/brinova/tv/orvella/services/scan/ZelTvDvbcScanSettings;)I",
     reinterpret_cast<void*>(com_brinova_tv_orvella_scan_native_setup)},
    {"nativeRelease", "()I", reinterpret_cast<void*>(com_brinova_tv_orvella_scan_native_release)},
};

const MethodSpec gConfigMethods[] = {
    {&gFields.getNativeConfigId, "getNativeConfig", "()J", "!(gFields.getNativeConfigId != __null)"},
    {&gFields.setNativeConfigId, "setNativeConfig", "(J)V", "!(gFields.setNativeConfigId != __null)"},
    {&gFields.onScanMapCommandsId, "onScanMapCommands",
     "(ILjava/lang/String;Ljava/lang/String;I[I[I)V", "!(gFields.onScanMapCommandsId != __null)"},
    {&gFields.onDvbcServiceUpdateNotifyId, "onDvbcServiceUpdateNotify", "([I)V",
     "!(gFields.onDvbcServiceUpdateNotifyId != __null)"},
    {&gFields.onDvbcNetworkNameNotifyId, "onDvbcNetworkNameNotify", "(Ljava/lang/String;)V",
     "!(gFields.onDvbcNetworkNameNotifyId != __null)"},
    {&gFields.onDvbcFreqUnLockNotifyId, "onDvbcFreqUnLockNotify", "(I)V",
     "!(gFields.onDvbcFreqUnLockNotifyId != __null)"},
    {&gFields.onDvbcNonNetworkIdNotifyId, "onDvbcNonNetworkIdNotify", "(I)V",
     "!(gFields.onDvbcNonNetworkIdNotifyId != __null)"},
    {&gFields.onStatusId, "onStatus", "(I)V", "!(gFields.onStatusId != __null)"},
    {&gFields.checkScanMapsId, "checkSettings", "()I", "!(gFields.checkScanMapsId != __null)"},
};

const MethodSpec gSettingsMethods[] = {
    {&gFields.scanSettings.getCountryId, "getCountry", "()Ljava/lang/String;",
     "!(gFields.scanSettings.getCountryId != __null)"},
    {&gFields.scanSettings.getOperatorId, "getOperator", "()I",
     "!(gFields.scanSettings.getOperatorId != __null)"},
    {&gFields.scanSettings.getScanTypeId, "getScanType", "()I",
     "!(gFields.scanSettings.getScanTypeId != __null)"},
    {&gFields.scanSettings.getDefaultFreqId, "getDefaultFreq", "()I",
     "!(gFields.scanSettings.getDefaultFreqId != __null)"},
    {&gFields.scanSettings.getNetworkId, "getNetworkId", "()I",
     "!(gFields.scanSettings.getNetworkId != __null)"},
    {&gFields.scanSettings.getUiLanguageId, "getUiLanguage", "()Ljava/lang/String;",
     "!(gFields.scanSettings.getUiLanguageId != __null)"},
    {&gFields.scanSettings.getServiceUpdateTypeId, "getServiceUpdateType", "()I",
     "!(gFields.scanSettings.getServiceUpdateTypeId != __null)"},
};

}  // namespace

}  // namespace android

using namespace android;

int register_com_brinova_tv_orvella_scan_ZelTvScanDvbcConfig(JNIEnv* env) {
    return registerConfigClass(env, kConfigClass, gMethods, gConfigMethods,
                               {{kSettingsClass, gSettingsMethods, std::size(gSettingsMethods)}},
                               SCAN_SITE);
}
