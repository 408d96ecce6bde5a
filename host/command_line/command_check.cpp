// check: a logger description or a station, without a device.
#include <set>

#include "host/command_line/commands.h"
#include "host/logger/logger_file.h"
#include "host/session/database_file.h"
#include "host/session/recording_files.h"
#include "host/session/session.h"
#include "host/station/station_files.h"
#include "host/words/arguments.h"
#include "host/words/isolated.h"
#include "host/words/span_words.h"
#include "host/words/texts.h"

namespace {
ExitCode CheckStation(CHostApp& app, const std::string& path) {
    try {
        std::set<std::string> ports;
        const Station station = ReadStation(app, path);
        // Its recorder may run.
        const auto held = [](const std::string& recording) { return FileExists(recording) && IsRecordedInto(recording); };
        StationMistakes files{FindFileMistakes(station, held)};
        if (!files.sentences.empty()) throw files;
        for (const auto& logger : station.loggers) {
            CPropertyDB description = logger->description;
            const Session session(description, logger->plan.port);
            ports.insert(logger->plan.port);
            Print(Isolated(ToUtf8(logger->key)) + "  " + Isolated(ToUtf8(logger->plan.port)) + "  " +
                  WordsFromSpan(logger->record.interval) + "  " + std::to_string(session.Channels().size()) + "  " +
                  Isolated(ToUtf8(logger->record.path)));
        }
        Print(Say(Text::StationWhole,
                  {ToUtf8(station.name), std::to_string(station.loggers.size()), std::to_string(ports.size())}));
        return kDone;
    } catch (const StationMistakes& mistakes) {
        for (const std::string& sentence : mistakes.sentences) PrintError(sentence);
        return kWrongUse;
    }
}
}  // namespace

ExitCode RunCheck(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {}, {}, 1);
    const std::string& path = arguments.At(0, "FILE");
    CPropertyDB description;
    LoadLoggerDescription(path, description);
    if (IsStation(description)) return CheckStation(app, path);
    MakeLogger(app, description);  // what it cannot use, it says
    const Session session(description, "");
    for (const Session::Channel& channel : session.Channels()) {
        std::string line = Isolated(ToUtf8(channel.key)) + "  " + Isolated(ToUtf8(channel.name));
        if (!channel.unit.empty()) line += "  " + Isolated(ToUtf8(channel.unit));
        Print(line);
    }
    return kDone;
}
