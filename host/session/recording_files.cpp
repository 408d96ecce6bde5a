#include "host/session/recording_files.h"

#include <cstring>

#include "host/session/database_file.h"
#include "host/session/session.h"
#include "host/words/texts.h"
#include "record/recorder.h"
#include "time/time_point.h"

namespace {
[[noreturn]] void Fail(const std::string& path, DWORD error) {
    const bool busy = error == ERROR_SHARING_VIOLATION;
    throw Failure{kFileFailed,
                  busy ? Say(Text::RecordingBusy, {ToUtf8(path)}) : Say(Text::FileNotWritten, {ToUtf8(path), Reason(error)})};
}
}  // namespace

bool IsRecording(const std::string& path) {
    constexpr char kMagic[] = "ORVIKREC";
    constexpr DWORD kSize = sizeof kMagic - 1;
    const DWORD attributes = GetFileAttributesA(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE))) return false;
    std::unique_ptr<IRecordingFile> file;
    if (CRecordingFile::OpenToRead(path, file) != ERROR_SUCCESS) return false;
    char bytes[kSize] = {};
    DWORD got = 0;
    return file->Read(0, bytes, kSize, got) == ERROR_SUCCESS && got == kSize && std::memcmp(bytes, kMagic, kSize) == 0;
}

std::string RecordingBeside(const std::string& path) { return path + ".rec"; }

bool EndsInRec(const std::string& path) {
    CString end = path.size() < 4 ? "" : path.substr(path.size() - 4).c_str();
    end.MakeLower();
    return end == ".rec";
}

FoldedRecording FoldRecording(const std::string& recording, const std::string& target) {
    auto readings = std::make_unique<RecordedSeries>(recording);
    RecordedSeries& series = *readings;
    CPropertyDB db;
    db.OverlayCopy(&series.Facts(), nullptr, nullptr, TRUE);
    const Session session(db, std::move(readings));
    session.Store(db);
    StoreDatabase(target, db, nullptr, session.Count() * (series.ChannelCount() + 1) * sizeof(double));
    if (!series.Trouble().empty()) PrintError(series.Trouble());
    return {series.Made(), series.Torn(), series.Unread(), series.Notes().Gaps().size()};
}

void LayAside(const std::string& recording, const std::string& target, const FoldedRecording& folded) {
    const auto check = [&](BOOL done) {
        if (!done) throw Failure{kFileFailed, Say(Text::NotRemoved, {ToUtf8(recording), Reason(GetLastError())})};
    };
    if (folded.damaged == 0) return check(DeleteFileA(recording.c_str()));
    std::string kept;
    for (int number = 1; kept.empty() || GetFileAttributesA(kept.c_str()) != INVALID_FILE_ATTRIBUTES; ++number)
        kept = target + (number > 1 ? ".damaged-" + std::to_string(number) : ".damaged") + ".rec";
    check(MoveFileExA(recording.c_str(), kept.c_str(), 0));
    PrintError(Say(Text::DamagedKept, {ToUtf8(kept)}));
}

std::unique_ptr<CPropertyDB> FactsBesideReadings(CPropertyDB& db) {
    auto facts = std::make_unique<CPropertyDB>();
    for (const char* folder : {"Chart.", "View.", "Channels."}) facts->OverlayCopy(&db, folder, nullptr, TRUE);
    return facts;
}

void SaveIntoRecording(const std::string& path, CPropertyDB& db) {
    CRecorder recorder;
    if (const DWORD error = recorder.Resume(path)) Fail(path, error);
    const std::unique_ptr<CPropertyDB> facts = FactsBesideReadings(db);
    const __int64 now = CVXTTime::Now().GetBinaryTime();
    DWORD error = recorder.AddFacts(*facts);
    if (error == ERROR_SUCCESS) error = recorder.AddEvent({now, RE_TAG, 0, {}});
    const DWORD closed = recorder.Close();
    if (error == ERROR_SUCCESS) error = closed;
    if (error != ERROR_SUCCESS) Fail(path, error);
}

bool IsRecordedInto(const std::string& path) {
    return CRecordingFile::CheckFree(path) == ERROR_SHARING_VIOLATION;
}

void RequireNobodyRecords(const std::string& path) {
    if (const DWORD error = CRecordingFile::CheckFree(path)) Fail(path, error);
}
