// download: read a logger on a port into a session or a recording.
#include "host/command_line/commands.h"
#include "host/logger/logger_file.h"
#include "host/measurement/csv_sink.h"
#include "host/measurement/download.h"
#include "host/measurement/recording_plan.h"
#include "host/measurement/replaceable_file.h"
#include "host/session/csv_file.h"
#include "host/session/database_file.h"
#include "host/session/recording_files.h"
#include "host/words/arguments.h"
#include "host/words/shell_word.h"
#include "host/words/texts.h"

namespace {
// The session of a recording that has ended. Where there can be none, the recording keeps the readings, and its user is told so.
// False where the recording turned out to be damaged.
bool Fold(const RecordingWriter::File& file, bool mayReplace, CPropertyDB& description) {
    FoldedRecording folded;
    try {
        // What came there meanwhile is not this download's.
        if (!mayReplace) RequireReplaceable(file.target, description);
        folded = FoldRecording(file.recording, file.target);
    } catch (const Failure& failure) {
        throw Failure{failure.exitCode, Say(Text::NotFolded, {failure.sentence, ToUtf8(file.recording), ShellWord(file.target)})};
    }
    LayAside(file.recording, file.target, folded);
    return folded.damaged == 0;
}
}  // namespace

ExitCode RunDownload(CHostApp& app, const Words& words) {
    const Arguments arguments(words,
                              {"--port", "--logger", "--count", "--interval", "--for", "--timeout", "--out", "--trace",
                               "--give-up", "--rotate", "--csv"},
                              {"--hex", "--append", "--force"}, 0);
    DownloadPlan plan;
    plan.port = arguments.Require("--port");
    const std::string out = arguments.Require("--out");
    plan.count = arguments.Number("--count", 1, kMostReadings, plan.count);
    plan.interval = arguments.Milliseconds("--interval", 0, kWeek, plan.interval);
    plan.timeout = arguments.Milliseconds("--timeout", 1, 600'000, plan.timeout);
    if (arguments.Has("--for")) {
        if (arguments.Has("--count")) throw Failure{kWrongUse, Say(Text::OptionsExclude, {"--for", "--count"})};
        plan.duration = arguments.Span("--for", 1, kLongestSpan, 1);
    }
    if (arguments.Has("--give-up")) plan.giveUp = arguments.Span("--give-up", 1, kLongestSpan, 1);
    plan.traceFile = arguments.Get("--trace");
    plan.traceHex = arguments.Has("--hex");
    if (plan.traceHex && plan.traceFile.empty()) throw Failure{kWrongUse, Say(Text::OptionAlone, {"--hex", "--trace"})};
    plan.csvFile = arguments.Get("--csv");
    const bool force = arguments.Has("--force");
    if (out == "-" || EndsInCsv(out)) throw Failure{kWrongUse, Say(Text::NotASessionName, {ToUtf8(out)})};

    RecordingWriter::Plan record;
    record.append = arguments.Has("--append");
    record.interval = static_cast<__int64>(plan.interval) * 1000;
    record.target = EndsInRec(out) ? std::string() : out;
    record.path = record.target.empty() ? out : RecordingBeside(out);
    if (arguments.Has("--rotate")) SetRotation("--rotate", arguments.Get("--rotate"), record);
    if (record.append && force) throw Failure{kWrongUse, Say(Text::OptionsExclude, {"--append", "--force"})};
    RequireDifferentFiles({{"--out", out},
                           {"--out", record.path == out ? std::string() : record.path},
                           {"--logger", arguments.Get("--logger")},
                           {"--trace", plan.traceFile},
                           {"--csv", plan.csvFile == "-" ? std::string() : plan.csvFile}});

    CPropertyDB description;
    LoadLoggerDescription(arguments.Get("--logger"), description);
    RequireWritable(out);
    if (!plan.csvFile.empty() && plan.csvFile != "-") {
        RequireWritable(plan.csvFile);
        if (!force && !record.append && FileExists(plan.csvFile) && FileSize(plan.csvFile) > 0)
            throw Failure{kFileFailed, Say(Text::NotOurs, {ToUtf8(plan.csvFile)})};
        if (record.append) RequireOwnCsv(plan.csvFile, description);
    }
    MakeLogger(app, description);  // an earlier session has the keys in their spelling, too
    CheckEarlier(record, force, description);
    plan.csvAppend = record.append;
    const DownloadResult result = Download(app, description, plan, record);
    const bool traced = app.StopTrace();

    const std::string causes = CausesText(result.causes, description);
    const bool stopped = result.end == Measurement::Ended::Stopped;
    std::string names;
    bool damaged = false;
    // Where nothing was read, what stands there is worth more.
    const bool nothing = result.made == 0 && !record.append;
    const auto nothingRead = [&](const std::string& kept) {
        const std::string why = result.failure ? result.failure->sentence : stopped ? Say(Text::Stopped, {"0"}) : causes;
        return Failure{kCommunicationFailed, Say(Text::NothingRead, {why, ToUtf8(kept)})};
    };
    for (const RecordingWriter::File& file : result.files) {
        if (!file.target.empty()) {
            if (nothing && FileExists(file.target)) {
                DeleteFileA(file.recording.c_str());
                throw nothingRead(file.target);
            }
            try {
                damaged = !Fold(file, force || record.append, description) || damaged;
            } catch (Failure& failure) {
                if (result.failure) failure.sentence = result.failure->sentence + " " + failure.sentence;
                throw;
            }
        }
        names += (names.empty() ? "" : ", ") + ToUtf8(file.target.empty() ? file.recording : file.target);
    }
    if (result.files.empty()) {
        if (result.end == Measurement::Ended::NeverConnected) throw *result.failure;
        throw nothingRead(record.path);
    }
    CStringArray channels;
    description.Enum("Channels", channels, FALSE, FALSE);
    std::string whole = Say(Text::Saved, {std::to_string(result.made), std::to_string(channels.GetSize()), names});
    if (!arguments.Has("--logger")) whole += Say(Text::DefaultLogger);
    if (stopped) whole = Say(Text::StoppedSaved, {whole});
    if (result.missing > 0) whole = Say(Text::Missing, {whole, std::to_string(result.missing), causes});
    if (result.failure) throw Failure{result.failure->exitCode, Say(Text::Partial, {result.failure->sentence, whole})};
    if (result.missing > 0 || (stopped && result.made == 0)) throw Failure{kCommunicationFailed, whole};
    if (damaged) throw Failure{kFileFailed, whole};
    if (!traced) throw Failure{kFileFailed, Say(Text::TraceNotWhole, {ToUtf8(plan.traceFile)})};
    if (!result.csvWhole) throw Failure{kFileFailed, Say(Text::CsvNotWhole, {ToUtf8(plan.csvFile)})};
    if (plan.csvFile != "-") Print(whole);
    return kDone;
}
