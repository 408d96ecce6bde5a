// Progress of work on the user-interface thread: a modeless dialog over a disabled owner, which keeps the user interface alive by
// handling waiting messages and tells when the user has cancelled. On that thread only.
//
//     CProgressDlgParams params;
//     params.m_strCaption = "Download", params.m_nRangeMax = count, params.m_bPumpMessages = TRUE;
//     CProgressDialog progress(AfxGetMainWnd());
//     progress.Create(params, AfxGetMainWnd());
//     for (LONG i = 0; i < count && !progress.IsCancelled(); ++i) Work(i), progress.SetPos(i + 1);
//
// Members that need the window do nothing (and give 0) once it is gone, as it is when its owner has been destroyed.
#pragma once

#include "toolkit/bcgp_controls.h"
#include "toolkit/bcgp_dialog.h"
#include "toolkit/disabled_owner.h"

// Without a bar, and without Cancel, the dialog is shorter by their room. A header moves everything down and the dialog is higher
// by it. Without a second line what stands below it moves up by that line.
struct CProgressDlgParams {
    CString m_strCaption;
    CString m_strMessage;
    CString m_strMessage2;  // shown when not empty; a dialog made without it never gets one
    LONG m_nRangeMin = 0;
    LONG m_nRangeMax = 100;  // above the minimum
    LONG m_nStep = 10;
    BOOL m_bShowCancel = TRUE;
    BOOL m_bShowProgress = TRUE;
    BOOL m_bShowPercentage = TRUE;
    LONG m_nHeaderHeight = 0;           // pixels on the first screen; above 0 OnDrawHeader paints a band that high at the top
    BOOL m_bUseTaskBarProgress = TRUE;  // not used by this dialog
    BOOL m_bPumpMessages = FALSE;       // SetPos and OffsetPos handle waiting messages first
};

class ORVIK_API CProgressDialog : public CBCGPDialog {
    DECLARE_DYNAMIC(CProgressDialog)

public:
    explicit CProgressDialog(CWnd* parent = nullptr);
    ~CProgressDialog() override;

    using CBCGPDialog::Create;
    // In the middle of the owner, which is the top window of `parent`, or of the application; shown if the owner is, or if there
    // is none. A failed one leaves the owner enabled; so does one while the dialog is open, which changes nothing.
    virtual BOOL Create(const CProgressDlgParams& params, CWnd* parent);
    // Paints the band at the top.
    virtual void OnDrawHeader(CDC*, CRect) {}
    // Handles every waiting message. FALSE when the window is gone, and at the quit message, which is posted again.
    virtual BOOL PumpMessages();
    // Called by DestroyWindow too, while the dialog is still there.
    virtual void ReEnableParent();
    // Stores the position and shows its percentage: (pos - min) * 100 / (max - min), truncated. What is not exactly 100 is taken
    // modulo 100, so that 150 shows as 50; kept on purpose.
    virtual void UpdatePercent(LONG pos);

    BOOL DestroyWindow() override;

    void SetRange(LONG min, LONG max);
    // The position before; 0, and nothing done, when pumping is on and PumpMessages says FALSE.
    LONG SetPos(LONG pos);
    LONG OffsetPos(LONG delta);
    LONG GetPos() const { return m_nPos; }
    void SetMessage(const CString& text);
    void SetMessage2(const CString& text);
    // Whether the user has pressed Cancel or closed the dialog since the last call. The dialog stays open.
    BOOL IsCancelled();
    void EnablePumpMessages(BOOL enable) { m_bPump = enable; }
    const CProgressDlgParams& GetParameters() const { return m_params; }
    // Paints the header anew, at once.
    void RedrawHeader();

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* pDX) override;
    void OnOK() override {}
    void OnCancel() override;
    afx_msg void OnSysCommand(UINT nID, LPARAM lParam);
    afx_msg void OnPaint();
    afx_msg LRESULT OnDpiChanged(WPARAM wParam, LPARAM lParam);
    DECLARE_MESSAGE_MAP()

    CBCGPProgressCtrl m_wndProgress;
    CBCGPStatic m_wndPercent;
    CBCGPButton m_btnCancel;
    CBCGPStatic m_wndMessage, m_wndMessage2, m_wndBottom;

private:
    LONG Moved(LRESULT before, LONG pos);
    CRect Header() const;

    BOOL m_bCancelled = FALSE;
    orvik::detail::DisabledOwner m_owner;
    BOOL m_bPump = FALSE;
    LONG m_nPos = 0;
    CProgressDlgParams m_params;
    LONG m_nLayoutBottom = -1;  // of the client area as it was laid out
};
