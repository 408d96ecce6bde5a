// The window on screens of other dots an inch: its sizes, its hit tests, and the way from one screen to another.
#include <gtest/gtest.h>

#include "frame/app_stock.h"
#include "platform/dpi.h"
#include "tests/host/gui/hands.h"
#include "tests/support/test_folder.h"

namespace {
constexpr SIZE kRoomy = {900, 560};  // a legend of one row at any size of letters

class ScreenTest : public testing::TestWithParam<UINT>, protected TestFolder {
protected:
    void SetUp() override { Hands::WriteSession(path); }
    void TearDown() override { OrvikSetSystemDpi(USER_DEFAULT_SCREEN_DPI); }
    std::unique_ptr<Hands> StartAt(UINT dpi, SIZE client = {640, 420}) {
        OrvikSetSystemDpi(dpi);
        auto hands = std::make_unique<Hands>(client);
        hands->window->Open(path);
        hands->window->SetHint("A drag zooms");
        hands->Pump();
        return hands;
    }
    static HCURSOR CursorAt(Hands& hands, POINT at) {
        ::SetCursor(nullptr);
        hands.Point(WM_MOUSEMOVE, at);
        hands.Pump();
        return ::GetCursor();
    }
    static void MoveTo(Hands& hands, UINT dpi) { EXPECT_TRUE(OrvikSetWindowDpi(hands.window->m_hWnd, dpi, nullptr)); }
    static LONG Width(const RECT& rect) { return rect.right - rect.left; }
    static LONG Height(const RECT& rect) { return rect.bottom - rect.top; }

    const std::string path = Path("session.odb");
};
}  // namespace

TEST_P(ScreenTest, EverythingIsAsMuchLarger) {
    const UINT dpi = GetParam();
    const auto usual = StartAt(USER_DEFAULT_SCREEN_DPI, kRoomy), large = StartAt(dpi, kRoomy);
    const auto scaled = [&](int pixels) { return OrvikScale(pixels, dpi); };
    RECT client = {};
    ::GetClientRect(large->window->m_hWnd, &client);
    EXPECT_EQ(client.right, scaled(kRoomy.cx));
    EXPECT_EQ(client.bottom, scaled(kRoomy.cy));
    EXPECT_EQ(Width(large->window->BarRect()), scaled(6));
    EXPECT_EQ(Height(large->window->StatusRect()), scaled(24));
    for (size_t i = 0; i < ValueList::kColumns; ++i)
        EXPECT_EQ(Width(large->window->List().ColumnRect(i)), scaled(Width(usual->window->List().ColumnRect(i))));
    // Letters are whole pixels high and wide, so what follows from them is so much larger only nearly.
    const ViewParts &small = usual->Parts(), &parts = large->Parts();
    const auto nearly = [&](const RECT& now, const RECT& before, const char* what) {
        const LONG sides[][2] = {
            {now.left, before.left}, {now.top, before.top}, {now.right, before.right}, {now.bottom, before.bottom}};
        for (const auto& side : sides) EXPECT_NEAR(side[0], scaled(side[1]), 0.02 * client.right) << what;
    };
    nearly(parts.plot, small.plot, "plot");
    ASSERT_EQ(parts.axes.size(), small.axes.size());
    EXPECT_EQ(Height(parts.time.zoom), scaled(Height(small.time.zoom)));
    for (size_t i = 0; i < parts.axes.size(); ++i) {
        EXPECT_EQ(Width(parts.axes[i].zoom), scaled(10) + 1);
        nearly(parts.axes[i].rubber, small.axes[i].rubber, "labels");
        nearly(parts.axes[i].drag, small.axes[i].drag, "unit");
    }
    nearly(parts.tags[0], small.tags[0], "tag");
    LOGFONTA font = {};
    ::GetObjectA(reinterpret_cast<HFONT>(large->window->List().SendMessage(WM_GETFONT)), sizeof font, &font);
    EXPECT_EQ(font.lfHeight, -scaled(12));
}

