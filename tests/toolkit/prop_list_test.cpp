// The property grid, driven as its user would drive it.
#include "toolkit/prop_list.h"

#include <cstring>
#include <limits>
#include <tuple>

#include "afx/controls.h"
#include "afx/menu.h"
#include "res/ids.h"
#include "tests/support/dialog_fixture.h"
#include "tests/support/table.h"

namespace {

constexpr int kGrid = 77;

// The grid's parent, which keeps what it is told.
class Parent : public CWnd {
public:
    std::vector<CBCGPProp*> changed;
    std::function<void()> then;

protected:
    afx_msg LRESULT OnChanged(WPARAM wParam, LPARAM lParam) {
        EXPECT_EQ(wParam, WPARAM{kGrid});
        changed.push_back(reinterpret_cast<CBCGPProp*>(lParam));
        if (then) then();
        return 0;
    }
    DECLARE_MESSAGE_MAP()
};
BEGIN_MESSAGE_MAP(Parent, CWnd)
ON_REGISTERED_MESSAGE(BCGM_PROPERTY_CHANGED, OnChanged)
END_MESSAGE_MAP()

// A grid that keeps what its menu offers, a "-" before what cannot be chosen.
class Grid : public CBCGPPropList {
public:
    std::vector<std::string> offered;

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        if (message == WM_INITMENUPOPUP) {
            const auto menu = reinterpret_cast<HMENU>(wParam);
            for (int i = 0; i < ::GetMenuItemCount(menu); ++i) {
                char text[64] = "";
                ::GetMenuStringA(menu, static_cast<UINT>(i), text, sizeof text, MF_BYPOSITION);
                const bool grey = (::GetMenuState(menu, static_cast<UINT>(i), MF_BYPOSITION) & MF_GRAYED) != 0;
                if (text[0] != 0) offered.push_back((grey ? "-" : "") + std::string(text));
            }
        }
        return CBCGPPropList::WindowProc(message, wParam, lParam);
    }
};

class PropList : public DialogTest {
protected:
    void SetUp() override {
        DialogTest::SetUp();
        settings.Swedish();
        ASSERT_TRUE(parent.CreateEx(0, AfxRegisterWndClass(0), "", WS_CHILD | WS_VISIBLE, CRect(0, 0, 400, 400), &owner, 1));
        ASSERT_TRUE(grid.Create(WS_CHILD | WS_VISIBLE | WS_BORDER | WS_TABSTOP, CRect(0, 0, 300, 300), &parent, kGrid));
        grid.EnableHeaderCtrl(), grid.EnableDescriptionArea(), grid.SetVSDotNetLook(), grid.MarkModifiedProperties();
        grid.EnableContextMenu(), grid.SetFocus();
    }
    // A group with four properties, and one of its own.
    void Fill() {
        channel = new CBCGPProp("Channel");
        channel->AddSubItem(name = new CBCGPProp("Name", "Outdoor", "As it is shown", 11));
        channel->AddSubItem(count = new CBCGPProp("Count", 5)), channel->AddSubItem(scale = new CBCGPProp("Scale", 1.5));
        channel->AddSubItem(active = new CBCGPProp("Active", true));
        grid.AddProperty(channel);
        unit = new CBCGPProp("Unit", "bar");
        for (const char* each : {"bar", "Pa", "psi"}) unit->AddOption(each);
        grid.AddProperty(unit);
    }
    // The grid's child of the class, in whatever case the system writes its name.
    HWND Child(const char* wanted) const {
        for (HWND each = ::GetWindow(grid, GW_CHILD); each != nullptr; each = ::GetWindow(each, GW_HWNDNEXT)) {
            char found[64] = "";
            GetClassNameA(each, found, sizeof found);
            if (lstrcmpiA(found, wanted) == 0) return each;
        }
        return nullptr;
    }
    HWND Editor() const { return Child("Edit"); }
    HWND Choices() const { return Child("ListBox"); }
    POINT MiddleOf(CRect place) const { return place.CenterPoint(); }
    // Opens the property's field, types and presses the key.
    void Type(CBCGPProp* prop, const char* text, UINT key = VK_RETURN) {
        grid.SetCurSel(prop);
        ASSERT_TRUE(grid.EditItem());
        SetWindowTextA(Editor(), text);
        Press(Editor(), key);
    }

