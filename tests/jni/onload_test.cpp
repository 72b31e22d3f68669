// Loading the library: registration in order, the load hook's answers and its log lines.
#include <dlfcn.h>

#include <android/log.h>
#include <gtest/gtest.h>

#include "jvm_harness.h"

namespace {

constexpr const char* kTag = "Orvella_onLoad_scan";

using OnLoad = jint (*)(JavaVM*, void*);

OnLoad onLoadEntry() {
    void* self = dlopen("liborvella_scan_jni.so", RTLD_NOW | RTLD_NOLOAD);
    EXPECT_NE(self, nullptr);
    return reinterpret_cast<OnLoad>(dlsym(self, "JNI_OnLoad"));
}

jint JNICALL refuseGetEnv(JavaVM*, void** env, jint) {
    *env = nullptr;
    return JNI_EVERSION;
}

class OnLoadTest : public harness::JvmTest {};

TEST_F(OnLoadTest, LoadRegistersEveryClassAndSaysSo) {
    EXPECT_TRUE(harness::loadError().empty()) << harness::loadError();
    int ok = 0;
    for (const harness::LogLine& l : harness::loadLogs()) {
        if (l.tag == kTag && l.text == "Scan JNI_OnLoad OK.") {
            EXPECT_EQ(l.priority, ANDROID_LOG_DEBUG);
            ++ok;
        }
        EXPECT_NE(l.priority, ANDROID_LOG_ERROR) << l.tag << ": " << l.text;
    }
    EXPECT_EQ(ok, 1);
}

TEST_F(OnLoadTest, LoadingAgainAnswersTheSameAndIsSilentWithoutALevel) {
    OnLoad onLoad = onLoadEntry();
    ASSERT_NE(onLoad, nullptr);
    harness::setProperty("vendor.zel.broadcast.log.level", "");
    EXPECT_EQ(onLoad(harness::vm(), nullptr), JNI_VERSION_1_4);
    EXPECT_TRUE(harness::Logs::lines().empty());

    harness::logEverything();
    // Registering 26 classes frees each class reference as it goes: in a frame whose room
    // (what it declares, plus the 32 CheckJNI adds) is nearly taken, as the loader's native
    // frame may be, a reference kept per class makes CheckJNI warn.
    ASSERT_EQ(env_->PushLocalFrame(1), 0);
    jclass taken = harness::findClass("java/lang/String");
    for (int i = 0; i < 24; ++i) env_->NewLocalRef(taken);
    EXPECT_EQ(onLoad(harness::vm(), nullptr), 0x10004);
    env_->PopLocalFrame(nullptr);
    EXPECT_EQ(harness::Logs::count(ANDROID_LOG_DEBUG, kTag, "Scan JNI_OnLoad OK."), 1);
}

TEST_F(OnLoadTest, NoEnvironmentRefusesTheLoad) {
    JNIInvokeInterface functions = *harness::vm()->functions;
    functions.GetEnv = refuseGetEnv;
    JavaVM refusing{&functions};
    EXPECT_EQ(onLoadEntry()(&refusing, nullptr), -1);
    EXPECT_EQ(harness::Logs::count(ANDROID_LOG_ERROR, kTag, "ERROR: GetEnv failed\n"), 1);
    EXPECT_EQ(harness::Logs::count(ANDROID_LOG_DEBUG, kTag, "Scan JNI_OnLoad OK."), 0);
}

}  // namespace
