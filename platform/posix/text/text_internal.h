// Single characters and whole texts between Windows-1252 and Unicode, and the one conversion of file names at the edge of the
// system. Any thread; no state, but names with a drive follow the process's drives (drives_internal.h).
#pragma once

#include <string>
#include <string_view>

#include "platform/posix/text/text.h"

namespace orvik::detail {
// The Unicode character of a Windows-1252 byte; the five unassigned bytes are the C1 controls of the same number.
char16_t UnicodeFrom1252(unsigned char byte);
// The byte of a character, or -1 for one that Windows-1252 does not hold.
int ByteFromUnicode(char32_t character);
std::string Utf8From1252(std::string_view text);
// The lower-case letter of a Windows-1252 byte, other bytes as they are.
char LowerCase1252(char byte);
// Whether a name already is UTF-8 and holds a character that Windows-1252 lacks.
bool IsBeyond1252(std::string_view name);

// The name that the system's file calls take for a name in this house's text. Windows-1252 text becomes UTF-8; text beyond
// Windows-1252 passes as it stands, so that a file named in any script can be reached.
// A backslash separates folders as "/" does; a drive letter leads to its folder; a name of another computer (two backslashes
// first) leads nowhere. docs/files.md has the whole rule.
std::string SystemPath(std::string_view name);
// The reverse for names that the system gives: Windows-1252 where it can be said in it, else as it stands.
std::string HousePath(std::string_view name);
}  // namespace orvik::detail
