#include "xml/xml_escapes.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include "platform/house_text_internal.h"

namespace orvik::detail {
namespace {
// What a byte needs: nothing, an end, or one of the escapes by its number.
enum : unsigned char { kPlain = 0, kEnd, kAmp, kLess, kGreater, kApos, kQuote, kControl, kHigh, kFirstLetter };

constexpr std::array<unsigned char, 256> TextClasses() {
    std::array<unsigned char, 256> classes{};
    classes[0] = kEnd;
    classes['&'] = kAmp;
    classes['<'] = kLess;
    classes['>'] = kGreater;
    return classes;
}
constexpr std::array<unsigned char, 256> With1252Letters(std::array<unsigned char, 256> classes) {
    for (unsigned i = 0; i < 7; ++i) classes[XmlEntities::kCode[i]] = static_cast<unsigned char>(kFirstLetter + i);
    return classes;
}
// In UTF-8 no reader of XML may stumble: what XML has no way to say, not even by its number, is written as U+FFFD.
constexpr std::array<unsigned char, 256> WithControls(std::array<unsigned char, 256> classes) {
    for (unsigned byte = 1; byte < ' '; ++byte) {
        if (byte != '\t' && byte != '\r' && byte != '\n') classes[byte] = kControl;
    }
    return classes;
}
// In UTF-8 any byte above 127 is looked at together with those that follow.
constexpr std::array<unsigned char, 256> WithHighBytes(std::array<unsigned char, 256> classes) {
    for (unsigned byte = 0x80; byte < 256; ++byte) classes[byte] = kHigh;
    return classes;
}
constexpr std::array<unsigned char, 256> AttributeClasses() {
    std::array<unsigned char, 256> classes{};
    classes[0] = kEnd;
    classes['&'] = kAmp;
    classes['\''] = kApos;
    classes['"'] = kQuote;
    return classes;
}
constexpr auto kTextClass = With1252Letters(TextClasses());
constexpr auto kUtf8TextClass = WithControls(WithHighBytes(TextClasses()));
constexpr auto kAttributeClass = AttributeClasses();
constexpr auto kUtf8AttributeClass = WithControls(WithHighBytes(AttributeClasses()));
constexpr std::string_view kEscape[] = {"", "", "&amp;", "&lt;", "&gt;", "&apos;", "&quot;", "\uFFFD"};

// One character of UTF-8 text from its first byte on. A byte that belongs to none is written as the Windows-1252 character of its
// value: what stands in the file is UTF-8 in any case. The number of bytes taken.
size_t AppendHigh(ShortText& out, std::string_view text, const XmlEntities* entities) {
    std::string_view rest = text;
    const char32_t character = TakeHouse(rest);
    const size_t taken = text.size() - rest.size();
    for (size_t i = 0; entities && i < 7; ++i) {
        if (character != XmlEntities::kCode[i]) continue;
        out << entities->m_text[i].GetView();
        return taken;
    }
    if (character == 0xFFFE || character == 0xFFFF) {
        out << kEscape[kControl];
    } else if (taken > 1) {
        out << text.substr(0, taken);
    } else {
        std::string said;
        AppendUtf8(said, character);
        out << said;
    }
    return taken;
}

void AppendEscaped(ShortText& out, std::string_view text, const std::array<unsigned char, 256>& classes,
                   const XmlEntities* entities) {
    size_t plain = 0;
    for (size_t at = 0; at < text.size();) {
        const unsigned char kind = classes[static_cast<unsigned char>(text[at])];
        if (kind == kPlain) {
            ++at;
            continue;
        }
        out << text.substr(plain, at - plain);
        if (kind == kEnd) return;
        if (kind == kHigh)
            at += AppendHigh(out, text.substr(at), entities);
        else
            out << (kind >= kFirstLetter ? entities->m_text[kind - kFirstLetter].GetView() : kEscape[kind]), ++at;
        plain = at;
    }
    out << text.substr(plain);
}

// Replaces every `from` by the one character `to`, in place; the new length.
size_t ReplaceAll(char* text, size_t length, std::string_view from, char to) {
    const std::string_view all(text, length);
    size_t at = all.find(from);
    if (at == all.npos) return length;
    size_t out = at;
    while (at != all.npos) {
        text[out++] = to;
        const size_t after = at + from.size();
        at = all.find(from, after);
        const size_t kept = (at == all.npos ? length : at) - after;
        std::memmove(text + out, text + after, kept);
        out += kept;
    }
    return out;
}
}  // namespace

XmlEntities::XmlEntities() {
    constexpr char digits[] = "0123456789abcdef";
    for (size_t i = 0; i < 7; ++i) {
        const char text[] = {'&', '#', 'x', digits[kCode[i] / 16], digits[kCode[i] % 16], ';'};
        m_text[i] = std::string_view(text, sizeof text);
    }
}

void AppendEscapedAttribute(ShortText& out, std::string_view text) {
    AppendEscaped(out, text, HouseIsUtf8() ? kUtf8AttributeClass : kAttributeClass, nullptr);
}

void AppendEscapedText(ShortText& out, std::string_view text, const XmlEntities& entities) {
    AppendEscaped(out, text, HouseIsUtf8() ? kUtf8TextClass : kTextClass, &entities);
}

size_t UnescapeAttribute(char* text, size_t length) {
    if (!std::memchr(text, '&', length)) return length;
    length = ReplaceAll(text, length, "&amp;", '&');
    length = ReplaceAll(text, length, "&apos;", '\'');
    return ReplaceAll(text, length, "&quot;", '"');
}

namespace {
// The character that a reference at the front of `text` names, "&#" and digits, or "&#x" and hexadecimal ones, and ";"; `length`
// is how many bytes it takes. kInvalid for anything else, and for numbers that are no character.
char32_t Reference(std::string_view text, size_t& length) {
    constexpr size_t kLongest = 10;  // "&#x10ffff;"
    const bool hexadecimal = text.starts_with("&#x");
    char32_t value = 0;
    size_t at = hexadecimal ? 3 : 2;
    const size_t first = at;
    for (; at < text.size() && at < kLongest && text[at] != ';'; ++at) {
        const char ch = text[at];
        const int digit = ch >= '0' && ch <= '9'                     ? ch - '0'
                          : !hexadecimal                             ? -1
                          : (ch | 0x20) >= 'a' && (ch | 0x20) <= 'f' ? (ch | 0x20) - 'a' + 10
                                                                     : -1;
        if (digit < 0) return kInvalid;
        value = value * (hexadecimal ? 16 : 10) + static_cast<char32_t>(digit);
    }
    length = at + 1;
    const bool good = at > first && at < text.size() && text[at] == ';' && value != 0 && value <= 0x10FFFF &&
                      (value < 0xD800 || value > 0xDFFF);
    return good ? value : kInvalid;
}
}  // namespace

// One pass gives what replacing one escape after another gives: no replaced character can be part of another escape, and "&amp;",
// whose "&" could, comes last.
size_t UnescapeText(char* text, size_t length, const XmlEntities& entities) {
    const char* at = static_cast<const char*>(std::memchr(text, '&', length));
    if (!at) return length;
    const bool utf8 = HouseIsUtf8();
    const char* const end = text + length;
    char* out = text + (at - text);
    while (at != end) {
        if (*at != '&') {
            *out++ = *at++;
            continue;
        }
        const std::string_view rest(at, static_cast<size_t>(end - at));
        std::string_view escape;
        char letter = '&';
        if (size_t taken = 0; utf8 && rest.starts_with("&#")) {
            if (const char32_t character = Reference(rest, taken); character != kInvalid) {
                std::string said;  // shorter than its reference
                AppendUtf8(said, character);
                out = std::copy(said.begin(), said.end(), out);
                at += taken;
                continue;
            }
        } else if (rest.starts_with("&#")) {
            for (size_t i = 0; i < 7; ++i)
                if (rest.starts_with(entities.m_text[i].GetView())) {
                    escape = entities.m_text[i].GetView();
                    letter = static_cast<char>(XmlEntities::kCode[i]);
                }
        } else {
            for (const unsigned char kind : {kAmp, kLess, kGreater})
                if (rest.starts_with(kEscape[kind])) {
                    escape = kEscape[kind];
                    letter = kind == kAmp ? '&' : kind == kLess ? '<' : '>';
                }
        }
        *out++ = letter;
        at += escape.empty() ? 1 : escape.size();
    }
    return static_cast<size_t>(out - text);
}
}  // namespace orvik::detail
