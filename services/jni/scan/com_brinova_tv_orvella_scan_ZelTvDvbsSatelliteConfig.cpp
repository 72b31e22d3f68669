// Single-satellite scan configuration: the same 780-byte "sb_dvbs" block as the operator
// configuration, filled from a smaller settings class with one associated satellite, and a
// scan-maps callback that answers the two transponder records of the satellite.
#define LOG_TAG "ZelTvDvbsSatelliteConfig_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_ZelTvDvbsSatelliteConfig"

#include <stdint.h>
#include <stdlib.h>

#include "DvbsScanConfigCommon.h"
#include "JINativeScanConfig.h"
#include "SbDvbsScanParams.h"
#include "x_mw_api.h"

namespace android {

namespace {

const char* const kConfigClass = "com/brinova/tv/orvella/services/scan/ZelTvDvbsSatelliteConfig";
const char* const kSettingsClass = "com/brinova/tv/orvella/services/scan/ZelTvDvbsSatelliteSettings";

struct fields_t {
    jmethodID getNativeConfigId;
    jmethodID setNativeConfigId;
    jmethodID onScanMapCommandsId;
    jmethodID onStatusId;
    jmethodID checkScanMapsId;
    struct {
        jmethodID getCountryId;
        jmethodID getOperatorId;
        jmethodID getScanTypeId;
        jmethodID getSatelliteId;
        jmethodID getSatelliteAssoId;
    } satelliteSettings;
    struct {
        jmethodID getFreqId;
        jmethodID getSymbolRateId;
        jmethodID getPolId;
    } tpInfo;
};
fields_t gFields;

// Both records take the six answers crossed: [4] and [5] go to the record in the other order.
template <typename Record>
void writeTransponder(uint32_t cmd, const jint* o, void* output, const ScanSite& site) {
    auto* r = static_cast<Record*>(output);
    r->ui4_freq = static_cast<uint32_t>(o[3]);
    r->ui4_sym_rate = static_cast<uint32_t>(o[5]);
    r->e_pol = static_cast<uint32_t>(o[4]);
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG,
                 "_native_sb_dvbs_scan_maps_notify, SCAN_MAPS_CMD: %d, line:%d, ui4_freq:%u ui4_sym_rate=%u e_pol:%u",
                 cmd, site.line, r->ui4_freq, r->ui4_sym_rate, r->e_pol);
}

void writeTpRecord(uint32_t cmd, const jint* o, void* output, const ScanSite& site) {
    auto* r = static_cast<SB_DVBS_SAT_TP_REC_T*>(output);
    r->ui2_value_0 = static_cast<uint16_t>(o[2]);
    r->ui2_value_68 = static_cast<uint16_t>(o[0]);
    r->ui2_value_70 = static_cast<uint16_t>(o[1]);
    writeTransponder<SB_DVBS_SAT_TP_REC_T>(cmd, o, output, site);
}

void writeTpShort(uint32_t cmd, const jint* o, void* output, const ScanSite& site) {
    auto* r = static_cast<SB_DVBS_SAT_TP_SHORT_T*>(output);
    r->ui2_value_2 = static_cast<uint16_t>(o[2]);
    r->ui2_value_4 = static_cast<uint16_t>(o[0]);
    r->ui2_value_6 = static_cast<uint16_t>(o[1]);
    writeTransponder<SB_DVBS_SAT_TP_SHORT_T>(cmd, o, output, site);
}

const DvbsCommandRow kCommands[] = {
    {DVBS_SCAN_MAPS_CMD_SAT_TP_REC, DvbsCommandRow::kU16At, true, sizeof(SB_DVBS_SAT_TP_REC_T), 6,
     writeTpRecord},
    {DVBS_SCAN_MAPS_CMD_SAT_TP_SHORT, DvbsCommandRow::kU16At, true, sizeof(SB_DVBS_SAT_TP_SHORT_T), 6,
     writeTpShort},
};
const DvbsCommandTable kCommandTable{kCommands, std::size(kCommands), true};

}  // namespace

class JNativeDvbsSatelliteConfig : public ScanConfigPeer<SB_DVBS_SCAN_PARAMS> {
public:
    JNativeDvbsSatelliteConfig(JNIEnv* env, jobject obj) : ScanConfigPeer(env, obj, SCAN_SITE) {}

    const char* getSbEbEngineName() override { return "sb_dvbs"; }
    void* getSbScanMapsNotify() override;
    int checkScanMaps() override { return callCheckSettings(gFields.checkScanMapsId, SCAN_SITE); }
    void onStatus(int status) override { callOnStatus(gFields.onStatusId, status, SCAN_SITE); }

