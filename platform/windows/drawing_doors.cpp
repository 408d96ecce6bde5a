// Fonts and drawn text.
#include "platform/windows/door_text_internal.h"

#include <cstring>
#include <vector>

using namespace orvik::detail;

namespace {
// Of two records that differ in the kind of their face's name alone, which is the last field.
template <class To, class From>
To CopyFont(const From& font) {
    To copy{};
    copy.lfHeight = font.lfHeight;
    copy.lfWidth = font.lfWidth;
    copy.lfEscapement = font.lfEscapement;
    copy.lfOrientation = font.lfOrientation;
    copy.lfWeight = font.lfWeight;
    copy.lfItalic = font.lfItalic;
    copy.lfUnderline = font.lfUnderline;
    copy.lfStrikeOut = font.lfStrikeOut;
    copy.lfCharSet = font.lfCharSet;
    copy.lfOutPrecision = font.lfOutPrecision;
    copy.lfClipPrecision = font.lfClipPrecision;
    copy.lfQuality = font.lfQuality;
    copy.lfPitchAndFamily = font.lfPitchAndFamily;
    return copy;
}

LOGFONTW WideFont(const LOGFONTA& font) {
    auto wide = CopyFont<LOGFONTW>(font);
    const std::wstring face = WideText({font.lfFaceName, strnlen(font.lfFaceName, LF_FACESIZE)});
    face.copy(wide.lfFaceName, LF_FACESIZE - 1);
    return wide;
}

LOGFONTA NarrowFont(const LOGFONTW& font) {
    auto narrow = CopyFont<LOGFONTA>(font);
    PutCut({font.lfFaceName, wcsnlen(font.lfFaceName, LF_FACESIZE)}, narrow.lfFaceName, LF_FACESIZE);
    return narrow;
}

// How many bytes each UTF-16 unit of a text stands for: those of a character belong to its last unit.
std::vector<size_t> BytesOfUnits(std::string_view text) {
    std::vector<size_t> bytes;
    while (!text.empty()) {
        const size_t before = text.size();
        if (TakeHouse(text) >= 0x10000) bytes.push_back(0);
        bytes.push_back(before - text.size());
    }
    return bytes;
}
}  // namespace

HFONT WINAPI OrvikCreateFontIndirectA(const LOGFONTA* font) {
    if (!HouseIsUtf8() || font == nullptr) return CreateFontIndirectA(font);
    const LOGFONTW wide = WideFont(*font);
    return CreateFontIndirectW(&wide);
}

HFONT WINAPI OrvikCreateFontA(int height, int width, int escapement, int orientation, int weight, DWORD italic, DWORD underline,
                              DWORD strikeOut, DWORD charSet, DWORD outPrecision, DWORD clipPrecision, DWORD quality,
                              DWORD pitchAndFamily, LPCSTR face) {
    return HouseIsUtf8() ? CreateFontW(height, width, escapement, orientation, weight, italic, underline, strikeOut, charSet,
                                       outPrecision, clipPrecision, quality, pitchAndFamily, WideArgument(face))
                         : CreateFontA(height, width, escapement, orientation, weight, italic, underline, strikeOut, charSet,
                                       outPrecision, clipPrecision, quality, pitchAndFamily, face);
}

int WINAPI OrvikGetObjectA(HANDLE object, int size, LPVOID out) {
    if (!HouseIsUtf8() || GetObjectType(object) != OBJ_FONT) return GetObjectA(object, size, out);
    constexpr int kWhole = sizeof(LOGFONTA);
    if (out == nullptr) return kWhole;
    LOGFONTW wide{};
    if (GetObjectW(object, sizeof wide, &wide) == 0 || size < 0) return 0;
    const LOGFONTA narrow = NarrowFont(wide);
    const int taken = size < kWhole ? size : kWhole;
    std::memcpy(out, &narrow, static_cast<size_t>(taken));
    return taken;
}

BOOL WINAPI OrvikSystemParametersInfoA(UINT what, UINT size, PVOID data, UINT flags) {
    if (HouseIsUtf8() && what == SPI_GETICONTITLELOGFONT && data != nullptr) {
        LOGFONTW wide{};
        if (!SystemParametersInfoW(what, sizeof wide, &wide, flags)) return FALSE;
        *static_cast<LOGFONTA*>(data) = NarrowFont(wide);
        return TRUE;
    }
    if (!HouseIsUtf8() || what != SPI_GETNONCLIENTMETRICS || data == nullptr)
        return SystemParametersInfoA(what, size, data, flags);
    // Every number from the narrow function, and the faces' names from the wide one.
    auto& out = *static_cast<NONCLIENTMETRICSA*>(data);
    NONCLIENTMETRICSW wide{};
    wide.cbSize = sizeof wide;
    if (!SystemParametersInfoA(what, size, data, flags) || !SystemParametersInfoW(what, sizeof wide, &wide, flags)) return FALSE;
    out.lfCaptionFont = NarrowFont(wide.lfCaptionFont);
    out.lfSmCaptionFont = NarrowFont(wide.lfSmCaptionFont);
    out.lfMenuFont = NarrowFont(wide.lfMenuFont);
    out.lfStatusFont = NarrowFont(wide.lfStatusFont);
    out.lfMessageFont = NarrowFont(wide.lfMessageFont);
    return TRUE;
}

