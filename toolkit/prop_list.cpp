// The grid as a window: its properties, its rows, what stands where, and the scrolling.
#include "toolkit/prop_list.h"

#include <algorithm>

#include "afx/controls.h"
#include "afx/message_map.h"
#include "platform/dpi.h"
#include "toolkit/prop_list_internal.h"

IMPLEMENT_DYNAMIC(CBCGPPropList, CWnd)

const UINT BCGM_PROPERTY_CHANGED = ::RegisterWindowMessageA("BCGM_PROPERTY_CHANGED");

BEGIN_MESSAGE_MAP(CBCGPPropList, CWnd)
ON_WM_PAINT()
ON_WM_ERASEBKGND()
ON_WM_SIZE()
ON_MESSAGE(WM_SETFONT, OnSetFont)
ON_REGISTERED_MESSAGE(kOrvikDescribe, OnDescribe)
ON_REGISTERED_MESSAGE(kOrvikAct, OnAct)
ON_MESSAGE(WM_GETFONT, OnGetFont)
ON_WM_SETFOCUS()
ON_WM_KILLFOCUS()
ON_WM_GETDLGCODE()
ON_WM_LBUTTONDOWN()
ON_WM_LBUTTONDBLCLK()
ON_WM_MOUSEMOVE()
ON_WM_LBUTTONUP()
ON_WM_MOUSEWHEEL()
ON_WM_SETCURSOR()
ON_WM_KEYDOWN()
ON_WM_SYSKEYDOWN()
ON_WM_CHAR()
ON_WM_VSCROLL()
ON_WM_CONTEXTMENU()
ON_WM_ENABLE()
ON_COMMAND(kReset, OnReset)
ON_COMMAND(kExpandAll, OnExpandAll)
ON_COMMAND(kCollapseAll, OnCollapseAll)
END_MESSAGE_MAP()

namespace {
constexpr UINT kScrollId = 1;
constexpr int kDescriptionRows = 3;
}  // namespace

CBCGPPropList::CBCGPPropList() : m_scroll(std::make_unique<CScrollBar>()) {}

CBCGPPropList::~CBCGPPropList() {
    CloseEditors();
    CWnd::DestroyWindow();
}

BOOL CBCGPPropList::Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID) {
    const LPCSTR name = AfxRegisterWndClass(CS_DBLCLKS, ::LoadCursorA(nullptr, IDC_ARROW));
    if (!CWnd::Create(name, "", dwStyle | WS_CHILD | WS_CLIPCHILDREN, rect, pParentWnd, nID)) return FALSE;
    static_cast<CScrollBar*>(m_scroll.get())->Create(WS_CHILD | SBS_VERT, CRect(0, 0, 0, 0), this, kScrollId);
    TakeFont(pParentWnd != nullptr ? reinterpret_cast<HFONT>(pParentWnd->SendMessage(WM_GETFONT)) : nullptr);
    return TRUE;
}

void CBCGPPropList::EnableHeaderCtrl(BOOL bEnable, LPCSTR lpszLeftColumn, LPCSTR lpszRightColumn) {
    m_bHeader = bEnable;
    m_strLeft = lpszLeftColumn;
    m_strRight = lpszRightColumn;
    Arrange();
}

void CBCGPPropList::EnableDescriptionArea(BOOL bEnable) {
    m_bDescription = bEnable;
    Arrange();
}

void CBCGPPropList::SetVSDotNetLook(BOOL bSet) {
    m_bVSDotNetLook = bSet;
    if (m_hWnd != nullptr) Invalidate(FALSE);
}

void CBCGPPropList::MarkModifiedProperties(BOOL bMark, BOOL bRedraw) {
    m_bMarkModified = bMark;
    if (bRedraw && m_hWnd != nullptr) Invalidate(FALSE);
}

int CBCGPPropList::AddProperty(CBCGPProp* pProp) {
    if (pProp == nullptr || pProp->m_pParent != nullptr || pProp->m_pList != nullptr) return -1;
    pProp->SetList(this);
    m_props.emplace_back(pProp);
    OnAdded(pProp);
    return GetPropertyCount() - 1;
}

void CBCGPPropList::RemoveAll() {
    CloseEditors();
    ++m_nFilling;
    m_pSel = nullptr;
    m_nTop = 0;
    m_rows.clear();
    m_props.clear();
    OnStructureChanged();
}

