#include <zlib.h>

#include <cstdlib>
#include <new>
#include <vector>

#include "platform/png_writer_internal.h"

namespace orvik::detail {
namespace {
constexpr size_t kPixel = 3;
enum Filter : unsigned char { none, left, above };  // what is subtracted from each byte

void AppendBig(std::string& out, uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>(value >> shift & 0xFF);
}

uint32_t Crc(const char* data, size_t size) {
    return static_cast<uint32_t>(crc32_z(0, reinterpret_cast<const Bytef*>(data), size));
}

// Rows of filtered differences are mostly zeros: run lengths and a quick search find nearly all that a long one would.
std::string Compressed(const std::vector<unsigned char>& rows) {
    uLong size = compressBound(static_cast<uLong>(rows.size()));
    std::string packed(size, 0);
    if (compress2(reinterpret_cast<Bytef*>(packed.data()), &size, rows.data(), static_cast<uLong>(rows.size()), 3) != Z_OK)
        throw std::bad_alloc();
    packed.resize(size);
    return packed;
}

void AppendChunk(std::string& file, const char* name, const std::string& content) {
    AppendBig(file, static_cast<uint32_t>(content.size()));
    const size_t start = file.size();
    file += name;
    file += content;
    AppendBig(file, Crc(file.data() + start, file.size() - start));
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