    RegionalSettings settings;
    Parent parent;
    Grid grid;
    CBCGPProp *channel = nullptr, *name = nullptr, *count = nullptr, *scale = nullptr, *active = nullptr, *unit = nullptr;
};

}  // namespace

TEST_F(PropList, PropertiesKnowTheirPlaceAndTheirValues) {
    Fill();
    EXPECT_EQ(grid.GetPropertyCount(), 2);
    EXPECT_EQ(grid.GetProperty(0), channel);
    EXPECT_EQ(grid.GetProperty(2), nullptr);
    EXPECT_EQ(channel->CountWithSubItems(), 5);
    EXPECT_EQ(grid.GetRowCount(), 6);
    EXPECT_EQ(name->GetParent(), channel);
    EXPECT_EQ(name->GetData(), 11u);
    EXPECT_EQ(grid.AddProperty(name), -1) << "it belongs to somebody";
    EXPECT_FALSE(unit->AddSubItem(name));
    auto upper = std::make_unique<CBCGPProp>("upper");
    auto* lower = new CBCGPProp("lower");
    EXPECT_TRUE(upper->AddSubItem(lower));
    EXPECT_FALSE(lower->AddSubItem(upper.get()) || upper->AddSubItem(upper.get())) << "no circles";
    EXPECT_TRUE(channel->IsGroup() && !name->IsGroup());
    EXPECT_STREQ(scale->FormatProperty(), "1,5");
    EXPECT_STREQ(active->FormatProperty(), "Yes");
    name->SetValue("Indoor");
    EXPECT_TRUE(name->IsModified());
    EXPECT_TRUE(parent.changed.empty()) << "the program's own changes are no news";
    name->ResetOriginalValue();
    EXPECT_FALSE(name->IsModified());
    EXPECT_FALSE(CBCGPProp("Gap", std::numeric_limits<double>::quiet_NaN()).IsModified())
        << "what is no number is so from the start";
    channel->Expand(FALSE);
    EXPECT_EQ(grid.GetRowCount(), 2);
    EXPECT_TRUE(grid.GetPropertyRect(name).IsRectEmpty());
    EXPECT_EQ(channel->CountWithSubItems(), 5) << "whether shown or not";
    // Rows stand one below the other, their cells beside each other.
    channel->Expand();
    const CRect first = grid.GetPropertyRect(channel), second = grid.GetPropertyRect(name), value = grid.GetValueRect(name);
    EXPECT_EQ(first.Height(), grid.GetRowHeight());
    EXPECT_EQ(second.top, first.bottom);
    EXPECT_TRUE(value.left > second.left + grid.GetLeftColumnWidth() && value.right == second.right);
    EXPECT_EQ(grid.HitTest(MiddleOf(second)), name);
    EXPECT_EQ(grid.HitTest(CPoint(10, 2)), nullptr) << "the header";
    EXPECT_EQ(grid.HitTest(CPoint(10, 290)), nullptr) << "the description";
    // Rows that are asked for while the grid is filled: behind all others, among them, and where they are not shown.
    const auto add = [&](CBCGPProp* group) {
        auto* const fresh = new CBCGPProp("fresh");
        group == nullptr ? void(grid.AddProperty(fresh)) : void(group->AddSubItem(fresh));
        return fresh;
    };
    const auto row = [&](CBCGPProp* prop) { return (grid.GetPropertyRect(prop).top - first.top) / grid.GetRowHeight(); };
    CBCGPProp* const last = add(nullptr);
    EXPECT_TRUE(grid.GetRowCount() == 7 && row(last) == 6);
    CBCGPProp* const under = add(last);
    EXPECT_TRUE(grid.GetRowCount() == 8 && row(under) == 7);
    EXPECT_TRUE(row(add(channel)) == 5 && row(under) == 8);
    EXPECT_TRUE(row(add(under)) == 9 && grid.GetRowCount() == 10);
    last->Expand(FALSE);
    EXPECT_EQ(grid.GetRowCount(), 8);
    EXPECT_TRUE(grid.GetPropertyRect(add(last)).IsRectEmpty() && grid.GetRowCount() == 8);
    grid.RemoveAll();
    EXPECT_EQ(grid.GetRowCount(), 0);
    EXPECT_EQ(grid.GetCurSel(), nullptr);
}

