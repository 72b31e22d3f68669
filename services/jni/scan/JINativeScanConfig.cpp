// The machinery every standard's scan configuration shares.
#define LOG_TAG "ZelTvScanConfig_JNI"
#define SCAN_SOURCE_NAME "JINativeScanConfig"

#include "JINativeScanConfig.h"

namespace android {

void ScanConfigRefs::take(JNIEnv* env, jobject obj, const ScanSite& site) {
    jclass objClass = env->GetObjectClass(obj);
    if (objClass == nullptr) {
        scanFatal(site, "!(clazz != __null)", __LINE__);
    }
    clazz = static_cast<jclass>(env->NewGlobalRef(objClass));
    object = env->NewWeakGlobalRef(obj);
    env->DeleteLocalRef(objClass);
    spare = 0;
    BLOG_PRINT(BRINOVA_LOG_DEBUG, site.tag, "native config create instance");
}

bool ScanConfigRefs::release(const ScanSite& site, const void* config) {
    if (javaVM == nullptr) {
        return false;
    }
    ScopedJniThread thread(site, ScopedJniThread::kRet);
    JNIEnv* env = thread.env();
    env->DeleteWeakGlobalRef(object);
    env->DeleteGlobalRef(clazz);
    object = nullptr;
    clazz = nullptr;
    spare = 0;
    BLOG_PRINT(BRINOVA_LOG_DEBUG, site.tag, "native config release instance, %p", config);
    return true;
}

int ScanConfigRefs::callCheckSettings(jmethodID checkSettings, const ScanSite& site) const {
    ScopedJniThread thread(site, ScopedJniThread::kSts);
    int ret = thread.env()->CallIntMethod(object, checkSettings);
    clearJavaException(thread.env(), site, "checkSettings");
    BLOG_PRINT(BRINOVA_LOG_DEBUG, site.tag, "native checkScanMaps, %d", ret);
    return ret;
}

void ScanConfigRefs::callOnStatus(jmethodID onStatus, int status, const ScanSite& site) const {
    ScopedJniThread thread(site, ScopedJniThread::kSts);
    thread.env()->CallVoidMethod(object, onStatus, status);
    clearJavaException(thread.env(), site, "onStatus");
}

ScanMapsCall::ScanMapsCall(const ScanSite& site, const char* country)
    : mSite(site), mThread(site, ScopedJniThread::kSts) {
    mCountry = env()->NewStringUTF(country);
}

ScanMapsCall::~ScanMapsCall() {
    // Deleted here, so that a thread that was already attached does not pile them up.
    if (env() != nullptr && mCountry != nullptr) {
        env()->DeleteLocalRef(mCountry);
    }
}

jintArray ScanMapsCall::newInput(const jint* values, jsize count) {
    jintArray input = env()->NewIntArray(count);
    if (input == nullptr) {
        scanFatal(mSite, "!(intInput != __null)", __LINE__);
    }
    env()->SetIntArrayRegion(input, 0, count, values);
    return input;
}

jintArray ScanMapsCall::newOutput(jsize count) {
    jintArray output = env()->NewIntArray(count);
    if (output == nullptr) {
        scanFatal(mSite, "!(intOutput != __null)", __LINE__);
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
    clearJavaException(env, site, "getNativeConfig");
    if (config.get() != nullptr) {
        config->incStrong(thiz);
    }
    if (old.get() != nullptr) {
        old->decStrong(thiz);
    }
    BLOG_PRINT(BRINOVA_LOG_DEBUG, site.tag, "%s setConfig = %p", setterName, config.get());
    env->CallVoidMethod(thiz, setNativeConfig,
                        static_cast<jlong>(reinterpret_cast<uintptr_t>(config.get())));
    clearJavaException(env, site, "setNativeConfig");
    return old;
}

}  // namespace android
