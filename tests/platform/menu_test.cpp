// Menus under a user's keys: what the window is told, in which order, and what is chosen.
#include "tests/platform/menu_host.h"

namespace {
class MenuTest : public MenuHost {};
}  // namespace

TEST_F(MenuTest, KeysMoveAndChoose) {
    struct Row {
        const char* doing;
        const char* told;  // between "enter init:edit open:edit0" and "none exit"
        UINT command;
        int closed;
    };
    const auto rows =
        Table(Row{"down enter", "1", 1, 1}, Row{"down down enter escape", "1 2g", 0, 1},  // a grey item is marked and not chosen
              Row{"up enter", "5", 5, 1}, Row{"up down enter", "5 1", 1, 1},              // round the ends
              Row{"end home enter", "5 1", 1, 1}, Row{"down down down right down enter", "1 2g 3p open:more3 11 12c", 12, 2},
              Row{"'m enter", "3p open:more3 11", 11, 2}, Row{"'U", "1", 1, 1}, Row{"down alt", "1", 0, 1});
    for (const Row& row : rows) {
        Track(row.doing);
        std::string expected = std::string("enter init:edit open:edit0 ") + row.told + " none exit";
        if (row.command != 0) expected += " command:" + std::to_string(row.command);
        EXPECT_EQ(log, expected) << row.doing;
        EXPECT_EQ(closed, row.closed) << row.doing;
        EXPECT_EQ(GetCapture(), nullptr) << row.doing;
    }
}

TEST_F(MenuTest, ReturnsTheCommandOrTellsNothing) {
    EXPECT_EQ(Track("down enter", TPM_RETURNCMD), 1);
    EXPECT_EQ(log.find("command"), std::string::npos);
    EXPECT_EQ(Track("escape", TPM_RETURNCMD), 0);
    PostMessageA(top, WM_KEYDOWN, VK_DOWN, 1), PostMessageA(top, WM_KEYDOWN, VK_RETURN, 1);
    PostMessageA(top, WM_CHAR, '\r', 1);
    Plan("");
    EXPECT_EQ(TrackPopupMenu(edit, TPM_RETURNCMD | TPM_NONOTIFY, 150, 150, 0, top, nullptr), 1);
    EXPECT_EQ(log.find("init"), std::string::npos);
}

TEST_F(MenuTest, AnUnknownLetterIsTheOwnersToAnswer) {
    for (const auto& [answer, doing, command] :
         Table(std::tuple(MAKELONG(4, MNC_EXECUTE), "'q", 4), std::tuple(MAKELONG(0, MNC_CLOSE), "'q", 0),
               std::tuple(MAKELONG(0, MNC_IGNORE), "'q down enter", 1))) {
        menuChar = answer;
        EXPECT_EQ(Track(doing, TPM_RETURNCMD), command) << doing << answer;
        EXPECT_NE(log.find("char:q"), std::string::npos);
    }
}

TEST_F(MenuTest, ABarOpensByItsKeys) {
    bar = CreateMenu();
    const HMENU view = CreatePopupMenu();
    AppendMenuA(view, MF_STRING, 21, "&Zoom");
    AppendMenuA(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(edit), "&Edit");
    AppendMenuA(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(view), "&View");
    RECT before{}, now{};
    GetClientRect(top, &before);
    ASSERT_TRUE(SetMenu(top, bar));
    GetClientRect(top, &now);
    EXPECT_LT(now.bottom, before.bottom);
    RECT item{}, window{};
    EXPECT_TRUE(GetMenuItemRect(top, bar, 0, &item));
    GetWindowRect(top, &window);
    EXPECT_TRUE(item.top >= window.top && item.left >= window.left && item.bottom < window.top + 40);
    POINT corner{};
    ClientToScreen(top, &corner);
    EXPECT_GE(corner.y, item.bottom);
    EXPECT_EQ(SendMessageA(top, WM_NCHITTEST, 0, MAKELPARAM(item.left + 2, item.top + 2)), HTMENU);

    for (const auto& [doing, told] :
         Table(std::pair("down enter", "0p open:edit0 1 none exit command:1"), std::pair("right escape", "0p 1p none exit"),
               std::pair("right down enter", "0p 1p open:?1 21 none exit command:21"))) {
        Plan(doing), Begin();
        SendMessageA(top, WM_SYSCOMMAND, SC_KEYMENU, 0);
        Pump();
        EXPECT_EQ(log, std::string("enter-bar init:bar ") + told) << doing;
    }
    EXPECT_TRUE(SetMenu(top, nullptr));
    GetClientRect(top, &now);
    EXPECT_EQ(now.bottom, before.bottom);
    RemoveMenu(bar, 0, MF_BYPOSITION);
    DestroyMenu(bar);
}
