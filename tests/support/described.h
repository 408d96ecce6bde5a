// Descriptions as a table can hold them: "sFields=keys; Channels.1.sKey=T", all of them texts.
#pragma once

#include <string>
#include <string_view>

#include "propdb/property_db.h"

inline void Describe(CPropertyDB& db, std::string_view text) {
    while (!text.empty()) {
        const std::string one(text.substr(0, text.find("; ")));
        text.remove_prefix(one.size());
        if (text.starts_with("; ")) text.remove_prefix(2);
        const size_t sign = one.find('=');
        db.SetValue(one.substr(0, sign).c_str(), one.substr(sign + 1).c_str());
    }
}
