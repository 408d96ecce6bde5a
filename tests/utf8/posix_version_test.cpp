// A version record's texts in a process that chose UTF-8.
#include <elf.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <string>

#include "ui/version_info.h"

namespace {
std::string Padded(std::string bytes) { return bytes.append((4 - bytes.size() % 4) % 4, '\0'); }
std::string Units(std::u16string_view text) { return {reinterpret_cast<const char*>(text.data()), text.size() * 2}; }
std::string Word(size_t value) { return {static_cast<char>(value), static_cast<char>(value >> 8)}; }

// A node with its children behind it, which begin where it ends.
std::string Node(std::u16string_view name, const std::string& value, size_t valueLength, bool text, const std::string& children) {
    std::string rest = Units(name) + Units(std::u16string_view(u"\0", 1));
    rest = Padded("123456" + rest).substr(6) + value;
    if (!children.empty()) rest = Padded("123456" + rest).substr(6) + children;
    return Word(6 + rest.size()) + Word(valueLength) + Word(text ? 1 : 0) + rest;
}
std::string Text(std::u16string_view name, const std::u16string& value) {
    return Padded(Node(name, Units(std::u16string_view(value.c_str(), value.size() + 1)), value.size() + 1, true, {}));
}

void WriteElf(const std::string& path, const std::string& record) {
    Elf64_Ehdr header = {};
    std::memcpy(header.e_ident, ELFMAG, SELFMAG);
    header.e_ident[EI_CLASS] = ELFCLASS64, header.e_ident[EI_DATA] = ELFDATA2LSB;
    header.e_phoff = sizeof header, header.e_phentsize = sizeof(Elf64_Phdr), header.e_phnum = 1;
    const Elf64_Nhdr note = {6, static_cast<Elf64_Word>(record.size()), 1};
    Elf64_Phdr segment = {};
    segment.p_type = PT_NOTE, segment.p_offset = sizeof header + sizeof segment, segment.p_align = 4;
    segment.p_filesz = sizeof note + 8 + Padded(record).size();
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(&header), sizeof header);
    file.write(reinterpret_cast<const char*>(&segment), sizeof segment);
    file.write(reinterpret_cast<const char*>(&note), sizeof note);
    file << std::string("Orvik\0\0\0", 8) << Padded(record);
}
}  // namespace

TEST(Utf8Process, VersionRecordsHaveTheirLetters) {
    const std::u16string name = u"Ωmega 温度 \U0001F321", other(300, u'\u6E29');
    const std::string table = Node(u"040904B0", {}, 0, true,
                                   Text(u"ProductName", name) + Text(u"LEGALCopyright", other) + Text(u"FileVersion", u"1.2"));
    const std::string strings = Padded(Node(u"StringFileInfo", {}, 0, true, Padded(table)));
    const std::string translation = Padded(Node(u"Translation", std::string("\x09\x04\xB0\x04", 4), 4, false, {}));
    const std::string record = Node(u"VS_VERSION_INFO", {}, 0, false, strings + Node(u"VarFileInfo", {}, 0, true, translation));
    const std::string path = testing::TempDir() + "orvik-version-" + std::to_string(GetCurrentThreadId());
    WriteElf(path, record);
    const CVersionInfo info(path.c_str());
    EXPECT_STREQ("Ωmega 温度 \U0001F321", info.GetProductName());
    EXPECT_STREQ("1.2", info.GetFileVersion());
    std::string whole;
    for (int i = 0; i < 300; ++i) whole += "温";
    EXPECT_EQ(whole, info.GetLegalCopyright());
    // Whatever is cut off or lies, nothing beyond the block is touched.
    for (size_t cut = 0; cut < record.size(); cut += 3) {
        WriteElf(path, record.substr(0, cut));
        CVersionInfo(path.c_str()).GetProductName();
        std::string damaged = record;
        damaged[cut] = static_cast<char>(damaged[cut] + 0x55);
        WriteElf(path, damaged);
        CVersionInfo(path.c_str()).GetLegalCopyright();
    }
    DeleteFileA(path.c_str());
}
