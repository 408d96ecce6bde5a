// Stored values as text and back, for the command line: the kinds by their short names, elements joined by ";".
// Numbers never depend on regional settings here; reals are written with as many digits as bring back the same bits.
#pragma once

#include <string>

#include "propdb/property_db_interface.h"

// "str", "u8", "u16", "u32", "i32", "i64", "r32", "r64"; empty for null and for a folder.
std::string KindOf(const CObject* value);
// UTF-8.
std::string TextOf(const CObject* value);
std::string TextOf(double value);
// Six significant digits, for tables.
std::string ShortTextOf(double value);

// Stores `text` (UTF-8) under the key as a value of this kind. A Failure if the text is no such value or the key cannot hold it.
void SetFromText(IPropertyDB& db, const std::string& key, const std::string& kind, const std::string& text);

// How much of a value the XML form keeps.
enum class XmlFit { Whole, Changed, Nothing };
XmlFit FitInXml(const CObject* value);
