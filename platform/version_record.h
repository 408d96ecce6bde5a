// What a program or library says of itself, kept in its file, where CVersionInfo reads it. One source for both homes: a file of a
// single line is compiled by the resource compiler on Windows, and as C++ elsewhere, where the record becomes a note of the ELF
// file (owner "Orvik", type 1) with the bytes that a Windows file would have. Constant data.
//
//   ORVIK_VERSION_RECORD(kind, numbers, version, product, name, windowsFile, otherFile, english, swedish)
//
// kind: VFT_APP or VFT_DLL; numbers: four, as 1, 0, 0, 0; version: the same as text; product, name: of the product, and of this
// part of it; the files' names on the two homes; english, swedish: what it is, in UTF-8; English is taken for every language but
// Swedish. All texts are literals.
//
// In a CMake project that file is a source with the language RC on Windows, and CXX elsewhere.
#pragma once

#if defined(RC_INVOKED)

#include <winresrc.h>
#pragma code_page(65001)

// clang-format off
#define ORVIK_RECORD_TEXTS(description, version, product, name, file)                                                  \
    BEGIN VALUE "FileDescription", description VALUE "FileVersion", version VALUE "InternalName", name                 \
    VALUE "OriginalFilename", file VALUE "ProductName", product VALUE "ProductVersion", version END

#define ORVIK_VERSION_RECORD(kind, numbers, version, product, name, windowsFile, otherFile, english, swedish)          \
    LANGUAGE LANG_NEUTRAL, SUBLANG_NEUTRAL                                                                             \
    1 VERSIONINFO FILEVERSION numbers PRODUCTVERSION numbers FILEFLAGSMASK VS_FFI_FILEFLAGSMASK FILEFLAGS 0            \
    FILEOS VOS_NT_WINDOWS32 FILETYPE kind FILESUBTYPE VFT2_UNKNOWN                                                     \
    BEGIN                                                                                                              \
      BLOCK "StringFileInfo"                                                                                           \
      BEGIN                                                                                                            \
        BLOCK "040904B0" ORVIK_RECORD_TEXTS(english, version, product, name, windowsFile)                              \
        BLOCK "041D04B0" ORVIK_RECORD_TEXTS(swedish, version, product, name, windowsFile)                              \
      END                                                                                                              \
      BLOCK "VarFileInfo" BEGIN VALUE "Translation", 0x0409, 1200, 0x041D, 1200 END                                    \
    END
// clang-format on

#elif !defined(_WIN32)

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/win32.h"

namespace orvik::detail {

// The tree of nodes that a version resource is: length, length of the value, kind (1 is text), name, value, children; everything
// begins at a multiple of four bytes. Too many or too long texts do not compile.
class VersionBlock {
public:
    struct Numbers {
        WORD major, minor, revision, build;
    };
    struct Texts {
        std::u16string_view description, version, product, name, file;
    };

    constexpr VersionBlock(DWORD kind, Numbers numbers, const Texts& english, const Texts& swedish) {
        const size_t all = Begin(u"VS_VERSION_INFO", 13 * 4, false);
        Put(VS_FFI_SIGNATURE), Put(VS_FFI_STRUCVERSION);
        for (int product = 0; product < 2; ++product) Put(numbers.minor, numbers.major), Put(numbers.build, numbers.revision);
        Put(VS_FFI_FILEFLAGSMASK), Put(0), Put(VOS_UNKNOWN), Put(kind), Put(VFT2_UNKNOWN), Put(0), Put(0);
        const size_t texts = Begin(u"StringFileInfo", 0, true);
        Language(u"040904B0", english);
        Language(u"041D04B0", swedish);
        End(texts);
        const size_t var = Begin(u"VarFileInfo", 0, true);
        const size_t translation = Begin(u"Translation", 8, false);
        Put(0x0409, 1200), Put(0x041D, 1200);
        End(translation);
        End(var);
        End(all);
    }

    constexpr size_t Size() const { return m_size; }
    constexpr unsigned char operator[](size_t at) const { return m_bytes[at]; }

private:
    constexpr void Word(unsigned value) {
        m_bytes[m_size++] = static_cast<unsigned char>(value);
        m_bytes[m_size++] = static_cast<unsigned char>(value >> 8);
    }
    constexpr void Put(DWORD value) { Put(static_cast<WORD>(value), static_cast<WORD>(value >> 16)); }
    constexpr void Put(WORD low, WORD high) { Word(low), Word(high); }
    constexpr void Text(std::u16string_view text) {
        for (const char16_t unit : text) Word(unit);
        Word(0);
    }
    constexpr void Align() {
        while (m_size % 4 != 0) Word(0);
    }
    constexpr size_t Begin(std::u16string_view name, unsigned valueLength, bool text) {
        Align();
        const size_t at = m_size;
        Word(0), Word(valueLength), Word(text ? 1 : 0);
        Text(name);
        Align();
        return at;
    }
    constexpr void End(size_t at) {
        m_bytes[at] = static_cast<unsigned char>(m_size - at);
        m_bytes[at + 1] = static_cast<unsigned char>((m_size - at) >> 8);
    }
    constexpr void Value(std::u16string_view name, std::u16string_view text) {
        const size_t at = Begin(name, static_cast<unsigned>(text.size() + 1), true);
        Text(text);
        End(at);
    }
    constexpr void Language(std::u16string_view key, const Texts& texts) {
        const size_t at = Begin(key, 0, true);
        Value(u"FileDescription", texts.description);
        Value(u"FileVersion", texts.version);
        Value(u"InternalName", texts.name);
        Value(u"OriginalFilename", texts.file);
        Value(u"ProductName", texts.product);
        Value(u"ProductVersion", texts.version);
        End(at);
    }

    unsigned char m_bytes[8192] = {};
    size_t m_size = 0;
};

template <size_t Size>
struct VersionNote {
    explicit constexpr VersionNote(const VersionBlock& block) {
        for (size_t at = 0; at < Size; ++at) content[at] = block[at];
    }
    uint32_t ownerSize = 6, contentSize = Size, type = 1;
    char owner[8] = "Orvik";
    unsigned char content[(Size + 3) / 4 * 4] = {};
};

}  // namespace orvik::detail

#define ORVIK_VERSION_RECORD(kind, numbers, version, product, name, windowsFile, otherFile, english, swedish)              \
    namespace {                                                                                                            \
    constexpr orvik::detail::VersionBlock kVersionBlock(kind, {numbers},                                                   \
                                                        {u"" english, u"" version, u"" product, u"" name, u"" otherFile},  \
                                                        {u"" swedish, u"" version, u"" product, u"" name, u"" otherFile}); \
    [[gnu::used, gnu::aligned(4),                                                                                          \
      gnu::section(".note.orvik.version")]] constexpr orvik::detail::VersionNote<kVersionBlock.Size()>                     \
        kVersionNote(kVersionBlock);                                                                                       \
    }

#endif
