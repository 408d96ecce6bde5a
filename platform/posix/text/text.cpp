#include "platform/posix/text/text_internal.h"

#include <algorithm>
#include <optional>

#include "platform/posix/kernel/errors.h"

namespace orvik::detail {
namespace {
// Bytes 0x80 to 0x9F of Windows-1252; the rest of the code page is Latin-1.
constexpr char16_t kHigh[32] = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
                                0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
                                0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
}  // namespace

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

char16_t UnicodeFrom1252(unsigned char byte) { return byte >= 0x80 && byte < 0xA0 ? kHigh[byte - 0x80] : byte; }

int ByteFromUnicode(char32_t character) {
    if (character < 0x80 || (character >= 0xA0 && character < 0x100)) return static_cast<int>(character);
    const auto* found = std::find(std::begin(kHigh), std::end(kHigh), character);
    return found == std::end(kHigh) ? -1 : static_cast<int>(0x80 + (found - kHigh));
}

std::string Utf8From1252(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) AppendUtf8(out, UnicodeFrom1252(static_cast<unsigned char>(c)));
    return out;
}

char LowerCase1252(char byte) {
    const auto ch = static_cast<unsigned char>(byte);
    if ((ch >= 'A' && ch <= 'Z') || (ch >= 0xC0 && ch <= 0xDE && ch != 0xD7)) return static_cast<char>(ch + 0x20);
    if (ch == 0x8A || ch == 0x8C || ch == 0x8E) return static_cast<char>(ch + 0x10);
    return ch == 0x9F ? '\xFF' : byte;
}

bool IsBeyond1252(std::string_view name) {
    bool beyond = false;
    while (!name.empty()) {
        const char32_t c = TakeUtf8(name);
        if (c == kInvalid) return false;
        beyond |= ByteFromUnicode(c) < 0;
    }
    return beyond;
}

namespace {
// Whether the caller asked for something we know; sets the error otherwise.
bool KnownCodePage(UINT codePage) {
    if (codePage == CP_ACP || codePage == CP_OEMCP || codePage == 1252 || codePage == CP_UTF8) return true;
    SetLastError(ERROR_INVALID_PARAMETER);
    return false;
}

template <class Out>
int Deliver(const std::basic_string<Out>& result, Out* out, int size) {
    const int length = static_cast<int>(result.size());
    if (size == 0) return length;
    if (size < length) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::copy(result.begin(), result.end(), out);
    return length;
}
}  // namespace
}  // namespace orvik::detail

using namespace orvik::detail;

int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR text, int bytes, LPWSTR out, int outChars) {
    if (!KnownCodePage(codePage)) return 0;
    if (text == nullptr || bytes == 0 || bytes < -1 || outChars < 0 || (outChars > 0 && out == nullptr)) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    std::string_view rest = bytes < 0 ? std::string_view(text, std::char_traits<char>::length(text) + 1)
                                      : std::string_view(text, static_cast<size_t>(bytes));
    std::u16string result;
    result.reserve(rest.size());
    if (codePage != CP_UTF8) {
        for (const char c : rest) result += UnicodeFrom1252(static_cast<unsigned char>(c));
        return Deliver(result, out, outChars);
    }
    while (!rest.empty()) {
        char32_t c = TakeUtf8(rest);
        if (c == kInvalid) {
            if (flags & MB_ERR_INVALID_CHARS) {
                SetLastError(ERROR_NO_UNICODE_TRANSLATION);
                return 0;
            }
            c = 0xFFFD;
        }
        if (c < 0x10000) {
            result += static_cast<char16_t>(c);
        } else {
            result += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            result += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
        }
    }
    return Deliver(result, out, outChars);
}

int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR text, int chars, LPSTR out, int outBytes, LPCSTR defaultChar,
                        LPBOOL usedDefault) {
    if (!KnownCodePage(codePage)) return 0;
    if (text == nullptr || chars == 0 || chars < -1 || outBytes < 0 || (outBytes > 0 && out == nullptr) ||
        (codePage == CP_UTF8 && (defaultChar != nullptr || usedDefault != nullptr))) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const size_t length = chars < 0 ? std::char_traits<char16_t>::length(text) + 1 : static_cast<size_t>(chars);
    std::string result;
    BOOL used = FALSE;
    for (size_t i = 0; i < length; ++i) {
        char32_t c = text[i];
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < length && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00u);
        } else if (c >= 0xD800 && c < 0xE000) {
            if (codePage == CP_UTF8 && (flags & WC_ERR_INVALID_CHARS)) {
                SetLastError(ERROR_NO_UNICODE_TRANSLATION);
                return 0;
            }
            c = 0xFFFD;
        }
        if (codePage == CP_UTF8) {
            AppendUtf8(result, c);
            continue;
        }
        const int byte = ByteFromUnicode(c);
        if (byte < 0) used = TRUE;
        result += byte >= 0 ? static_cast<char>(byte) : defaultChar != nullptr ? *defaultChar : '?';
    }
    if (usedDefault != nullptr) *usedDefault = used;
    return Deliver(result, out, outBytes);
}

int lstrcmpiA(LPCSTR first, LPCSTR second) {
    if (first == nullptr || second == nullptr) return (first != nullptr) - (second != nullptr);
    const bool plain = IsBeyond1252(first) || IsBeyond1252(second);
    const auto fold = [plain](char byte) {
        return static_cast<unsigned char>(plain && static_cast<unsigned char>(byte) >= 0x80 ? byte : LowerCase1252(byte));
    };
    while (*first != 0 && fold(*first) == fold(*second)) ++first, ++second;
    return (fold(*first) > fold(*second)) - (fold(*first) < fold(*second));
}
