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

#include <functional>

#include <jni.h>

#include "SbDvbsScanParams.h"
#include "ScanExtensionCommon.h"

/* The getNativeExtension "()J" lookup of every satellite class's registration. */
#define GET_NATIVE_EXTENSION_SPEC(slot) \
    {&(slot), "getNativeExtension", "()J", "!(gFields.getNativeExtension != __null)"}

namespace android {

/*
 * A satellite extension: the builder handle of attach and detach, and its Java peer, whose
 * weak reference is the tag of the notify function the extension writes into the block.
 */
class OperatorServiceExtension : public JINativeScanExtension {
public:
    int attach(unsigned int builderHandle) override;
    int detach(unsigned int builderHandle) override;
    jobject peerObject() const { return mPeer.object(); }

protected:
    OperatorServiceExtension(JNIEnv* env, jobject thiz, const char* className, const ScanSite& site,
                       ExtensionPeer::CreateLog createLog = ExtensionPeer::CreateLog::kWithPointers);
    ~OperatorServiceExtension() override = default;

    /* A notify function of the block and its tag, the peer's weak reference. */
    void registerNotify(x_sb_dvbs_built_nfy_fct* function, void** tag,
                        x_sb_dvbs_built_nfy_fct notify) const {
        *function = notify;
        *tag = peerObject();
    }

private:
    const char* mTag;
    uint32_t mBuilderHandle = 0;
    ExtensionPeer mPeer;
};

/* The block handed to onPreScan; a null one ends the process ("!(scanParames != __null)"). */
SB_DVBS_SCAN_PARAMS* scanBlockOf(void* scanParames, const ScanSite& site);

/*
 * The native object behind a Java peer: its getNativeExtension, whose low 32 bits are the
 * object's address. Null when the handle is 0.
 */
JINativeScanExtension* peerExtension(JNIEnv* env, jobject thiz, jmethodID getNativeExtension,
                                     const ScanSite& site);

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

/* How a notify function words a null record or tag. */
enum class NullNotifyText {
    kSeparate,  // one line for the record, another for the tag
    kCombined,  // one line for either
};

/*
 * The frame of a notify function on a builder thread. A null record or tag logs its error
 * line at the caller's site and aborts. Then the thread's JNIEnv: GetEnv (JNI 1.4), or
 * else attach ("GetEnv NG!" logged first when `logGetEnvFailure`; a failed attach asserts
 * "!((sts == (0)) && (env != __null))"), detached again when the frame ends (asserting
 * "!(sts == (0))").
 */
class NotifyFrame {
public:
    NotifyFrame(const ScanSite& site, bool logGetEnvFailure);
    JNIEnv* env() const { return mThread.env(); }

    /* Ends the process after the error line when `data` or `tag` is null. */
    static void abortOnNull(const void* data, const void* tag, NullNotifyText text,
                            const ScanSite& site);

    NotifyFrame(const NotifyFrame&) = delete;
    NotifyFrame& operator=(const NotifyFrame&) = delete;

private:
    ScopedJniThread mThread;
};

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

/* A Java string of a builder's text field of `capacity` bytes (its terminator not trusted). */
jstring newStringFromField(JNIEnv* env, const char* field, size_t capacity);

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

/* A Java String[] of `count` builder text fields; null as above. */
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
 * `first` cached, then, when there is a `second`, the class found again for it (a miss
 * there logs `notFoundText` as an "[INFO ]" line instead). Every missing method asserts with
 * its text.
 */
struct OperatorServiceRegistration {
    const char* className;
    const JNINativeMethod* methods;
    int count;
    const MethodSpec* first;
    size_t firstCount;
    const MethodSpec* second;
    size_t secondCount;
    const char* failText;
    const char* notFoundText;
};
int registerOperatorServiceClass(JNIEnv* env, const OperatorServiceRegistration& registration,
                           const ScanSite& site);

/* A method that a class may lack: null then, with nothing left pending. */
jmethodID lookUpOptionalMethod(JNIEnv* env, const char* className, const char* name,
                               const char* signature);

/*
 * The satellite identity text "id,recordId" as numbers: the characters before the first
 * comma and those after it, each folded in as value * 10 + (c - '0') in 16 bits with no
 * check that they are digits; an empty part gives 0. Logs the text and both numbers in the
 * "[source][function][line]" form at the caller's site.
 */
struct SatelliteIdentity {
    uint16_t satelliteId;
    uint16_t recordId;
};
SatelliteIdentity parseSatelliteIdentity(const char* text, const ScanSite& site);

}  // namespace android

#endif /* SATELLITE_EXTENSION_COMMON_H */
