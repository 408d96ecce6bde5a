// Menus and lists as the twin shows them: the pointer on them, where they lie, how they look, and the bar's room in a window.
#include "platform/house_text_internal.h"
#include "platform/posix/dialogs/menu_looks_internal.h"
#include "platform/posix/window/window_internal.h"
#include "tests/platform/control_host.h"
#include "tests/platform/menu_host.h"
#include "tests/support/last_error.h"

using namespace orvik::detail;

namespace {
// A pointer's words: to:, press:, release:, click:, right: before an item ("edit.0", "bar.1") or "out".
class PointerTest : public MenuHost {
protected:
    void SetUp() override {
        MenuHost::SetUp();
        SystemParametersInfoA(SPI_SETMENUSHOWDELAY, 0, nullptr, 0);  // submenus open at once
        view = CreatePopupMenu();
        AppendMenuA(view, MF_STRING, 21, "&Zoom");
        bar = CreateMenu();
        AppendMenuA(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(edit), "&Edit");
        AppendMenuA(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(view), "&View");
    }
    void TearDown() override {
        SystemParametersInfoA(SPI_SETMENUSHOWDELAY, 400, nullptr, 0);
        SetMenu(top, nullptr);
        RemoveMenu(bar, 0, MF_BYPOSITION);
        DestroyMenu(bar);
        MenuHost::TearDown();
    }
    POINT Place(const std::string& name) {
        RECT place{700, 700, 700, 700};
        const HMENU menu = name[0] == 'e' ? edit : name[0] == 'm' ? more : name[0] == 'v' ? view : bar;
        const bool known = name == "out" || GetMenuItemRect(top, menu, static_cast<UINT>(name.back() - '0'), &place);
        EXPECT_TRUE(known) << name;
        POINT at{(place.left + place.right) / 2, (place.top + place.bottom) / 2};
        ScreenToClient(top, &at);
        return at;
    }
    void Do(const std::string& word) override {
        const size_t colon = word.find(':');
        if (colon == std::string::npos) return MenuHost::Do(word);
        const std::string what = word.substr(0, colon);
        const POINT at = Place(word.substr(colon + 1));
        const auto post = [&](UINT message) { OrvikPostPointer(top, message, static_cast<int>(at.x), static_cast<int>(at.y)); };
        post(WM_MOUSEMOVE);
        if (what == "press" || what == "click") post(WM_LBUTTONDOWN);
        if (what == "release" || what == "click") post(WM_LBUTTONUP);
        if (what == "right") post(WM_RBUTTONDOWN), post(WM_RBUTTONUP);
    }
    HMENU view = nullptr;
};
}  // namespace

TEST_F(PointerTest, PressesDragsAndHoverChoose) {
    struct Row {
        const char* doing;
        UINT flags, command;
        const char* told;
    };
    const auto rows = Table(Row{"click:edit.0", 0, 1, "1"}, Row{"click:edit.1 click:edit.2 press:out", 0, 0, "2g"},
                            Row{"press:edit.0 to:edit.4 release:edit.4", 0, 4, "1 4"}, Row{"press:edit.0 release:out", 0, 0, "1"},
                            Row{"to:edit.3 to:more.1 click:more.1", 0, 12, "3p open:more3 12c"},
                            Row{"to:edit.3 to:more.0 to:edit.0 click:edit.0", 0, 1, "3p open:more3 11 1"},
                            Row{"click:edit.3 click:more.0", 0, 11, "3p open:more3 11"}, Row{"right:edit.0 escape", 0, 0, "1"},
                            Row{"right:edit.0", TPM_RIGHTBUTTON, 1, "1"}, Row{"release:out escape", 0, 0, ""});
    for (const Row& row : rows) {
        EXPECT_EQ(Track(row.doing, row.flags | TPM_RETURNCMD), static_cast<BOOL>(row.command)) << row.doing;
        const std::string between = *row.told != 0 ? std::string(" ") + row.told : "";
        EXPECT_EQ(log, "enter init:edit open:edit0" + between + " none exit") << row.doing;
    }
}

