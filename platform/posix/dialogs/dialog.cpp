// The making and the life of dialogs, and what a dialog does with messages that its procedure leaves alone.
#include "platform/posix/dialogs/dialog_internal.h"

#include <algorithm>

#include "platform/dpi.h"
#include "platform/posix/kernel/errors.h"

namespace orvik::detail {

std::shared_ptr<Dialog> DialogOf(HWND window) { return std::dynamic_pointer_cast<Dialog>(ControlOf(window)); }

bool IsButton(HWND window, LRESULT codes) { return (SendMessageA(window, WM_GETDLGCODE, 0, 0) & codes) != 0; }

namespace {
HBRUSH DefaultBrush(UINT message, HDC dc) {
    const bool paper = message == WM_CTLCOLOREDIT || message == WM_CTLCOLORLISTBOX;
    SetTextColor(dc, GetSysColor(COLOR_WINDOWTEXT));
    SetBkColor(dc, GetSysColor(paper ? COLOR_WINDOW : COLOR_3DFACE));
    return GetSysColorBrush(paper ? COLOR_WINDOW : COLOR_3DFACE);
}

// Messages whose answer is the procedure's own value instead of DWLP_MSGRESULT.
bool AnswersDirectly(UINT message) {
    return (message >= WM_CTLCOLORMSGBOX && message <= WM_CTLCOLORSTATIC) || message == WM_COMPAREITEM ||
           message == WM_INITDIALOG;
}

void Restyle(HWND button, DWORD kind) { SendMessageA(button, BM_SETSTYLE, kind, TRUE); }
}  // namespace

void Dialog::SaveFocus() {
    const HWND focus = GetFocus();
    if (focus != nullptr && IsChild(m_window, focus)) m_focus = focus;
}

void Dialog::RestoreFocus() {
    HWND control = m_focus;
    if (control == nullptr || !IsWindow(control) || !IsChild(m_window, control))
        control = GetNextDlgTabItem(m_window, nullptr, FALSE);
    m_focus = nullptr;
    if (control == nullptr) return;
    SetFocus(control);
    if (GetFocus() != control) m_focus = control;  // not to be seen yet
}

void Dialog::SetDefault(int id) {
    const HWND before = GetDlgItem(m_window, m_default), now = GetDlgItem(m_window, id);
    if (before != nullptr && before != now && IsButton(before, DLGC_DEFPUSHBUTTON)) Restyle(before, BS_PUSHBUTTON);
    m_default = id;
    if (now != nullptr && IsButton(now, DLGC_UNDEFPUSHBUTTON)) Restyle(now, BS_DEFPUSHBUTTON);
}

void Dialog::SetFocusTo(HWND control) {
    if (!IsWindow(control)) return;
    if (IsButton(control, DLGC_HASSETSEL)) SendMessageA(control, EM_SETSEL, 0, -1);
    SetFocus(control);
    if (!IsWindow(m_window) || !IsWindow(control)) return;
    // The button with the focus looks like the default one; without such, the default button does.
    const bool push = IsButton(control, DLGC_DEFPUSHBUTTON | DLGC_UNDEFPUSHBUTTON);
    const HWND standing = GetDlgItem(m_window, m_default);
    for (HWND each = GetWindow(m_window, GW_CHILD); each != nullptr; each = GetWindow(each, GW_HWNDNEXT)) {
        const bool wanted = push ? each == control : each == standing;
        if (!wanted && IsButton(each, DLGC_DEFPUSHBUTTON)) Restyle(each, BS_PUSHBUTTON);
        if (wanted && IsButton(each, DLGC_UNDEFPUSHBUTTON)) Restyle(each, BS_DEFPUSHBUTTON);
    }
}

LRESULT Dialog::Handle(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_ERASEBKGND: {
            const HDC dc = reinterpret_cast<HDC>(wParam);
            LRESULT brush = SendMessageA(m_window, WM_CTLCOLORDLG, wParam, reinterpret_cast<LPARAM>(m_window));
            if (brush == 0) brush = reinterpret_cast<LRESULT>(DefaultBrush(WM_CTLCOLORDLG, dc));
            const RECT client = Client();
            FillRect(dc, &client, reinterpret_cast<HBRUSH>(brush));
            return TRUE;
        }
        case WM_CTLCOLORMSGBOX:
        case WM_CTLCOLOREDIT:
        case WM_CTLCOLORLISTBOX:
        case WM_CTLCOLORBTN:
        case WM_CTLCOLORDLG:
        case WM_CTLCOLORSCROLLBAR:
        case WM_CTLCOLORSTATIC:
            return reinterpret_cast<LRESULT>(DefaultBrush(message, reinterpret_cast<HDC>(wParam)));
        case WM_SHOWWINDOW:
            if (wParam == 0) SaveFocus();
            break;
        case WM_ACTIVATE:
            LOWORD(wParam) != WA_INACTIVE ? RestoreFocus() : SaveFocus();
            return 0;
        case WM_SETFOCUS:
            RestoreFocus();
            return 0;
        case DM_SETDEFID:
            SetDefault(static_cast<int>(wParam));
            return TRUE;
        case DM_GETDEFID:
            if (m_default != 0 && IsWindow(GetDlgItem(m_window, m_default)))
                return static_cast<LRESULT>(static_cast<DWORD>(MAKELONG(m_default, DC_HASDEFID)));
            return 0;
        case WM_NEXTDLGCTL: {
            const HWND target = LOWORD(lParam) != 0 ? reinterpret_cast<HWND>(wParam)
                                                    : GetNextDlgTabItem(m_window, GetFocus(), static_cast<BOOL>(wParam != 0));
            if (target != nullptr) SetFocusTo(target);
            return 0;
        }
        case WM_CLOSE: {
            const HWND cancel = GetDlgItem(m_window, IDCANCEL);
            if (cancel == nullptr || IsWindowEnabled(cancel))
                PostMessageA(m_window, WM_COMMAND, IDCANCEL, reinterpret_cast<LPARAM>(cancel));
            return 0;
        }
        case WM_SETFONT:
            m_font = reinterpret_cast<HFONT>(wParam);
            return 0;
        case WM_GETFONT:
            return reinterpret_cast<LRESULT>(m_font);
        case WM_GETDPISCALEDSIZE:
            return SuggestSize(static_cast<UINT>(wParam), *reinterpret_cast<SIZE*>(lParam));
        case WM_DPICHANGED: {
            Rescale();
            const RECT& place = *reinterpret_cast<const RECT*>(lParam);
            SetWindowPos(m_window, nullptr, place.left, place.top, place.right - place.left, place.bottom - place.top,
                         SWP_NOZORDER | SWP_NOACTIVATE);
            return 0;
        }
        case WM_DPICHANGED_BEFOREPARENT:
            Rescale();  // its own place is its parent's business
            return 0;
        case WM_NCDESTROY:
            if (ownFont != nullptr) DeleteObject(std::exchange(ownFont, nullptr));
            ended = true;
            break;
        default:
            break;
    }
    return DefWindowProcA(m_window, message, wParam, lParam);
}

