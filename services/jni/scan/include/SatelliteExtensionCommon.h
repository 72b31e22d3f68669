/*
 * What the satellite scan extensions share beyond the common extension pattern. A satellite
 * extension keeps the user's choices until the scan starts, writes them and a notify
 * function into the DVB-S scan block in onPreScan, and turns what the builder reports
 * through that function (on the builder's own threads) into calls on its Java peer. Some of
 * its natives take a Java info object instead of an int[] and find their native object
 * through the peer's getNativeExtension.
 */
#ifndef SATELLITE_EXTENSION_COMMON_H
#define SATELLITE_EXTENSION_COMMON_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <functional>
#include <optional>

#include <jni.h>

#include "SbDvbsScanParams.h"
#include "ScanExtensionCommon.h"

/* The getNativeExtension "()J" lookup of every satellite class's registration. */
#define GET_NATIVE_EXTENSION_SPEC(slot) \
    {&(slot), "getNativeExtension", "()J", "!(gFields.getNativeExtension != __null)"}

namespace android {

/*
 * What every satellite extension keeps first: the builder handle, stored by attach and
 * cleared by detach, which log "attach" and "detach" at debug priority (whatever the level
 * property says, or through the log gate). The class keeps its Java peer (ExtensionPeer)
 * after its own fields.
 */
class SatelliteExtension : public JINativeScanExtension {
public:
    enum class AttachLog { kAlways, kGated };

    int attach(unsigned int builderHandle) override;
    int detach(unsigned int builderHandle) override;

protected:
    explicit SatelliteExtension(const char* tag, AttachLog log = AttachLog::kAlways)
        : mTag(tag), mAttachLog(log) {}
    ~SatelliteExtension() override = default;
    uint32_t builderHandle() const { return mBuilderHandle; }

private:
    void logHook(const char* hook) const;

