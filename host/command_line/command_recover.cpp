// recover: what a download that did not come to its end has left, folded into the session that was meant.
#include "host/command_line/commands.h"
#include "host/session/database_file.h"
#include "host/session/recording_files.h"
#include "host/words/arguments.h"
#include "host/words/texts.h"
#include "record/recording_file.h"

namespace {
std::string WithoutEnd(const std::string& path) { return path.substr(0, path.size() - 4); }

bool IsSessionName(const std::string& path) {
    CString end = path.size() < 4 ? "" : path.substr(path.size() - 4).c_str();
    end.MakeLower();
    return end == ".odb" || end == ".xml";
}
}  // namespace

ExitCode RunRecover(CHostApp&, const Words& words) {
    const Arguments arguments(words, {}, {"--force"}, 1);
    const std::string& file = arguments.At(0, "FILE");
    // x.odb, beside which x.odb.rec lies; x.odb.rec itself; or a recording of any other name.
    const bool beside = !IsRecording(file);
    const std::string recording = beside ? RecordingBeside(file) : file;
    if (!IsRecording(recording)) {
        if (!FileExists(file)) throw Failure{kFileFailed, Say(Text::FileNotFound, {ToUtf8(file)})};
        throw Failure{kFileFailed, Say(Text::NothingToRecover, {ToUtf8(file), ToUtf8(recording)})};
    }
    const bool left = beside || (EndsInRec(recording) && IsSessionName(WithoutEnd(recording)));
    const std::string target = beside ? file : (EndsInRec(recording) ? WithoutEnd(recording) : recording) + (left ? "" : ".odb");
    if (FileExists(target) && !arguments.Has("--force")) throw Failure{kFileFailed, Say(Text::FileThere, {ToUtf8(target)})};
    FoldedRecording folded;
    {
        // Held, so that no download begins to record into what is folded.
        std::unique_ptr<IRecordingFile> held;
        const DWORD error = CRecordingFile::OpenToWrite(recording, CRecordingFile::kForceEvery, held);
        if (error == ERROR_SHARING_VIOLATION) throw Failure{kFileFailed, Say(Text::RecordingRuns, {ToUtf8(recording)})};
        RequireWritable(target);
        folded = FoldRecording(recording, target);
    }
    Print(Say(Text::Recovered, {std::to_string(folded.readings), std::to_string(folded.gaps), ToUtf8(target)}));
    if (folded.torn > 0 || folded.damaged > 0)
        Print(Say(Text::RecoveredBytes, {std::to_string(folded.torn), std::to_string(folded.damaged)}));
    if (left) LayAside(recording, target, folded);
    return folded.damaged > 0 ? kFileFailed : kDone;
}
