// Windows, their classes and their messages.
#include <vector>

#include "platform/windows/message_text_internal.h"

using namespace orvik::detail;

namespace {
std::wstring CaptionOf(HWND window) {
    std::wstring text(static_cast<size_t>(GetWindowTextLengthW(window)) + 1, L'\0');
    text.resize(static_cast<size_t>(GetWindowTextW(window, text.data(), static_cast<int>(text.size()))));
    return text;
}
}  // namespace

ATOM WINAPI OrvikRegisterClassA(const WNDCLASSA* given) {
    if (!HouseIsUtf8()) return RegisterClassA(given);
    const WideArgument name(given->lpszClassName), menu(given->lpszMenuName);
    WNDCLASSW wide{};
    wide.style = given->style;
    wide.lpfnWndProc = WideProcedure(given->lpfnWndProc);
    wide.cbClsExtra = given->cbClsExtra;
    wide.cbWndExtra = given->cbWndExtra;
    wide.hInstance = given->hInstance;
    wide.hIcon = given->hIcon;
    wide.hCursor = given->hCursor;
    wide.hbrBackground = given->hbrBackground;
    wide.lpszMenuName = menu;
    wide.lpszClassName = name;
    return wide.lpfnWndProc != nullptr ? RegisterClassW(&wide) : 0;
}

BOOL WINAPI OrvikGetClassInfoA(HINSTANCE module, LPCSTR name, LPWNDCLASSA out) {
    if (!HouseIsUtf8()) return GetClassInfoA(module, name, out);
    WNDCLASSW wide{};
    if (!GetClassInfoW(module, WideArgument(name), &wide)) return FALSE;
    *out = {};
    out->style = wide.style;
    out->lpfnWndProc = NarrowProcedure(wide.lpfnWndProc);
    out->cbClsExtra = wide.cbClsExtra;
    out->cbWndExtra = wide.cbWndExtra;
    out->hInstance = wide.hInstance;
    out->hIcon = wide.hIcon;
    out->hCursor = wide.hCursor;
    out->hbrBackground = wide.hbrBackground;
    // A menu's name lies with the class, in UTF-16; numbers are told.
    out->lpszMenuName = IS_INTRESOURCE(wide.lpszMenuName) ? reinterpret_cast<LPCSTR>(wide.lpszMenuName) : nullptr;
    out->lpszClassName = name;
    return TRUE;
}

BOOL WINAPI OrvikUnregisterClassA(LPCSTR name, HINSTANCE module) {
    return HouseIsUtf8() ? UnregisterClassW(WideArgument(name), module) : UnregisterClassA(name, module);
}

HWND WINAPI OrvikCreateWindowExA(DWORD exStyle, LPCSTR kind, LPCSTR name, DWORD style, int x, int y, int width, int height,
                                 HWND parent, HMENU menu, HINSTANCE module, LPVOID data) {
    if (!HouseIsUtf8()) return CreateWindowExA(exStyle, kind, name, style, x, y, width, height, parent, menu, module, data);
    return CreateWindowExW(exStyle, WideArgument(kind), WideArgument(name), style, x, y, width, height, parent, menu, module,
                           data);
}

HWND WINAPI OrvikCreateDialogIndirectParamA(HINSTANCE module, LPCDLGTEMPLATEA source, HWND parent, DLGPROC procedure,
                                            LPARAM data) {
    return HouseIsUtf8() ? CreateDialogIndirectParamW(module, source, parent, procedure, data)
                         : CreateDialogIndirectParamA(module, source, parent, procedure, data);
}

LONG_PTR WINAPI OrvikGetWindowLongPtrA(HWND window, int index) {
    if (!HouseIsUtf8()) return GetWindowLongPtrA(window, index);
    const LONG_PTR value = GetWindowLongPtrW(window, index);
    if (index != GWLP_WNDPROC) return value;
    return reinterpret_cast<LONG_PTR>(NarrowProcedure(reinterpret_cast<WNDPROC>(value)));
}

LONG_PTR WINAPI OrvikSetWindowLongPtrA(HWND window, int index, LONG_PTR value) {
    if (!HouseIsUtf8()) return SetWindowLongPtrA(window, index, value);
    if (index != GWLP_WNDPROC) return SetWindowLongPtrW(window, index, value);
    const WNDPROC wide = WideProcedure(reinterpret_cast<WNDPROC>(value));
    if (wide == nullptr) return 0;
    const LONG_PTR before = SetWindowLongPtrW(window, index, reinterpret_cast<LONG_PTR>(wide));
    return reinterpret_cast<LONG_PTR>(NarrowProcedure(reinterpret_cast<WNDPROC>(before)));
}

LRESULT WINAPI OrvikCallWindowProcA(WNDPROC procedure, HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!HouseIsUtf8()) return CallWindowProcA(procedure, window, message, wParam, lParam);
    if (!IsWideProcedure(procedure)) return procedure(window, message, wParam, lParam);
    const auto way = [&](UINT each, WPARAM w, LPARAM l) { return CallWindowProcW(procedure, window, each, w, l); };
    return ToWide(window, message, wParam, lParam, way);
}

