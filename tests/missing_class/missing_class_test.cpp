// A Java side that lacks one class of the load order (ORVELLA_MISSING_CLASS): the load stops
// at that class's row with its message, the rows before it stay registered and the rows
// after it are never registered. Built with ORVELLA_EVERY_CLASS instead, every row is
// registered and the load says so.
#include <android/log.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "jvm_harness.h"

// After the failed load the VM closes the library again; it stays mapped, with the natives
// bound before the failure still callable, because the test binary links it (as needed or
// not: see tests/CMakeLists.txt).

namespace {

constexpr const char* kTag = "Orvella_onLoad_scan";

// The load table's rows in order: the Java class, one of its natives (called on a bare
// instance with zero arguments, which each native takes without harm) and the message
// logged when the row fails. Keep it in step with ScanRegistrations.h.
struct Row {
    const char* javaClass;
    const char* native;
    const char* signature;
    const char* failure;
};
const Row kRows[] = {
    {"ZelTvScanLcnConflict", "nativeGetLcnGarbageInfo", "([I)I",
     "ERROR: ZelTvScanDvbtConfig native ZelTvScanLcnConflict registration failed"},
    {"ZelTvScanLcnV2ChannelList", "nativeGetLcnV2ChList", "([I)I",
     "ERROR: scan engine native ZelTvScanLcnV2ChannelList registration failed"},
    {"ZelTvScanTargetRegion", "nativeGetTargetRegion", "([I)I",
     "ERROR: ZelTvScanDvbtConfig native ZelTvScanTargetRegion registration failed"},
    {"ZelTvNameSorting", "nativeSetNameList", "([I)I",
     "ERROR: ZelTvScanDvbtConfig native ZelTvNameSorting registration failed"},
    {"ZelTvScanFavNetwork", "nativeGetFavNetwork", "([I)I",
     "ERROR: ZelTvScanDvbtConfig native ZelTvScanFavNetwork registration failed"},
    {"ZelTvDvbtScanConfig", "nativeRelease", "()I",
     "ERROR: ZelTvScanDvbtConfig native registration failed"},
    {"ZelTvDvbcScanConfig", "nativeRelease", "()I",
     "ERROR: ZelTvScanDvbcConfig native registration failed"},
    {"ZelTvDvbsScanConfig", "nativeRelease", "()I",
     "ERROR: ZelTvScanDvbsConfig native registration failed"},
    {"ZelTvIsdbScanConfig", "nativeRelease", "()I",
     "ERROR: ZelTvScanIsdbConfig native registration failed"},
    {"ZelTvAtscScanConfig", "nativeRelease", "()I",
     "ERROR: ZelTvScanAtscConfig native registration failed"},
    {"ZelTvCqamScanConfig", "nativeRelease", "()I",
     "ERROR: ZelTvScanCqamConfig native registration failed"},
    {"ZelTvDtmbScanConfig", "nativeRelease", "()I",
     "ERROR: ZelTvScanDtmbConfig native registration failed"},
    {"ZelTvScanEngine", "nativeSetUpWithPipelineHandle", "(I)I",
     "ERROR: ZelTvScanEngine native registration failed"},
    {"ZelTvScanRegionChannelList", "nativeSetRegionChannelList", "([ILjava/lang/String;)I",
     "ERROR: ZelTvScanRegionCHList native registration failed"},
    {"ZelTvScanBouquet", "NativeSetBouquet",
     "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanBouquet$BouquetInfo;)I",
     "ERROR: ZelTvScanBouquet native registration failed"},
    {"ZelTvScanNetwork", "NativeSetNetwork",
     "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanNetwork$NetworkInfo;)I",
     "ERROR: ZelTvScanNetwork native registration failed"},
    {"ZelTvScanMDU", "nativeSetup", "([I)I", "ERROR: ZelTvScanMDU native registration failed"},
    {"ZelTvScanDetectLNB", "nativeSetup", "([I)I",
     "ERROR: ZelTvScanDetectLNB native registration failed"},
    {"ZelTvScanFST", "nativeSetAssociateSateInfo", "([I[Ljava/lang/String;)I",
     "ERROR: ZelTvScanFST native registration failed"},
    {"ZelTvScanSatSearch", "NativeSetSatSearch",
     "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanSatSearch$SatSearchInfo;)I",
     "ERROR: ZelTvScanSatSearch native registration failed"},
    {"ZelTvScanDetectSatellite", "nativeSetup", "([I)I",
     "ERROR: ZelTvScanDetectSatellite native registration failed"},
    {"ZelTvScanDetectTransponder", "nativeSetup", "([I)I",
     "ERROR: ZelTvScanDetectTransponder native registration failed"},
    {"ZelTvScanAssociateList", "NativeSetAssoSateInfo", "([Ljava/lang/String;)I",
     "ERROR: ZelTvScanAssociateList native registration failed"},
    {"ZelTvDvbsSatelliteConfig", "nativeRelease", "()I",
     "ERROR: ZelTvDvbsSatelliteConfig native registration failed"},
    {"ZelTvScanHDPlus", "NativeSetHDPlus",
     "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanHDPlus$HDPlusInfo;)I",
     "ERROR: ZelTvScanHDPlus native registration failed"},
    {"ZelTvScanTKGS", "nativeSetTKGSVersion", "([II)I",
     "ERROR: ZelTvScanTKGS native registration failed"},
};

static_assert(std::size(kRows) == 26, "the load table has 26 rows");

int loadLogCount(int priority, const std::string& text) {
    int n = 0;
    for (const harness::LogLine& l : harness::loadLogs()) {
        n += l.tag == kTag && l.priority == priority && l.text == text;
    }
    return n;
}

bool loadLogged(int priority, const std::string& text) {
    return loadLogCount(priority, text) > 0;
}

// Calls the row's native on a bare instance and says whether it was bound.
bool nativeBound(const Row& row) {
    JNIEnv* env = harness::env();
    jclass c = harness::findClass((std::string("com/brinova/tv/orvella/services/scan/") + row.javaClass).c_str());
    jmethodID m = env->GetMethodID(c, row.native, row.signature);
    EXPECT_EQ(harness::exceptionText(env), "") << row.javaClass;
    jobject obj = env->AllocObject(c);
    EXPECT_EQ(harness::exceptionText(env), "") << row.javaClass;
    const jvalue zeros[2] = {};
    env->CallIntMethodA(obj, m, zeros);
    std::string thrown = harness::exceptionText(env);
    env->DeleteLocalRef(obj);
    env->DeleteLocalRef(c);
    // A bound native runs (and may make Java throw on the bare instance); an unbound one
    // throws UnsatisfiedLinkError.
    return thrown.find("java.lang.UnsatisfiedLinkError") == std::string::npos;
}

#ifdef ORVELLA_EVERY_CLASS
// Built without a missing class: the whole table registers and only then is the load's
// success logged.
TEST(MissingClassTest, EveryRowRegisteredIsWhatTheLoadReportsAsOk) {
    EXPECT_EQ(harness::loadError(), "");
    EXPECT_EQ(loadLogCount(ANDROID_LOG_DEBUG, "Scan JNI_OnLoad OK."), 1);
    EXPECT_FALSE(loadLogged(ANDROID_LOG_ERROR, "registerNativeMethods cannot find class return false"));
    for (const Row& row : kRows) {
        EXPECT_TRUE(nativeBound(row)) << row.javaClass;
        EXPECT_FALSE(loadLogged(ANDROID_LOG_ERROR, row.failure)) << row.failure;
    }
    EXPECT_EQ(harness::checkJniWarnings(), 0);
}
#else
TEST(MissingClassTest, LoadStopsAtTheMissingClassRow) {
    size_t missing = std::size(kRows);
    for (size_t i = 0; i < std::size(kRows); ++i) {
        if (std::string(kRows[i].javaClass) == ORVELLA_MISSING_CLASS) missing = i;
    }
    ASSERT_LT(missing, std::size(kRows)) << ORVELLA_MISSING_CLASS " is not a row of the load table";
    // The failed lookup's own exception is what the loading Java code receives.
    EXPECT_EQ(harness::loadError(), "java.lang.NoClassDefFoundError: "
                                    "com/brinova/tv/orvella/services/scan/" ORVELLA_MISSING_CLASS);
    EXPECT_TRUE(loadLogged(ANDROID_LOG_ERROR, "registerNativeMethods cannot find class return false"));
    EXPECT_TRUE(loadLogged(ANDROID_LOG_ERROR, kRows[missing].failure));
    EXPECT_FALSE(loadLogged(ANDROID_LOG_DEBUG, "Scan JNI_OnLoad OK."));
    for (size_t i = 0; i < std::size(kRows); ++i) {
        if (i == missing) continue;
        // Rows before the missing class stay bound; the ones after it were never attempted.
        EXPECT_EQ(nativeBound(kRows[i]), i < missing) << kRows[i].javaClass;
        EXPECT_FALSE(loadLogged(ANDROID_LOG_ERROR, kRows[i].failure)) << kRows[i].failure;
    }
    EXPECT_EQ(harness::checkJniWarnings(), 0);
}
#endif

}  // namespace
