// Controls by their ids in a dialog.
#include <climits>
#include <cstdio>
#include <string>

#include "platform/posix/controls/controls.h"
#include "platform/posix/dialogs/dialog.h"
#include "platform/posix/window/window_place.h"

LRESULT SendDlgItemMessageA(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam) {
    const HWND control = GetDlgItem(dialog, id);
    return control == nullptr ? 0 : SendMessageA(control, message, wParam, lParam);
}

BOOL SetDlgItemTextA(HWND dialog, int id, LPCSTR text) {
    const HWND control = GetDlgItem(dialog, id);
    return control != nullptr && SetWindowTextA(control, text);
}

UINT GetDlgItemTextA(HWND dialog, int id, LPSTR out, int size) {
    if (out != nullptr && size > 0) *out = 0;
    const HWND control = GetDlgItem(dialog, id);
    return control == nullptr ? 0 : static_cast<UINT>(GetWindowTextA(control, out, size));
}

BOOL SetDlgItemInt(HWND dialog, int id, UINT value, BOOL isSigned) {
    char text[16];
    std::snprintf(text, sizeof text, isSigned ? "%d" : "%u", value);
    return SetDlgItemTextA(dialog, id, text);
}

UINT GetDlgItemInt(HWND dialog, int id, BOOL* translated, BOOL isSigned) {
    if (translated != nullptr) *translated = FALSE;
    char text[32];
    if (GetDlgItemTextA(dialog, id, text, sizeof text) == 0) return 0;
    const char* at = text;
    while (*at == ' ') ++at;
    const bool minus = isSigned && *at == '-';
    if (minus || *at == '+') ++at;
    if (*at < '0' || *at > '9') return 0;
    long long value = 0;
    for (; *at >= '0' && *at <= '9'; ++at) {
        value = value * 10 + (*at - '0');
        if (value > (isSigned ? INT_MAX + (minus ? 1LL : 0LL) : static_cast<long long>(UINT_MAX))) return 0;
    }
    while (*at == ' ') ++at;
    if (*at != 0) return 0;
    if (translated != nullptr) *translated = TRUE;
    return static_cast<UINT>(minus ? -value : value);
}

BOOL CheckDlgButton(HWND dialog, int id, UINT check) {
    SendDlgItemMessageA(dialog, id, BM_SETCHECK, check, 0);
    return TRUE;
}
UINT IsDlgButtonChecked(HWND dialog, int id) { return static_cast<UINT>(SendDlgItemMessageA(dialog, id, BM_GETCHECK, 0, 0)); }

BOOL CheckRadioButton(HWND dialog, int first, int last, int check) {
    for (HWND each = GetWindow(dialog, GW_CHILD); each != nullptr; each = GetWindow(each, GW_HWNDNEXT)) {
        const int id = GetDlgCtrlID(each);
        if (id >= first && id <= last) SendMessageA(each, BM_SETCHECK, id == check ? BST_CHECKED : BST_UNCHECKED, 0);
    }
    return TRUE;
}
