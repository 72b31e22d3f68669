// The machinery every scan extension's Java peer shares.
#define LOG_TAG "ZelTvScanExtension_JNI"
#define SCAN_SOURCE_NAME "ScanExtensionCommon"

#include "ScanExtensionCommon.h"

#include <string>

namespace android {

jint extensionHandleOf(JINativeScanExtension* extension) {
    return static_cast<jint>(reinterpret_cast<uintptr_t>(extension));
}

void ExtensionJavaRefs::take(JNIEnv* env, jobject thiz, const void* extension,
                             const char* className, CreateLog createLog, const ScanSite& site) {
    BLOG_PRINT(BRINOVA_LOG_DEBUG, site.tag, "%s", className);
    jclass clazz = env->GetObjectClass(thiz);
    if (clazz == nullptr) {
        scanFatal(site, "!(clazz != __null)", __LINE__);
    }
    mClass = static_cast<jclass>(env->NewGlobalRef(clazz));
    mObject = env->NewWeakGlobalRef(thiz);
    env->DeleteLocalRef(clazz);
    if (createLog == CreateLog::kWithPointers) {
        BLOG_PRINT(BRINOVA_LOG_DEBUG, site.tag,
                   "native config create instance, this: %p, thiz: %p, mObject: %p", extension,
                   thiz, mObject);
    } else {
        BLOG_PRINT(BRINOVA_LOG_DEBUG, site.tag, "native config create instance");
    }
}

void ExtensionJavaRefs::release(JNIEnv* env) {
    if (mObject != nullptr) {
        env->DeleteWeakGlobalRef(mObject);
        mObject = nullptr;
    }
    if (mClass != nullptr) {
        env->DeleteGlobalRef(mClass);
        mClass = nullptr;
    }
}

ExtensionPeer::ExtensionPeer(JNIEnv* env, jobject thiz, const void* extension,
                             const char* className, const ScanSite& site,
                             ExtensionJavaRefs::CreateLog createLog)
    : mCreatingEnv(env) {
    mRefs.take(env, thiz, extension, className, createLog, site);
}

ExtensionPeer::~ExtensionPeer() { mRefs.release(mCreatingEnv); }

JniEnvAttacher::JniEnvAttacher() { mEnv = getOrAttachEnv(&mAttached); }

JniEnvAttacher::~JniEnvAttacher() {
    if (mAttached) {
        javaVM->DetachCurrentThread();
    }
}

jsize checkExtensionArray(JNIEnv* env, jintArray array, jsize limit, const NativeSite& site) {
    // A null array counts as an empty one rather than taking the process down.
    jsize length = array != nullptr ? env->GetArrayLength(array) : 0;
    if (length > limit) {
        // "not enough" although the array is too long: the wording is kept as it always was.
        BLOG_PRINT(BRINOVA_LOG_DEBUG, site.tag,
                   "[ERROR][%d]{%s}(jni GET type length is not enough)\n", site.line,
                   site.function);
        return -1;
    }
    if (length < 1) {
        BLOG_PRINT(BRINOVA_LOG_DEBUG, site.tag,
                   "[ERROR][%d]{%s}(jni size of GET type array should be bigger than ZERO)\n",
                   site.line, site.function);
        return -1;
    }
    return length;
}

size_t boundedNameLength(const char* name, size_t capacity) {
    // The builder's name fields are zero-terminated, but one that fills its field runs into
    // the next field: measure a terminated copy.
    constexpr size_t kLongestName = 64;
    char copy[kLongestName + 1] = {};
    x_memcpy(copy, name, capacity < kLongestName ? capacity : kLongestName);
    return x_strlen(copy);
}

void callJavaCallbacks(jobject object, std::initializer_list<jmethodID> callbacks,
                       const ScanSite& site) {
    ScopedJniThread thread(site, ScopedJniThread::kSts);
    JNIEnv* env = thread.env();
    if (env == nullptr) {
        return;  // no JavaVM recorded: the library was never loaded by a VM
    }
    for (jmethodID callback : callbacks) {
        env->CallVoidMethod(object, callback);
        clearJavaException(env, site, "extension callback");
    }
}

int registerExtensionClass(JNIEnv* env, const char* className, const JNINativeMethod* methods,
                           int count, const MethodSpec* callbacks, size_t callbackCount,
                           const ScanSite& site, const char* functionName) {
    std::string okMessage = std::string(functionName) + " OK.";
    return registerClass(env, className, methods, count, callbacks, callbackCount, site,
                         okMessage.c_str());
}

}  // namespace android
