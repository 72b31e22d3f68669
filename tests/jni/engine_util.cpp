#include "engine_util.h"

#include <unistd.h>

#include <gtest/gtest.h>

#include "scan_test_util.h"

namespace scantest {

using harness::callInt;
using harness::env;
using harness::methodOf;

Engine Engine::create(uint32_t handle) {
    Engine e;
    if (handle == 0) {
        jstring name = env()->NewStringUTF("tuner0");
        e.pipeline = harness::newObject("com/brinova/tv/orvella/testsupport/TunerPipeline",
                                        "(Ljava/lang/String;)V", name);
        env()->DeleteLocalRef(name);
        e.object = harness::newObject(kEngineClass, "(Ljava/lang/Object;)V", e.pipeline);
    } else {
        e.object = harness::newObject(kEngineClass, "(I)V", static_cast<jint>(handle));
    }
    if (e.object == nullptr) return e;
    jclass recorder = harness::findClass("com/brinova/tv/orvella/testsupport/RecordingEngineListener");
    jmethodID attach = env()->GetStaticMethodID(
        recorder, "attach",
        "(Lcom/brinova/tv/orvella/services/scan/ZelTvScanEngine;)"
        "Lcom/brinova/tv/orvella/testsupport/RecordingEngineListener;");
    e.listener = env()->CallStaticObjectMethod(recorder, attach, e.object);
    EXPECT_EQ(harness::exceptionText(env()), "");
    env()->DeleteLocalRef(recorder);
    return e;
}

jint Engine::native(const char* name) { return callInt(object, methodOf(object, name, "()I")); }

jint Engine::configure(jlong configPointer, jint svlId) {
    return callInt(object, methodOf(object, "nativeConfigure", "(JI)I"), configPointer, svlId);
}

jint Engine::configure(jobject javaConfig, jint svlId) {
    return configure(nativeConfigValue(javaConfig), svlId);
}

jlong Engine::context() {
    return harness::callLong(object, methodOf(object, "getNativeContext", "()J"));
}

jint Engine::pipelineHandle() {
    return callInt(object, methodOf(object, "getPipelineHandle", "()I"));
}

std::vector<std::string> Engine::events(const std::string& prefix) {
    auto all = stringArray(env(), static_cast<jobjectArray>(harness::callObject(
                                      listener, methodOf(listener, "eventNames", "()[Ljava/lang/String;"))));
    std::vector<std::string> out;
    for (const std::string& e : all) {
        if (e.compare(0, prefix.size(), prefix) == 0) out.push_back(e);
    }
    return out;
}

std::vector<std::string> Engine::eventsWithThreads() {
    return stringArray(env(), static_cast<jobjectArray>(harness::callObject(
                                  listener, methodOf(listener, "events", "()[Ljava/lang/String;"))));
}

bool Engine::awaitEnds(int ends, int millis) {
    jboolean ok = env()->CallBooleanMethod(listener, methodOf(listener, "awaitEnds", "(IJ)Z"), ends,
                                           static_cast<jlong>(millis));
    EXPECT_EQ(harness::exceptionText(env()), "");
    return ok;
}

bool Engine::awaitCount(int count, int millis) {
    jboolean ok = env()->CallBooleanMethod(listener, methodOf(listener, "awaitCount", "(IJ)Z"),
                                           count, static_cast<jlong>(millis));
    EXPECT_EQ(harness::exceptionText(env()), "");
    return ok;
}

zelsim::Call lastCall(const std::string& fn) {
    std::vector<zelsim::Call> calls = zelsim::calls(fn);
    EXPECT_FALSE(calls.empty()) << "no call of " << fn;
    if (!calls.empty()) return calls.back();
    zelsim::Call none;
    none.args.assign(8, -1);  // lets a failing test go on to report, rather than crash
    return none;
}

uint32_t word(const std::vector<uint8_t>& bytes, size_t offset) {
    uint32_t w = 0;
    if (offset + 4 <= bytes.size()) memcpy(&w, bytes.data() + offset, 4);
    return w;
}

bool eventually(const std::function<bool()>& done) {
    for (int i = 0; i < 100; ++i) {
        if (done()) return true;
        harness::collectGarbage();
        usleep(20000);
    }
    return done();
}

}  // namespace scantest
