// The machinery every scan extension's Java peer shares. Lines and assertions report the
// site their caller passed in; this file has no tag or source name of its own.

#include "ScanExtensionCommon.h"

#include <string>

namespace android {

jint extensionHandleOf(JINativeScanExtension* extension) {
    return static_cast<jint>(reinterpret_cast<uintptr_t>(extension));
}

void ExtensionPeer::take(JavaPeerRefs& refs, JNIEnv* env, jobject thiz, const void* extension,
                         const char* className, CreateLog createLog, const ScanSite& site) {
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s", className);
    refs.take(env, thiz, site);
    if (createLog == CreateLog::kWithPointers) {
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG,
                 "native config create instance, this: %p, thiz: %p, mObject: %p", extension,
                 thiz, refs.object());
    } else if (createLog == CreateLog::kBare) {
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "native config create instance");
    }
}

ExtensionPeer::ExtensionPeer(JNIEnv* env, jobject thiz, const void* extension,
                             const char* className, const ScanSite& site, CreateLog createLog)
    : mCreatingEnv(env) {
    take(mRefs, env, thiz, extension, className, createLog, site);
}

ExtensionPeer::~ExtensionPeer() { mRefs.release(mCreatingEnv); }

jsize checkExtensionArray(JNIEnv* env, jintArray array, jsize limit, const ScanSite& site) {
    // A null array counts as an empty one rather than taking the process down.
    jsize length = array != nullptr ? env->GetArrayLength(array) : 0;
    if (length > limit) {
        // "not enough" although the array is too long: the wording is kept as it always was.
        SITE_XLOGE(site, "(jni GET type length is not enough)\n");
        return -1;
    }
    if (length < 1) {
        SITE_XLOGE(site, "(jni size of GET type array should be bigger than ZERO)\n");
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
        checkJavaException(env, site, "extension callback");
    }
}

int registerExtensionClass(JNIEnv* env, const char* className, const JNINativeMethod* methods,
                           int count, const MethodSpec* callbacks, size_t callbackCount,
                           const ScanSite& site) {
    std::string okMessage = std::string(site.function) + " OK.";
    return registerClass(env, className, methods, count, callbacks, callbackCount, site,
                         okMessage.c_str());
}

}  // namespace android
