// OrvikHost: the reference host as a window. OrvikHost [FILE] opens a session; --port NAME [--logger FILE] [--interval SPAN]
// connects and downloads into a new one; --help and --version tell of it. What cannot be done is told in a box.
#include <algorithm>
#include <new>

#include "afx/exception.h"
#include "comm/task.h"
#include "frame/version.h"
#include "host/gui/main_window.h"
#include "host/words/arguments.h"
#include "host/words/texts.h"
#include "platform/arguments.h"
#include "platform/house_text.h"

namespace {
constexpr SIZE kWindow = {1000, 640};

void Tell(const std::string& sentence, UINT icon = MB_ICONEXCLAMATION) {
    ::MessageBoxA(nullptr, sentence.c_str(), "OrvikHost", MB_OK | icon);
}

// On the standard output, or in a box where Windows has given the program none.
void TellAnswer(const std::string& text) {
    try {
        Print(text);
        FinishOutput();
    } catch (const Failure&) {
        Tell(text, MB_ICONINFORMATION);
    }
}

int Run(CHostApp& app, const std::vector<std::string>& words) {
    const auto asked = [&](const char* word) { return std::find(words.begin(), words.end(), word) != words.end(); };
    if (asked("--help") || asked("-h") || asked("--version")) {
        TellAnswer(asked("--version") ? "OrvikHost " ORVIK_MODULE_VERSION : Say(Text::HelpGui));
        return kDone;
    }
    const Arguments arguments(words, {"--port", "--logger", "--interval", "--timeout"}, {}, 1);
    MainWindow window(app, MainWindow::Manner::Interactive);
    window.CreateWindowOf(kWindow, SW_SHOWNORMAL);
    if (arguments.Count() > 0) window.Open(arguments.At(0, "FILE"));
    if (arguments.Count() == 0 && !arguments.Has("--port")) window.OpenUnsaved();
    if (arguments.Has("--port")) {
        DownloadPlan plan;
        plan.port = arguments.Get("--port");
        plan.count = kForEver;
        plan.interval = arguments.Milliseconds("--interval", 0, kWeek, plan.interval);
        plan.timeout = arguments.Milliseconds("--timeout", 1, 600'000, plan.timeout);
        window.Connect(arguments.Get("--logger"), plan);
    }
    OrvikShedule();  // from here on the scheduler comes by on its own
    return app.Run();
}
}  // namespace

int main(int argc, char** argv) {
    try {
        OrvikChooseUtf8();
        CHostApp app;
        return Run(app, OrvikArguments(argc, argv));
    } catch (const Failure& failure) {
        Tell(failure.sentence);
        return failure.exitCode;
    } catch (CException* failure) {
        char text[512] = "";
        failure->GetErrorMessage(text, sizeof text);
        failure->Delete();
        Tell(ToUtf8(text));
        return kFileFailed;
    } catch (const std::bad_alloc&) {
        Tell(Say(Text::NoMemory));
        return kFileFailed;
    }
}
