// Where windows are, what they are told when that changes, and who has activation, focus and capture.
#include "tests/platform/window_log.h"
#include "tests/support/last_error.h"

using namespace window_test;

namespace {
class WindowPlaceTest : public WindowLogTest {
protected:
    Log Place(const std::set<std::string>& extra = {}) {
        std::set<std::string> names = {"create", "size",  "move",    "show", "activate", "focus",  "unfocus",
                                       "enable", "child", "destroy", "gone", "placed",   "cancel", "capture"};
        names.insert(extra.begin(), extra.end());
        return Take(names);
    }
    bool Answer(HWND, UINT message, WPARAM, LPARAM lParam, LRESULT&) override {
        if (message == WM_WINDOWPOSCHANGING && m_limit > 0) {
            auto& pos = *reinterpret_cast<WINDOWPOS*>(lParam);
            pos.cx = std::min(pos.cx, m_limit);
        }
        return false;
    }
    int m_limit = 0;
    std::vector<std::string>* m_below = nullptr;
};
}  // namespace

TEST_F(WindowPlaceTest, TellsWindowsWhatHappensToThem) {
    const HWND top = Make("top", WS_POPUP, {10, 20, 310, 220});
    EXPECT_EQ(Place(), (Log{"top create", "top size 300,200", "top move 10,20"}));
    const HWND kid = Make("kid", WS_CHILD | WS_VISIBLE, {10, 20, 110, 70}, top, 5);
    EXPECT_EQ(Place(), (Log{"kid create", "kid size 100,50", "kid move 10,20", "top child 1", "kid show 1"}));
    EXPECT_FALSE(IsWindowVisible(kid));  // as long as its parent is hidden
    ShowWindow(top, SW_SHOW);
    EXPECT_EQ(Place(), (Log{"top show 1", "top activate 1 none", "top focus none", "top placed"}));
    EXPECT_TRUE(IsWindowVisible(kid));
    struct Step {
        const char* what;
        RECT place;
        Log told;
    };
    for (const Step& step :
         {Step{"moved", {20, 30, 120, 80}, {"kid placed", "kid move 20,30"}},
          Step{"sized", {20, 30, 140, 90}, {"kid placed", "kid size 120,60"}},
          Step{"both", {0, 0, 50, 40}, {"kid placed", "kid move 0,0", "kid size 50,40"}}, Step{"neither", {0, 0, 50, 40}, {}},
          Step{"negative size", {-5, -6, -15, -7}, {"kid placed", "kid move -5,-6", "kid size 0,0"}}}) {
        const RECT& r = step.place;
        MoveWindow(kid, static_cast<int>(r.left), static_cast<int>(r.top), static_cast<int>(r.right - r.left),
                   static_cast<int>(r.bottom - r.top), TRUE);
        EXPECT_EQ(Place(), step.told) << step.what;
    }
    m_limit = 77;  // who is asked may have its own idea
    SetWindowPos(kid, nullptr, 0, 0, 500, 30, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(Place(), (Log{"kid placed", "kid size 77,30"}));
    m_limit = 0;
    EXPECT_TRUE(ShowWindow(kid, SW_HIDE));
    EXPECT_EQ(Place(), (Log{"kid show 0", "kid placed"}));
    EXPECT_FALSE(ShowWindow(kid, SW_HIDE));
    EXPECT_EQ(Place(), Log{});
    DestroyWindow(top);
    EXPECT_EQ(Place(), (Log{"top placed", "top activate 0 none", "top unfocus none", "top destroy", "kid destroy", "kid gone",
                            "top gone"}));
}

TEST_F(WindowPlaceTest, FocusFollowsItsRules) {
    const HWND top = Make("top", WS_POPUP | WS_VISIBLE, {10, 20, 310, 220});
    const HWND kid = Make("kid", WS_CHILD | WS_VISIBLE, {10, 20, 110, 70}, top, 5);
    const HWND other = Make("other", WS_CHILD | WS_VISIBLE, {10, 80, 110, 120}, top, 6);
    Place();
    EXPECT_EQ(SetFocus(kid), top);
    EXPECT_EQ(Place(), (Log{"top unfocus kid", "kid focus top"}));
    EXPECT_EQ(SetFocus(kid), kid);
    EXPECT_EQ(Place(), Log{});
    EnableWindow(kid, FALSE);
    EXPECT_EQ(Place(), (Log{"kid cancel", "kid unfocus none", "kid enable 0"}));
    EXPECT_EQ(SetFocus(kid), nullptr);  // not a disabled one
    EXPECT_EQ(GetFocus(), nullptr);
    EnableWindow(kid, TRUE);
    SetFocus(kid);
    Place();
    ShowWindow(kid, SW_HIDE);
    EXPECT_EQ(GetFocus(), top);
    SetFocus(other);
    Place();
    DestroyWindow(other);
    EXPECT_EQ(GetFocus(), top);
    // A second window takes over and gives back.
    const HWND owned = Make("owned", WS_POPUP | WS_VISIBLE, {50, 60, 150, 160}, top);
    EXPECT_EQ(GetActiveWindow(), owned);
    EXPECT_EQ(GetForegroundWindow(), owned);
    Place();
    DestroyWindow(owned);
    EXPECT_EQ(GetActiveWindow(), top);
    EXPECT_EQ(Place({}).back(), "owned gone");
    EXPECT_EQ(GetFocus(), top);
}

TEST_F(WindowPlaceTest, OrderPointsAndRelations) {
    const HWND top = Make("top", WS_POPUP | WS_VISIBLE, {100, 200, 400, 400});
    const HWND a = Make("a", WS_CHILD | WS_VISIBLE, {10, 10, 110, 60}, top, 1);
    const HWND b = Make("b", WS_CHILD | WS_VISIBLE, {60, 20, 160, 80}, top, 2);
    const HWND c = Make("c", WS_CHILD, {0, 0, 300, 200}, top, 3);
    const HWND grandchild = Make("grandchild", WS_CHILD | WS_VISIBLE, {5, 5, 15, 15}, b, 4);
    const auto order = [&] {
        std::string names;
        for (HWND at = GetTopWindow(top); at != nullptr; at = GetWindow(at, GW_HWNDNEXT)) names += NameOf(at);
        return names;
    };
    EXPECT_EQ(order(), "abc");  // the first child is the top one
    SetWindowPos(b, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    EXPECT_EQ(order(), "bac");
    SetWindowPos(b, c, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    EXPECT_EQ(order(), "acb");
    SetWindowPos(a, HWND_BOTTOM, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    EXPECT_EQ(order(), "cba");
    EXPECT_EQ(GetWindow(a, GW_HWNDFIRST), c);
    EXPECT_EQ(GetWindow(c, GW_HWNDLAST), a);
    EXPECT_EQ(GetWindow(a, GW_HWNDPREV), b);
    EXPECT_EQ(GetAncestor(grandchild, GA_ROOT), top);
    EXPECT_EQ(GetAncestor(grandchild, GA_PARENT), b);
    EXPECT_EQ(GetAncestor(top, GA_PARENT), GetDesktopWindow());

    struct At {
        POINT point;
        UINT flags;
        HWND child;
    };
    for (const At& at :
         {At{{70, 30}, CWP_ALL, c}, At{{70, 30}, CWP_SKIPINVISIBLE, b}, At{{20, 15}, CWP_SKIPINVISIBLE, a},
          At{{299, 199}, CWP_SKIPINVISIBLE, top}, At{{300, 10}, CWP_ALL, nullptr}, At{{-1, 10}, CWP_ALL, nullptr}}) {
        EXPECT_EQ(ChildWindowFromPointEx(top, at.point, at.flags), at.child) << at.point.x << "," << at.point.y;
    }
    EXPECT_EQ(WindowFromPoint({100 + 66, 200 + 26}), grandchild);
    EXPECT_EQ(WindowFromPoint({100 + 62, 200 + 22}), b);

    POINT point{1, 2};
    EXPECT_TRUE(ClientToScreen(grandchild, &point));
    EXPECT_EQ(point.x, 100 + 60 + 5 + 1);
    EXPECT_EQ(point.y, 200 + 20 + 5 + 2);
    RECT r{0, 0, 10, 10};
    EXPECT_EQ(MapWindowPoints(grandchild, a, reinterpret_cast<LPPOINT>(&r), 2), MAKELONG(55, 15));
    EXPECT_EQ(r.right, 65);
    GetWindowRect(grandchild, &r);
    EXPECT_EQ(r.left, 165);
    EXPECT_EQ(r.bottom, 235);
    std::vector<std::string> below;
    m_below = &below;
    EnumChildWindows(
        top,
        [](HWND window, LPARAM self) -> BOOL {
            auto* test = reinterpret_cast<WindowPlaceTest_OrderPointsAndRelations_Test*>(self);
            test->m_below->push_back(test->NameOf(window));
            return TRUE;
        },
        reinterpret_cast<LPARAM>(this));
    EXPECT_EQ(below, (std::vector<std::string>{"c", "b", "grandchild", "a"}));
}
