// Fastscan operator scans of DVB-S: the user's operator sub-list and associated satellites go
// into the scan block before the scan; the builder's Fastscan tables (home transponder,
// operators, version) come back through a notify function on the builder's thread.
#define LOG_TAG "ZelTvScanFST_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvScanFST"

#include <string.h>

#include <string>

#include "DvbsScanConfigCommon.h"
#include "SatelliteExtensionCommon.h"
#include "ScanRegistrations.h"
#include "x_sb_dvbs_operator.h"

namespace android {

namespace {

const char* const kFstClass = "com/brinova/tv/orvella/services/scan/ZelTvScanFST";
const char* const kOperatorInfoClass =
    "com/brinova/tv/orvella/services/scan/ZelTvScanFST$OperatorInfo";
const char* const kOperatorSelectedClass =
    "com/brinova/tv/orvella/services/scan/ZelTvScanFST$OperatorSelected";

constexpr size_t kNameChars = SB_DVBS_FST_NAME_SIZE - 1;

struct fields_t {
    jmethodID getNativeExtension;
    jmethodID onDetectedHomeTPInfo;
    jmethodID onDetectedOperatorInfo;
    jmethodID onFSTInfo;
    jmethodID onFSTChanged;
};
fields_t gFields;

// ZelTvScanFST$OperatorInfo: the class (class_operatorInfo_global) and its setters.
struct OperatorInfoSetters {
    jmethodID nwid, slid, pid, version, name, subName, country, menuLang, aud1Lang, aud2Lang,
        sbtlLang, orbitNum, orbitInfo, pareConRate, deftCharSet, sbtlEnabled, specRegnSetup,
        ottBrandId;
};
NestedClass class_operatorInfo_global;
OperatorInfoSetters gOperatorInfo;
const MethodSpec kOperatorInfoSetters[] = {
    {&gOperatorInfo.nwid, "setOperatorNWID", "(I)V", ""},
    {&gOperatorInfo.slid, "setOperatorSLID", "(I)V", ""},
    {&gOperatorInfo.pid, "setFstPid", "(I)V", ""},
    {&gOperatorInfo.version, "setFstVersion", "(I)V", ""},
    {&gOperatorInfo.name, "setOperatorName", "(Ljava/lang/String;)V", ""},
    {&gOperatorInfo.subName, "setOperatorSLName", "(Ljava/lang/String;)V", ""},
    {&gOperatorInfo.country, "setCountryCode", "(Ljava/lang/String;)V", ""},
    {&gOperatorInfo.menuLang, "setMenuLangCode", "(Ljava/lang/String;)V", ""},
    {&gOperatorInfo.aud1Lang, "setAud1LangCode", "(Ljava/lang/String;)V", ""},
    {&gOperatorInfo.aud2Lang, "setAud2LangCode", "(Ljava/lang/String;)V", ""},
    {&gOperatorInfo.sbtlLang, "setSbtlLangCode", "(Ljava/lang/String;)V", ""},
    {&gOperatorInfo.orbitNum, "setOrbitNum", "(I)V", ""},
    {&gOperatorInfo.orbitInfo, "setOrbitInfo", "([I)V", ""},
    {&gOperatorInfo.pareConRate, "setPareConRate", "(I)V", ""},
    {&gOperatorInfo.deftCharSet, "setDeftCharSet", "(I)V", ""},
    {&gOperatorInfo.sbtlEnabled, "setSbtlEnabled", "(Z)V", ""},
    {&gOperatorInfo.specRegnSetup, "setSpecRegnSetup", "(Z)V", ""},
    {&gOperatorInfo.ottBrandId, "setOTTBrandID", "(Ljava/lang/String;)V", ""},
};

// A builder text field as a terminated string, for the log.
std::string fieldText(const char* field, size_t capacity) {
    return std::string(field, strnlen(field, capacity));
}

}  // namespace

extern "C" void _dvbs_fst_built_nfy_fct(void* pt_nfy_data, void* pv_nfy_tag);

class NativeZelTvScanFST : public SatelliteExtension {
public:
    NativeZelTvScanFST(JNIEnv* env, jobject thiz);

    void onPreScan(void* scanParames) override;

