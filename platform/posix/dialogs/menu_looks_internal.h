// How menus look: every size and colour of theirs. Sizes are pixels at the given dots an inch. A value with two fonts, for one
// thread.
#pragma once

#include <algorithm>
#include <cmath>

#include "platform/posix/drawing/colors.h"
#include "platform/posix/drawing/gdi.h"
#include "platform/posix/window/dpi.h"

namespace orvik::detail {

// How far two colours are apart to the eye: 1 (the same) to 21 (black and white), by their relative luminance.
inline double Contrast(COLORREF first, COLORREF second) {
    const auto luminance = [](COLORREF colour) {
        const auto linear = [](int part) {
            const double value = part / 255.0;
            return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(GetRValue(colour)) + 0.7152 * linear(GetGValue(colour)) + 0.0722 * linear(GetBValue(colour));
    };
    const double one = luminance(first), other = luminance(second);
    return (std::max(one, other) + 0.05) / (std::min(one, other) + 0.05);
}

// The colour, as much darker or lighter as it takes to be read on the ground.
inline COLORREF ReadableOn(COLORREF ground, COLORREF colour) {
    constexpr double kEnough = 4.5;
    const int end = Contrast(ground, RGB(0, 0, 0)) >= Contrast(ground, RGB(255, 255, 255)) ? 0 : 255;
    const COLORREF from = colour;
    for (int step = 1; step <= 16 && Contrast(ground, colour) < kEnough; ++step) {
        const auto mixed = [&](int part) { return part + (end - part) * step / 16; };
        colour = RGB(mixed(GetRValue(from)), mixed(GetGValue(from)), mixed(GetBValue(from)));
    }
    return colour;
}

class MenuLooks {
public:
    explicit MenuLooks(int dotsAnInch) : dpi(dotsAnInch) {
        NONCLIENTMETRICSA metrics{};
        metrics.cbSize = sizeof metrics;
        SystemParametersInfoForDpi(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0, static_cast<UINT>(dpi));
        LOGFONTA description = metrics.lfMenuFont;
        font = CreateFontIndirectA(&description);
        description.lfWeight = FW_BOLD;
        bold = CreateFontIndirectA(&description);
    }
    ~MenuLooks() {
        DeleteObject(font);
        DeleteObject(bold);
    }
    MenuLooks(const MenuLooks&) = delete;
    MenuLooks& operator=(const MenuLooks&) = delete;

    int Pixels(int at96) const { return at96 * dpi / 96; }

    const int dpi;
    const int edge = Pixels(1) + Pixels(2);  // the line around a popup, and the gap inside it
    const int mark = Pixels(26);             // before the text, for check marks
    const int arrow = Pixels(20);            // behind it, for the arrow of a submenu
    const int keyGap = Pixels(28);           // between a text and the name of its keys
    const int rowGap = Pixels(4);            // above and below a text
    const int separator = Pixels(7);
    const int scroll = Pixels(16);  // height of the strips that scroll
    const int barGap = Pixels(8);   // beside a text in a bar
    const int barRow = GetSystemMetricsForDpi(SM_CYMENU, static_cast<UINT>(dpi)) - Pixels(1);
    const int line = Pixels(1);  // below a bar

    const COLORREF ground = GetSysColor(COLOR_MENU), hot = GetSysColor(COLOR_HIGHLIGHT);
    const COLORREF text = ReadableOn(ground, GetSysColor(COLOR_MENUTEXT)), grey = ReadableOn(ground, GetSysColor(COLOR_GRAYTEXT));
    const COLORREF hotText = ReadableOn(hot, GetSysColor(COLOR_HIGHLIGHTTEXT)),
                   hotGrey = ReadableOn(hot, GetSysColor(COLOR_GRAYTEXT));
    const COLORREF rule = GetSysColor(COLOR_BTNSHADOW);

    HFONT font = nullptr, bold = nullptr;
};

}  // namespace orvik::detail
