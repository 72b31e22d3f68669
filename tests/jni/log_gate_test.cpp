// The log gate decides from the level property, on every call, which lines are printed.
#include <android/log.h>
#include <gtest/gtest.h>
#include <errno.h>
#include <unistd.h>

#include "brinova_log.h"
#include "host_properties.h"
#include "jvm_harness.h"

namespace {

using harness::Logs;
using harness::setProperty;

constexpr const char* kProp = "vendor.zel.broadcast.log.level";
constexpr const char* kPersist = "persist.vendor.zel.broadcast.log.level";

class LogGateTest : public harness::JvmTest {};

// The lowest level (1 to 5) that passes, or 6 when none does.
int lowestPassing(const char* property) {
    for (int level = 1; level <= 5; ++level) {
        if (__brinova_log_is_loggable(level, property)) return level;
    }
    return 6;
}

TEST_F(LogGateTest, FirstCharacterOfThePropertySetsTheThreshold) {
    struct Case {
        const char* value;
        const char* persist;
        int lowest;
    };
    const Case cases[] = {
        {"V", "", 1},         {"d", "", 2},        {"Debugging", "", 2}, {"i", "", 3},
        {"W", "", 4},         {"error", "", 5},    {"S", "", 6},         {"3", "", 6},
        {"", "w", 4},         {"", "", 6},         {"e", "V", 5},        {"", "Dx", 2},
        {" D", "", 6},
    };
    for (const Case& c : cases) {
        setProperty(kProp, c.value);
        setProperty(kPersist, c.persist);
        EXPECT_EQ(lowestPassing(kProp), c.lowest) << "'" << c.value << "' / '" << c.persist << "'";
    }
    // Nothing passes when unset, but the comparison itself is kept: the largest level does.
    setProperty(kProp, "");
    setProperty(kPersist, "");
    EXPECT_EQ(__brinova_log_is_loggable(0x7FFFFFFF, kProp), 1);
    EXPECT_EQ(__brinova_log_is_loggable(0x7FFFFFFE, kProp), 0);
}

TEST_F(LogGateTest, PropertyIsReadAgainOnEveryCall) {
    setProperty(kProp, "E");
    unsigned long before = host_property_get_count();
    EXPECT_EQ(__brinova_log_is_loggable(4, kProp), 0);
    setProperty(kProp, "W");
    EXPECT_EQ(__brinova_log_is_loggable(4, kProp), 1);
    EXPECT_EQ(host_property_get_count() - before, 2u);
    // Only an empty value costs the second read of the persist property.
    setProperty(kProp, "");
    setProperty(kPersist, "W");
    EXPECT_EQ(__brinova_log_is_loggable(4, kProp), 1);
    EXPECT_EQ(host_property_get_count() - before, 4u);
}

TEST_F(LogGateTest, MissingTraceMarkerIsReportedOnEveryWriteAndNeverReopened) {
    if (access("/sys/kernel/debug/tracing/instances/boottime/trace_marker", F_OK) == 0) {
        GTEST_SKIP() << "this machine has a boot-time trace marker";
    }
    // Written without a tag: liblog files the line under the program's name.
    const std::string tag = program_invocation_short_name;
    __brinova_log_write_to_ftrace("scan started");
    __brinova_log_write_to_ftrace("scan ended");
    EXPECT_EQ(Logs::count(ANDROID_LOG_ERROR, tag, "open failed: fd=-1"), 2);
    // Gated by the default level property.
    setProperty("vendor.zel.default.log.level", "");
    setProperty("persist.vendor.zel.default.log.level", "");
    __brinova_log_write_to_ftrace("silent");
    EXPECT_EQ(Logs::count(ANDROID_LOG_ERROR, tag, "open failed: fd=-1"), 2);
}

}  // namespace
