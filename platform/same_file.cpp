#include "platform/same_file.h"

#include "platform/same_file_internal.h"

using namespace orvik::detail;

namespace {
std::string FullPath(const std::string& path) {
    std::string full(path.size() + 4096, '\0');
    const DWORD length = GetFullPathNameA(path.c_str(), static_cast<DWORD>(full.size()), full.data(), nullptr);
    if (length == 0 || length >= full.size()) return path;
    full.resize(length);
    return full;
}
}  // namespace

BOOL OrvikSameFile(LPCSTR one, LPCSTR other) {
    const auto first = IdentityOf(one), second = IdentityOf(other);
    if (first || second) return first == second;
    const std::string firstPath = FullPath(one), secondPath = FullPath(other);
    const size_t firstName = firstPath.find_last_of("\\/") + 1, secondName = secondPath.find_last_of("\\/") + 1;
    const auto firstFolder = IdentityOf(firstPath.substr(0, firstName)),
               secondFolder = IdentityOf(secondPath.substr(0, secondName));
    if (!firstFolder || !secondFolder) return IsSameName(firstPath, secondPath);
    return firstFolder == secondFolder && IsSameName(firstPath.substr(firstName), secondPath.substr(secondName));
}
