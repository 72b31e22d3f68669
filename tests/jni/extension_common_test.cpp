// What every scan extension shares: the nativeSetup handshake and each class's int[] limit,
// the weak reference to the Java peer, and the engine's list of extensions.
#include <stdio.h>

#include <android/log.h>
#include <gtest/gtest.h>

#include "extension_test_util.h"

namespace {

using exttest::arrayFor;
using exttest::callArray;
using exttest::handleOf;
using exttest::keyCalls;
using harness::Logs;

struct ExtensionClass {
    const char* javaClass;
    const char* symbolWord;  // the class word of the exported Java_..._<native> symbols
    const char* tag;
    const char* nativeClass;
    size_t limit;
    const char* otherNative;
};

const ExtensionClass kClasses[] = {
    {EXT_CLASS("ZelTvScanFavNetwork"), "ZelTvScanFavNetwork", "ZelTvFavNetwork_JNI",
     "NativeZelTvFavNetwork", 50, "nativeGetFavNetwork"},
    {EXT_CLASS("ZelTvScanLcnConflict"), "ZelTvScanLcnConflict", "ZelTvLcnConflict_JNI",
     "NativeZelTvLcnConflict", 10, "nativeGetLcnGarbageInfo"},
    {EXT_CLASS("ZelTvNameSorting"), "ZelTvNameSorting", "ZelTvNameSorting_JNI",
     "NativeZelTvNameSorting", 70, "nativeSetNameList"},
    {EXT_CLASS("ZelTvScanTargetRegion"), "ZelTvScanTargetRegion", "ZelTvTargetRegion_JNI",
     "NativeZelTvTargetRegion", 50, "nativeGetTargetRegion"},
    {EXT_CLASS("ZelTvScanLcnV2ChannelList"), "NativeScanLcnV2ChannelList", "ZelTvLcnV2ChList_JNI",
     "NativeZelTvLcnV2ChList", 50, "nativeGetLcnV2ChList"},
};

class ExtensionCommonTest : public exttest::ExtensionTest {};

TEST_F(ExtensionCommonTest, SetupHandshakeAndArrayLimitsOfEveryClass) {
    for (const ExtensionClass& c : kClasses) {
        SCOPED_TRACE(c.javaClass);
        Logs::clear();
        jobject extension = harness::newObject(c.javaClass, "()V");
        ASSERT_NE(static_cast<uint32_t>(handleOf(extension)), 0u);
        EXPECT_EQ(handleOf(extension) >> 32, 0);  // element 0 (zero) gave the high half

        // The constructor keeps a weak global reference to its Java object.
        std::vector<harness::LogLine> created = Logs::starting(c.tag, "native config create instance");
        ASSERT_EQ(created.size(), 1u);
        void *self = nullptr, *thiz = nullptr, *object = nullptr;
        if (std::string(c.nativeClass) == "NativeZelTvLcnConflict") {
            EXPECT_EQ(created[0].text, "native config create instance");
        } else {
            ASSERT_EQ(sscanf(created[0].text.c_str(),
                             "native config create instance, this: %p, thiz: %p, mObject: %p",
                             &self, &thiz, &object), 3) << created[0].text;
            EXPECT_EQ(reinterpret_cast<uintptr_t>(self), static_cast<uint32_t>(handleOf(extension)));
            EXPECT_EQ(env_->GetObjectRefType(static_cast<jobject>(object)), JNIWeakGlobalRefType);
            EXPECT_TRUE(env_->IsSameObject(static_cast<jobject>(object), extension));
        }

        // At the limit a new object; with one element, one too, but only the status returns.
        std::vector<int> full(c.limit, 7), one = {5};
        EXPECT_EQ(callArray(extension, "nativeSetup", full), 0);
        EXPECT_EQ(full[0], 0);
        EXPECT_NE(full[1], 7);
        EXPECT_EQ(std::vector<int>(full.begin() + 2, full.end()), std::vector<int>(c.limit - 2, 7));
        EXPECT_EQ(Logs::containing(c.tag, "][" + std::to_string(full[1]) + "]\n").size(), 1u);
        EXPECT_EQ(callArray(extension, "nativeSetup", one), 0);
        EXPECT_EQ(one, std::vector<int>{0});
        EXPECT_EQ(Logs::count(ANDROID_LOG_DEBUG, c.tag, c.nativeClass), 3);

        // One too many or none: refused with the native's own name, the array left alone.
        for (const char* native : {"nativeSetup", c.otherNative}) {
            std::vector<int> over = arrayFor(extension, c.limit + 1, {}), untouched = over, none;
            EXPECT_EQ(callArray(extension, native, over), 0);
            EXPECT_EQ(over, untouched);
            EXPECT_EQ(callArray(extension, native, none), 0);
            const std::string where =
                std::string("{Java_com_brinova_tv_orvella_scan_") + c.symbolWord + "_" + native + "}";
            EXPECT_EQ(Logs::containing(c.tag, where + "(jni GET type length is not enough)\n").size(), 1u)
                << native;
            EXPECT_EQ(Logs::containing(c.tag, where + "(jni size of GET type array should be bigger "
                                                      "than ZERO)\n").size(), 1u)
                << native;
        }
        EXPECT_EQ(Logs::count(ANDROID_LOG_DEBUG, c.tag, c.nativeClass), 3);
        env_->DeleteLocalRef(extension);
    }
}

size_t engineLines(const std::string& part, int priority = ANDROID_LOG_DEBUG) {
    size_t n = 0;
    for (const harness::LogLine& l : Logs::containing(scantest::kEngineTag, part)) {
        n += l.priority == priority ? 1 : 0;
    }
    return n;
}

TEST_F(ExtensionCommonTest, DuplicateHandleAndSixtyFourBitRemoval) {
    ASSERT_EQ(configure(), 0);
    jobject region = harness::newObject(EXT_CLASS("ZelTvScanTargetRegion"), "()V");
    jstring london = env_->NewStringUTF("London");
    decide("chooseTargetRegion",
           "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanTargetRegion;Ljava/lang/String;)V",
           region, london);
    const jlong handle = handleOf(region);
    char text[64];
    snprintf(text, sizeof(text), "Extension = %p", reinterpret_cast<void*>(static_cast<uintptr_t>(handle)));
    const std::string extension = text;

    ASSERT_EQ(add(region), 0);
    ASSERT_EQ(add(region), 0);
    EXPECT_EQ(keyCalls("x_sb_set", SB_KEY_TYPE_SELECTED_TARGET_REGION).size(), 2u);  // two attaches

    // Same low half, another high half: not found, nothing removed.
    const jlong other = handle | (jlong{1} << 32);
    EXPECT_EQ(engineCall("nativeRemoveExtension", other), 0);
    snprintf(text, sizeof(text), "Can NOT find extension=0x%llx ", static_cast<unsigned long long>(other));
    EXPECT_EQ(engineLines(text, ANDROID_LOG_ERROR), 1u);

    Logs::clear();
    scan("dvbt-target-region.json");
    EXPECT_EQ(engineLines("onPreScan to " + extension), 2u);
    EXPECT_EQ(engineLines("Notify SB_REASON_COMPLETE to " + extension), 2u);
    EXPECT_EQ(decisions().size(), 2u);
    EXPECT_EQ(keyCalls("x_sb_set", SB_KEY_TYPE_SET_REGION).size(), 2u);

    // One remove takes the first entry and detaches the object the second one still names.
    Logs::clear();
    EXPECT_EQ(remove(region), 0);
    EXPECT_EQ(engineLines("find and remove extension=", ANDROID_LOG_ERROR), 1u);
    EXPECT_EQ(engineLines("datach extension", ANDROID_LOG_ERROR), 1u);
    zelsim::clearCalls();
    scan(nullptr, 2);
    EXPECT_EQ(engineLines("onPreScan to " + extension), 1u);
    std::vector<zelsim::Call> fetches = keyCalls("x_sb_get", SB_KEY_TYPE_REGION_NUM);
    ASSERT_EQ(fetches.size(), 1u);
    EXPECT_EQ(fetches[0].args[0], 0);  // builder handle 0: detached
    EXPECT_EQ(decisions().size(), 2u);
}

TEST_F(ExtensionCommonTest, DetachedAtCloseAndStillDetachedAfterANewConfigure) {
    ASSERT_EQ(configure(), 0);
    jobject lists = harness::newObject(EXT_CLASS("ZelTvScanLcnV2ChannelList"), "()V");
    decide("chooseChannelList",
           "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanLcnV2ChannelList;I)V", lists, 2);
    std::vector<int> preselect = arrayFor(lists, 3, {5});
    ASSERT_EQ(callArray(lists, "nativeSetSelectedLcnV2ChListId", preselect), 0);
    ASSERT_EQ(add(lists), 0);
    ASSERT_EQ(engine_.native("nativeClose"), 0);
    ASSERT_EQ(configure(), 0);
    ASSERT_EQ(zelsim::calls("x_sb_open_builder").size(), 2u);

    zelsim::clearCalls();
    scan("dvbt-lcnv2.json");
    std::vector<zelsim::Call> counts = keyCalls("x_sb_get", SB_KEY_TYPE_LCNV2_CHLIST_NUM);
    ASSERT_EQ(counts.size(), 1u);
    EXPECT_EQ(counts[0].args[0], 0);
    EXPECT_TRUE(decisions().empty());

    // Removed and added again, it is attached to the new builder.
    ASSERT_EQ(remove(lists), 0);
    ASSERT_EQ(add(lists), 0);
    scan(nullptr, 2);
    const int64_t builder = scantest::lastCall("x_sb_start_scan").args[0];
    std::vector<zelsim::Call> preselected = keyCalls("x_sb_set", SB_KEY_TYPE_SELECTED_LCNV2_CHLIST);
    ASSERT_EQ(preselected.size(), 1u);
    EXPECT_EQ(preselected[0].args[0], builder);
    EXPECT_EQ(decisions().size(), 1u);
    EXPECT_EQ(keyCalls("x_sb_set", SB_KEY_TYPE_SET_LCNV2_CHLIST).at(0).args[0], builder);
}

}  // namespace
