// Sends what a station records to one sink: a thread that walks the loggers' recordings, hands their readings over in batches, and
// keeps the place up to which the sink has taken them. Readings are made by others, which never wait for it.
//
// A sink that fails is let go, and reached again after pauses that grow from 1 to 30 s, for ever. Made, asked and destroyed on the
// main thread.
#pragma once

#include <atomic>
#include <condition_variable>
#include <limits>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "host/sending/recording_queue.h"
#include "host/sending/sent_places.h"
#include "record/sink.h"

struct SinkReport {
    bool reached = false;
    __int64 since = 0;               // us since 1970, of that
    std::string why;                 // it is not reached, or does not take what it gets; UTF-8
    unsigned __int64 sent = 0;       // readings that arrived, of this run
    unsigned __int64 behind = 0;     // bytes of recordings that have not
    __int64 upTo = 0;                // the time of the latest reading that arrived; 0: none yet
    std::vector<std::string> sentences;  // for the user, since this was last asked
};

class SinkSender {
public:
    struct Plan {
        std::string key;     // in the station
        std::string family;
        std::string places;  // the file in which the places are kept; empty: they are not
        std::vector<RecordingQueue::Plan> loggers;
    };
    // Begins at once. A Failure if the system has no thread for it.
    SinkSender(Plan plan, std::unique_ptr<ISink> sink);
    // Ends now, if Finish has not been called; what is under way does not count.
    ~SinkSender();
    SinkSender(const SinkSender&) = delete;
    SinkSender& operator=(const SinkSender&) = delete;

    // Other loggers than before, or more of them; those that stay go on where they are.
    void SetLoggers(std::vector<RecordingQueue::Plan> loggers);
    // Loggers have begun other files: they are looked for now, rather than after a while.
    void LookForFiles();
    // What the sink is told of the station (ISink::Tell).
    void Tell(std::shared_ptr<const CSinkStatus> status);
    SinkReport Report();

    // Nothing more will be recorded: sends what is left, for so many ms at most, and ends. True: all of it has arrived.
    bool Finish(DWORD most);

private:
    using Clock = std::chrono::steady_clock;
    void Main();
    bool Round();
    bool Deliver();
    void Connect();
    void Lose(const std::string& why);
    void Enter(bool reached, const std::string& why);
    void TakeLoggers();
    void KeepPlaces();
    void Count();
    template <class Work>
    bool Try(Work work);

    const Plan m_plan;
    const std::unique_ptr<ISink> m_sink;

    std::mutex m_lock;
    std::condition_variable m_wake;
    // Under the lock.
    std::vector<RecordingQueue::Plan> m_loggers;
    bool m_newLoggers = false, m_newFiles = false, m_finish = false, m_quit = false, m_ended = false;
    std::shared_ptr<const CSinkStatus> m_status;
    SinkReport m_report;

    // The thread's.
    SentPlaces m_places;
    std::vector<std::unique_ptr<RecordingQueue>> m_queues;
    std::shared_ptr<const CSinkStatus> m_told;
    size_t m_next = 0;  // the queue with which the next batch begins
    bool m_connected = false, m_allSent = false, m_kept = false;
    unsigned m_failures = 0;  // in a row
    size_t m_room;            // values of the next batch
    size_t m_tooMuch = std::numeric_limits<size_t>::max();  // of one that did not arrive
    Clock::time_point m_retryAt{}, m_toldAt{};
    unsigned __int64 m_sentBefore = 0;  // by queues that are gone
    std::string m_placesError;
    std::thread m_thread;
};
