// The layout of a recording; docs/formats.md describes it for others. Little-endian throughout. Internal.
//
// A head, then blocks one after the other. A block's header holds the CRC of its payload, and a CRC of its own that also takes in
// the file's number and the block's place: what once stood elsewhere, or in another file, is never taken for a block.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

#include "platform/win32.h"

namespace orvik::detail {

constexpr char kRecordMagic[8] = {'O', 'R', 'V', 'I', 'K', 'R', 'E', 'C'};
constexpr uint16_t kRecordVersion = 1;
constexpr size_t kRecordHead = 20;   // magic 8, version 2, channels 2, file number 4, CRC of these 4
constexpr size_t kBlockHeader = 16;  // mark 2, type 1, zero 1, payload length 4, CRC of the payload 4, CRC of the header 4
constexpr unsigned char kBlockMark[2] = {0xD7, 0x4F};
constexpr uint32_t kLongestBlock = 1u << 26;  // bytes of a payload
constexpr size_t kMostChannels = 16384;
// About so many bytes lie between two index blocks; wide recordings have them further apart, so that they stay a small part.
constexpr size_t kIndexDistance = 64 * 1024;

enum BlockType : unsigned char { kFactsBlock = 1, kReadingBlock = 2, kGapBlock = 3, kEventBlock = 4, kIndexBlock = 5 };

// Appends numbers as they lie in memory.
class Packer {
public:
    explicit Packer(std::vector<unsigned char>& out) : m_out(out) {}
    template <class Number>
    Packer& operator<<(Number value) {
        static_assert(std::is_arithmetic_v<Number>);
        return Bytes(&value, sizeof value);
    }
    Packer& Bytes(const void* bytes, size_t size) {
        const auto begin = static_cast<const unsigned char*>(bytes);
        m_out.insert(m_out.end(), begin, begin + size);
        return *this;
    }

private:
    std::vector<unsigned char>& m_out;
};

// Takes numbers out again; once something was not there, everything is 0 and Whole() is false.
class Unpacker {
public:
    Unpacker(const unsigned char* bytes, size_t size) : m_at(bytes), m_left(size) {}
    template <class Number>
    Unpacker& operator>>(Number& value) {
        return Bytes(&value, sizeof value);
    }
    Unpacker& Bytes(void* out, size_t size) {
        if (size > m_left) {
            m_whole = false;
            m_left = 0;
            std::memset(out, 0, size);
        } else if (size > 0) {
            std::memcpy(out, m_at, size);
            m_at += size;
            m_left -= size;
        }
        return *this;
    }
    std::string Text(size_t size) {
        std::string text(size <= m_left ? size : 0, 0);
        m_whole = m_whole && size <= m_left;
        Bytes(text.data(), text.size());
        return text;
    }
    size_t Left() const { return m_left; }
    bool Whole() const { return m_whole; }

private:
    const unsigned char* m_at;
    size_t m_left;
    bool m_whole = true;
};

struct BlockHeader {
    unsigned char type = 0;
    uint32_t length = 0, payloadCrc = 0;
};
// What CRCs of headers begin with.
uint32_t HeaderSeed(uint32_t fileNumber, uint64_t offset);
// The sixteen bytes in front of a payload at `offset`.
void WriteHeader(unsigned char* out, uint32_t fileNumber, uint64_t offset, const BlockHeader& header);
// False for bytes that are no header at this offset of this file.
bool ReadHeader(const unsigned char* bytes, uint32_t fileNumber, uint64_t offset, BlockHeader& header);

inline size_t ReadingSize(size_t channels) { return 8 + 9 * channels; }
inline size_t IndexSize(size_t channels) { return 52 + 24 * channels; }
inline size_t IndexDistance(size_t channels) {
    const size_t sixteenth = 16 * (IndexSize(channels) + kBlockHeader);
    return sixteenth > kIndexDistance ? sixteenth : kIndexDistance;
}

}  // namespace orvik::detail
