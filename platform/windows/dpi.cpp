// What came with Windows 10 (1607) is looked up: older ones start our programs, too.
#include "platform/dpi.h"

namespace {
template <class Function>
Function* SystemFunction(const char* name) {
    const HMODULE user = GetModuleHandleW(L"user32.dll");
    return user != nullptr ? reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(user, name))) : nullptr;
}

UINT SystemDpi() {
    const HDC screen = GetDC(nullptr);
    const int dots = screen != nullptr ? GetDeviceCaps(screen, LOGPIXELSX) : 0;
    if (screen != nullptr) ReleaseDC(nullptr, screen);
    return dots > 0 ? static_cast<UINT>(dots) : USER_DEFAULT_SCREEN_DPI;
}
}  // namespace

UINT OrvikDpiOf(HWND window) {
    static const auto ofWindow = SystemFunction<UINT WINAPI(HWND)>("GetDpiForWindow");
    const UINT dpi = ofWindow != nullptr && window != nullptr ? ofWindow(window) : 0;
    return dpi != 0 ? dpi : SystemDpi();
}

int OrvikMetric(int index, UINT dpi) {
    static const auto forDpi = SystemFunction<int WINAPI(int, UINT)>("GetSystemMetricsForDpi");
    return forDpi != nullptr ? forDpi(index, dpi) : GetSystemMetrics(index);
}
