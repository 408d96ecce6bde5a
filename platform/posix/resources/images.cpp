#include "platform/posix/resources/images_internal.h"

namespace orvik::detail {
namespace {

constexpr size_t kFileHeader = 6, kFileEntry = 16, kBitmapHeader = 40;
constexpr int kLargest = 256;

uint32_t Read(std::span<const unsigned char> data, size_t at, size_t bytes) {
    uint32_t value = 0;
    for (size_t i = 0; i < bytes; ++i) value |= static_cast<uint32_t>(data[at + i]) << (8 * i);
    return value;
}

}  // namespace

std::vector<IconEntry> ReadIconFile(std::span<const unsigned char> file, bool cursor) {
    if (file.size() < kFileHeader || Read(file, 0, 2) != 0 || Read(file, 2, 2) != (cursor ? 2u : 1u)) return {};
    const size_t count = Read(file, 4, 2);
    if (file.size() < kFileHeader + count * kFileEntry) return {};
    std::vector<IconEntry> entries;
    for (size_t i = 0; i < count; ++i) {
        const size_t at = kFileHeader + i * kFileEntry;
        const size_t size = Read(file, at + 8, 4), offset = Read(file, at + 12, 4);
        if (offset > file.size() || size > file.size() - offset) return {};
        const auto side = [&](size_t where) { return file[where] == 0 ? kLargest : static_cast<int>(file[where]); };
        entries.push_back({side(at), side(at + 1), static_cast<uint16_t>(Read(file, at + 4, 2)),
                           static_cast<uint16_t>(Read(file, at + 6, 2)), file.subspan(offset, size)});
    }
    return entries;
}

std::optional<IconImage> DecodeIconBitmap(std::span<const unsigned char> bitmap) {
    if (bitmap.size() < kBitmapHeader || Read(bitmap, 0, 4) != kBitmapHeader || Read(bitmap, 16, 4) != 0) return std::nullopt;
    const uint32_t width = Read(bitmap, 4, 4), doubled = Read(bitmap, 8, 4), bits = Read(bitmap, 14, 2);
    const uint32_t height = doubled / 2;  // colours and mask count together
    if (width < 1 || width > kLargest || height < 1 || height > kLargest || doubled % 2 != 0) return std::nullopt;
    if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32) return std::nullopt;
    uint32_t colours = bits <= 8 ? Read(bitmap, 32, 4) : 0;
    if (bits <= 8 && colours == 0) colours = 1u << bits;
    if (bits <= 8 && colours > 1u << bits) return std::nullopt;
    const size_t palette = kBitmapHeader, rows = palette + colours * size_t{4};
    const size_t stride = (static_cast<size_t>(width) * bits + 31) / 32 * 4,
                 maskStride = (static_cast<size_t>(width) + 31) / 32 * 4;
    const size_t mask = rows + stride * height;
    if (bitmap.size() < mask + maskStride * height) return std::nullopt;

    IconImage image;
    image.width = static_cast<int>(width), image.height = static_cast<int>(height);
    image.pixels.resize(static_cast<size_t>(width) * height);
    bool anyAlpha = false;
    for (uint32_t y = 0; y < height; ++y) {
        const size_t row = rows + stride * (height - 1 - y), maskRow = mask + maskStride * (height - 1 - y);
        for (uint32_t x = 0; x < width; ++x) {
            uint32_t argb;
            if (bits == 32) {
                argb = Read(bitmap, row + x * size_t{4}, 4);
                anyAlpha |= argb >> 24 != 0;
            } else if (bits == 24) {
                argb = Read(bitmap, row + x * size_t{3}, 3);
            } else {
                const size_t bit = static_cast<size_t>(x) * bits;
                const uint32_t index = (bitmap[row + bit / 8] >> (8 - bits - bit % 8)) & ((1u << bits) - 1);
                if (index >= colours) return std::nullopt;
                argb = Read(bitmap, palette + index * size_t{4}, 4) & 0xFFFFFF;
            }
            const bool clear = (bitmap[maskRow + x / 8] >> (7 - x % 8) & 1) != 0;
            // Where the mask lets the screen through, a set colour inverts it; on this home such a pixel is drawn as it is, dark.
            if (bits != 32) argb |= clear && (argb & 0xFFFFFF) == 0 ? 0 : 0xFF000000;
            image.pixels[static_cast<size_t>(y) * width + x] = argb;
        }
    }
    if (bits == 32 && !anyAlpha)  // an old 32-bit icon without alpha: the mask decides
        for (uint32_t y = 0; y < height; ++y)
            for (uint32_t x = 0; x < width; ++x)
                if (!(bitmap[mask + maskStride * (height - 1 - y) + x / 8] >> (7 - x % 8) & 1))
                    image.pixels[static_cast<size_t>(y) * width + x] |= 0xFF000000;
    return image;
}

}  // namespace orvik::detail
