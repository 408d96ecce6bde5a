// What stands in a recording besides its values: why some are missing, and what happened meanwhile. Plain values; any thread.
// Times are microseconds since 1970-01-01 UTC; texts are this house's text.
#pragma once

#include <string>
#include <vector>

#include "platform/win32.h"

// What is said of one value of a reading.
enum ERecordFlag : BYTE {
    RF_GOOD = 0,
    RF_MISSING = 1,   // NaN, and a gap says why
    RF_NO_VALUE = 2,  // NaN, as the logger itself says that it has none
    RF_NOT_DUE = 3,   // NaN, as it was not to be read with this reading; nothing is missing
};

// The NaN that stands in a session for a value that was not to be read: unlike others it leaves no hole in a line.
inline constexpr unsigned __int64 kNotDueBits = 0x7FF8'0000'004E'4F54;

// Why readings are missing. 0 to 9 are the codes of CCommException (comm/comm_exception.h).
enum EGapCause : WORD {
    GC_STALLED = 100,      // they were not asked for in time: the logger or this machine was busy
    GC_DISK = 101,         // they were read, and could not be written
    GC_NOT_RUNNING = 102,  // the program did not run
    GC_PLUGIN = 103,       // the plug-in failed otherwise than by a communication error
    GC_DAMAGED = 104,      // they were recorded, and the recording is damaged there
};

// A stretch in which readings, or single channels of them, are missing.
struct CRecordedGap {
    // A gap that goes on is written again under its number; the later one counts.
    DWORD number = 0;
    __int64 from = 0, until = 0;  // the first and the last time at which a value is missing
    DWORD missed = 0;             // readings
    DWORD attempts = 0;           // to get them
    WORD cause = GC_STALLED;
    std::vector<WORD> channels;  // which, by their places; none: all
    std::string text;            // the cause in words, as it was told
};

enum ERecordEvent : WORD {
    RE_STARTED = 1,       // the program began to record into this file; the text is its version
    RE_CONNECTED = 2,     // the text is the port
    RE_LOST = 3,          // the text says why
    RE_CLOCK_STEPPED = 4, // by `amount` microseconds; times go on by the steady clock
    RE_CLOCK_AGREES = 5,  // the calendar and the steady clock agree again
    RE_TAG = 6,           // a comment was written
    RE_CONTINUED = 7,     // what follows stands in the file that the text names
    RE_ENDED = 8,         // as planned or as wished: nothing follows unless somebody begins anew
};

struct CRecordedEvent {
    __int64 time = 0;
    WORD kind = 0;  // an ERecordEvent; others are to be passed over
    __int64 amount = 0;
    std::string text;
};

// Bytes of a recording that are none of its blocks.
struct CRecordingDamage {
    unsigned __int64 offset = 0, size = 0;
};
