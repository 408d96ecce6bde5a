// PNG files (RFC 2083) and the compression inside them (RFC 1950 and 1951), for pictures of few colours and large plain areas.
// Internal; any thread; nothing is kept.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace orvik::detail {

// The bytes as a compressed stream of the "zlib" format.
std::string Compressed(std::span<const unsigned char> data);

// A file of 24-bit colours. Pixels are 0xxxrrggbb, row after row from the top; `stride` counts pixels from a row to the next.
std::string PngFile(const uint32_t* pixels, size_t stride, int width, int height);

}  // namespace orvik::detail
