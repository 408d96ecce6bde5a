// The editing of a value in its cell: as text, or by choosing.
#include <algorithm>

#include "afx/message_box.h"
#include "afx/message_map.h"
#include "toolkit/prop_list_internal.h"

BEGIN_MESSAGE_MAP(CPropEdit, CEdit)
ON_REGISTERED_MESSAGE(kOrvikDescribe, OnDescribe)
ON_WM_GETDLGCODE()
ON_WM_KEYDOWN()
ON_WM_SYSKEYDOWN()
ON_WM_CHAR()
ON_WM_KILLFOCUS()
END_MESSAGE_MAP()

BEGIN_MESSAGE_MAP(CPropChoices, CListBox)
ON_WM_GETDLGCODE()
ON_WM_KEYDOWN()
ON_WM_SYSKEYDOWN()
ON_WM_LBUTTONUP()
ON_WM_KILLFOCUS()
END_MESSAGE_MAP()

namespace {
constexpr UINT kEditorId = 2;
constexpr int kMostChoices = 10;  // shown at a time

bool Means(const CBCGPProp& prop, const CString& text) {
    CBCGPPropValue value;
    return text.Compare(prop.FormatProperty()) == 0 || prop.StringToValue(text, value);
}

void Refuse(const CBCGPProp& prop) { AfxMessageBox(prop.GetErrorText(), MB_ICONEXCLAMATION); }
}  // namespace

UINT CPropEdit::OnGetDlgCode() { return CEdit::OnGetDlgCode() | DLGC_WANTALLKEYS; }

void CPropEdit::OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) {
    // This object may be gone once the editing has ended.
    CBCGPPropList& list = m_list;
    switch (nChar) {
        case VK_RETURN:
            if (list.EndEditItem()) list.SetFocus();
            return;
        case VK_ESCAPE:
            list.EndEditItem(FALSE);
            return;
        case VK_TAB:
            if (list.EndEditItem()) list.LeaveByTab(::GetKeyState(VK_SHIFT) < 0);
            return;
        case VK_F4:
            if (!list.EditedHasChoices()) break;
            [[fallthrough]];
        case VK_UP:
        case VK_DOWN:
            if (list.EndEditItem()) list.OnKeyDown(nChar, nRepCnt, nFlags);
            return;
        default:
            break;
    }
    CEdit::OnKeyDown(nChar, nRepCnt, nFlags);
}

void CPropEdit::OnSysKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) {
    CBCGPPropList& list = m_list;
    if (nChar != VK_DOWN || !list.EditedHasChoices())
        CEdit::OnSysKeyDown(nChar, nRepCnt, nFlags);
    else if (list.EndEditItem())
        list.OnSysKeyDown(nChar, nRepCnt, nFlags);
}

void CPropEdit::OnChar(UINT nChar, UINT nRepCnt, UINT nFlags) {
    // What belongs to the keys above would only make the system beep.
    if (nChar != VK_RETURN && nChar != VK_ESCAPE && nChar != VK_TAB) CEdit::OnChar(nChar, nRepCnt, nFlags);
}

void CPropEdit::OnKillFocus(CWnd* pNewWnd) {
    CEdit::OnKillFocus(pNewWnd);
    CBCGPPropList& list = m_list;
    if (list.m_edit.get() != this) return;
    // Whoever goes elsewhere is not held back by a message: what is good is taken, the rest stays in its field for later.
    CString text;
    GetWindowText(text);
    CBCGPProp* const prop = list.m_pEdited;
    if (prop != nullptr && !Means(*prop, text)) return;
    list.CloseEditors();
    if (prop != nullptr) list.Take(*prop, text);
}

UINT CPropChoices::OnGetDlgCode() { return CListBox::OnGetDlgCode() | DLGC_WANTALLKEYS; }

