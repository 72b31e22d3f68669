// LCN conflicts of a terrestrial scan: at the end of the scan Java is told that services
// claim the same channel number, and reads and writes the builder's conflict groups,
// garbage information and per-service LCN information through five natives.
#define LOG_TAG "ZelTvLcnConflict_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvLcnConflict"

#include "ScanExtensionCommon.h"
#include "ScanRegistrations.h"

namespace android {

namespace {

const char* const kLcnConflictClass = "com/brinova/tv/orvella/services/scan/ZelTvScanLcnConflict";

jmethodID g_onLcnConflictId;
jmethodID g_onLcnInfo;

// This class's int[] are short: at most 10 elements, also for nativeSetup.
constexpr jsize kLcnArrayLimit = 10;
using LcnCall = IntArrayCall<kLcnArrayLimit>;

}  // namespace

class NativeZelTvLcnConflict : public JINativeScanExtension {
public:
    NativeZelTvLcnConflict(JNIEnv* env, jobject thiz)
        : mPeer(env, thiz, this, "NativeZelTvLcnConflict", SCAN_SITE,
                ExtensionPeer::CreateLog::kBare) {}

    int attach(unsigned int builderHandle) override {
        mBuilderHandle = builderHandle;
        return 0;
    }
    int detach(unsigned int) override {
        mBuilderHandle = 0;
        return 0;
    }
    void onScanComplete(int complete) override;

    // Each answers its status: 0, or -6 when the builder refused.
    jint _dvbt_ui_op_need_before_scan_end_ITA_get_grp(LcnCall& call);
    jint _dvbt_ITA_get_garbage_info(LcnCall& call);
    jint _dvbt_ITA_set_garbage_info(LcnCall& call);
    jint _dvbt_ITA_get_svc_lcn_info_by_idx(LcnCall& call);
    jint _dvbt_ITA_set_svc_lcn_info(LcnCall& call);

protected:
    ~NativeZelTvLcnConflict() override = default;

private:
    BuilderHandle mBuilderHandle{0};
    ExtensionPeer mPeer;
};

void NativeZelTvLcnConflict::onScanComplete(int) {
    uint8_t conflicts = 0;
    if (getKey(mBuilderHandle, SB_KEY_TYPE_LCN_CONFLICT_NUM, nullptr, &conflicts,
               sizeof(conflicts)) != MWR_OK ||
        conflicts == 0) {
        return;
    }
    XLOGI("[conflt_num: %d] \n", conflicts);
    callJavaCallbacks(mPeer.object(), {g_onLcnConflictId, g_onLcnInfo}, SCAN_SITE);
}

// [2] group index, [3] channel index in; [4] LCN, [5] SVL id, [6] SVL record id out.
jint NativeZelTvLcnConflict::_dvbt_ui_op_need_before_scan_end_ITA_get_grp(LcnCall& call) {
    BLOGD("[ptLcnConflict:%d][ui2_grop_idx:%d][ui2_ch_idx:%d]\n", call.handle(), call[2], call[3]);
    // The builder takes the group index as 8 bits.
    const uint8_t groupIndex = static_cast<uint8_t>(call[2]);
    SB_LCN_CONFLICT_GROUP_T group;
    x_memset(&group, 0, sizeof(group));
    group.ui1_grp_idx = groupIndex;
    if (getKey(mBuilderHandle, SB_KEY_TYPE_LCN_CONFLICT_GROUP, keyIndex(groupIndex), &group,
               sizeof(group)) != MWR_OK) {
        return kExtensionFailed;
    }
    SB_LCN_CONFLICT_CHANNEL_T channel;
    x_memset(&channel, 0, sizeof(channel));
    channel.ui2_ch_idx = static_cast<uint16_t>(call[3]);
    if (getKey(mBuilderHandle, SB_KEY_TYPE_LCN_CONFLICT_CHANNEL, keyIndex(groupIndex), &channel,
               sizeof(channel)) != MWR_OK) {
        return kExtensionFailed;
    }
    call[4] = group.ui2_lcn;
    call[5] = channel.ui2_svl_id;
    call[6] = channel.ui2_svl_rec_id;
    BLOGD("[ui2_lcn:%d][ui2_svl_id:%d][ui2_svl_rec_id:%d]\n", group.ui2_lcn, channel.ui2_svl_id,
          channel.ui2_svl_rec_id);
    return 0;
}

// [2] TV, [3] radio, [4] data out.
jint NativeZelTvLcnConflict::_dvbt_ITA_get_garbage_info(LcnCall& call) {
    SB_LCN_GARBAGE_INFO_T info;
    x_memset(&info, 0, sizeof(info));
    if (getKey(mBuilderHandle, SB_KEY_TYPE_LCN_GARBAGE_INFO, nullptr, &info, sizeof(info)) !=
        MWR_OK) {
        return kExtensionFailed;
    }
    call[2] = info.ui2_tv;
    call[3] = info.ui2_radio;
    call[4] = info.ui2_data;
    BLOGD("[tv:%d][radio:%d][data:%d]\n", info.ui2_tv, info.ui2_radio, info.ui2_data);
    return 0;
}

// [2] TV, [3] radio, [4] data in.
jint NativeZelTvLcnConflict::_dvbt_ITA_set_garbage_info(LcnCall& call) {
    BLOGD("[SetGarbageInfo:%d][%d,%d,%d]\n", call.handle(), call[2], call[3], call[4]);
    SB_LCN_GARBAGE_INFO_T info;
    info.ui2_tv = static_cast<uint16_t>(call[2]);
    info.ui2_radio = static_cast<uint16_t>(call[3]);
    info.ui2_data = static_cast<uint16_t>(call[4]);
    if (x_sb_set(mBuilderHandle, SB_KEY_TYPE_SET_LCN_GARBAGE_INFO, nullptr, sizeof(info), &info) !=
        MWR_OK) {
        BLOGD("[SetGarbageInfo FAIL]\n");
        return kExtensionFailed;
    }
    BLOGD("[SetGarbageInfo OK]\n");
    return 0;
}

// [2] service index in; [3] to [6] the four 16-bit values, [7], [8] the two bytes out.
jint NativeZelTvLcnConflict::_dvbt_ITA_get_svc_lcn_info_by_idx(LcnCall& call) {
    const uint16_t index = static_cast<uint16_t>(call[2]);
    BLOGD("[ptLcnConflict:%d][ui2_svc_idx:%d]\n", call.handle(), index);
    SB_SVC_LCN_INFO_T info;
    x_memset(&info, 0, sizeof(info));
    if (getKey(mBuilderHandle, SB_KEY_TYPE_SVC_LCN_INFO, keyIndex(index), &info, sizeof(info)) !=
        MWR_OK) {
        return kExtensionFailed;
    }
    for (size_t i = 0; i < 4; ++i) call[3 + i] = info.aui2_value[i];
    call[7] = info.aui1_value[0];
    call[8] = info.aui1_value[1];
    BLOGD("[idx:%d][%d][%d][%d][%d][%d][%d]\n", index, info.aui2_value[0], info.aui2_value[1],
          info.aui2_value[2], info.aui2_value[3], info.aui1_value[0], info.aui1_value[1]);
    return 0;
}

// [2] number of services, [3] service index, [4] to [7] the four 16-bit values, [8], [9] the
// two bytes in. Index 0 also tells the builder the number, so Java sends it first.
jint NativeZelTvLcnConflict::_dvbt_ITA_set_svc_lcn_info(LcnCall& call) {
    BLOGD("[Set ptLcnConflict:%d][num:%d][idx:%d][%d][%d][%d][%d][%d][%d]\n", call.handle(),
          call[2], call[3], call[4], call[5], call[6], call[7], call[8], call[9]);
    const uint16_t total = static_cast<uint16_t>(call[2]);
    const uint16_t index = static_cast<uint16_t>(call[3]);
    if (index == 0 && x_sb_set(mBuilderHandle, SB_KEY_TYPE_SVC_LCN_NUM, nullptr, sizeof(total),
                               keyValue(total)) != MWR_OK) {
        return kExtensionFailed;
    }
    SB_SVC_LCN_INFO_T info;
    for (size_t i = 0; i < 4; ++i) info.aui2_value[i] = static_cast<uint16_t>(call[4 + i]);
    info.aui1_value[0] = static_cast<uint8_t>(call[8]);
    info.aui1_value[1] = static_cast<uint8_t>(call[9]);
    if (x_sb_set(mBuilderHandle, SB_KEY_TYPE_SET_SVC_LCN_INFO, keyIndex(index), sizeof(info),
                 &info) != MWR_OK) {
        BLOGD("[SetSvcLcnInfo FAIL]\n");
        return kExtensionFailed;
    }
    BLOGD("[SetSvcLcnInfo OK]\n");
    return 0;
}

}  // namespace android

