#include "afx/menu.h"

#include <memory>
#include <unordered_map>
#include <utility>

#include "afx/wnd.h"

IMPLEMENT_DYNCREATE(CMenu, CObject)

CMenu* CMenu::FromHandle(HMENU hMenu) {
    if (hMenu == nullptr) return nullptr;
    struct Temporary {
        std::unordered_map<HMENU, std::unique_ptr<CMenu>> menus;
        ~Temporary() {
            for (auto& [handle, menu] : menus) menu->m_hMenu = nullptr;
        }
    };
    thread_local Temporary t_temporary;
    std::unique_ptr<CMenu>& menu = t_temporary.menus[hMenu];
    if (menu == nullptr) {
        menu = std::make_unique<CMenu>();
        menu->m_temporary = true;
    }
    menu->m_hMenu = hMenu;
    return menu.get();
}

BOOL CMenu::Attach(HMENU hMenu) {
    if (hMenu == nullptr || m_hMenu != nullptr) return FALSE;
    m_hMenu = hMenu;
    return TRUE;
}

HMENU CMenu::Detach() { return std::exchange(m_hMenu, nullptr); }

BOOL CMenu::DestroyMenu() {
    const HMENU menu = Detach();
    return menu != nullptr && ::DestroyMenu(menu);
}

int CMenu::GetMenuString(UINT nIDItem, CString& rString, UINT nFlags) const {
    const int length = ::GetMenuStringA(m_hMenu, nIDItem, nullptr, 0, nFlags);
    const int got = ::GetMenuStringA(m_hMenu, nIDItem, rString.GetBuffer(length), length + 1, nFlags);
    rString.ReleaseBuffer(got);
    return got;
}

BOOL CMenu::TrackPopupMenu(UINT nFlags, int x, int y, CWnd* pWnd, LPCRECT lpRect) {
    return ::TrackPopupMenu(m_hMenu, nFlags, x, y, 0, pWnd != nullptr ? pWnd->m_hWnd : nullptr, lpRect);
}

void CCmdUI::Enable(BOOL bOn) {
    m_changed = true;
    if (m_pMenu != nullptr) m_pMenu->EnableMenuItem(m_nIndex, MF_BYPOSITION | (bOn ? MF_ENABLED : MF_DISABLED | MF_GRAYED));
    if (m_pOther != nullptr) m_pOther->EnableWindow(bOn);
}

void CCmdUI::SetCheck(int nCheck) {
    if (m_pMenu != nullptr) m_pMenu->CheckMenuItem(m_nIndex, MF_BYPOSITION | (nCheck != 0 ? MF_CHECKED : MF_UNCHECKED));
    constexpr UINT kSetCheck = 0x00F1;  // BM_SETCHECK
    if (m_pOther != nullptr) m_pOther->SendMessage(kSetCheck, static_cast<WPARAM>(nCheck));
}

void CCmdUI::SetRadio(BOOL bOn) {
    SetCheck(bOn ? 1 : 0);
    if (m_pMenu != nullptr && bOn) m_pMenu->CheckMenuRadioItem(m_nIndex, m_nIndex, m_nIndex, MF_BYPOSITION);
}

void CCmdUI::SetText(LPCSTR lpszText) {
    if (m_pMenu != nullptr) {
        const UINT state = m_pMenu->GetMenuState(m_nIndex, MF_BYPOSITION);
        constexpr UINT kKept = MF_GRAYED | MF_DISABLED | MF_CHECKED;
        m_pMenu->ModifyMenu(m_nIndex, MF_BYPOSITION | MF_STRING | (state & kKept), m_nID, lpszText);
    }
    if (m_pOther != nullptr) m_pOther->SetWindowText(lpszText);
}

BOOL CCmdUI::DoUpdate(CCmdTarget* pTarget, BOOL bDisableIfNoHndler) {
    if (m_nID == 0 || m_nID == 0xFFFFFFFFu) return TRUE;
    m_changed = false;
    const BOOL handled = pTarget->OnCmdMsg(m_nID, CN_UPDATE_COMMAND_UI, this, nullptr);
    if (bDisableIfNoHndler && !m_changed) {
        AFX_CMDHANDLERINFO info{};
        const BOOL taken = handled || pTarget->OnCmdMsg(m_nID, CN_COMMAND, this, &info);
        if (!handled || !taken) Enable(taken);
    }
    return handled;
}

void AfxUpdateMenu(CMenu* pMenu, CCmdTarget* pTarget, BOOL bDisableIfNoHndler) {
    CCmdUI state;
    state.m_pMenu = pMenu;
    state.m_nIndexMax = pMenu->GetMenuItemCount();
    for (state.m_nIndex = 0; state.m_nIndex < state.m_nIndexMax; ++state.m_nIndex) {
        state.m_nID = pMenu->GetMenuItemID(static_cast<int>(state.m_nIndex));
        state.DoUpdate(pTarget, bDisableIfNoHndler);
        state.m_nIndexMax = pMenu->GetMenuItemCount();
    }
}
