// Writes a recording: a file that only grows. A record is handed to the system before the call returns, so that a program that is
// killed loses nothing of what it was told was written; the file under it forces it to the disk soon after (recording_file.h).
// One thread. Results are Win32 codes; after a failure nothing of that record counts as written, and the next one takes its place.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "propdb/property_db.h"
#include "record/recording_file.h"
#include "record/recording_types.h"

class ORVIK_API CRecorder {
public:
    CRecorder();
    ~CRecorder();  // lets go of the file
    CRecorder(const CRecorder&) = delete;
    CRecorder& operator=(const CRecorder&) = delete;

    // A new recording at `path`, which nothing may have yet (error 80): it appears there with its head and facts, whole and on
    // the disk, or not at all. A reading has one value for each child of "Channels" in the facts, in the order of Enum; at most
    // 16,384.
    DWORD Create(const std::string& path, CPropertyDB& facts, DWORD forceEvery = CRecordingFile::kForceEvery);
    // The same into an empty file.
    DWORD Create(std::unique_ptr<IRecordingFile> file, CPropertyDB& facts);
    // Goes on with a recording behind its last whole block; what is torn there is cut off. Error 32: somebody records into it.
    DWORD Resume(const std::string& path, DWORD forceEvery = CRecordingFile::kForceEvery);
    DWORD Resume(std::unique_ptr<IRecordingFile> file);
    // Writes what is left of the index, forces everything to the disk and lets go of the file.
    DWORD Close();
    bool IsOpen() const { return m_file != nullptr; }

    // `values` and `flags` (ERecordFlag; null: all good) have ChannelCount elements. Times increase strictly: one that does not
    // is raised to one microsecond after the last.
    DWORD AddReading(__int64 time, const double* values, const BYTE* flags = nullptr);
    DWORD AddGap(const CRecordedGap& gap);
    DWORD AddEvent(const CRecordedEvent& event);
    // What else is to be known; it replaces what was known under the same first names of keys.
    DWORD AddFacts(CPropertyDB& facts);
    DWORD Force();
    // Whether the file is still what was written, as far as that is quickly seen: error 38 for one that is shorter (what is added still
    // takes its place, and leaves a hole that readers pass over), error 2 where its name leads elsewhere.
    DWORD CheckLength();
    DWORD CheckPlace();
    // What forcing to the disk in the background came to since this was last asked: a failure means that the latest records may
    // not outlive a power cut.
    DWORD Forced() { return m_file != nullptr ? m_file->Forced() : DWORD{ERROR_SUCCESS}; }

    size_t ChannelCount() const { return m_channels; }
    unsigned __int64 ReadingCount() const { return m_readings; }
    __int64 LastTime() const { return m_lastTime; }  // of a reading; the least number there is before the first
    // Of a recording that was gone on with: the last time at which a gap near its end says that something is missing; the least
    // number there is without one.
    __int64 LastMissing() const { return m_lastMissing; }
    DWORD LastGap() const { return m_lastGap; }      // the highest number of a gap
    unsigned __int64 Size() const { return m_end; }  // bytes
    // Of a recording that was gone on with: what it says of itself, and how many bytes were cut off.
    const CPropertyDB& Facts() const { return m_facts; }
    unsigned __int64 CutOff() const { return m_cutOff; }

private:
    struct Span;

    static DWORD Begin(CPropertyDB& facts, DWORD number, std::vector<unsigned char>& bytes, size_t& channels);
    DWORD Add(unsigned char type);
    DWORD AddIndexIfDue();
    DWORD AddIndex();
    void StartSpan();

    std::unique_ptr<IRecordingFile> m_file;
    CPropertyDB m_facts;
    DWORD m_number = 0;
    size_t m_channels = 0;
    unsigned __int64 m_end = 0, m_readings = 0, m_cutOff = 0;
    __int64 m_lastTime, m_lastMissing;
    DWORD m_lastGap = 0;
    std::unique_ptr<Span> m_span;       // since the last index block
    std::vector<unsigned char> m_block;  // header and payload of the one that is written
};
