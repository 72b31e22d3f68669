// The Fastscan, TKGS and HD+ extensions: what onPreScan writes into the DVB-S scan block (and
// what it leaves), their natives at the int[] limits, and their builder notifications
// reaching Java with every field from threads that are not attached to the VM.
#include <string.h>

#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "JINativeScanExtension.h"
#include "SbDvbsScanParams.h"
#include "extension_test_util.h"
#include "x_sb_dvbs_operator.h"
#include "zel_sim.h"

namespace {

using android::JINativeScanExtension;
using exttest::arrayFor;
using exttest::callArray;
using harness::Logs;

constexpr uint8_t kFill = 0xAB;  // what the configuration left in the block

// A record in exactly the builder's `size` bytes, so that a read past them is caught.
template <typename Record>
std::vector<uint8_t> exact(const Record& r, size_t size) {
    const auto* p = reinterpret_cast<const uint8_t*>(&r);
    return std::vector<uint8_t>(p, p + size);
}

jstring jstr(const std::string& s) { return harness::env()->NewStringUTF(s.c_str()); }

jobjectArray jstrings(const std::vector<std::string>& items) {
    JNIEnv* env = harness::env();
    jobjectArray array = env->NewObjectArray(static_cast<jsize>(items.size()),
                                             harness::findClass("java/lang/String"), nullptr);
    for (size_t i = 0; i < items.size(); ++i) {
        env->SetObjectArrayElement(array, static_cast<jsize>(i), jstr(items[i]));
    }
    return array;
}

jobject jlist(const std::vector<std::string>& items) {
    JNIEnv* env = harness::env();
    jclass arrays = harness::findClass("java/util/Arrays");
    jobject list = env->CallStaticObjectMethod(
        arrays, env->GetStaticMethodID(arrays, "asList", "([Ljava/lang/Object;)Ljava/util/List;"),
        jstrings(items));
    EXPECT_FALSE(env->ExceptionCheck());
    return list;
}

class SatelliteOpsTest : public harness::JvmTest {
protected:
    void SetUp() override {
        harness::JvmTest::SetUp();
        memset(&block_, kFill, sizeof(block_));
    }

    jobject create(const char* javaClass) { return harness::newObject(javaClass, "()V"); }
    JINativeScanExtension* native(jobject extension) {
        return JINativeScanExtension::fromHandle(exttest::handleOf(extension));
    }
    jobject recorder(jobject extension, const char* signature) {
        JNIEnv* env = harness::env();
        jclass c = harness::findClass("com/brinova/tv/orvella/testsupport/SatelliteOpsRecorder");
        jobject r = env->CallStaticObjectMethod(c, env->GetStaticMethodID(c, "listenTo", signature),
                                                extension);
        EXPECT_FALSE(env->ExceptionCheck());
        return r;
    }
    std::vector<std::string> events(jobject recorder, const char* method = "eventNames") {
        return scantest::stringArray(harness::env(), static_cast<jobjectArray>(harness::callObject(
                                         recorder, harness::methodOf(recorder, method,
                                                                     "()[Ljava/lang/String;"))));
    }
    // The block bytes in [from, to), compared against the configuration's fill.
    bool untouched(size_t from, size_t to) {
        const auto* b = reinterpret_cast<const uint8_t*>(&block_);
        for (size_t i = from; i < to; ++i) {
            if (b[i] != kFill) return false;
        }
        return true;
    }
    // Calls a notify function of the block from a thread the VM does not know, as the
    // builder does; false when the thread was left attached.
    bool notifyFromBuilder(x_sb_dvbs_built_nfy_fct fn, void* record, void* tag) {
        bool attachedAfter = true;
        std::thread builder([&] {
            fn(record, tag);
            attachedAfter = scantest::threadAttached();
        });
        builder.join();
        return !attachedAfter;
    }

