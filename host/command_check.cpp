// check: a logger description, without a device.
#include <algorithm>

#include "host/arguments.h"
#include "host/commands.h"
#include "host/logger_file.h"
#include "host/session.h"
#include "host/texts.h"

ExitCode RunCheck(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {}, {}, 1);
    CPropertyDB description;
    LoadLoggerDescription(arguments.At(0, "DESCRIPTION"), description);
    MakeLogger(app, description);  // what it cannot use, it says
    const Session session(description, "");
    for (const Session::Channel& channel : session.Channels()) {
        std::string line = ToUtf8(channel.key) + "  " + ToUtf8(channel.name);
        if (!channel.unit.empty()) line += "  " + ToUtf8(channel.unit);
        Print(line);
    }
    return kDone;
}
