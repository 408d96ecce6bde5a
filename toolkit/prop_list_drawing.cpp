// How the grid looks. Only what is to be painted anew is drawn.
#include <algorithm>

#include "afx/message_map.h"
#include "toolkit/global_data.h"
#include "toolkit/prop_list_internal.h"

namespace {
constexpr UINT kLine = DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS;

// Between two colours, for lines that are to be seen and not looked at.
COLORREF Between(COLORREF a, COLORREF b) {
    return RGB((GetRValue(a) + GetRValue(b)) / 2, (GetGValue(a) + GetGValue(b)) / 2, (GetBValue(a) + GetBValue(b)) / 2);
}

void DrawSign(CDC& dc, const CRect& box, bool expanded, COLORREF ink) {
    dc.Draw3dRect(box, ink, ink);
    const CPoint middle = box.CenterPoint();
    const int reach = box.Width() / 2 - 2;
    dc.FillSolidRect(middle.x - reach, middle.y, 2 * reach + 1, 1, ink);
    if (!expanded) dc.FillSolidRect(middle.x, middle.y - reach, 1, 2 * reach + 1, ink);
}

void DrawArrow(CDC& dc, const CRect& box) {
    dc.FillSolidRect(box, globalData.clrBtnFace);
    dc.Draw3dRect(box, globalData.clrBtnHilite, globalData.clrBtnShadow);
    const int half = std::max(2, box.Width() / 4);
    const CPoint middle = box.CenterPoint();
    for (int i = 0; i < half; ++i) {
        const int width = 2 * (half - i) - 1;
        dc.FillSolidRect(middle.x - width / 2, middle.y - half / 2 + i, width, 1, globalData.clrBtnText);
    }
}
}  // namespace

BOOL CBCGPPropList::OnEraseBkgnd(CDC*) { return TRUE; }

void CBCGPPropList::OnPaint() {
    Settle();
    CPaintDC dc(this);
    const CRect part = dc.m_ps.rcPaint;
    if (part.IsRectEmpty()) return;
    // Drawn aside first, so that nothing flickers.
    CDC aside;
    CBitmap bitmap;
    if (!aside.CreateCompatibleDC(&dc) || !bitmap.CreateCompatibleBitmap(&dc, part.Width(), part.Height())) {
        Draw(dc, part);
        return;
    }
    CBitmap* const before = aside.SelectObject(&bitmap);
    aside.SetViewportOrg(-part.left, -part.top);
    Draw(aside, part);
    dc.BitBlt(part.left, part.top, part.Width(), part.Height(), &aside, part.left, part.top, SRCCOPY);
    aside.SelectObject(before);
}

void CBCGPPropList::Draw(CDC& dc, const CRect& part) {
    const Places places = Layout();
    const HGDIOBJ font = ::SelectObject(dc.m_hDC, m_hFont);
    dc.FillSolidRect(part, globalData.clrWindow);
    dc.SetBkMode(TRANSPARENT);
    const int divider = places.rows.left + NameWidth();
    const auto& rows = Rows();
    const int first = m_nTop + std::max(0, static_cast<int>(part.top - places.rows.top) / m_nRowHeight);
    const int state = dc.SaveDC();
    dc.IntersectClipRect(places.rows);
    int bottom = places.rows.top + (first - m_nTop) * m_nRowHeight;
    for (size_t i = static_cast<size_t>(first); i < rows.size() && bottom < std::min(part.bottom, places.rows.bottom); ++i) {
        const CRect place(places.rows.left, bottom, places.rows.right, bottom + m_nRowHeight);
        DrawRow(dc, rows[i], place, divider);
        bottom = place.bottom;
    }
    // The margin goes on below the last row.
    if (m_bVSDotNetLook && bottom < places.rows.bottom)
        dc.FillSolidRect(places.rows.left, bottom, m_nRowHeight, places.rows.bottom - bottom, globalData.clrBarFace);
    dc.RestoreDC(state);
    if (m_bHeader) DrawHeader(dc, places.header, divider);
    if (m_bDescription) DrawDescription(dc, places.description);
    if (places.frame) {
        CRect client;
        GetClientRect(client);
        dc.Draw3dRect(client, globalData.clrBtnShadow, globalData.clrBtnShadow);
    }
    ::SelectObject(dc.m_hDC, font);
}

void CBCGPPropList::DrawHeader(CDC& dc, const CRect& place, int divider) {
    dc.SetTextColor(IsWindowEnabled() ? globalData.clrBtnText : globalData.clrGrayedText);
    const LONG edges[] = {place.left, divider, place.right};
    const CString* const texts[] = {&m_strLeft, &m_strRight};
    for (int i = 0; i < 2; ++i) {
        CRect cell(edges[i], place.top, edges[i + 1], place.bottom);
        dc.FillSolidRect(cell, globalData.clrBtnFace);
        dc.Draw3dRect(cell, globalData.clrBtnHilite, globalData.clrBtnShadow);
        cell.DeflateRect(m_nRowHeight / 3, 0);
        dc.SetBkMode(TRANSPARENT);
        dc.DrawText(*texts[i], cell, kLine);
    }
}

