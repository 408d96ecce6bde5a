// What a file is to its system, for OrvikSameFile. Internal. Any thread.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

namespace orvik::detail {
// The same for every name of a file or folder, another for every other one; nothing when nothing is there.
using FileIdentity = std::array<uint64_t, 2>;
std::optional<FileIdentity> IdentityOf(const std::string& path);
// Whether two names in one folder are one.
bool IsSameName(const std::string& one, const std::string& other);
}  // namespace orvik::detail
