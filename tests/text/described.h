// Descriptions as a table can hold them: "sFields=keys; Channels.1.sKey=T", all of them texts.
#pragma once

#include <string>
#include <string_view>

#include "comm/comm_exception.h"
#include "plugins/text/text_description.h"
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

// The text of a refusal; empty when there is none.
template <class Work>
std::string RefusalOf(Work work) {
    try {
        work();
        return {};
    } catch (CCommException* failure) {
        std::string text = failure->m_strError.GetString();
        failure->Delete();
        return text;
    }
}

inline text::Description Described(std::string_view text) {
    CPropertyDB db;
    Describe(db, text);
    return text::ReadDescription(db);
}
