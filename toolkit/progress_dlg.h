// The toolkit's progress dialog: a modeless dialog that stands over a disabled owner while work goes on, and tells when the user
// has cancelled. On the user-interface thread, the one that works. Members that need the window do nothing without it.
#pragma once

#include "toolkit/bcgp_dialog.h"
#include "toolkit/disabled_owner.h"

// What the dialog is made with.
struct CBCGPProgressDlgParams {
    CString m_strCaption, m_strMessage, m_strMessage2;  // without a second line at first there never is one
    int m_nRangeMin = 0, m_nRangeMax = 100, m_nStep = 10;
    BOOL m_bShowCancel = TRUE, m_bShowProgress = TRUE, m_bShowPercentage = TRUE;
    BOOL m_bPumpMessages = FALSE;  // SetPos and OffsetPos handle waiting messages first
};

class ORVIK_API CBCGPProgressDlg : public CBCGPDialog {
    DECLARE_DYNAMIC(CBCGPProgressDlg)

public:
    CBCGPProgressDlg() = default;
    ~CBCGPProgressDlg() override;

    using CBCGPDialog::Create;
    // In the middle of the owner, the top window of `pParent` or of the application; shown if there is none or it can be seen.
    virtual BOOL Create(const CBCGPProgressDlgParams& params, CWnd* pParent);
    BOOL DestroyWindow() override;

    void SetRange(LONG nRangeMin, LONG nRangeMax);
    // The position before.
    LONG SetPos(LONG nPos);
    void SetMessage(const CString& strMessage);
    void SetMessage2(const CString& strMessage);
    // Whether the user has cancelled since the last call.
    BOOL IsCancelled();
    // While the button is disabled neither Escape nor closing cancels.
    void EnableCancel(BOOL bEnable);
    // FALSE when the window is gone or the program is to end.
    virtual BOOL PumpMessages();
    const CBCGPProgressDlgParams& GetParameters() const { return m_params; }

protected:
    BOOL OnInitDialog() override;
    void OnOK() override {}
    void OnCancel() override;
    afx_msg void OnSysCommand(UINT nID, LPARAM lParam);
    DECLARE_MESSAGE_MAP()

private:
    void UpdatePercent(LONG pos);

    CBCGPProgressDlgParams m_params;
    orvik::detail::DisabledOwner m_owner;
    BOOL m_bCancelled = FALSE;
};
