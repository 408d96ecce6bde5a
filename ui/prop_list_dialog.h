// A resizable dialog around a property grid. Derived dialogs fill the grid in their OnInitDialog, after the base's, call
// AdjustWindowSize, and learn of each change of the user's through OnPropertyChanged. On the user-interface thread.
#pragma once

#include "afx/controls.h"
#include "toolkit/prop_list.h"
#include "ui/popup_dialog.h"

class ORVIK_API CPropListDialog : public CPopupDialog {
    DECLARE_DYNAMIC(CPropListDialog)

public:
    explicit CPropListDialog(CWnd* parent = nullptr);

    // Makes the dialog as high as all rows of the grid need, sub-items included whether shown or not, and the header and the
    // description with them (five rows). The upper left corner and the width stay.
    void AdjustWindowSize();

    CBCGPPropList& GetPropList() { return m_wndPropList; }

protected:
    BOOL OnInitDialog() override;
    // Takes the text that is being edited; the dialog stays while that cannot be read.
    void OnOK() override;
    void DoDataExchange(CDataExchange* pDX) override;
    // The user has changed a property: `data` is what it was given with SetData.
    virtual void OnPropertyChanged(DWORD_PTR data);
    // The button "Close" (id 3) ends the dialog as Escape does.
    afx_msg void OnClose3() { OnCancel(); }
    afx_msg LRESULT OnBcgmPropertyChanged(WPARAM wParam, LPARAM lParam);
    DECLARE_MESSAGE_MAP()

    CStatic m_wndPropListLocation;  // marks where the grid goes
    CBCGPPropList m_wndPropList;
    // The string that the title names, set before the dialog is made; -1 leaves the title as it is.
    UINT m_nTitleID = static_cast<UINT>(-1);
};