void CPropChoices::OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) {
    CBCGPPropList& list = m_list;
    switch (nChar) {
        case VK_RETURN:
        case VK_F4:
            list.EndEditItem();
            return;
        case VK_ESCAPE:
            list.EndEditItem(FALSE);
            return;
        case VK_TAB:
            if (list.EndEditItem()) list.LeaveByTab(::GetKeyState(VK_SHIFT) < 0);
            return;
        default:
            CListBox::OnKeyDown(nChar, nRepCnt, nFlags);
    }
}

void CPropChoices::OnSysKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) {
    if (nChar == VK_UP || nChar == VK_DOWN)
        m_list.EndEditItem();
    else
        CListBox::OnSysKeyDown(nChar, nRepCnt, nFlags);
}

void CPropChoices::OnLButtonUp(UINT nFlags, CPoint point) {
    CListBox::OnLButtonUp(nFlags, point);
    CRect client;
    GetClientRect(client);
    if (client.PtInRect(point) && GetCurSel() >= 0) m_list.EndEditItem();
}

void CPropChoices::OnKillFocus(CWnd* pNewWnd) {
    CListBox::OnKillFocus(pNewWnd);
    if (m_list.m_choices.get() == this) m_list.CloseEditors();
}

// Windows of editors die in the midst of their own messages, so their objects are kept until the next ones take their place.
void CBCGPPropList::CloseEditors() {
    m_pEdited = nullptr;
    for (std::unique_ptr<CWnd>* editor : {&m_edit, &m_choices}) {
        if (*editor == nullptr) continue;
        const HWND window = (*editor)->m_hWnd;
        const bool focused = window != nullptr && ::GetFocus() == window;
        m_closed.push_back(std::move(*editor));
        if (window != nullptr) ::ShowWindow(window, SW_HIDE);
        if (focused && m_hWnd != nullptr) SetFocus();
        if (window != nullptr && ::IsWindow(window)) ::DestroyWindow(window);
    }
}

BOOL CBCGPPropList::EditItem() { return m_pSel != nullptr && BeginEdit(!m_pSel->IsEditAllowed(), nullptr); }

BOOL CBCGPPropList::BeginEdit(bool choose, const CString* typed) {
    EndEditItem(FALSE);
    m_closed.clear();
    if (m_pSel == nullptr || m_pSel->IsGroup() || !m_pSel->IsEnabled() || !IsWindowEnabled()) return FALSE;
    EnsureVisible(m_pSel);
    if (GetValueRect(m_pSel).IsRectEmpty()) return FALSE;
    if (choose) {
        OpenChoices(*m_pSel);
        return m_choices != nullptr;
    }
    if (!m_pSel->IsEditAllowed()) return FALSE;
    auto edit = std::make_unique<CPropEdit>(*this);
    if (!edit->Create(WS_CHILD | WS_VISIBLE | ES_AUTOHSCROLL, EditorRect(m_pSel), this, kEditorId)) return FALSE;
    edit->SetFont(CFont::FromHandle(m_hFont), FALSE);
    edit->SendMessage(EM_SETMARGINS, EC_LEFTMARGIN | EC_RIGHTMARGIN, MAKELPARAM(m_nRowHeight / 4, m_nRowHeight / 4));
    edit->SetWindowText(typed != nullptr ? *typed : m_pSel->FormatProperty());
    CPropEdit& field = *edit;
    m_pEdited = m_pSel;
    m_edit = std::move(edit);
    field.SetFocus();
    typed != nullptr ? field.SetSel(typed->GetLength(), typed->GetLength()) : field.SetSel(0, -1);
    return m_edit != nullptr;
}

