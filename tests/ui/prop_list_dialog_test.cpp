// The property list as a dialog: its title, its grid, its size and what derived dialogs learn.
#include "ui/prop_list_dialog.h"

#include "platform/house_text_internal.h"
#include "res/ids.h"
#include "tests/support/dialog_fixture.h"

namespace {

class Properties : public CPropListDialog {
public:
    using CPropListDialog::CPropListDialog;
    using CPropListDialog::Create;
    void Title(UINT id) { m_nTitleID = id; }
    std::vector<DWORD_PTR> changed;
    int cancelled = 0;

protected:
    void OnPropertyChanged(DWORD_PTR data) override { changed.push_back(data); }
    void OnCancel() override { ++cancelled; }
};

// Ends or empties itself as soon as it is told.
class Passing : public CPropListDialog {
public:
    using CPropListDialog::Create;
    explicit Passing(bool empties) : m_empties(empties) { ++living; }
    ~Passing() override { --living; }
    inline static int living = 0, told = 0;

protected:
    void OnPropertyChanged(DWORD_PTR) override {
        ++told;
        if (m_empties)
            m_wndPropList.RemoveAll();
        else
            DestroyWindow();
    }
    void PostNcDestroy() override { delete this; }

private:
    bool m_empties;
};

class PropListDialog : public DialogTest {
protected:
    CRect Grid() const { return PlaceIn(dialog, GetDlgItem(dialog, IDC_ORVIK_GRID)); }
    CRect Window() const {
        CRect window;
        dialog.GetWindowRect(window);
        return window;
    }
    Properties dialog;
};

}  // namespace

TEST_F(PropListDialog, TheTitleNamesAResourceInBothLanguages) {
    dialog.Title(IDS_PROPERTY);
    ASSERT_TRUE(dialog.Create(IDD_ORVIK_PROPERTIES, &owner));
    EXPECT_EQ(TextOf(dialog), "Property Properties ");
    dialog.DestroyWindow();
    const TextLanguage swedish(LANG_SWEDISH);
    Properties svensk, plain;
    svensk.Title(IDS_PROPERTY);
    ASSERT_TRUE(svensk.Create(IDD_ORVIK_PROPERTIES, &owner));
    EXPECT_EQ(TextOf(svensk), orvik::detail::HouseFrom1252("Egenskaper f\xF6r Egenskap"));
    EXPECT_EQ(TextOf(GetDlgItem(svensk, IDC_ORVIK_CLOSE)), orvik::detail::HouseFrom1252("St\xE4ng"));
    ASSERT_TRUE(plain.Create(IDD_ORVIK_PROPERTIES, &owner));
    EXPECT_EQ(TextOf(plain), "Egenskaper") << "its own title without one";
}

TEST_F(PropListDialog, TheGridGrowsWithTheDialogAndTheButtonsKeepToTheCorner) {
    ASSERT_TRUE(dialog.Create(IDD_ORVIK_PROPERTIES, &owner));
    EXPECT_TRUE(dialog.IsVisualManagerStyle() && dialog.IsLayoutEnabled());
    const HWND grid = GetDlgItem(dialog, IDC_ORVIK_GRID);
    ASSERT_EQ(grid, dialog.GetPropList().m_hWnd);
    const auto style = static_cast<DWORD>(GetWindowLongPtrA(grid, GWL_STYLE));
    EXPECT_EQ(style & (WS_CHILD | WS_VISIBLE | WS_BORDER | WS_TABSTOP), WS_CHILD | WS_VISIBLE | WS_BORDER | WS_TABSTOP);
    CRect placeholder = PlaceIn(dialog, GetDlgItem(dialog, IDC_ORVIK_GRID_PLACE));
    EXPECT_TRUE(Grid() == placeholder);
    EXPECT_EQ(GetNextDlgTabItem(dialog, nullptr, FALSE), grid) << "first in the order of Tab";
    const CRect ok = PlaceIn(dialog, GetDlgItem(dialog, IDOK)), close = PlaceIn(dialog, GetDlgItem(dialog, IDC_ORVIK_CLOSE)),
                before = Grid(), window = Window();
    dialog.MoveWindow(window.left, window.top, window.Width() + 50, window.Height() + 70);
    EXPECT_TRUE(Grid() == CRect(before.left, before.top, before.right + 50, before.bottom + 70));
    EXPECT_TRUE(CRect(PlaceIn(dialog, GetDlgItem(dialog, IDOK))) == ok + CPoint(50, 70));
    EXPECT_TRUE(CRect(PlaceIn(dialog, GetDlgItem(dialog, IDC_ORVIK_CLOSE))) == close + CPoint(50, 70));
}

