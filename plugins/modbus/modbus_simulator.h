// A simulated Modbus logger: the registers that a description names, filled with slow, smooth signals, and the answers to
// requests. One thread at a time.
#pragma once

#include <map>
#include <vector>

#include "host/logger_family.h"
#include "plugins/modbus/modbus_description.h"

namespace modbus {

class Simulator : public ILoggerSimulator {
public:
    explicit Simulator(Description description);
    void Receive(const BYTE* data, size_t size, CByteArray& reply) override;

private:
    std::vector<BYTE> Answer(const Request& request);
    void Refresh();

    Description m_description;
    std::map<std::pair<BYTE, WORD>, WORD> m_registers;  // by function and number
    std::vector<BYTE> m_received;
    unsigned m_answers = 0;
};

}  // namespace modbus
