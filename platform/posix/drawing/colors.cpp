#include "platform/posix/drawing/colors.h"

#include <array>
#include <atomic>
#include <list>
#include <mutex>

#include "platform/contrast.h"
#include "platform/posix/drawing/desktop_looks_internal.h"
#include "platform/posix/drawing/font_internal.h"
#include "platform/posix/drawing/gdi_internal.h"
#include "platform/posix/kernel/errors.h"

using namespace orvik::detail;

namespace {
constexpr int kCount = 31;
constexpr int kNone = 25;  // the one number without a colour
using Colours = std::array<DWORD, kCount>;

constexpr DWORD Grey(int part) { return RGB(part, part, part); }
constexpr DWORD kAccent = RGB(0, 95, 184), kLightAccent = RGB(120, 184, 255);

// In the order of the COLOR_ numbers. A colour of text has a contrast of 4.5 at least on the ground that it belongs to.
constexpr Colours kLight = {Grey(243), RGB(58, 110, 165),
                            Grey(225), Grey(236),  // scroll bar, desktop, captions
                            Grey(250), Grey(255),
                            Grey(110), Grey(20),  // menu, window, frame, text of menus
                            Grey(0),   Grey(0),
                            Grey(180), Grey(236),  // text of windows and captions, borders
                            Grey(171), kAccent,
                            Grey(255), Grey(243),  // workspace, what is chosen, buttons
                            Grey(176), Grey(105),
                            Grey(0),   Grey(90),  // shadow, grey text, text of buttons and captions
                            Grey(255), Grey(110),
                            Grey(228), Grey(20),  // edges, text of tips
                            Grey(252), 0,
                            kAccent,   Grey(225),  // tips, links, captions
                            Grey(236), kAccent,
                            Grey(243)};  // and menus
constexpr Colours kDark = {Grey(44),     RGB(24, 40, 60),
                           Grey(60),     Grey(44),  //
                           Grey(50),     Grey(30),
                           Grey(140),    Grey(240),  //
                           Grey(240),    Grey(240),
                           Grey(90),     Grey(60),  //
                           Grey(24),     kAccent,
                           Grey(255),    Grey(44),  //
                           Grey(86),     Grey(165),
                           Grey(240),    Grey(170),  //
                           Grey(78),     Grey(140),
                           Grey(62),     Grey(240),  //
                           Grey(58),     0,
                           kLightAccent, Grey(60),  //
                           Grey(44),     kAccent,
                           Grey(44)};

struct Desktop {
    std::mutex lock;
    DesktopLooks looks;
    std::list<Colours> schemes{kLight};  // those in use before stay: whoever reads one holds no lock
    std::atomic<const Colours*> now{&schemes.back()};
};
Desktop& TheDesktop() {
    static Desktop* desktop = new Desktop;
    return *desktop;
}

Colours SchemeOf(const DesktopLooks& looks) {
    Colours colours = looks.dark ? kDark : kLight;
    if (!looks.accent) return colours;
    // White text on it, and visible beside the windows' ground.
    const COLORREF chosen = orvik::ReadableOn(Grey(255), *looks.accent);
    colours[COLOR_HIGHLIGHT] = colours[COLOR_MENUHILIGHT] = chosen;
    colours[COLOR_HOTLIGHT] = orvik::ReadableOn(colours[COLOR_WINDOW], *looks.accent);
    return colours;
}

const std::array<HBRUSH, kCount>& Brushes() {
    static const std::array<HBRUSH, kCount> brushes = [] {
        std::array<HBRUSH, kCount> made{};
        for (size_t i = 0; i < kCount; ++i) {
            if (i == kNone) continue;
            auto brush = std::make_shared<BrushObject>();
            brush->systemColour = static_cast<int>(i);
            brush->system = true;
            made[i] = static_cast<HBRUSH>(AddGdiObject(std::move(brush)));
        }
        return made;
    }();
    return brushes;
}
}  // namespace

namespace orvik::detail {
DesktopLooks TheDesktopLooks() {
    Desktop& desktop = TheDesktop();
    const std::lock_guard lock(desktop.lock);
    return desktop.looks;
}

bool SetDesktopLooks(const DesktopLooks& looks) {
    Desktop& desktop = TheDesktop();
    {
        const std::lock_guard lock(desktop.lock);
        if (desktop.looks == looks) return false;
        desktop.looks = looks;
        const Colours colours = SchemeOf(looks);
        for (const Colours& each : desktop.schemes) {
            if (each != colours) continue;
            desktop.now = &each;
            break;
        }
        if (*desktop.now != colours) desktop.now = &desktop.schemes.emplace_back(colours);
    }
    ForgetFaces();
    return true;
}
}  // namespace orvik::detail

DWORD GetSysColor(int index) { return index >= 0 && index < kCount ? (*TheDesktop().now.load())[static_cast<size_t>(index)] : 0; }

HBRUSH GetSysColorBrush(int index) {
    return index >= 0 && index < kCount && index != kNone ? Brushes()[static_cast<size_t>(index)] : nullptr;
}
