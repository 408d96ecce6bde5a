// What `show` was asked for, with every contradiction refused. User-interface thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/command_line/commands.h"
#include "host/session/reading_source.h"
#include "host/session/reading_writer.h"

struct ShowOptions {
    enum class Form { Table, Csv, Json, LineProtocol, Gaps };

    explicit ShowOptions(const Words& words);

    // The times that are wanted of a session whose last reading is at `last`.
    TimeRange Range(__int64 last) const;
    std::unique_ptr<ReadingWriter> MakeWriter(const Session& session) const;

    std::string path;
    Form form = Form::Table;
    std::string picture;
    CsvForm csv;
    std::vector<std::string> channels;
    DWORD every = 1;
    bool follow = false;

private:
    TimeRange m_range;
    std::optional<__int64> m_last;  // microseconds before the last reading
};
