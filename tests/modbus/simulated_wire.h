// A Modbus line in simulated time: a wire whose far end is a logger with faults, drawn from a seed. Nothing sleeps; waiting moves
// the clock. A register holds what tells where it is from and when it was sampled, so that any value can be judged. One thread at
// a time.
#pragma once

#include <deque>
#include <optional>
#include <random>

#include "comm/comm_exception.h"
#include "comm/transport.h"
#include "plugins/modbus/modbus_frame.h"

namespace simulated {

using Duration = ITransport::Duration;
using TimePoint = ITransport::TimePoint;

inline Duration Seconds(double seconds) { return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(seconds)); }

// What is wrong with the far end. Times in seconds; chances from 0 to 1, of each request.
struct Faults {
    double late = 0.02;     // until the answer comes
    double spread = 0;      // up to so much later
    bool oneByOne = false;  // each request's time begins when the one before is answered; else they run side by side
    int lateOnce = 0;       // this request (from 1) is answered `lateBy` later
    double lateBy = 0;
    double lateChance = 0;  // so is every such one
    WORD only = 0;          // what follows befalls requests for this register alone; 0: all
    double silent = 0;      // no answer
    double noise = 0;       // a burst of 1 to 20 bytes some time before the answer
    double damaged = 0;     // one to three bits of the answer are flipped
    double split = 0;       // the answer pauses in the middle, for up to `pause`
    double pause = 0;
    double foreign = 0;  // an answer of another unit comes before
    double refused = 0;  // an exception instead of registers
    BYTE exception = modbus::kBusy;
    bool ignores = false;  // requests for no registers; else they are refused
    double unplugged = 0;  // the port vanishes within a second, and cannot be opened the first time
};

class Wire : public ITransport {
public:
    Wire(const Faults& faults, unsigned seed, TimePoint start = TimePoint(std::chrono::hours(1)))
        : m_faults(faults), m_random(seed), m_now(start) {}

    // A register: the upper three bits are its address / 100, the others the hundredths of a second of its sampling.
    static constexpr unsigned kClock = 1 << 13;
    WORD Register(WORD address, TimePoint sampled) const {
        return static_cast<WORD>((address / 100u) << 13 | Hundredths(sampled) % kClock);
    }
    // Whether such a value is from this address, and was sampled since then (less than 80 s ago).
    bool IsTrue(WORD value, WORD address, TimePoint since) const {
        const unsigned age = (Hundredths(m_now) - value) % kClock;
        return value >> 13 == address / 100u && age <= Hundredths(m_now) - Hundredths(since);
    }

    void Idle(double seconds) { m_now += Seconds(seconds); }
    void AbortAt(TimePoint time) { m_abortAt = time; }
    int Requests() const { return m_requests; }

    void Open(const char*, const CLineSettings& line, TimePoint) override {
        if (m_missing) {
            m_missing = false;
            OrvikThrowCommException(CCommException::DeviceNotOpen, nullptr);
        }
        m_character = Seconds(line.BitsPerCharacter() / line.baud);
        while (!m_coming.empty() && m_coming.front().time <= m_now) m_coming.pop_front();
        m_open = true;
    }
    void Close() override {
        m_open = false;
        m_unplugAt.reset();
        m_abortAt.reset();
    }
    bool IsOpen() const override { return m_open; }
    TimePoint Now() override { return m_now; }
    void Abort() override { m_abortAt = m_now; }

    void Send(std::span<const BYTE> bytes, TimePoint) override {
        Check();
        modbus::Request request;
        size_t used = 0;
        if (modbus::FindRequest(bytes, request, used)) Serve(request);
    }
    bool Receive(std::vector<BYTE>& received, TimePoint until) override {
        Check();
        std::optional<TimePoint> end = m_unplugAt;
        if (m_abortAt && (!end || *m_abortAt < *end)) end = m_abortAt;
        const TimePoint next = m_coming.empty() ? TimePoint::max() : m_coming.front().time;
        m_now = std::max(m_now, std::min({until, next, end.value_or(TimePoint::max())}));
        Check();
        bool came = false;
        for (; !m_coming.empty() && m_coming.front().time <= m_now; m_coming.pop_front(), came = true) {
            received.insert(received.end(), m_coming.front().bytes.begin(), m_coming.front().bytes.end());
        }
        return came;
    }

private:
    struct Piece {
        TimePoint time;
        std::vector<BYTE> bytes;
    };