    // The natives' steps; their lines report at the native's site.
    bool setAssociatedSatellites(JNIEnv* env, jobjectArray satellites, const ScanSite& site);
    bool setOperatorSelected(JNIEnv* env, jobject selected, const ScanSite& site);

protected:
    ~NativeZelTvScanFST() override = default;  // never reached: nothing owns an extension

private:
    uint8_t mSelected = 0;
    SB_DVBS_FST_OPERATOR_SEL_T mSelection;
    uint16_t mAssociatedCount = 0;
    uint16_t mAssociatedRecIds[SB_DVBS_ASSO_SAT_MAX];
    ExtensionPeer mPeer;
};

NativeZelTvScanFST::NativeZelTvScanFST(JNIEnv* env, jobject thiz)
    : SatelliteExtension(LOG_TAG, AttachLog::kGated),
      mPeer(env, thiz, this, "NativeZelTvScanFST", SCAN_SITE, ExtensionPeer::CreateLog::kNone) {
    x_memset(&mSelection, 0, sizeof(mSelection));
    x_memset(mAssociatedRecIds, 0, sizeof(mAssociatedRecIds));
    takeNestedClass(env, kOperatorInfoClass, class_operatorInfo_global, kOperatorInfoSetters,
                    std::size(kOperatorInfoSetters), " OperatorInfo class not find!", SCAN_SITE);
    BLOGD_RAW("native config create instance, this: %p, thiz: %p, mObject: %p, "
              "class_operatorInfo_global: %p",
              this, thiz, mPeer.object(), class_operatorInfo_global.clazz);
}

// The Java satellite text "id,recordId" as numbers (the configuration's own parsing).
static SatelliteIdentity _get_satlID_satlRecID_by_string(const char* text) {
    return PARSE_SATELLITE_ID_TEXT(text);
}

bool NativeZelTvScanFST::setAssociatedSatellites(JNIEnv* env, jobjectArray satellites,
                                                 const ScanSite& site) {
    // The record holds a 16-bit count: only its low bits are looked at, as the builder's are.
    uint16_t count = static_cast<uint16_t>(satellites != nullptr ? env->GetArrayLength(satellites) : 0);
    if (count & 0xFFF0) {
        SITE_LOGD(site, " num=%u over maximum=%u and make it as maximum\n", count,
                  SB_DVBS_ASSO_SAT_MAX);
        count = SB_DVBS_ASSO_SAT_MAX;
    }
    mAssociatedCount = count;
    SITE_LOGE(site, "ui2_associated_satl_rec_num=%u\n", count);
    for (uint16_t i = 0; i < count; ++i) {
        auto text = static_cast<jstring>(env->GetObjectArrayElement(satellites, i));
        // A null element counts as an empty text: record id 0.
        const char* chars = text != nullptr ? env->GetStringUTFChars(text, nullptr) : nullptr;
        mAssociatedRecIds[i] = _get_satlID_satlRecID_by_string(chars != nullptr ? chars : "").recordId;
        if (chars != nullptr) env->ReleaseStringUTFChars(text, chars);
        env->DeleteLocalRef(text);
        SITE_LOGD(site, "aui2_associated_satl_rec_id=%u\n", mAssociatedRecIds[i]);
    }
    return true;
}

namespace {

// The getters of ZelTvScanFST$OperatorSelected, looked up at each selection.
struct SelectedGetters {
    jmethodID nwid, slid, pid, version, name, subName, charSet;
};

bool lookUpSelectedGetters(JNIEnv* env, jclass clazz, SelectedGetters& g) {
    const MethodSpec specs[] = {
        {&g.nwid, "getOperatorNWIDSel", "()I", ""},
        {&g.slid, "getOperatorSLIDSel", "()I", ""},
        {&g.pid, "getFstPidSel", "()I", ""},
        {&g.version, "getFstVersionSel", "()I", ""},
        {&g.name, "getOperatorNameSel", "()Ljava/lang/String;", ""},
        {&g.subName, "getOperatorSLNameSel", "()Ljava/lang/String;", ""},
        {&g.charSet, "getDeftCharSetSel", "()I", ""},
    };
    for (const MethodSpec& s : specs) {
        *s.slot = env->GetMethodID(clazz, s.name, s.signature);
        if (*s.slot == nullptr) {
            env->ExceptionClear();
            return false;
        }
    }
    return true;
}

jint callInt(JNIEnv* env, jobject object, jmethodID getter, const ScanSite& site) {
    jint value = env->CallIntMethod(object, getter);
    return checkJavaException(env, site, "OperatorSelected getter") ? 0 : value;
}

// At most 63 characters of a Java string into a 64-byte field; true when there was a string.
bool copyName(JNIEnv* env, jstring text, char (&field)[SB_DVBS_FST_NAME_SIZE], std::string* logged) {
    x_memset(field, 0, sizeof(field));
    if (text == nullptr) return false;
    const char* chars = env->GetStringUTFChars(text, nullptr);
    if (chars == nullptr) return false;
    x_strncpy(field, chars, kNameChars);
    *logged = chars;
    env->ReleaseStringUTFChars(text, chars);
    return true;
}

}  // namespace

bool NativeZelTvScanFST::setOperatorSelected(JNIEnv* env, jobject selected,
                                             const ScanSite& site) {
    jclass clazz = env->FindClass(kOperatorSelectedClass);
    SelectedGetters g;
    if (clazz == nullptr || selected == nullptr || !lookUpSelectedGetters(env, clazz, g)) {
        env->ExceptionClear();
        env->DeleteLocalRef(clazz);
        SITE_XLOGI(site, " OperatorSelected class not find!");
        return false;
    }
    env->DeleteLocalRef(clazz);
    SB_DVBS_FST_OPERATOR_SEL_T sel;
    x_memset(&sel, 0, sizeof(sel));
    sel.ui2_nw_id = static_cast<uint16_t>(callInt(env, selected, g.nwid, site));
    sel.ui1_sub_list_id = static_cast<uint8_t>(callInt(env, selected, g.slid, site));
    sel.ui2_fst_pid = static_cast<uint16_t>(callInt(env, selected, g.pid, site));
    sel.ui1_fst_version = static_cast<uint8_t>(callInt(env, selected, g.version, site));
    auto name = static_cast<jstring>(env->CallObjectMethod(selected, g.name));
    checkJavaException(env, site, "OperatorSelected getter");
    auto subName = static_cast<jstring>(env->CallObjectMethod(selected, g.subName));
    checkJavaException(env, site, "OperatorSelected getter");
    sel.ui1_deft_char_set = static_cast<uint8_t>(callInt(env, selected, g.charSet, site));
    std::string text;
    if (copyName(env, name, sel.ac_name, &text)) {
        SITE_XLOGI(site, " x_strncpy is used, OperatorSelected is: name=%s", text.c_str());
    }
    if (copyName(env, subName, sel.ac_sub_list_name, &text)) {
        SITE_XLOGI(site, " OperatorSelected is: subname=%s", text.c_str());
    }
    env->DeleteLocalRef(name);
    env->DeleteLocalRef(subName);
    SITE_XLOGI(site, " OperatorSelected is: nwid=%u slid=%u PID=0x%x ver=%u charSet=%u",
               sel.ui2_nw_id, sel.ui1_sub_list_id, sel.ui2_fst_pid, sel.ui1_fst_version,
               sel.ui1_deft_char_set);
    SITE_XLOGI(site, " OperatorSelected is: name=%s subname=%s", sel.ac_name,
               sel.ac_sub_list_name);
    x_memcpy(&mSelection, &sel, sizeof(sel));
    mSelected = 1;
    return true;
}

void NativeZelTvScanFST::onPreScan(void* scanParames) {
    XLOGI(" enter\n");
    SB_DVBS_SCAN_PARAMS* block = satelliteBlockOf(scanParames, SCAN_SITE);
    if (block == nullptr) return;
    if (mSelected) {
        x_memcpy(&block->t_fst_operator, &mSelection, sizeof(mSelection));
    }
    block->ui2_asso_sat_num = mAssociatedCount;
    x_memcpy(block->aui2_asso_sat_rec_id, mAssociatedRecIds, sizeof(mAssociatedRecIds));
    putNotify(&block->pf_fst_built_nfy, &block->pv_fst_built_nfy_tag, &_dvbs_fst_built_nfy_fct, mPeer);
    XLOG_AT(BRINOVA_LOG_ERROR, "INFO ", " pv_fst_built_nfy_tag=%p\n", block->pv_fst_built_nfy_tag);
    XLOGI(" leave\n");
}

namespace {

void reportHomeTransponder(JNIEnv* env, jobject peer, const SB_DVBS_FST_BUILT_NFY_DATA_T& d,
                           const ScanSite& site) {
    SITE_XLOGI(site, " satl id=%u satl rec id=%u HomeTP=%u%s%u\n", d.ui2_sat_id,
               d.ui2_sat_rec_id, d.ui4_freq, d.e_pol == SB_DVBS_POL_V ? "V" : "H",
               d.ui4_sym_rate);
    jstring text = newIdString(env, d.ui2_sat_id, d.ui2_sat_rec_id);
    callJavaVoid(env, peer, gFields.onDetectedHomeTPInfo, site, "onDetectedHomeTPInfo", text,
                 static_cast<jint>(d.ui4_freq), static_cast<jint>(d.e_pol),
                 static_cast<jint>(d.ui4_sym_rate));
    env->DeleteLocalRef(text);
}

void fillOperatorInfo(JavaSetters& s, const SB_DVBS_FST_OPERATOR_INFO_T& op) {
    const OperatorInfoSetters& m = gOperatorInfo;
    s.setInt(m.nwid, op.ui2_nw_id);
    s.setInt(m.slid, op.ui1_sub_list_id);
    s.setInt(m.pid, op.ui2_fst_pid);
    s.setInt(m.version, op.ui1_fst_version);
    s.setText(m.name, op.ac_name, sizeof(op.ac_name));
    s.setText(m.subName, op.ac_sub_list_name, sizeof(op.ac_sub_list_name));
    s.setText(m.country, op.ac_country_code, sizeof(op.ac_country_code));
    s.setText(m.menuLang, op.ac_menu_lang, sizeof(op.ac_menu_lang));
    s.setText(m.aud1Lang, op.ac_aud1_lang, sizeof(op.ac_aud1_lang));
    s.setText(m.aud2Lang, op.ac_aud2_lang, sizeof(op.ac_aud2_lang));
    s.setText(m.sbtlLang, op.ac_sbtl_lang, sizeof(op.ac_sbtl_lang));
    // The entry has room for 16 positions; a larger count is cut to them.
    const jsize orbits = op.ui2_orbit_num < SB_DVBS_FST_ORBIT_MAX ? op.ui2_orbit_num : SB_DVBS_FST_ORBIT_MAX;
    jint positions[SB_DVBS_FST_ORBIT_MAX];
    for (jsize k = 0; k < orbits; ++k) positions[k] = op.ai2_orbit[k];  // sign-extended
    s.setInt(m.orbitNum, orbits);
    s.setInts(m.orbitInfo, positions, orbits);
    s.setInt(m.pareConRate, op.ui1_pare_con_rate);
    s.setInt(m.deftCharSet, op.ui1_deft_char_set);
    s.setBoolean(m.sbtlEnabled, op.b_sbtl_enabled != 0);
    s.setBoolean(m.specRegnSetup, op.b_spec_regn_setup != 0);
    s.setText(m.ottBrandId, op.ac_ott_brand_id, sizeof(op.ac_ott_brand_id));
}

void reportOperators(JNIEnv* env, jobject peer, const SB_DVBS_FST_BUILT_NFY_DATA_T& d,
                     const ScanSite& site) {
    SITE_XLOGI(site, " operator num=%u\n", d.ui2_operator_num);
    if (class_operatorInfo_global.clazz == nullptr) {
        SITE_XLOGI(site, " jclass_init init class failed!");
        return;
    }
    // The record has room for 16 entries; a larger count is cut to them.
    const jsize count = d.ui2_operator_num < SB_DVBS_FST_OPERATOR_MAX ? d.ui2_operator_num
                                                                      : SB_DVBS_FST_OPERATOR_MAX;
    jobjectArray operators = newRecordObjectArray(
        env, class_operatorInfo_global.clazz, class_operatorInfo_global.init, count, site,
        [&d, &site](JavaSetters& s, jsize i) {
            const SB_DVBS_FST_OPERATOR_INFO_T& op = d.at_operator[i];
            SITE_XLOGI(site, " operatorinfo nwid=%u slid=%u name=%s sub=%s\n", op.ui2_nw_id,
                       op.ui1_sub_list_id, fieldText(op.ac_name, sizeof(op.ac_name)).c_str(),
                       fieldText(op.ac_sub_list_name, sizeof(op.ac_sub_list_name)).c_str());
            fillOperatorInfo(s, op);
        });
    if (operators == nullptr) return;
    callJavaVoid(env, peer, gFields.onDetectedOperatorInfo, site, "onDetectedOperatorInfo",
                 operators);
    env->DeleteLocalRef(operators);
}

void reportVersion(JNIEnv* env, jobject peer, const SB_DVBS_FST_BUILT_NFY_DATA_T& d,
                   const ScanSite& site) {
    SITE_XLOGI(site, " FST version=%u\n", d.ui1_fst_version);
    callJavaVoid(env, peer, gFields.onFSTInfo, site, "onFSTInfo", static_cast<jint>(d.ui1_fst_version));
}

void reportVersionChanged(JNIEnv* env, jobject peer, const SB_DVBS_FST_BUILT_NFY_DATA_T&,
                          const ScanSite& site) {
    SITE_XLOGI(site, " FST version changed\n");
    callJavaVoid(env, peer, gFields.onFSTChanged, site, "onFSTChanged");
}

}  // namespace

}  // namespace android

