// The satellite installation extensions: the block fields each one writes before a scan
// (every other byte left alone), the builder's reports through the functions they wrote,
// called from threads that are not attached to the VM, and what Java receives.
#include <stdio.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <thread>
#include <vector>

#include <android/log.h>
#include <gtest/gtest.h>

#include "JINativeScanExtension.h"
#include "SbDvbsScanParams.h"
#include "extension_test_util.h"
#include "x_sb_dvb.h"
#include "x_sb_dvbs_install.h"

namespace {

using exttest::handleOf;
using harness::Logs;

constexpr uint8_t kUntouched = 0xEE;

android::JINativeScanExtension* nativeOf(jobject extension) {
    return android::JINativeScanExtension::fromHandle(handleOf(extension));
}

// A block as the engine hands it to onPreScan: `selector` at offset 8, every other byte
// marked so that a stray write shows. The extensions fill a twin block marked differently
// as well: a written byte (a pointer's, say) may equal one mark by chance, never both.
struct Block {
    explicit Block(uint32_t selector = 0) {
        fill(bytes, kUntouched, selector);
        fill(twin, kTwinMark, selector);
    }
    void preScan(std::initializer_list<jobject> extensions) {
        for (jobject e : extensions) nativeOf(e)->onPreScan(bytes);
        // The twin pass is silent, so that the tests count the log lines of one pass.
        harness::setProperty("vendor.zel.broadcast.log.level", "");
        for (jobject e : extensions) nativeOf(e)->onPreScan(twin);
        harness::logEverything();
    }
    template <typename T>
    T at(size_t offset) const {
        T value;
        memcpy(&value, bytes + offset, sizeof(value));
        return value;
    }
    // Offsets of the bytes that differ from the mark in either block, the selector aside.
    std::vector<size_t> written() const {
        std::vector<size_t> out;
        for (size_t i = 0; i < sizeof(bytes); ++i) {
            bool changed = bytes[i] != kUntouched || twin[i] != kTwinMark;
            if (changed && (i < 8 || i >= 12)) out.push_back(i);
        }
        return out;
    }
    uint8_t bytes[sizeof(SB_DVBS_SCAN_PARAMS)];
    uint8_t twin[sizeof(SB_DVBS_SCAN_PARAMS)];

private:
    static constexpr uint8_t kTwinMark = 0x11;
    static void fill(uint8_t* block, uint8_t mark, uint32_t selector) {
        memset(block, mark, sizeof(SB_DVBS_SCAN_PARAMS));
        memcpy(block + offsetof(SB_DVBS_SCAN_PARAMS, ui4_operator), &selector, sizeof(selector));
    }
};

std::vector<size_t> range(size_t from, size_t size) {
    std::vector<size_t> out;
    for (size_t i = from; i < from + size; ++i) out.push_back(i);
    return out;
}
std::vector<size_t> join(std::initializer_list<std::vector<size_t>> parts) {
    std::vector<size_t> out;
    for (const auto& p : parts) out.insert(out.end(), p.begin(), p.end());
    std::sort(out.begin(), out.end());
    return out;
}

// Calls the function the block holds at `at` (its tag follows it) with `record`, as the
// builder does: from a thread of its own that is not attached to the VM. The thread must
// end detached.
template <typename Record>
void notifyFrom(const Block& block, size_t at, const Record& record) {
    auto fn = block.at<void (*)(void*, void*)>(at);
    void* tag = block.at<void*>(at + sizeof(void*));
    ASSERT_NE(fn, nullptr);
    bool attachedBefore = true, attachedAfter = true;
    std::thread builder([&] {
        attachedBefore = scantest::threadAttached();
        Record copy = record;
        fn(&copy, tag);
        attachedAfter = scantest::threadAttached();
    });
    builder.join();
    EXPECT_FALSE(attachedBefore);
    EXPECT_FALSE(attachedAfter);
}

std::string javaString(jobject object) {
    JNIEnv* env = harness::env();
    auto text = static_cast<jstring>(harness::callObject(
        object, harness::methodOf(object, "toString", "()Ljava/lang/String;")));
    const char* chars = env->GetStringUTFChars(text, nullptr);
    std::string out(chars);
    env->ReleaseStringUTFChars(text, chars);
    env->DeleteLocalRef(text);
    return out;
}
// What a Java peer recorded, through one of its list getters, as List.toString() reads.
std::string reports(jobject extension, const char* getter) {
    jobject list = harness::callObject(extension, harness::methodOf(extension, getter, "()Ljava/util/List;"));
    std::string out = javaString(list);
    harness::env()->DeleteLocalRef(list);
    return out;
}

SB_SAT_NAME_NFY_DATA_T satName(uint16_t id, uint16_t recId, int16_t orbit, const char* name,
                               uint16_t signal) {
    SB_SAT_NAME_NFY_DATA_T d;
    memset(&d, 0, sizeof(d));
    d.ui2_sat_id = id;
    d.ui2_sat_rec_id = recId;
    d.i2_orbit = orbit;
    strncpy(d.ac_sat_name, name, sizeof(d.ac_sat_name) - 1);
    d.ui2_signal_level = signal;
    return d;
}

SB_DVBS_HTP_INFO_T homeTransponder(uint16_t id0, uint16_t id1, uint32_t v1, uint32_t v2, uint32_t v3) {
    SB_DVBS_HTP_INFO_T d;
    memset(&d, 0, sizeof(d));
    d.ui2_rec_id_0 = id0;
    d.ui2_rec_id_1 = id1;
    d.ui4_tp_value_1 = v1;
    d.ui4_tp_value_2 = v2;
    d.ui4_tp_value_3 = v3;
    return d;
}

constexpr size_t kSatNameFn = offsetof(SB_DVBS_SCAN_PARAMS, pf_sat_name_nfy);
constexpr size_t kGetInfoFn = offsetof(SB_DVBS_SCAN_PARAMS, pf_get_info_nfy);
constexpr size_t kMduFn = offsetof(SB_DVBS_SCAN_PARAMS, pf_mdu_nfy);

class SatelliteInstallTest : public exttest::ExtensionTest {};

TEST_F(SatelliteInstallTest, DetectionFamilyFieldsAndTheSharedSatelliteReport) {
    jobject lnb = harness::newObject(EXT_CLASS("ZelTvScanDetectLNB"), "()V");
    jobject sat = harness::newObject(EXT_CLASS("ZelTvScanDetectSatellite"), "()V");
    jobject htp = harness::newObject(EXT_CLASS("ZelTvScanDetectTransponder"), "()V");
    jobject mdu = harness::newObject(EXT_CLASS("ZelTvScanMDU"), "()V");
    Block block;
    block.preScan({sat, lnb, htp, mdu});
    // Enable bytes 772 to 774, the three functions and their tags; nothing else.
    EXPECT_EQ(block.written(), join({range(692, 16), range(772, 3), range(676, 8)}));
    EXPECT_EQ(block.at<uint8_t>(772), 1);
    EXPECT_EQ(block.at<uint8_t>(773), 1);
    EXPECT_EQ(block.at<uint8_t>(774), 1);
    for (size_t tagAt : {680, 696, 704}) {
        EXPECT_EQ(env_->GetObjectRefType(block.at<jobject>(tagAt)), JNIWeakGlobalRefType);
    }
    EXPECT_TRUE(env_->IsSameObject(block.at<jobject>(680), lnb));  // added last: LNB wins
    EXPECT_TRUE(env_->IsSameObject(block.at<jobject>(696), mdu));
    EXPECT_TRUE(env_->IsSameObject(block.at<jobject>(704), htp));
    EXPECT_EQ(Logs::starting("ZelTvScanDetectLNB_JNI", "[INFO ]").size(), 3u);

    // The 16-bit pattern of -300 arrives as -300; ids 0 and 65535 as "0,65535".
    notifyFrom(block, kSatNameFn, satName(0, 65535, -300, "Hispasat 30W-5/30W-6", 61));
    EXPECT_EQ(reports(lnb, "getDetections"), "[Hispasat 30W-5/30W-6 at 30.0W (0,65535)]");
    EXPECT_EQ(reports(sat, "getDetections"), "[]");
    EXPECT_EQ(Logs::count(ANDROID_LOG_DEBUG, "ZelTvScanDetectLNB_JNI",
                          "MW notify sateRecId=0:65535 orbit=-300 sateName=Hispasat 30W-5/30W-6\n"), 1);

    notifyFrom(block, kGetInfoFn, homeTransponder(12, 3, 11778, 2, 0xFFFFFFFF));
    EXPECT_EQ(reports(htp, "getDetections"), "[12,3 TP 11778:2:4294967295]");
    EXPECT_EQ(Logs::count(ANDROID_LOG_DEBUG, "ZelTvScanDetectHTP_JNI",
                          "MW notify htp RecId=12:3 TP=11778:2:4294967295\n"), 1);

    // A type above 2^31 reaches Java as a negative int.
    SB_DVBS_MDU_NFY_DATA_T unit{0x80000002u, 48, {0, 0}};
    notifyFrom(block, kMduFn, unit);
    EXPECT_EQ(reports(mdu, "getDetections"), "[MDU type 2147483650, signal 48]");

    // The other order: satellite detection added last receives the satellite reports.
    Block again;
    again.preScan({lnb, sat});
    EXPECT_TRUE(env_->IsSameObject(again.at<jobject>(680), sat));
    notifyFrom(again, kSatNameFn, satName(1, 192, 192, "ASTRA 1KR/1L/1M/1N", 87));
    EXPECT_EQ(reports(sat, "getDetections"), "[1,192 at 19.2E, signal 87]");
    EXPECT_EQ(Logs::count(ANDROID_LOG_DEBUG, "ZelTvScanDetectSAT_JNI",
                          "MW notify sateRecId=1:192 orbit=192 signal=87\n"), 1);
}

TEST_F(SatelliteInstallTest, NetworkAndBouquetVersions) {
    jobject nit = harness::newObject(EXT_CLASS("ZelTvScanNetwork"), "()V");
    jobject bat = harness::newObject(EXT_CLASS("ZelTvScanBouquet"), "()V");
    Block block;
    block.preScan({nit, bat});
    // Always written, 0 until Java sets them: the functions, tags, id and versions.
    EXPECT_EQ(block.written(), join({range(208, 2), range(242, 2), range(708, 16)}));
    EXPECT_EQ(block.at<uint16_t>(208), 0);
    EXPECT_EQ(block.at<uint8_t>(242), 0);
    EXPECT_EQ(block.at<uint8_t>(243), 0);

    // Java's values cut to their fields: 300 -> 44, 70000 -> 4464, 257 -> 1.
    EXPECT_EQ(harness::callInt(nit, harness::methodOf(nit, "setKnownNitVersion", "(I)I"), 300), 0);
    EXPECT_EQ(harness::callInt(bat, harness::methodOf(bat, "setBouquet", "(II)I"), 70000, 257), 0);
    block.preScan({nit, bat});
    EXPECT_EQ(block.at<uint8_t>(243), 44);
    EXPECT_EQ(block.at<uint16_t>(208), 4464);
    EXPECT_EQ(block.at<uint8_t>(242), 1);
    EXPECT_EQ(Logs::containing("ZelTvScanNetwork_JNI", ", nit version=44\n").size(), 1u);
    EXPECT_EQ(Logs::containing("ZelTvScanBouquet_JNI", " bat id=4464, bat version=1\n").size(), 1u);

    notifyFrom(block, offsetof(SB_DVBS_SCAN_PARAMS, pf_nit_built_nfy), SB_DVBS_NIT_NFY_DATA_T{45, {}});
    notifyFrom(block, offsetof(SB_DVBS_SCAN_PARAMS, pf_bat_built_nfy), SB_DVBS_BAT_NFY_DATA_T{4101, 9, 0});
    EXPECT_EQ(reports(nit, "getFoundVersions"), "[45]");
    EXPECT_EQ(reports(bat, "getFound"), "[Found[batId=4101, version=9]]");
    EXPECT_EQ(Logs::count(ANDROID_LOG_DEBUG, "ZelTvScanBouquet_JNI", "MW notify bat id=4101 bat version=9\n"), 1);
}

TEST_F(SatelliteInstallTest, AssociatedSatellitesAndCustomerLnb) {
    jobject asso = harness::newObject(EXT_CLASS("ZelTvScanAssociateList"), "()V");
    jobject search = harness::newObject(EXT_CLASS("ZelTvScanSatSearch"), "()V");
    JNIEnv* env = env_;
    auto setList = [&](const std::vector<const char*>& texts) {
        jclass stringClass = env->FindClass("java/lang/String");
        jobjectArray array = env->NewObjectArray(static_cast<jsize>(texts.size()), stringClass, nullptr);
        for (size_t i = 0; i < texts.size(); ++i) {
            jstring s = texts[i] != nullptr ? env->NewStringUTF(texts[i]) : nullptr;
            env->SetObjectArrayElement(array, static_cast<jsize>(i), s);
            if (s != nullptr) env->DeleteLocalRef(s);
        }
        jint status = harness::callInt(asso, harness::methodOf(asso, "NativeSetAssoSateInfo",
                                                               "([Ljava/lang/String;)I"), array);
        env->DeleteLocalRef(array);
        env->DeleteLocalRef(stringClass);
        return status;
    };
    Block block;
    block.preScan({asso, search});
    EXPECT_EQ(block.written(), join({range(160, 1), range(176, 32)}));
    EXPECT_EQ(block.at<uint16_t>(176), 0);
    EXPECT_EQ(block.at<uint8_t>(160), 0);  // no customer LNB until Java says so

    // 20 texts: the first 15 kept. "12" has no record id; in "3,1x" the x counts as 'x' - '0'.
    std::vector<const char*> twenty = {"3,12", "12", "3,1x", ",7", nullptr};
    std::vector<std::string> more;
    for (int i = 5; i < 20; ++i) more.push_back("1," + std::to_string(100 + i));
    for (const std::string& m : more) twenty.push_back(m.c_str());
    EXPECT_EQ(setList(twenty), 0);
    EXPECT_EQ(Logs::containing("ZelTvScanAsso_JNI", " num=20 over maximum=15 and make it as maximum\n").size(), 1u);
    EXPECT_EQ(harness::callInt(search, harness::methodOf(search, "setCustomerLnb", "(Z)I"), JNI_TRUE), 0);
    block.preScan({asso, search});
    std::vector<uint16_t> ids(15);
    memcpy(ids.data(), block.bytes + 178, 30);
    EXPECT_EQ(block.at<uint16_t>(176), 15);
    EXPECT_EQ(ids, (std::vector<uint16_t>{12, 0, 82, 7, 0, 105, 106, 107, 108, 109, 110, 111, 112, 113, 114}));
    EXPECT_EQ(block.at<uint8_t>(160), 1);
    EXPECT_EQ(block.at<uint8_t>(161), kUntouched);

    // A shorter list: slots past its count keep the longer list's ids, copied all the same.
    EXPECT_EQ(setList({"2,9"}), 0);
    block.preScan({asso});
    memcpy(ids.data(), block.bytes + 178, 30);
    EXPECT_EQ(block.at<uint16_t>(176), 1);
    EXPECT_EQ(ids[0], 9);
    EXPECT_EQ(ids[2], 82);
    EXPECT_EQ(ids[14], 114);
}

TEST_F(SatelliteInstallTest, RegionChannelListAskThenChoose) {
    jobject region = harness::newObject(EXT_CLASS("ZelTvScanRegionChannelList"), "(I)V", 60);
    ASSERT_EQ(configure(), 0);
    ASSERT_EQ(add(region), 0);  // attached to the open builder: the time zone reaches it

    Block other(5);
    other.preScan({region});
    EXPECT_TRUE(other.written().empty());  // selector 5: no list fields
    std::vector<zelsim::Call> zones = exttest::keyCalls("x_sb_set", SB_KEY_TYPE_TIME_ZONE);
    ASSERT_EQ(zones.size(), 2u);  // once for each of the two blocks
    EXPECT_NE(zones[0].args[0], 0);  // the open builder's handle
    EXPECT_EQ(zones[0].args[2], 0);  // key info 0
    EXPECT_EQ(zones[0].args[3], 2);
    EXPECT_EQ(zones[0].bytes, (std::vector<uint8_t>{60, 0}));

    for (uint32_t selector : {121u, 122u, 32u}) {
        Block asking(selector);
        asking.preScan({region});
        EXPECT_EQ(asking.written(), join({range(700, 8), range(772, 1)})) << selector;
        EXPECT_EQ(asking.at<uint8_t>(772), 1);
        EXPECT_TRUE(env_->IsSameObject(asking.at<jobject>(704), region));
    }

    // A report of 20 lists: 16 logged, all 20 to Java.
    Block asking(121);
    asking.preScan({region});
    SB_DVBS_GET_INFO_NFY_DATA_T lists;
    memset(&lists, 0, sizeof(lists));
    lists.ui1_flags = SB_DVBS_INFO_FLAG_LIST;
    lists.ui2_list_num = 20;
    for (uint16_t i = 0; i < 20; ++i) {
        lists.at_list[i].ui2_rec_id = static_cast<uint16_t>(i + 1);
        snprintf(lists.at_list[i].ac_name, sizeof(lists.at_list[i].ac_name), "Region %u", i + 1);
    }
    Logs::clear();
    notifyFrom(asking, kGetInfoFn, lists);
    EXPECT_EQ(Logs::starting("ZelTvRegionChannelList_JNI", "rec_id=").size(), 16u);
    EXPECT_EQ(Logs::count(ANDROID_LOG_DEBUG, "ZelTvRegionChannelList_JNI", "MW notify lists, num=20\n"), 1);
    jobject offered = harness::callObject(region, harness::methodOf(region, "getOfferedLists", "()Ljava/util/List;"));
    std::string text = javaString(offered);
    EXPECT_EQ(text.substr(0, 28), "[Region 1, Region 2, Region ");
    EXPECT_NE(text.find("Region 20]"), std::string::npos);

    // A name of 40 characters is kept as its first 31; then no more asking.
    jstring name = env_->NewStringUTF("Sky UK Granada North West England (HD) 1");
    std::vector<int> call = {7, static_cast<int>(handleOf(region))};
    jintArray array = scantest::newIntArray(env_, call);
    EXPECT_EQ(harness::callInt(region, harness::methodOf(region, "nativeSetRegionChannelList",
                                                         "([ILjava/lang/String;)I"), array, name), 0);
    EXPECT_EQ(scantest::intArray(env_, array)[0], 0);
    Block chosen(32);
    chosen.preScan({region});
    EXPECT_EQ(chosen.written(), join({range(210, 32), range(700, 8), range(772, 1)}));
    EXPECT_EQ(chosen.at<uint8_t>(772), 0);
    EXPECT_EQ(chosen.at<void*>(700), nullptr);
    EXPECT_EQ(chosen.at<void*>(704), nullptr);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(chosen.bytes + 210)), "Sky UK Granada North West Engla");

    // An array of one element, or 0 in element 1, names no extension: logged, nothing chosen,
    // the array not written back.
    Logs::clear();
    for (const std::vector<int>& values : {std::vector<int>{7}, std::vector<int>{7, 0, 5}}) {
        jintArray none = scantest::newIntArray(env_, values);
        EXPECT_EQ(harness::callInt(region, harness::methodOf(region, "nativeSetRegionChannelList",
                                                             "([ILjava/lang/String;)I"),
                                   none, env_->NewStringUTF("Granada")), 0);
        EXPECT_EQ(scantest::intArray(env_, none), values);
    }
    EXPECT_EQ(Logs::containing("ZelTvRegionChannelList_JNI", "ptRegionCHList is NULL!").size(), 2u);
    Block still(32);
    still.preScan({region});
    EXPECT_EQ(std::string(reinterpret_cast<char*>(still.bytes + 210)), "Sky UK Granada North West Engla");
}

