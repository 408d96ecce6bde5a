// The property grid: names on the left, values on the right, sub-items to be expanded, a header above and a description of the
// selected property below. On the user-interface thread. It owns its properties.
//
// A window of its own making: Create it as a child. Only the rows that can be seen are drawn, so that thousands cost nothing;
// which row belongs to a property is known without a search. Sizes follow the font (WM_SETFONT; the parent's at first).
//
// Mouse: a click selects, on a value it begins the editing too; the sign in front of a name (or a double click on the name)
// expands; the line between the columns can be dragged, the wheel scrolls.
// Keys: Up, Down, Page Up, Page Down, Home and End select; Right expands, Left collapses or goes to the property above; Enter, F2
// or any letter begins the editing; Space (or a double click) takes the next choice, F4 or Alt+Down opens the choices. While
// editing, Enter takes the value, Escape leaves it, Tab takes it and goes to the dialog's next control. A text that cannot be
// read is told once and stays to be corrected. When the focus goes elsewhere what is good is taken; what is not stays in its
// field unsaid, until EndEditItem (a dialog's OK) or the user comes back to it.
//
// When the user has changed a property, the parent gets BCGM_PROPERTY_CHANGED: wParam the grid's id, lParam the CBCGPProp.
#pragma once

#include <memory>
#include <vector>

#include "afx/gdi.h"
#include "afx/wnd.h"
#include "platform/letters.h"
#include "toolkit/prop.h"

// Registered, so it is known once the module is loaded.
extern ORVIK_API const UINT BCGM_PROPERTY_CHANGED;

class ORVIK_API CBCGPPropList : public CWnd {
    DECLARE_DYNAMIC(CBCGPPropList)

public:
    CBCGPPropList();
    ~CBCGPPropList() override;

    using CWnd::Create;
    virtual BOOL Create(DWORD dwStyle, const RECT& rect, CWnd* pParentWnd, UINT nID);

    void EnableHeaderCtrl(BOOL bEnable = TRUE, LPCSTR lpszLeftColumn = "Property", LPCSTR lpszRightColumn = "Value");
    void EnableDescriptionArea(BOOL bEnable = TRUE);
    // A flat look of two tones: a margin and the groups in the colour of bars.
    void SetVSDotNetLook(BOOL bSet = TRUE);
    BOOL IsVSDotNetLook() const { return m_bVSDotNetLook; }
    // Values that differ from their originals are bold.
    void MarkModifiedProperties(BOOL bMark = TRUE, BOOL bRedraw = TRUE);
    // A right click (or its key) offers to reset the property, to expand and to collapse everything.
    void EnableContextMenu(BOOL bEnable = TRUE) { m_bContextMenu = bEnable; }
    BOOL IsContextMenuEnabled() const { return m_bContextMenu; }

    // Takes the property over; its place among the topmost ones, -1 for none or one that belongs to somebody.
    int AddProperty(CBCGPProp* pProp);
    void RemoveAll();
    int GetPropertyCount() const { return static_cast<int>(m_props.size()); }
    CBCGPProp* GetProperty(int nIndex) const;
    void ExpandAll(BOOL bExpand = TRUE);
    // Every change back to its original, then the parent told of each, unless it removes all properties on being told.
    void ResetOriginalValues();

    CBCGPProp* GetCurSel() const { return m_pSel; }
    // Null for none. Editing ends first; a property that is not shown is not selected.
    void SetCurSel(CBCGPProp* pProp);
    void EnsureVisible(CBCGPProp* pProp);
    CBCGPProp* HitTest(CPoint point) const;

    // Begins the editing of the selected property; 0 where there is nothing to edit. EndEditItem is 0 when the text was refused,
    // and when whoever learnt of the change has destroyed the grid.
    BOOL EditItem();
    BOOL EndEditItem(BOOL bUpdateData = TRUE);
    BOOL IsEditing() const { return m_edit != nullptr || m_choices != nullptr; }

    int GetRowHeight() const { return m_nRowHeight; }
    int GetRowCount() const { return static_cast<int>(Rows().size()); }  // shown, if there were room
    int GetTopRow() const;
    int GetLeftColumnWidth() const { return NameWidth(); }
    // In the grid's client area, empty for one that is out of sight.
    CRect GetPropertyRect(const CBCGPProp* pProp) const;
    CRect GetValueRect(const CBCGPProp* pProp) const;

    enum Command : UINT { kReset = 0xEF01, kExpandAll = 0xEF02, kCollapseAll = 0xEF03 };

protected:
    // The user has changed a property. The base tells the parent.
    virtual void OnPropertyChanged(CBCGPProp* pProp) const;

