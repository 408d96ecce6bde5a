// Where a measurement's readings go: into a recording, or a row of them. What cannot be written at the moment (a full disk) waits
// in memory and is written in its order as soon as it can be; beyond a bound, readings are dropped and become a gap. A file that
// is to take another one's place is made with the first value, so that a logger that gives none costs nothing. One thread.
#pragma once

#include <algorithm>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/measurement/measurement.h"
#include "record/recorder.h"

// Where recordings are made and found again; a test gives its own.
class IRecordingStore {
public:
    virtual bool Exists(const std::string& path) = 0;
    // In the place of what may be there, unless somebody records into that (error 32). Win32 codes.
    virtual DWORD Create(const std::string& path, CPropertyDB& facts, CRecorder& recorder) = 0;
    virtual DWORD Resume(const std::string& path, CRecorder& recorder) = 0;
    static IRecordingStore& System();

protected:
    ~IRecordingStore() = default;
};

class RecordingWriter : public IMeasurementSink {
public:
    struct Plan {
        std::string path;                 // of the recording; with rotation, the time is put into its name
        std::string target;               // the session that is made of it at the end; empty: it stays a recording
        bool append = false;              // goes on with what is there, else takes its place
        __int64 rotateEvery = 0;          // us after which a new file begins; 0: never
        unsigned __int64 rotateSize = 0;  // bytes likewise
        __int64 interval = 0;             // us between readings, to tell how many are missing since an earlier run
        std::string version;              // of this program
    };
    class Listener {
    public:
        // Writing has failed, or does again as it should (error 0). Errors 2 and 38: the file was moved or removed, and a new one
        // is written in its place; or it was cut short. WritingSentence has the words.
        virtual void OnWriting(const std::string& path, DWORD error) = 0;
        // Readings that were not kept: a gap without a number.
        virtual void OnDropped(CRecordedGap gap) = 0;
        // The next file has begun.
        virtual void OnFile(const std::string& path) = 0;

    protected:
        ~Listener() = default;
    };

    // `facts` say what is known of the session and its channels (docs/formats.md); they and the listener outlive the writer.
    RecordingWriter(CPropertyDB& facts, Plan plan, Listener& listener, IRecordingStore& store = IRecordingStore::System());

    Begin OnBegin(__int64 time) override;  // a Failure if no file can be made
    void OnReading(__int64 time, const std::vector<double>& values, const std::vector<BYTE>& flags) override;
    void OnGap(const CRecordedGap& gap) override;
    void OnEvent(const CRecordedEvent& event) override;
    // What else is to be known of the session (CRecorder::AddFacts), once it has begun.
    void AddFacts(std::unique_ptr<CPropertyDB> facts);

    // Tries again what could not be written; to be called every second or so.
    void Tick();
    // The end: what can be written is, and forced to the disk; what comes later is not taken any more. Gives the error; what
    // waits is then lost.
    DWORD Close();
    // What is lost after that: how many readings, and as a gap without a number those that had all of their values; the others
    // were missed already.
    struct Loss {
        size_t readings = 0;
        CRecordedGap gap;
    };
    Loss Lost() const;

    bool HasBegun() const { return m_begun; }
    size_t Waiting() const { return m_replaces && !m_valueCame ? 0 : m_waitingReadings; }
    // Readings in all files of this run, those of an earlier one not counted.
    unsigned __int64 Written() const { return m_written; }
    // The files of this run in their order, and what each becomes ("": what it is).
    struct File {
        std::string recording, target;
    };
    const std::vector<File>& Files() const { return m_files; }

    static constexpr size_t kMostWaiting = 8u << 20;  // bytes

private:
    struct Record {
        enum { Reading, Gap, Event, Facts } kind = Reading;
        __int64 time = 0;
        std::vector<double> values;
        std::vector<BYTE> flags;
        CRecordedGap gap;
        CRecordedEvent event;
        std::unique_ptr<CPropertyDB> facts;
        bool HasValue() const {
            return kind == Reading && std::any_of(flags.begin(), flags.end(), [](BYTE flag) { return flag != RF_MISSING; });
        }
        bool IsWhole() const {
            return HasValue() && std::none_of(flags.begin(), flags.end(), [](BYTE flag) { return flag == RF_MISSING; });
        }
        size_t Size() const { return sizeof *this + values.size() * 9 + gap.text.size() + event.text.size(); }
    };
    void Put(Record record);
    DWORD Write(const Record& record);
    void Hold(Record record);
    bool Drain();
    void Tell(DWORD error, const std::string& path);
    File NameFor(__int64 time) const;
    DWORD Create(const File& file, __int64 time);
    bool ReplaceNow();
    void KeepPlace();
    void RotateIfDue(__int64 time);

    CPropertyDB& m_facts;
    const Plan m_plan;
    Listener& m_listener;
    IRecordingStore& m_store;
    std::unique_ptr<CRecorder> m_recorder = std::make_unique<CRecorder>();
    std::vector<File> m_files;
    std::optional<File> m_replaces;  // the file that is made with the first value, in the place of one that is there
    bool m_valueCame = false;
    bool m_begun = false, m_closed = false;
    __int64 m_fileBegan = 0;
    unsigned __int64 m_written = 0;
    DWORD m_error = 0;

    std::deque<Record> m_waiting;
    size_t m_waitingBytes = 0, m_waitingReadings = 0;
    CRecordedGap m_dropped;
};

// What OnWriting tells, in words. UTF-8.
std::string WritingSentence(const std::string& path, DWORD error);
