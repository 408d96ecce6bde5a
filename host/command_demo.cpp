// demo: the main job on a simulated logger, with everything it leaves behind.
#include <thread>

#include "host/arguments.h"
#include "host/commands.h"
#include "host/database_file.h"
#include "host/download.h"
#include "host/logger_file.h"
#include "host/simulated_line.h"
#include "host/texts.h"

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
    plan.count = 12;
    plan.interval = 100;
    plan.traceFile = folder + "/trace.txt";
    plan.traceHex = true;

    Session session(description, plan.port);
    const std::optional<Failure> ended = Download(app, description, plan, session);
    if (session.Count() > 0) {
        CPropertyDB db;
        session.Store(db);
        StoreDatabase(folder + "/session.odb", db);
        StoreDatabase(folder + "/session.xml", db);
    }
    const bool traced = app.StopTrace();
    if (ended) throw *ended;
    if (!traced) throw Failure{kFileFailed, Say(Text::TraceNotWhole, {ToUtf8(plan.traceFile)})};
    Print(session.Table());
    Print(Say(Text::FilesMade));
    for (const char* name : {"session.odb", "session.xml", "trace.txt"}) Print("  " + ToUtf8(folder) + "/" + name);
    Print("");
    Print(Say(Text::RealDevice));
    return kDone;
}
