// The scan-maps frame that ATSC, clear QAM and ISDB share. Lines report the site of the
// standard's own callback.
#include "AtscFamilyScanMaps.h"

#include <string.h>

#include <vector>

#include <nativehelper/ScopedLocalRef.h>

namespace android {

namespace {

uint32_t requiredLen(FamilyCommandKind kind) {
    switch (kind) {
        case FamilyCommandKind::kWord32: return sizeof(uint32_t);
        case FamilyCommandKind::kWord16: return sizeof(uint16_t);
        default: return 0;
    }
}

// The first 32-bit word of the output buffer for the closing line; a shorter buffer is
// read only as far as it goes.
uint32_t outputWord(const void* pv_output, uint32_t len) {
    uint32_t word = 0;
    memcpy(&word, pv_output, len < sizeof(word) ? len : sizeof(word));
    return word;
}

void writeAndClose(const AtscFamilyScanMaps& family, const ScanSite& site, uint32_t cmd,
                   FamilyCommandKind kind, jint answer, void* pv_output, uint32_t len) {
    switch (kind) {
        case FamilyCommandKind::kWord32:
            *static_cast<uint32_t*>(pv_output) = static_cast<uint32_t>(answer);
            break;
        case FamilyCommandKind::kWord16:
            *static_cast<uint16_t*>(pv_output) = static_cast<uint16_t>(answer);
            break;
        case FamilyCommandKind::kBypass:
            SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s, bypass command:[%d] %d", family.name, cmd,
                         site.line);
            break;
    }
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s[%d], outputLen = %d, outputLen = %d", family.name,
                 site.line, len, len);
    if (family.closesWithBandwidth) {
        if (cmd == 2 || cmd == 3 || cmd == 4 || cmd == 12) {
            SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s[%d], *pv_output = %u", family.name, site.line,
                         *static_cast<uint16_t*>(pv_output));
        } else if (cmd == 0 || cmd == 9) {
            SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s[%d], *pv_output = %u", family.name, site.line,
                         outputWord(pv_output, len));
        } else {
            SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s, sizeof(TUNER_BANDWIDTH_T): %d", family.name,
                         4);
        }
    } else if (kind == FamilyCommandKind::kBypass) {
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s[%d] not support", family.name, site.line);
    } else {
        uint32_t written = kind == FamilyCommandKind::kWord16 ? *static_cast<uint16_t*>(pv_output)
                                                              : *static_cast<uint32_t*>(pv_output);
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s[%d], *pv_output = %u", family.name, site.line,
                     written);
    }
}

}  // namespace

FamilyCommandKind atscCommandKind(uint32_t cmd) {
    switch (cmd) {
        case 0: case 1:
            return FamilyCommandKind::kWord32;
        case 2: case 3: case 4: case 9: case 12:
            return FamilyCommandKind::kWord16;
        default:
            return FamilyCommandKind::kBypass;
    }
}

int32_t atscFamilyScanMaps(const AtscFamilyScanMaps& family, const ScanSite& site, uint32_t cmd,
                           char* country, void* pv_input, void* pv_output,
                           uint32_t* pz_output_len, void* pv_tag) {
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "$$$$$$$$$$$$$$$$$$$$$$$$$$$$$$$$$$$$");
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s, cmd = %d, country = %s, out_buf_len = %d",
                 family.name, cmd, country, pz_output_len != nullptr ? *pz_output_len : 0);
    if (pv_tag != nullptr) {
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s, pv_tag: %p", family.name, pv_tag);
    }
    if (pv_output == nullptr) scanFatal(site, "!(pv_output != __null)");
    if (pz_output_len == nullptr) scanFatal(site, "!(pz_output_len != __null)");
    // A tag that names no live configuration is answered as no tag.
    sp<JINativeScanConfig> config = scanConfigOfTag(pv_tag);
    if (config == nullptr) {
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s, pv_tag(native config instance) is NULL!",
                     family.name);
        return 0;
    }
    ScanMapsCall call(site, country);
    JNIEnv* env = call.env();
    const jint inputValue = static_cast<jint>(reinterpret_cast<uintptr_t>(pv_input));
    ScopedLocalRef<jintArray> intInput(env, call.newInput(site, &inputValue, 1));

    const FamilyCommandKind kind = family.kind(cmd);
    const uint32_t required = requiredLen(kind);
    jsize outputLen = 1;
    if (required == 0) {
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s, bypass command: %d", family.name, cmd);
        outputLen = *pz_output_len >= 5 ? static_cast<jsize>(*pz_output_len) : 1;
    } else if (*pz_output_len < required) {
        SITE_LOG_RAW(site, BRINOVA_LOG_ERROR, "%s, [%d][%d] invalid buffer size: %d.", family.name,
                     cmd, site.line, *pz_output_len);
        call.keepAttached();  // the refusal skips the detach, as the builder has always seen
        return -6;
    }
    ScopedLocalRef<jintArray> intOutput(env, call.newOutput(site, outputLen));
    jobject javaConfig = config->getSbScanConfigObject();
    env->CallVoidMethod(javaConfig, *family.onScanMapCommands, static_cast<jint>(cmd),
                        call.country(), intInput.get(), intOutput.get());
    checkJavaException(env, site, "onScanMapCommands");
    jint answer = 0;
    call.readOutput(intOutput.get(), 1, &answer);
    writeAndClose(family, site, cmd, kind, answer, pv_output, *pz_output_len);
    return 0;
}

