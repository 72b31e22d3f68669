// The harness itself: a CheckJNI warning must be seen, or "no warning" would prove nothing.
#include <gtest/gtest.h>

#include "jvm_harness.h"

namespace {

class HarnessTest : public harness::JvmTest {};

TEST_F(HarnessTest, CheckJniWarningsAreDetected) {
    int before = harness::checkJniWarnings();
    {
        harness::ExpectCheckJniWarnings expecting;
        jclass system = env_->FindClass("java/lang/System");
        jmethodID nanoTime = env_->GetStaticMethodID(system, "nanoTime", "()J");
        env_->CallStaticLongMethod(system, nanoTime);
        env_->GetVersion();  // a JNI call without the exception check CheckJNI wants
        env_->ExceptionCheck();
        env_->DeleteLocalRef(system);
        EXPECT_EQ(expecting.expected(), 1);
    }
    EXPECT_EQ(harness::checkJniWarnings(), before);
}

}  // namespace