TEST_F(PointerTest, ItemsWithTheSameLetterTakeTurns) {
    menuChar = MAKELONG(5, MNC_SELECT);
    EXPECT_EQ(Track("'q enter", TPM_RETURNCMD), 5);
    EXPECT_EQ(Track("'x 'x enter", TPM_RETURNCMD), 5);
    EXPECT_EQ(Track("'x 'x 'x enter", TPM_RETURNCMD), 4);
}

TEST_F(PointerTest, WhateverEndsItLeavesTheQueueAsItIs) {
    for (const char* end : {"cancel", "end!"}) {
        PostMessageA(top, WM_USER, 0, 0);
        Track(std::string("down ") + end);
        EXPECT_EQ(log, "enter init:edit open:edit0 1 none exit") << end;
        EXPECT_EQ(Take({"user"}).size(), 1u);
    }
    Plan("down quit"), Begin();
    TrackPopupMenu(edit, 0, 150, 150, 0, top, nullptr);
    MSG message{};
    EXPECT_TRUE(PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
    EXPECT_EQ(message.wParam, 7u);
    Track("down destroy");
    EXPECT_FALSE(IsWindow(top));
    EXPECT_FAILS(TrackPopupMenu(edit, 0, 0, 0, 0, top, nullptr), ERROR_INVALID_WINDOW_HANDLE);
    EXPECT_FALSE(EndMenu());
}

TEST_F(PointerTest, AnItemDisabledMeanwhileIsNotChosen) {
    EnableMenuItem(edit, 4, MF_GRAYED);
    EXPECT_EQ(Track("click:edit.4 escape", TPM_RETURNCMD), 0);
}

TEST_F(PointerTest, ThePressBesideIsTheWindowsOwn) {
    OrvikPostPointer(top, WM_LBUTTONDOWN, 390, 290), OrvikPostPointer(top, WM_LBUTTONUP, 390, 290);
    Track("");
    EXPECT_EQ(Take({"press", "release"}), (window_test::Log{"top press 1 390,290", "top release 0 390,290"}));
}

TEST_F(PointerTest, TheBarOpensSlidesAndCloses) {
    SetMenu(top, bar);
    for (const auto& [doing, told] :
         Table(std::pair("release:edit.0", "0p open:edit0 1 none exit command:1"),
               std::pair("release:bar.0 to:bar.1 click:view.0", "0p open:edit0 1p open:?1 21 none exit command:21"),
               std::pair("release:bar.0 press:bar.0", "0p open:edit0 none exit"),
               std::pair("release:bar.0 press:out", "0p open:edit0 none exit"))) {
        Plan(doing);
        const POINT at = Place("bar.0");
        EXPECT_LT(at.y, 0);
        OrvikPostPointer(top, WM_LBUTTONDOWN, static_cast<int>(at.x), static_cast<int>(at.y));
        Begin();
        Pump();
        EXPECT_EQ(log, std::string("enter-bar init:bar ") + told) << doing;
    }
    // A letter opens its menu at once; arrows go from one open menu to the next, and a closed submenu leaves its item marked.
    for (const auto& [letter, doing, told] :
         Table(std::tuple('e', "enter", "0p open:edit0 1 none exit command:1"),
               std::tuple('e', "right enter", "0p open:edit0 1 1p open:?1 21 none exit command:21"),
               std::tuple('v', "escape escape", "1p open:?1 21 1p none exit"),
               std::tuple('e', "'m left up up enter", "0p open:edit0 1 3p open:more3 11 3p 2g 1 none exit command:1"),
               std::tuple('q', "", "char:q none exit"))) {
        Plan(doing), Begin();
        SendMessageA(top, WM_SYSCOMMAND, SC_KEYMENU, letter);
        Pump();
        EXPECT_EQ(log, std::string("enter-bar init:bar ") + told) << doing;
    }
    // Keys as a keyboard sends them: Alt alone marks the first, Alt with another key does not; F10 marks as well.
    using Keys = std::vector<std::pair<UINT, BOOL>>;
    SetFocus(top);
    for (const auto& [keys, told] :
         Table(std::pair(Keys{{VK_MENU, TRUE}, {VK_MENU, FALSE}}, "enter-bar init:bar 0p none exit"),
               std::pair(Keys{{VK_F10, TRUE}, {VK_F10, FALSE}}, "enter-bar init:bar 0p none exit"),
               std::pair(Keys{{VK_MENU, TRUE}, {VK_RETURN, TRUE}, {VK_RETURN, FALSE}, {VK_MENU, FALSE}}, ""))) {
        Plan("escape");
        for (const auto& [key, down] : keys) OrvikPostKey(top, key, down);
        Begin();
        Pump();
        EXPECT_EQ(log, told);
    }
}

TEST_F(PointerTest, TheBarTakesItsRoomFromTheWindow) {
    const HWND kid = Make("kid", WS_CHILD | WS_VISIBLE, {10, 10, 60, 40}, top);
    RECT adjusted{0, 0, 400, 300}, client{}, item{};
    AdjustWindowRectEx(&adjusted, WS_POPUP, TRUE, 0);
    SetMenu(top, bar);
    GetClientRect(top, &client);
    EXPECT_EQ(client.bottom, 300 - GetSystemMetrics(SM_CYMENU));
    EXPECT_EQ(adjusted.bottom - adjusted.top - 300, 300 - client.bottom);
    RECT place{};
    GetWindowRect(kid, &place);
    EXPECT_EQ(place.top, 100 + GetSystemMetrics(SM_CYMENU) + 10);
    EXPECT_EQ(WindowFromPoint({place.left, place.top}), kid);
    // Narrow, the bar takes a second row.
    GetMenuItemRect(top, bar, 0, &item);
    SetWindowPos(top, nullptr, 0, 0, static_cast<int>(item.right - item.left) + 5, 300, SWP_NOMOVE | SWP_NOZORDER);
    RECT narrow{};
    GetClientRect(top, &narrow);
    EXPECT_LT(narrow.bottom, client.bottom);
    // What is drawn in the client area stays off the bar, and the other way round.
    SetWindowPos(top, nullptr, 0, 0, 400, 300, SWP_NOMOVE | SWP_NOZORDER);
    UpdateWindow(top);
    HDC dc = GetDC(top);
    const RECT all{-50, -50, 500, 500};
    FillRect(dc, &all, GetSysColorBrush(COLOR_HIGHLIGHT));
    ReleaseDC(top, dc);
    dc = GetWindowDC(top);
    EXPECT_EQ(GetPixel(dc, 395, 2), GetSysColor(COLOR_MENU));
    EXPECT_EQ(GetPixel(dc, 395, GetSystemMetrics(SM_CYMENU)), GetSysColor(COLOR_HIGHLIGHT));
    ReleaseDC(top, dc);
}

TEST_F(PointerTest, PopupsFlipAndSlide) {
    struct Row {
        RECT anchor;  // on the desktop
        PopupSide side;
        PopupEdge edge;
        POINT corner;
    };
    const SIZE size{100, 200};
    const auto rows = Table(Row{{300, 300, 400, 320}, PopupSide::Below, PopupEdge::Near, {300, 320}},
                            Row{{300, 300, 400, 320}, PopupSide::Below, PopupEdge::Far, {300, 320}},
                            Row{{300, 300, 500, 320}, PopupSide::Below, PopupEdge::Far, {400, 320}},
                            Row{{300, 300, 500, 320}, PopupSide::Above, PopupEdge::Middle, {350, 100}},
                            Row{{300, 1000, 400, 1020}, PopupSide::Below, PopupEdge::Near, {300, 800}},
                            Row{{300, 50, 400, 70}, PopupSide::Above, PopupEdge::Near, {300, 70}},
                            Row{{1900, 300, 1900, 300}, PopupSide::Below, PopupEdge::Near, {1820, 300}},
                            Row{{300, 300, 400, 320}, PopupSide::Right, PopupEdge::Near, {400, 300}},
                            Row{{1800, 300, 1850, 320}, PopupSide::Right, PopupEdge::Near, {1700, 300}},
                            Row{{300, 1000, 400, 1020}, PopupSide::Right, PopupEdge::Near, {400, 880}});
    const std::lock_guard kernel(KernelLock());
    for (const Row& row : rows) {
        const RECT got = PopupRectangle({top, Moved(row.anchor, -100, -100), row.side, row.edge}, size);
        EXPECT_EQ(std::pair(got.left, got.top), std::pair(row.corner.x, row.corner.y))
            << row.anchor.left << " " << row.anchor.top;
        EXPECT_EQ(got.bottom - got.top, size.cy);
    }
}

TEST_F(PointerTest, ALongMenuScrollsToWhatIsMarked) {
    const HMENU longMenu = CreatePopupMenu();
    for (UINT i = 1; i <= 100; ++i) AppendMenuA(longMenu, MF_STRING, i, "item");
    PostMessageA(top, WM_KEYDOWN, VK_END, 1), PostMessageA(top, WM_KEYDOWN, VK_RETURN, 1);
    EXPECT_EQ(TrackPopupMenu(longMenu, TPM_RETURNCMD | TPM_NONOTIFY, 10, 10, 0, top, nullptr), 100);
    DestroyMenu(longMenu);
}

// An item that its owner draws, in a second column that arrows reach; and one menu at a time.
class OwnerDrawTest : public MenuHost {
protected:
    bool Answer(HWND window, UINT message, WPARAM, LPARAM lParam, LRESULT& answer) override {
        if (message == WM_MEASUREITEM) {
            auto& asked = *reinterpret_cast<MEASUREITEMSTRUCT*>(lParam);
            EXPECT_EQ(asked.itemData, 77u);
            asked.itemWidth = 90, asked.itemHeight = 40;
        }
        if (message == WM_DRAWITEM) {
            const auto& asked = *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam);
            selected |= (asked.itemState & ODS_SELECTED) != 0;
            EXPECT_EQ(asked.rcItem.bottom - asked.rcItem.top, 40);
        }
        if (message == WM_ENTERIDLE && selected) {
            EXPECT_FAILS(TrackPopupMenu(edit, 0, 0, 0, 0, window, nullptr), ERROR_POPUP_ALREADY_ACTIVE);
            PostMessageA(window, WM_KEYDOWN, VK_RETURN, 1);
        }
        answer = TRUE;
        return message == WM_MEASUREITEM || message == WM_DRAWITEM;
    }
    bool selected = false;
};

