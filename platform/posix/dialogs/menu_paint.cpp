// How a menu's items look.
#include <algorithm>

#include "platform/posix/dialogs/menu_face_internal.h"
#include "platform/posix/drawing/draw.h"
#include "platform/posix/drawing/text_draw.h"

namespace orvik::detail {
namespace {
void Fill(HDC dc, const RECT& area, COLORREF colour) {
    const HBRUSH brush = CreateSolidBrush(colour);
    FillRect(dc, &area, brush);
    DeleteObject(brush);
}
}  // namespace

void MenuFace::Paint(HDC dc, int item, const RECT& place, bool hot) const {
    const MenuItem& shown = (*this)[item];
    const bool grey = (shown.state & (MF_GRAYED | MF_DISABLED)) != 0;
    Fill(dc, place, hot ? m_looks.hot : m_looks.ground);
    if (shown.Is(MF_OWNERDRAW)) return LetOwnerPaint(dc, shown, place, hot);
    if (shown.Is(MF_SEPARATOR)) {
        if (m_bar) return;
        const LONG middle = (place.top + place.bottom) / 2;
        return Fill(dc, {place.left, middle, place.right, middle + m_looks.line}, m_looks.rule);
    }
    const COLORREF ink = hot ? (grey ? m_looks.hotGrey : m_looks.hotText) : grey ? m_looks.grey : m_looks.text;
    const int state = SaveDC(dc);
    SelectObject(dc, (shown.state & MF_DEFAULT) != 0 ? m_looks.bold : m_looks.font);
    SetBkMode(dc, TRANSPARENT);
    SetTextColor(dc, ink);
    const auto [label, keys] = LabelAndKeys(shown);
    RECT text = place;
    text.left += m_bar ? m_looks.barGap : m_looks.mark;
    text.right -= m_bar ? m_looks.barGap : m_looks.arrow;
    constexpr UINT kLine = DT_SINGLELINE | DT_VCENTER | DT_NOCLIP;
    DrawTextA(dc, label.c_str(), static_cast<int>(label.size()), &text, kLine);
    DrawTextA(dc, keys.c_str(), static_cast<int>(keys.size()), &text, kLine | DT_RIGHT | DT_NOPREFIX);
    if (!m_bar) {
        if ((shown.state & MF_CHECKED) != 0) PaintMark(dc, shown, place, ink);
        if (shown.submenu != nullptr) PaintArrow(dc, place, ink);
    }
    RestoreDC(dc, state);
}

void MenuFace::PaintMark(HDC dc, const MenuItem& item, const RECT& place, COLORREF ink) const {
    const LONG x = place.left + m_looks.mark / 2, y = (place.top + place.bottom) / 2;
    const int unit = m_looks.Pixels(1);
    const HBRUSH brush = CreateSolidBrush(ink);
    SelectObject(dc, brush);
    SelectObject(dc, GetStockObject(NULL_PEN));
    if (item.Is(MFT_RADIOCHECK)) {
        const int radius = 3 * unit;
        Ellipse(dc, static_cast<int>(x) - radius, static_cast<int>(y) - radius, static_cast<int>(x) + radius + 2,
                static_cast<int>(y) + radius + 2);
    } else {
        // Two columns of strokes: short downwards, long upwards.
        for (int i = 0; i < 9 * unit; ++i) {
            const LONG down = i < 3 * unit ? i : 6 * unit - i;
            const RECT stroke{x - 4 * unit + i, y + down - unit, x - 4 * unit + i + 1, y + down + 2 * unit};
            FillRect(dc, &stroke, brush);
        }
    }
    SelectObject(dc, GetStockObject(NULL_BRUSH));
    DeleteObject(brush);
}

void MenuFace::PaintArrow(HDC dc, const RECT& place, COLORREF ink) const {
    const LONG x = place.right - m_looks.arrow / 2, y = (place.top + place.bottom) / 2;
    const HBRUSH brush = CreateSolidBrush(ink);
    for (LONG i = 0; i < m_looks.Pixels(4); ++i) {
        const LONG half = m_looks.Pixels(4) - i;
        const RECT stroke{x + i, y - half + 1, x + i + 1, y + half};
        FillRect(dc, &stroke, brush);
    }
    DeleteObject(brush);
}

void MenuFace::LetOwnerPaint(HDC dc, const MenuItem& item, const RECT& place, bool hot) const {
    DRAWITEMSTRUCT asked{};
    asked.CtlType = ODT_MENU;
    asked.itemID = static_cast<UINT>(item.id);
    asked.itemAction = ODA_DRAWENTIRE;
    asked.itemState = (hot ? ODS_SELECTED : 0) | ((item.state & MF_GRAYED) != 0 ? ODS_GRAYED : 0) |
                      ((item.state & MF_DISABLED) != 0 ? ODS_DISABLED : 0) | ((item.state & MF_CHECKED) != 0 ? ODS_CHECKED : 0) |
                      ((item.state & MF_DEFAULT) != 0 ? ODS_DEFAULT : 0);
    asked.hwndItem = reinterpret_cast<HWND>(m_menu);
    asked.hDC = dc;
    asked.rcItem = place;
    asked.itemData = item.data;
    const int state = SaveDC(dc);
    SelectObject(dc, m_looks.font);
    SendMessageA(m_owner, WM_DRAWITEM, 0, reinterpret_cast<LPARAM>(&asked));
    RestoreDC(dc, state);
}
}  // namespace orvik::detail
