// What every fuzz target shares: the embedded JVM (CheckJNI on; a warning, a pending
// exception or a thread left attached ends the run as a crash), the input reader, builder
// threads that are not attached to the VM, and the Java rig the targets drive
// (testsupport/FuzzRig: an engine configured with DVB-T and the terrestrial extensions).
//
// A target is one file that defines LLVMFuzzerTestOneInput and starts with fuzz::boot();
// see tests/fuzz/README.md.
#ifndef ORVELLA_TESTS_FUZZ_SUPPORT_H
#define ORVELLA_TESTS_FUZZ_SUPPORT_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <functional>
#include <vector>

#include <jni.h>

#include "JINativeScanConfig.h"
#include "JINativeScanExtension.h"

namespace fuzz {

// The bytes of one input, taken from the front; past the end everything reads as 0.
class Input {
public:
    Input(const uint8_t* data, size_t size) : mData(data), mSize(size) {}
    size_t remaining() const { return mSize - mPos; }
    uint8_t u8() { return static_cast<uint8_t>(take(1)); }
    uint16_t u16() { return static_cast<uint16_t>(take(2)); }
    uint32_t u32() { return static_cast<uint32_t>(take(4)); }
    // Up to `n` bytes (fewer when the input ends).
    std::vector<uint8_t> bytes(size_t n);
    // A record of `T` from the next bytes, zero-filled past the end of the input.
    template <typename T>
    T record() {
        T out;
        memset(&out, 0, sizeof(out));
        std::vector<uint8_t> b = bytes(sizeof(T));
        if (!b.empty()) memcpy(&out, b.data(), b.size());  // the input may have ended
        return out;
    }

private:
    uint64_t take(size_t n);
    const uint8_t* mData;
    size_t mSize;
    size_t mPos = 0;
};

// Starts the VM and loads the library on the first call; the main thread's environment.
JNIEnv* boot();

// Runs `fn` on a new thread that is not attached to the VM, as the builder's threads are,
// and waits for it. A callback that leaves the thread attached is detached here (the
// builder's thread would end attached: the VM would keep its Java thread).
void onBuilderThread(const std::function<void()>& fn);

// The rig (a FuzzRig global reference) and its fields.
jobject rig();
jobject rigObject(const char* field, const char* signature);
void setRigAnswer(const std::vector<jint>& answer);
void setRigPick(jint pick);
// The native DVB-T configuration of the rig, and the native extension behind a rig field.
android::JINativeScanConfig* rigConfig();
android::JINativeScanExtension* nativeExtension(jobject extension);

// Ends the run as a crash when Java left an exception pending on `env`.
void checkNoException(JNIEnv* env, const char* what);

}  // namespace fuzz

// The fuzzer's entry, defined by each target.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

#endif  // ORVELLA_TESTS_FUZZ_SUPPORT_H