    afx_msg void OnPaint();
    afx_msg BOOL OnEraseBkgnd(CDC* pDC);
    afx_msg void OnSize(UINT nType, int cx, int cy);
    afx_msg LRESULT OnSetFont(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnGetFont(WPARAM wParam, LPARAM lParam);
    afx_msg void OnSetFocus(CWnd* pOldWnd);
    afx_msg void OnKillFocus(CWnd* pNewWnd);
    afx_msg UINT OnGetDlgCode();
    afx_msg void OnLButtonDown(UINT nFlags, CPoint point);
    afx_msg void OnLButtonDblClk(UINT nFlags, CPoint point);
    afx_msg void OnMouseMove(UINT nFlags, CPoint point);
    afx_msg void OnLButtonUp(UINT nFlags, CPoint point);
    afx_msg BOOL OnMouseWheel(UINT nFlags, short zDelta, CPoint point);
    afx_msg BOOL OnSetCursor(CWnd* pWnd, UINT nHitTest, UINT message);
    afx_msg void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
    afx_msg void OnSysKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
    afx_msg void OnChar(UINT nChar, UINT nRepCnt, UINT nFlags);
    afx_msg void OnVScroll(UINT nSBCode, UINT nPos, CScrollBar* pScrollBar);
    afx_msg void OnContextMenu(CWnd* pWnd, CPoint point);
    afx_msg void OnEnable(BOOL bEnable);
    afx_msg void OnReset();
    LRESULT OnDescribe(WPARAM wParam, LPARAM lParam);
    LRESULT OnAct(WPARAM wParam, LPARAM lParam);
    afx_msg void OnExpandAll() { ExpandAll(TRUE); }
    afx_msg void OnCollapseAll() { ExpandAll(FALSE); }
    DECLARE_MESSAGE_MAP()

private:
    friend class CBCGPProp;
    friend class CPropEdit;
    friend class CPropChoices;
    struct Row {
        CBCGPProp* prop;
        int depth;
    };
    struct Places;

    void OnStructureChanged();
    void OnAdded(CBCGPProp* pProp);
    void RedrawProperty(const CBCGPProp* pProp);
    const std::vector<Row>& Rows() const;
    void AppendRows(std::vector<Row> waiting) const;  // of these and what is below them, the last of `waiting` first
    Places Layout() const;
    int NameWidth() const;
    int VisibleRows() const;
    int Indent(int depth) const { return m_nRowHeight * (depth + 1); }
    void Arrange();
    void Settle() const;
    void ScrollTo(int top);
    void TakeFont(HFONT font);
    CRect ButtonRect(const Row& row, const CRect& place) const;
    BOOL HasArrow(const CBCGPProp& prop) const;
    bool EditedHasChoices() const { return m_pEdited != nullptr && HasArrow(*m_pEdited); }
    CRect ArrowRect(const CBCGPProp* pProp) const;

    void Draw(CDC& dc, const CRect& part);
    void DrawHeader(CDC& dc, const CRect& place, int divider);
    void DrawRow(CDC& dc, const Row& row, const CRect& place, int divider);
    void DrawDescription(CDC& dc, CRect place);

    void MoveSelection(int row);
    BOOL BeginEdit(bool choose, const CString* typed);
    void OpenChoices(CBCGPProp& prop);
    // False when the text means nothing.
    bool Take(CBCGPProp& prop, const CString& text);
    // As the user turns to another property: takes the text, gives up an open choice. False when the text was refused.
    bool LeaveEditor();
    CRect EditorRect(const CBCGPProp* pProp) const;
    void Assign(CBCGPProp& prop, const CBCGPPropValue& value);
    void NextChoice(CBCGPProp& prop);
    void CloseEditors();
    void LeaveByTab(bool back);

    std::vector<std::unique_ptr<CBCGPProp>> m_props;
    mutable std::vector<Row> m_rows;
    mutable bool m_bRowsValid = false;
    unsigned m_nFilling = 0;  // goes up as properties go
    bool m_bArranged = true;
    CBCGPProp* m_pSel = nullptr;
    int m_nTop = 0;
    int m_nRowHeight = 16, m_nTextHeight = 12;
    OrvikTypedText m_typed;
    int m_nNameWidth = -1;  // pixels, once the user has dragged it; half the width before
    int m_nDragOffset = 0;
    bool m_bDragging = false;
    int m_nWheel = 0;  // turned, but not yet a row
    BOOL m_bHeader = FALSE, m_bDescription = FALSE, m_bVSDotNetLook = FALSE, m_bMarkModified = FALSE, m_bContextMenu = FALSE;
    CString m_strLeft, m_strRight;
    HFONT m_hFont = nullptr;
    CFont m_fontBold;

    std::unique_ptr<CWnd> m_scroll;
    std::unique_ptr<CWnd> m_edit, m_choices;
    std::vector<std::unique_ptr<CWnd>> m_closed;
    CBCGPProp* m_pEdited = nullptr;
};
