#include "platform/posix/drawing/font_internal.h"

#include <cairo-ft.h>
#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <list>
#include <numbers>

#include "platform/posix/drawing/glyph_picture_internal.h"
#include "platform/posix/drawing/shaping_internal.h"
#include "platform/posix/text/letters_internal.h"
#include "platform/posix/text/text_internal.h"

namespace orvik::detail {
namespace {

constexpr int kDefaultPixels = 16;    // the cell height of a font that asks for none
constexpr int kLargestPixels = 2000;  // and the largest em size that is drawn
constexpr size_t kFacesKept = 64;

int FontconfigWeight(LONG weight) { return FcWeightFromOpenType(static_cast<int>(std::clamp<LONG>(weight, 1, 1000))); }

// What fontconfig finds for a description; null when the machine has no font at all.
FcPattern* Match(const LOGFONTA& description) {
    if (!FcInit()) return nullptr;
    FcPattern* wanted = FcPatternCreate();
    if (wanted == nullptr) return nullptr;
    for (const std::string& family : FamiliesOf(description))
        FcPatternAddString(wanted, FC_FAMILY, reinterpret_cast<const FcChar8*>(family.c_str()));
    if (description.lfWeight != FW_DONTCARE) FcPatternAddInteger(wanted, FC_WEIGHT, FontconfigWeight(description.lfWeight));
    FcPatternAddInteger(wanted, FC_SLANT, description.lfItalic != 0 ? FC_SLANT_ITALIC : FC_SLANT_ROMAN);
    FcPatternAddBool(wanted, FC_SCALABLE, FcTrue);
    FcConfigSubstitute(nullptr, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    FcResult result;
    FcPattern* found = FcFontMatch(nullptr, wanted, &result);
    FcPatternDestroy(wanted);
    FcChar8* file = nullptr;
    if (found != nullptr && FcPatternGetString(found, FC_FILE, 0, &file) != FcResultMatch) {
        FcPatternDestroy(found);
        found = nullptr;
    }
    return found;
}

cairo_scaled_font_t* Scale(cairo_font_face_t* face, double across, double down, double angle, bool hinted) {
    cairo_matrix_t size, identity;
    cairo_matrix_init_rotate(&size, -angle);
    cairo_matrix_scale(&size, across, down);
    cairo_matrix_init_identity(&identity);
    cairo_font_options_t* options = FontOptions(hinted);
    cairo_scaled_font_t* font = cairo_scaled_font_create(face, &size, &identity, options);
    cairo_font_options_destroy(options);
    if (cairo_scaled_font_status(font) == CAIRO_STATUS_SUCCESS) return font;
    cairo_scaled_font_destroy(font);
    return nullptr;
}

}  // namespace

struct FontFace::Native {
    cairo_font_face_t* face = nullptr;
    cairo_scaled_font_t* upright = nullptr;  // for measures
    cairo_scaled_font_t* turned = nullptr;   // for pictures
    std::array<unsigned long, 256> glyphs{};
    double across = 1;  // times wider than designed
    std::string file;
    int index = 0;

