// Cursor and icon files and the objects made of them.
// Decoding is pure; objects are constant once made.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "platform/posix/types.h"

namespace orvik::detail {

// A decoded cursor or icon: width * height pixels from the top left corner, each 0xAARRGGBB, not premultiplied.
// A system cursor has a name instead of pixels: its look is the desktop's.
struct IconImage {
    bool icon = false;
    int width = 0, height = 0, hotX = 0, hotY = 0;
    std::vector<uint32_t> pixels;
    WORD systemId = 0;
};

// One entry of a .cur or .ico file: its place in the file and, for a cursor, the hot spot.
struct IconEntry {
    int width, height;
    uint16_t hotX, hotY;  // planes and bits per pixel in an icon file
    std::span<const unsigned char> image;
};

// The entries of a .cur or .ico file; none if it is not one, or if an entry lies outside the file.
std::vector<IconEntry> ReadIconFile(std::span<const unsigned char> file, bool cursor);

// A device-independent bitmap as icons hold it: header, palette, colours bottom up, mask. 1, 4, 8, 24 and 32 bits, no
// compression, at most 256 pixels a side; nothing for anything else and for data that end too early.
std::optional<IconImage> DecodeIconBitmap(std::span<const unsigned char> bitmap);

// The object behind a live handle, null for any other.
const IconImage* ImageOf(HICON icon);

}  // namespace orvik::detail
