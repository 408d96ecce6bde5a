// A dialog with the toolkit's looks: its colours, a layout that follows the dialog's size, and dragging by the client area.
// On the window's thread. The switches may be set before the dialog is made.
#pragma once

#include <memory>

#include "afx/dialog.h"
#include "afx/gdi.h"
#include "afx/message_map.h"
#include "toolkit/static_layout.h"

class ORVIK_API CBCGPDialog : public CDialog {
    DECLARE_DYNAMIC(CBCGPDialog)

public:
    using CDialog::CDialog;  // from a template resource

    // Backgrounds and texts in the toolkit's colours (globalData) instead of the system's dialog colours.
    void EnableVisualManagerStyle(BOOL bEnable = TRUE) { m_bVisualManagerStyle = bEnable; }
    BOOL IsVisualManagerStyle() const { return m_bVisualManagerStyle; }
    // The user may drag the dialog by any place that is no control.
    void EnableDragClientArea(BOOL bEnable = TRUE) { m_bDragClientArea = bEnable; }
    BOOL IsDragClientAreaEnabled() const { return m_bDragClientArea; }
    // Controls with anchors follow the dialog's size from now on. The size at OnInitDialog is the smallest one for the user,
    // until SetMinSize says otherwise.
    void EnableLayout(BOOL bEnable = TRUE);
    BOOL IsLayoutEnabled() const { return m_pLayout != nullptr; }
    CBCGPStaticLayout* GetLayout() const { return m_pLayout.get(); }

protected:
    BOOL OnInitDialog() override;

    afx_msg void OnSize(UINT nType, int cx, int cy);
    afx_msg LRESULT OnDpiChanged(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnGetMinMaxInfo(WPARAM wParam, LPARAM lParam);
    afx_msg HBRUSH OnCtlColor(CDC* pDC, CWnd* pWnd, UINT nCtlColor);
    afx_msg LRESULT OnNcHitTest(CPoint point);
    DECLARE_MESSAGE_MAP()

private:
    BOOL m_bVisualManagerStyle = FALSE;
    BOOL m_bDragClientArea = FALSE;
    std::unique_ptr<CBCGPStaticLayout> m_pLayout;
    CBrush m_brFace;  // of the colour m_clrFace
    COLORREF m_clrFace = 0;
};