TEST_F(PropList, TextBecomesAValueOfThePropertysKind) {
    Fill();
    const CBCGPColorProp colour("Colour", RGB(1, 2, 255));
    EXPECT_STREQ(colour.FormatProperty(), "#0102FF");
    struct Row {
        const CBCGPProp& prop;
        const char* text;
        const char* written;  // null: refused
    };
    for (const Row& each :
         Table(Row{*count, " -12 ", "-12"}, Row{*count, "+7", "7"}, Row{*count, "1,5", nullptr}, Row{*count, "", nullptr},
               Row{*count, "+-1", nullptr}, Row{*count, "9223372036854775807", "9223372036854775807"},
               Row{*count, "9223372036854775808", nullptr}, Row{*scale, "2,25", "2,25"}, Row{*scale, "-1e-3", "-0,001"},
               Row{*scale, "1e999", nullptr}, Row{*scale, "nan", nullptr}, Row{*scale, "1 2", nullptr},
               Row{*scale, "0x10", nullptr}, Row{*active, "No", "No"}, Row{*active, "no", nullptr}, Row{*name, "", ""},
               Row{*name, " x ", " x "}, Row{*channel, "x", nullptr}, Row{colour, "#00ff00", "#00FF00"},
               Row{colour, "00FF00", nullptr}, Row{colour, "#00FF0", nullptr}, Row{colour, "#00FF0G", nullptr},
               Row{colour, "#-12345", nullptr})) {
        CBCGPPropValue value = "as before";
        const bool good = each.prop.StringToValue(each.text, value) != FALSE;
        EXPECT_EQ(good, each.written != nullptr) << each.prop.GetName() << " '" << each.text << "'";
        if (!good) {
            EXPECT_STREQ(value.Text(), "as before");
            continue;
        }
        auto& prop = const_cast<CBCGPProp&>(each.prop);
        const CBCGPPropValue before = prop.GetValue();
        prop.SetValue(value);
        EXPECT_STREQ(prop.FormatProperty(), each.written) << each.text;
        prop.SetValue(before);
    }
}

TEST_F(PropList, KeysMoveExpandAndCollapse) {
    Fill();
    using Row = std::tuple<UINT, const CBCGPProp*>;
    for (const auto& [key, selected] : {Row{VK_DOWN, channel}, Row{VK_DOWN, name}, Row{VK_END, unit}, Row{VK_DOWN, unit},
                                        Row{VK_UP, active}, Row{VK_LEFT, channel}, Row{VK_UP, channel}, Row{VK_LEFT, channel},
                                        Row{VK_DOWN, unit}, Row{VK_HOME, channel}, Row{VK_RIGHT, channel}, Row{VK_RIGHT, name},
                                        Row{VK_NEXT, unit}, Row{VK_PRIOR, channel}, Row{VK_RETURN, channel}, Row{VK_END, unit}}) {
        Press(grid, key);
        EXPECT_EQ(grid.GetCurSel(), selected) << "key " << key;
    }
    EXPECT_EQ(grid.GetRowCount(), 2) << "Enter on a group collapses it";
    channel->Expand();
    grid.SetCurSel(scale);
    channel->Expand(FALSE);
    EXPECT_EQ(grid.GetCurSel(), channel) << "the selection goes where the property has gone";
    grid.SetCurSel(scale);
    EXPECT_EQ(grid.GetCurSel(), channel) << "what is not shown is not selected";
    grid.EnsureVisible(scale), grid.SetCurSel(scale);
    EXPECT_EQ(grid.GetCurSel(), scale);
    EXPECT_TRUE(parent.changed.empty());
}