void CBCGPPropList::DrawRow(CDC& dc, const Row& row, const CRect& place, int divider) {
    CBCGPProp& prop = *row.prop;
    const bool focused = ::GetFocus() == m_hWnd || IsEditing();
    const bool selected = &prop == m_pSel, group = prop.IsGroup();
    const bool usable = IsWindowEnabled() && prop.IsEnabled();
    const COLORREF line = Between(globalData.clrBarFace, globalData.clrBtnShadow);
    CRect name(place.left, place.top, group ? place.right : divider, place.bottom - 1);
    COLORREF ink = usable ? globalData.clrWindowText : globalData.clrGrayedText;
    COLORREF paper = m_bVSDotNetLook && group ? globalData.clrBarFace : globalData.clrWindow;
    if (selected) {
        paper = focused ? globalData.clrHilite : globalData.clrBarFace;
        if (focused) ink = globalData.clrTextHilite;
    }
    dc.FillSolidRect(name, paper);
    if (m_bVSDotNetLook) dc.FillSolidRect(place.left, place.top, m_nRowHeight, place.Height(), globalData.clrBarFace);
    dc.FillSolidRect(m_bVSDotNetLook ? place.left + m_nRowHeight : place.left, place.bottom - 1, place.Width(), 1, line);
    dc.SetBkMode(TRANSPARENT);
    if (prop.GetSubItemsCount() > 0) {
        const bool onPaper = row.depth > 0 || !m_bVSDotNetLook;
        DrawSign(dc, ButtonRect(row, place), prop.IsExpanded() != FALSE, onPaper ? ink : globalData.clrBarText);
        dc.SetBkMode(TRANSPARENT);
    }
    dc.SetTextColor(ink);
    CFont* const plain = group ? dc.SelectObject(&m_fontBold) : nullptr;
    name.left += Indent(row.depth) + 2;
    if (name.left < name.right) dc.DrawText(prop.GetName(), name, kLine);
    if (group) {
        dc.SelectObject(plain);
        return;
    }
    dc.FillSolidRect(divider, place.top, 1, place.Height(), line);
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(usable ? globalData.clrWindowText : globalData.clrGrayedText);
    CRect value(divider + 1, place.top, place.right, place.bottom - 1);
    if (selected && HasArrow(prop)) {
        const CRect arrow = ArrowRect(&prop);
        value.right = arrow.left;
        DrawArrow(dc, arrow);
        dc.SetBkMode(TRANSPARENT);
    }
    value.DeflateRect(m_nRowHeight / 4, 0);
    CFont* const regular = m_bMarkModified && prop.IsModified() ? dc.SelectObject(&m_fontBold) : nullptr;
    if (value.left < value.right) prop.OnDrawValue(&dc, value);
    if (regular != nullptr) dc.SelectObject(regular);
}

void CBCGPPropList::DrawDescription(CDC& dc, CRect place) {
    dc.FillSolidRect(place, globalData.clrBarFace);
    dc.FillSolidRect(place.left, place.top, place.Width(), 1, Between(globalData.clrBarFace, globalData.clrBtnShadow));
    if (m_pSel == nullptr) return;
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(globalData.clrBarText);
    place.DeflateRect(m_nRowHeight / 3, m_nRowHeight / 6);
    CFont* const plain = dc.SelectObject(&m_fontBold);
    CRect title = place;
    title.bottom = title.top + m_nRowHeight;
    dc.DrawText(m_pSel->GetName(), title, kLine);
    dc.SelectObject(plain);
    place.top = title.bottom;
    dc.DrawText(m_pSel->GetDescription(), place, DT_WORDBREAK | DT_NOPREFIX | DT_END_ELLIPSIS);
}

CRect CBCGPPropList::ButtonRect(const Row& row, const CRect& place) const {
    // Odd, so that the sign has a middle.
    const int side = (m_nRowHeight / 2) | 1;
    const int left = place.left + m_nRowHeight * row.depth + (m_nRowHeight - side) / 2;
    const int top = place.top + (m_nRowHeight - 1 - side) / 2;
    return CRect(left, top, left + side, top + side);
}

BOOL CBCGPPropList::HasArrow(const CBCGPProp& prop) const {
    return prop.GetOptionCount() > 0 && prop.IsEnabled() && IsWindowEnabled();
}

CRect CBCGPPropList::EditorRect(const CBCGPProp* pProp) const {
    CRect place = GetValueRect(pProp);
    if (place.IsRectEmpty()) return place;
    if (HasArrow(*pProp)) place.right = ArrowRect(pProp).left;
    // Its text on the line of the name's.
    place.top += std::max(0, (place.Height() - m_nTextHeight) / 2);
    return place;
}

CRect CBCGPPropList::ArrowRect(const CBCGPProp* pProp) const {
    CRect place = GetValueRect(pProp);
    if (!place.IsRectEmpty()) place.left = std::max(place.left, place.right - m_nRowHeight);
    return place;
}
