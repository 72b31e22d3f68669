// Satellite operator scan configuration: the "sb_dvbs" builder's 780-byte parameter block,
// its scan-maps commands answered by Java with a status, and the four notifications the
// builder sends during a scan (service update, orbit slot, service numbers, categories).
#define LOG_TAG "ZelTvDvbsScanConfig_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_ZelTvDvbsScanConfig"

#include <stdint.h>
#include <stdlib.h>
#include <stdio.h>
#include <string.h>

#include <nativehelper/ScopedLocalRef.h>

#include "DvbsScanConfigCommon.h"
#include "JINativeScanConfig.h"
#include "SbDvbsScanParams.h"
#include "x_mw_api.h"

namespace android {

namespace {

const char* const kConfigClass = "com/brinova/tv/orvella/services/scan/ZelTvDvbsScanConfig";
const char* const kSettingsClass = "com/brinova/tv/orvella/services/scan/ZelTvDvbsScanSettings";

struct fields_t {
    jmethodID getNativeConfigId;
    jmethodID setNativeConfigId;
    jmethodID onScanMapCommandsId;
    jmethodID onDvbsServiceUpdateNotifyId;
    jmethodID onDvbsServiceDetailsNotifyId;
    jmethodID onStatusId;
    jmethodID checkScanMapsId;
    jmethodID onDvbsOrbitSlotNotifyId;
    jmethodID onDvbsCategoryNotifyId;
    struct {
        jmethodID getCountryId;
        jmethodID getOperatorId;
        jmethodID getScanTypeId;
        jmethodID getSatelliteId;
        jmethodID getUiLanguageId;
        jmethodID getChannelTypeId;
        jmethodID getServiceTypeId;
        jmethodID getServiceUpdateTypeId;
    } scanSettings;
    struct {
        jmethodID getFreqId;
        jmethodID getSymbolRateId;
        jmethodID getPolId;
    } tpInfo;
};
fields_t gFields;

// The two LNB presets of the satellite record, fixed by the program.
struct LnbPreset {
    uint32_t type;
    uint16_t low;
    uint16_t high;
    uint32_t switchFreq;
};
constexpr LnbPreset kUniversalLnb{SB_DVBS_LNB_TYPE_UNIVERSAL, 9750, 10600, 11700};
constexpr LnbPreset kSingleLnb{SB_DVBS_LNB_TYPE_SINGLE, 10750, 0, 0};

// Command 27: [0] orbit, [1] LNB (low byte 0: universal), [2] [4] [5] [7] [8] carried words,
// [3] frequency, [6] transport stream id, [9..] the name.
void writeSatInfo(uint32_t cmd, const jint* a, void* output, const ScanSite& site) {
    auto* r = static_cast<SB_DVBS_SAT_INFO_T*>(output);
    copyAnsweredName(r->ac_name, a + 9, SB_DVBS_NAME_LEN);
    r->i2_orbit = static_cast<int16_t>(a[0]);
    const LnbPreset& lnb = (a[1] & 0xFF) == 0 ? kUniversalLnb : kSingleLnb;
    r->e_lnb_type = lnb.type;
    r->ui2_lnb_low_freq = lnb.low;
    r->ui2_lnb_high_freq = lnb.high;
    r->ui4_lnb_switch_freq = lnb.switchFreq;
    r->ui4_value_80 = static_cast<uint32_t>(a[2]);
    r->ui4_value_84 = static_cast<uint32_t>(a[4]);
    r->ui4_freq = static_cast<uint32_t>(a[3]);
    r->ui2_value_100 = static_cast<uint16_t>(a[5]);
    r->ui2_ts_id = static_cast<uint16_t>(a[6]);
    r->ui2_value_104 = static_cast<uint16_t>(a[7]);
    r->ui2_value_106 = static_cast<uint16_t>(a[8]);
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG,
                 "_native_sb_dvbs_scan_maps_notify, SCAN_MAPS_CMD: %d, line:%d, i2_orbit:%u ui4_freq=%u ui2_ts_id:%u",
                 cmd, site.line, static_cast<unsigned>(r->i2_orbit), r->ui4_freq, r->ui2_ts_id);
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "satName=%s\n", r->ac_name);
}

