// Sessions out of a file that a sink wrote. Failures are CSinkFailure.
#pragma once

#include <string>
#include <vector>

#include "propdb/property_db_interface.h"

namespace sqlite {

// "Plant/inlet 2026-11-23T06:45:12.123456Z", in the order of their beginning.
std::vector<std::string> SessionNames(const std::string& path);
// The keys of docs/formats.md. A channel without a reading at a time of others was not to be read then, unless a gap says that it is missing.
void LoadSession(const std::string& path, const std::string& name, IPropertyDB& session);

}  // namespace sqlite
