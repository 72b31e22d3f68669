// Target region of a terrestrial scan: at the end of the scan the builder's region table is
// fetched, Java chooses a region and it goes back to the builder; a region chosen in
// advance reaches the builder when the extension is attached.
#define LOG_TAG "ZelTvTargetRegion_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvTargetRegion"

#include "ScanExtensionCommon.h"
#include "ScanRegistrations.h"

namespace android {

namespace {

const char* const kTargetRegionClass = "com/brinova/tv/orvella/services/scan/ZelTvScanTargetRegion";

jmethodID g_onTargetRegionId;

using RegionCall = IntArrayCall<kExtensionArrayLimit>;

// int[] layouts: a region key from element 2 (set natives) or 3 (get), a name from 7.
enum : size_t { kIndex = 2, kKeyIn = 2, kKeyOut = 3, kName = 7, kConflict = 2 };
constexpr size_t kNameMaxElements = 33;
constexpr size_t kCodes = 3;

SB_REGION_KEY_T regionKeyFrom(RegionCall& call, size_t from) {
    SB_REGION_KEY_T key;
    x_memset(&key, 0, sizeof(key));
    key.ui1_level = static_cast<uint8_t>(call[from]);
    for (size_t i = 0; i < kCodes; ++i) key.ui2_code[i] = static_cast<uint16_t>(call[from + 1 + i]);
    return key;
}

// Same level, and the same codes as far as the level goes.
bool regionMatches(const SB_REGION_KEY_T& record, const SB_REGION_KEY_T& key) {
    if (record.ui1_level != key.ui1_level) return false;
    for (size_t i = 0; i < key.ui1_level && i < kCodes; ++i) {
        if (record.ui2_code[i] != key.ui2_code[i]) return false;
    }
    return true;
}

}  // namespace

class NativeZelTvTargetRegion : public JINativeScanExtension {
public:
    NativeZelTvTargetRegion(JNIEnv* env, jobject thiz)
        : mPeer(env, thiz, this, "NativeZelTvTargetRegion", SCAN_SITE) {}

    int attach(unsigned int builderHandle) override;
    int detach(unsigned int) override {
        mBuilderHandle = 0;
        return 0;
    }
    void onScanComplete(int complete) override;

    jint getTargetRegion(RegionCall& call);
    jint setTargetRegion(RegionCall& call);
    jint setSelectedTargetRegion(RegionCall& call);
    jint _dvbt_ui_op_get_if_lcn_conflict(RegionCall& call);

protected:
    ~NativeZelTvTargetRegion() override = default;  // the region table is never freed

private:
    // The region fetch; true when at least one region came (the user must choose).
    bool _dvbt_ui_op_need_before_scan_end_UK();

