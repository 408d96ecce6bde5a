// What readings are sent to, as the file of a station or a file of its own describes it: the host's keys here, and those of the
// sink's family. User-interface thread.
#pragma once

#include <memory>
#include <string>

#include "host/app/host_app.h"
#include "propdb/property_db.h"
#include "record/sink.h"

struct SinkSettings {
    std::string key;     // in the station; "" in a file of its own
    std::string family;  // sSink
    bool fromNow = false;  // sFrom: only what is recorded from the first start on, not what is there already
    std::string folder;    // of the file, with a slash at its end; empty: the current one
    CPropertyDB own;       // the family's keys
    std::string identity;  // all that it was made of
};

// Checks everything but whether the far end can be reached. A Failure with a sentence that names the key.
std::shared_ptr<const SinkSettings> ReadSinkSettings(CHostApp& app, CPropertyDB& db, const std::string& key,
                                                     const std::string& file);
std::unique_ptr<ISink> MakeSink(CHostApp& app, const SinkSettings& settings);
