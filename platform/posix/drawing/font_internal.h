// Fonts of the machine, found through fontconfig and measured and drawn by cairo. A face is constant once made and is shared by
// all that ask for the same description; any thread.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/drawing/canvas_internal.h"

namespace orvik::detail {

// The picture of a glyph: `width` by `height` coverages of 0..255, whose first lies (left, top) from the glyph's place on the
// base line.
struct GlyphImage {
    int left = 0, top = 0, width = 0, height = 0;
    std::vector<uint8_t> coverage;
    std::vector<uint32_t> colours;  // 0xAARRGGBB, not premultiplied, of a glyph that has its own; else empty
};

// A letter of a text as it is drawn, in pixels from the text's left end.
struct LetterPlace {
    size_t begin;  // the byte
    int left, width;
    bool rightToLeft;
};

struct PageGlyph;    // platform/page_fonts_internal.h
struct ShapedGlyph;  // shaping_internal.h
struct ShapedText;
class Shaper;

class FontFace {
public:
    explicit FontFace(const LOGFONTA& description);
    ~FontFace();
    FontFace(const FontFace&) = delete;
    FontFace& operator=(const FontFace&) = delete;

    const TextFont& Font() const { return m_font; }
    const TEXTMETRICA& Metrics() const { return m_metrics; }
    // Of a character of Windows-1252.
    int Advance(char character) const { return m_advances[static_cast<unsigned char>(character)]; }

    // A text of the house as Windows-1252, if all of it is that and in this font: it is drawn letter beside letter. Every text is
    // where the house is Windows-1252. `room` holds what had to be converted.
    std::optional<std::string_view> Plain(std::string_view text, std::string& room) const;
    // The glyphs of a text that is not plain (or of any, in a UTF-8 process).
    std::shared_ptr<const ShapedText> Shape(std::string_view text) const;
    // The width of a text of the house, however it is drawn.
    int Extent(std::string_view text) const;
    // The letters in the order of their bytes.
    std::vector<LetterPlace> Letters(std::string_view text) const;
    // The glyph of a character, turned as the font is. The picture is made at the first call.
    const GlyphImage& Glyph(char character) const;
    std::shared_ptr<const GlyphImage> Picture(const ShapedGlyph& glyph) const;
    // The same for a page that carries its fonts along; without a font where there is none.
    PageGlyph ForPage(const ShapedGlyph& glyph) const;
    // A step of so many pixels along the base line and across it (down), as a turned font has it.
    POINT Step(int along, int down) const;

private:
    struct Native;
    void Measure();

    TextFont m_font;
    TEXTMETRICA m_metrics{};
    std::array<int, 256> m_advances{};
    bool m_saysAscii = false;  // all of it
    double m_cosine = 1, m_sine = 0;
    std::unique_ptr<Native> m_native;  // null on a machine without fonts
    mutable std::mutex m_lock;         // what follows, which is made when it is asked for
    mutable std::unique_ptr<Shaper> m_shaper;
    mutable std::array<std::unique_ptr<GlyphImage>, 256> m_glyphs;
};

// The face of a description. The most recent ones are kept.
std::shared_ptr<const FontFace> FaceOf(const LOGFONTA& description);
void ForgetFaces();  // what the names of fonts stand for has changed

}  // namespace orvik::detail
