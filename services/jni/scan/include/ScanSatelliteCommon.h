/*
 * What the satellite extensions share beyond every extension's pattern: the frame of a
 * notify function that the builder calls on its own thread, block fields written by offset,
 * the natives that take a Java info object, and Java strings from the builder's texts.
 */
#ifndef SCAN_SATELLITE_COMMON_H
#define SCAN_SATELLITE_COMMON_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <optional>

#include <jni.h>

#include "ScanExtensionCommon.h"
#include "SbDvbsScanParams.h"

namespace android {

/*
 * The frame of a notify function on a builder thread: " enter", the null checks of the
 * record and the tag (each logs and aborts), the JNIEnv on first use (GetEnv, or " GetEnv
 * NG!" and an attach that asserts), and at the end the detach (asserting) and " Leave".
 * Every line carries the notify function's own site.
 */
class BuilderNotify {
public:
    BuilderNotify(const ScanSite& site, const void* data, const void* tag);
    ~BuilderNotify();
    /* Null only when no VM has loaded the library. */
    JNIEnv* env();
    /* A Java callback returned: a pending exception is logged and cleared. */
    void checkCallback(const char* what);

    BuilderNotify(const BuilderNotify&) = delete;
    BuilderNotify& operator=(const BuilderNotify&) = delete;

private:
    ScanSite mSite;
    std::optional<ScopedJniThread> mThread;
};

/* The record of a notify, copied out of the builder's buffer. */
template <typename Record>
Record notifyRecord(const void* data) {
    Record record;
    memcpy(&record, data, sizeof(record));
    return record;
}

/* The text "<first>,<second>" of two 16-bit ids, as a Java string. */
jstring newIdString(JNIEnv* env, uint16_t first, uint16_t second);

/*
 * A Java string of a builder text field of `capacity` bytes, up to its first NUL or the
 * field's end. Broadcast texts need not be modified UTF-8: one that is not is read as
 * ISO-8859-1.
 */
jstring newBuilderString(JNIEnv* env, const char* field, size_t capacity);

/* A block field written at its offset (fields of SB_DVBS_SCAN_PARAMS, by offsetof). */
template <typename T>
void putBlockField(void* block, size_t offset, T value) {
    static_assert(sizeof(T) <= sizeof(SB_DVBS_SCAN_PARAMS), "a block field");
    memcpy(static_cast<uint8_t*>(block) + offset, &value, sizeof(value));
}


/*
 * What every satellite extension keeps first: the builder handle, stored by attach and
 * cleared by detach, which log "attach" and "detach" at debug priority whatever the level
 * property says.
 */
class SatelliteExtension : public JINativeScanExtension {
public:
    int attach(unsigned int builderHandle) override;
    int detach(unsigned int builderHandle) override;

protected:
    explicit SatelliteExtension(const char* tag) : mTag(tag) {}
    ~SatelliteExtension() override = default;
    uint32_t builderHandle() const { return mBuilderHandle; }

private:
    const char* mTag;
    uint32_t mBuilderHandle = 0;
};

/*
 * A native that takes a Java info object: its getters first, then `getNativeExtension` on
 * the peer. A handle of 0 names no extension and the native does nothing. A null info
 * object reads as all zeros. A getter or `getNativeExtension` that throws gives 0; the
 * exception is kept for the native's caller (its JavaCallerScope).
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
    JINativeScanExtension* peerExtension();

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
    Extension* extension() { return static_cast<Extension*>(peerExtension()); }
};

/*
 * The registration of a satellite extension class with a Java info object: the class's
 * natives and methods (getNativeExtension among them), then the nested info class found
 * (asserting "!(clazz.get() != __null)") and its getters cached.
 */
int registerSatelliteClass(JNIEnv* env, const char* className, const JNINativeMethod* methods,
                           int count, const MethodSpec* callbacks, size_t callbackCount,
                           const char* infoClassName, const MethodSpec* getters,
                           size_t getterCount, const ScanSite& site);

/*
 * A satellite identity text: satellite id, a comma, satellite record id. Each part is
 * accumulated as value * 10 + (character - '0') in 16 bits without checking for digits;
 * an empty part, or a missing comma, gives 0 for that part.
 */
struct SatelliteText {
    uint16_t satelliteId = 0;
    uint16_t recordId = 0;
};
SatelliteText parseSatelliteText(const char* text);

/* The onPreScan block check: a null block asserts "!(scanParames != __null)". */
SB_DVBS_SCAN_PARAMS* checkedBlock(void* block, const ScanSite& site);

}  // namespace android

#endif /* SCAN_SATELLITE_COMMON_H */
