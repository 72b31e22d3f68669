// The two satellite configurations as the satellite builder calls them, from threads not
// attached to the VM: their scan-maps commands (the operator configuration's 7 ... 66, the
// single-satellite configuration's 45 and 56, and any other value) with any output buffer
// size (allocated exactly), null pointers, the command-8 satellite record and the 16-bit
// input of 45 and 56 (each allocated exactly), any country bytes, and any status and
// answer from Java, both scripted and from the application's satellite model; and the
// four notifications the operator configuration writes into its block (service update,
// orbit slot, service numbers, categories) with any record and null records and tags where
// the contract allows them.
#include <string.h>

#include <memory>
#include <vector>

#include "JINativeScanConfig.h"
#include "SbDvbsScanParams.h"
#include "fuzz_support.h"
#include "zel_sim.h"

namespace {

// The rig's configurations in the order an input names them.
enum Config { kDvbs, kDvbsModel, kSatellite, kSatelliteModel, kConfigs };
const char* const kConfigFields[kConfigs] = {"dvbs", "dvbsModel", "satellite", "satelliteModel"};

struct Rig {
    jobject object;  // global reference to testsupport/DvbsFuzzRig
    android::JINativeScanConfig* configs[kConfigs];
};

android::JINativeScanConfig* nativeConfig(JNIEnv* env, jobject rig, jclass rigClass, const char* field,
                                          const char* signature) {
    jobject config = env->GetObjectField(rig, env->GetFieldID(rigClass, field, signature));
    fuzz::checkNoException(env, field);
    jclass c = env->GetObjectClass(config);
    jlong pointer = env->CallLongMethod(config, env->GetMethodID(c, "getNativeConfig", "()J"));
    fuzz::checkNoException(env, "getNativeConfig");
    env->DeleteLocalRef(c);
    env->DeleteLocalRef(config);
    return reinterpret_cast<android::JINativeScanConfig*>(static_cast<uintptr_t>(pointer));
}

Rig& rig() {
    static Rig* r = [] {
        JNIEnv* env = fuzz::boot();
        jclass c = env->FindClass("com/brinova/tv/orvella/testsupport/DvbsFuzzRig");
        fuzz::checkNoException(env, "DvbsFuzzRig");
        jobject local = env->NewObject(c, env->GetMethodID(c, "<init>", "()V"));
        fuzz::checkNoException(env, "DvbsFuzzRig()");
        auto* made = new Rig{env->NewGlobalRef(local), {}};
        for (int i = 0; i < kConfigs; ++i) {
            const char* sig = i < kSatellite ? "Lcom/brinova/tv/orvella/services/scan/ZelTvDvbsScanConfig;"
                                             : "Lcom/brinova/tv/orvella/services/scan/ZelTvDvbsSatelliteConfig;";
            made->configs[i] = nativeConfig(env, local, c, kConfigFields[i], sig);
        }
        env->DeleteLocalRef(local);
        env->DeleteLocalRef(c);
        return made;
    }();
    return *r;
}

void script(JNIEnv* env, jint status, const std::vector<jint>& answer) {
    jobject rigObject = rig().object;
    jclass c = env->GetObjectClass(rigObject);
    jintArray a = env->NewIntArray(static_cast<jsize>(answer.size()));
    env->SetIntArrayRegion(a, 0, static_cast<jsize>(answer.size()), answer.data());
    env->SetObjectField(rigObject, env->GetFieldID(c, "answer", "[I"), a);
    env->SetIntField(rigObject, env->GetFieldID(c, "status", "I"), status);
    env->DeleteLocalRef(a);
    env->DeleteLocalRef(c);
    fuzz::checkNoException(env, "script");
}

// The commands of both tables first, so that most inputs reach a row; then any value.
const uint32_t kCommands[] = {7, 14, 35, 36, 41, 63, 8, 24, 27, 51, 59, 62, 66, 45, 56};

void scanMaps(JNIEnv* env, fuzz::Input& in, android::JINativeScanConfig* config) {
    const uint8_t pick = in.u8();
    const uint32_t cmd = pick < std::size(kCommands) ? kCommands[pick] : in.u8();
    uint32_t outputLen = in.u16() % 257;
    char country[4] = {};
    std::vector<uint8_t> c = in.bytes(3);
    if (!c.empty()) memcpy(country, c.data(), c.size());
    const uint8_t pointers = in.u8();  // bit 0: no input, bit 1: no output, bit 2: no length
    uintptr_t value = in.u32();
    std::unique_ptr<uint8_t[]> record;
    void* input = reinterpret_cast<void*>(value);
    if (cmd == 8 || cmd == 45 || cmd == 56) {
        // The builder's own record, exactly its size: the 84-byte satellite, or a 16-bit index.
        const size_t size = cmd == 8 ? sizeof(SB_DVBS_QUERY_SAT_T) : sizeof(uint16_t);
        record.reset(new uint8_t[size]);
        std::vector<uint8_t> bytes = in.bytes(size);
        memset(record.get(), 0, size);
        if (!bytes.empty()) memcpy(record.get(), bytes.data(), bytes.size());
        input = (pointers & 1) ? nullptr : record.get();
    }
    const jint status = (in.u8() & 1) ? static_cast<jint>(in.u32()) : 0;
    std::vector<jint> answer(in.u8() % 80);
    for (jint& a : answer) a = static_cast<jint>(in.u32());
    script(env, status, answer);

    std::unique_ptr<uint8_t[]> output(new uint8_t[outputLen]);
    void* out = (pointers & 2) ? nullptr : output.get();
    uint32_t* len = (pointers & 4) ? nullptr : &outputLen;
    auto fn = reinterpret_cast<x_sb_dvbs_scan_maps_fct>(config->getSbScanMapsNotify());
    fuzz::onBuilderThread([&] { fn(cmd, country, input, out, len, config); });
}

// A notification record of exactly `size` bytes from the input, or null.
std::unique_ptr<uint8_t[]> notifyRecord(fuzz::Input& in, size_t size, bool null) {
    std::vector<uint8_t> bytes = in.bytes(size);
    if (null) return nullptr;
    std::unique_ptr<uint8_t[]> record(new uint8_t[size]);
    memset(record.get(), 0, size);
    if (!bytes.empty()) memcpy(record.get(), bytes.data(), bytes.size());
    return record;
}

void notification(fuzz::Input& in, uint8_t kind) {
    const SB_DVBS_SCAN_PARAMS& b =
        *static_cast<const SB_DVBS_SCAN_PARAMS*>(rig().configs[kDvbs]->getSbScanParams(0));
    const uint8_t nulls = in.u8();  // bit 0: no record, bit 1: no tag
    switch (kind) {
        case 0: {
            auto r = notifyRecord(in, sizeof(SB_DVBS_SVC_UPDATE_NFY_DATA_T), nulls & 1);
            void* tag = (nulls & 2) ? nullptr : b.pv_svc_update_nfy_tag;
            fuzz::onBuilderThread([&] {
                b.pf_svc_update_nfy(reinterpret_cast<SB_DVBS_SVC_UPDATE_NFY_DATA_T*>(r.get()), tag);
            });
            break;
        }
        case 1: {
            auto r = notifyRecord(in, sizeof(SB_SAT_NAME_NFY_DATA_T), nulls & 1);
            void* tag = (nulls & 2) ? nullptr : b.pv_sat_name_nfy_tag;
            fuzz::onBuilderThread([&] {
                b.pf_sat_name_nfy(reinterpret_cast<SB_SAT_NAME_NFY_DATA_T*>(r.get()), tag);
            });
            break;
        }
        case 2: {
            const uint16_t tv = in.u16(), radio = in.u16(), app = in.u16();
            void* tag = (nulls & 2) ? nullptr : b.pv_svcnum_details_nfy_tag;
            fuzz::onBuilderThread([&] { b.pf_svcnum_details_nfy(tv, radio, app, tag); });
            break;
        }
        default: {
            // A null record or tag ends the process by contract: both are always given.
            auto r = notifyRecord(in, sizeof(DVBS_TKGS_CATEGORY_LIST_T), false);
            fuzz::onBuilderThread([&] {
                b.pf_category_nfy(reinterpret_cast<DVBS_TKGS_CATEGORY_LIST_T*>(r.get()),
                                  b.pv_category_nfy_tag);
            });
            break;
        }
    }
}

}  // namespace

// Operations until the input ends: 0-3 a scan-maps call on a configuration of the rig,
// 4-7 a notification (service update, orbit slot, service numbers, categories).
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    JNIEnv* env = fuzz::boot();
    rig();
    // The simulator records every middleware call (x_memcpy included): keep one input's.
    zelsim::clearCalls();
    fuzz::Input in(data, size);
    for (int ops = 0; in.remaining() > 0 && ops < 16; ++ops) {
        const uint8_t op = in.u8() % 8;
        if (op < kConfigs) {
            scanMaps(env, in, rig().configs[op]);
        } else {
            notification(in, static_cast<uint8_t>(op - kConfigs));
        }
    }
    return 0;
}
