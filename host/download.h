// The main job: read a logger a number of times and keep what it said.
#pragma once

#include <optional>
#include <string>

#include "host/console.h"
#include "host/host_app.h"
#include "host/session.h"

// So many readings are never made: a download that goes on until it is stopped.
constexpr DWORD kForEver = 0xFFFFFFFF;
constexpr DWORD kMostReadings = 100'000'000;  // of one that is asked for
constexpr DWORD kWeek = 7 * 86'400'000;        // ms, the longest interval

struct DownloadPlan {
    std::string port;
    DWORD count = 10;
    DWORD interval = 1000;  // ms from the start of one reading to the start of the next
    DWORD timeout = 1000;   // ms for every single answer
    std::string traceFile;  // empty: no trace
    bool traceHex = false;
};

// Reads into `session`. What ends it early comes back as the Failure to report; the readings made before stand in the session.
// A description that cannot be used, or a family without a plug-in, is thrown: then there is no session.
std::optional<Failure> Download(CHostApp& app, CPropertyDB& description, const DownloadPlan& plan, Session& session);
