// TKGS, the Turkish satellite channel-list service: the known table version, the mode, a
// preferred service list and the known locators go into the scan block before the scan; the
// builder's TKGS tables (version, hidden locators, categories, service lists, a message for
// the viewer) come back through a notify function on the builder's thread.
#define LOG_TAG "ZelTvScanTKGS_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvScanTKGS"

#include <string.h>

#include <string>

#include "SatelliteExtensionCommon.h"
#include "ScanRegistrations.h"
#include "x_sb_dvbs_operator.h"

namespace android {

namespace {

const char* const kTkgsClass = "com/brinova/tv/orvella/services/scan/ZelTvScanTKGS";
const char* const kLocatorClass = "com/brinova/tv/orvella/services/scan/ZelTvScanTKGS$TKGSLocator";
const char* const kCategoryClass = "com/brinova/tv/orvella/services/scan/ZelTvScanTKGS$Category";

// Locator types, element 2 of nativeSetLocator's int[].
enum : uint32_t { kLocatorVisible = 0, kLocatorHidden = 1, kLocatorTypes = 2 };
enum : size_t { kLocatorType = 2 };
constexpr size_t kPreferredChars = SB_DVBS_SVL_NAME_SIZE - 1;

struct fields_t {
    jmethodID getNativeExtension;
    jmethodID onTKGSVersion;
    jmethodID onHiddenLocator;
    jmethodID onCategory;
    jmethodID onServiceList;
    jmethodID onUserMessage;
};
fields_t gFields;

struct LocatorSetters {
    jmethodID frequency, pol, symbolRate, pid;
};
NestedClass class_tkgslocator_global;
LocatorSetters gLocator;
const MethodSpec kLocatorSetters[] = {
    {&gLocator.frequency, "setFrequency", "(I)V", ""},
    {&gLocator.pol, "setPol", "(I)V", ""},
    {&gLocator.symbolRate, "setSymbolRate", "(I)V", ""},
    {&gLocator.pid, "setPID", "(I)V", ""},
};

struct CategorySetters {
    jmethodID no, name;
};
NestedClass class_category_global;
CategorySetters gCategory;
const MethodSpec kCategorySetters[] = {
    {&gCategory.no, "setNo", "(I)V", ""},
    {&gCategory.name, "setName", "(Ljava/lang/String;)V", ""},
};

}  // namespace

extern "C" void _dvbs_tkgs_built_nfy_fct(void* pt_nfy_data, void* pv_nfy_tag);

class NativeZelTvScanTKGS : public SatelliteExtension {
public:
    NativeZelTvScanTKGS(JNIEnv* env, jobject thiz);

    void onPreScan(void* scanParames) override;

    // The natives' steps; their lines report at the native's site.
    void setVersion(jint version, const ScanSite& site);
    void setMode(jint mode, const ScanSite& site);
    void setPreferredList(JNIEnv* env, jstring name, const ScanSite& site);
    bool addLocator(JNIEnv* env, uint32_t type, jobject locator, const ScanSite& site);

protected:
    ~NativeZelTvScanTKGS() override = default;  // never reached: nothing owns an extension

private:
    // Appends to `records` while it has room; a full list drops the locator silently.
    static bool append(SB_DVBS_TKGS_LOCATOR_T* records, uint16_t& count, size_t room,
                   const SB_DVBS_TKGS_LOCATOR_T& locator);