// Command 24: frequency, polarisation, symbol rate.
void writeTpInfo(uint32_t cmd, const jint* a, void* output, const ScanSite& site) {
    auto* r = static_cast<SB_DVBS_TP_INFO_T*>(output);
    r->ui4_freq = static_cast<uint32_t>(a[0]);
    r->e_pol = static_cast<uint32_t>(a[1]);
    r->ui4_sym_rate = static_cast<uint32_t>(a[2]);
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG,
                 "_native_sb_dvbs_scan_maps_notify, SCAN_MAPS_CMD: %d, line:%d, ui4_freq:%u e_pol=%u ui4_sym_rate:%u",
                 cmd, site.line, r->ui4_freq, r->e_pol, r->ui4_sym_rate);
}

// Command 66: rank, virtual service id, the name.
void writeSvcInfo(uint32_t cmd, const jint* a, void* output, const ScanSite& site) {
    auto* r = static_cast<SB_DVBS_SVC_INFO_T*>(output);
    r->ui2_rank = static_cast<uint16_t>(a[0]);
    r->ui1_valid = 1;
    r->ui2_vtul_svc_id = static_cast<uint16_t>(a[1]);
    copyAnsweredName(r->ac_name, a + 2, SB_DVBS_NAME_LEN);
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG,
                 "_native_sb_dvbs_scan_maps_notify, SCAN_MAPS_CMD: %d, line:%d, ui2_rank:%u ui2_vtul_svc_id=%u",
                 cmd, site.line, r->ui2_rank, r->ui2_vtul_svc_id);
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "svcName=%s\n", r->ac_name);
}

using Row = DvbsCommandRow;
const DvbsCommandRow kCommands[] = {
    {7, Row::kNoInput, false, 1, 1, writeDvbsBoolean},
    {14, Row::kNoInput, false, 1, 1, writeDvbsBoolean},
    {35, Row::kNoInput, false, 1, 1, writeDvbsBoolean},
    {36, Row::kNoInput, false, 1, 1, writeDvbsBoolean},
    {41, Row::kNoInput, false, 1, 1, writeDvbsBoolean},
    {63, Row::kNoInput, false, 1, 1, writeDvbsBoolean},
    {DVBS_SCAN_MAPS_CMD_QUERY_SAT, Row::kQuerySat, true, 2, 1, writeDvbsU16},
    {DVBS_SCAN_MAPS_CMD_GET_TP_INFO, Row::kValue, false, sizeof(SB_DVBS_TP_INFO_T), 3, writeTpInfo},
    {DVBS_SCAN_MAPS_CMD_GET_SAT_INFO, Row::kValue, false, sizeof(SB_DVBS_SAT_INFO_T), 74, writeSatInfo},
    {51, Row::kNoInput, false, 4, 1, writeDvbsU32},
    {59, Row::kNoInput, false, 2, 1, writeDvbsU16},
    {62, Row::kNoInput, false, 4, 1, writeDvbsU32},
    {DVBS_SCAN_MAPS_CMD_GET_SVC_INFO, Row::kValue, false, sizeof(SB_DVBS_SVC_INFO_T), 67, writeSvcInfo},
};
const DvbsCommandTable kCommandTable{kCommands, std::size(kCommands), false};

// Channel and service types of the settings and their flags in the block.
uint32_t scanOptionFlags(jint channelType, jint serviceType) {
    uint32_t flags = 0;
    switch (channelType) {
        case 1: flags |= SB_DVBS_CFG_CHANNEL_FREE; break;
        case 2: flags |= SB_DVBS_CFG_CHANNEL_SCRAMBLED; break;
        case 3: flags |= SB_DVBS_CFG_CHANNEL_ALL; break;
        default: break;
    }
    switch (serviceType) {
        case 1: flags |= SB_DVBS_CFG_SVC_TYPE_TV; break;
        case 2: flags |= SB_DVBS_CFG_SVC_TYPE_RADIO; break;
        default: break;
    }
    return flags;
}

}  // namespace

class JNativeDvbsScanConfig : public ScanConfigPeer<SB_DVBS_SCAN_PARAMS> {
public:
    JNativeDvbsScanConfig(JNIEnv* env, jobject obj) : ScanConfigPeer(env, obj, SCAN_SITE) {}

