// What the machine's fonts have in all.
#include <fontconfig/fontconfig.h>
#include <unicode/uchar.h>

#include <memory>
#include <string>

#include "platform/house_text_internal.h"
#include "platform/letters.h"

using namespace orvik::detail;

namespace {
template <class Owned, void (*destroy)(Owned*)>
struct Destroy {
    void operator()(Owned* owned) const { destroy(owned); }
};
using FontSet = std::unique_ptr<FcFontSet, Destroy<FcFontSet, FcFontSetDestroy>>;
using Pattern = std::unique_ptr<FcPattern, Destroy<FcPattern, FcPatternDestroy>>;
using Objects = std::unique_ptr<FcObjectSet, Destroy<FcObjectSet, FcObjectSetDestroy>>;

bool HasFont(const FcFontSet* fonts, char32_t character) {
    for (int i = 0; fonts != nullptr && i < fonts->nfont; ++i) {
        FcCharSet* letters = nullptr;
        if (FcPatternGetCharSet(fonts->fonts[i], FC_CHARSET, 0, &letters) == FcResultMatch &&
            FcCharSetHasChar(letters, character))
            return true;
    }
    return false;
}

// Nothing is drawn for it.
bool IsUnseen(char32_t character) {
    const auto c = static_cast<UChar32>(character);
    return u_iscntrl(c) || u_isUWhiteSpace(c) || u_hasBinaryProperty(c, UCHAR_DEFAULT_IGNORABLE_CODE_POINT);
}
}  // namespace

std::string OrvikLettersWithoutFont(std::string_view utf8) {
    if (AsciiPrefix(utf8) == utf8.size()) return {};
    const Pattern all(FcPatternCreate());
    const Objects objects(FcObjectSetBuild(FC_CHARSET, nullptr));
    const FontSet fonts(FcFontList(nullptr, all.get(), objects.get()));
    std::string without;
    while (!utf8.empty()) {
        const std::string_view rest = utf8;
        const char32_t character = TakeUtf8(utf8);
        const std::string_view letter = rest.substr(0, rest.size() - utf8.size());
        if (character < 0x80 || character == kInvalid || IsUnseen(character) || without.find(letter) != without.npos) continue;
        if (!HasFont(fonts.get(), character)) without += letter;
    }
    return without;
}
