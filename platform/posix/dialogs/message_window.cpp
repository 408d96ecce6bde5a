// The message box as a window, for programs whose windows come to a screen.
#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "platform/posix/controls/controls.h"
#include "platform/posix/dialogs/dialog.h"
#include "platform/posix/dialogs/message_box_internal.h"
#include "platform/posix/drawing/text_draw.h"
#include "platform/posix/resources/modules.h"
#include "platform/posix/resources/resources.h"
#include "platform/posix/window/window_internal.h"
#include "res/ids.h"

namespace orvik::detail {
namespace {
// In dialog units.
constexpr int kMargin = 7, kBetween = 4, kButtonWidth = 50, kButtonHeight = 14, kWidestText = 260;
constexpr WORD kTextId = 0xFFFF;

struct Question {
    const std::string &text, &caption;
    std::span<const int> buttons;
    int chosen;  // by Enter
    int escape;  // by Escape and the frame's button; 0 where neither may answer
};

std::string WordOf(int button) {
    char word[128] = "";
    LoadStringA(GetModuleHandleA("OrvikShared"), IDS_BUTTON_OK + static_cast<UINT>(button - IDOK), word, sizeof word);
    return word;
}

HWND AddControl(HWND dialog, LPCSTR windowClass, const std::string& text, DWORD style, const RECT& place, int id) {
    const HWND control = CreateWindowExA(0, windowClass, text.c_str(), WS_CHILD | WS_VISIBLE | style, place.left, place.top,
                                         place.right - place.left, place.bottom - place.top, dialog,
                                         reinterpret_cast<HMENU>(static_cast<UINT_PTR>(id)), nullptr, nullptr);
    SendMessageA(control, WM_SETFONT, static_cast<WPARAM>(SendMessageA(dialog, WM_GETFONT, 0, 0)), FALSE);
    return control;
}

SIZE InPixels(HWND dialog, int width, int height) {
    RECT units{0, 0, width, height};
    MapDialogRect(dialog, &units);
    return {units.right, units.bottom};
}

// The text's size, broken into lines where it is long.
SIZE Measure(HWND dialog, const std::string& text, LONG widest) {
    const HDC dc = GetDC(dialog);
    const HGDIOBJ before = SelectObject(dc, reinterpret_cast<HFONT>(SendMessageA(dialog, WM_GETFONT, 0, 0)));
    RECT place{0, 0, widest, 0};
    DrawTextA(dc, text.c_str(), -1, &place, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX | DT_EXPANDTABS);
    SelectObject(dc, before);
    ReleaseDC(dialog, dc);
    return {place.right + 2, place.bottom};
}

// Text above, buttons below at the right.
HWND Build(HWND dialog, const Question& question) {
    const SIZE margin = InPixels(dialog, kMargin, kMargin), between = InPixels(dialog, kBetween, kBetween),
               button = InPixels(dialog, kButtonWidth, kButtonHeight),
               text = Measure(dialog, question.text, InPixels(dialog, kWidestText, 0).cx);
    const auto count = static_cast<LONG>(question.buttons.size());
    const LONG row = count * button.cx + (count - 1) * between.cx;
    const LONG width = std::max(text.cx, row) + 2 * margin.cx, below = margin.cy + text.cy + margin.cy;
    RECT outer{0, 0, width, below + button.cy + margin.cy}, before{};
    AdjustWindowRectEx(&outer, static_cast<DWORD>(GetWindowLongPtrA(dialog, GWL_STYLE)), FALSE, 0);
    GetWindowRect(dialog, &before);
    const LONG outerWidth = outer.right - outer.left, outerHeight = outer.bottom - outer.top;
    SetWindowPos(dialog, nullptr, before.left - outerWidth / 2, before.top - outerHeight / 2, outerWidth, outerHeight,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    AddControl(dialog, "Static", question.text, SS_NOPREFIX, {margin.cx, margin.cy, margin.cx + text.cx, margin.cy + text.cy},
               kTextId);
    HWND first = nullptr;
    LONG left = width - margin.cx - row;
    for (const int id : question.buttons) {
        const bool chosen = id == question.chosen;
        const HWND made = AddControl(dialog, "Button", WordOf(id), WS_TABSTOP | (chosen ? BS_DEFPUSHBUTTON : BS_PUSHBUTTON),
                                     {left, below, left + button.cx, below + button.cy}, id);
        if (chosen) first = made;
        left += button.cx + between.cx;
    }
    SendMessageA(dialog, DM_SETDEFID, static_cast<WPARAM>(question.chosen), 0);
    return first;
}

INT_PTR CALLBACK Procedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrA(dialog, DWLP_USER, lParam);
        const auto& asked = *reinterpret_cast<const Question*>(lParam);
        SetWindowTextA(dialog, asked.caption.c_str());
        SetFocus(Build(dialog, asked));
        return FALSE;
    }
    const auto* const question = reinterpret_cast<const Question*>(GetWindowLongPtrA(dialog, DWLP_USER));
    if (message != WM_COMMAND || question == nullptr) return FALSE;
    int id = LOWORD(wParam);
    if (std::find(question->buttons.begin(), question->buttons.end(), id) == question->buttons.end())
        id = id == IDCANCEL ? question->escape : 0;
    if (id != 0) EndDialog(dialog, id);
    return TRUE;
}
}  // namespace

int AskInWindow(HWND owner, const std::string& text, const std::string& caption, std::span<const int> buttons, int chosen) {
    const bool cancels = std::find(buttons.begin(), buttons.end(), IDCANCEL) != buttons.end();
    const Question question{text, caption, buttons, chosen, cancels ? IDCANCEL : buttons.size() == 1 ? buttons.front() : 0};
    // A dialog without controls, which Build adds; its place is where its middle will be.
    struct {
        DLGTEMPLATE head{DS_SETFONT | DS_MODALFRAME | DS_CENTER | WS_POPUP | WS_CAPTION | WS_SYSMENU, 0, 0, 0, 0, 0, 0};
        WORD menu = 0, windowClass = 0, title = 0, points = 8;
        WCHAR face[13] = {'M', 'S', ' ', 'S', 'h', 'e', 'l', 'l', ' ', 'D', 'l', 'g', 0};
    } bytes;
    const INT_PTR answer = DialogBoxIndirectParamA(nullptr, &bytes.head, owner, Procedure, reinterpret_cast<LPARAM>(&question));
    // Ended from outside, as by the program's end: nobody has chosen.
    return answer > 0 ? static_cast<int>(answer) : question.escape != 0 ? question.escape : buttons.back();
}

}  // namespace orvik::detail
