// The Fastscan, TKGS and HD+ extensions: the builder's table records (in exactly the
// builder's buffer sizes) through the notify functions their onPreScan writes into a
// satellite block, from threads not attached to the VM; and their natives called from
// Java with any values, strings of any characters and any int[] length, each followed by
// an onPreScan into a block of exactly 780 bytes.
#include <stdarg.h>
#include <string.h>

#include <vector>

#include "SbDvbsScanParams.h"
#include "fuzz_support.h"
#include "x_sb_dvbs_operator.h"

namespace {

#define OPS_CLASS(name) "com/brinova/tv/orvella/services/scan/" name

struct Extension {
    jobject object;  // global reference
    android::JINativeScanExtension* native;
};

Extension make(JNIEnv* env, const char* className) {
    jclass c = env->FindClass(className);
    jobject local = env->NewObject(c, env->GetMethodID(c, "<init>", "()V"));
    fuzz::checkNoException(env, className);
    Extension e{env->NewGlobalRef(local), nullptr};
    e.native = fuzz::nativeExtension(e.object);
    env->DeleteLocalRef(local);
    env->DeleteLocalRef(c);
    return e;
}

// A Java string of any UTF-16 units, as an application may hand over.
jstring anyString(JNIEnv* env, fuzz::Input& in) {
    std::vector<jchar> units(in.u8() % 80);
    for (jchar& u : units) u = in.u16();
    return env->NewString(units.data(), static_cast<jsize>(units.size()));
}

// An int[] of any length up to 60 with the extension's handle, or 0, in element 1 (the
// handle is trusted as an address: any other value is outside the contract).
jintArray anyArray(JNIEnv* env, fuzz::Input& in, const Extension& e) {
    std::vector<jint> values(in.u8() % 61);
    for (jint& v : values) v = static_cast<jint>(in.u32());
    const bool named = (in.u8() & 1) != 0;
    if (values.size() > 1) values[1] = named ? static_cast<jint>(reinterpret_cast<uintptr_t>(e.native)) : 0;
    jintArray a = env->NewIntArray(static_cast<jsize>(values.size()));
    env->SetIntArrayRegion(a, 0, static_cast<jsize>(values.size()), values.data());
    return a;
}

void callInt(JNIEnv* env, jobject object, const char* name, const char* sig, ...) {
    jclass c = env->GetObjectClass(object);
    va_list args;
    va_start(args, sig);
    env->CallIntMethodV(object, env->GetMethodID(c, name, sig), args);
    va_end(args);
    fuzz::checkNoException(env, name);
    env->DeleteLocalRef(c);
}

// Arguments are read into locals first: the input is consumed in a fixed order.
void fastscanNatives(JNIEnv* env, fuzz::Input& in, const Extension& fst) {
    jclass stringClass = env->FindClass("java/lang/String");
    jobjectArray ids = env->NewObjectArray(in.u8() % 20, stringClass, nullptr);
    for (jsize i = 0; i < env->GetArrayLength(ids); ++i) {
        if (in.u8() & 1) env->SetObjectArrayElement(ids, i, anyString(env, in));
    }
    jintArray first = anyArray(env, in, fst);
    callInt(env, fst.object, "nativeSetAssociateSateInfo", "([I[Ljava/lang/String;)I", first, ids);
    jclass sel = env->FindClass(OPS_CLASS("ZelTvScanFST$OperatorSelected"));
    jint v[4];
    for (jint& x : v) x = static_cast<jint>(in.u32());
    jstring name = anyString(env, in);
    jstring subName = anyString(env, in);
    jint charSet = static_cast<jint>(in.u32());
    jobject selected = env->NewObject(
        sel, env->GetMethodID(sel, "<init>", "(IIIILjava/lang/String;Ljava/lang/String;I)V"),
        v[0], v[1], v[2], v[3], name, subName, charSet);
    jintArray second = anyArray(env, in, fst);
    const bool given = (in.u8() & 1) != 0;
    callInt(env, fst.object, "nativeSetOperatorSelected",
            "([ILcom/brinova/tv/orvella/services/scan/ZelTvScanFST$OperatorSelected;)I", second,
            given ? selected : nullptr);
}

void tkgsNatives(JNIEnv* env, fuzz::Input& in, const Extension& tkgs) {
    jintArray array = anyArray(env, in, tkgs);
    callInt(env, tkgs.object, "nativeSetTKGSVersion", "([II)I", array, static_cast<jint>(in.u32()));
    array = anyArray(env, in, tkgs);
    callInt(env, tkgs.object, "nativeSetTKGSMode", "([II)I", array, static_cast<jint>(in.u32()));
    array = anyArray(env, in, tkgs);
    jstring name = (in.u8() & 1) ? anyString(env, in) : nullptr;
    callInt(env, tkgs.object, "nativeSetPrefServiceList", "([ILjava/lang/String;)I", array, name);
    jclass loc = env->FindClass(OPS_CLASS("ZelTvScanTKGS$TKGSLocator"));
    jint v[4];
    for (jint& x : v) x = static_cast<jint>(in.u32());
    jobject locator = env->NewObject(loc, env->GetMethodID(loc, "<init>", "(IIII)V"), v[0], v[1],
                                     v[2], v[3]);
    array = anyArray(env, in, tkgs);
    const bool given = (in.u8() & 1) != 0;
    callInt(env, tkgs.object, "nativeSetLocator",
            "([ILcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS$TKGSLocator;)I", array,
            given ? locator : nullptr);
}

void hdPlusNative(JNIEnv* env, fuzz::Input& in, const Extension& hd) {
    jclass info = env->FindClass(OPS_CLASS("ZelTvScanHDPlus$HDPlusInfo"));
    const jint version = static_cast<jint>(in.u32());
    const jboolean blind = static_cast<jboolean>(in.u8() & 1);
    const jboolean hdMode = static_cast<jboolean>(in.u8() & 1);
    jobject settings = env->NewObject(info, env->GetMethodID(info, "<init>", "(IZZ)V"), version,
                                      blind, hdMode);
    const bool given = (in.u8() & 1) != 0;
    callInt(env, hd.object, "NativeSetHDPlus",
            "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanHDPlus$HDPlusInfo;)I",
            given ? settings : nullptr);
}

// A builder record of exactly `size` bytes from the input, to the function at `fn`.
void notify(fuzz::Input& in, x_sb_dvbs_built_nfy_fct fn, void* tag, size_t size) {
    std::vector<uint8_t> record = in.bytes(size);
    record.resize(size, 0);
    fuzz::onBuilderThread([&] { fn(record.data(), tag); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    JNIEnv* env = fuzz::boot();
    static const Extension fst = make(env, OPS_CLASS("ZelTvScanFST"));
    static const Extension tkgs = make(env, OPS_CLASS("ZelTvScanTKGS"));
    static const Extension hd = make(env, OPS_CLASS("ZelTvScanHDPlus"));
    fuzz::Input in(data, size);
    while (in.remaining() > 0) {
        env->PushLocalFrame(128);
        std::vector<uint8_t> bytes(sizeof(SB_DVBS_SCAN_PARAMS), 0);
        auto* block = reinterpret_cast<SB_DVBS_SCAN_PARAMS*>(bytes.data());
        const uint8_t op = in.u8();
        switch (op % 6) {
            case 0: fastscanNatives(env, in, fst); break;
            case 1: tkgsNatives(env, in, tkgs); break;
            case 2: hdPlusNative(env, in, hd); break;
            default: break;
        }
        fst.native->onPreScan(block);
        tkgs.native->onPreScan(block);
        hd.native->onPreScan(block);
        switch (op % 6) {
            case 3: notify(in, block->pf_fst_built_nfy, block->pv_fst_built_nfy_tag, SB_DVBS_FST_BUILT_NFY_DATA_SIZE); break;
            case 4: notify(in, block->pf_tkgs_built_nfy, block->pv_tkgs_built_nfy_tag, SB_DVBS_TKGS_BUILT_NFY_DATA_SIZE); break;
            case 5: notify(in, block->pf_sgt_built_nfy, block->pv_sgt_built_nfy_tag, sizeof(SB_DVBS_SGT_BUILT_NFY_DATA_T)); break;
            default: break;
        }
        env->PopLocalFrame(nullptr);
    }
    return 0;
}