uint32_t readIndexRange(JNIEnv* env, jobject thiz, jint scanType, jmethodID getStart,
                        jmethodID getEnd, const ScanSite& site) {
    if (scanType != 5 && scanType != 4) {
        return 0;
    }
    const uint32_t start = static_cast<uint32_t>(env->CallIntMethod(thiz, getStart));
    checkJavaException(env, site, "getScanStartIndex");
    if (scanType == 4) {
        return (start & 0xFFFF) | (start << 16);
    }
    const uint32_t end = static_cast<uint32_t>(env->CallIntMethod(thiz, getEnd));
    checkJavaException(env, site, "getScanEndIndex");
    return (start << 16) | (end & 0xFFFF);
}

sp<JINativeScanConfig> setFamilyScanConfig(JNIEnv* env, jobject thiz, const sp<JINativeScanConfig>& config,
                                           const AtscFamilyFields& fields, const ScanSite& site,
                                           const char* setterName) {
    return exchangeNativeConfig(env, thiz, config, fields.getNativeConfigId,
                                fields.setNativeConfigId, site, setterName);
}

int registerAtscFamily(JNIEnv* env, const char* configClass, const char* settingsClass,
                       const JNINativeMethod (&methods)[2], AtscFamilyFields& fields,
                       std::initializer_list<MethodSpec> extras, const ScanSite& site) {
    AtscFamilyFields& f = fields;
    std::vector<MethodSpec> specs = {
        {&f.getNativeConfigId, "getNativeConfig", "()J", "!(gFields.getNativeConfigId != __null)"},
        {&f.setNativeConfigId, "setNativeConfig", "(J)V", "!(gFields.setNativeConfigId != __null)"},
        {&f.getScanTypeId, "getScanType", "()I", "!(gFields.getScanTypeId != __null)"},
        {&f.getScanStartIndexId, "getScanStartIndex", "()I", "!(gFields.getScanStartIndexId != __null)"},
        {&f.getScanEndIndexId, "getScanEndIndex", "()I", "!(gFields.getScanEndIndexId != __null)"},
    };
    specs.insert(specs.end(), extras.begin(), extras.end());
    specs.insert(specs.end(), {
        {&f.onScanMapCommandsId, "onScanMapCommands", "(ILjava/lang/String;[I[I)V",
         "!(gFields.onScanMapCommandsId != __null)"},
        {&f.onStatusId, "onStatus", "(I)V", "!(gFields.onStatusId != __null)"},
        {&f.checkScanMapsId, "checkSettings", "()I", "!(gFields.checkScanMapsId != __null)"},
    });
    const MethodSpec country = {&f.scanSettings.getCountryId, "getCountry", "()Ljava/lang/String;",
                                "!(gFields.scanSettings.getCountryId != __null)"};
    return registerConfigClass(env, configClass, methods, 2, specs.data(), specs.size(),
                               {{settingsClass, &country, 1}}, site);
}

}  // namespace android
