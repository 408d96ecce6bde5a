// Repetitions are found through a table of the last places of every four bytes, and written in blocks with codes of their own.
#include <algorithm>
#include <array>
#include <cstring>
#include <queue>
#include <vector>

#include "platform/png_writer_internal.h"

namespace orvik::detail {
namespace {
constexpr size_t kWindow = 32768, kLongest = 258, kShortest = 4;
constexpr int kEndOfBlock = 256, kLetters = 286, kDistances = 30;
constexpr size_t kBlockTokens = 65536;
constexpr int kTries = 8;  // earlier places that are looked at

// RFC 1951, 3.2.5: from a code's first value on, and how many more bits follow it.
constexpr std::array<uint16_t, 29> kLengthBase = {3,  4,  5,  6,  7,  8,  9,  10, 11,  13,  15,  17,  19,  23, 27,
                                                  31, 35, 43, 51, 59, 67, 83, 99, 115, 131, 163, 195, 227, 258};
constexpr std::array<uint8_t, 29> kLengthBits = {0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 2, 2, 2,
                                                 2, 3, 3, 3, 3, 4, 4, 4, 4, 5, 5, 5, 5, 0};
constexpr std::array<uint16_t, 30> kDistanceBase = {1,    2,    3,    4,    5,    7,    9,    13,    17,    25,
                                                    33,   49,   65,   97,   129,  193,  257,  385,   513,   769,
                                                    1025, 1537, 2049, 3073, 4097, 6145, 8193, 12289, 16385, 24577};
constexpr std::array<uint8_t, 30> kDistanceBits = {0, 0, 0, 0, 1, 1, 2, 2,  3,  3,  4,  4,  5,  5,  6,
                                                   6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13};

template <size_t n>
unsigned CodeOf(const std::array<uint16_t, n>& bases, unsigned value) {
    return static_cast<unsigned>(std::upper_bound(bases.begin(), bases.end(), value) - bases.begin()) - 1;
}

class Bits {
public:
    explicit Bits(std::string& out) : m_out(out) {}
    void Put(uint32_t value, unsigned count) {
        m_held |= static_cast<uint64_t>(value) << m_count;
        for (m_count += count; m_count >= 8; m_count -= 8, m_held >>= 8) m_out += static_cast<char>(m_held & 0xFF);
    }
    void Fill() {
        if (m_count > 0) Put(0, 8 - m_count);
    }

private:
    std::string& m_out;
    uint64_t m_held = 0;
    unsigned m_count = 0;
};

// The codes of symbols that occur so often, none longer than `limit` bits: rarer symbols get longer ones.
struct Codes {
    std::vector<uint8_t> lengths;
    std::vector<uint16_t> codes;  // with the bit that is sent first at the bottom

