// The readings of a recording where they are: in their file. What a chart or a list needs of them is taken from the recording's
// index and from those spans of the file that have to be looked at; decoded spans are kept in a bounded store. As long as the
// recording was when it was opened. One thread.
//
// Readings that are damaged, or that the file does not give, are not there; Unread tells how many bytes that cost so far.
#pragma once

#include <list>
#include <memory>
#include <string>
#include <vector>

#include "frame/numeric_arrays.h"
#include "host/session/recorded_notes.h"
#include "host/session/series_reduction.h"
#include "propdb/property_db.h"
#include "record/recording_index.h"
#include "record/recording_reader.h"

// A row that marks where a stretch without readings begins.
bool MarksGap(const BYTE* flags, size_t channels);

struct DatedValue {
    __int64 time = 0;
    double value = 0;
};

class RecordedSeries {
public:
    // A Failure with a sentence for what cannot be opened.
    explicit RecordedSeries(const std::string& path);

    const std::string& Path() const { return m_path; }
    // What the recording knows of its session, with a name for every channel whatever became of it.
    CPropertyDB& Facts() { return m_facts; }
    const RecordedNotes& Notes() const { return m_notes; }
    const CRecordingIndex& Index() const { return m_index; }
    size_t ChannelCount() const { return m_reader.ChannelCount(); }
    unsigned __int64 Count() const { return m_index.ReadingCount(); }
    bool HasFailed() const { return m_failed; }           // the file could not be read somewhere
    unsigned __int64 Unread() const { return m_unread; }  // bytes that were found damaged
    unsigned __int64 Torn() const { return m_torn; }      // bytes behind the last whole block
    unsigned __int64 End() const { return m_end; }        // of what was read so far, in bytes of the file
    // What of this a user should know; empty where all is well.
    std::string Trouble() const;

    // Takes in what has come into the file since; false where nothing has, which costs one look at the file's end. Facts stay as
    // they were when it was opened.
    bool Update();
    // Somebody may still record into it: it does not say that it has ended.
    bool MayGrow() const { return !m_notes.Ended(); }
    // Nothing has come since every channel began to miss readings.
    bool EndsInGap() const;

    // The value of the last reading that asked for it; NaN without any.
    double LastValue(size_t channel);
    // How many readings there are up to a time, and one of them by its number, from 0; a NaN for one that damage has taken.
    size_t CountUntil(__int64 time) { return CountBefore(static_cast<double>(time), true); }
    DatedValue ReadingAt(size_t number, size_t channel);
    // The lines of these channels, as ReduceSeries makes them. The mappings, one for each, differ in their values only.
    std::vector<ReducedSeries> Reduce(const std::vector<size_t>& channels, const std::vector<PlotMapping>& mappings);

    // What every reading needs: all times and values, each of the arrays one a reading, as a session keeps them. The notes then
    // have a gap for each damaged place.
    void ReadAll(CInt64Array& times, std::vector<CDoubleArray>& values);
    // Of what ReadAll has found: readings that were made, which those rows that mark the begin of a gap are not.
    unsigned __int64 Made() const { return m_made; }

private:
    // A span's readings, one after the other, each with all its values.
    struct Decoded {
        size_t span = 0;
        std::vector<__int64> times;
        std::vector<double> values;
        size_t Size() const { return times.size() * sizeof(__int64) + values.size() * sizeof(double); }
    };
    using Columns = std::vector<std::vector<SeriesColumn>>;  // by the channels asked for

    static double CellOf(const CRecordingReader& reader, size_t channel);
    DWORD TakeTail();
    void ReadNotes();
    void CompleteFacts();
    std::shared_ptr<const Decoded> Decode(size_t span);
    double LastIn(size_t span, size_t channel, double otherwise);
    size_t CountBefore(double time, bool orAt);
    const Columns& ColumnsOf(const ColumnPlan& plan, const std::vector<size_t>& channels);
    std::vector<ReducedSeries> ReduceFew(const ColumnPlan& plan, const std::vector<size_t>& channels,
                                         const std::vector<PlotMapping>& mappings);

    const std::string m_path;
    CRecordingReader m_reader;
    CRecordingReader m_tail;  // stands at the end of what the index knows
    CRecordingIndex m_index;
    CPropertyDB m_facts;
    RecordedNotes m_notes;
    unsigned __int64 m_end = 0, m_notesEnd = 0, m_unread = 0, m_torn = 0, m_made = 0;
    bool m_failed = false;
    std::vector<bool> m_ownIntervals;                     // channels that are not read every time
    std::vector<bool> m_noted;                            // spans whose damage was counted
    std::list<std::shared_ptr<const Decoded>> m_decoded;  // the latest first
    size_t m_decodedSize = 0;
    // What was gathered last: a chart is drawn anew with other values' ranges more often than with other times.
    ColumnPlan m_plan;
    std::vector<size_t> m_channels;
    Columns m_columns;
};
