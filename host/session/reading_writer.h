// Readings as text: a table for people, and the forms that programs take. Text is appended in UTF-8, a line for a reading.
// User-interface thread.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/session/column_format.h"
#include "host/session/session.h"

class ReadingWriter {
public:
    virtual ~ReadingWriter() = default;
    virtual void Heading(std::string& out) = 0;
    // `values` are those of all the session's channels.
    virtual void Row(std::string& out, __int64 time, const double* values) = 0;
    virtual void End(std::string&) {}  // behind the last row, where a form has something there
};

// The channels that are shown, by their places in the session.
using ShownChannels = std::vector<size_t>;

// Names or keys; all channels where none is named. A Failure for one that there is not.
ShownChannels ChannelsNamed(const Session& session, const std::vector<std::string>& names);

// Local times to the millisecond in the user's format; every column in one notation, or by a number picture; nothing for NaN.
std::unique_ptr<ReadingWriter> MakeTableWriter(const Session& session, ShownChannels shown, const std::string& picture);

struct CsvForm {
    char separator = ',';
    bool local = false;  // for spreadsheets: local times and the user's decimal sign
    bool mark = true;    // and a byte-order mark, which a file needs
};
// The form that this user's spreadsheets take: values are parted by a character that no number has.
CsvForm SpreadsheetForm();
// Times to the microsecond in UTC, values to the last bit, nothing for NaN. For spreadsheets a value that is a 32-bit real has no
// more digits than tell it from its neighbours: 21.3, not 21.299999237060547.
std::unique_ptr<ReadingWriter> MakeCsvWriter(const Session& session, ShownChannels shown, const CsvForm& form);

// A table of HTML, with times and values as for spreadsheets.
std::unique_ptr<ReadingWriter> MakeHtmlWriter(const Session& session, ShownChannels shown);

// One object a line: "time" as in the CSV form, and each channel under its name, or under its key where names are not all
// different; null for what is no finite number.
std::unique_ptr<ReadingWriter> MakeJsonWriter(const Session& session, ShownChannels shown);

// A line for each value that is a finite number (record/line_protocol.h), as databases for time series take them.
std::unique_ptr<ReadingWriter> MakeLineProtocolWriter(const Session& session, ShownChannels shown);
