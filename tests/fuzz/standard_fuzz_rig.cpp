#include "standard_fuzz_rig.h"

#include "fuzz_support.h"

namespace fuzz {

namespace {

jobject standardRig() {
    static jobject rig = [] {
        JNIEnv* env = boot();
        jclass c = env->FindClass("com/brinova/tv/orvella/testsupport/StandardFuzzRig");
        checkNoException(env, "StandardFuzzRig");
        jobject local = env->NewObject(c, env->GetMethodID(c, "<init>", "()V"));
        checkNoException(env, "StandardFuzzRig()");
        jobject global = env->NewGlobalRef(local);
        env->DeleteLocalRef(local);
        env->DeleteLocalRef(c);
        return global;
    }();
    return rig;
}

}  // namespace

android::JINativeScanConfig* standardConfig(Standard standard) {
    JNIEnv* env = boot();
    jobject rig = standardRig();
    jclass c = env->GetObjectClass(rig);
    auto configs = static_cast<jobjectArray>(env->GetObjectField(
        rig, env->GetFieldID(c, "configs", "[Lcom/brinova/tv/orvella/services/scan/ZelTvScanConfig;")));
    jobject config = env->GetObjectArrayElement(configs, standard);
    jclass configClass = env->GetObjectClass(config);
    jlong pointer = env->CallLongMethod(config, env->GetMethodID(configClass, "getNativeConfig", "()J"));
    checkNoException(env, "getNativeConfig");
    env->DeleteLocalRef(configClass);
    env->DeleteLocalRef(config);
    env->DeleteLocalRef(configs);
    env->DeleteLocalRef(c);
    return reinterpret_cast<android::JINativeScanConfig*>(static_cast<uintptr_t>(pointer));
}

void setStandardAnswer(const std::vector<jint>& answer) {
    JNIEnv* env = boot();
    jobject rig = standardRig();
    jintArray a = env->NewIntArray(static_cast<jsize>(answer.size()));
    env->SetIntArrayRegion(a, 0, static_cast<jsize>(answer.size()), answer.data());
    jclass c = env->GetObjectClass(rig);
    env->SetObjectField(rig, env->GetFieldID(c, "answer", "[I"), a);
    env->DeleteLocalRef(c);
    env->DeleteLocalRef(a);
    checkNoException(env, "answer");
}

}  // namespace fuzz