bool Dialog::CreateItems(const DialogTemplate& from, HINSTANCE instance) {
    const HWND window = m_window;
    for (const TemplateItem& item : from.items) {
        const RECT inUnits{item.x, item.y, item.x + item.width, item.y + item.height}, place = InPixels(inUnits, units);
        // An icon's title is a number: it travels as the byte 0xFF and the number's two bytes.
        std::string title = item.title.text;
        if (item.title.number != 0) {
            title = {'\xFF', static_cast<char>(item.title.number & 0xFF), static_cast<char>(item.title.number >> 8)};
        }
        const HWND control = CreateWindowExA(
            item.exStyle | WS_EX_NOPARENTNOTIFY,
            item.windowClass.number != 0 ? MAKEINTRESOURCEA(item.windowClass.number) : item.windowClass.text.c_str(),
            title.c_str(), (item.style | WS_CHILD) & ~WS_POPUP, place.left, place.top, place.right - place.left,
            place.bottom - place.top, window, reinterpret_cast<HMENU>(static_cast<UINT_PTR>(item.id)), instance,
            const_cast<void*>(item.data));
        if (!IsWindow(window)) return false;
        if (control == nullptr) {
            if (from.style & DS_NOFAILCREATE) continue;
            return false;
        }
        if (ownFont != nullptr) SendMessageA(control, WM_SETFONT, reinterpret_cast<WPARAM>(ownFont), FALSE);
        m_placed.push_back({control, inUnits, PlaceIn(window, control)});
        // The first default button counts; any later one looks plain.
        if (!IsButton(control, DLGC_DEFPUSHBUTTON)) continue;
        if (DefaultId() == 0)
            SetDefault(static_cast<int>(item.id));
        else
            Restyle(control, BS_PUSHBUTTON);
    }
    return true;
}

