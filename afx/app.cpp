#include "afx/app.h"

#include "afx/exception.h"
#include "afx/message_box.h"
#include "afx/module.h"

IMPLEMENT_DYNAMIC(CWinThread, CCmdTarget)
IMPLEMENT_DYNAMIC(CWinApp, CWinThread)

namespace {
const DWORD g_loadingThread = GetCurrentThreadId();

CString ProgramName() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    CString name(path);
    const auto folder = name.GetView().find_last_of("\\/");
    if (folder != std::string_view::npos) name.Delete(0, static_cast<int>(folder) + 1);
    const int dot = name.ReverseFind('.');
    return dot > 0 ? name.Left(dot) : name;
}
}  // namespace

CWinThread::CWinThread() : m_nThreadID(GetCurrentThreadId()) {}

BOOL CWinThread::PreTranslateMessage(MSG* pMsg) {
    return CWnd::WalkPreTranslateTree(m_pMainWnd != nullptr ? m_pMainWnd->m_hWnd : nullptr, pMsg);
}
int CWinThread::ExitInstance() { return static_cast<int>(m_msgCur.wParam); }

BOOL CWinThread::PumpMessage() {
    // -1 is a failure that would come again at once.
    if (GetMessageA(&m_msgCur, nullptr, 0, 0) <= 0) return FALSE;
    if (!PreTranslateMessage(&m_msgCur)) {
        TranslateMessage(&m_msgCur);
        DispatchMessageA(&m_msgCur);
    }
    return TRUE;
}

int CWinThread::Run() {
    while (PumpMessage()) {
    }
    return ExitInstance();
}

CWinApp::CWinApp(LPCSTR lpszAppName) : m_name(lpszAppName != nullptr ? CString(lpszAppName) : ProgramName()) {
    AFX_MODULE_STATE* state = AfxGetAppModuleState();
    if (state->m_pCurrentWinApp != nullptr) AfxThrowInvalidArgException();
    m_pszAppName = m_name;
    state->m_pCurrentWinApp = this;
    state->m_lpszCurrentAppName = m_pszAppName;
}

CWinApp::~CWinApp() {
    AFX_MODULE_STATE* state = AfxGetAppModuleState();
    if (state->m_pCurrentWinApp != this) return;
    state->m_pCurrentWinApp = nullptr;
    state->m_lpszCurrentAppName = nullptr;
}

int CWinApp::DoMessageBox(LPCSTR lpszPrompt, UINT nType, UINT) {
    return MessageBoxA(nullptr, lpszPrompt, AfxGetAppName(), nType);
}

CWinApp* AfxGetApp() { return AfxGetAppModuleState()->m_pCurrentWinApp; }

CWnd* AfxGetMainWnd() {
    const CWinApp* const app = AfxGetApp();
    return app != nullptr ? app->m_pMainWnd : nullptr;
}

LPCSTR AfxGetAppName() {
    if (const CWinApp* app = AfxGetApp()) return app->m_pszAppName;
    static const CString s_name = ProgramName();
    return s_name;
}

DWORD AfxGetMainThreadID() {
    const CWinApp* app = AfxGetApp();
    return app != nullptr ? app->m_nThreadID : g_loadingThread;
}

int AfxMessageBox(LPCSTR lpszText, UINT nType, UINT nIDHelp) {
    constexpr UINT kIcons = 0xF0;
    if ((nType & kIcons) == 0) nType |= MB_ICONEXCLAMATION;
    if (CWinApp* app = AfxGetApp()) return app->DoMessageBox(lpszText, nType, nIDHelp);
    return MessageBoxA(nullptr, lpszText, AfxGetAppName(), nType);
}
