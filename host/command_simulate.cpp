// simulate: be a logger on a virtual port until stopped.
#include <chrono>
#include <thread>

#include "comm/comm_exception.h"
#include "host/arguments.h"
#include "host/commands.h"
#include "host/logger_file.h"
#include "host/simulated_line.h"
#include "host/stop_request.h"
#include "host/texts.h"

namespace {
LineFault FaultNamed(const std::string& name) {
    if (name.empty()) return LineFault::None;
    if (name == "noise") return LineFault::Noise;
    if (name == "silent") return LineFault::Silent;
    if (name == "unplug") return LineFault::Unplug;
    throw Failure{kWrongUse, Say(Text::UnknownFault, {ToUtf8(name)})};
}

std::unique_ptr<ILoggerSimulator> CreateSimulator(CHostApp& app, CPropertyDB& description) {
    CString family;
    description.GetValue("sFamily", family);
    ILoggerFamily* plugin = app.Plugins().Find(static_cast<const char*>(family));
    if (plugin == nullptr) {
        throw Failure{kWrongUse,
                      Say(Text::NoFamily, {ToUtf8(static_cast<const char*>(family)), ToUtf8(PluginLibrary::Folders().front())})};
    }
    try {
        return std::unique_ptr<ILoggerSimulator>(plugin->CreateSimulator(description));
    } catch (CCommException* failure) {
        const std::string text = ToUtf8(static_cast<const char*>(failure->m_strError));
        failure->Delete();
        throw Failure{kWrongUse, Say(Text::DescriptionWrong, {text})};
    }
}
}  // namespace

ExitCode RunSimulate(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {"--logger", "--fault", "--link"}, {}, 0);
    const LineFault fault = FaultNamed(arguments.Get("--fault"));
    CPropertyDB description;
    LoadLoggerDescription(arguments.Get("--logger"), description);
    SimulatedLine line(CreateSimulator(app, description), fault, arguments.Get("--link"));
    const StopRequest stop;
    Print(line.PortName());
    Print(Say(Text::Serving));
    std::thread server([&] { line.Serve(); });
    while (!StopRequest::Asked()) std::this_thread::sleep_for(std::chrono::milliseconds(50));
    line.Stop();
    server.join();
    return kDone;
}
