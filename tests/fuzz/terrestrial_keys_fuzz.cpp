// The terrestrial extensions reading the builder's records: any answer for every key they
// get (any length, per index for the indexed ones) and any network list; then their
// end-of-scan hooks on threads not attached to the VM (Java reads and chooses through the
// natives), and their int[] natives called from Java with any length and elements.
#include "fuzz_support.h"
#include "x_mw_api.h"
#include "zel_sim.h"

namespace {

struct KeySpec {
    uint32_t key;
    bool indexed;
};
// Every key the terrestrial extensions read.
const KeySpec kKeys[] = {
    {SB_KEY_TYPE_LCN_CONFLICT_NUM, false},   {SB_KEY_TYPE_LCN_CONFLICT_GROUP, true},
    {SB_KEY_TYPE_LCN_CONFLICT_CHANNEL, true}, {SB_KEY_TYPE_LCNV2_CHLIST_NUM, false},
    {SB_KEY_TYPE_LCNV2_CHLIST_INFO, true},    {SB_KEY_TYPE_REGION_NUM, false},
    {SB_KEY_TYPE_REGION_TABLE, false},        {SB_KEY_TYPE_QUERY_PREFERED_REGION, false},
    {SB_KEY_TYPE_LCN_GARBAGE_INFO, false},    {SB_KEY_TYPE_SVC_LCN_INFO, true},
};
constexpr HANDLE_T kNetworkList = 0x4E574C;

// The int[] natives of each rig extension, in FuzzRig.extensions order.
const std::vector<std::vector<const char*>> kNatives = {
    {"nativeGetFavNetwork", "nativeSetFavNetwork"},
    {"nativeGetLcnConflict", "nativeGetLcnGarbageInfo", "nativeGetServiceLcnInfo",
     "nativeSetGarbageInfo", "nativeSetSvcLcnInfo"},
    {"nativeSetNameList"},
    {"nativeGetTargetRegion", "nativeSetTargetRegion", "nativeGetIfLcnConflict",
     "nativeSetSelectedTargetRegion"},
    {"nativeGetLcnV2ChList", "nativeSetLcnV2ChListId", "nativeSetSelectedLcnV2ChListId"},
};

void loadKeys(fuzz::Input& in) {
    zelsim::resetKeys();
    zelsim::clearCalls();
    const uint16_t present = in.u16();
    for (size_t k = 0; k < std::size(kKeys); ++k) {
        if (!(present & (1u << k))) continue;
        std::vector<std::vector<uint8_t>> blocks(kKeys[k].indexed ? in.u8() % 8 : 1);
        for (auto& b : blocks) b = in.bytes(in.u16() % 600);
        zelsim::setKeyBlocks(kKeys[k].key, kKeys[k].indexed, std::move(blocks));
    }
    if (present & 0x8000) {
        std::vector<NWL_REC_T> records(in.u8() % 10);
        for (auto& r : records) r = in.record<NWL_REC_T>();
        zelsim::setNetworkList(kNetworkList, std::move(records));
    }
}

jobject extensionAt(JNIEnv* env, unsigned index) {
    jobject all = fuzz::rigObject("extensions", "[Lcom/brinova/tv/orvella/services/scan/ZelTvScanExtension;");
    jobject e = env->GetObjectArrayElement(static_cast<jobjectArray>(all), static_cast<jsize>(index));
    env->DeleteLocalRef(all);
    return e;
}

// One int[] native with any length and elements, but its own handle in element 1.
void callNative(JNIEnv* env, jobject extension, const char* name, fuzz::Input& in) {
    const jsize length = in.u8() % 76;
    std::vector<jint> values(length);
    for (jint& v : values) v = static_cast<jint>(in.u32());
    if (length > 1) values[1] = static_cast<jint>(reinterpret_cast<uintptr_t>(fuzz::nativeExtension(extension)));
    jintArray array = env->NewIntArray(length);
    env->SetIntArrayRegion(array, 0, length, values.data());
    jclass c = env->GetObjectClass(extension);
    env->CallIntMethod(extension, env->GetMethodID(c, name, "([I)I"), array);
    fuzz::checkNoException(env, name);
    env->DeleteLocalRef(c);
    env->DeleteLocalRef(array);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    JNIEnv* env = fuzz::boot();
    fuzz::Input in(data, size);
    loadKeys(in);
    fuzz::setRigPick(in.u8());
    // A favourite-network walk reads up to 65,536 records (a second or so here): two per
    // input keep an input within the fuzzer's time limit.
    int favouriteNetworkOps = 0;
    for (int ops = 0; in.remaining() > 0 && ops < 32; ++ops) {
        // Each record read is a recorded call: keep only the current operation's.
        zelsim::clearCalls();
        const uint8_t op = in.u8();
        const unsigned index = (op & 0x7F) % kNatives.size();
        if (index == 0 && ++favouriteNetworkOps > 2) continue;
        jobject extension = extensionAt(env, index);
        if (op & 0x80) {
            const auto& natives = kNatives[index];
            callNative(env, extension, natives[in.u8() % natives.size()], in);
        } else {
            android::JINativeScanExtension* native = fuzz::nativeExtension(extension);
            fuzz::onBuilderThread([&] { native->onScanComplete(1); });
        }
        env->DeleteLocalRef(extension);
    }
    return 0;
}
