// Text in general, and regional settings.
#include "platform/windows/door_text_internal.h"

#include <cstring>

using namespace orvik::detail;

LPSTR WINAPI OrvikCharNextA(LPCSTR text) {
    if (!HouseIsUtf8()) return CharNextA(text);
    std::string_view rest(text, strnlen(text, 4));
    if (!rest.empty()) TakeHouse(rest);
    return const_cast<LPSTR>(rest.data());
}

LPSTR WINAPI OrvikCharPrevA(LPCSTR start, LPCSTR text) {
    if (!HouseIsUtf8()) return CharPrevA(start, text);
    // A character has four bytes at most, and its first is none of another's later ones.
    for (size_t length = 4; length > 1; --length) {
        if (static_cast<size_t>(text - start) < length) continue;
        std::string_view rest(text - length, length);
        TakeHouse(rest);
        if (rest.empty()) return const_cast<LPSTR>(text - length);
    }
    return const_cast<LPSTR>(text > start ? text - 1 : start);
}

int WINAPI OrvikCompareStringA(LCID locale, DWORD flags, LPCSTR first, int firstLength, LPCSTR second, int secondLength) {
    if (!HouseIsUtf8()) return CompareStringA(locale, flags, first, firstLength, second, secondLength);
    const WideArgument one(first, firstLength), other(second, secondLength);
    return CompareStringW(locale, flags, one, first != nullptr ? one.Length() : firstLength, other,
                          second != nullptr ? other.Length() : secondLength);
}

int WINAPI OrvikMultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR text, int length, LPWSTR out, int size) {
    const bool house = HouseIsUtf8() && codePage == CP_ACP;
    return MultiByteToWideChar(house ? CP_UTF8 : codePage, house ? flags & MB_ERR_INVALID_CHARS : flags, text, length, out, size);
}

int WINAPI OrvikWideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR text, int length, LPSTR out, int size, LPCSTR replacement,
                                    LPBOOL replaced) {
    if (!HouseIsUtf8() || codePage != CP_ACP)
        return WideCharToMultiByte(codePage, flags, text, length, out, size, replacement, replaced);
    if (replaced != nullptr) *replaced = FALSE;
    return WideCharToMultiByte(CP_UTF8, flags & WC_ERR_INVALID_CHARS, text, length, out, size, nullptr, nullptr);
}

void WINAPI OrvikOutputDebugStringA(LPCSTR text) {
    if (HouseIsUtf8())
        OutputDebugStringW(WideArgument(text));
    else
        OutputDebugStringA(text);
}

int WINAPI OrviklstrcmpiA(LPCSTR first, LPCSTR second) {
    return HouseIsUtf8() ? lstrcmpiW(WideArgument(first), WideArgument(second)) : lstrcmpiA(first, second);
}

int WINAPI OrvikGetLocaleInfoA(LCID locale, LCTYPE item, LPSTR out, int size) {
    // A number is no text and has its own size.
    if (!HouseIsUtf8() || (item & LOCALE_RETURN_NUMBER) != 0) return GetLocaleInfoA(locale, item, out, size);
    const int length = GetLocaleInfoW(locale, item, nullptr, 0);
    if (length <= 0) return 0;
    std::wstring text(static_cast<size_t>(length), L'\0');
    if (GetLocaleInfoW(locale, item, text.data(), length) == 0) return 0;
    text.pop_back();
    return PutWhole(text, out, size);
}

BOOL WINAPI OrvikSetLocaleInfoA(LCID locale, LCTYPE item, LPCSTR text) {
    return HouseIsUtf8() ? SetLocaleInfoW(locale, item, WideArgument(text)) : SetLocaleInfoA(locale, item, text);
}

namespace {
using FormatClock = int(WINAPI*)(LCID, DWORD, const SYSTEMTIME*, LPCWSTR, LPWSTR, int);
int Formatted(FormatClock format, LCID locale, DWORD flags, const SYSTEMTIME* time, LPCSTR picture, LPSTR out, int size) {
    const WideArgument wide(picture);
    const int length = format(locale, flags, time, wide, nullptr, 0);
    if (length <= 0) return 0;
    std::wstring text(static_cast<size_t>(length), L'\0');
    if (format(locale, flags, time, wide, text.data(), length) == 0) return 0;
    text.pop_back();
    return PutWhole(text, out, size);
}
}  // namespace

int WINAPI OrvikGetTimeFormatA(LCID locale, DWORD flags, const SYSTEMTIME* time, LPCSTR picture, LPSTR out, int size) {
    return HouseIsUtf8() ? Formatted(GetTimeFormatW, locale, flags, time, picture, out, size)
                         : GetTimeFormatA(locale, flags, time, picture, out, size);
}

int WINAPI OrvikGetDateFormatA(LCID locale, DWORD flags, const SYSTEMTIME* date, LPCSTR picture, LPSTR out, int size) {
    return HouseIsUtf8() ? Formatted(GetDateFormatW, locale, flags, date, picture, out, size)
                         : GetDateFormatA(locale, flags, date, picture, out, size);
}
