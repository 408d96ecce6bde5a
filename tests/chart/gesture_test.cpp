// What whole gestures come to, and that none of them leaves a pixel behind: zoom, selection, axes, split bars, columns, rubber.
#include <random>
#include <tuple>

#include "chart/col_size_tracker.h"
#include "chart/drag_axis_tracker.h"
#include "chart/rubber_tracker.h"
#include "chart/split_bar_trackers.h"
#include "chart/zoom_all_tracker.h"
#include "chart/zoom_axis_tracker.h"
#include "chart/zoom_figure_internal.h"
#include "chart/zoom_sel_tracker.h"
#include "frame/app_stock.h"
#include "tests/chart/tracker_window.h"

using namespace tracker_test;

namespace {

constexpr RECT kPlot = {20, 10, 180, 120};
constexpr RECT kUntouched = {-1, -2, -3, -4};

std::string Text(const RECT& r) {
    return std::to_string(r.left) + "," + std::to_string(r.top) + "," + std::to_string(r.right) + "," + std::to_string(r.bottom);
}

using GestureTest = TrackerTest;

TEST_F(GestureTest, ZoomsAllByRegionsAndBands) {
    struct Row {
        const char* what;
        CPoint from, to;
        const char* selection;
    };
    for (const Row& c :
         {Row{"a region", {50, 30}, {90, 60}, "50,30,90,60"}, Row{"dragged backwards", {90, 60}, {50, 30}, "50,30,90,60"},
          Row{"3 right and 40 down: the full width", {50, 30}, {53, 70}, "20,30,180,70"},
          Row{"5 right and 4 up: the full height", {50, 30}, {55, 26}, "50,10,55,120"},
          Row{"5 by 5 is a region", {50, 30}, {45, 25}, "45,25,50,30"},
          Row{"4 by 4 is nothing", {50, 30}, {54, 34}, "-1,-2,-3,-4"},
          Row{"beyond the plot", {50, 30}, {190, 140}, "50,30,180,120"}}) {
        SCOPED_TRACE(c.what);
        RECT plot = kPlot;
        CZoomAllTracker tracker(&plot);
        EXPECT_EQ(m_wnd.Track(tracker, c.from, {Move((c.from.x + c.to.x) / 2, c.to.y), Up(c.to.x, c.to.y)}), 2);
        RECT selection = kUntouched;
        EXPECT_EQ(tracker.GetSelection(&selection), std::string(c.selection)[0] != '-');
        EXPECT_EQ(Text(selection), c.selection);
    }
    // A plot of no size holds the pointer where it is, and there is nothing to select.
    RECT none = {30, 30, 30, 30};
    CZoomAllTracker tracker(&none);
    m_wnd.Track(tracker, CPoint(30, 30), {Move(60, 60), Up(90, 60)});
    RECT selection = kUntouched;
    EXPECT_FALSE(tracker.GetSelection(&selection));
    EXPECT_EQ(Text(selection), Text(kUntouched));
}

TEST_F(GestureTest, ZoomsAxesFromOriginToExtent) {
    struct Row {
        int horizontal;
        CPoint from, to;
        LONG a, b;  // 0, 0: nothing
    };
    for (const Row& c : {
             Row{1, {40, 125}, {90, 20}, 40, 90}, Row{1, {90, 125}, {40, 20}, 40, 90}, Row{1, {40, 125}, {40, 128}, 0, 0},
             Row{0, {10, 110}, {80, 30}, 110, 30}, Row{0, {10, 30}, {12, 110}, 110, 30},
             Row{0, {10, 200}, {12, -50}, 120, 10}  // both ends beyond the axis's zoom rectangle
         }) {
        SCOPED_TRACE(Text({c.from.x, c.from.y, c.to.x, c.to.y}));
        const ShownAxis axis(c.horizontal, c.horizontal ? 125 : 15, c.horizontal ? 20 : 10, c.horizontal ? 180 : 120);
        axis->SetZoomRect(c.horizontal ? RECT{20, 121, 180, 140} : RECT{0, 10, 20, 120});
        const RECT plot = kPlot;
        CZoomAxisTracker tracker(&plot, axis);
        const Pixels before = m_wnd.Picture();
        Pixels during;
        m_wnd.Track(tracker, c.from, {Move(c.to.x, c.to.y), Do([&] { during = m_wnd.Picture(); }), Up(c.to.x, c.to.y)});
        LONG a = 0;
        LONG b = 0;
        EXPECT_EQ(tracker.GetSelection(a, b), c.b != 0);
        EXPECT_EQ(a, c.a);
        EXPECT_EQ(b, c.b);
        EXPECT_FALSE(Same(before, during)) << "the start's line stays while the button is down";
        EXPECT_TRUE(Same(before, m_wnd.Picture()));
    }
}

TEST_F(GestureTest, MovesAndPullsSelections) {
    using S = CZoomSelection;
    const RECT plot = kPlot;
    const auto drag = [&](const RECT& selection, S::EHitCode hit, CPoint from, CPoint to) {
        CZoomSelTracker tracker(&plot, &selection, hit);
        m_wnd.Track(tracker, from, {Move(to.x, to.y), Up(to.x, to.y)});
        RECT result = kUntouched;
        tracker.GetSelection(&result);
        return Text(result);
    };
    struct Row {
        S::EHitCode hit;
        const char* selection;  // of 50,40,90,70 after a drag by 10 to the right and 5 up
    };
    for (const Row& c : {Row{S::HIT_BODY, "60,35,100,65"}, Row{S::HIT_NORTH, "50,35,90,70"}, Row{S::HIT_EAST, "50,40,100,70"},
                         Row{S::HIT_SOUTH, "50,40,90,65"}, Row{S::HIT_WEST, "60,40,90,70"}, Row{S::HIT_NORTHEAST, "50,35,100,70"},
                         Row{S::HIT_NORTHWEST, "60,35,90,70"}, Row{S::HIT_SOUTHEAST, "50,40,100,65"},
                         Row{S::HIT_SOUTHWEST, "60,40,90,65"}, Row{S::HIT_OUTSIDE, "50,40,90,70"}}) {
        EXPECT_EQ(drag({50, 40, 90, 70}, c.hit, CPoint(52, 43), CPoint(62, 38)), c.selection);
        EXPECT_EQ(drag({90, 70, 50, 40}, c.hit, CPoint(52, 43), CPoint(62, 38)), c.selection) << "edges on the wrong sides";
    }
    EXPECT_EQ(drag({50, 40, 90, 70}, S::HIT_BODY, CPoint(60, 50), CPoint(900, 900)), "140,90,180,120");
    EXPECT_EQ(drag({50, 40, 90, 70}, S::HIT_EAST, CPoint(90, 50), CPoint(30, 50)), "30,40,50,70") << "pulled over its other edge";
    EXPECT_EQ(drag({50, 40, 90, 70}, S::HIT_EAST, CPoint(90, 50), CPoint(53, 50)), "20,40,180,70") << "3 wide: the full width";
    EXPECT_EQ(drag({50, 40, 90, 70}, S::HIT_SOUTHEAST, CPoint(90, 70), CPoint(53, 43)), Text(kUntouched));
    CZoomSelTracker none;
    RECT rect = kUntouched;
    m_wnd.Track(none, CPoint(5, 5), {Move(30, 30), Up(40, 40)});
    EXPECT_FALSE(none.GetSelection(&rect));
}

TEST_F(GestureTest, ExchangesAxes) {
    const auto order = [](const CTypedPtrArray<CPtrArray, CUnitAxis*>& axes, const std::vector<CUnitAxis*>& known) {
        std::string text;
        for (INT_PTR i = 0; i < axes.GetSize(); ++i)
            text += static_cast<char>('a' + (std::find(known.begin(), known.end(), axes[i]) - known.begin()));
        return text;
    };
    for (const int horizontal : {0, 1}) {
        const auto at = [&](int across) { return horizontal ? CPoint(50, across) : CPoint(across, 50); };
        struct Row {
            const char* what;
            Script script;
            const char* order;
            char exchanged;
        };
        for (const Row& c : {Row{"to the nearest", {Move(at(40).x, at(40).y), Up(at(72).x, at(72).y)}, "bacd", 'b'},
                             Row{"past one that nobody shows", {Up(at(91).x, at(91).y)}, "dbca", 'd'},
                             Row{"and over its own place", {Move(at(70).x, at(70).y), Up(at(32).x, at(32).y)}, "abcd", 'a'},
                             Row{"as near to both: the first", {Move(at(70).x, at(70).y), Up(at(45).x, at(45).y)}, "abcd", 'a'},
                             Row{"cancelled", {Move(at(72).x, at(72).y), Key(VK_ESCAPE)}, "abcd", 'b'}}) {
            SCOPED_TRACE(c.what);
            const ShownAxis a(horizontal, 30, 10, 120), b(horizontal, 60, 10, 120), c1(horizontal, 90, 10, 120, 1),
                d(horizontal, 120, 10, 120);
            const std::vector<CUnitAxis*> known = {a, b, c1, d};
            CTypedPtrArray<CPtrArray, CUnitAxis*> axes;
            for (CUnitAxis* axis : known) axes.Add(axis);
            CDragAxisTracker tracker(axes, a);
            m_wnd.Track(tracker, at(30), c.script);
            EXPECT_EQ(order(axes, known), c.order);
            EXPECT_EQ(tracker.GetExchanged(), known[static_cast<size_t>(c.exchanged - 'a')]);
        }
    }
}

TEST_F(GestureTest, SurvivesAxesThatGo) {
    const RECT plot = kPlot;
    const Pixels before = m_wnd.Picture();
    {
        ShownAxis dragged(0, 30, 10, 120);
        ShownAxis target(0, 60, 10, 120);
        CTypedPtrArray<CPtrArray, CUnitAxis*> axes;
        axes.Add(dragged), axes.Add(nullptr), axes.Add(target);
        CDragAxisTracker tracker(axes, dragged);
        EXPECT_EQ(m_wnd.Track(tracker, CPoint(30, 50),
                              {Move(70, 50), Do([&] {
                                   axes.RemoveAt(0);
                                   dragged.Remove();
                               }),
                               Up(60, 50)}),
                  2);
        ASSERT_EQ(axes.GetSize(), 2);
        EXPECT_EQ(axes[1], static_cast<CUnitAxis*>(target));
    }
    {
        ShownAxis axis(1, 125, 20, 180);
        axis->SetZoomRect({20, 121, 180, 140});
        CZoomAxisTracker tracker(&plot, axis);
        m_wnd.Track(tracker, CPoint(40, 125), {Move(70, 125), Do([&] { axis.Remove(); }), Move(80, 125), Up(90, 125)});
        LONG a = 0;
        LONG b = 0;
        EXPECT_TRUE(tracker.GetSelection(a, b));
    }
    EXPECT_TRUE(Same(before, m_wnd.Picture()));
    ShownAxis axis(1, 125, 20, 180);
    axis->SetRubberRect({20, 121, 180, 140});
    CRubberTracker tracker(&m_wnd, {0, 121, 200, 150}, g_lfAppStock, axis);
    EXPECT_EQ(m_wnd.Track(tracker, CPoint(160, 130), {Move(150, 125), Do([&] { axis.Remove(); }), Move(80, 125), Right()}), 0);
}

TEST_F(GestureTest, MovesSplitBarsAndColumns) {
    const RECT all = {0, 0, 180, 140};
    RECT rect = {};
    CVertSplitBarTracker vertical(all, {100, 0, 105, 150});
    EXPECT_TRUE(vertical.HitTest(CPoint(104, 149)));
    EXPECT_EQ(m_wnd.Track(vertical, CPoint(103, 50), {Move(120, 60), Up(133, 70)}), 2);
    vertical.GetRect(&rect);
    EXPECT_EQ(Text(rect), "130,0,135,150");
    CHorzSplitBarTracker level(all, {0, 100, 200, 104});
    EXPECT_EQ(m_wnd.Track(level, CPoint(50, 101), {Move(60, 20), Up(60, -50)}), 2);
    level.GetRect(&rect);
    EXPECT_EQ(Text(rect), "0,0,200,4");

    const struct { int from, to, width; } columns[] = {{120, 170, 150}, {118, 168, 152}, {120, 120, 100}, {120, 5, 0}};
    for (const auto& c : columns) {
        CColSizeTracker column({20, 0, 190, 150}, {20, 0, 120, 20});
        m_wnd.Track(column, CPoint(c.from, 10), {Move(c.to, 15), Up(c.to, 15)});
        EXPECT_EQ(column.GetWidth(), c.width) << c.from;
    }
}

TEST(ZoomSelection, IsHitInsideItsHandles) {
    using S = CZoomSelection;
    S selection;
    selection.SetPosition({10, 20, 110, 100});
    // Worked out from the handles' table for this rectangle.
    const struct {
        S::EHitCode code;
        RECT rect;
    } handles[] = {
        {S::HIT_NORTHWEST, {11, 21, 17, 26}},  {S::HIT_NORTH, {57, 21, 63, 26}},        {S::HIT_NORTHEAST, {104, 21, 110, 26}},
        {S::HIT_EAST, {104, 57, 110, 63}},     {S::HIT_SOUTHEAST, {104, 94, 110, 100}}, {S::HIT_SOUTH, {57, 94, 63, 100}},
        {S::HIT_SOUTHWEST, {11, 94, 17, 100}}, {S::HIT_WEST, {11, 57, 17, 63}},
    };
    const auto expected = [&](CPoint p) {
        if (p.x < 10 || p.x >= 110 || p.y < 20 || p.y >= 100) return S::HIT_OUTSIDE;
        for (const auto& handle : handles)
            if (p.x >= handle.rect.left && p.x < handle.rect.right && p.y >= handle.rect.top && p.y < handle.rect.bottom)
                return handle.code;
        return S::HIT_BODY;
    };
    S reversed;
    reversed.SetPosition({110, 100, 10, 20});
    for (int y = 15; y < 105; ++y)
        for (int x = 5; x < 115; ++x) {
            ASSERT_EQ(selection.HitTest(CPoint(x, y)), expected(CPoint(x, y))) << x << "," << y;
            ASSERT_EQ(reversed.HitTest(CPoint(x, y)), expected(CPoint(x, y))) << x << "," << y;
        }
    EXPECT_EQ(Text(reversed.GetPosition()), "110,100,10,20");

    // Handles that overlap: 8 by 8 pixels.
    selection.SetPosition({0, 0, 8, 8});
    using Row = std::pair<CPoint, S::EHitCode>;
    for (const auto& [point, code] : {Row{{0, 0}, S::HIT_BODY}, Row{{3, 3}, S::HIT_NORTHWEST}, Row{{7, 3}, S::HIT_NORTHEAST},
                                      Row{{7, 6}, S::HIT_EAST}, Row{{1, 7}, S::HIT_SOUTH}, Row{{7, 7}, S::HIT_SOUTHEAST}})
        EXPECT_EQ(selection.HitTest(point), code) << point.x << "," << point.y;
}

TEST_F(GestureTest, DrawsSelectionsThatGoAgain) {
    for (const RECT& rect : {RECT{30, 30, 130, 110}, RECT{30, 30, 35, 33}, RECT{90, 80, 40, 20}, RECT{50, 50, 50, 50}, RECT{}}) {
        CZoomSelection selection;
        selection.SetPosition(rect);
        const Pixels before = m_wnd.Picture();
        CClientDC dc(&m_wnd);
        selection.Draw(&dc);
        const Pixels drawn = m_wnd.Picture();
        selection.Draw(&dc);
        EXPECT_TRUE(Same(before, m_wnd.Picture())) << Text(rect);
        if (rect.right - rect.left < 100) continue;
        const auto inverted = [&](int x, int y) {
            const size_t i = static_cast<size_t>(y) * CPaintedWnd::kWidth + static_cast<size_t>(x);
            return drawn[i] == (before[i] ^ 0xFFFFFF);
        };
        // The outline goes through right and bottom; corners are drawn once; a handle is inverted whole.
        EXPECT_TRUE(inverted(30, 30) && inverted(130, 30) && inverted(130, 110) && inverted(30, 110));
        EXPECT_TRUE(inverted(31, 31) && inverted(36, 35) && inverted(124, 104) && inverted(129, 109));
        EXPECT_FALSE(inverted(37, 33) || inverted(123, 33) || inverted(29, 30) || inverted(131, 110));
    }
}

class RubberTest : public TrackerTest {
protected:
    void SetUp() override {
        TrackerTest::SetUp();
        std::snprintf(m_logFont.lfFaceName, sizeof m_logFont.lfFaceName, "DejaVu Sans");
        m_logFont.lfHeight = -10;
        m_logFont.lfCharSet = DEFAULT_CHARSET;
        m_font.CreateFontIndirect(&m_logFont);
        m_wnd.m_onUser = [this](WPARAM wParam, LPARAM lParam) {
            EXPECT_EQ(lParam, reinterpret_cast<LPARAM>(static_cast<CAxis*>(m_shown)));
            m_shifts += " " + std::to_string(static_cast<SHORT>(LOWORD(wParam))) + "," +
                        std::to_string(static_cast<SHORT>(HIWORD(wParam)));
            return LRESULT{0};
        };
        m_wnd.m_draw = [this](CDC& dc) {
            if (m_shown == nullptr) return;
            CFont* old = dc.SelectObject(&m_font);
            dc.SetTextColor(::GetSysColor(COLOR_BTNTEXT));
            m_shown->Render(&dc);
            dc.SelectObject(old);
        };
    }
    // Shows the axis, so that it has divisions and alignments as last drawn.
    void Show(CUnitAxis* axis) {
        m_shown = axis;
        m_shifts.clear();
        m_wnd.Fresh();
    }
    int Rub(CUnitAxis* axis, CPoint from, Script script) {
        CRubberTracker tracker(&m_wnd, axis->GetAreaRect(), m_logFont, axis);
        return m_wnd.Track(tracker, from, std::move(script));
    }
    static void Place(CUnitAxis* axis) {
        const bool horizontal = axis->GetOrientation() == CAxis::AX_HORIZONTAL;
        axis->SetAreaRect(horizontal ? RECT{0, 110, 200, 150} : RECT{0, 0, 60, 150});
        axis->SetRubberRect(axis->GetAreaRect());
    }

