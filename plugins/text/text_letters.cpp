#include "plugins/text/text_letters.h"

#include <algorithm>

#include "platform/house_text.h"
#include "platform/letters.h"

namespace text {
namespace {
bool IsUtf8() { return OrvikTextCodePage() == CP_UTF8; }
}  // namespace

std::string LineText(std::string_view line) {
    if (OrvikTextCodePage() == CP_UTF8) return OrvikUtf8FromText(line);
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(line[i]); };
    std::string text;
    for (size_t i = 0; i < line.size(); ++i) {
        if (byte(i) < 0x80) {
            text += line[i];
            continue;
        }
        // Other bytes above 127 than those of such letters: the line is no UTF-8, or says what Windows-1252 cannot.
        const unsigned char least = byte(i) == 0xC2 ? 0xA0 : 0x80;
        const bool letter =
            (byte(i) == 0xC2 || byte(i) == 0xC3) && i + 1 < line.size() && byte(i + 1) >= least && byte(i + 1) < 0xC0;
        if (!letter) return std::string(line);
        text += static_cast<char>((byte(i) & 3) << 6 | (byte(i + 1) & 0x3F));
        ++i;
    }
    return text;
}

bool LineBegins(std::string_view line, std::string_view text) {
    return line.starts_with(text) || LineText(line).starts_with(LineText(text));
}

bool IsLetterByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (static_cast<unsigned char>(c) >= 0x80 && IsUtf8());
}

bool HasLetter(std::string_view text) { return std::any_of(text.begin(), text.end(), IsLetterByte); }

size_t CharacterAt(std::string_view text, size_t at, char32_t& character) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[at + i]); };
    character = byte(0);
    if (character < 0xC2 || character > 0xF4 || !IsUtf8()) return 1;
    const size_t length = character < 0xE0 ? 2 : character < 0xF0 ? 3 : 4;
    std::string whole;
    if (at + length > text.size() || !OrvikTextFromUtf8(text.substr(at, length), whole)) return 1;
    character &= 0xFFu >> (length + 1);
    for (size_t i = 1; i < length; ++i) character = character << 6 | (byte(i) & 0x3F);
    return length;
}

size_t PlaceOf(std::string_view text, size_t characters) {
    size_t at = 0;
    for (char32_t character = 0; characters > 0 && at < text.size(); --characters) at += CharacterAt(text, at, character);
    return at;
}

char32_t CharacterOf(unsigned char byte) {
    char32_t character = byte;
    if (IsUtf8()) {
        const char one = static_cast<char>(byte);
        const std::string text = OrvikUtf8FromText({&one, 1});
        CharacterAt(text, 0, character);
    }
    return character;
}

std::string TextOf(char32_t character) {
    OrvikTypedText typed;
    if (!IsUtf8() || character < 0x10000) return typed.Take(character);
    typed.Take(0xD800 + ((character - 0x10000) >> 10));
    return typed.Take(0xDC00 + ((character - 0x10000) & 0x3FF));
}

}  // namespace text
