// Files that are dropped on a window. For the module's thread.
#pragma once

class ScreenWindow;

// From now on the window takes them, or no longer.
void TakeDrops(ScreenWindow& window, bool takes);
