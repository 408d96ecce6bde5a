// The fonts that a PDF file carries along, after ISO 32000-1, 9.7: composite fonts whose codes are numbers of glyphs, cut down to
// the glyphs in use, with a table that tells readers which text they say. Internal; one thread.
#pragma once

#include <map>

#include "platform/page_fonts_internal.h"

namespace orvik::detail {

class PdfFonts {
public:
    static constexpr size_t kObjectsEach = 5;

    // Notes a glyph that is in use; `alone` where it says its text without others. The number of its font, from 0.
    size_t Use(const PageGlyph& glyph, bool alone);
    // What readers take the glyph for: what it first said alone.
    const std::string& Says(size_t font, uint32_t glyph) const { return m_fonts[font].glyphs.at(glyph); }

    size_t Count() const { return m_fonts.size(); }
    // The objects of all fonts, kObjectsEach for each, its font dictionary first, where the first one has this number.
    std::vector<std::string> Objects(size_t number) const;

private:
    struct Font {
        std::shared_ptr<const PageFont> font;
        std::map<uint32_t, std::string> glyphs;  // and what each says
    };
    std::vector<Font> m_fonts;
};

// A picture of a glyph and what covers it, as two objects of which the first has this number.
std::vector<std::string> PdfPicture(const PagePicture& picture, size_t number);

// A text as PDF writes it: UTF-16 in hexadecimal digits, without brackets.
std::string PdfUtf16(const std::string& utf8);
// The code of a glyph, likewise.
std::string PdfCode(uint32_t glyph);

}  // namespace orvik::detail
