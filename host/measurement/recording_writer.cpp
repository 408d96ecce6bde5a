#include "host/measurement/recording_writer.h"

#include <algorithm>
#include <cstdio>

#include "host/words/console.h"
#include "host/words/texts.h"

namespace {
// "20261122T011234Z", which sorts by time and can stand in any file's name.
std::string NameOf(__int64 time) {
    constexpr __int64 k1601 = 11'644'473'600'000'000;
    const auto ticks = static_cast<unsigned __int64>((time + k1601) * 10);
    const FILETIME file = {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
    SYSTEMTIME t = {};
    FileTimeToSystemTime(&file, &t);
    char text[64];
    std::snprintf(text, sizeof text, "%04u%02u%02uT%02u%02u%02uZ", t.wYear, t.wMonth, t.wDay, t.wHour, t.wMinute, t.wSecond);
    return text;
}

// In front of the last ending, or of the last two of "x.odb.rec".
std::string WithTime(const std::string& path, const std::string& time, const std::string& target) {
    const std::string& base = target.empty() ? path : target;
    const size_t slash = base.find_last_of("/\\"), dot = base.find_last_of('.');
    const bool ending = dot != std::string::npos && (slash == std::string::npos || dot > slash + 1);
    const size_t at = ending ? dot : base.size();
    return base.substr(0, at) + "-" + time + base.substr(at);
}

CRecordedGap DiskGap(CRecordedGap gap) {
    gap.cause = GC_DISK;
    gap.text = Say(Text::GapDisk);
    return gap;
}

class SystemStore : public IRecordingStore {
public:
    bool Exists(const std::string& path) override { return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; }
    DWORD Create(const std::string& path, CPropertyDB& facts, CRecorder& recorder) override {
        if (!Exists(path)) return recorder.Create(path, facts);
        // Whoever records into the one that is to be replaced must not go on into nothing; and it stays until the new one is
        // whole.
        DWORD error = CRecordingFile::CheckFree(path);
        if (error == ERROR_SHARING_VIOLATION) return error;
        const std::string fresh = path + ".new";
        DeleteFileA(fresh.c_str());
        error = recorder.Create(fresh, facts);
        if (error == ERROR_SUCCESS) error = recorder.Close();
        if (error == ERROR_SUCCESS &&
            !MoveFileExA(fresh.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
            error = GetLastError();
        if (error == ERROR_SUCCESS) return recorder.Resume(path);
        DeleteFileA(fresh.c_str());
        return error;
    }
    DWORD Resume(const std::string& path, CRecorder& recorder) override { return recorder.Resume(path); }
};
}  // namespace

IRecordingStore& IRecordingStore::System() {
    static SystemStore store;
    return store;
}

RecordingWriter::RecordingWriter(CPropertyDB& facts, Plan plan, Listener& listener, IRecordingStore& store)
    : m_facts(facts), m_plan(std::move(plan)), m_listener(listener), m_store(store) {}

RecordingWriter::File RecordingWriter::NameFor(__int64 time) const {
    if (m_plan.rotateEvery == 0 && m_plan.rotateSize == 0) return {m_plan.path, m_plan.target};
    for (int number = 1;; ++number) {
        const std::string name = NameOf(time) + (number > 1 ? "-" + std::to_string(number) : "");
        const std::string timed = WithTime(m_plan.path, name, m_plan.target);
        const File file = m_plan.target.empty() ? File{timed, {}} : File{timed + ".rec", timed};
        if (!m_store.Exists(file.recording) && (file.target.empty() || !m_store.Exists(file.target))) return file;
    }
}

DWORD RecordingWriter::Create(const File& file, __int64 time) {
    const bool resumes = m_plan.append && m_store.Exists(file.recording);
    const DWORD error =
        resumes ? m_store.Resume(file.recording, *m_recorder) : m_store.Create(file.recording, m_facts, *m_recorder);
    if (error != ERROR_SUCCESS) return error;
    m_files.push_back(file);
    m_fileBegan = time;
    m_listener.OnFile(file.recording);
    return ERROR_SUCCESS;
}

// As long as it cannot be, everything waits.
bool RecordingWriter::ReplaceNow() {
    const File file = *m_replaces;
    const DWORD error = Create(file, m_fileBegan);
    Tell(error, file.recording);
    if (error != ERROR_SUCCESS) return false;
    m_replaces.reset();
    return Drain();
}

IMeasurementSink::Begin RecordingWriter::OnBegin(__int64 time) {
    const File file = NameFor(time);
    if (!m_plan.append && m_store.Exists(file.recording)) {
        m_replaces = file;
        m_fileBegan = time;
    } else if (const DWORD error = Create(file, time)) {
        if (error == ERROR_SHARING_VIOLATION) throw Failure{kFileFailed, Say(Text::RecordedElsewhere, {ToUtf8(file.recording)})};
        throw Failure{kFileFailed, Say(Text::FileNotWritten, {ToUtf8(file.recording), Reason(error)})};
    }
    m_begun = true;
    Begin begin;
    if (m_replaces) {
        OnEvent({time, RE_STARTED, 0, m_plan.version});
        return begin;
    }
    begin.nextGap = m_recorder->LastGap() + 1;
    begin.lastTime = m_recorder->LastTime();
    if (m_recorder->ReadingCount() > 0) {
        // What lies between the earlier run and this one, with the row that parts them.
        CRecordedGap gap;
        gap.number = begin.nextGap++;
        // A logger that gave nothing at the end of that run has its gap already.
        gap.from = std::max(begin.lastTime, std::min(m_recorder->LastMissing(), time - 1)) + 1;
        gap.until = std::max(time, gap.from + 1);
        gap.cause = GC_NOT_RUNNING;
        if (m_plan.interval > 0 && time > gap.from) gap.missed = static_cast<DWORD>((time - gap.from) / m_plan.interval);
        gap.text = Say(Text::GapNotRunning);
        OnGap(gap);
        Record row;
        row.time = gap.from;
        row.values.assign(m_recorder->ChannelCount(), std::numeric_limits<double>::quiet_NaN());
        row.flags.assign(m_recorder->ChannelCount(), RF_MISSING);
        begin.lastTime = gap.from;
        Put(std::move(row));
    }
    OnEvent({std::max(time, begin.lastTime), RE_STARTED, 0, m_plan.version});
    return begin;
}

void RecordingWriter::OnReading(__int64 time, const std::vector<double>& values, const std::vector<BYTE>& flags) {
    RotateIfDue(time);
    Record record;
    record.time = time;
    record.values = values;
    record.flags = flags;
    Put(std::move(record));
}

void RecordingWriter::OnGap(const CRecordedGap& gap) {
    Record record;
    record.kind = Record::Gap;
    record.gap = gap;
    Put(std::move(record));
}

void RecordingWriter::OnEvent(const CRecordedEvent& event) {
    Record record;
    record.kind = Record::Event;
    record.event = event;
    Put(std::move(record));
}

void RecordingWriter::AddFacts(std::unique_ptr<CPropertyDB> facts) {
    Record record;
    record.kind = Record::Facts;
    record.facts = std::move(facts);
    Put(std::move(record));
}

void RecordingWriter::Put(Record record) {
    if (m_closed) return;
    if (m_replaces) {
        m_valueCame = m_valueCame || record.HasValue();
        Hold(std::move(record));
        if (m_valueCame) ReplaceNow();
        return;
    }
    if (!Drain() || Write(record) != ERROR_SUCCESS) Hold(std::move(record));
}

DWORD RecordingWriter::Write(const Record& record) {
    DWORD error = ERROR_SUCCESS;
    switch (record.kind) {
        case Record::Reading:
            if (const DWORD shorter = m_recorder->CheckLength(); shorter == ERROR_HANDLE_EOF)
                m_listener.OnWriting(m_files.back().recording, shorter);
            error = m_recorder->AddReading(record.time, record.values.data(), record.flags.data());
            if (error == ERROR_SUCCESS && record.HasValue()) ++m_written;
            break;
        case Record::Gap:
            error = m_recorder->AddGap(record.gap);
            break;
        case Record::Event:
            error = m_recorder->AddEvent(record.event);
            break;
        case Record::Facts:
            error = m_recorder->AddFacts(*record.facts);
            break;
    }
    Tell(error, m_files.back().recording);
    return error;
}

void RecordingWriter::Hold(Record record) {
    // All others are few, and kept in any case as long as there is memory at all.
    if (record.kind == Record::Reading && m_waitingBytes + record.Size() > kMostWaiting) {
        if (m_dropped.missed++ == 0) m_dropped.from = record.time;
        m_dropped.until = record.time;
        return;
    }
    m_waitingBytes += record.Size();
    m_waitingReadings += record.kind == Record::Reading ? 1 : 0;
    m_waiting.push_back(std::move(record));
}

bool RecordingWriter::Drain() {
    while (!m_waiting.empty()) {
        const Record& record = m_waiting.front();
        if (Write(record) != ERROR_SUCCESS) return false;
        m_waitingBytes -= record.Size();
        m_waitingReadings -= record.kind == Record::Reading ? 1 : 0;
        m_waiting.pop_front();
    }
    if (m_dropped.missed > 0) m_listener.OnDropped(DiskGap(std::exchange(m_dropped, {})));
    return true;
}

RecordingWriter::Loss RecordingWriter::Lost() const {
    Loss loss{m_waitingReadings + m_dropped.missed, m_dropped};
    for (auto record = m_waiting.rbegin(); record != m_waiting.rend(); ++record) {
        if (!record->IsWhole()) continue;
        if (loss.gap.missed++ == 0) loss.gap.until = record->time;
        loss.gap.from = record->time;
    }
    loss.gap = DiskGap(std::move(loss.gap));
    return loss;
}

void RecordingWriter::Tell(DWORD error, const std::string& path) {
    if ((error != ERROR_SUCCESS) != (m_error != ERROR_SUCCESS)) m_listener.OnWriting(path, error);
    m_error = error;
}

void RecordingWriter::Tick() {
    if (!m_begun || (m_replaces && (!m_valueCame || !ReplaceNow()))) return;
    Drain();
    if (m_recorder->CheckPlace() != ERROR_SUCCESS) KeepPlace();
    // Written, but not on the disk: nothing is to be written again, and somebody has to know.
    if (const DWORD error = m_recorder->Forced()) m_listener.OnWriting(m_files.back().recording, error);
}

// Somebody has moved or removed the file: what he took is his, and what comes now has its place again.
void RecordingWriter::KeepPlace() {
    const std::string& path = m_files.back().recording;
    auto next = std::make_unique<CRecorder>();
    // As long as there can be none, the old one is written, wherever it is.
    if (m_store.Exists(path) || m_store.Create(path, m_facts, *next) != ERROR_SUCCESS) return;
    m_recorder->Close();
    m_recorder = std::move(next);
    m_listener.OnWriting(path, ERROR_FILE_NOT_FOUND);
}

void RecordingWriter::RotateIfDue(__int64 time) {
    if (m_replaces) return;
    const bool old = m_plan.rotateEvery != 0 && time - m_fileBegan >= m_plan.rotateEvery;
    const bool large = m_plan.rotateSize != 0 && m_recorder->Size() >= m_plan.rotateSize;
    if ((!old && !large) || !Drain()) return;
    const File file = NameFor(time);
    auto next = std::make_unique<CRecorder>();
    if (const DWORD error = m_store.Create(file.recording, m_facts, *next))
        return Tell(error, file.recording);  // goes on in the old one, and tries again
    const size_t slash = file.recording.find_last_of("/\\");
    m_recorder->AddEvent({time, RE_CONTINUED, 0, slash == std::string::npos ? file.recording : file.recording.substr(slash + 1)});
    m_recorder->Close();
    m_recorder = std::move(next);
    m_files.push_back(file);
    m_fileBegan = time;
    OnEvent({time, RE_STARTED, 0, m_plan.version});
    m_listener.OnFile(file.recording);
}

DWORD RecordingWriter::Close() {
    m_closed = true;
    if (!m_begun || (m_replaces && !m_valueCame)) return ERROR_SUCCESS;
    if (m_replaces && !ReplaceNow()) return m_error;
    const bool all = Drain();
    const DWORD error = m_recorder->Close();
    return all ? error : m_error;
}

std::string WritingSentence(const std::string& path, DWORD error) {
    const std::string name = ToUtf8(path);
    switch (error) {
        case ERROR_SUCCESS:
            return Say(Text::WritingAgain, {name});
        case ERROR_FILE_NOT_FOUND:
            return Say(Text::RecordingGone, {name});
        case ERROR_HANDLE_EOF:
            return Say(Text::RecordingShortened, {name});
        default:
            return Say(Text::WritingFailed, {name, Reason(error)});
    }
}
