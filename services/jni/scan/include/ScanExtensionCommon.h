/*
 * What every scan extension's Java peer shares: the references to the Java object, the
 * nativeSetup handshake, the int[] call convention of the other natives, the Java callbacks
 * from the engine's threads and the registration steps. Each extension file states only
 * its particulars: its fields, its builder keys and its array layouts.
 */
#ifndef SCAN_EXTENSION_COMMON_H
#define SCAN_EXTENSION_COMMON_H

#include <stddef.h>
#include <stdint.h>

#include <array>
#include <atomic>
#include <functional>
#include <initializer_list>

#include <jni.h>

#include "JINativeScanExtension.h"
#include "ScanJniCommon.h"
#include "x_mw_api.h"

namespace android {

/* Element 0 of an extension's int[]: the item does not exist, or the builder refused. */
constexpr jint kExtensionFailed = -6;

// An extension's builder handle: set by attach and detach on Java threads (close() among
// them, which may run while the scan ends), read by the hooks on builder and event threads.
using BuilderHandle = std::atomic<uint32_t>;
/* The longest int[] an extension native accepts unless its class says otherwise. */
constexpr jsize kExtensionArrayLimit = 50;

/* The handle Java keeps for an extension (its address) and the extension it names. */
jint extensionHandleOf(JINativeScanExtension* extension);
template <typename Extension>
Extension* extensionOf(jint handle) {
    return static_cast<Extension*>(
        JINativeScanExtension::fromHandle(static_cast<int64_t>(static_cast<uint32_t>(handle))));
}

/*
 * The usual peer of an extension: the references to its Java object, taken by the
 * constructor's steps and released on the environment that created them.
 */
class ExtensionPeer {
public:
    /* How the constructor's last line reads: with the three pointers, bare, or left to the
     * extension (which has more to say). */
    enum class CreateLog { kWithPointers, kBare, kNone };

    ExtensionPeer(JNIEnv* env, jobject thiz, const void* extension, const char* className,
                  const ScanSite& site, CreateLog createLog = CreateLog::kWithPointers);
    ~ExtensionPeer();
    jobject object() const { return mRefs.object(); }

    /* The constructor's steps for an extension that keeps no creating environment. */
    static void take(JavaPeerRefs& refs, JNIEnv* env, jobject thiz, const void* extension,
                     const char* className, CreateLog createLog, const ScanSite& site);

    ExtensionPeer(const ExtensionPeer&) = delete;
    ExtensionPeer& operator=(const ExtensionPeer&) = delete;

private:
    JavaPeerRefs mRefs;
    JNIEnv* mCreatingEnv;
};

/*
 * Checks the length of a native's int[] against the class's limit and logs a refusal at the
 * native's site. Returns the length, or -1 when refused.
 */
jsize checkExtensionArray(JNIEnv* env, jintArray array, jsize limit, const ScanSite& site);

/*
 * One call of an extension native through its int[]: element 0 the status out, element 1
 * the native handle in, the rest the native's own inputs and outputs. The array is copied
 * into a zeroed buffer of the class's limit; finish() writes back the array's own length.
 * The call carries the native's site: the operations it is handed to log with it.
 */
template <jsize Limit>
class IntArrayCall {
public:
    IntArrayCall(JNIEnv* env, jintArray array, const ScanSite& site)
        : mEnv(env), mArray(array), mSite(site),
          mLength(checkExtensionArray(env, array, Limit, site)) {
        if (mLength > 0) {
            env->GetIntArrayRegion(array, 0, mLength, mElements.data());
        }
    }

    /* False when the length was refused: the native then answers 0, the array untouched. */
    bool accepted() const { return mLength > 0; }
    const ScanSite& site() const { return mSite; }
    jint& operator[](size_t index) { return mElements[index]; }
    jint handle() const { return mElements[1]; }
    template <typename Extension>
    Extension* extension() const { return extensionOf<Extension>(mElements[1]); }

    /* Elements [from, to] set to 0. */
    void clear(size_t from, size_t to) {
        for (size_t i = from; i <= to && i < mElements.size(); ++i) mElements[i] = 0;
    }

    /* The array let go without writing it back. */
    void release() { mEnv->DeleteLocalRef(mArray); }

