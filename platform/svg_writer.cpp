// Pictures as SVG: one element a line, in the order of drawing, so that two pictures can be compared and text can be searched.
#include <map>

#include "platform/letters_internal.h"
#include "platform/vector_sink_internal.h"

namespace orvik::detail {
namespace {
// With what XML keeps for itself written otherwise, in text and attributes alike.
std::string Escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        if (c == '&') {
            out += "&amp;";
        } else if (c == '<') {
            out += "&lt;";
        } else if (c == '>') {
            out += "&gt;";
        } else if (c == '"') {
            out += "&quot;";
        } else if (static_cast<unsigned char>(c) >= ' ' && c != 0x7F) {
            out += c;
        }
    }
    return out;
}

std::string Attribute(const char* name, const std::string& value) { return std::string(" ") + name + "=\"" + value + "\""; }
std::string Attribute(const char* name, double value) { return Attribute(name, VectorNumber(value)); }

std::string Colour(uint32_t colour) {
    static const char kDigits[] = "0123456789abcdef";
    std::string text = "#";
    for (int shift = 0; shift < 24; shift += 8) {
        text += kDigits[colour >> (shift + 4) & 15];
        text += kDigits[colour >> shift & 15];
    }
    return text;
}

std::string Stroke(const VectorPen& pen) {
    std::string text = Attribute("stroke", Colour(pen.colour));
    if (pen.width != 1) text += Attribute("stroke-width", pen.width);
    if (!pen.dashes.empty()) {
        std::string dashes;
        for (const double dash : pen.dashes) dashes += (dashes.empty() ? "" : " ") + VectorNumber(dash);
        text += Attribute("stroke-dasharray", dashes);
    }
    if (pen.round) {
        text += Attribute("stroke-linecap", "round") + Attribute("stroke-linejoin", "round");
    } else if (pen.dashes.empty()) {
        text += Attribute("stroke-linecap", "square");
    }
    return text;
}

std::string Paint(const uint32_t* inside, const VectorPen* outline) {
    return Attribute("fill", inside != nullptr ? Colour(*inside) : "none") + (outline != nullptr ? Stroke(*outline) : "");
}

std::string Points(const std::vector<VectorPoint>& points) {
    std::string text;
    for (const VectorPoint& point : points) {
        if (!text.empty()) text += ' ';
        text += VectorNumber(point.x) + ',' + VectorNumber(point.y);
    }
    return text;
}

std::string RectangleElement(const VectorRect& rect, const std::string& paint) {
    return "<rect" + Attribute("x", rect.left) + Attribute("y", rect.top) + Attribute("width", rect.right - rect.left) +
           Attribute("height", rect.bottom - rect.top) + paint + "/>\n";
}

class SvgWriter : public VectorSink {
public:
    SvgWriter(int width, int height) : VectorSink(width, height) {
        const std::string w = std::to_string(width), h = std::to_string(height);
        m_text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<svg xmlns=\"http://www.w3.org/2000/svg\"" + Attribute("width", w) +
                 Attribute("height", h) + Attribute("viewBox", "0 0 " + w + " " + h) + ">\n";
        m_text += "<rect" + Attribute("width", w) + Attribute("height", h) + Attribute("fill", "#ffffff") + "/>\n";
    }

    std::string Finish() override {
        CloseClip();
        return m_text + "</svg>\n";
    }

protected:
    void BeginClip(const std::vector<VectorRect>& rects) override {
        std::string area;
        for (const VectorRect& rect : rects) area += RectangleElement(rect, "");
        const auto [known, fresh] = m_clips.emplace(area, "clip" + std::to_string(m_clips.size() + 1));
        if (fresh) m_text += "<clipPath" + Attribute("id", known->second) + ">\n" + area + "</clipPath>\n";
        m_text += "<g" + Attribute("clip-path", "url(#" + known->second + ")") + ">\n";
    }
    void EndClip() override { m_text += "</g>\n"; }

