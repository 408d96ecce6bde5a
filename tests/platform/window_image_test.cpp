// What windows show: painting in its order, erased backgrounds, clipping by children and siblings, moves and scrolling.
#include "tests/platform/window_log.h"

using namespace window_test;

namespace {
constexpr COLORREF kWhite = RGB(255, 255, 255), kRed = RGB(255, 0, 0), kBlue = RGB(0, 0, 255);

class WindowImageTest : public WindowLogTest {
protected:
    bool Answer(HWND window, UINT message, WPARAM, LPARAM, LRESULT&) override {
        if (message != WM_PAINT || m_colors.count(window) == 0) return false;
        PAINTSTRUCT paint;
        const HDC dc = BeginPaint(window, &paint);
        if (window == m_dying) {
            EXPECT_TRUE(DestroyWindow(m_dying));
            EndPaint(window, &paint);
            return true;
        }
        m_painted[window] = paint.rcPaint;
        RECT client;
        GetClientRect(window, &client);
        Fill(dc, client, m_colors[window]);
        EndPaint(window, &paint);
        return true;
    }
    static void Fill(HDC dc, const RECT& rectangle, COLORREF color) {
        const HBRUSH brush = CreateSolidBrush(color);
        FillRect(dc, &rectangle, brush);
        DeleteObject(brush);
    }
    static COLORREF Pixel(HWND window, int x, int y) {
        const HDC dc = GetDCEx(window, nullptr, DCX_CACHE);  // with the children
        const COLORREF color = GetPixel(dc, x, y);
        ReleaseDC(window, dc);
        return color;
    }
    struct Spot {
        int x, y;
        COLORREF color;
    };
    static void ExpectPixels(HWND window, const std::vector<Spot>& spots) {
        for (const Spot& spot : spots) EXPECT_EQ(Pixel(window, spot.x, spot.y), spot.color) << spot.x << "," << spot.y;
    }
    static std::string Text(const RECT& r) {
        return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," +
               std::to_string(r.bottom);
    }
    std::map<HWND, COLORREF> m_colors;
    std::map<HWND, RECT> m_painted;
    HWND m_dying = nullptr;  // destroys itself in the middle of painting
};
}  // namespace

TEST_F(WindowImageTest, PaintComesAfterPostedMessagesAndBeforeTimers) {
    const HWND top = Make("top", WS_POPUP | WS_VISIBLE, {10, 10, 210, 110});
    Pump();
    Take();
    EXPECT_EQ(Pixel(top, 5, 5), kWhite);  // the class's brush
    SetTimer(top, 1, USER_TIMER_MINIMUM, nullptr);
    Sleep(40);
    m_colors[top] = kRed;
    const RECT first{10, 20, 30, 40}, second{25, 30, 50, 60};
    InvalidateRect(top, &first, FALSE), InvalidateRect(top, &second, FALSE);
    PostMessageA(top, WM_USER, 0, 0);
    RECT update;
    EXPECT_TRUE(GetUpdateRect(top, &update, FALSE));
    EXPECT_EQ(Text(update), "10,20,50,60");
    Pump();
    KillTimer(top, 1);
    Log told = Take({"user", "paint", "timer", "erase"});
    ASSERT_GE(told.size(), 3u);
    told.resize(3);
    EXPECT_EQ(told, (Log{"top user", "top paint", "top timer"}));
    EXPECT_EQ(Text(m_painted[top]), "10,20,50,60");
    ExpectPixels(top, {{10, 20, kRed}, {49, 59, kRed}, {9, 20, kWhite}, {45, 25, kWhite}, {12, 50, kWhite}});
    EXPECT_FALSE(GetUpdateRect(top, nullptr, FALSE));
    InvalidateRect(top, nullptr, TRUE);
    ValidateRect(top, nullptr);
    Pump();
    EXPECT_EQ(Take({"paint"}), Log{});
}

