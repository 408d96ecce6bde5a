// What sinks read out of their settings. What is wrong is a CSinkFailure that begins with the key. No state.
#pragma once

#include <string>

#include "afx/file.h"
#include "afx/string.h"
#include "propdb/property_db_interface.h"
#include "record/sink.h"

namespace orvik::settings {

inline std::string ReadText(IPropertyDB& db, const char* key, const char* otherwise = "") {
    CString text;
    db.GetValue(key, text);
    text.Trim();
    return text.IsEmpty() ? otherwise : text.GetString();
}

inline std::string NeedText(IPropertyDB& db, const char* key) {
    std::string text = ReadText(db, key);
    if (text.empty()) throw CSinkFailure(std::string(key) + " is missing");
    return text;
}

// A file's name as it is to be opened: relative ones count from `folder`. Empty stays empty.
inline std::string PathOf(const std::string& name, const std::string& folder) {
    const bool whole = name.empty() || name[0] == '/' || name[0] == '\\' || (name.size() > 1 && name[1] == ':');
    return whole ? name : folder + name;
}

// The first line of a file that keeps a secret out of the settings; empty where the key is missing.
inline std::string ReadSecret(IPropertyDB& db, const char* key, const std::string& folder) {
    const std::string path = PathOf(ReadText(db, key), folder);
    if (path.empty()) return {};
    CFile file;
    if (!file.Open(path.c_str(), CFile::modeRead | CFile::shareDenyNone))
        throw CSinkFailure(std::string(key) + ": " + path + " cannot be read");
    char bytes[4096];
    std::string text(bytes, file.Read(bytes, sizeof bytes));
    text.resize(std::min(text.size(), text.find_first_of("\r\n")));
    if (text.empty()) throw CSinkFailure(std::string(key) + ": " + path + " has nothing in its first line");
    return text;
}

}  // namespace orvik::settings
