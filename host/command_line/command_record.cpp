// record, status, reload: the loggers of a station side by side, and what their recorder does.
#include <thread>

#include "host/command_line/commands.h"
#include "host/measurement/recording_clock.h"
#include "host/session/database_file.h"
#include "host/session/value_text.h"
#include "host/station/station_recorder.h"
#include "host/station/station_status.h"
#include "host/words/arguments.h"
#include "host/words/texts.h"
#include "platform/service.h"

namespace {
[[noreturn]] void Refuse(const std::string& path, const StationMistakes& mistakes) {
    for (const std::string& sentence : mistakes.sentences) PrintError(sentence);
    throw Failure{kWrongUse, Say(Text::StationRefused, {ToUtf8(path), std::to_string(mistakes.sentences.size())})};
}

// The status of a station by its file, or the status file itself.
std::string StatusOf(const std::string& path) {
    StationStatus status;
    return status.Load(path) ? path : StatusFileOf(path);
}

StationStatus LoadStatus(const std::string& path, const std::string& file) {
    StationStatus status;
    // It may just be replaced.
    for (int attempt = 0; !status.Load(file); ++attempt) {
        if (attempt == 3) throw Failure{kFileFailed, Say(Text::StationNoStatus, {ToUtf8(path), ToUtf8(file)})};
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return status;
}
// What --metrics asks for: the same as a sink of that family in the station's file.
std::shared_ptr<const SinkSettings> MetricsSink(CHostApp& app, const std::string& address) {
    CPropertyDB db;
    db.SetValue("sSink", "Prometheus");
    db.SetValue("sAddress", address.c_str());
    try {
        return ReadSinkSettings(app, db, "--metrics", "");
    } catch (const Failure& failure) {
        throw Failure{failure.exitCode, "--metrics: " + failure.sentence};
    }
}
}  // namespace

ExitCode RunRecord(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {"--trace", "--metrics"}, {"--hex"}, 1);
    const std::string path = arguments.At(0, "STATION"), trace = arguments.Get("--trace");
    if (arguments.Has("--hex") && trace.empty()) throw Failure{kWrongUse, Say(Text::OptionAlone, {"--hex", "--trace"})};
    OrvikAllowManyFiles();
    StationRecorder::Result result;
    try {
        Station station = ReadStation(app, path);
        if (!trace.empty()) app.StartTrace(trace);
        std::vector<std::shared_ptr<const SinkSettings>> more;
        if (!arguments.Get("--metrics").empty()) more.push_back(MetricsSink(app, arguments.Get("--metrics")));
        result = StationRecorder(app, std::move(station), std::move(more), !trace.empty(), arguments.Has("--hex")).Run();
    } catch (const StationMistakes& mistakes) {
        Refuse(path, mistakes);
    }
    const bool traced = app.StopTrace();
    for (const std::string& line : result.lines) Print(line);
    if (!result.whole || result.missing > 0) return kCommunicationFailed;
    if (!traced) throw Failure{kFileFailed, Say(Text::TraceNotWhole, {ToUtf8(trace)})};
    return kDone;
}

ExitCode RunStatus(CHostApp&, const Words& words) {
    const Arguments arguments(words, {}, {"--json"}, 1);
    const std::string path = arguments.Count() > 0 ? arguments.At(0, "STATION") : std::string("station.xml");
    const StationStatus status = LoadStatus(path, StatusOf(path));
    const bool runs = status.Runs(SystemClock().Calendar());
    Print(arguments.Has("--json") ? status.Json(runs) : status.Words(runs));
    if (!runs) return kFileFailed;
    for (const StationStatus::Logger& logger : status.loggers) {
        if (logger.report.state != LoggerState::Reads && (logger.report.state != LoggerState::Over || !logger.report.why.empty()))
            return kCommunicationFailed;
    }
    return kDone;
}

ExitCode RunReload(CHostApp&, const Words& words) {
    const Arguments arguments(words, {}, {}, 1);
    const std::string& path = arguments.At(0, "STATION");
    const std::string file = StatusOf(path), wish = ReloadWishOf(file);
    const StationStatus before = LoadStatus(path, file);
    if (!before.Runs(SystemClock().Calendar()))
        throw Failure{kFileFailed, Say(before.ended ? Text::StationEnded : Text::StationStale,
                                       {ToUtf8(before.name), TimeTextOf(before.written)})};
    CFile made;
    CFileException failure;
    if (!made.Open(wish.c_str(), CFile::modeCreate | CFile::modeWrite, &failure))
        throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(wish), Reason(static_cast<DWORD>(failure.m_lOsError))})};
    made.Close();
    constexpr int kSeconds = 10, kLooks = 10;  // each second
    for (int look = 0; FileExists(wish); ++look) {
        if (look == kSeconds * kLooks) throw Failure{kFileFailed, Say(Text::StationReloadWaits, {std::to_string(kSeconds)})};
        std::this_thread::sleep_for(std::chrono::milliseconds(1000 / kLooks));
    }
    const StationStatus after = LoadStatus(path, file);
    if (after.refused) throw Failure{kWrongUse, after.reloaded};
    Print(after.reloaded);
    return kDone;
}
