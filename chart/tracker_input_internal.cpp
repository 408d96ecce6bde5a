#include "chart/tracker_input_internal.h"

namespace orvik::detail {
namespace {
bool IsModeKey(WPARAM key) { return key == VK_SHIFT || key == VK_CONTROL; }
}  // namespace

TrackInput InputOf(const MSG& message, HWND tracked) {
    switch (message.message) {
        case WM_MOUSEMOVE:
            return message.hwnd == tracked ? TrackInput::Move : TrackInput::Dispatch;
        case WM_LBUTTONUP:
            return message.hwnd == tracked ? TrackInput::Release : TrackInput::Dispatch;
        case WM_RBUTTONDOWN:
            return message.hwnd == tracked ? TrackInput::Cancel : TrackInput::Dispatch;
        case WM_KEYDOWN:
            if (message.wParam == VK_ESCAPE) return TrackInput::Cancel;
            [[fallthrough]];
        case WM_KEYUP:
            return IsModeKey(message.wParam) ? TrackInput::Mode : TrackInput::Swallow;
        case WM_PAINT:
            return message.hwnd == tracked ? TrackInput::Paint : TrackInput::Dispatch;
        case WM_QUIT:
            return TrackInput::Quit;
        default:
            return TrackInput::Dispatch;
    }
}

POINT PointOf(LPARAM lParam) { return {static_cast<SHORT>(LOWORD(lParam)), static_cast<SHORT>(HIWORD(lParam))}; }

TrackRhythm RhythmOf(UINT keyboardDelay, UINT keyboardSpeed) { return {(keyboardDelay + 1) * 250, 1000 / (keyboardSpeed + 1)}; }

}  // namespace orvik::detail
