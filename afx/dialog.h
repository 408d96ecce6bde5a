// Dialogs from templates: modal ones, which run until they are ended, and modeless ones, which live beside their owner.
// On the thread that shows them. The object of a modeless dialog outlives its window, unless PostNcDestroy deletes it.
#pragma once

#include "afx/data_exchange.h"
#include "afx/wnd.h"

class ORVIK_API CDialog : public CWnd {
    DECLARE_DYNAMIC(CDialog)

public:
    CDialog() = default;  // for Create, or InitModalIndirect and DoModal
    explicit CDialog(LPCSTR lpszTemplateName, CWnd* pParentWnd = nullptr);
    explicit CDialog(UINT nIDTemplate, CWnd* pParentWnd = nullptr);
    ~CDialog() override;

    // A modeless dialog; 0 when there is no such template or the window is refused. Templates are searched in the module that
    // holds them, in the calling thread's language.
    virtual BOOL Create(LPCSTR lpszTemplateName, CWnd* pParentWnd = nullptr);
    virtual BOOL Create(UINT nIDTemplate, CWnd* pParentWnd = nullptr);
    virtual BOOL CreateIndirect(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd = nullptr);
    // The template stays the caller's and must live until DoModal returns.
    BOOL InitModalIndirect(LPCDLGTEMPLATE lpDialogTemplate, CWnd* pParentWnd = nullptr);

    // Shows the dialog, its owner disabled, and handles messages until EndDialog: what that was given. -1 when the dialog cannot
    // be made, when its window is destroyed, and at the quit message, which stays in the queue for the loop outside.
    virtual INT_PTR DoModal();
    // Ends a modal dialog once the message under way is done; a modeless one is only hidden.
    void EndDialog(int nResult);

    void NextDlgCtrl() const;
    void PrevDlgCtrl() const;
    void GotoDlgCtrl(CWnd* pWndCtrl);
    void SetDefID(UINT nID);
    DWORD GetDefID() const;
    void MapDialogRect(LPRECT lpRect) const;

    // When the controls are there and the dialog is not yet shown; exchanges data into the controls. 0 keeps the system from
    // giving the focus to the first control, because this member has given it to another.
    virtual BOOL OnInitDialog();
    // The dialog's keys: tab order, mnemonics, Enter and Escape.
    BOOL PreTranslateMessage(MSG* pMsg) override;

protected:
    // Enter and the button with id IDOK: exchanges data out of the controls and, when that succeeds, ends with IDOK.
    virtual void OnOK();
    // Escape, the button with id IDCANCEL and closing: ends with IDCANCEL.
    virtual void OnCancel();
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override;

    CWnd* m_pParentWnd = nullptr;

private:
    static INT_PTR CALLBACK DialogProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    BOOL CreateFrom(HINSTANCE instance, LPCDLGTEMPLATE source, HWND parent);
    void RunModal();

    UINT m_id = 0;
    CString m_name;
    LPCDLGTEMPLATE m_template = nullptr;
    INT_PTR m_result = -1;
    bool m_modal = false;
};