    uint8_t mPreferred = 0;
    char mPreferredName[SB_DVBS_SVL_NAME_SIZE];
    uint8_t mVersion = 0;
    uint8_t mMode = 0;
    uint16_t mHiddenCount = 0;
    SB_DVBS_TKGS_LOCATOR_T mHidden[SB_DVBS_HIDDEN_LOCATOR_MAX];
    uint16_t mVisibleCount = 0;
    SB_DVBS_TKGS_LOCATOR_T mVisible[SB_DVBS_VISIBLE_LOCATOR_MAX];
    ExtensionPeer mPeer;
};

NativeZelTvScanTKGS::NativeZelTvScanTKGS(JNIEnv* env, jobject thiz)
    : SatelliteExtension(LOG_TAG, AttachLog::kGated),
      mPeer(env, thiz, this, "NativeZelTvScanTKGS", SCAN_SITE) {
    x_memset(mPreferredName, 0, sizeof(mPreferredName));
    x_memset(mHidden, 0, sizeof(mHidden));
    x_memset(mVisible, 0, sizeof(mVisible));
    takeNestedClass(env, kLocatorClass, class_tkgslocator_global, kLocatorSetters,
                std::size(kLocatorSetters), " TKGSLocator class not find!", SCAN_SITE);
    takeNestedClass(env, kCategoryClass, class_category_global, kCategorySetters,
                std::size(kCategorySetters), " Category class not find!", SCAN_SITE);
}

void NativeZelTvScanTKGS::setVersion(jint version, const ScanSite& site) {
    mVersion = static_cast<uint8_t>(version);
    SITE_LOGD(site, "[Set tkgsVersion:%u]\n", mVersion);
}

void NativeZelTvScanTKGS::setMode(jint mode, const ScanSite& site) {
    mMode = static_cast<uint8_t>(mode);
    SITE_LOGD(site, "[Set tkgsMode:%u]\n", mMode);
}

void NativeZelTvScanTKGS::setPreferredList(JNIEnv* env, jstring name, const ScanSite& site) {
    const char* chars = name != nullptr ? env->GetStringUTFChars(name, nullptr) : nullptr;
    if (chars == nullptr) {
        return;  // a null name (or no memory for its characters) sets nothing
    }
    SITE_LOGD(site, "[Set s_svcListPref:%s]\n", chars);
    x_strncpy(mPreferredName, chars, kPreferredChars);
    mPreferredName[kPreferredChars] = '\0';
    mPreferred = 1;
    env->ReleaseStringUTFChars(name, chars);
}

bool NativeZelTvScanTKGS::append(SB_DVBS_TKGS_LOCATOR_T* records, uint16_t& count, size_t room,
                                 const SB_DVBS_TKGS_LOCATOR_T& locator) {
    if (count >= room) return false;
    records[count++] = locator;
    return true;
}

namespace {

jint callGetter(JNIEnv* env, jobject object, jclass clazz, const char* name, const ScanSite& site) {
    jmethodID getter = env->GetMethodID(clazz, name, "()I");
    if (getter == nullptr) {
        env->ExceptionClear();
        return 0;
    }
    jint value = env->CallIntMethod(object, getter);
    return checkJavaException(env, site, "TKGSLocator getter") ? 0 : value;
}

}  // namespace

bool NativeZelTvScanTKGS::addLocator(JNIEnv* env, uint32_t type, jobject locator,
                                     const ScanSite& site) {
    if (type >= kLocatorTypes) {
        SITE_XLOGE(site, " locatorType=%u is wrong set!\n", type);
        return false;
    }
    jclass clazz = env->FindClass(kLocatorClass);
    if (clazz == nullptr || locator == nullptr) {
        env->ExceptionClear();
        env->DeleteLocalRef(clazz);
        SITE_XLOGI(site, " TKGSLocator class not find!");
        return false;
    }
    SB_DVBS_TKGS_LOCATOR_T record;
    x_memset(&record, 0, sizeof(record));
    record.ui4_freq = static_cast<uint32_t>(callGetter(env, locator, clazz, "getFrequency", site));
    record.e_pol = static_cast<uint32_t>(callGetter(env, locator, clazz, "getPol", site));
    record.ui4_sym_rate = static_cast<uint32_t>(callGetter(env, locator, clazz, "getSymbolRate", site));
    record.ui2_pid = static_cast<uint16_t>(callGetter(env, locator, clazz, "getPID", site));
    env->DeleteLocalRef(clazz);
    if (type == kLocatorHidden) {
        if (append(mHidden, mHiddenCount, SB_DVBS_HIDDEN_LOCATOR_MAX, record)) {
            SITE_XLOGI(site, " Add one hidden locator: freq=%u pol=%u symbolRate=0x%x PID=%u",
                       record.ui4_freq, record.e_pol, record.ui4_sym_rate, record.ui2_pid);
        }
    } else if (append(mVisible, mVisibleCount, SB_DVBS_VISIBLE_LOCATOR_MAX, record)) {
        SITE_XLOGI(site, " Add one visible locator: freq=%u pol=%u symbolRate=0x%x PID=%u",
                   record.ui4_freq, record.e_pol, record.ui4_sym_rate, record.ui2_pid);
    }
    return true;
}

void NativeZelTvScanTKGS::onPreScan(void* scanParames) {
    XLOGI(" enter\n");
    SB_DVBS_SCAN_PARAMS* block = satelliteBlockOf(scanParames, SCAN_SITE);
    if (block == nullptr) return;
    if (mPreferred) {
        x_strncpy(block->s_svl_name, mPreferredName, kPreferredChars);
        block->s_svl_name[kPreferredChars] = '\0';
        block->b_get_info = 0;
    } else {
        block->s_svl_name[0] = '\0';
        block->b_get_info = 1;
    }
    block->ui1_tkgs_version = mVersion;
    block->ui1_tkgs_mode = mMode;
    if (mHiddenCount != 0) {
        x_memcpy(block->at_hidden_locator, mHidden, sizeof(mHidden));
        XLOGI(" First hidden=%u %u %u Pid=%u\n", mHidden[0].ui4_freq, mHidden[0].e_pol,
              mHidden[0].ui4_sym_rate, mHidden[0].ui2_pid);
    }
    if (mVisibleCount != 0) {
        x_memcpy(block->at_visible_locator, mVisible, sizeof(mVisible));
        XLOGI(" First visible=%u %u %u Pid=%u\n", mVisible[0].ui4_freq, mVisible[0].e_pol,
              mVisible[0].ui4_sym_rate, mVisible[0].ui2_pid);
    }
    XLOGI(" pref=%s version=%u mode=%u hidden num=%u visible num=%u\n", block->s_svl_name,
          mVersion, mMode, mHiddenCount, mVisibleCount);
    putNotify(&block->pf_tkgs_built_nfy, &block->pv_tkgs_built_nfy_tag, &_dvbs_tkgs_built_nfy_fct,
              mPeer);
    XLOGI(" leave pv_tkgs_built_nfy_tag=%p\n", block->pv_tkgs_built_nfy_tag);
}

namespace {

using Record = SB_DVBS_TKGS_BUILT_NFY_DATA_T;

// A count of the record cut to the room the record has for it.
jsize within(uint16_t count, size_t room) {
    return static_cast<jsize>(count < room ? count : room);
}

void reportVersion(JNIEnv* env, jobject peer, const Record& d, const ScanSite& site) {
    SITE_XLOGI(site, " TKGS version=%u\n", d.ui1_tkgs_version);
    callJavaVoid(env, peer, gFields.onTKGSVersion, site, "nativeOnTKGSVersion",
                 static_cast<jint>(d.ui1_tkgs_version));
}

// The array of a nested class, or a failed-array line when the class was never found.
jobjectArray newNestedArray(JNIEnv* env, const NestedClass& nested, jsize count,
                            const ScanSite& site,
                            const std::function<void(JavaSetters&, jsize)>& fill) {
    if (nested.clazz == nullptr) {
        SITE_XLOGI(site, " NewIntArray(size %d) FAIL!", count);
        return nullptr;
    }
    return newRecordObjectArray(env, nested.clazz, nested.init, count, site, fill);
}

void callWithArray(JNIEnv* env, jobject peer, jmethodID method, jobjectArray array,
                   const ScanSite& site, const char* what) {
    if (array == nullptr) return;  // the failure is logged: the call is skipped
    callJavaVoid(env, peer, method, site, what, array);
    env->DeleteLocalRef(array);
}

void reportHiddenLocators(JNIEnv* env, jobject peer, const Record& d, const ScanSite& site) {
    SITE_XLOGI(site, " hidden locator num=%u\n", d.ui2_hidden_locator_num);
    SITE_XLOGI(site, " class_tkgslocator_global:%p", class_tkgslocator_global.clazz);
    const jsize count = within(d.ui2_hidden_locator_num, SB_DVBS_HIDDEN_LOCATOR_MAX);
    jobjectArray array = newNestedArray(
        env, class_tkgslocator_global, count, site, [&d, &site](JavaSetters& s, jsize i) {
            const SB_DVBS_TKGS_LOCATOR_T& l = d.at_hidden_locator[i];
            SITE_XLOGI(site, " hidden locator freq=%u pol=%u symbolRate=%u PID=%u\n",
                       l.ui4_freq, l.e_pol, l.ui4_sym_rate, l.ui2_pid);
            s.setInt(gLocator.frequency, static_cast<jint>(l.ui4_freq));
            s.setInt(gLocator.pol, static_cast<jint>(l.e_pol));
            s.setInt(gLocator.symbolRate, static_cast<jint>(l.ui4_sym_rate));
            s.setInt(gLocator.pid, l.ui2_pid);
        });
    callWithArray(env, peer, gFields.onHiddenLocator, array, site, "nativeOnHiddenLocator");
}

void reportCategories(JNIEnv* env, jobject peer, const Record& d, const ScanSite& site) {
    SITE_XLOGI(site, " category num=%u\n", d.ui2_category_num);
    SITE_XLOGI(site, " class_category_global:%p", class_category_global.clazz);
    const jsize count = within(d.ui2_category_num, SB_DVBS_TKGS_CATEGORY_MAX);
    jobjectArray array = newNestedArray(
        env, class_category_global, count, site, [&d, &site](JavaSetters& s, jsize i) {
            const SB_DVBS_TKGS_CATEGORY_T& c = d.at_category[i];
            const std::string name(c.ac_name, strnlen(c.ac_name, sizeof(c.ac_name)));
            SITE_XLOGI(site, " category no=%u name=%s\n", c.ui2_no, name.c_str());
            s.setInt(gCategory.no, c.ui2_no);
            s.setText(gCategory.name, c.ac_name, sizeof(c.ac_name));
        });
    callWithArray(env, peer, gFields.onCategory, array, site, "nativeOnCategory");
}

void reportServiceLists(JNIEnv* env, jobject peer, const Record& d, const ScanSite& site) {
    SITE_XLOGI(site, " serviceList num=%u\n", d.ui2_svc_list_num);
    const jsize count = within(d.ui2_svc_list_num, SB_DVBS_TKGS_SVC_LIST_MAX);
    jobjectArray array = newFieldStringArray(
        env, count, site, [&d](jsize i) { return d.aac_svc_list_name[i]; },
        SB_DVBS_TKGS_SVC_LIST_NAME_SIZE);
    callWithArray(env, peer, gFields.onServiceList, array, site, "nativeOnServiceList");
}

void reportUserMessage(JNIEnv* env, jobject peer, const Record& d, const ScanSite& site) {
    // The line has always printed the message's address as a number.
    SITE_XLOGI(site, " user message=%u\n",
               static_cast<unsigned>(reinterpret_cast<uintptr_t>(d.s_user_msg)));
    jstring message = newBuilderString(env, d.s_user_msg, sizeof(d.s_user_msg), ForeignText::kQuestionMark);
    callJavaVoid(env, peer, gFields.onUserMessage, site, "nativeOnUserMessage", message);
    env->DeleteLocalRef(message);
}

}  // namespace

}  // namespace android

