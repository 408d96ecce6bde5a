#include "plugins/text/text_sentences.h"

#include <algorithm>

#include "platform/win32.h"
#include "plugins/text/text_escapes.h"

namespace text {
namespace {
struct Pair {
    const char* english;
    const char* swedish;
};
// In the order of the sentences; letters beyond ASCII as Windows-1252 has them.
constexpr Pair kPairs[] = {
    {"", ""},
    {"a line is longer than %1 characters: %2", "en rad \xE4r l\xE4ngre \xE4n %1 tecken: %2"},
    {"the line has no checksum: %1", "raden har ingen kontrollsumma: %1"},
    {"the checksum of the line is wrong: %1", "radens kontrollsumma st\xE4mmer inte: %1"},
    {"only a part of a line came: %1", "bara en del av en rad kom: %1"},
    {"there is no %1 in the line: %2", "%1 finns inte i raden: %2"},
    {"%1 is there twice in the line: %2", "%1 finns tv\xE5 g\xE5nger i raden: %2"},
    {"the line has %1 fields instead of %2: %3", "raden har %1 f\xE4lt i st\xE4llet f\xF6r %2: %3"},
    {"%1 is no number in the line: %2", "%1 \xE4r inget tal i raden: %2"},
    {"the line does not fit the pattern: %1", "raden passar inte m\xF6nstret: %1"},
    {"the line is no JSON: %1", "raden \xE4r inte JSON: %1"},
    {"%1 lines such as %2", "%1 rader som %2"},
    {"passed over: %1 others such as %2", "f\xF6rbig\xE5ngna: %1 andra som %2"},
};
constexpr size_t kShown = 60;

bool IsSwedish() {
    constexpr LANGID kPrimary = 0x3FF, kSwedish = 0x1D;
    return (GetUserDefaultUILanguage() & kPrimary) == kSwedish;
}
}  // namespace

std::string Say(Sentence sentence, std::initializer_list<std::string_view> arguments) {
    const Pair& pair = kPairs[static_cast<size_t>(sentence)];
    const std::string_view pattern = IsSwedish() ? pair.swedish : pair.english;
    std::string said;
    for (size_t i = 0; i < pattern.size(); ++i) {
        const size_t place = pattern[i] == '%' ? static_cast<size_t>(pattern[i + 1] - '1') : arguments.size();
        if (place < arguments.size()) {
            said += arguments.begin()[place];
            ++i;
        } else {
            said += pattern[i];
        }
    }
    return said;
}

std::string Shown(std::string_view line) {
    return '"' + Escape(line.substr(0, kShown)) + (line.size() > kShown ? "...\"" : "\"");
}

}  // namespace text