TEST_P(ScreenTest, HandsMeetWhatIsSeen) {
    const auto hands = StartAt(GetParam());
    const auto scaled = [&](int pixels) { return OrvikScale(pixels, GetParam()); };
    hands->window->Command(kCommandSelect);
    const RECT bar = hands->window->BarRect();
    const HWND window = hands->window->m_hWnd;
    const auto isBar = [&](LONG x) { return CursorAt(*hands, {x, 40}) == hCurVSplitter; };
    EXPECT_TRUE(isBar(bar.left) && isBar(bar.right - 1));
    EXPECT_FALSE(isBar(bar.left - 1) || isBar(bar.right));
    EXPECT_EQ(::ChildWindowFromPoint(window, {bar.left - 1, 40}), hands->window->Chart().m_hWnd);
    EXPECT_EQ(::ChildWindowFromPoint(window, {bar.right, 40}), hands->window->List().m_hWnd);

    const LONG edge = bar.right + hands->window->List().ColumnRect(0).right;
    const auto isEdge = [&](LONG x) { return CursorAt(*hands, {x, scaled(8)}) == hCurSizeColumn; };
    EXPECT_TRUE(isEdge(edge - scaled(4)) && isEdge(edge + scaled(4) - 1));
    EXPECT_FALSE(isEdge(edge - scaled(4) - 1) || isEdge(edge + scaled(4)));

    const ViewParts parts = hands->Parts();
    const auto spot = [&](LONG x, LONG y) { return HitTest(parts, {x, y}).spot; };
    const RECT& zoom = parts.axes[0].zoom;
    const LONG middle = (zoom.top + zoom.bottom) / 2;
    EXPECT_EQ(spot(zoom.left, middle), Spot::AxisZoom);
    EXPECT_EQ(spot(zoom.left - 1, middle), Spot::AxisRubber);
    EXPECT_EQ(spot(zoom.right, middle), Spot::Plot);
    EXPECT_EQ(spot((parts.plot.left + parts.plot.right) / 2, parts.plot.bottom + scaled(10) - 1), Spot::AxisZoom);
    EXPECT_EQ(spot((parts.plot.left + parts.plot.right) / 2, parts.plot.bottom + scaled(10)), Spot::AxisRubber);
    const RECT selection = parts.selection.GetPosition();
    const auto handle = [&](LONG by) { return HitTest(parts, {selection.left + by, selection.top + by}).handle; };
    EXPECT_EQ(handle(scaled(6) - 1), CZoomSelection::HIT_NORTHWEST);
    EXPECT_EQ(handle(scaled(6) + 1), CZoomSelection::HIT_BODY);

    // The bar comes to where it is let go, and the width is kept in pixels that mean the same on any screen.
    const LONG before = hands->State().pane;
    const POINT grip = Hands::Middle(bar);
    hands->Drag(grip, {grip.x - scaled(40), grip.y});
    EXPECT_NEAR(hands->State().pane, before + 40, 1);
    EXPECT_NEAR(hands->window->BarRect().left, bar.left - scaled(40), 1);
}

TEST_P(ScreenTest, AWindowThatComesToAScreenLooksAsOneStartedThere) {
    const auto started = StartAt(GetParam());
    const auto expected = started->Pixels();
    const auto moved = StartAt(USER_DEFAULT_SCREEN_DPI);
    const auto first = moved->Pixels();
    MoveTo(*moved, GetParam());
    EXPECT_EQ(moved->Difference(moved->Pixels(), expected), "");
    EXPECT_EQ(CursorAt(*moved, Hands::Middle(moved->window->BarRect())), hCurVSplitter);
    MoveTo(*moved, 300);
    MoveTo(*moved, USER_DEFAULT_SCREEN_DPI);
    moved->window->SetClientSize({640, 420});
    EXPECT_EQ(moved->Difference(moved->Pixels(), first), "");
    // A picture in a file is the same wherever it is made.
    EXPECT_TRUE(moved->window->SavePicture(Path("usual.png"), {500, 300}));
    EXPECT_TRUE(started->window->SavePicture(Path("large.png"), {500, 300}));
    EXPECT_EQ(Read("usual.png"), Read("large.png"));
    EXPECT_EQ(started->Difference(started->Pixels(), expected), "");
}

TEST_P(ScreenTest, AWindowMayComeToAScreenInTheMiddleOfADrag) {
    const auto hands = StartAt(GetParam() == 96 ? 192 : 96);
    const auto started = StartAt(GetParam());
    const auto expected = started->Settled();
    static HWND s_window;
    static UINT s_dpi;
    s_window = hands->window->m_hWnd;
    const UINT first = OrvikDpiOf(s_window);
    RECT client = {};
    ::GetClientRect(s_window, &client);
    const ViewParts parts = hands->Parts();
    const RECT column = hands->window->List().ColumnRect(0), bar = hands->window->BarRect();
    for (const POINT& at : {Hands::Middle(parts.plot), Hands::Middle(parts.tags[0]), Hands::Middle(parts.axes[0].zoom),
                            Hands::Middle(parts.axes[0].rubber), Hands::Middle(parts.axes[0].drag), Hands::Middle(bar),
                            POINT{bar.right + column.right, column.top + 8}}) {
        s_dpi = GetParam();
        const UINT_PTR timer = ::SetTimer(nullptr, 0, USER_TIMER_MINIMUM, [](HWND, UINT, UINT_PTR id, DWORD) {
            if (::GetCapture() == nullptr) return;  // it has not begun
            ::KillTimer(nullptr, id);
            EXPECT_TRUE(OrvikSetWindowDpi(s_window, s_dpi, nullptr));
            for (const BOOL down : {TRUE, FALSE}) ::OrvikPostKey(s_window, VK_ESCAPE, down);
        });
        hands->Press(at, {at.x + 20, at.y + 30});
        hands->Pump();
        ::KillTimer(nullptr, timer);
        hands->Point(WM_LBUTTONUP, at);
        hands->Pump();
        ASSERT_EQ(OrvikDpiOf(s_window), s_dpi) << "no drag at " << at.x << "," << at.y;
        EXPECT_EQ(hands->Difference(hands->Settled(), expected), "") << at.x << "," << at.y;
        MoveTo(*hands, first);
        hands->window->SetClientSize({client.right, client.bottom});
    }
}

INSTANTIATE_TEST_SUITE_P(Dots, ScreenTest, testing::Values(96u, 120u, 144u, 192u, 288u));
