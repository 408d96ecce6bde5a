// A picture of a window as it stands, with its children: for looking at, and for tests that want pixels.
#pragma once

#include "platform/picture.h"
#include "platform/win32.h"

// Saves the client area of the visible window as a PNG file, painted up to date first. FALSE as OrvikSavePixels has it.
inline BOOL SaveWindowPicture(HWND window, LPCSTR path) {
    RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN | RDW_UPDATENOW);
    RECT client;
    if (!GetClientRect(window, &client)) return FALSE;
    const HDC dc = GetDC(window);
    if (dc == nullptr) return FALSE;
    const BOOL saved = OrvikSavePixels(dc, &client, path);
    ReleaseDC(window, dc);
    return saved;
}