TEST_F(SatelliteInstallTest, RegionTimeZoneRefusedWhileNotAttached) {
    Logs::clear();
    jobject region = harness::newObject(EXT_CLASS("ZelTvScanRegionChannelList"), "(I)V", 0x1234);
    EXPECT_EQ(Logs::containing("ZelTvRegionChannelList_JNI", " timeZone=4660\n").size(), 1u);
    Block block(5);
    block.preScan({region});
    // No builder: x_sb_set refuses handle 0, and both lines say so at error level.
    EXPECT_EQ(Logs::starting("ZelTvRegionChannelList_JNI", "[INFO ]").size(), 4u);
    std::vector<harness::LogLine> errors = Logs::containing("ZelTvRegionChannelList_JNI", "time zone error");
    std::vector<harness::LogLine> callers = Logs::containing("ZelTvRegionChannelList_JNI", "_set_time_zone error");
    ASSERT_EQ(errors.size(), 1u);
    ASSERT_EQ(callers.size(), 1u);
    errors.push_back(callers[0]);
    EXPECT_EQ(errors[0].priority, ANDROID_LOG_ERROR);
    EXPECT_EQ(errors[1].priority, ANDROID_LOG_ERROR);
    EXPECT_NE(errors[0].text.find("{_set_time_zone} set time zone error, i4_ret=-3, mServiceBuilder=0x0"),
              std::string::npos) << errors[0].text;
    EXPECT_NE(errors[1].text.find("{onPreScan} _set_time_zone error, i4_ret=-3"), std::string::npos);
}

