// show: the readings of a session or a recording, as they are read: nothing is kept.
#include <algorithm>
#include <cstdio>
#include <set>

#include "host/app/stop_request.h"
#include "host/command_line/commands.h"
#include "host/command_line/show_options.h"
#include "host/session/database_file.h"
#include "host/session/gap_list.h"
#include "host/session/recording_files.h"
#include "host/session/session_file.h"
#include "host/words/texts.h"

namespace {
constexpr size_t kBlock = 256 * 1024;  // bytes that are written at a time
constexpr DWORD kPoll = 200;           // ms between two looks at a recording that grows

// The output stream, in blocks.
class Output {
public:
    std::string text;
    void WriteIfLarge() {
        if (text.size() >= kBlock) Write();
    }
    void Write() {
        std::fwrite(text.data(), 1, text.size(), stdout);
        text.clear();
        FinishOutput();
    }
};

RecordedNotes NotesOf(const SessionFile& file) {
    if (file.session->Recorded() != nullptr) return file.session->Recorded()->Notes();
    RecordedNotes notes;
    notes.Load(*file.db, ChannelKeys(*file.db));
    return notes;
}

__int64 LastTime(const Session& session) {
    __int64 last = std::numeric_limits<__int64>::min();
    if (session.Recorded() != nullptr) {
        const std::vector<CRecordingSpan>& spans = session.Recorded()->Index().Spans();
        return spans.empty() ? last : spans.back().lastTime;
    }
    for (INT_PTR i = 0; i < session.Times().GetSize(); ++i) last = std::max(last, session.Times().GetAt(i));
    return last;
}

// What of it lies in the range and is missing.
void TellMissing(const RecordedNotes& notes, TimeRange range) {
    unsigned __int64 missed = 0;
    size_t gaps = 0;
    for (const CRecordedGap& gap : notes.Gaps()) {
        if (gap.until < range.from || gap.from > range.to || gap.missed == 0) continue;
        missed += gap.missed;
        ++gaps;
    }
    if (gaps > 0) PrintError(Say(Text::ReadingsMissing, {std::to_string(missed), std::to_string(gaps)}));
}

class Show {
public:
    explicit Show(const ShowOptions& options) : m_options(options) {}

    // False where damage kept some of it from being shown.
    bool All(const SessionFile& file) {
        const Session& session = *file.session;
        const TimeRange range = m_options.Range(LastTime(session));
        Begin(session);
        const std::unique_ptr<ReadingSource> readings = ReadingsOf(session, range);
        while (readings->Next()) Take(*readings);
        m_output.Write();
        const auto* const recorded = dynamic_cast<const RecordedReadings*>(readings.get());
        const bool damaged = recorded != nullptr && recorded->DamagedBytes() > 0;
        if (damaged) {
            const std::string told = Say(Text::RecordingDamaged, {ToUtf8(file.path), std::to_string(recorded->DamagedBytes())});
            if (told != file.note) PrintError(told);
        }
        TellMissing(NotesOf(file), range);
        return !damaged;
    }

    // As long as it grows, and on into the file that goes on with it.
    void Follow(SessionFile file) {
        if (file.session->Recorded() == nullptr) throw Failure{kWrongUse, Say(Text::NothingToFollow, {ToUtf8(file.path)})};
        const StopRequest stop;
        TimeRange range = m_options.Range(LastTime(*file.session));
        std::set<std::string> seen;
        for (;;) {
            seen.insert(file.path);
            auto readings = std::make_unique<RecordedReadings>(*file.session->Recorded(), range);
            do {
                while (!StopRequest::Asked() && readings->Next()) {
                    if (m_writer == nullptr) Begin(*OpenSession(file.path).session);  // columns fit what has come
                    Take(*readings);
                }
                m_output.Write();
            } while (!readings->HasEnded() && Wait());
            const std::string next = NextFile(file.path, readings->ContinuedIn());
            if (next.empty() || seen.count(next) > 0 || !WaitFor(next)) break;
            SessionFile following = OpenSession(next);
            if (following.session->Recorded() == nullptr || ChannelKeys(*following.db) != ChannelKeys(*file.db))
                throw Failure{kFileFailed, Say(Text::RecordingOtherChannels, {ToUtf8(next), ToUtf8(file.path)})};
            file = std::move(following);
        }
        if (m_writer == nullptr) Begin(*file.session);
        m_output.Write();
    }

private:
    void Begin(const Session& session) {
        m_writer = m_options.MakeWriter(session);
        m_writer->Heading(m_output.text);
        m_output.Write();
    }
    void Take(const ReadingSource& readings) {
        // Of several marks between two readings that are shown the first says it all.
        if (readings.MarksGap() ? m_marked && m_options.every > 1 : m_made++ % m_options.every != 0) return;
        m_marked = readings.MarksGap();
        m_writer->Row(m_output.text, readings.Time(), readings.Values());
        m_output.WriteIfLarge();
    }
    // False when the user wants no more.
    static bool Wait() {
        constexpr DWORD kShownSlice = 50;
        for (DWORD waited = 0; waited < kPoll && !StopRequest::Asked(); waited += kShownSlice) Sleep(kShownSlice);
        return !StopRequest::Asked();
    }
    static bool WaitFor(const std::string& path) {
        while (!IsRecording(path)) {
            if (!Wait()) return false;
        }
        return true;
    }
    static std::string NextFile(const std::string& path, const std::string& name) {
        if (name.empty()) return {};
        const size_t slash = path.find_last_of("/\\");
        const bool whole = name.find_first_of("/\\:") != std::string::npos;
        return whole || slash == std::string::npos ? name : path.substr(0, slash + 1) + name;
    }

    const ShowOptions& m_options;
    std::unique_ptr<ReadingWriter> m_writer;
    Output m_output;
    unsigned __int64 m_made = 0;
    bool m_marked = true;  // readings are missing before the first one, too
};
}  // namespace

ExitCode RunShow(CHostApp&, const Words& words) {
    const ShowOptions options(words);
    SessionFile file = OpenSession(options.path);
    if (!file.note.empty()) PrintError(file.note);
    if (options.form == ShowOptions::Form::Gaps) {
        Output output;
        output.text = GapList(NotesOf(file), *file.session, options.Range(LastTime(*file.session)));
        output.Write();
        return kDone;
    }
    Show show(options);
    if (!options.follow) return show.All(file) ? kDone : kFileFailed;
    show.Follow(std::move(file));
    return kDone;
}
