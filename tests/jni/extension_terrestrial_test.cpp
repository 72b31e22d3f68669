// The terrestrial extensions end to end: a scan whose end waits while Java, called on the
// engine's event thread, reads through the natives and chooses; checked against the keys,
// key infos, lengths and values the builder received.
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "extension_test_util.h"

namespace {

using exttest::arrayFor;
using exttest::callArray;
using exttest::keyCalls;

class TerrestrialTest : public exttest::ExtensionTest {
protected:
    jobject attached(const char* javaClass) {
        jobject extension = harness::newObject(javaClass, "()V");
        EXPECT_EQ(configure(), 0);
        EXPECT_EQ(add(extension), 0);
        return extension;
    }
    void load(const char* json) { ASSERT_TRUE(zelsim::loadScenarioText(json)); }
    jint call(jobject extension, const char* native, const std::vector<int>& inputs,
              std::vector<int>* out, size_t length = 50) {
        *out = arrayFor(extension, length, inputs);
        return callArray(extension, native, *out);
    }
};

std::vector<int> slice(const std::vector<int>& v, size_t from, size_t to) {
    return std::vector<int>(v.begin() + from, v.begin() + to);
}

// Name bytes as elements, zero-padded to `size`.
std::vector<int> nameElements(const std::string& name, size_t size) {
    std::vector<int> out;
    for (char c : name) out.push_back(static_cast<uint8_t>(c));
    out.resize(size, 0);
    return out;
}

TEST_F(TerrestrialTest, FavouriteNetwork) {
    jobject fav = harness::newObject(EXT_CLASS("ZelTvScanFavNetwork"), "()V");
    std::vector<int> out;
    EXPECT_EQ(call(fav, "nativeSetFavNetwork", {0}, &out, 3), -6);  // before any walk
    decide("chooseFavouriteNetwork", "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanFavNetwork;I)V",
           fav, 1);
    ASSERT_EQ(configure(), 0);
    ASSERT_EQ(add(fav), 0);
    scan("dvbt-favourite-network.json");

    EXPECT_EQ(shown(), (std::vector<std::string>{"network 0 NRK Hordaland", "network 1 NRK Rogaland",
                                                 "network 2 NRK Sogn og Fjordane"}));
    EXPECT_EQ(decisions(), std::vector<std::string>{beforeTheEnd("favourite network")});
    // Two walks (the end, then Java's read of index 0), each over ids 1 to 8: the missing
    // 3, 5 and 6 are skipped without counting, and the walk stops after five records.
    std::vector<int64_t> ids;
    for (const zelsim::Call& c : zelsim::calls("x_nwl_get_rec")) ids.push_back(c.args[1]);
    EXPECT_EQ(ids, (std::vector<int64_t>{1, 2, 3, 4, 5, 6, 7, 8, 1, 2, 3, 4, 5, 6, 7, 8}));
    zelsim::Call handle = keyCalls("x_sb_get", SB_KEY_TYPE_NWL_HANDLE).at(0);
    EXPECT_EQ(handle.args[2], 0);
    EXPECT_EQ(handle.args[3], 4);
    // NRK Rogaland's record id, by value.
    std::vector<zelsim::Call> set = keyCalls("x_sb_set", SB_KEY_TYPE_FAV_NWL_REC_ID);
    ASSERT_EQ(set.size(), 1u);
    EXPECT_EQ(std::vector<int64_t>(set[0].args.begin() + 2, set[0].args.end()),
              (std::vector<int64_t>{0, 2, 4}));
    EXPECT_TRUE(set[0].bytes.empty());

    // Names one byte per element from 3, cleared up to 48; beyond that Java's own.
    ASSERT_EQ(call(fav, "nativeGetFavNetwork", {2}, &out), 0);
    EXPECT_EQ(slice(out, 3, 49), nameElements("NRK Sogn og Fjordane", 46));
    EXPECT_EQ(out[49], 1);
    EXPECT_EQ(call(fav, "nativeGetFavNetwork", {3}, &out), -6);
    EXPECT_EQ(out[3], 1);
    EXPECT_EQ(call(fav, "nativeGetFavNetwork", {1}, &out, 3), 0);  // status only
    EXPECT_EQ(call(fav, "nativeSetFavNetwork", {3}, &out, 3), -6);
    // The natives' lines carry the natives' own names.
    using Names = std::set<std::string>;
    EXPECT_EQ(harness::Logs::functions("ZelTvFavNetwork_JNI", "[Set ptFavNetwork FAIL]"),
              Names{"Java_com_brinova_tv_orvella_scan_ZelTvScanFavNetwork_nativeSetFavNetwork"});
    EXPECT_EQ(harness::Logs::functions("ZelTvFavNetwork_JNI", "[ui2_nwk_rec_id:"),
              Names{"Java_com_brinova_tv_orvella_scan_ZelTvScanFavNetwork_nativeGetFavNetwork"});

    // One candidate: nothing to choose, and index 0 answers -6.
    load(R"({"scan": [{"end": 1}], "keys": {"nwl": {"handle": 7, "records": [
        {"rec_id": 1, "flags": 2, "name": "Only"}, {"rec_id": 2, "name": "Other"}]}}})");
    scan(nullptr, 2);
    EXPECT_EQ(decisions().size(), 1u);
    EXPECT_EQ(call(fav, "nativeGetFavNetwork", {0}, &out), -6);

    // A list that counts a record no id gives (every read refused): the walk tries each
    // 16-bit id once, ending with 0 after the wrap, and the scan ends without a choice.
    load(R"({"scan": [{"end": 1}], "keys": {"nwl": {"handle": 7, "records": [
        {"rec_id": 1, "flags": 2, "name": "Unreadable"}]}}})");
    zelsim::failNext("x_nwl_get_rec", MWR_NOT_FOUND, -1);
    zelsim::clearCalls();
    scan(nullptr, 3);
    zelsim::clearFailures();
    std::vector<zelsim::Call> reads = zelsim::calls("x_nwl_get_rec");
    ASSERT_EQ(reads.size(), 0x10000u);
    EXPECT_EQ(reads.front().args[1], 1);
    EXPECT_EQ(reads[0xFFFE].args[1], 0xFFFF);
    EXPECT_EQ(reads.back().args[1], 0);
    EXPECT_EQ(decisions().size(), 1u);
}

