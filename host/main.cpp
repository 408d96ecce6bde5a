// orvikhost: the reference host's command line. --help lists what it does.
#include <algorithm>
#include <new>
#include <string>
#include <vector>

#include "host/command_line/commands.h"
#include "host/words/nearest_word.h"
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

// What the usage has of one command: the lines that begin with it, and those that go on with them.
std::string UsageOf(const std::string& name) {
    const std::string usage = Say(Text::Usage), begin = "  orvikhost " + name;
    std::string said;
    bool its = false;
    for (size_t at = 0; at < usage.size();) {
        const size_t end = std::min(usage.find('\n', at), usage.size());
        const std::string line = usage.substr(at, end - at);
        const bool goesOn = line.starts_with("     ");
        const bool named = line.starts_with(begin) && (line.size() == begin.size() || line[begin.size()] == ' ');
        // "reload STATION" stands in the line of the command that it belongs to.
        its = named || (its && goesOn) || (!goesOn && line.find(" " + name + " STATION") != line.npos);
        if (its) said += line + '\n';
        at = end + 1;
    }
    if (!said.empty()) said.pop_back();
    return said;
}

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
    std::vector<std::string> names;
    for (const Command& command : kCommands) {
        names.push_back(command.name);
        if (name != command.name) continue;
        if (words.size() == 1 && (words[0] == "--help" || words[0] == "-h")) {
            Print(UsageOf(name));
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
