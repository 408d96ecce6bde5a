#include "platform/posix/drawing/shaping_internal.h"

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-font.h>

#include <algorithm>
#include <cmath>
#include <mutex>
#include <numeric>

#include "platform/letters_internal.h"
#include "platform/posix/drawing/glyph_picture_internal.h"
#include "platform/posix/text/letters_internal.h"
#include "platform/posix/text/text_internal.h"

namespace orvik::detail {
namespace {

constexpr size_t kTextsKept = 256, kLongestKept = 256, kPictureBytesKept = 4u << 20;

// Pango's fonts are shared by all faces, and not meant for several threads at once.
std::mutex& PangoLock() {
    static auto* lock = new std::mutex;
    return *lock;
}
PangoFontMap* Fonts() {
    static PangoFontMap* const fonts = pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT);
    return fonts;
}

// A text as pango takes it: UTF-8 without what leaves no mark, and for each of its bytes the one that it stands for.
struct Paragraph {
    std::string utf8;
    std::vector<size_t> from;

    explicit Paragraph(std::string_view text) {
        for (std::string_view rest = text; !rest.empty();) {
            const size_t place = text.size() - rest.size();
            const char32_t c = TakeHouse(rest);
            if (c < 0x20 || c == 0x7F || c == 0x2028 || c == 0x2029) continue;  // the last two end a paragraph
            AppendUtf8(utf8, c);
            from.resize(utf8.size(), place);
        }
    }
};

PangoAttrList* Attributes() {
    // The width of a text is the sum of its letters' widths: no two of them move together or melt because they stand side by
    // side.
    static PangoAttrList* const attributes = [] {
        PangoAttrList* list = pango_attr_list_new();
        pango_attr_list_insert(list, pango_attr_font_features_new("kern=0, liga=0, clig=0"));
        return list;
    }();
    return attributes;
}

// A picture of a glyph for a page, on which nobody sees as many pixels as an em has thousandths.
std::shared_ptr<const PagePicture> Smaller(const GlyphImage& image) {
    constexpr int kSide = 8;
    auto picture = std::make_shared<PagePicture>();
    picture->width = (image.width + kSide - 1) / kSide, picture->height = (image.height + kSide - 1) / kSide;
    picture->left = image.left, picture->right = image.left + picture->width * kSide;
    picture->top = -image.top, picture->bottom = picture->top - picture->height * kSide;
    for (int row = 0; row < picture->height; ++row)
        for (int column = 0; column < picture->width; ++column) {
            uint32_t alpha = 0, sums[3] = {};
            for (int y = row * kSide; y < std::min((row + 1) * kSide, image.height); ++y)
                for (int x = column * kSide; x < std::min((column + 1) * kSide, image.width); ++x) {
                    const uint32_t pixel = image.colours[static_cast<size_t>(y * image.width + x)], weight = pixel >> 24;
                    alpha += weight;
                    for (uint32_t i = 0; i < 3; ++i) sums[i] += (pixel >> (8 * i) & 0xFF) * weight;
                }
            uint32_t mixed = alpha / (kSide * kSide) << 24;
            for (uint32_t i = 0; i < 3 && alpha > 0; ++i) mixed |= sums[i] / alpha << (8 * i);
            picture->pixels.push_back(mixed);
        }
    return picture;
}

}  // namespace

ShapedText ShapedText::Spread(const std::vector<int>& widths) const {
    ShapedText spread = *this;
    std::vector<size_t> order(letters.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return letters[a].left < letters[b].left; });
    int64_t at = 0;
    for (const size_t i : order) {
        spread.letters[i].left = static_cast<int>(std::clamp<int64_t>(at, -0x7FFFFFF, 0x7FFFFFF));
        spread.letters[i].width = widths[i];
        at += widths[i];
    }
    for (ShapedGlyph& glyph : spread.glyphs) glyph.x += spread.letters[glyph.letter].left - letters[glyph.letter].left;
    spread.width = static_cast<int>(std::clamp<int64_t>(at, -0x7FFFFFF, 0x7FFFFFF));
    return spread;
}

