// Reads PNG files as their standard says (RFC 2083), strictly: what our own writer makes, an independent reading of it must give
// back. 24-bit colours without interlacing; anything else throws std::runtime_error.
#pragma once

#include <zlib.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

inline void PngExpect(bool holds, const char* what) {
    if (!holds) throw std::runtime_error(what);
}

struct PngImage {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;  // 0x00RRGGBB
    uint32_t At(int x, int y) const { return pixels.at(static_cast<size_t>(y * width + x)); }
};

inline PngImage ReadPng(const std::string& file) {
    const auto number = [&](size_t at) {
        uint32_t value = 0;
        for (size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(file.at(at + i));
        return value;
    };
    PngExpect(file.substr(0, 8) == "\x89PNG\r\n\x1A\n", "signature");
    PngImage image;
    std::string compressed;
    for (size_t at = 8; at < file.size();) {
        const size_t size = number(at);
        const std::string name = file.substr(at + 4, 4), content = file.substr(at + 8, size);
        const std::string summed = name + content;
        const uLong crc = crc32_z(0, reinterpret_cast<const Bytef*>(summed.data()), summed.size());
        PngExpect(crc == number(at + 8 + size), "check sum of a chunk");
        if (name == "IHDR") {
            image.width = static_cast<int>(number(at + 8)), image.height = static_cast<int>(number(at + 12));
            PngExpect(content.substr(8) == std::string("\x08\x02\0\0\0", 5), "24-bit colours");
        }
        if (name == "IDAT") compressed += content;
        at += size + 12;
        PngExpect((name == "IEND") == (at == file.size()), "end of the file");
    }
    const size_t stride = static_cast<size_t>(image.width) * 3;
    std::string rows((stride + 1) * static_cast<size_t>(image.height), 0);
    uLongf unpacked = static_cast<uLongf>(rows.size());
    PngExpect(uncompress(reinterpret_cast<Bytef*>(rows.data()), &unpacked, reinterpret_cast<const Bytef*>(compressed.data()),
                         static_cast<uLong>(compressed.size())) == Z_OK,
              "a stream that ends");
    PngExpect(unpacked == (stride + 1) * static_cast<size_t>(image.height), "all rows");
    std::vector<unsigned char> row(stride), above(stride);
    for (size_t y = 0; y < static_cast<size_t>(image.height); ++y) {
        const int filter = rows[y * (stride + 1)];
        PngExpect(filter >= 0 && filter <= 2, "a filter that is used here");
        for (size_t i = 0; i < stride; ++i) {
            const unsigned base = filter == 0 ? 0u : filter == 2 ? above[i] : i < 3 ? 0u : row[i - 3];
            row[i] = static_cast<unsigned char>(static_cast<unsigned char>(rows[y * (stride + 1) + 1 + i]) + base);
        }
        for (size_t i = 0; i < stride; i += 3)
            image.pixels.push_back(static_cast<uint32_t>(row[i]) << 16 | static_cast<uint32_t>(row[i + 1]) << 8 | row[i + 2]);
        above = row;
    }
    return image;
}

inline std::string FileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}
