// The machinery the satellite scan extensions share. Lines and assertions report the site
// their caller passed in; this file has no tag or source name of its own.

#include "SatelliteExtensionCommon.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <vector>

#include "ScanConfigShared.h"

namespace android {

namespace {
// The builder whose scan-parameter block is SB_DVBS_SCAN_PARAMS.
constexpr const char* kSatelliteBuilder = "sb_dvbs";
}  // namespace

void SatelliteExtension::logHook(const char* hook) const {
    if (mAttachLog == AttachLog::kAlways) {
        __android_log_print(ANDROID_LOG_DEBUG, mTag, "%s", hook);
    } else {
        BLOG_PRINT(BRINOVA_LOG_DEBUG, mTag, "%s", hook);
    }
}

int SatelliteExtension::attach(unsigned int builderHandle) {
    logHook("attach");
    mBuilderHandle = builderHandle;
    return 0;
}

int SatelliteExtension::detach(unsigned int) {
    logHook("detach");
    mBuilderHandle = 0;
    return 0;
}

SB_DVBS_SCAN_PARAMS* satelliteBlockOf(void* scanParames, const ScanSite& site) {
    if (scanParames == nullptr) {
        scanFatal(site, "!(scanParames != __null)");
    }
    // Another standard's block is smaller than the satellite block: writing a satellite
    // field into it would overrun the configuration that owns it.
    const char* builder = PreScanBlock::builderOf(scanParames);
    if (builder != nullptr && strcmp(builder, kSatelliteBuilder) != 0) {
        SITE_XLOG(site, BRINOVA_LOG_ERROR, "ERROR",
                  " scanParames=%p belongs to builder %s, not %s: nothing written\n", scanParames,
                  builder, kSatelliteBuilder);
        return nullptr;
    }
    return static_cast<SB_DVBS_SCAN_PARAMS*>(scanParames);
}

JINativeScanExtension* peerExtension(JNIEnv* env, jobject thiz, jmethodID getNativeExtension,
                                     const ScanSite& site) {
    jlong handle = env->CallLongMethod(thiz, getNativeExtension);
    if (checkJavaException(env, site, "getNativeExtension")) {
        return nullptr;
    }
    return JINativeScanExtension::fromHandle(handle);  // null when the low half is 0
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

BuilderNotify::BuilderNotify(const ScanSite& site, const void* data, const void* tag,
                             unsigned options)
    : mSite(site), mOptions(options) {
    if (mOptions & kEnterLeave) {
        SITE_XLOGI(mSite, " enter\n");
    }
    if (data != nullptr && tag != nullptr) {
        return;
    }
    if (mOptions & kCombinedNullLine) {
        SITE_LOGE(mSite, " pt_nfy_data is null or pv_nfy_tag is null, going to abort().");
    } else if (data == nullptr) {
        SITE_LOGE(mSite, " pt_nfy_data is null, going to abort().");
    } else {
        SITE_LOGE(mSite, " pv_nfy_tag is null, going to abort().");
    }
    abort();
}

BuilderNotify::~BuilderNotify() {
    mThread.reset();  // detaches a thread attached here, asserting "!(sts == (0))"
    if (mOptions & kEnterLeave) {
        SITE_XLOGI(mSite, " Leave\n");
    }
}

JNIEnv* BuilderNotify::env() {
    if (mThread) return mThread->env();
    JNIEnv* env = nullptr;
    if ((mOptions & kGetEnvLine) && javaVM != nullptr &&
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
    (void)snprintf(text, sizeof(text), "%u,%u", first, second);
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

jstring newBuilderString(JNIEnv* env, const char* field, size_t capacity, ForeignText foreign) {
    const size_t length = strnlen(field, capacity);
    std::vector<char> text(length + 1);
    if (foreign == ForeignText::kQuestionMark) {
        copyModifiedUtf8(text.data(), text.size(), field, length);
        return env->NewStringUTF(text.data());
    }
    const auto* bytes = reinterpret_cast<const uint8_t*>(field);
    if (isModifiedUtf8(bytes, length)) {
        memcpy(text.data(), field, length);
        return env->NewStringUTF(text.data());
    }
    std::vector<jchar> latin1(bytes, bytes + length);
    return env->NewString(latin1.data(), static_cast<jsize>(latin1.size()));
}

void JavaSetters::setInt(jmethodID setter, jint value) {
    mEnv->CallVoidMethod(mObject, setter, value);
    checkJavaException(mEnv, mSite, "setter");
}

void JavaSetters::setBoolean(jmethodID setter, bool value) {
    mEnv->CallVoidMethod(mObject, setter, static_cast<jboolean>(value ? JNI_TRUE : JNI_FALSE));
    checkJavaException(mEnv, mSite, "setter");
}

void JavaSetters::setText(jmethodID setter, const char* field, size_t capacity) {
    jstring text = newBuilderString(mEnv, field, capacity, ForeignText::kQuestionMark);
    mEnv->CallVoidMethod(mObject, setter, text);
    checkJavaException(mEnv, mSite, "setter");
    mEnv->DeleteLocalRef(text);
}

void JavaSetters::setInts(jmethodID setter, const jint* values, jsize count) {
    jintArray array = mEnv->NewIntArray(count);
    if (array == nullptr) {
        mEnv->ExceptionClear();
        SITE_XLOGI(mSite, " NewIntArray(size %d) FAIL!", count);
        return;
    }
    mEnv->SetIntArrayRegion(array, 0, count, values);
    mEnv->CallVoidMethod(mObject, setter, array);
    checkJavaException(mEnv, mSite, "setter");
    mEnv->DeleteLocalRef(array);
}

jobjectArray newRecordObjectArray(JNIEnv* env, jclass clazz, jmethodID init, jsize count,
                                  const ScanSite& site,
                                  const std::function<void(JavaSetters&, jsize)>& fill) {
    jobjectArray array = env->NewObjectArray(count, clazz, nullptr);
    if (array == nullptr) {
        env->ExceptionClear();
        SITE_XLOGI(site, " NewIntArray(size %d) FAIL!", count);
        return nullptr;
    }
    for (jsize i = 0; i < count; ++i) {
        jobject object = env->NewObject(clazz, init);
        if (checkJavaException(env, site, "constructor") || object == nullptr) {
            continue;  // the element stays null
        }
        JavaSetters setters(env, object, site);
        fill(setters, i);
        env->SetObjectArrayElement(array, i, object);
        env->DeleteLocalRef(object);
    }
    return array;
}

jobjectArray newFieldStringArray(JNIEnv* env, jsize count, const ScanSite& site,
                                 const std::function<const char*(jsize)>& field,
                                 size_t capacity) {
    jclass stringClass = env->FindClass("java/lang/String");
    jobjectArray array = stringClass != nullptr
                             ? env->NewObjectArray(count, stringClass, nullptr)
                             : nullptr;
    env->DeleteLocalRef(stringClass);
    if (array == nullptr) {
        env->ExceptionClear();
        SITE_XLOGI(site, " NewIntArray(size %d) FAIL!", count);
        return nullptr;
    }
    for (jsize i = 0; i < count; ++i) {
        jstring text = newBuilderString(env, field(i), capacity, ForeignText::kQuestionMark);
        env->SetObjectArrayElement(array, i, text);
        env->DeleteLocalRef(text);
    }
    return array;
}

void takeNestedClass(JNIEnv* env, const char* className, NestedClass& nested,
                     const MethodSpec* setters, size_t count, const char* notFound,
                     const ScanSite& site) {
    // Process-wide: taken once, by the first extension of the class, and kept.
    if (nested.clazz != nullptr) {
        return;
    }
    jclass clazz = env->FindClass(className);
    if (clazz == nullptr) {
        env->ExceptionClear();
        SITE_XLOGI(site, "%s", notFound);
        return;
    }
    nested.init = env->GetMethodID(clazz, "<init>", "()V");
    for (size_t i = 0; i < count && nested.init != nullptr; ++i) {
        *setters[i].slot = env->GetMethodID(clazz, setters[i].name, setters[i].signature);
        if (*setters[i].slot == nullptr) nested.init = nullptr;
    }
    if (nested.init == nullptr) {
        // A class without the constructor or a setter is as good as missing.
        env->ExceptionClear();
        SITE_XLOGI(site, "%s", notFound);
    } else {
        nested.clazz = static_cast<jclass>(env->NewGlobalRef(clazz));
    }
    env->DeleteLocalRef(clazz);
}

namespace {

// The methods looked up on a second FindClass of the class; a miss logs instead of asserting.
void cacheLaterMethods(JNIEnv* env, const SatelliteRegistration& r, const ScanSite& site) {
    jclass clazz = env->FindClass(r.className);
    if (clazz == nullptr) {
        env->ExceptionClear();
        SITE_XLOGI(site, "%s", r.notFoundText);
        return;
    }
    cacheMethods(env, clazz, r.later, r.laterCount, site);
    env->DeleteLocalRef(clazz);
}

}  // namespace

int registerSatelliteClass(JNIEnv* env, const SatelliteRegistration& r, const ScanSite& site) {
    if (registerNativeMethods(env, r.className, r.methods, r.count) < 0) {
        SITE_LOG_RAW(site, BRINOVA_LOG_ERROR, "%s", r.failText);
        return 0;
    }
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s OK.", site.function);
    cacheClassMethods(env, r.className, r.callbacks, r.callbackCount, site);
    if (r.laterCount != 0) {
        cacheLaterMethods(env, r, site);
    }
    if (r.infoClassName != nullptr) {
        cacheClassMethods(env, r.infoClassName, r.infoGetters, r.infoCount, site);
    }
    return 1;
}

jmethodID lookUpOptionalMethod(JNIEnv* env, const char* className, const char* name,
                               const char* signature) {
    jclass clazz = env->FindClass(className);
    jmethodID method = clazz != nullptr ? env->GetMethodID(clazz, name, signature) : nullptr;
    env->ExceptionClear();  // a miss leaves NoClassDefFoundError or NoSuchMethodError pending
    env->DeleteLocalRef(clazz);
    return method;
}

}  // namespace android
