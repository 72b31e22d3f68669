// LCN v2 channel list of a terrestrial scan: when the scan found two or more channel lists,
// Java reads them and chooses one; a list chosen in advance reaches the builder when the
// extension is attached.
#define LOG_TAG "ZelTvLcnV2ChList_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvLcnV2ChList"

#include "ScanExtensionCommon.h"
#include "ScanRegistrations.h"

namespace android {

namespace {

const char* const kLcnV2Class = "com/brinova/tv/orvella/services/scan/ZelTvScanLcnV2ChannelList";

jmethodID g_onLcnV2ChListId;

using ChListCall = IntArrayCall<kExtensionArrayLimit>;

// int[] layouts: [2] index or id in; [3] id and [4] onward the name out.
enum : size_t { kIndexOrId = 2, kId = 3, kName = 4 };

}  // namespace

class NativeZelTvLcnV2ChList : public JINativeScanExtension {
public:
    NativeZelTvLcnV2ChList(JNIEnv* env, jobject thiz)
        : mPeer(env, thiz, this, "NativeZelTvLcnV2ChList", SCAN_SITE) {}

    int attach(unsigned int builderHandle) override {
        mBuilderHandle = builderHandle;
        _dvbt_set_selected_lcnv2_chlist();
        return 0;
    }
    int detach(unsigned int) override {
        mBuilderHandle = 0;
        return 0;
    }
    void onScanComplete(int complete) override { _ui_op_need_before_scan_end_LCNv2(); }

    jint _ui_op_need_before_scan_end_LCNv2_get_ch_list(ChListCall& call);
    jint _ui_op_need_before_scan_end_LCNv2_set_ch_list(ChListCall& call);
    jint setSelectedLcnV2ChListId(ChListCall& call);

protected:
    ~NativeZelTvLcnV2ChList() override = default;

private:
    void _dvbt_set_selected_lcnv2_chlist();
    void _ui_op_need_before_scan_end_LCNv2();

    BuilderHandle mBuilderHandle{0};
    uint8_t mPreselected = 0;
    uint8_t mPreselectedId = 0;
    ExtensionPeer mPeer;
};

// The preselection goes by value (key 78), unlike the choice after the scan (key 28).
void NativeZelTvLcnV2ChList::_dvbt_set_selected_lcnv2_chlist() {
    if (!mPreselected) {
        return;
    }
    XLOGI(" enter, id:%d\n", mPreselectedId);
    int32_t ret = x_sb_set(mBuilderHandle, SB_KEY_TYPE_SELECTED_LCNV2_CHLIST, nullptr,
                           sizeof(mPreselectedId), keyValue(mPreselectedId));
    if (ret != MWR_OK) {
        XLOG_AT(BRINOVA_LOG_ERROR, "INFO ", " fail, i4_ret:%d\n", ret);
    }
}

void NativeZelTvLcnV2ChList::_ui_op_need_before_scan_end_LCNv2() {
    uint8_t lists = 0;
    if (getKey(mBuilderHandle, SB_KEY_TYPE_LCNV2_CHLIST_NUM, nullptr, &lists, sizeof(lists)) ==
            MWR_OK &&
        lists >= 2) {
        callJavaCallbacks(mPeer.object(), {g_onLcnV2ChListId}, SCAN_SITE);
    }
}

jint NativeZelTvLcnV2ChList::_ui_op_need_before_scan_end_LCNv2_get_ch_list(ChListCall& call) {
    const uint16_t index = static_cast<uint16_t>(call[kIndexOrId]);
    BLOGD("[ui2_lcnv2_idx:%d]\n", index);
    XLOGI(" enter, idx:%d\n", index);
    SB_LCNV2_CHLIST_REC_T record;
    x_memset(&record, 0, sizeof(record));
    int32_t ret = getKey(mBuilderHandle, SB_KEY_TYPE_LCNV2_CHLIST_INFO, keyIndex(index), &record,
                         sizeof(record));
    if (ret != MWR_OK) {
        XLOGI(" fail, i4_ret:%d\n", ret);
        return kExtensionFailed;
    }
    char name[SB_LCNV2_CHLIST_NAME_LEN + 1] = {};
    x_memcpy(name, record.ac_name, sizeof(record.ac_name));
    XLOGI(" id:%d, name:%s\n", record.ui1_lcnv2_chlist_id, name);
    BLOGD("[ui1_lcnv2_chlist_id:%d, name:%s]\n", record.ui1_lcnv2_chlist_id, name);
    call[kId] = record.ui1_lcnv2_chlist_id;
    putNameElements(call, kName, record.ac_name, sizeof(record.ac_name), sizeof(record.ac_name));
    return 0;
}

jint NativeZelTvLcnV2ChList::_ui_op_need_before_scan_end_LCNv2_set_ch_list(ChListCall& call) {
    uint8_t id = static_cast<uint8_t>(call[kIndexOrId]);
    BLOGD("[Set id:%d]\n", id);
    int32_t ret = x_sb_set(mBuilderHandle, SB_KEY_TYPE_SET_LCNV2_CHLIST, nullptr, sizeof(id), &id);
    if (ret != MWR_OK) {
        XLOGI(" fail, i4_ret:%d\n", ret);
        BLOGD("[Set ptLcnV2ChList FAIL]\n");
        return kExtensionFailed;
    }
    BLOGD("[Set ptLcnV2ChList OK]\n");
    return 0;
}

// Kept for every later attach; a preselection cannot be cleared.
jint NativeZelTvLcnV2ChList::setSelectedLcnV2ChListId(ChListCall& call) {
    mPreselectedId = static_cast<uint8_t>(call[kIndexOrId]);
    mPreselected = 1;
    SITE_LOGD(call.site(), "[id:%d]\n", mPreselectedId);
    return 0;
}

}  // namespace android