TEST_F(PropListDialog, ItsGridHasEverythingSwitchedOn) {
    ASSERT_TRUE(dialog.Create(IDD_ORVIK_PROPERTIES, &owner));
    CBCGPPropList& grid = dialog.GetPropList();
    for (int i = 0; i < 100; ++i) grid.AddProperty(new CBCGPProp("Count", i));
    EXPECT_TRUE(grid.IsContextMenuEnabled());
    EXPECT_EQ(grid.HitTest(CPoint(60, 3)), nullptr) << "the header";
    EXPECT_NE(grid.HitTest(CPoint(60, Grid().Height() / 3)), nullptr);
    EXPECT_EQ(grid.HitTest(CPoint(60, Grid().Height() - 5)), nullptr) << "the description";
}

TEST_F(PropListDialog, ItsHeightFollowsTheRows) {
    ASSERT_TRUE(dialog.Create(IDD_ORVIK_PROPERTIES, &owner));
    CBCGPPropList& grid = dialog.GetPropList();
    auto* group = new CBCGPProp("Group");
    auto* deep = new CBCGPProp("Deep", 1);
    for (int i = 0; i < 3; ++i) deep->AddSubItem(new CBCGPProp("Below", i));
    group->AddSubItem(deep), group->AddSubItem(new CBCGPProp("Second", "x"));
    grid.AddProperty(group), grid.AddProperty(new CBCGPProp("Alone", true));
    group->Expand(FALSE);  // counted all the same
    const CRect before = Window();
    for (int turn = 0; turn < 2; ++turn) {
        dialog.AdjustWindowSize();
        EXPECT_EQ(Grid().Height(), (7 + 5) * grid.GetRowHeight());
        EXPECT_TRUE(Window().TopLeft() == before.TopLeft() && Window().Width() == before.Width());
    }
    group->Expand();
    EXPECT_FALSE(grid.GetPropertyRect(grid.GetProperty(1)).IsRectEmpty()) << "all rows are seen";
    grid.RemoveAll();
    dialog.AdjustWindowSize();
    EXPECT_EQ(Grid().Height(), 5 * grid.GetRowHeight()) << "it shrinks too";
}

TEST_F(PropListDialog, ChangesReachTheDerivedDialogAndOthersDoNot) {
    ASSERT_TRUE(dialog.Create(IDD_ORVIK_PROPERTIES, &owner));
    auto* prop = new CBCGPProp("Count", 5, "How many", 4711);
    dialog.GetPropList().AddProperty(prop);
    const auto lParam = reinterpret_cast<LPARAM>(prop);
    EXPECT_EQ(dialog.SendMessage(BCGM_PROPERTY_CHANGED, IDC_ORVIK_GRID, lParam), 0);
    EXPECT_EQ(dialog.changed, std::vector<DWORD_PTR>{4711});
    EXPECT_EQ(dialog.SendMessage(BCGM_PROPERTY_CHANGED, IDC_ORVIK_GRID, 0), 0);
    EXPECT_EQ(dialog.SendMessage(BCGM_PROPERTY_CHANGED, IDC_ORVIK_GRID + 1, lParam), 0);
    EXPECT_EQ(dialog.changed.size(), 1u);
    // As its user changes it, keys first seen by the dialog.
    dialog.ShowWindow(SW_SHOW);
    dialog.GetPropList().SetFocus();
    dialog.GetPropList().SetCurSel(prop);
    const auto key = [&](UINT code) {
        MSG message = {};
        message.hwnd = ::GetFocus(), message.message = WM_KEYDOWN, message.wParam = code, message.lParam = 1;
        IsDialogMessageA(dialog, &message);
        PumpAll();
    };
    key(VK_RETURN);
    ASSERT_TRUE(dialog.GetPropList().IsEditing()) << "Enter is the grid's";
    SetWindowTextA(::GetFocus(), "8");
    key(VK_RETURN);
    EXPECT_EQ(dialog.changed.size(), 2u);
    key(VK_F2);
    SetWindowTextA(::GetFocus(), "9");
    key(VK_ESCAPE);
    EXPECT_EQ(dialog.cancelled, 0) << "Escape ends the editing first";
    EXPECT_EQ(prop->GetValue().Integer(), 8);
    key(VK_F2), key(VK_TAB);
    EXPECT_EQ(::GetFocus(), GetDlgItem(dialog, IDOK));
    const HeldKey shift(VK_SHIFT);
    key(VK_TAB);
    EXPECT_EQ(::GetFocus(), dialog.GetPropList().m_hWnd);
    key(VK_ESCAPE);
    SendMessageA(GetDlgItem(dialog, IDC_ORVIK_CLOSE), BM_CLICK, 0, 0);
    EXPECT_EQ(dialog.cancelled, 2);
}

