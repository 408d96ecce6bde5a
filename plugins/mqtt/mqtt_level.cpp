#include "plugins/mqtt/mqtt_level.h"

#include <mosquitto.h>

#include <cstdint>
#include <cstdio>

namespace mqtt {
namespace {
constexpr size_t kLongestLevel = 200;

// FNV-1a: names that a station has beside one another are few, and nobody makes them collide but on purpose.
std::string Mark(std::string_view name) {
    uint32_t mark = 2166136261u;
    for (const char c : name) mark = (mark ^ static_cast<unsigned char>(c)) * 16777619u;
    char digits[16];
    std::snprintf(digits, sizeof digits, "%08x", mark);
    return digits;
}

template <class Kept>
std::string Replace(std::string_view name, Kept kept) {
    std::string out(name.substr(0, kLongestLevel));
    // No part of a character at the end.
    if (out.size() < name.size()) {
        while (!out.empty() && (static_cast<unsigned char>(name[out.size()]) & 0xC0) == 0x80) out.pop_back();
    }
    for (char& c : out) {
        if (!kept(static_cast<unsigned char>(c))) c = '_';
    }
    return out;
}
}  // namespace

std::string Level(std::string_view name) {
    std::string level =
        Replace(name, [](unsigned char c) { return c >= 0x20 && c != 0x7F && c != '+' && c != '#' && c != '/'; });
    // What else a topic cannot have: the control characters beyond ASCII, and what is no character.
    if (mosquitto_validate_utf8(level.c_str(), static_cast<int>(level.size())) != MOSQ_ERR_SUCCESS)
        level = Replace(level, [](unsigned char c) { return c < 0x80; });
    return level == name && !level.empty() ? level : level + '~' + Mark(name);
}

std::string PlainId(std::string_view name) {
    const std::string id = Replace(name, [](unsigned char c) {
        return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-' || c == '_';
    });
    return id == name && !id.empty() ? id : id + '_' + Mark(name);
}

}  // namespace mqtt