using namespace android;

extern "C" void _dvbs_fst_built_nfy_fct(void* pt_nfy_data, void* pv_nfy_tag) {
    BuilderNotify frame(SCAN_SITE, pt_nfy_data, pv_nfy_tag, BuilderNotify::kEnterLeave);
    JNIEnv* env = frame.env();
    if (env == nullptr) return;  // no JavaVM recorded: nobody to tell
    const auto& d = *static_cast<const SB_DVBS_FST_BUILT_NFY_DATA_T*>(pt_nfy_data);
    auto peer = static_cast<jobject>(pv_nfy_tag);
    static const MaskReport<SB_DVBS_FST_BUILT_NFY_DATA_T> kReports[] = {
        {SB_DVBS_FST_HOME_TP_VALID, reportHomeTransponder},
        {SB_DVBS_FST_OPERATOR_VALID, reportOperators},
        {SB_DVBS_FST_VERSION_VALID, reportVersion},
        {SB_DVBS_FST_VERSION_CHANGED, reportVersionChanged},
    };
    reportMasked(env, peer, d, d.ui4_mask, kReports, SCAN_SITE);
}

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanFST_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvScanFST>(env, thiz, array, SCAN_SITE);
}

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanFST_nativeSetAssoSateInfo(
    JNIEnv* env, jobject, jintArray array, jobjectArray satellites) {
    return satelliteArrayCall<NativeZelTvScanFST>(
        env, array, SCAN_SITE, "ptFST", " ptFST is NULL!\n",
        [env, satellites](NativeZelTvScanFST& fst, const IntArrayCall<kExtensionArrayLimit>& call) {
            return fst.setAssociatedSatellites(env, satellites, call.site());
        });
}

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanFST_nativeSetOptSel(
    JNIEnv* env, jobject, jintArray array, jobject selected) {
    return satelliteArrayCall<NativeZelTvScanFST>(
        env, array, SCAN_SITE, nullptr, " ptFST is NULL!\n",
        [env, selected](NativeZelTvScanFST& fst, const IntArrayCall<kExtensionArrayLimit>& call) {
            return fst.setOperatorSelected(env, selected, call.site());
        });
}

