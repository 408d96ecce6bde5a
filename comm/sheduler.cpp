#include "comm/sheduler_internal.h"

CVXTSheduler& CVXTSheduler::Process() {
    static CVXTSheduler* const s_sheduler = new CVXTSheduler;
    return *s_sheduler;
}

BOOL CVXTSheduler::Register(CVXTTask* task) {
    const auto [place, fresh] = m_entries.try_emplace(task, m_tasks.end());
    if (!fresh) return FALSE;
    place->second = m_tasks.insert(m_tasks.end(), {task, FALSE});
    if (m_position == m_tasks.end()) m_position = place->second;
    return TRUE;
}

void CVXTSheduler::Withdraw(const CVXTTask* task) {
    const auto place = m_entries.find(task);
    if (place == m_entries.end()) return;
    place->second->pTask = nullptr;
    m_entries.erase(place);
}

// The entry to run, or the end. Every entry is looked at once at most: looking either removes it or moves on.
CVXTSheduler::Entry CVXTSheduler::Choose(const CVXTTime& now, size_t& idle) {
    for (size_t left = m_tasks.size(); left > 0 && !m_tasks.empty(); --left) {
        if (m_position == m_tasks.end()) m_position = m_tasks.begin();
        const TASKDESC& entry = *m_position;
        if (entry.pTask == nullptr && m_running == 0) {
            m_position = m_tasks.erase(m_position);
            continue;
        }
        if (entry.pTask != nullptr && !entry.bRunning) {
            if (entry.pTask->IsDue(now)) return m_position;
            ++idle;
        }
        ++m_position;
    }
    return m_tasks.end();
}

void CVXTSheduler::Run(Entry entry) {
    struct InProgress {
        int& count;
        explicit InProgress(int& running) : count(running) { ++count; }
        ~InProgress() { --count; }
    };
    CVXTTask* const task = entry->pTask;
    task->m_bShedule = FALSE;
    entry->bRunning = TRUE;
    const InProgress inProgress(m_running);
    // The list may grow, and the task may be gone, when this returns.
    if (task->OnShedule()) {
        entry->bRunning = FALSE;
        m_position = std::next(entry);
    } else {
        if (entry->pTask != nullptr) Withdraw(entry->pTask);
        m_position = entry;
    }
}

BOOL CVXTSheduler::Pass(const CVXTTime& now) {
    size_t idle = 0;
    const Entry due = Choose(now, idle);
    if (due != m_tasks.end()) Run(due);
    return idle < m_tasks.size();
}
