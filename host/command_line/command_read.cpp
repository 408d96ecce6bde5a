// read: one reading of a logger, shown and kept nowhere.
#include "host/app/stop_request.h"
#include "host/command_line/commands.h"
#include "host/logger/logger_file.h"
#include "host/measurement/one_reading.h"
#include "host/session/reading_writer.h"
#include "host/words/arguments.h"
#include "host/words/texts.h"

ExitCode RunRead(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {"--port", "--logger", "--timeout"}, {"--csv", "--json"}, 0);
    if (arguments.Has("--csv") && arguments.Has("--json"))
        throw Failure{kWrongUse, Say(Text::OptionsExclude, {"--csv", "--json"})};
    MeasurementPlan plan;
    plan.port = arguments.Require("--port");
    plan.timeout = arguments.Milliseconds("--timeout", 1, 600'000, plan.timeout);
    plan.stopAsked = [] { return StopRequest::Asked(); };
    CPropertyDB description;
    LoadLoggerDescription(arguments.Get("--logger"), description);
    const std::unique_ptr<ILogger> logger = MakeLogger(app, description);
    const Session session(description, plan.port);
    const StopRequest stop(logger.get());
    const OneReading reading = ReadOnce(*logger, session, plan);

    std::string text;
    if (arguments.Has("--csv") || arguments.Has("--json")) {
        const auto writer = arguments.Has("--csv") ? MakeCsvWriter(session, ChannelsNamed(session, {}), {})
                                                   : MakeJsonWriter(session, ChannelsNamed(session, {}));
        writer->Heading(text);
        writer->Row(text, reading.time, reading.values.data());
    } else {
        text = reading.Lines(session);
        if (!arguments.Has("--logger")) text += Say(Text::ReadAsDefault) + "\n";
    }
    std::fwrite(text.data(), 1, text.size(), stdout);
    if (!reading.whole) throw Failure{kCommunicationFailed, Say(Text::PortFailed, {ToUtf8(plan.port), reading.failure})};
    return kDone;
}