using namespace android;

extern "C" void _dvbs_tkgs_built_nfy_fct(void* pt_nfy_data, void* pv_nfy_tag) {
    BuilderNotify frame(SCAN_SITE, pt_nfy_data, pv_nfy_tag,
                        BuilderNotify::kEnterLeave | BuilderNotify::kGetEnvLine |
                            BuilderNotify::kCombinedNullLine);
    JNIEnv* env = frame.env();
    if (env == nullptr) return;  // no JavaVM recorded: nobody to tell
    const auto& d = *static_cast<const Record*>(pt_nfy_data);
    auto peer = static_cast<jobject>(pv_nfy_tag);
    XLOGI(" MW notify mask=0x%x\n", d.ui4_mask);
    // The version first: Java learns it before the tables it belongs to.
    static const MaskReport<Record> kReports[] = {
        {SB_DVBS_TKGS_VERSION, reportVersion},
        {SB_DVBS_TKGS_HIDDEN_LOCATOR, reportHiddenLocators},
        {SB_DVBS_TKGS_CATEGORY, reportCategories},
        {SB_DVBS_TKGS_SVC_LIST, reportServiceLists},
        {SB_DVBS_TKGS_USER_MSG, reportUserMessage},
    };
    reportMasked(env, peer, d, d.ui4_mask, kReports, SCAN_SITE);
}

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanTKGS_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvScanTKGS>(env, thiz, array, SCAN_SITE);
}

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanTKGS_nativeSetTKGSVersion(
    JNIEnv* env, jobject, jintArray array, jint version) {
    return satelliteArrayCall<NativeZelTvScanTKGS>(
        env, array, SCAN_SITE, nullptr, " ptScanTKGS is NULL!\n",
        [version](NativeZelTvScanTKGS& tkgs, const IntArrayCall<kExtensionArrayLimit>& call) {
            tkgs.setVersion(version, call.site());
            return false;  // the array does not go back
        });
}

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanTKGS_nativeSetTKGSMode(
    JNIEnv* env, jobject, jintArray array, jint mode) {
    return satelliteArrayCall<NativeZelTvScanTKGS>(
        env, array, SCAN_SITE, nullptr, " ptScanTKGS is NULL!\n",
        [mode](NativeZelTvScanTKGS& tkgs, const IntArrayCall<kExtensionArrayLimit>& call) {
            tkgs.setMode(mode, call.site());
            return false;
        });
}

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanTKGS_nativeSetPrefSvcList(
    JNIEnv* env, jobject, jintArray array, jstring name) {
    return satelliteArrayCall<NativeZelTvScanTKGS>(
        env, array, SCAN_SITE, nullptr, " ptScanTKGS is NULL!\n",
        [env, name](NativeZelTvScanTKGS& tkgs, const IntArrayCall<kExtensionArrayLimit>& call) {
            tkgs.setPreferredList(env, name, call.site());
            return false;
        });
}

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanTKGS_nativeSetLocator(
    JNIEnv* env, jobject, jintArray array, jobject locator) {
    return satelliteArrayCall<NativeZelTvScanTKGS>(
        env, array, SCAN_SITE, nullptr, " ptTKGS is NULL!\n",
        [env, locator](NativeZelTvScanTKGS& tkgs, IntArrayCall<kExtensionArrayLimit>& call) {
            return tkgs.addLocator(env, static_cast<uint32_t>(call[kLocatorType]), locator,
                                   call.site());
        });
}