namespace {
// The window that a modal dialog over `parent` disables.
HWND OwnerOf(HWND parent) {
    if (parent == nullptr) return nullptr;
    const HWND root = GetAncestor(parent, GA_ROOT);
    return root != nullptr ? root : parent;
}

// Where the dialog stands, in pixels: of the desktop, or of the parent's client area for a child.
RECT PlaceOf(const DialogTemplate& from, HWND parent, SIZE units, DWORD style) {
    RECT place = InPixels({0, 0, from.width, from.height}, units);
    AdjustWindowRectEx(&place, style, FALSE, from.exStyle);
    const LONG width = place.right - place.left, height = place.bottom - place.top;
    const RECT corner = InPixels({from.x, from.y, 0, 0}, units);
    POINT at{corner.left, corner.top};
    if (from.x == static_cast<short>(0x8000)) at = {0, 0};
    if (style & WS_CHILD) return {at.x, at.y, at.x + width, at.y + height};
    if (from.style & DS_CENTER) {
        RECT around{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
        if (const HWND owner = OwnerOf(parent); owner != nullptr && IsWindowVisible(owner)) GetWindowRect(owner, &around);
        at = {(around.left + around.right - width) / 2, (around.top + around.bottom - height) / 2};
    } else if (parent != nullptr && (from.style & DS_ABSALIGN) == 0) {
        ClientToScreen(parent, &at);
    }
    return {at.x, at.y, at.x + width, at.y + height};
}

HWND Create(HINSTANCE instance, const void* bytes, HWND parent, DLGPROC procedure, LPARAM parameter, bool modal) {
    if (bytes == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    const DialogTemplate from = ReadTemplate(bytes);
    DWORD style = from.style;
    if (style & DS_CONTROL) style &= ~(WS_CAPTION | WS_SYSMENU);
    if (!(style & WS_CHILD)) style |= WS_CLIPSIBLINGS;
    const HFONT font = from.style & DS_SETFONT ? MakeFont(from.font, OrvikDpiOf(parent)) : nullptr;
    const SIZE units = UnitsOf(font);
    const RECT place = PlaceOf(from, parent, units, style);
    const HWND window = CreateWindowExA(from.exStyle,
                                        from.windowClass.number != 0    ? MAKEINTRESOURCEA(from.windowClass.number)
                                        : from.windowClass.text.empty() ? reinterpret_cast<LPCSTR>(WC_DIALOG)
                                                                        : from.windowClass.text.c_str(),
                                        from.title.text.c_str(), style & ~WS_VISIBLE, place.left, place.top,
                                        place.right - place.left, place.bottom - place.top, parent, nullptr, instance, nullptr);
    std::shared_ptr<Dialog> dialog = DialogOf(window);
    if (window != nullptr && !dialog) {  // a class of the program's own
        dialog = std::make_shared<Dialog>(window);
        SetControl(window, dialog);
    }
    if (!dialog) {
        if (font != nullptr) DeleteObject(font);
        return nullptr;
    }
    dialog->units = units;
    dialog->ownFont = font;
    if (font != nullptr) dialog->font = from.font;
    dialog->size = {from.width, from.height};
    dialog->made = {place.right - place.left, place.bottom - place.top};
    dialog->modal = modal;
    SetWindowLongPtrA(window, DWLP_DLGPROC, reinterpret_cast<LONG_PTR>(procedure));
    if (font != nullptr) SendMessageA(window, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
    if (!dialog->CreateItems(from, instance)) {
        if (IsWindow(window)) DestroyWindow(window);
        return nullptr;
    }
    const HWND first = GetNextDlgTabItem(window, nullptr, FALSE);
    const LRESULT takesFocus = SendMessageA(window, WM_INITDIALOG, reinterpret_cast<WPARAM>(first), parameter);
    if (!IsWindow(window)) return nullptr;
    if (takesFocus != 0 && !(style & DS_CONTROL)) {
        // The procedure may have changed which control is the first one.
        const HWND now = GetNextDlgTabItem(window, nullptr, FALSE);
        if (now != nullptr) {
            dialog->SetFocusTo(now);
            if (GetFocus() != now) dialog->SetFocusLater(now);
        } else if (!(style & WS_CHILD)) {
            SetFocus(window);
        }
    }
    if (from.style & WS_VISIBLE && IsWindow(window) && !(GetWindowLongPtrA(window, GWL_STYLE) & WS_VISIBLE)) {
        ShowWindow(window, SW_SHOWNORMAL);
        if (IsWindow(window)) UpdateWindow(window);
    }
    return IsWindow(window) ? window : nullptr;
}

INT_PTR RunModal(HWND window) {
    const std::shared_ptr<Dialog> dialog = DialogOf(window);
    if (!dialog) return 0;
    bool shown = false;
    while (!dialog->ended && IsWindow(window)) {
        MSG message;
        if (!PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            // A dialog that nobody has shown shows itself when there is nothing else to do.
            if (!shown) {
                shown = true;
                ShowWindow(window, SW_SHOWNORMAL);
                continue;
            }
            if (GetMessageA(&message, nullptr, 0, 0) < 0) break;
        }
        if (message.message == WM_QUIT) {
            PostQuitMessage(static_cast<int>(message.wParam));
            break;
        }
        if (!IsDialogMessageA(window, &message)) {
            TranslateMessage(&message);
            DispatchMessageA(&message);
        }
    }
    if (dialog->owner != nullptr) EnableWindow(std::exchange(dialog->owner, nullptr), TRUE);
    if (IsWindow(window)) DestroyWindow(window);
    return dialog->result;
}
}  // namespace
}  // namespace orvik::detail

using namespace orvik::detail;

LRESULT DefDlgProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    std::shared_ptr<Control> control = ControlOf(window);
    if (!control) {
        if (message != WM_NCCREATE) return DefWindowProcA(window, message, wParam, lParam);
        control = std::make_shared<Dialog>(window);
        SetControl(window, control);
    }
    SetWindowLongPtrA(window, DWLP_MSGRESULT, 0);
    const auto procedure = reinterpret_cast<DLGPROC>(GetWindowLongPtrA(window, DWLP_DLGPROC));
    const INT_PTR result = procedure != nullptr ? procedure(window, message, wParam, lParam) : 0;
    if (AnswersDirectly(message) && (result != 0 || message == WM_INITDIALOG)) return result;
    if (result != 0) return IsWindow(window) ? GetWindowLongPtrA(window, DWLP_MSGRESULT) : 0;
    return control->Handle(message, wParam, lParam);
}

HWND CreateDialogIndirectParamA(HINSTANCE instance, LPCDLGTEMPLATEA dialogTemplate, HWND parent, DLGPROC procedure,
                                LPARAM parameter) {
    return Create(instance, dialogTemplate, parent, procedure, parameter, false);
}

INT_PTR DialogBoxIndirectParamA(HINSTANCE instance, LPCDLGTEMPLATEA dialogTemplate, HWND parent, DLGPROC procedure,
                                LPARAM parameter) {
    if (parent != nullptr && !IsWindow(parent)) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return 0;
    }
    HWND owner = OwnerOf(parent);
    if (owner != nullptr && !IsWindowEnabled(owner)) owner = nullptr;
    const HWND window = Create(instance, dialogTemplate, parent, procedure, parameter, true);
    if (window == nullptr) return -1;
    if (const auto dialog = DialogOf(window); dialog && owner != nullptr && !dialog->ended) {
        dialog->owner = owner;
        EnableWindow(owner, FALSE);
    }
    return RunModal(window);
}

BOOL EndDialog(HWND window, INT_PTR result) {
    const std::shared_ptr<Dialog> dialog = DialogOf(window);
    if (!dialog) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    dialog->result = result;
    dialog->ended = true;
    // The owner comes first, so that it is there to be activated when the dialog goes.
    if (dialog->owner != nullptr) EnableWindow(std::exchange(dialog->owner, nullptr), TRUE);
    ShowWindow(window, SW_HIDE);
    PostMessageA(window, WM_NULL, 0, 0);  // wakes the loop
    return TRUE;
}

BOOL MapDialogRect(HWND window, LPRECT rectangle) {
    const std::shared_ptr<Dialog> dialog = DialogOf(window);
    if (!dialog || rectangle == nullptr) {
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
        return FALSE;
    }
    *rectangle = InPixels(*rectangle, dialog->units);
    return TRUE;
}
