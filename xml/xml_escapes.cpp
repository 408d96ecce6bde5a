#include "xml/xml_escapes.h"

#include <array>
#include <cstring>

namespace orvik::detail {
namespace {
// What a byte needs: nothing, an end, or one of the escapes by its number.
enum : unsigned char { kPlain = 0, kEnd, kAmp, kLess, kGreater, kApos, kQuote, kFirstLetter };

constexpr std::array<unsigned char, 256> TextClasses() {
    std::array<unsigned char, 256> classes{};
    classes[0] = kEnd;
    classes['&'] = kAmp;
    classes['<'] = kLess;
    classes['>'] = kGreater;
    for (unsigned i = 0; i < 7; ++i) classes[XmlEntities::kCode[i]] = static_cast<unsigned char>(kFirstLetter + i);
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
constexpr auto kTextClass = TextClasses();
constexpr auto kAttributeClass = AttributeClasses();
constexpr std::string_view kEscape[] = {"", "", "&amp;", "&lt;", "&gt;", "&apos;", "&quot;"};

void AppendEscaped(ShortText& out, std::string_view text, const std::array<unsigned char, 256>& classes,
                   const XmlEntities* entities) {
    size_t plain = 0;
    for (size_t at = 0; at < text.size(); ++at) {
        const unsigned char kind = classes[static_cast<unsigned char>(text[at])];
        if (kind == kPlain) continue;
        out << text.substr(plain, at - plain);
        if (kind == kEnd) return;
        out << (kind >= kFirstLetter ? entities->m_text[kind - kFirstLetter].GetView() : kEscape[kind]);
        plain = at + 1;
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

void AppendEscapedAttribute(ShortText& out, std::string_view text) { AppendEscaped(out, text, kAttributeClass, nullptr); }

void AppendEscapedText(ShortText& out, std::string_view text, const XmlEntities& entities) {
    AppendEscaped(out, text, kTextClass, &entities);
}

size_t UnescapeAttribute(char* text, size_t length) {
    if (!std::memchr(text, '&', length)) return length;
    length = ReplaceAll(text, length, "&amp;", '&');
    length = ReplaceAll(text, length, "&apos;", '\'');
    return ReplaceAll(text, length, "&quot;", '"');
}

// One pass gives what replacing one escape after another gives: no replaced character can be part of another escape, and "&amp;",
// whose "&" could, comes last.
size_t UnescapeText(char* text, size_t length, const XmlEntities& entities) {
    const char* at = static_cast<const char*>(std::memchr(text, '&', length));
    if (!at) return length;
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
        if (rest.starts_with("&#")) {
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
