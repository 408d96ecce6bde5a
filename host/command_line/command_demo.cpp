// demo: the main job on a simulated logger, with everything it leaves behind.
#include <algorithm>
#include <cmath>
#include <thread>

#include "host/chart/chart_file.h"
#include "host/command_line/commands.h"
#include "host/logger/logger_file.h"
#include "host/logger/simulated_line.h"
#include "host/measurement/download.h"
#include "host/measurement/replaceable_file.h"
#include "host/session/database_file.h"
#include "host/session/recording_files.h"
#include "host/session/value_text.h"
#include "host/words/arguments.h"
#include "host/words/shell_word.h"
#include "host/words/texts.h"

namespace {
void MakeFolder(const std::string& folder) {
    if (CreateDirectoryA(folder.c_str(), nullptr)) return;
    const DWORD error = GetLastError();
    const DWORD attributes = GetFileAttributesA(folder.c_str());
    const bool there = attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    if (!there) throw Failure{kFileFailed, Say(Text::FolderNotMade, {ToUtf8(folder), Reason(error)})};
}

// The simulated logger answers on a thread of its own while this object lives.
class Served {
public:
    explicit Served(std::unique_ptr<ILoggerSimulator> simulator)
        : m_logger(std::move(simulator), LineFaults()),
          m_line(m_logger, Text::NoVirtualPorts),
          m_thread([this] { m_line.Serve(); }) {}
    ~Served() {
        m_line.Stop();
        m_thread.join();
    }
    std::string PortName() const { return m_line.PortName(); }

private:
    SimulatedLogger m_logger;
    SimulatedLine m_line;
    std::thread m_thread;
};

// A comment where the first channel is lowest, as somebody who looks at the chart might leave it: it hangs below the curve. Its
// text is kept, so that it is not taken for one of the user's.
void TagLowest(const Session& session, ChartModel& model, CPropertyDB& db) {
    const Session::Channel& channel = session.Channels().front();
    const double* const values = channel.values.GetData();
    const double* const lowest = std::min_element(values, values + session.Count(),
                                                  [](double a, double b) { return a < b || (std::isnan(b) && !std::isnan(a)); });
    if (!std::isfinite(*lowest)) return;
    const std::string text = Say(Text::Lowest, {ShortTextOf(*lowest), ToUtf8(channel.unit)});
    model.AddTag(session.Times().GetAt(lowest - values), *lowest, text);
    db.SetValue("Session.sOwnComment", text.c_str());
}

// What the demonstration made before may go, unless its user wrote comments into it. A file of one of its names that came there
// otherwise stays: where there is no session of its own, nothing else is.
void RequireOwnFolder(const std::string& session, CPropertyDB& description, const std::vector<std::string>& others, bool force) {
    if (force) return;
    RequireReplaceable(session, description);
    if (FileExists(RecordingBeside(session)))
        throw Failure{kFileFailed, Say(Text::LeftOverDemo, {ToUtf8(RecordingBeside(session)), ShellWord(session)})};
    if (FileExists(session)) return;
    for (const std::string& file : others) {
        if (FileExists(file)) throw Failure{kFileFailed, Say(Text::NotOurs, {ToUtf8(file)})};
    }
}

// The heading and the first and last few lines of a long table.
std::string Shortened(const std::string& table) {
    constexpr size_t kEnds = 6;
    std::vector<std::string> lines;
    for (size_t at = 0; at < table.size();) {
        const size_t end = table.find('\n', at);
        lines.push_back(table.substr(at, end - at + 1));
        at = end == std::string::npos ? table.size() : end + 1;
    }
    std::string text;
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i <= kEnds || i + kEnds >= lines.size()) text += lines[i];
        if (i == kEnds && lines.size() > 2 * kEnds + 1) text += "...\n";
    }
    return text;
}
}  // namespace

ExitCode RunDemo(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {"--out", "--port"}, {"--force"}, 0);
    const std::string folder = arguments.Has("--out") ? arguments.Require("--out") : "out";
    CPropertyDB description;
    LoadLoggerDescription("", description);

    const std::string session = folder + "/session.odb", copy = folder + "/session.xml", chart = folder + "/chart.png";
    DownloadPlan plan;
    plan.traceFile = folder + "/trace.txt";
    plan.traceHex = true;
    RequireOwnFolder(session, description, {copy, chart, plan.traceFile}, arguments.Has("--force"));

    std::unique_ptr<Served> served;
    plan.port = arguments.Get("--port");
    if (plan.port.empty()) {
        served = std::make_unique<Served>(MakeSimulator(app, description));
        plan.port = served->PortName();
    }
    MakeFolder(folder);
    plan.count = 80;  // enough for curves, and done in a few seconds
    plan.interval = 40;
    plan.shifts = true;  // all of them, also on a machine that is busy

    RecordingWriter::Plan record;
    record.path = RecordingBeside(session);
    record.target = session;
    const DownloadResult result = Download(app, description, plan, record);
    const bool traced = app.StopTrace();
    if (result.files.empty()) throw *result.failure;
    LayAside(record.path, session, FoldRecording(record.path, session));

    CPropertyDB db;
    LoadDatabase(session, db);
    const Session readings(db, session, 0);
    ChartModel model(readings, {});
    if (readings.Count() > 0) TagLowest(readings, model, db);
    model.Store(db);
    StoreDatabase(session, db);
    StoreDatabase(copy, db);
    WriteChart(model, chart, {1600, 900});
    TellLettersWithoutFont(model);
    if (result.failure) throw *result.failure;
    if (result.end == Measurement::Ended::Stopped)
        throw Failure{kCommunicationFailed, Say(Text::Stopped, {std::to_string(result.made)})};
    if (result.missing > 0)
        throw Failure{
            kCommunicationFailed,
            Say(Text::Missing,
                {Say(Text::Saved, {std::to_string(result.made), std::to_string(readings.Channels().size()), ToUtf8(session)}),
                 std::to_string(result.missing), CausesText(result.causes, description)})};
    if (!traced) throw Failure{kFileFailed, Say(Text::TraceNotWhole, {ToUtf8(plan.traceFile)})};
    Print(Shortened(readings.Table()));
    Print(Say(Text::FilesMade));
    for (const char* name : {"chart.png", "session.odb", "session.xml", "trace.txt"}) Print("  " + ToUtf8(folder) + "/" + name);
    Print("");
    Print(Say(Text::RealDevice));
    return kDone;
}
