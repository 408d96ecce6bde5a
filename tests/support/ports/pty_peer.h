// The far end of simulated serial ports: one pseudo terminal a port, with the PtySim record that gives it a line's manners.
// It runs in the test program itself, natively, or in a small server of its own when that program runs under Wine; so it is
// spoken to in lines of text. Commands and answers ("ok ...", or "error ..." with the reason):
//
//     add NAME                     the port appears: ok PATH of its device
//     remove NAME                  it is pulled out
//     send NAME HEX                bytes arrive
//     receive NAME COUNT MS        waits for bytes that were written: ok HEX (fewer when the time ran out)
//     stream NAME                  bytes arrive without an end, until the port is removed or `send` is used
//     raise NAME LINE, drop NAME LINE      cts, dsr, rng, dcd
//     count NAME ERROR             one more of frame, overrun, parity, brk, buf_overrun
//     get NAME FIELD               ok NUMBER: lines, breakOn, breakCount, breakMilliseconds
#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <thread>

#include "pty_sim.h"

class PtyPeer {
public:
    // Ports get their links in `ports` (comN), their records in `records`; both folders are there when the first port is added.
    PtyPeer(std::string ports, std::string records);
    ~PtyPeer();
    std::string Execute(const std::string& command);

private:
    struct Line {
        ~Line();
        std::string link, record;
        int master = -1;
        PtySim* sim = nullptr;
        std::atomic<bool> streaming{false};
        std::thread stream;
        void StopStream();
    };
    std::string Add(const std::string& name);

    std::string m_ports, m_records;
    std::map<std::string, std::unique_ptr<Line>> m_lines;
};
