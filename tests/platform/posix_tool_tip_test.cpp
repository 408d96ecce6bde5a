// When a tool tip comes and goes, and what its window does then: the Linux twin.
#include "platform/accessible.h"
#include "platform/posix/controls/tool_tip_state_internal.h"
#include "platform/scripted_input.h"
#include "tests/platform/control_host.h"

using orvik::detail::ToolTipState;
using Phase = ToolTipState::Phase;

namespace {
// m: moves on a tool, a: on another one, l: on none, p: presses, e: the time has passed that was asked for. Digits: that many
// tenths of the reshow time go by.
TEST(ToolTipStateTest, ComesAfterARestAndGoesForGood) {
    constexpr Phase kAway = Phase::Away, kWaiting = Phase::Waiting, kShown = Phase::Shown, kSpent = Phase::Spent;
    const struct {
        const char* what;
        Phase phase;
        DWORD delay;
    } cases[] = {{"", kAway, 0},         {"m", kWaiting, 500}, {"mm", kWaiting, 500},    {"me", kShown, 5000},
                 {"mem", kShown, 5000},  {"mee", kSpent, 0},   {"meem", kSpent, 0},      {"mp", kSpent, 0},
                 {"mep", kSpent, 0},     {"mepm", kSpent, 0},  {"mepa", kWaiting, 500},  {"mea", kWaiting, 100},
                 {"ml", kAway, 0},       {"mel", kAway, 0},    {"mel5m", kWaiting, 100}, {"mel99m", kWaiting, 500},
                 {"mlm", kWaiting, 500}, {"p", kAway, 0}};
    for (const auto& one : cases) {
        ToolTipState state;
        DWORD now = 4'294'967'290;  // the clock begins anew meanwhile
        for (const char* at = one.what; *at != 0; ++at) {
            if (*at == 'm' || *at == 'a') {
                state.Moved(*at == 'm' && at != one.what && at[-1] != 'l', now);
            } else if (*at == 'l') {
                state.Left(now);
            } else if (*at == 'p') {
                state.Pressed();
            } else if (*at == 'e') {
                state.Elapsed();
            } else {
                now += static_cast<DWORD>(*at - '0') * state.reshow / 10;
            }
        }
        EXPECT_EQ(state.Now(), one.phase) << one.what;
        EXPECT_EQ(state.Delay(), one.delay) << one.what;
    }
}

class ToolTipTest : public ControlHost {
protected:
    void SetUp() override {
        ControlHost::SetUp();
        tip = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, "", WS_POPUP | TTS_NOPREFIX, 0, 0, 0, 0, parent, nullptr,
                              GetModuleHandleA(nullptr), nullptr);
        ASSERT_NE(tip, nullptr);
        SendMessageA(tip, TTM_SETDELAYTIME, TTDT_INITIAL, 1);
        SendMessageA(tip, TTM_SETDELAYTIME, TTDT_RESHOW, 1);
        SendMessageA(tip, TTM_SETDELAYTIME, TTDT_AUTOPOP, 30'000);
    }
    LRESULT Notified(const NMHDR& header) override {
        if (header.code == TTN_GETDISPINFOA) {
            Note("asked");
            auto& info = *reinterpret_cast<NMTTDISPINFOA*>(const_cast<NMHDR*>(&header));
            info.lpszText = const_cast<char*>(answer.c_str());
        } else {
            Note(header.code == TTN_SHOW ? "shown" : header.code == TTN_POP ? "gone" : "?");
        }
        return 0;
    }
    void Tell(UINT message, UINT_PTR id, UINT flags, RECT place, const char* text) {
        TTTOOLINFOA tool = {};
        tool.cbSize = TTTOOLINFOA_V2_SIZE;
        tool.uFlags = flags;
        tool.hwnd = parent;
        tool.uId = id;
        tool.rect = place;
        tool.lpszText = const_cast<char*>(text);
        SendMessageA(tip, message, 0, reinterpret_cast<LPARAM>(&tool));
    }
    static void Pump() {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageA(&message);
    }
    void Point(int x, int y, UINT message = WM_MOUSEMOVE) {
        OrvikPostPointer(parent, message, x, y, 0);
        Pump();
    }
    // Waits until it is there.
    void Await() {
        while (!IsWindowVisible(tip)) {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
            Pump();
        }
    }
    bool IsThere() const { return IsWindowVisible(tip) != FALSE; }
    RECT Place() const {
        RECT place{};
        GetWindowRect(tip, &place);
        MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
        return place;
    }

