// The grid's mouse, keyboard and menu.
#include <algorithm>

#include "afx/menu.h"
#include "afx/message_map.h"
#include "platform/dpi.h"
#include "res/ids.h"
#include "toolkit/prop_list_internal.h"

namespace {
constexpr int kDividerReach = 3;  // pixels to either side, at 96 dots an inch
constexpr int kWheelRows = 3;
}  // namespace

void CBCGPPropList::OnSetFocus(CWnd*) {
    Invalidate(FALSE);
    if (m_edit != nullptr) m_edit->SetFocus();  // to what was left there unread
}
void CBCGPPropList::OnKillFocus(CWnd*) { Invalidate(FALSE); }

UINT CBCGPPropList::OnGetDlgCode() {
    UINT codes = DLGC_WANTARROWS | DLGC_WANTCHARS;
    const MSG* current = GetCurrentMessage();
    const auto* key = current != nullptr ? reinterpret_cast<const MSG*>(current->lParam) : nullptr;
    // Enter works on the property, if there is anything to do; else it is the dialog's.
    if (key != nullptr && key->message == WM_KEYDOWN && key->wParam == VK_RETURN && m_pSel != nullptr &&
        (!m_pSel->IsGroup() || m_pSel->GetSubItemsCount() > 0))
        codes |= DLGC_WANTALLKEYS;
    return codes;
}

void CBCGPPropList::OnLButtonDown(UINT, CPoint point) {
    const HWND self = m_hWnd;
    if (!LeaveEditor() || !::IsWindow(self)) return;
    SetFocus();
    const Places places = Layout();
    const int divider = places.rows.left + NameWidth();
    const bool above = places.header.PtInRect(point) || places.rows.PtInRect(point);
    CBCGPProp* const hit = HitTest(point);
    if (above && std::abs(point.x - divider) <= OrvikScale(kDividerReach, OrvikDpiOf(m_hWnd)) &&
        (hit == nullptr || !hit->IsGroup())) {
        m_bDragging = true;
        m_nDragOffset = divider - point.x;
        SetCapture();
        return;
    }
    if (hit == nullptr) return;
    const Row row = Rows()[static_cast<size_t>(hit->m_nRow)];
    if (hit->GetSubItemsCount() > 0 && ButtonRect(row, GetPropertyRect(hit)).PtInRect(point)) {
        SetCurSel(hit);
        hit->Expand(!hit->IsExpanded());
        return;
    }
    SetCurSel(hit);
    if (hit->IsGroup() || point.x <= divider) return;
    if (HasArrow(*hit) && (ArrowRect(hit).PtInRect(point) || !hit->IsEditAllowed()))
        BeginEdit(true, nullptr);
    else
        BeginEdit(false, nullptr);
}

void CBCGPPropList::OnLButtonDblClk(UINT nFlags, CPoint point) {
    CBCGPProp* const hit = HitTest(point);
    if (hit == nullptr) return;
    if (hit->IsGroup() || point.x <= Layout().rows.left + NameWidth()) {
        SetCurSel(hit);
        if (hit->GetSubItemsCount() > 0)
            hit->Expand(!hit->IsExpanded());
        else if (HasArrow(*hit))
            NextChoice(*hit);
        return;
    }
    OnLButtonDown(nFlags, point);
}

void CBCGPPropList::OnMouseMove(UINT, CPoint point) {
    if (!m_bDragging) return;
    m_nNameWidth = std::max(0, static_cast<int>(point.x + m_nDragOffset - Layout().rows.left));
    m_nNameWidth = NameWidth();
    Arrange();
}

void CBCGPPropList::OnLButtonUp(UINT, CPoint) {
    if (!m_bDragging) return;
    m_bDragging = false;
    ::ReleaseCapture();
}

BOOL CBCGPPropList::OnMouseWheel(UINT, short zDelta, CPoint) {
    // Fine wheels turn by less than a row at a time.
    m_nWheel += zDelta * kWheelRows;
    ScrollTo(m_nTop - m_nWheel / WHEEL_DELTA);
    m_nWheel %= WHEEL_DELTA;
    return TRUE;
}

BOOL CBCGPPropList::OnSetCursor(CWnd* pWnd, UINT nHitTest, UINT message) {
    CPoint point;
    ::GetCursorPos(&point);
    ScreenToClient(&point);
    const Places places = Layout();
    const bool above = places.header.PtInRect(point) || places.rows.PtInRect(point);
    const CBCGPProp* hit = HitTest(point);
    if (pWnd == this && nHitTest == HTCLIENT && above && (hit == nullptr || !hit->IsGroup()) &&
        std::abs(point.x - (places.rows.left + NameWidth())) <= OrvikScale(kDividerReach, OrvikDpiOf(m_hWnd))) {
        ::SetCursor(::LoadCursorA(nullptr, IDC_SIZEWE));
        return TRUE;
    }
    return CWnd::OnSetCursor(pWnd, nHitTest, message);
}