TEST_F(WindowImageTest, ChildrenAndSiblingsClip) {
    const HWND top = Make("top", WS_POPUP | WS_CLIPCHILDREN, {10, 10, 210, 110});
    const HWND a = Make("a", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, {20, 20, 80, 80}, top);
    const HWND b = Make("b", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, {50, 50, 120, 90}, top);
    m_colors = {{a, kRed}, {b, kBlue}};
    EXPECT_EQ(Pixel(top, 5, 5), static_cast<COLORREF>(CLR_INVALID));  // hidden
    ShowWindow(top, SW_SHOW);
    UpdateWindow(top);
    ExpectPixels(top, {{25, 25, kRed}, {60, 60, kRed}, {100, 80, kBlue}});  // a lies upon b
    // What the window draws stays below its children, what b draws below a.
    HDC dc = GetDC(top);
    Fill(dc, {0, 0, 200, 100}, RGB(0, 255, 0));
    ReleaseDC(top, dc);
    dc = GetDC(b);
    Fill(dc, {-100, -100, 500, 500}, RGB(1, 2, 3));
    ReleaseDC(b, dc);
    constexpr COLORREF kGreen = RGB(0, 255, 0);
    ExpectPixels(top, {{5, 5, kGreen}, {60, 60, kRed}, {100, 80, RGB(1, 2, 3)}, {120, 80, kGreen}});
    SetWindowPos(b, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    UpdateWindow(top);
    EXPECT_EQ(Pixel(top, 60, 60), kBlue);
    MoveWindow(b, 90, 50, 70, 40, TRUE);
    UpdateWindow(top);
    ExpectPixels(top, {{60, 60, kRed}, {85, 85, kWhite}, {95, 60, kBlue}});
    DestroyWindow(b);
    UpdateWindow(top);
    EXPECT_EQ(Pixel(top, 95, 60), kWhite);
    EXPECT_EQ(Pixel(a, 0, 0), kRed);
}

TEST_F(WindowImageTest, UpdateRegionsKeepTheirShape) {
    const HWND top = Make("top", WS_POPUP | WS_VISIBLE, {10, 10, 210, 110});
    Pump();
    m_colors[top] = kRed;
    const RECT first{10, 20, 30, 40}, second{50, 60, 70, 80}, part{50, 60, 70, 70};
    InvalidateRect(top, &first, FALSE), InvalidateRect(top, &second, FALSE);
    const HRGN region = CreateRectRgn(0, 0, 500, 500);
    EXPECT_EQ(GetUpdateRgn(top, region, FALSE), COMPLEXREGION);
    EXPECT_TRUE(PtInRegion(region, 29, 39));
    EXPECT_TRUE(PtInRegion(region, 50, 60));
    EXPECT_FALSE(PtInRegion(region, 40, 50));  // between the two
    ValidateRect(top, &first), ValidateRect(top, &part);
    EXPECT_EQ(GetUpdateRgn(top, region, FALSE), SIMPLEREGION);
    RECT box;
    GetRgnBox(region, &box);
    EXPECT_EQ(Text(box), "50,70,70,80");
    Pump();
    EXPECT_EQ(Text(m_painted[top]), "50,70,70,80");
    EXPECT_EQ(Pixel(top, 55, 75), kRed);
    EXPECT_EQ(Pixel(top, 55, 65), kWhite);
    EXPECT_EQ(GetUpdateRgn(top, region, FALSE), NULLREGION);
    DestroyWindow(top);
    EXPECT_EQ(GetUpdateRgn(top, region, FALSE), 0);
    DeleteObject(region);
}

TEST_F(WindowImageTest, AWindowMayEndWhileItPaints) {
    const HWND top = Make("top", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, {10, 10, 210, 110});
    const HWND below = Make("below", WS_CHILD | WS_VISIBLE, {0, 0, 50, 50}, top);
    const HWND child = Make("child", WS_CHILD | WS_VISIBLE, {60, 0, 110, 50}, top);
    Pump();
    m_colors = {{top, kRed}, {below, kBlue}, {child, kBlue}};
    m_dying = child;
    RedrawWindow(top, nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
    Pump();
    EXPECT_FALSE(IsWindow(child));
    EXPECT_EQ(Pixel(top, 10, 10), kBlue);
    EXPECT_EQ(Pixel(top, 80, 10), kRed);  // the parent shows where the child was
    m_dying = top;
    InvalidateRect(top, nullptr, FALSE);
    UpdateWindow(top);
    EXPECT_FALSE(IsWindow(top));
    EXPECT_FALSE(IsWindow(below));
}