    void PutLine(const std::vector<VectorPoint>& points, bool closed, const VectorPen& pen) override {
        if (points.size() == 2) {
            m_text += "<line" + Attribute("x1", points[0].x) + Attribute("y1", points[0].y) + Attribute("x2", points[1].x) +
                      Attribute("y2", points[1].y) + Stroke(pen) + "/>\n";
        } else {
            m_text += (closed ? "<polygon" : "<polyline") + Attribute("points", Points(points)) + Paint(nullptr, &pen) + "/>\n";
        }
    }

    void PutArea(const Outlines& outlines, bool winding, uint32_t colour) override {
        const std::string paint = Paint(&colour, nullptr) + (winding ? "" : Attribute("fill-rule", "evenodd")) + "/>\n";
        if (outlines.size() == 1) {
            m_text += "<polygon" + Attribute("points", Points(outlines.front())) + paint;
            return;
        }
        std::string path;
        for (const auto& outline : outlines) path += (path.empty() ? "M" : " M") + Points(outline) + "Z";
        m_text += "<path" + Attribute("d", path) + paint;
    }

    void PutRectangle(const VectorRect& rect, const uint32_t* inside, const VectorPen* outline) override {
        m_text += RectangleElement(rect, Paint(inside, outline));
    }

    void PutEllipse(const VectorRect& rect, const uint32_t* inside, const VectorPen* outline) override {
        m_text += "<ellipse" + Attribute("cx", (rect.left + rect.right) / 2) + Attribute("cy", (rect.top + rect.bottom) / 2) +
                  Attribute("rx", (rect.right - rect.left) / 2) + Attribute("ry", (rect.bottom - rect.top) / 2) +
                  Paint(inside, outline) + "/>\n";
    }

    void PutDot(const VectorPoint& centre, double diameter, uint32_t colour) override {
        m_text += "<circle" + Attribute("cx", centre.x) + Attribute("cy", centre.y) + Attribute("r", diameter / 2) +
                  Attribute("fill", Colour(colour)) + "/>\n";
    }

    void PutText(const VectorText& text) override {
        std::string face = text.face;
        std::erase_if(face, [](char c) { return c == '\''; });
        m_text += "<text" + Attribute("x", text.x) + Attribute("y", text.y);
        m_text += Attribute("font-family", (face.empty() ? "" : "'" + Escaped(face) + "', ") + "sans-serif");
        m_text += Attribute("font-size", text.size);
        if (text.weight != 400) m_text += Attribute("font-weight", std::to_string(text.weight));
        if (text.italic) m_text += Attribute("font-style", "italic");
        if (text.underline || text.strikeOut)
            m_text += Attribute("text-decoration", !text.strikeOut   ? "underline"
                                                   : !text.underline ? "line-through"
                                                                     : "underline line-through");
        m_text += Attribute("fill", Colour(text.colour));
        // A line from the right starts at its right end.
        const bool fromRight = IsLineFromRight(text.text);
        if (fromRight) m_text += Attribute("direction", "rtl");
        if (text.anchor == VectorAnchor::middle) {
            m_text += Attribute("text-anchor", "middle");
        } else if ((text.anchor == VectorAnchor::end) != fromRight) {
            m_text += Attribute("text-anchor", "end");
        }
        if (text.angle != 0)
            m_text += Attribute("transform", "rotate(" + VectorNumber(-text.angle) + " " + VectorNumber(text.x) + " " +
                                                 VectorNumber(text.y) + ")");
        // Viewers drop blanks at the ends and join those in a row, unless told.
        if (text.text.front() == ' ' || text.text.back() == ' ' || text.text.find("  ") != std::string::npos)
            m_text += Attribute("xml:space", "preserve");
        m_text += ">" + Escaped(text.text) + "</text>\n";
    }

private:
    std::string m_text;
    std::map<std::string, std::string> m_clips;  // the names of areas that are defined
};
}  // namespace

std::unique_ptr<VectorSink> MakeSvgWriter(int width, int height) { return std::make_unique<SvgWriter>(width, height); }
}  // namespace orvik::detail
