#include "toolkit/progress_dlg.h"

#include "res/ids.h"
#include "toolkit/progress_rules_internal.h"

using namespace orvik::detail;

IMPLEMENT_DYNAMIC(CBCGPProgressDlg, CBCGPDialog)

BEGIN_MESSAGE_MAP(CBCGPProgressDlg, CBCGPDialog)
ON_WM_SYSCOMMAND()
END_MESSAGE_MAP()

CBCGPProgressDlg::~CBCGPProgressDlg() { CBCGPProgressDlg::DestroyWindow(); }

BOOL CBCGPProgressDlg::Create(const CBCGPProgressDlgParams& params, CWnd* pParent) {
    m_params = params;
    m_bCancelled = FALSE;
    CWnd* const owner = GetSafeOwner(pParent);
    m_owner.Disable(owner);
    if (!Create(IDD_ORVIK_PROGRESS, owner)) {
        m_owner.Enable();
        return FALSE;
    }
    CenterWindow(owner);
    if (owner == nullptr || owner->IsWindowVisible()) ShowWindow(SW_SHOW);
    return TRUE;
}

BOOL CBCGPProgressDlg::DestroyWindow() {
    // First the owner, so that it is there to be activated when the dialog goes.
    m_owner.Enable();
    return CBCGPDialog::DestroyWindow();
}

BOOL CBCGPProgressDlg::OnInitDialog() {
    CBCGPDialog::OnInitDialog();
    SetWindowText(m_params.m_strCaption);
    GetDlgItem(IDC_ORVIK_MESSAGE)->SetWindowText(m_params.m_strMessage);
    GetDlgItem(IDC_ORVIK_MESSAGE2)->SetWindowText(m_params.m_strMessage2);
    CWnd* const bar = GetDlgItem(IDC_ORVIK_PROGRESS);
    bar->SendMessage(PBM_SETRANGE32, static_cast<WPARAM>(m_params.m_nRangeMin), m_params.m_nRangeMax);
    bar->SendMessage(PBM_SETSTEP, static_cast<WPARAM>(m_params.m_nStep));
    bar->SendMessage(PBM_SETPOS, static_cast<WPARAM>(m_params.m_nRangeMin));
    LayOutProgress(*this, {0, m_params.m_bShowProgress != FALSE, m_params.m_bShowPercentage != FALSE,
                           !m_params.m_strMessage2.IsEmpty(), m_params.m_bShowCancel != FALSE});
    UpdatePercent(m_params.m_nRangeMin);
    return TRUE;
}

void CBCGPProgressDlg::SetRange(LONG nRangeMin, LONG nRangeMax) {
    m_params.m_nRangeMin = nRangeMin;
    m_params.m_nRangeMax = nRangeMax;
    if (m_hWnd == nullptr) return;
    GetDlgItem(IDC_ORVIK_PROGRESS)->SendMessage(PBM_SETRANGE32, static_cast<WPARAM>(nRangeMin), nRangeMax);
}

LONG CBCGPProgressDlg::SetPos(LONG nPos) {
    if (m_params.m_bPumpMessages && !PumpMessages()) return 0;
    if (m_hWnd == nullptr) return 0;
    const LRESULT before = GetDlgItem(IDC_ORVIK_PROGRESS)->SendMessage(PBM_SETPOS, static_cast<WPARAM>(nPos));
    UpdatePercent(nPos);
    ShowWithOwner(*this);
    return static_cast<LONG>(before);
}

void CBCGPProgressDlg::UpdatePercent(LONG pos) {
    if (!m_params.m_bShowProgress || !m_params.m_bShowPercentage) return;
    ShowPercent(*GetDlgItem(IDC_ORVIK_PERCENT), ProgressPercent(pos, m_params.m_nRangeMin, m_params.m_nRangeMax));
}

void CBCGPProgressDlg::SetMessage(const CString& strMessage) {
    m_params.m_strMessage = strMessage;
    if (m_hWnd != nullptr) GetDlgItem(IDC_ORVIK_MESSAGE)->SetWindowText(strMessage);
}

void CBCGPProgressDlg::SetMessage2(const CString& strMessage) {
    if (m_params.m_strMessage2.IsEmpty()) return;
    m_params.m_strMessage2 = strMessage;
    if (m_hWnd != nullptr) GetDlgItem(IDC_ORVIK_MESSAGE2)->SetWindowText(strMessage);
}

BOOL CBCGPProgressDlg::IsCancelled() {
    const BOOL cancelled = m_bCancelled;
    m_bCancelled = FALSE;
    return cancelled;
}

void CBCGPProgressDlg::EnableCancel(BOOL bEnable) {
    if (m_hWnd != nullptr) GetDlgItem(IDCANCEL)->EnableWindow(bEnable);
}

// Escape and the box of the title bar come here whether the button can be pressed or not.
void CBCGPProgressDlg::OnCancel() {
    if (GetDlgItem(IDCANCEL)->IsWindowEnabled()) m_bCancelled = TRUE;
}

BOOL CBCGPProgressDlg::PumpMessages() { return PumpProgressMessages(*this); }

void CBCGPProgressDlg::OnSysCommand(UINT nID, LPARAM lParam) {
    if ((nID & 0xFFF0) == SC_CLOSE)
        OnCancel();
    else
        CBCGPDialog::OnSysCommand(nID, lParam);
}