    Codes(std::vector<uint32_t> counts, unsigned limit) : lengths(counts.size()), codes(counts.size()) {
        // A code needs two ends at least.
        counts[0] = std::max(counts[0], 1u), counts[1] = std::max(counts[1], 1u);
        while (!FindLengths(counts, limit)) {
            for (uint32_t& count : counts) count = count == 0 ? 0 : count / 2 + 1;  // flatter, until it fits
        }
        uint16_t next = 0;
        for (uint8_t length = 1; length <= limit; ++length, next = static_cast<uint16_t>(next << 1)) {
            for (size_t i = 0; i < lengths.size(); ++i) {
                if (lengths[i] != length) continue;
                for (unsigned bit = 0; bit < length; ++bit)
                    codes[i] = static_cast<uint16_t>(codes[i] | (next >> bit & 1) << (length - 1 - bit));
                ++next;
            }
        }
    }
    void Put(Bits& bits, size_t symbol) const { bits.Put(codes[symbol], lengths[symbol]); }

private:
    bool FindLengths(const std::vector<uint32_t>& counts, unsigned limit) {
        struct Node {
            uint64_t count;
            int number;  // of a leaf its symbol, of a joint what comes after all symbols
            bool operator<(const Node& other) const { return std::pair(other.count, other.number) < std::pair(count, number); }
        };
        std::priority_queue<Node> open;
        for (size_t i = 0; i < counts.size(); ++i)
            if (counts[i] != 0) open.push({counts[i], static_cast<int>(i)});
        std::vector<int> parents(counts.size() * 2, -1);
        int joints = static_cast<int>(counts.size());
        while (open.size() > 1) {
            const Node a = open.top();
            open.pop();
            const Node b = open.top();
            open.pop();
            parents[static_cast<size_t>(a.number)] = parents[static_cast<size_t>(b.number)] = joints;
            open.push({a.count + b.count, joints++});
        }
        for (size_t i = 0; i < counts.size(); ++i) {
            unsigned length = 0;
            for (int at = static_cast<int>(i); parents[static_cast<size_t>(at)] >= 0; at = parents[static_cast<size_t>(at)])
                ++length;
            if (length > limit) return false;
            lengths[i] = static_cast<uint8_t>(length);
        }
        return true;
    }
};

// A byte, or a repetition: its length above the lower 16 bits, which hold its distance.
using Token = uint32_t;

void PutBlock(Bits& bits, const std::vector<Token>& tokens, bool last) {
    std::vector<uint32_t> letters(kLetters), distances(kDistances);
    letters[kEndOfBlock] = 1;
    for (const Token token : tokens) {
        if (token < kEndOfBlock) {
            ++letters[token];
        } else {
            ++letters[257 + CodeOf(kLengthBase, token >> 16)];
            ++distances[CodeOf(kDistanceBase, token & 0xFFFF)];
        }
    }
    const Codes letterCodes(letters, 15), distanceCodes(distances, 15);

    // The lengths of both codes, runs of them shortened (3.2.7): the symbol, then what its extra bits say.
    std::vector<uint8_t> lengths = letterCodes.lengths;
    lengths.insert(lengths.end(), distanceCodes.lengths.begin(), distanceCodes.lengths.end());
    struct Run {
        uint8_t symbol, value, bits;
    };
    std::vector<Run> runs;
    for (size_t i = 0; i < lengths.size();) {
        size_t end = i;
        while (end < lengths.size() && lengths[end] == lengths[i]) ++end;
        size_t count = end - i;
        if (lengths[i] == 0) {
            for (; count >= 3; count -= std::min<size_t>(count, 138)) {
                const auto part = static_cast<uint8_t>(std::min<size_t>(count, 138));
                runs.push_back(part <= 10 ? Run{17, static_cast<uint8_t>(part - 3), 3}
                                          : Run{18, static_cast<uint8_t>(part - 11), 7});
            }
        } else {
            runs.push_back({lengths[i], 0, 0});
            for (--count; count >= 3; count -= std::min<size_t>(count, 6))
                runs.push_back({16, static_cast<uint8_t>(std::min<size_t>(count, 6) - 3), 2});
        }
        runs.insert(runs.end(), count, Run{lengths[i], 0, 0});
        i = end;
    }
    std::vector<uint32_t> runCounts(19);
    for (const Run& run : runs) ++runCounts[run.symbol];
    const Codes runCodes(runCounts, 7);

    bits.Put(last ? 1 : 0, 1);
    bits.Put(2, 2);  // codes of its own
    bits.Put(kLetters - 257, 5);
    bits.Put(kDistances - 1, 5);
    bits.Put(19 - 4, 4);
    for (const size_t symbol : {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15})
        bits.Put(runCodes.lengths[symbol], 3);
    for (const Run& run : runs) {
        runCodes.Put(bits, run.symbol);
        bits.Put(run.value, run.bits);
    }
    for (const Token token : tokens) {
        if (token < kEndOfBlock) {
            letterCodes.Put(bits, token);
            continue;
        }
        const unsigned length = token >> 16, distance = token & 0xFFFF;
        const unsigned lengthCode = CodeOf(kLengthBase, length), distanceCode = CodeOf(kDistanceBase, distance);
        letterCodes.Put(bits, 257 + lengthCode);
        bits.Put(length - kLengthBase[lengthCode], kLengthBits[lengthCode]);
        distanceCodes.Put(bits, distanceCode);
        bits.Put(distance - kDistanceBase[distanceCode], kDistanceBits[distanceCode]);
    }
    letterCodes.Put(bits, kEndOfBlock);
}

// Where each group of four bytes was seen last, and before that.
class Places {
public:
    explicit Places(std::span<const unsigned char> data)
        : m_data(data), m_last(1 << kHashBits, kNowhere), m_before(kWindow, kNowhere) {}

