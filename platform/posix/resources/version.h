// The version resource of programs and libraries, read from the file: of Windows' (PE files, 32 and 64 bits), and of this
// system's that carry a record (platform/version_record.h). A gateway can tell what plug-in it was given. Nothing of the file is
// loaded or run, and nothing it says is believed: a damaged file gives an error or a missing value. Any thread; a block is the
// caller's memory and may be read by many threads.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

#define VS_VERSION_INFO 1
#define VS_FFI_SIGNATURE 0xFEEF04BDu
#define VS_FFI_STRUCVERSION 0x00010000u
#define VS_FFI_FILEFLAGSMASK 0x0000003Fu

#define VS_FF_DEBUG 0x00000001u
#define VS_FF_PRERELEASE 0x00000002u
#define VS_FF_PATCHED 0x00000004u
#define VS_FF_PRIVATEBUILD 0x00000008u
#define VS_FF_INFOINFERRED 0x00000010u
#define VS_FF_SPECIALBUILD 0x00000020u

#define VOS_UNKNOWN 0x00000000u
#define VOS_DOS 0x00010000u
#define VOS_NT 0x00040000u
#define VOS__WINDOWS16 0x00000001u
#define VOS__WINDOWS32 0x00000004u
#define VOS_NT_WINDOWS32 0x00040004u

#define VFT_UNKNOWN 0x00000000u
#define VFT_APP 0x00000001u
#define VFT_DLL 0x00000002u
#define VFT_DRV 0x00000003u
#define VFT_FONT 0x00000004u
#define VFT_VXD 0x00000005u
#define VFT_STATIC_LIB 0x00000007u

#define VFT2_UNKNOWN 0x00000000u
#define VFT2_DRV_PRINTER 0x00000001u
#define VFT2_DRV_KEYBOARD 0x00000002u
#define VFT2_DRV_LANGUAGE 0x00000003u
#define VFT2_DRV_DISPLAY 0x00000004u
#define VFT2_DRV_MOUSE 0x00000005u
#define VFT2_DRV_NETWORK 0x00000006u
#define VFT2_DRV_SYSTEM 0x00000007u
#define VFT2_DRV_INSTALLABLE 0x00000008u
#define VFT2_DRV_SOUND 0x00000009u
#define VFT2_DRV_COMM 0x0000000Au
#define VFT2_FONT_RASTER 0x00000001u
#define VFT2_FONT_VECTOR 0x00000002u
#define VFT2_FONT_TRUETYPE 0x00000003u

struct VS_FIXEDFILEINFO {
    DWORD dwSignature, dwStrucVersion;
    DWORD dwFileVersionMS, dwFileVersionLS;
    DWORD dwProductVersionMS, dwProductVersionLS;
    DWORD dwFileFlagsMask, dwFileFlags;
    DWORD dwFileOS, dwFileType, dwFileSubtype;
    DWORD dwFileDateMS, dwFileDateLS;
};

// The size of the block that GetFileVersionInfoA fills, 0 on failure: 2, 3 or 5 as for any file, 11 neither a PE nor an ELF file,
// 1812 it has no resources or damaged ones, 1813 no version resource. Of several languages the calling thread's is taken, else
// neutral, else American English, else the first. `zero` receives 0.
ORVIK_API DWORD WINAPI GetFileVersionInfoSizeA(LPCSTR file, LPDWORD zero);
// A block that is too small for the whole is refused with error 122.
ORVIK_API BOOL WINAPI GetFileVersionInfoA(LPCSTR file, DWORD unused, DWORD size, LPVOID block);
// Finds a value by its path: "\" (the fixed information), "\VarFileInfo\Translation", "\StringFileInfo\040904B0\ProductName"; the
// names' case does not matter. `value` points into the block, a text being this house's (platform/house_text.h) with "?" for what
// that lacks; `length` is in bytes, a text's with its terminator. 0 and error 1812 or 1813 when there is no such name.
ORVIK_API BOOL WINAPI VerQueryValueA(LPCVOID block, LPCSTR path, LPVOID* value, UINT* length);
