// Code pages 1252 and UTF-8 to and from UTF-16, and comparison without case. Any thread; no state.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

#define CP_ACP 0u  // 1252, or UTF-8 where the process chose it (platform/house_text.h), whatever its locale
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