TEST_F(PropList, EditingEndsByEnterEscapeTabOrLeaving) {
    Fill();
    Type(count, "6");
    EXPECT_EQ(count->GetValue().Integer(), 6);
    EXPECT_EQ(parent.changed, std::vector<CBCGPProp*>{count});
    EXPECT_EQ(::GetFocus(), grid.m_hWnd);
    EXPECT_FALSE(grid.IsEditing());
    Type(count, "7", VK_ESCAPE);
    EXPECT_EQ(count->GetValue().Integer(), 6);
    EXPECT_EQ(::GetFocus(), grid.m_hWnd);
    Type(name, "Attic", VK_TAB);
    EXPECT_STREQ(name->FormatProperty(), "Attic");
    Type(scale, "3,5", VK_DOWN);
    EXPECT_EQ(scale->GetValue().Real(), 3.5);
    EXPECT_EQ(grid.GetCurSel(), active) << "Down takes it and goes on";
    EXPECT_EQ(parent.changed.size(), 3u);
    // The same text again changes nothing.
    Type(count, "6");
    EXPECT_EQ(parent.changed.size(), 3u);
    // A letter begins the editing with itself.
    grid.SetCurSel(name);
    SendMessageA(grid, WM_CHAR, 'Q', 1);
    ASSERT_TRUE(grid.IsEditing());
    EXPECT_EQ(TextOf(Editor()), "Q");
    // Whoever leaves takes along what is good; nothing is said about the rest, which waits in its field.
    ::SetFocus(owner);
    EXPECT_FALSE(grid.IsEditing());
    EXPECT_STREQ(name->FormatProperty(), "Q");
    grid.SetFocus(), grid.SetCurSel(count);
    ASSERT_TRUE(grid.EditItem());
    SetWindowTextA(Editor(), "x");
    ::SetFocus(owner);
    EXPECT_TRUE(grid.IsEditing());
    EXPECT_EQ(count->GetValue().Integer(), 6);
    EXPECT_TRUE(app.told.empty());
    grid.SetFocus();
    EXPECT_EQ(::GetFocus(), Editor());
    Press(Editor(), VK_ESCAPE);
    // Groups and disabled properties have nothing to edit.
    count->Enable(FALSE);
    EXPECT_FALSE(grid.EditItem());
    grid.SetCurSel(channel);
    EXPECT_FALSE(grid.EditItem());
}

TEST_F(PropList, ABadTextIsToldOnceAndStaysToBeCorrected) {
    Fill();
    Type(count, "six");
    EXPECT_EQ(app.Told(), "Please enter a whole number.");
    ASSERT_TRUE(grid.IsEditing());
    EXPECT_EQ(::GetFocus(), Editor());
    DWORD first = 9, last = 9;
    SendMessageA(Editor(), EM_GETSEL, reinterpret_cast<WPARAM>(&first), reinterpret_cast<LPARAM>(&last));
    EXPECT_TRUE(first == 0 && last == 3) << "selected whole";
    Press(Editor(), VK_TAB);
    EXPECT_EQ(app.Told(), "Please enter a whole number.");
    EXPECT_TRUE(grid.IsEditing());
    EXPECT_EQ(count->GetValue().Integer(), 5);
    // Another row is not reached before, by the mouse either.
    ClickAt(grid, MiddleOf(grid.GetValueRect(name)));
    EXPECT_EQ(app.Told(), "Please enter a whole number.");
    EXPECT_EQ(grid.GetCurSel(), count);
    EXPECT_EQ(TextOf(Editor()), "six");
    Press(Editor(), VK_ESCAPE);
    EXPECT_FALSE(grid.IsEditing());
    EXPECT_TRUE(app.told.empty());
    Type(scale, "1.5");
    EXPECT_EQ(app.Told(), "Illegal number format.") << "the user's separator is another";
    grid.RemoveAll();
    EXPECT_FALSE(grid.IsEditing());
}

