// Regional channel lists of an operator scan: the builder is asked for the lists it offers
// (reported to Java as names) until Java chooses one, whose name then goes to the builder.
// Every scan also gets the time zone.
#define LOG_TAG "ZelTvRegionChannelList_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvRegionChannelList"

#include <optional>

#include <nativehelper/ScopedLocalRef.h>
#include <nativehelper/ScopedUtfChars.h>

#include "ScanRegistrations.h"
#include "SatelliteExtensionCommon.h"
#include "x_sb_dvbs_install.h"

namespace android {

namespace {

const char* const kRegionListClass =
    "com/brinova/tv/orvella/services/scan/ZelTvScanRegionChannelList";

jmethodID g_onRegionChannelListId;
struct {
    jmethodID getNativeExtension;
} gFields;

// Entries logged of a list report; all of them go to Java.
constexpr uint16_t kLoggedLists = 16;

jobjectArray listNames(JNIEnv* env, const SB_DVBS_GET_INFO_NFY_DATA_T& data, uint16_t count) {
    ScopedLocalRef<jclass> stringClass(env, env->FindClass("java/lang/String"));
    jobjectArray names = env->NewObjectArray(count, stringClass.get(), nullptr);
    for (uint16_t i = 0; names != nullptr && i < count; ++i) {
        ScopedLocalRef<jstring> name(env, newBuilderString(env, data.at_list[i].ac_name,
                                                           sizeof(data.at_list[i].ac_name),
                                                           ForeignText::kLatin1));
        env->SetObjectArrayElement(names, i, name.get());
    }
    return names;
}

void _dvbs_get_info_nfy_fct(void* pt_nfy_data, void* pv_nfy_tag) {
    BuilderNotify frame(SCAN_SITE, pt_nfy_data, pv_nfy_tag, kInstallationNotify);
    const auto data = notifyRecord<SB_DVBS_GET_INFO_NFY_DATA_T>(pt_nfy_data);
    if ((data.ui1_flags & SB_DVBS_INFO_FLAG_LIST) == 0) {
        BLOGE(" it's not notify list flow, mask=0x%x, going to abort().", data.ui1_flags);
        abort();
    }
    // The record has room for SB_DVBS_REGION_LIST_MAX entries; a larger count is cut there.
    const uint16_t count = data.ui2_list_num < SB_DVBS_REGION_LIST_MAX ? data.ui2_list_num
                                                                       : SB_DVBS_REGION_LIST_MAX;
    BLOGD_RAW("MW notify lists, num=%u\n", data.ui2_list_num);
    for (uint16_t i = 0; i < count && i < kLoggedLists; ++i) {
        char name[SB_DVBS_REGION_LIST_NAME_SIZE + 1] = {};
        memcpy(name, data.at_list[i].ac_name, SB_DVBS_REGION_LIST_NAME_SIZE);
        BLOGD_RAW("rec_id=%u name=%s\n", data.at_list[i].ui2_rec_id, name);
    }
    JNIEnv* env = frame.env();
    if (env == nullptr) return;
    ScopedLocalRef<jobjectArray> names(env, listNames(env, data, count));
    env->CallVoidMethod(static_cast<jobject>(pv_nfy_tag), g_onRegionChannelListId, names.get());
    frame.checkCallback("onRegionChannelList");
}

bool offersLists(uint32_t selector) {
    return selector == SB_DVBS_REGION_SELECTOR_A || selector == SB_DVBS_REGION_SELECTOR_B ||
           selector == SB_DVBS_REGION_SELECTOR_C;
}

}  // namespace

class NativeZelTvRegionChannelList : public SatelliteExtension {
public:
    NativeZelTvRegionChannelList(JNIEnv* env, jobject thiz)
        : SatelliteExtension(LOG_TAG),
          mPeer(env, thiz, this, "NativeZelTvRegionChannelList", SCAN_SITE) {}

    void onPreScan(void* scanParams) override;

    /* nativeSetup's own steps: the time zone from element 2, and ask for the lists. */
    void setUp(IntArrayCall<kExtensionArrayLimit>& call) {
        mTimeZone = static_cast<uint16_t>(call[2]);
        mAskForLists = 1;
        SITE_LOGE(call.site(), "[%d] timeZone=%u\n", extensionHandleOf(this), mTimeZone);
    }
    void selectList(JNIEnv* env, jstring name, const ScanSite& site);

protected:
    ~NativeZelTvRegionChannelList() override = default;

private:
    int32_t _set_time_zone();