LRESULT WINAPI OrvikDefWindowProcA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!HouseIsUtf8()) return DefWindowProcA(window, message, wParam, lParam);
    const auto way = [&](UINT each, WPARAM w, LPARAM l) { return DefWindowProcW(window, each, w, l); };
    return ToWide(window, message, wParam, lParam, way);
}

LRESULT WINAPI OrvikSendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!HouseIsUtf8()) return SendMessageA(window, message, wParam, lParam);
    const auto way = [&](UINT each, WPARAM w, LPARAM l) { return SendMessageW(window, each, w, l); };
    return ToWide(window, message, wParam, lParam, way);
}

LRESULT WINAPI OrvikSendDlgItemMessageA(HWND dialog, int id, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!HouseIsUtf8()) return SendDlgItemMessageA(dialog, id, message, wParam, lParam);
    const HWND item = GetDlgItem(dialog, id);
    return item != nullptr ? OrvikSendMessageA(item, message, wParam, lParam) : 0;
}

BOOL WINAPI OrvikPostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!HouseIsUtf8()) return PostMessageA(window, message, wParam, lParam);
    if (message != EM_SETSEL || !IsField(window)) return PostMessageW(window, message, wParam, lParam);
    // Positions count bytes of the text as it is now.
    const auto way = [&](UINT each, WPARAM w, LPARAM l) {
        return each == EM_SETSEL ? static_cast<LRESULT>(PostMessageW(window, each, w, l)) : SendMessageW(window, each, w, l);
    };
    return static_cast<BOOL>(ToWide(window, message, wParam, lParam, way));
}

BOOL WINAPI OrvikPostThreadMessageA(DWORD thread, UINT message, WPARAM wParam, LPARAM lParam) {
    return HouseIsUtf8() ? PostThreadMessageW(thread, message, wParam, lParam)
                         : PostThreadMessageA(thread, message, wParam, lParam);
}

BOOL WINAPI OrvikGetMessageA(LPMSG message, HWND window, UINT first, UINT last) {
    return HouseIsUtf8() ? GetMessageW(message, window, first, last) : GetMessageA(message, window, first, last);
}

BOOL WINAPI OrvikPeekMessageA(LPMSG message, HWND window, UINT first, UINT last, UINT remove) {
    return HouseIsUtf8() ? PeekMessageW(message, window, first, last, remove)
                         : PeekMessageA(message, window, first, last, remove);
}

LRESULT WINAPI OrvikDispatchMessageA(const MSG* message) {
    return HouseIsUtf8() ? DispatchMessageW(message) : DispatchMessageA(message);
}

BOOL WINAPI OrvikIsDialogMessageA(HWND dialog, LPMSG message) {
    return HouseIsUtf8() ? IsDialogMessageW(dialog, message) : IsDialogMessageA(dialog, message);
}

UINT WINAPI OrvikRegisterWindowMessageA(LPCSTR name) {
    return HouseIsUtf8() ? RegisterWindowMessageW(WideArgument(name)) : RegisterWindowMessageA(name);
}

HHOOK WINAPI OrvikSetWindowsHookExA(int kind, HOOKPROC procedure, HINSTANCE module, DWORD thread) {
    return HouseIsUtf8() ? SetWindowsHookExW(kind, procedure, module, thread)
                         : SetWindowsHookExA(kind, procedure, module, thread);
}

BOOL WINAPI OrvikSetWindowTextA(HWND window, LPCSTR text) {
    return HouseIsUtf8() ? SetWindowTextW(window, WideArgument(text)) : SetWindowTextA(window, text);
}

int WINAPI OrvikGetWindowTextA(HWND window, LPSTR out, int size) {
    return HouseIsUtf8() ? PutCut(CaptionOf(window), out, size) : GetWindowTextA(window, out, size);
}

int WINAPI OrvikGetWindowTextLengthA(HWND window) {
    return HouseIsUtf8() ? static_cast<int>(NarrowLength(CaptionOf(window))) : GetWindowTextLengthA(window);
}

BOOL WINAPI OrvikSetDlgItemTextA(HWND dialog, int id, LPCSTR text) {
    return HouseIsUtf8() ? SetDlgItemTextW(dialog, id, WideArgument(text)) : SetDlgItemTextA(dialog, id, text);
}

UINT WINAPI OrvikGetDlgItemTextA(HWND dialog, int id, LPSTR out, int size) {
    if (!HouseIsUtf8()) return GetDlgItemTextA(dialog, id, out, size);
    return static_cast<UINT>(PutCut(CaptionOf(GetDlgItem(dialog, id)), out, size));
}

int WINAPI OrvikGetClassNameA(HWND window, LPSTR out, int size) {
    if (!HouseIsUtf8()) return GetClassNameA(window, out, size);
    wchar_t name[257] = {};  // the longest there is
    return GetClassNameW(window, name, static_cast<int>(std::size(name))) > 0 ? PutCut(name, out, size) : 0;
}