    LOGFONTA m_logFont = {};
    CFont m_font;
    CUnitAxis* m_shown = nullptr;
    std::string m_shifts;
};

TEST_F(RubberTest, TakesItsModeFromTheKeys) {
    const HeldKeys keys({VK_SHIFT});
    LoadAppStock();
    for (const int horizontal : {1, 0}) {
        const ShownAxis axis(horizontal, horizontal ? 115 : 50, 20, horizontal ? 180 : 140);
        Place(axis);
        axis->SetRange(0, 100);
        Show(axis);
        const auto look = [&](std::vector<int> held) { return Do([held = std::move(held)] { HeldKeys::Hold(held); }); };
        std::string modes;
        const auto note = [&](HCURSOR across, HCURSOR up) {
            return Do([&modes, &axis, cursor = horizontal ? across : up] {
                modes += std::to_string(axis->GetRubberMode()) + (::GetCursor() == cursor ? "" : "?");
            });
        };
        HeldKeys::Hold({VK_SHIFT});
        const CPoint start = horizontal ? CPoint(100, 120) : CPoint(30, 80);
        // 10 pixels towards the origin, 7 of them beyond the tick's hold; both ends of a pan move alike.
        const CPoint panned = horizontal ? CPoint(90, 120) : CPoint(30, 90);
        EXPECT_EQ(Rub(axis, start,
                      {note(hMoveXOrgCursor, hMoveYOrgCursor), look({}), KeyUp(VK_SHIFT), note(hMoveXExtCursor, hMoveYExtCursor),
                       look({VK_CONTROL, VK_SHIFT}), Key(VK_SHIFT), note(hMoveXOrgCursor, hMoveYOrgCursor), look({VK_CONTROL}),
                       KeyUp(VK_SHIFT), note(hMoveXCursor, hMoveYCursor), Up(panned.x, panned.y)}),
                  2);
        EXPECT_EQ(modes, "1213");
        EXPECT_EQ(m_shifts, horizontal ? " -7,-7" : " 7,7");
        const double length = horizontal ? 160 : 120;
        EXPECT_NEAR(axis->GetOrigin(), 100 * 7 / length, 1e-9);
        EXPECT_NEAR(axis->GetExtent(), 100 + 100 * 7 / length, 1e-9);
        m_shown = nullptr;
    }
    FreeAppStock();
}

// A cancelled drag gives back the range, the labels' format and every pixel; a finished one shows what it came to. In all modes
// and on both kinds of axes.
TEST_F(RubberTest, ShowsWhatItCameTo) {
    std::mt19937 random(7);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    for (int round = 0; round < 60; ++round) {
        SCOPED_TRACE(round);
        const int horizontal = round % 2;
        const ShownAxis axis(horizontal, horizontal ? 115 : 50, 20, horizontal ? 180 : 140);
        Place(axis);
        // In every fifth round drawing moves the end onto a tick, for which labels would have a decimal less.
        const double end = round % 5 == 0 ? 19.995 : round % 3 == 0 ? 100 : 80 + below(50);
        axis->SetRange(0, end);
        Show(axis);
        EXPECT_TRUE(round % 5 != 0 || axis->GetExtent() != end);
        const CString format = axis->GetFormat();
        const Pixels before = m_wnd.Picture();
        const double origin = axis->GetOrigin(), extent = axis->GetExtent();
        const HeldKeys keys(round % 4 == 0   ? std::vector<int>{VK_SHIFT}
                            : round % 4 == 1 ? std::vector<int>{VK_CONTROL}
                                             : std::vector<int>{});
        Script script;
        for (int moves = 1 + below(8); moves > 0; --moves) script.push_back(Move(below(200), below(150)));
        const bool cancels = below(4) != 0;
        script.push_back(!cancels ? Up(below(200), below(150)) : below(2) != 0 ? Right() : Key(VK_ESCAPE));
        EXPECT_EQ(Rub(axis, CPoint(below(200), below(150)), std::move(script)) == 0, cancels);
        EXPECT_EQ(axis->GetRubberMode(), 0);
        if (cancels) {
            EXPECT_EQ(std::tuple(axis->GetOrigin(), axis->GetExtent(), axis->GetFormat()), std::tuple(origin, extent, format));
            EXPECT_TRUE(Same(before, m_wnd.Picture()));
        } else {
            const Pixels after = m_wnd.Picture();
            EXPECT_TRUE(Same(after, m_wnd.Fresh())) << "the axis on the screen is the one that a paint gives";
        }
        m_shown = nullptr;
    }
}

// A window that goes in the answer to the rubber's message, an axis and a place of no size.
TEST_F(RubberTest, SurvivesTheWorst) {
    const HeldKeys keys({VK_CONTROL});
    const ShownAxis axis(1, 115, 20, 180);
    Place(axis);
    Show(axis);
    m_wnd.m_onUser = [this](WPARAM, LPARAM) {
        m_wnd.DestroyWindow();
        return LRESULT{0};
    };
    EXPECT_EQ(Rub(axis, CPoint(100, 120), {Up(60, 120)}), 0);
    EXPECT_EQ(axis->GetRubberMode(), 0);
    m_wnd.Create();
    m_wnd.m_onUser = nullptr;
    const ShownAxis point(1, 115, 20, 20);
    m_shown = nullptr;
    EXPECT_EQ(Rub(point, CPoint(0, 0), {Move(5, 0), Up(60, 120)}), 1) << "its rubber rectangle is empty";
    point->SetRubberRect({0, 0, 200, 150});
    EXPECT_EQ(Rub(point, CPoint(0, 0), {Move(50, 0), Up(60, 120)}), 2);
    EXPECT_EQ(point->GetOrigin(), 0);
    EXPECT_EQ(point->GetExtent(), 100);
}

}  // namespace
