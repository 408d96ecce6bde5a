#include "plugins/text/text_sentences.h"

#include <algorithm>

#include "platform/house_text.h"
#include "platform/letters.h"
#include "plugins/text/text_escapes.h"

namespace text {
namespace {
struct Pair {
    const char* english;
    const char* swedish;
};
// In the order of the sentences.
constexpr Pair kPairs[] = {
    {"", ""},
    {"a line is longer than %1 characters: %2", "en rad är längre än %1 tecken: %2"},
    {"the line has no checksum: %1", "raden har ingen kontrollsumma: %1"},
    {"the checksum of the line is wrong: %1", "radens kontrollsumma stämmer inte: %1"},
    {"only a part of a line came: %1", "bara en del av en rad kom: %1"},
    {"there is no %1 in the line: %2", "%1 finns inte i raden: %2"},
    {"%1 is there twice in the line: %2", "%1 finns två gånger i raden: %2"},
    {"the line has %1 fields instead of %2: %3", "raden har %1 fält i stället för %2: %3"},
    {"%1 is no number in the line: %2", "%1 är inget tal i raden: %2"},
    {"the line does not fit the pattern: %1", "raden passar inte mönstret: %1"},
    {"the line is no JSON: %1", "raden är inte JSON: %1"},
    {"a reading of several lines broke off behind %1", "en avläsning på flera rader bröts efter %1"},
    {"more lines came than could be handled", "det kom fler rader än som kunde tas om hand"},
    {"the program was held up so long that lines may be missing among those that waited",
     "programmet hölls upp så länge att rader kan saknas bland dem som väntade"},
    {"no line came within %1 s; a device that prints more seldom needs a larger nEvery",
     "ingen rad kom inom %1 s; en apparat som skriver mera sällan behöver ett större nEvery"},
    {"%1 has another unit than %2 in the line: %3", "%1 har en annan enhet än %2 i raden: %3"},
    {"a logger that prints lines cannot be written to", "en logger som skriver rader kan inte ta emot värden"},
    {"%1 lines such as %2", "%1 rader som %2"},
    {"passed over as other kinds of lines: %1, most of them such as %2",
     "förbigångna som andra slags rader: %1, de flesta som %2"},
    {"%1 other lines have only some of these; what they lack will be told as missing: %2",
     "%1 andra rader har bara några av dessa; det som fattas i dem kommer att anges: %2"},
    {"%1 comes with several units (%2): each has a channel of its own, with values only where its unit stands",
     "%1 kommer med flera enheter (%2): varje enhet har en egen kanal, med värden bara där enheten står"},
    {"%1 comes without a unit as well: such a number will be told as missing",
     "%1 kommer också utan enhet: ett sådant tal kommer att anges som saknat"},
    {"careful: %1 changes (%2), so one channel may mix units or sources; the description cannot tell them apart",
     "obs: %1 växlar (%2), så en kanal kan blanda enheter eller källor; beskrivningen kan inte skilja dem åt"},
    {"careful: %1 looks like the number of a source (%2), and each channel then mixes them; sStart keeps the lines of one of "
     "them",
     "obs: %1 ser ut som numret på en källa (%2), och varje kanal blandar dem då; sStart behåller raderna från en "
     "av dem"},
};
constexpr size_t kShown = 60;  // bytes

bool IsSwedish() {
    constexpr LANGID kPrimary = 0x3FF, kSwedish = 0x1D;
    return (GetUserDefaultUILanguage() & kPrimary) == kSwedish;
}
}  // namespace

std::string Say(Sentence sentence, std::initializer_list<std::string_view> arguments) {
    const Pair& pair = kPairs[static_cast<size_t>(sentence)];
    std::string pattern;
    OrvikTextFromUtf8(IsSwedish() ? pair.swedish : pair.english, pattern);
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
    const std::string_view shown = OrvikWholeLetters(line, kShown);
    return '"' + Escape(shown) + (shown.size() < line.size() ? "...\"" : "\"");
}

}  // namespace text
