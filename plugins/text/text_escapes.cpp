#include "plugins/text/text_escapes.h"

#include <charconv>

namespace text {

std::optional<unsigned char> HexByte(std::string_view digits) {
    unsigned char byte = 0;
    if (digits.size() != 2) return std::nullopt;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + 2, byte, 16);
    if (error != std::errc() || end != digits.data() + 2) return std::nullopt;
    return byte;
}

std::optional<std::string> Unescape(std::string_view text) {
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            bytes += text[i];
            continue;
        }
        switch (++i < text.size() ? text[i] : 0) {
            case 'r':
                bytes += '\r';
                break;
            case 'n':
                bytes += '\n';
                break;
            case 't':
                bytes += '\t';
                break;
            case '\\':
                bytes += '\\';
                break;
            case 'x': {
                const auto byte = HexByte(text.substr(i + 1, 2));
                if (!byte) return std::nullopt;
                bytes += static_cast<char>(*byte);
                i += 2;
                break;
            }
            default:
                return std::nullopt;
        }
    }
    return bytes;
}

std::string Escape(std::string_view bytes, std::string_view also) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\r') {
            text += "\\r";
        } else if (c == '\n') {
            text += "\\n";
        } else if (c == '\t') {
            text += "\\t";
        } else if (c == '\\') {
            text += "\\\\";
        } else if (byte < ' ' || (byte >= 0x7F && byte < 0xA0) || also.find(c) != std::string_view::npos) {
            text += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
        } else {
            text += c;
        }
    }
    return text;
}

}  // namespace text
