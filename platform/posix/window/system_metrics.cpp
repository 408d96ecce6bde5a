// The desktop's measures.
#include "platform/dpi.h"
#include "platform/posix/window/dpi.h"
#include "platform/posix/window/window_internal.h"

using namespace orvik::detail;

int GetSystemMetricsForDpi(int index, UINT dpi) {
    const auto pixels = [&](int usual) { return MulDiv(usual, static_cast<int>(dpi), USER_DEFAULT_SCREEN_DPI); };
    switch (index) {
        case SM_CXSCREEN:
        case SM_CYSCREEN:
        case SM_CXFULLSCREEN:
        case SM_CYFULLSCREEN:
        case SM_CXVIRTUALSCREEN:
        case SM_CYVIRTUALSCREEN: {
            const std::lock_guard kernel(KernelLock());
            const bool wide = index == SM_CXSCREEN || index == SM_CXFULLSCREEN || index == SM_CXVIRTUALSCREEN;
            return wide ? Desktop().Width() : Desktop().Height();
        }
        case SM_CXVSCROLL:
        case SM_CYHSCROLL:
        case SM_CYVTHUMB:
        case SM_CXHTHUMB:
        case SM_CYVSCROLL:
        case SM_CXHSCROLL:
            return pixels(17);
        case SM_CYCAPTION:
            return pixels(23);
        case SM_CYMENU:
            return pixels(20);
        case SM_CXICON:
        case SM_CYICON:
        case SM_CXCURSOR:
        case SM_CYCURSOR:
            return pixels(32);
        case SM_CXSMICON:
        case SM_CYSMICON:
            return pixels(16);
        case SM_CXFRAME:
        case SM_CYFRAME:
            return pixels(4);
        case SM_CXBORDER:
        case SM_CYBORDER:
        case SM_MOUSEPRESENT:
        case SM_MOUSEWHEELPRESENT:
            return 1;
        case SM_CXEDGE:
        case SM_CYEDGE:
            return 2;
        case SM_CXDLGFRAME:
        case SM_CYDLGFRAME:
            return 3;
        case SM_CXDOUBLECLK:
        case SM_CYDOUBLECLK:
        case SM_CXDRAG:
        case SM_CYDRAG:
            return 4;
        default:
            return 0;
    }
}

int GetSystemMetrics(int index) { return GetSystemMetricsForDpi(index, GetDpiForSystem()); }
int OrvikMetric(int index, UINT dpi) { return GetSystemMetricsForDpi(index, dpi); }
