// Standard streams, terminals, the environment, and the user's wish to stop (Ctrl+C), told on a thread of its own. Any thread.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

#define STD_INPUT_HANDLE (static_cast<DWORD>(-10))
#define STD_OUTPUT_HANDLE (static_cast<DWORD>(-11))
#define STD_ERROR_HANDLE (static_cast<DWORD>(-12))

#define CTRL_C_EVENT 0u
#define CTRL_BREAK_EVENT 1u
#define CTRL_CLOSE_EVENT 2u

// The three standard streams as numbers of this seam: only GetConsoleMode and GetFileType take them.
ORVIK_API HANDLE WINAPI GetStdHandle(DWORD which);
// Non-zero when the stream is a terminal; the mode is then 0 (no mode of a console has a meaning here). 6 otherwise.
ORVIK_API BOOL WINAPI GetConsoleMode(HANDLE stream, LPDWORD mode);
ORVIK_API BOOL WINAPI SetConsoleOutputCP(UINT codePage);  // terminals here are UTF-8: accepts that, refuses the rest with 87

// 0 and error 203 when the variable is not set; else the length, or the size needed (with the terminator) when it does not fit.
ORVIK_API DWORD WINAPI GetEnvironmentVariableA(LPCSTR name, LPSTR out, DWORD size);
#define ERROR_ENVVAR_NOT_FOUND 203u

using PHANDLER_ROUTINE = BOOL (*)(DWORD event);
// Adds or removes a handler of Ctrl+C (SIGINT) and of closing (SIGTERM, SIGHUP). Handlers run on a thread of their own, the last
// added first, until one returns non-zero; if none does, the process ends as it would without any.
ORVIK_API BOOL WINAPI SetConsoleCtrlHandler(PHANDLER_ROUTINE handler, BOOL add);
