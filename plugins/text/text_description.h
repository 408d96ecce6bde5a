// The description of a logger that prints lines, read from a property database (docs/text-loggers.md has the keys). Plain data
// for any thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "comm/transport.h"
#include "plugins/text/text_checksum.h"
#include "plugins/text/text_number.h"
#include "plugins/text/text_pattern.h"
#include "propdb/property_db_interface.h"

namespace text {

enum class FieldStyle {
    Separator,  // fields in a row, by their numbers
    Columns,    // at fixed places
    Regex,      // what the named groups of a pattern take
    Keys,       // name=value or name: value
    Json,       // by their paths
};

// What stands between fields.
struct Separator {
    enum Kind { Auto, Blanks, Text };
    Kind kind = Auto;
    std::string text;
};

struct Channel {
    std::string key;   // the node's name in the description
    std::string name;  // for people
    size_t line = 0;   // of the reading, from 1; 0: the first one that has it
    size_t field = 0;  // from 1
    size_t column = 0, width = 0;
    std::string where;  // key, path, or the group's name
    size_t group = 0;
    NumberRule number;
    double scale = 1, offset = 0;  // value = number * scale + offset
};

struct Description {
    CLineSettings line;
    std::string ask;  // bytes; empty: it talks by itself
    std::string end;  // bytes; empty: carriage return or line feed, either or both
    size_t lines = 1, skip = 0, longest = 4096;
    DWORD every = 1000;  // ms from one reading to the next, if it talks by itself
    FieldStyle style = FieldStyle::Separator;
    Separator separator;
    char decimal = '.';
    Checksum checksum = Checksum::None;
    std::optional<Pattern> pattern;
    std::string start;              // with which lines begin that count
    std::string first;              // with which the first line of a reading begins
    size_t fieldCount = 0;          // in each line; 0: whatever there is
    std::vector<Channel> channels;  // in the order of their keys
};

// Reads the description at the database's using path. What is wrong is a CCommException with code 3 and a text that names the
// key.
Description ReadDescription(IPropertyDB& db);
// The keys that it reads; see ILoggerFamily.
const char* const* DescriptionKeys();

}  // namespace text
