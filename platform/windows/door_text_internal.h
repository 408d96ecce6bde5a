// What the doors share: text on its way to and from the functions ending in W. Included first by every file of doors, in place of
// platform/win32.h, so that the system's names mean the system there. Any thread; no state.
#pragma once

#define ORVIK_BEHIND_DOORS
#include "platform/house_text_internal.h"
#include "platform/win32.h"

#include <string>
#include <string_view>

namespace orvik::detail {
// Bytes that are no UTF-8 count as Windows-1252. Halves of pairs become U+FFFD on the way back.
std::wstring WideText(std::string_view text);
std::string NarrowText(std::wstring_view text);
// How many bytes NarrowText has.
size_t NarrowLength(std::wstring_view text);
// The longest beginning that has `size` bytes at most and ends where a character ends.
std::string_view CutText(std::string_view text, size_t size);
std::wstring_view CutText(std::wstring_view text, size_t size);

// A text argument: null and numbers in place of a name stay what they are.
class WideArgument {
public:
    explicit WideArgument(LPCSTR text) : m_given(text), m_text(IsText() ? WideText(text) : std::wstring()) {}
    // Of a length; -1 for a text that ends with 0.
    WideArgument(LPCSTR text, int length) : m_given(text) {
        if (IsText()) m_text = length < 0 ? WideText(text) : WideText({text, static_cast<size_t>(length)});
    }
    operator LPCWSTR() const { return IsText() ? m_text.c_str() : reinterpret_cast<LPCWSTR>(m_given); }
    LPWSTR Edit() { return IsText() ? m_text.data() : nullptr; }
    int Length() const { return static_cast<int>(m_text.size()); }
    const std::wstring& Text() const { return m_text; }
    LPARAM Parameter() const { return reinterpret_cast<LPARAM>(static_cast<LPCWSTR>(*this)); }

private:
    bool IsText() const { return !IS_INTRESOURCE(m_given); }
    LPCSTR m_given;
    std::wstring m_text;
};

// As much as `size` bytes take, with the final 0: the bytes before that. 0 for a size of 0.
int PutCut(std::wstring_view text, char* out, int size);
// The whole text and its length, or the size it needs with the final 0, as paths are given.
DWORD PutPath(std::wstring_view text, char* out, DWORD size);
// The whole text and its size with the final 0, that size alone for a `size` of 0, or 0 and error 122, as settings are given.
int PutWhole(std::wstring_view text, char* out, int size);

// What `get(buffer, size)` says in the manner of paths; empty where it fails.
template <class Get>
std::wstring WholePath(Get get) {
    std::wstring text(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = get(text.data(), static_cast<DWORD>(text.size()));
        const bool fits = length < text.size();
        text.resize(length);
        if (fits) return text;
    }
}
}  // namespace orvik::detail
