// Which characters the narrow text of this process is made of. Windows-1252 by default. A program may choose UTF-8, once, as the
// first thing that it does; from then on every narrow text is UTF-8: CString and const char*, keys, values, names of files,
// texts of the string table, of regional settings and of devices. The choice belongs to the process, not to a file or a window.
// Files say which they are made of. A UTF-8 process reads those of either; a Windows-1252 process refuses what it would lose:
// docs/formats.md.
#pragma once

#include <string>
#include <string_view>

#include "platform/win32.h"

// Chooses UTF-8. Before OrvikShared_InitModule, before the first text is loaded, and before other threads exist. FALSE, and
// nothing has changed, once the module was initialised.
ORVIK_API BOOL OrvikChooseUtf8();

// CP_UTF8 or 1252: what MultiByteToWideChar and its reverse take for this process's narrow text. Any thread.
ORVIK_API UINT OrvikTextCodePage();

// The text in UTF-8, for terminals and for files that others read: always valid. In a Windows-1252 process a text that is UTF-8
// and says what Windows-1252 cannot stays as it is: a name off the command line. In a UTF-8 process a byte that belongs to no
// character becomes the Windows-1252 character of its value. Any thread.
ORVIK_API std::string OrvikUtf8FromText(std::string_view text);
// The reverse. False, and `text` unchanged, where `utf8` is none or says what this process's text lacks.
ORVIK_API bool OrvikTextFromUtf8(std::string_view utf8, std::string& text);