    SB_DVBS_SCAN_PARAMS& block() { return mBlock; }

protected:
    ~JNativeDvbsSatelliteConfig() override {
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

}  // namespace

void* JNativeDvbsSatelliteConfig::getSbScanMapsNotify() {
    void* notify = reinterpret_cast<void*>(&_native_sb_dvbs_scan_maps_notify);
    BLOGD_RAW("[debug]getSbScanMapsNotify: %p", notify);
    return notify;
}

namespace {

sp<JINativeScanConfig> setDvbsSatelliteConfig(JNIEnv* env, jobject thiz,
                                              const sp<JINativeScanConfig>& config) {
    return exchangeNativeConfig(env, thiz, config, gFields.getNativeConfigId, gFields.setNativeConfigId,
                                SCAN_SITE, "setDvbsSatelliteConfig");
}

// The manual transponder, read whatever the scan type.
void setTransponder(JNIEnv* env, jobject settings, SB_DVBS_SCAN_PARAMS& b) {
    readManualTransponder(env, settings, {gFields.tpInfo.getFreqId, gFields.tpInfo.getPolId, gFields.tpInfo.getSymbolRateId},
                          b, SCAN_SITE);
    BLOGD_FILE("network scan frequency=%d, pol=%d, symbolrate=%d", b.ui4_freq, b.e_pol, b.ui4_sym_rate);
}

jint com_brinova_tv_orvella_satellite_native_setup(JNIEnv* env, jobject thiz, jobject settings) {
    JavaCallerScope scope(env);
    sp<JNativeDvbsSatelliteConfig> config = new JNativeDvbsSatelliteConfig(env, thiz);
    BLOGD_FILE(" version202201105");
    const jint op = intSetting(env, settings, gFields.satelliteSettings.getOperatorId, "getOperator", SCAN_SITE);
    SettingText country(env, settings, gFields.satelliteSettings.getCountryId, SCAN_SITE, "getCountry");
    if (int status = settingStatus(country, " Get country id failed.", SCAN_SITE)) return status;
    SettingText satellite(env, settings, gFields.satelliteSettings.getSatelliteId, SCAN_SITE, "getSatelliteId");
    if (int status = settingStatus(satellite, " Get satellite id failed.", SCAN_SITE)) return status;
    const SatelliteIdentity id = PARSE_SATELLITE_ID_TEXT(satellite.c_str());
    SettingText asso(env, settings, gFields.satelliteSettings.getSatelliteAssoId, SCAN_SITE, "getSatelliteAssoId");
    if (int status = settingStatus(asso, " Get satellite id failed.", SCAN_SITE)) return status;
    const SatelliteIdentity associated = PARSE_SATELLITE_ID_TEXT(asso.c_str());

    SB_DVBS_SCAN_PARAMS& b = config->block();
    x_memset(&b, 0, sizeof(b));
    b.e_scan_type = static_cast<uint32_t>(
        intSetting(env, settings, gFields.satelliteSettings.getScanTypeId, "getScanType", SCAN_SITE));
    copyCode(b.t_country_code, country.c_str());
    b.ui2_sat_id = id.satelliteId;
    b.ui2_sat_rec_id = id.recordId;
    setTransponder(env, settings, b);
    b.ui4_operator = static_cast<uint32_t>(op);
    BLOGD_FILE("operator = %d", op);
    if (associated.recordId != 0) {
        b.aui2_asso_sat_rec_id[0] = associated.recordId;
        b.ui2_asso_sat_num = 1;
    }
    setDvbsSatelliteConfig(env, thiz, config);
    return 0;
}

jint com_brinova_tv_orvella_satellite_native_release(JNIEnv* env, jobject thiz) {
    JavaCallerScope scope(env);
    setDvbsSatelliteConfig(env, thiz, nullptr);
    return 0;
}

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "(Lcom/brinova/tv/orvella/services/scan/ZelTvDvbsSatelliteSettings;)I",
     reinterpret_cast<void*>(com_brinova_tv_orvella_satellite_native_setup)},
    {"nativeRelease", "()I", reinterpret_cast<void*>(com_brinova_tv_orvella_satellite_native_release)},
};

const MethodSpec gConfigMethods[] = {
    {&gFields.getNativeConfigId, "getNativeConfig", "()J", "!(gFields.getNativeConfigId != __null)"},
    {&gFields.setNativeConfigId, "setNativeConfig", "(J)V", "!(gFields.setNativeConfigId != __null)"},
    {&gFields.onScanMapCommandsId, "onScanMapCommands", "(ILjava/lang/String;[I[I)I",
     "!(gFields.onScanMapCommandsId != __null)"},
    {&gFields.onStatusId, "onStatus", "(I)V", "!(gFields.onStatusId != __null)"},
    {&gFields.checkScanMapsId, "checkSettings", "()I", "!(gFields.checkScanMapsId != __null)"},
};

const MethodSpec gSettingsMethods[] = {
    {&gFields.satelliteSettings.getCountryId, "getCountry", "()Ljava/lang/String;",
     "!(gFields.satelliteSettings.getCountryId != __null)"},
    {&gFields.satelliteSettings.getOperatorId, "getOperator", "()I",
     "!(gFields.satelliteSettings.getOperatorId != __null)"},
    {&gFields.satelliteSettings.getScanTypeId, "getScanType", "()I",
     "!(gFields.satelliteSettings.getScanTypeId != __null)"},
    {&gFields.satelliteSettings.getSatelliteId, "getSatelliteId", "()Ljava/lang/String;",
     "!(gFields.satelliteSettings.getSatelliteId != __null)"},
    {&gFields.satelliteSettings.getSatelliteAssoId, "getSatelliteAssoId", "()Ljava/lang/String;",
     "!(gFields.satelliteSettings.getSatelliteAssoId != __null)"},
    {&gFields.tpInfo.getFreqId, "getManualFrequency", "()I", "!(gFields.tpInfo.getFreqId != __null)"},
    {&gFields.tpInfo.getSymbolRateId, "getManualSymbolRate", "()I", "!(gFields.tpInfo.getSymbolRateId != __null)"},
    {&gFields.tpInfo.getPolId, "getManualPolarization", "()I", "!(gFields.tpInfo.getPolId != __null)"},
};

}  // namespace

}  // namespace android

using namespace android;

int register_com_brinova_tv_orvella_scan_ZelTvDvbsSatelliteConfig(JNIEnv* env) {
    return registerConfigClass(env, kConfigClass, gMethods, gConfigMethods,
                               {{kSettingsClass, gSettingsMethods, std::size(gSettingsMethods)}},
                               SCAN_SITE);
}
