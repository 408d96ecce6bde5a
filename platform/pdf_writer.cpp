// Pictures as a PDF file of one page, after ISO 32000-1: text in the standard fonts that every reader has, where they can say it,
// else in fonts that the file carries along; the page itself not compressed, so that a picture can be compared and searched as it
// is. One pixel is 1/96 inch, which is 3/4 point; the page is as large as the picture, or a sheet of paper
// with the picture on it.
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "platform/house_text_internal.h"
#include "platform/pdf_fonts_internal.h"

namespace orvik::detail {
namespace {
constexpr double kPointsAPixel = 0.75;

// Widths of the letters 20..FF of Helvetica and of its bold cut in thousandths of an em, from the font's published metrics; the
// oblique cuts have the same.
constexpr uint16_t kPlainWidths[224] = {
    278,  278, 355, 556, 556, 889,  667,  191,  333, 333,  389, 584, 278,  333, 278, 278,   // 20
    556,  556, 556, 556, 556, 556,  556,  556,  556, 556,  278, 278, 584,  584, 584, 556,   // 30
    1015, 667, 667, 722, 722, 667,  611,  778,  722, 278,  500, 667, 556,  833, 722, 778,   // 40
    667,  778, 722, 667, 611, 722,  667,  944,  667, 667,  611, 278, 278,  278, 469, 556,   // 50
    333,  556, 556, 500, 556, 556,  278,  556,  556, 222,  222, 500, 222,  833, 556, 556,   // 60
    556,  556, 333, 500, 278, 556,  500,  722,  500, 500,  500, 334, 260,  334, 584, 350,   // 70
    556,  350, 222, 556, 333, 1000, 556,  556,  333, 1000, 667, 333, 1000, 350, 611, 350,   // 80
    350,  222, 222, 333, 333, 350,  556,  1000, 333, 1000, 500, 333, 944,  350, 500, 667,   // 90
    278,  333, 556, 556, 556, 556,  260,  556,  333, 737,  370, 556, 584,  333, 737, 333,   // A0
    400,  584, 333, 333, 333, 556,  537,  278,  333, 333,  365, 556, 834,  834, 834, 611,   // B0
    667,  667, 667, 667, 667, 667,  1000, 722,  667, 667,  667, 667, 278,  278, 278, 278,   // C0
    722,  722, 778, 778, 778, 778,  778,  584,  778, 722,  722, 722, 722,  667, 667, 611,   // D0
    556,  556, 556, 556, 556, 556,  889,  500,  556, 556,  556, 556, 278,  278, 278, 278,   // E0
    556,  556, 556, 556, 556, 556,  556,  584,  611, 556,  556, 556, 556,  500, 556, 500};  // F0
constexpr uint16_t kBoldWidths[224] = {
    278, 333, 474, 556, 556, 889,  722,  238,  333, 333,  389, 584, 278,  333, 278, 278,   // 20
    556, 556, 556, 556, 556, 556,  556,  556,  556, 556,  333, 333, 584,  584, 584, 611,   // 30
    975, 722, 722, 722, 722, 667,  611,  778,  722, 278,  556, 722, 611,  833, 722, 778,   // 40
    667, 778, 722, 667, 611, 722,  667,  944,  667, 667,  611, 333, 278,  333, 584, 556,   // 50
    333, 556, 611, 556, 611, 556,  333,  611,  611, 278,  278, 556, 278,  889, 611, 611,   // 60
    611, 611, 389, 556, 333, 611,  556,  778,  556, 556,  500, 389, 280,  389, 584, 350,   // 70
    556, 350, 278, 556, 500, 1000, 556,  556,  333, 1000, 667, 333, 1000, 350, 611, 350,   // 80
    350, 278, 278, 500, 500, 350,  556,  1000, 333, 1000, 556, 333, 944,  350, 500, 667,   // 90
    278, 333, 556, 556, 556, 556,  280,  556,  333, 737,  370, 556, 584,  333, 737, 333,   // A0
    400, 584, 333, 333, 333, 611,  556,  278,  333, 333,  365, 556, 834,  834, 834, 611,   // B0
    722, 722, 722, 722, 722, 722,  1000, 722,  667, 667,  667, 667, 278,  278, 278, 278,   // C0
    722, 722, 778, 778, 778, 778,  778,  584,  778, 722,  722, 722, 722,  667, 667, 611,   // D0
    556, 556, 556, 556, 556, 556,  889,  556,  556, 556,  556, 556, 278,  278, 278, 278,   // E0
    611, 611, 611, 611, 611, 611,  611,  584,  611, 611,  611, 611, 611,  556, 611, 556};  // F0
constexpr std::array<const char*, 4> kFonts = {"Helvetica", "Helvetica-Bold", "Helvetica-Oblique", "Helvetica-BoldOblique"};

// In the encoding of the standard fonts; nothing where they lack a letter.
std::optional<std::string> InStandardFonts(const std::string& utf8) {
    std::string bytes;
    for (std::string_view rest = utf8; !rest.empty();) {
        const int byte = ByteFromUnicode(TakeUtf8(rest));
        if (byte < 0) return std::nullopt;
        bytes += static_cast<char>(byte);
    }
    return bytes;
}

double NaturalWidth(const VectorText& text, const std::string& bytes) {
    const uint16_t* widths = text.weight >= 600 ? kBoldWidths : kPlainWidths;
    double width = 0;
    for (const char c : bytes) width += widths[static_cast<unsigned char>(c) - 0x20];
    return width * text.size / 1000;
}

std::string Numbers(std::initializer_list<double> numbers) {
    std::string text;
    for (const double number : numbers) text += VectorNumber(number) + ' ';
    return text;
}

// Three decimals: enough for each of 256 steps.
std::string Colour(uint32_t colour, const char* op) {
    std::string text;
    for (int shift = 0; shift < 24; shift += 8) {
        const int thousandths = (static_cast<int>(colour >> shift & 0xFF) * 1000 + 127) / 255;
        const std::string digits = std::to_string(thousandths);
        text +=
            thousandths % 1000 == 0 ? (thousandths == 0 ? "0 " : "1 ") : "." + std::string(3 - digits.size(), '0') + digits + ' ';
    }
    return text + op + '\n';
}

class PdfWriter : public VectorSink {
public:
    PdfWriter(int width, int height, const PdfSheet& sheet)
        : VectorSink(width, height), m_width(width), m_height(height), m_sheet(sheet) {
        // The page has its origin below; pictures have theirs above, in pixels.
        m_text = Numbers({kPointsAPixel, 0, 0, -kPointsAPixel, sheet.left, sheet.height - sheet.top}) + "cm\n";
        m_text += "1 1 1 rg\n" + Numbers({0, 0, m_width, m_height}) + "re f\n";
    }