    BuilderHandle mBuilderHandle{0};
    SB_REGION_KEY_T mSelectedRegion{};
    SB_REGION_REC_T* mRegions = nullptr;
    uint16_t mRegionCount = 0;
    ExtensionPeer mPeer;
};

int NativeZelTvTargetRegion::attach(unsigned int builderHandle) {
    mBuilderHandle = builderHandle;
    BLOGD_RAW("attach");
    // The preselection reaches the builder only here: Java sets it before adding us.
    return x_sb_set(mBuilderHandle, SB_KEY_TYPE_SELECTED_TARGET_REGION, nullptr,
                    sizeof(mSelectedRegion), &mSelectedRegion);
}

bool NativeZelTvTargetRegion::_dvbt_ui_op_need_before_scan_end_UK() {
    BLOGD_RAW("{DVBT}ui2_region_num from [%d] to [0] to get new region\n", mRegionCount);
    mRegionCount = 0;  // the old table stays until a fetch replaces it
    SB_REGION_KEY_T anyRegion;
    x_memset(&anyRegion, 0, sizeof(anyRegion));
    uint16_t count = 0;
    if (getKey(mBuilderHandle, SB_KEY_TYPE_REGION_NUM, &anyRegion, &count, sizeof(count)) !=
            MWR_OK ||
        count == 0) {
        return false;
    }
    const uint32_t tableBytes = count * sizeof(SB_REGION_REC_T);
    auto* table = static_cast<SB_REGION_REC_T*>(x_mem_alloc(tableBytes));
    if (table == nullptr) {
        return false;
    }
    if (getKey(mBuilderHandle, SB_KEY_TYPE_REGION_TABLE, &anyRegion, table, tableBytes) != MWR_OK) {
        x_mem_free(table);
        return false;
    }
    if (mRegions != nullptr) {
        x_mem_free(mRegions);
    }
    mRegions = table;
    mRegionCount = count;
    return true;
}

void NativeZelTvTargetRegion::onScanComplete(int) {
    XLOGI(" enter\n");
    // One region is enough to ask (the favourite network asks from two).
    if (_dvbt_ui_op_need_before_scan_end_UK()) {
        callJavaCallbacks(mPeer.object(), {g_onTargetRegionId}, SCAN_SITE);
    }
}

// [2] region index in; [3] level, [4] to [6] codes, [7] onward the name out.
jint NativeZelTvTargetRegion::getTargetRegion(RegionCall& call) {
    const uint16_t index = static_cast<uint16_t>(call[kIndex]);
    SITE_LOGD(call.site(), "[Get ptTargetRegion:%d][ui2_region_idx:%d]\n", call.handle(), index);
    SITE_LOG_RAW(call.site(), BRINOVA_LOG_DEBUG, "{DVBT}_dvbt_ui_op_need_before_scan_end_UK_get_region:ui2_region_num[%d], "
              "ui2_region_idx:%d\n",
              mRegionCount, index);
    // Index 0 fetches the table again, so a reader starting over sees the builder's own.
    if (index == 0 && !_dvbt_ui_op_need_before_scan_end_UK()) {
        SITE_LOG_RAW(call.site(), BRINOVA_LOG_DEBUG, "{DVBT}_dvbt_ui_op_need_before_scan_end_UK return FALSE\n");
        return kExtensionFailed;
    }
    if (index >= mRegionCount) {
        return kExtensionFailed;
    }
    SB_REGION_REC_T region;
    x_memcpy(&region, &mRegions[index], sizeof(region));
    const SB_REGION_KEY_T& key = region.t_key;
    SITE_LOGD(call.site(), "[ui1_level:%d][code_0:%d][code_1:%d][code_2:%d]\n", key.ui1_level, key.ui2_code[0],
          key.ui2_code[1], key.ui2_code[2]);
    call[kKeyOut] = key.ui1_level;
    for (size_t i = 0; i < kCodes; ++i) call[kKeyOut + 1 + i] = key.ui2_code[i];
    putNameElements(call, kName, region.ac_name, sizeof(region.ac_name), kNameMaxElements);
    return 0;
}

// [2] level, [3] to [5] codes in. Of several matching regions the last one is set.
jint NativeZelTvTargetRegion::setTargetRegion(RegionCall& call) {
    const SB_REGION_KEY_T key = regionKeyFrom(call, kKeyIn);
    if (mRegionCount == 0) {
        return kExtensionFailed;
    }
    int chosen = -1;
    for (uint16_t i = 0; i < mRegionCount; ++i) {
        if (regionMatches(mRegions[i].t_key, key)) chosen = i;
    }
    if (chosen < 0) {
        return kExtensionFailed;
    }
    SITE_LOGD(call.site(), "[Set ptTargetRegion:%d][ui2_region_idx:%d]\n", call.handle(), chosen);
    // The record goes by pointer; its first 8 bytes, the key, are what the builder reads.
    if (x_sb_set(mBuilderHandle, SB_KEY_TYPE_SET_REGION, nullptr, sizeof(SB_REGION_KEY_T),
                 &mRegions[chosen]) != MWR_OK) {
        SITE_LOGD(call.site(), "[Set ptTargetRegion FAIL]\n");
        return kExtensionFailed;
    }
    SITE_LOGD(call.site(), "[Set ptTargetRegion OK]\n");
    return 0;
}

// [2] level, [3] to [5] codes in: kept for the next attach.
jint NativeZelTvTargetRegion::setSelectedTargetRegion(RegionCall& call) {
    mSelectedRegion = regionKeyFrom(call, kKeyIn);
    SITE_LOGD(call.site(), "[%d, %d, %d, %d]\n", mSelectedRegion.ui1_level, mSelectedRegion.ui2_code[0],
          mSelectedRegion.ui2_code[1], mSelectedRegion.ui2_code[2]);
    return 0;
}

// [2] out: 1 when an LCN conflict remains with the regions of the last fetch.
jint NativeZelTvTargetRegion::_dvbt_ui_op_get_if_lcn_conflict(RegionCall& call) {
    bool conflict = false;
    uint8_t conflicts = 0;
    if (getKey(mBuilderHandle, SB_KEY_TYPE_LCN_CONFLICT_NUM, nullptr, &conflicts,
               sizeof(conflicts)) == MWR_OK &&
        conflicts != 0) {
        XLOGI("[conflt_num: %d] \n", conflicts);
        SB_REGION_REC_T preferred;
        x_memset(&preferred, 0, sizeof(preferred));
        int32_t ret = getKey(mBuilderHandle, SB_KEY_TYPE_QUERY_PREFERED_REGION, nullptr,
                             &preferred, sizeof(preferred));
        XLOGI("[SB_KEY_TYPE_QUERY_PREFERED_REGION: %d] \n", ret);
        // A single region leaves nothing to resolve, whatever the builder says.
        conflict = ret == MWR_OK && mRegionCount > 1;
    }
    if (conflict) {
        BLOGD("has lcn conflict\n");
    } else {
        BLOGD("no lcn conflict\n");
    }
    call[kConflict] = conflict ? 1 : 0;
    return 0;
}

}  // namespace android

