// Fonts for pages: shaped as for pixels, at a size at which a pixel is a thousandth of an em; cut down by HarfBuzz.
#include "platform/page_fonts_internal.h"

#include <hb-ot.h>
#include <hb-subset.h>

#include <algorithm>
#include <cmath>

#include "platform/posix/drawing/shaping_internal.h"
#include "platform/posix/text/text_internal.h"

namespace orvik::detail {
namespace {

constexpr int kEm = 1000;

int16_t Signed(const char* bytes) {
    return static_cast<int16_t>(static_cast<unsigned char>(bytes[0]) << 8 | static_cast<unsigned char>(bytes[1]));
}

std::string TableOf(hb_face_t* face, hb_tag_t tag) {
    hb_blob_t* blob = hb_face_reference_table(face, tag);
    unsigned length = 0;
    const char* data = hb_blob_get_data(blob, &length);
    std::string table(data != nullptr ? std::string(data, length) : "");
    hb_blob_destroy(blob);
    return table;
}

class MachineFont : public PageFont {
public:
    MachineFont(hb_face_t* face, std::string file) : m_face(hb_face_reference(face)), m_font(hb_font_create(face)) {
        key = std::move(file);
        hb_font_set_scale(m_font, kEm, kEm);
        char letters[128];
        unsigned size = sizeof letters;
        hb_ot_name_get_utf8(face, HB_OT_NAME_ID_POSTSCRIPT_NAME, HB_LANGUAGE_INVALID, &size, letters);
        name.assign(letters, std::min<size_t>(size, sizeof letters - 1));
        hb_font_extents_t extents{};
        hb_font_get_h_extents(m_font, &extents);
        ascent = extents.ascender, descent = extents.descender;
        constexpr size_t kBox = 36;  // of "head": xMin, yMin, xMax, yMax in units of the font
        const std::string head = TableOf(face, HB_TAG('h', 'e', 'a', 'd'));
        if (head.size() < kBox + 8) return;
        const auto unit = [&](size_t i) {
            return static_cast<int>(std::lround(Signed(head.data() + kBox + 2 * i) * double{kEm} / hb_face_get_upem(face)));
        };
        left = unit(0), bottom = unit(1), right = unit(2), top = unit(3);
    }
    ~MachineFont() override {
        hb_font_destroy(m_font);
        hb_face_destroy(m_face);
    }
    MachineFont(const MachineFont&) = delete;
    MachineFont& operator=(const MachineFont&) = delete;

    int Advance(uint32_t glyph) const override { return hb_font_get_glyph_h_advance(m_font, glyph); }

    std::string Subset(const std::vector<uint32_t>& glyphs, bool& isCff) const override {
        hb_subset_input_t* input = hb_subset_input_create_or_fail();
        if (input == nullptr) return "";
        hb_subset_input_set_flags(input,
                                  HB_SUBSET_FLAGS_RETAIN_GIDS | HB_SUBSET_FLAGS_NO_HINTING | HB_SUBSET_FLAGS_NOTDEF_OUTLINE);
        for (const uint32_t glyph : glyphs) hb_set_add(hb_subset_input_glyph_set(input), glyph);
        // A reader needs the outlines alone: codes are glyphs, and their places stand in the page.
        hb_set_t* dropped = hb_subset_input_set(input, HB_SUBSET_SETS_DROP_TABLE_TAG);
        for (const char* tag : {"GSUB", "GPOS", "GDEF", "kern", "name", "OS/2", "post", "cmap", "vhea", "vmtx", "VORG", "gasp"})
            hb_set_add(dropped, hb_tag_from_string(tag, -1));
        hb_face_t* subset = hb_subset_or_fail(m_face, input);
        hb_subset_input_destroy(input);
        if (subset == nullptr) return "";
        std::string program = TableOf(subset, HB_TAG('C', 'F', 'F', ' '));
        isCff = !program.empty();
        if (!isCff) {
            hb_blob_t* blob = hb_face_reference_blob(subset);
            unsigned length = 0;
            const char* data = hb_blob_get_data(blob, &length);
            if (data != nullptr) program.assign(data, length);
            hb_blob_destroy(blob);
        }
        hb_face_destroy(subset);
        return program;
    }

private:
    hb_face_t* m_face;
    hb_font_t* m_font;
};

}  // namespace

std::shared_ptr<const PageFont> MakePageFont(const std::string& file, int index) {
    constexpr unsigned kInstance = 0xFFFF;  // above it a variable font's design
    hb_blob_t* blob = hb_blob_create_from_file(file.c_str());
    hb_face_t* face = hb_face_create(blob, static_cast<unsigned>(index) & kInstance);
    hb_blob_destroy(blob);
    std::shared_ptr<const PageFont> font;
    for (const char* tag : {"glyf", "CFF "})
        if (font == nullptr && !TableOf(face, hb_tag_from_string(tag, -1)).empty())
            font = std::make_shared<MachineFont>(face, file + '#' + std::to_string(index));
    hb_face_destroy(face);
    return font;
}

PageLine ShapeForPage(const VectorText& text) {
    LOGFONTA description{};
    description.lfHeight = -kEm;
    description.lfWeight = text.weight;
    description.lfItalic = text.italic;
    description.lfPitchAndFamily = static_cast<BYTE>(text.pitch);
    const std::string name = HouseFromUtf8(text.face);
    std::copy_n(name.begin(), std::min<size_t>(name.size(), LF_FACESIZE - 1), description.lfFaceName);
    const auto face = FaceOf(description);
    const auto shaped = face->Shape(HouseFromUtf8(text.text));
    PageLine line;
    line.width = shaped->width;
    size_t said = text.text.size() + 1;  // where what the glyph before says begins
    for (const ShapedGlyph& glyph : shaped->glyphs) {
        PageGlyph made = face->ForPage(glyph);
        if (made.font == nullptr) continue;
        made.x = glyph.x, made.y = -glyph.y;
        if (glyph.begin != said) made.says = text.text.substr(glyph.begin, glyph.end - glyph.begin);
        line.glyphs.push_back(std::move(made));
        said = glyph.begin;
    }
    return line;
}

}  // namespace orvik::detail
