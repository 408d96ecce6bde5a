#include "platform/posix/text/letters_internal.h"

#include <unicode/ubrk.h>
#include <unicode/uchar.h>

#include <algorithm>
#include <memory>
#include <string>

#include "platform/house_text_internal.h"
#include "platform/letters_internal.h"

namespace orvik::detail {
namespace {
bool IsAscii(std::string_view text, size_t at) { return static_cast<unsigned char>(text[at]) < 0x80; }

char32_t CharacterAt(std::string_view text, size_t at) {
    text.remove_prefix(at);
    return TakeHouse(text);
}

// Whether a character has nothing to do with its neighbours, provided that they are such, too.
bool IsAlone(char32_t c) {
    if (c < 0x80) return c != '\r' && c != '\n';
    const auto character = static_cast<UChar32>(c);
    return u_getIntPropertyValue(character, UCHAR_GRAPHEME_CLUSTER_BREAK) == U_GCB_OTHER &&
           !u_hasBinaryProperty(character, UCHAR_EXTENDED_PICTOGRAPHIC);
}

// A place at or before `at`, where a character starts, at which a letter begins whatever lies before it.
size_t SureStart(std::string_view text, size_t at) {
    while (at > 0) {
        const size_t before = CharacterBefore(text, at);
        if (IsAlone(CharacterAt(text, before)) && IsAlone(CharacterAt(text, at))) break;
        at = before;
    }
    return at;
}

// What ICU parts texts by; null where its data are missing.
UBreakIterator* Breaker(UBreakIteratorType type) {
    struct Close {
        void operator()(UBreakIterator* iterator) const { ubrk_close(iterator); }
    };
    thread_local std::unique_ptr<UBreakIterator, Close> breakers[UBRK_SENTENCE + 1];
    auto& breaker = breakers[type];
    if (breaker == nullptr) {
        UErrorCode error = U_ZERO_ERROR;
        breaker.reset(ubrk_open(type, "", nullptr, 0, &error));
        if (U_FAILURE(error)) breaker.reset();
    }
    return breaker.get();
}

// The starts of parts, of letters by default, from `begin`, itself one, up to `end`, in order.
std::vector<size_t> StartsWithin(std::string_view text, size_t begin, size_t end, UBreakIteratorType type = UBRK_CHARACTER) {
    std::u16string wide;
    std::vector<size_t> places;  // of each unit
    for (std::string_view rest = text.substr(begin, end - begin); !rest.empty();) {
        const size_t place = end - rest.size();
        const char32_t c = TakeHouse(rest);
        if (c >= 0x10000) {
            wide += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10));
            wide += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FF));
            places.push_back(place);
        } else {
            wide += static_cast<char16_t>(c);
        }
        places.push_back(place);
    }
    UErrorCode error = U_ZERO_ERROR;
    UBreakIterator* breaker = Breaker(type);
    std::vector<size_t> starts;
    if (breaker != nullptr) ubrk_setText(breaker, wide.data(), static_cast<int32_t>(wide.size()), &error);
    if (breaker == nullptr || U_FAILURE(error)) {  // the library's data are missing: characters are the next best
        starts = std::move(places);
        starts.erase(std::unique(starts.begin(), starts.end()), starts.end());
        return starts;
    }
    for (int32_t at = ubrk_first(breaker); at != UBRK_DONE && static_cast<size_t>(at) < wide.size(); at = ubrk_next(breaker))
        starts.push_back(places[static_cast<size_t>(at)]);
    ubrk_setText(breaker, nullptr, 0, &error);  // which lives no longer than this call
    return starts;
}
}  // namespace

size_t NextLetter(std::string_view text, size_t at) {
    if (at + 1 >= text.size()) return text.size();
    if (!HouseIsUtf8()) return at + 1;
    if (IsAscii(text, at) && IsAscii(text, at + 1) && (text[at] != '\r' || text[at + 1] != '\n')) return at + 1;
    const size_t character = CharacterOf(text, at), begin = SureStart(text, character);
    size_t end = character;
    do {  // up to the next place where a letter surely begins
        std::string_view rest = text.substr(end);
        const bool alone = IsAlone(TakeHouse(rest));
        end = text.size() - rest.size();
        if (alone && end < text.size() && IsAlone(CharacterAt(text, end))) break;
    } while (end < text.size());
    for (const size_t start : StartsWithin(text, begin, end))
        if (start > at) return start;
    return end;
}

size_t PreviousLetter(std::string_view text, size_t at) {
    at = std::min(at, text.size());
    if (at < 2) return 0;
    if (!HouseIsUtf8()) return at - 1;
    if (IsAscii(text, at - 1) && IsAscii(text, at - 2) && (text[at - 2] != '\r' || text[at - 1] != '\n')) return at - 1;
    const size_t character = CharacterOf(text, at - 1), begin = SureStart(text, character);
    std::string_view rest = text.substr(character);
    TakeHouse(rest);
    return StartsWithin(text, begin, text.size() - rest.size()).back();
}

size_t LetterStart(std::string_view text, size_t at) { return at < text.size() ? PreviousLetter(text, at + 1) : text.size(); }

size_t CountLetters(std::string_view text) {
    if (!HouseIsUtf8() || (AsciiPrefix(text) == text.size() && text.find("\r\n") == text.npos)) return text.size();
    return StartsWithin(text, 0, text.size()).size();
}

size_t CopyLetters(std::string_view text, char* out, size_t size) {
    if (out == nullptr || size == 0) return 0;
    if (text.size() >= size) text = text.substr(0, LetterStart(text, size - 1));
    text.copy(out, text.size());
    out[text.size()] = 0;
    return text.size();
}

std::vector<size_t> LetterStarts(std::string_view text) {
    if (HouseIsUtf8() && (AsciiPrefix(text) != text.size() || text.find("\r\n") != text.npos))
        return StartsWithin(text, 0, text.size());
    std::vector<size_t> starts(text.size());
    for (size_t i = 0; i < starts.size(); ++i) starts[i] = i;
    return starts;
}

std::vector<size_t> BreaksBeyondBlanks(std::string_view text) {
    if (!HouseIsUtf8() || AsciiPrefix(text) == text.size()) return {};
    std::vector<size_t> breaks = StartsWithin(text, 0, text.size(), UBRK_LINE);
    std::erase_if(breaks, [text](size_t at) { return at == 0 || IsAscii(text, at) || IsAscii(text, at - 1); });
    return breaks;
}
}  // namespace orvik::detail
