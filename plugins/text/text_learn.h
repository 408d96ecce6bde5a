// Lines that an unknown device printed become a description to begin with. Pure functions; the database's thread.
#pragma once

#include <string>
#include <string_view>

#include "afx/string.h"
#include "propdb/property_db_interface.h"

namespace text {

// How sure it is, from 0 to 100, that this was printed by such a device; see ILoggerFamily::Learn. `pause`: the longest time
// between two bytes, in milliseconds. What is described reads the very lines that were heard.
int Learn(std::string_view heard, DWORD pause, IPropertyDB& description, CString& shown);

}  // namespace text
