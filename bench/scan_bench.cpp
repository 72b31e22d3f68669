// What the library's two hot paths cost beside the bare JNI work they cannot avoid, in the
// same embedded JVM (with -Xcheck:jni, as the tests run):
//  - one scan event, from the builder's notify call to Java's OnScanStatusEvent; its floor
//    is a queue hand-off to a thread that attaches, calls the same Java method and detaches;
//  - one DVB-T scan-maps command answered by Java from a builder thread; its floor attaches,
//    makes the country string and the two arrays, calls the same Java method, reads the
//    answer and detaches.
// Report the ratios (library / floor) printed at the end.
#include <semaphore.h>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include <benchmark/benchmark.h>

#include "engine_util.h"
#include "jvm_harness.h"
#include "scan_test_util.h"
#include "zel_sim.h"

namespace harness {
void startJvm(const char* classPath);
void installLogCapture();
}  // namespace harness

namespace {

using harness::env;

constexpr int kBatch = 200;

// A thread that is never attached to the VM unless the work attaches it, like a builder's.
class BuilderThread {
public:
    BuilderThread() : thread_([this] { loop(); }) {}
    ~BuilderThread() {
        run(nullptr);
        thread_.join();
    }
    // Runs `work` there and waits for it (null ends the thread).
    void run(std::function<void()> work) {
        std::unique_lock<std::mutex> lock(mutex_);
        work_ = std::move(work);
        pending_ = true;
        cv_.notify_all();
        cv_.wait(lock, [this] { return !pending_; });
    }

private:
    void loop() {
        for (;;) {
            std::unique_lock<std::mutex> lock(mutex_);
            cv_.wait(lock, [this] { return pending_; });
            std::function<void()> work = std::move(work_);
            bool stop = !work;
            if (work) work();
            pending_ = false;
            cv_.notify_all();
            if (stop) return;
        }
    }
    std::mutex mutex_;
    std::condition_variable cv_;
    std::function<void()> work_;
    bool pending_ = false;
    std::thread thread_;
};

struct Fixture {
    scantest::Engine engine;
    jobject config = nullptr;       // RecordingDvbtConfig, global
    jobject counter = nullptr;      // CountingListener, global
    jobject engineObject = nullptr; // global
    x_sb_scan_nfy_fct notify = nullptr;
    void* notifyTag = nullptr;
    HANDLE_T builder = 0;
    x_sb_scan_maps_fct scanMaps = nullptr;
    void* scanMapsTag = nullptr;
    jmethodID onScanStatusEvent = nullptr;
    jmethodID onScanMapCommands = nullptr;
    jmethodID awaitCount = nullptr;
    long delivered = 0;
};

Fixture* gFixture = nullptr;

void setUp() {
    auto* f = new Fixture;
    zelsim::setTimeScale(0);
    zelsim::loadScenarioText(R"({"scan": [{"wait": "hold"}, {"end": 1}]})");
    harness::setProperty("vendor.zel.broadcast.log.level", "");  // silent, as in the field
    harness::setProperty("persist.vendor.zel.broadcast.log.level", "");
    f->engine = scantest::Engine::create();
    f->engineObject = env()->NewGlobalRef(f->engine.object);
    f->config = env()->NewGlobalRef(scantest::newDvbtConfig("GBR", "eng", 1, 1));
    f->counter = env()->NewGlobalRef(
        harness::newObject("com/brinova/tv/orvella/testsupport/CountingListener", "()V"));
    harness::callVoid(f->engineObject,
                      harness::methodOf(f->engineObject, "setListener",
                                        "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanEngine$Listener;)V"),
                      f->counter);
    f->engine.configure(f->config, 1);
    f->engine.native("nativeStart");
    zelsim::waitForLabel("hold", 5000);
    zelsim::Call start = scantest::lastCall("x_sb_start_scan");
    f->builder = static_cast<HANDLE_T>(start.args[0]);
    f->notifyTag = reinterpret_cast<void*>(static_cast<uintptr_t>(start.args[2]));
    f->notify = reinterpret_cast<x_sb_scan_nfy_fct>(static_cast<uintptr_t>(start.args[3]));
    zelsim::Call reg = scantest::lastCall("x_sb_reg_scan_map");
    f->scanMaps = reinterpret_cast<x_sb_scan_maps_fct>(static_cast<uintptr_t>(reg.args[0]));
    f->scanMapsTag = reinterpret_cast<void*>(static_cast<uintptr_t>(reg.args[1]));
    f->onScanStatusEvent = harness::methodOf(f->engineObject, "OnScanStatusEvent", "(III)V");
    f->onScanMapCommands =
        harness::methodOf(f->config, "onScanMapCommands", "(ILjava/lang/String;[I[I)V");
    f->awaitCount = harness::methodOf(f->counter, "awaitCount", "(J)Z");
    scantest::setAnswer(f->config, {42});
    zelsim::clearCalls();
    gFixture = f;
}

void awaitDelivered(Fixture& f) {
    f.delivered += kBatch;
    jboolean ok = env()->CallBooleanMethod(f.counter, f.awaitCount, static_cast<jlong>(f.delivered));
    harness::exceptionText(env());
    if (!ok) abort();
}

// ---- scan events ------------------------------------------------------------------------

void BM_ScanEvent_Library(benchmark::State& state) {
    Fixture& f = *gFixture;
    for (auto _ : state) {
        for (int i = 0; i < kBatch; ++i) f.notify(f.builder, SB_REASON_FREQ_REPORT, 474000000 + i, f.notifyTag);
        awaitDelivered(f);
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
    zelsim::clearCalls();
}

// The floor: a locked queue, a semaphore post per event, and a consumer thread that attaches,
// calls the engine's OnScanStatusEvent and detaches for every event.
class FloorEventQueue {
public:
    explicit FloorEventQueue(Fixture& f) : f_(f) {
        sem_init(&sem_, 0, 0);
        thread_ = std::thread([this] { consume(); });
    }
    ~FloorEventQueue() {
        push(0xff, 0);
        thread_.join();
        sem_destroy(&sem_);
    }
    void push(uint32_t reason, uint32_t data) {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            queue_.push_back({reason, data});
        }
        sem_post(&sem_);
    }

private:
    void consume() {
        for (;;) {
            sem_wait(&sem_);
            SB_EVENT e;
            {
                std::lock_guard<std::mutex> lock(mutex_);
                e = queue_.front();
                queue_.pop_front();
            }
            if (e.reason == 0xff) return;
            JNIEnv* jni = nullptr;
            harness::vm()->AttachCurrentThread(&jni, nullptr);
            jni->CallVoidMethod(f_.engineObject, f_.onScanStatusEvent, 3, static_cast<jint>(e.data), 0);
            jni->ExceptionCheck();
            harness::vm()->DetachCurrentThread();
        }
    }
    Fixture& f_;
    sem_t sem_;
    std::mutex mutex_;
    std::deque<SB_EVENT> queue_;
    std::thread thread_;
};

void BM_ScanEvent_Floor(benchmark::State& state) {
    Fixture& f = *gFixture;
    FloorEventQueue queue(f);
    for (auto _ : state) {
        for (int i = 0; i < kBatch; ++i) queue.push(SB_REASON_FREQ_REPORT, 474000000 + i);
        awaitDelivered(f);
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
}

// ---- scan-maps commands -----------------------------------------------------------------

void BM_ScanMaps_Library(benchmark::State& state) {
    Fixture& f = *gFixture;
    BuilderThread builder;
    char country[] = "GBR";
    for (auto _ : state) {
        builder.run([&] {
            for (int i = 0; i < kBatch; ++i) {
                uint32_t out = 0;
                uint32_t len = sizeof(out);
                f.scanMaps(0, country, nullptr, &out, &len, f.scanMapsTag);
                benchmark::DoNotOptimize(out);
            }
        });
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
}

void BM_ScanMaps_Floor(benchmark::State& state) {
    Fixture& f = *gFixture;
    BuilderThread builder;
    for (auto _ : state) {
        builder.run([&] {
            for (int i = 0; i < kBatch; ++i) {
                JNIEnv* jni = nullptr;
                harness::vm()->AttachCurrentThread(&jni, nullptr);
                jstring country = jni->NewStringUTF("GBR");
                jint in = 0;
                jintArray input = jni->NewIntArray(1);
                jni->SetIntArrayRegion(input, 0, 1, &in);
                jintArray output = jni->NewIntArray(1);
                jni->CallVoidMethod(f.config, f.onScanMapCommands, 0, country, input, output);
                jni->ExceptionCheck();
                jint answer = 0;
                jni->GetIntArrayRegion(output, 0, 1, &answer);
                uint32_t out = static_cast<uint32_t>(answer);
                benchmark::DoNotOptimize(out);
                harness::vm()->DetachCurrentThread();
            }
        });
    }
    state.SetItemsProcessed(state.iterations() * kBatch);
}

BENCHMARK(BM_ScanEvent_Floor)->UseRealTime()->MinTime(1.0);
BENCHMARK(BM_ScanEvent_Library)->UseRealTime()->MinTime(1.0);
BENCHMARK(BM_ScanMaps_Floor)->UseRealTime()->MinTime(1.0);
BENCHMARK(BM_ScanMaps_Library)->UseRealTime()->MinTime(1.0);

// Prints library / floor per pair once every benchmark has run.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& r : runs) {
            if (r.run_type == Run::RT_Iteration) {
                perItem_[r.benchmark_name()] = r.GetAdjustedRealTime() / kBatch;
            }
        }
    }
    void Finalize() override {
        ConsoleReporter::Finalize();
        for (const char* pair : {"ScanEvent", "ScanMaps"}) {
            double lib = perItem_[std::string("BM_") + pair + "_Library/min_time:1.000/real_time"];
            double floor = perItem_[std::string("BM_") + pair + "_Floor/min_time:1.000/real_time"];
            if (floor > 0) {
                printf("%-10s library %8.2f us  floor %8.2f us  ratio %.2f\n", pair, lib / 1000,
                       floor / 1000, lib / floor);
            }
        }
    }

private:
    std::map<std::string, double> perItem_;
};

}  // namespace

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    harness::installLogCapture();
    harness::startJvm(ORVELLA_TEST_CLASSPATH);
    setUp();
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    fflush(stdout);
    _exit(0);
}
