#include "comm/task.h"

#include "comm/sheduler_internal.h"

namespace {
constexpr UINT kTimerPeriod = 200;  // ms
UINT_PTR g_timer = 0;               // 0: none

void StopTimer() {
    if (g_timer != 0) KillTimer(nullptr, g_timer);
    g_timer = 0;
}

void CALLBACK OnTimer(HWND, UINT, UINT_PTR, DWORD) { OrvikShedule(); }

void StartTimer() {
    StopTimer();  // a pass inside a task has started one already
    g_timer = SetTimer(nullptr, 0, kTimerPeriod, OnTimer);
}
}  // namespace

BOOL OrvikShedule() {
    StopTimer();
    CVXTSheduler& sheduler = CVXTSheduler::Process();
    const BOOL busy = sheduler.IsEmpty() ? FALSE : sheduler.Pass(CVXTTime::Now());
    StartTimer();
    return busy;
}

CVXTTask::CVXTTask() = default;
CVXTTask::CVXTTask(const CVXTTask& other) = default;
CVXTTask& CVXTTask::operator=(const CVXTTask& other) = default;
CVXTTask::~CVXTTask() { Stop(); }

BOOL CVXTTask::Start(DWORD dwMilliseconds) {
    RaiseShedule(dwMilliseconds);
    return CVXTSheduler::Process().Register(this);
}

BOOL CVXTTask::Start(CVXTTime when) {
    RaiseShedule(when);
    return CVXTSheduler::Process().Register(this);
}

void CVXTTask::RaiseShedule(DWORD dwMilliseconds) {
    RaiseShedule(CVXTTime::Now() + CVXTTimeSpan(dwMilliseconds, TST_MILLISECONDS));
}

void CVXTTask::RaiseShedule(CVXTTime when) {
    m_tmShedule = when;
    m_bShedule = TRUE;
}

BOOL CVXTTask::GetShedule() {
    if (!IsDue(CVXTTime::Now())) return FALSE;
    m_bShedule = FALSE;
    return TRUE;
}

BOOL CVXTTask::IsRunning() const { return CVXTSheduler::Process().IsRegistered(this); }
void CVXTTask::Stop() { CVXTSheduler::Process().Withdraw(this); }