    const char* mTag;
    AttachLog mAttachLog;
    uint32_t mBuilderHandle = 0;
};

/*
 * The block handed to onPreScan. A null one ends the process ("!(scanParames != __null)").
 * The block of an engine whose builder is not "sb_dvbs" (the extension was added to an
 * engine of another standard, whose block is smaller) gives null after an error line: the
 * extension then writes nothing.
 */
SB_DVBS_SCAN_PARAMS* satelliteBlockOf(void* scanParames, const ScanSite& site);

/* A block field written at its offset (fields of SB_DVBS_SCAN_PARAMS, by offsetof). */
template <typename T>
void putBlockField(SB_DVBS_SCAN_PARAMS* block, size_t offset, T value) {
    static_assert(sizeof(T) <= sizeof(SB_DVBS_SCAN_PARAMS), "a block field");
    memcpy(reinterpret_cast<uint8_t*>(block) + offset, &value, sizeof(value));
}

/* A notify function of the block and its tag, the peer's weak reference. */
template <typename Function>
void putNotify(Function* slot, void** tagSlot, Function notify, const ExtensionPeer& peer) {
    *slot = notify;
    *tagSlot = peer.object();
}

/*
 * The native object behind a Java peer: its getNativeExtension, whose low 32 bits are the
 * object's address. Null when the low half is 0, or when the call threw (the exception is
 * kept for the native's caller).
 */
JINativeScanExtension* peerExtension(JNIEnv* env, jobject thiz, jmethodID getNativeExtension,
                                     const ScanSite& site);

/*
 * A native that takes a Java info object: its getters first, then `getNativeExtension` on
 * the peer. A handle of 0 names no extension and the native does nothing. A null info
 * object reads as all zeros. A getter that throws gives 0; the exception is kept for the
 * native's caller (its JavaCallerScope).
 */
class InfoCallBase {
public:
    InfoCallBase(JNIEnv* env, jobject thiz, jobject info, jmethodID getNativeExtension,
                 const ScanSite& site)
        : mEnv(env), mThiz(thiz), mInfo(info), mGetNativeExtension(getNativeExtension),
          mSite(site) {}
    jint getInt(jmethodID getter);
    jboolean getBoolean(jmethodID getter);

protected:
    JINativeScanExtension* peer() { return peerExtension(mEnv, mThiz, mGetNativeExtension, mSite); }

private:
    JNIEnv* mEnv;
    jobject mThiz;
    jobject mInfo;
    jmethodID mGetNativeExtension;
    ScanSite mSite;
};

template <typename Extension>
class InfoCall : public InfoCallBase {
public:
    using InfoCallBase::InfoCallBase;
    Extension* extension() { return static_cast<Extension*>(peer()); }
};

/*
 * The int[] natives of the satellite extensions: the length checks, then element 1 names
 * the extension. With `setLabel` the handle is logged first as "[Set <label>:<handle>]".
 * A zero handle logs `nullText` as an "[ERROR]" line and the native does nothing more.
 * `operation` returns whether the array goes back to Java (element 0 = 0) or is only let
 * go. Every such native answers 0.
 */
template <typename Extension, typename Operation>
jint satelliteArrayCall(JNIEnv* env, jintArray array, const ScanSite& site, const char* setLabel,
                        const char* nullText, Operation operation) {
    JavaCallerScope scope(env);
    IntArrayCall<kExtensionArrayLimit> call(env, array, site);
    if (!call.accepted()) {
        return 0;
    }
    if (setLabel != nullptr) {
        SITE_LOGD(site, "[Set %s:%d]\n", setLabel, call.handle());
    }
    Extension* extension = call.template extension<Extension>();
    if (extension == nullptr) {
        SITE_XLOG(site, BRINOVA_LOG_DEBUG, "ERROR", "%s", nullText);
        call.release();
        return 0;
    }
    if (operation(*extension, call)) {
        return call.finish(0);
    }
    call.release();
    return 0;
}

/*
 * The frame of a notify function on a builder thread, every line at the notify function's
 * site. With kEnterLeave: " enter" first and " Leave" last (after the detach). A null record
 * or tag logs its error line (one line for either with kCombinedNullLine, else one for each)
 * and aborts. The thread's JNIEnv on first use: GetEnv (JNI 1.4), or else an attach that
 * asserts "!((sts == (0)) && (env != __null))", preceded by " GetEnv NG!" with kGetEnvLine;
 * a thread attached here is detached when the frame ends (asserting "!(sts == (0))").
 */
class BuilderNotify {
public:
    enum Options : unsigned {
        kEnterLeave = 1u << 0,
        kGetEnvLine = 1u << 1,
        kCombinedNullLine = 1u << 2,
    };
    BuilderNotify(const ScanSite& site, const void* data, const void* tag, unsigned options);
    ~BuilderNotify();
    /* Null only when no VM has loaded the library. */
    JNIEnv* env();
    /* A Java callback returned: a pending exception is logged and cleared. */
    void checkCallback(const char* what);

