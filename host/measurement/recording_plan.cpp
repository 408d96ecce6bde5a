#include "host/measurement/recording_plan.h"

#include "host/measurement/replaceable_file.h"
#include "host/session/database_file.h"
#include "host/session/recording_copy.h"
#include "host/session/recording_files.h"
#include "host/session/session_file.h"
#include "host/words/console.h"
#include "host/words/shell_word.h"
#include "host/words/span_words.h"
#include "host/words/texts.h"
#include "record/recording_reader.h"

void SetRotation(const std::string& name, const std::string& text, RecordingWriter::Plan& record) {
    constexpr unsigned __int64 kLeast = 64 * 1024, kLargest = 1ull << 50;
    constexpr __int64 kShortest = 1'000'000;
    if (const auto span = SpanFromWords(text)) {
        if (*span < kShortest || *span > kLongestSpan)
            throw Failure{kWrongUse, Say(Text::SpanRange, {name, WordsFromSpan(kShortest), WordsFromSpan(kLongestSpan)})};
        record.rotateEvery = *span;
    } else if (const auto bytes = BytesFromWords(text)) {
        if (*bytes < kLeast || *bytes > kLargest)
            throw Failure{kWrongUse, Say(Text::BytesRange, {name, std::to_string(kLeast), std::to_string(kLargest)})};
        record.rotateSize = *bytes;
    } else {
        throw Failure{kWrongUse, Say(Text::NotARotation, {name})};
    }
}

void CheckEarlier(const RecordingWriter::Plan& record, bool force, CPropertyDB& description) {
    if (record.rotateEvery != 0 || record.rotateSize != 0) return;  // names that nothing has yet
    if (FileExists(record.path) && CRecordingFile::CheckFree(record.path) == ERROR_SHARING_VIOLATION)
        throw Failure{kFileFailed, Say(Text::RecordedElsewhere, {ToUtf8(record.path)})};
    if (record.append && FileExists(record.path)) {
        CRecordingReader reader;
        if (const DWORD error = reader.Open(record.path))
            throw Failure{kFileFailed, Say(Text::FileNotOpened, {ToUtf8(record.path), Reason(error)})};
        return RequireSameLogger(record.path, reader.Facts(), description);
    }
    if (record.append && !record.target.empty() && FileExists(record.target)) {
        // The session becomes a recording again, goes on, and takes its own place at the end.
        const SessionFile session = OpenSession(record.target);
        RequireSameLogger(record.target, *session.db, description);
        StoreAsRecording(record.path, *session.session, *session.db);
        return;
    }
    if (force) return;
    if (!record.target.empty()) {
        RequireReplaceable(record.target, description);
        if (FileExists(record.path))
            throw Failure{kFileFailed, Say(Text::LeftOver, {ToUtf8(record.path), ShellWord(record.target)})};
    } else {
        RequireReplaceable(record.path, description);
    }
}