TEST_F(TerrestrialTest, LcnConflict) {
    jobject lcn = attached(EXT_CLASS("ZelTvScanLcnConflict"));
    harness::callVoid(decisions_, harness::methodOf(decisions_, "resolveLcnConflicts",
                                                    "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanLcnConflict;)V"),
                      lcn);
    scan("dvbt-lcn-conflict.json");

    EXPECT_EQ(shown(), (std::vector<std::string>{"group 0 lcn 3 1:3 1:6", "group 1 lcn 11 1:16 1:17 1:20",
                                                 "group 2 lcn 12 1:18 1:21"}));
    EXPECT_EQ(decisions(), (std::vector<std::string>{beforeTheEnd("lcn conflict"),
                                                     beforeTheEnd("lcn info")}));
    zelsim::Call channel = keyCalls("x_sb_get", SB_KEY_TYPE_LCN_CONFLICT_CHANNEL).at(3);
    EXPECT_EQ(channel.args[2], 1);  // group 1's first channel: key info the group
    EXPECT_EQ(channel.args[3], 88);
    // Garbage +10 each; the number of services by value before entry 0; entries reversed.
    std::vector<std::string> sets;
    for (const zelsim::Call& c : zelsim::calls("x_sb_set")) {
        std::string s = std::to_string(c.args[1]) + "[" + std::to_string(c.args[2]) + "]";
        if (c.bytes.empty()) s += "=" + std::to_string(c.args[4]);
        for (uint8_t b : c.bytes) s += " " + std::to_string(b);
        sets.push_back(s);
    }
    EXPECT_EQ(sets, (std::vector<std::string>{
                        "81[0] 12 0 11 0 10 0", "79[0]=7", "83[0] 12 0 21 0 186 11 210 93 1 1",
                        "83[1] 12 0 18 0 185 11 203 93 1 1", "83[2] 11 0 20 0 186 11 209 93 1 1",
                        "83[3] 11 0 17 0 185 11 202 93 1 1", "83[4] 11 0 16 0 185 11 201 93 1 1",
                        "83[5] 3 0 6 0 2 0 18 0 25 1", "83[6] 3 0 3 0 1 0 11 0 25 1"}));

    // A group index above 255 goes as its low 8 bits; a failure keeps Java's elements.
    std::vector<int> out;
    EXPECT_EQ(call(lcn, "nativeGetLcnConflict", {300, 0}, &out, 7), -6);
    EXPECT_EQ(scantest::lastCall("x_sb_get").args[2], 44);
    EXPECT_EQ(slice(out, 4, 7), (std::vector<int>{1, 1, 1}));
    // Only index 0 sends the number first.
    zelsim::clearCalls();
    EXPECT_EQ(call(lcn, "nativeSetSvcLcnInfo", {5, 3, 0x10001, 2, 3, 4, 0x1ff, 6}, &out, 10), 0);
    ASSERT_EQ(zelsim::calls("x_sb_set").size(), 1u);
    EXPECT_EQ(zelsim::calls("x_sb_set")[0].bytes, (std::vector<uint8_t>{1, 0, 2, 0, 3, 0, 4, 0, 255, 6}));

    // No conflicts: neither callback.
    load(R"({"scan": [{"end": 1}], "keys": {"lcn_conflict": {"count": 0, "groups": [{"lcn": 3}]}}})");
    scan(nullptr, 2);
    EXPECT_EQ(decisions().size(), 2u);
}

