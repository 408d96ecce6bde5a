// Where recorded readings go besides their file: to a broker, into a database, to a service. What a plug-in offers the host for it.
//
// The recording is the queue. The host reads it, hands what it finds to a sink in batches, and keeps the place up to which a sink
// has taken everything; a batch that failed, or of which nobody knows whether it arrived (the program was killed), is handed over
// again. So a sink either keeps what makes a second copy harmless (a key in a database), or says that its readers may meet one.
//
// Texts are UTF-8; times are microseconds since 1970-01-01 UTC. A plug-in exports one function, OrvikPlugin_SinkFamily, and stays
// loaded as long as anything it made lives.
//
// Threads: the family is asked, and sinks are made and destroyed, on the host's main thread. In between one thread of the host
// calls a sink, which may block it as long as it takes: readings are made on other threads. Abort is for any thread.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "frame/plugin_stamp.h"
#include "propdb/property_db_interface.h"
#include "record/recording_types.h"

// Why the far end could not be reached or did not take something: a sentence for the user, UTF-8, without a full stop. Where a
// setting is to blame it begins with its key: "sAddress: ...". Thrown by value.
class ORVIK_API CSinkFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~CSinkFailure() override;
};

struct CSinkChannel {
    std::string key, name, unit;
};

// One recording of one logger. Station, logger and `began` together say which, and stay the same however often it is sent, from
// which machine, and when its file is moved.
struct CSinkSource {
    std::string station;  // its name; empty for a session that belongs to none
    std::string logger;   // its key in the station; without one, what the session calls it
    __int64 began = 0;    // the time of the first reading
    std::string device;   // what its description calls the logger
    std::string family, port;
    std::vector<CSinkChannel> channels;
};

// A comment at a value of a channel.
struct CSinkComment {
    __int64 time = 0;
    double value = 0;
    std::string channel;  // its key
    std::string text;
};

// What a recording holds from one place to another. The source is good for the call only; copy what is needed longer.
struct CSinkPart {
    const CSinkSource* source = nullptr;
    // Readings, in the order of their times, which increase strictly: `times.size()` rows of as many values and flags (ERecordFlag) as the
    // source has channels, row by row. A value that is not RF_GOOD is NaN; a good one may be infinite. No row is all missing.
    std::vector<__int64> times;
    std::vector<double> values;
    std::vector<BYTE> flags;
    // A gap takes the place of an earlier one with the same number.
    std::vector<CRecordedGap> gaps;
    std::vector<CRecordedEvent> events;
    // If `commented`: all comments that the session has by now, in the place of all that it had.
    bool commented = false;
    std::vector<CSinkComment> comments;

    const double* Row(size_t row) const { return values.data() + row * source->channels.size(); }
    const BYTE* RowFlags(size_t row) const { return flags.data() + row * source->channels.size(); }
};
// Parts of several sources, or of one more than once, in order. At most kValues values, or one reading that is wider.
struct CSinkBatch {
    static constexpr size_t kValues = 50'000;
    std::vector<CSinkPart> parts;
};

// What a logger does at the moment.
enum ESinkState : WORD {
    SS_STARTING,
    SS_READS,
    SS_PARTLY,   // some channels fail
    SS_SILENT,   // nothing comes, or its port is away
    SS_NO_FILE,  // its recording cannot be written
    SS_OVER,     // it has ended
};
struct CSinkLogger {
    std::string logger;  // its key in the station
    ESinkState state = SS_STARTING;
    __int64 since = 0;  // of the state
    std::string why;    // of a state that is not well; may be empty
    // Readings since the station was started: with a value at least; with something missing; read, and waiting for a full disk.
    unsigned __int64 made = 0, missing = 0, waiting = 0;
    double late = 0, veryLate = 0;  // us that half of the readings, and 99 of 100, did not pass
    __int64 latest = 0;             // us, of all
    struct Cause {
        std::string text;
        unsigned __int64 missed = 0;
    };
    std::vector<Cause> causes;  // of what is missing
    std::vector<CSinkChannel> channels;
    struct Last {
        double value = 0;
        __int64 time = 0;  // 0: there was none yet
    };
    std::vector<Last> last;  // by channel
};
struct CSinkStatus {
    std::string station;
    __int64 time = 0, started = 0;
    bool ended = false;  // in order: the last one
    std::vector<CSinkLogger> loggers;
    // The sinks themselves, this one among them.
    struct Sink {
        std::string key, family;
        bool reached = false;
        unsigned __int64 behind = 0;  // bytes of recordings that were not sent yet
        unsigned __int64 sent = 0;    // readings since the station was started
    };
    std::vector<Sink> sinks;
};

// The far end. Failures are CSinkFailure; anything else that comes out counts the same. After one the host calls Disconnect, and
// Connect again after a pause that grows from 1 to 30 s, for ever: nothing may grow by that, either.
class ISink {
public:
    virtual ~ISink() = default;

    // Reaches it, and makes there what is missing (tables, for instance). Must come back within about 30 s.
    virtual void Connect() = 0;
    // Returns once the far end has taken all of it for good; until then nothing of it counts as sent.
    virtual void Deliver(const CSinkBatch& batch) = 0;
    // The station now: once after each Connect, whenever a state has changed, and otherwise at most once a second. Not for a
    // session that is sent by itself. What is told here need not arrive.
    virtual void Tell(const CSinkStatus& status) { static_cast<void>(status); }
    // Lets go of it; also where Connect has failed. Must not throw.
    virtual void Disconnect() = 0;
    // Any thread: what is under way is to fail soon, since the host wants to end. Nothing is asked for after it but Disconnect.
    virtual void Abort() = 0;
    // False: it lives by Tell alone, and is spared the recordings.
    virtual bool WantsReadings() const { return true; }
};

class ISinkFamily {
public:
    // The keys that the settings of a sink of this family may have besides the host's own, as a null-terminated list; "*" is any
    // one segment. It lives as long as the plug-in.
    virtual const char* const* SettingKeys() = 0;
    // The caller owns the result. Relative names of files count from `folder`, which ends in a slash or is empty. A CSinkFailure
    // names the key that cannot be understood. Reaches for nothing yet.
    virtual ISink* CreateSink(IPropertyDB& settings, const char* folder) = 0;

    // Of families whose far end is a file that holds sessions: their names, in the order of their beginning, and one of them as a
    // session (docs/formats.md has its keys). False: this family reads nothing back.
    virtual bool Sessions(const char* path, std::vector<std::string>& names) {
        static_cast<void>(path), static_cast<void>(names);
        return false;
    }
    virtual void LoadSession(const char* path, const std::string& name, IPropertyDB& session) {
        static_cast<void>(path), static_cast<void>(name), static_cast<void>(session);
    }

protected:
    ~ISinkFamily() = default;
};

// Once, at file scope of a plug-in: ORVIK_SINK_PLUGIN("MQTT"). Its stamp cannot be taken for a logger family's.
#define ORVIK_SINK_STAMP "sink:"
#define ORVIK_SINK_PLUGIN(familyName) ORVIK_PLUGIN(ORVIK_SINK_STAMP familyName)

// extern "C" ISinkFamily* OrvikPlugin_SinkFamily(): the plug-in's one family object, owned by the plug-in.
using OrvikPluginSinkFamilyFunction = ISinkFamily* (*)();
#define ORVIK_PLUGIN_SINK_FAMILY_NAME "OrvikPlugin_SinkFamily"
