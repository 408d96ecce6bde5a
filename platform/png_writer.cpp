#include <array>
#include <cstdlib>
#include <vector>

#include "platform/png_writer_internal.h"

namespace orvik::detail {
namespace {
constexpr size_t kPixel = 3;
enum Filter : unsigned char { none, left, above };  // what is subtracted from each byte

void AppendBig(std::string& out, uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>(value >> shift & 0xFF);
}

// The check sum of a chunk (RFC 2083, 15), eight bytes a step.
uint32_t Crc(std::span<const unsigned char> data) {
    using Table = std::array<std::array<uint32_t, 256>, 8>;
    static const Table tables = [] {
        Table made{};
        for (uint32_t i = 0; i < 256; ++i) {
            uint32_t value = i;
            for (int bit = 0; bit < 8; ++bit) value = (value & 1) != 0 ? 0xEDB88320u ^ value >> 1 : value >> 1;
            made[0][i] = value;
        }
        for (size_t step = 1; step < 8; ++step)
            for (size_t i = 0; i < 256; ++i) made[step][i] = made[step - 1][i] >> 8 ^ made[0][made[step - 1][i] & 0xFF];
        return made;
    }();
    uint32_t crc = 0xFFFFFFFFu;
    size_t i = 0;
    for (; i + 8 <= data.size(); i += 8) {
        const unsigned char* at = data.data() + i;
        const uint32_t first = crc ^ (at[0] | static_cast<uint32_t>(at[1]) << 8 | static_cast<uint32_t>(at[2]) << 16 |
                                      static_cast<uint32_t>(at[3]) << 24);
        crc = tables[7][first & 0xFF] ^ tables[6][first >> 8 & 0xFF] ^ tables[5][first >> 16 & 0xFF] ^ tables[4][first >> 24] ^
              tables[3][at[4]] ^ tables[2][at[5]] ^ tables[1][at[6]] ^ tables[0][at[7]];
    }
    for (; i < data.size(); ++i) crc = tables[0][(crc ^ data[i]) & 0xFF] ^ crc >> 8;
    return ~crc;
}

void AppendChunk(std::string& file, const char* name, const std::string& content) {
    AppendBig(file, static_cast<uint32_t>(content.size()));
    const size_t start = file.size();
    file += name;
    file += content;
    AppendBig(file, Crc({reinterpret_cast<const unsigned char*>(file.data()) + start, file.size() - start}));
}

unsigned Size(unsigned char difference) { return static_cast<unsigned>(std::abs(static_cast<signed char>(difference))); }

// The filter that leaves the smallest differences: plain areas, level lines and upright ones all become zeros.
Filter Choose(const unsigned char* row, const unsigned char* before, size_t size) {
    unsigned sums[3] = {};
    for (size_t i = 0; i < size; ++i) {
        sums[none] += Size(row[i]);
        sums[left] += Size(static_cast<unsigned char>(row[i] - (i < kPixel ? 0 : row[i - kPixel])));
        sums[above] += Size(static_cast<unsigned char>(row[i] - before[i]));
    }
    return sums[above] <= sums[left] ? (sums[above] <= sums[none] ? above : none) : sums[left] <= sums[none] ? left : none;
}
}  // namespace

std::string PngFile(const uint32_t* pixels, size_t stride, int width, int height) {
    const size_t size = static_cast<size_t>(width) * kPixel;
    std::vector<unsigned char> rows((size + 1) * static_cast<size_t>(height));
    std::vector<unsigned char> row(size), before(size);
    unsigned char* out = rows.data();
    for (int y = 0; y < height; ++y) {
        const uint32_t* in = pixels + static_cast<size_t>(y) * stride;
        for (size_t x = 0; x < static_cast<size_t>(width); ++x) {
            row[x * kPixel] = static_cast<unsigned char>(in[x] >> 16);
            row[x * kPixel + 1] = static_cast<unsigned char>(in[x] >> 8);
            row[x * kPixel + 2] = static_cast<unsigned char>(in[x]);
        }
        const Filter filter = Choose(row.data(), before.data(), size);
        *out++ = filter;
        for (size_t i = 0; i < size; ++i) {
            const unsigned char base = filter == above ? before[i] : filter == left && i >= kPixel ? row[i - kPixel] : 0;
            *out++ = static_cast<unsigned char>(row[i] - base);
        }
        row.swap(before);
    }

    std::string header;
    AppendBig(header, static_cast<uint32_t>(width));
    AppendBig(header, static_cast<uint32_t>(height));
    header += std::string("\x08\x02\0\0\0", 5);  // 8 bits of each colour, no palette, no interlacing
    std::string physical;
    AppendBig(physical, 3780);  // 96 dots an inch, in dots a metre
    AppendBig(physical, 3780);
    physical += '\x01';
    std::string file = "\x89PNG\r\n\x1A\n";
    AppendChunk(file, "IHDR", header);
    AppendChunk(file, "pHYs", physical);
    AppendChunk(file, "IDAT", Compressed(rows));
    AppendChunk(file, "IEND", "");
    return file;
}
}  // namespace orvik::detail
