// The machinery every standard's scan configuration shares. Lines and assertions report
// the site their caller passed in; this file has no tag or source name of its own.

#include "JINativeScanConfig.h"

#include <map>
#include <mutex>

namespace android {

ScanMapsCall::ScanMapsCall(const ScanSite& site, const char* country)
    : mThread(site, ScopedJniThread::kSts) {
    mCountry = env()->NewStringUTF(country);
}

ScanMapsCall::~ScanMapsCall() {
    // Deleted here, so that a thread that was already attached does not pile them up.
    if (env() != nullptr && mCountry != nullptr) {
        env()->DeleteLocalRef(mCountry);
    }
}

jintArray ScanMapsCall::newInput(const ScanSite& site, const jint* values, jsize count) {
    jintArray input = env()->NewIntArray(count);
    if (input == nullptr) {
        scanFatal(site, "!(intInput != __null)");
    }
    env()->SetIntArrayRegion(input, 0, count, values);
    return input;
}

jintArray ScanMapsCall::newOutput(const ScanSite& site, jsize count) {
    jintArray output = env()->NewIntArray(count);
    if (output == nullptr) {
        scanFatal(site, "!(intOutput != __null)");
    }
    return output;
}

void ScanMapsCall::readOutput(jintArray output, jsize count, jint* into) {
    env()->GetIntArrayRegion(output, 0, count, into);
}

sp<JINativeScanConfig> exchangeNativeConfig(JNIEnv* env, jobject thiz,
                                            const sp<JINativeScanConfig>& config,
                                            jmethodID getNativeConfig, jmethodID setNativeConfig,
                                            const ScanSite& site, const char* setterName) {
    sp<JINativeScanConfig> old = reinterpret_cast<JINativeScanConfig*>(
        static_cast<uintptr_t>(env->CallLongMethod(thiz, getNativeConfig)));
    checkJavaException(env, site, "getNativeConfig");
    if (config.get() != nullptr) {
        config->incStrong(thiz);
    }
    if (old.get() != nullptr) {
        old->decStrong(thiz);
    }
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s setConfig = %p", setterName, config.get());
    env->CallVoidMethod(thiz, setNativeConfig,
                        static_cast<jlong>(reinterpret_cast<uintptr_t>(config.get())));
    checkJavaException(env, site, "setNativeConfig");
    return old;
}

int registerConfigClass(JNIEnv* env, const char* configClass, const JNINativeMethod* methods,
                        int count, const MethodSpec* configMethods, size_t configCount,
                        std::initializer_list<ClassMethods> more, const ScanSite& site) {
    if (registerClass(env, configClass, methods, count, configMethods, configCount, site) == 0) {
        return 0;
    }
    for (const ClassMethods& c : more) {
        cacheClassMethods(env, c.className, c.specs, c.count, site);
    }
    return 1;
}

namespace {

std::mutex gLiveConfigsLock;
std::map<const void*, wp<JINativeScanConfig>>& liveConfigs() {
    static auto* configs = new std::map<const void*, wp<JINativeScanConfig>>();  // outlives exit
    return *configs;
}

}  // namespace

void addLiveScanConfig(JINativeScanConfig* config) {
    std::lock_guard<std::mutex> lock(gLiveConfigsLock);
    liveConfigs()[config] = config;
}

void removeLiveScanConfig(JINativeScanConfig* config) {
    std::lock_guard<std::mutex> lock(gLiveConfigsLock);
    liveConfigs().erase(config);
}

sp<JINativeScanConfig> scanConfigOfTag(void* tag) {
    std::lock_guard<std::mutex> lock(gLiveConfigsLock);
    auto it = liveConfigs().find(tag);
    return it != liveConfigs().end() ? it->second.promote() : nullptr;
}

}  // namespace android