TEST_F(SatelliteInstallTest, NullBlockAndNullRecordEndTheProcess) {
    jobject mdu = harness::newObject(EXT_CLASS("ZelTvScanMDU"), "()V");
    android::JINativeScanExtension* native = nativeOf(mdu);
    EXPECT_DEATH(native->onPreScan(nullptr), "scanParames");
    Block block;
    block.preScan({mdu});
    auto fn = block.at<void (*)(void*, void*)>(kMduFn);
    void* tag = block.at<void*>(kMduFn + sizeof(void*));
    EXPECT_DEATH(fn(nullptr, tag), "");
    SB_DVBS_MDU_NFY_DATA_T unit{};
    EXPECT_DEATH(fn(&unit, nullptr), "");
    // A report without the list flag is not a list report.
    jobject region = harness::newObject(EXT_CLASS("ZelTvScanRegionChannelList"), "(I)V", 0);
    Block asking(121);
    asking.preScan({region});
    SB_DVBS_GET_INFO_NFY_DATA_T home{};
    auto info = asking.at<void (*)(void*, void*)>(kGetInfoFn);
    EXPECT_DEATH(info(&home, asking.at<void*>(kGetInfoFn + sizeof(void*))), "");
}

// The whole road: a satellite scan with the installation scenario; the builder reads the
// fields the extensions wrote and calls their functions from its own threads.
TEST_F(SatelliteInstallTest, InstallationScanReachesEveryExtension) {
    android::sp<scantest::FakeConfig> config = new scantest::FakeConfig("sb_dvbs");
    SB_DVBS_SCAN_PARAMS b;
    memset(&b, 0, sizeof(b));
    b.ui4_operator = 121;
    b.e_scan_type = SB_DVBS_SCAN_TYPE_SINGLE_TP;
    b.ui2_sat_id = 4;
    b.ui2_sat_rec_id = 4;
    b.ui4_freq = 10773;
    b.e_pol = SB_DVBS_POL_H;
    b.ui4_sym_rate = 22000;
    memcpy(config->block, &b, sizeof(b));
    scantest::Engine e = scantest::Engine::create();
    ASSERT_EQ(e.configure(config->pointer(), 1), 0);
    jobject sat = harness::newObject(EXT_CLASS("ZelTvScanDetectSatellite"), "()V");
    jobject lnb = harness::newObject(EXT_CLASS("ZelTvScanDetectLNB"), "()V");
    jobject mdu = harness::newObject(EXT_CLASS("ZelTvScanMDU"), "()V");
    jobject nit = harness::newObject(EXT_CLASS("ZelTvScanNetwork"), "()V");
    jobject bat = harness::newObject(EXT_CLASS("ZelTvScanBouquet"), "()V");
    jobject region = harness::newObject(EXT_CLASS("ZelTvScanRegionChannelList"), "(I)V", 0);
    harness::callInt(bat, harness::methodOf(bat, "setBouquet", "(II)I"), 4101, 8);
    harness::callInt(nit, harness::methodOf(nit, "setKnownNitVersion", "(I)I"), 13);
    for (jobject x : {sat, lnb, mdu, nit, bat, region}) {
        ASSERT_EQ(harness::callInt(e.object, harness::methodOf(e.object, "nativeAddExtension", "(J)I"),
                                   handleOf(x)), 0);
    }
    std::string error;
    ASSERT_TRUE(zelsim::loadScenarioFile(ORVELLA_SOURCE_DIR "/scenarios/dvbs-installation.json", &error)) << error;
    ASSERT_EQ(e.native("nativeStart"), 0);
    ASSERT_TRUE(e.awaitEnds(1));

    std::vector<std::string> start = scantest::lastCall("x_sb_start_scan").strings;
    for (const char* line : {"nit_version=13", "bat=4101/8", "detect=sat_name:1 mdu:1 get_info:1"}) {
        EXPECT_NE(std::find(start.begin(), start.end(), line), start.end()) << line;
    }
    // LNB detection was added after satellite detection: it hears every input (and the
    // orbit slot of the scanned satellite).
    std::string inputs = reports(lnb, "getDetections");
    EXPECT_EQ(inputs.substr(0, 40), "[ASTRA 1KR/1L/1M/1N at 19.2E (1,1), Eute");
    EXPECT_NE(inputs.find("ASTRA 2E/2F/2G at 28.2E (4,4)"), std::string::npos);
    EXPECT_EQ(reports(sat, "getDetections"), "[]");
    EXPECT_EQ(reports(mdu, "getDetections"), "[MDU type 2, signal 71]");
    EXPECT_EQ(reports(nit, "getFoundVersions"), "[14]");
    EXPECT_EQ(reports(bat, "getFound"), "[Found[batId=4101, version=9]]");
    jobject offered = harness::callObject(region, harness::methodOf(region, "getOfferedLists", "()Ljava/util/List;"));
    EXPECT_EQ(javaString(offered).substr(0, 48), "[London, Meridian South, Meridian South East, An");
    EXPECT_EQ(e.native("nativeClose"), 0);
    EXPECT_EQ(e.native("nativeRelease"), 0);
}

