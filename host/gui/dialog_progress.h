// Long work in the window: a progress dialog over it, at once for large work, else when the work has taken a while. While it
// stands, messages are handled, so that the window is drawn and moves; its user can only cancel. User-interface thread.
#pragma once

#include <string>

#include "host/app/work_progress.h"

class CWnd;

class DialogProgress : public WorkProgress {
public:
    // House text; the owner outlives this object, its window need not.
    DialogProgress(CWnd& owner, std::string caption, std::string message, bool large);
    // False also when the window goes or the program is to end.
    bool At(unsigned __int64 done, unsigned __int64 total) override;

private:
    CWnd& m_owner;
    std::string m_caption, m_message;
    CProgressBar m_bar;
    DWORD m_patience, m_last = GetTickCount();
    bool m_stopped = false;
};