Shaper::Shaper(const TextFont& font, const OwnFont& own) : m_own(own) {
    cairo_glyph_t box{0, 0, 0};
    cairo_text_extents_t extents;
    cairo_scaled_font_glyph_extents(own.upright, &box, 1, &extents);
    m_boxWidth = static_cast<int>(std::lround(extents.x_advance));
    m_fonts.push_back({nullptr, own.turned, false, nullptr});

    std::string families = font.family;  // first what stands in for the one that was asked for
    for (const std::string& family : FamiliesOf(font.asked)) families += ',' + family;
    PangoFontDescription* description = pango_font_description_new();
    pango_font_description_set_family(description, families.c_str());
    pango_font_description_set_weight(description, static_cast<PangoWeight>(std::clamp(font.weight, 100, 1000)));
    pango_font_description_set_style(description, font.italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    pango_font_description_set_absolute_size(description, static_cast<double>(font.pixels) * PANGO_SCALE);
    cairo_font_options_t* options = FontOptions(true);

    const std::lock_guard guard(PangoLock());
    m_context = pango_font_map_create_context(Fonts());
    pango_context_set_font_description(m_context, description);
    pango_cairo_context_set_font_options(m_context, options);
    cairo_font_options_destroy(options);
    pango_font_description_free(description);
}

Shaper::~Shaper() {
    const std::lock_guard guard(PangoLock());
    for (const Font& font : m_fonts) {
        if (font.pango == nullptr) continue;
        if (font.turned != nullptr) cairo_scaled_font_destroy(font.turned);
        g_object_unref(font.pango);
    }
    g_object_unref(m_context);
}

size_t Shaper::FontOf(PangoFont* font) {
    const auto known = std::find_if(m_fonts.begin(), m_fonts.end(), [font](const Font& f) { return f.pango == font; });
    if (known != m_fonts.end()) return static_cast<size_t>(known - m_fonts.begin());
    Font added{static_cast<PangoFont*>(g_object_ref(font)), nullptr, false, nullptr};
    if (cairo_scaled_font_t* upright = pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(font))) {
        if (m_own.angle == 0 && m_own.across == 1) {
            added.turned = cairo_scaled_font_reference(upright);
        } else {
            cairo_matrix_t size, turn, identity;
            cairo_scaled_font_get_font_matrix(upright, &size);
            cairo_matrix_init_rotate(&turn, -m_own.angle);
            cairo_matrix_scale(&turn, m_own.across, 1);
            cairo_matrix_multiply(&size, &size, &turn);
            cairo_matrix_init_identity(&identity);
            cairo_font_options_t* options = FontOptions(m_own.angle == 0);
            added.turned = cairo_scaled_font_create(cairo_scaled_font_get_font_face(upright), &size, &identity, options);
            cairo_font_options_destroy(options);
        }
    }
    FcBool coloured = FcFalse;
    if (FcPattern* pattern = pango_fc_font_get_pattern(PANGO_FC_FONT(font))) FcPatternGetBool(pattern, FC_COLOR, 0, &coloured);
    added.coloured = coloured != FcFalse;
    m_fonts.push_back(added);
    return m_fonts.size() - 1;
}

std::shared_ptr<const ShapedText> Shaper::Shape(std::string_view text) {
    const std::lock_guard guard(PangoLock());
    const std::string key(text.size() <= kLongestKept ? text : std::string_view());
    const auto known = m_texts.find(key);
    if (known != m_texts.end() && !key.empty()) return known->second;
    auto shaped = std::make_shared<const ShapedText>(ShapeAnew(text));
    if (m_texts.size() >= kTextsKept) m_texts.clear();
    if (!key.empty()) m_texts.emplace(key, shaped);
    return shaped;
}

