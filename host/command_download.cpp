// download: read a logger on a port into a session file.
#include "host/arguments.h"
#include "host/commands.h"
#include "host/database_file.h"
#include "host/download.h"
#include "host/logger_file.h"
#include "host/texts.h"

ExitCode RunDownload(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {"--port", "--logger", "--count", "--interval", "--for", "--timeout", "--out", "--trace"},
                              {"--hex"}, 0);
    DownloadPlan plan;
    plan.port = arguments.Require("--port");
    const std::string out = arguments.Require("--out");
    plan.count = arguments.Number("--count", 1, kMostReadings, plan.count);
    plan.interval = arguments.Milliseconds("--interval", 0, kWeek, plan.interval);
    plan.timeout = arguments.Milliseconds("--timeout", 1, 600'000, plan.timeout);
    if (arguments.Has("--for")) {
        if (arguments.Has("--count")) throw Failure{kWrongUse, Say(Text::OptionsExclude, {"--for", "--count"})};
        if (plan.interval == 0) throw Failure{kWrongUse, Say(Text::NotASpan, {"--interval"})};
        // Readings at 0, one interval, two intervals ... as long as that is before the end.
        plan.count = (arguments.Milliseconds("--for", 1, 4 * kWeek, 1) + plan.interval - 1) / plan.interval;
    }
    plan.traceFile = arguments.Get("--trace");
    plan.traceHex = arguments.Has("--hex");
    if (plan.traceHex && plan.traceFile.empty()) throw Failure{kWrongUse, Say(Text::OptionAlone, {"--hex", "--trace"})};
    if (!plan.traceFile.empty() && SameFile(plan.traceFile, out))
        throw Failure{kWrongUse, Say(Text::OptionsSame, {"--out", "--trace"})};

    CPropertyDB description;
    LoadLoggerDescription(arguments.Get("--logger"), description);
    RequireWritable(out);
    Session session(description, plan.port);
    const std::optional<Failure> ended = Download(app, description, plan, session);
    const std::string count = std::to_string(session.Count());
    if (session.Count() > 0 || !ended) {
        CPropertyDB db;
        session.Store(db);
        StoreDatabase(out, db);
    }
    const bool traced = app.StopTrace();
    if (ended && session.Count() > 0) throw Failure{ended->exitCode, Say(Text::Partial, {ended->sentence, count, ToUtf8(out)})};
    if (ended) throw *ended;
    if (!traced) throw Failure{kFileFailed, Say(Text::TraceNotWhole, {ToUtf8(plan.traceFile)})};
    Print(Say(Text::Saved, {count, std::to_string(session.Channels().size()), ToUtf8(out)}));
    return kDone;
}