TEST_F(PropList, ChoicesAreTakenByKeyMouseAndTurn) {
    Fill();
    grid.SetCurSel(unit);
    ASSERT_TRUE(grid.EditItem());
    ASSERT_NE(Choices(), nullptr) << "nothing but a choice can be made";
    EXPECT_EQ(SendMessageA(Choices(), LB_GETCURSEL, 0, 0), 0);
    Press(Choices(), VK_DOWN), Press(Choices(), VK_DOWN);
    Press(Choices(), VK_ESCAPE);
    EXPECT_STREQ(unit->FormatProperty(), "bar");
    Press(grid, VK_F2), Press(Choices(), VK_DOWN), Press(Choices(), VK_RETURN);
    EXPECT_STREQ(unit->FormatProperty(), "Pa");
    EXPECT_EQ(::GetFocus(), grid.m_hWnd);
    Press(grid, VK_SPACE), Press(grid, VK_SPACE);
    EXPECT_STREQ(unit->FormatProperty(), "bar") << "round by turns";
    SendMessageA(grid, WM_SYSKEYDOWN, VK_DOWN, 1 << 29);
    ASSERT_NE(Choices(), nullptr);
    const int height = static_cast<int>(SendMessageA(Choices(), LB_GETITEMHEIGHT, 0, 0));
    ClickAt(Choices(), {10, height * 2 + height / 2});
    EXPECT_STREQ(unit->FormatProperty(), "psi");
    EXPECT_EQ(Choices(), nullptr);
    grid.SetCurSel(active);
    Press(grid, VK_SPACE);
    EXPECT_STREQ(active->FormatProperty(), "No");
    EXPECT_EQ(parent.changed.size(), 5u);
    // Choices and text: the field is open, the arrow opens the choices.
    unit->AllowEdit();
    Type(unit, "mbar");
    EXPECT_STREQ(unit->FormatProperty(), "mbar");
    grid.EditItem();
    const CRect cell = grid.GetValueRect(unit), field = PlaceIn(grid, Editor());
    EXPECT_LT(field.right, cell.right - 8) << "room for the arrow";
    grid.SetWindowPos(nullptr, 0, 0, 310, 300, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_EQ(CRect(PlaceIn(grid, Editor())).right, field.right + 10) << "after a change of size too";
    grid.SetWindowPos(nullptr, 0, 0, 300, 300, SWP_NOMOVE | SWP_NOZORDER);
    SetWindowTextA(Editor(), "kbar");
    SendMessageA(Editor(), WM_SYSKEYDOWN, VK_DOWN, 1 << 29);
    ASSERT_NE(Choices(), nullptr);
    EXPECT_STREQ(unit->FormatProperty(), "kbar") << "taken first";
    Press(Choices(), VK_DOWN);
    ClickAt(grid, MiddleOf(grid.GetPropertyRect(name)));
    EXPECT_STREQ(unit->FormatProperty(), "kbar") << "turning away is no choice";
    ClickAt(grid, {cell.right - 4, cell.top + 4});
    EXPECT_NE(Choices(), nullptr);
    ::SetFocus(owner);
    EXPECT_EQ(Choices(), nullptr) << "leaving closes them";
    EXPECT_STREQ(unit->FormatProperty(), "kbar");
}

TEST_F(PropList, TheMouseSelectsExpandsAndDragsTheDivider) {
    Fill();
    ClickAt(grid, {grid.GetPropertyRect(count).left + 40, grid.GetPropertyRect(count).top + 3});
    EXPECT_EQ(grid.GetCurSel(), count);
    EXPECT_FALSE(grid.IsEditing());
    ClickAt(grid, MiddleOf(grid.GetValueRect(name)));
    EXPECT_EQ(grid.GetCurSel(), name);
    EXPECT_TRUE(grid.IsEditing());
    const CRect group = grid.GetPropertyRect(channel);
    ClickAt(grid, {group.left + grid.GetRowHeight() / 2, group.top + grid.GetRowHeight() / 2});
    EXPECT_FALSE(channel->IsExpanded());
    EXPECT_FALSE(grid.IsEditing());
    SendMessageA(grid, WM_LBUTTONDBLCLK, MK_LBUTTON, MAKELPARAM(group.left + 60, group.top + 4));
    EXPECT_TRUE(channel->IsExpanded());
    const CRect row = grid.GetPropertyRect(count);
    const int width = grid.GetLeftColumnWidth(), x = row.left + width;
    const auto send = [&](UINT message, int to) { SendMessageA(grid, message, MK_LBUTTON, MAKELPARAM(to, row.top + 4)); };
    send(WM_LBUTTONDOWN, x), send(WM_MOUSEMOVE, x + 30), send(WM_LBUTTONUP, x + 30);
    EXPECT_EQ(grid.GetLeftColumnWidth(), width + 30);
    send(WM_LBUTTONDOWN, x + 30), send(WM_MOUSEMOVE, 4000), send(WM_LBUTTONUP, 4000);
    EXPECT_LT(grid.GetLeftColumnWidth(), row.Width()) << "both columns stay";
    EXPECT_NE(::GetCapture(), grid.m_hWnd);
}

TEST_F(PropList, TheMenuResetsAndCollapses) {
    Fill();
    Type(count, "9");
    parent.changed.clear();
    // The menu of the row under the mouse, and of the selected one by its key; Escape, which waits already, ends it.
    const auto open = [&](LPARAM at) {
        grid.offered.clear();
        PostMessageA(grid, WM_KEYDOWN, VK_ESCAPE, 1);
        SendMessageA(grid, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(grid.m_hWnd), at);
        return grid.offered;
    };
    CPoint row = MiddleOf(grid.GetPropertyRect(name));
    grid.ClientToScreen(&row);
    const std::vector<std::string> unchanged = {"-&Reset", "&Expand all", "&Collapse all"},
                                   changed = {"&Reset", "&Expand all", "&Collapse all"};
    EXPECT_EQ(open(MAKELPARAM(row.x, row.y)), unchanged);
    EXPECT_EQ(grid.GetCurSel(), name);
    grid.SetCurSel(count);
    EXPECT_EQ(open(-1), changed);
    count->Enable(FALSE);
    EXPECT_EQ(open(-1), unchanged) << "what cannot be changed is not reset either";
    count->Enable();
    grid.EnableContextMenu(FALSE);
    EXPECT_EQ(open(-1), std::vector<std::string>());
    SendMessageA(grid, WM_COMMAND, CBCGPPropList::kReset, 0);
    EXPECT_EQ(count->GetValue().Integer(), 5);
    EXPECT_EQ(parent.changed, std::vector<CBCGPProp*>{count});
    SendMessageA(grid, WM_COMMAND, CBCGPPropList::kReset, 0);
    EXPECT_EQ(parent.changed.size(), 1u) << "nothing to reset";
    SendMessageA(grid, WM_COMMAND, CBCGPPropList::kCollapseAll, 0);
    EXPECT_EQ(grid.GetRowCount(), 2);
    EXPECT_EQ(grid.GetCurSel(), channel);
    SendMessageA(grid, WM_COMMAND, CBCGPPropList::kExpandAll, 0);
    EXPECT_EQ(grid.GetRowCount(), 6);
}

// What a file may bring: thousands of properties, and deep ones. Only what is seen is asked for its looks.
TEST_F(PropList, ThousandsOfRowsCostWhatCanBeSeen) {
    static int drawn;
    drawn = 0;
    class Counted : public CBCGPProp {
    public:
        using CBCGPProp::CBCGPProp;
        void OnDrawValue(CDC* pDC, CRect rect) override {
            ++drawn;
            CBCGPProp::OnDrawValue(pDC, rect);
        }
    };
    std::vector<CBCGPProp*> all;
    for (int i = 0; i < 5000; ++i) {
        CString text;
        text.Format("Property %d", i);
        all.push_back(new Counted(text, i));
        grid.AddProperty(all.back());
    }
    EXPECT_EQ(grid.GetRowCount(), 5000);
    const int most = 300 / grid.GetRowHeight() + 2;
    for (int i = 0; i < 200; ++i) {
        SendMessageA(grid, WM_VSCROLL, i % 2 == 0 ? SB_PAGEDOWN : SB_LINEDOWN, 0);
        drawn = 0;
        grid.UpdateWindow();
        EXPECT_GT(drawn, 0);
        EXPECT_LE(drawn, most);
    }
    Press(grid, VK_END);
    EXPECT_EQ(grid.GetCurSel(), all.back());
    EXPECT_FALSE(grid.GetPropertyRect(all.back()).IsRectEmpty());
    EXPECT_EQ(grid.HitTest(MiddleOf(grid.GetPropertyRect(all.back()))), all.back());
    SendMessageA(grid, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), 0);
    EXPECT_TRUE(grid.GetPropertyRect(all.back()).IsRectEmpty());
    SendMessageA(grid, WM_VSCROLL, SB_TOP, 0);
    EXPECT_EQ(grid.GetTopRow(), 0);
    for (int i = 0; i < 8; ++i) SendMessageA(grid, WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-WHEEL_DELTA / 8)), 0);
    EXPECT_EQ(grid.GetTopRow(), 3) << "by eighths of a notch";
    grid.SetCurSel(all[4321]);
    EXPECT_EQ(grid.HitTest(MiddleOf(grid.GetPropertyRect(all[4321]))), all[4321]);
    grid.RemoveAll();
}

