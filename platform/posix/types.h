// Win32's basic types with the widths they have on Windows: a LONG has 32 bits here too, whatever `long` has.
// Any thread; plain data.
#pragma once

#include <cstddef>
#include <cstdint>

#define __int64 long long

#define WINAPI
#define CALLBACK
#define APIENTRY
#define CONST const

using BOOL = int;
using BYTE = unsigned char;
using WORD = unsigned short;
using DWORD = unsigned int;
using UINT = unsigned int;
using INT = int;
using LONG = int;
using ULONG = unsigned int;
using SHORT = short;
using USHORT = unsigned short;
using CHAR = char;
using UCHAR = unsigned char;
using WCHAR = char16_t;
using LONGLONG = long long;
using ULONGLONG = unsigned long long;
using DWORDLONG = unsigned long long;
using INT_PTR = intptr_t;
using UINT_PTR = uintptr_t;
using LONG_PTR = intptr_t;
using ULONG_PTR = uintptr_t;
using DWORD_PTR = uintptr_t;
using SIZE_T = size_t;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;
using HRESULT = LONG;
using ATOM = WORD;
using COLORREF = DWORD;
using LCID = DWORD;
using LCTYPE = DWORD;
using LANGID = WORD;
using VOID = void;

using PVOID = void*;
using LPVOID = void*;
using LPCVOID = const void*;
using LPSTR = char*;
using LPCSTR = const char*;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using LPBYTE = BYTE*;
using LPWORD = WORD*;
using LPDWORD = DWORD*;
using LPBOOL = BOOL*;
using LPLONG = LONG*;

// Kernel objects are opaque pointers; the other handles are distinct types, so that one is never taken for another.
using HANDLE = void*;
#define ORVIK_DECLARE_HANDLE(name) using name = struct name##__*
ORVIK_DECLARE_HANDLE(HWND);
ORVIK_DECLARE_HANDLE(HINSTANCE);
ORVIK_DECLARE_HANDLE(HRSRC);
ORVIK_DECLARE_HANDLE(HKEY);
ORVIK_DECLARE_HANDLE(HMENU);
ORVIK_DECLARE_HANDLE(HICON);
ORVIK_DECLARE_HANDLE(HDC);
#undef ORVIK_DECLARE_HANDLE
using HMODULE = HINSTANCE;
using HCURSOR = HICON;  // one kind of object, as on Windows
using HGLOBAL = HANDLE;
using HLOCAL = HANDLE;
using HGDIOBJ = void*;
// GDI objects convert to HGDIOBJ and are distinct among themselves.
using HFONT = struct HFONT__*;
using HBRUSH = struct HBRUSH__*;
using HPEN = struct HPEN__*;
using HBITMAP = struct HBITMAP__*;
using HRGN = struct HRGN__*;

#define INVALID_HANDLE_VALUE (reinterpret_cast<HANDLE>(static_cast<LONG_PTR>(-1)))

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

#define INFINITE 0xFFFFFFFFu
#define MAX_PATH 260
#define MAXDWORD 0xFFFFFFFFu

#define LOWORD(l) (static_cast<WORD>(static_cast<DWORD_PTR>(l) & 0xFFFF))
#define HIWORD(l) (static_cast<WORD>((static_cast<DWORD_PTR>(l) >> 16) & 0xFFFF))
#define LOBYTE(w) (static_cast<BYTE>(static_cast<DWORD_PTR>(w) & 0xFF))
#define HIBYTE(w) (static_cast<BYTE>((static_cast<DWORD_PTR>(w) >> 8) & 0xFF))
#define MAKEWORD(a, b) (static_cast<WORD>((static_cast<DWORD>(a) & 0xFF) | ((static_cast<DWORD>(b) & 0xFF) << 8)))
#define MAKELONG(a, b) (static_cast<LONG>((static_cast<DWORD>(a) & 0xFFFF) | ((static_cast<DWORD>(b) & 0xFFFF) << 16)))
#define MAKEWPARAM(l, h) (static_cast<WPARAM>(static_cast<DWORD>(MAKELONG(l, h))))
#define MAKELPARAM(l, h) (static_cast<LPARAM>(static_cast<DWORD>(MAKELONG(l, h))))
#define MAKEINTRESOURCEA(i) (reinterpret_cast<LPSTR>(static_cast<ULONG_PTR>(static_cast<WORD>(i))))
#define MAKEINTRESOURCEW(i) (reinterpret_cast<LPWSTR>(static_cast<ULONG_PTR>(static_cast<WORD>(i))))
#define IS_INTRESOURCE(r) ((reinterpret_cast<ULONG_PTR>(r) >> 16) == 0)

struct POINT {
    LONG x, y;
};
struct SIZE {
    LONG cx, cy;
};
struct RECT {
    LONG left, top, right, bottom;
};
using LPPOINT = POINT*;
using LPRECT = RECT*;
using LPCRECT = const RECT*;

struct FILETIME {
    DWORD dwLowDateTime, dwHighDateTime;
};
struct SYSTEMTIME {
    WORD wYear, wMonth, wDayOfWeek, wDay, wHour, wMinute, wSecond, wMilliseconds;
};

struct GUID {
    DWORD Data1;
    WORD Data2, Data3;
    BYTE Data4[8];
};

union LARGE_INTEGER {
    __extension__ struct {
        DWORD LowPart;
        LONG HighPart;
    };
    LONGLONG QuadPart;
};

union ULARGE_INTEGER {
    __extension__ struct { DWORD LowPart, HighPart; };
    ULONGLONG QuadPart;
};

#define LF_FACESIZE 32
struct LOGFONTA {
    LONG lfHeight, lfWidth, lfEscapement, lfOrientation, lfWeight;
    BYTE lfItalic, lfUnderline, lfStrikeOut, lfCharSet, lfOutPrecision, lfClipPrecision, lfQuality, lfPitchAndFamily;
    CHAR lfFaceName[LF_FACESIZE];
};
static_assert(sizeof(LOGFONTA) == 60, "fonts are stored by their bytes");