    const char* getSbEbEngineName() override { return "sb_dvbs"; }
    void* getSbScanMapsNotify() override;
    int checkScanMaps() override { return callCheckSettings(gFields.checkScanMapsId, SCAN_SITE); }
    void onStatus(int status) override { callOnStatus(gFields.onStatusId, status, SCAN_SITE); }

    SB_DVBS_SCAN_PARAMS& block() { return mBlock; }
    jobject javaObject() const { return mRefs.object(); }

protected:
    ~JNativeDvbsScanConfig() override {
        if (!releaseRefs(SCAN_SITE)) {
            BLOGI(" jenv is null, going to abort().");
            abort();
        }
    }
};

namespace {

int _native_sb_dvbs_scan_maps_notify(DVBS_SCAN_MAPS_CMD_T cmd, char* country, void* pv_input,
                                     void* pv_output, uint32_t* pz_output_len, void* pv_tag) {
    return dvbsScanMaps(kCommandTable, gFields.onScanMapCommandsId, cmd, country, pv_input,
                        pv_output, pz_output_len, pv_tag, SCAN_SITE);
}

// Calls `method(int[])` on the tag with `values`, on whatever thread the builder calls from.
void notifyCounts(void* tag, jmethodID method, const jint* values, jsize count, const char* what,
                  const ScanSite& site) {
    ScopedJniThread thread(site, ScopedJniThread::kSts);
    JNIEnv* env = thread.env();
    jintArray array = env->NewIntArray(count);
    if (array == nullptr) {
        scanFatal(site, "!(intInput != __null)");
    }
    ScopedLocalRef<jintArray> ref(env, array);
    env->SetIntArrayRegion(array, 0, count, values);
    env->CallVoidMethod(static_cast<jobject>(tag), method, array);
    checkJavaException(env, site, what);
}

void _native_sb_service_update_notify(SB_DVBS_SVC_UPDATE_NFY_DATA_T* data, void* pv_nfy_tag) {
    BLOGD_RAW("_native_sb_service_update_notify, %p", data);
    BLOGD_RAW("_native_sb_service_update_notify pv_nfy_tag=%p", pv_nfy_tag);
    if (pv_nfy_tag == nullptr || data == nullptr) {
        BLOGE_RAW("_native_sb_service_update_notify, pv_tag is NULL!");
        return;
    }
    const jint counts[6] = {
        static_cast<jint>(data->ui4_tv_add),    static_cast<jint>(data->ui4_tv_del),
        static_cast<jint>(data->ui4_radio_add), static_cast<jint>(data->ui4_radio_del),
        static_cast<jint>(data->ui4_app_add),   static_cast<jint>(data->ui4_app_del)};
    BLOGD("tv_add=%d,tv_del=%d,radio_add=%d,radio_del=%d,app_add=%d,app_del=%d", counts[0],
          counts[1], counts[2], counts[3], counts[4], counts[5]);
    notifyCounts(pv_nfy_tag, gFields.onDvbsServiceUpdateNotifyId, counts, 6,
                 "onDvbsServiceUpdateNotify", SCAN_SITE);
}

void _native_sb_svcnum_details_notify(uint16_t tv, uint16_t radio, uint16_t app, void* pv_nfy_tag) {
    BLOGD_RAW("_native_sb_service_update_notify pv_nfy_tag=%p", pv_nfy_tag);
    if (pv_nfy_tag == nullptr) {
        BLOGE_RAW("_native_sb_service_update_notify, pv_tag is NULL!");
        return;
    }
    BLOGD("tv=%d,radio=%d,app=%d", tv, radio, app);
    const jint counts[3] = {tv, radio, app};
    notifyCounts(pv_nfy_tag, gFields.onDvbsServiceDetailsNotifyId, counts, 3,
                 "onDvbsServiceDetailsNotify", SCAN_SITE);
}

void _native_sb_orbit_slot_notify(SB_SAT_NAME_NFY_DATA_T* data, void* pv_nfy_tag) {
    BLOGI("pt_nfy_data = %p, pv_nfy_tag = %p", data, pv_nfy_tag);
    if (javaVM == nullptr) {
        BLOGE("jenv is null, going to abort().");
        abort();
    }
    if (data == nullptr || pv_nfy_tag == nullptr) {
        return;  // nothing to tell, nobody to tell it to
    }
    ScopedJniThread thread(SCAN_SITE, ScopedJniThread::kRet);
    JNIEnv* env = thread.env();
    BLOGD("sat id= %u sat rec id = %u orbit=%d", data->ui2_sat_id, data->ui2_sat_rec_id, data->i2_orbit);
    char text[16];
    (void)snprintf(text, sizeof(text), "%u,%u", data->ui2_sat_id, data->ui2_sat_rec_id);
    ScopedLocalRef<jstring> id(env, env->NewStringUTF(text));
    env->CallVoidMethod(static_cast<jobject>(pv_nfy_tag), gFields.onDvbsOrbitSlotNotifyId, id.get(),
                        static_cast<jint>(data->i2_orbit));
    checkJavaException(env, SCAN_SITE, "onDvbsOrbitSlotNotify");
}

void _native_sb_category_notify(DVBS_TKGS_CATEGORY_LIST_T* data, void* pv_nfy_tag) {
    BLOGI("pt_nfy_data = %p, pv_nfy_tag = %p", data, pv_nfy_tag);
    if (data == nullptr) {
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
    JNIEnv* env = thread.env();
    XLOGI(" category size=%u\n", data->ui2_num);
    // The record has room for 30 names; a larger count cannot be read.
    const jsize count = data->ui2_num < DVBS_TKGS_CATEGORY_MAX ? data->ui2_num : DVBS_TKGS_CATEGORY_MAX;
    ScopedLocalRef<jclass> stringClass(env, env->FindClass("java/lang/String"));
    ScopedLocalRef<jobjectArray> names(env, env->NewObjectArray(count, stringClass.get(), nullptr));
    for (jsize i = 0; i < count; ++i) {
        // The builder may fill the field unterminated, or with bytes Java cannot take.
        char name[DVBS_TKGS_CATEGORY_NAME_SIZE + 1];
        copyModifiedUtf8(name, sizeof(name), data->aac_name[i], DVBS_TKGS_CATEGORY_NAME_SIZE);
        ScopedLocalRef<jstring> s(env, env->NewStringUTF(name));
        env->SetObjectArrayElement(names.get(), i, s.get());
    }
    env->CallVoidMethod(static_cast<jobject>(pv_nfy_tag), gFields.onDvbsCategoryNotifyId, names.get());
    checkJavaException(env, SCAN_SITE, "onCategory");
}

}  // namespace

void* JNativeDvbsScanConfig::getSbScanMapsNotify() {
    void* notify = reinterpret_cast<void*>(&_native_sb_dvbs_scan_maps_notify);
    BLOGD_RAW("[debug]getSbScanMapsNotify: %p", notify);
    return notify;
}

namespace {

sp<JINativeScanConfig> setDvbsScanConfig(JNIEnv* env, jobject thiz, const sp<JINativeScanConfig>& config) {
    return exchangeNativeConfig(env, thiz, config, gFields.getNativeConfigId, gFields.setNativeConfigId,
                                SCAN_SITE, "setDvbsScanConfig");
}

// Service update type 2 and 1 enable the notification with that type; 0 disables it; any
// other value is an error that leaves it disabled.
void setServiceUpdate(SB_DVBS_SCAN_PARAMS& b, jint type) {
    BLOGD_FILE(" serviceUpdateType=%d", type);
    if (type == 1 || type == 2) {
        b.b_svc_update = 1;
        b.e_svc_update_type = static_cast<uint32_t>(type);
    } else if (type != 0) {
        BLOGE_FILE(" un-implement update type.");
    }
}

// The manual transponder, read for the network and single-transponder scans only.
void setManualTransponder(JNIEnv* env, jobject settings, SB_DVBS_SCAN_PARAMS& b) {
    if (b.e_scan_type != SB_DVBS_SCAN_TYPE_NETWORK && b.e_scan_type != SB_DVBS_SCAN_TYPE_SINGLE_TP) {
        return;
    }
    readManualTransponder(env, settings, {gFields.tpInfo.getFreqId, gFields.tpInfo.getPolId, gFields.tpInfo.getSymbolRateId},
                          b, SCAN_SITE);
    if (b.e_scan_type == SB_DVBS_SCAN_TYPE_NETWORK) {
        BLOGD_FILE("network scan frequency=%d, pol=%d, symbolrate=%d", b.ui4_freq, b.e_pol, b.ui4_sym_rate);
    } else {
        BLOGD_FILE(" SINGLE_TP_SCAN frequency=%d, pol=%d, symbolrate=%d", b.ui4_freq, b.e_pol, b.ui4_sym_rate);
    }
}

void setNotifications(SB_DVBS_SCAN_PARAMS& b, jobject tag) {
    if (b.b_svc_update != 0) {
        b.pf_svc_update_nfy = _native_sb_service_update_notify;
        b.pv_svc_update_nfy_tag = tag;
        BLOGD_RAW("pv_svc_update_nfy_tag = %p", tag);
    }
    b.pf_sat_name_nfy = _native_sb_orbit_slot_notify;
    b.pv_sat_name_nfy_tag = tag;
    BLOGI("pv_sat_name_nfy_tag = %p", tag);
    b.pf_svcnum_details_nfy = _native_sb_svcnum_details_notify;
    b.pv_svcnum_details_nfy_tag = tag;
    BLOGI("pv_svcnum_details_nfy_tag = %p", tag);
    b.pf_category_nfy = _native_sb_category_notify;
    b.pv_category_nfy_tag = tag;
    BLOGI("pv_category_nfy_tag = %p", tag);
}

jint com_brinova_tv_orvella_scan_native_setup(JNIEnv* env, jobject thiz, jobject settings) {
    JavaCallerScope scope(env);
    sp<JNativeDvbsScanConfig> config = new JNativeDvbsScanConfig(env, thiz);
    BLOGD_FILE(" version20220105");
    const jint channelType = intSetting(env, settings, gFields.scanSettings.getChannelTypeId, "getChannelType", SCAN_SITE);
    const jint serviceType = intSetting(env, settings, gFields.scanSettings.getServiceTypeId, "getServiceType", SCAN_SITE);
    const jint op = intSetting(env, settings, gFields.scanSettings.getOperatorId, "getOperator", SCAN_SITE);
    SettingText country(env, settings, gFields.scanSettings.getCountryId, SCAN_SITE, "getCountry");
    if (int status = settingStatus(country, " Get country id failed.", SCAN_SITE)) return status;
    SettingText language(env, settings, gFields.scanSettings.getUiLanguageId, SCAN_SITE, "getUiLanguage");
    if (int status = settingStatus(language, " Get uiLanguage id failed.", SCAN_SITE)) return status;
    SettingText satellite(env, settings, gFields.scanSettings.getSatelliteId, SCAN_SITE, "getSatelliteId");
    if (int status = settingStatus(satellite, " Get satellite id failed.", SCAN_SITE)) return status;
    const SatelliteIdentity id = PARSE_SATELLITE_ID_TEXT(satellite.c_str());

    SB_DVBS_SCAN_PARAMS& b = config->block();
    x_memset(&b, 0, sizeof(b));
    b.e_scan_type = static_cast<uint32_t>(intSetting(env, settings, gFields.scanSettings.getScanTypeId, "getScanType", SCAN_SITE));
    copyCode(b.t_country_code, country.c_str());
    copyCode(b.t_ui_lang, language.c_str());
    b.ui2_sat_id = id.satelliteId;
    b.ui2_sat_rec_id = id.recordId;
    b.t_eng_cfg_flag = scanOptionFlags(channelType, serviceType);
    setServiceUpdate(b, intSetting(env, settings, gFields.scanSettings.getServiceUpdateTypeId, "getServiceUpdateType", SCAN_SITE));
    setManualTransponder(env, settings, b);
    b.ui4_operator = static_cast<uint32_t>(op);
    BLOGD_FILE("operator = %d", op);
    setNotifications(b, config->javaObject());
    setDvbsScanConfig(env, thiz, config);
    return 0;
}

jint com_brinova_tv_orvella_scan_native_release(JNIEnv* env, jobject thiz) {
    JavaCallerScope scope(env);
    setDvbsScanConfig(env, thiz, nullptr);
    return 0;
}

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "(Lcom/brinova/tv/orvella/services/scan/ZelTvDvbsScanSettings;)I",
     reinterpret_cast<void*>(com_brinova_tv_orvella_scan_native_setup)},
    {"nativeRelease", "()I", reinterpret_cast<void*>(com_brinova_tv_orvella_scan_native_release)},
};