using namespace android;

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_NativeScanLcnV2ChannelList_nativeSetup(JNIEnv* env, jobject thiz,
                                                                        jintArray array) {
    return setupExtension<NativeZelTvLcnV2ChList>(env, thiz, array, SCAN_SITE);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_NativeScanLcnV2ChannelList_nativeGetLcnV2ChList(
    JNIEnv* env, jobject, jintArray array) {
    return extensionCall(env, array, SCAN_SITE,
                           &NativeZelTvLcnV2ChList::_ui_op_need_before_scan_end_LCNv2_get_ch_list);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_NativeScanLcnV2ChannelList_nativeSetLcnV2ChListId(
    JNIEnv* env, jobject, jintArray array) {
    return extensionCall(env, array, SCAN_SITE,
                           &NativeZelTvLcnV2ChList::_ui_op_need_before_scan_end_LCNv2_set_ch_list);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_NativeScanLcnV2ChannelList_nativeSetSelectedLcnV2ChListId(
    JNIEnv* env, jobject, jintArray array) {
    return extensionCall(env, array, SCAN_SITE,
                           &NativeZelTvLcnV2ChList::setSelectedLcnV2ChListId);
}

namespace {

const JNINativeMethod gMethods[] = {
    {"nativeGetLcnV2ChList", "([I)I",
     reinterpret_cast<void*>(
         Java_com_brinova_tv_orvella_scan_NativeScanLcnV2ChannelList_nativeGetLcnV2ChList)},
    {"nativeSetLcnV2ChListId", "([I)I",
     reinterpret_cast<void*>(
         Java_com_brinova_tv_orvella_scan_NativeScanLcnV2ChannelList_nativeSetLcnV2ChListId)},
    {"nativeSetSelectedLcnV2ChListId", "([I)I",
     reinterpret_cast<void*>(
         Java_com_brinova_tv_orvella_scan_NativeScanLcnV2ChannelList_nativeSetSelectedLcnV2ChListId)},
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_NativeScanLcnV2ChannelList_nativeSetup)},
};

const MethodSpec gCallbacks[] = {
    {&g_onLcnV2ChListId, "onLcnv2ChannelListConflict", "()V", "!(g_onLcnV2ChListId != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_NativeScanLcnV2ChannelList(JNIEnv* env) {
    return registerExtensionClass(env, kLcnV2Class, gMethods, tableSize(gMethods), gCallbacks,
                                  std::size(gCallbacks), SCAN_SITE);
}
