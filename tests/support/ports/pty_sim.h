// What a pseudo terminal lacks of a serial line: modem lines, error counters, break, and the frame settings that the kernel
// refuses to keep for it. One record a line, in the file $ORVIK_PTYSIM_DIR/pts<minor>, mapped by both sides: pty_sim.cpp
// answers the device calls of the program under test from it, PtyPeer plays the far end in it.
#pragma once

#include <atomic>
#include <cstdint>

struct PtySim {
    static constexpr uint32_t kMagic = 0x4D495350;

    std::atomic<uint32_t> magic;
    std::atomic<uint32_t> lines;  // TIOCM_ bits: the far end sets CTS, CAR, RNG and DSR, the program DTR and RTS
    // Counters as TIOCGICOUNT gives them.
    std::atomic<uint32_t> cts, dsr, rng, dcd;
    std::atomic<uint32_t> frame, overrun, parity, brk, buf_overrun;
    std::atomic<uint32_t> breakOn, breakCount, breakMilliseconds;  // breaks that the program sent; the length of the last
    std::atomic<uint64_t> breakStart;                              // nanoseconds of the monotonic clock
    std::atomic<uint32_t> cflag, cflagKept;
};
