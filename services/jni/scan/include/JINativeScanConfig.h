/*
 * A scan configuration: the native peer of one Java scan config object of one broadcast
 * standard. It names the scan-builder engine to open, hands out the standard's parameter
 * block and scan-maps function, and passes the settings check and status to Java.
 */
#ifndef JI_NATIVE_SCAN_CONFIG_H
#define JI_NATIVE_SCAN_CONFIG_H

#include <stddef.h>
#include <stdint.h>

#include <initializer_list>

#include <jni.h>
#include <utils/RefBase.h>

#include "ScanJniCommon.h"

namespace android {

class JINativeScanConfig : public RefBase {
public:
    virtual const char* getSbEbEngineName() = 0;
    virtual void* getSbScanMapsNotify() = 0;
    virtual void* getSbScanParams(int unused) = 0;
    virtual jobject getSbScanConfigObject() = 0;
    virtual int checkScanMaps() = 0;
    virtual void onStatus(int status) = 0;

protected:
    ~JINativeScanConfig() override = default;
};

/*
 * The configuration a scan-maps tag names, held for the call; null when the tag is null or
 * names no configuration alive now (a builder the middleware refused to close may still ask
 * with the tag of a configuration Java has released since). Every standard's configuration
 * is counted among the live ones from its construction to its destruction.
 */
sp<JINativeScanConfig> scanConfigOfTag(void* tag);
void addLiveScanConfig(JINativeScanConfig* config);
void removeLiveScanConfig(JINativeScanConfig* config);

/*
 * The parameter block of the standard, then what every standard's configuration holds after
 * it: a weak global reference to the Java config object, a global reference to its class,
 * and a spare word.
 */
template <typename Block>
class ScanConfigPeer : public virtual JINativeScanConfig {
public:
    void* getSbScanParams(int /* unused */) override { return &mBlock; }
    jobject getSbScanConfigObject() override { return mRefs.object(); }

protected:
    ScanConfigPeer(JNIEnv* env, jobject obj, const ScanSite& site) : mBlock() {
        addLiveScanConfig(this);
        mRefs.take(env, obj, site);
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "native config create instance");
    }
    ~ScanConfigPeer() override { removeLiveScanConfig(this); }

    /* Deletes both references on this thread (attached for it if need be). Returns false,
     * touching nothing, when there is no JavaVM: the caller then logs its own line and
     * aborts. */
    bool releaseRefs(const ScanSite& site) {
        if (javaVM == nullptr) {
            return false;
        }
        ScopedJniThread thread(site, ScopedJniThread::kRet);
        mRefs.release(thread.env());
        mSpare = 0;
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "native config release instance, %p", this);
        return true;
    }

    /* Java checkSettings() and onStatus(int), from whatever thread calls. */
    int callCheckSettings(jmethodID checkSettings, const ScanSite& site) {
        ScopedJniThread thread(site, ScopedJniThread::kSts);
        int ret = thread.env()->CallIntMethod(mRefs.object(), checkSettings);
        checkJavaException(thread.env(), site, "checkSettings");
        SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "native checkScanMaps, %d", ret);
        return ret;
    }
    void callOnStatus(jmethodID onStatus, int status, const ScanSite& site) {
        ScopedJniThread thread(site, ScopedJniThread::kSts);
        thread.env()->CallVoidMethod(mRefs.object(), onStatus, status);
        checkJavaException(thread.env(), site, "onStatus");
    }

    Block mBlock;
    JavaPeerRefs mRefs;
    uint32_t mSpare = 0;  // read by nothing; kept with the layout every standard shares
};

/*
 * Bytes of `text` (up to its NUL, at most `max`) that form whole characters of modified
 * UTF-8, which NewStringUTF requires (Android's CheckJNI aborts on anything else).
 */
size_t modifiedUtf8Prefix(const char* text, size_t max);

/* A three-letter code into a 4-byte field: at most 3 bytes, never part of a character. */
void copyCode(char (&field)[4], const char* text);

/*
 * The common frame of a scan-maps callback once the tag is known: the thread's JNIEnv
 * (attached here when needed, detached when the call ends), the country string and the
 * int arrays handed to Java's onScanMapCommands.
 */
class ScanMapsCall {
public:
    ScanMapsCall(const ScanSite& site, const char* country);
    ~ScanMapsCall();
    JNIEnv* env() const { return mThread.env(); }
    jstring country() const { return mCountry; }
    /* Both arrays are local references owned by the caller; a failed allocation ends the
     * process at `site`. */
    jintArray newInput(const ScanSite& site, const jint* values, jsize count);
    jintArray newOutput(const ScanSite& site, jsize count);
    void readOutput(jintArray output, jsize count, jint* into);
    /* The too-small-buffer answer leaves a thread attached here attached; kept so. */
    void keepAttached() { mThread.keepAttached(); }

private:
    ScopedJniThread mThread;
    jstring mCountry = nullptr;
};

/* Java's native pointer of a config object through its getNativeConfig/setNativeConfig
 * pair: Java's stored value owns one strong reference. Returns the previous config. */
sp<JINativeScanConfig> exchangeNativeConfig(JNIEnv* env, jobject thiz,
                                            const sp<JINativeScanConfig>& config,
                                            jmethodID getNativeConfig, jmethodID setNativeConfig,
                                            const ScanSite& site, const char* setterName);

/* The methods of one more class that a configuration's registration caches: its settings
 * class, or a class nested in the settings. */
struct ClassMethods {
    const char* className;
    const MethodSpec* specs;
    size_t count;
};

/*
 * The registration step every configuration class repeats: its natives registered and its
 * own methods cached (registerClass: "Failed to register tuner native methods" and 0 when
 * the natives are refused), then the methods of each class of `more` cached in order, each
 * class found again (asserting "!(clazz.get() != __null)") and each missing method
 * asserting with its own text. Returns 1.
 */
int registerConfigClass(JNIEnv* env, const char* configClass, const JNINativeMethod* methods,
                        int count, const MethodSpec* configMethods, size_t configCount,
                        std::initializer_list<ClassMethods> more, const ScanSite& site);
template <size_t N, size_t M>
int registerConfigClass(JNIEnv* env, const char* configClass, const JNINativeMethod (&methods)[N],
                        const MethodSpec (&configMethods)[M],
                        std::initializer_list<ClassMethods> more, const ScanSite& site) {
    return registerConfigClass(env, configClass, methods, static_cast<int>(N), configMethods, M,
                               more, site);
}

}  // namespace android

#endif /* JI_NATIVE_SCAN_CONFIG_H */
