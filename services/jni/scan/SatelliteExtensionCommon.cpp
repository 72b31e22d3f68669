// The machinery the satellite scan extensions share. Lines and assertions report the site
// their caller passed in; this file has no tag or source name of its own.

#include "SatelliteExtensionCommon.h"

#include <stdlib.h>
#include <string.h>

#include <string>

namespace android {

OperatorServiceExtension::OperatorServiceExtension(JNIEnv* env, jobject thiz, const char* className,
                                       const ScanSite& site, ExtensionPeer::CreateLog createLog)
    : mTag(site.tag), mPeer(env, thiz, this, className, site, createLog) {}

int OperatorServiceExtension::attach(unsigned int builderHandle) {
    mBuilderHandle = builderHandle;
    BLOG_PRINT(BRINOVA_LOG_DEBUG, mTag, "attach");
    return 0;
}

int OperatorServiceExtension::detach(unsigned int) {
    mBuilderHandle = 0;
    BLOG_PRINT(BRINOVA_LOG_DEBUG, mTag, "detach");
    return 0;
}

SB_DVBS_SCAN_PARAMS* scanBlockOf(void* scanParames, const ScanSite& site) {
    if (scanParames == nullptr) {
        scanFatal(site, "!(scanParames != __null)");
    }
    return static_cast<SB_DVBS_SCAN_PARAMS*>(scanParames);
}

JINativeScanExtension* peerExtension(JNIEnv* env, jobject thiz, jmethodID getNativeExtension,
                                     const ScanSite& site) {
    jlong handle = env->CallLongMethod(thiz, getNativeExtension);
    if (checkJavaException(env, site, "getNativeExtension")) {
        return nullptr;
    }
    return JINativeScanExtension::fromHandle(handle);
}

NotifyFrame::NotifyFrame(const ScanSite& site, bool logGetEnvFailure)
    : mThread(site, ScopedJniThread::kSts) {
    // The line reports a thread the builder had not attached; it is attached by now.
    if (logGetEnvFailure && mThread.attachedHere()) {
        SITE_XLOGI(site, " GetEnv NG!\n");
    }
}

void NotifyFrame::abortOnNull(const void* data, const void* tag, NullNotifyText text,
                              const ScanSite& site) {
    if (data != nullptr && tag != nullptr) {
        return;
    }
    if (text == NullNotifyText::kCombined) {
        SITE_LOGE(site, " pt_nfy_data is null or pv_nfy_tag is null, going to abort().");
    } else if (data == nullptr) {
        SITE_LOGE(site, " pt_nfy_data is null, going to abort().");
    } else {
        SITE_LOGE(site, " pv_nfy_tag is null, going to abort().");
    }
    abort();
}

namespace {

// Modified UTF-8 as the VM takes it: a byte that does not start a well-formed sequence is
// replaced by '?', so that a builder text in another encoding cannot upset the VM.
std::string modifiedUtf8(const char* field, size_t capacity) {
    const auto* bytes = reinterpret_cast<const uint8_t*>(field);
    const size_t length = strnlen(field, capacity);
    std::string out;
    out.reserve(length);
    for (size_t i = 0; i < length;) {
        const uint8_t b = bytes[i];
        size_t n = b < 0x80 ? 1 : (b & 0xE0) == 0xC0 ? 2 : (b & 0xF0) == 0xE0 ? 3 : 0;
        bool ok = n != 0 && i + n <= length;
        for (size_t k = 1; ok && k < n; ++k) ok = (bytes[i + k] & 0xC0) == 0x80;
        if (!ok) {
            out.push_back('?');
            ++i;
            continue;
        }
        out.append(field + i, n);
        i += n;
    }
    return out;
}

}  // namespace

jstring newStringFromField(JNIEnv* env, const char* field, size_t capacity) {
    return env->NewStringUTF(modifiedUtf8(field, capacity).c_str());
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
    jstring text = newStringFromField(mEnv, field, capacity);
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
        jstring text = newStringFromField(env, field(i), capacity);
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

int registerOperatorServiceClass(JNIEnv* env, const OperatorServiceRegistration& r, const ScanSite& site) {
    if (registerNativeMethods(env, r.className, r.methods, r.count) < 0) {
        SITE_LOG_RAW(site, BRINOVA_LOG_ERROR, "%s", r.failText);
        return 0;
    }
    SITE_LOG_RAW(site, BRINOVA_LOG_DEBUG, "%s OK.", site.function);
    cacheClassMethods(env, r.className, r.first, r.firstCount, site);
    if (r.secondCount == 0) {
        return 1;
    }
    jclass clazz = env->FindClass(r.className);
    if (clazz == nullptr) {
        env->ExceptionClear();
        SITE_XLOGI(site, "%s", r.notFoundText);
        return 1;
    }
    cacheMethods(env, clazz, r.second, r.secondCount, site);
    env->DeleteLocalRef(clazz);
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

SatelliteIdentity parseSatelliteIdentity(const char* text, const ScanSite& site) {
    const uint16_t length = static_cast<uint16_t>(strlen(text));
    uint16_t comma = length;
    for (uint16_t i = 0; i < length; ++i) {
        if (text[i] == ',') {
            comma = i;
            break;
        }
    }
    SITE_FLOG(site, BRINOVA_LOG_DEBUG, " satelliteStr=<%s>,satStrLen=%d,idxBase=%d", text,
              length, comma);
    SatelliteIdentity id{0, 0};
    // Not checked for digits, on purpose: a stray character is folded in like a digit.
    for (uint16_t i = 0; i < comma; ++i) {
        id.satelliteId = static_cast<uint16_t>(id.satelliteId * 10 + (text[i] - '0'));
    }
    for (uint16_t i = comma + 1; i < length; ++i) {
        id.recordId = static_cast<uint16_t>(id.recordId * 10 + (text[i] - '0'));
    }
    SITE_FLOG(site, BRINOVA_LOG_DEBUG, " satelliteId=%d", id.satelliteId);
    SITE_FLOG(site, BRINOVA_LOG_DEBUG, " satelliteRecId=%d", id.recordId);
    return id;
}

}  // namespace android