CBCGPProp* CBCGPPropList::GetProperty(int nIndex) const {
    return nIndex >= 0 && nIndex < GetPropertyCount() ? m_props[static_cast<size_t>(nIndex)].get() : nullptr;
}

void CBCGPPropList::ExpandAll(BOOL bExpand) {
    CloseEditors();
    std::vector<CBCGPProp*> waiting;
    for (const auto& prop : m_props) waiting.push_back(prop.get());
    while (!waiting.empty()) {
        CBCGPProp* next = waiting.back();
        waiting.pop_back();
        next->m_bExpanded = bExpand;
        for (const auto& below : next->m_subItems) waiting.push_back(below.get());
    }
    OnStructureChanged();
}

void CBCGPPropList::ResetOriginalValues() {
    CloseEditors();
    std::vector<CBCGPProp*> waiting, changed;
    for (const auto& prop : m_props) waiting.push_back(prop.get());
    while (!waiting.empty()) {
        CBCGPProp* next = waiting.back();
        waiting.pop_back();
        for (const auto& below : next->m_subItems) waiting.push_back(below.get());
        if (!next->IsModified()) continue;
        next->SetValue(next->GetOriginalValue());
        changed.push_back(next);
    }
    // Whoever is told may fill the grid anew, or destroy it, and this object with it; then the rest is gone.
    const HWND self = m_hWnd;
    const unsigned filling = m_nFilling;
    for (CBCGPProp* prop : changed) {
        OnPropertyChanged(prop);
        if (!::IsWindow(self) || filling != m_nFilling) return;
    }
}

// What there is to see is worked out when somebody looks, so that a grid is filled without counting its rows each time.
void CBCGPPropList::OnStructureChanged() {
    m_bRowsValid = m_bArranged = false;
    // The selection goes to what the property has vanished into.
    for (CBCGPProp* above = m_pSel != nullptr ? m_pSel->m_pParent : nullptr; above != nullptr; above = above->m_pParent) {
        if (!above->m_bExpanded) m_pSel = above;
    }
    if (m_hWnd != nullptr) Invalidate(FALSE);
}

void CBCGPPropList::Settle() const {
    // Not a change that anybody sees: the places are what they had to be already.
    if (!m_bArranged) const_cast<CBCGPPropList*>(this)->Arrange();
}

int CBCGPPropList::GetTopRow() const {
    Settle();
    return m_nTop;
}

// Rows that are counted stay so where the property is behind all of them: whoever asks for rows as they fill a grid would else have
// all of them counted each time.
void CBCGPPropList::OnAdded(CBCGPProp* pProp) {
    int depth = 0;
    bool counted = m_bRowsValid;
    const CBCGPProp* last = pProp;
    for (const CBCGPProp* above = last->m_pParent; above != nullptr; last = above, above = above->m_pParent, ++depth)
        counted = counted && above->m_bExpanded && above->m_subItems.back().get() == last;
    counted = counted && m_props.back().get() == last;
    OnStructureChanged();
    if (counted) AppendRows({{pProp, depth}});
    m_bRowsValid = counted;
}

const std::vector<CBCGPPropList::Row>& CBCGPPropList::Rows() const {
    if (m_bRowsValid) return m_rows;
    for (const Row& row : m_rows) row.prop->m_nRow = -1;
    m_rows.clear();
    std::vector<Row> waiting;
    for (auto prop = m_props.rbegin(); prop != m_props.rend(); ++prop) waiting.push_back({prop->get(), 0});
    AppendRows(std::move(waiting));
    m_bRowsValid = true;
    return m_rows;
}

void CBCGPPropList::AppendRows(std::vector<Row> waiting) const {
    while (!waiting.empty()) {
        const Row next = waiting.back();
        waiting.pop_back();
        next.prop->m_nRow = static_cast<int>(m_rows.size());
        m_rows.push_back(next);
        if (!next.prop->m_bExpanded) continue;
        auto& below = next.prop->m_subItems;
        for (auto prop = below.rbegin(); prop != below.rend(); ++prop) waiting.push_back({prop->get(), next.depth + 1});
    }
}

