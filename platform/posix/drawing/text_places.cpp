#include "platform/posix/drawing/text_places_internal.h"

#include <algorithm>
#include <cstdlib>

#include "platform/posix/drawing/dc_internal.h"

namespace orvik::detail {
int LetterX(HDC dc, std::string_view text, size_t at) {
    const auto found = FindDc(dc);
    if (found == nullptr) return 0;
    const FontFace& face = found->Face();
    const LetterPlace* last = nullptr;
    const std::vector<LetterPlace> letters = at < text.size() ? face.Letters(text) : std::vector<LetterPlace>();
    for (const LetterPlace& letter : letters) {
        if (letter.begin > at) break;
        last = &letter;
    }
    return last == nullptr ? face.Extent(text) : last->rightToLeft ? last->left + last->width : last->left;
}

size_t LetterAtX(HDC dc, std::string_view text, int x) {
    const auto found = FindDc(dc);
    if (found == nullptr) return 0;
    const std::vector<LetterPlace> letters = found->Face().Letters(text);
    // The letter under x; the outermost ones reach to infinity.
    const LetterPlace* under = nullptr;
    const auto away = [x](const LetterPlace& letter) { return std::max({letter.left - x, x - letter.left - letter.width, 0}); };
    for (const LetterPlace& letter : letters)
        if (under == nullptr || away(letter) < away(*under) || (away(letter) == away(*under) && under->width == 0))
            under = &letter;
    if (under == nullptr) return 0;
    const bool leftHalf = x < under->left + (under->width + 1) / 2;
    if (leftHalf != under->rightToLeft) return under->begin;
    const LetterPlace* next = under + 1;
    return next < letters.data() + letters.size() ? next->begin : text.size();
}

std::vector<TextSpan> LetterSpans(HDC dc, std::string_view text, size_t from, size_t to) {
    const auto found = FindDc(dc);
    std::vector<TextSpan> spans;
    if (found == nullptr) return spans;
    const std::vector<LetterPlace> letters = found->Face().Letters(text);
    for (size_t i = 0; i < letters.size(); ++i) {
        const size_t end = i + 1 < letters.size() ? letters[i + 1].begin : text.size();
        if (end > from && letters[i].begin < to && letters[i].width > 0)
            spans.push_back({letters[i].left, letters[i].left + letters[i].width});
    }
    std::sort(spans.begin(), spans.end(), [](const TextSpan& a, const TextSpan& b) { return a.left < b.left; });
    std::vector<TextSpan> joined;
    for (const TextSpan& span : spans) {
        if (joined.empty() || span.left > joined.back().right)
            joined.push_back(span);
        else
            joined.back().right = std::max(joined.back().right, span.right);
    }
    return joined;
}
}  // namespace orvik::detail
