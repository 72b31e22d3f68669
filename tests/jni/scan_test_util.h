// Helpers shared by the JNI tests: Java objects of the scan package and what they recorded.
#ifndef ORVELLA_TESTS_SCAN_TEST_UTIL_H
#define ORVELLA_TESTS_SCAN_TEST_UTIL_H

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <jni.h>

#include "JINativeScanConfig.h"
#include "jvm_harness.h"

namespace scantest {

constexpr const char* kRecordingConfig = "com/brinova/tv/orvella/testsupport/RecordingDvbtConfig";

// A RecordingDvbtConfig (local reference).
jobject newDvbtConfig(const char* country, const char* language, int scanType, int updateType);
// Its native configuration as Java stores it (0 when none).
jlong nativeConfigValue(jobject config);
android::JINativeScanConfig* nativeConfig(jobject config);
// Recorded events without their thread ("cmd 16", "status 1", "update 3 1", "check").
std::vector<std::string> events(jobject config);
// Recorded events with the thread they came on ("cmd 16 @Thread-3").
std::vector<std::string> eventsWithThreads(jobject config);
void clearEvents(jobject config);
void setAnswer(jobject config, const std::vector<int>& answer);
void setCheckResult(jobject config, int result);
std::vector<int> lastInput(jobject config);
int lastOutputLength(jobject config);

// What an assertion printed, from "cond=<" to the end of its line; empty when none did.
std::string assertionLine(const std::string& printed);
// A death test's matcher: the child asserted; its assertion line is kept in `line`.
::testing::Matcher<const std::string&> assertionPrinted(std::string* line);

// Whether the calling thread is attached to the VM.
bool threadAttached();

std::vector<std::string> stringArray(JNIEnv* env, jobjectArray array);
std::vector<int> intArray(JNIEnv* env, jintArray array);
jintArray newIntArray(JNIEnv* env, const std::vector<int>& values);

}  // namespace scantest

#endif  // ORVELLA_TESTS_SCAN_TEST_UTIL_H
