#include "platform/house_text_internal.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>

namespace orvik::detail {
namespace {
enum class Choice : unsigned char { None, Utf8, Fixed1252, FixedUtf8 };
constinit std::atomic<Choice> g_choice{Choice::None};

// Bytes 0x80 to 0x9F of Windows-1252; the rest of the code page is Latin-1.
constexpr char16_t kHigh[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
                                0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
                                0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

// A text whose every character goes through `convert`, the ASCII in front of the first other one in one piece.
template <class Convert>
std::string Converted(std::string_view text, Convert convert) {
    const size_t plain = AsciiPrefix(text);
    std::string out(text.substr(0, plain));
    text.remove_prefix(plain);
    out.reserve(plain + text.size());
    while (!text.empty()) convert(out, text);
    return out;
}
char32_t Take1252(std::string_view& text) {
    const char32_t character = UnicodeFrom1252(static_cast<unsigned char>(text.front()));
    text.remove_prefix(1);
    return character;
}
char32_t TakeUtf8Or1252(std::string_view& text) {
    const char first = text.front();
    const char32_t character = TakeUtf8(text);
    return character != kInvalid ? character : UnicodeFrom1252(static_cast<unsigned char>(first));
}
}  // namespace

bool HouseIsUtf8() {
    const Choice choice = g_choice.load(std::memory_order_relaxed);
    return choice == Choice::Utf8 || choice == Choice::FixedUtf8;
}

void FixHouseText() { g_choice = HouseIsUtf8() ? Choice::FixedUtf8 : Choice::Fixed1252; }

void AppendUtf8(std::string& out, char32_t c) {
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (c & 0x3F));
    }
}

char32_t TakeUtf8(std::string_view& text) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned first = byte(0);
    const size_t length = first < 0x80                    ? 1
                          : first >= 0xC2 && first < 0xE0 ? 2
                          : first >= 0xE0 && first < 0xF0 ? 3
                          : first >= 0xF0 && first < 0xF5 ? 4
                                                          : 0;
    char32_t c = length < 2 ? first : first & (0x7Fu >> length);
    bool good = length != 0 && text.size() >= length;
    for (size_t i = 1; good && i < length; ++i) {
        good = (byte(i) & 0xC0) == 0x80;
        c = (c << 6) | (byte(i) & 0x3F);
    }
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    good = good && c >= kSmallest[length] && c <= 0x10FFFF && (c < 0xD800 || c > 0xDFFF);
    text.remove_prefix(good ? length : 1);
    return good ? c : kInvalid;
}

size_t AsciiPrefix(std::string_view text) {
    size_t at = 0;
    for (uint64_t eight; at + sizeof eight <= text.size(); at += sizeof eight) {
        std::memcpy(&eight, text.data() + at, sizeof eight);
        if ((eight & 0x8080808080808080u) != 0) break;
    }
    while (at < text.size() && static_cast<unsigned char>(text[at]) < 0x80) ++at;
    return at;
}

bool IsUtf8(std::string_view text) {
    for (;;) {
        text.remove_prefix(AsciiPrefix(text));
        if (text.empty()) return true;
        if (TakeUtf8(text) == kInvalid) return false;
    }
}

char16_t UnicodeFrom1252(unsigned char byte) { return byte >= 0x80 && byte < 0xA0 ? kHigh[byte - 0x80] : byte; }

int ByteFromUnicode(char32_t character) {
    if (character < 0x80 || (character >= 0xA0 && character < 0x100)) return static_cast<int>(character);
    const auto* found = std::find(std::begin(kHigh), std::end(kHigh), character);
    return found == std::end(kHigh) ? -1 : static_cast<int>(0x80 + (found - kHigh));
}

std::string Utf8From1252(std::string_view text) {
    return Converted(text, [](std::string& out, std::string_view& rest) { AppendUtf8(out, Take1252(rest)); });
}

char32_t TakeHouse(std::string_view& text) { return HouseIsUtf8() ? TakeUtf8Or1252(text) : Take1252(text); }

bool AppendHouse(std::string& out, char32_t character) {
    if (HouseIsUtf8()) {
        AppendUtf8(out, character);
        return true;
    }
    const int byte = ByteFromUnicode(character);
    out += byte < 0 ? '?' : static_cast<char>(byte);
    return byte >= 0;
}

std::string Utf8FromHouse(std::string_view text) {
    return Converted(text, [](std::string& out, std::string_view& rest) { AppendUtf8(out, TakeHouse(rest)); });
}

std::string HouseFrom1252(std::string_view text) { return HouseIsUtf8() ? Utf8From1252(text) : std::string(text); }

std::string HouseFromUtf8(std::string_view text, bool* lacking) {
    return Converted(text, [lacking](std::string& out, std::string_view& rest) {
        if (!AppendHouse(out, TakeUtf8Or1252(rest)) && lacking != nullptr) *lacking = true;
    });
}

std::string HouseFromEither(std::string_view text) { return IsUtf8(text) ? HouseFromUtf8(text) : HouseFrom1252(text); }

int CompareNoCase(std::string_view first, std::string_view second) {
    while (!first.empty() && !second.empty()) {
        const char32_t a = LowerCase(TakeHouse(first)), b = LowerCase(TakeHouse(second));
        if (a != b) return a < b ? -1 : 1;
    }
    return static_cast<int>(!first.empty()) - static_cast<int>(!second.empty());
}

bool BeginsNoCase(std::string_view text, std::string_view beginning) {
    while (!text.empty() && !beginning.empty())
        if (LowerCase(TakeHouse(text)) != LowerCase(TakeHouse(beginning))) return false;
    return beginning.empty();
}
}  // namespace orvik::detail

using namespace orvik::detail;

BOOL OrvikChooseUtf8() {
    Choice none = Choice::None;
    return g_choice.compare_exchange_strong(none, Choice::Utf8) || none == Choice::Utf8;
}

UINT OrvikTextCodePage() { return HouseIsUtf8() ? CP_UTF8 : 1252; }

std::string OrvikUtf8FromText(std::string_view text) {
    if (!HouseIsUtf8() && IsUtf8(text)) {
        bool lacking = false;
        HouseFromUtf8(text, &lacking);
        if (lacking) return std::string(text);
    }
    return Utf8FromHouse(text);
}

bool OrvikTextFromUtf8(std::string_view utf8, std::string& text) {
    if (!IsUtf8(utf8)) return false;
    bool lacking = false;
    std::string house = HouseFromUtf8(utf8, &lacking);
    if (!lacking) text = std::move(house);
    return !lacking;
}
