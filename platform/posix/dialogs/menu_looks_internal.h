// How menus look: every size and colour of theirs. Sizes are pixels at the given dots an inch. A value with two fonts, for one
// thread.
#pragma once

#include "platform/contrast.h"
#include "platform/posix/drawing/colors.h"
#include "platform/posix/drawing/gdi.h"
#include "platform/posix/window/dpi.h"

namespace orvik::detail {

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
    const COLORREF text = orvik::ReadableOn(ground, GetSysColor(COLOR_MENUTEXT)),
                   grey = orvik::ReadableOn(ground, GetSysColor(COLOR_GRAYTEXT));
    const COLORREF hotText = orvik::ReadableOn(hot, GetSysColor(COLOR_HIGHLIGHTTEXT)),
                   hotGrey = orvik::ReadableOn(hot, GetSysColor(COLOR_GRAYTEXT));
    const COLORREF rule = GetSysColor(COLOR_BTNSHADOW);

    HFONT font = nullptr, bold = nullptr;
};

}  // namespace orvik::detail