using namespace android;

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanTargetRegion_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvTargetRegion>(env, thiz, array, SCAN_SITE);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_ZelTvScanTargetRegion_nativeGetTargetRegion(JNIEnv* env, jobject,
                                                                             jintArray array) {
    return extensionCall(env, array, SCAN_SITE, &NativeZelTvTargetRegion::getTargetRegion);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_ZelTvScanTargetRegion_nativeSetTargetRegion(JNIEnv* env, jobject,
                                                                             jintArray array) {
    return extensionCall(env, array, SCAN_SITE, &NativeZelTvTargetRegion::setTargetRegion);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_ZelTvScanTargetRegion_nativeGetIfLcnConflict(JNIEnv* env, jobject,
                                                                              jintArray array) {
    return extensionCall(env, array, SCAN_SITE,
                            &NativeZelTvTargetRegion::_dvbt_ui_op_get_if_lcn_conflict);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_ZelTvScanTargetRegion_nativeSetSelectedTargetRegion(
    JNIEnv* env, jobject, jintArray array) {
    return extensionCall(env, array, SCAN_SITE,
                            &NativeZelTvTargetRegion::setSelectedTargetRegion);
}

namespace {

const JNINativeMethod gMethods[] = {
    {"nativeGetTargetRegion", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanTargetRegion_nativeGetTargetRegion)},
    {"nativeSetTargetRegion", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanTargetRegion_nativeSetTargetRegion)},
    {"nativeGetIfLcnConflict", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanTargetRegion_nativeGetIfLcnConflict)},
    {"nativeSetSelectedTargetRegion", "([I)I",
     reinterpret_cast<void*>(
         Java_com_brinova_tv_orvella_scan_ZelTvScanTargetRegion_nativeSetSelectedTargetRegion)},
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanTargetRegion_nativeSetup)},
};

const MethodSpec gCallbacks[] = {
    {&g_onTargetRegionId, "onTargetRegion", "()V", "!(g_onTargetRegionId != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvScanTargetRegion(JNIEnv* env) {
    return registerExtensionClass(env, kTargetRegionClass, gMethods, tableSize(gMethods),
                                  gCallbacks, std::size(gCallbacks), SCAN_SITE);
}
