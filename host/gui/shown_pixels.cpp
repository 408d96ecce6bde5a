#include "host/gui/shown_pixels.h"

void PaintAll(MainWindow& window) {
    for (const HWND pane : {window.m_hWnd, window.Chart().m_hWnd, window.List().m_hWnd}) ::UpdateWindow(pane);
}

std::vector<COLORREF> ShownPixels(MainWindow& window) {
    window.ForgetPointer();
    PaintAll(window);
    RECT client = {};
    ::GetClientRect(window.m_hWnd, &client);
    client.bottom = window.StatusRect().top;
    CClientDC dc(&window);
    CDC memory;
    CBitmap bitmap;
    std::vector<COLORREF> pixels;
    if (!memory.CreateCompatibleDC(&dc) || !bitmap.CreateCompatibleBitmap(&dc, client.right, client.bottom)) return pixels;
    CBitmap* const before = memory.SelectObject(&bitmap);
    memory.BitBlt(0, 0, client.right, client.bottom, &dc, 0, 0, SRCCOPY);
    for (int y = 0; y < client.bottom; ++y) {
        for (int x = 0; x < client.right; ++x) pixels.push_back(memory.GetPixel(x, y));
    }
    memory.SelectObject(before);
    return pixels;
}