ShapedText Shaper::ShapeAnew(std::string_view text) {
    ShapedText shaped;
    const std::vector<size_t> starts = LetterStarts(text);
    constexpr int kUnset = -1;
    for (const size_t start : starts) shaped.letters.push_back({start, 0, kUnset, false});
    const auto letterOf = [&](size_t byte) {
        return static_cast<size_t>(std::upper_bound(starts.begin(), starts.end(), byte) - starts.begin()) - 1;
    };
    const auto widen = [&](size_t index, int left, int right, bool rightToLeft) {
        LetterPlace& letter = shaped.letters[index];
        if (letter.width != kUnset) {
            right = std::max(right, letter.left + letter.width);
            left = std::min(left, letter.left);
        }
        letter.left = left, letter.width = right - left, letter.rightToLeft = rightToLeft;
    };

    const Paragraph paragraph(text);
    const char* const utf8 = paragraph.utf8.c_str();
    const int length = static_cast<int>(paragraph.utf8.size());
    double pen = 0;  // in pixels of an unstretched font
    const auto pixel = [&](double place) { return static_cast<int>(std::lround(std::clamp(place * m_own.across, -1e8, 1e8))); };
    const PangoDirection direction = IsLineFromRight(text) ? PANGO_DIRECTION_RTL : PANGO_DIRECTION_LTR;
    GList* parts =
        length == 0 ? nullptr : pango_itemize_with_base_dir(m_context, direction, utf8, 0, length, Attributes(), nullptr);
    GList* visual = pango_reorder_items(parts);
    PangoGlyphString* glyphs = pango_glyph_string_new();
    for (GList* link = visual; link != nullptr; link = link->next) {
        auto* const item = static_cast<PangoItem*>(link->data);
        const bool rightToLeft = item->analysis.level % 2 != 0;
        pango_shape_item(item, utf8, length, nullptr, glyphs, PANGO_SHAPE_ROUND_POSITIONS);
        const size_t font = item->analysis.font != nullptr ? FontOf(item->analysis.font) : 0;
        for (int first = 0, next = 0; first < glyphs->num_glyphs; first = next) {
            const int cluster = glyphs->log_clusters[first];
            while (next < glyphs->num_glyphs && glyphs->log_clusters[next] == cluster) ++next;
            const int neighbour = rightToLeft ? first - 1 : next;
            const bool last = neighbour < 0 || neighbour == glyphs->num_glyphs;
            const int behind = std::max(last ? item->length : glyphs->log_clusters[neighbour], cluster + 1);
            const size_t from = paragraph.from[static_cast<size_t>(item->offset + cluster)];
            const size_t lastByte = static_cast<size_t>(item->offset + behind) - 1;
            const size_t to = lastByte + 1 < paragraph.from.size() ? paragraph.from[lastByte + 1] : text.size();
            const size_t begin = letterOf(from), end = letterOf(paragraph.from[lastByte]) + 1;
            const int left = pixel(pen);
            // A letter that the face has by itself looks as it does in plain texts; and pango would take a blank from the font
            // before it, where it may be as wide as an emoji.
            std::string_view said(utf8 + item->offset + cluster, static_cast<size_t>(behind - cluster));
            const int plain = ByteFromUnicode(TakeUtf8(said));
            const bool whole = from == starts[begin] && to == (begin + 1 < starts.size() ? starts[begin + 1] : text.size());
            const bool own = whole && plain >= ' ' && said.empty() && (!rightToLeft || plain == ' ') &&
                             m_own.glyphs[static_cast<size_t>(plain)] != 0;
            if (own) {
                shaped.glyphs.push_back({0, static_cast<uint32_t>(m_own.glyphs[static_cast<size_t>(plain)]), left, 0,
                                         rightToLeft ? end - 1 : begin, from, to});
                pen += m_own.advances[static_cast<size_t>(plain)] / m_own.across;
            }
            for (int i = first; i < next && !own; ++i) {
                const PangoGlyphInfo& glyph = glyphs->glyphs[i];
                const size_t letter = rightToLeft ? end - 1 : begin;
                if ((glyph.glyph & PANGO_GLYPH_UNKNOWN_FLAG) != 0) {
                    shaped.glyphs.push_back({0, 0, pixel(pen), 0, letter, from, to});
                    pen += m_boxWidth / m_own.across;
                    continue;
                }
                if (glyph.glyph != PANGO_GLYPH_EMPTY)
                    shaped.glyphs.push_back(
                        {static_cast<uint32_t>(font), glyph.glyph, pixel(pen + pango_units_to_double(glyph.geometry.x_offset)),
                         static_cast<int>(std::lround(pango_units_to_double(glyph.geometry.y_offset))), letter, from, to});
                pen += pango_units_to_double(glyph.geometry.width);
            }
            // One glyph may stand for several letters: each has its part of it.
            const int width = pixel(pen) - left, count = static_cast<int>(end - begin);
            for (int i = 0; i < count; ++i) {
                const auto step = static_cast<size_t>(i);
                widen(rightToLeft ? end - 1 - step : begin + step, left + width * i / count, left + width * (i + 1) / count,
                      rightToLeft);
            }
        }
        pango_item_free(item);
    }
    pango_glyph_string_free(glyphs);
    g_list_free(visual);
    g_list_free(parts);
    shaped.width = pixel(pen);
    // What leaves no mark stands where the letter before it ends.
    for (size_t i = 0; i < shaped.letters.size(); ++i) {
        LetterPlace& letter = shaped.letters[i];
        if (letter.width != kUnset) continue;
        letter.width = 0;
        if (i == 0) continue;
        const LetterPlace& before = shaped.letters[i - 1];
        letter.rightToLeft = before.rightToLeft;
        letter.left = before.rightToLeft ? before.left : before.left + before.width;
    }
    return shaped;
}

