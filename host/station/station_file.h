// A station: the loggers that are read side by side, as a file describes them (docs/station.md has the keys). Everything in it is
// checked before anything is read. User-interface thread; what was read is plain data.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/app/host_app.h"
#include "host/measurement/download.h"
#include "host/measurement/recording_writer.h"
#include "host/sending/recording_queue.h"
#include "host/sending/sink_settings.h"
#include "propdb/property_db.h"

struct StationLogger {
    std::string key;          // in the station's file
    CPropertyDB description;  // its keys in their spelling
    DownloadPlan plan;
    RecordingWriter::Plan record;
    bool force = false;  // what stands in the recording's place is replaced when it first begins
    // All that it was made of: a logger that is the same as before need not be started anew.
    std::string identity;
};

struct Station {
    std::string path, name;
    std::string status;                                         // the file in which the recorder tells what it does
    std::vector<std::shared_ptr<const StationLogger>> loggers;  // in the order of their keys
    std::vector<std::shared_ptr<const SinkSettings>> sinks;     // where readings go besides their files

    // The recordings of all loggers, for one of the sinks; and the file in which it keeps up to where it has them.
    std::vector<RecordingQueue::Plan> QueuesFor(const SinkSettings& sink, __int64 now) const;
    std::string PlacesFile(const SinkSettings& sink) const;
};

// Every mistake that was found, one sentence for each, with the logger and the key it is about.
struct StationMistakes {
    std::vector<std::string> sentences;
};

// A Failure where the file cannot be read at all; StationMistakes for what it says wrongly. File names are relative to its
// folder.
Station ReadStation(CHostApp& app, const std::string& path);
// Whether a database is meant for a station, rather than for one logger.
bool IsStation(const CPropertyDB& db);
// Only where the recorder of this station tells what it does; for a file that may have mistakes since.
std::string StatusFileOf(const std::string& path);
// The text behind a key, empty where there is none.
std::string TextAt(const CPropertyDB& db, const std::string& key);