void CBCGPPropList::MoveSelection(int row) {
    if (GetRowCount() == 0) return;
    SetCurSel(Rows()[static_cast<size_t>(std::max(0, std::min(row, GetRowCount() - 1)))].prop);
}

void CBCGPPropList::OnKeyDown(UINT nChar, UINT, UINT) {
    Rows();
    const int row = m_pSel != nullptr ? m_pSel->m_nRow : -1;
    switch (nChar) {
        case VK_UP:
            return MoveSelection(row - 1);
        case VK_DOWN:
            return MoveSelection(row + 1);
        case VK_PRIOR:
            return MoveSelection(row - VisibleRows());
        case VK_NEXT:
            return MoveSelection(row + VisibleRows());
        case VK_HOME:
            return MoveSelection(0);
        case VK_END:
            return MoveSelection(GetRowCount() - 1);
        default:
            break;
    }
    if (m_pSel == nullptr) return;
    const bool parent = m_pSel->GetSubItemsCount() > 0;
    switch (nChar) {
        case VK_RIGHT:
        case VK_ADD:
            if (parent && m_pSel->IsExpanded() && nChar == VK_RIGHT) MoveSelection(row + 1);
            m_pSel->Expand();
            break;
        case VK_LEFT:
        case VK_SUBTRACT:
            if (parent && m_pSel->IsExpanded())
                m_pSel->Expand(FALSE);
            else if (m_pSel->GetParent() != nullptr && nChar == VK_LEFT)
                SetCurSel(m_pSel->GetParent());
            break;
        case VK_RETURN:
        case VK_F2:
            if (m_pSel->IsGroup())
                m_pSel->Expand(!m_pSel->IsExpanded());
            else
                BeginEdit(!m_pSel->IsEditAllowed(), nullptr);
            break;
        case VK_F4:
            if (HasArrow(*m_pSel)) BeginEdit(true, nullptr);
            break;
        case VK_SPACE:
            if (HasArrow(*m_pSel) && !m_pSel->IsEditAllowed()) NextChoice(*m_pSel);
            break;
        default:
            break;
    }
}

void CBCGPPropList::OnSysKeyDown(UINT nChar, UINT, UINT) {
    if (nChar == VK_DOWN && m_pSel != nullptr && HasArrow(*m_pSel))
        BeginEdit(true, nullptr);
    else
        Default();
}

void CBCGPPropList::OnChar(UINT nChar, UINT, UINT) {
    if (m_pSel == nullptr || nChar < ' ' || nChar == 127 || !m_pSel->IsEditAllowed()) return;
    const CString typed = m_typed.Take(nChar).c_str();
    if (!typed.IsEmpty()) BeginEdit(false, &typed);
}

void CBCGPPropList::OnContextMenu(CWnd* pWnd, CPoint point) {
    if (!m_bContextMenu) {
        CWnd::OnContextMenu(pWnd, point);
        return;
    }
    if (point.x == -1 && point.y == -1) {  // from the keyboard
        const CRect place = m_pSel != nullptr ? GetPropertyRect(m_pSel) : Layout().rows;
        point = CPoint(place.left + m_nRowHeight, place.bottom);
        ClientToScreen(&point);
    } else {
        CPoint inside = point;
        ScreenToClient(&inside);
        if (!LeaveEditor()) return;
        if (CBCGPProp* hit = HitTest(inside)) SetCurSel(hit);
    }
    CMenu menu;
    if (!menu.CreatePopupMenu()) return;
    const auto add = [&menu](UINT command, UINT text, bool usable) {
        CString words;
        words.LoadString(text);
        menu.AppendMenu(MF_STRING | (usable ? MF_ENABLED : MF_GRAYED), command, words);
    };
    add(kReset, IDS_RESET, m_pSel != nullptr && m_pSel->IsModified() && m_pSel->IsEnabled());
    menu.AppendMenu(MF_SEPARATOR);
    add(kExpandAll, IDS_EXPAND_ALL, true);
    add(kCollapseAll, IDS_COLLAPSE_ALL, true);
    menu.TrackPopupMenu(TPM_LEFTALIGN | TPM_RIGHTBUTTON, point.x, point.y, this);
}

void CBCGPPropList::OnReset() {
    EndEditItem(FALSE);
    if (m_pSel != nullptr && m_pSel->IsEnabled()) Assign(*m_pSel, m_pSel->GetOriginalValue());
}