    /* Status into element 0, the array written back and its local reference deleted. */
    jint finish(jint status) {
        mElements[0] = status;
        mEnv->SetIntArrayRegion(mArray, 0, mLength, mElements.data());
        mEnv->DeleteLocalRef(mArray);
        return status;
    }

private:
    JNIEnv* mEnv;
    jintArray mArray;
    ScanSite mSite;
    jsize mLength;
    std::array<jint, Limit> mElements{};
};

/*
 * The nativeSetup handshake: a new native extension whose address goes back to Java in
 * element 1 (element 0 = 0). The object lives for ever: nothing in the library owns it.
 */
template <typename Extension, jsize Limit = kExtensionArrayLimit>
jint setupExtension(JNIEnv* env, jobject thiz, jintArray array, const ScanSite& site) {
    return setupExtension<Extension, Limit>(env, thiz, array, site, [](Extension*, IntArrayCall<Limit>&) {});
}

/*
 * The same with a class's own steps right after construction: `init(extension, call)`, a
 * member function of the extension taking the call (the array's elements and the site).
 */
template <typename Extension, jsize Limit = kExtensionArrayLimit, typename Init>
jint setupExtension(JNIEnv* env, jobject thiz, jintArray array, const ScanSite& site, Init init) {
    JavaCallerScope scope(env);
    IntArrayCall<Limit> call(env, array, site);
    if (!call.accepted()) {
        return 0;
    }
    auto* extension = new Extension(env, thiz);
    std::invoke(init, extension, call);
    jint handle = extensionHandleOf(extension);
    call[0] = 0;
    call[1] = handle;
    SITE_LOGD(site, "[%d]\n", handle);
    return call.finish(0);
}

/*
 * The frame of every int[] native but nativeSetup: the length check, the extension named by
 * element 1, one of its operations, and the status written back and returned.
 */
template <typename Extension, jsize Limit>
jint extensionCall(JNIEnv* env, jintArray array, const ScanSite& site,
                   jint (Extension::*operation)(IntArrayCall<Limit>&)) {
    JavaCallerScope scope(env);
    IntArrayCall<Limit> call(env, array, site);
    if (!call.accepted()) {
        return 0;
    }
    Extension* extension = call.template extension<Extension>();
    if (extension == nullptr) {
        return call.finish(kExtensionFailed);  // a zero handle names no item
    }
    return call.finish((extension->*operation)(call));
}

/* x_strlen of a name field of `capacity` bytes that may lack its terminator. */
size_t boundedNameLength(const char* name, size_t capacity);

constexpr size_t kNameLastElement = 48;

/*
 * Writes a name one byte per element: elements [from, 48] cleared, then the name's bytes
 * (unsigned) from `from`, at most `maxBytes` of them, and element 48 = 0. `name` holds
 * `capacity` bytes and need not be terminated.
 */
template <jsize Limit>
void putNameElements(IntArrayCall<Limit>& call, size_t from, const char* name, size_t capacity,
                     size_t maxBytes) {
    static_assert(Limit > static_cast<jsize>(kNameLastElement), "the buffer must reach element 48");
    call.clear(from, kNameLastElement);
    size_t length = boundedNameLength(name, capacity);
    if (length > maxBytes) length = maxBytes;
    const auto* bytes = reinterpret_cast<const uint8_t*>(name);
    for (size_t i = 0; i < length; ++i) {
        call[from + i] = bytes[i];
    }
    call[kNameLastElement] = 0;
}

/*
 * Calls the Java callbacks "()V" on `object` in order, from any thread: GetEnv, or attach
 * (asserting "!((sts == (0)) && (env != __null))") and detach again (asserting
 * "!(sts == (0))").
 */
void callJavaCallbacks(jobject object, std::initializer_list<jmethodID> callbacks,
                       const ScanSite& site);

/*
 * The registration steps of an extension class: its natives, "<function> OK." with the
 * registration function's name from `site`, the class found again and its callbacks cached
 * (each asserting with its own text). Returns 1, or 0 after "Failed to register tuner
 * native methods".
 */
int registerExtensionClass(JNIEnv* env, const char* className, const JNINativeMethod* methods,
                           int count, const MethodSpec* callbacks, size_t callbackCount,
                           const ScanSite& site);

/* Builder keys: an index passed as the key info, and a small value passed by value; the
   middleware's key calls take both in a pointer. */
inline SB_KEY_INFO_T keyIndex(uint32_t index) {
    return reinterpret_cast<SB_KEY_INFO_T>(static_cast<uintptr_t>(index));  // NOLINT(performance-no-int-to-ptr)
}
inline void* keyValue(uint32_t value) {
    return reinterpret_cast<void*>(static_cast<uintptr_t>(value));  // NOLINT(performance-no-int-to-ptr)
}
/* x_sb_get of `length` bytes into `value`. */
inline int32_t getKey(HANDLE_T builder, SB_KEY_TYPE_T key, SB_KEY_INFO_T info, void* value,
                      uint32_t length) {
    uint32_t size = length;
    return x_sb_get(builder, key, info, &size, value);
}

}  // namespace android

#endif /* SCAN_EXTENSION_COMMON_H */
