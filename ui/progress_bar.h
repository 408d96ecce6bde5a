// Progress in one line of code: drives the toolkit's progress dialog, or runs silent without any window, for work that may have a
// user or none. On the user-interface thread. Owns its dialog, which goes with it.
#pragma once

#include <memory>

#include "afx/string.h"

class CBCGPProgressDlg;
class CWnd;

class ORVIK_API CProgressBar {
public:
    CProgressBar();
    ~CProgressBar();
    CProgressBar(const CProgressBar&) = delete;
    CProgressBar& operator=(const CProgressBar&) = delete;

    // Whether it was started: silent, or with a dialog.
    operator bool() const { return m_bSilent || m_pDialog != nullptr; }

    // From 0 to `range`. Not silent: opens a dialog over `parent`, `flag` saying whether it shows percentages; without `message2`
    // there is never a second line. A dialog that is open begins anew with these texts. Null texts are empty.
    void Start(LONG range, const char* caption, const char* message, const char* message2, BOOL silent, CWnd* parent, BOOL flag);
    void SetRange(LONG min, LONG max);
    // Null texts stay as they are. With `pump` waiting messages are handled, without a dialog too.
    void Feed(LONG pos, const char* message, const char* message2, BOOL pump);
    void SetMessage(const char* text, BOOL pump);
    void SetMessage2(const char* text, BOOL pump);
    // Whether the user has cancelled since the last call. Never when silent, always when there is no dialog.
    BOOL IsAborted();
    // Disables or enables Cancel, and with it Escape and closing.
    void DisableAbort(BOOL disable);

private:
    void Pump();

    BOOL m_bSilent = FALSE;
    std::unique_ptr<CBCGPProgressDlg> m_pDialog;
};
