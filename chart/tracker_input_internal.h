// What a message means to a drag, and when a held drag is repeated, computed apart from the loop that acts on it.
// Pure functions over plain data; any thread.
#pragma once

#include "platform/win32.h"

namespace orvik::detail {

enum class TrackInput {
    Move,
    Release,
    Cancel,
    Mode,     // Shift or Ctrl, down or up
    Swallow,  // any other key
    Paint,    // the tracked window is to paint itself
    Quit,
    Dispatch,  // nothing to the drag: goes where it is addressed
};

// Mouse messages of other windows than the tracked one are theirs; keys are taken whoever has the focus.
TrackInput InputOf(const MSG& message, HWND tracked);

// The signed 16-bit client coordinates of a mouse message: a drag may leave the window at its left or top.
POINT PointOf(LPARAM lParam);

// The user's keyboard as a rhythm: how long a key is held before it repeats, and how far apart the repetitions are.
// From SPI_GETKEYBOARDDELAY (0 to 3, a quarter of a second each) and SPI_GETKEYBOARDSPEED (0 to 31, about repetitions a second).
struct TrackRhythm {
    DWORD first;     // milliseconds
    DWORD interval;  // milliseconds
};
TrackRhythm RhythmOf(UINT keyboardDelay, UINT keyboardSpeed);

}  // namespace orvik::detail