    HWND tip = nullptr;
    std::string answer = "answered";
    const RECT area{20, 30, 120, 50};
};

TEST_F(ToolTipTest, ItStandsBelowItsToolAndGoesWithAPressAKeyAndThePointer) {
    Tell(TTM_ADDTOOLA, 1, TTF_SUBCLASS, area, "a & b");
    Point(60, 40);
    Await();
    EXPECT_EQ(Told(), "shown");
    EXPECT_EQ(Place().top, area.bottom);
    EXPECT_EQ(Place().left, 60);
    EXPECT_EQ(GetActiveWindow(), parent);
    POINT below{Place().left + 2, Place().top + 2};
    ClientToScreen(parent, &below);
    EXPECT_NE(WindowFromPoint(below), nullptr);
    Point(10, 10);
    EXPECT_FALSE(IsThere());
    for (const UINT end : {WM_LBUTTONDOWN, WM_KEYDOWN}) {
        Point(61, 40);
        Await();
        if (end == WM_KEYDOWN)
            OrvikPostKey(parent, VK_SHIFT, TRUE), OrvikPostKey(parent, VK_SHIFT, FALSE);
        else
            Point(61, 40, end), Point(61, 40, WM_LBUTTONUP);
        Pump();
        EXPECT_FALSE(IsThere()) << end;
        Point(10, 10);
    }
    SendMessageA(tip, TTM_ACTIVATE, FALSE, 0);
    Point(62, 40);
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
    Pump();
    EXPECT_FALSE(IsThere());
}

TEST_F(ToolTipTest, ItsTextMayHaveLinesChangeAndBeAskedFor) {
    SendMessageA(tip, TTM_SETMAXTIPWIDTH, 0, 400);
    Tell(TTM_ADDTOOLA, 1, TTF_SUBCLASS, area, "one");
    Point(60, 40);
    Await();
    const LONG height = Place().bottom - Place().top;
    Tell(TTM_UPDATETIPTEXTA, 1, 0, {}, "one\ntwo\nthree");
    EXPECT_GT(Place().bottom - Place().top, 2 * height);
    Tell(TTM_NEWTOOLRECTA, 1, 0, {20, 100, 120, 120}, nullptr);
    Point(60, 41);
    EXPECT_FALSE(IsThere()) << "the tool is elsewhere now";
    Tell(TTM_DELTOOLA, 1, 0, {}, nullptr);
    EXPECT_EQ(SendMessageA(tip, TTM_GETTOOLCOUNT, 0, 0), 0);

    const HWND button = Make("Button", BS_PUSHBUTTON, "b", 80, 20);
    Tell(TTM_ADDTOOLA, reinterpret_cast<UINT_PTR>(button), TTF_SUBCLASS | TTF_IDISHWND, {}, LPSTR_TEXTCALLBACKA);
    Told();
    Point(10, 10);
    Await();
    EXPECT_EQ(Told(), "asked shown");
    OrvikAccessible said;
    SendMessageA(button, kOrvikDescribe, 0, reinterpret_cast<LPARAM>(&said));
    EXPECT_EQ(said.description, "answered") << "for who does not see it";
    Told();
    Point(150, 150);
    answer.clear();
    Point(11, 10);
    MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
    Pump();
    EXPECT_FALSE(IsThere()) << "there is nothing to say";
}

TEST_F(ToolTipTest, WhatIsRelayedCountsForToolsThatAreNotWatched) {
    Tell(TTM_ADDTOOLA, 1, 0, area, "relayed");
    Point(60, 40);
    MSG message{};
    message.hwnd = parent;
    message.message = WM_MOUSEMOVE;
    message.lParam = MAKELPARAM(60, 40);
    SendMessageA(tip, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&message));
    Await();
    message.lParam = MAKELPARAM(10, 10);
    SendMessageA(tip, TTM_RELAYEVENT, 0, reinterpret_cast<LPARAM>(&message));
    EXPECT_FALSE(IsThere());
}
}  // namespace