const MethodSpec gConfigMethods[] = {
    {&gFields.getNativeConfigId, "getNativeConfig", "()J", "!(gFields.getNativeConfigId != __null)"},
    {&gFields.setNativeConfigId, "setNativeConfig", "(J)V", "!(gFields.setNativeConfigId != __null)"},
    {&gFields.onScanMapCommandsId, "onScanMapCommands", "(ILjava/lang/String;[I[I)I",
     "!(gFields.onScanMapCommandsId != __null)"},
    {&gFields.onDvbsServiceUpdateNotifyId, "onDvbsServiceUpdateNotify", "([I)V",
     "!(gFields.onDvbsServiceUpdateNotifyId != __null)"},
    {&gFields.onDvbsServiceDetailsNotifyId, "onDvbsServiceDetailsNotify", "([I)V",
     "!(gFields.onDvbsServiceDetailsNotifyId != __null)"},
    {&gFields.onStatusId, "onStatus", "(I)V", "!(gFields.onStatusId != __null)"},
    {&gFields.checkScanMapsId, "checkSettings", "()I", "!(gFields.checkScanMapsId != __null)"},
    {&gFields.onDvbsOrbitSlotNotifyId, "onDvbsOrbitSlotNotify", "(Ljava/lang/String;I)V",
     "!(gFields.onDvbsOrbitSlotNotifyId != __null)"},
    {&gFields.onDvbsCategoryNotifyId, "onCategory", "([Ljava/lang/String;)V",
     "!(gFields.onDvbsCategoryNotifyId != __null)"},
};

