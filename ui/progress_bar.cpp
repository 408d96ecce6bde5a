#include "ui/progress_bar.h"

#include "toolkit/progress_dlg.h"

namespace {
// The toolkit's dialog as this class uses it: in the toolkit's looks, and to be dragged by any free place.
class CProgressBarDlg : public CBCGPProgressDlg {
public:
    CProgressBarDlg() {
        EnableVisualManagerStyle();
        EnableDragClientArea();
    }
};

const char* TextOf(const char* text) { return text != nullptr ? text : ""; }
}  // namespace

CProgressBar::CProgressBar() = default;
CProgressBar::~CProgressBar() = default;

void CProgressBar::Start(LONG range, const char* caption, const char* message, const char* message2, BOOL silent, CWnd* parent,
                         BOOL flag) {
    m_bSilent = silent;
    if (m_pDialog != nullptr) {
        m_pDialog->SetRange(0, range);
        if (m_pDialog->m_hWnd != nullptr) m_pDialog->SetWindowText(TextOf(caption));
        m_pDialog->SetMessage(TextOf(message));
        m_pDialog->SetMessage2(TextOf(message2));
        return;
    }
    if (silent) return;
    CBCGPProgressDlgParams params;
    params.m_strCaption = TextOf(caption);
    params.m_strMessage = TextOf(message);
    params.m_strMessage2 = TextOf(message2);
    params.m_nRangeMax = range;
    params.m_bShowCancel = TRUE;
    params.m_bShowProgress = TRUE;
    params.m_bPumpMessages = FALSE;  // the caller says when
    params.m_bShowPercentage = flag;
    m_pDialog = std::make_unique<CProgressBarDlg>();
    if (!m_pDialog->Create(params, parent)) m_pDialog.reset();
}

void CProgressBar::SetRange(LONG min, LONG max) {
    if (m_pDialog != nullptr) m_pDialog->SetRange(min, max);
}

void CProgressBar::Feed(LONG pos, const char* message, const char* message2, BOOL pump) {
    if (m_pDialog != nullptr) {
        m_pDialog->SetPos(pos);
        if (message != nullptr) m_pDialog->SetMessage(message);
        if (message2 != nullptr) m_pDialog->SetMessage2(message2);
    }
    if (pump) Pump();
}

void CProgressBar::SetMessage(const char* text, BOOL pump) {
    if (m_pDialog != nullptr && text != nullptr) m_pDialog->SetMessage(text);
    if (pump) Pump();
}

void CProgressBar::SetMessage2(const char* text, BOOL pump) {
    if (m_pDialog != nullptr && text != nullptr) m_pDialog->SetMessage2(text);
    if (pump) Pump();
}

void CProgressBar::Pump() {
    if (m_pDialog != nullptr) {
        m_pDialog->PumpMessages();
        return;
    }
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_NOREMOVE)) {
        if (GetMessageA(&message, nullptr, 0, 0) == 0) {
            // The program is to end: its own loop must learn of it.
            PostThreadMessageA(GetCurrentThreadId(), WM_QUIT, message.wParam, 0);
            return;
        }
        DispatchMessageA(&message);
    }
}

BOOL CProgressBar::IsAborted() {
    if (m_bSilent) return FALSE;
    return m_pDialog == nullptr ? TRUE : m_pDialog->IsCancelled();
}

void CProgressBar::DisableAbort(BOOL disable) {
    if (m_pDialog != nullptr) m_pDialog->EnableCancel(!disable);
}
