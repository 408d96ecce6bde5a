#include "platform/posix/drawing/glyph_picture_internal.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/posix/drawing/desktop_looks_internal.h"
#include "platform/posix/text/text_internal.h"

namespace orvik::detail {

cairo_font_options_t* FontOptions(bool hinted) {
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    // Slight hinting fits heights to the pixels and leaves widths as the font has them, so that a text is as wide on every
    // machine.
    cairo_font_options_set_hint_style(options, hinted ? CAIRO_HINT_STYLE_SLIGHT : CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, hinted ? CAIRO_HINT_METRICS_ON : CAIRO_HINT_METRICS_OFF);
    return options;
}

GlyphImage PictureOf(cairo_scaled_font_t* font, unsigned long index, bool coloured) {
    GlyphImage image;
    cairo_glyph_t glyph{index, 0, 0};
    cairo_text_extents_t extents;
    cairo_scaled_font_glyph_extents(font, &glyph, 1, &extents);
    if (extents.width <= 0 || extents.height <= 0) return image;
    // A pixel of room on each side: hinting and antialiasing may reach beyond the outline.
    const int left = static_cast<int>(std::floor(extents.x_bearing)) - 1,
              top = static_cast<int>(std::floor(extents.y_bearing)) - 1;
    const int width = static_cast<int>(std::ceil(extents.x_bearing + extents.width)) + 1 - left;
    const int height = static_cast<int>(std::ceil(extents.y_bearing + extents.height)) + 1 - top;
    cairo_surface_t* surface = cairo_image_surface_create(coloured ? CAIRO_FORMAT_ARGB32 : CAIRO_FORMAT_A8, width, height);
    cairo_t* painter = cairo_create(surface);
    cairo_set_scaled_font(painter, font);
    glyph.x = -left, glyph.y = -top;
    cairo_show_glyphs(painter, &glyph, 1);
    cairo_surface_flush(surface);
    if (cairo_status(painter) == CAIRO_STATUS_SUCCESS) {
        const size_t across = static_cast<size_t>(width), count = across * static_cast<size_t>(height);
        image = {left, top, width, height, std::vector<uint8_t>(count), {}};
        const unsigned char* data = cairo_image_surface_get_data(surface);
        const int stride = cairo_image_surface_get_stride(surface);
        if (!coloured) {
            for (int y = 0; y < height; ++y)
                std::memcpy(&image.coverage[static_cast<size_t>(y) * across], data + y * stride, across);
        } else {
            image.colours.resize(count);
            for (int y = 0; y < height; ++y)
                std::memcpy(&image.colours[static_cast<size_t>(y) * across], data + y * stride, across * sizeof(uint32_t));
            for (size_t i = 0; i < count; ++i) {  // cairo's are multiplied by their coverage
                const uint32_t pixel = image.colours[i], alpha = pixel >> 24;
                image.coverage[i] = static_cast<uint8_t>(alpha);
                uint32_t plain = alpha << 24;
                for (int shift = 0; alpha != 0 && shift < 24; shift += 8)
                    plain |= std::min(255u, ((pixel >> shift & 0xFF) * 255 + alpha / 2) / alpha) << shift;
                image.colours[i] = plain;
            }
        }
    }
    cairo_destroy(painter);
    cairo_surface_destroy(surface);
    return image;
}

bool IsDesktopFace(std::string_view name) {
    constexpr std::string_view kNames[] = {"MS Shell Dlg", "MS Shell Dlg 2", "Segoe UI", "MS Sans Serif", "Tahoma"};
    return std::find(std::begin(kNames), std::end(kNames), name) != std::end(kNames);
}

std::vector<std::string> FamiliesOf(const LOGFONTA& description) {
    std::vector<std::string> families;
    const std::string_view name{description.lfFaceName, strnlen(description.lfFaceName, LF_FACESIZE)};
    if (IsDesktopFace(name)) families.push_back(TheDesktopLooks().font);
    families.push_back(Utf8FromHouse(name));
    std::erase(families, std::string());
    const bool fixed = (description.lfPitchAndFamily & 3) == FIXED_PITCH || (description.lfPitchAndFamily & 0xF0) == FF_MODERN;
    families.push_back(fixed                                               ? "DejaVu Sans Mono"
                       : (description.lfPitchAndFamily & 0xF0) == FF_ROMAN ? "DejaVu Serif"
                                                                           : "DejaVu Sans");
    return families;
}

}  // namespace orvik::detail
