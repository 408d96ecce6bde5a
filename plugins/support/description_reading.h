// What plug-ins read out of a logger's description (docs/formats.md): numbers as people store them, texts, words of a list, and
// the line's settings. A plug-in compiles it in.
//
// What is wrong is a CCommException with code 3 and a sentence that begins with the key. Keys are those of the database's using
// path. No state; the database's thread.
#pragma once

#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "afx/string.h"
#include "comm/comm_exception.h"
#include "comm/transport.h"
#include "propdb/property_db_interface.h"

namespace orvik::description {

// The sentences that any description may earn: texts of the module, whose first %s is the key. A family has more of its own.
enum Complaint : UINT {
    NotANumber = 8300,
    NeedsAPoint,
    NotWhole,  // and a range
    IsMissing,
    NotFinite,
    NotAText,
    NotOneOf,  // and the words
    ScaleOfZero,
    NoChannels,
    NotBeside,  // and another key
};

// Throws. `complaint` is the number of a text, `args` what it has after the key.
template <class... Args>
[[noreturn]] void Refuse(const CString& key, UINT complaint, Args... args) {
    CString picture, sentence;
    picture.LoadString(complaint);
    sentence.Format(picture, static_cast<const char*>(key), args...);
    OrvikThrowCommException(CCommException::BadProtocol, sentence);
}

// A number of any kind that a person may have chosen for it, also one in a text; nothing when the key is missing.
std::optional<double> FindNumber(IPropertyDB& db, const CString& key);
// A text, or a number as one, without blanks around it; nothing when the key is missing.
std::optional<CString> FindText(IPropertyDB& db, const CString& key);

// A whole number from `low` to `high`; without a standard the key may not be missing.
DWORD ReadWhole(IPropertyDB& db, const CString& key, DWORD low, DWORD high, std::optional<DWORD> standard);
double ReadReal(IPropertyDB& db, const CString& key, double standard);  // finite
std::string ReadText(IPropertyDB& db, const CString& key, const char* standard);
bool ReadFlag(IPropertyDB& db, const CString& key);  // 0 or 1, or a word; false when it is missing
// The number that a text says, with nothing but blanks around it.
double NumberFrom(const CString& key, CString text);

// The place of the text's word in the list, whatever the case of its letters.
size_t ReadWord(IPropertyDB& db, const CString& key, const char* standard, std::span<const char* const> words);
// What the text's word means.
template <class T>
T ReadChoice(IPropertyDB& db, const CString& key, const char* standard,
             std::initializer_list<std::pair<const char*, T>> choices) {
    std::vector<const char*> words;
    for (const auto& choice : choices) words.push_back(choice.first);
    return choices.begin()[ReadWord(db, key, standard, words)].second;
}

// Line.nBaud, .nDataBits, .sParity and .nStopBits.
CLineSettings ReadLine(IPropertyDB& db);

}  // namespace orvik::description
