// Reads PNG files as their standards say (RFC 1950, 1951, 2083), slowly and strictly: what our own writer makes, an independent
// reading of it must give back. 24-bit colours without interlacing; anything else throws std::runtime_error.
#pragma once

#include <array>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

inline void PngExpect(bool holds, const char* what) {
    if (!holds) throw std::runtime_error(what);
}

// The content of a "zlib" stream.
class Inflater {
public:
    explicit Inflater(const std::string& data) : m_data(data) {}

    std::string All() {
        PngExpect(Bits(8) == 0x78 && (0x7800 + Bits(8)) % 31 == 0, "header of a stream");
        for (bool last = false; !last;) {
            last = Bits(1) == 1;
            const unsigned kind = Bits(2);
            PngExpect(kind == 2, "a block with codes of its own");
            Block();
        }
        m_count = 0;
        uint32_t sum = 0, a = 1, b = 0;
        for (int i = 0; i < 4; ++i) sum = sum << 8 | Byte();
        for (const char c : m_out) a = (a + static_cast<unsigned char>(c)) % 65521, b = (b + a) % 65521;
        PngExpect(sum == (b << 16 | a) && m_at == m_data.size(), "end of a stream");
        return m_out;
    }

private:
    using Counts = std::array<unsigned, 16>;
    struct Code {
        Counts counts{};
        std::vector<unsigned> symbols;
        explicit Code(const std::vector<unsigned>& lengths) {
            for (unsigned length = 1; length < 16; ++length)
                for (unsigned i = 0; i < lengths.size(); ++i)
                    if (lengths[i] == length) ++counts[length], symbols.push_back(i);
            unsigned space = 1;
            for (unsigned length = 1; length < 16; ++length) {
                space *= 2;
                PngExpect(counts[length] <= space, "more codes than there is room for");
                space -= counts[length];
            }
            PngExpect(space == 0, "a code without gaps");
        }
    };

    unsigned Byte() {
        PngExpect(m_at < m_data.size(), "more data");
        return static_cast<unsigned char>(m_data[m_at++]);
    }
    unsigned Bits(unsigned count) {
        unsigned value = 0;
        for (unsigned i = 0; i < count; ++i) {
            if (m_count == 0) m_held = Byte(), m_count = 8;
            value |= (m_held & 1) << i;
            m_held >>= 1, --m_count;
        }
        return value;
    }
    unsigned Symbol(const Code& code) {
        unsigned value = 0, first = 0, index = 0;
        for (unsigned length = 1; length < 16; ++length) {
            value |= Bits(1);
            if (value < first + code.counts[length]) return code.symbols[index + value - first];
            index += code.counts[length];
            first = (first + code.counts[length]) << 1;
            value <<= 1;
        }
        throw std::runtime_error("a known code");
    }
    void Block() {
        const unsigned letters = Bits(5) + 257, distances = Bits(5) + 1, runs = Bits(4) + 4;
        constexpr unsigned kOrder[19] = {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};
        std::vector<unsigned> runLengths(19), lengths;
        for (unsigned i = 0; i < runs; ++i) runLengths[kOrder[i]] = Bits(3);
        const Code runCode(runLengths);
        while (lengths.size() < letters + distances) {
            const unsigned symbol = Symbol(runCode);
            PngExpect(symbol != 16 || !lengths.empty(), "something to repeat");
            const unsigned value = symbol < 16 ? symbol : symbol == 16 ? lengths.back() : 0;
            const unsigned count = symbol < 16 ? 1 : symbol == 16 ? 3 + Bits(2) : symbol == 17 ? 3 + Bits(3) : 11 + Bits(7);
            lengths.insert(lengths.end(), count, value);
        }
        PngExpect(lengths.size() == letters + distances, "as many lengths as announced");
        const Code letterCode({lengths.begin(), lengths.begin() + static_cast<ptrdiff_t>(letters)});
        const Code distanceCode({lengths.begin() + static_cast<ptrdiff_t>(letters), lengths.end()});
        for (unsigned symbol; (symbol = Symbol(letterCode)) != 256;) {
            if (symbol < 256) {
                m_out += static_cast<char>(symbol);
                continue;
            }
            // Lengths 3..257 in groups of four codes, each group with one bit more than the one before; 258 by itself.
            const unsigned l = symbol - 257, extra = l < 8 || l == 28 ? 0 : l / 4 - 1;
            const unsigned length = l == 28 ? 258 : l < 8 ? l + 3 : ((4 + l % 4) << extra) + 3 + Bits(extra);
            const unsigned d = Symbol(distanceCode), more = d < 4 ? 0 : d / 2 - 1;
            const unsigned distance = d < 4 ? d + 1 : ((2 + d % 2) << more) + 1 + Bits(more);
            PngExpect(distance <= m_out.size(), "a distance within the data");
            for (unsigned i = 0; i < length; ++i) m_out += m_out[m_out.size() - distance];
        }
    }

    const std::string& m_data;
    size_t m_at = 0;
    unsigned m_held = 0, m_count = 0;
    std::string m_out;
};

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
        uint32_t crc = 0xFFFFFFFFu;
        for (const char c : name + content) {
            crc ^= static_cast<unsigned char>(c);
            for (int bit = 0; bit < 8; ++bit) crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320u : crc >> 1;
        }
        PngExpect(~crc == number(at + 8 + size), "check sum of a chunk");
        if (name == "IHDR") {
            image.width = static_cast<int>(number(at + 8)), image.height = static_cast<int>(number(at + 12));
            PngExpect(content.substr(8) == std::string("\x08\x02\0\0\0", 5), "24-bit colours");
        }
        if (name == "IDAT") compressed += content;
        at += size + 12;
        PngExpect((name == "IEND") == (at == file.size()), "end of the file");
    }
    const std::string rows = Inflater(compressed).All();
    const size_t stride = static_cast<size_t>(image.width) * 3;
    PngExpect(rows.size() == (stride + 1) * static_cast<size_t>(image.height), "all rows");
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
