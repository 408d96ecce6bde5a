// Which task runs next: the scheduler without its clock and timer, which OrvikShedule adds. One thread.
#pragma once

#include <list>
#include <unordered_map>

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
    bool IsRegistered(const CVXTTask* task) const { return m_entries.contains(task); }
    bool IsEmpty() const { return m_tasks.empty(); }
    INT_PTR GetSize() const { return static_cast<INT_PTR>(m_tasks.size()); }  // entries, withdrawn ones included

    // Runs the first task that is due at `now`, looking from the position where the last pass ended. TRUE when not every entry
    // was found idle. A task that throws stays marked as running.
    BOOL Pass(const CVXTTime& now);

private:
    using Entry = std::list<TASKDESC>::iterator;

    Entry Choose(const CVXTTime& now, size_t& idle);
    void Run(Entry entry);

    std::list<TASKDESC> m_tasks;  // in the order of registration; nothing of it costs more with more tasks
    std::unordered_map<const CVXTTask*, Entry> m_entries;  // of those that are not withdrawn
    Entry m_position = m_tasks.end();                      // where the next pass looks first; at the end, what comes next
    int m_running = 0;                                     // calls of OnShedule in progress; no entry goes while there are any
};
