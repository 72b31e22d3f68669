// Favourite network of a terrestrial scan: at the end of the scan the candidates are taken
// from the builder's network list, Java chooses one and its record id goes to the builder.
#define LOG_TAG "ZelTvFavNetwork_JNI"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_NativeZelTvFavNetwork"

#include "ScanExtensionCommon.h"
#include "ScanRegistrations.h"

namespace android {

namespace {

const char* const kFavNetworkClass = "com/brinova/tv/orvella/services/scan/ZelTvScanFavNetwork";

jmethodID g_onFavNetworkId;

// One favourite-network candidate, this library's own record.
struct FavNetworkCandidate {
    uint16_t ui2_nwk_rec_id;          // record id in the builder's network list
    char ac_name[NWL_NAME_LEN];       // the network record's name bytes
    uint8_t ui1_terminator;           // 0
    uint8_t ui1_reserved;             // left as cleared
};
static_assert(sizeof(FavNetworkCandidate) == 36, "FavNetworkCandidate size");
static_assert(offsetof(FavNetworkCandidate, ac_name) == 2, "FavNetworkCandidate.ac_name offset");
static_assert(offsetof(FavNetworkCandidate, ui1_terminator) == 34,
              "FavNetworkCandidate.ui1_terminator offset");

// int[] layout of the two natives.
enum : size_t { kIndex = 2, kName = 3 };
constexpr size_t kNameMaxElements = 33;

}  // namespace

class NativeZelTvFavNetwork : public JINativeScanExtension {
public:
    NativeZelTvFavNetwork(JNIEnv* env, jobject thiz)
        : mPeer(env, thiz, this, "NativeZelTvFavNetwork", SCAN_SITE) {}

    int attach(unsigned int builderHandle) override {
        mBuilderHandle = builderHandle;
        BLOGD_RAW("attach");
        return 0;
    }
    int detach(unsigned int) override {
        mBuilderHandle = 0;
        BLOGD_RAW("detach");
        return 0;
    }
    void onScanComplete(int complete) override;

    jint getFavNetwork(IntArrayCall<kExtensionArrayLimit>& call);
    jint setFavNetwork(IntArrayCall<kExtensionArrayLimit>& call);

protected:
    ~NativeZelTvFavNetwork() override = default;  // the candidate table is never freed

private:
    // The candidate walk; true when the user must choose.
    bool _dvbt_ui_op_need_before_scan_end_NOR();

