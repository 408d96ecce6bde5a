// From a PE file to its version resource. Offsets and counts come from the file, so each read is checked against the file's
// length, nothing is read twice on the file's word, and the three levels of the resource directory are walked as three steps.
#include <algorithm>
#include <optional>

#include "platform/posix/kernel/errors.h"
#include "platform/posix/resources/resources.h"
#include "platform/posix/resources/version_internal.h"

namespace orvik::detail {
namespace {

constexpr DWORD kVersionType = 16;
constexpr size_t kMaxSections = 96;  // what the system's loader accepts

DWORD Word(const unsigned char* at) { return static_cast<DWORD>(at[0] | at[1] << 8); }
DWORD DWord(const unsigned char* at) { return Word(at) | Word(at + 2) << 16; }

struct Section {
    DWORD address, size, fileOffset;  // `size` as far as the file holds it
};

class Image {
public:
    explicit Image(const VersionSource& file) : m_file(file) {}

    DWORD ReadHeaders() {
        unsigned char dos[64], coff[24], magic[2];
        if (!m_file.Read(0, dos, sizeof dos) || dos[0] != 'M' || dos[1] != 'Z') return ERROR_BAD_FORMAT;
        const ULONGLONG header = DWord(dos + 0x3C);
        if (!m_file.Read(header, coff, sizeof coff) || DWord(coff) != 0x4550) return ERROR_BAD_FORMAT;  // "PE"
        const size_t sections = Word(coff + 6), optionalSize = Word(coff + 20);
        const ULONGLONG optional = header + sizeof coff;
        if (sections > kMaxSections || !m_file.Read(optional, magic, sizeof magic)) return ERROR_BAD_FORMAT;
        const bool wide = Word(magic) == 0x20B;
        if (!wide && Word(magic) != 0x10B) return ERROR_BAD_FORMAT;

        // The third data directory; the number of directories stands in front of the first.
        const size_t directories = wide ? 112 : 96, entry = directories + 2 * 8;
        unsigned char count[4], place[8];
        if (optionalSize < entry + sizeof place || !m_file.Read(optional + directories - 4, count, sizeof count) ||
            DWord(count) < 3 || !m_file.Read(optional + entry, place, sizeof place))
            return ERROR_RESOURCE_DATA_NOT_FOUND;
        m_resources = DWord(place);
        if (m_resources == 0) return ERROR_RESOURCE_DATA_NOT_FOUND;
        for (size_t i = 0; i < sections; ++i) {
            unsigned char row[40];
            if (!m_file.Read(optional + optionalSize + i * sizeof row, row, sizeof row)) return ERROR_BAD_FORMAT;
            m_sections[m_count++] = {DWord(row + 12), DWord(row + 16), DWord(row + 20)};
        }
        return ERROR_SUCCESS;
    }

    // Bytes by their address in memory, in one section.
    bool Read(ULONGLONG address, unsigned char* out, size_t size) const {
        for (size_t i = 0; i < m_count; ++i) {
            const Section& section = m_sections[i];
            if (address < section.address || address - section.address >= section.size) continue;
            const ULONGLONG offset = address - section.address;
            return size <= section.size - offset && m_file.Read(section.fileOffset + offset, out, size);
        }
        return false;
    }

    // One entry of the resource directory at `offset`: what it points to, the number with the least rank first. A rank of -1 is
    // no match.
    template <class Rank>
    std::optional<DWORD> FindEntry(DWORD offset, Rank rank) const {
        unsigned char table[16], row[8];
        const ULONGLONG at = static_cast<ULONGLONG>(m_resources) + offset;
        if (!Read(at, table, sizeof table)) return std::nullopt;
        const DWORD named = Word(table + 12), numbered = Word(table + 14);
        std::optional<DWORD> found;
        int best = -1;
        for (DWORD i = named; i < named + numbered && best != 0; ++i) {
            if (!Read(at + sizeof table + static_cast<ULONGLONG>(i) * sizeof row, row, sizeof row)) break;
            const int value = rank(DWord(row));
            if (value < 0 || (best >= 0 && value >= best)) continue;
            best = value;
            found = DWord(row + 4);
        }
        return found;
    }

    ULONGLONG Resources() const { return m_resources; }

private:
    const VersionSource& m_file;
    DWORD m_resources = 0;
    size_t m_count = 0;
    Section m_sections[kMaxSections] = {};
};

int RankOfLanguage(DWORD language) {
    if (language == GetThreadUILanguage()) return 0;
    return language == LANG_NEUTRAL ? 1 : language == MAKELANGID(LANG_ENGLISH, SUBLANG_ENGLISH_US) ? 2 : 3;
}

}  // namespace

DWORD ReadPeVersion(const VersionSource& file, std::vector<unsigned char>& bytes) {
    Image image(file);
    if (const DWORD error = image.ReadHeaders()) return error;

    constexpr DWORD kFolder = 0x80000000;  // the entry leads to another directory
    const auto type = image.FindEntry(0, [](DWORD id) { return id == kVersionType ? 0 : -1; });
    if (!type) return ERROR_RESOURCE_TYPE_NOT_FOUND;
    if (!(*type & kFolder)) return ERROR_RESOURCE_DATA_NOT_FOUND;
    const auto number = image.FindEntry(*type & ~kFolder, [](DWORD id) { return id == VS_VERSION_INFO ? 0 : -1; });
    if (!number) return ERROR_RESOURCE_NAME_NOT_FOUND;
    if (!(*number & kFolder)) return ERROR_RESOURCE_DATA_NOT_FOUND;
    const auto language = image.FindEntry(*number & ~kFolder, RankOfLanguage);
    unsigned char data[16];
    if (!language || *language & kFolder || !image.Read(image.Resources() + *language, data, sizeof data))
        return ERROR_RESOURCE_DATA_NOT_FOUND;
    bytes.resize(std::min<size_t>(DWord(data + 4), kMaxVersionResource));
    return image.Read(DWord(data), bytes.data(), bytes.size()) ? ERROR_SUCCESS : ERROR_RESOURCE_DATA_NOT_FOUND;
}

}  // namespace orvik::detail
