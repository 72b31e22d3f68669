// Library entry: registers the native methods of every Java class of the scan package,
// in a fixed order, and records the JavaVM for the threads that later call into Java.
#define LOG_TAG "Orvella_onLoad_scan"
#define SCAN_SOURCE_NAME "com_brinova_tv_orvella_scan_OnLoad"

#include <nativehelper/ScopedLocalRef.h>

#include "ScanJniCommon.h"
#include "ScanRegistrations.h"

JavaVM* javaVM = nullptr;

int registerNativeMethods(JNIEnv* env, const char* className, const JNINativeMethod* methods,
                          int count) {
    // The class reference goes at once: the load hook registers more classes than a native
    // frame's local capacity. The exception of a failure is left pending: the load ends at
    // once, and the VM reports it as the cause.
    ScopedLocalRef<jclass> clazz(env, env->FindClass(className));
    if (clazz.get() == nullptr) {
        BLOGE_RAW("registerNativeMethods cannot find class return false");
        return -1;
    }
    if (env->RegisterNatives(clazz.get(), methods, count) < 0) {
        BLOGE_RAW("registerNativeMethods cannot register methods return false");
        return -1;
    }
    return 0;
}

namespace {

struct Registration {
    int (*registerClass)(JNIEnv* env);
    const char* failureMessage;
};

// The order is fixed; the messages are kept exactly as they have always read.
const Registration kRegistrations[] = {
    SCAN_REGISTRATIONS
};

}  // namespace

extern "C" SCAN_JNI_EXPORT jint JNI_OnLoad(JavaVM* vm, void* /* reserved */) {
    JNIEnv* env = nullptr;
    if (vm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_4) != JNI_OK) {
        BLOGE_RAW("ERROR: GetEnv failed\n");
        return -1;
    }
    for (const Registration& r : kRegistrations) {
        if (r.registerClass(env) == 0) {
            BLOGE_RAW("%s", r.failureMessage);
            return -1;
        }
    }
    BLOGD_RAW("Scan JNI_OnLoad OK.");
    javaVM = vm;
    return JNI_VERSION_1_4;
}
