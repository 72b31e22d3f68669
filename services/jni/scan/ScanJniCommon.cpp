#define LOG_TAG "Orvella_onLoad_scan"
#define SCAN_SOURCE_NAME "ScanJniCommon"

#include "ScanJniCommon.h"

#include <stdlib.h>

#include <nativehelper/ScopedLocalRef.h>

namespace android {

void scanFatal(const ScanSite& site, const char* condText, int line) {
    __android_log_assert(condText, site.tag, "%s FATAL Error at :%d", site.source, line);
    abort();  // not reached: __android_log_assert aborts
}

JNIEnv* getOrAttachEnv(bool* attachedHere) {
    *attachedHere = false;
    if (javaVM == nullptr) {
        return nullptr;
    }
    JNIEnv* env = nullptr;
    if (javaVM->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_4) == JNI_OK && env != nullptr) {
        return env;
    }
    env = nullptr;
    if (javaVM->AttachCurrentThread(&env, nullptr) != JNI_OK || env == nullptr) {
        return nullptr;
    }
    *attachedHere = true;
    return env;
}

ScopedJniThread::ScopedJniThread(const ScanSite& site, Names names) : mSite(site), mNames(names) {
    mEnv = getOrAttachEnv(&mAttached);
    if (mEnv == nullptr && javaVM != nullptr) {
        scanFatal(mSite,
                  mNames == kSts ? "!((sts == (0)) && (env != __null))"
                                 : "!((ret == (0)) && (env != __null))",
                  __LINE__);
    }
}

ScopedJniThread::~ScopedJniThread() {
    if (!mAttached || javaVM == nullptr) {
        return;
    }
    if (javaVM->DetachCurrentThread() != JNI_OK) {
        scanFatal(mSite, mNames == kSts ? "!(sts == (0))" : "!(ret == (0))", __LINE__);
    }
}

bool clearJavaException(JNIEnv* env, const ScanSite& site, const char* what) {
    if (!env->ExceptionCheck()) {
        return false;
    }
    BLOG_PRINT(BRINOVA_LOG_ERROR, site.tag, "Java exception in %s, cleared", what);
    env->ExceptionDescribe();  // prints and clears
    env->ExceptionClear();
    return true;
}

void cacheMethods(JNIEnv* env, jclass clazz, const MethodSpec* specs, size_t count,
                  const ScanSite& site) {
    for (size_t i = 0; i < count; ++i) {
        *specs[i].slot = env->GetMethodID(clazz, specs[i].name, specs[i].signature);
        if (*specs[i].slot == nullptr) {
            scanFatal(site, specs[i].assertText, __LINE__);
        }
    }
}

int registerClass(JNIEnv* env, const char* className, const JNINativeMethod* methods, int count,
                  const MethodSpec* specs, size_t specCount, const ScanSite& site,
                  const char* okMessage) {
    if (registerNativeMethods(env, className, methods, count) < 0) {
        BLOG_PRINT(BRINOVA_LOG_ERROR, site.tag, "Failed to register tuner native methods");
        return 0;
    }
    if (okMessage != nullptr) {
        BLOG_PRINT(BRINOVA_LOG_DEBUG, site.tag, "%s", okMessage);
    }
    cacheClassMethods(env, className, specs, specCount, site);
    return 1;
}

void cacheClassMethods(JNIEnv* env, const char* className, const MethodSpec* specs,
                       size_t count, const ScanSite& site) {
    ScopedLocalRef<jclass> clazz(env, env->FindClass(className));
    if (clazz.get() == nullptr) {
        scanFatal(site, "!(clazz.get() != __null)", __LINE__);
    }
    cacheMethods(env, clazz.get(), specs, count, site);
}

}  // namespace android