    SB_DVBS_SCAN_PARAMS block_;
};

std::vector<std::string> withoutThreads(const std::vector<std::string>& events,
                                        std::string* thread) {
    std::vector<std::string> out;
    for (const std::string& e : events) {
        size_t at = e.rfind(" @");
        out.push_back(e.substr(0, at));
        if (thread != nullptr && (thread->empty() || *thread == e.substr(at + 2))) {
            *thread = e.substr(at + 2);
        } else if (thread != nullptr) {
            *thread = "mixed";
        }
    }
    return out;
}

// ---- Fastscan ----------------------------------------------------------------------------

TEST_F(SatelliteOpsTest, FastscanWritesItsChoicesIntoTheBlock) {
    jobject fst = create(EXT_CLASS("ZelTvScanFST"));
    native(fst)->onPreScan(&block_);
    // Without a selection the record at 20 is not touched; the rest is always written.
    EXPECT_TRUE(untouched(20, 156));
    EXPECT_EQ(block_.ui2_asso_sat_num, 0);
    EXPECT_EQ(block_.aui2_asso_sat_rec_id[0], 0);
    EXPECT_NE(block_.pf_fst_built_nfy, nullptr);
    EXPECT_TRUE(harness::env()->IsSameObject(static_cast<jobject>(block_.pv_fst_built_nfy_tag), fst));
    EXPECT_TRUE(untouched(208, 724));
    EXPECT_TRUE(untouched(732, sizeof(block_)));

    // 16 satellites: cut to 15, only the record ids kept, parsed without validation.
    std::vector<std::string> ids = {"1,7", "12", ",5", "3,1:"};
    while (ids.size() < 16) ids.push_back("2," + std::to_string(ids.size() + 20));
    harness::callVoid(fst, harness::methodOf(fst, "setAssociatedSatellites", "(Ljava/util/List;)V"),
                      jlist(ids));
    // The selection: a 70-character name keeps 63, the sub-list id its low byte.
    jobject sel = harness::newObject(EXT_CLASS("ZelTvScanFST$OperatorSelected"),
                                     "(IIIILjava/lang/String;Ljava/lang/String;I)V", 53, 0x101,
                                     0x10FA1, 0x107, jstr(std::string(70, 'N')),
                                     jstr("HD"), 0x115);
    harness::callVoid(fst, harness::methodOf(fst, "selectOperator",
                                             "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanFST$OperatorSelected;)V"),
                      sel);
    native(fst)->onPreScan(&block_);
    EXPECT_EQ(block_.ui2_asso_sat_num, 15);
    EXPECT_EQ(block_.aui2_asso_sat_rec_id[0], 7);
    EXPECT_EQ(block_.aui2_asso_sat_rec_id[1], 0);
    EXPECT_EQ(block_.aui2_asso_sat_rec_id[2], 5);
    EXPECT_EQ(block_.aui2_asso_sat_rec_id[3], 20);  // ":" folds in as 10: 1 * 10 + 10
    EXPECT_EQ(block_.aui2_asso_sat_rec_id[14], 34);
    const SB_DVBS_FST_OPERATOR_SEL_T& s = block_.t_fst_operator;
    EXPECT_EQ(s.ui2_nw_id, 53);
    EXPECT_EQ(s.ui1_sub_list_id, 1);
    EXPECT_EQ(s.ui1_reserved, 0);
    EXPECT_EQ(s.ui2_fst_pid, 0x0FA1);
    EXPECT_EQ(s.ui1_fst_version, 7);
    EXPECT_EQ(std::string(s.ac_name), std::string(63, 'N'));
    EXPECT_EQ(std::string(s.ac_sub_list_name), "HD");
    EXPECT_EQ(s.ui1_deft_char_set, 0x15);
    EXPECT_EQ(Logs::containing("ZelTvScanFST_JNI", " num=16 over maximum=15 and make it as maximum").size(), 1u);

    // 15 stay 15; none gives 0.
    ids.resize(15);
    harness::callVoid(fst, harness::methodOf(fst, "setAssociatedSatellites", "(Ljava/util/List;)V"),
                      jlist(ids));
    native(fst)->onPreScan(&block_);
    EXPECT_EQ(block_.ui2_asso_sat_num, 15);
    harness::callVoid(fst, harness::methodOf(fst, "setAssociatedSatellites", "(Ljava/util/List;)V"),
                      jlist(std::vector<std::string>{}));
    native(fst)->onPreScan(&block_);
    EXPECT_EQ(block_.ui2_asso_sat_num, 0);
}

TEST_F(SatelliteOpsTest, FastscanNativesKeepTheIntArrayConvention) {
    jobject fst = create(EXT_CLASS("ZelTvScanFST"));
    const char* sig = "([I[Ljava/lang/String;)I";
    jmethodID native = harness::methodOf(fst, "nativeSetAssociateSateInfo", sig);
    auto call = [&](std::vector<int>& values) {
        JNIEnv* env = harness::env();
        jintArray array = scantest::newIntArray(env, values);
        jint status = harness::callInt(fst, native, array, jstrings({"1,9"}));
        env->GetIntArrayRegion(array, 0, static_cast<jsize>(values.size()), values.data());
        return status;
    };
    std::vector<int> fifty = arrayFor(fst, 50, {});
    EXPECT_EQ(call(fifty), 0);
    EXPECT_EQ(fifty[0], 0);  // written back
    EXPECT_EQ(fifty[49], 1);
    std::vector<int> fiftyOne = arrayFor(fst, 51, {});
    EXPECT_EQ(call(fiftyOne), 0);
    EXPECT_EQ(fiftyOne[0], 9);  // untouched
    std::vector<int> empty;
    EXPECT_EQ(call(empty), 0);
    std::vector<int> noHandle = {9, 0};
    EXPECT_EQ(call(noHandle), 0);
    EXPECT_EQ(noHandle[0], 9);
    const std::string tag = "ZelTvScanFST_JNI";
    EXPECT_EQ(Logs::containing(tag, "(jni GET type length is not enough)").size(), 1u);
    EXPECT_EQ(Logs::containing(tag, "(jni size of GET type array should be bigger than ZERO)").size(), 1u);
    EXPECT_EQ(Logs::containing(tag, " ptFST is NULL!").size(), 1u);
    // The native's own name, not a helper's.
    for (const harness::LogLine& line : Logs::starting(tag, "[ERROR][")) {
        EXPECT_NE(line.text.find("]{Java_com_brinova_tv_orvella_scan_ZelTvScanFST_nativeSetAssoSateInfo}"),
                  std::string::npos) << line.text;
    }
}

SB_DVBS_FST_OPERATOR_INFO_T operatorEntry(uint16_t nwid, uint8_t slid, const char* name,
                                          const char* sub, std::vector<int16_t> orbits) {
    SB_DVBS_FST_OPERATOR_INFO_T op;
    memset(&op, 0, sizeof(op));
    op.ui2_nw_id = nwid;
    op.ui1_sub_list_id = slid;
    op.ui2_fst_pid = 900;
    op.ui1_fst_version = 12;
    strcpy(op.ac_name, name);
    strcpy(op.ac_sub_list_name, sub);
    memcpy(op.ac_country_code, "NLD", 4);
    memcpy(op.ac_menu_lang, "dut", 4);
    memcpy(op.ac_aud1_lang, "dut", 4);
    memcpy(op.ac_aud2_lang, "eng", 4);
    memcpy(op.ac_sbtl_lang, "dut", 4);
    op.ui2_orbit_num = static_cast<uint16_t>(orbits.size());
    for (size_t i = 0; i < orbits.size() && i < SB_DVBS_FST_ORBIT_MAX; ++i) op.ai2_orbit[i] = orbits[i];
    op.ui1_pare_con_rate = 16;
    op.ui1_deft_char_set = 0x15;
    op.b_sbtl_enabled = 1;
    op.b_spec_regn_setup = 0;
    strcpy(op.ac_ott_brand_id, "canaldigitaal");
    return op;
}

TEST_F(SatelliteOpsTest, FastscanTablesReachJavaFromAnUnattachedBuilderThread) {
    jobject fst = create(EXT_CLASS("ZelTvScanFST"));
    jobject rec = recorder(fst, "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanFST;)Lcom/brinova/tv/orvella/testsupport/SatelliteOpsRecorder;");
    harness::callVoid(rec, harness::methodOf(rec, "pick", "(I)V"), 1);
    native(fst)->onPreScan(&block_);

    SB_DVBS_FST_BUILT_NFY_DATA_T table;
    memset(&table, 0, sizeof(table));
    SB_DVBS_FST_BUILT_NFY_DATA_T* d = &table;
    d->ui4_mask = 0xF;
    d->ui4_freq = 12515;
    d->e_pol = SB_DVBS_POL_H;
    d->ui4_sym_rate = 22000;
    d->ui2_sat_id = 3;
    d->ui2_sat_rec_id = 2;
    d->ui2_operator_num = 2;
    d->at_operator[0] = operatorEntry(53, 1, "Canal Digitaal", "HD", {192, 235, -50});
    d->at_operator[1] = operatorEntry(53, 2, "Canal Digitaal", "SD", {192});
    d->ui1_fst_version = 7;
    std::vector<uint8_t> bytes = exact(table, SB_DVBS_FST_BUILT_NFY_DATA_SIZE);
    ASSERT_TRUE(notifyFromBuilder(block_.pf_fst_built_nfy, bytes.data(), block_.pv_fst_built_nfy_tag));

    std::string thread;
    const std::string op0 = "53/1 pid 900 v12 [Canal Digitaal] [HD] NLD dut dut eng dut orbits 3[192, 235, -50] rating 16 charset 21 sbtl true region false ott [canaldigitaal]";
    const std::string op1 = "53/2 pid 900 v12 [Canal Digitaal] [SD] NLD dut dut eng dut orbits 1[192] rating 16 charset 21 sbtl true region false ott [canaldigitaal]";
    EXPECT_EQ(withoutThreads(events(rec, "events"), &thread),
              (std::vector<std::string>{"home 3,2 12515 1 22000", "operators 2 | " + op0 + " | " + op1,
                                        "choose 2", "version 7", "version changed"}));
    EXPECT_NE(thread, "main");
    EXPECT_NE(thread, "mixed");
    EXPECT_EQ(Logs::containing("ZelTvScanFST_JNI", " satl id=3 satl rec id=2 HomeTP=12515H22000").size(), 1u);

    // The chooser's pick is the selection of the next scan.
    native(fst)->onPreScan(&block_);
    EXPECT_EQ(block_.t_fst_operator.ui1_sub_list_id, 2);
    EXPECT_EQ(std::string(block_.t_fst_operator.ac_sub_list_name), "SD");

    // Mask 0 calls nothing; counts beyond the record's room are cut to it.
    harness::callVoid(rec, harness::methodOf(rec, "clear", "()V"));
    d->ui4_mask = 0;
    bytes = exact(table, SB_DVBS_FST_BUILT_NFY_DATA_SIZE);
    ASSERT_TRUE(notifyFromBuilder(block_.pf_fst_built_nfy, bytes.data(), block_.pv_fst_built_nfy_tag));
    EXPECT_TRUE(events(rec).empty());
    d->ui4_mask = SB_DVBS_FST_OPERATOR_VALID;
    d->ui2_operator_num = 0xFFFF;
    d->at_operator[0].ui2_orbit_num = 0xFFFF;
    bytes = exact(table, SB_DVBS_FST_BUILT_NFY_DATA_SIZE);
    ASSERT_TRUE(notifyFromBuilder(block_.pf_fst_built_nfy, bytes.data(), block_.pv_fst_built_nfy_tag));
    std::vector<std::string> seen = events(rec);
    ASSERT_EQ(seen.size(), 2u);
    EXPECT_EQ(seen[0].substr(0, 13), "operators 16 ");
    EXPECT_NE(seen[0].find(" orbits 16["), std::string::npos);
}

// ---- TKGS ----------------------------------------------------------------------------------

jobject locator(int freq, int pol, int sr, int pid) {
    return harness::newObject(EXT_CLASS("ZelTvScanTKGS$TKGSLocator"), "(IIII)V", freq, pol, sr, pid);
}

TEST_F(SatelliteOpsTest, TkgsWritesVersionModeListAndLocators) {
    jobject tkgs = create(EXT_CLASS("ZelTvScanTKGS"));
    native(tkgs)->onPreScan(&block_);
    // No preferred list: an empty name and byte 772 = 1; no locators: their records untouched.
    EXPECT_EQ(block_.s_svl_name[0], '\0');
    EXPECT_EQ(block_.b_get_info, 1);
    EXPECT_EQ(block_.ui1_tkgs_version, 0);
    EXPECT_TRUE(untouched(256, 656));
    EXPECT_TRUE(harness::env()->IsSameObject(static_cast<jobject>(block_.pv_tkgs_built_nfy_tag), tkgs));
    EXPECT_TRUE(untouched(0, 210));
    EXPECT_TRUE(untouched(656, 732));

    jobject settings = harness::newObject(EXT_CLASS("ZelTvScanTKGS$Settings"), "()V");
    const char* settingsSig = "Lcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS$Settings;";
    auto with = [&](const char* method, const char* arg, auto value) {
        harness::callObject(settings, harness::methodOf(settings, method, (std::string("(") + arg + ")" + settingsSig).c_str()), value);
    };
    with("setVersion", "I", 0x1A5);
    with("setMode", "I", 2);
    with("setPreferredServiceList", "Ljava/lang/String;", jstr(std::string(40, 'L')));
    for (int i = 0; i < 21; ++i) {
        with("addHiddenLocator", "Lcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS$TKGSLocator;",
             locator(11000 + i, 1, 30000, 0x1000 + i));
    }
    for (int i = 0; i < 6; ++i) {
        with("addVisibleLocator", "Lcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS$TKGSLocator;",
             locator(12000 + i, 2, 27500, 0x20000 + i));
    }
    Logs::clear();
    jint dropped = harness::callInt(tkgs, harness::methodOf(tkgs, "apply", (std::string("(") + settingsSig + ")I").c_str()), settings);
    EXPECT_EQ(dropped, 2);
    // The native side keeps 20 hidden and 5 visible locators; the ones past them go silently.
    EXPECT_EQ(Logs::containing("ZelTvScanTKGS_JNI", " Add one hidden locator: ").size(), 20u);
    EXPECT_EQ(Logs::containing("ZelTvScanTKGS_JNI", " Add one visible locator: ").size(), 5u);
    EXPECT_TRUE(Logs::containing("ZelTvScanTKGS_JNI", "locatorType").empty());
    EXPECT_TRUE(Logs::starting("ZelTvScanTKGS_JNI", "[ERROR]").empty());
    memset(&block_, kFill, sizeof(block_));
    native(tkgs)->onPreScan(&block_);
    EXPECT_EQ(std::string(block_.s_svl_name), std::string(31, 'L'));
    EXPECT_EQ(block_.b_get_info, 0);
    EXPECT_EQ(block_.ui1_tkgs_version, 0xA5);
    EXPECT_EQ(block_.ui1_tkgs_mode, 2);
    EXPECT_EQ(block_.at_hidden_locator[19].ui4_freq, 11019u);
    EXPECT_EQ(block_.at_hidden_locator[0].ui2_pid, 0x1000);
    EXPECT_EQ(block_.at_hidden_locator[0].aui1_zero[0], 0);
    EXPECT_EQ(block_.at_hidden_locator[0].e_pol, 1u);
    EXPECT_EQ(block_.at_hidden_locator[0].ui4_sym_rate, 30000u);
    EXPECT_EQ(block_.at_visible_locator[4].ui4_freq, 12004u);
    EXPECT_EQ(block_.at_visible_locator[0].ui2_pid, 0);  // 0x20000's low 16 bits
    EXPECT_TRUE(untouched(246, 256));  // the counts are not written anywhere
    EXPECT_TRUE(untouched(773, sizeof(block_)));

    // A locator of type 2 is refused with its line; the array is not written back.
    std::vector<int> values = arrayFor(tkgs, 3, {2});
    JNIEnv* env = harness::env();
    jintArray array = scantest::newIntArray(env, values);
    harness::callInt(tkgs, harness::methodOf(tkgs, "nativeSetLocator", "([ILcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS$TKGSLocator;)I"),
                     array, locator(1, 1, 1, 1));
    env->GetIntArrayRegion(array, 0, 3, values.data());
    EXPECT_EQ(values[0], 9);
    EXPECT_EQ(Logs::containing("ZelTvScanTKGS_JNI", " locatorType=2 is wrong set!").size(), 1u);
    // The version native lets its array go without writing it back.
    values = arrayFor(tkgs, 2, {});
    array = scantest::newIntArray(env, values);
    harness::callInt(tkgs, harness::methodOf(tkgs, "nativeSetTKGSVersion", "([II)I"), array, 3);
    env->GetIntArrayRegion(array, 0, 2, values.data());
    EXPECT_EQ(values[0], 9);

    // One hidden locator: all 20 records go to the block, those past the first zero; the
    // visible records, with none stored, are left as they were.
    jobject one = create(EXT_CLASS("ZelTvScanTKGS"));
    jobject oneSettings = harness::newObject(EXT_CLASS("ZelTvScanTKGS$Settings"), "()V");
    harness::callObject(oneSettings, harness::methodOf(oneSettings, "addHiddenLocator", "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS$TKGSLocator;)Lcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS$Settings;"),
                        locator(11054, 1, 30000, 3000));
    EXPECT_EQ(harness::callInt(one, harness::methodOf(one, "apply", (std::string("(") + settingsSig + ")I").c_str()), oneSettings), 0);
    memset(&block_, kFill, sizeof(block_));
    native(one)->onPreScan(&block_);
    EXPECT_EQ(block_.at_hidden_locator[0].ui4_freq, 11054u);
    EXPECT_EQ(block_.at_hidden_locator[0].ui2_pid, 3000);
    const auto* rest = reinterpret_cast<const uint8_t*>(&block_.at_hidden_locator[1]);
    EXPECT_EQ(std::vector<uint8_t>(rest, rest + 19 * sizeof(block_.at_hidden_locator[0])),
              std::vector<uint8_t>(19 * sizeof(block_.at_hidden_locator[0]), 0));
    EXPECT_TRUE(untouched(576, 656));
}

TEST_F(SatelliteOpsTest, TkgsTablesReachJavaInTheirOrder) {
    jobject tkgs = create(EXT_CLASS("ZelTvScanTKGS"));
    jobject rec = recorder(tkgs, "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS;)Lcom/brinova/tv/orvella/testsupport/SatelliteOpsRecorder;");
    native(tkgs)->onPreScan(&block_);
    static SB_DVBS_TKGS_BUILT_NFY_DATA_T table;
    memset(&table, 0, sizeof(table));
    SB_DVBS_TKGS_BUILT_NFY_DATA_T* d = &table;
    d->ui4_mask = 0x1F;
    d->ui2_hidden_locator_num = 2;
    d->at_hidden_locator[0] = {0x0BB8, {0, 0}, 11096, 2, 30000};
    d->at_hidden_locator[1] = {0x0BB9, {0, 0}, 12380, 1, 27500};
    d->ui2_category_num = 2;
    d->at_category[0].ui2_no = 1;
    strcpy(d->at_category[0].ac_name, "Ulusal");
    d->at_category[1].ui2_no = 7;
    strcpy(d->at_category[1].ac_name, "Haber");
    d->ui2_svc_list_num = 2;
    strcpy(d->aac_svc_list_name[0], "Ulusal Liste");
    strcpy(d->aac_svc_list_name[1], "Bolgesel");
    d->ui1_tkgs_version = 42;
    strcpy(d->s_user_msg, "Kanal listesi guncellendi");
    std::vector<uint8_t> bytes = exact(table, SB_DVBS_TKGS_BUILT_NFY_DATA_SIZE);
    Logs::clear();
    ASSERT_TRUE(notifyFromBuilder(block_.pf_tkgs_built_nfy, bytes.data(), block_.pv_tkgs_built_nfy_tag));
    std::string thread;
    EXPECT_EQ(withoutThreads(events(rec, "events"), &thread),
              (std::vector<std::string>{"version 42", "hidden 2 | 11096 2 30000 3000 | 12380 1 27500 3001",
                                        "categories 2 | 1 Ulusal | 7 Haber", "lists 2 Ulusal Liste|Bolgesel",
                                        "message Kanal listesi guncellendi"}));
    EXPECT_NE(thread, "main");
    EXPECT_EQ(Logs::containing("ZelTvScanTKGS_JNI", " GetEnv NG!").size(), 1u);

    // Version only.
    harness::callVoid(rec, harness::methodOf(rec, "clear", "()V"));
    d->ui4_mask = SB_DVBS_TKGS_VERSION;
    bytes = exact(table, SB_DVBS_TKGS_BUILT_NFY_DATA_SIZE);
    ASSERT_TRUE(notifyFromBuilder(block_.pf_tkgs_built_nfy, bytes.data(), block_.pv_tkgs_built_nfy_tag));
    EXPECT_EQ(events(rec), std::vector<std::string>{"version 42"});

    // Counts past the record's room are cut to it; a message filling its field is cut too.
    harness::callVoid(rec, harness::methodOf(rec, "clear", "()V"));
    d->ui4_mask = 0x17;
    d->ui2_hidden_locator_num = 0xFFFF;
    d->ui2_category_num = 31;
    d->ui2_svc_list_num = 10;
    memset(d->s_user_msg, 'M', sizeof(d->s_user_msg));
    bytes = exact(table, SB_DVBS_TKGS_BUILT_NFY_DATA_SIZE);
    ASSERT_TRUE(notifyFromBuilder(block_.pf_tkgs_built_nfy, bytes.data(), block_.pv_tkgs_built_nfy_tag));
    std::vector<std::string> seen = events(rec);
    ASSERT_EQ(seen.size(), 4u);
    EXPECT_EQ(seen[0].substr(0, 10), "hidden 20 ");
    EXPECT_EQ(seen[1].substr(0, 14), "categories 30 ");
    EXPECT_EQ(seen[2].substr(0, 8), "lists 9 ");
    EXPECT_EQ(seen[3].size(), std::string("message ").size() + SB_DVBS_TKGS_USER_MSG_SIZE);
}

// ---- HD+ -------------------------------------------------------------------------------------

TEST_F(SatelliteOpsTest, HdPlusSettingsAndServiceGuideVersion) {
    jobject hd = create(EXT_CLASS("ZelTvScanHDPlus"));
    jobject rec = recorder(hd, "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanHDPlus;)Lcom/brinova/tv/orvella/testsupport/SatelliteOpsRecorder;");
    auto set = [&](int version, bool blind, bool hdMode) {
        jobject info = harness::newObject(EXT_CLASS("ZelTvScanHDPlus$HDPlusInfo"), "(IZZ)V", version,
                                          static_cast<jboolean>(blind), static_cast<jboolean>(hdMode));
        harness::callVoid(hd, harness::methodOf(hd, "setHDPlus", "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanHDPlus$HDPlusInfo;)V"), info);
    };
    // Neither flag: 160 and 656 keep the configuration's values.
    set(0x1FF, false, false);
    native(hd)->onPreScan(&block_);
    EXPECT_EQ(block_.ui1_tkgs_version, 0xFF);
    EXPECT_TRUE(untouched(160, 162));
    EXPECT_TRUE(untouched(656, 660));
    EXPECT_TRUE(harness::env()->IsSameObject(static_cast<jobject>(block_.pv_sgt_built_nfy_tag), hd));
    EXPECT_TRUE(untouched(0, 160));
    EXPECT_TRUE(untouched(748, sizeof(block_)));

    set(3, true, true);
    block_.t_eng_cfg_flag = 0x8;
    native(hd)->onPreScan(&block_);
    native(hd)->onPreScan(&block_);  // twice on the same block: the bit once
    EXPECT_EQ(block_.u_160.ui2_nw_id, 0xFFFF);
    EXPECT_EQ(block_.t_eng_cfg_flag, 0x80008u);
    EXPECT_EQ(block_.ui1_tkgs_version, 3);
    EXPECT_EQ(Logs::count(ANDROID_LOG_ERROR, "ZelTvScanHDPlus_JNI", "MW notify SGT version=9\n"), 0);

    uint8_t record = 9;
    ASSERT_TRUE(notifyFromBuilder(block_.pf_sgt_built_nfy, &record, block_.pv_sgt_built_nfy_tag));
    std::string thread;
    EXPECT_EQ(withoutThreads(events(rec, "events"), &thread), std::vector<std::string>{"sgt 9"});
    EXPECT_NE(thread, "main");
    EXPECT_EQ(Logs::count(ANDROID_LOG_ERROR + 1, "ZelTvScanHDPlus_JNI", "MW notify SGT version=9\n"), 0);
}

// ---- Through the simulated builder ---------------------------------------------------------

int32_t noAnswer(DVBS_SCAN_MAPS_CMD_T, char*, void*, void*, uint32_t*, void*) { return -1; }
void noEvents(HANDLE_T, uint32_t, uint32_t, void*) {}

// What the builder was started with, as the simulator decoded the block.
std::vector<std::string> startedWith() {
    std::vector<zelsim::Call> starts = zelsim::calls("x_sb_start_scan");
    return starts.empty() ? std::vector<std::string>{} : starts.back().strings;
}

bool has(const std::vector<std::string>& lines, const std::string& line) {
    for (const std::string& l : lines) {
        if (l == line) return true;
    }
    ADD_FAILURE() << "no \"" << line << "\" among " << ::testing::PrintToString(lines);
    return false;
}

TEST_F(SatelliteOpsTest, ScenarioScansReadTheChoicesAndReportTheirTables) {
    jobject fst = create(EXT_CLASS("ZelTvScanFST"));
    jobject tkgs = create(EXT_CLASS("ZelTvScanTKGS"));
    jobject hd = create(EXT_CLASS("ZelTvScanHDPlus"));
    jobject fstRec = recorder(fst, "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanFST;)Lcom/brinova/tv/orvella/testsupport/SatelliteOpsRecorder;");
    jobject tkgsRec = recorder(tkgs, "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS;)Lcom/brinova/tv/orvella/testsupport/SatelliteOpsRecorder;");
    jobject hdRec = recorder(hd, "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanHDPlus;)Lcom/brinova/tv/orvella/testsupport/SatelliteOpsRecorder;");
    harness::callVoid(fstRec, harness::methodOf(fstRec, "pick", "(I)V"), 2);  // TV Vlaanderen HD
    zelsim::setTimeScale(0);
    SB_DVBS_OPEN_DATA_T open{};
    open.t_common = SB_OPEN_DATA_T{1, "fs_Svl_0", "/dev", "tuner_sat_dig_0", 1, {0, 0, 0}, 0x2001};
    HANDLE_T builder = 0;
    SB_COND_T cond = 0;
    ASSERT_EQ(MWR_OK, x_sb_open_builder("sb_dvbs", &open, nullptr, nullptr, &builder, &cond));
    ASSERT_EQ(MWR_OK, x_sb_reg_scan_map("sb_dvbs", reinterpret_cast<x_sb_scan_maps_fct>(noAnswer), nullptr));
    // Each scan with one service: TKGS and HD+ both write their version at byte 244.
    auto scan = [&](const char* file, jobject extension) {
        std::string error;
        ASSERT_TRUE(zelsim::loadScenarioFile(std::string(ORVELLA_SOURCE_DIR "/scenarios/") + file, &error)) << error;
        memset(&block_, 0, sizeof(block_));
        memcpy(block_.t_country_code, "NLD", 4);
        native(extension)->onPreScan(&block_);
        uint32_t out = 0;
        ASSERT_EQ(MWR_OK, x_sb_start_scan(builder, &block_, nullptr, noEvents, &out));
        ASSERT_TRUE(zelsim::waitIdle(20000));
    };

    scan("dvbs-fastscan.json", fst);
    std::vector<std::string> seen = events(fstRec);
    ASSERT_EQ(seen.size(), 4u) << ::testing::PrintToString(seen);
    EXPECT_EQ(seen[0], "home 1,1 12515 1 22000");
    EXPECT_EQ(seen[1].substr(0, 12), "operators 6 ");
    EXPECT_EQ(seen[2], "choose 6");
    EXPECT_EQ(seen[3], "version 7");
    EXPECT_TRUE(has(startedWith(), "fst_operator=0/0 / pid 0 v0 charset 0"));

    // The pick reached the next scan's block, and the builder read it: version 7 installed,
    // the tables now at 8.
    scan("dvbs-fastscan-update.json", fst);
    EXPECT_TRUE(has(startedWith(), "fst_operator=54/1 TV Vlaanderen/HD pid 910 v7 charset 21"));
    seen = events(fstRec);
    EXPECT_EQ(std::vector<std::string>(seen.end() - 2, seen.end()),
              (std::vector<std::string>{"version 8", "version changed"}));

    // TKGS: a receiver without the tables hears everything; one with version 42 only that.
    scan("dvbs-tkgs.json", tkgs);
    seen = events(tkgsRec);
    ASSERT_EQ(seen.size(), 5u) << ::testing::PrintToString(seen);
    EXPECT_EQ(seen[0], "version 42");
    EXPECT_EQ(seen[1], "hidden 2 | 11054 1 30000 3000 | 11096 1 30000 3001");
    EXPECT_EQ(seen[3], "lists 3 Ulusal Liste|Haber Listesi|Tum Kanallar");
    EXPECT_EQ(seen[4], "message TKGS: kanal listesi guncellendi, yeni kanallar eklendi.");
    jobject settings = harness::newObject(EXT_CLASS("ZelTvScanTKGS$Settings"), "()V");
    harness::callObject(settings, harness::methodOf(settings, "setVersion", "(I)Lcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS$Settings;"), 42);
    harness::callObject(settings, harness::methodOf(settings, "addHiddenLocator", "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS$TKGSLocator;)Lcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS$Settings;"),
                        locator(11054, 1, 30000, 3000));
    harness::callInt(tkgs, harness::methodOf(tkgs, "apply", "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanTKGS$Settings;)I"), settings);
    harness::callVoid(tkgsRec, harness::methodOf(tkgsRec, "clear", "()V"));
    scan("dvbs-tkgs.json", tkgs);
    EXPECT_EQ(events(tkgsRec), std::vector<std::string>{"version 42"});
    EXPECT_TRUE(has(startedWith(), "tkgs=v42 mode 0"));
    EXPECT_TRUE(has(startedWith(), "hidden=11054H30000/3000"));
    EXPECT_TRUE(has(startedWith(), "svl_name= no_pref=1"));

    // HD+: the guide's version, and the settings as the builder read them.
    jobject info = harness::newObject(EXT_CLASS("ZelTvScanHDPlus$HDPlusInfo"), "(IZZ)V", 11, JNI_TRUE, JNI_TRUE);
    harness::callVoid(hd, harness::methodOf(hd, "setHDPlus", "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanHDPlus$HDPlusInfo;)V"), info);
    scan("dvbs-hdplus.json", hd);
    EXPECT_EQ(events(hdRec), std::vector<std::string>{"sgt 12"});
    EXPECT_TRUE(has(startedWith(), "nw_id=65535"));
    EXPECT_TRUE(has(startedWith(), "cfg_flag=524288"));
    EXPECT_EQ(x_sb_close_builder(builder), MWR_OK);
}

// ---- Null records ----------------------------------------------------------------------------

using SatelliteOpsDeathTest = SatelliteOpsTest;

TEST_F(SatelliteOpsDeathTest, NullRecordOrTagOrBlockEndsTheProcess) {
    jobject fst = create(EXT_CLASS("ZelTvScanFST"));
    native(fst)->onPreScan(&block_);
    uint8_t record[SB_DVBS_FST_BUILT_NFY_DATA_SIZE] = {};
    EXPECT_DEATH(block_.pf_fst_built_nfy(nullptr, block_.pv_fst_built_nfy_tag), "");
    EXPECT_DEATH(block_.pf_fst_built_nfy(record, nullptr), "");
    EXPECT_DEATH(native(fst)->onPreScan(nullptr),
                 "cond=<!\\(scanParames != __null\\)> "
                 "msg=<com_brinova_tv_orvella_scan_NativeZelTvScanFST FATAL Error at :[0-9]+>");
}

}  // namespace
