// Keys that stand for commands.
#include <algorithm>
#include <map>
#include <mutex>
#include <vector>

#include "platform/posix/dialogs/menu.h"
#include "platform/posix/window/window_internal.h"

namespace {
struct Tables {
    std::mutex lock;
    std::map<HACCEL, std::vector<ACCEL>> made;
    uintptr_t last = 0x30000;
};
Tables& TheTables() {
    static Tables* tables = new Tables;
    return *tables;
}
}  // namespace

HACCEL CreateAcceleratorTableA(LPACCEL entries, int count) {
    if (entries == nullptr || count < 1 || count > 32767) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    Tables& tables = TheTables();
    const std::lock_guard lock(tables.lock);
    const auto handle = reinterpret_cast<HACCEL>(tables.last += 2);
    tables.made[handle].assign(entries, entries + count);
    return handle;
}

BOOL DestroyAcceleratorTable(HACCEL table) {
    Tables& tables = TheTables();
    const std::lock_guard lock(tables.lock);
    return tables.made.erase(table) != 0;
}

int TranslateAcceleratorA(HWND window, HACCEL table, LPMSG message) {
    if (window == nullptr || message == nullptr) return FALSE;
    const UINT kind = message->message;
    const bool down = kind == WM_KEYDOWN || kind == WM_SYSKEYDOWN, character = kind == WM_CHAR || kind == WM_SYSCHAR;
    if (!down && !character) return FALSE;
    std::vector<ACCEL> entries;
    {
        Tables& tables = TheTables();
        const std::lock_guard lock(tables.lock);
        const auto found = tables.made.find(table);
        if (found == tables.made.end()) return FALSE;
        entries = found->second;
    }
    const bool alt = GetKeyState(VK_MENU) < 0;
    const int held = (GetKeyState(VK_SHIFT) < 0 ? FSHIFT : 0) | (GetKeyState(VK_CONTROL) < 0 ? FCONTROL : 0) | (alt ? FALT : 0);
    const auto wanted = std::find_if(entries.begin(), entries.end(), [&](const ACCEL& each) {
        if (each.key != message->wParam) return false;
        if ((each.fVirt & FVIRTKEY) != 0) return down && (each.fVirt & (FSHIFT | FCONTROL | FALT)) == held;
        return character && ((each.fVirt & FALT) != 0) == (kind == WM_SYSCHAR);
    });
    if (wanted == entries.end()) return FALSE;
    const HMENU menu = GetMenu(window);
    UINT state = 0;
    if (menu != nullptr) {
        SendMessageA(window, WM_INITMENU, reinterpret_cast<WPARAM>(menu), 0);
        state = GetMenuState(menu, wanted->cmd, MF_BYCOMMAND);
        if (state == 0xFFFFFFFFu) state = 0;
    }
    if (IsWindowEnabled(window) && (state & (MF_GRAYED | MF_DISABLED)) == 0)
        SendMessageA(window, WM_COMMAND, MAKEWPARAM(wanted->cmd, 1), 0);
    return TRUE;
}
