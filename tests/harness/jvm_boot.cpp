#include "jvm_boot.h"

#include <dlfcn.h>
#include <string.h>
#include <unistd.h>

namespace jvmboot {

std::string exceptionText(JNIEnv* e) {
    jthrowable t = e->ExceptionOccurred();
    if (t == nullptr) return "";
    e->ExceptionClear();
    jclass objectClass = e->FindClass("java/lang/Object");
    jmethodID toString = e->GetMethodID(objectClass, "toString", "()Ljava/lang/String;");
    auto text = static_cast<jstring>(e->CallObjectMethod(t, toString));
    std::string out = "(unprintable throwable)";
    if (!e->ExceptionCheck() && text != nullptr) {
        const char* chars = e->GetStringUTFChars(text, nullptr);
        out = chars;
        e->ReleaseStringUTFChars(text, chars);
    }
    e->ExceptionClear();
    e->DeleteLocalRef(objectClass);
    e->DeleteLocalRef(t);
    return out;
}

bool isCheckJniWarning(const char* line) {
    return strstr(line, "WARNING in native method") != nullptr || strstr(line, "WARNING: JNI local refs") != nullptr;
}

namespace {

[[noreturn]] void fail(const char* what, const std::string& why) {
    fprintf(stderr, "%s: %s\n", what, why.c_str());
    _exit(2);
}

// TestLoader.load(): null when the library loaded, else what the load threw.
std::string loadLibrary(JNIEnv* env) {
    jclass loader = env->FindClass("com/brinova/tv/orvella/testsupport/TestLoader");
    if (loader == nullptr) fail("TestLoader missing", exceptionText(env));
    jmethodID load = env->GetStaticMethodID(loader, "load", "()Ljava/lang/String;");
    auto error = static_cast<jstring>(env->CallStaticObjectMethod(loader, load));
    std::string thrown = exceptionText(env);
    if (!thrown.empty()) fail("TestLoader.load threw", thrown);
    std::string out;
    if (error != nullptr) {
        const char* chars = env->GetStringUTFChars(error, nullptr);
        out = chars;
        env->ReleaseStringUTFChars(error, chars);
        env->DeleteLocalRef(error);
    }
    env->DeleteLocalRef(loader);
    return out;
}

}  // namespace

Booted start(const char* classPath, PrintHook print) {
    void* libjvm = dlopen(ORVELLA_LIBJVM, RTLD_NOW | RTLD_GLOBAL);
    if (libjvm == nullptr) fail("cannot load " ORVELLA_LIBJVM " (run scripts/setup-host.sh)", dlerror());
    using CreateJavaVM = jint (*)(JavaVM**, void**, void*);
    auto create = reinterpret_cast<CreateJavaVM>(dlsym(libjvm, "JNI_CreateJavaVM"));
    std::string cp = std::string("-Djava.class.path=") + classPath;
    std::string lp = std::string("-Djava.library.path=") + ORVELLA_LIBRARY_DIR;
    JavaVMOption options[] = {
        {const_cast<char*>("-Xcheck:jni"), nullptr},
        {const_cast<char*>(cp.c_str()), nullptr},
        {const_cast<char*>(lp.c_str()), nullptr},
        {const_cast<char*>("-Xmx256m"), nullptr},
        {const_cast<char*>("-XX:-UsePerfData"), nullptr},
        {const_cast<char*>("-XX:+DisplayVMOutputToStderr"), nullptr},
        {const_cast<char*>("vfprintf"), reinterpret_cast<void*>(print)},
    };
    JavaVMInitArgs args{};
    args.version = JNI_VERSION_1_6;
    args.nOptions = sizeof(options) / sizeof(options[0]);
    args.options = options;
    args.ignoreUnrecognized = JNI_FALSE;
    Booted booted;
    if (create == nullptr ||
        create(&booted.vm, reinterpret_cast<void**>(&booted.env), &args) != JNI_OK) {
        fail("JNI_CreateJavaVM", "failed");
    }
    booted.loadError = loadLibrary(booted.env);
    return booted;
}

}  // namespace jvmboot