// The home-transponder detection and the region channel list write the same three fields
// (700, 704, 772), and TKGS writes 772 as well: the extension whose onPreScan runs later (the
// later-added) decides them, and the builder's report reaches that one only.
TEST_F(SatelliteInstallTest, HomeTransponderAndRegionListsShareTheirFieldsTheLaterWins) {
    jobject htp = harness::newObject(EXT_CLASS("ZelTvScanDetectTransponder"), "()V");
    jobject region = harness::newObject(EXT_CLASS("ZelTvScanRegionChannelList"), "(I)V", 60);
    jobject tkgs = harness::newObject(EXT_CLASS("ZelTvScanTKGS"), "()V");
    Block regionLast(121);
    regionLast.preScan({htp, region});
    Block htpLast(121);
    htpLast.preScan({region, htp});
    EXPECT_EQ(regionLast.written(), join({range(700, 8), range(772, 1)}));
    EXPECT_EQ(htpLast.written(), join({range(700, 8), range(772, 1)}));
    EXPECT_TRUE(env_->IsSameObject(regionLast.at<jobject>(704), region));
    EXPECT_TRUE(env_->IsSameObject(htpLast.at<jobject>(704), htp));
    EXPECT_NE(regionLast.at<void*>(700), htpLast.at<void*>(700));

    notifyFrom(htpLast, kGetInfoFn, homeTransponder(4, 1, 10773, 1, 22000));
    EXPECT_EQ(reports(htp, "getDetections"), "[4,1 TP 10773:1:22000]");
    SB_DVBS_GET_INFO_NFY_DATA_T lists;
    memset(&lists, 0, sizeof(lists));
    lists.ui1_flags = SB_DVBS_INFO_FLAG_LIST;
    lists.ui2_list_num = 2;
    snprintf(lists.at_list[0].ac_name, sizeof(lists.at_list[0].ac_name), "London");
    snprintf(lists.at_list[1].ac_name, sizeof(lists.at_list[1].ac_name), "Granada");
    notifyFrom(regionLast, kGetInfoFn, lists);
    EXPECT_EQ(javaString(harness::callObject(
                  region, harness::methodOf(region, "getOfferedLists", "()Ljava/util/List;"))),
              "[London, Granada]");
    EXPECT_EQ(reports(htp, "getDetections"), "[4,1 TP 10773:1:22000]");  // not told of lists

    // TKGS without a preferred list writes 1 at 772 and an empty name at 210; a chosen region
    // list writes 0 and its name. The later one stands.
    jstring name = env_->NewStringUTF("London");
    jintArray array = scantest::newIntArray(env_, {7, static_cast<int>(handleOf(region))});
    ASSERT_EQ(harness::callInt(region, harness::methodOf(region, "nativeSetRegionChannelList",
                                                         "([ILjava/lang/String;)I"), array, name), 0);
    Block chosenLast(121);
    chosenLast.preScan({tkgs, region});
    EXPECT_EQ(chosenLast.at<uint8_t>(772), 0);
    EXPECT_EQ(std::string(reinterpret_cast<char*>(chosenLast.bytes + 210)), "London");
    Block tkgsLast(121);
    tkgsLast.preScan({region, tkgs});
    EXPECT_EQ(tkgsLast.at<uint8_t>(772), 1);
    EXPECT_EQ(tkgsLast.at<char>(210), '\0');
}

