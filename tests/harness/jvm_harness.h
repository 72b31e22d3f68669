// Test harness: one embedded HotSpot JVM per test process (created with -Xcheck:jni),
// the scan library loaded through System.loadLibrary, and capture of log lines,
// assertion texts and CheckJNI warnings.
#ifndef ORVELLA_TESTS_JVM_HARNESS_H
#define ORVELLA_TESTS_JVM_HARNESS_H

#include <jni.h>

#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace harness {

JavaVM* vm();
// The main test thread's environment.
JNIEnv* env();
// What the load through System.loadLibrary reported: empty on success, else the
// Throwable's text.
const std::string& loadError();
struct LogLine;
// The lines logged while the library loaded (every level let through).
const std::vector<LogLine>& loadLogs();
// CheckJNI warnings ("WARNING in native method", "WARNING: JNI local refs") printed by the VM so far.
int checkJniWarnings();

// While one lives, CheckJNI warnings are counted in expected() instead of failing the test
// and are not echoed (so that the run's output stays free of them).
class ExpectCheckJniWarnings {
public:
    ExpectCheckJniWarnings();
    ~ExpectCheckJniWarnings();
    int expected() const;
};

struct LogLine {
    int priority;
    std::string tag;
    std::string text;
};

// Every line liblog printed since the last clear, in order.
class Logs {
public:
    static void clear();
    static std::vector<LogLine> lines();
    // Number of lines with this priority and tag whose text equals `text`.
    static int count(int priority, const std::string& tag, const std::string& text);
    // Lines of this tag whose text starts with `prefix` (any priority).
    static std::vector<LogLine> starting(const std::string& tag, const std::string& prefix);
    // Lines of this tag whose text contains `part`.
    static std::vector<LogLine> containing(const std::string& tag, const std::string& part);
    // The function names (functionOf) of the lines of this tag that contain `part`.
    static std::set<std::string> functions(const std::string& tag, const std::string& part);
    // Called with every line as it is printed, on the printing thread, until cleared with
    // null; lets a test act at a given moment of the library's work.
    static void setHook(std::function<void(const LogLine&)> hook);
};
// The function name of a "[function][line]..." line, or of an "[INFO ][line]{function}..."
// line; empty for a line of neither form.
std::string functionOf(const std::string& text);

// Properties of the host property store (the log gate reads them on every call).
void setProperty(const char* key, const char* value);
// Lets every level of the library's log through (level "V").
void logEverything();

// JNI conveniences for tests; each fails the test (and returns null) when Java threw.
jclass findClass(const char* name);
jobject newObject(const char* className, const char* ctorSig, ...);
std::string exceptionText(JNIEnv* env);  // clears it; empty when none
// Calls a method and checks for an exception afterwards, as CheckJNI requires; a thrown
// exception fails the test.
jint callInt(jobject obj, jmethodID method, ...);
jlong callLong(jobject obj, jmethodID method, ...);
void callVoid(jobject obj, jmethodID method, ...);
jobject callObject(jobject obj, jmethodID method, ...);
// A method of the object's class (fails the test when missing).
jmethodID methodOf(jobject obj, const char* name, const char* sig);
// Forces a few full collections and finalisation.
void collectGarbage();
// The VM's JNI global references (strong ones: roots of the heap), or -1 when JVMTI cannot
// count them.
int jniGlobalRefCount();

// Base fixture: fresh logs and simulator, all levels logged, and by the end of the test no
// CheckJNI warning and no line that names a lambda ("operator()") as its function.
class JvmTest : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;
    JNIEnv* env_ = nullptr;

private:
    static constexpr jint kTestLocalRefs = 1024;
    int warningsAtStart_ = 0;
    bool framePushed_ = false;
};

}  // namespace harness

#endif  // ORVELLA_TESTS_JVM_HARNESS_H
