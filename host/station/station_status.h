// What the recorder of a station does, as it leaves it in a file for others to read: a property database in the archive form,
// which is replaced as a whole about once a second. Who reads it knows by its age whether the recorder still lives.
// User-interface thread.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/sending/sink_sender.h"
#include "host/station/logger_report.h"
#include "host/station/station_file.h"

struct StationStatus {
    struct Logger {
        std::string key, port;
        struct Channel {
            std::string key, name, unit;
        };
        std::vector<Channel> channels;
        LoggerReport report;
    };
    std::string name;
    __int64 started = 0, written = 0;  // us since 1970
    bool ended = false;                // in order
    // How the last wish to read the station again was answered, and whether it was refused; empty before. UTF-8.
    std::string reloaded;
    bool refused = false;
    std::vector<Logger> loggers;
    struct Sink {
        std::string key, family;
        SinkReport report;  // without sentences
    };
    std::vector<Sink> sinks;

    // What sinks are told of it.
    CSinkStatus ForSinks() const;

    // The channels and the port of one, with nothing read yet.
    static Logger Of(const StationLogger& plan);

    // A Win32 code. Not forced to the disk: after a power cut nothing runs.
    DWORD Store(const std::string& path) const;
    // False where there is none, or one that is none.
    bool Load(const std::string& path);

    // For programs, an object on one line; and for people.
    std::string Json(bool running) const;
    std::string Words(bool running) const;

    // No sign of life for so long is none any more.
    static constexpr __int64 kStale = 5'000'000;  // us
    bool Runs(__int64 now) const { return !ended && now - written < kStale && written - now < kStale; }
};

// How a reader of the status tells the recorder that it is to read its station again: a file beside the status file.
std::string ReloadWishOf(const std::string& statusFile);