    std::string Finish() override {
        CloseClip();
        std::vector<std::string> objects = {"<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>"};
        std::string fonts;
        for (size_t i = 0; i < kFonts.size(); ++i) fonts += " /F" + std::to_string(i) + ' ' + std::to_string(5 + i) + " 0 R";
        constexpr size_t kCarried = 5 + kFonts.size();
        for (size_t i = 0; i < m_fonts.Count(); ++i)
            fonts += " /C" + std::to_string(i) + ' ' + std::to_string(kCarried + i * PdfFonts::kObjectsEach) + " 0 R";
        const size_t firstPicture = kCarried + m_fonts.Count() * PdfFonts::kObjectsEach;
        std::string pictures;
        for (size_t i = 0; i < m_pictures.size(); ++i)
            pictures += " /P" + std::to_string(i) + ' ' + std::to_string(firstPicture + 2 * i) + " 0 R";
        objects.push_back("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 " + VectorNumber(m_sheet.width) + ' ' +
                          VectorNumber(m_sheet.height) + "] /Contents 4 0 R /Resources << /Font <<" + fonts + " >>" +
                          (pictures.empty() ? "" : " /XObject <<" + pictures + " >>") + " >> >>");
        objects.push_back("<< /Length " + std::to_string(m_text.size()) + " >>\nstream\n" + m_text + "\nendstream");
        for (const char* font : kFonts)
            objects.push_back(std::string("<< /Type /Font /Subtype /Type1 /BaseFont /") + font +
                              " /Encoding /WinAnsiEncoding >>");
        for (std::string& object : m_fonts.Objects(kCarried)) objects.push_back(std::move(object));
        for (const auto& picture : m_pictures)
            for (std::string& object : PdfPicture(*picture, objects.size() + 1)) objects.push_back(std::move(object));

        std::string file = "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n";  // bytes above 127, for those who would take it for text
        std::string places = "0000000000 65535 f \n";
        for (size_t i = 0; i < objects.size(); ++i) {
            const std::string place = std::to_string(file.size());
            places += std::string(10 - place.size(), '0') + place + " 00000 n \n";
            file += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
        }
        const std::string count = std::to_string(objects.size() + 1), table = std::to_string(file.size());
        file += "xref\n0 " + count + "\n" + places + "trailer\n<< /Size " + count + " /Root 1 0 R >>\nstartxref\n" + table +
                "\n%%EOF\n";
        return file;
    }

protected:
    void BeginClip(const std::vector<VectorRect>& rects) override {
        m_text += "q\n";
        for (const VectorRect& rect : rects)
            m_text += Numbers({rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top}) + "re\n";
        m_text += "W n\n";
    }
    void EndClip() override { m_text += "Q\n"; }

