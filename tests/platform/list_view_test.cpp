// The list in report view: rows, states, notifications, colours of cells; and its header.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/house_text_internal.h"
#include "tests/platform/control_host.h"

namespace {

class ListView : public ControlHost {
protected:
    void MakeList(DWORD style = 0, int rows = 0) {
        Make("SysListView32", LVS_REPORT | style, "", 250, 150);
        for (const char* title : {"Name", "Value"}) {
            LVCOLUMNA column = {};
            column.mask = LVCF_TEXT | LVCF_WIDTH;
            column.pszText = const_cast<char*>(title);
            column.cx = 80;
            Ask(LVM_INSERTCOLUMNA, 99, &column);
        }
        for (int i = 0; i < rows; ++i) Insert(i, "row " + std::to_string(i), i);
        log.clear();
    }
    int Insert(int at, const std::string& text, LPARAM data = 0, UINT state = 0) {
        LVITEMA item = {};
        item.mask = LVIF_TEXT | LVIF_PARAM | (state != 0 ? LVIF_STATE : 0u);
        item.iItem = at;
        item.pszText = const_cast<char*>(text.c_str());
        item.lParam = data;
        item.state = item.stateMask = state;
        return static_cast<int>(Ask(LVM_INSERTITEMA, 0, &item));
    }
    LRESULT State(int row, UINT state, UINT mask) {
        LVITEMA item = {};
        item.state = state;
        item.stateMask = mask;
        return Ask(LVM_SETITEMSTATE, static_cast<WPARAM>(row), &item);
    }
    LRESULT SetText(int row, int column, const char* text) {
        LVITEMA item = {};
        item.iSubItem = column;
        item.pszText = const_cast<char*>(text);
        return Ask(LVM_SETITEMTEXTA, static_cast<WPARAM>(row), &item);
    }
    std::string CellText(int row, int column) {
        char text[64] = "";
        LVITEMA item = {};
        item.iSubItem = column;
        item.pszText = text;
        item.cchTextMax = sizeof text;
        Ask(LVM_GETITEMTEXTA, static_cast<WPARAM>(row), &item);
        return text;
    }
    // The selected rows, and the focused one behind "/".
    std::string Marked() {
        std::string out;
        for (LRESULT row = -1; (row = Send(LVM_GETNEXTITEM, static_cast<WPARAM>(row), LVNI_SELECTED)) != -1;)
            out += std::to_string(row) + " ";
        return out + "/ " + std::to_string(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
    }
    LRESULT Notified(const NMHDR& header) override {
        const auto& told = reinterpret_cast<const NMLISTVIEW&>(header);
        const UINT code = header.code;
        const auto item = [&told] { return std::to_string(told.iItem); };
        if (code == LVN_ITEMCHANGING) return told.iItem == forbidden;
        if (code == LVN_ITEMCHANGED)
            Note("changed" + item() + ":" + std::to_string(told.uOldState) + ">" + std::to_string(told.uNewState));
        if (code == LVN_INSERTITEM) Note("insert" + item());
        if (code == LVN_DELETEITEM) Note("delete" + item() + "=" + std::to_string(told.lParam));
        if (code == LVN_DELETEALLITEMS) Note("all");
        if (code == LVN_COLUMNCLICK) Note("column" + std::to_string(told.iSubItem));
        if (code == LVN_GETDISPINFOA) {
            auto& info = const_cast<NMLVDISPINFOA&>(reinterpret_cast<const NMLVDISPINFOA&>(header));
            if (info.item.mask & LVIF_TEXT && info.item.iItem == 0) info.item.pszText = const_cast<char*>("asked");
        }
        if (code != NM_CUSTOMDRAW) return 0;
        auto& draw = const_cast<NMLVCUSTOMDRAW&>(reinterpret_cast<const NMLVCUSTOMDRAW&>(header));
        if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
        if (draw.nmcd.dwDrawStage == CDDS_ITEMPREPAINT) {
            draw.nmcd.uItemState &= ~static_cast<UINT>(CDIS_SELECTED);
            return CDRF_NOTIFYSUBITEMDRAW;
        }
        draw.clrText = 0x00FF00, draw.clrTextBk = draw.iSubItem == 0 ? 0x0000FF : 0xFF0000;
        return CDRF_DODEFAULT;
    }
    int forbidden = -100;
};

TEST_F(ListView, RowsAndTexts) {
    MakeList(0, 3);
    EXPECT_EQ(Insert(1, "between", 42), 1);
    EXPECT_EQ(Told(), "insert1");
    EXPECT_EQ(Insert(99, "last"), 4);
    EXPECT_EQ(Send(LVM_GETITEMCOUNT), 5);
    EXPECT_TRUE(SetText(1, 1, orvik::detail::HouseFrom1252("7 \xB5s").c_str()));
    EXPECT_EQ(CellText(1, 0), "between");
    EXPECT_EQ(CellText(1, 1), orvik::detail::HouseFrom1252("7 \xB5s"));
    EXPECT_EQ(CellText(2, 1), "");
    EXPECT_TRUE(SetText(0, 1, LPSTR_TEXTCALLBACKA));
    EXPECT_EQ(CellText(0, 1), "asked");
    LVITEMA item = {};
    item.mask = LVIF_PARAM;
    item.iItem = 1;
    EXPECT_TRUE(Ask(LVM_GETITEMA, 0, &item));
    EXPECT_EQ(item.lParam, 42);
    item.iItem = 5;
    EXPECT_FALSE(Ask(LVM_GETITEMA, 0, &item));
    LVFINDINFOA find = {};
    find.flags = LVFI_STRING;
    find.psz = "ROW 2";
    EXPECT_EQ(Ask(LVM_FINDITEMA, static_cast<WPARAM>(-1), &find), 3);
    find.flags = LVFI_PARAM;
    find.lParam = 42;
    EXPECT_EQ(Ask(LVM_FINDITEMA, static_cast<WPARAM>(-1), &find), 1);
    Told();
    EXPECT_TRUE(Send(LVM_DELETEITEM, 1));
    EXPECT_EQ(Told(), "delete1=42");
    EXPECT_EQ(CellText(1, 0), "row 1");
    EXPECT_FALSE(Send(LVM_DELETEITEM, 9));
    EXPECT_TRUE(Send(LVM_DELETEALLITEMS));
    EXPECT_EQ(Send(LVM_GETITEMCOUNT), 0);
    EXPECT_EQ(Told().substr(0, 3), "all");
}

TEST_F(ListView, States) {
    MakeList(0, 5);
    EXPECT_EQ(Marked(), "/ -1");
    const UINT both = LVIS_SELECTED | LVIS_FOCUSED;
    State(1, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ(Told(), "changed1:0>2");
    State(3, both, both);
    EXPECT_EQ(Told(), "changed3:0>3");
    EXPECT_EQ(Marked(), "1 3 / 3");
    EXPECT_EQ(Send(LVM_GETSELECTEDCOUNT), 2);
    State(0, LVIS_FOCUSED, LVIS_FOCUSED);  // there is one focus
    EXPECT_EQ(Marked(), "1 3 / 0");
    State(1, 0, LVIS_SELECTED);
    EXPECT_EQ(Marked(), "3 / 0");
    State(9, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ(Marked(), "3 / 0");
    State(-1, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ(Marked(), "0 1 2 3 4 / 0");
    State(-1, 0, LVIS_SELECTED);
    EXPECT_EQ(Marked(), "/ 0");
    forbidden = 2;
    State(2, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ(Marked(), "/ 0");
    State(4, LVIS_SELECTED, LVIS_SELECTED);
    Send(LVM_DELETEITEM, 0);  // states move with their rows
    EXPECT_EQ(Marked().substr(0, 2), "3 ");
    EXPECT_EQ(Send(LVM_GETITEMSTATE, 3, LVIS_SELECTED | LVIS_FOCUSED) & LVIS_SELECTED, LVIS_SELECTED);
}

TEST_F(ListView, Keys) {
    MakeList(0, 6);
    SetFocus(control);
    State(1, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    Press(VK_DOWN);
    EXPECT_EQ(Marked(), "2 / 2");
    Press(VK_DOWN, VK_SHIFT);
    EXPECT_EQ(Marked(), "2 3 / 3");
    Press(VK_UP, VK_SHIFT), Press(VK_UP, VK_SHIFT);
    EXPECT_EQ(Marked(), "1 2 / 1");
    Press(VK_END);
    EXPECT_EQ(Marked(), "5 / 5");
    Press(VK_HOME, VK_CONTROL);  // the focus alone
    EXPECT_EQ(Marked(), "5 / 0");
    Press(VK_DOWN);
    EXPECT_EQ(Marked(), "1 / 1");
    DestroyWindow(control);

    MakeList(LVS_SINGLESEL, 3);
    State(0, LVIS_SELECTED, LVIS_SELECTED), State(2, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ(Marked().substr(0, 2), "2 ");
    EXPECT_EQ(Send(LVM_GETSELECTEDCOUNT), 1);
}

TEST_F(ListView, Places) {
    MakeList(LVS_SHOWSELALWAYS, 300);
    Send(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_FULLROWSELECT);
    EXPECT_EQ(Send(LVM_GETEXTENDEDLISTVIEWSTYLE), static_cast<LRESULT>(LVS_EX_FULLROWSELECT));
    EXPECT_EQ(Send(LVM_GETTOPINDEX), 0);
    EXPECT_TRUE(Send(LVM_ENSUREVISIBLE, 200, FALSE));
    const LRESULT page = Send(LVM_GETCOUNTPERPAGE);
    EXPECT_EQ(Send(LVM_GETTOPINDEX), 200 - page + 1);
    Send(LVM_ENSUREVISIBLE, 100, FALSE);
    EXPECT_EQ(Send(LVM_GETTOPINDEX), 100);
    RECT row = {LVIR_BOUNDS, 0, 0, 0}, cell = {LVIR_BOUNDS, 1, 0, 0};
    EXPECT_TRUE(Ask(LVM_GETITEMRECT, 102, &row));
    EXPECT_TRUE(Ask(LVM_GETSUBITEMRECT, 102, &cell));
    EXPECT_EQ(row.right - row.left, 160);
    EXPECT_EQ(cell.left - row.left, 80);
    EXPECT_EQ(cell.right - cell.left, 80);
    EXPECT_EQ(cell.top, row.top);
    LVHITTESTINFO hit = {};
    hit.pt = {cell.left + 5, (cell.top + cell.bottom) / 2};
    EXPECT_EQ(Ask(LVM_SUBITEMHITTEST, 0, &hit), 102);
    EXPECT_EQ(hit.iSubItem, 1);
    Click(hit.pt.x, hit.pt.y);
    EXPECT_EQ(Marked(), "102 / 102");
    hit.pt = {row.right + 10, hit.pt.y};
    EXPECT_EQ(Ask(LVM_HITTEST, 0, &hit), -1);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 1), 80);
    Send(LVM_SETCOLUMNWIDTH, 1, MAKELPARAM(33, 0));
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 1), 33);
    Send(LVM_SETCOLUMNWIDTH, 0, MAKELPARAM(LVSCW_AUTOSIZE, 0));
    EXPECT_GT(Send(LVM_GETCOLUMNWIDTH, 0), 20);
}

TEST_F(ListView, Header) {
    MakeList();
    const auto header = reinterpret_cast<HWND>(Send(LVM_GETHEADER));
    ASSERT_NE(header, nullptr);
    EXPECT_EQ(SendMessageA(header, HDM_GETITEMCOUNT, 0, 0), 2);
    RECT title = {};
    SendMessageA(header, HDM_GETITEMRECT, 1, reinterpret_cast<LPARAM>(&title));
    EXPECT_EQ(title.left, 80);
    EXPECT_EQ(title.right, 160);
    const LPARAM middle = MAKELPARAM(120, (title.top + title.bottom) / 2);
    SendMessageA(header, WM_LBUTTONDOWN, MK_LBUTTON, middle), SendMessageA(header, WM_LBUTTONUP, 0, middle);
    EXPECT_EQ(Told(), "column1");
    const LPARAM edge = MAKELPARAM(79, (title.top + title.bottom) / 2), wider = MAKELPARAM(109, (title.top + title.bottom) / 2);
    SendMessageA(header, WM_LBUTTONDOWN, MK_LBUTTON, edge), SendMessageA(header, WM_MOUSEMOVE, MK_LBUTTON, wider);
    SendMessageA(header, WM_LBUTTONUP, 0, wider);
    EXPECT_EQ(Send(LVM_GETCOLUMNWIDTH, 0), 110);
    char text[16] = "";
    LVCOLUMNA column = {};
    column.mask = LVCF_TEXT | LVCF_WIDTH;
    column.pszText = text;
    column.cchTextMax = sizeof text;
    EXPECT_TRUE(Ask(LVM_GETCOLUMNA, 1, &column));
    EXPECT_STREQ(text, "Value");
    Insert(0, "a");
    SetText(0, 1, "b");
    EXPECT_TRUE(Send(LVM_DELETECOLUMN, 0));
    EXPECT_EQ(SendMessageA(header, HDM_GETITEMCOUNT, 0, 0), 1);
}

int CALLBACK Backwards(LPARAM a, LPARAM b, LPARAM) { return a < b ? 1 : a > b ? -1 : 0; }

TEST_F(ListView, Sorting) {
    MakeList(0, 4);
    State(3, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    EXPECT_TRUE(Ask(LVM_SORTITEMS, 0, reinterpret_cast<const void*>(&Backwards)));
    EXPECT_EQ(CellText(0, 0), "row 3");
    EXPECT_EQ(CellText(3, 0), "row 0");
    EXPECT_EQ(Marked(), "0 / 0");
    DestroyWindow(control);
    MakeList(LVS_SORTASCENDING);
    for (const char* text : {"b", "C", "a"}) Insert(0, text);
    EXPECT_EQ(CellText(0, 0) + CellText(1, 0) + CellText(2, 0), "abC");
}

TEST_F(ListView, ColoursOfCells) {
    MakeList(0, 2);
    EXPECT_EQ(Send(LVM_GETBKCOLOR), static_cast<LRESULT>(GetSysColor(COLOR_WINDOW)));
    Send(LVM_SETBKCOLOR, 0, 0x112233);
    EXPECT_EQ(Send(LVM_GETBKCOLOR), 0x112233);
    Send(LVM_SETTEXTCOLOR, 0, 0x445566);
    EXPECT_EQ(Send(LVM_GETTEXTCOLOR), 0x445566);
    State(1, LVIS_SELECTED, LVIS_SELECTED);  // its colours stay the parent's, for the parent cleared CDIS_SELECTED
    for (const int row : {0, 1})
        for (const int column : {0, 1}) SetText(row, column, "");
    InvalidateRect(control, nullptr, TRUE);
    UpdateWindow(control);
    const HDC dc = GetDC(control);
    for (const int row : {0, 1}) {
        RECT name = {LVIR_LABEL, 0, 0, 0}, value = {LVIR_BOUNDS, 1, 0, 0};
        Ask(LVM_GETITEMRECT, static_cast<WPARAM>(row), &name), Ask(LVM_GETSUBITEMRECT, static_cast<WPARAM>(row), &value);
        const int y = (name.top + name.bottom) / 2;
        EXPECT_EQ(GetPixel(dc, name.left + 30, y), 0x0000FFu) << row;
        EXPECT_EQ(GetPixel(dc, value.left + 30, y), 0xFF0000u) << row;
    }
    EXPECT_EQ(GetPixel(dc, 220, 140), 0x112233u);
    ReleaseDC(control, dc);
}

}  // namespace
