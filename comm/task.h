// Periodic work on the user-interface thread, without threads of its own: a task is an object with a due time, registered with
// the one scheduler of the process. Every pass of the scheduler runs at most one due task, in turn. ("Shedule" is spelled so.)
// Everything here belongs to the user-interface thread. The scheduler does not own its tasks; a task that dies is withdrawn.
#pragma once

#include "platform/win32.h"
#include "time/time_point.h"

// One pass. The first call, which is the host's to make on its user-interface thread, starts a thread timer of 200 ms, and every
// pass starts it anew; so passes go on as long as that thread handles its messages. TRUE when not every registered task was found
// idle in this pass (not due, or not armed); FALSE when nothing is registered.
// What a task throws comes out of this call. The timer then rests until the next call, and the task is not run again unless it is
// stopped and started.
ORVIK_API BOOL OrvikShedule();

class ORVIK_API CVXTTask {
public:
    CVXTTask();  // armed and due, not registered
    // A copy is armed as its source is, and not registered because of that; an assignment leaves the registration alone.
    CVXTTask(const CVXTTask& other);
    CVXTTask& operator=(const CVXTTask& other);

    // The work. The task is disarmed before: to be run again it calls RaiseShedule. FALSE withdraws it, TRUE keeps it registered.
    // It may start and stop tasks, destroy them (itself too), and handle messages.
    virtual BOOL OnShedule() = 0;
    virtual ~CVXTTask();

    // Sets the due time, arms, and registers behind the tasks that are registered already. FALSE when it was registered before:
    // then only the due time moves.
    BOOL Start(DWORD dwMilliseconds);  // from now
    BOOL Start(CVXTTime when);
    // Sets the due time and arms; a task that is not registered stays so.
    void RaiseShedule(DWORD dwMilliseconds);  // from now, which is taken to the millisecond
    void RaiseShedule(CVXTTime when);

    // For polling without the scheduler: TRUE once for a due time that has come, which disarms.
    BOOL GetShedule();
    BOOL GetSheduleState() const { return m_bShedule; }  // armed
    BOOL IsRunning() const;                              // registered, executing or not
    void Stop();                                         // withdraws; an armed task stays armed

protected:
    BOOL m_bShedule = TRUE;
    CVXTTime m_tmShedule;  // due time

private:
    friend class CVXTSheduler;
    bool IsDue(const CVXTTime& now) const { return m_bShedule && now >= m_tmShedule; }
};
