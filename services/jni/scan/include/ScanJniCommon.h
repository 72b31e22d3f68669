/*
 * What every class of the scan library shares: the process's JavaVM, native-method
 * registration, fatal assertions, getting or attaching a JNIEnv on any thread, and the
 * caching of Java method IDs.
 */
#ifndef SCAN_JNI_COMMON_H
#define SCAN_JNI_COMMON_H

#include <stddef.h>

#include <jni.h>
#include <log/log.h>

#include "brinova_log.h"

#define SCAN_JNI_EXPORT __attribute__((visibility("default")))

/* Set at the end of a successful JNI_OnLoad, never cleared. */
extern JavaVM* javaVM;

/* 0 on success, -1 when the class is missing or RegisterNatives refuses. */
int registerNativeMethods(JNIEnv* env, const char* className, const JNINativeMethod* methods,
                          int count);

/*
 * Ends the process when `cond` does not hold. The condition text is that of the expanded
 * condition (so NULL reads __null and JNI_OK reads (0)); the message names the source
 * file (SCAN_SOURCE_NAME, defined by each file with LOG_TAG) and the line.
 */
#define SCAN_ASSERT(cond) SCAN_ASSERT_EXPANDED_(!(cond))
#define SCAN_ASSERT_EXPANDED_(failed)                                                    \
    do {                                                                                 \
        if (failed) {                                                                    \
            __android_log_assert(#failed, LOG_TAG, SCAN_SOURCE_NAME " FATAL Error at :%d", \
                                 __LINE__);                                              \
        }                                                                                \
    } while (0)

namespace android {

/* Where a shared helper reports from: the calling file's tag and source name. */
struct ScanSite {
    const char* tag;
    const char* source;
};
#define SCAN_SITE (::android::ScanSite{LOG_TAG, SCAN_SOURCE_NAME})

/* Fatal assertion with an explicit condition text, for table-driven checks. */
[[noreturn]] void scanFatal(const ScanSite& site, const char* condText, int line);

/*
 * The calling thread's JNIEnv: GetEnv (JNI 1.4), or else AttachCurrentThread, in which case
 * *attachedHere is set. Null when there is no JavaVM or the attach failed.
 */
JNIEnv* getOrAttachEnv(bool* attachedHere);

/*
 * The JNIEnv of the calling thread for the length of a call: GetEnv (JNI 1.4), or else
 * AttachCurrentThread, which is detached again when the scope ends. A failed attach or
 * detach ends the process; the assertion texts name the status variable `sts` (the
 * callbacks' wording) or `ret` (the engine's).
 * With no JavaVM recorded, env() is null and nothing is attached: the caller decides.
 */
class ScopedJniThread {
public:
    enum Names { kSts, kRet };
    ScopedJniThread(const ScanSite& site, Names names);
    ~ScopedJniThread();
    JNIEnv* env() const { return mEnv; }
    bool attachedHere() const { return mAttached; }
    /* Leaves the thread attached when the scope ends. */
    void keepAttached() { mAttached = false; }

    ScopedJniThread(const ScopedJniThread&) = delete;
    ScopedJniThread& operator=(const ScopedJniThread&) = delete;

private:
    ScanSite mSite;
    Names mNames;
    JNIEnv* mEnv = nullptr;
    bool mAttached = false;
};

/*
 * After every call into Java: nothing of ours throws across the JNI boundary, and a JNI
 * call with an exception pending is illegal. A pending exception is logged at error level
 * with `what` and cleared; returns true when there was one.
 */
bool clearJavaException(JNIEnv* env, const ScanSite& site, const char* what);

/* One Java method to cache at registration; a missing one asserts with `assertText`. */
struct MethodSpec {
    jmethodID* slot;
    const char* name;
    const char* signature;
    const char* assertText;
};
void cacheMethods(JNIEnv* env, jclass clazz, const MethodSpec* specs, size_t count,
                  const ScanSite& site);

/* FindClass (asserting "!(clazz.get() != __null)") and cache the methods of that class. */
void cacheClassMethods(JNIEnv* env, const char* className, const MethodSpec* specs,
                       size_t count, const ScanSite& site);

/*
 * The registration steps every class repeats: register the natives, find the class
 * again (asserting "!(clazz.get() != __null)") and cache its methods. Returns 1, or 0
 * after logging "Failed to register tuner native methods" when the natives cannot be
 * registered. `okMessage`, when given, is logged at debug level on success.
 */
int registerClass(JNIEnv* env, const char* className, const JNINativeMethod* methods, int count,
                  const MethodSpec* specs, size_t specCount, const ScanSite& site,
                  const char* okMessage = nullptr);

template <typename T, size_t N>
constexpr int tableSize(const T (&)[N]) {
    return static_cast<int>(N);
}

}  // namespace android

#endif /* SCAN_JNI_COMMON_H */
