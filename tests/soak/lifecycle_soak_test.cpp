// Many whole lifecycles through the Java API (engine, configuration, configure, the same
// extensions added again, scan, close, release): threads, file descriptors, JNI global
// references and everything the middleware holds for the library end where they started,
// and the Java objects of each round can be collected. ORVELLA_SOAK_ROUNDS sets the number
// of rounds (200); the test has the CTest label "soak".
#include <dirent.h>
#include <stdlib.h>

#include <gtest/gtest.h>

#include "engine_util.h"
#include "extension_test_util.h"
#include "scan_test_util.h"

namespace {

using harness::callInt;
using harness::methodOf;

size_t entries(const char* dir) {
    size_t n = 0;
    if (DIR* d = opendir(dir)) {
        while (readdir(d) != nullptr) ++n;
        closedir(d);
    }
    return n;
}

struct Counts {
    size_t threads, fds, handles, allocations, registrations, builders;
    int globalRefs;
    // No growth: the first round's event thread may still have been ending when counted.
    bool noMoreThan(const Counts& o) const {
        return threads <= o.threads && fds == o.fds && globalRefs == o.globalRefs && handles == o.handles &&
               allocations == o.allocations && registrations == o.registrations && builders == o.builders;
    }
};

Counts counts() {
    return Counts{entries("/proc/self/task"), entries("/proc/self/fd"), zelsim::liveHandles(),
                  zelsim::liveAllocations(),
                  zelsim::listRegistrations("svl") + zelsim::listRegistrations("tsl") +
                      zelsim::listRegistrations("nwl"),
                  zelsim::openBuilders(), harness::jniGlobalRefCount()};
}

std::ostream& operator<<(std::ostream& os, const Counts& c) {
    return os << "threads " << c.threads << ", fds " << c.fds << ", JNI global refs " << c.globalRefs << ", handles " << c.handles << ", allocations "
              << c.allocations << ", list registrations " << c.registrations << ", builders " << c.builders;
}

class LifecycleSoak : public harness::JvmTest {
protected:
    jint call(jobject obj, const char* method, const char* sig = "()I") {
        return callInt(obj, methodOf(obj, method, sig));
    }
    // One lifecycle; weak references to its engine and configuration are left in `weak`.
    void round(jobject extension, jobject weak[2]) {
        scantest::Engine e = scantest::Engine::create();
        jobject config = scantest::newDvbtConfig("GBR", "eng", 1, 1);
        ASSERT_EQ(callInt(e.object, methodOf(e.object, "configure",
                                             "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanConfig;I)I"),
                          config, 1),
                  0);
        ASSERT_EQ(callInt(e.object, methodOf(e.object, "addExtension",
                                             "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanExtension;)I"),
                          extension),
                  0);
        ASSERT_EQ(call(e.object, "start"), 0);
        ASSERT_TRUE(e.awaitEnds(1));
        ASSERT_EQ(call(e.object, "close"), 0);
        ASSERT_EQ(call(e.object, "release"), 0);
        ASSERT_EQ(call(config, "release"), 0);
        weak[0] = env_->NewWeakGlobalRef(e.object);
        weak[1] = env_->NewWeakGlobalRef(config);
        for (jobject local : {e.object, e.pipeline, e.listener, config}) env_->DeleteLocalRef(local);
    }
};

TEST_F(LifecycleSoak, RoundsLeaveEveryCountFlat) {
    const char* env = getenv("ORVELLA_SOAK_ROUNDS");
    const int rounds = env != nullptr ? atoi(env) : 200;
    harness::setProperty("vendor.zel.broadcast.log.level", "");  // silent: the log would grow
    // Extensions are made once per application and reused: they are never freed.
    jobject extension = harness::newObject(EXT_CLASS("ZelTvScanTargetRegion"), "()V");
    jobject weak[2] = {nullptr, nullptr};
    round(extension, weak);  // the first round loads classes and starts what stays
    for (jobject w : weak) env_->DeleteWeakGlobalRef(w);
    harness::collectGarbage();
    const Counts before = counts();
    ASSERT_GT(before.globalRefs, 0) << "JVMTI did not count the VM's JNI global references";
    {
        // The count sees the library's own references: a live engine holds global ones.
        scantest::Engine probe = scantest::Engine::create();
        EXPECT_GT(harness::jniGlobalRefCount(), before.globalRefs);
        ASSERT_EQ(call(probe.object, "release"), 0);
        for (jobject local : {probe.object, probe.pipeline, probe.listener}) env_->DeleteLocalRef(local);
    }
    for (int i = 0; i < rounds && !HasFatalFailure(); ++i) {
        round(extension, weak);
        if (i + 1 < rounds) {
            for (jobject w : weak) env_->DeleteWeakGlobalRef(w);
        }
    }
    EXPECT_TRUE(scantest::eventually([&] {
        return env_->IsSameObject(weak[0], nullptr) && env_->IsSameObject(weak[1], nullptr);
    })) << "the last round's engine or configuration is still referenced";
    for (jobject w : weak) env_->DeleteWeakGlobalRef(w);
    // The event threads end after their exit event; give the last one its moment.
    Counts after = counts();
    scantest::eventually([&] { return (after = counts()).noMoreThan(before); });
    EXPECT_TRUE(after.noMoreThan(before)) << "before: " << before << "; after: " << after;
    RecordProperty("rounds", rounds);
    printf("lifecycle soak: %d rounds; before: %s\n", rounds, ::testing::PrintToString(before).c_str());
    printf("lifecycle soak: after:  %s\n", ::testing::PrintToString(after).c_str());
}

}  // namespace