using namespace android;

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvLcnConflict, kLcnArrayLimit>(env, thiz, array, SCAN_SITE);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict_nativeGetLcnConflict(JNIEnv* env, jobject,
                                                                           jintArray array) {
    return extensionCall(env, array, SCAN_SITE,
                           &NativeZelTvLcnConflict::_dvbt_ui_op_need_before_scan_end_ITA_get_grp);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict_nativeGetLcnGarbageInfo(JNIEnv* env, jobject,
                                                                              jintArray array) {
    return extensionCall(env, array, SCAN_SITE,
                           &NativeZelTvLcnConflict::_dvbt_ITA_get_garbage_info);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict_nativeGetServiceLcnInfo(JNIEnv* env, jobject,
                                                                              jintArray array) {
    return extensionCall(env, array, SCAN_SITE,
                           &NativeZelTvLcnConflict::_dvbt_ITA_get_svc_lcn_info_by_idx);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict_nativeSetGarbageInfo(JNIEnv* env, jobject,
                                                                           jintArray array) {
    return extensionCall(env, array, SCAN_SITE,
                           &NativeZelTvLcnConflict::_dvbt_ITA_set_garbage_info);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict_nativeSetSvcLcnInfo(JNIEnv* env, jobject,
                                                                          jintArray array) {
    return extensionCall(env, array, SCAN_SITE,
                           &NativeZelTvLcnConflict::_dvbt_ITA_set_svc_lcn_info);
}

namespace {

const JNINativeMethod gMethods[] = {
    {"nativeGetLcnConflict", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict_nativeGetLcnConflict)},
    {"nativeGetLcnGarbageInfo", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict_nativeGetLcnGarbageInfo)},
    {"nativeGetServiceLcnInfo", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict_nativeGetServiceLcnInfo)},
    {"nativeSetGarbageInfo", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict_nativeSetGarbageInfo)},
    {"nativeSetSvcLcnInfo", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict_nativeSetSvcLcnInfo)},
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict_nativeSetup)},
};

const MethodSpec gCallbacks[] = {
    {&g_onLcnConflictId, "onLcnConflict", "()V", "!(g_onLcnConflictId != __null)"},
    {&g_onLcnInfo, "onLcnInfo", "()V", "!(g_onLcnInfo != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvScanLcnConflict(JNIEnv* env) {
    return registerExtensionClass(env, kLcnConflictClass, gMethods, tableSize(gMethods),
                                  gCallbacks, std::size(gCallbacks), SCAN_SITE);
}
