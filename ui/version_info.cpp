#include "ui/version_info.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {
constexpr char kCodePage[] = "04B0";
constexpr VS_FIXEDFILEINFO kNoFixedInfo = {};

struct Translation {
    WORD language, codePage;
};
}  // namespace

CVersionInfo::CVersionInfo(const char* fileName) { InitCVersionInfo(fileName); }

CVersionInfo::CVersionInfo(HINSTANCE module) {
    char path[MAX_PATH + 1] = "";
    GetModuleFileNameA(module, path, MAX_PATH);
    path[MAX_PATH] = 0;  // a path that is too long may come without its end
    InitCVersionInfo(path);
}

void CVersionInfo::Empty() {
    m_pszFileName.reset();
    m_dwSize = 0;
    m_pFixed = nullptr;
    m_pBlock.reset();
}

void CVersionInfo::InitCVersionInfo(const char* fileName) {
    if (fileName == nullptr) fileName = "";
    m_pszFileName = std::make_unique<char[]>(std::strlen(fileName) + 1);
    std::strcpy(m_pszFileName.get(), fileName);
    DWORD unused = 0;
    m_dwSize = GetFileVersionInfoSizeA(m_pszFileName.get(), &unused);
    if (m_dwSize == 0) return;
    m_pBlock = std::make_unique<BYTE[]>(m_dwSize);
    if (!GetFileVersionInfoA(m_pszFileName.get(), 0, m_dwSize, m_pBlock.get())) {
        // The file went away or changed between the two calls.
        m_dwSize = 0;
        m_pBlock.reset();
        return;
    }
    void* fixed = nullptr;
    UINT length = 0;
    const bool found = VerQueryValueA(m_pBlock.get(), "\\", &fixed, &length) != FALSE && length >= sizeof(VS_FIXEDFILEINFO);
    // In a damaged file it may stand at an odd address.
    if (found) std::memcpy(&m_fixed, fixed, sizeof m_fixed);
    m_pFixed = found ? &m_fixed : &kNoFixedInfo;
    ChooseLanguage();
}

void CVersionInfo::ChooseLanguage() {
    char system[16] = "";
    if (GetLocaleInfoA(LOCALE_SYSTEM_DEFAULT, LOCALE_ILANGUAGE, system, sizeof system) == 0) return;
    const auto wanted = std::strtoul(system, nullptr, 16);
    void* list = nullptr;
    UINT length = 0;
    if (!VerQueryValueA(m_pBlock.get(), "\\VarFileInfo\\Translation", &list, &length)) return;
    // From the last entry to the first, so that without a match the first one stays.
    for (size_t i = length / sizeof(Translation); i-- > 0;) {
        Translation entry;
        std::memcpy(&entry, static_cast<const BYTE*>(list) + i * sizeof entry, sizeof entry);
        std::snprintf(m_szLanguage, sizeof m_szLanguage, "%04x%s", static_cast<unsigned>(entry.language), kCodePage);
        if (entry.language == wanted) break;
    }
}

void CVersionInfo::GetFileVersion(DWORD* ms, DWORD* ls) const {
    *ms = GetFixedFileInfo()->dwFileVersionMS;
    *ls = GetFixedFileInfo()->dwFileVersionLS;
}

void CVersionInfo::GetProductVersion(DWORD* ms, DWORD* ls) const {
    *ms = GetFixedFileInfo()->dwProductVersionMS;
    *ls = GetFixedFileInfo()->dwProductVersionLS;
}

int CVersionInfo::GetFileFlag(EFileFlag flag) const { return (GetFixedFileInfo()->dwFileFlags & flag) == flag; }
DWORD CVersionInfo::GetFileOS() const { return GetFixedFileInfo()->dwFileOS; }
CVersionInfo::EFileType CVersionInfo::GetFileType() const { return static_cast<EFileType>(GetFixedFileInfo()->dwFileType); }
CVersionInfo::ESubType CVersionInfo::GetSubType() const { return static_cast<ESubType>(GetFixedFileInfo()->dwFileSubtype); }

const char* CVersionInfo::GetStringFileInfo(const char* name) const {
    if (m_dwSize == 0 || m_szLanguage[0] == 0) return "";
    const std::string path = std::string("\\StringFileInfo\\") + m_szLanguage + '\\' + name;
    void* text = nullptr;
    UINT length = 0;
    if (!VerQueryValueA(m_pBlock.get(), path.c_str(), &text, &length) || text == nullptr || length == 0) return "";
    return static_cast<const char*>(text);
}

const char* CVersionInfo::GetFileDescription() const { return GetStringFileInfo("FileDescription"); }
const char* CVersionInfo::GetFileVersion() const { return GetStringFileInfo("FileVersion"); }
const char* CVersionInfo::GetInternalName() const { return GetStringFileInfo("InternalName"); }
const char* CVersionInfo::GetLegalCopyright() const { return GetStringFileInfo("LegalCopyright"); }
const char* CVersionInfo::GetLegalTrademarks() const { return GetStringFileInfo("LegalTrademarks"); }
const char* CVersionInfo::GetOriginalFilename() const { return GetStringFileInfo("OriginalFilename"); }
const char* CVersionInfo::GetPrivateBuild() const { return GetStringFileInfo("PrivateBuild"); }
const char* CVersionInfo::GetProductName() const { return GetStringFileInfo("ProductName"); }
const char* CVersionInfo::GetProductVersion() const { return GetStringFileInfo("ProductVersion"); }
const char* CVersionInfo::GetSpecialBuild() const { return GetStringFileInfo("SpecialBuild"); }
