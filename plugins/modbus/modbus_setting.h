// Single settings of a description, as people write them: numbers of any kind or as a text, texts, and words of a list. What is
// wrong is a CCommException with code 3 and a text that names the key. The database's thread.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "afx/string.h"
#include "comm/comm_exception.h"
#include "propdb/property_db_interface.h"

namespace modbus {

// The sentences that a description may earn; strings of the module, whose first %s is the key.
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
    NotBeside,    // and another key
    NoSuchOrder,  // and the order, and bits
    NotForType,   // and the type
    NoSuchSlave,
    SlaveTwice,  // and its number
    NotANotation,
    CoilsAreBool,
    MoreThanMost,
    CannotBeThat,  // and the type
    NeverWritten,
    BitsNotWritten,
    TextNotWritten,
    SamePoint,
};

template <class... Args>
[[noreturn]] void Refuse(const CString& key, Complaint complaint, Args... args) {
    CString picture, sentence;
    picture.LoadString(complaint);
    sentence.Format(picture, static_cast<const char*>(key), args...);
    OrvikThrowCommException(CCommException::BadProtocol, sentence);
}

// Nothing when the key is missing.
std::optional<double> FindNumber(IPropertyDB& db, const CString& key);
std::optional<CString> FindText(IPropertyDB& db, const CString& key);  // a number is a text, too, for this one

DWORD ReadWhole(IPropertyDB& db, const CString& key, DWORD low, DWORD high, std::optional<DWORD> standard);
double ReadReal(IPropertyDB& db, const CString& key, double standard);
std::string ReadText(IPropertyDB& db, const CString& key, const char* standard);
bool ReadFlag(IPropertyDB& db, const CString& key);  // a number, or a word; false when it is missing
// The number that a text says, with nothing but blanks around it.
double NumberFrom(const CString& key, CString text);
// The place of the text's word in the list, whatever the case of its letters.
size_t ReadWord(IPropertyDB& db, const CString& key, const char* standard, std::span<const char* const> words);

}  // namespace modbus
