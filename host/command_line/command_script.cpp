// script: gestures from a text file, done to a session in a window, with pictures of what it shows.
#include "afx/exception.h"
#include "afx/file.h"
#include "host/command_line/commands.h"
#include "host/gui/script_runner.h"
#include "host/session/database_file.h"
#include "host/words/arguments.h"
#include "platform/screen.h"

namespace {
constexpr SIZE kWindow = {1000, 640};
constexpr unsigned __int64 kLongest = 1 << 20;

std::string ReadScript(const std::string& path) {
    if (!FileExists(path)) throw Failure{kFileFailed, Say(Text::FileNotFound, {ToUtf8(path)})};
    CFile file;
    std::string text;
    CFileException error;
    if (!file.Open(path.c_str(), CFile::modeRead | CFile::shareDenyWrite, &error))
        throw Failure{kFileFailed,
                      Say(Text::FileNotOpened, {ToUtf8(path), Reason(static_cast<unsigned long>(error.m_lOsError))})};
    if (file.GetLength() > kLongest) throw Failure{kFileFailed, Say(Text::ScriptTooLong, {ToUtf8(path)})};
    text.resize(static_cast<size_t>(file.GetLength()));
    text.resize(file.Read(text.data(), static_cast<UINT>(text.size())));
    return text;
}
}  // namespace

ExitCode RunScript(CHostApp& app, const Words& words) {
    const Arguments arguments(words, {"--out"}, {}, 2);
    const std::string& path = arguments.At(0, "SCRIPT");
    const std::string& sessionPath = arguments.At(1, "FILE");
    std::vector<ScriptStep> steps = ParseScript(ToUtf8(path), ReadScript(path));
    const size_t count = steps.size();
    const std::string out = arguments.Get("--out");
    if (!out.empty()) {
        ScriptStep last;
        last.kind = ScriptStep::Picture;
        last.text = out;
        last.line = steps.empty() ? 1 : steps.back().line;
        steps.push_back(last);
    }
    OrvikKeepWindowsInMemory();
    MainWindow window(app, MainWindow::Manner::Quiet);
    window.CreateWindowOf(kWindow, SW_SHOWNOACTIVATE);
    window.Open(sessionPath);
    if (!window.Document().Note().empty()) PrintError(window.Document().Note());
    ScriptRunner(window, ToUtf8(path), std::move(steps)).Run(window.Document().Path());
    Print(Say(Text::ScriptDone, {std::to_string(count)}));
    return kDone;
}