TEST_F(OwnerDrawTest, OwnersDrawAndColumnsStandSideBySide) {
    const HMENU columns = CreatePopupMenu();
    AppendMenuA(columns, MF_STRING, 1, "plain");
    AppendMenuA(columns, MF_OWNERDRAW | MF_MENUBREAK, 2, reinterpret_cast<LPCSTR>(static_cast<UINT_PTR>(77)));
    PostMessageA(top, WM_KEYDOWN, VK_DOWN, 1), PostMessageA(top, WM_KEYDOWN, VK_RIGHT, 1);
    EXPECT_EQ(TrackPopupMenu(columns, TPM_RETURNCMD, 150, 150, 0, top, nullptr), 2);
    DestroyMenu(columns);
}

TEST_F(PointerTest, TextsAreReadable) {
    const MenuLooks looks(96);
    for (const auto& [ground, ink] : Table(std::pair(looks.ground, looks.text), std::pair(looks.ground, looks.grey),
                                           std::pair(looks.hot, looks.hotText), std::pair(looks.hot, looks.hotGrey)))
        EXPECT_GE(orvik::Contrast(ground, ink), 4.5) << std::hex << ink;
}

class ComboLists : public ControlHost {
protected:
    void SetUp() override {
        ControlHost::SetUp();
        names = {{CBN_SELCHANGE, "change"}, {CBN_SELENDOK, "ok"},   {CBN_SELENDCANCEL, "cancel"},
                 {CBN_DROPDOWN, "drop"},    {CBN_CLOSEUP, "close"}, {CBN_SETFOCUS, "focus"}};
        Make("ComboBox", CBS_DROPDOWNLIST | WS_VSCROLL, "", 120, 100);
        for (int i = 0; i < 30; ++i) Ask(CB_ADDSTRING, 0, ("item " + std::to_string(i)).c_str());
        Send(CB_SETCURSEL, 2);
    }
    static void Pump() {
        MSG message;
        while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) TranslateMessage(&message), DispatchMessageA(&message);
    }
    void Pointer(UINT message, int x, int y) { OrvikPostPointer(parent, message, x, y), Pump(); }
    RECT List() {
        RECT place{};
        list = GetCapture();
        GetWindowRect(list, &place);
        return place;
    }
    HWND list = nullptr;
};

