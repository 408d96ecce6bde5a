// What plug-ins read out of a logger's description (docs/formats.md): numbers as people store them, texts, choices, and the
// line's settings. A plug-in compiles it in.
//
// What is wrong is a CCommException with code 3 and a text that begins with the key. Keys are those of the database's using path.
// No state; the database's thread.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "afx/string.h"
#include "comm/transport.h"
#include "propdb/property_db_interface.h"

namespace orvik::description {

[[noreturn]] void Refuse(const CString& key, const char* what);

// A number of any kind that a person may have chosen for it, also one in a text; nothing when the key is missing.
std::optional<double> FindNumber(IPropertyDB& db, const CString& key);
// A whole number from `low` to `high`; without a standard the key may not be missing.
DWORD ReadWhole(IPropertyDB& db, const CString& key, DWORD low, DWORD high, std::optional<DWORD> standard);
// A finite number.
double ReadReal(IPropertyDB& db, const CString& key, double standard);
CString ReadText(IPropertyDB& db, const CString& key, const char* standard);

// A text that is one of the names, in any case. The names are in lower case.
template <class T>
T ReadChoice(IPropertyDB& db, const CString& key, const char* standard, const std::map<std::string, T>& choices) {
    CString text = ReadText(db, key, standard);
    text.MakeLower();
    const auto found = choices.find(static_cast<const char*>(text));
    if (found != choices.end()) return found->second;
    std::string allowed = "not one of";
    for (const auto& [name, value] : choices) allowed += ' ' + name;
    Refuse(key, allowed.c_str());
}

// Line.nBaud, .nDataBits, .sParity and .nStopBits.
CLineSettings ReadLine(IPropertyDB& db);

}  // namespace orvik::description
