// orvikhost: the reference host's command line. --help lists what it does.
#include <algorithm>
#include <new>
#include <string>
#include <vector>

#include "frame/version.h"
#include "host/command_line/commands.h"
#include "host/words/nearest_word.h"
#include "host/words/texts.h"
#include "platform/arguments.h"
#include "platform/house_text.h"

namespace {
struct Command {
    const char* name;
    ExitCode (*run)(CHostApp&, const Words&);
    Text help;
};
// In the order of their list: what is read, what is done with it, the rest.
constexpr Command kCommands[] = {{"demo", RunDemo, Text::HelpDemo},
                                 {"ports", RunPorts, Text::HelpPorts},
                                 {"learn", RunLearn, Text::HelpLearn},
                                 {"check", RunCheck, Text::HelpCheck},
                                 {"read", RunRead, Text::HelpRead},
                                 {"write", RunWrite, Text::HelpWrite},
                                 {"download", RunDownload, Text::HelpDownload},
                                 {"recover", RunRecover, Text::HelpRecover},
                                 {"record", RunRecord, Text::HelpRecord},
                                 {"status", RunStatus, Text::HelpStatus},
                                 {"reload", RunReload, Text::HelpReload},
                                 {"show", RunShow, Text::HelpShow},
                                 {"chart", RunChart, Text::HelpChart},
                                 {"convert", RunConvert, Text::HelpConvert},
                                 {"send", RunSend, Text::HelpSend},
                                 {"db", RunDb, Text::HelpDb},
                                 {"script", RunScript, Text::HelpScript},
                                 {"simulate", RunSimulate, Text::HelpSimulate},
                                 {"locale", RunLocale, Text::HelpLocale},
                                 {"version", RunVersion, Text::HelpVersion}};

bool AsksForHelp(const std::string& word) { return word == "--help" || word == "-h"; }

// Every command in a line: the second one of its own help.
void PrintCommands() {
    constexpr size_t kWidth = 10;
    Print(Say(Text::HelpHead) + '\n');
    for (const Command& command : kCommands) {
        const std::string help = Say(command.help), rest = help.substr(help.find('\n') + 1), name = command.name;
        Print("  orvikhost " + name + std::string(kWidth - name.size(), ' ') + rest.substr(0, rest.find('\n')));
    }
    Print('\n' + Say(Text::HelpTail));
}

ExitCode Run(CHostApp& app, Words words) {
    std::string name = "demo";
    if (!words.empty()) {
        name = words.front();
        words.erase(words.begin());
    }
    if (name == "help" && !words.empty()) {
        name = words.front();
        words = {"--help"};
    }
    if (name == "help" || AsksForHelp(name)) {
        PrintCommands();
        return kDone;
    }
    if (name == "--version") {
        Print("orvikhost " ORVIK_MODULE_VERSION);
        return kDone;
    }
    std::vector<std::string> names;
    for (const Command& command : kCommands) {
        names.push_back(command.name);
        if (name != command.name) continue;
        // Also behind words that were typed already; what only looks so stands behind "--".
        if (std::any_of(words.begin(), std::find(words.begin(), words.end(), "--"), AsksForHelp)) {
            Print(Say(command.help));
            return kDone;
        }
        return command.run(app, words);
    }
    const std::string meant = NearestWord(name, names);
    throw Failure{kWrongUse,
                  meant.empty() ? Say(Text::UnknownCommand, {ToUtf8(name)}) : Say(Text::CommandMeant, {ToUtf8(name), meant})};
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
