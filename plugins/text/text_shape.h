// What a line looks like: how its fields are found, and which of them are numbers. Pure functions, any thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "plugins/text/text_description.h"

namespace text {

struct Cell {
    size_t field = 0;    // from 1, of fields in a row
    std::string where;   // name or path, of others
    std::string number;  // as it stands there, with its unit
    std::string unit;
    bool attached = false;  // the unit stands in the same field
};

struct Shape {
    FieldStyle style = FieldStyle::Separator;
    const char* separator = "";  // its name in descriptions
    char decimal = '.';
    size_t fields = 0;  // in a row
    std::string start;  // a first field that is no number
    std::vector<Cell> cells;

    // Whether lines of both are read by one description.
    bool IsLike(const Shape& other) const;
    // Whether one of the names or paths of both is the same.
    bool HasAnyOf(const Shape& other) const;
};

// Separator, keys or JSON, whichever has most numbers. Without cells where there are none.
Shape ShapeOf(const std::string& line);

// The names in a heading above lines of this shape; empty if the line is none.
std::vector<std::string> HeadingOf(const std::string& line, const Shape& shape);

}  // namespace text
