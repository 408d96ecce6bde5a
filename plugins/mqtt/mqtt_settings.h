// What the settings of a sink say: where the broker is, who one is there, and in which form readings go (docs/mqtt.md).
// Plain data.
#pragma once

#include <string>

#include "propdb/property_db_interface.h"
#include "record/sink.h"

namespace mqtt {

struct Settings {
    enum EForm { Json, Sparkplug };

    std::string host;  // a name or an address, IPv6 without brackets
    int port = 0;
    bool tls = false;
    // Names of files are whole ones; empty where there is none.
    std::string user, passwordFile, caFile, certificateFile, keyFile;
    std::string client;  // empty: made of what follows
    EForm form = Json;
    std::string topic, discovery;  // Json
    std::string group, node;       // Sparkplug

    std::string Address() const;  // for sentences
};

const char* const* SettingKeys();
// Throws CSinkFailure. Looks whether files can be read, so that a check of the settings tells of those, too.
Settings ReadSettings(IPropertyDB& db, const char* folder);
// The first line of the file, which may have been replaced since. Throws CSinkFailure.
std::string ReadPassword(const Settings& settings);

}  // namespace mqtt
