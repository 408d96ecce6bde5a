#include "platform/posix/gdi.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>

#include "platform/posix/handle_table_internal.h"

using namespace orvik::detail;

namespace {
struct Fonts {
    std::mutex lock;
    std::map<HGDIOBJ, LOGFONTA> made;
    uintptr_t last = 0x01000000;  // far from window and kernel handles; numbers are not used again
    HGDIOBJ system = nullptr, gui = nullptr;
};

// The face and size of the system's own texts: 9 points at 96 dots an inch.
LOGFONTA GuiFont() {
    LOGFONTA font{};
    font.lfHeight = -12;
    font.lfWeight = FW_NORMAL;
    font.lfCharSet = DEFAULT_CHARSET;
    font.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
    std::strcpy(font.lfFaceName, "Segoe UI");
    return font;
}

HGDIOBJ Add(Fonts& fonts, const LOGFONTA& font) {
    const auto handle = reinterpret_cast<HGDIOBJ>(fonts.last += 4);
    fonts.made.emplace(handle, font);
    return handle;
}

Fonts& TheFonts() {
    static Fonts* fonts = [] {
        auto* made = new Fonts;
        made->gui = Add(*made, GuiFont());
        LOGFONTA system = GuiFont();
        system.lfWeight = FW_BOLD;
        made->system = Add(*made, system);
        return made;
    }();
    return *fonts;
}
}  // namespace

HFONT CreateFontIndirectA(const LOGFONTA* font) {
    if (font == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    LOGFONTA kept = *font;
    kept.lfFaceName[LF_FACESIZE - 1] = 0;
    Fonts& fonts = TheFonts();
    const std::lock_guard guard(fonts.lock);
    return static_cast<HFONT>(Add(fonts, kept));
}

HGDIOBJ GetStockObject(int index) {
    const Fonts& fonts = TheFonts();
    return index == DEFAULT_GUI_FONT ? fonts.gui : index == SYSTEM_FONT ? fonts.system : nullptr;
}

int GetObjectA(HANDLE object, int size, LPVOID buffer) {
    Fonts& fonts = TheFonts();
    const std::lock_guard guard(fonts.lock);
    const auto found = fonts.made.find(object);
    if (found == fonts.made.end()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return 0;
    }
    constexpr int kWhole = sizeof(LOGFONTA);
    if (buffer == nullptr) return kWhole;
    const int copied = std::clamp(size, 0, kWhole);
    std::memcpy(buffer, &found->second, static_cast<size_t>(copied));
    return copied;
}

BOOL DeleteObject(HGDIOBJ object) {
    Fonts& fonts = TheFonts();
    if (object == fonts.gui || object == fonts.system) return TRUE;
    const std::lock_guard guard(fonts.lock);
    return Finish(fonts.made.erase(object) == 0 ? ERROR_INVALID_HANDLE : ERROR_SUCCESS);
}

BOOL SystemParametersInfoA(UINT action, UINT, PVOID data, UINT) {
    if (action != SPI_GETNONCLIENTMETRICS || data == nullptr) return Finish(ERROR_INVALID_PARAMETER);
    const UINT size = *static_cast<const UINT*>(data);
    constexpr UINT kBeforePadding = offsetof(NONCLIENTMETRICSA, iPaddedBorderWidth);
    if (size != sizeof(NONCLIENTMETRICSA) && size != kBeforePadding) return Finish(ERROR_INVALID_PARAMETER);
    NONCLIENTMETRICSA metrics{};
    metrics.cbSize = size;
    // The desktop's usual measures at 96 dots an inch, in pixels.
    metrics.iBorderWidth = 1;
    metrics.iScrollWidth = metrics.iScrollHeight = 17;
    metrics.iCaptionWidth = 36;
    metrics.iCaptionHeight = metrics.iSmCaptionWidth = metrics.iSmCaptionHeight = 22;
    metrics.iMenuWidth = metrics.iMenuHeight = 19;
    metrics.lfCaptionFont = metrics.lfSmCaptionFont = metrics.lfMenuFont = metrics.lfStatusFont = metrics.lfMessageFont =
        GuiFont();
    metrics.iPaddedBorderWidth = 4;
    std::memcpy(data, &metrics, size);
    return TRUE;
}
