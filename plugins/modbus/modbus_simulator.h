// Simulated Modbus loggers: the registers and coils that a description names, filled with slow, smooth signals, and the answers
// to requests, on a serial line or in a network's frames. What was written keeps its value. One thread at a time.
#pragma once

#include <map>
#include <random>
#include <set>
#include <vector>

#include "host/logger_family.h"
#include "plugins/modbus/modbus_description.h"

namespace modbus {

class Simulator : public ILoggerSimulator {
public:
    explicit Simulator(Description description);
    void Receive(const BYTE* data, size_t size, CByteArray& reply) override;
    void SetLine(const char* address) override;
    void Reset() override { m_received.clear(); }
    // "crc" damages answers, "exception" refuses, "unit", "function" and "length" put something else in their place.
    bool SetFault(const char* name, int percent) override;

private:
    enum class Fault { Crc, Exception, Unit, Function, Length };

    // The first whole request among what was received; on a network with its transaction's number.
    bool Next(Request& request, WORD& transaction);
    std::vector<BYTE> Frame(const Request& request, WORD transaction);
    std::vector<BYTE> Answer(const Request& request);
    std::vector<BYTE> Read(const Request& request);
    std::vector<BYTE> Write(const Request& request);
    void Refresh();
    void Hold(const Channel& channel, const std::vector<WORD>& words);
    bool Happens(Fault fault);

    // A register or coil: its slave, the function that reads it, its number.
    struct Place {
        BYTE slave, function;
        WORD number;
        auto operator<=>(const Place&) const = default;
    };

    const Description m_description;
    std::map<Place, WORD> m_held;
    std::set<size_t> m_written;     // channels that keep what was written
    std::map<Fault, int> m_faults;  // percent of the answers
    std::minstd_rand m_random;
    std::vector<BYTE> m_received;
    bool m_network = false;
    unsigned m_answers = 0;
};

}  // namespace modbus
