// What every class of the scan library shares. Every line and assertion here reports the
// site its caller passed in; this file has no tag or source name of its own.
#include "ScanJniCommon.h"

#include <stdlib.h>

#include <nativehelper/ScopedLocalRef.h>

namespace android {

void scanFatal(const ScanSite& site, const char* condText) {
    __android_log_assert(condText, site.tag, "%s FATAL Error at :%d", site.source, site.line);
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
        scanFatal(mSite, mNames == kSts ? "!((sts == (0)) && (env != __null))"
                                        : "!((ret == (0)) && (env != __null))");
    }
}

ScopedJniThread::~ScopedJniThread() {
    if (!mAttached || javaVM == nullptr) {
        return;
    }
    if (javaVM->DetachCurrentThread() != JNI_OK) {
        scanFatal(mSite, mNames == kSts ? "!(sts == (0))" : "!(ret == (0))");
    }
}

ScanEnvAttacher::ScanEnvAttacher() { mEnv = getOrAttachEnv(&mAttached); }

ScanEnvAttacher::~ScanEnvAttacher() {
    if (mAttached) {
        javaVM->DetachCurrentThread();
    }
}

namespace {
// The innermost native scope open on this thread.
thread_local JavaCallerScope* tCallerScope = nullptr;
}  // namespace

JavaCallerScope::JavaCallerScope(JNIEnv* env) : mEnv(env), mOuter(tCallerScope) {
    tCallerScope = this;
}

JavaCallerScope::~JavaCallerScope() {
    tCallerScope = mOuter;
    if (mKept != nullptr) {
        // Nothing calls JNI after this but deletes, which an exception may be pending for.
        mEnv->Throw(mKept);
        mEnv->DeleteLocalRef(mKept);
    }
}

JavaCallerScope* JavaCallerScope::current(const JNIEnv* env) {
    return tCallerScope != nullptr && tCallerScope->mEnv == env ? tCallerScope : nullptr;
}

bool JavaCallerScope::keepPending() {
    if (mKept != nullptr) {
        return false;
    }
    mKept = mEnv->ExceptionOccurred();
    mEnv->ExceptionClear();
    return true;
}

bool checkJavaException(JNIEnv* env, const ScanSite& site, const char* what) {
    if (!env->ExceptionCheck()) {
        return false;
    }
    JavaCallerScope* scope = JavaCallerScope::current(env);
    if (scope != nullptr && scope->keepPending()) {
        return true;
    }
    SITE_LOG_RAW(site, BRINOVA_LOG_ERROR, "Java exception in %s, cleared", what);
    env->ExceptionDescribe();  // prints and clears
    env->ExceptionClear();
    return true;
}

void JavaPeerRefs::take(JNIEnv* env, jobject obj, const ScanSite& site) {
    jclass clazz = env->GetObjectClass(obj);
    if (clazz == nullptr) {
        scanFatal(site, "!(clazz != __null)");
    }
    mClass = static_cast<jclass>(env->NewGlobalRef(clazz));
    mObject = env->NewWeakGlobalRef(obj);
    env->DeleteLocalRef(clazz);
}

void JavaPeerRefs::release(JNIEnv* env) {
    if (mObject != nullptr) {
        env->DeleteWeakGlobalRef(mObject);
        mObject = nullptr;
    }
    if (mClass != nullptr) {
        env->DeleteGlobalRef(mClass);
        mClass = nullptr;
    }
}

void cacheMethods(JNIEnv* env, jclass clazz, const MethodSpec* specs, size_t count,
                  const ScanSite& site) {
    for (size_t i = 0; i < count; ++i) {
        *specs[i].slot = env->GetMethodID(clazz, specs[i].name, specs[i].signature);
        if (*specs[i].slot == nullptr) {
            scanFatal(site, specs[i].assertText);
        }
    }
}

int registerClass(JNIEnv* env, const char* className, const JNINativeMethod* methods, int count,
                  const MethodSpec* specs, size_t specCount, const ScanSite& site,
                  const char* okMessage) {
    if (registerNativeMethods(env, className, methods, count) < 0) {
        SITE_LOG_RAW(site, BRINOVA_LOG_ERROR, "Failed to register tuner native methods");
        return 0;
    }
    if (okMessage != nullptr) {
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s", okMessage);
    }
    cacheClassMethods(env, className, specs, specCount, site);
    return 1;
}

void cacheClassMethods(JNIEnv* env, const char* className, const MethodSpec* specs,
                       size_t count, const ScanSite& site) {
    ScopedLocalRef<jclass> clazz(env, env->FindClass(className));
    if (clazz.get() == nullptr) {
        scanFatal(site, "!(clazz.get() != __null)");
    }
    cacheMethods(env, clazz.get(), specs, count, site);
}

}  // namespace android
