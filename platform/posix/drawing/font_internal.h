// Fonts of the machine, found through fontconfig and measured and drawn by cairo. A face is constant once made and is shared by
// all that ask for the same description; any thread.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string_view>
#include <vector>

#include "platform/posix/drawing/canvas_internal.h"

namespace orvik::detail {

// The picture of a glyph: `width` by `height` coverages of 0..255, whose first lies (left, top) from the glyph's place on the
// base line.
struct GlyphImage {
    int left = 0, top = 0, width = 0, height = 0;
    std::vector<uint8_t> coverage;
};

// A letter of a text as it is drawn, in pixels from the text's left end.
struct LetterPlace {
    size_t begin;  // the byte
    int left, width;
    bool rightToLeft;
};

class FontFace {
public:
    explicit FontFace(const LOGFONTA& description);
    ~FontFace();
    FontFace(const FontFace&) = delete;
    FontFace& operator=(const FontFace&) = delete;

    const TextFont& Font() const { return m_font; }
    const TEXTMETRICA& Metrics() const { return m_metrics; }
    int Advance(char character) const { return m_advances[static_cast<unsigned char>(character)]; }
    int Extent(std::string_view text) const;
    // The letters in the order of their bytes.
    std::vector<LetterPlace> Letters(std::string_view text) const;
    // The glyph of a character, turned as the font is. The picture is made at the first call.
    const GlyphImage& Glyph(char character) const;
    // A step of so many pixels along the base line and across it (down), as a turned font has it.
    POINT Step(int along, int down) const;

private:
    struct Native;
    void Measure();

    TextFont m_font;
    TEXTMETRICA m_metrics{};
    std::array<int, 256> m_advances{};
    double m_cosine = 1, m_sine = 0;
    std::unique_ptr<Native> m_native;  // null on a machine without fonts
    mutable std::mutex m_lock;         // the pictures
    mutable std::array<std::unique_ptr<GlyphImage>, 256> m_glyphs;
};

// The face of a description. The most recent ones are kept.
std::shared_ptr<const FontFace> FaceOf(const LOGFONTA& description);

}  // namespace orvik::detail