const std::shared_ptr<const PageFont>& Shaper::PageFontOf(Font& font) {
    if (font.page != nullptr) return font.page;
    if (font.pango == nullptr) return font.page = MakePageFont(m_own.file, m_own.index);
    FcPattern* pattern = pango_fc_font_get_pattern(PANGO_FC_FONT(font.pango));
    FcChar8* file = nullptr;
    int index = 0;
    if (pattern == nullptr || FcPatternGetString(pattern, FC_FILE, 0, &file) != FcResultMatch) return font.page;
    FcPatternGetInteger(pattern, FC_INDEX, 0, &index);
    return font.page = MakePageFont(reinterpret_cast<const char*>(file), index);
}

PageGlyph Shaper::ForPage(const ShapedGlyph& glyph) {
    const std::lock_guard guard(PangoLock());
    Font& font = m_fonts[glyph.font];
    if (!font.coloured && PageFontOf(font) != nullptr) return {font.page, glyph.glyph, 0, 0, "", nullptr};
    // Pages carry outlines; the box stands for what has none, at least where text is searched.
    PageGlyph box{PageFontOf(m_fonts[0]), 0, 0, 0, "", nullptr};
    if (font.coloured && font.turned != nullptr)
        if (const GlyphImage image = PictureOf(font.turned, glyph.glyph, true); !image.colours.empty())
            box.picture = Smaller(image);
    return box;
}

std::shared_ptr<const GlyphImage> Shaper::Picture(const ShapedGlyph& glyph) {
    const uint64_t key = uint64_t{glyph.font} << 32 | glyph.glyph;
    const std::lock_guard guard(PangoLock());
    const auto known = m_pictures.find(key);
    if (known != m_pictures.end()) return known->second;
    const Font& font = m_fonts[glyph.font];
    auto picture = std::make_shared<const GlyphImage>(font.turned != nullptr ? PictureOf(font.turned, glyph.glyph, font.coloured)
                                                                             : GlyphImage());
    if (m_pictureBytes > kPictureBytesKept) m_pictures.clear(), m_pictureBytes = 0;
    m_pictureBytes += picture->coverage.size() * (font.coloured ? 5 : 1) + sizeof(GlyphImage);
    m_pictures.emplace(key, picture);
    return picture;
}

}  // namespace orvik::detail
