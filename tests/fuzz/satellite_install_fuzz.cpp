// The satellite installation extensions: every record the builder sends them (satellite
// name, home transponder, MDU, NIT, BAT, region lists), allocated at exactly its size and
// delivered from threads not attached to the VM through the functions the extensions
// wrote into the block; and their Java-side inputs (associated satellite texts, a region
// list name with an int[] of any length, the info objects' values).
#include <string.h>

#include <vector>

#include "JINativeScanExtension.h"
#include "SbDvbsScanParams.h"
#include "fuzz_support.h"
#include "x_sb_dvbs_install.h"

namespace {

#define SCAN_CLASS(name) "com/brinova/tv/orvella/services/scan/" name

struct Rig {
    jobject lnb, sat, htp, mdu, nit, bat, region, asso;
    SB_DVBS_SCAN_PARAMS detect;  // selector 5: LNB (added last), home transponder, MDU, tables
    SB_DVBS_SCAN_PARAMS lists;   // selector 121: satellite detection last, region lists asked
};

jobject make(JNIEnv* env, const char* className, const char* sig = "()V", jint arg = 0) {
    jclass c = env->FindClass(className);
    fuzz::checkNoException(env, className);
    jobject local = env->NewObject(c, env->GetMethodID(c, "<init>", sig), arg);
    fuzz::checkNoException(env, className);
    jobject global = env->NewGlobalRef(local);
    env->DeleteLocalRef(local);
    env->DeleteLocalRef(c);
    return global;
}

void preScan(SB_DVBS_SCAN_PARAMS& block, uint32_t selector, std::initializer_list<jobject> order) {
    memset(&block, 0, sizeof(block));
    block.ui4_operator = selector;
    for (jobject e : order) fuzz::nativeExtension(e)->onPreScan(&block);
}

Rig& rig(JNIEnv* env) {
    static Rig* r = [env] {
        auto* made = new Rig;
        made->lnb = make(env, SCAN_CLASS("ZelTvScanDetectLNB"));
        made->sat = make(env, SCAN_CLASS("ZelTvScanDetectSatellite"));
        made->htp = make(env, SCAN_CLASS("ZelTvScanDetectTransponder"));
        made->mdu = make(env, SCAN_CLASS("ZelTvScanMDU"));
        made->nit = make(env, SCAN_CLASS("ZelTvScanNetwork"));
        made->bat = make(env, SCAN_CLASS("ZelTvScanBouquet"));
        made->region = make(env, SCAN_CLASS("ZelTvScanRegionChannelList"), "(I)V", 60);
        made->asso = make(env, SCAN_CLASS("ZelTvScanAssociateList"));
        preScan(made->detect, 5, {made->sat, made->lnb, made->htp, made->mdu, made->nit, made->bat});
        preScan(made->lists, 121, {made->lnb, made->sat, made->region});
        return made;
    }();
    return *r;
}

// The function at `at` of `block`, called with `size` bytes of input in a buffer of exactly
// that size.
void deliver(const SB_DVBS_SCAN_PARAMS& block, size_t at, fuzz::Input& in, size_t size,
             uint8_t setFlagAt = 0xFF) {
    void (*fn)(void*, void*) = nullptr;
    void* tag = nullptr;
    memcpy(&fn, reinterpret_cast<const uint8_t*>(&block) + at, sizeof(fn));
    memcpy(&tag, reinterpret_cast<const uint8_t*>(&block) + at + sizeof(fn), sizeof(tag));
    if (fn == nullptr) return;  // the block asks for no such report
    std::vector<uint8_t> bytes = in.bytes(size);
    auto* record = new uint8_t[size]();
    if (!bytes.empty()) memcpy(record, bytes.data(), bytes.size());  // an input may end first
    // A report without the list flag ends the process by contract: keep the flag.
    if (setFlagAt != 0xFF) record[setFlagAt] |= SB_DVBS_INFO_FLAG_LIST;
    fuzz::onBuilderThread([&] { fn(record, tag); });
    delete[] record;
}

jstring textFrom(JNIEnv* env, fuzz::Input& in) {
    std::vector<uint8_t> bytes = in.bytes(in.u8() % 48);
    std::vector<jchar> chars(bytes.begin(), bytes.end());
    return env->NewString(chars.data(), static_cast<jsize>(chars.size()));
}

void callJava(JNIEnv* env, jobject target, const char* name, const char* sig, const jvalue* args) {
    jclass c = env->GetObjectClass(target);
    env->CallIntMethodA(target, env->GetMethodID(c, name, sig), args);
    fuzz::checkNoException(env, name);
    env->DeleteLocalRef(c);
}

void javaInputs(JNIEnv* env, Rig& r, fuzz::Input& in) {
    jclass stringClass = env->FindClass("java/lang/String");
    const jsize count = in.u8() % 24;
    jobjectArray texts = env->NewObjectArray(count, stringClass, nullptr);
    for (jsize i = 0; i < count; ++i) {
        jstring t = textFrom(env, in);
        env->SetObjectArrayElement(texts, i, (in.u8() & 1) ? t : nullptr);
        env->DeleteLocalRef(t);
    }
    jvalue arg[2] = {};
    arg[0].l = texts;
    callJava(env, r.asso, "NativeSetAssoSateInfo", "([Ljava/lang/String;)I", arg);
    const jsize length = in.u8() % 56;
    std::vector<jint> values(length);
    for (jint& v : values) v = static_cast<jint>(in.u32());
    if (length > 1) values[1] = static_cast<jint>(reinterpret_cast<uintptr_t>(fuzz::nativeExtension(r.region)));
    jintArray array = env->NewIntArray(length);
    env->SetIntArrayRegion(array, 0, length, values.data());
    arg[0].l = array;
    arg[1].l = textFrom(env, in);
    callJava(env, r.region, "nativeSetRegionChannelList", "([ILjava/lang/String;)I", arg);
    jvalue value[1];
    value[0].i = static_cast<jint>(in.u32());
    callJava(env, r.nit, "setKnownNitVersion", "(I)I", value);
    jvalue pair[2];
    pair[0].i = static_cast<jint>(in.u32());
    pair[1].i = static_cast<jint>(in.u32());
    callJava(env, r.bat, "setBouquet", "(II)I", pair);
    for (jobject o : {static_cast<jobject>(texts), static_cast<jobject>(array), arg[1].l,
                      static_cast<jobject>(stringClass)}) {
        env->DeleteLocalRef(o);
    }
    // The values Java set reach the block; a chosen list stops the asking (its function null).
    preScan(r.lists, in.u8() & 1 ? 32 : 122, {r.lnb, r.sat, r.region, r.asso, r.nit, r.bat});
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    JNIEnv* env = fuzz::boot();
    Rig& r = rig(env);
    fuzz::Input in(data, size);
    do {
        switch (in.u8() % 7) {
            case 0: deliver(r.detect, offsetof(SB_DVBS_SCAN_PARAMS, pf_sat_name_nfy), in, sizeof(SB_SAT_NAME_NFY_DATA_T)); break;
            case 1: deliver(r.lists, offsetof(SB_DVBS_SCAN_PARAMS, pf_sat_name_nfy), in, sizeof(SB_SAT_NAME_NFY_DATA_T)); break;
            case 2: deliver(r.detect, offsetof(SB_DVBS_SCAN_PARAMS, pf_get_info_nfy), in, sizeof(SB_DVBS_HTP_INFO_T)); break;
            case 3: deliver(r.detect, offsetof(SB_DVBS_SCAN_PARAMS, pf_mdu_nfy), in, sizeof(SB_DVBS_MDU_NFY_DATA_T)); break;
            case 4:
                deliver(r.detect, offsetof(SB_DVBS_SCAN_PARAMS, pf_nit_built_nfy), in, sizeof(SB_DVBS_NIT_NFY_DATA_T));
                deliver(r.detect, offsetof(SB_DVBS_SCAN_PARAMS, pf_bat_built_nfy), in, sizeof(SB_DVBS_BAT_NFY_DATA_T));
                break;
            case 5:
                deliver(r.lists, offsetof(SB_DVBS_SCAN_PARAMS, pf_get_info_nfy), in,
                        sizeof(SB_DVBS_GET_INFO_NFY_DATA_T), offsetof(SB_DVBS_GET_INFO_NFY_DATA_T, ui1_flags));
                break;
            default: javaInputs(env, r, in); break;
        }
    } while (in.remaining() > 0);
    return 0;
}
