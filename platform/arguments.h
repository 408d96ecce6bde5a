// The words of a program's command line as this house's text. Any thread.
#pragma once

#include "platform/win32.h"

// `word` is one element of argv. Out comes Windows-1252 where that can say it; on Linux, where the words are UTF-8, a word with
// characters beyond that stays UTF-8, so that it still names its file. Returns the length, or the size needed when it does not
// fit.
ORVIK_API DWORD OrvikArgumentText(const char* word, char* out, DWORD size);

// Non-zero when the command line came into argv whole: on Windows characters beyond the system's narrow code page arrive there as
// others ("?", or the nearest letter), which no program should take for what was typed.
ORVIK_API BOOL OrvikArgumentsAreWhole();