TEST_F(TerrestrialTest, LcnV2ChannelList) {
    jobject lists = harness::newObject(EXT_CLASS("ZelTvScanLcnV2ChannelList"), "()V");
    std::vector<int> out;
    ASSERT_EQ(call(lists, "nativeSetSelectedLcnV2ChListId", {300}, &out, 3), 0);
    decide("chooseChannelList", "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanLcnV2ChannelList;I)V",
           lists, 17);
    ASSERT_EQ(configure(), 0);
    ASSERT_EQ(add(lists), 0);
    scan("dvbt-lcnv2.json");

    // The preselection by value at attach (300 as 8 bits), the choice through a pointer.
    std::vector<zelsim::Call> preselected = keyCalls("x_sb_set", SB_KEY_TYPE_SELECTED_LCNV2_CHLIST);
    ASSERT_EQ(preselected.size(), 1u);
    EXPECT_EQ(std::vector<int64_t>(preselected[0].args.begin() + 2, preselected[0].args.end()),
              (std::vector<int64_t>{0, 1, 44}));
    EXPECT_EQ(shown(), (std::vector<std::string>{"list 0 1 Danmark", "list 1 2 Danmark HD",
                                                 "list 2 17 Sonderjylland regional"}));
    EXPECT_EQ(decisions(), std::vector<std::string>{beforeTheEnd("channel list")});
    std::vector<zelsim::Call> chosen = keyCalls("x_sb_set", SB_KEY_TYPE_SET_LCNV2_CHLIST);
    ASSERT_EQ(chosen.size(), 1u);
    EXPECT_EQ(chosen[0].args[2], 0);
    EXPECT_EQ(chosen[0].bytes, std::vector<uint8_t>{17});

    // One list: no choice. Its record: id in 3, the name's bytes (unsigned) from 4.
    load(R"({"scan": [{"end": 1}], "keys": {"lcnv2_chlists": [{"id": 200, "name": "Danmark \u00c6"}]}})");
    scan(nullptr, 2);
    EXPECT_EQ(decisions().size(), 1u);
    ASSERT_EQ(call(lists, "nativeGetLcnV2ChList", {0x10000}, &out), 0);  // index: 16 bits
    EXPECT_EQ(out[3], 200);
    EXPECT_EQ(slice(out, 4, 49), nameElements("Danmark \xc3\x86", 45));
    EXPECT_EQ(call(lists, "nativeGetLcnV2ChList", {1}, &out), -6);
    EXPECT_EQ(out[3], 1);

    // A preselection after the add waits for the next attach.
    ASSERT_EQ(call(lists, "nativeSetSelectedLcnV2ChListId", {9}, &out, 3), 0);
    EXPECT_EQ(keyCalls("x_sb_set", SB_KEY_TYPE_SELECTED_LCNV2_CHLIST).size(), 1u);
}

