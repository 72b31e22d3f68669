// Starting the embedded HotSpot that every test and fuzz process runs: -Xcheck:jni, the
// VM's output through a hook of the caller's, and the scan library loaded from Java code of
// an application class (TestLoader), as a tuner service loads it. No GoogleTest here: the
// fuzz targets use it too.
#ifndef ORVELLA_TESTS_JVM_BOOT_H
#define ORVELLA_TESTS_JVM_BOOT_H

#include <jni.h>
#include <stdarg.h>
#include <stdio.h>

#include <string>

namespace jvmboot {

using PrintHook = jint(JNICALL*)(FILE* fp, const char* format, va_list args);

struct Booted {
    JavaVM* vm = nullptr;
    JNIEnv* env = nullptr;
    std::string loadError;  // empty when System.loadLibrary succeeded, else what it threw
};

// Ends the process when the VM cannot be created or TestLoader is missing.
Booted start(const char* classPath, PrintHook print);

// The pending exception's text (cleared); empty when none.
std::string exceptionText(JNIEnv* env);

// Whether a line the VM printed is a CheckJNI warning.
bool isCheckJniWarning(const char* line);

}  // namespace jvmboot

#endif  // ORVELLA_TESTS_JVM_BOOT_H
