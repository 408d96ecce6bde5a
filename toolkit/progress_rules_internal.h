// What progress dialogs have in common: the places of the controls of template 208, the percentage, and the messages handled
// while the work goes on. On the dialog's thread.
#pragma once

#include "afx/geometry.h"
#include "afx/wnd.h"

namespace orvik::detail {

struct ProgressLook {
    int headerHeight;  // pixels
    bool progress, percentage, message2, cancel;
};

// Moves, hides and shortens, once after the dialog was made from its template. The height of the client area that is left.
int LayOutProgress(CWnd& dialog, const ProgressLook& look);

// Whole percents, truncated. Beyond 100 it counts again from 0, on purpose; 100 itself stays. A range without length is 0.
int ProgressPercent(LONG position, LONG least, LONG most);

// Shows the percentage as "42 %", and only when that is not shown already.
void ShowPercent(CWnd& text, int percent);

// Handles every message that waits. FALSE when the dialog is gone, before or after, and at the quit message, which is posted
// again.
BOOL PumpProgressMessages(CWnd& dialog);

// Shows a hidden dialog whose owner can be seen.
void ShowWithOwner(CWnd& dialog);

}  // namespace orvik::detail
