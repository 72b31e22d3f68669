/*
 * A scan configuration: the native peer of one Java scan config object of one broadcast
 * standard. It names the scan-builder engine to open, hands out the standard's parameter
 * block and scan-maps function, and passes the settings check and status to Java.
 */
#ifndef JI_NATIVE_SCAN_CONFIG_H
#define JI_NATIVE_SCAN_CONFIG_H

#include <stdint.h>

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
 * What every standard's configuration holds after its parameter block: a weak global
 * reference to the Java config object, a global reference to its class, and a spare word.
 */
struct ScanConfigRefs {
    jobject object = nullptr;  /* weak global reference */
    jclass clazz = nullptr;    /* global reference */
    uint32_t spare = 0;

    void take(JNIEnv* env, jobject obj, const ScanSite& site);
    /* Deletes both references. Returns false, touching nothing, when there is no JavaVM:
     * the caller then logs its own line and aborts. */
    bool release(const ScanSite& site, const void* config);
    /* Java checkSettings() and onStatus(int), from whatever thread calls. */
    int callCheckSettings(jmethodID checkSettings, const ScanSite& site) const;
    void callOnStatus(jmethodID onStatus, int status, const ScanSite& site) const;
};

/* The parameter block of the standard, then the Java references. */
template <typename Block>
class ScanConfigPeer : public virtual JINativeScanConfig {
public:
    void* getSbScanParams(int /* unused */) override { return &mBlock; }
    jobject getSbScanConfigObject() override { return mRefs.object; }

protected:
    ScanConfigPeer(JNIEnv* env, jobject obj, const ScanSite& site) : mBlock() {
        mRefs.take(env, obj, site);
    }

    Block mBlock;
    ScanConfigRefs mRefs;
};

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
    /* Both arrays are local references owned by the caller. */
    jintArray newInput(const jint* values, jsize count);
    jintArray newOutput(jsize count);
    void readOutput(jintArray output, jsize count, jint* into);
    /* The too-small-buffer answer leaves a thread attached here attached; kept so. */
    void keepAttached() { mThread.keepAttached(); }

private:
    ScanSite mSite;
    ScopedJniThread mThread;
    jstring mCountry = nullptr;
};

/* Java's native pointer of a config object through its getNativeConfig/setNativeConfig
 * pair: Java's stored value owns one strong reference. Returns the previous config. */
sp<JINativeScanConfig> exchangeNativeConfig(JNIEnv* env, jobject thiz,
                                            const sp<JINativeScanConfig>& config,
                                            jmethodID getNativeConfig, jmethodID setNativeConfig,
                                            const ScanSite& site, const char* setterName);

}  // namespace android

#endif /* JI_NATIVE_SCAN_CONFIG_H */
