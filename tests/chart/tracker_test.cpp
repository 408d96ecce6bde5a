// The modal loop: what a script of messages makes of a drag, hook by hook. Expected logs are worked out by hand.
#include "chart/tracker.h"

#include <stdexcept>
#include <tuple>

#include "chart/tracker_input_internal.h"
#include "tests/chart/tracker_window.h"

using namespace tracker_test;

namespace {

std::string Text(CPoint p) { return std::to_string(p.x) + "," + std::to_string(p.y); }

// Notes every hook, and draws a bar at its point.
class CLogTracker : public CTracker {
public:
    CLogTracker() {
        SetConstrainRect({0, 0, 100, 80});
        SetTrackFlags(TRACK_HORIZONTAL | TRACK_VERTICAL);
    }
    using CTracker::SetClipRect;
    using CTracker::SetDelta;
    using CTracker::SetHotRect;
    using CTracker::SetRepeat;
    using CTracker::SetTrackFlags;

    void OnBeginTrack(CPoint point) override {
        m_log += "begin@" + Text(point);
        if (m_onBegin) m_onBegin();
    }
    void OnTrack(CDC* pDC, UINT code, CPoint point) override {
        m_log += " " + std::to_string(code) + "@" + Text(point);
        const RECT bar = {point.x, point.y - 6, point.x + 20, point.y + 6};
        if ((code & (TRACK_DRAW | TRACK_ERASE | TRACK_REPAINT)) != 0) pDC->InvertRect(&bar);
        if (m_onTrack) m_onTrack(code);
    }
    void OnEndTrack(CPoint point, BOOL moved, BOOL cancelled) override {
        m_log += " end@" + Text(point) + (moved ? " moved" : "") + (cancelled ? " cancelled" : "");
    }
    void SetMode() override { m_log += " mode"; }

