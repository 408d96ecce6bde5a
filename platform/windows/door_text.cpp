#include "platform/windows/door_text_internal.h"

#include <algorithm>
#include <cstring>

namespace orvik::detail {
namespace {
constexpr char32_t kReplacement = 0xFFFD;
bool IsHigh(wchar_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLow(wchar_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

char32_t TakeWide(std::wstring_view& text) {
    const wchar_t first = text.front();
    if (IsHigh(first) && text.size() > 1 && IsLow(text[1])) {
        const char32_t character = 0x10000 + ((first - 0xD800u) << 10) + (text[1] - 0xDC00u);
        text.remove_prefix(2);
        return character;
    }
    text.remove_prefix(1);
    return IsHigh(first) || IsLow(first) ? kReplacement : first;
}
size_t BytesOf(char32_t character) { return character < 0x80 ? 1 : character < 0x800 ? 2 : character < 0x10000 ? 3 : 4; }
}  // namespace

std::wstring WideText(std::string_view text) {
    const size_t plain = AsciiPrefix(text);
    std::wstring out(text.begin(), text.begin() + static_cast<ptrdiff_t>(plain));
    text.remove_prefix(plain);
    while (!text.empty()) {
        const char32_t character = TakeHouse(text);
        if (character < 0x10000) {
            out += static_cast<wchar_t>(character);
        } else {
            out += static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10));
            out += static_cast<wchar_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
        }
    }
    return out;
}

std::string NarrowText(std::wstring_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) AppendHouse(out, TakeWide(text));
    return out;
}

size_t NarrowLength(std::wstring_view text) {
    size_t length = 0;
    while (!text.empty()) length += BytesOf(TakeWide(text));
    return length;
}

std::string_view CutText(std::string_view text, size_t size) {
    if (text.size() <= size) return text;
    std::string_view rest = text;
    size_t end = 0;
    while (end <= size) {
        TakeHouse(rest);
        const size_t next = text.size() - rest.size();
        if (next > size) break;
        end = next;
    }
    return text.substr(0, end);
}

std::wstring_view CutText(std::wstring_view text, size_t size) {
    std::wstring_view rest = text;
    size_t bytes = 0;
    while (!rest.empty()) {
        std::wstring_view after = rest;
        bytes += BytesOf(TakeWide(after));
        if (bytes > size) break;
        rest = after;
    }
    return text.substr(0, text.size() - rest.size());
}

int PutCut(std::wstring_view text, char* out, int size) {
    if (size <= 0 || out == nullptr) return 0;
    const std::string narrow = NarrowText(CutText(text, static_cast<size_t>(size) - 1));
    std::memcpy(out, narrow.c_str(), narrow.size() + 1);
    return static_cast<int>(narrow.size());
}

DWORD PutPath(std::wstring_view text, char* out, DWORD size) {
    if (text.empty()) return 0;
    const std::string narrow = NarrowText(text);
    if (out == nullptr || narrow.size() >= size) return static_cast<DWORD>(narrow.size() + 1);
    std::memcpy(out, narrow.c_str(), narrow.size() + 1);
    return static_cast<DWORD>(narrow.size());
}

int PutWhole(std::wstring_view text, char* out, int size) {
    const std::string narrow = NarrowText(text);
    const int needed = static_cast<int>(narrow.size() + 1);
    if (size == 0) return needed;
    if (out == nullptr || size < needed) {
        SetLastError(ERROR_INSUFFICIENT_BUFFER);
        return 0;
    }
    std::memcpy(out, narrow.c_str(), narrow.size() + 1);
    return needed;
}
}  // namespace orvik::detail
