#include "platform/posix/drawing/colors.h"

#include <array>

#include "platform/posix/drawing/gdi_internal.h"
#include "platform/posix/kernel/errors.h"

using namespace orvik::detail;

namespace {
constexpr int kCount = 31;
constexpr int kNone = 25;  // the one number without a colour

// The desktop's classic scheme, in the order of the COLOR_ numbers.
constexpr std::array<DWORD, kCount> kColors = {RGB(212, 208, 200), RGB(58, 110, 165),
                                               RGB(10, 36, 106),   RGB(128, 128, 128),
                                               RGB(212, 208, 200), RGB(255, 255, 255),
                                               RGB(0, 0, 0),       RGB(0, 0, 0),
                                               RGB(0, 0, 0),       RGB(255, 255, 255),
                                               RGB(212, 208, 200), RGB(212, 208, 200),
                                               RGB(128, 128, 128), RGB(10, 36, 106),
                                               RGB(255, 255, 255), RGB(212, 208, 200),
                                               RGB(128, 128, 128), RGB(128, 128, 128),
                                               RGB(0, 0, 0),       RGB(212, 208, 200),
                                               RGB(255, 255, 255), RGB(64, 64, 64),
                                               RGB(212, 208, 200), RGB(0, 0, 0),
                                               RGB(255, 255, 225), 0,
                                               RGB(0, 0, 128),     RGB(166, 202, 240),
                                               RGB(192, 192, 192), RGB(10, 36, 106),
                                               RGB(212, 208, 200)};

const std::array<HBRUSH, kCount>& Brushes() {
    static const std::array<HBRUSH, kCount> brushes = [] {
        std::array<HBRUSH, kCount> made{};
        for (size_t i = 0; i < kCount; ++i) {
            if (i == kNone) continue;
            auto brush = std::make_shared<BrushObject>();
            brush->color = kColors[i];
            brush->system = true;
            made[i] = static_cast<HBRUSH>(AddGdiObject(std::move(brush)));
        }
        return made;
    }();
    return brushes;
}
}  // namespace

DWORD GetSysColor(int index) { return index >= 0 && index < kCount ? kColors[static_cast<size_t>(index)] : 0; }

HBRUSH GetSysColorBrush(int index) {
    return index >= 0 && index < kCount && index != kNone ? Brushes()[static_cast<size_t>(index)] : nullptr;
}
