// CRC-32C (Castagnoli): reflected polynomial 0x82F63B78, start and final exclusive-or 0xFFFFFFFF, as in RFC 3720, appendix B.4.
// Pure functions; any thread. Internal.
#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/api.h"

namespace orvik::detail {

// The CRC of `size` bytes that follow those whose CRC is `before` (0 for none).
uint32_t Crc32c(const void* bytes, size_t size, uint32_t before = 0);

// The same by tables alone, as processors without an instruction for it do.
uint32_t Crc32cByTables(const void* bytes, size_t size, uint32_t before = 0);

}  // namespace orvik::detail
