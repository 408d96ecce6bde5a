#include "plugins/text/text_checksum.h"

#include "plugins/text/text_escapes.h"

namespace text {
namespace {

unsigned Of(Checksum kind, std::string_view line) {
    unsigned sum = kind == Checksum::Crc16 ? 0xFFFF : 0;
    if (kind == Checksum::Xor && !line.empty() && (line[0] == '$' || line[0] == '!')) line.remove_prefix(1);
    for (const char c : line) {
        const auto byte = static_cast<unsigned char>(c);
        switch (kind) {
            case Checksum::None:
                break;
            case Checksum::Sum:
                sum = (sum + byte) & 0xFF;
                break;
            case Checksum::Xor:
                sum ^= byte;
                break;
            case Checksum::Crc16:
                sum ^= byte;
                for (int bit = 0; bit < 8; ++bit) sum = sum & 1 ? sum >> 1 ^ 0xA001 : sum >> 1;
                break;
        }
    }
    return sum;
}

size_t Digits(Checksum kind) { return kind == Checksum::None ? 0 : kind == Checksum::Crc16 ? 4 : 2; }
}  // namespace

ChecksumResult TakeChecksum(Checksum kind, std::string_view& line) {
    if (kind == Checksum::None) return ChecksumResult::Right;
    const size_t digits = Digits(kind);
    if (line.size() < digits) return ChecksumResult::Missing;
    unsigned said = 0;
    for (size_t i = line.size() - digits; i < line.size(); i += 2) {
        const auto byte = HexByte(line.substr(i, 2));
        if (!byte) return ChecksumResult::Missing;
        said = said << 8 | *byte;
    }
    std::string_view rest = line.substr(0, line.size() - digits);
    if (!rest.empty() && rest.back() == '*') {
        rest.remove_suffix(1);
    } else if (kind == Checksum::Xor) {
        return ChecksumResult::Missing;
    }
    if (Of(kind, rest) != said) return ChecksumResult::Wrong;
    line = rest;
    return ChecksumResult::Right;
}

void AddChecksum(Checksum kind, std::string& line) {
    if (kind == Checksum::None) return;
    const unsigned sum = Of(kind, line);
    line += '*';
    for (size_t shift = 4 * Digits(kind); shift > 0; shift -= 4) line += "0123456789ABCDEF"[sum >> (shift - 4) & 15];
}

}  // namespace text
