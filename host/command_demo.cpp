// demo: the main job on a simulated logger, with everything it leaves behind.
#include <algorithm>
#include <cmath>
#include <thread>

#include "host/arguments.h"
#include "host/chart_file.h"
#include "host/commands.h"
#include "host/database_file.h"
#include "host/download.h"
#include "host/logger_file.h"
#include "host/simulated_line.h"
#include "host/texts.h"
#include "host/value_text.h"

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
        : m_line(std::move(simulator), LineFault::None, Text::NoVirtualPorts), m_thread([this] { m_line.Serve(); }) {}
    ~Served() {
        m_line.Stop();
        m_thread.join();
    }
    std::string PortName() const { return m_line.PortName(); }

private:
    SimulatedLine m_line;
    std::thread m_thread;
};

// A comment where the first channel is lowest, as somebody who looks at the chart might leave it: it hangs below the curve.
void TagLowest(const Session& session, ChartModel& model) {
    const Session::Channel& channel = session.Channels().front();
    const double* const values = channel.values.GetData();
    const double* const lowest = std::min_element(values, values + session.Count(),
                                                  [](double a, double b) { return a < b || (std::isnan(b) && !std::isnan(a)); });
    if (!std::isfinite(*lowest)) return;
    std::string text;
    if (!FromUtf8(Say(Text::Lowest, {ShortTextOf(*lowest), ToUtf8(channel.unit)}), text)) return;
    model.AddTag(session.Times().GetAt(lowest - values), *lowest, text);
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
    const Arguments arguments(words, {"--out", "--port"}, {}, 0);
    const std::string folder = arguments.Has("--out") ? arguments.Require("--out") : "out";
    CPropertyDB description;
    LoadLoggerDescription("", description);

    std::unique_ptr<Served> served;
    DownloadPlan plan;
    plan.port = arguments.Get("--port");
    if (plan.port.empty()) {
        served = std::make_unique<Served>(MakeSimulator(app, description));
        plan.port = served->PortName();
    }
    MakeFolder(folder);
    plan.count = 80;  // enough for curves, and done in a few seconds
    plan.interval = 40;
    plan.traceFile = folder + "/trace.txt";
    plan.traceHex = true;

    Session session(description, plan.port);
    const std::optional<Failure> ended = Download(app, description, plan, session);
    if (session.Count() > 0) {
        ChartModel model(session, {});
        TagLowest(session, model);
        CPropertyDB db;
        session.Store(db);
        model.Store(db);
        StoreDatabase(folder + "/session.odb", db);
        StoreDatabase(folder + "/session.xml", db);
        WriteChart(model, folder + "/chart.png", {1600, 900});
    }
    const bool traced = app.StopTrace();
    if (ended) throw *ended;
    if (!traced) throw Failure{kFileFailed, Say(Text::TraceNotWhole, {ToUtf8(plan.traceFile)})};
    Print(Shortened(session.Table()));
    Print(Say(Text::FilesMade));
    for (const char* name : {"chart.png", "session.odb", "session.xml", "trace.txt"}) Print("  " + ToUtf8(folder) + "/" + name);
    Print("");
    Print(Say(Text::RealDevice));
    return kDone;
}
