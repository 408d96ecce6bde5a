// Which task runs next: the scheduler without its clock and timer, which OrvikShedule adds. One thread.
#pragma once

#include "afx/array.h"
#include "comm/task.h"

class CVXTSheduler {
public:
    struct TASKDESC {
        CVXTTask* pTask;  // null once withdrawn: the entry goes when no task is executing
        BOOL bRunning;    // OnShedule is executing
    };

    // The one that Start and OrvikShedule use. It lives until the process ends, so that tasks that are static data of other
    // modules may still withdraw.
    static CVXTSheduler& Process();

    BOOL Register(CVXTTask* task);  // FALSE if it is registered
    void Withdraw(const CVXTTask* task);
    bool IsRegistered(const CVXTTask* task) const { return Find(task) != kNone; }
    bool IsEmpty() const { return m_tasks.IsEmpty() != 0; }
    INT_PTR GetSize() const { return m_tasks.GetSize(); }  // entries, withdrawn ones included

    // Runs the first task that is due at `now`, looking from the position where the last pass ended. TRUE when not every entry
    // was found idle. A task that throws stays marked as running.
    BOOL Pass(const CVXTTime& now);

private:
    static constexpr INT_PTR kNone = -1;

    INT_PTR Find(const CVXTTask* task) const;
    INT_PTR Choose(const CVXTTime& now, INT_PTR& idle);
    void Run(INT_PTR index);

    CArray<TASKDESC> m_tasks;  // in the order of registration
    INT_PTR m_position = 0;    // where the next pass looks first
    int m_running = 0;         // calls of OnShedule in progress; entries keep their index while there are any
};
