// Letter case of single Windows-1252 bytes. Any thread; no state, no locale. Internal.
#pragma once

namespace orvik::detail {
inline unsigned char ToLower1252(unsigned char ch) {
    if ((ch >= 'A' && ch <= 'Z') || (ch >= 0xC0 && ch <= 0xDE && ch != 0xD7)) return static_cast<unsigned char>(ch + 0x20);
    if (ch == 0x8A || ch == 0x8C || ch == 0x8E) return static_cast<unsigned char>(ch + 0x10);
    return ch == 0x9F ? 0xFF : ch;
}
inline unsigned char ToUpper1252(unsigned char ch) {
    if ((ch >= 'a' && ch <= 'z') || (ch >= 0xE0 && ch <= 0xFE && ch != 0xF7)) return static_cast<unsigned char>(ch - 0x20);
    if (ch == 0x9A || ch == 0x9C || ch == 0x9E) return static_cast<unsigned char>(ch - 0x10);
    return ch == 0xFF ? 0x9F : ch;
}
inline bool IsSpace(char ch) { return ch == ' ' || (ch >= '\t' && ch <= '\r'); }
}  // namespace orvik::detail
