// What the window shows, to be compared: a script's "remember" and "expect", and tests of gestures that are to leave no trace.
// User-interface thread.
#pragma once

#include <vector>

#include "host/gui/main_window.h"

// Paints what waits to be painted.
void PaintAll(MainWindow& window);
// Row by row, up to date, without the line of hints at the bottom, which comes and goes with the pointer. Empty if there is no
// room to copy them to.
std::vector<COLORREF> ShownPixels(MainWindow& window);
