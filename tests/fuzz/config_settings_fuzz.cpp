// The settings a configuration's nativeSetup reads from Java: every String field of a DVB-T,
// DVB-C, DTMB, ATSC, clear-QAM or ISDB settings object set to any UTF-16 units (lone
// surrogates and NULs among them) or to null, every int field to any value, the DTMB scan
// type to null. What the configuration keeps must be safe to hand on: each text code of its
// block ends inside its field and is modified UTF-8 (CheckJNI checks NewStringUTF), and the
// country reaches Java again through the scan-maps callback on a builder thread.
#include <string>
#include <vector>

#include "fuzz_support.h"
#include "x_mw_api.h"

namespace {

struct Standard {
    const char* config;
    const char* settings;
    std::vector<const char*> texts;    // String fields of the settings
    std::vector<const char*> numbers;  // int fields of the settings
    std::vector<size_t> codes;         // offsets of the block's 4-byte text codes, country first
    bool cable;                        // the cable scan-maps callback's longer signature
    bool enumScanType;                 // DTMB: the scan type is an enum, null too
};

#define SCAN_CLASS(name) "com/brinova/tv/orvella/services/scan/" name

const Standard kStandards[] = {
    {SCAN_CLASS("ZelTvDvbtScanConfig"), SCAN_CLASS("ZelTvDvbtScanSettings"), {"mCountry", "mUiLanguage"},
     {"mScanType", "mServiceUpdateType"}, {0, 12}, false, false},
    {SCAN_CLASS("ZelTvDvbcScanConfig"), SCAN_CLASS("ZelTvDvbcScanSettings"), {"mCountry", "mUiLanguage"},
     {"mOperator", "mScanType", "mDefaultFrequency", "mNetworkId", "mServiceUpdateType"}, {0, 20}, true, false},
    {SCAN_CLASS("ZelTvDtmbScanConfig"), SCAN_CLASS("ZelTvDtmbScanSettings"), {"mCountry", "mUiLanguage"},
     {"mManualFrequency", "mServiceIdRule", "mServiceUpdateType"}, {0, 4}, false, true},
    {SCAN_CLASS("ZelTvAtscScanConfig"), SCAN_CLASS("ZelTvAtscScanSettings"), {"mCountry"},
     {"mScanType", "mStartIndex", "mEndIndex"}, {}, false, false},
    {SCAN_CLASS("ZelTvCqamScanConfig"), SCAN_CLASS("ZelTvCqamScanSettings"), {"mCountry"},
     {"mScanType", "mStartIndex", "mEndIndex", "mModeMask", "mFreqPlan"}, {}, false, false},
    {SCAN_CLASS("ZelTvIsdbScanConfig"), SCAN_CLASS("ZelTvIsdbScanSettings"), {"mCountry"},
     {"mScanType", "mStartChannel", "mEndChannel"}, {0}, false, false},
};
constexpr size_t kStandardCount = sizeof(kStandards) / sizeof(kStandards[0]);

// A configuration made from valid settings, the way an application makes one.
jobject newConfig(JNIEnv* env, const Standard& s) {
    jclass settingsClass = env->FindClass(s.settings);
    jstring country = env->NewStringUTF("GBR");
    jstring language = env->NewStringUTF("eng");
    const bool twoTexts = s.texts.size() == 2;
    jobject settings = twoTexts
        ? env->NewObject(settingsClass, env->GetMethodID(settingsClass, "<init>", "(Ljava/lang/String;Ljava/lang/String;)V"),
                         country, language)
        : env->NewObject(settingsClass, env->GetMethodID(settingsClass, "<init>", "(Ljava/lang/String;)V"), country);
    fuzz::checkNoException(env, s.settings);
    jclass configClass = env->FindClass(s.config);
    const std::string ctor = std::string("(L") + s.settings + ";)V";
    jobject config = env->NewObject(configClass, env->GetMethodID(configClass, "<init>", ctor.c_str()), settings);
    fuzz::checkNoException(env, s.config);
    for (jobject local : {static_cast<jobject>(settingsClass), static_cast<jobject>(country),
                          static_cast<jobject>(language), settings, static_cast<jobject>(configClass)}) {
        env->DeleteLocalRef(local);
    }
    return config;
}

// Any UTF-16 units, or (one case in four) null.
jstring anyText(JNIEnv* env, fuzz::Input& in) {
    const uint8_t shape = in.u8();
    if ((shape & 3) == 0) return nullptr;
    std::vector<jchar> units(shape >> 4);
    for (jchar& u : units) u = in.u16();
    return env->NewString(units.data(), static_cast<jsize>(units.size()));
}

// The configuration's own copy of its settings, given any values field by field.
jobject fuzzedSettings(JNIEnv* env, jobject config, const Standard& s, fuzz::Input& in) {
    jclass configClass = env->GetObjectClass(config);
    const std::string sig = std::string("L") + s.settings + ";";
    jobject settings = env->GetObjectField(config, env->GetFieldID(configClass, "mSettings", sig.c_str()));
    env->DeleteLocalRef(configClass);
    jclass c = env->GetObjectClass(settings);
    for (const char* name : s.texts) {
        jstring text = anyText(env, in);
        env->SetObjectField(settings, env->GetFieldID(c, name, "Ljava/lang/String;"), text);
        if (text != nullptr) env->DeleteLocalRef(text);
    }
    for (const char* name : s.numbers) {
        env->SetIntField(settings, env->GetFieldID(c, name, "I"), static_cast<jint>(in.u32()));
    }
    if (s.enumScanType && (in.u8() & 1)) {
        env->SetObjectField(settings,
                            env->GetFieldID(c, "mScanType", "L" SCAN_CLASS("ZelTvDtmbScanSettings$DtmbScanType") ";"),
                            nullptr);
    }
    env->DeleteLocalRef(c);
    fuzz::checkNoException(env, "settings fields");
    return settings;
}

android::JINativeScanConfig* nativeOf(JNIEnv* env, jobject config) {
    jclass c = env->GetObjectClass(config);
    jlong pointer = env->CallLongMethod(config, env->GetMethodID(c, "getNativeConfig", "()J"));
    env->DeleteLocalRef(c);
    fuzz::checkNoException(env, "getNativeConfig");
    return reinterpret_cast<android::JINativeScanConfig*>(static_cast<uintptr_t>(pointer));
}

// Each text code of the block ends in its field and is valid modified UTF-8; the country
// goes back to Java as the builder sends it.
void checkBlock(JNIEnv* env, android::JINativeScanConfig* native, const Standard& s) {
    auto* block = static_cast<char*>(native->getSbScanParams(0));
    for (size_t offset : s.codes) {
        char* code = block + offset;
        if (memchr(code, 0, 4) == nullptr) abort();  // would be read past its field
        jstring text = env->NewStringUTF(code);
        fuzz::checkNoException(env, "NewStringUTF");
        env->DeleteLocalRef(text);
    }
    if (s.codes.empty()) return;
    void* fn = native->getSbScanMapsNotify();
    uint32_t output = 0;
    uint32_t outputLen = sizeof(output);
    fuzz::onBuilderThread([&] {
        if (s.cable) {
            reinterpret_cast<x_sb_dvbc_scan_maps_fct>(fn)(0, block, 0, nullptr, nullptr, &output, &outputLen, native);
        } else {
            reinterpret_cast<x_sb_scan_maps_fct>(fn)(0, block, nullptr, &output, &outputLen, native);
        }
    });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    JNIEnv* env = fuzz::boot();
    fuzz::Input in(data, size);
    const Standard& s = kStandards[in.u8() % kStandardCount];
    jobject config = newConfig(env, s);
    jobject settings = fuzzedSettings(env, config, s, in);
    jclass c = env->GetObjectClass(config);
    const std::string sig = std::string("(L") + s.settings + ";)I";
    env->CallIntMethod(config, env->GetMethodID(c, "nativeSetup", sig.c_str()), settings);
    // A getter that threw (a null enum) reaches this caller, as it would reach Java's.
    env->ExceptionClear();
    if (android::JINativeScanConfig* native = nativeOf(env, config)) {
        checkBlock(env, native, s);
    }
    env->CallIntMethod(config, env->GetMethodID(c, "release", "()I"));
    fuzz::checkNoException(env, "release");
    env->DeleteLocalRef(c);
    env->DeleteLocalRef(settings);
    env->DeleteLocalRef(config);
    return 0;
}
