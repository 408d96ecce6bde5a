#include "afx/cmd_target.h"

#include "afx/menu.h"

IMPLEMENT_DYNAMIC(CCmdTarget, CObject)

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const { return GetThisMessageMap(); }
const AFX_MSGMAP* CCmdTarget::GetThisMessageMap() {
    static const AFX_MSGMAP_ENTRY s_entries[] = {{0, 0, 0, 0, nullptr, nullptr}};
    static const AFX_MSGMAP s_map = {nullptr, s_entries};
    return &s_map;
}

BOOL CCmdTarget::OnCmdMsg(UINT nID, int nCode, void* pExtra, AFX_CMDHANDLERINFO* pHandlerInfo) {
    UINT message = WM_COMMAND, code = static_cast<UINT>(nCode);
    if (nCode != CN_UPDATE_COMMAND_UI && HIWORD(nCode) != 0) {
        message = HIWORD(nCode);
        code = LOWORD(nCode);
    }
    for (const AFX_MSGMAP* map = GetMessageMap(); map != nullptr;
         map = map->pfnGetBaseMap != nullptr ? map->pfnGetBaseMap() : nullptr) {
        for (const AFX_MSGMAP_ENTRY* entry = map->lpEntries; entry->pfnCall != nullptr; ++entry) {
            if (entry->nMessage != message || entry->nCode != code || nID < entry->nID || nID > entry->nLastID) continue;
            if (pHandlerInfo != nullptr) {
                pHandlerInfo->pTarget = this;
                return TRUE;
            }
            const AFX_MSG_ARGS args{message, 0, 0, nID, pExtra};
            LRESULT answer = 0;
            auto* state = code == static_cast<UINT>(CN_UPDATE_COMMAND_UI) ? static_cast<CCmdUI*>(pExtra) : nullptr;
            if (state != nullptr) state->m_continue = false;
            if (!entry->pfnCall(*this, args, answer)) continue;
            return state == nullptr || !state->m_continue;
        }
    }
    return FALSE;
}