    BuilderHandle mBuilderHandle{0};
    FavNetworkCandidate* mCandidates = nullptr;
    uint32_t mCandidateCount = 0;  // 16-bit count
    ExtensionPeer mPeer;
};

bool NativeZelTvFavNetwork::_dvbt_ui_op_need_before_scan_end_NOR() {
    HANDLE_T nwl = NULL_HANDLE;
    if (getKey(mBuilderHandle, SB_KEY_TYPE_NWL_HANDLE, nullptr, &nwl, sizeof(nwl)) != MWR_OK ||
        nwl == NULL_HANDLE) {
        return false;
    }
    NWL_REC_T record;
    x_memset(&record, 0, sizeof(record));
    uint16_t recordCount = 0;
    uint32_t version = 0;
    if (x_nwl_get_num_rec(nwl, &recordCount, &version) != MWR_OK || recordCount == 0) {
        return false;
    }
    size_t tableBytes = recordCount * sizeof(FavNetworkCandidate);
    auto* table = static_cast<FavNetworkCandidate*>(x_mem_alloc(tableBytes));
    // Cleared before the allocation is tested, as it always was, but never through the null
    // of a refused allocation; a previous table is not released either way.
    if (table != nullptr) {
        x_memset(table, 0, tableBytes);
    }
    if (table == nullptr) {
        mCandidateCount = 0;
        mCandidates = nullptr;
        return false;
    }
    uint16_t count = 0;
    uint16_t processed = 0;
    // Each 16-bit id is tried once at most (1 to 65535, then 0 as the id wraps): a list that
    // counts more records than its ids give (two records under one id) ends the walk there
    // instead of going round for ever.
    uint32_t tried = 0;
    for (uint16_t id = 1; processed < recordCount && tried <= 0xFFFF; ++id, ++tried) {
        if (x_nwl_get_rec(nwl, id, &record, &version) != MWR_OK) {
            continue;  // a missing id is not counted
        }
        if (record.ui1_flags & NWL_FLAG_FAV_CANDIDATE) {
            FavNetworkCandidate& candidate = table[count];
            candidate.ui2_nwk_rec_id = record.ui2_nwl_rec_id;
            x_memcpy(candidate.ac_name, record.ac_nw_name, sizeof(candidate.ac_name));
            candidate.ui1_terminator = 0;
            ++count;
        }
        ++processed;
    }
    mCandidates = table;
    mCandidateCount = count;
    return count >= 2;
}

void NativeZelTvFavNetwork::onScanComplete(int) {
    XLOGI(" enter\n");
    if (!_dvbt_ui_op_need_before_scan_end_NOR()) {
        return;
    }
    // Java reads the candidates and chooses through the natives before this returns.
    callJavaCallbacks(mPeer.object(), {g_onFavNetworkId}, SCAN_SITE);
}

jint NativeZelTvFavNetwork::getFavNetwork(IntArrayCall<kExtensionArrayLimit>& call) {
    uint16_t index = static_cast<uint16_t>(call[kIndex]);
    SITE_LOGD(call.site(), "[Get ptFavNetwork:%d][ui2_network_idx:%d]\n", call.handle(), index);
    SITE_LOG_RAW(call.site(), BRINOVA_LOG_DEBUG, "{DVBT}_dvbt_ui_op_need_before_scan_end_NOR_get_fav_nwk:ui2_network_num[%d], "
              "ui2_network_idx:%d\n",
              mCandidateCount, index);
    // Index 0 rebuilds the table, so a reader starting over sees the builder's current list.
    if (index == 0 && !_dvbt_ui_op_need_before_scan_end_NOR()) {
        return kExtensionFailed;
    }
    if (index >= mCandidateCount) {
        return kExtensionFailed;
    }
    FavNetworkCandidate candidate;
    x_memcpy(&candidate, &mCandidates[index], sizeof(candidate));
    SITE_LOGD(call.site(), "[ui2_nwk_rec_id:%d]\n", candidate.ui2_nwk_rec_id);
    putNameElements(call, kName, candidate.ac_name, sizeof(candidate.ac_name), kNameMaxElements);
    return 0;
}

jint NativeZelTvFavNetwork::setFavNetwork(IntArrayCall<kExtensionArrayLimit>& call) {
    uint16_t index = static_cast<uint16_t>(call[kIndex]);
    SITE_LOGD(call.site(), "[Set ptFavNetwork:%d][ui2_network_idx:%d]\n", call.handle(), index);
    if (index < mCandidateCount &&
        x_sb_set(mBuilderHandle, SB_KEY_TYPE_FAV_NWL_REC_ID, nullptr, sizeof(uint16_t),
                 keyValue(mCandidates[index].ui2_nwk_rec_id)) == MWR_OK) {
        SITE_LOGD(call.site(), "[Set ptFavNetwork OK]\n");
        return 0;
    }
    SITE_LOGD(call.site(), "[Set ptFavNetwork FAIL]\n");
    return kExtensionFailed;
}

}  // namespace android

using namespace android;

extern "C" SCAN_JNI_EXPORT jint Java_com_brinova_tv_orvella_scan_ZelTvScanFavNetwork_nativeSetup(
    JNIEnv* env, jobject thiz, jintArray array) {
    return setupExtension<NativeZelTvFavNetwork>(env, thiz, array, SCAN_SITE);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_ZelTvScanFavNetwork_nativeGetFavNetwork(JNIEnv* env, jobject,
                                                                         jintArray array) {
    return extensionCall(env, array, SCAN_SITE, &NativeZelTvFavNetwork::getFavNetwork);
}

extern "C" SCAN_JNI_EXPORT jint
Java_com_brinova_tv_orvella_scan_ZelTvScanFavNetwork_nativeSetFavNetwork(JNIEnv* env, jobject,
                                                                         jintArray array) {
    return extensionCall(env, array, SCAN_SITE, &NativeZelTvFavNetwork::setFavNetwork);
}

namespace {

const JNINativeMethod gMethods[] = {
    {"nativeGetFavNetwork", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanFavNetwork_nativeGetFavNetwork)},
    {"nativeSetFavNetwork", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanFavNetwork_nativeSetFavNetwork)},
    {"nativeSetup", "([I)I",
     reinterpret_cast<void*>(Java_com_brinova_tv_orvella_scan_ZelTvScanFavNetwork_nativeSetup)},
};

const MethodSpec gCallbacks[] = {
    {&g_onFavNetworkId, "onFavNetwork", "()V", "!(g_onFavNetworkId != __null)"},
};

}  // namespace

int register_com_brinova_tv_orvella_scan_ZelTvScanFavNetwork(JNIEnv* env) {
    return registerExtensionClass(env, kFavNetworkClass, gMethods, tableSize(gMethods), gCallbacks,
                                  std::size(gCallbacks), SCAN_SITE);
}
