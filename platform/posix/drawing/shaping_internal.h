// Texts that need more than one font, joined letters, marks or two directions: pango parts them into runs, finds their fonts in
// fontconfig's order and shapes them. Positions are whole pixels, as elsewhere in this room; base line and line height stay those
// of the chosen font. A character that no font has shows the chosen font's box. Any thread; pango's state has one lock.
#pragma once

#include <cairo.h>
#include <pango/pango.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/page_fonts_internal.h"
#include "platform/posix/drawing/font_internal.h"

namespace orvik::detail {

struct ShapedGlyph {
    uint32_t font, glyph;
    int x, y;       // from the text's left end and, downwards, from its base line
    size_t letter;  // the one that it moves with: an index into ShapedText::letters
    size_t begin;   // the first byte of what it says, alone or together with its neighbours of the same `begin`
    size_t end;
};

struct ShapedText {
    std::vector<ShapedGlyph> glyphs;   // from left to right
    std::vector<LetterPlace> letters;  // in the order of their bytes
    int width = 0;

    // The same where letter i takes widths[i] pixels.
    ShapedText Spread(const std::vector<int>& widths) const;
};

// What a face gives: its font upright, and turned by `angle` (radians, counter-clockwise), how many times wider than designed it
// is drawn, and its glyphs (0: none) and their widths for the characters of Windows-1252.
struct OwnFont {
    cairo_scaled_font_t *upright, *turned;
    double across, angle;
    const std::array<unsigned long, 256>& glyphs;
    const std::array<int, 256>& advances;
    std::string file;
    int index;  // within the file
};

// Shapes for one face, and keeps what it has shaped and drawn of late.
class Shaper {
public:
    // What the face gives lives longer than this.
    Shaper(const TextFont& font, const OwnFont& own);
    ~Shaper();
    Shaper(const Shaper&) = delete;
    Shaper& operator=(const Shaper&) = delete;

    std::shared_ptr<const ShapedText> Shape(std::string_view text);
    std::shared_ptr<const GlyphImage> Picture(const ShapedGlyph& glyph);
    // Font, number and picture of the glyph as a page carries it; no font where none can be had.
    PageGlyph ForPage(const ShapedGlyph& glyph);

private:
    struct Font {
        PangoFont* pango;  // null for the face's own
        cairo_scaled_font_t* turned;
        bool coloured;
        std::shared_ptr<const PageFont> page;
    };
    size_t FontOf(PangoFont* font);
    const std::shared_ptr<const PageFont>& PageFontOf(Font& font);
    ShapedText ShapeAnew(std::string_view text);

    const OwnFont m_own;
    int m_boxWidth = 0;  // of the own font's glyph 0, which stands for what is missing
    PangoContext* m_context = nullptr;
    std::vector<Font> m_fonts;
    std::unordered_map<std::string, std::shared_ptr<const ShapedText>> m_texts;
    std::unordered_map<uint64_t, std::shared_ptr<const GlyphImage>> m_pictures;
    size_t m_pictureBytes = 0;
};

// The font of a file; null for one without outlines that a page can carry.
std::shared_ptr<const PageFont> MakePageFont(const std::string& file, int index);

}  // namespace orvik::detail
