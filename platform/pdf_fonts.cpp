#include "platform/pdf_fonts_internal.h"

#include <zlib.h>

#include <algorithm>

#include "platform/house_text_internal.h"

namespace orvik::detail {
namespace {
std::string Hex(uint32_t value) {
    static const char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (int shift = 12; shift >= 0; shift -= 4) text += kDigits[value >> shift & 15];
    return text;
}

std::string Stream(const std::string& entries, const std::string& content) {
    return "<< /Length " + std::to_string(content.size()) + entries + " >>\nstream\n" + content + "\nendstream";
}

// Empty when it cannot be packed.
std::string Packed(const std::string& content) {
    uLongf size = compressBound(static_cast<uLong>(content.size()));
    std::string packed(size, 0);
    if (compress2(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(content.data()),
                  static_cast<uLong>(content.size()), Z_DEFAULT_COMPRESSION) != Z_OK)
        return "";
    packed.resize(size);
    return packed;
}

// A name as PDF and PostScript allow it. Six letters in front tell readers that the font is not whole.
std::string SubsetName(const PageFont& font, size_t number) {
    std::string name = "AAAAAA";
    for (size_t i = name.size(); i-- > 0 && number > 0; number /= 26) name[i] = static_cast<char>('A' + number % 26);
    name += '+';
    for (const char c : font.name)
        if ((c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-') name += c;
    return name.back() == '+' ? name + "Font" : name;
}

std::string ToUnicode(const std::map<uint32_t, std::string>& glyphs) {
    constexpr size_t kMostTogether = 100;
    std::vector<std::string> lines;
    for (const auto& [glyph, says] : glyphs)
        if (!says.empty()) lines.push_back('<' + Hex(glyph) + "> <" + PdfUtf16(says) + ">\n");
    std::string map =
        "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
        "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> def\n/CMapName /Adobe-Identity-UCS def\n"
        "/CMapType 2 def\n1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n";
    for (size_t i = 0; i < lines.size(); ++i) {
        if (i % kMostTogether == 0) map += std::to_string(std::min(kMostTogether, lines.size() - i)) + " beginbfchar\n";
        map += lines[i];
        if (i + 1 == lines.size() || i % kMostTogether + 1 == kMostTogether) map += "endbfchar\n";
    }
    return map + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend";
}
}  // namespace

std::string PdfUtf16(const std::string& utf8) {
    std::string digits;
    for (std::string_view rest = utf8; !rest.empty();) {
        const char32_t c = TakeUtf8(rest);
        if (c == kInvalid) continue;
        if (c >= 0x10000)
            digits += Hex(0xD800 + ((c - 0x10000) >> 10)) + Hex(0xDC00 + ((c - 0x10000) & 0x3FF));
        else
            digits += Hex(c);
    }
    return digits;
}

std::string PdfCode(uint32_t glyph) { return Hex(glyph); }

std::vector<std::string> PdfPicture(const PagePicture& picture, size_t number) {
    std::string colours, cover;
    for (const uint32_t pixel : picture.pixels) {
        for (const int shift : {16, 8, 0}) colours += static_cast<char>(pixel >> shift & 0xFF);
        cover += static_cast<char>(pixel >> 24);
    }
    const auto image = [&](const std::string& content, const std::string& entries) {
        const std::string packed = Packed(content);
        return Stream(" /Type /XObject /Subtype /Image /Width " + std::to_string(picture.width) + " /Height " +
                          std::to_string(picture.height) + " /BitsPerComponent 8 /ColorSpace " + entries +
                          (packed.empty() ? "" : " /Filter /FlateDecode"),
                      packed.empty() ? content : packed);
    };
    return {image(colours, "/DeviceRGB /SMask " + std::to_string(number + 1) + " 0 R"), image(cover, "/DeviceGray")};
}

size_t PdfFonts::Use(const PageGlyph& glyph, bool alone) {
    auto known =
        std::find_if(m_fonts.begin(), m_fonts.end(), [&](const Font& font) { return font.font->key == glyph.font->key; });
    if (known == m_fonts.end()) known = m_fonts.insert(m_fonts.end(), {glyph.font, {}});
    std::string& says = known->glyphs[glyph.glyph];
    if (alone && says.empty()) says = glyph.says;
    return static_cast<size_t>(known - m_fonts.begin());
}

std::vector<std::string> PdfFonts::Objects(size_t number) const {
    std::vector<std::string> objects;
    for (size_t i = 0; i < m_fonts.size(); ++i) {
        const PageFont& font = *m_fonts[i].font;
        std::vector<uint32_t> glyphs;
        std::string widths;
        for (const auto& [glyph, says] : m_fonts[i].glyphs) {
            glyphs.push_back(glyph);
            widths += std::to_string(glyph) + " [" + std::to_string(font.Advance(glyph)) + "] ";
        }
        bool isCff = false;
        const std::string program = font.Subset(glyphs, isCff), packed = Packed(program);
        const std::string name = "/" + SubsetName(font, i);
        const auto reference = [first = number + i * kObjectsEach](size_t object) {
            return std::to_string(first + object) + " 0 R";
        };
        objects.push_back("<< /Type /Font /Subtype /Type0 /BaseFont " + name + " /Encoding /Identity-H /DescendantFonts [" +
                          reference(1) + "] /ToUnicode " + reference(4) + " >>");
        objects.push_back("<< /Type /Font /Subtype " +
                          std::string(isCff ? "/CIDFontType0" : "/CIDFontType2 /CIDToGIDMap /Identity") + " /BaseFont " + name +
                          " /CIDSystemInfo << /Registry (Adobe) /Ordering (Identity) /Supplement 0 >> /FontDescriptor " +
                          reference(2) + " /W [" + widths + "] >>");
        constexpr const char* kSymbolic = "4";
        objects.push_back("<< /Type /FontDescriptor /FontName " + name + " /Flags " + kSymbolic + " /FontBBox [" +
                          std::to_string(font.left) + ' ' + std::to_string(font.bottom) + ' ' + std::to_string(font.right) + ' ' +
                          std::to_string(font.top) + "] /ItalicAngle 0 /Ascent " + std::to_string(font.ascent) + " /Descent " +
                          std::to_string(font.descent) + " /CapHeight " + std::to_string(font.ascent) + " /StemV 80" +
                          (program.empty() ? std::string() : (isCff ? " /FontFile3 " : " /FontFile2 ") + reference(3)) + " >>");
        std::string entries = packed.empty() ? "" : " /Filter /FlateDecode";
        entries += isCff ? " /Subtype /CIDFontType0C" : " /Length1 " + std::to_string(program.size());
        objects.push_back(Stream(entries, packed.empty() ? program : packed));
        objects.push_back(Stream("", ToUnicode(m_fonts[i].glyphs)));
    }
    return objects;
}
}  // namespace orvik::detail