TEST_F(ComboLists, ThePointerDropsChoosesAndLeaves) {
    Pointer(WM_LBUTTONDOWN, 50, 5), Pointer(WM_LBUTTONUP, 50, 5);
    RECT box{}, place = List();
    GetWindowRect(control, &box);
    EXPECT_EQ(place.top, box.bottom);
    EXPECT_EQ(place.right - place.left, box.right - box.left);
    EXPECT_LE(place.bottom - place.top, 100);
    EXPECT_EQ(Told(), "focus drop");
    const int height = static_cast<int>(place.top) - 10 + 3;  // in the parent, of the first row that is shown
    Pointer(WM_MOUSEMOVE, 20, height), Pointer(WM_LBUTTONDOWN, 20, height), Pointer(WM_LBUTTONUP, 20, height);
    EXPECT_EQ(Text(), "item 0");
    EXPECT_EQ(Told(), "change ok close");
    EXPECT_FALSE(IsWindow(list));
    EXPECT_EQ(GetCapture(), nullptr);

    Pointer(WM_LBUTTONDOWN, 50, 5), Pointer(WM_LBUTTONUP, 50, 5);
    List();
    SendMessageA(control, WM_MOUSEWHEEL, MAKEWPARAM(0, -WHEEL_DELTA), 0);  // what is first then is the fourth
    Pointer(WM_LBUTTONDOWN, 20, height), Pointer(WM_LBUTTONUP, 20, height);
    EXPECT_EQ(Text(), "item 3");
    Told();
    Send(CB_SHOWDROPDOWN, TRUE);
    Pointer(WM_LBUTTONDOWN, 250, 150);
    EXPECT_EQ(Told(), "drop ok close");
    Send(CB_SHOWDROPDOWN, TRUE);
    for (const char key : {'i'}) Send(WM_CHAR, static_cast<WPARAM>(key), 1);
    EXPECT_EQ(Text(), "item 4");
    Press(VK_ESCAPE);
    EXPECT_EQ(Text(), "item 3");  // given up
    Send(CB_SHOWDROPDOWN, TRUE);
    List();
    DestroyWindow(control);
    EXPECT_FALSE(IsWindow(list));
}