// A satellite extension added to an engine of another standard is handed that standard's
// block, which is smaller: it writes nothing into it (the operator selection would land on
// the DVB-T fields and past the block) and says so; the scan goes on.
TEST_F(SatelliteInstallTest, SatelliteExtensionsWriteNothingIntoAnotherStandardsBlock) {
    jobject fst = harness::newObject(EXT_CLASS("ZelTvScanFST"), "()V");
    jobject selected = harness::newObject(EXT_CLASS("ZelTvScanFST$OperatorSelected"),
                                          "(IIIILjava/lang/String;Ljava/lang/String;I)V", 53, 1,
                                          900, 7, env_->NewStringUTF("Canal Digitaal"),
                                          env_->NewStringUTF("HD"), 0x15);
    harness::callVoid(fst, harness::methodOf(fst, "selectOperator",
                                             "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanFST$OperatorSelected;)V"),
                      selected);
    jobject tkgs = harness::newObject(EXT_CLASS("ZelTvScanTKGS"), "()V");
    jobject lnb = harness::newObject(EXT_CLASS("ZelTvScanDetectLNB"), "()V");
    jobject region = harness::newObject(EXT_CLASS("ZelTvScanRegionChannelList"), "(I)V", 60);
    ASSERT_EQ(configure(), 0);
    for (jobject e : {fst, tkgs, lnb, region}) ASSERT_EQ(add(e), 0);
    const auto* block = static_cast<const uint8_t*>(scantest::nativeConfig(config_)->getSbScanParams(0));
    const std::vector<uint8_t> before(block, block + sizeof(SB_DVB_SCAN_DATA_T));
    Logs::clear();
    scan("dvbt-small.json");
    EXPECT_EQ(std::vector<uint8_t>(block, block + sizeof(SB_DVB_SCAN_DATA_T)), before);
    for (const char* tag : {"ZelTvScanFST_JNI", "ZelTvScanTKGS_JNI", "ZelTvScanDetectLNB_JNI",
                            "ZelTvRegionChannelList_JNI"}) {
        EXPECT_EQ(Logs::containing(tag, "belongs to builder sb_dvb, not sb_dvbs: nothing written").size(), 1u)
            << tag;
    }
    // The time zone is a builder key, not a block field: it is still set.
    EXPECT_EQ(exttest::keyCalls("x_sb_set", SB_KEY_TYPE_TIME_ZONE).size(), 1u);
}

}  // namespace
