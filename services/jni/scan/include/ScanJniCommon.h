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
 * condition (so NULL reads __null and JNI_OK reads (0)); the message names the calling file
 * (SCAN_SOURCE_NAME) and the line of the assertion.
 */
#define SCAN_ASSERT(cond) SCAN_ASSERT_EXPANDED_(!(cond))
#define SCAN_ASSERT_EXPANDED_(failed)                        \
    do {                                                     \
        if (failed) {                                        \
            ::android::scanFatal(SCAN_SITE, #failed);        \
        }                                                    \
    } while (0)

namespace android {

/* Fatal assertion with an explicit condition text: "<source> FATAL Error at :<line>". */
[[noreturn]] void scanFatal(const ScanSite& site, const char* condText);

/*
 * The calling thread's JNIEnv: GetEnv (JNI 1.4), or else AttachCurrentThread, in which case
 * *attachedHere is set. Null when there is no JavaVM or the attach failed.
 */
JNIEnv* getOrAttachEnv(bool* attachedHere);

/*
 * The JNIEnv of the calling thread for the length of a call: GetEnv (JNI 1.4), or else
 * AttachCurrentThread, which is detached again when the scope ends. A failed attach or
 * detach ends the process at the caller's site; the assertion texts name the status
 * variable `sts` (the callbacks' wording) or `ret` (the engine's).
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
 * The JNIEnv of the calling thread, attached here if needed and detached again when the
 * scope ends. Unlike ScopedJniThread it never ends the process: env() is null when no
 * environment can be had (for a destructor that may run on any thread).
 */
class ScanEnvAttacher {
public:
    ScanEnvAttacher();
    ~ScanEnvAttacher();
    JNIEnv* env() const { return mEnv; }

    ScanEnvAttacher(const ScanEnvAttacher&) = delete;
    ScanEnvAttacher& operator=(const ScanEnvAttacher&) = delete;

private:
    JNIEnv* mEnv = nullptr;
    bool mAttached = false;
};

/*
 * Open for the length of a native that Java called. A Java exception thrown by a method the
 * native calls on this thread (itself, or through a builder callback that runs synchronously
 * under it) is taken out and kept, so that the native finishes its steps with JNI clean; it
 * is thrown again as the scope ends, just before the native returns to Java. The first one
 * is kept; later ones are logged and cleared. Scopes nest with nested natives.
 */
class JavaCallerScope {
public:
    explicit JavaCallerScope(JNIEnv* env);
    ~JavaCallerScope();

    JavaCallerScope(const JavaCallerScope&) = delete;
    JavaCallerScope& operator=(const JavaCallerScope&) = delete;

    /* The scope open on the calling thread for `env`, or null. */
    static JavaCallerScope* current(const JNIEnv* env);
    /* Takes the pending exception out of `env` into the scope; false when it keeps one. */
    bool keepPending();

private:
    JNIEnv* mEnv;
    jthrowable mKept = nullptr;
    JavaCallerScope* mOuter;
};

/*
 * After every call into Java: a JNI call with an exception pending is illegal. On a thread
 * where a native's JavaCallerScope is open the exception goes to that native's Java caller;
 * elsewhere (builder threads, the event thread, a thread attached here) nobody can receive
 * it, so it is logged at error level with `what` and cleared. True when there was one.
 */
bool checkJavaException(JNIEnv* env, const ScanSite& site, const char* what);

/* A pair of global and weak global references to a Java peer object and its class. */
class JavaPeerRefs {
public:
    /* GetObjectClass of `obj` (asserting "!(clazz != __null)" at `site`), a global
     * reference to the class and a weak global reference to `obj`. */
    void take(JNIEnv* env, jobject obj, const ScanSite& site);
    /* Deletes what is held, on `env`, and forgets it. */
    void release(JNIEnv* env);
    /* The weak global reference, the target of every Java callback. */
    jobject object() const { return mObject; }

private:
    jclass mClass = nullptr;
    jobject mObject = nullptr;
};

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
