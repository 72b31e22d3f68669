#include "fault_sweep.h"

#include <dirent.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <condition_variable>
#include <fstream>
#include <mutex>
#include <regex>
#include <map>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "jvm_harness.h"
#include "scan_test_util.h"
#include "zel_sim.h"

namespace sweep {

namespace {

constexpr const char* kApplication = "com/brinova/tv/orvella/testsupport/SweepApplication";
// A run that takes this long has hung: the process ends with the call it refused.
constexpr int kHangGuardSeconds = 180;

// Step marks of the running lifecycle: the step's name and the number of calls before it.
std::mutex gMarkLock;
std::vector<std::pair<size_t, std::string>> gMarks;

void JNICALL markStep(JNIEnv* env, jclass, jstring step) {
    const char* chars = env->GetStringUTFChars(step, nullptr);
    std::lock_guard<std::mutex> lock(gMarkLock);
    gMarks.emplace_back(zelsim::calls().size(), chars);
    env->ReleaseStringUTFChars(step, chars);
}

void registerMark() {
    static bool registered = false;
    if (registered) return;
    JNIEnv* env = harness::env();
    jclass app = harness::findClass(kApplication);
    JNINativeMethod mark{const_cast<char*>("mark"), const_cast<char*>("(Ljava/lang/String;)V"),
                         reinterpret_cast<void*>(markStep)};
    registered = app != nullptr && env->RegisterNatives(app, &mark, 1) == JNI_OK;
    EXPECT_TRUE(registered) << harness::exceptionText(env);
    env->DeleteLocalRef(app);
}

std::string readLine(const std::string& path) {
    std::ifstream in(path);
    std::string line;
    std::getline(in, line);
    return line;
}

// The VM names its own threads (and may start or end compiler threads at any time); ours,
// the engine's event threads and the simulator's, keep the name of the process.
int countOwnThreads() {
    const std::string own = readLine("/proc/self/comm");
    int n = 0;
    DIR* dir = opendir("/proc/self/task");
    while (dirent* e = dir != nullptr ? readdir(dir) : nullptr) {
        if (e->d_name[0] == '.') continue;
        n += readLine(std::string("/proc/self/task/") + e->d_name + "/comm") == own ? 1 : 0;
    }
    if (dir != nullptr) closedir(dir);
    return n;
}

// A thread the VM starts bears the process's name until it names itself, and the VM starts
// compiler threads as its queue grows (often under an emulator): the fewest seen over a few
// milliseconds. A thread that stays is counted by every sample.
int settledOwnThreads() {
    int fewest = countOwnThreads();
    for (int i = 0; i < 5; ++i) {
        usleep(2000);
        fewest = std::min(fewest, countOwnThreads());
    }
    return fewest;
}

int countDescriptors() {
    int n = 0;
    DIR* dir = opendir("/proc/self/fd");
    while (dirent* e = dir != nullptr ? readdir(dir) : nullptr) {
        n += e->d_name[0] == '.' ? 0 : 1;
    }
    if (dir != nullptr) closedir(dir);
    return n - 1;  // the directory stream itself
}

// Ends the process when a run does not come back, naming what it refused.
class HangGuard {
public:
    explicit HangGuard(std::string what) : what_(std::move(what)), thread_([this] { watch(); }) {}
    ~HangGuard() {
        {
            std::lock_guard<std::mutex> lock(mutex_);
            done_ = true;
        }
        cv_.notify_all();
        thread_.join();
    }

private:
    void watch() {
        std::unique_lock<std::mutex> lock(mutex_);
        if (!cv_.wait_for(lock, std::chrono::seconds(kHangGuardSeconds), [this] { return done_; })) {
            fprintf(stderr, "fault sweep: the run %s hung\n", what_.c_str());
            fflush(stderr);
            _exit(3);
        }
    }
    std::string what_;
    std::mutex mutex_;
    std::condition_variable cv_;
    bool done_ = false;
    std::thread thread_;
};

// The application's steps name its own calls. The builder's threads and the engine's event
// thread run alongside them (a short scan may end before the application marks it), so
// their calls are named by the thread alone.
std::string siteOf(const zelsim::Call& call, const std::string& step) {
    if (call.simThread) return "builder thread";
    return call.thread == static_cast<int64_t>(gettid()) ? step : "event thread";
}

// Every refusable call of the run with its step, numbered per function.
std::vector<MiddlewareCall> refusableCalls(const std::vector<zelsim::Call>& calls,
                                           const std::vector<std::pair<size_t, std::string>>& marks) {
    std::vector<MiddlewareCall> out;
    std::map<std::string, int> seen;
    size_t mark = 0;
    std::string step = "before setup";
    std::string lastKey;  // the event thread's last key: which extension's hook is running
    for (size_t i = 0; i < calls.size(); ++i) {
        while (mark < marks.size() && marks[mark].first <= i) step = marks[mark++].second;
        const zelsim::Call& c = calls[i];
        if (!refusable(c.fn)) continue;
        MiddlewareCall call;
        call.fn = c.fn;
        call.nth = seen[c.fn]++;
        call.site = siteOf(c, step);
        if ((c.fn == "x_sb_get" || c.fn == "x_sb_set") && c.args.size() > 1) call.key = c.args[1];
        if (call.site == "event thread") {
            if (call.key >= 0) {
                lastKey = c.fn + "(" + std::to_string(call.key) + ")";
            } else if (!lastKey.empty()) {
                call.site += " after " + lastKey;
            }
        }
        out.push_back(call);
    }
    return out;
}

std::vector<std::string> strings(jobject app, const char* method) {
    return scantest::stringArray(harness::env(), static_cast<jobjectArray>(harness::callObject(
                                                     app, harness::methodOf(app, method, "()[Ljava/lang/String;"))));
}

jobject newApplication(const Standard& standard) {
    JNIEnv* env = harness::env();
    jclass stringClass = env->FindClass("java/lang/String");
    jobjectArray names = env->NewObjectArray(static_cast<jsize>(standard.extensions.size()),
                                             stringClass, nullptr);
    for (size_t i = 0; i < standard.extensions.size(); ++i) {
        jstring name = env->NewStringUTF(standard.extensions[i]);
        env->SetObjectArrayElement(names, static_cast<jsize>(i), name);
        env->DeleteLocalRef(name);
    }
    jstring config = env->NewStringUTF(standard.config);
    jobject app = harness::newObject(kApplication, "(Ljava/lang/String;[Ljava/lang/String;)V",
                                     config, names);
    env->DeleteLocalRef(config);
    env->DeleteLocalRef(names);
    env->DeleteLocalRef(stringClass);
    return app;
}

// Collected objects and ended threads come a little after release: polled, bounded.
void awaitQuiet(jobject app, Run* run, int threadsBefore) {
    for (int i = 0; i < 200; ++i) {
        harness::collectGarbage();
        run->reachable = strings(app, "reachable");
        if (run->reachable.empty() && countOwnThreads() <= threadsBefore) return;
        usleep(10000);
    }
}

// A line as it reads in every run: hexadecimal numbers (addresses, handles) and numbers of
// four digits and more (thread ids) blanked; statuses, counts and source lines kept.
std::string blanked(const harness::LogLine& line) {
    static const std::regex kVarying("-?0x[0-9a-fA-F]+|-?[0-9]{4,}");
    return line.tag + " " + std::to_string(line.priority) + " " +
           std::regex_replace(line.text, kVarying, "#");
}

}  // namespace

std::string MiddlewareCall::name() const {
    std::string out = fn;
    if (key >= 0) out += "(" + std::to_string(key) + ")";
    return out + " #" + std::to_string(nth) + " at " + site;
}

std::string Resources::describe() const {
    std::ostringstream out;
    out << "threads " << threads << ", descriptors " << descriptors << ", global refs " << globalRefs
        << ", handles " << handles << ", allocations " << allocations << ", list registrations "
        << registrations << ", builders " << builders;
    return out.str();
}

Resources measure() {
    Resources r;
    r.threads = settledOwnThreads();
    r.descriptors = countDescriptors();
    r.globalRefs = harness::jniGlobalRefCount();
    r.handles = zelsim::liveHandles();
    r.allocations = zelsim::liveAllocations();
    r.registrations = zelsim::listRegistrations("svl") + zelsim::listRegistrations("tsl") +
                      zelsim::listRegistrations("nwl");
    r.builders = zelsim::openBuilders();
    return r;
}

bool refusable(const std::string& fn) {
    static const char* const kCannotFail[] = {"x_mem_free", "x_memset",   "x_memcpy",  "x_strlen",
                                              "x_strncpy",  "x_strncmp", "x_sprintf"};
    for (const char* f : kCannotFail) {
        if (fn == f) return false;
    }
    return true;
}

Run runLifecycle(const Standard& standard, const MiddlewareCall* refuse) {
    Run run;
    registerMark();
    HangGuard guard(std::string(standard.name) + (refuse ? " refusing " + refuse->name() : " clean"));
    zelsim::reset();
    zelsim::setTimeScale(0);
    harness::Logs::clear();
    std::string error;
    if (!zelsim::loadScenarioFile(std::string(ORVELLA_SOURCE_DIR "/scenarios/") + standard.scenario,
                                  &error)) {
        run.error = "scenario: " + error;
        return run;
    }
    {
        std::lock_guard<std::mutex> lock(gMarkLock);
        gMarks.clear();
    }
    if (refuse != nullptr) zelsim::failNth(refuse->fn, refuse->nth, MWR_FAIL);
    const int threadsBefore = settledOwnThreads();
    JNIEnv* env = harness::env();
    env->PushLocalFrame(32);
    jobject app = newApplication(standard);
    if (app == nullptr) {
        run.error = "no SweepApplication";
    } else {
        run.steps = strings(app, "run");
        run.decisions = strings(app, "decisions");
        run.heard = strings(app, "heard");
        awaitQuiet(app, &run, threadsBefore);
    }
    env->PopLocalFrame(nullptr);
    zelsim::waitIdle(10000);
    for (const harness::LogLine& line : harness::Logs::lines()) run.logs.insert(blanked(line));
    run.scanMapsAnswers = zelsim::scanMapsAnswers().size();
    run.scanMapsMismatches = zelsim::scanMapsMismatches();
    std::lock_guard<std::mutex> lock(gMarkLock);
    run.calls = refusableCalls(zelsim::calls(), gMarks);
    return run;
}

}  // namespace sweep
