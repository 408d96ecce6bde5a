#include "toolkit/bcgp_dialog.h"

#include "toolkit/global_data.h"

IMPLEMENT_DYNAMIC(CBCGPDialog, CDialog)

BEGIN_MESSAGE_MAP(CBCGPDialog, CDialog)
ON_WM_SIZE()
ON_MESSAGE(WM_DPICHANGED, OnDpiChanged)
ON_MESSAGE(WM_GETMINMAXINFO, OnGetMinMaxInfo)
ON_WM_CTLCOLOR()
ON_WM_NCHITTEST()
END_MESSAGE_MAP()

namespace {
// Of controls, those without a background of their own. The kind counts from the message of message boxes.
bool FollowsLooks(UINT kind) {
    const UINT message = WM_CTLCOLORMSGBOX + kind;
    return message == WM_CTLCOLORDLG || message == WM_CTLCOLORSTATIC || message == WM_CTLCOLORBTN;
}
}  // namespace

void CBCGPDialog::EnableLayout(BOOL bEnable) {
    if (!bEnable)
        m_pLayout.reset();
    else if (m_pLayout == nullptr)
        m_pLayout = std::make_unique<CBCGPStaticLayout>(this);
}

BOOL CBCGPDialog::OnInitDialog() {
    if (m_pLayout != nullptr) {
        CRect window;
        GetWindowRect(window);
        m_pLayout->SetMinSize(window.Size());
    }
    return CDialog::OnInitDialog();
}

void CBCGPDialog::OnSize(UINT nType, int, int) {
    Default();
    if (m_pLayout != nullptr && nType != SIZE_MINIMIZED) m_pLayout->AdjustLayout();
}

LRESULT CBCGPDialog::OnDpiChanged(WPARAM wParam, LPARAM) {
    // The system scales the controls with the letters; the layout goes on from there.
    std::unique_ptr<CBCGPStaticLayout> layout = std::move(m_pLayout);
    const HWND self = m_hWnd;
    const LRESULT answer = Default();
    if (!::IsWindow(self) || layout == nullptr) return answer;
    layout->StartAnew(LOWORD(wParam));
    m_pLayout = std::move(layout);
    return answer;
}

LRESULT CBCGPDialog::OnGetMinMaxInfo(WPARAM, LPARAM lParam) {
    const LRESULT answer = Default();
    if (m_pLayout == nullptr) return answer;
    auto& limits = *reinterpret_cast<MINMAXINFO*>(lParam);
    const CSize least = m_pLayout->GetMinSize();
    if (least.cx > 0) limits.ptMinTrackSize.x = least.cx;
    if (least.cy > 0) limits.ptMinTrackSize.y = least.cy;
    return 0;
}

HBRUSH CBCGPDialog::OnCtlColor(CDC* pDC, CWnd* pWnd, UINT nCtlColor) {
    const HBRUSH system = CDialog::OnCtlColor(pDC, pWnd, nCtlColor);
    if (!m_bVisualManagerStyle || !FollowsLooks(nCtlColor)) return system;
    if (m_brFace.m_hObject == nullptr || m_clrFace != globalData.clrBarFace) {
        m_clrFace = globalData.clrBarFace;
        m_brFace.DeleteObject();
        m_brFace.CreateSolidBrush(m_clrFace);
    }
    const bool enabled = pWnd == nullptr || pWnd->IsWindowEnabled();
    pDC->SetTextColor(enabled ? globalData.clrBarText : globalData.clrGrayedText);
    pDC->SetBkColor(m_clrFace);
    return m_brFace;
}

LRESULT CBCGPDialog::OnNcHitTest(CPoint point) {
    const LRESULT where = CDialog::OnNcHitTest(point);
    return m_bDragClientArea && where == HTCLIENT ? HTCAPTION : where;
}
