// orvikhost: the reference host's command line. --help lists what it does.
#include <new>

#include "host/command_line/commands.h"
#include "host/words/texts.h"
#include "platform/arguments.h"
#include "platform/house_text.h"

namespace {
struct Command {
    const char* name;
    ExitCode (*run)(CHostApp&, const Words&);
};
constexpr Command kCommands[] = {
    {"demo", RunDemo},     {"ports", RunPorts},   {"simulate", RunSimulate}, {"download", RunDownload}, {"show", RunShow},
    {"chart", RunChart},   {"db", RunDb},         {"locale", RunLocale},     {"version", RunVersion},   {"script", RunScript},
    {"read", RunRead},     {"check", RunCheck},   {"convert", RunConvert},   {"recover", RunRecover},   {"record", RunRecord},
    {"status", RunStatus}, {"reload", RunReload}, {"write", RunWrite},       {"learn", RunLearn}};

ExitCode Run(CHostApp& app, Words words) {
    std::string name = "demo";
    if (!words.empty()) {
        name = words.front();
        words.erase(words.begin());
    }
    if (name == "--help" || name == "-h" || name == "help") {
        Print(Say(Text::Usage));
        return kDone;
    }
    for (const Command& command : kCommands) {
        if (name == command.name) return command.run(app, words);
    }
    throw Failure{kWrongUse, Say(Text::UnknownCommand, {ToUtf8(name)})};
}
}  // namespace

int main(int argc, char** argv) {
    SetConsoleOutputCP(CP_UTF8);
    try {
        OrvikChooseUtf8();
        CHostApp app;
        const ExitCode code = Run(app, OrvikArguments(argc, argv));
        FinishOutput();
        return code;
    } catch (const Failure& failure) {
        PrintError(failure.sentence);
        return failure.exitCode;
    } catch (CException* failure) {
        char text[512] = "";
        failure->GetErrorMessage(text, sizeof text);
        failure->Delete();
        PrintError(ToUtf8(text));
        return kFileFailed;
    } catch (const std::bad_alloc&) {
        PrintError(Say(Text::NoMemory));
        return kFileFailed;
    }
}
