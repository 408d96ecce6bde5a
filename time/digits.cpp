#include <algorithm>
#include <iterator>
#include <string>

#include "platform/house_text_internal.h"
#include "time/digits_internal.h"
#include "time/locale_cache.h"
#include "time/separator.h"

namespace orvik::detail {
namespace {

// The zeros of Unicode's decimal digits; those from 1 to 9 follow each.
constexpr char32_t kZeros[] = {
    0x30,    0x660,   0x6F0,   0x7C0,   0x966,   0x9E6,   0xA66,   0xAE6,   0xB66,   0xBE6,   0xC66,   0xCE6,   0xD66,   0xDE6,
    0xE50,   0xED0,   0xF20,   0x1040,  0x1090,  0x17E0,  0x1810,  0x1946,  0x19D0,  0x1A80,  0x1A90,  0x1B50,  0x1BB0,  0x1C40,
    0x1C50,  0xA620,  0xA8D0,  0xA900,  0xA9D0,  0xA9F0,  0xAA50,  0xABF0,  0xFF10,  0x104A0, 0x10D30, 0x11066, 0x110F0, 0x11136,
    0x111D0, 0x112F0, 0x11450, 0x114D0, 0x11650, 0x116C0, 0x11730, 0x118E0, 0x11950, 0x11C50, 0x11D50, 0x11DA0, 0x11F50, 0x16A60,
    0x16AC0, 0x16B50, 0x1D7CE, 0x1D7D8, 0x1D7E2, 0x1D7EC, 0x1D7F6, 0x1E140, 0x1E2F0, 0x1E4F0, 0x1E950, 0x1FBF0};

}  // namespace

int ValueOfDigit(char32_t character) {
    const auto* const above = std::upper_bound(std::begin(kZeros), std::end(kZeros), character);
    if (above == std::begin(kZeros)) return -1;
    const char32_t value = character - above[-1];
    return value <= 9 ? static_cast<int>(value) : -1;
}

int TakeNativeDigit(const char*& cursor) {
    if (!HouseIsUtf8()) return -1;
    const char* behind = cursor;
    const int value = ValueOfDigit(TakeLetter(behind));
    if (value >= 0) cursor = behind;
    return value;
}

bool AreNativeDigits(std::string_view digits) {
    const size_t size = digits.size() / 10;
    if (size < 2) return false;
    const std::string text(digits);
    const char* cursor = text.c_str();
    for (int value = 0; value < 10; ++value) {
        const char* const begin = cursor;
        if (TakeDigit(cursor) != value || static_cast<size_t>(cursor - begin) != size) return false;
    }
    return *cursor == 0;
}

bool g_hasOwnDigits = false;

void SpellOwnDigits(CString& text, int from) {
    const std::string_view digits = TheLocaleCache().digits.GetView();
    const size_t size = digits.size() / 10;
    const std::string_view old = text.GetView();
    std::string fresh(old.substr(0, static_cast<size_t>(from)));
    for (const char c : old.substr(static_cast<size_t>(from))) {
        if (c >= '0' && c <= '9')
            fresh += digits.substr(static_cast<size_t>(c - '0') * size, size);
        else
            fresh += c;
    }
    text = std::string_view(fresh);
}

}  // namespace orvik::detail
