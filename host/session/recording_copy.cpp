#include "host/session/recording_copy.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "host/session/missing_cells.h"
#include "host/session/reading_source.h"
#include "host/session/recording_files.h"
#include "host/words/console.h"
#include "host/words/texts.h"
#include "platform/file_replacement.h"
#include "record/recorder.h"

namespace {
// A recording that is written beside its place, in large pieces.
class RecordingBeingMade : public IRecordingFile {
public:
    explicit RecordingBeingMade(HANDLE file) : m_file(file) {}
    // What could not be written is known from Flush.
    ~RecordingBeingMade() override = default;

    DWORD Read(unsigned __int64 at, void* bytes, DWORD size, DWORD& got) override {
        got = 0;
        if (const DWORD error = Force()) return error;
        if (const DWORD error = GoTo(at)) return error;
        return ReadFile(m_file, bytes, size, &got, nullptr) ? DWORD{ERROR_SUCCESS} : GetLastError();
    }
    DWORD Write(unsigned __int64 at, const void* bytes, DWORD size) override {
        if (at != m_written + m_pending.size()) return ERROR_INVALID_PARAMETER;  // a recorder only ever adds
        m_pending.append(static_cast<const char*>(bytes), size);
        return m_pending.size() >= kPiece ? Force() : DWORD{ERROR_SUCCESS};
    }
    DWORD Cut(unsigned __int64) override { return ERROR_NOT_SUPPORTED; }
    // To the system; the replacement forces it to the disk.
    DWORD Force() override {
        if (m_pending.empty()) return ERROR_SUCCESS;
        if (const DWORD error = GoTo(m_written)) return error;
        DWORD written = 0;
        if (!WriteFile(m_file, m_pending.data(), static_cast<DWORD>(m_pending.size()), &written, nullptr)) return GetLastError();
        if (written != m_pending.size()) return ERROR_DISK_FULL;
        m_written += m_pending.size();
        m_pending.clear();
        return ERROR_SUCCESS;
    }
    DWORD Size(unsigned __int64& size) override {
        size = m_written + m_pending.size();
        return ERROR_SUCCESS;
    }

private:
    static constexpr size_t kPiece = 1 << 20;
    DWORD GoTo(unsigned __int64 at) {
        LARGE_INTEGER place;
        place.QuadPart = static_cast<LONGLONG>(at);
        return SetFilePointerEx(m_file, place, nullptr, FILE_BEGIN) ? DWORD{ERROR_SUCCESS} : GetLastError();
    }

    const HANDLE m_file;
    std::string m_pending;
    unsigned __int64 m_written = 0;
};

// All but readings, gaps and events.
void CopyFacts(CPropertyDB& db, CPropertyDB& facts) {
    CStringArray keys;
    db.EnumAll(keys);
    const auto begins = [](const std::string& key, const std::string& start) { return key.compare(0, start.size(), start) == 0; };
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        const std::string key = keys.GetAt(i).GetString();
        const bool values = begins(key, "Channels.") && key.size() > 8 && key.compare(key.size() - 8, 8, ".rValues") == 0;
        const bool notes =
            begins(key, std::string(RecordedNotes::kGaps) + ".") || begins(key, std::string(RecordedNotes::kEvents) + ".");
        if (values || notes || key == "Session.tTimes") continue;
        if (const CObject* const value = db.GetValueObject(key.c_str(), TRUE)) facts.SetValue(key.c_str(), value, TRUE);
    }
}

// Gaps and events in the order of time, up to where a reading comes.
class Notes {
public:
    explicit Notes(const RecordedNotes& notes) : m_gaps(notes.Gaps()), m_events(notes.Events()) {}
    DWORD AddUntil(CRecorder& recorder, __int64 time, bool all) {
        for (; m_nextEvent < m_events.size() && (all || m_events[m_nextEvent].time <= time); ++m_nextEvent) {
            if (const DWORD error = recorder.AddEvent(m_events[m_nextEvent])) return error;
        }
        for (; m_nextGap < m_gaps.size() && (all || m_gaps[m_nextGap].from <= time); ++m_nextGap) {
            if (const DWORD error = recorder.AddGap(m_gaps[m_nextGap])) return error;
        }
        return ERROR_SUCCESS;
    }

private:
    const std::vector<CRecordedGap>& m_gaps;
    const std::vector<CRecordedEvent>& m_events;
    size_t m_nextGap = 0, m_nextEvent = 0;
};
}  // namespace

bool StoreAsRecording(const std::string& path, const Session& session, CPropertyDB& db) {
    const auto check = [&](DWORD error) {
        if (error != ERROR_SUCCESS) throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(path), Reason(error)})};
    };
    if (IsRecording(path)) RequireNobodyRecords(path);
    RecordedNotes told;
    if (session.Recorded() != nullptr) {
        told = session.Recorded()->Notes();
    } else {
        told.Load(db, ChannelKeys(db));
    }
    CPropertyDB facts;
    facts.SetPath("Channels");
    CopyFacts(db, facts);

    orvik::detail::FileReplacement replacement;
    check(replacement.Begin(path));
    CRecorder recorder;
    check(recorder.Create(std::make_unique<RecordingBeingMade>(replacement.File()), facts));
    Notes notes(told);
    MissingCells missing(told.Gaps());
    const std::unique_ptr<ReadingSource> readings = ReadingsOf(session);
    bool whole = true;
    const auto addDamage = [&](const CRecordedGap& gap) {
        whole = false;
        check(recorder.AddGap(gap));
        if (recorder.ReadingCount() == 0) return;
        const std::vector<double> none(recorder.ChannelCount(), std::numeric_limits<double>::quiet_NaN());
        check(recorder.AddReading(gap.from, none.data(), std::vector<BYTE>(none.size(), RF_MISSING).data()));
    };
    while (readings->Next()) {
        check(notes.AddUntil(recorder, readings->Time(), false));
        if (readings->Damage()) addDamage(*readings->Damage());
        check(recorder.AddReading(readings->Time(), readings->Values(),
                                  missing.FlagsOf(readings->Time(), readings->Values(), recorder.ChannelCount())));
    }
    check(notes.AddUntil(recorder, 0, true));
    if (readings->Damage()) addDamage(*readings->Damage());
    check(recorder.Close());
    check(replacement.Commit());
    return whole;
}
