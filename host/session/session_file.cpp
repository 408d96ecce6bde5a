#include "host/session/session_file.h"

#include "host/session/database_file.h"
#include "host/session/recording_files.h"
#include "host/words/shell_word.h"
#include "host/words/texts.h"

namespace {
bool IsOwnRecording(const std::string& path, const Session& session) {
    return session.Recorded() != nullptr && SameFile(path, session.Recorded()->Path());
}
}  // namespace

bool HasSessionName(const std::string& path) {
    CString end = path.size() < 4 ? "" : path.substr(path.size() - 4).c_str();
    end.MakeLower();
    return end == ".odb" || IsXmlName(path);
}

std::string FileOfSession(const std::string& path, std::string& note) {
    const std::string beside = RecordingBeside(path);
    const bool there = FileExists(path);
    if ((there && IsRecording(path)) || !IsRecording(beside)) return path;
    const bool grows = IsRecordedInto(beside);
    const Text open = grows ? Text::RecordingOpenedGrows : Text::RecordingOpened,
               left = grows ? Text::RecordingGrows : Text::RecordingIsBeside;
    note = Say(there ? left : open, {ToUtf8(path), ToUtf8(beside), ShellWord(path)});
    return there ? path : beside;
}

SessionFile OpenSession(const std::string& path, WorkProgress* progress) {
    SessionFile file;
    file.path = FileOfSession(path, file.note);
    if (IsRecording(file.path)) {
        auto readings = std::make_unique<RecordedSeries>(file.path);
        file.db->OverlayCopy(&readings->Facts(), nullptr, nullptr, TRUE);
        if (const std::string trouble = readings->Trouble(); !trouble.empty()) file.note = trouble;
        file.session = std::make_unique<Session>(*file.db, std::move(readings));
    } else {
        LoadDatabase(file.path, *file.db, progress);
        file.session = std::make_unique<Session>(*file.db, file.path, 0);
    }
    return file;
}

void RequireSavable(const std::string& path, const Session& session) {
    if (IsOwnRecording(path, session)) return RequireNobodyRecords(path);
    if (EndsInRec(path) || IsRecording(path)) throw Failure{kFileFailed, Say(Text::RecordingNotReplaced, {ToUtf8(path)})};
    RequireWritable(path);
}

void SaveSession(const std::string& path, const Session& session, CPropertyDB& db, WorkProgress* progress,
                 unsigned __int64 size) {
    RequireSavable(path, session);
    if (IsOwnRecording(path, session)) return SaveIntoRecording(path, db);
    if (session.Recorded() == nullptr) return StoreDatabase(path, db, progress, size);
    // The readings stand in their recording only.
    CPropertyDB whole;
    session.Store(whole);
    whole.OverlayCopy(&db, nullptr, nullptr, TRUE);
    StoreDatabase(path, whole, progress, size);
}
