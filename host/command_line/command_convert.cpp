// convert: a session in another form: recording, archive, XML or text.
#include "host/command_line/commands.h"
#include "host/session/csv_export.h"
#include "host/session/csv_file.h"
#include "host/session/database_file.h"
#include "host/session/recording_copy.h"
#include "host/session/recording_files.h"
#include "host/session/session_file.h"
#include "host/words/arguments.h"
#include "host/words/texts.h"

namespace {
bool EndsIn(const std::string& path, const char* wanted) {
    CString end = path.size() < 4 ? "" : path.substr(path.size() - 4).c_str();
    end.MakeLower();
    return end == wanted;
}

SessionFile OpenAny(const std::string& path) {
    if (!EndsInCsv(path) || IsRecording(path)) return OpenSession(path);
    SessionFile file;
    file.path = path;
    LoadCsv(path, *file.db);
    file.session = std::make_unique<Session>(*file.db, path, 0);
    return file;
}
}  // namespace

ExitCode RunConvert(CHostApp&, const Words& words) {
    const Arguments arguments(words, {}, {"--force"}, 2);
    const std::string &from = arguments.At(0, "FROM"), &to = arguments.At(1, "TO");
    if (!EndsIn(to, ".rec") && !EndsIn(to, ".odb") && !EndsIn(to, ".xml") && !EndsIn(to, ".csv"))
        throw Failure{kWrongUse, Say(Text::NotAFormName, {ToUtf8(to)})};
    if (SameFile(from, to)) throw Failure{kWrongUse, Say(Text::OptionsSame, {"FROM", "TO"})};
    if (FileExists(to) && !arguments.Has("--force")) throw Failure{kFileFailed, Say(Text::FileThere, {ToUtf8(to)})};
    RequireWritable(to);
    if (IsRecording(to)) RequireNobodyRecords(to);
    const SessionFile file = OpenAny(from);
    if (SameFile(file.path, to)) throw Failure{kWrongUse, Say(Text::OptionsSame, {"FROM", "TO"})};
    if (!file.note.empty()) PrintError(file.note);
    bool whole = true;
    if (EndsIn(to, ".rec")) {
        whole = StoreAsRecording(to, *file.session, *file.db);
    } else if (EndsIn(to, ".csv")) {
        whole = StoreCsv(to, *file.session);
    } else if (file.session->Recorded() != nullptr) {
        whole = FoldRecording(file.path, to).damaged == 0;
    } else {
        StoreDatabase(to, *file.db, nullptr, FileSize(file.path));
    }
    Print(Say(Text::Converted, {ToUtf8(to)}));
    return whole ? kDone : kFileFailed;
}
