// Scan engines for tests: Java engines on a pipeline, their natives, and configurations
// made in C++ for builders whose Java configuration does not exist here.
#ifndef ORVELLA_TESTS_ENGINE_UTIL_H
#define ORVELLA_TESTS_ENGINE_UTIL_H

#include <stdint.h>
#include <string.h>

#include <mutex>
#include <string>
#include <vector>

#include <jni.h>
#include <utils/StrongPointer.h>

#include "JINativeScanConfig.h"
#include "JScanEngine.h"
#include "SbDvbsScanParams.h"
#include "jvm_harness.h"
#include "zel_sim.h"

namespace scantest {

constexpr const char* kEngineClass = "com/brinova/tv/orvella/services/scan/ZelTvScanEngine";
constexpr const char* kEngineTag = "ZEL_MW";

// A configuration of any builder name, with a recognisable block as large as the largest
// builder's (the satellite block, 780 bytes on the TV).
class FakeConfig : public android::JINativeScanConfig {
public:
    explicit FakeConfig(const char* name) : name_(name) {
        for (size_t i = 0; i < sizeof(block); ++i) block[i] = static_cast<uint8_t>(i * 7 + 1);
    }
    const char* getSbEbEngineName() override { return name_.c_str(); }
    void* getSbScanMapsNotify() override { return reinterpret_cast<void*>(&answerNothing); }
    void* getSbScanParams(int) override { return block; }
    jobject getSbScanConfigObject() override { return nullptr; }
    int checkScanMaps() override { return check; }
    void onStatus(int status) override {
        std::lock_guard<std::mutex> lock(mutex_);
        statuses_.push_back(status);
    }
    std::vector<int> statuses() {
        std::lock_guard<std::mutex> lock(mutex_);
        return statuses_;
    }
    jlong pointer() { return static_cast<jlong>(reinterpret_cast<uintptr_t>(
                          static_cast<android::JINativeScanConfig*>(this))); }

    uint8_t block[sizeof(SB_DVBS_SCAN_PARAMS)];
    int check = 0;

private:
    static int32_t answerNothing(SCAN_MAPS_CMD_T, char*, void*, void*, uint32_t*, void*) { return 0; }
    std::string name_;
    std::mutex mutex_;
    std::vector<int> statuses_;
};

// A Java scan engine and what it holds.
struct Engine {
    jobject object = nullptr;    // ZelTvScanEngine
    jobject pipeline = nullptr;  // TunerPipeline, null for an engine made from a handle
    jobject listener = nullptr;  // RecordingEngineListener

    // Creates an engine on a new pipeline object (or on `handle` when it is not 0).
    static Engine create(uint32_t handle = 0);

    jint native(const char* name);                   // a "()I" native
    jint configure(jlong configPointer, jint svlId);  // nativeConfigure
    jint configure(jobject javaConfig, jint svlId);  // with a Java configuration's pointer
    jlong context();
    android::JScanEngine* nativeEngine() {
        return reinterpret_cast<android::JScanEngine*>(static_cast<uintptr_t>(context()));
    }
    int state() { return nativeEngine()->state(); }
    jint pipelineHandle();

    // Listener events without their thread, or only those that begin with `prefix`.
    std::vector<std::string> events(const std::string& prefix = "");
    std::vector<std::string> eventsWithThreads();
    bool awaitEnds(int ends, int millis = 10000);
    bool awaitCount(int count, int millis = 10000);
};

// The last recorded call of `fn` (fails the test when there is none).
zelsim::Call lastCall(const std::string& fn);
uint32_t word(const std::vector<uint8_t>& bytes, size_t offset);
// Polls until `done` holds or about two seconds passed, collecting garbage in between.
bool eventually(const std::function<bool()>& done);

}  // namespace scantest

#endif  // ORVELLA_TESTS_ENGINE_UTIL_H
