// The checks every scenario parser shares: fields of a JSON object, numbers in range,
// texts and hex blocks, each failing with the place in the scenario it was read from.
#ifndef ZEL_SIM_SCENARIO_PARSE_H
#define ZEL_SIM_SCENARIO_PARSE_H

#include <stdint.h>
#include <string.h>

#include <initializer_list>
#include <limits>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace zelsim::detail {

using json = nlohmann::json;

struct ParseError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

[[noreturn]] inline void fail(const std::string& where, const std::string& what) {
    throw ParseError(where + ": " + what);
}

inline void checkFields(const json& obj, const std::string& where, std::initializer_list<const char*> allowed) {
    if (!obj.is_object()) fail(where, "expected an object");
    for (auto it = obj.begin(); it != obj.end(); ++it) {
        bool known = false;
        for (const char* name : allowed) known = known || it.key() == name;
        if (!known) fail(where, "unknown field \"" + it.key() + "\"");
    }
}

template <typename T>
T asNumber(const json& value, const std::string& where) {
    if (!value.is_number_integer()) fail(where, "expected an integer");
    if (value.is_number_unsigned()) {
        auto v = value.get<uint64_t>();
        if (v > static_cast<uint64_t>(std::numeric_limits<T>::max())) fail(where, "value out of range");
        return static_cast<T>(v);
    }
    auto v = value.get<int64_t>();
    if (v < static_cast<int64_t>(std::numeric_limits<T>::min()) ||
        v > static_cast<int64_t>(std::numeric_limits<T>::max())) {
        fail(where, "value out of range");
    }
    return static_cast<T>(v);
}

template <typename T>
T field(const json& obj, const char* name, const std::string& where, std::optional<T> fallback = {}) {
    auto it = obj.find(name);
    if (it == obj.end()) {
        if (!fallback) fail(where, std::string("missing \"") + name + "\"");
        return *fallback;
    }
    return asNumber<T>(*it, where + "." + name);
}

inline std::string textField(const json& obj, const char* name, const std::string& where,
                      std::optional<std::string> fallback = {}) {
    auto it = obj.find(name);
    if (it == obj.end()) {
        if (!fallback) fail(where, std::string("missing \"") + name + "\"");
        return *fallback;
    }
    if (!it->is_string()) fail(where + "." + name, "expected a string");
    return it->get<std::string>();
}

inline std::vector<uint8_t> hexBlock(const json& v, const std::string& where) {
    if (!v.is_string()) fail(where, "expected a hex string");
    std::string hex;
    for (char c : v.get<std::string>()) {
        if (c != ' ') hex += c;
    }
    if (hex.size() % 2 != 0) fail(where, "odd number of hex digits");
    std::vector<uint8_t> out;
    for (size_t i = 0; i < hex.size(); i += 2) {
        size_t used = 0;
        unsigned long byte = 0;
        try {
            byte = std::stoul(hex.substr(i, 2), &used, 16);
        } catch (const std::exception&) {
            used = 0;
        }
        if (used != 2) fail(where, "not a hex string");
        out.push_back(static_cast<uint8_t>(byte));
    }
    return out;
}

// The array field `name` of `obj` (absent: empty), at most `max` items, each read by `parseOne`.
template <typename T>
std::vector<T> parseArray(const json& obj, const char* name, const std::string& where, size_t max,
                         T (*parseOne)(const json&, const std::string&)) {
    std::vector<T> out;
    if (!obj.contains(name)) return out;
    const json& list = obj[name];
    if (!list.is_array() || list.size() > max) {
        fail(where + "." + name, "expected an array of at most " + std::to_string(max));
    }
    for (size_t i = 0; i < list.size(); ++i) {
        out.push_back(parseOne(list[i], where + "." + name + "[" + std::to_string(i) + "]"));
    }
    return out;
}

// A DVB service type by name (tv, radio, data, hd) or number.
inline uint8_t serviceType(const json& v, const std::string& where) {
    if (v.is_string()) {
        const std::string t = v.get<std::string>();
        if (t == "tv") return 0x01;
        if (t == "radio") return 0x02;
        if (t == "data") return 0x0C;
        if (t == "hd") return 0x19;
        fail(where, "unknown service type \"" + t + "\" (tv, radio, data, hd or a number)");
    }
    return asNumber<uint8_t>(v, where);
}

// The bytes of a wire record.
template <typename Rec>
std::vector<uint8_t> bytesOf(const Rec& r) {
    const auto* p = reinterpret_cast<const uint8_t*>(&r);
    return std::vector<uint8_t>(p, p + sizeof(r));
}

// Copies a name into a fixed field, cut to leave a terminating zero.
inline void putName(char* to, size_t size, const std::string& name) {
    memset(to, 0, size);
    name.copy(to, name.size() < size ? name.size() : size - 1);
}

}  // namespace zelsim::detail

#endif  // ZEL_SIM_SCENARIO_PARSE_H
