#include "platform/posix/text/text_internal.h"

#include <algorithm>

#include "platform/posix/kernel/errors.h"

namespace orvik::detail {
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

std::string HouseFromUtf16(std::u16string_view text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000)
            c = 0x10000 + ((c - 0xD800) << 10) + (text[++i] - 0xDC00u);
        else if (c >= 0xD800 && c < 0xE000)
            c = 0xFFFD;
        AppendHouse(out, c);
    }
    return out;
}

namespace {
UINT Resolved(UINT codePage) { return codePage == CP_ACP || codePage == CP_OEMCP ? OrvikTextCodePage() : codePage; }

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
    codePage = Resolved(codePage);
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
        (Resolved(codePage) == CP_UTF8 && (defaultChar != nullptr || usedDefault != nullptr))) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    codePage = Resolved(codePage);
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
    if (HouseIsUtf8()) return CompareNoCase(first, second);
    const bool plain = IsBeyond1252(first) || IsBeyond1252(second);
    const auto fold = [plain](char byte) {
        return static_cast<unsigned char>(plain && static_cast<unsigned char>(byte) >= 0x80 ? byte : LowerCase1252(byte));
    };
    while (*first != 0 && fold(*first) == fold(*second)) ++first, ++second;
    return (fold(*first) > fold(*second)) - (fold(*first) < fold(*second));
}
