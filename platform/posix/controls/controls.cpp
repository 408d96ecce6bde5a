// The looks of edges and buttons in the classic style.
#include <algorithm>

#include "platform/posix/drawing/dc_internal.h"
#include "platform/posix/kernel/handle_table_internal.h"

using namespace orvik::detail;

namespace {

void FillPart(HDC dc, const RECT& rect, int color) { FillRect(dc, &rect, GetSysColorBrush(color)); }

// One ring of an edge: the sides asked for, left and top in one colour, right and bottom in the other.
void DrawRing(HDC dc, RECT& rect, UINT sides, int upper, int lower) {
    if ((sides & BF_TOP) != 0) FillPart(dc, {rect.left, rect.top, rect.right, rect.top + 1}, upper);
    if ((sides & BF_LEFT) != 0) FillPart(dc, {rect.left, rect.top, rect.left + 1, rect.bottom}, upper);
    if ((sides & BF_BOTTOM) != 0) FillPart(dc, {rect.left, rect.bottom - 1, rect.right, rect.bottom}, lower);
    if ((sides & BF_RIGHT) != 0) FillPart(dc, {rect.right - 1, rect.top, rect.right, rect.bottom}, lower);
    if ((sides & BF_TOP) != 0) ++rect.top;
    if ((sides & BF_LEFT) != 0) ++rect.left;
    if ((sides & BF_BOTTOM) != 0) --rect.bottom;
    if ((sides & BF_RIGHT) != 0) --rect.right;
}

void DrawCheckMark(HDC dc, const RECT& box, int color) {
    // Seven columns of three pixels, two down and four up, in a box of nine; larger ones have it larger by whole pixels.
    const int n = std::max(1, (box.right - box.left) / 9);
    const int left = (box.left + box.right) / 2 - 4 * n, top = (box.top + box.bottom) / 2 - n;
    constexpr int kRows[] = {0, 1, 2, 1, 0, -1, -2};
    for (int i = 0; i < 7; ++i)
        FillPart(dc, {left + i * n, top + (kRows[i] - 1) * n, left + (i + 1) * n, top + (kRows[i] + 2) * n}, color);
}

}  // namespace

BOOL DrawEdge(HDC dc, LPRECT rect, UINT edge, UINT flags) {
    if (FindDc(dc) == nullptr || rect == nullptr) return FALSE;
    RECT inside = *rect;
    const bool flat = (flags & (BF_FLAT | BF_MONO)) != 0, soft = (flags & BF_SOFT) != 0;
    const int mono = (flags & BF_MONO) != 0 ? COLOR_WINDOWFRAME : COLOR_BTNSHADOW;
    if ((edge & BDR_RAISEDOUTER) != 0)
        flat ? DrawRing(dc, inside, flags, mono, mono)
             : DrawRing(dc, inside, flags, soft ? COLOR_BTNHIGHLIGHT : COLOR_3DLIGHT, COLOR_3DDKSHADOW);
    else if ((edge & BDR_SUNKENOUTER) != 0)
        flat ? DrawRing(dc, inside, flags, mono, mono)
             : DrawRing(dc, inside, flags, soft ? COLOR_3DDKSHADOW : COLOR_BTNSHADOW, COLOR_BTNHIGHLIGHT);
    const int ground = (flags & BF_MONO) != 0 ? COLOR_WINDOW : COLOR_BTNFACE;
    if ((edge & BDR_RAISEDINNER) != 0)
        flat ? DrawRing(dc, inside, flags, ground, ground)
             : DrawRing(dc, inside, flags, soft ? COLOR_3DLIGHT : COLOR_BTNHIGHLIGHT, COLOR_BTNSHADOW);
    else if ((edge & BDR_SUNKENINNER) != 0)
        flat ? DrawRing(dc, inside, flags, ground, ground)
             : DrawRing(dc, inside, flags, soft ? COLOR_BTNSHADOW : COLOR_3DDKSHADOW, COLOR_3DLIGHT);
    if ((flags & BF_MIDDLE) != 0) FillPart(dc, inside, ground);
    if ((flags & BF_ADJUST) != 0) *rect = inside;
    return TRUE;
}

BOOL DrawFrameControl(HDC dc, LPRECT rect, UINT type, UINT state) {
    if (FindDc(dc) == nullptr || rect == nullptr) return FALSE;
    if (type != DFC_BUTTON) return Finish(ERROR_INVALID_PARAMETER);
    const bool pushed = (state & DFCS_PUSHED) != 0, checked = (state & DFCS_CHECKED) != 0;
    const UINT flat = (state & DFCS_MONO) != 0 ? BF_MONO : (state & DFCS_FLAT) != 0 ? BF_FLAT : 0;
    const int mark = (state & DFCS_INACTIVE) != 0 ? COLOR_BTNSHADOW : COLOR_WINDOWTEXT;
    const int ground = (state & DFCS_INACTIVE) != 0 || pushed ? COLOR_BTNFACE : COLOR_WINDOW;
    switch (state & (DFCS_BUTTONRADIO | DFCS_BUTTON3STATE | DFCS_BUTTONPUSH)) {
        case DFCS_BUTTONPUSH: {
            RECT inside = *rect;
            DrawEdge(dc, &inside, pushed || checked ? EDGE_SUNKEN : EDGE_RAISED,
                     BF_RECT | BF_MIDDLE | BF_SOFT | BF_ADJUST | flat);
            if ((state & DFCS_ADJUSTRECT) != 0) *rect = inside;
            return TRUE;
        }
        case DFCS_BUTTONCHECK:
        case DFCS_BUTTON3STATE: {
            const int side = std::min(rect->right - rect->left, rect->bottom - rect->top);
            RECT box = {(rect->left + rect->right - side) / 2, (rect->top + rect->bottom - side) / 2, 0, 0};
            box.right = box.left + side, box.bottom = box.top + side;
            DrawEdge(dc, &box, EDGE_SUNKEN, BF_RECT | BF_ADJUST | flat);
            const bool third = (state & DFCS_BUTTON3STATE) != 0 && checked;
            FillPart(dc, box, third ? COLOR_BTNFACE : ground);
            if (checked) DrawCheckMark(dc, box, third ? COLOR_BTNSHADOW : mark);
            return TRUE;
        }
        case DFCS_BUTTONRADIO: {
            const int side = std::min(rect->right - rect->left, rect->bottom - rect->top);
            const int left = (rect->left + rect->right - side) / 2, top = (rect->top + rect->bottom - side) / 2;
            const int saved = SaveDC(dc);
            SetROP2(dc, R2_COPYPEN);
            SelectObject(dc, GetStockObject(DC_PEN));
            SelectObject(dc, GetSysColorBrush(ground));
            SetDCPenColor(dc, GetSysColor(flat != 0 ? COLOR_WINDOWFRAME : COLOR_BTNSHADOW));
            Ellipse(dc, left, top, left + side, top + side);
            if (checked) {
                SelectObject(dc, GetStockObject(NULL_PEN));
                SelectObject(dc, GetSysColorBrush(mark));
                const int inset = std::max(2, side / 3);
                Ellipse(dc, left + inset, top + inset, left + side - inset, top + side - inset);
            }
            RestoreDC(dc, saved);
            return TRUE;
        }
        default:
            return Finish(ERROR_INVALID_PARAMETER);
    }
}
