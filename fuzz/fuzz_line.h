// A line in simulated time for loggers that are asked, whose far end answers at once and whose answers come damaged, cut, late or
// not at all, as the input says. Nothing sleeps; waiting moves the clock.
#pragma once

#include <algorithm>
#include <cmath>
#include <map>
#include <span>
#include <utility>
#include <vector>

#include "comm/comm_exception.h"
#include "comm/transport.h"
#include "frame/numeric_arrays.h"
#include "fuzz/fuzz_support.h"

namespace fuzz {
// The input, byte by byte; zeros behind its end.
class Input {
public:
    Input(const uint8_t* data, size_t size) : m_data(data, size) {}
    BYTE Next() {
        if (m_at == m_data.size()) return 0;
        return m_data[m_at++];
    }
    bool IsOver() const { return m_at == m_data.size(); }

private:
    std::span<const uint8_t> m_data;
    size_t m_at = 0;
};

class DamagedLine : public ITransport {
public:
    // What may befall an answer.
    struct Harm {
        int flips = 3;              // bits at most that are turned
        size_t firstFlippable = 0;  // in its bytes from this one on
        size_t flippable = 0;       // so many of them; 0: all
        bool stray = true;          // bytes in front of it
        bool twice = false;         // it comes twice
        int latest = 255;           // tenths of a second
    };
    DamagedLine(Input& input, const Harm& harm) : m_input(input), m_harm(harm) {}

    // What was sent since the last call, by channel.
    std::multimap<size_t, double> TakeSent() { return std::exchange(m_sent, {}); }

    void Open(const char*, const CLineSettings&, TimePoint) override {
        m_open = true;
        m_coming.clear();
    }
    void Close() override { m_open = false; }
    bool IsOpen() const override { return m_open; }
    bool IsShared() const override { return true; }
    TimePoint Now() override { return m_now; }
    void Abort() override {}

    void Send(std::span<const BYTE> bytes, TimePoint) override {
        Check();
        Damage(AnswerTo(bytes, m_sent));
    }
    bool Receive(std::vector<BYTE>& received, TimePoint until) override {
        Check();
        if (m_coming.empty() || m_coming.begin()->first > until) {
            m_now = std::max(m_now, until);
            return false;
        }
        m_now = std::max(m_now, m_coming.begin()->first);
        const auto& bytes = m_coming.begin()->second;
        received.insert(received.end(), bytes.begin(), bytes.end());
        m_coming.erase(m_coming.begin());
        return true;
    }

protected:
    // The far end's answer; the values in it are added to `sent`.
    virtual std::vector<BYTE> AnswerTo(std::span<const BYTE> asked, std::multimap<size_t, double>& sent) = 0;

private:
    void Check() {
        if (!m_open) OrvikThrowCommException(CCommException::DeviceNotOpen, nullptr);
    }
    void Damage(std::vector<BYTE> answer) {
        if (answer.empty()) return;
        TimePoint when = m_now + std::chrono::milliseconds(20);
        switch (m_input.Next() % 8) {
            case 1:
                if (m_harm.flips == 0) break;
                for (int flips = 1 + m_input.Next() % m_harm.flips; flips > 0; --flips) {
                    const size_t bytes = m_harm.flippable ? m_harm.flippable : answer.size() - m_harm.firstFlippable;
                    const size_t bit = (m_input.Next() * 256u + m_input.Next()) % (8 * bytes);
                    answer[m_harm.firstFlippable + bit / 8] ^= static_cast<BYTE>(1 << bit % 8);
                }
                break;
            case 2:
                answer.resize(m_input.Next() % answer.size());
                break;
            case 3:
                if (m_harm.stray) answer.insert(answer.begin(), m_input.Next() % 5, m_input.Next());
                break;
            case 4:
                if (m_harm.twice) m_coming.emplace(when, answer);
                break;
            case 5:
                when += std::chrono::milliseconds(100 * (m_input.Next() % (m_harm.latest + 1)));
                break;
            case 6:
                m_coming.emplace(when, std::vector<BYTE>{answer.front()});
                answer.erase(answer.begin());
                when += std::chrono::milliseconds(m_input.Next());
                break;
            case 7:
                return;
            default:
                break;
        }
        // In the order in which it was asked.
        if (!m_coming.empty()) when = std::max(when, m_coming.rbegin()->first);
        m_coming.emplace(when, answer);
    }

    Input& m_input;
    const Harm m_harm;
    TimePoint m_now{std::chrono::hours(1)};
    std::multimap<TimePoint, std::vector<BYTE>> m_coming;
    std::multimap<size_t, double> m_sent;
    bool m_open = false;
};

// Reads as long as there is input: what a reading gives was sent in that reading, for that channel.
template <class Logger>
void ReadDamaged(Logger& logger, DamagedLine& line, const char* address, const Input& input) {
    logger.Connect(address, 1000);
    for (int reading = 0; reading < 20 && !input.IsOver(); ++reading) {
        CDoubleArray values;
        try {
            logger.ReadSample(values);
        } catch (CCommException* failure) {
            failure->Delete();
        }
        const auto sent = line.TakeSent();
        for (INT_PTR i = 0; i < values.GetSize(); ++i) {
            const double value = values.GetAt(i);
            const auto [from, to] = sent.equal_range(static_cast<size_t>(i));
            FUZZ_REQUIRE(std::isnan(value) || std::any_of(from, to, [value](const auto& each) { return each.second == value; }));
        }
        if (!line.IsOpen()) {
            logger.Disconnect();
            logger.Connect(address, 1000);
        }
    }
}
}  // namespace fuzz
