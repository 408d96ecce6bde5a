// A line in simulated time whose far end is the plug-in's own simulator, serial or of a network, with slaves that are dead or
// late. Nothing sleeps; waiting moves the clock. One thread at a time.
#pragma once

#include <deque>
#include <map>
#include <set>
#include <string>

#include "comm/comm_exception.h"
#include "comm/transport.h"
#include "plugins/modbus/modbus_simulator.h"

class SimulatorWire : public ITransport {
public:
    explicit SimulatorWire(const modbus::Description& description) : simulator(description) {}

    modbus::Simulator simulator;
    std::set<BYTE> dead;
    std::map<BYTE, Duration> late;   // beyond 20 ms
    std::vector<BYTE> asked;         // the slave of each request
    std::vector<TimePoint> askedAt;  // and when
    bool inPieces = false;           // byte by byte
    std::vector<std::vector<BYTE>> sent;

    void Idle(Duration time) { m_now += time; }

    void Open(const char* address, const CLineSettings&, TimePoint) override {
        simulator.SetLine(address);
        m_network = std::string(address).starts_with("tcp");
        m_coming.clear();
        m_open = true;
    }
    void Close() override { m_open = false; }
    bool IsOpen() const override { return m_open; }
    TimePoint Now() override { return m_now; }
    void Abort() override {}

    void Send(std::span<const BYTE> bytes, TimePoint) override {
        if (!m_open) OrvikThrowCommException(CCommException::DeviceNotOpen, nullptr);
        const BYTE slave = bytes[m_network ? 6 : 0];
        asked.push_back(slave);
        askedAt.push_back(m_now);
        sent.emplace_back(bytes.begin(), bytes.end());
        if (dead.count(slave) != 0) return;
        CByteArray reply;
        simulator.Receive(bytes.data(), bytes.size(), reply);
        std::vector<BYTE> answer(reply.GetData(), reply.GetData() + reply.GetSize());
        Come(m_now + std::chrono::milliseconds(20) + late[slave], answer);
    }
    // What comes by itself.
    void Come(TimePoint time, const std::vector<BYTE>& bytes) {
        for (size_t i = 0; i < bytes.size(); i += inPieces ? 1 : bytes.size()) {
            const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(i);
            m_coming.emplace(time + std::chrono::microseconds(i), std::vector<BYTE>(begin, inPieces ? begin + 1 : bytes.end()));
        }
    }
    bool Receive(std::vector<BYTE>& received, TimePoint until) override {
        if (!m_open) OrvikThrowCommException(CCommException::DeviceNotOpen, nullptr);
        if (m_coming.empty() || m_coming.begin()->first > until) {
            m_now = std::max(m_now, until);
            return false;
        }
        m_now = std::max(m_now, m_coming.begin()->first);
        const std::vector<BYTE> bytes = m_coming.begin()->second;
        m_coming.erase(m_coming.begin());
        received.insert(received.end(), bytes.begin(), bytes.end());
        return true;
    }

private:
    TimePoint m_now{std::chrono::hours(1)};
    std::multimap<TimePoint, std::vector<BYTE>> m_coming;
    bool m_open = false, m_network = false;
};
