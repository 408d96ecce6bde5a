#include "platform/house_text_internal.h"

namespace orvik::detail {
namespace {
// One UTF-16 unit passed instead of a pointer, as the functions allow; letters beyond the first 65,536 characters stay.
char32_t Map(char32_t character, LPWSTR(WINAPI* map)(LPWSTR)) {
    if (character >= 0x10000) return character;
    return static_cast<char32_t>(reinterpret_cast<ULONG_PTR>(map(reinterpret_cast<LPWSTR>(static_cast<ULONG_PTR>(character)))));
}
}  // namespace
char32_t LowerCase(char32_t character) { return Map(character, CharLowerW); }
char32_t UpperCase(char32_t character) { return Map(character, CharUpperW); }
}  // namespace orvik::detail
