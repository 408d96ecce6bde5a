// Stored values as text and back, for the command line: the kinds by their short names, elements joined by ";".
// What programs may read never depends on regional settings: reals have a point, and as many digits as bring back the same bits.
// What is for people's eyes follows the user's settings, and what people type may.
#pragma once

#include <optional>
#include <string>

#include "propdb/property_db_interface.h"

// "str", "u8", "u16", "u32", "i32", "i64", "r32", "r64"; empty for null and for a folder.
std::string KindOf(const CObject* value);
// UTF-8.
std::string TextOf(const CObject* value);
std::string TextOf(double value);
// For lists: an array ends after eight elements, and a text after 200 characters, with how many there are.
std::string BriefTextOf(const CObject* value);
// For tables: six significant digits with the user's decimal separator; the local date and time of a number of microseconds since
// 1970 in the user's format, milliseconds behind the seconds. UTF-8.
std::string ShortTextOf(double value, const std::string& picture = {});
std::string TimeTextOf(__int64 time);
// All digits that a value has for people: those that tell a 32-bit real from its neighbours where it is one, else fifteen. With
// the user's decimal separator. UTF-8.
std::string WholeTextOf(double value);

// A real number as TextOf writes it or, where that is none, in the user's format. UTF-8; false for other texts.
bool RealFromText(const std::string& text, double& value);

// The same text in the user's format alone; none where that does not read it.
std::optional<double> RealInUsersFormat(const std::string& text);

// Stores `text` (UTF-8) under the key as a value of this kind. A real may be written as TextOf does or, where that is no number,
// in the user's format. A Failure if the text is no such value or the key cannot hold it.
void SetFromText(IPropertyDB& db, const std::string& key, const std::string& kind, const std::string& text);

// How much of a value the XML form keeps.
enum class XmlFit { Whole, Changed, Nothing };
XmlFit FitInXml(const CObject* value);