    unsigned Hundredths(TimePoint time) const {
        return static_cast<unsigned>(time.time_since_epoch() / std::chrono::milliseconds(10));
    }
    double Draw(double below = 1) { return std::uniform_real_distribution<double>(0, below)(m_random); }
    bool Happens(double chance) { return chance > 0 && Draw() < chance; }
    bool Befalls(double chance, const modbus::Request& request) {
        return (m_faults.only == 0 || m_faults.only == request.first) && Happens(chance);
    }
    size_t Pick(size_t below) { return std::uniform_int_distribution<size_t>(0, below - 1)(m_random); }

    void Check() {
        if (!m_open) OrvikThrowCommException(CCommException::DeviceNotOpen, nullptr);
        if (m_abortAt && m_now >= *m_abortAt) OrvikThrowCommException(CCommException::SessionAborted, nullptr);
        if (m_unplugAt && m_now >= *m_unplugAt) {
            m_missing = true;
            OrvikThrowCommException(CCommException::HardwareError, nullptr);
        }
    }

    // Nothing overtakes anything on the line.
    void Come(TimePoint time, std::vector<BYTE> bytes) {
        if (!m_coming.empty()) time = std::max(time, m_coming.back().time);
        m_coming.push_back({time + static_cast<int>(bytes.size()) * m_character, std::move(bytes)});
    }

    void Serve(const modbus::Request& request) {
        ++m_requests;
        const bool none = request.count == 0;
        if (m_faults.ignores && none) return;
        const TimePoint asked = m_now + 8 * m_character;
        const TimePoint begun = m_faults.oneByOne ? std::max(asked, m_free) : asked;
        TimePoint ready = begun + Seconds(m_faults.late + Draw(m_faults.spread));
        if (m_requests == m_faults.lateOnce || Happens(m_faults.lateChance)) ready += Seconds(m_faults.lateBy);
        m_free = ready = std::max(ready, m_free);  // in the order in which they were asked
        if (Befalls(m_faults.unplugged, request)) m_unplugAt = m_now + Seconds(Draw());
        if (Befalls(m_faults.noise, request)) {
            std::vector<BYTE> noise(1 + Pick(20));
            for (BYTE& byte : noise) byte = static_cast<BYTE>(Pick(256));
            Come(asked + Seconds(Draw(std::chrono::duration<double>(ready - asked).count())), noise);
        }
        if (Befalls(m_faults.foreign, request)) {
            const modbus::Request other = {static_cast<BYTE>(request.slave + 1), request.function, request.first, request.count};
            Come(ready, modbus::EncodeReply(other, std::vector<WORD>(other.count, 0xFFFF)));
        }
        if (Befalls(m_faults.silent, request)) return;
        std::vector<WORD> words;
        for (WORD i = 0; i < request.count; ++i) words.push_back(Register(request.first, begun));
        std::vector<BYTE> reply = none                                 ? modbus::EncodeException(request, modbus::kIllegalValue)
                                  : Befalls(m_faults.refused, request) ? modbus::EncodeException(request, m_faults.exception)
                                                                       : modbus::EncodeReply(request, words);
        if (Befalls(m_faults.damaged, request)) {
            for (size_t bits = 1 + Pick(3); bits != 0; --bits) reply[Pick(reply.size())] ^= static_cast<BYTE>(1 << Pick(8));
        }
        if (Befalls(m_faults.split, request)) {
            const auto half = reply.begin() + static_cast<std::ptrdiff_t>(1 + Pick(reply.size() - 1));
            Come(ready, {reply.begin(), half});
            ready += Seconds(Draw(m_faults.pause));
            reply.erase(reply.begin(), half);
            m_free = ready;
        }
        Come(ready, reply);
    }

    const Faults m_faults;
    std::mt19937 m_random;
    TimePoint m_now;
    TimePoint m_free{};  // the logger has answered everything before
    std::deque<Piece> m_coming;
    std::optional<TimePoint> m_unplugAt, m_abortAt;
    Duration m_character{};
    int m_requests = 0;
    bool m_open = false;
    bool m_missing = false;
};

}  // namespace simulated
