// The thread that owns a port: it reads the loggers there in turn, each when it is due, the one that has waited longest first. A
// logger that does not answer costs the others its time-outs, less and less often.
//
// Made, asked and destroyed on the main thread.
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "host/measurement/recording_clock.h"
#include "host/station/logger_run.h"

class PortThread {
public:
    // A Failure if the system has no thread for it.
    PortThread(std::string port, IMeasurementClock& clock);
    // Waits for its end. All of its loggers have ended before, or are to be ended.
    ~PortThread();
    PortThread(const PortThread&) = delete;
    PortThread& operator=(const PortThread&) = delete;

    const std::string& Port() const { return m_port; }
    // From now on it is read. It must live until it is over.
    void Add(LoggerRun& run);
    // Something was asked of one of the loggers (LoggerRun::Abort).
    void Wake();
    // A logger has been at one reading for longer than any can take.
    bool Hangs() const { return m_clock.Steady() > m_until; }
    // Leaves a thread that hangs to itself: the process is about to end.
    void Abandon() { m_thread.detach(); }

private:
    void Main();
    void TakeNew();

    const std::string m_port;
    IMeasurementClock& m_clock;
    HANDLE m_wake;
    std::mutex m_lock;
    std::vector<LoggerRun*> m_new;   // under the lock
    std::vector<LoggerRun*> m_runs;  // the thread's
    std::atomic<bool> m_quit = false;
    std::atomic<__int64> m_until;  // steady; by when it is to be heard of again
    std::thread m_thread;
};
