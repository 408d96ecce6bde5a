// The list view in report view: rows of texts under a header. Rows are kept in one array, only those in sight are drawn, and the
// focused row and the number of selected ones are known, so that long lists cost no more to look at than short ones.
// list_view_items.cpp has rows, columns and their states; list_view_input.cpp keys, mouse and scrolling; list_view_paint.cpp the
// drawing; list_view_accessible.cpp says what is in sight; control_list_view.cpp the messages.
#pragma once

#include <optional>
#include <vector>

#include "platform/letters.h"
#include "platform/posix/controls/scroll_part_internal.h"

namespace orvik::detail {

class ListView final : public Control {
public:
    using Control::Control;
    LRESULT Handle(UINT message, WPARAM wParam, LPARAM lParam) override;

protected:
    void Paint(HDC dc, const RECT& client) override;
    void Describe(OrvikAccessible& out) const override;
    bool Act(const OrvikAccessibleAct& act) override;

private:
    struct Cell {
        std::string text;
        bool asked = false;  // the parent is asked for the text each time
    };
    struct Row {
        std::vector<Cell> cells;
        UINT state = 0;
        LPARAM parameter = 0;
    };
    struct Column {
        int format = LVCFMT_LEFT, width = 10, subItem = 0;
        std::string text;
    };
    // Where things are: the rows' area, the header above, the bars beside and below.
    struct Layout {
        RECT rows, header;
        ScrollPart down, across;
        bool hasDown = false, hasAcross = false;
    };

    int Count() const { return static_cast<int>(m_rows.size()); }
    bool Has(int row) const { return row >= 0 && row < Count(); }

    // Rows and columns.
    LRESULT InsertItem(const LVITEMA& item);
    LRESULT SetItem(const LVITEMA& item);
    LRESULT GetItem(LVITEMA& item) const;
    LRESULT SetText(int row, const LVITEMA& item);
    LRESULT DeleteItem(int row);
    LRESULT DeleteAll();
    LRESULT NextItem(int start, UINT flags) const;
    LRESULT FindItem(int start, const LVFINDINFOA& find) const;
    LRESULT Sort(PFNLVCOMPARE compare, LPARAM parameter);
    LRESULT InsertColumn(int at, const LVCOLUMNA& column);
    LRESULT SetColumn(int at, const LVCOLUMNA& column);
    LRESULT GetColumn(int at, LVCOLUMNA& column) const;
    LRESULT DeleteColumn(int at);
    LRESULT SetColumnWidth(int at, int width);
    std::string TextOf(int row, int subItem) const;
    static void Put(Cell& cell, LPCSTR text);
    static void Fill(LPSTR out, int size, const std::string& text);
    LRESULT SetState(int row, UINT state, UINT mask);
    bool ChangeState(int row, UINT state, UINT mask);
    void FocusRow(int row) { SetState(row, LVIS_FOCUSED, LVIS_FOCUSED); }
    void SelectOnly(int first, int last);
    LRESULT Tell(UINT code, int row, int subItem, UINT newState = 0, UINT oldState = 0, UINT changed = 0, POINT at = {}) const;
    void ShowColumn(int at, bool insert);

    // Places.
    int RowHeight() const;
    Layout Places() const;
    int PerPage() const;
    int ContentWidth() const;
    RECT RowRect(int row) const;
    RECT CellRect(int row, int column) const;
    LRESULT HitTest(LVHITTESTINFO& info, bool subItems) const;
    void InvalidateRow(int row) const;
    void ScrollTo(int top, int shift);
    LRESULT EnsureVisible(int row, bool partial);
    void Arrange();
    void TakeStandardFont();

    // Input.
    LRESULT Key(WPARAM key);
    LRESULT Letter(const std::string& typed);
    void MoveTo(int row, bool extend, bool keep);
    LRESULT Press(WPARAM keys, POINT at, bool second);
    LRESULT RightPress(WPARAM keys, POINT at);
    LRESULT Drag(POINT at);
    LRESULT Release(POINT at);
    void Activate();

    // Drawing.
    void PaintRow(HDC dc, int row, const Layout& places, bool custom);
    LRESULT Ask(HDC dc, DWORD stage, int row, int subItem, const RECT& rectangle, NMLVCUSTOMDRAW& draw) const;

    std::vector<Row> m_rows;
    std::vector<Column> m_columns;
    HWND m_header = nullptr;
    HFONT m_standard = nullptr;  // what the list began with, and has until it is given another
    bool m_ownFont = false;
    int m_focused = -1, m_mark = -1, m_selected = 0;
    int m_top = 0, m_shift = 0;                         // the first row in sight; pixels scrolled off at the left
    std::optional<COLORREF> m_back, m_ink, m_textBack;  // the scheme's until they are set
    COLORREF Back() const { return m_back.value_or(GetSysColor(COLOR_WINDOW)); }
    COLORREF Ink() const { return m_ink.value_or(GetSysColor(COLOR_WINDOWTEXT)); }
    COLORREF TextBack() const { return m_textBack.value_or(GetSysColor(COLOR_WINDOW)); }
    DWORD m_extended = 0;
    int m_dragged = 0;  // 1: the vertical thumb, 2: the horizontal one, 3: a row was pressed
    LONG m_grip = 0;
    OrvikTypedText m_typed;
};

}  // namespace orvik::detail
