// Moving about in a dialog: tab order, groups, mnemonics, and the keys that mean something to the dialog itself.
#include <algorithm>

#include "platform/letters.h"
#include "platform/posix/dialogs/dialog_internal.h"
#include "platform/posix/text/text_internal.h"

namespace orvik::detail {
namespace {

DWORD StyleOf(HWND window) { return static_cast<DWORD>(GetWindowLongPtrA(window, GWL_STYLE)); }
bool Usable(HWND window) { return (StyleOf(window) & (WS_VISIBLE | WS_DISABLED)) == WS_VISIBLE; }
bool HoldsControls(HWND window) { return (GetWindowLongPtrA(window, GWL_EXSTYLE) & WS_EX_CONTROLPARENT) != 0; }

// Every control in order, with those of usable parents among them in the parent's stead.
void List(HWND parent, std::vector<HWND>& out) {
    for (HWND each = GetWindow(parent, GW_CHILD); each != nullptr; each = GetWindow(each, GW_HWNDNEXT)) {
        if (!HoldsControls(each))
            out.push_back(each);
        else if (Usable(each))
            List(each, out);
    }
}

// The place of the control, or of the listed one that it is a part of; the list's size when there is none.
size_t PlaceOf(const std::vector<HWND>& list, HWND control) {
    return static_cast<size_t>(
        std::find_if(list.begin(), list.end(), [&](HWND each) { return each == control || IsChild(each, control); }) -
        list.begin());
}

template <class Fits>
HWND Walk(const std::vector<HWND>& list, size_t from, bool previous, Fits fits) {
    const size_t count = list.size();
    for (size_t step = 1; step <= count; ++step) {
        const HWND each = list[(previous ? from + count - step % count : from + step) % count];
        if (fits(each)) return each;
    }
    return nullptr;
}

// The letter after a single "&", in lower case; 0 without one.
char32_t Mnemonic(HWND window) {
    char text[256];
    const int length = GetWindowTextA(window, text, sizeof text);
    for (int i = 0; i + 1 < length; ++i) {
        if (text[i] != '&') continue;
        if (text[i + 1] == '&')
            ++i;
        else {
            std::string_view rest(text + i + 1, static_cast<size_t>(length - i - 1));
            return LowerCase(TakeHouse(rest));
        }
    }
    return 0;
}

bool PressMnemonic(HWND window, Dialog& dialog, WPARAM key) {
    const std::string typed = OrvikTypedText().Take(key);
    if (typed.empty() || key == 0 || key == ' ') return false;
    std::vector<HWND> list;
    List(window, list);
    if (list.empty()) return false;
    const HWND focus = GetFocus();
    size_t from = PlaceOf(list, focus);
    if (from == list.size()) from = list.size() - 1;
    std::string_view rest = typed;
    const char32_t letter = LowerCase(TakeHouse(rest));
    const HWND found = Walk(list, from, false, [&](HWND each) {
        return Usable(each) && !IsButton(each, DLGC_WANTCHARS) && Mnemonic(each) == letter;
    });
    if (found == nullptr) return false;
    if (IsButton(found, DLGC_BUTTON)) {
        dialog.SetFocusTo(found);
        if (IsWindow(found)) SendMessageA(found, BM_CLICK, 0, 0);
    } else if (IsButton(found, DLGC_STATIC)) {
        if (const HWND next = GetNextDlgTabItem(window, found, FALSE)) dialog.SetFocusTo(next);
    } else {
        dialog.SetFocusTo(found);
    }
    return true;
}

void MoveInGroup(HWND window, Dialog& dialog, HWND focus, bool back) {
    const HWND next = GetNextDlgGroupItem(window, focus, back);
    if (next == nullptr || next == focus) return;
    dialog.SetFocusTo(next);
}

void PressDefault(HWND window, HWND focus) {
    if (focus != nullptr && IsButton(focus, DLGC_DEFPUSHBUTTON)) {
        SendMessageA(window, WM_COMMAND, MAKEWPARAM(GetDlgCtrlID(focus), BN_CLICKED), reinterpret_cast<LPARAM>(focus));
        return;
    }
    const LRESULT given = SendMessageA(window, DM_GETDEFID, 0, 0);
    const int id = HIWORD(given) == DC_HASDEFID ? LOWORD(given) : IDOK;
    const HWND button = GetDlgItem(window, id);
    if (button != nullptr && !IsWindowEnabled(button)) return;
    SendMessageA(window, WM_COMMAND, MAKEWPARAM(id, BN_CLICKED), reinterpret_cast<LPARAM>(button));
}

// Whether the key is the dialog's own; it has been obeyed then.
bool PressKey(HWND window, Dialog& dialog, const MSG& message) {
    const LRESULT codes = SendMessageA(message.hwnd, WM_GETDLGCODE, message.wParam, reinterpret_cast<LPARAM>(&message));
    if (codes & DLGC_WANTMESSAGE) return false;
    switch (message.wParam) {
        case VK_TAB:
            if (codes & DLGC_WANTTAB || GetKeyState(VK_CONTROL) < 0) return false;
            SendMessageA(window, WM_NEXTDLGCTL, GetKeyState(VK_SHIFT) < 0, 0);
            return true;
        case VK_RIGHT:
        case VK_DOWN:
        case VK_LEFT:
        case VK_UP:
            if (codes & DLGC_WANTARROWS) return false;
            MoveInGroup(window, dialog, message.hwnd, message.wParam == VK_LEFT || message.wParam == VK_UP);
            return true;
        case VK_ESCAPE:
        case VK_CANCEL:
            SendMessageA(window, WM_COMMAND, IDCANCEL, reinterpret_cast<LPARAM>(GetDlgItem(window, IDCANCEL)));
            return true;
        case VK_RETURN:
            PressDefault(window, GetFocus());
            return true;
        default:
            return false;
    }
}
}  // namespace
}  // namespace orvik::detail