CBCGPPropList::Places CBCGPPropList::Layout() const {
    Places places;
    if (m_hWnd == nullptr) return places;
    CRect client, window;
    GetClientRect(client);
    GetWindowRect(window);
    // Where windows have no frame of their own the border is drawn inside.
    places.frame = (GetStyle() & WS_BORDER) != 0 && window.Size() == client.Size();
    if (places.frame) client.DeflateRect(1, 1);
    places.header = places.rows = places.description = client;
    places.header.bottom = client.top + (m_bHeader ? m_nRowHeight : 0);
    const int description = m_bDescription ? m_nRowHeight * kDescriptionRows + m_nRowHeight / 2 : 0;
    places.description.top = std::max<LONG>(places.header.bottom, client.bottom - description);
    places.rows.top = places.header.bottom;
    places.rows.bottom = places.description.top;
    places.bar = CRect(places.rows.right, places.rows.top, places.rows.right, places.rows.bottom);
    if (GetRowCount() * m_nRowHeight > places.rows.Height()) {
        places.bar.left = std::max<LONG>(places.rows.left, places.rows.right - OrvikMetric(SM_CXVSCROLL, OrvikDpiOf(m_hWnd)));
        places.rows.right = places.bar.left;
    }
    return places;
}

int CBCGPPropList::NameWidth() const {
    const int width = Layout().rows.Width();
    const int least = 2 * m_nRowHeight;
    const int wanted = m_nNameWidth >= 0 ? m_nNameWidth : width / 2;
    return std::max(std::min(least, width / 2), std::min(wanted, width - least));
}

int CBCGPPropList::VisibleRows() const { return std::max(1, Layout().rows.Height() / m_nRowHeight); }

// After anything that changes sizes or the number of rows.
void CBCGPPropList::Arrange() {
    if (m_hWnd == nullptr) return;
    m_bArranged = true;
    const Places places = Layout();
    const bool bar = places.bar.Width() > 0;
    m_nTop = std::max(0, std::min(m_nTop, GetRowCount() - VisibleRows()));
    if (m_scroll->m_hWnd != nullptr) {
        SCROLLINFO info = {};
        info.cbSize = sizeof info;
        info.fMask = SIF_RANGE | SIF_PAGE | SIF_POS;
        info.nMax = std::max(0, GetRowCount() - 1);
        info.nPage = static_cast<UINT>(VisibleRows());
        info.nPos = m_nTop;
        m_scroll->SendMessage(SBM_SETSCROLLINFO, TRUE, reinterpret_cast<LPARAM>(&info));
        m_scroll->MoveWindow(places.bar);
        m_scroll->ShowWindow(bar ? SW_SHOWNA : SW_HIDE);
    }
    // The editor stands over its row and goes along.
    if (m_edit != nullptr && m_pEdited != nullptr) m_edit->MoveWindow(EditorRect(m_pEdited));
    Invalidate(FALSE);
}

void CBCGPPropList::ScrollTo(int top) {
    Settle();
    const int wanted = std::max(0, std::min(top, GetRowCount() - VisibleRows()));
    if (wanted == m_nTop) return;
    if (m_choices != nullptr) EndEditItem(FALSE);
    m_nTop = wanted;
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_POS;
    info.nPos = m_nTop;
    m_scroll->SendMessage(SBM_SETSCROLLINFO, TRUE, reinterpret_cast<LPARAM>(&info));
    if (m_edit != nullptr && m_pEdited != nullptr) m_edit->MoveWindow(EditorRect(m_pEdited));
    const CRect rows = Layout().rows;
    if (m_hWnd != nullptr) InvalidateRect(rows, FALSE);
}

void CBCGPPropList::EnsureVisible(CBCGPProp* pProp) {
    if (pProp == nullptr || pProp->m_pList != this) return;
    for (CBCGPProp* above = pProp->m_pParent; above != nullptr; above = above->m_pParent) above->Expand();
    Rows();
    if (pProp->m_nRow < m_nTop) ScrollTo(pProp->m_nRow);
    if (pProp->m_nRow >= m_nTop + VisibleRows()) ScrollTo(pProp->m_nRow - VisibleRows() + 1);
}

void CBCGPPropList::SetCurSel(CBCGPProp* pProp) {
    Rows();
    if (pProp != nullptr && (pProp->m_pList != this || pProp->m_nRow < 0)) return;
    if (pProp == m_pSel) return;
    EndEditItem(FALSE);
    m_pSel = pProp;
    EnsureVisible(pProp);
    if (m_hWnd != nullptr) Invalidate(FALSE);
}

CBCGPProp* CBCGPPropList::HitTest(CPoint point) const {
    Settle();
    const CRect rows = Layout().rows;
    if (!rows.PtInRect(point)) return nullptr;
    const int row = m_nTop + (point.y - rows.top) / m_nRowHeight;
    return row < GetRowCount() ? Rows()[static_cast<size_t>(row)].prop : nullptr;
}

