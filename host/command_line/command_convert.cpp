// convert: a session in another form: recording, archive, XML or text.
#include <algorithm>

#include "host/command_line/commands.h"
#include "host/command_line/send_session.h"
#include "host/sending/sink_settings.h"
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

// One of the sessions that a database of the sink's holds.
SessionFile OpenInDatabase(CHostApp& app, const std::string& path, const std::string& name) {
    if (!FileExists(path)) throw Failure{kFileFailed, Say(Text::FileNotFound, {ToUtf8(path)})};
    SessionFile file;
    file.path = path;
    try {
        ISinkFamily& family = SinkFamily(app, "SQLite");
        std::vector<std::string> names;
        family.Sessions(path.c_str(), names);
        if (names.empty()) throw Failure{kFileFailed, Say(Text::NoSessionsIn, {ToUtf8(path)})};
        std::string all;
        for (const std::string& one : names) all += "\n  " + one;
        const bool known = std::find(names.begin(), names.end(), name) != names.end();
        if (name.empty() && names.size() > 1) throw Failure{kWrongUse, Say(Text::ChooseSession, {ToUtf8(path)}) + all};
        if (!name.empty() && !known) throw Failure{kWrongUse, Say(Text::NoSessionOfName, {ToUtf8(path), ToUtf8(name)}) + all};
        family.LoadSession(path.c_str(), known ? name : names.front(), *file.db);
    } catch (const CSinkFailure& failure) {
        throw Failure{kFileFailed, std::string(failure.what()) + "."};
    }
    file.session = std::make_unique<Session>(*file.db, path, 0);
    return file;
}

// Into a database, beside what that holds.
ExitCode AddToDatabase(CHostApp& app, const std::string& from, const std::string& to) {
    CPropertyDB settings;
    settings.SetValue("sSink", "SQLite");
    settings.SetValue("sFile", to.c_str());
    const std::unique_ptr<ISink> sink = MakeSink(app, *ReadSinkSettings(app, settings, {}, {}));
    Print(Say(Text::Sent, {ToUtf8(from), std::to_string(SendSession(from, *sink, {}))}));
    return kDone;
}

SessionFile OpenAny(CHostApp& app, const std::string& path, const std::string& name) {
    if (IsSqliteName(path)) return OpenInDatabase(app, path, name);
    if (!name.empty()) throw Failure{kWrongUse, Say(Text::SessionOnlyInDatabases)};
    if (!EndsInCsv(path) || IsRecording(path)) return OpenSession(path);
    SessionFile file;
    file.path = path;
    LoadCsv(path, *file.db);
    file.session = std::make_unique<Session>(*file.db, path, 0);
    return file;
}
}  // namespace

ExitCode RunConvert(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {"--session"}, {"--force"}, 2);
    const std::string &from = arguments.At(0, "FROM"), &to = arguments.At(1, "TO");
    if (IsSqliteName(to) && !IsSqliteName(from)) return AddToDatabase(app, from, to);
    if (!EndsIn(to, ".rec") && !EndsIn(to, ".odb") && !EndsIn(to, ".xml") && !EndsIn(to, ".csv"))
        throw Failure{kWrongUse, Say(Text::NotAFormName, {ToUtf8(to)})};
    if (SameFile(from, to)) throw Failure{kWrongUse, Say(Text::OptionsSame, {"FROM", "TO"})};
    if (FileExists(to) && !arguments.Has("--force")) throw Failure{kFileFailed, Say(Text::FileThere, {ToUtf8(to)})};
    RequireWritable(to);
    if (IsRecording(to)) RequireNobodyRecords(to);
    const SessionFile file = OpenAny(app, from, arguments.Get("--session"));
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
