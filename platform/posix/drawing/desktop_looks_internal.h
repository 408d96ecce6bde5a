// What the desktop says of colours and letters. In memory, and until a screen has told otherwise, the light scheme and the
// machine's usual letters. Any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/posix/drawing/colors.h"

namespace orvik::detail {

struct DesktopLooks {
    bool dark = false;
    std::optional<COLORREF> accent;  // of what is chosen or has the keys; brought to a contrast that its text needs
    std::string font;                // a family of the machine, UTF-8; empty for the usual one
    int fontPixels = 12;             // its em at 96 dots an inch
    bool operator==(const DesktopLooks&) const = default;
};

DesktopLooks TheDesktopLooks();
// GetSysColor, the system's brushes and fonts that are asked for by the system's names follow. False where nothing changes.
bool SetDesktopLooks(const DesktopLooks& looks);
// Whether a font's name means the desktop's own letters: "MS Shell Dlg", "Segoe UI" and their like.
bool IsDesktopFace(std::string_view name);

}  // namespace orvik::detail
