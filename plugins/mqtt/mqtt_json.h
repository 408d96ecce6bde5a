// Values as JSON has them. Pure functions, any thread.
#pragma once

#include <string>
#include <string_view>

#include "platform/win32.h"

namespace mqtt {

// Between quotes. UTF-8.
std::string JsonText(std::string_view utf8);
// As many digits as bring back the same bits; "Infinity" and "-Infinity" between quotes, null for NaN.
std::string JsonNumber(double value);
// Microseconds since 1970-01-01 UTC, as "2026-11-23T06:45:12.345678Z" between quotes.
std::string JsonTime(__int64 time);

// An object that is being written, member by member: JsonObject().Add("a", JsonNumber(1)).Text().
class JsonObject {
public:
    JsonObject& Add(std::string_view name, const std::string& value) {
        m_text += (m_text.size() == 1 ? "" : ",") + JsonText(name) + ':' + value;
        return *this;
    }
    std::string Text() const { return m_text + '}'; }

private:
    std::string m_text = "{";
};

// "[a,b]" of anything that `text` makes a text of.
template <class Items, class TextOfItem>
std::string JsonList(const Items& items, TextOfItem text) {
    std::string list = "[";
    for (const auto& item : items) list += (list.size() == 1 ? "" : ",") + text(item);
    return list + ']';
}

}  // namespace mqtt