    void PutLine(const std::vector<VectorPoint>& points, bool closed, const VectorPen& pen) override {
        Begin(nullptr, &pen);
        Path(points);
        m_text += closed ? "s\nQ\n" : "S\nQ\n";
    }

    void PutArea(const Outlines& outlines, bool winding, uint32_t colour) override {
        Begin(&colour, nullptr);
        for (const auto& outline : outlines) {
            Path(outline);
            m_text += "h\n";
        }
        m_text += winding ? "f\nQ\n" : "f*\nQ\n";
    }

    void PutRectangle(const VectorRect& rect, const uint32_t* inside, const VectorPen* outline) override {
        Begin(inside, outline);
        m_text += Numbers({rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top}) + "re\n";
        Paint(inside, outline);
    }

    void PutEllipse(const VectorRect& rect, const uint32_t* inside, const VectorPen* outline) override {
        Begin(inside, outline);
        Ellipse(rect);
        Paint(inside, outline);
    }

    void PutDot(const VectorPoint& centre, double diameter, uint32_t colour) override {
        const double radius = diameter / 2;
        PutEllipse({centre.x - radius, centre.y - radius, centre.x + radius, centre.y + radius}, &colour, nullptr);
    }

    void PutText(const VectorText& text) override {
        // The reader's font may be narrower or wider than the one that the picture was laid out with: it is stretched to that
        // width, so that texts keep to the places that were made for them.
        const std::optional<std::string> standard = InStandardFonts(text.text);
        const PageLine line = standard ? PageLine() : ShapeForPage(text);
        const double natural = standard ? NaturalWidth(text, *standard) : line.width * text.size / 1000;
        const double stretch = text.width > 0 && natural > 0 ? text.width / natural : 1;
        const double width = natural * stretch;
        const double back = text.anchor == VectorAnchor::start ? 0 : text.anchor == VectorAnchor::middle ? width / 2 : width;
        constexpr double kDegree = 3.14159265358979323846 / 180;
        const double cosine = std::cos(text.angle * kDegree), sine = std::sin(text.angle * kDegree);
        const double x = text.x - back * cosine, y = text.y + back * sine;

        m_text += "q\n" + Colour(text.colour, "rg") + "BT\n";
        if (standard) {
            const int font = (text.weight >= 600 ? 1 : 0) + (text.italic ? 2 : 0);
            m_text += "/F" + std::to_string(font) + ' ' + Numbers({text.size}) + "Tf\n";
        }
        if (std::abs(stretch - 1) > 0.001) m_text += Numbers({stretch * 100}) + "Tz\n";
        // Turned about the start of the base line, and upright again on a page that is upside down.
        m_text += Numbers({cosine, -sine, -sine, -cosine, x, y}) + "Tm\n";
        if (standard) {
            ShowStandard(*standard);
        } else {
            ShowCarried(line, text.size);
        }
        m_text += "ET\n";
        for (const PageGlyph& glyph : line.glyphs) {
            if (glyph.picture == nullptr) continue;
            const PagePicture& picture = *glyph.picture;
            const double em = text.size / 1000, right = (glyph.x + picture.left) * em * stretch,
                         up = (glyph.y + picture.bottom) * em;
            const double across = (picture.right - picture.left) * em * stretch, high = (picture.top - picture.bottom) * em;
            m_text += "q\n" +
                      Numbers({across * cosine, -across * sine, -high * sine, -high * cosine, x + right * cosine - up * sine,
                               y - right * sine - up * cosine}) +
                      "cm /P" + std::to_string(NumberOf(glyph.picture)) + " Do\nQ\n";
        }
        const auto rule = [&](double below) {  // a bar `below` ems under the base line
            const double left = x + below * text.size * sine, top = y + below * text.size * cosine;
            m_text += Colour(text.colour, "RG") + Numbers({text.size / 15}) + "w\n" + Numbers({left, top}) + "m " +
                      Numbers({left + width * cosine, top - width * sine}) + "l S\n";
        };
        if (text.underline) rule(0.12);
        if (text.strikeOut) rule(-0.26);
        m_text += "Q\n";
    }

private:
    void ShowStandard(const std::string& bytes) {
        m_text += '(';
        for (const char c : bytes) {
            if (c == '(' || c == ')' || c == '\\') m_text += '\\';
            m_text += c;
        }
        m_text += ") Tj\n";
    }