    std::string m_log;
    std::function<void()> m_onBegin;
    std::function<void(UINT)> m_onTrack;
};

class MessageCodes : public TrackerTest {
protected:
    static constexpr UINT kBoth = CTracker::TRACK_HORIZONTAL | CTracker::TRACK_VERTICAL;
    // What a drag from 10,10 logs and answers.
    void Expect(const char* what, Script script, const char* log, int result, UINT flags = kBoth, CSize delta = {}) {
        SCOPED_TRACE(what);
        const Pixels before = m_wnd.Picture();
        m_wnd.m_seen.clear();
        CLogTracker tracker;
        tracker.SetTrackFlags(flags);
        tracker.m_onBegin = [&] {
            EXPECT_EQ(::GetCapture(), m_wnd.m_hWnd);
            if (delta != CSize(0, 0)) tracker.SetDelta(delta.cx, delta.cy);
        };
        EXPECT_EQ(m_wnd.Track(tracker, CPoint(10, 10), std::move(script)), result);
        EXPECT_EQ(tracker.m_log, log);
        EXPECT_EQ(::GetCapture(), nullptr);
        EXPECT_TRUE(Same(before, m_wnd.Picture()));
        EXPECT_TRUE(m_wnd.m_seen.empty()) << "message " << m_wnd.m_seen.front().first << " was let through";
        CPaintedWnd::Discard();
    }
};

TEST_F(MessageCodes, AreWhatTheMessagesSay) {
    Expect("a click", {Up(10, 10)}, "begin@10,10 1@10,10 2@10,10 end@10,10", 1);
    Expect("a drag; the same point twice is one movement", {Move(10, 10), Move(30, 20), Move(30, 20), Up(40, 25)},
           "begin@10,10 1@10,10 6@10,10 5@30,20 6@30,20 5@40,25 2@40,25 end@40,25 moved", 2);
    Expect("beyond the window, also at its left and top", {Move(500, -5), Up(-30, 32767)},
           "begin@10,10 1@10,10 6@10,10 5@100,0 6@100,0 5@0,80 2@0,80 end@0,80 moved", 2);
    Expect("only horizontal movements count", {Move(10, 50), Up(10, 60)}, "begin@10,10 1@10,10 2@10,10 end@10,10", 1,
           CTracker::TRACK_HORIZONTAL);
    Expect("with one that counts, the other direction comes along", {Move(12, 50), Up(12, 60)},
           "begin@10,10 1@10,10 6@10,10 5@12,50 2@12,50 end@12,50 moved", 2, CTracker::TRACK_HORIZONTAL);
    Expect("only vertical movements count", {Move(20, 10), Up(20, 12)},
           "begin@10,10 1@10,10 6@10,10 5@20,12 2@20,12 end@20,12 moved", 2, CTracker::TRACK_VERTICAL);
    Expect("the grip's offset is added to every point", {Move(20, 20), Up(20, 20)},
           "begin@10,10 1@15,7 6@15,7 5@25,17 2@25,17 end@25,17 moved", 2, kBoth, CSize(5, -3));
    Expect("the right button cancels", {Move(20, 10), Right(), Move(30, 10)},
           "begin@10,10 1@10,10 6@10,10 5@20,10 18@20,10 end@20,10 moved cancelled", 0);
    Expect("so does Escape, and other keys do nothing", {Key('A'), KeyUp('A'), KeyUp(VK_ESCAPE), Key(VK_RETURN), Key(VK_ESCAPE)},
           "begin@10,10 1@10,10 18@10,10 end@10,10 cancelled", 0);
    Expect("Shift and Ctrl change the mode, down and up",
           {Key(VK_SHIFT), KeyUp(VK_SHIFT), Key(VK_CONTROL), KeyUp(VK_CONTROL), Key(VK_MENU), Up(10, 10)},
           "begin@10,10 1@10,10 mode mode mode mode 2@10,10 end@10,10", 1);
}

TEST_F(TrackerTest, LetsEverybodyElseGoOn) {
    CPaintedWnd other;
    other.Create();
    m_wnd.m_seen.clear();
    bool nested = false;
    m_wnd.m_onDown = [&] {
        CLogTracker second;
        EXPECT_EQ(m_wnd.Track(second, CPoint(1, 1), {}), 0) << "the mouse is taken";
        EXPECT_EQ(second.m_log, "");
        nested = true;
        ::PostMessageA(m_wnd.m_hWnd, WM_LBUTTONUP, 0, At(11, 10));
    };
    const auto toOther = [&](UINT message, LPARAM lParam) {
        return Do([&other, message, lParam] { ::PostMessageA(other.m_hWnd, message, 0, lParam); });
    };
    CLogTracker tracker;
    EXPECT_EQ(m_wnd.Track(tracker, CPoint(10, 10),
                          {toOther(WM_MOUSEMOVE, At(50, 50)), toOther(WM_RBUTTONDOWN, At(50, 50)),
                           toOther(WM_LBUTTONUP, At(51, 50)), toOther(WM_APP + 7, 0), Down(15, 15)}),
              2);
    EXPECT_TRUE(nested);
    EXPECT_EQ(tracker.m_log, "begin@10,10 1@10,10 6@10,10 5@11,10 2@11,10 end@11,10 moved");
    const std::vector<std::pair<UINT, LPARAM>> expected = {
        {WM_MOUSEMOVE, At(50, 50)}, {WM_RBUTTONDOWN, At(50, 50)}, {WM_LBUTTONUP, At(51, 50)}, {WM_APP + 7, 0}};
    EXPECT_EQ(other.m_seen, expected);
}

TEST_F(TrackerTest, EndsWithTheCapture) {
    const Pixels before = m_wnd.Picture();
    CLogTracker tracker;
    // What waits behind the loss is none of the drag's.
    EXPECT_EQ(m_wnd.Track(tracker, CPoint(10, 10), {Move(20, 10), Do([] { ::ReleaseCapture(); }), Move(30, 10), Key(VK_ESCAPE)}),
              2);
    EXPECT_EQ(tracker.m_log, "begin@10,10 1@10,10 6@10,10 5@20,10 2@20,10 end@20,10 moved");
    EXPECT_TRUE(Same(before, m_wnd.Picture()));
    m_wnd.m_seen.clear();
    CPaintedWnd::Settle();
    EXPECT_EQ(m_wnd.m_seen.size(), 2u);

    // Another window's capture stays its own.
    CPaintedWnd other;
    other.Create();
    CLogTracker robbed;
    EXPECT_EQ(m_wnd.Track(robbed, CPoint(10, 10), {Do([&] { ::SetCapture(other.m_hWnd); })}), 1);
    EXPECT_EQ(robbed.m_log, "begin@10,10 1@10,10 2@10,10 end@10,10");
    EXPECT_EQ(::GetCapture(), other.m_hWnd);

    CLogTracker refused;
    EXPECT_EQ(m_wnd.Track(refused, CPoint(10, 10), {}), 0);
    EXPECT_EQ(refused.m_log, "");
    EXPECT_EQ(::GetCapture(), other.m_hWnd);
    ::ReleaseCapture();
}

TEST_F(TrackerTest, CancelsWhenTheWindowGoes) {
    CPaintedWnd doomed;
    doomed.Create();
    CLogTracker tracker;
    EXPECT_EQ(doomed.Track(tracker, CPoint(10, 10), {Move(20, 10), Do([&] { doomed.DestroyWindow(); })}), 0);
    EXPECT_EQ(tracker.m_log, "begin@10,10 1@10,10 6@10,10 5@20,10 end@20,10 moved cancelled");

    // In a hook, between the erasing and the drawing of a movement.
    doomed.Create();
    CLogTracker hooked;
    hooked.m_onTrack = [&](UINT code) {
        if (code == 6) doomed.DestroyWindow();
    };
    EXPECT_EQ(doomed.Track(hooked, CPoint(10, 10), {Up(20, 10)}), 0);
    EXPECT_EQ(hooked.m_log, "begin@10,10 1@10,10 6@10,10 end@20,10 moved cancelled");

    CLogTracker nowhere;
    EXPECT_EQ(nowhere.TrackCursor(&doomed, CPoint(1, 1)), 0);
    EXPECT_EQ(nowhere.TrackCursor(nullptr, CPoint(1, 1)), 0);
    EXPECT_EQ(nowhere.m_log, "");
}

TEST_F(TrackerTest, PassesTheQuitMessageOn) {
    const Pixels before = m_wnd.Picture();
    CLogTracker tracker;
    EXPECT_EQ(m_wnd.Track(tracker, CPoint(10, 10), {Move(20, 10), Do([] { ::PostQuitMessage(42); })}), 0);
    EXPECT_EQ(tracker.m_log, "begin@10,10 1@10,10 6@10,10 5@20,10 18@20,10 end@20,10 moved cancelled");
    EXPECT_TRUE(Same(before, m_wnd.Picture()));
    MSG message;
    ASSERT_TRUE(::PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 42u);
}

TEST_F(TrackerTest, FreesTheMouseWhenAHookThrows) {
    for (const UINT thrown : {0u, 1u, 5u, 2u}) {
        CLogTracker tracker;
        if (thrown == 0) tracker.m_onBegin = [] { throw std::runtime_error("begin"); };
        tracker.m_onTrack = [&](UINT code) {
            if (code == thrown) throw std::runtime_error("track");
        };
        EXPECT_THROW(m_wnd.Track(tracker, CPoint(10, 10), {Move(20, 10), Up(20, 10)}), std::runtime_error);
        EXPECT_EQ(::GetCapture(), nullptr);
        CPaintedWnd::Discard();
    }
}

// A held drag ticks without a message, and messages that come between the ticks do not put them off.
TEST_F(TrackerTest, RepeatsWhileNothingHappens) {
    CLogTracker tracker;
    tracker.SetRepeat(TRUE);
    int ticks = 0;
    tracker.m_onTrack = [&](UINT code) {
        if (code == 8 && ++ticks == 3) ::PostMessageA(m_wnd.m_hWnd, WM_LBUTTONUP, 0, At(20, 10));
    };
    EXPECT_EQ(m_wnd.Track(tracker, CPoint(10, 10), {Move(20, 10)}), 2);
    EXPECT_EQ(tracker.m_log, "begin@10,10 1@10,10 6@10,10 5@20,10 8@20,10 8@20,10 8@20,10 2@20,10 end@20,10 moved");

    using orvik::detail::RhythmOf;
    const auto quick = RhythmOf(0, 31), slow = RhythmOf(3, 0);
    EXPECT_EQ(std::tuple(quick.first, quick.interval, slow.first, slow.interval), std::tuple(250u, 31u, 1000u, 1000u));
}

// The window paints a part of itself under the bar, the rest of the bar stays: afterwards the whole bar is there, once.
TEST_F(TrackerTest, DrawsAgainWhatWasPaintedOver) {
    const Pixels before = m_wnd.Picture();
    Pixels during;
    CLogTracker tracker;
    EXPECT_EQ(m_wnd.Track(tracker, CPoint(10, 10),
                          {Move(50, 40), m_wnd.Paint({0, 0, 60, 40}), m_wnd.Paint({55, 30, 56, 150}),
                           Do([&] { during = m_wnd.Picture(); }), Up(50, 40)}),
              2);
    EXPECT_EQ(tracker.m_log, "begin@10,10 1@10,10 6@10,10 5@50,40 32@50,40 32@50,40 2@50,40 end@50,40 moved");
    for (size_t i = 0; i < before.size(); ++i) {
        const auto x = static_cast<LONG>(i % CPaintedWnd::kWidth);
        const auto y = static_cast<LONG>(i / CPaintedWnd::kWidth);
        const bool inside = x >= 50 && x < 70 && y >= 34 && y < 46;
        ASSERT_EQ(during[i], inside ? before[i] ^ 0xFFFFFF : before[i]) << x << "," << y;
    }
    EXPECT_TRUE(Same(before, m_wnd.Picture()));
}

TEST_F(TrackerTest, DrawsWithinTheClipRectangle) {
    const Pixels before = m_wnd.Picture();
    Pixels during;
    CLogTracker tracker;
    tracker.SetClipRect({0, 0, 60, 43});
    m_wnd.Track(tracker, CPoint(50, 40), {Do([&] { during = m_wnd.Picture(); }), Up(50, 40)});
    size_t changed = 0;
    for (size_t i = 0; i < before.size(); ++i) changed += before[i] != during[i];
    EXPECT_EQ(changed, 10u * 9u);
    EXPECT_TRUE(Same(before, m_wnd.Picture()));

    CClientDC dc(&m_wnd);
    tracker.m_log.clear();
    tracker.Update(&dc), tracker.Update(&dc);
    EXPECT_EQ(tracker.m_log, " 1@50,40 1@50,40");
}

TEST(Tracker, HitsAndConstrains) {
    CLogTracker tracker;
    tracker.SetHotRect({10, 20, 30, 40});
    EXPECT_TRUE(tracker.HitTest(CPoint(10, 20)));
    EXPECT_FALSE(tracker.HitTest(CPoint(30, 20)));
    EXPECT_FALSE(tracker.HitTest(CPoint(29, 40)));
    EXPECT_EQ(CTracker::iMinSelection, 5);

    // Right and bottom belong to it; an inverted rectangle gives them.
    class CFreeTracker : public CLogTracker {
    public:
        using CTracker::SetConstrainRect;
    } free;
    using Row = std::tuple<RECT, CPoint, CPoint>;
    for (const auto& [rect, from, to] : {Row{{10, 20, 30, 40}, {30, 40}, {30, 40}}, Row{{10, 20, 30, 40}, {9, 41}, {10, 40}},
                                         Row{{30, 40, 10, 20}, {15, 70}, {10, 20}}, Row{{30, 40, 10, 20}, {5, 5}, {10, 20}}}) {
        free.SetConstrainRect(rect);
        CPoint point = from;
        free.OnConstrainTrack(point);
        EXPECT_TRUE(point == to) << Text(point);
    }
}

}  // namespace
