#include "ui/progress_dialog.h"

#include "res/ids.h"
#include "toolkit/progress_rules_internal.h"

using namespace orvik::detail;

IMPLEMENT_DYNAMIC(CProgressDialog, CBCGPDialog)

BEGIN_MESSAGE_MAP(CProgressDialog, CBCGPDialog)
ON_WM_SYSCOMMAND()
ON_WM_PAINT()
ON_MESSAGE(WM_DPICHANGED, OnDpiChanged)
END_MESSAGE_MAP()

CProgressDialog::CProgressDialog(CWnd* parent) : CBCGPDialog(IDD_ORVIK_PROGRESS, parent) { EnableVisualManagerStyle(); }

CProgressDialog::~CProgressDialog() { CProgressDialog::DestroyWindow(); }

BOOL CProgressDialog::Create(const CProgressDlgParams& params, CWnd* parent) {
    if (m_hWnd != nullptr) return FALSE;
    m_params = params;
    m_nPos = params.m_nRangeMin;
    m_bPump = params.m_bPumpMessages;
    CWnd* const owner = GetSafeOwner(parent);
    m_owner.Disable(owner);
    if (!Create(IDD_ORVIK_PROGRESS, owner)) {
        m_owner.Enable();
        return FALSE;
    }
    CenterWindow(owner);
    if (owner == nullptr || owner->IsWindowVisible()) ShowWindow(SW_SHOW);
    return TRUE;
}

void CProgressDialog::ReEnableParent() { m_owner.Enable(); }

BOOL CProgressDialog::DestroyWindow() {
    // First the owner, so that it is there to be activated when the dialog goes.
    ReEnableParent();
    return CBCGPDialog::DestroyWindow();
}

void CProgressDialog::DoDataExchange(CDataExchange* pDX) {
    CBCGPDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_ORVIK_PROGRESS, m_wndProgress);
    DDX_Control(pDX, IDC_ORVIK_PERCENT, m_wndPercent);
    DDX_Control(pDX, IDCANCEL, m_btnCancel);
    DDX_Control(pDX, IDC_ORVIK_MESSAGE, m_wndMessage);
    DDX_Control(pDX, IDC_ORVIK_MESSAGE2, m_wndMessage2);
    DDX_Control(pDX, IDC_ORVIK_BOTTOM, m_wndBottom);
}

BOOL CProgressDialog::OnInitDialog() {
    CBCGPDialog::OnInitDialog();
    m_wndProgress.SetRange32(m_params.m_nRangeMin, m_params.m_nRangeMax);
    m_wndProgress.SetStep(m_params.m_nStep);
    m_wndProgress.SetPos(m_params.m_nRangeMin);
    SetWindowText(m_params.m_strCaption);
    m_wndMessage.SetWindowText(m_params.m_strMessage);
    m_wndMessage2.SetWindowText(m_params.m_strMessage2);
    m_nLayoutBottom =
        LayOutProgress(*this, {m_params.m_nHeaderHeight, m_params.m_bShowProgress != FALSE, m_params.m_bShowPercentage != FALSE,
                               !m_params.m_strMessage2.IsEmpty(), m_params.m_bShowCancel != FALSE});
    UpdatePercent(m_params.m_nRangeMin);
    return TRUE;
}

void CProgressDialog::SetRange(LONG min, LONG max) {
    m_params.m_nRangeMin = min;
    m_params.m_nRangeMax = max;
    if (m_hWnd != nullptr) m_wndProgress.SetRange32(min, max);
}

LONG CProgressDialog::SetPos(LONG pos) {
    if (m_bPump && !PumpMessages()) return 0;
    if (m_hWnd == nullptr) return 0;
    return Moved(m_wndProgress.SendMessage(PBM_SETPOS, static_cast<WPARAM>(pos)), pos);
}

LONG CProgressDialog::OffsetPos(LONG delta) {
    if (m_bPump && !PumpMessages()) return 0;
    if (m_hWnd == nullptr) return 0;
    const LRESULT before = m_wndProgress.SendMessage(PBM_DELTAPOS, static_cast<WPARAM>(delta));
    // Added as the bar adds, which wraps.
    return Moved(before, static_cast<LONG>(static_cast<DWORD>(before) + static_cast<DWORD>(delta)));
}

LONG CProgressDialog::Moved(LRESULT before, LONG pos) {
    UpdatePercent(pos);
    ShowWithOwner(*this);
    return static_cast<LONG>(before);
}

void CProgressDialog::UpdatePercent(LONG pos) {
    m_nPos = pos;
    if (m_hWnd == nullptr || !m_params.m_bShowProgress || !m_params.m_bShowPercentage) return;
    ShowPercent(m_wndPercent, ProgressPercent(pos, m_params.m_nRangeMin, m_params.m_nRangeMax));
}

BOOL CProgressDialog::PumpMessages() { return PumpProgressMessages(*this); }

void CProgressDialog::SetMessage(const CString& text) {
    m_params.m_strMessage = text;
    if (m_hWnd != nullptr) m_wndMessage.SetWindowText(text);
}

void CProgressDialog::SetMessage2(const CString& text) {
    if (m_params.m_strMessage2.IsEmpty()) return;
    m_params.m_strMessage2 = text;
    if (m_hWnd != nullptr) m_wndMessage2.SetWindowText(text);
}

BOOL CProgressDialog::IsCancelled() {
    const BOOL cancelled = m_bCancelled;
    m_bCancelled = FALSE;
    return cancelled;
}

LRESULT CProgressDialog::OnDpiChanged(WPARAM wParam, LPARAM lParam) {
    // The band grows as the system moves what lies below it.
    const auto top = [this] {
        CRect place;
        m_wndMessage.GetWindowRect(place);
        ScreenToClient(place);
        return place.top;
    };
    const HWND self = m_hWnd;
    const LONG before = top();
    const LRESULT answer = CBCGPDialog::OnDpiChanged(wParam, lParam);
    if (!::IsWindow(self)) return answer;
    if (before > 0) m_params.m_nHeaderHeight = ::MulDiv(m_params.m_nHeaderHeight, top(), before);
    CRect client;
    GetClientRect(client);
    m_nLayoutBottom = client.Height();
    return answer;
}

CRect CProgressDialog::Header() const {
    CRect band;
    GetClientRect(band);
    band.bottom = band.top + m_params.m_nHeaderHeight;
    return band;
}

void CProgressDialog::RedrawHeader() {
    if (m_hWnd != nullptr && m_params.m_nHeaderHeight >= 1) RedrawWindow(Header(), nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
}

void CProgressDialog::OnCancel() { m_bCancelled = TRUE; }

void CProgressDialog::OnSysCommand(UINT nID, LPARAM lParam) {
    if ((nID & 0xFFF0) == SC_CLOSE)
        OnCancel();
    else
        CBCGPDialog::OnSysCommand(nID, lParam);
}

void CProgressDialog::OnPaint() {
    if (m_params.m_nHeaderHeight <= 0) {
        Default();
        return;
    }
    CPaintDC dc(this);
    OnDrawHeader(&dc, Header());
}