    size_t NumberOf(const std::shared_ptr<const PagePicture>& picture) {
        const auto known = std::find_if(m_pictures.begin(), m_pictures.end(),
                                        [&](const auto& other) { return other->pixels == picture->pixels; });
        const auto number = static_cast<size_t>(known - m_pictures.begin());
        if (number == m_pictures.size()) m_pictures.push_back(picture);
        return number;
    }

    // Glyph by glyph at its place. What several glyphs say together, or a glyph that says another text elsewhere, is told beside.
    void ShowCarried(const PageLine& line, double size) {
        double pen = 0, rise = 0;
        size_t current = static_cast<size_t>(-1);
        for (size_t first = 0, next = 0; first < line.glyphs.size(); first = next) {
            do ++next;
            while (next < line.glyphs.size() && line.glyphs[next].says.empty());
            const PageGlyph& head = line.glyphs[first];
            const bool alone = next == first + 1;
            const bool beside = m_fonts.Says(m_fonts.Use(head, alone), head.glyph) != head.says || !alone;
            if (beside) m_text += "/Span << /ActualText <FEFF" + PdfUtf16(head.says) + "> >> BDC\n";
            for (size_t i = first; i < next; ++i) {
                const PageGlyph& glyph = line.glyphs[i];
                const size_t font = m_fonts.Use(glyph, alone);
                if (font != current) m_text += "/C" + std::to_string(font) + ' ' + Numbers({size}) + "Tf\n";
                current = font;
                if (glyph.y != rise) m_text += Numbers({glyph.y * size / 1000}) + "Ts\n";
                rise = glyph.y;
                if (glyph.picture != nullptr) m_text += "3 Tr\n";  // there to be found, but not seen
                m_text += "[";
                if (glyph.x != pen) m_text += VectorNumber(pen - glyph.x) + ' ';
                m_text += '<' + PdfCode(glyph.glyph) + ">] TJ\n";
                if (glyph.picture != nullptr) m_text += "0 Tr\n";
                pen = glyph.x + glyph.font->Advance(glyph.glyph);
            }
            if (beside) m_text += "EMC\n";
        }
    }

    void Begin(const uint32_t* inside, const VectorPen* outline) {
        m_text += "q\n";
        if (inside != nullptr) m_text += Colour(*inside, "rg");
        if (outline == nullptr) return;
        m_text += Colour(outline->colour, "RG") + Numbers({outline->width}) + "w\n";
        m_text += outline->round ? "1 J 1 j\n" : outline->dashes.empty() ? "2 J\n" : "";
        if (outline->dashes.empty()) return;
        m_text += "[";
        for (const double dash : outline->dashes) m_text += VectorNumber(dash) + ' ';
        m_text += "] 0 d\n";
    }

    void Path(const std::vector<VectorPoint>& points) {
        const char* op = "m\n";
        for (const VectorPoint& point : points) {
            m_text += Numbers({point.x, point.y}) + op;
            op = "l\n";
        }
    }

    void Ellipse(const VectorRect& rect) {
        // A quarter of a circle as one curve: its handles are this part of the radius long.
        constexpr double kHandle = 0.5522847498;
        const double x = (rect.left + rect.right) / 2, y = (rect.top + rect.bottom) / 2;
        const double rx = (rect.right - rect.left) / 2, ry = (rect.bottom - rect.top) / 2, hx = rx * kHandle, hy = ry * kHandle;
        m_text += Numbers({x + rx, y}) + "m\n" + Numbers({x + rx, y + hy, x + hx, y + ry, x, y + ry}) + "c\n" +
                  Numbers({x - hx, y + ry, x - rx, y + hy, x - rx, y}) + "c\n" +
                  Numbers({x - rx, y - hy, x - hx, y - ry, x, y - ry}) + "c\n" +
                  Numbers({x + hx, y - ry, x + rx, y - hy, x + rx, y}) + "c h\n";
    }

    void Paint(const uint32_t* inside, const VectorPen* outline) {
        m_text += outline == nullptr ? "f\nQ\n" : inside != nullptr ? "B\nQ\n" : "S\nQ\n";
    }

    double m_width, m_height;
    PdfSheet m_sheet;
    std::string m_text;  // what the page shows
    PdfFonts m_fonts;
    std::vector<std::shared_ptr<const PagePicture>> m_pictures;
};
}  // namespace

std::unique_ptr<VectorSink> MakePdfWriter(int width, int height) {
    return MakePdfWriter(width, height, {width * kPointsAPixel, height * kPointsAPixel, 0, 0});
}
std::unique_ptr<VectorSink> MakePdfWriter(int width, int height, const PdfSheet& sheet) {
    return std::make_unique<PdfWriter>(width, height, sheet);
}
}  // namespace orvik::detail
