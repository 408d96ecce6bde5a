#include "host/sending/recording_chain.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "record/recording_reader.h"

namespace {
// Behind a logger's name: "-20261123T064512Z", or with "-2" and so on where several began in one second.
bool IsStamp(const std::string& text) {
    constexpr std::string_view form = "-ddddddddTddddddZ";  // d: a digit
    if (text.size() < form.size()) return false;
    const auto digit = [](char c) { return c >= '0' && c <= '9'; };
    for (size_t i = 0; i < form.size(); ++i) {
        if (form[i] == 'd' ? !digit(text[i]) : form[i] != text[i]) return false;
    }
    const std::string rest = text.substr(form.size());
    return rest.empty() || (rest.size() > 1 && rest[0] == '-' && std::all_of(rest.begin() + 1, rest.end(), digit));
}
}  // namespace

DWORD BeginOfRecording(const std::string& path, __int64& began) {
    CRecordingReader reader;
    if (const DWORD error = reader.Open(path)) return error;
    for (;;) {
        switch (reader.Next()) {
            case RI_READING:
                began = reader.Time();
                return ERROR_SUCCESS;
            case RI_END:
                return ERROR_HANDLE_EOF;
            case RI_FAILED:
                return reader.Error();
            default:
                break;
        }
    }
}

std::vector<std::string> RecordingsOf(const std::string& path) {
    const size_t slash = path.find_last_of("/\\"), begin = slash == std::string::npos ? 0 : slash + 1;
    const size_t dot = path.find_last_of('.');
    const bool ends = dot != std::string::npos && dot > begin;
    const std::string folder = path.substr(0, begin), stem = path.substr(begin, (ends ? dot : path.size()) - begin),
                      ending = ends ? path.substr(dot) : std::string();
    std::vector<std::pair<__int64, std::string>> found;
    const auto add = [&](const std::string& file) {
        __int64 began = 0;
        if (BeginOfRecording(file, began) == ERROR_SUCCESS) found.emplace_back(began, file);
    };
    add(path);
    WIN32_FIND_DATAA entry;
    const HANDLE search = FindFirstFileA((folder + stem + "-*" + ending).c_str(), &entry);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            const std::string name = entry.cFileName;
            if (name.size() <= stem.size() + ending.size() || name.compare(0, stem.size(), stem) != 0) continue;
            if (IsStamp(name.substr(stem.size(), name.size() - stem.size() - ending.size()))) add(folder + name);
        } while (FindNextFileA(search, &entry));
        FindClose(search);
    }
    std::sort(found.begin(), found.end());
    std::vector<std::string> files;
    for (auto& [began, file] : found) files.push_back(std::move(file));
    return files;
}
