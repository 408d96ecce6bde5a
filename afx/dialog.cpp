#include "afx/dialog.h"

#include <utility>

#include "afx/app.h"
#include "afx/exception.h"
#include "afx/module.h"

IMPLEMENT_DYNAMIC(CDialog, CWnd)

namespace {
// The dialog whose window is being made on this thread, until a message names the window.
constinit thread_local CDialog* t_creatingDialog = nullptr;

LPCDLGTEMPLATE LoadTemplate(LPCSTR name, HINSTANCE& instance) {
    instance = AfxFindResourceHandle(name, RT_DIALOG);
    const HRSRC resource = ::FindResourceA(instance, name, RT_DIALOG);
    return resource != nullptr ? static_cast<LPCDLGTEMPLATE>(::LockResource(::LoadResource(instance, resource))) : nullptr;
}

// What a modal dialog disables: the top-level window that holds the parent.
HWND OwnerOf(CWnd* parent) {
    HWND window = parent != nullptr ? parent->GetSafeHwnd() : nullptr;
    while (window != nullptr && (::GetWindowLongPtrA(window, GWL_STYLE) & WS_CHILD) != 0) window = ::GetParent(window);
    return window;
}
}  // namespace

CDialog::CDialog(LPCSTR lpszTemplateName, CWnd* pParentWnd) : m_pParentWnd(pParentWnd) {
    if (IS_INTRESOURCE(lpszTemplateName))
        m_id = static_cast<UINT>(reinterpret_cast<ULONG_PTR>(lpszTemplateName));
    else
        m_name = lpszTemplateName;
}
CDialog::CDialog(UINT nIDTemplate, CWnd* pParentWnd) : m_pParentWnd(pParentWnd), m_id(nIDTemplate) {}

CDialog::~CDialog() {
    if (m_hWnd != nullptr) DestroyWindow();
}

BOOL CDialog::Create(LPCSTR lpszTemplateName, CWnd* pParentWnd) {
    HINSTANCE instance = nullptr;
    const LPCDLGTEMPLATE source = LoadTemplate(lpszTemplateName, instance);
    m_pParentWnd = pParentWnd;
    return source != nullptr && CreateFrom(instance, source, pParentWnd != nullptr ? pParentWnd->GetSafeHwnd() : nullptr);
}
BOOL CDialog::Create(UINT nIDTemplate, CWnd* pParentWnd) { return Create(MAKEINTRESOURCEA(nIDTemplate), pParentWnd); }

BOOL CDialog::CreateIndirect(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd) {
    m_pParentWnd = pParentWnd;
    return CreateFrom(AfxGetInstanceHandle(), lpDialogTemplate, pParentWnd != nullptr ? pParentWnd->GetSafeHwnd() : nullptr);
}

BOOL CDialog::InitModalIndirect(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd) {
    m_template = lpDialogTemplate;
    if (pParentWnd != nullptr) m_pParentWnd = pParentWnd;
    return m_template != nullptr;
}

BOOL CDialog::CreateFrom(HINSTANCE instance, LPCDLGTEMPLATE source, HWND parent) {
    if (m_hWnd != nullptr || source == nullptr) return FALSE;
    CDialog* const outer = std::exchange(t_creatingDialog, this);
    const HWND window =
        ::CreateDialogIndirectParamA(instance, source, parent, &CDialog::DialogProc, reinterpret_cast<LPARAM>(this));
    const bool waiting = std::exchange(t_creatingDialog, outer) == this;
    if (window == nullptr && waiting) PostNcDestroy();  // there was not even a first message
    return window != nullptr;
}

INT_PTR CALLBACK CDialog::DialogProc(HWND window, UINT message, WPARAM, LPARAM) {
    if (t_creatingDialog != nullptr && CWnd::FromHandlePermanent(window) == nullptr)
        std::exchange(t_creatingDialog, nullptr)->Attach(window);
    if (message != WM_INITDIALOG) return FALSE;
    auto* const dialog = dynamic_cast<CDialog*>(CWnd::FromHandlePermanent(window));
    if (dialog == nullptr) return TRUE;
    // An exception must not pass through the system's own frames.
    try {
        return dialog->OnInitDialog();
    } catch (CException* failure) {
        failure->ReportError();
        failure->Delete();
        if (dialog->m_hWnd != nullptr) dialog->EndDialog(-1);
        return FALSE;
    }
}

