// The application object and its thread. One CWinApp at most in a program; it belongs to the thread that constructed it, the main
// thread.
#pragma once

#include "afx/string.h"
#include "afx/wnd.h"

class ORVIK_API CWinThread : public CCmdTarget {
    DECLARE_DYNAMIC(CWinThread)

public:
    CWinThread();

    virtual BOOL InitInstance() { return FALSE; }
    // Handles the thread's messages until the quit message, then returns ExitInstance().
    virtual int Run();
    // Before a message goes to its window; non-zero keeps it from there. Asks the window of the message and all above it.
    virtual BOOL PreTranslateMessage(MSG* pMsg);
    // Waits for one message and handles it; 0 for the quit message.
    virtual BOOL PumpMessage();
    virtual int ExitInstance();

    DWORD m_nThreadID;  // of the thread that made this object
    // Set by the application once its main window is there, null before; not owned.
    CWnd* m_pMainWnd = nullptr;
    virtual CWnd* GetMainWnd() { return m_pMainWnd; }

protected:
    MSG m_msgCur = {};
};

class ORVIK_API CWinApp : public CWinThread {
    DECLARE_DYNAMIC(CWinApp)

public:
    // A null name becomes the program's file name without its extension. A second application object at the same time is an
    // invalid-argument exception.
    explicit CWinApp(LPCSTR lpszAppName = nullptr);
    ~CWinApp() override;

    // Shows a message box for AfxMessageBox. An application without a screen, or with a better way to tell its user, overrides
    // this.
    virtual int DoMessageBox(LPCSTR lpszPrompt, UINT nType, UINT nIDPrompt);

    LPCSTR m_pszAppName;

private:
    CString m_name;
};

// The application object, or null.
ORVIK_API CWinApp* AfxGetApp();
// The application's main window; null without one, and without an application object.
ORVIK_API CWnd* AfxGetMainWnd();
// The application's name; of the program's file when there is no application object.
ORVIK_API LPCSTR AfxGetAppName();
// The thread of the application object; without one, the thread that loaded this module.
ORVIK_API DWORD AfxGetMainThreadID();
