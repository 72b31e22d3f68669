// Configurations of the cable, DTMB, ATSC, clear-QAM and ISDB standards for tests: Java
// objects made through their public constructors, with a StandardRecorder attached.
#ifndef ORVELLA_TESTS_STANDARD_UTIL_H
#define ORVELLA_TESTS_STANDARD_UTIL_H

#include <stdint.h>
#include <string.h>

#include <string>
#include <vector>

#include <jni.h>

#include "JINativeScanConfig.h"
#include "jvm_harness.h"
#include "zel_sim.h"

namespace scantest {

constexpr const char* kScanPackage = "com/brinova/tv/orvella/services/scan/";

// A Java configuration and the recorder attached to it.
struct StandardConfig {
    jobject config = nullptr;
    jobject recorder = nullptr;

    android::JINativeScanConfig* native() const;
    std::vector<std::string> events() const;            // without threads
    std::vector<std::string> eventsWithThreads() const;
    void clearEvents() const;
    void setAnswer(const std::vector<int>& answer) const;
    std::vector<int> lastInput() const;
    int lastOutputLength() const;
    std::string lastServiceName() const;  // "<null>" for null
    int lastValue() const;
    // The block as bytes (its size given by the caller).
    std::vector<uint8_t> block(size_t size) const;
    jint release() const;
};

// `settingsClass` under the package, made with `ctorSig` and the arguments; then the config
// class (same name with "Settings" replaced by "Config") from it. Null config when the
// constructor threw (the exception text goes to *thrown when given).
StandardConfig newStandardConfig(const char* settingsClass, const char* ctorSig, ...);
StandardConfig configFromSettings(const char* configClass, jobject settings,
                                  std::string* thrown = nullptr);
// Settings from a static factory of the settings class.
jobject settingsFrom(const char* settingsClass, const char* factory, const char* sig, ...);

// A string for JNI calls (local reference).
jstring jstr(const char* s);

uint32_t wordAt(const std::vector<uint8_t>& bytes, size_t offset);
uint16_t halfAt(const std::vector<uint8_t>& bytes, size_t offset);
bool zeroAt(const std::vector<uint8_t>& bytes, size_t offset, size_t count);

// Records whether each builder callback left its thread attached, and detaches it if so.
class AttachWatch {
public:
    AttachWatch();
    ~AttachWatch();
    std::vector<bool> attachedAfter() const;

private:
    struct State;
    State* state_;
};

}  // namespace scantest

#endif  // ORVELLA_TESTS_STANDARD_UTIL_H
