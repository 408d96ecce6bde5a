// The clipboard. With a screen (platform/screen.h) it is the desktop's: text, pictures and HTML go to other programs and come
// from them, and stay there after the program's end where the desktop keeps them. Without one it is this process's own. Data of
// registered formats, HTML apart, stay within the process.
// Any thread: whoever opens it has it until it is closed, and others get error 5 meanwhile. What is given to it belongs to it
// from then on; what it gives is valid until it is closed. Reading may wait two seconds for the program that has the data; a
// text, a page or a picture file of more than 64 MB, and a picture of more than 64 million pixels, counts as none.
#pragma once

#include "platform/posix/kernel/memory.h"
#include "platform/posix/types.h"

#define CF_TEXT 1u          // in our text; a program for both homes takes CF_UNICODETEXT
#define CF_DIB 8u           // BITMAPINFOHEADER and pixels, 24 or 32 bits without compression; comes with 32
#define CF_UNICODETEXT 13u  // lines end with "\r\n"

ORVIK_API BOOL WINAPI OpenClipboard(HWND owner);
ORVIK_API BOOL WINAPI CloseClipboard();  // here what was given reaches the desktop
ORVIK_API BOOL WINAPI EmptyClipboard();  // to be called before anything is given
// Null: error 1418 without having opened it, 87 for no memory of GlobalAlloc's (which stays the caller's then).
ORVIK_API HANDLE WINAPI SetClipboardData(UINT format, HANDLE memory);
ORVIK_API HANDLE WINAPI GetClipboardData(UINT format);  // null where there is none
ORVIK_API BOOL WINAPI IsClipboardFormatAvailable(UINT format);
ORVIK_API int WINAPI CountClipboardFormats();
ORVIK_API UINT WINAPI EnumClipboardFormats(UINT format);  // the next one; 0 begins, and is behind the last
// A number for a name, in any case of letters; the same for the same name. "HTML Format" is HTML with its heading of offsets.
ORVIK_API UINT WINAPI RegisterClipboardFormatA(LPCSTR name);