const MethodSpec gSettingsMethods[] = {
    {&gFields.scanSettings.getCountryId, "getCountry", "()Ljava/lang/String;",
     "!(gFields.scanSettings.getCountryId != __null)"},
    {&gFields.scanSettings.getOperatorId, "getOperator", "()I", "!(gFields.scanSettings.getOperatorId != __null)"},
    {&gFields.scanSettings.getScanTypeId, "getScanType", "()I", "!(gFields.scanSettings.getScanTypeId != __null)"},
    {&gFields.scanSettings.getSatelliteId, "getSatelliteId", "()Ljava/lang/String;",
     "!(gFields.scanSettings.getSatelliteId != __null)"},
    {&gFields.scanSettings.getUiLanguageId, "getUiLanguage", "()Ljava/lang/String;",
     "!(gFields.scanSettings.getUiLanguageId != __null)"},
    {&gFields.scanSettings.getChannelTypeId, "getChannelType", "()I",
     "!(gFields.scanSettings.getChannelTypeId != __null)"},
    {&gFields.scanSettings.getServiceTypeId, "getServiceType", "()I",
     "!(gFields.scanSettings.getServiceTypeId != __null)"},
    {&gFields.scanSettings.getServiceUpdateTypeId, "getServiceUpdateType", "()I",
     "!(gFields.scanSettings.getServiceUpdateTypeId != __null)"},
    {&gFields.tpInfo.getFreqId, "getManualFrequency", "()I", "!(gFields.tpInfo.getFreqId != __null)"},
    {&gFields.tpInfo.getSymbolRateId, "getManualSymbolRate", "()I", "!(gFields.tpInfo.getSymbolRateId != __null)"},
    {&gFields.tpInfo.getPolId, "getManualPolarization", "()I", "!(gFields.tpInfo.getPolId != __null)"},
};

}  // namespace

}  // namespace android

using namespace android;

int register_com_brinova_tv_orvella_scan_ZelTvScanDvbsConfig(JNIEnv* env) {
    return registerConfigClass(env, kConfigClass, gMethods, gConfigMethods,
                               {{kSettingsClass, gSettingsMethods, std::size(gSettingsMethods)}},
                               SCAN_SITE);
}
