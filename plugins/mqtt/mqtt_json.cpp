#include "plugins/mqtt/mqtt_json.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace mqtt {

std::string JsonText(std::string_view utf8) {
    std::string out = "\"";
    for (const char c : utf8) {
        if (c == '"' || c == '\\') {
            out.append(1, '\\').append(1, c);
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char code[8];
            std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned char>(c));
            out += code;
        } else {
            out += c;
        }
    }
    return out + '"';
}

std::string JsonNumber(double value) {
    if (std::isnan(value)) return "null";
    if (std::isinf(value)) return value > 0 ? "\"Infinity\"" : "\"-Infinity\"";
    char digits[64];
    return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

std::string JsonTime(__int64 time) {
    using namespace std::chrono;
    const sys_time<microseconds> point{microseconds(time)};
    const auto day = floor<days>(point);
    const year_month_day date(day);
    const hh_mm_ss clock(point - day);
    char text[64];
    std::snprintf(text, sizeof text, "\"%04d-%02u-%02uT%02d:%02d:%02d.%06dZ\"", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()), static_cast<int>(clock.seconds().count()),
                  static_cast<int>(clock.subseconds().count()));
    return text;
}

}  // namespace mqtt
