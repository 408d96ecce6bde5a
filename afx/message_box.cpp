#include "afx/message_box.h"

int AfxMessageBox(LPCSTR lpszText, UINT nType, UINT) {
    constexpr UINT kIcons = 0xF0;
    if ((nType & kIcons) == 0) nType |= MB_ICONEXCLAMATION;
    return MessageBoxA(nullptr, lpszText, "OrvikShared", nType);
}
