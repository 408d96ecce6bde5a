// Where long work tells how far it has come, and hears whether it is still wanted. On the thread that works.
#pragma once

#include "host/words/console.h"
#include "platform/win32.h"
#include "ui/progress_bar.h"

class WorkProgress {
public:
    virtual ~WorkProgress() = default;
    // `done` of `total` parts, whatever they are; more than all counts as all. False: the work is to end, and leave no trace.
    virtual bool At(unsigned __int64 done, unsigned __int64 total) = 0;
};

// Thrown by work that has ended because it was not wanted any more.
struct WorkStopped {};

// For the command line: a silent progress bar, and a line on a terminal once the work has taken a while. Never ends the work.
class LineProgress : public WorkProgress {
public:
    explicit LineProgress(std::string text);  // UTF-8
    bool At(unsigned __int64 done, unsigned __int64 total) override;

private:
    std::string m_text;
    CProgressBar m_bar;
    ProgressLine m_line;
    const DWORD m_begun = GetTickCount();
    LONG m_percent = -1;
};
