// Dialog units, and what a dialog does when its window comes to a screen of other dots an inch.
#include <algorithm>

#include "platform/dpi.h"
#include "platform/posix/dialogs/dialog_internal.h"
#include "platform/posix/drawing/desktop_looks_internal.h"
#include "platform/posix/drawing/text_draw.h"

namespace orvik::detail {

SIZE UnitsOf(HFONT font) {
    const MeasuringDc dc(nullptr, font);
    static constexpr char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
    SIZE size{};
    TEXTMETRICA metrics{};
    if (!GetTextExtentPoint32A(dc, kLetters, 52, &size) || !GetTextMetricsA(dc, &metrics)) return {8, 16};
    return {std::max<LONG>(1, (size.cx / 26 + 1) / 2), std::max<LONG>(1, metrics.tmHeight)};
}

HFONT MakeFont(const DialogFont& from, UINT dpi) {
    LOGFONTA font{};
    // A dialog in the desktop's letters has them as large as the desktop wants them beside its usual ones.
    const int usual = DesktopLooks().fontPixels;
    const int pixels = MulDiv(from.points, static_cast<int>(dpi), 72);
    font.lfHeight = -(IsDesktopFace(from.face) ? MulDiv(pixels, TheDesktopLooks().fontPixels, usual) : pixels);
    font.lfWeight = from.weight != 0 ? from.weight : FW_NORMAL;
    font.lfItalic = from.italic;
    font.lfCharSet = DEFAULT_CHARSET;
    from.face.copy(font.lfFaceName, LF_FACESIZE - 1);
    return CreateFontIndirectA(&font);
}

RECT InPixels(const RECT& units, SIZE base) {
    return {MulDiv(units.left, base.cx, 4), MulDiv(units.top, base.cy, 8), MulDiv(units.right, base.cx, 4),
            MulDiv(units.bottom, base.cy, 8)};
}

RECT PlaceIn(HWND parent, HWND child) {
    RECT place{};
    GetWindowRect(child, &place);
    POINT corner{};
    ClientToScreen(parent, &corner);
    OffsetRect(&place, -corner.x, -corner.y);
    return place;
}

namespace {
RECT Grown(const RECT& place, SIZE now, SIZE before) {
    return {MulDiv(place.left, now.cx, before.cx), MulDiv(place.top, now.cy, before.cy), MulDiv(place.right, now.cx, before.cx),
            MulDiv(place.bottom, now.cy, before.cy)};
}
}  // namespace

// As large as at its making in the new letters, if nobody has sized it since.
bool Dialog::SuggestSize(UINT dpi, SIZE& wanted) const {
    if (!font) return false;
    const HFONT probe = MakeFont(*font, dpi);
    const SIZE now = UnitsOf(probe);
    DeleteObject(probe);
    const RECT client = Client();
    const bool asMade = client.right == made.cx && client.bottom == made.cy;
    const RECT place = asMade ? InPixels({0, 0, size.cx, size.cy}, now) : Grown(client, now, units);
    wanted = {place.right, place.bottom};
    return true;
}

void Dialog::Rescale() {
    if (!font) return;
    const HFONT before = ownFont;
    const SIZE unitsBefore = units;
    SIZE wanted{};
    if (SuggestSize(OrvikDpiOf(m_window), wanted)) made = wanted;
    ownFont = MakeFont(*font, OrvikDpiOf(m_window));
    units = UnitsOf(ownFont);
    const auto change = [&](HWND window) {
        if (reinterpret_cast<HFONT>(SendMessageA(window, WM_GETFONT, 0, 0)) == before)
            SendMessageA(window, WM_SETFONT, reinterpret_cast<WPARAM>(ownFont), FALSE);
    };
    change(m_window);
    std::vector<HWND> controls;
    for (HWND each = GetWindow(m_window, GW_CHILD); each != nullptr; each = GetWindow(each, GW_HWNDNEXT))
        controls.push_back(each);
    for (const HWND each : controls) {
        // Where it is must be known before the font, which sizes some by itself.
        const RECT now = PlaceIn(m_window, each);
        const auto kept = std::find_if(m_placed.begin(), m_placed.end(), [&](const Placed& one) { return one.window == each; });
        const bool asMade = kept != m_placed.end() && EqualRect(&kept->pixels, &now);
        const RECT place = asMade ? InPixels(kept->units, units) : Grown(now, units, unitsBefore);
        change(each);
        SetWindowPos(each, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                     SWP_NOZORDER | SWP_NOACTIVATE);
        if (asMade) kept->pixels = PlaceIn(m_window, each);
    }
    DeleteObject(before);
}

}  // namespace orvik::detail
