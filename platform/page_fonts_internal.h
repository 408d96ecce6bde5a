// Fonts of the machine for a page that carries them along: what a text is said by where the fonts that every reader has lack a
// letter of it. Internal; each home has its own. One thread for a page; a font may be shared by pages.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/vector_sink_internal.h"

namespace orvik::detail {

// Lengths are thousandths of an em, heights go upwards.
class PageFont {
public:
    virtual ~PageFont() = default;

    std::string key;   // tells fonts apart
    std::string name;  // as PostScript calls it
    int ascent = 0, descent = 0;
    int left = 0, bottom = 0, right = 0, top = 0;  // of all its glyphs

    virtual int Advance(uint32_t glyph) const = 0;
    // A font with these glyphs and glyph 0, under their numbers: a TrueType file, or the bare CFF table (`isCff`). Empty when it
    // cannot be made.
    virtual std::string Subset(const std::vector<uint32_t>& glyphs, bool& isCff) const = 0;
};

// A glyph in colours: what covers a rectangle of the text.
struct PagePicture {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;                     // 0xAARRGGBB, not premultiplied, top row first
    double left = 0, bottom = 0, right = 0, top = 0;  // from the glyph's place
};

struct PageGlyph {
    std::shared_ptr<const PageFont> font;
    uint32_t glyph;
    double x, y;                                 // from the start of the base line
    std::string says;                            // UTF-8; a glyph that says nothing belongs to the one before
    std::shared_ptr<const PagePicture> picture;  // seen in place of the glyph, if there is one
};

struct PageLine {
    std::vector<PageGlyph> glyphs;  // from left to right; none on a machine without fonts
    double width = 0;
};
PageLine ShapeForPage(const VectorText& text);

}  // namespace orvik::detail