// Marked values are bold, groups stand on the colour of bars, the border is inside or around.
TEST_F(PropList, LooksFollowTheState) {
    Fill();
    const auto ink = [&](CRect place) {
        grid.Invalidate(), grid.UpdateWindow();
        CClientDC dc(&grid);
        int dark = 0;
        for (LONG y = place.top; y < place.bottom; ++y) {
            for (LONG x = place.left; x < place.left + 60; ++x) {
                const COLORREF c = dc.GetPixel(static_cast<int>(x), static_cast<int>(y));
                dark += GetRValue(c) + GetGValue(c) + GetBValue(c) < 384;
            }
        }
        return dark;
    };
    // Below the name of the selected property stands what it means.
    grid.SetCurSel(name);
    CRect client;
    grid.GetClientRect(client);
    const CRect words(client.left + 4, client.bottom - 2 * grid.GetRowHeight(), client.right, client.bottom - 2);
    const int described = ink(words);
    name->SetDescription("");
    EXPECT_TRUE(described > 0 && ink(words) == 0);
    const CRect cell = grid.GetValueRect(name);
    name->SetValue("Indoor!");
    grid.MarkModifiedProperties(FALSE);
    const int plain = ink(cell);
    grid.MarkModifiedProperties(TRUE);
    EXPECT_GT(ink(cell), plain);
    name->SetOriginalValue("Indoor!");
    EXPECT_EQ(ink(cell), plain);
    const CRect group = grid.GetPropertyRect(channel);
    const int named = ink(group);
    channel->SetName("i");
    EXPECT_LT(ink(group), named);
    CClientDC dc(&grid);
    EXPECT_EQ(dc.GetPixel(group.right - 20, group.top + 3), GetSysColor(COLOR_BTNFACE));
    grid.SetVSDotNetLook(FALSE), grid.UpdateWindow();
    EXPECT_EQ(dc.GetPixel(group.right - 20, group.top + 3), GetSysColor(COLOR_WINDOW));
    // The selected row has the desktop's colour of selections while the grid has the focus.
    grid.SetCurSel(name);
    const CRect row = grid.GetPropertyRect(name);
    const auto paper = [&] {
        grid.UpdateWindow();
        return dc.GetPixel(row.left + grid.GetLeftColumnWidth() - 4, row.top + 2);
    };
    EXPECT_EQ(paper(), GetSysColor(COLOR_HIGHLIGHT));
    owner.SetFocus();
    EXPECT_EQ(paper(), GetSysColor(COLOR_BTNFACE));
}