    uint8_t mAskForLists = 0;
    char mSelected[SB_DVBS_SVL_NAME_SIZE] = {};
    uint16_t mTimeZone = 0;
    ExtensionPeer mPeer;
};

void NativeZelTvRegionChannelList::onPreScan(void* scanParams) {
    XLOGI(" enter\n");
    SB_DVBS_SCAN_PARAMS* block = satelliteBlockOf(scanParams, SCAN_SITE);
    if (block != nullptr && offersLists(block->ui4_operator)) {
        block->b_get_info = mAskForLists;
        if (mAskForLists != 0) {
            block->pf_get_info_nfy = _dvbs_get_info_nfy_fct;
            block->pv_get_info_nfy_tag = mPeer.object();
            XLOGI(" pv_get_info_nfy_tag=%p\n", mPeer.object());
        } else {
            block->pf_get_info_nfy = nullptr;
            block->pv_get_info_nfy_tag = nullptr;
            static_assert(sizeof(block->s_svl_name) == sizeof(mSelected), "32-byte list name");
            memcpy(block->s_svl_name, mSelected, sizeof(mSelected));
            XLOGI(" s_user_selected=%s\n", mSelected);
        }
    }
    int32_t i4_ret = _set_time_zone();
    if (i4_ret != MWR_OK) {
        XLOG_AT(BRINOVA_LOG_ERROR, "INFO ", " _set_time_zone error, i4_ret=%d\n", i4_ret);
    }
    XLOGI(" leave\n");
}

int32_t NativeZelTvRegionChannelList::_set_time_zone() {
    int32_t i4_ret = x_sb_set(builderHandle(), SB_KEY_TYPE_TIME_ZONE, nullptr, sizeof(mTimeZone),
                              &mTimeZone);
    if (i4_ret != MWR_OK) {
        XLOG_AT(BRINOVA_LOG_ERROR, "INFO ",
                " set time zone error, i4_ret=%d, mServiceBuilder=0x%x\n", i4_ret, builderHandle());
    }
    return i4_ret;
}

void NativeZelTvRegionChannelList::selectList(JNIEnv* env, jstring name, const ScanSite& site) {
    // A null name selects the empty name (ScopedUtfChars would throw on it).
    std::optional<ScopedUtfChars> chars;
    if (name != nullptr) chars.emplace(env, name);
    const char* text = chars && chars->c_str() != nullptr ? chars->c_str() : "";
    SITE_LOGD(site, "[Set s_sel_region_CHList:%s]\n", text);
    memset(mSelected, 0, sizeof(mSelected));
    strncpy(mSelected, text, sizeof(mSelected) - 1);
    mAskForLists = 0;
}

}  // namespace android

using namespace android;

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanRegionCHList_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvRegionChannelList>(env, thiz, array, SCAN_SITE,
                                                        &NativeZelTvRegionChannelList::setUp);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_ZelTvScanRegionCHList_nativeSetRegionChannelList(JNIEnv* env,
                                                                                  jobject,
                                                                                  jintArray array,
                                                                                  jstring name) {
    // An array without a handle in element 1 (one element long, or 0 there) names no list
    // extension: logged, nothing chosen.
    return satelliteArrayCall<NativeZelTvRegionChannelList>(
        env, array, SCAN_SITE, "ptRegionCHList", " ptRegionCHList is NULL!\n",
        [env, name](NativeZelTvRegionChannelList& region,
                    const IntArrayCall<kExtensionArrayLimit>& call) {
            region.selectList(env, name, call.site());
            return true;  // the array goes back with element 0 = 0
        });
}

namespace {

const JNINativeMethod gMethods[] = {
    {"nativeSetRegionChannelList", "([ILjava/lang/String;)I",
     reinterpret_cast<void*>(
         Java_com_brinova_tv_orvella_scan_ZelTvScanRegionCHList_nativeSetRegionChannelList)},
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanRegionCHList_nativeSetup)},
};

const MethodSpec gCallbacks[] = {
    {&gFields.getNativeExtension, "getNativeExtension", "()J",
     "!(gFields.getNativeExtension != __null)"},
    {&g_onRegionChannelListId, "onRegionChannelList", "([Ljava/lang/String;)V",
     "!(g_onRegionChannelListId != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvScanRegionCHList(JNIEnv* env) {
    return registerExtensionClass(env, kRegionListClass, gMethods, tableSize(gMethods), gCallbacks,
                                  std::size(gCallbacks), SCAN_SITE);
}