    void Add(size_t at) {
        size_t& last = m_last[Hash(at)];
        m_before[at % kWindow] = last;
        last = at;
    }

    // The longest repetition of what stands at `at`; {0, 0} without one.
    std::pair<size_t, size_t> Find(size_t at) const {
        const size_t most = std::min(kLongest, m_data.size() - at);
        size_t best = kShortest - 1, distance = 0;
        size_t place = m_last[Hash(at)];
        for (int tries = kTries; tries > 0 && place != kNowhere && at - place <= kWindow; --tries) {
            const unsigned char *a = m_data.data() + place, *b = m_data.data() + at;
            if (a[best] == b[best] && std::memcmp(a, b, kShortest) == 0) {
                size_t length = kShortest;
                while (length < most && a[length] == b[length]) ++length;
                if (length > best) best = length, distance = at - place;
                if (best == most) break;
            }
            const size_t next = m_before[place % kWindow];
            if (next >= place) break;  // written over since
            place = next;
        }
        return distance == 0 ? std::pair<size_t, size_t>{} : std::pair{best, distance};
    }

private:
    static constexpr unsigned kHashBits = 15;
    static constexpr size_t kNowhere = static_cast<size_t>(-1);
    size_t Hash(size_t at) const {
        uint32_t group;
        std::memcpy(&group, m_data.data() + at, sizeof group);
        return group * 2654435761u >> (32 - kHashBits);
    }
    std::span<const unsigned char> m_data;
    std::vector<size_t> m_last, m_before;
};

uint32_t Adler(std::span<const unsigned char> data) {
    uint32_t a = 1, b = 0;
    for (size_t i = 0; i < data.size();) {
        // As many as can be added up before the sums may overflow.
        for (const size_t end = std::min(i + 5552, data.size()); i < end; ++i) a += data[i], b += a;
        a %= 65521, b %= 65521;
    }
    return b << 16 | a;
}
}  // namespace

std::string Compressed(std::span<const unsigned char> data) {
    std::string out = "\x78\x01";
    Bits bits(out);
    Places places(data);
    std::vector<Token> tokens;
    tokens.reserve(kBlockTokens);
    for (size_t at = 0; at < data.size();) {
        if (tokens.size() == kBlockTokens) {
            PutBlock(bits, tokens, false);
            tokens.clear();
        }
        if (data.size() - at <= kShortest) {
            tokens.push_back(data[at++]);
            continue;
        }
        const auto [length, distance] = places.Find(at);
        places.Add(at);
        if (distance == 0) {
            tokens.push_back(data[at++]);
            continue;
        }
        tokens.push_back(static_cast<Token>(length << 16 | distance));
        // Of a long repetition the first places are enough.
        const size_t known = std::min({at + length, at + 16, data.size() - kShortest});
        for (size_t inside = at + 1; inside < known; ++inside) places.Add(inside);
        at += length;
    }
    PutBlock(bits, tokens, true);
    bits.Fill();
    const uint32_t check = Adler(data);
    for (int shift = 24; shift >= 0; shift -= 8) out += static_cast<char>(check >> shift & 0xFF);
    return out;
}
}  // namespace orvik::detail
