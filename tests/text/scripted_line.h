// A line in simulated time whose far end is written down beforehand, or answers. Nothing sleeps; waiting moves the clock. As with
// a real port, what nobody fetches waits in a queue that holds so much and drops what comes after that. One thread.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <string_view>

#include "comm/comm_exception.h"
#include "comm/transport.h"

class ScriptedLine : public ITransport {
public:
    static constexpr size_t kQueue = 4096;

    // In seconds since the beginning.
    double Seconds() const { return std::chrono::duration<double>(m_now.time_since_epoch()).count(); }
    // These bytes come then, or after what was said to come before.
    void Come(double time, std::string_view bytes) {
        if (bytes.empty()) return;
        const TimePoint at = std::max(At(time), m_coming.empty() ? TimePoint{} : m_coming.back().time);
        m_coming.push_back({at, std::string(bytes)});
    }
    void Idle(double until) { m_now = std::max(m_now, At(until)); }
    // What the far end does with a question.
    std::function<void(std::string_view)> onSend;
    double abortAt = 0;  // 0: never
    size_t opened = 0;

    void Open(const char*, const CLineSettings&, TimePoint) override {
        m_waiting.clear();
        while (!m_coming.empty() && m_coming.front().time <= m_now) m_coming.pop_front();
        m_open = true;
        ++opened;
    }
    void Close() override { m_open = false; }
    bool IsOpen() const override { return m_open; }
    TimePoint Now() override { return m_now; }
    void Send(std::span<const BYTE> bytes, TimePoint) override {
        if (onSend) onSend({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }
    bool Receive(std::vector<BYTE>& received, TimePoint until) override {
        Fill();
        if (m_waiting.empty() && !m_coming.empty() && m_coming.front().time <= until) {
            m_now = std::max(m_now, m_coming.front().time);
            Fill();
        } else if (m_waiting.empty()) {
            m_now = std::max(m_now, until);
        }
        if (abortAt != 0 && m_now >= At(abortAt)) OrvikThrowCommException(CCommException::SessionAborted, nullptr);
        // In pieces, as ports give it.
        const size_t piece = std::min<size_t>(m_waiting.size(), 512);
        received.insert(received.end(), m_waiting.begin(), m_waiting.begin() + static_cast<std::ptrdiff_t>(piece));
        m_waiting.erase(0, piece);
        return piece > 0;
    }
    void Abort() override { abortAt = Seconds(); }

private:
    struct Piece {
        TimePoint time;
        std::string bytes;
    };
    static TimePoint At(double time) {
        return TimePoint(std::chrono::duration_cast<Duration>(std::chrono::duration<double>(time)));
    }
    void Fill() {
        for (; !m_coming.empty() && m_coming.front().time <= m_now; m_coming.pop_front())
            m_waiting += m_coming.front().bytes.substr(0, kQueue - std::min(kQueue, m_waiting.size()));
    }

    TimePoint m_now{};
    std::deque<Piece> m_coming;
    std::string m_waiting;
    bool m_open = false;
};
