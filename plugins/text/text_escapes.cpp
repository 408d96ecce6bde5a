#include "plugins/text/text_escapes.h"

#include <charconv>

#include "platform/house_text.h"

namespace text {

namespace {
// How long the character beyond ASCII is that begins at `at`; 0 where there is none. The control characters from 0x80 on are
// none.
size_t LetterAt(std::string_view bytes, size_t at) {
    constexpr size_t kLongest = 4;
    if (static_cast<unsigned char>(bytes[at]) < 0x80) return 0;
    if (OrvikTextCodePage() != CP_UTF8) return static_cast<unsigned char>(bytes[at]) >= 0xA0 ? 1 : 0;
    std::string text;
    for (size_t length = 2; length <= kLongest && at + length <= bytes.size(); ++length) {
        const std::string_view character = bytes.substr(at, length);
        if (OrvikTextFromUtf8(character, text)) return character >= "\u00A0" ? length : 0;
    }
    return 0;
}
}  // namespace

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
    for (size_t i = 0; i < bytes.size(); ++i) {
        if (const size_t letter = LetterAt(bytes, i)) {
            text += bytes.substr(i, letter);
            i += letter - 1;
            continue;
        }
        const char c = bytes[i];
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\r') {
            text += "\\r";
        } else if (c == '\n') {
            text += "\\n";
        } else if (c == '\t') {
            text += "\\t";
        } else if (c == '\\') {
            text += "\\\\";
        } else if (byte < ' ' || byte >= 0x7F || also.find(c) != std::string_view::npos) {
            text += {'\\', 'x', kDigits[byte >> 4], kDigits[byte & 15]};
        } else {
            text += c;
        }
    }
    return text;
}

}  // namespace text