void CBCGPPropList::OpenChoices(CBCGPProp& prop) {
    if (!HasArrow(prop)) return;
    const CRect cell = GetValueRect(&prop), rows = Layout().rows;
    auto choices = std::make_unique<CPropChoices>(*this);
    CRect client;
    GetClientRect(client);
    if (!choices->Create(WS_CHILD | WS_BORDER | WS_VSCROLL | LBS_NOINTEGRALHEIGHT, CRect(cell.left, 0, cell.right, m_nRowHeight),
                         this, kEditorId))
        return;
    choices->SetFont(CFont::FromHandle(m_hFont), FALSE);
    for (int i = 0; i < prop.GetOptionCount(); ++i) choices->AddString(prop.GetOption(i));
    choices->SetCurSel(choices->FindStringExact(-1, prop.FormatProperty()));
    // Below the cell, or above it where there is more room.
    const int item = std::max(1, static_cast<int>(choices->SendMessage(LB_GETITEMHEIGHT)));
    const int wanted = std::min(prop.GetOptionCount(), kMostChoices) * item + 2;
    const int below = client.bottom - cell.bottom - 1, above = cell.top - rows.top;
    CRect place = cell;
    if (below >= wanted || below >= above) {
        place.top = cell.bottom + 1;
        place.bottom = place.top + std::min(wanted, below);
    } else {
        place.bottom = cell.top;
        place.top = place.bottom - std::min(wanted, above);
    }
    choices->SetWindowPos(&CWnd::wndTop, place.left, place.top, place.Width(), place.Height(), SWP_NOACTIVATE | SWP_SHOWWINDOW);
    CPropChoices& list = *choices;
    m_pEdited = &prop;
    m_choices = std::move(choices);
    list.SetFocus();
}

BOOL CBCGPPropList::EndEditItem(BOOL bUpdateData) {
    if (!IsEditing()) return TRUE;
    CBCGPProp* const prop = m_pEdited;
    // Whoever learns of the change, or whatever comes while the user is told, may end the dialog, and this object with it.
    const HWND self = m_hWnd;
    if (!bUpdateData || prop == nullptr) {
        CloseEditors();
        return TRUE;
    }
    if (m_choices != nullptr) {
        const int choice = static_cast<CListBox*>(m_choices.get())->GetCurSel();
        CloseEditors();
        if (choice >= 0 && !Take(*prop, prop->GetOption(choice))) Refuse(*prop);
        return ::IsWindow(self);
    }
    CString text;
    m_edit->GetWindowText(text);
    if (!Means(*prop, text)) {
        Refuse(*prop);
        if (!::IsWindow(self) || m_edit == nullptr) return FALSE;
        m_edit->SetFocus();
        static_cast<CEdit*>(m_edit.get())->SetSel(0, -1);
        return FALSE;
    }
    CloseEditors();
    Take(*prop, text);
    return ::IsWindow(self);
}

bool CBCGPPropList::LeaveEditor() { return EndEditItem(m_choices == nullptr) != FALSE; }

bool CBCGPPropList::Take(CBCGPProp& prop, const CString& text) {
    // What was not touched is not read back: a text may say less than the value.
    if (text.Compare(prop.FormatProperty()) == 0) return true;
    CBCGPPropValue value;
    if (!prop.StringToValue(text, value)) return false;
    Assign(prop, value);
    return true;
}

void CBCGPPropList::Assign(CBCGPProp& prop, const CBCGPPropValue& value) {
    if (prop.GetValue() == value) return;
    prop.SetValue(value);
    OnPropertyChanged(&prop);
}

void CBCGPPropList::NextChoice(CBCGPProp& prop) {
    const CString shown = prop.FormatProperty();
    int next = 0;
    for (int i = 0; i < prop.GetOptionCount(); ++i) {
        if (prop.GetOption(i).Compare(shown) == 0) next = (i + 1) % prop.GetOptionCount();
    }
    if (!Take(prop, prop.GetOption(next))) Refuse(prop);
}

void CBCGPPropList::LeaveByTab(bool back) {
    if (m_hWnd == nullptr) return;
    SetFocus();
    if (CWnd* parent = GetParent()) parent->SendMessage(WM_NEXTDLGCTL, back, 0);
}
