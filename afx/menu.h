// Menus behind C++ objects, which own them, and the state of a command's item as its handlers set it.
// An object belongs to its window's thread.
#pragma once

#include "afx/cmd_target.h"
#include "afx/string.h"

class ORVIK_API CMenu : public CObject {
    DECLARE_DYNCREATE(CMenu)

public:
    CMenu() = default;
    ~CMenu() override { DestroyMenu(); }

    HMENU m_hMenu = nullptr;
    HMENU GetSafeHmenu() const { return m_hMenu; }
    operator HMENU() const { return m_hMenu; }

    // A temporary object of the calling thread, for use at once; null for null.
    static CMenu* FromHandle(HMENU hMenu);
    BOOL Attach(HMENU hMenu);
    HMENU Detach();
    BOOL CreateMenu() { return Attach(::CreateMenu()); }
    BOOL CreatePopupMenu() { return Attach(::CreatePopupMenu()); }
    BOOL DestroyMenu();

    BOOL AppendMenu(UINT nFlags, UINT_PTR nIDNewItem = 0, LPCSTR lpszNewItem = nullptr) {
        return ::AppendMenuA(m_hMenu, nFlags, nIDNewItem, lpszNewItem);
    }
    BOOL InsertMenu(UINT nPosition, UINT nFlags, UINT_PTR nIDNewItem = 0, LPCSTR lpszNewItem = nullptr) {
        return ::InsertMenuA(m_hMenu, nPosition, nFlags, nIDNewItem, lpszNewItem);
    }
    BOOL ModifyMenu(UINT nPosition, UINT nFlags, UINT_PTR nIDNewItem = 0, LPCSTR lpszNewItem = nullptr) {
        return ::ModifyMenuA(m_hMenu, nPosition, nFlags, nIDNewItem, lpszNewItem);
    }
    BOOL DeleteMenu(UINT nPosition, UINT nFlags) { return ::DeleteMenu(m_hMenu, nPosition, nFlags); }
    BOOL RemoveMenu(UINT nPosition, UINT nFlags) { return ::RemoveMenu(m_hMenu, nPosition, nFlags); }
    UINT CheckMenuItem(UINT nIDCheckItem, UINT nCheck) {
        return static_cast<UINT>(::CheckMenuItem(m_hMenu, nIDCheckItem, nCheck));
    }
    BOOL CheckMenuRadioItem(UINT nIDFirst, UINT nIDLast, UINT nIDItem, UINT nFlags) {
        return ::CheckMenuRadioItem(m_hMenu, nIDFirst, nIDLast, nIDItem, nFlags);
    }
    UINT EnableMenuItem(UINT nIDEnableItem, UINT nEnable) {
        return static_cast<UINT>(::EnableMenuItem(m_hMenu, nIDEnableItem, nEnable));
    }
    BOOL SetDefaultItem(UINT uItem, BOOL fByPos = FALSE) {
        return ::SetMenuDefaultItem(m_hMenu, uItem, static_cast<UINT>(fByPos));
    }
    UINT GetMenuItemCount() const { return static_cast<UINT>(::GetMenuItemCount(m_hMenu)); }
    UINT GetMenuItemID(int nPos) const { return ::GetMenuItemID(m_hMenu, nPos); }
    UINT GetMenuState(UINT nID, UINT nFlags) const { return ::GetMenuState(m_hMenu, nID, nFlags); }
    int GetMenuString(UINT nIDItem, CString& rString, UINT nFlags) const;
    CMenu* GetSubMenu(int nPos) const { return FromHandle(::GetSubMenu(m_hMenu, nPos)); }
    BOOL TrackPopupMenu(UINT nFlags, int x, int y, CWnd* pWnd, LPCRECT lpRect = nullptr);

private:
    bool m_temporary = false;
};

// One command's item while its handlers say how it is to look: a menu item here.
class ORVIK_API CCmdUI {
public:
    CCmdUI() = default;
    virtual ~CCmdUI() = default;

    UINT m_nID = 0, m_nIndex = 0, m_nIndexMax = 0;  // the command, its position, the number of items
    CMenu* m_pMenu = nullptr;
    CWnd* m_pOther = nullptr;  // a control instead of a menu item

    virtual void Enable(BOOL bOn = TRUE);
    virtual void SetCheck(int nCheck = 1);  // 0, 1, or 2 for undecided, which shows as checked
    virtual void SetRadio(BOOL bOn = TRUE);
    virtual void SetText(LPCSTR lpszText);
    void ContinueRouting() { m_continue = true; }

    // Asks the target's handlers; non-zero if there was one. A command that nobody takes is disabled, if that is wanted.
    BOOL DoUpdate(CCmdTarget* pTarget, BOOL bDisableIfNoHndler);

private:
    friend class CCmdTarget;
    bool m_changed = false, m_continue = false;
};

// Asks about every item of a menu that is about to open, those of submenus left aside.
ORVIK_API void AfxUpdateMenu(CMenu* pMenu, CCmdTarget* pTarget, BOOL bDisableIfNoHndler = TRUE);