    BuilderNotify(const BuilderNotify&) = delete;
    BuilderNotify& operator=(const BuilderNotify&) = delete;

private:
    ScanSite mSite;
    unsigned mOptions;
    std::optional<ScopedJniThread> mThread;
};

/* The frame of the installation extensions' notify functions (detections, NIT, BAT, region
 * lists). */
constexpr unsigned kInstallationNotify = BuilderNotify::kEnterLeave | BuilderNotify::kGetEnvLine;

/* The record of a notify, copied out of the builder's buffer. */
template <typename Record>
Record notifyRecord(const void* data) {
    Record record;
    memcpy(&record, data, sizeof(record));
    return record;
}

/*
 * A Java call with arguments on a builder thread: the exception it may throw is logged and
 * cleared (nobody on this thread can receive it).
 */
template <typename... Args>
void callJavaVoid(JNIEnv* env, jobject object, jmethodID method, const ScanSite& site,
                  const char* what, Args... args) {
    env->CallVoidMethod(object, method, args...);
    checkJavaException(env, site, what);
}

/*
 * The parts of a builder table record that its mask announces, each reported to Java by its
 * own function, in the order of `reports`.
 */
template <typename Record>
struct MaskReport {
    uint32_t bit;
    void (*report)(JNIEnv* env, jobject peer, const Record& record, const ScanSite& site);
};
template <typename Record, size_t N>
void reportMasked(JNIEnv* env, jobject peer, const Record& record, uint32_t mask,
                  const MaskReport<Record> (&reports)[N], const ScanSite& site) {
    for (const MaskReport<Record>& r : reports) {
        if (mask & r.bit) r.report(env, peer, record, site);
    }
}

/* The text "<first>,<second>" of two 16-bit ids, as a Java string. */
jstring newIdString(JNIEnv* env, uint16_t first, uint16_t second);

/*
 * A Java string of a builder text field of `capacity` bytes, up to its first NUL or the
 * field's end (its terminator is not trusted). Broadcast texts need not be modified UTF-8:
 * the operator tables' bytes that are not become '?', the installation records' texts that
 * are not are read whole as ISO-8859-1.
 */
enum class ForeignText { kQuestionMark, kLatin1 };
jstring newBuilderString(JNIEnv* env, const char* field, size_t capacity, ForeignText foreign);

/* Calls the setters of one Java object made from a wire record. */
class JavaSetters {
public:
    JavaSetters(JNIEnv* env, jobject object, const ScanSite& site)
        : mEnv(env), mObject(object), mSite(site) {}
    JNIEnv* env() const { return mEnv; }
    void setInt(jmethodID setter, jint value);
    void setBoolean(jmethodID setter, bool value);
    /* A text field of `capacity` bytes, as a Java string. */
    void setText(jmethodID setter, const char* field, size_t capacity);
    /* An int[] of `count` values; a failed array logs "NewIntArray(size %d) FAIL!" instead. */
    void setInts(jmethodID setter, const jint* values, jsize count);

private:
    JNIEnv* mEnv;
    jobject mObject;
    ScanSite mSite;
};

/*
 * A Java array of `count` objects of `clazz`, each made with `init` ("()V"), handed to `fill`
 * with its index and stored. Null, after "NewIntArray(size %d) FAIL!" at the caller's site,
 * when the array cannot be made.
 */
jobjectArray newRecordObjectArray(JNIEnv* env, jclass clazz, jmethodID init, jsize count,
                                  const ScanSite& site,
                                  const std::function<void(JavaSetters&, jsize)>& fill);

/* A Java String[] of `count` builder text fields (bytes Java cannot take become '?'); null
 * as above. */
jobjectArray newFieldStringArray(JNIEnv* env, jsize count, const ScanSite& site,
                                 const std::function<const char*(jsize)>& field,
                                 size_t capacity);

/*
 * A process-wide global reference to a nested class of a peer, with its "()V" constructor
 * and the setters named in `methods`; taken by the first constructor of the extension.
 * A missing class logs "<notFound>" as an "[INFO ]" line and leaves the reference null.
 */
struct NestedClass {
    jclass clazz = nullptr;
    jmethodID init = nullptr;
};
void takeNestedClass(JNIEnv* env, const char* className, NestedClass& nested,
                     const MethodSpec* setters, size_t count, const char* notFound,
                     const ScanSite& site);

/*
 * The registration of a satellite class: its natives (on failure `failText` at error level
 * and 0), "<function> OK.", the class found (asserting "!(clazz.get() != __null)") and
 * `callbacks` cached; then, for `later`, the class found again (a miss there logs
 * `notFoundText` as an "[INFO ]" line instead); then the nested info class found
 * (asserting) and its getters cached. Every missing method asserts with its text.
 */
struct SatelliteRegistration {
    const char* className;
    const JNINativeMethod* methods;
    int count;
    const MethodSpec* callbacks;
    size_t callbackCount;
    const char* failText;
    const MethodSpec* later;
    size_t laterCount;
    const char* notFoundText;
    const char* infoClassName;
    const MethodSpec* infoGetters;
    size_t infoCount;
};
constexpr const char* kRegistrationFailed = "Failed to register tuner native methods";
int registerSatelliteClass(JNIEnv* env, const SatelliteRegistration& registration,
                           const ScanSite& site);

/* A method that a class may lack: null then, with nothing left pending. */
jmethodID lookUpOptionalMethod(JNIEnv* env, const char* className, const char* name,
                               const char* signature);

}  // namespace android

#endif /* SATELLITE_EXTENSION_COMMON_H */