HDC WINAPI OrvikCreateDCA(LPCSTR driver, LPCSTR device, LPCSTR output, const DEVMODEA* settings) {
    // Settings come from the system's own narrow functions, and name their device as these do.
    if (!HouseIsUtf8() || settings != nullptr) return CreateDCA(driver, device, output, settings);
    return CreateDCW(WideArgument(driver), WideArgument(device), WideArgument(output), nullptr);
}

HDC WINAPI OrvikCreateEnhMetaFileA(HDC reference, LPCSTR name, const RECT* frame, LPCSTR description) {
    // A description is two texts and three zeros.
    if (!HouseIsUtf8() || description != nullptr) return CreateEnhMetaFileA(reference, name, frame, description);
    return CreateEnhMetaFileW(reference, WideArgument(name), frame, nullptr);
}

BOOL WINAPI OrvikTextOutA(HDC dc, int x, int y, LPCSTR text, int length) {
    if (!HouseIsUtf8() || text == nullptr || length < 0) return TextOutA(dc, x, y, text, length);
    const WideArgument wide(text, length);
    return TextOutW(dc, x, y, wide, wide.Length());
}

BOOL WINAPI OrvikExtTextOutA(HDC dc, int x, int y, UINT options, const RECT* box, LPCSTR text, UINT length, const INT* widths) {
    if (!HouseIsUtf8() || text == nullptr || (options & ETO_GLYPH_INDEX) != 0)
        return ExtTextOutA(dc, x, y, options, box, text, length, widths);
    const WideArgument wide(text, static_cast<int>(length));
    std::vector<INT> sums;
    if (widths != nullptr) {
        const int numbers = (options & ETO_PDY) != 0 ? 2 : 1;  // across, and up
        for (size_t bytes : BytesOfUnits({text, length})) {
            INT across = 0, up = 0;
            for (; bytes > 0; --bytes, widths += numbers) across += widths[0], up += numbers == 2 ? widths[1] : 0;
            sums.push_back(across);
            if (numbers == 2) sums.push_back(up);
        }
    }
    return ExtTextOutW(dc, x, y, options, box, wide, static_cast<UINT>(wide.Length()), widths != nullptr ? sums.data() : nullptr);
}

int WINAPI OrvikDrawTextA(HDC dc, LPCSTR text, int length, LPRECT box, UINT format) {
    if (!HouseIsUtf8() || text == nullptr || length < -1) return DrawTextA(dc, text, length, box, format);
    WideArgument wide(text, length);
    if ((format & DT_MODIFYSTRING) == 0) return DrawTextW(dc, wide, wide.Length(), box, format);
    // The caller has room for four more bytes, and so for an ellipsis.
    std::wstring shown = wide.Text() + std::wstring(4, L'\0');
    const int height = DrawTextW(dc, shown.data(), wide.Length(), box, format);
    const size_t room = (length < 0 ? std::strlen(text) : static_cast<size_t>(length)) + 4;
    PutCut(shown.c_str(), const_cast<LPSTR>(text), static_cast<int>(room));
    return height;
}

BOOL WINAPI OrvikGetTextExtentPoint32A(HDC dc, LPCSTR text, int length, LPSIZE size) {
    if (!HouseIsUtf8() || text == nullptr || length < 0) return GetTextExtentPoint32A(dc, text, length, size);
    const WideArgument wide(text, length);
    return GetTextExtentPoint32W(dc, wide, wide.Length(), size);
}

BOOL WINAPI OrvikGetTextExtentExPointA(HDC dc, LPCSTR text, int length, int maximum, LPINT fit, LPINT widths, LPSIZE size) {
    if (!HouseIsUtf8() || text == nullptr || length < 0)
        return GetTextExtentExPointA(dc, text, length, maximum, fit, widths, size);
    const WideArgument wide(text, length);
    std::vector<INT> each(static_cast<size_t>(wide.Length()) + 1);
    INT fitting = wide.Length();
    if (!GetTextExtentExPointW(dc, wide, wide.Length(), maximum, fit != nullptr ? &fitting : nullptr, each.data(), size))
        return FALSE;
    const std::vector<size_t> bytes = BytesOfUnits({text, static_cast<size_t>(length)});
    int at = 0;
    for (size_t unit = 0; unit < static_cast<size_t>(fitting); ++unit) {
        for (size_t left = bytes[unit]; left > 0; --left, ++at) {
            if (widths != nullptr) widths[at] = each[unit];
        }
    }
    if (fit != nullptr) *fit = at;
    return TRUE;
}

BOOL WINAPI OrvikGetCharWidth32A(HDC dc, UINT first, UINT last, LPINT widths) {
    return HouseIsUtf8() ? GetCharWidth32W(dc, first, last, widths) : GetCharWidth32A(dc, first, last, widths);
}

int WINAPI OrvikGetTextFaceA(HDC dc, int size, LPSTR out) {
    if (!HouseIsUtf8()) return GetTextFaceA(dc, size, out);
    const int length = GetTextFaceW(dc, 0, nullptr);
    if (length <= 0) return 0;
    std::wstring face(static_cast<size_t>(length), L'\0');
    GetTextFaceW(dc, length, face.data());
    face.resize(wcslen(face.c_str()));
    return out == nullptr ? static_cast<int>(NarrowLength(face) + 1) : PutCut(face, out, size) + 1;
}
