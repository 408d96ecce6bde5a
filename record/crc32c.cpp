#include "record/crc32c_internal.h"

#include <array>
#include <cstring>

#if defined(__x86_64__)
#include <nmmintrin.h>
#endif

namespace orvik::detail {
namespace {
// Table k tells what a byte does to the CRC k bytes further on, so that eight bytes are taken in one step.
using Tables = std::array<std::array<uint32_t, 256>, 8>;
constexpr Tables kTables = [] {
    Tables tables{};
    for (uint32_t byte = 0; byte < 256; ++byte) {
        uint32_t crc = byte;
        for (int bit = 0; bit < 8; ++bit) crc = crc & 1 ? (crc >> 1) ^ 0x82F63B78u : crc >> 1;
        tables[0][byte] = crc;
    }
    for (size_t k = 1; k < tables.size(); ++k) {
        for (size_t byte = 0; byte < 256; ++byte)
            tables[k][byte] = (tables[k - 1][byte] >> 8) ^ tables[0][tables[k - 1][byte] & 0xFF];
    }
    return tables;
}();

uint64_t Word(const unsigned char* bytes) {
    uint64_t word;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

#if defined(__x86_64__)
__attribute__((target("sse4.2"))) uint32_t ByInstruction(const unsigned char* bytes, size_t size, uint32_t crc) {
    uint64_t state = crc;
    for (; size >= 8; bytes += 8, size -= 8) state = _mm_crc32_u64(state, Word(bytes));
    auto rest = static_cast<uint32_t>(state);
    for (; size > 0; ++bytes, --size) rest = _mm_crc32_u8(rest, *bytes);
    return rest;
}
#endif
}  // namespace

uint32_t Crc32cByTables(const void* data, size_t size, uint32_t before) {
    auto bytes = static_cast<const unsigned char*>(data);
    uint32_t crc = ~before;
    for (; size >= 8; bytes += 8, size -= 8) {
        const uint64_t word = Word(bytes) ^ crc;  // little-endian, as all that this house runs on
        crc = 0;
        for (size_t k = 0; k < 8; ++k) crc ^= kTables[7 - k][word >> (8 * k) & 0xFF];
    }
    for (; size > 0; ++bytes, --size) crc = (crc >> 8) ^ kTables[0][(crc ^ *bytes) & 0xFF];
    return ~crc;
}

uint32_t Crc32c(const void* data, size_t size, uint32_t before) {
#if defined(__x86_64__)
    static const bool instruction = __builtin_cpu_supports("sse4.2");
    if (instruction) return ~ByInstruction(static_cast<const unsigned char*>(data), size, ~before);
#endif
    return Crc32cByTables(data, size, before);
}

}  // namespace orvik::detail
