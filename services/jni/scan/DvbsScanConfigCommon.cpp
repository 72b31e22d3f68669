// The satellite identity text and the satellite scan-maps frame. Lines and assertions
// report the site their caller passed in; this file has no tag or source name of its own.

#include "DvbsScanConfigCommon.h"

#include <string.h>

#include <nativehelper/ScopedLocalRef.h>

#include "JINativeScanConfig.h"
#include "x_mw_api.h"

namespace android {

namespace {

// Folds digits as value * 10 + (c - '0') in 16 bits, whatever the characters are.
uint16_t foldDigits(const char* text, uint16_t from, uint16_t to) {
    uint16_t value = 0;
    for (uint16_t i = from; i < to; ++i) {
        value = static_cast<uint16_t>(value * 10 + (text[i] - '0'));
    }
    return value;
}

const DvbsCommandRow* findRow(const DvbsCommandTable& table, uint32_t cmd) {
    for (size_t i = 0; i < table.count; ++i) {
        if (table.rows[i].cmd == cmd) return &table.rows[i];
    }
    return nullptr;
}

constexpr jsize kQuerySatInts = 70;
constexpr size_t kQuerySatNameMax = 64;

// Command 8's input: the three 16-bit values, the two 32-bit ones, then the name one byte per
// int (its length when 1 to 64, else 65). The name is measured within its field, which the
// builder need not terminate.
jsize querySatInput(const SB_DVBS_QUERY_SAT_T* q, jint* into) {
    into[0] = q->aui2_value[0];
    into[1] = q->aui2_value[1];
    into[2] = q->aui2_value[2];
    into[3] = static_cast<jint>(q->ui4_value_76);
    into[4] = static_cast<jint>(q->ui4_value_80);
    const size_t len = strnlen(q->ac_name, sizeof(q->ac_name));
    const size_t n = len <= kQuerySatNameMax ? len : kQuerySatNameMax + 1;
    for (size_t i = 0; i < n; ++i) {
        into[5 + i] = static_cast<uint8_t>(q->ac_name[i]);
    }
    return kQuerySatInts;
}

jsize buildInput(const DvbsCommandRow& row, void* pv_input, jint* into) {
    switch (row.input) {
        case DvbsCommandRow::kNoInput:
            return 0;
        case DvbsCommandRow::kValue:
            into[0] = static_cast<jint>(reinterpret_cast<uintptr_t>(pv_input));
            return 1;
        case DvbsCommandRow::kU16At:
            into[0] = *static_cast<const uint16_t*>(pv_input);
            return 1;
        case DvbsCommandRow::kQuerySat:
            return querySatInput(static_cast<const SB_DVBS_QUERY_SAT_T*>(pv_input), into);
    }
    return 0;
}

// A command of the table: pointers and length checked, Java asked, the answer written.
int askForRow(const DvbsCommandRow& row, ScanMapsCall& call, jobject javaConfig, jmethodID method,
              void* pv_input, void* pv_output, uint32_t* pz_output_len, const ScanSite& site) {
    if (pv_output == nullptr || pz_output_len == nullptr || (row.needsInput && pv_input == nullptr)) {
        SITE_LOG_RAW(site, BRINOVA_LOG_ERROR, "_native_sb_dvbs_scan_maps_notify, [%d] null pointer", row.cmd);
        call.keepAttached();
        return -6;
    }
    if (*pz_output_len < row.outputSize) {
        SITE_LOG_RAW(site, BRINOVA_LOG_ERROR, "_native_sb_dvbs_scan_maps_notify, [%d] invalid output length=%u",
                     row.cmd, *pz_output_len);
        call.keepAttached();
        return -24;
    }
    JNIEnv* env = call.env();
    jint input[kQuerySatInts] = {};
    const jsize inputLen = buildInput(row, pv_input, input);
    ScopedLocalRef<jintArray> intInput(env, inputLen == 0 ? nullptr : call.newInput(site, input, inputLen));
    ScopedLocalRef<jintArray> intOutput(env, call.newOutput(site, row.outputInts));
    jint status = env->CallIntMethod(javaConfig, method, static_cast<jint>(row.cmd), call.country(),
                                     intInput.get(), intOutput.get());
    if (checkJavaException(env, site, "onScanMapCommands") || status != 0) {
        return status;
    }
    jint answer[80] = {};
    call.readOutput(intOutput.get(), row.outputInts, answer);
    row.write(row.cmd, answer, pv_output, site);
    *pz_output_len = row.outputSize;
    return 0;
}

}  // namespace

int settingStatus(const SettingText& text, const char* missing, const ScanSite& site) {
    if (text.isNull()) {
        SITE_FLOG(site, BRINOVA_LOG_ERROR, "%s", missing);
        return -6;
    }
    if (text.c_str() == nullptr) {
        SITE_FLOG(site, BRINOVA_LOG_ERROR, " Out of memory.");
        return -4;
    }
    return 0;
}

jint intSetting(JNIEnv* env, jobject settings, jmethodID getter, const char* what, const ScanSite& site) {
    jint value = env->CallIntMethod(settings, getter);
    checkJavaException(env, site, what);
    return value;
}

void readManualTransponder(JNIEnv* env, jobject settings, const ManualTransponderGetters& getters,
                           SB_DVBS_SCAN_PARAMS& block, const ScanSite& site) {
    block.ui4_freq = static_cast<uint32_t>(intSetting(env, settings, getters.frequency, "getManualFrequency", site));
    block.e_pol = static_cast<uint32_t>(intSetting(env, settings, getters.polarization, "getManualPolarization", site));
    block.ui4_sym_rate = static_cast<uint32_t>(intSetting(env, settings, getters.symbolRate, "getManualSymbolRate", site));
}

SatelliteIdentity parseSatelliteIdText(const char* text, const ScanSite& site) {
    const uint16_t length = static_cast<uint16_t>(strlen(text));
    uint16_t comma = 0;
    while (comma < length && text[comma] != ',') {
        ++comma;
    }
    SITE_FLOG(site, BRINOVA_LOG_DEBUG, " satelliteStr=<%s>,satStrLen=%d,idxBase=%d", text, length, comma);
    SatelliteIdentity id{foldDigits(text, 0, comma),
                         comma < length ? foldDigits(text, static_cast<uint16_t>(comma + 1), length)
                                        : static_cast<uint16_t>(0)};
    SITE_FLOG(site, BRINOVA_LOG_DEBUG, " satelliteId=%d", id.satelliteId);
    SITE_FLOG(site, BRINOVA_LOG_DEBUG, " satelliteRecId=%d", id.recordId);
    return id;
}

int dvbsScanMaps(const DvbsCommandTable& table, jmethodID onScanMapCommands, uint32_t cmd,
                 char* country, void* pv_input, void* pv_output, uint32_t* pz_output_len,
                 void* pv_tag, const ScanSite& site) {
    // A tag that names no live configuration is answered as no tag.
    sp<JINativeScanConfig> config = scanConfigOfTag(pv_tag);
    if (config == nullptr) {
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG,
                     "_native_sb_dvbs_scan_maps_notify, pv_tag(native config instance) is NULL!");
        return 0;
    }
    const char* countryText = country != nullptr ? country : "";
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "_native_sb_dvbs_scan_maps_notify, pv_tag: %p", pv_tag);
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "_native_sb_dvbs_scan_maps_notify, cmd = %d, country = %s, out_buf_len = %d",
                 cmd, countryText, pz_output_len != nullptr ? static_cast<int>(*pz_output_len) : 0);
    ScanMapsCall call(site, countryText);
    jobject javaConfig = config->getSbScanConfigObject();
    const DvbsCommandRow* row = findRow(table, cmd);
    int status = 0;
    if (row != nullptr) {
        status = askForRow(*row, call, javaConfig, onScanMapCommands, pv_input, pv_output, pz_output_len, site);
    } else {
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "_native_sb_dvbs_scan_maps_notify, bypass command: %d", cmd);
        status = call.env()->CallIntMethod(javaConfig, onScanMapCommands, static_cast<jint>(cmd),
                                           call.country(), nullptr, nullptr);
        checkJavaException(call.env(), site, "onScanMapCommands");
    }
    if (table.logAfterCall && status != -6 && status != -24) {
        const int given = pz_output_len != nullptr ? static_cast<int>(*pz_output_len) : 0;
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "_native_sb_dvbs_scan_maps_notify[%d], *pz_output_len = %d, outputLen = %d",
                     site.line, given, row != nullptr ? static_cast<int>(row->outputInts) : 0);
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "_native_sb_dvbc_scan_maps_notify, SCAN_MAPS_CMD: %d, line:%d, ret=%d",
                     cmd, site.line, status);
    }
    return status;
}

