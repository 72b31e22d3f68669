// A Java side that lacks one class of the load order: the load stops there, the classes
// registered before it stay registered and those after it are never registered.
#include <android/log.h>
#include <gtest/gtest.h>

#include "jvm_harness.h"

// After the failed load the VM closes the library again; it stays mapped, with the natives
// bound before the failure still callable, because the test binary links it (as needed or
// not: see tests/CMakeLists.txt).

namespace {

constexpr const char* kTag = "Orvella_onLoad_scan";
#define SCAN_CLASS(name) "com/brinova/tv/orvella/services/scan/" name

bool loadLogged(int priority, const std::string& text) {
    for (const harness::LogLine& l : harness::loadLogs()) {
        if (l.tag == kTag && l.priority == priority && l.text == text) return true;
    }
    return false;
}

// Calls an int native of `className` on a bare instance and says whether it was bound.
bool nativeBound(const char* className, const char* name, const char* sig) {
    JNIEnv* env = harness::env();
    jclass c = harness::findClass(className);
    jmethodID m = env->GetMethodID(c, name, sig);
    EXPECT_EQ(harness::exceptionText(env), "");
    jobject obj = env->AllocObject(c);
    EXPECT_EQ(harness::exceptionText(env), "");
    env->CallIntMethod(obj, m, 0);
    std::string thrown = harness::exceptionText(env);
    env->DeleteLocalRef(obj);
    env->DeleteLocalRef(c);
    EXPECT_TRUE(thrown.empty() || thrown.find("UnsatisfiedLinkError") != std::string::npos)
        << thrown;
    return thrown.empty();
}

TEST(MissingClassTest, LoadStopsAtTheMissingClass) {
    // The failed lookup's own exception is what the loading Java code receives.
    EXPECT_EQ(harness::loadError(),
              "java.lang.NoClassDefFoundError: " SCAN_CLASS("ZelTvScanTargetRegion"));
    EXPECT_TRUE(loadLogged(ANDROID_LOG_ERROR, "registerNativeMethods cannot find class return false"));
    EXPECT_TRUE(loadLogged(ANDROID_LOG_ERROR,
                           "ERROR: ZelTvScanDvbtConfig native ZelTvScanTargetRegion registration failed"));
    EXPECT_FALSE(loadLogged(ANDROID_LOG_DEBUG, "Scan JNI_OnLoad OK."));
    // Rows 1 and 2 registered before the missing class stay bound.
    EXPECT_TRUE(nativeBound(SCAN_CLASS("ZelTvScanLcnConflict"), "nativeGetLcnGarbageInfo", "([I)I"));
    EXPECT_TRUE(nativeBound(SCAN_CLASS("ZelTvScanLcnV2ChannelList"), "nativeGetLcnV2ChList", "([I)I"));
    // Registrations after the missing class were never attempted.
    EXPECT_FALSE(nativeBound(SCAN_CLASS("ZelTvNameSorting"), "nativeSetNameList", "([I)I"));
    EXPECT_FALSE(nativeBound(SCAN_CLASS("ZelTvScanFavNetwork"), "nativeGetFavNetwork", "([I)I"));
    EXPECT_FALSE(nativeBound(SCAN_CLASS("ZelTvDvbtScanConfig"), "nativeRelease", "()I"));
    EXPECT_FALSE(nativeBound(SCAN_CLASS("ZelTvScanEngine"), "nativeSetUpWithPipelineHandle", "(I)I"));
    EXPECT_EQ(harness::checkJniWarnings(), 0);
}

}  // namespace
