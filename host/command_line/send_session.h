// Sends one session to a sink, as `send` and `convert` do. User-interface thread.
#pragma once

#include <string>

#include "host/app/host_app.h"
#include "record/sink.h"

struct SessionNames {
    std::string station, logger;  // empty: no station; what the session calls its logger
};

// Everything that a session or recording holds, comments included; returns how many readings. The sink is reached and let go here.
// A Failure if it does not take all, or the user does not want it any more: what was sent stays sent. One that belongs to a
// recording that still grows is sent up to where it is now.
unsigned __int64 SendSession(const std::string& path, ISink& sink, const SessionNames& names);

// "x.sqlite", "x.sqlite3" and "x.db" are files of that family.
bool IsSqliteName(const std::string& path);
