#include "platform/posix/files/path_internal.h"

#include <algorithm>

#include "platform/posix/text/text_internal.h"

namespace orvik::detail {

std::string SystemPath(std::string_view name) {
    constexpr std::string_view kLiteral = R"(\\?\)";  // "take the rest as it is", which it is here anyway
    if (name.substr(0, kLiteral.size()) == kLiteral) name.remove_prefix(kLiteral.size());
    const bool otherComputer = name.substr(0, 2) == R"(\\)";
    // In a UTF-8 process bytes that are no UTF-8 stay too: the system takes any, and a name that it gave must find its file
    // again.
    std::string path = HouseIsUtf8() || IsBeyond1252(name) ? std::string(name) : Utf8From1252(name);
    std::replace(path.begin(), path.end(), '\\', '/');
    if (otherComputer) return std::string(kNowhere) + path;
    return HasDrive(path) ? DrivePath(path) : path;
}

std::string HousePath(std::string_view name) {
    if (HouseIsUtf8()) return std::string(name);
    std::string out;
    for (std::string_view rest = name; !rest.empty();) {
        const char32_t c = TakeUtf8(rest);
        const int byte = c == kInvalid ? -1 : ByteFromUnicode(c);
        if (byte < 0) return std::string(name);
        out += static_cast<char>(byte);
    }
    return out;
}

}  // namespace orvik::detail
