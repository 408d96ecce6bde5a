// simulate: be a logger on a virtual port until stopped.
#include <chrono>
#include <thread>

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
}  // namespace

ExitCode RunSimulate(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {"--logger", "--fault", "--link"}, {}, 0);
    const LineFault fault = FaultNamed(arguments.Get("--fault"));
    CPropertyDB description;
    LoadLoggerDescription(arguments.Get("--logger"), description);
    SimulatedLine line(MakeSimulator(app, description), fault, Text::NoSimulator, arguments.Get("--link"));
    const StopRequest stop;
    Print(line.PortName());
    Print(Say(Text::Serving));
    std::thread server([&] { line.Serve(); });
    while (!StopRequest::Asked()) std::this_thread::sleep_for(std::chrono::milliseconds(50));
    line.Stop();
    server.join();
    return kDone;
}
