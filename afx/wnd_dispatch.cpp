// How a message finds its member: through the maps, to commands, and back to the control that notified.
#include "afx/menu.h"
#include "afx/wnd.h"

BOOL CWnd::OnWndMsg(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pResult) {
    LRESULT ignored = 0;
    LRESULT& answer = pResult != nullptr ? *pResult : ignored;
    if (message == WM_COMMAND) {
        if (!OnCommand(wParam, lParam)) return FALSE;
        answer = 1;
        return TRUE;
    }
    if (message == WM_NOTIFY) return lParam != 0 && OnNotify(wParam, lParam, &answer);
    const bool colour = message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC;
    const AFX_MSG_ARGS args{message, wParam, lParam, 0, nullptr};
    for (const AFX_MSGMAP* map = GetMessageMap(); map != nullptr;
         map = map->pfnGetBaseMap != nullptr ? map->pfnGetBaseMap() : nullptr) {
        for (const AFX_MSGMAP_ENTRY* entry = map->lpEntries; entry->pfnCall != nullptr; ++entry) {
            const UINT wanted = entry->pRegisteredMessage != nullptr ? *entry->pRegisteredMessage : entry->nMessage;
            // A message whose registration failed has the number 0, which is nobody's.
            if (entry->pRegisteredMessage != nullptr && wanted == 0) continue;
            if (wanted != message && !(colour && wanted == WM_CTLCOLOR)) continue;
            if (entry->pfnCall(*this, args, answer)) return TRUE;
        }
    }
    if ((message == WM_HSCROLL || message == WM_VSCROLL || colour) && lParam != 0)
        return HandBack(reinterpret_cast<HWND>(lParam), message, wParam, lParam, &answer);
    return FALSE;
}

BOOL CWnd::OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo) {
    return CCmdTarget::OnCmdMsg(nID, nCode, pExtra, pHandlerInfo);
}

BOOL CWnd::OnCommand(WPARAM wParam, LPARAM lParam) {
    const UINT id = LOWORD(wParam);
    const auto control = reinterpret_cast<HWND>(lParam);
    int code = HIWORD(wParam);
    if (control == nullptr) {
        if (id == 0) return FALSE;
        code = CN_COMMAND;  // an accelerator's 1 says no more than a menu's 0
    } else {
        LRESULT answer = 0;
        if (HandBack(control, WM_COMMAND, wParam, lParam, &answer)) return TRUE;
    }
    return OnCmdMsg(id, code, nullptr, nullptr);
}

BOOL CWnd::OnNotify(WPARAM, LPARAM lParam, LRESULT* pResult) {
    auto* header = reinterpret_cast<NMHDR*>(lParam);
    if (HandBack(header->hwndFrom, WM_NOTIFY, header->idFrom, lParam, pResult)) return TRUE;
    AFX_NOTIFY notify{pResult, header};
    return OnCmdMsg(static_cast<UINT>(header->idFrom), MAKELONG(header->code, WM_NOTIFY), &notify, nullptr);
}

BOOL CWnd::HandBack(HWND control, UINT message, WPARAM wParam, LPARAM lParam, LRESULT* answer) {
    CWnd* object = FromHandlePermanent(control);
    return object != nullptr && object != this && object->OnChildNotify(message, wParam, lParam, answer);
}

BOOL CWnd::OnChildNotify(UINT message, WPARAM wParam, LPARAM lParam, LRESULT* pLResult) {
    if (message == WM_COMMAND)
        return CCmdTarget::OnCmdMsg(0, MAKELONG(HIWORD(wParam), WM_REFLECT_BASE + WM_COMMAND), nullptr, nullptr);
    if (message == WM_NOTIFY) {
        auto* header = reinterpret_cast<NMHDR*>(lParam);
        AFX_NOTIFY notify{pLResult, header};
        return CCmdTarget::OnCmdMsg(0, MAKELONG(header->code, WM_REFLECT_BASE + WM_NOTIFY), &notify, nullptr);
    }
    // Any other message comes back to ON_MESSAGE(WM_REFLECT_BASE + message, ...).
    return CWnd::OnWndMsg(WM_REFLECT_BASE + message, wParam, lParam, pLResult);
}

BOOL CWnd::PreTranslateMessage(MSG*) { return FALSE; }

BOOL CWnd::WalkPreTranslateTree(HWND hWndStop, MSG* pMsg) {
    for (HWND window = pMsg->hwnd; window != nullptr; window = ::GetParent(window)) {
        CWnd* object = FromHandlePermanent(window);
        if (object != nullptr && object->PreTranslateMessage(pMsg)) return TRUE;
        if (window == hWndStop) break;
    }
    return FALSE;
}
