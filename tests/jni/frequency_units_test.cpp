// The Java API's reading of the frequencies the builders report: the terrestrial and cable
// builders count in Hz or kHz, the satellite builder its transponders in MHz.
#include <gtest/gtest.h>

#include "jvm_harness.h"

namespace {

class FrequencyUnitsTest : public harness::JvmTest {};

TEST_F(FrequencyUnitsTest, ReportedFrequenciesReadInMegahertzWhateverTheUnit) {
    JNIEnv* env = harness::env();
    jclass engine = harness::findClass("com/brinova/tv/orvella/services/scan/ZelTvScanEngine");
    jmethodID toMegahertz = env->GetStaticMethodID(engine, "toMegahertz", "(I)D");
    ASSERT_NE(toMegahertz, nullptr);
    const struct {
        jint reported;
        double mhz;
    } cases[] = {
        {474000000, 474.0},              // DVB-T channel 21, Hz
        {47000000, 47.0},                // the lowest VHF band I channel, Hz
        {306000, 306.0},                 // cable, kHz
        {858000, 858.0},
        {11494, 11494.0},                // ASTRA 19.2E transponder, as the satellite builder reports
        {12188, 12188.0},
        {3732, 3732.0},                  // C band, MHz
        {1550, 1550.0},                  // an LNB's intermediate frequency, MHz
        {11494000, 11494.0},             // a satellite transponder in kHz
        {static_cast<jint>(0xFFFFFFFFu), 4294.967295},  // unsigned, Hz
    };
    for (const auto& c : cases) {
        EXPECT_DOUBLE_EQ(env->CallStaticDoubleMethod(engine, toMegahertz, c.reported), c.mhz)
            << c.reported;
        ASSERT_FALSE(env->ExceptionCheck());
    }
}

}  // namespace
