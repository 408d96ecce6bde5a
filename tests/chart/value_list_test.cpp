// Rows in the colours of their values.
#include "chart/value_list_ctrl.h"

#include "tests/support/dialog_fixture.h"
#include "toolkit/global_data.h"

namespace {

class Value : public IVModelValue, public CRefCount {
public:
    explicit Value(COLORREF is) : colour(is) { ++living; }
    ~Value() override { --living; }
    COLORREF GetColor() override { return colour; }
    DWORD AddRef() override { return CRefCount::AddRef(); }
    DWORD Release() override { return CRefCount::Release(); }
    COLORREF colour;
    inline static int living = 0;
};

class ValueList : public DialogTest {
protected:
    void SetUp() override {
        DialogTest::SetUp();
        ASSERT_TRUE(list.Create(WS_CHILD | WS_VISIBLE | LVS_REPORT, CRect(0, 0, 300, 200), &owner, 5));
        list.InsertColumn(0, "Channel", LVCFMT_LEFT, 120), list.InsertColumn(1, "Value", LVCFMT_LEFT, 100);
        list.SetBkColor(RGB(250, 250, 240));
        for (const COLORREF colour : {RGB(200, 0, 0), RGB(0, 120, 0), RGB(0, 0, 200)}) {
            const int row = list.GetItemCount();
            states.push_back(std::make_unique<CValueState>(new Value(colour)));
            list.InsertItem(row, "Temperature"), list.SetItemText(row, 1, "21.5");
            list.SetItemData(row, reinterpret_cast<DWORD_PTR>(states.back().get()));
        }
    }
    void TearDown() override {
        list.DestroyWindow();
        states.clear();
        EXPECT_EQ(Value::living, 0);
        DialogTest::TearDown();
    }
    // How many pixels of a cell have the colour.
    int Count(int row, int column, COLORREF colour) {
        list.RedrawWindow(nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        CRect cell;
        list.GetSubItemRect(row, column, LVIR_BOUNDS, cell);
        if (column == 0) cell.right = cell.left + 120;
        CClientDC dc(&list);
        int count = 0;
        for (int y = cell.top; y < cell.bottom; ++y) {
            for (int x = cell.left; x < cell.right; ++x) count += dc.GetPixel(x, y) == colour;
        }
        return count;
    }

    CValueListCtrl list;
    std::vector<std::unique_ptr<CValueState>> states;
};

}  // namespace

TEST(ValueState, HoldsOneReferenceAndTheColourOfItsMoment) {
    auto* value = new Value(RGB(1, 2, 3));
    value->AddRef();
    {
        CValueState state(value);
        EXPECT_EQ(value->AddRef(), 3u);
        EXPECT_EQ(value->Release(), 2u);
        EXPECT_EQ(state.GetVModelValue(), value);
        value->colour = RGB(9, 9, 9);
        EXPECT_EQ(state.GetColor(), RGB(1, 2, 3));
        state.SetColor(RGB(4, 5, 6));
        EXPECT_EQ(state.GetColor(), RGB(4, 5, 6));
    }
    EXPECT_EQ(value->AddRef(), 2u) << "exactly one was given back";
    value->Release();
    EXPECT_EQ(Value::living, 1);
    value->Release();
    EXPECT_EQ(Value::living, 0);
    const CValueState none(nullptr);
    EXPECT_EQ(none.GetVModelValue(), nullptr);
}

TEST_F(ValueList, SelectionAddsAndClearsWithoutTouchingTheFocus) {
    list.SelectItem(0), list.SelectItem(2);
    list.SelectItem(3), list.SelectItem(-1), list.SelectItem(4711);
    EXPECT_TRUE(list.IsItemSelected(0) && !list.IsItemSelected(1) && list.IsItemSelected(2));
    EXPECT_FALSE(list.IsItemSelected(3) || list.IsItemSelected(-1));
    EXPECT_EQ(list.GetSelectedCount(), 2);
    EXPECT_EQ(list.GetNextItem(-1, LVNI_FOCUSED), -1);
    list.SetItemState(2, LVIS_FOCUSED, LVIS_FOCUSED), list.ClearSelection();
    EXPECT_EQ(list.GetSelectedCount(), 0);
    EXPECT_EQ(list.GetNextItem(-1, LVNI_FOCUSED), 2);
}

TEST_F(ValueList, CellsHaveTheirValuesColours) {
    list.SelectItem(1);
    for (int column = 0; column < 2; ++column) {
        EXPECT_EQ(list.OnGetCellTextColor(0, column), RGB(200, 0, 0));
        EXPECT_EQ(list.OnGetCellBkColor(0, column), RGB(250, 250, 240));
        EXPECT_EQ(list.OnGetCellTextColor(1, column), RGB(255, 255, 255));
        EXPECT_EQ(list.OnGetCellBkColor(1, column), RGB(0, 120, 0));
        EXPECT_GT(Count(0, column, RGB(250, 250, 240)), 200);
        EXPECT_GT(Count(0, column, RGB(200, 0, 0)), 5) << "its text";
        EXPECT_GT(Count(1, column, RGB(0, 120, 0)), 1000) << "the whole cell, not the text alone";
        EXPECT_GT(Count(1, column, RGB(255, 255, 255)), 5) << "its text";
        EXPECT_EQ(Count(1, column, GetSysColor(COLOR_HIGHLIGHT)), 0);
    }
    list.SetFocus();
    EXPECT_GT(Count(1, 0, RGB(0, 120, 0)), 200) << "with the focus too";
    list.ClearSelection();
    EXPECT_EQ(list.OnGetCellTextColor(1, 0), RGB(0, 120, 0));
    EXPECT_EQ(list.OnGetCellBkColor(1, 0), RGB(250, 250, 240));
    EXPECT_GT(Count(1, 1, RGB(0, 120, 0)), 5);
    // A row without a state looks as the list does.
    list.InsertItem(3, "Plain"), list.SelectItem(3);
    EXPECT_EQ(list.OnGetCellTextColor(3, 0), globalData.clrTextHilite);
    EXPECT_EQ(list.OnGetCellBkColor(3, 0), globalData.clrHilite);
    owner.SetFocus();
    EXPECT_EQ(list.OnGetCellTextColor(3, 0), list.GetTextColor()) << "without the focus nothing is seen of it";
    EXPECT_EQ(list.OnGetCellBkColor(3, 0), list.GetTextBkColor());
}
