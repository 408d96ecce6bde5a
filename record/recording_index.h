// Where what stands in a recording: its readings in spans of about a thousand, each with its times and the lowest and highest value
// of every channel. Made from the index blocks in the file, so that the length of a recording hardly matters; where they are
// missing or damaged, from the readings. One thread. Memory: 24 bytes a channel and span.
#pragma once

#include <vector>

#include "record/recording_reader.h"

struct CRecordingSpan {
    unsigned __int64 begin = 0, end = 0;  // bytes of the file; readings, and whatever stands between them
    unsigned __int64 first = 0;           // number of its first reading in the file
    DWORD readings = 0;
    DWORD others = 0;  // gaps, events and facts among them
    __int64 firstTime = 0, lastTime = 0;
    struct Extremes {
        double low = 0, high = 0;     // of the finite values
        DWORD lowAt = 0, highAt = 0;  // readings of the span, from 0; equal to `readings` where no value is finite
    };
    std::vector<Extremes> channels;

    // One more reading of `count` channels.
    ORVIK_API void Add(__int64 time, const double* values, size_t count);
};

class ORVIK_API CRecordingIndex {
public:
    // Of the recording that the reader has open; the reader then stands at its end. Called again, it adds what has come since.
    // Win32 codes.
    DWORD Update(CRecordingReader& reader);

    const std::vector<CRecordingSpan>& Spans() const { return m_spans; }
    unsigned __int64 ReadingCount() const;
    // Bytes that were found damaged on the way; what lies in spans that the file's own index tells of was not looked at.
    unsigned __int64 DamagedBytes() const { return m_damaged; }
    // The highest number of a gap, the place of the last index block (0 for none), and whether the last span has none yet.
    DWORD LastGap() const { return m_lastGap; }
    unsigned __int64 LastIndex() const { return m_lastIndex; }
    bool IsOpen() const { return m_open; }
    // The first span that holds a reading at or after `time`; as many as there are spans if none does.
    size_t Find(__int64 time) const;
    // The lowest and highest finite value of a channel; false without any.
    bool Range(size_t channel, double& low, double& high) const;

private:
    bool FollowChain(CRecordingReader& reader);
    bool ReadIndexBlock(CRecordingReader& reader, unsigned __int64 offset, unsigned __int64& previous);
    DWORD Walk(CRecordingReader& reader);
    CRecordingSpan& OpenSpan(unsigned __int64 begin);

    std::vector<CRecordingSpan> m_spans;
    bool m_open = false;  // the last span may still grow
    unsigned __int64 m_end = 0, m_lastIndex = 0, m_damaged = 0;
    DWORD m_lastGap = 0;
};