TEST_F(TerrestrialTest, TargetRegion) {
    jobject region = harness::newObject(EXT_CLASS("ZelTvScanTargetRegion"), "()V");
    std::vector<int> out;
    ASSERT_EQ(call(region, "nativeSetSelectedTargetRegion", {2, 1, 0x10002, 7}, &out, 6), 0);
    jstring kent = env_->NewStringUTF("Kent");
    decide("chooseTargetRegion",
           "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanTargetRegion;Ljava/lang/String;)V",
           region, kent);
    ASSERT_EQ(configure(), 0);
    ASSERT_EQ(add(region), 0);
    zelsim::Call preselected = keyCalls("x_sb_set", SB_KEY_TYPE_SELECTED_TARGET_REGION).at(0);
    EXPECT_EQ(preselected.args[3], 8);
    EXPECT_EQ(preselected.bytes, (std::vector<uint8_t>{2, 0, 1, 0, 2, 0, 7, 0}));
    scan("dvbt-target-region.json");

    std::vector<std::string> regions = shown();
    ASSERT_EQ(regions.size(), 24u);
    EXPECT_EQ(regions[4], "region 4 2 1.1 London");
    EXPECT_EQ(regions[17], "region 17 3 1.2.1 Kent");
    EXPECT_EQ(regions[23], "conflict true");
    EXPECT_EQ(decisions(), std::vector<std::string>{beforeTheEnd("target region")});
    // Count and table asked with a zeroed region key; the chosen record's key set.
    zelsim::Call table = keyCalls("x_sb_get", SB_KEY_TYPE_REGION_TABLE).at(0);
    EXPECT_EQ(table.args[3], 42 * 23);
    EXPECT_EQ(table.bytes, std::vector<uint8_t>(8, 0));
    EXPECT_EQ(keyCalls("x_sb_get", SB_KEY_TYPE_REGION_NUM).at(0).bytes, std::vector<uint8_t>(8, 0));
    zelsim::Call set = keyCalls("x_sb_set", SB_KEY_TYPE_SET_REGION).at(0);
    EXPECT_EQ(set.args[3], 8);
    EXPECT_EQ(set.bytes, (std::vector<uint8_t>{3, 0, 1, 0, 2, 0, 1, 0}));

    // One region is still asked about, and then no conflict remains.
    load(R"({"scan": [{"end": 1}], "keys": {"target_regions": [{"level": 1, "codes": [1], "name": "England"}],
        "preferred_region": {"level": 1, "codes": [1]}, "lcn_conflict": {"groups": [{"lcn": 1}]}}})");
    scan(nullptr, 2);
    EXPECT_EQ(decisions().size(), 2u);
    EXPECT_EQ(shown().back(), "conflict false");
}

TEST_F(TerrestrialTest, TargetRegionSearchKeepsTheLastMatch) {
    jobject region = attached(EXT_CLASS("ZelTvScanTargetRegion"));
    load(R"({"keys": {"target_regions": [
        {"level": 1, "codes": [5, 9], "name": "First of 5"}, {"level": 1, "codes": [5, 7]},
        {"level": 2, "codes": [5, 7]}, {"level": 0}, {"level": 0, "codes": [3]}]}})");
    std::vector<int> out;
    ASSERT_EQ(call(region, "nativeGetTargetRegion", {0}, &out), 0);  // index 0 fetches
    std::vector<int> first = {1, 5, 9, 0};
    for (int e : nameElements("First of 5", 42)) first.push_back(e);
    EXPECT_EQ(slice(out, 3, 49), first);

    struct Case {
        std::vector<int> key;
        std::vector<uint8_t> sent;  // empty: -6 and nothing sent
    };
    const Case cases[] = {
        {{1, 5, 0, 0}, {1, 0, 5, 0, 7, 0, 0, 0}},  // codes past the level do not count
        {{0, 99, 99, 99}, {0, 0, 3, 0, 0, 0, 0, 0}},
        {{2, 0x10005, 7, 1}, {2, 0, 5, 0, 7, 0, 0, 0}},
        {{2, 5, 8, 0}, {}},
        {{3, 5, 7, 0}, {}},
    };
    for (const Case& c : cases) {
        zelsim::clearCalls();
        EXPECT_EQ(call(region, "nativeSetTargetRegion", c.key, &out, 6), c.sent.empty() ? -6 : 0);
        std::vector<zelsim::Call> set = keyCalls("x_sb_set", SB_KEY_TYPE_SET_REGION);
        EXPECT_EQ(set.empty() ? std::vector<uint8_t>{} : set[0].bytes, c.sent) << c.key[0];
    }
    EXPECT_EQ(harness::Logs::functions("ZelTvTargetRegion_JNI", "[Set ptTargetRegion"),
              std::set<std::string>{
                  "Java_com_brinova_tv_orvella_scan_ZelTvScanTargetRegion_nativeSetTargetRegion"});
}