using namespace orvik::detail;

HWND GetNextDlgTabItem(HWND window, HWND control, BOOL previous) {
    if (control == window) control = nullptr;
    std::vector<HWND> list;
    List(window, list);
    if (list.empty()) return nullptr;
    size_t from = control == nullptr ? list.size() : PlaceOf(list, control);
    if (from == list.size()) from = previous ? 0 : list.size() - 1;
    return Walk(list, from, previous != FALSE, [](HWND each) { return Usable(each) && (StyleOf(each) & WS_TABSTOP) != 0; });
}

HWND GetNextDlgGroupItem(HWND window, HWND control, BOOL previous) {
    if (control == window) control = nullptr;
    std::vector<HWND> list;
    const HWND parent = control != nullptr ? GetParent(control) : window;
    for (HWND each = GetWindow(parent, GW_CHILD); each != nullptr; each = GetWindow(each, GW_HWNDNEXT)) list.push_back(each);
    if (list.empty()) return nullptr;
    size_t at = control == nullptr ? 0 : PlaceOf(list, control);
    if (at == list.size()) return nullptr;
    // A group reaches from a control that begins one to the next such control.
    const auto begins = [](HWND each) { return (StyleOf(each) & WS_GROUP) != 0; };
    size_t first = at, last = at + 1;
    while (first > 0 && !begins(list[first])) --first;
    while (last < list.size() && !begins(list[last])) ++last;
    const std::vector<HWND> group(list.begin() + static_cast<std::ptrdiff_t>(first),
                                  list.begin() + static_cast<std::ptrdiff_t>(last));
    const HWND found =
        Walk(group, at - first, previous != FALSE, [](HWND each) { return Usable(each) && !IsButton(each, DLGC_STATIC); });
    return found != nullptr ? found : control;
}

BOOL IsDialogMessageA(HWND window, LPMSG message) {
    if (message == nullptr || !IsWindow(window) || message->hwnd == nullptr) return FALSE;
    if (message->hwnd != window && !IsChild(window, message->hwnd)) return FALSE;
    const std::shared_ptr<Dialog> dialog = DialogOf(window);
    if (!dialog) return FALSE;
    switch (message->message) {
        case WM_KEYDOWN:
            if (PressKey(window, *dialog, *message)) return TRUE;
            break;
        case WM_CHAR: {
            const LRESULT codes = SendMessageA(message->hwnd, WM_GETDLGCODE, message->wParam, reinterpret_cast<LPARAM>(message));
            if (codes & (DLGC_WANTCHARS | DLGC_WANTMESSAGE)) break;
            if (message->wParam == '\t' && !(codes & DLGC_WANTTAB)) return TRUE;
            if (PressMnemonic(window, *dialog, message->wParam)) return TRUE;
            break;
        }
        case WM_SYSCHAR:
            if (PressMnemonic(window, *dialog, message->wParam)) return TRUE;
            break;
        default:
            break;
    }
    TranslateMessage(message);
    DispatchMessageA(message);
    return TRUE;
}
