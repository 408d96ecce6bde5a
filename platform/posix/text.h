// Code pages 1252 and UTF-8 to and from UTF-16, comparison without case, and the one conversion of file names at the edge of the
// system. Any thread; no state, but names with a drive follow the process's drives (drives_internal.h).
#pragma once

#include <string>
#include <string_view>

#include "platform/api.h"
#include "platform/posix/types.h"

#define CP_ACP 0u  // 1252 here, whatever the process locale
#define CP_OEMCP 1u
#define CP_UTF8 65001u
#define MB_PRECOMPOSED 0x1u
#define MB_ERR_INVALID_CHARS 0x8u
#define WC_NO_BEST_FIT_CHARS 0x400u
#define WC_ERR_INVALID_CHARS 0x80u

// As documented: lengths of -1 count to and include the terminator; a size of 0 asks for the length; 0 is failure
// (122 buffer too small, 87 unknown code page or flags, 1113 text not valid where that was asked for).
ORVIK_API int WINAPI MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR text, int bytes, LPWSTR out, int outChars);
ORVIK_API int WINAPI WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR text, int chars, LPSTR out, int outBytes,
                                         LPCSTR defaultChar, LPBOOL usedDefault);

// 0 for texts that differ in the case of their letters at most (Windows-1252, whatever the process locale), else -1 or 1 by the
// first difference. A null text comes before every other. A text that is a file name beyond Windows-1252 has the case of A to Z
// alone.
ORVIK_API int WINAPI lstrcmpiA(LPCSTR first, LPCSTR second);

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
