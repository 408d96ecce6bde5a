#include "comm/sheduler_internal.h"

CVXTSheduler& CVXTSheduler::Process() {
    static CVXTSheduler* const s_sheduler = new CVXTSheduler;
    return *s_sheduler;
}

INT_PTR CVXTSheduler::Find(const CVXTTask* task) const {
    for (INT_PTR i = 0; i < m_tasks.GetSize(); ++i)
        if (m_tasks[i].pTask == task) return i;
    return kNone;
}

BOOL CVXTSheduler::Register(CVXTTask* task) {
    if (IsRegistered(task)) return FALSE;
    m_tasks.Add({task, FALSE});
    return TRUE;
}

void CVXTSheduler::Withdraw(const CVXTTask* task) {
    const INT_PTR index = Find(task);
    if (index != kNone) m_tasks[index].pTask = nullptr;
}

// The index of the entry to run, or kNone. Every entry is looked at once at most: looking either removes it or moves on.
INT_PTR CVXTSheduler::Choose(const CVXTTime& now, INT_PTR& idle) {
    for (INT_PTR left = m_tasks.GetSize(); left > 0 && !m_tasks.IsEmpty(); --left) {
        if (m_position >= m_tasks.GetSize()) m_position = 0;
        const TASKDESC& entry = m_tasks[m_position];
        if (entry.pTask == nullptr) {
            if (m_running == 0)
                m_tasks.RemoveAt(m_position);
            else
                ++m_position;
            continue;
        }
        if (!entry.bRunning) {
            if (entry.pTask->IsDue(now)) return m_position;
            ++idle;
        }
        ++m_position;
    }
    return kNone;
}

void CVXTSheduler::Run(INT_PTR index) {
    struct InProgress {
        int& count;
        explicit InProgress(int& running) : count(running) { ++count; }
        ~InProgress() { --count; }
    };
    CVXTTask* const task = m_tasks[index].pTask;
    task->m_bShedule = FALSE;
    m_tasks[index].bRunning = TRUE;
    const InProgress inProgress(m_running);
    // The list may grow, and the task may be gone, when this returns.
    if (task->OnShedule()) {
        m_tasks[index].bRunning = FALSE;
        m_position = index + 1;
    } else {
        m_tasks[index].pTask = nullptr;
        m_position = index;
    }
}

BOOL CVXTSheduler::Pass(const CVXTTime& now) {
    INT_PTR idle = 0;
    const INT_PTR due = Choose(now, idle);
    if (due != kNone) Run(due);
    return idle < m_tasks.GetSize();
}
