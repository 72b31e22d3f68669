// What the satellite extensions share. Lines and assertions carry the caller's site.

#include "ScanSatelliteCommon.h"

#include <stdio.h>
#include <stdlib.h>

#include <vector>

namespace android {

BuilderNotify::BuilderNotify(const ScanSite& site, const void* data, const void* tag)
    : mSite(site) {
    SITE_XLOGI(mSite, " enter\n");
    if (data == nullptr) {
        SITE_LOGE(mSite, " pt_nfy_data is null, going to abort().");
        abort();
    }
    if (tag == nullptr) {
        SITE_LOGE(mSite, " pv_nfy_tag is null, going to abort().");
        abort();
    }
}

BuilderNotify::~BuilderNotify() {
    mThread.reset();  // detaches a thread attached here, asserting "!(sts == (0))"
    SITE_XLOGI(mSite, " Leave\n");
}

JNIEnv* BuilderNotify::env() {
    if (mThread) return mThread->env();
    JNIEnv* env = nullptr;
    if (javaVM != nullptr &&
        javaVM->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_4) != JNI_OK) {
        SITE_XLOGI(mSite, " GetEnv NG!\n");
    }
    mThread.emplace(mSite, ScopedJniThread::kSts);
    return mThread->env();
}

void BuilderNotify::checkCallback(const char* what) {
    checkJavaException(mThread->env(), mSite, what);
}

jstring newIdString(JNIEnv* env, uint16_t first, uint16_t second) {
    char text[16];
    snprintf(text, sizeof(text), "%u,%u", first, second);
    return env->NewStringUTF(text);
}

namespace {

// Whether `bytes` are modified UTF-8 as NewStringUTF takes them (no NUL inside, no
// four-byte forms, every sequence complete).
bool isModifiedUtf8(const uint8_t* bytes, size_t length) {
    for (size_t i = 0; i < length;) {
        const uint8_t lead = bytes[i];
        size_t extra;
        if (lead < 0x80) {
            extra = 0;
        } else if ((lead & 0xE0) == 0xC0) {
            extra = 1;
        } else if ((lead & 0xF0) == 0xE0) {
            extra = 2;
        } else {
            return false;
        }
        if (extra > length - i - 1) return false;
        for (size_t k = 1; k <= extra; ++k) {
            if ((bytes[i + k] & 0xC0) != 0x80) return false;
        }
        i += extra + 1;
    }
    return true;
}

}  // namespace

jstring newBuilderString(JNIEnv* env, const char* field, size_t capacity) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(field);
    const size_t length = strnlen(field, capacity);
    if (isModifiedUtf8(bytes, length)) {
        std::vector<char> text(field, field + length);
        text.push_back('\0');
        return env->NewStringUTF(text.data());
    }
    std::vector<jchar> latin1(bytes, bytes + length);
    return env->NewString(latin1.data(), static_cast<jsize>(latin1.size()));
}

int SatelliteExtension::attach(unsigned int builderHandle) {
    __android_log_print(ANDROID_LOG_DEBUG, mTag, "attach");
    mBuilderHandle = builderHandle;
    return 0;
}

int SatelliteExtension::detach(unsigned int) {
    __android_log_print(ANDROID_LOG_DEBUG, mTag, "detach");
    mBuilderHandle = 0;
    return 0;
}

jint InfoCallBase::getInt(jmethodID getter) {
    if (mInfo == nullptr) return 0;
    jint value = mEnv->CallIntMethod(mInfo, getter);
    return checkJavaException(mEnv, mSite, "info getter") ? 0 : value;
}

jboolean InfoCallBase::getBoolean(jmethodID getter) {
    if (mInfo == nullptr) return JNI_FALSE;
    jboolean value = mEnv->CallBooleanMethod(mInfo, getter);
    return checkJavaException(mEnv, mSite, "info getter") ? JNI_FALSE : value;
}

JINativeScanExtension* InfoCallBase::peerExtension() {
    jlong handle = mEnv->CallLongMethod(mThiz, mGetNativeExtension);
    if (checkJavaException(mEnv, mSite, "getNativeExtension")) return nullptr;
    return static_cast<uint32_t>(handle) != 0 ? JINativeScanExtension::fromHandle(handle) : nullptr;
}

int registerSatelliteClass(JNIEnv* env, const char* className, const JNINativeMethod* methods,
                           int count, const MethodSpec* callbacks, size_t callbackCount,
                           const char* infoClassName, const MethodSpec* getters,
                           size_t getterCount, const ScanSite& site) {
    if (registerExtensionClass(env, className, methods, count, callbacks, callbackCount, site) == 0) {
        return 0;
    }
    cacheClassMethods(env, infoClassName, getters, getterCount, site);
    return 1;
}

SatelliteText parseSatelliteText(const char* text) {
    SatelliteText parsed;
    const uint16_t length = static_cast<uint16_t>(strlen(text));
    uint16_t comma = 0;
    while (comma < length && text[comma] != ',') ++comma;
    for (uint16_t i = 0; i < comma; ++i) {
        parsed.satelliteId = static_cast<uint16_t>(parsed.satelliteId * 10 + (text[i] - '0'));
    }
    for (uint16_t i = comma + 1; i < length; ++i) {
        parsed.recordId = static_cast<uint16_t>(parsed.recordId * 10 + (text[i] - '0'));
    }
    return parsed;
}

SB_DVBS_SCAN_PARAMS* checkedBlock(void* block, const ScanSite& site) {
    if (block == nullptr) {
        scanFatal(site, "!(scanParames != __null)");
    }
    return static_cast<SB_DVBS_SCAN_PARAMS*>(block);
}

}  // namespace android