TEST_F(PropListDialog, OkWaitsForATextThatCanBeRead) {
    ASSERT_TRUE(dialog.Create(IDD_ORVIK_PROPERTIES, &owner));
    dialog.ShowWindow(SW_SHOW);
    CBCGPPropList& grid = dialog.GetPropList();
    auto* prop = new CBCGPProp("Count", 5);
    grid.AddProperty(prop);
    grid.SetFocus(), grid.SetCurSel(prop);
    ASSERT_TRUE(grid.EditItem());
    const HWND field = ::GetFocus(), ok = GetDlgItem(dialog, IDOK);
    SetWindowTextA(field, "five");
    SetFocus(ok);
    EXPECT_TRUE(app.told.empty());
    SendMessageA(ok, BM_CLICK, 0, 0);
    EXPECT_EQ(app.Told(), "Please enter a whole number.");
    EXPECT_TRUE(dialog.IsWindowVisible());
    EXPECT_EQ(::GetFocus(), field);
    SetWindowTextA(field, "6");
    SendMessageA(ok, BM_CLICK, 0, 0);
    EXPECT_FALSE(dialog.IsWindowVisible());
    EXPECT_EQ(prop->GetValue().Integer(), 6);
    EXPECT_TRUE(app.told.empty());
}

// A modeless dialog that is told of a change may destroy itself at once, and its object; so may it remove all properties.
TEST_F(PropListDialog, ItMayEndOrEmptyItselfOnBeingTold) {
    struct Way {
        const char* name;
        int row;           // that is edited
        const char* text;  // null: chosen
        std::function<void(CBCGPPropList&, HWND field)> leave;
    };
    const auto key = [](UINT code) { return [code](CBCGPPropList&, HWND field) { Press(field, code); }; };
    const auto click = [](CBCGPPropList& grid, int row, int x) {
        const CRect place = grid.GetPropertyRect(grid.GetProperty(row));
        ClickAt(grid, {place.left + x, place.top + 4});
    };
    for (const bool empties : {false, true}) {
        for (const Way& way :
             {Way{"Enter", 0, "6", key(VK_RETURN)}, Way{"Down", 0, "6", key(VK_DOWN)}, Way{"Tab", 0, "6", key(VK_TAB)},
              Way{"another row", 0, "6", [&](CBCGPPropList&grid, HWND) { click(grid, 1, 60); }},
              Way{"another window", 0, "6", [&](CBCGPPropList&, HWND) { ::SetFocus(owner); }},
              Way{"OK", 0, "6", [&](CBCGPPropList&grid, HWND) { ::SendMessageA(::GetParent(grid), WM_COMMAND, IDOK, 0); }},
              Way{"Enter on a choice", 1, nullptr, key(VK_RETURN)}, Way{"Tab on a choice", 1, nullptr, key(VK_TAB)},
              Way{"Space", -1, nullptr,
                  [](CBCGPPropList&grid, HWND) { grid.SetCurSel(grid.GetProperty(1)), Press(grid, VK_SPACE); }},
              Way{"all reset", -1, nullptr, [](CBCGPPropList&grid, HWND) {
                      grid.GetProperty(0)->SetValue(7), grid.GetProperty(1)->SetValue("Pa");
                      grid.ResetOriginalValues();
                  }}}) {
            auto* passing = new Passing(empties);
            ASSERT_TRUE(passing->Create(IDD_ORVIK_PROPERTIES, &owner));
            passing->ShowWindow(SW_SHOW);
            const HWND window = *passing;
            CBCGPPropList& grid = passing->GetPropList();
            auto* unit = new CBCGPProp("Unit", "bar");
            unit->AddOption("bar"), unit->AddOption("Pa");
            grid.AddProperty(new CBCGPProp("Count", 5)), grid.AddProperty(unit);
            grid.SetFocus();
            if (way.row >= 0) {
                grid.SetCurSel(grid.GetProperty(way.row));
                ASSERT_TRUE(grid.EditItem());
                if (way.text != nullptr)
                    SetWindowTextA(::GetFocus(), way.text);
                else
                    Press(::GetFocus(), VK_DOWN);
            }
            Passing::told = 0;
            way.leave(grid, ::GetFocus());
            EXPECT_EQ(Passing::told, 1) << way.name;
            EXPECT_EQ(IsWindow(window) != FALSE, empties) << way.name;
            if (empties) {
                EXPECT_EQ(grid.GetPropertyCount(), 0) << way.name;
                ::DestroyWindow(window);
            }
            EXPECT_EQ(Passing::living, 0) << way.name;
        }
    }
}
