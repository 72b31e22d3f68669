#include "host_properties.h"

#include <stdlib.h>
#include <string.h>

#include <atomic>
#include <map>
#include <mutex>
#include <string>

#include <android/log.h>
#include <cutils/properties.h>

namespace {

std::mutex gLock;
std::map<std::string, std::string>& store() {
    static std::map<std::string, std::string> props;
    return props;
}
std::atomic<unsigned long> gGets{0};

// On a device logd filters by the log properties; a host liblog drops everything below
// INFO on its own. Let every line through, so that the library's own gate decides.
__attribute__((constructor)) void openHostLog() {
    __android_log_set_minimum_priority(ANDROID_LOG_VERBOSE);
}

}  // namespace

extern "C" int property_get(const char* key, char* value, const char* default_value) {
    gGets.fetch_add(1, std::memory_order_relaxed);
    std::string found;
    bool have = false;
    {
        std::lock_guard<std::mutex> lock(gLock);
        auto it = store().find(key);
        if (it != store().end()) {
            found = it->second;
            have = true;
        }
    }
    if (!have) {
        const char* env = getenv(key);
        if (env != nullptr) {
            found = env;
            have = true;
        }
    }
    if (!have || found.empty()) {
        found = default_value != nullptr ? default_value : "";
    }
    size_t len = found.size() < PROPERTY_VALUE_MAX - 1 ? found.size() : PROPERTY_VALUE_MAX - 1;
    memcpy(value, found.data(), len);
    value[len] = '\0';
    return static_cast<int>(len);
}

extern "C" void host_property_set(const char* key, const char* value) {
    std::lock_guard<std::mutex> lock(gLock);
    if (value == nullptr) {
        store().erase(key);
    } else {
        store()[key] = value;
    }
}

extern "C" void host_property_clear_all(void) {
    std::lock_guard<std::mutex> lock(gLock);
    store().clear();
}

extern "C" unsigned long host_property_get_count(void) {
    return gGets.load(std::memory_order_relaxed);
}