INT_PTR CDialog::DoModal() {
    HINSTANCE instance = AfxGetInstanceHandle();
    LPCDLGTEMPLATE source = m_template;
    if (source == nullptr) source = LoadTemplate(m_id != 0 ? MAKEINTRESOURCEA(m_id) : m_name.GetString(), instance);
    if (source == nullptr) return -1;
    m_result = -1;
    m_modal = true;
    const HWND owner = OwnerOf(m_pParentWnd);
    const bool disabled = owner != nullptr && ::IsWindowEnabled(owner);
    if (disabled) ::EnableWindow(owner, FALSE);
    try {
        if (CreateFrom(instance, source, owner)) RunModal();
    } catch (CException* failure) {
        failure->ReportError();
        failure->Delete();
        m_result = -1;
    }
    // The owner is enabled before the dialog goes, so that it is there to be activated.
    if (m_hWnd != nullptr) ::ShowWindow(m_hWnd, SW_HIDE);
    if (disabled && ::IsWindow(owner)) ::EnableWindow(owner, TRUE);
    if (disabled && ::IsWindow(owner) && m_hWnd != nullptr && ::GetActiveWindow() == m_hWnd) ::SetActiveWindow(owner);
    if (m_hWnd != nullptr) DestroyWindow();
    m_modal = false;
    return m_result;
}

void CDialog::RunModal() {
    bool shown = ::IsWindowVisible(m_hWnd) != FALSE;
    while (m_modal && m_hWnd != nullptr) {
        MSG message;
        if (!::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
            // A dialog that nobody has shown shows itself when there is nothing else to do.
            if (!std::exchange(shown, true)) {
                ::ShowWindow(m_hWnd, SW_SHOWNORMAL);
                ::UpdateWindow(m_hWnd);
                continue;
            }
            if (::GetMessageA(&message, nullptr, 0, 0) < 0) break;
        }
        if (message.message == WM_QUIT) {
            ::PostQuitMessage(static_cast<int>(message.wParam));
            m_result = -1;
            break;
        }
        if (!CWnd::WalkPreTranslateTree(m_hWnd, &message)) {
            ::TranslateMessage(&message);
            ::DispatchMessageA(&message);
        }
    }
}

void CDialog::EndDialog(int nResult) {
    m_result = nResult;
    m_modal = false;
    if (m_hWnd != nullptr) ::EndDialog(m_hWnd, nResult);
}

void CDialog::NextDlgCtrl() const { ::SendMessageA(m_hWnd, WM_NEXTDLGCTL, 0, 0); }
void CDialog::PrevDlgCtrl() const { ::SendMessageA(m_hWnd, WM_NEXTDLGCTL, 1, 0); }
void CDialog::GotoDlgCtrl(CWnd* pWndCtrl) {
    ::SendMessageA(m_hWnd, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(pWndCtrl->GetSafeHwnd()), TRUE);
}
void CDialog::SetDefID(UINT nID) { SendMessage(DM_SETDEFID, nID); }
DWORD CDialog::GetDefID() const { return static_cast<DWORD>(::SendMessageA(m_hWnd, DM_GETDEFID, 0, 0)); }
void CDialog::MapDialogRect(LPRECT lpRect) const { ::MapDialogRect(m_hWnd, lpRect); }

BOOL CDialog::OnInitDialog() {
    if (!UpdateData(FALSE)) {
        EndDialog(-1);
        return FALSE;
    }
    return TRUE;
}

BOOL CDialog::PreTranslateMessage(MSG* pMsg) {
    if (CWnd::PreTranslateMessage(pMsg)) return TRUE;
    return m_hWnd != nullptr && ::IsDialogMessageA(m_hWnd, pMsg);
}

void CDialog::OnOK() {
    if (UpdateData(TRUE)) EndDialog(IDOK);
}
void CDialog::OnCancel() { EndDialog(IDCANCEL); }

LRESULT CDialog::WindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (message != WM_COMMAND || HIWORD(wParam) != BN_CLICKED || (LOWORD(wParam) != IDOK && LOWORD(wParam) != IDCANCEL))
        return CWnd::WindowProc(message, wParam, lParam);
    // The message map may have its own idea of the two buttons.
    LRESULT result = 0;
    if (OnWndMsg(message, wParam, lParam, &result)) return result;
    LOWORD(wParam) == IDOK ? OnOK() : OnCancel();
    return 0;
}