    Native() = default;
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;
    ~Native() {
        for (cairo_scaled_font_t* font : {upright, turned})
            if (font != nullptr) cairo_scaled_font_destroy(font);
        if (face != nullptr) cairo_font_face_destroy(face);
    }
};

FontFace::FontFace(const LOGFONTA& description) {
    m_font.asked = description;
    m_font.weight = description.lfWeight == FW_DONTCARE ? FW_NORMAL : description.lfWeight;
    m_font.italic = description.lfItalic != 0;
    m_font.underline = description.lfUnderline != 0;
    m_font.strikeOut = description.lfStrikeOut != 0;
    m_font.escapement = static_cast<int>(description.lfEscapement % 3600);
    const double angle = m_font.escapement * std::numbers::pi / 1800;
    m_cosine = std::cos(angle), m_sine = std::sin(angle);
    const LONG height = description.lfHeight == 0 ? kDefaultPixels : description.lfHeight;
    m_font.pixels =
        static_cast<int>(std::min<LONG>(height < 0 ? -std::max<LONG>(height, -kLargestPixels) : height, kLargestPixels));

    if (FcPattern* found = Match(description)) {
        FcChar8* family = nullptr;
        if (FcPatternGetString(found, FC_FAMILY, 0, &family) == FcResultMatch)
            m_font.family = reinterpret_cast<const char*>(family);
        auto native = std::make_unique<Native>();
        FcChar8* file = nullptr;
        if (FcPatternGetString(found, FC_FILE, 0, &file) == FcResultMatch) native->file = reinterpret_cast<const char*>(file);
        FcPatternGetInteger(found, FC_INDEX, 0, &native->index);
        native->face = cairo_ft_font_face_create_for_pattern(found);
        FcPatternDestroy(found);
        if (height > 0) {  // the height of a cell: the em that has it
            if (cairo_scaled_font_t* large = Scale(native->face, 1000, 1000, 0, false)) {
                cairo_font_extents_t extents;
                cairo_scaled_font_extents(large, &extents);
                m_font.pixels =
                    std::max(1, static_cast<int>(std::lround(m_font.pixels * 1000 / (extents.ascent + extents.descent))));
                cairo_scaled_font_destroy(large);
            }
        }
        double across = m_font.pixels;
        if (description.lfWidth != 0) {  // the width of an average character
            if (cairo_scaled_font_t* large = Scale(native->face, 1000, 1000, 0, false)) {
                cairo_text_extents_t extents;
                cairo_scaled_font_text_extents(large, "x", &extents);
                const double width = std::min<double>(std::abs(static_cast<double>(description.lfWidth)), kLargestPixels);
                if (extents.x_advance > 0) across = std::max(1.0, width * 1000 / extents.x_advance);
                cairo_scaled_font_destroy(large);
            }
        }
        native->across = across / std::max(m_font.pixels, 1);
        native->upright = Scale(native->face, across, m_font.pixels, 0, true);
        native->turned = m_font.escapement == 0 ? cairo_scaled_font_reference(native->upright)
                                                : Scale(native->face, across, m_font.pixels, angle, false);
        if (native->upright != nullptr && native->turned != nullptr) m_native = std::move(native);
    }
    Measure();
}

FontFace::~FontFace() = default;

void FontFace::Measure() {
    TEXTMETRICA& metrics = m_metrics;
    if (m_native != nullptr) {
        cairo_font_extents_t extents{};
        if (cairo_scaled_font_t* exact = Scale(m_native->face, m_font.pixels, m_font.pixels, 0, false)) {
            cairo_scaled_font_extents(exact, &extents);
            cairo_scaled_font_destroy(exact);
        }
        m_font.ascent = static_cast<int>(std::lround(extents.ascent));
        m_font.descent = static_cast<int>(std::lround(extents.descent));
        for (int code = 0; code < 256; ++code) {
            const char character = static_cast<char>(code);
            // Control characters take no room and leave no mark.
            if (code < 32 || code == 127) continue;
            const std::string utf8 = Utf8From1252({&character, 1});
            cairo_glyph_t* glyphs = nullptr;
            int count = 0;
            if (cairo_scaled_font_text_to_glyphs(m_native->upright, 0, 0, utf8.data(), static_cast<int>(utf8.size()), &glyphs,
                                                 &count, nullptr, nullptr, nullptr) != CAIRO_STATUS_SUCCESS)
                continue;
            if (count > 0) {
                cairo_text_extents_t glyph;
                cairo_scaled_font_glyph_extents(m_native->upright, glyphs, 1, &glyph);
                m_native->glyphs[static_cast<size_t>(code)] = glyphs[0].index;
                m_advances[static_cast<size_t>(code)] = static_cast<int>(std::lround(glyph.x_advance));
            }
            cairo_glyph_free(glyphs);
        }
        m_saysAscii = std::all_of(m_native->glyphs.begin() + 32, m_native->glyphs.begin() + 127, [](auto g) { return g != 0; });
    } else {
        m_saysAscii = true;
        m_font.ascent = m_font.pixels * 4 / 5;
        m_font.descent = m_font.pixels - m_font.ascent;
    }
    metrics.tmAscent = m_font.ascent, metrics.tmDescent = m_font.descent;
    metrics.tmHeight = m_font.ascent + m_font.descent;
    metrics.tmInternalLeading = std::max<LONG>(0, metrics.tmHeight - m_font.pixels);
    metrics.tmAveCharWidth = m_advances['x'];
    metrics.tmMaxCharWidth = *std::max_element(m_advances.begin(), m_advances.end());
    metrics.tmWeight = m_font.weight;
    metrics.tmDigitizedAspectX = metrics.tmDigitizedAspectY = 96;
    metrics.tmFirstChar = 32, metrics.tmLastChar = 255, metrics.tmDefaultChar = 31, metrics.tmBreakChar = 32;
    metrics.tmItalic = m_font.italic, metrics.tmUnderlined = m_font.underline, metrics.tmStruckOut = m_font.strikeOut;
    const bool fixed = m_native != nullptr && m_advances['i'] == m_advances['W'];
    metrics.tmPitchAndFamily =
        static_cast<BYTE>((fixed ? 0 : TMPF_FIXED_PITCH) | TMPF_VECTOR | TMPF_TRUETYPE | (m_font.asked.lfPitchAndFamily & 0xF0));
    metrics.tmCharSet = ANSI_CHARSET;
}

std::optional<std::string_view> FontFace::Plain(std::string_view text, std::string& room) const {
    if (!HouseIsUtf8()) return text;
    const size_t ascii = m_saysAscii ? AsciiPrefix(text) : 0;
    if (ascii == text.size()) return text;
    if (m_native == nullptr) return std::nullopt;
    room.assign(text.substr(0, ascii));
    for (std::string_view rest = text.substr(ascii); !rest.empty();) {
        const int byte = ByteFromUnicode(TakeHouse(rest));
        if (byte < 0 || (byte >= ' ' && byte != 0x7F && m_native->glyphs[static_cast<size_t>(byte)] == 0)) return std::nullopt;
        room += static_cast<char>(byte);
    }
    return room;
}

std::shared_ptr<const ShapedText> FontFace::Shape(std::string_view text) const {
    if (m_native == nullptr) {  // pango ends the process on a machine without fonts
        auto empty = std::make_shared<ShapedText>();
        for (const size_t start : LetterStarts(text)) empty->letters.push_back({start, 0, 0, false});
        return empty;
    }
    const std::lock_guard guard(m_lock);
    if (m_shaper == nullptr)
        m_shaper = std::make_unique<Shaper>(
            m_font, OwnFont{m_native->upright, m_native->turned, m_native->across, m_font.escapement * std::numbers::pi / 1800,
                            m_native->glyphs, m_advances, m_native->file, m_native->index});
    return m_shaper->Shape(text);
}

int FontFace::Extent(std::string_view text) const {
    std::string room;
    const auto plain = Plain(text, room);
    if (!plain) return Shape(text)->width;
    int64_t extent = 0;
    for (const char character : *plain) extent += Advance(character);
    return static_cast<int>(std::min<int64_t>(extent, 0x7FFFFFF));
}

std::vector<LetterPlace> FontFace::Letters(std::string_view text) const {
    std::string room;
    const auto plain = Plain(text, room);
    if (!plain) return Shape(text)->letters;
    const std::vector<size_t> starts = LetterStarts(text);
    std::vector<LetterPlace> letters;
    letters.reserve(starts.size());
    int64_t left = 0;
    for (size_t i = 0; i < starts.size(); ++i) {
        const size_t end = i + 1 < starts.size() ? starts[i + 1] : text.size();
        const int width = Extent(text.substr(starts[i], end - starts[i]));
        letters.push_back({starts[i], static_cast<int>(std::min<int64_t>(left, 0x7FFFFFF)), width, false});
        left += width;
    }
    return letters;
}

POINT FontFace::Step(int along, int down) const {
    return {static_cast<LONG>(std::lround(along * m_cosine + down * m_sine)),
            static_cast<LONG>(std::lround(-along * m_sine + down * m_cosine))};
}

const GlyphImage& FontFace::Glyph(char character) const {
    const auto code = static_cast<unsigned char>(character);
    const std::lock_guard guard(m_lock);
    std::unique_ptr<GlyphImage>& kept = m_glyphs[code];
    if (kept != nullptr) return *kept;
    kept = std::make_unique<GlyphImage>();
    if (m_native == nullptr || m_native->glyphs[code] == 0) return *kept;

    *kept = PictureOf(m_native->turned, m_native->glyphs[code], false);
    return *kept;
}

std::shared_ptr<const GlyphImage> FontFace::Picture(const ShapedGlyph& glyph) const {
    const std::lock_guard guard(m_lock);
    return m_shaper != nullptr ? m_shaper->Picture(glyph) : std::make_shared<const GlyphImage>();
}

PageGlyph FontFace::ForPage(const ShapedGlyph& glyph) const {
    const std::lock_guard guard(m_lock);
    return m_shaper != nullptr ? m_shaper->ForPage(glyph) : PageGlyph{};
}

namespace {
struct FaceCache {
    std::mutex lock;
    std::list<std::shared_ptr<const FontFace>> faces;  // the last one asked for first
};
FaceCache& Faces() {
    static FaceCache* cache = new FaceCache;
    return *cache;
}
}  // namespace

void ForgetFaces() {
    FaceCache& cache = Faces();
    const std::lock_guard guard(cache.lock);
    cache.faces.clear();
}

std::shared_ptr<const FontFace> FaceOf(const LOGFONTA& description) {
    FaceCache& cache = Faces();
    LOGFONTA key{};  // what follows the face's name does not count
    std::memcpy(&key, &description, offsetof(LOGFONTA, lfFaceName));
    std::memcpy(key.lfFaceName, description.lfFaceName, strnlen(description.lfFaceName, LF_FACESIZE - 1));
    const std::lock_guard guard(cache.lock);
    const auto found = std::find_if(cache.faces.begin(), cache.faces.end(), [&](const std::shared_ptr<const FontFace>& face) {
        return std::memcmp(&face->Font().asked, &key, sizeof key) == 0;
    });
    if (found != cache.faces.end()) {
        cache.faces.splice(cache.faces.begin(), cache.faces, found);
    } else {
        cache.faces.push_front(std::make_shared<const FontFace>(key));
        if (cache.faces.size() > kFacesKept) cache.faces.pop_back();
    }
    return cache.faces.front();
}

}  // namespace orvik::detail
