// A simulated logger that prints lines, in the format of a description, filled with slow, smooth signals: it answers the question
// or talks by itself. One thread at a time.
#pragma once

#include <map>
#include <random>
#include <string>
#include <vector>

#include "host/logger_family.h"
#include "plugins/text/text_description.h"

namespace text {

class Simulator : public ILoggerSimulator {
public:
    // A description whose lines cannot be made up, such as a pattern that takes no number, is a CCommException with code 3.
    explicit Simulator(Description description);

    void Receive(const BYTE* data, size_t size, CByteArray& reply) override;
    void Reset() override;
    DWORD Speak(CByteArray& out) override;
    // "checksum": a wrong one, where there are any; "garbage": a line of something else; "novalue": the text for it; "half": the
    // line breaks off; "endless": a line that is too long.
    bool SetFault(const char* name, int percent) override;

    // What a channel has in its n-th reading.
    static double ValueOf(size_t channel, unsigned reading);

private:
    // The texts of the channels' fields in this reading.
    std::vector<std::string> Fields() const;
    std::string NextReading();
    bool Happens(const char* fault);

    const Description m_description;
    int m_decimals = 2;
    unsigned m_readings = 0;
    bool m_started = false;  // the heading has been said
    std::string m_received;  // the end of it, as long as a question
    std::map<std::string, int, std::less<>> m_faults;
    std::mt19937 m_random{1};
};

}  // namespace text
