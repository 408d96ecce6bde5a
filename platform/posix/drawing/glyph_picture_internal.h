// How glyphs of cairo's fonts look in this room. Any thread.
#pragma once

#include <cairo.h>

#include <string>
#include <vector>

#include "platform/posix/drawing/font_internal.h"

namespace orvik::detail {
// The caller destroys them.
cairo_font_options_t* FontOptions(bool hinted);
// The picture of a glyph; `coloured` where the font may have colours of its own. Empty when memory is short.
GlyphImage PictureOf(cairo_scaled_font_t* font, unsigned long glyph, bool coloured);
// What fontconfig is asked for, most wanted first, UTF-8.
std::vector<std::string> FamiliesOf(const LOGFONTA& description);
}  // namespace orvik::detail
