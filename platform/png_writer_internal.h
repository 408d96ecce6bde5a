// PNG files (RFC 2083), for pictures of few colours and large plain areas.
// Internal; any thread; nothing is kept.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace orvik::detail {

// A file of 24-bit colours. Pixels are 0xxxrrggbb, row after row from the top; `stride` counts pixels from a row to the next.
std::string PngFile(const uint32_t* pixels, size_t stride, int width, int height);

}  // namespace orvik::detail