TEST_F(ComboLists, TheListFlipsAboveWhereThereIsNoRoomBelow) {
    SetWindowPos(parent, nullptr, 10, 1040, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    Send(CB_SHOWDROPDOWN, TRUE);
    const RECT place = List();
    RECT box{};
    GetWindowRect(control, &box);
    EXPECT_EQ(place.bottom, box.top);
    const std::lock_guard kernel(KernelLock());
    EXPECT_EQ(FindWindowOf(list)->popup->owner, parent);
}

TEST_F(PointerTest, LettersOfAnyScriptStandForItems) {
    const HMENU letters = CreatePopupMenu();
    const bool utf8 = HouseIsUtf8();
    AppendMenuA(letters, MF_STRING, 1, utf8 ? "&\xC3\x84rger" : "&\xC4rger");
    AppendMenuA(letters, MF_STRING, 2, utf8 ? "\xC3\x96l" : "\xD6l");
    for (const auto& [typed, command] : Table(std::pair(0xE4, 1), std::pair(0xF6, 2))) {
        PostMessageA(top, WM_CHAR, static_cast<WPARAM>(typed), 1);
        EXPECT_EQ(TrackPopupMenu(letters, TPM_RETURNCMD | TPM_NONOTIFY, 10, 10, 0, top, nullptr), command);
    }
    DestroyMenu(letters);
}
