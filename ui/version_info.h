// What a program or library says of itself in its version resource: version numbers, flags, kind, and texts in the language of
// the system. On Linux of Windows files (PE) and of ELF files that carry a record (platform/version_record.h), which the module,
// the host and its plug-ins do; any other file has no version information. One thread at a time for
// one object. The object owns its copy of the resource; texts that it returns live as long as that. No errors are reported: a
// file that cannot be read or has no version information gives an object that is not valid and whose texts are empty.
#pragma once

#include "platform/win32.h"

#include <memory>

class ORVIK_API CVersionInfo {
public:
    // The bits of the file flags.
    enum EFileFlag : DWORD {
        flagDebug = VS_FF_DEBUG,
        flagPrerelease = VS_FF_PRERELEASE,
        flagPatched = VS_FF_PATCHED,
        flagPrivateBuild = VS_FF_PRIVATEBUILD,
        flagInfoInferred = VS_FF_INFOINFERRED,
        flagSpecialBuild = VS_FF_SPECIALBUILD
    };
    enum EFileType : DWORD {
        typeUnknown = VFT_UNKNOWN,
        typeApp = VFT_APP,
        typeDll = VFT_DLL,
        typeDriver = VFT_DRV,
        typeFont = VFT_FONT,
        typeVirtualDevice = VFT_VXD,
        typeStaticLibrary = VFT_STATIC_LIB
    };
    // Of drivers and of fonts; the two share their numbers.
    enum ESubType : DWORD {
        subTypeUnknown = VFT2_UNKNOWN,
        subTypePrinter = VFT2_DRV_PRINTER,
        subTypeKeyboard = VFT2_DRV_KEYBOARD,
        subTypeLanguage = VFT2_DRV_LANGUAGE,
        subTypeDisplay = VFT2_DRV_DISPLAY,
        subTypeMouse = VFT2_DRV_MOUSE,
        subTypeNetwork = VFT2_DRV_NETWORK,
        subTypeSystem = VFT2_DRV_SYSTEM,
        subTypeInstallable = VFT2_DRV_INSTALLABLE,
        subTypeSound = VFT2_DRV_SOUND,
        subTypeComm = VFT2_DRV_COMM,
        subTypeRasterFont = VFT2_FONT_RASTER,
        subTypeVectorFont = VFT2_FONT_VECTOR,
        subTypeTrueTypeFont = VFT2_FONT_TRUETYPE
    };

    explicit CVersionInfo(const char* fileName);  // null is no file
    explicit CVersionInfo(HINSTANCE module);      // the module's file; null is the program's
    ~CVersionInfo() = default;
    CVersionInfo(const CVersionInfo&) = delete;
    CVersionInfo& operator=(const CVersionInfo&) = delete;

    // Lets go of the information: the object is then not valid, and texts returned before are gone.
    void Empty();

    BOOL IsValid() const { return m_dwSize > 0; }

    // Of the fixed information, as it stands in the file: for a valid object only, which they do not check. A file with texts but
    // without fixed information has all zeros.
    void GetFileVersion(DWORD* ms, DWORD* ls) const;
    void GetProductVersion(DWORD* ms, DWORD* ls) const;
    // 1 when every bit of `flag` is set. The file's flags mask is deliberately not applied.
    int GetFileFlag(EFileFlag flag) const;
    DWORD GetFileOS() const;
    EFileType GetFileType() const;
    ESubType GetSubType() const;

    // Texts, "" for one that is missing or empty. The language is the system's where the file names it, else the file's first;
    // the code page of the key is always 04B0, whatever the file says.
    const char* GetFileDescription() const;
    const char* GetFileVersion() const;
    const char* GetInternalName() const;
    const char* GetLegalCopyright() const;
    const char* GetLegalTrademarks() const;
    const char* GetOriginalFilename() const;
    const char* GetPrivateBuild() const;
    const char* GetProductName() const;
    const char* GetProductVersion() const;
    const char* GetSpecialBuild() const;

private:
    void InitCVersionInfo(const char* fileName);
    void ChooseLanguage();
    const char* GetStringFileInfo(const char* name) const;
    const VS_FIXEDFILEINFO* GetFixedFileInfo() const { return m_pFixed; }

    DWORD m_dwSize = 0;  // of the block, 0 without version information
    std::unique_ptr<char[]> m_pszFileName;
    char m_szLanguage[12] = "";  // language and code page of the texts, as "041d04B0"
    const VS_FIXEDFILEINFO* m_pFixed = nullptr;
    VS_FIXEDFILEINFO m_fixed = {};  // what it points to, where the file has it
    std::unique_ptr<BYTE[]> m_pBlock;
};