CRect CBCGPPropList::GetPropertyRect(const CBCGPProp* pProp) const {
    Settle();
    const CRect rows = Layout().rows;
    Rows();
    if (pProp == nullptr || pProp->m_pList != this || pProp->m_nRow < m_nTop) return CRect();
    const int top = rows.top + (pProp->m_nRow - m_nTop) * m_nRowHeight;
    if (top >= rows.bottom) return CRect();
    return CRect(rows.left, top, rows.right, std::min(top + m_nRowHeight, static_cast<int>(rows.bottom)));
}

CRect CBCGPPropList::GetValueRect(const CBCGPProp* pProp) const {
    CRect place = GetPropertyRect(pProp);
    if (place.IsRectEmpty()) return place;
    place.left += NameWidth() + 1;
    place.bottom -= 1;  // the line below
    return place;
}

void CBCGPPropList::RedrawProperty(const CBCGPProp* pProp) {
    if (m_hWnd == nullptr || !m_bRowsValid) return;  // all of it is drawn anew then
    const CRect place = GetPropertyRect(pProp);
    if (!place.IsRectEmpty()) InvalidateRect(place, FALSE);
    if (pProp == m_pSel && m_bDescription) InvalidateRect(Layout().description, FALSE);
}

void CBCGPPropList::TakeFont(HFONT font) {
    m_hFont = font != nullptr ? font : static_cast<HFONT>(::GetStockObject(DEFAULT_GUI_FONT));
    LOGFONTA description = {};
    ::GetObjectA(m_hFont, sizeof description, &description);
    description.lfWeight = FW_BOLD;
    m_fontBold.DeleteObject();
    m_fontBold.CreateFontIndirect(&description);
    CClientDC dc(this);
    const HGDIOBJ before = ::SelectObject(dc.m_hDC, m_hFont);
    TEXTMETRICA metrics = {};
    dc.GetTextMetrics(&metrics);
    ::SelectObject(dc.m_hDC, before);
    // Air above and below the letters, a third of them, and the line below.
    // A divider that was moved stays where it is among the letters.
    if (m_nNameWidth > 0 && m_nTextHeight > 0) m_nNameWidth = ::MulDiv(m_nNameWidth, metrics.tmHeight, m_nTextHeight);
    m_nTextHeight = static_cast<int>(metrics.tmHeight);
    m_nRowHeight = std::max(8, m_nTextHeight + m_nTextHeight / 3 + 1);
    Arrange();
}

LRESULT CBCGPPropList::OnSetFont(WPARAM wParam, LPARAM) {
    EndEditItem(FALSE);
    TakeFont(reinterpret_cast<HFONT>(wParam));
    return 0;
}

LRESULT CBCGPPropList::OnGetFont(WPARAM, LPARAM) { return reinterpret_cast<LRESULT>(m_hFont); }

void CBCGPPropList::OnSize(UINT, int, int) {
    if (m_choices != nullptr) EndEditItem(FALSE);
    Arrange();
}

void CBCGPPropList::OnEnable(BOOL) { Invalidate(FALSE); }

void CBCGPPropList::OnVScroll(UINT nSBCode, UINT, CScrollBar*) {
    SCROLLINFO info = {};
    info.cbSize = sizeof info;
    info.fMask = SIF_TRACKPOS;
    switch (nSBCode) {
        case SB_LINEUP:
            return ScrollTo(m_nTop - 1);
        case SB_LINEDOWN:
            return ScrollTo(m_nTop + 1);
        case SB_PAGEUP:
            return ScrollTo(m_nTop - VisibleRows());
        case SB_PAGEDOWN:
            return ScrollTo(m_nTop + VisibleRows());
        case SB_TOP:
            return ScrollTo(0);
        case SB_BOTTOM:
            return ScrollTo(GetRowCount());
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION:
            // All bits of it, where the message has sixteen.
            if (m_scroll->SendMessage(SBM_GETSCROLLINFO, 0, reinterpret_cast<LPARAM>(&info))) ScrollTo(info.nTrackPos);
            return;
        default:
            return;
    }
}

void CBCGPPropList::OnPropertyChanged(CBCGPProp* pProp) const {
    if (CWnd* parent = GetParent())
        parent->SendMessage(BCGM_PROPERTY_CHANGED, static_cast<WPARAM>(GetDlgCtrlID()), reinterpret_cast<LPARAM>(pProp));
}
