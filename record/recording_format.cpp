#include "record/crc32c_internal.h"
#include "record/recording_format_internal.h"

namespace orvik::detail {

uint32_t HeaderSeed(uint32_t fileNumber, uint64_t offset) {
    unsigned char place[12];
    std::memcpy(place, &fileNumber, 4);
    std::memcpy(place + 4, &offset, 8);
    return Crc32c(place, sizeof place);
}

void WriteHeader(unsigned char* out, uint32_t fileNumber, uint64_t offset, const BlockHeader& header) {
    out[0] = kBlockMark[0], out[1] = kBlockMark[1], out[2] = header.type, out[3] = 0;
    std::memcpy(out + 4, &header.length, 4);
    std::memcpy(out + 8, &header.payloadCrc, 4);
    const uint32_t crc = Crc32c(out, 12, HeaderSeed(fileNumber, offset));
    std::memcpy(out + 12, &crc, 4);
}

bool ReadHeader(const unsigned char* bytes, uint32_t fileNumber, uint64_t offset, BlockHeader& header) {
    if (bytes[0] != kBlockMark[0] || bytes[1] != kBlockMark[1] || bytes[3] != 0) return false;
    uint32_t crc;
    std::memcpy(&crc, bytes + 12, 4);
    if (crc != Crc32c(bytes, 12, HeaderSeed(fileNumber, offset))) return false;
    header.type = bytes[2];
    std::memcpy(&header.length, bytes + 4, 4);
    std::memcpy(&header.payloadCrc, bytes + 8, 4);
    return header.length <= kLongestBlock;
}

}  // namespace orvik::detail