void writeDvbsBoolean(uint32_t cmd, const jint* answer, void* output, const ScanSite& site) {
    *static_cast<uint8_t*>(output) = answer[0] != 0 ? 1 : 0;
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "_native_sb_dvbc_scan_maps_notify, SCAN_MAPS_CMD: %d, line:%d, output:%d",
                 cmd, site.line, answer[0]);
}

void writeDvbsU16(uint32_t cmd, const jint* answer, void* output, const ScanSite& site) {
    *static_cast<uint16_t*>(output) = static_cast<uint16_t>(answer[0]);
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "_native_sb_dvbc_scan_maps_notify, SCAN_MAPS_CMD: %d, line:%d, output:%d",
                 cmd, site.line, answer[0]);
}

void writeDvbsU32(uint32_t cmd, const jint* answer, void* output, const ScanSite& site) {
    *static_cast<uint32_t*>(output) = static_cast<uint32_t>(answer[0]);
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "_native_sb_dvbc_scan_maps_notify, SCAN_MAPS_CMD: %d, line:%d, output:%d",
                 cmd, site.line, answer[0]);
}

void copyAnsweredName(char* field, const jint* answer, size_t max) {
    size_t i = 0;
    for (; i < max && answer[i] != 0; ++i) {
        field[i] = static_cast<char>(answer[i]);
    }
    field[i] = '\0';
    field[max] = '\0';
}

}  // namespace android
