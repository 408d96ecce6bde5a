#include "host/sending/recording_chain.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

#include "host/session/time_stamp.h"
#include "record/recording_reader.h"

namespace {
constexpr std::string_view kForm = "-ddddddddTddddddZ";  // d: a digit

// Behind a logger's name: "-20261123T064512Z", or with "-2" and so on where several began in one second.
bool IsStamp(const std::string& text) {
    if (text.size() < kForm.size()) return false;
    const auto digit = [](char c) { return c >= '0' && c <= '9'; };
    for (size_t i = 0; i < kForm.size(); ++i) {
        if (kForm[i] == 'd' ? !digit(text[i]) : kForm[i] != text[i]) return false;
    }
    const std::string rest = text.substr(kForm.size());
    return rest.empty() || (rest.size() > 1 && rest[0] == '-' && std::all_of(rest.begin() + 1, rest.end(), digit));
}

// The same of a time, as the name of a file that began then would have it.
std::string StampOf(__int64 time) {
    std::string text;
    AppendUtcStamp(text, time);
    std::string stamp = "-";
    for (const char letter : text.substr(0, text.find('.'))) {
        if (letter != '-' && letter != ':' && letter != 'Z') stamp += letter;
    }
    return stamp + "Z";
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
    // Stamps sort as their times do; a number behind one by its length first.
    std::vector<std::tuple<std::string, size_t, std::string, std::string>> found;
    __int64 began = 0;
    if (BeginOfRecording(path, began) == ERROR_SUCCESS) found.emplace_back(StampOf(began), 0, "", path);
    WIN32_FIND_DATAA entry;
    const HANDLE search = FindFirstFileA((folder + stem + "-*" + ending).c_str(), &entry);
    if (search != INVALID_HANDLE_VALUE) {
        do {
            const std::string name = entry.cFileName;
            if (name.size() <= stem.size() + ending.size() || name.compare(0, stem.size(), stem) != 0) continue;
            const std::string stamp = name.substr(stem.size(), name.size() - stem.size() - ending.size());
            if (!IsStamp(stamp)) continue;
            const std::string number = stamp.substr(kForm.size());
            found.emplace_back(stamp.substr(0, kForm.size()), number.size(), number, folder + name);
        } while (FindNextFileA(search, &entry));
        FindClose(search);
    }
    std::sort(found.begin(), found.end());
    std::vector<std::string> files;
    for (auto& one : found) files.push_back(std::move(std::get<3>(one)));
    return files;
}
