// simulate: be a logger on a virtual port, or on the network, until stopped.
#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

#include "host/app/stop_request.h"
#include "host/command_line/commands.h"
#include "host/logger/logger_file.h"
#include "host/logger/simulated_line.h"
#include "host/logger/simulated_server.h"
#include "host/words/arguments.h"
#include "host/words/texts.h"

namespace {
template <class Line>
void ServeUntilStopped(Line& line, const std::string& name) {
    const StopRequest stop;
    Print(name);
    Print(Say(Text::Serving));
    std::atomic<bool> gone = false;
    std::thread server([&] {
        line.Serve();
        gone = true;
    });
    while (!StopRequest::Asked()) {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        if (gone.exchange(false)) Print(Say(Text::PlugPulled, {name}));
    }
    line.Stop();
    server.join();
}
}  // namespace

ExitCode RunSimulate(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {"--logger", "--link", "--port", "--late-by", "--seed"}, {}, 0, {"--fault"});
    constexpr DWORD kHour = 3'600'000, kLateBy = 2000;  // ms
    const DWORD lateBy = arguments.Milliseconds("--late-by", 0, kHour, kLateBy);
    const DWORD seed = arguments.Number("--seed", 0, 0xFFFFFFFF, std::random_device()());
    if (arguments.Has("--port") && arguments.Has("--link")) throw Failure{kWrongUse, Say(Text::LinkOfNetwork)};
    CPropertyDB description;
    LoadLoggerDescription(arguments.Get("--logger"), description);
    std::unique_ptr<ILoggerSimulator> simulator = MakeSimulator(app, description);
    LineFaults faults(arguments.All("--fault"), *simulator, lateBy, seed);
    SimulatedLogger logger(std::move(simulator), std::move(faults));
    if (arguments.Has("--port")) {
        SimulatedServer server(logger, arguments.Require("--port"));
        ServeUntilStopped(server, ToUtf8(server.Address()));
    } else {
        SimulatedLine line(logger, Text::NoSimulator, arguments.Get("--link"));
        ServeUntilStopped(line, line.PortName());
    }
    return kDone;
}
