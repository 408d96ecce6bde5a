// From an ELF file to its version record: a note among those that its program header tells of (platform/version_record.h).
#include <elf.h>

#include <algorithm>
#include <cstring>

#include "platform/posix/kernel/errors.h"
#include "platform/posix/resources/version_internal.h"

namespace orvik::detail {
namespace {

constexpr DWORD kRecordType = 1;
constexpr char kOwner[8] = "Orvik";  // as padded
constexpr size_t kOwnerSize = 6;
constexpr int kMostNotes = 1000;  // in all; no file has more than a handful

// The note among those in a part of the file; false when it is not there.
bool FindRecord(const VersionSource& file, ULONGLONG at, ULONGLONG size, ULONGLONG align, int& notes,
                std::vector<unsigned char>& bytes) {
    const auto padded = [align](ULONGLONG length) { return (length + align - 1) / align * align; };
    while (size >= sizeof(Elf64_Nhdr) && notes++ < kMostNotes) {
        Elf64_Nhdr note;  // that of 32 bits is the same
        if (!file.Read(at, reinterpret_cast<unsigned char*>(&note), sizeof note)) return false;
        const ULONGLONG content = sizeof note + padded(note.n_namesz), end = content + padded(note.n_descsz);
        unsigned char owner[sizeof kOwner];
        if (note.n_type == kRecordType && note.n_namesz == kOwnerSize && content + note.n_descsz <= size &&
            file.Read(at + sizeof note, owner, sizeof owner) && std::memcmp(owner, kOwner, sizeof owner) == 0) {
            bytes.resize(std::min<size_t>(note.n_descsz, kMaxVersionResource));
            return file.Read(at + content, bytes.data(), bytes.size());
        }
        if (end > size) return false;
        at += end, size -= end;
    }
    return false;
}

template <class Header, class Segment>
DWORD Find(const VersionSource& file, std::vector<unsigned char>& bytes) {
    Header header;
    if (!file.Read(0, reinterpret_cast<unsigned char*>(&header), sizeof header) || header.e_phentsize != sizeof(Segment))
        return ERROR_BAD_FORMAT;
    int notes = 0;
    for (unsigned i = 0; i < header.e_phnum; ++i) {
        Segment segment;
        const ULONGLONG at = static_cast<ULONGLONG>(header.e_phoff) + i * sizeof segment;
        if (!file.Read(at, reinterpret_cast<unsigned char*>(&segment), sizeof segment)) return ERROR_BAD_FORMAT;
        const ULONGLONG align = segment.p_align == 8 ? 8 : 4;
        if (segment.p_type == PT_NOTE && FindRecord(file, segment.p_offset, segment.p_filesz, align, notes, bytes))
            return ERROR_SUCCESS;
    }
    return ERROR_RESOURCE_TYPE_NOT_FOUND;
}

}  // namespace

DWORD ReadElfVersion(const VersionSource& file, std::vector<unsigned char>& bytes) {
    unsigned char ident[EI_NIDENT];
    // All machines that this house runs on put the low byte first.
    if (!file.Read(0, ident, sizeof ident) || ident[EI_DATA] != ELFDATA2LSB) return ERROR_BAD_FORMAT;
    if (ident[EI_CLASS] == ELFCLASS64) return Find<Elf64_Ehdr, Elf64_Phdr>(file, bytes);
    if (ident[EI_CLASS] == ELFCLASS32) return Find<Elf32_Ehdr, Elf32_Phdr>(file, bytes);
    return ERROR_BAD_FORMAT;
}

}  // namespace orvik::detail