namespace {

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanFST_nativeSetup)},
    {"nativeSetAssociateSateInfo", "([I[Ljava/lang/String;)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanFST_nativeSetAssoSateInfo)},
    {"nativeSetOperatorSelected",
     "([ILcom/brinova/tv/orvella/services/scan/ZelTvScanFST$OperatorSelected;)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanFST_nativeSetOptSel)},
};

const MethodSpec gFirstLookUp[] = {
    GET_NATIVE_EXTENSION_SPEC(gFields.getNativeExtension),
    {&gFields.onDetectedHomeTPInfo, "onDetectedHomeTPInfo", "(Ljava/lang/String;III)V",
     "!(gFields.onDetectedHomeTPInfo != __null)"},
};

const MethodSpec gSecondLookUp[] = {
    {&gFields.onDetectedOperatorInfo, "onDetectedOperatorInfo",
     "([Lcom/brinova/tv/orvella/services/scan/ZelTvScanFST$OperatorInfo;)V",
     "!(gFields.onDetectedOperatorInfo != __null)"},
    {&gFields.onFSTInfo, "onFSTInfo", "(I)V", "!(gFields.onFSTInfo != __null)"},
    {&gFields.onFSTChanged, "onFSTChanged", "()V", "!(gFields.onFSTChanged != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvScanFST(JNIEnv* env) {
    const SatelliteRegistration registration = {
        kFstClass, gMethods, tableSize(gMethods), gFirstLookUp, std::size(gFirstLookUp),
        "Failed to register ZelTvScanFST native methods", gSecondLookUp, std::size(gSecondLookUp),
        " ZelTvScanFST class not find!", nullptr, nullptr, 0};
    return registerSatelliteClass(env, registration, SCAN_SITE);
}
