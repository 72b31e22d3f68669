// The machinery every standard's scan configuration shares. Lines and assertions report
// the site their caller passed in; this file has no tag or source name of its own.

#include "JINativeScanConfig.h"

#include <stdint.h>

#include <map>
#include <mutex>
#include <string>

#include "x_mw_api.h"

namespace android {

size_t modifiedUtf8Prefix(const char* text, size_t max) {
    const auto* b = reinterpret_cast<const uint8_t*>(text);
    size_t valid = 0;
    while (valid < max && b[valid] != 0) {
        // 1 to 3 bytes per character; 4-byte forms are not modified UTF-8.
        const size_t n = b[valid] < 0x80 ? 1 : (b[valid] & 0xE0) == 0xC0 ? 2 : (b[valid] & 0xF0) == 0xE0 ? 3 : 0;
        if (n == 0 || valid + n > max) break;
        size_t i = 1;
        while (i < n && (b[valid + i] & 0xC0) == 0x80) ++i;
        if (i < n) break;
        valid += n;
    }
    return valid;
}

void copyCode(char (&field)[4], const char* text) {
    x_memset(field, 0, sizeof(field));
    x_strncpy(field, text, 3);
    // A character cut by the third byte is dropped whole.
    for (size_t i = modifiedUtf8Prefix(field, 3); i < sizeof(field); ++i) field[i] = '\0';
}

ScanMapsCall::ScanMapsCall(const ScanSite& site, const char* country)
    : mThread(site, ScopedJniThread::kSts) {
    // The builder's bytes: only whole characters reach Java.
    const std::string valid(country, modifiedUtf8Prefix(country, SIZE_MAX));
    mCountry = env()->NewStringUTF(valid.c_str());
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
    // Java holds the configuration as its address.
    sp<JINativeScanConfig> old = reinterpret_cast<JINativeScanConfig*>(  // NOLINT(performance-no-int-to-ptr)
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
