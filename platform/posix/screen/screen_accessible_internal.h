// Who listens to what windows say of themselves, and what is asked of them. Nothing is described before somebody listens; from
// then on each top-level window is, whenever its thread is back at its messages and has drawn something.
#pragma once

#include "platform/posix/window/screen_internal.h"

namespace orvik::detail {

// From the screen's thread.
void ListenToWindows();  // from now on; every window that is shown will be described soon
void AskOfWindow(HWND root, HWND window, OrvikAccessibleAct act);

// On the window's thread.
void NoteUndescribed(HWND root);  // it was drawn: DescribeDrawn will tell of it
void DescribeNow(HWND root);
void ActOnAsked(HWND root, UINT ticket);  // what AskOfWindow has posted

}  // namespace orvik::detail
