// What the configurations of the cable, DTMB, ATSC, clear-QAM and ISDB builders share.
#include "ScanConfigShared.h"

#include <string.h>

#include "x_mem.h"

namespace android {

SettingText::SettingText(JNIEnv* env, jobject obj, jmethodID getter, const ScanSite& site,
                         const char* what)
    : mEnv(env), mString(static_cast<jstring>(env->CallObjectMethod(obj, getter))) {
    if (checkJavaException(env, site, what)) {
        // A getter that threw has no value; the exception waits for the native's caller.
        if (mString != nullptr) env->DeleteLocalRef(mString);
        mString = nullptr;
    }
    if (mString != nullptr) {
        mChars = env->GetStringUTFChars(mString, nullptr);
        if (mChars == nullptr) checkJavaException(env, site, what);  // OutOfMemoryError
    }
}

SettingText::~SettingText() {
    if (mChars != nullptr) mEnv->ReleaseStringUTFChars(mString, mChars);
    if (mString != nullptr) mEnv->DeleteLocalRef(mString);
}

namespace {

// Length of the valid modified UTF-8 sequence at s[0..n), or 0 when it is not one. Four-byte
// forms are not modified UTF-8: Java's encoding writes supplementary characters as pairs.
size_t sequenceLength(const uint8_t* s, size_t n) {
    const uint8_t lead = s[0];
    size_t len = lead < 0x80 ? 1 : (lead & 0xE0) == 0xC0 ? 2 : (lead & 0xF0) == 0xE0 ? 3 : 0;
    if (len == 0 || len > n) return 0;
    for (size_t i = 1; i < len; ++i) {
        if ((s[i] & 0xC0) != 0x80) return 0;
    }
    return len;
}

}  // namespace

void copyModifiedUtf8(char* to, size_t toSize, const char* from, size_t fromRoom) {
    const auto* src = reinterpret_cast<const uint8_t*>(from);
    size_t n = 0;
    while (n < fromRoom && src[n] != 0) ++n;
    size_t out = 0;
    for (size_t i = 0; i < n && out + 1 < toSize;) {
        const size_t len = sequenceLength(src + i, n - i);
        if (len == 0 || out + len >= toSize) {
            if (len != 0) break;  // a whole character that does not fit ends the text
            to[out++] = '?';
            ++i;
            continue;
        }
        x_memcpy(to + out, src + i, len);
        out += len;
        i += len;
    }
    to[out] = '\0';
}

void sendServiceUpdate(JNIEnv* env, jobject tag, jmethodID method, uint16_t added,
                       uint16_t deleted, const ScanSite& site) {
    const jint counts[2] = {added, deleted};
    jintArray intInput = env->NewIntArray(2);
    if (intInput == nullptr) scanFatal(site, "!(intInput != __null)");
    env->SetIntArrayRegion(intInput, 0, 2, counts);
    env->CallVoidMethod(tag, method, intInput);
    checkJavaException(env, site, "service update");
    env->DeleteLocalRef(intInput);
}

}  // namespace android
