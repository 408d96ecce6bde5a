// Who gives way where the line at the bottom is short of room, and what tells the whole of what is cut. The same on both homes.
#include <gtest/gtest.h>

#include "host/gui/status_line.h"
#include "tests/host/gui/hands.h"
#include "tests/support/test_folder.h"

namespace {
TEST(StatusLineTest, HintAndReadingsStay) {
    const Hands hands;
    const HWND window = hands.window->m_hWnd;
    const std::string medium(40, 'm'), endless(4000, 'x');
    const struct {
        const char* what;
        std::string hint, told, live;
        LONG width;
        bool hintCut, toldCut, liveCut;
    } cases[] = {
        {"nothing", {}, {}, {}, 800, false, false, false},
        {"all fits", "hint", "told", "live", 800, false, false, false},
        {"a long sentence gives way", medium, endless, "live", 1200, false, true, false},
        {"and has the whole line where it is alone", {}, endless, {}, 800, false, true, false},
        {"a long hint leaves some room", endless, "told", "live", 800, true, false, false},
        {"readings go first", medium, "told", endless, 800, true, true, true},
        {"no room at all", "hint", "told", "live", 0, true, true, true},
    };
    for (const auto& one : cases) {
        SCOPED_TRACE(one.what);
        StatusLine line;
        line.hint = one.hint;
        line.told = one.told;
        line.live = one.live;
        const CRect place(10, 5, 10 + one.width, 29);
        const StatusLine::Parts parts = line.Place(window, place);
        EXPECT_EQ(parts.hint.cut, one.hintCut);
        EXPECT_EQ(parts.told.cut, one.toldCut);
        EXPECT_EQ(parts.live.cut, one.liveCut);
        for (const CRect& part : {parts.hint.place, parts.told.place, parts.live.place}) {
            EXPECT_LE(part.left, part.right);
            if (one.width == 0) continue;
            EXPECT_GE(part.left, place.left);
            EXPECT_LE(part.right, place.right);
        }
        if (!one.hint.empty() && !one.told.empty()) {
            EXPECT_LE(parts.hint.place.right, parts.told.place.left);
        }
        if (!one.live.empty()) {
            EXPECT_LE(parts.told.place.right, parts.mark.left);
        }
    }
    StatusLine line;
    line.hint = "hint";
    line.told = "told";
    line.live = "live";
    EXPECT_EQ(line.Said(), "hint told live");
    line.pointed = "12:00";
    line.hint = endless;
    EXPECT_FALSE(line.Place(window, CRect(0, 0, 1200, 24)).told.cut) << "the hint gives way to the time that is pointed at";
    line.hint = "hint";
    EXPECT_EQ(line.Said(), "hint 12:00 live") << "the time that is pointed at comes before what has happened";
}

// What is cut short is told whole where the pointer rests on it.
TEST(StatusLineTest, WhatIsCutHasATip) {
    Hands hands;
    const MainWindow& window = *hands.window;
    const std::string endless(4000, 'x');
    hands.window->SetHint(endless);
    hands.Pump();
    EXPECT_EQ(window.Tips().TextAt(window.m_hWnd, 1), endless);
    hands.window->SetHint("short");
    hands.Pump();
    EXPECT_EQ(window.Tips().TextAt(window.m_hWnd, 1), "");
}

class CutCells : public testing::Test, protected TestFolder {};

TEST_F(CutCells, HaveATipAndOthersNone) {
    Hands hands;
    const std::string path = Path("s.odb");
    Hands::WriteSession(path);
    ASSERT_TRUE(hands.window->Open(path));
    ValueList& list = hands.window->List();
    const auto pointAt = [&](int row, size_t column) {
        CRect cell;
        list.GetItemRect(row, cell, LVIR_BOUNDS);
        POINT at = {list.ColumnRect(column).left + 4, cell.CenterPoint().y};
        ::MapWindowPoints(list.m_hWnd, hands.window->m_hWnd, &at, 1);
        hands.Point(WM_MOUSEMOVE, at);
        hands.Pump();
        return hands.window->Tips().TextAt(list.m_hWnd, 1);
    };
    EXPECT_EQ(pointAt(1, 0), "");
    hands.Key(VK_F6), hands.Key(VK_F6);
    for (int i = 0; i < 20; ++i) hands.Key(VK_LEFT, true);
    EXPECT_EQ(pointAt(1, 0), list.RowTexts(1)[0]);
    EXPECT_EQ(pointAt(1, 2), "");
}
}  // namespace