namespace {

const JNINativeMethod gMethods[] = {
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanTKGS_nativeSetup)},
    {"nativeSetTKGSVersion", "([II)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanTKGS_nativeSetTKGSVersion)},
    {"nativeSetTKGSMode", "([II)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanTKGS_nativeSetTKGSMode)},
    {"nativeSetPrefServiceList", "([ILjava/lang/String;)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanTKGS_nativeSetPrefSvcList)},
    {"nativeSetLocator",
     "([ILcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS$TKGSLocator;)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanTKGS_nativeSetLocator)},
};

const MethodSpec gFirstLookUp[] = {
    GET_NATIVE_EXTENSION_SPEC(gFields.getNativeExtension),
    {&gFields.onTKGSVersion, "nativeOnTKGSVersion", "(I)V", "!(gFields.onTKGSVersion != __null)"},
};

const MethodSpec gSecondLookUp[] = {
    {&gFields.onHiddenLocator, "nativeOnHiddenLocator",
     "([Lcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS$TKGSLocator;)V",
     "!(gFields.onHiddenLocator != __null)"},
    {&gFields.onCategory, "nativeOnCategory",
     "([Lcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS$Category;)V",
     "!(gFields.onCategory != __null)"},
    {&gFields.onServiceList, "nativeOnServiceList", "([Ljava/lang/String;)V",
     "!(gFields.onServiceList != __null)"},
    {&gFields.onUserMessage, "nativeOnUserMessage", "(Ljava/lang/String;)V",
     "!(gFields.onUserMessage != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvScanTKGS(JNIEnv* env) {
    const SatelliteRegistration registration = {
        kTkgsClass, gMethods, tableSize(gMethods), gFirstLookUp, std::size(gFirstLookUp),
        "Failed to register ZelTvScanTKGS native methods", gSecondLookUp, std::size(gSecondLookUp),
        " ZelTvScanTKGS class not find!", nullptr, nullptr, 0};
    return registerSatelliteClass(env, registration, SCAN_SITE);
}
