#include "host/command_line/send_session.h"

#include <algorithm>
#include <memory>
#include <random>

#include "host/app/stop_request.h"
#include "host/app/work_progress.h"
#include "host/chart/chart_model.h"
#include "host/sending/recording_queue.h"
#include "host/session/database_file.h"
#include "host/session/recording_copy.h"
#include "host/session/recording_files.h"
#include "host/session/session_file.h"
#include "host/words/texts.h"

namespace {
// Removed when it has done its work.
class PassingFile {
public:
    PassingFile() {
        char folder[4096] = "";
        if (const DWORD length = GetTempPathA(sizeof folder, folder); length == 0 || length >= sizeof folder) folder[0] = 0;
        std::random_device random;  // others may send at the same time
        while (m_path.empty() || FileExists(m_path)) m_path = folder + ("orvikhost-" + std::to_string(random()) + ".rec");
    }
    ~PassingFile() { DeleteFileA(m_path.c_str()); }
    PassingFile(const PassingFile&) = delete;
    PassingFile& operator=(const PassingFile&) = delete;
    const std::string& Path() const { return m_path; }

private:
    std::string m_path;
};

// The same as a recording, whose comments have times and values of their own.
void StoreToSend(const std::string& path, const SessionFile& file) {
    StoreAsRecording(path, *file.session, *file.db);
    const SessionFile stored = OpenSession(path);
    ChartModel model(*stored.session, {});
    model.Load(*stored.db);
    if (model.Tags().empty()) return;
    model.Store(*stored.db);
    SaveIntoRecording(path, *stored.db);
}

template <class Work>
void Ask(Work work) {
    try {
        work();
    } catch (const CSinkFailure& failure) {
        throw Failure{kCommunicationFailed, std::string(failure.what()) + "."};
    }
}
}  // namespace

unsigned __int64 SendSession(const std::string& path, ISink& sink, const SessionNames& names) {
    const SessionFile file = OpenSession(path);
    if (!file.note.empty()) PrintError(file.note);
    std::unique_ptr<PassingFile> passing;
    std::string recording = file.path;
    if (file.session->Recorded() == nullptr) {
        passing = std::make_unique<PassingFile>();
        recording = passing->Path();
        StoreToSend(recording, file);
    }
    RecordingQueue::Plan plan{names.station, names.logger.empty() ? file.session->Logger() : names.logger, recording, false};
    plan.alone = true;
    RecordingQueue queue(plan, {});
    const unsigned __int64 size = FileSize(recording);
    struct LetGo {
        ISink& sink;
        ~LetGo() { sink.Disconnect(); }
    } letGo{sink};
    const StopRequest stop;
    LineProgress progress(Say(Text::WorkSending, {ToUtf8(path)}));
    Ask([&] { sink.Connect(); });
    for (bool more = true; more;) {
        CSinkBatch batch;
        size_t room = CSinkBatch::kValues;
        more = queue.Fill(batch, room);
        if (!batch.parts.empty()) Ask([&] { sink.Deliver(batch); });
        queue.Accept();
        for (const std::string& sentence : queue.TakeSentences()) PrintError(sentence);
        progress.At(std::min(queue.Place().offset, size), size);
        // What has come meanwhile is the next time's.
        more = more && queue.Place().offset < size;
        if (more && StopRequest::Asked()) throw Failure{kCommunicationFailed, Say(Text::SendingStopped, {std::to_string(queue.Sent())})};
    }
    return queue.Sent();
}

bool IsSqliteName(const std::string& path) {
    const size_t dot = path.find_last_of('.');
    CString end = dot == std::string::npos ? "" : path.substr(dot).c_str();
    end.MakeLower();
    return end == ".sqlite" || end == ".sqlite3" || end == ".db";
}
