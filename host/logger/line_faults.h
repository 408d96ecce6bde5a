// What befalls the answers of a simulated logger on their way, as users name it: "noise=5" is five of 100 answers, "silent" all.
//   late      comes after its time           noise   has a flipped bit, or stray bytes in front
//   silent    does not come                  split   comes in two pieces
//   drop      the connection ends instead    unplug  the device goes away after a few answers
// Other names are the logger family's own. One thread at a time.
#pragma once

#include <random>
#include <string>
#include <vector>

#include "host/logger_family.h"

class LineFaults {
public:
    LineFaults() = default;
    // Hands the family's own to `simulator`. A Failure for a name that neither knows, or a number that is no per cent.
    // `lateBy`: milliseconds. The same seed gives the same fates.
    LineFaults(const std::vector<std::string>& words, ILoggerSimulator& simulator, DWORD lateBy, DWORD seed);

    struct Fate {
        std::vector<BYTE> bytes;  // what is sent of it; nothing for a silent one
        DWORD late = 0;           // milliseconds before that
        size_t first = 0;         // bytes of the first piece; 0: in one piece
        bool drop = false;        // the connection ends in place of it
        bool unplug = false;      // all of them do, for good
    };
    Fate Next(const CByteArray& answer);

private:
    bool Happens(unsigned percent) { return percent != 0 && m_random() % 100 < percent; }
    void Spoil(std::vector<BYTE>& bytes);

    unsigned m_late = 0, m_noise = 0, m_silent = 0, m_split = 0, m_drop = 0;  // per cent
    bool m_regularNoise = false, m_unplug = false;
    DWORD m_lateBy = 0;
    unsigned m_answers = 0;
    std::mt19937 m_random;
};
