// send: what sessions and recordings hold, to a broker, a database or a service.
#include "host/command_line/commands.h"
#include "host/command_line/send_session.h"
#include "host/sending/sink_settings.h"
#include "host/session/database_file.h"
#include "host/words/arguments.h"
#include "host/words/texts.h"

namespace {
constexpr size_t kMostFiles = 10'000;

// A file of settings, or the file of a database.
std::unique_ptr<ISink> SinkOf(CHostApp& app, const std::string& to) {
    CPropertyDB db;
    if (IsSqliteName(to)) {
        db.SetValue("sSink", "SQLite");
        db.SetValue("sFile", to.c_str());
        return MakeSink(app, *ReadSinkSettings(app, db, {}, {}));
    }
    LoadDatabase(to, db);
    if (IsXmlName(to)) CheckXml(to);
    try {
        return MakeSink(app, *ReadSinkSettings(app, db, {}, to));
    } catch (const Failure& failure) {
        throw Failure{failure.exitCode, ToUtf8(to) + ": " + failure.sentence};
    }
}
}  // namespace

ExitCode RunSend(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {"--to", "--station", "--logger"}, {}, kMostFiles);
    const std::unique_ptr<ISink> sink = SinkOf(app, arguments.Require("--to"));
    arguments.At(0, "FILE");
    for (size_t i = 0; i < arguments.Count(); ++i) {
        const std::string& path = arguments.At(i, "FILE");
        const unsigned __int64 sent = SendSession(path, *sink, {arguments.Get("--station"), arguments.Get("--logger")});
        Print(Say(Text::Sent, {ToUtf8(path), std::to_string(sent)}));
    }
    return kDone;
}
