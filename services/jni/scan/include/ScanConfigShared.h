/*
 * Pieces the configurations of the cable, DTMB, ATSC, clear-QAM and ISDB builders share:
 * String settings read by nativeSetup, the three-letter codes of the blocks, texts from
 * builder records made safe for Java, and the service-update report.
 */
#ifndef SCAN_CONFIG_SHARED_H
#define SCAN_CONFIG_SHARED_H

#include <stddef.h>
#include <stdint.h>

#include <jni.h>

#include "ScanJniCommon.h"

namespace android {

/* The value of a String getter of `obj`, held until the scope ends. */
class SettingText {
public:
    SettingText(JNIEnv* env, jobject obj, jmethodID getter, const ScanSite& site, const char* what);
    ~SettingText();
    /* The getter answered null (or threw). */
    bool isNull() const { return mString == nullptr; }
    /* The characters; null when the getter answered null or the VM had no memory for them. */
    const char* c_str() const { return mChars; }

    SettingText(const SettingText&) = delete;
    SettingText& operator=(const SettingText&) = delete;

private:
    JNIEnv* mEnv;
    jstring mString = nullptr;
    const char* mChars = nullptr;
};



/*
 * A text of a builder record for NewStringUTF: the bytes of `from` up to its 0 or its
 * `fromRoom` bytes, whichever comes first, cut to fit `to` with its terminating 0; a byte
 * that does not belong to a valid (modified) UTF-8 sequence becomes '?'.
 */
void copyModifiedUtf8(char* to, size_t toSize, const char* from, size_t fromRoom);

/* Java's service-update callback `method` on `tag` with int[]{added, deleted}; a failed
 * array allocation ends the process at `site` ("!(intInput != __null)"). */
void sendServiceUpdate(JNIEnv* env, jobject tag, jmethodID method, uint16_t added,
                       uint16_t deleted, const ScanSite& site);

}  // namespace android

#endif /* SCAN_CONFIG_SHARED_H */
