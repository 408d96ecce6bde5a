// What a logger's thread tells the main thread: what the logger does, what was read and what is missing, and sentences for the
// user.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "host/measurement/gap_keeper.h"
#include "platform/win32.h"

enum class LoggerState : WORD {
    Starting,
    Reads,
    Partly,  // some channels fail
    Silent,  // nothing comes, or its port is away
    NoFile,  // its recording cannot be written
    Over,    // it has ended: nothing is read any more
};

struct LoggerReport {
    LoggerState state = LoggerState::Starting;
    __int64 since = 0;                                    // us since 1970, of the state
    std::string why;                                      // of a state that is not well; UTF-8
    unsigned __int64 made = 0, missing = 0, waiting = 0;  // readings
    std::vector<GapKeeper::Count> causes;
    double late = 0, veryLate = 0;  // us that half of the readings, and 99 of 100, did not pass
    __int64 latest = 0;             // us, of all
    struct Last {
        double value = 0;
        __int64 time = 0;  // us since 1970; 0: there was none yet
    };
    std::vector<Last> last;  // by channel
    std::string file;        // that is recorded into
};

// The latest report, and the sentences since the last one that was taken. Any thread; whoever puts one says so to the other side
// when Put tells that nobody has yet, so that one message waits for a logger however many reports it gives.
class ReportBox {
public:
    bool Put(LoggerReport report) {
        const std::lock_guard lock(m_lock);
        m_report = std::move(report);
        return !std::exchange(m_told, true);
    }
    bool Put(std::string sentence) {
        const std::lock_guard lock(m_lock);
        constexpr size_t kMost = 1000;  // that wait; a main thread that stands still must not cost all memory
        if (m_sentences.size() < kMost) m_sentences.push_back(std::move(sentence));
        return !std::exchange(m_told, true);
    }
    void Take(LoggerReport& report, std::vector<std::string>& sentences) {
        const std::lock_guard lock(m_lock);
        report = m_report;
        sentences = std::exchange(m_sentences, {});
        m_told = false;
    }
    // Nobody could be told: the next one tries again.
    void NotTold() {
        const std::lock_guard lock(m_lock);
        m_told = false;
    }

private:
    std::mutex m_lock;
    LoggerReport m_report;
    std::vector<std::string> m_sentences;
    bool m_told = false;
};