TEST_F(TerrestrialTest, NameSortingListGoesToTheBuilderAtAttach) {
    jobject sorting = harness::newObject(EXT_CLASS("ZelTvNameSorting"), "()V");
    ASSERT_EQ(configure(), 0);
    auto send = [&](std::vector<int> head, size_t nameBytes, char c) {
        std::vector<int> values = arrayFor(sorting, 6 + nameBytes, head);
        for (size_t i = 0; i < nameBytes; ++i) values[6 + i] = 0x100 + c;  // low 8 bits count
        EXPECT_EQ(callArray(sorting, "nativeSetNameList", values), 0);
        EXPECT_EQ(values[0], 0);
    };
    auto attach = [&]() {
        remove(sorting);
        zelsim::clearCalls();
        EXPECT_EQ(add(sorting), 0);
        return zelsim::calls("x_sb_set");
    };
    auto entry = [](uint16_t value, const std::string& name) {
        std::vector<uint8_t> bytes(68, 0);
        bytes[0] = value & 0xFF;
        bytes[1] = value >> 8;
        std::copy(name.begin(), name.end(), bytes.begin() + 2);
        return bytes;
    };
    send({3, 0, 100, 300}, 64, 'a');      // length 300 is 44 as a byte
    send({3, 1, 0x12345, 100}, 64, 'b');  // at most 64 bytes; the value's low 16 bits
    send({3, 2, 7, 5}, 0, 'c');           // a six-element array: an empty name
    std::vector<zelsim::Call> sets = attach();
    ASSERT_EQ(sets.size(), 4u);
    EXPECT_EQ(std::vector<int64_t>(sets[0].args.begin() + 1, sets[0].args.end()),
              (std::vector<int64_t>{SB_KEY_TYPE_NAME_SORTING_NUM, 0, 2, 3}));
    const std::vector<std::vector<uint8_t>> entries = {
        entry(100, std::string(44, 'a')), entry(0x2345, std::string(64, 'b')), entry(7, "")};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(std::vector<int64_t>(sets[1 + i].args.begin() + 1, sets[1 + i].args.end() - 1),
                  (std::vector<int64_t>{SB_KEY_TYPE_NAME_SORTING_INFO, static_cast<int64_t>(i), 68}));
        EXPECT_EQ(sets[1 + i].bytes, entries[i]) << i;
    }

    // Entry 0 again starts a new list; an index past the count is dropped; a refused entry
    // ends the transfer.
    send({2, 0, 3, 3}, 3, 'z');
    send({2, 2, 9, 3}, 3, 'y');
    sets = attach();
    ASSERT_EQ(sets.size(), 3u);
    EXPECT_EQ(sets[1].bytes, entry(3, "zzz"));
    EXPECT_EQ(sets[2].bytes, entry(0, ""));
    zelsim::failKey("x_sb_set", SB_KEY_TYPE_NAME_SORTING_INFO, -1, 1);
    EXPECT_EQ(attach().size(), 2u);
    // An empty list sends only its count.
    send({0, 0, 0, 0}, 0, 'x');
    sets = attach();
    ASSERT_EQ(sets.size(), 1u);
    EXPECT_EQ(sets[0].args[4], 0);
    EXPECT_EQ(harness::Logs::functions("ZelTvNameSorting_JNI", "[length:"),
              std::set<std::string>{
                  "Java_com_brinova_tv_orvella_scan_ZelTvNameSorting_nativeSetNameList"});
}

}  // namespace
