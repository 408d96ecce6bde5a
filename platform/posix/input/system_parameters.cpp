// What programs ask about the desktop's settings.
#include <atomic>
#include <cstddef>
#include <cstring>

#include "platform/posix/drawing/desktop_looks_internal.h"
#include "platform/posix/drawing/gdi.h"
#include "platform/posix/window/dpi.h"
#include "platform/posix/window/window_internal.h"

using namespace orvik::detail;

namespace {
std::atomic<UINT> g_menuDelay = 400;

BOOL Refuse() {
    SetLastError(ERROR_INVALID_PARAMETER);
    return FALSE;
}

// The part that concerns input; false if it is none.
bool InputParameter(UINT action, PVOID data) {
    // The settings of a fresh desktop: a delay of half a second, the fastest repetition, three lines a notch.
    const auto set = [&](UINT value) {
        *static_cast<UINT*>(data) = value;
        return true;
    };
    if (data == nullptr) return false;
    switch (action) {
        case SPI_GETKEYBOARDDELAY:
            return set(1);
        case SPI_GETKEYBOARDSPEED:
            return set(31);
        case SPI_GETMENUSHOWDELAY:
            return set(g_menuDelay);
        case SPI_GETWHEELSCROLLLINES:
        case SPI_GETWHEELSCROLLCHARS:
            return set(3);
        case SPI_GETWORKAREA: {
            const std::lock_guard kernel(KernelLock());
            *static_cast<RECT*>(data) = Desktop().rectangle;
            return true;
        }
        default:
            return false;
    }
}
}  // namespace

BOOL SystemParametersInfoForDpi(UINT action, UINT, PVOID data, UINT, UINT dpi) {
    if (action != SPI_GETNONCLIENTMETRICS || data == nullptr || dpi == 0) return Refuse();
    const UINT size = *static_cast<const UINT*>(data);
    constexpr UINT kBeforePadding = offsetof(NONCLIENTMETRICSA, iPaddedBorderWidth);
    if (size != sizeof(NONCLIENTMETRICSA) && size != kBeforePadding) return Refuse();
    // The desktop's usual measures.
    const auto pixels = [&](int usual) { return MulDiv(usual, static_cast<int>(dpi), USER_DEFAULT_SCREEN_DPI); };
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = size;
    metrics.iBorderWidth = 1;
    metrics.iScrollWidth = metrics.iScrollHeight = pixels(17);
    metrics.iCaptionWidth = pixels(36);
    metrics.iCaptionHeight = metrics.iSmCaptionWidth = metrics.iSmCaptionHeight = pixels(22);
    metrics.iMenuWidth = metrics.iMenuHeight = pixels(19);
    LOGFONTA font{};
    GetObjectA(GetStockObject(DEFAULT_GUI_FONT), sizeof font, &font);
    font.lfHeight = -pixels(TheDesktopLooks().fontPixels);
    metrics.lfCaptionFont = metrics.lfSmCaptionFont = metrics.lfMenuFont = metrics.lfStatusFont = metrics.lfMessageFont = font;
    metrics.iPaddedBorderWidth = pixels(4);
    std::memcpy(data, &metrics, size);
    return TRUE;
}

BOOL SystemParametersInfoA(UINT action, UINT parameter, PVOID data, UINT winIni) {
    if (action == SPI_SETMENUSHOWDELAY) {
        g_menuDelay = parameter;
        return TRUE;
    }
    return InputParameter(action, data) || SystemParametersInfoForDpi(action, parameter, data, winIni, GetDpiForSystem());
}
