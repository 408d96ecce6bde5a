#include <algorithm>
#include <cmath>

#include "platform/house_text_internal.h"
#include "platform/vector_sink_internal.h"

namespace orvik::detail {
namespace {
constexpr double kMiddle = 0.5;  // from a pixel's corner to its middle

std::vector<VectorPoint> Middles(std::vector<VectorPoint> points) {
    for (VectorPoint& point : points) point.x += kMiddle, point.y += kMiddle;
    return points;
}

// A thin line ends before its last pixel, as it does among pixels: a tick would otherwise cross its axis. Its square cap reaches
// half a pixel beyond its end. A line of one pixel keeps a trace of its direction, as viewers draw nothing without one.
void LeaveOutLastPixel(std::vector<VectorPoint>& line) {
    constexpr double kTrace = 0.01;
    VectorPoint& end = line.back();
    const VectorPoint& before = line[line.size() - 2];
    const double dx = end.x - before.x, dy = end.y - before.y, length = std::max(std::abs(dx), std::abs(dy));
    if (length == 0) return;
    const double part = std::max(length - 1, kTrace) / length;
    end = {before.x + dx * part, before.y + dy * part};
}
}  // namespace

std::string VectorNumber(double value) {
    constexpr double kLargest = 1e9;  // beyond every page, and far from overflow
    const long long hundredths = std::isnan(value) ? 0 : std::llround(std::clamp(value, -kLargest, kLargest) * 100);
    const long long size = std::abs(hundredths);
    std::string text = (hundredths < 0 ? "-" : "") + std::to_string(size / 100);
    if (size % 100 == 0) return text;
    text += '.';
    text += static_cast<char>('0' + size % 100 / 10);
    if (size % 10 != 0) text += static_cast<char>('0' + size % 10);
    return text;
}

std::vector<double> DashesOf(unsigned style, double width) {
    static const std::vector<double> kStyles[] = {{}, {18, 6}, {3, 3}, {9, 6, 3, 6}, {9, 3, 3, 3, 3, 3}};
    if (style >= std::size(kStyles)) return {};
    std::vector<double> dashes = kStyles[style];
    for (double& dash : dashes) dash *= std::max(width, 1.0);
    return dashes;
}

void VectorSink::SetClip(const std::vector<VectorRect>* rects) {
    m_clip.clear();
    m_clips = rects != nullptr;
    if (!m_clips) return;
    for (const VectorRect& rect : *rects) {
        const VectorRect seen = {std::max(rect.left, m_page.left), std::max(rect.top, m_page.top),
                                 std::min(rect.right, m_page.right), std::min(rect.bottom, m_page.bottom)};
        if (seen.left < seen.right && seen.top < seen.bottom) m_clip.push_back(seen);
    }
    // The whole page is no clip.
    if (m_clip.size() == 1 && m_clip[0] == m_page) m_clips = false;
}

bool VectorSink::Shows() {
    if (m_clips && m_clip.empty()) return false;
    if (m_clipOpen && m_clips && m_clip == m_openClip) return true;
    CloseClip();
    if (!m_clips) return true;
    BeginClip(m_clip);
    m_clipOpen = true;
    m_openClip = m_clip;
    return true;
}

void VectorSink::CloseClip() {
    if (m_clipOpen) EndClip();
    m_clipOpen = false;
}

namespace {
// A rectangle with level sides, told by its four corners in a row.
bool IsRectangle(const std::vector<VectorPoint>& p) {
    if (p.size() != 4 && !(p.size() == 5 && p[0] == p[4])) return false;
    const bool levelFirst = p[0].y == p[1].y && p[1].x == p[2].x && p[2].y == p[3].y && p[3].x == p[0].x;
    const bool uprightFirst = p[0].x == p[1].x && p[1].y == p[2].y && p[2].x == p[3].x && p[3].y == p[0].y;
    return levelFirst || uprightFirst;
}
VectorRect Between(const VectorPoint& a, const VectorPoint& b) {
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
}
}  // namespace

void VectorSink::Line(const std::vector<VectorPoint>& points, const VectorPen& pen) {
    if (points.size() < 2 || !Shows()) return;
    std::vector<VectorPoint> middles = Middles(points);
    const bool closed = points.size() > 3 && points.front() == points.back();
    if (closed && IsRectangle(middles)) {
        PutRectangle(Between(middles[0], middles[2]), nullptr, &pen);
        return;
    }
    if (closed) {
        middles.pop_back();
    } else if (pen.width <= 1 && pen.dashes.empty()) {
        LeaveOutLastPixel(middles);
    }
    PutLine(middles, closed, pen);
}

void VectorSink::Area(const Outlines& outlines, bool winding, uint32_t colour) {
    Outlines shown;
    std::copy_if(outlines.begin(), outlines.end(), std::back_inserter(shown),
                 [](const auto& points) { return points.size() > 2; });
    if (shown.empty() || !Shows()) return;
    if (shown.size() == 1 && IsRectangle(shown[0])) {
        PutRectangle(Between(shown[0][0], shown[0][2]), &colour, nullptr);
    } else {
        PutArea(shown, winding, colour);
    }
}

void VectorSink::Fill(const VectorRect& rect, uint32_t colour) {
    const VectorRect ordered = Between({rect.left, rect.top}, {rect.right, rect.bottom});
    if (ordered.left == ordered.right || ordered.top == ordered.bottom || !Shows()) return;
    PutRectangle(ordered, &colour, nullptr);
}

void VectorSink::Ellipse(const VectorRect& rect, const uint32_t* inside, const VectorPen* outline) {
    VectorRect ordered = Between({rect.left, rect.top}, {rect.right, rect.bottom});
    // The outline runs through the middles of the outermost pixels.
    if (outline != nullptr) ordered.left += kMiddle, ordered.top += kMiddle, ordered.right -= kMiddle, ordered.bottom -= kMiddle;
    if (ordered.right < ordered.left || ordered.bottom < ordered.top || (inside == nullptr && outline == nullptr) || !Shows())
        return;
    PutEllipse(ordered, inside, outline);
}

void VectorSink::Text(const VectorText& text) {
    VectorText shown = text;
    shown.text.clear();
    // Without what stands for no letter: controls, and what no file of XML may hold.
    for (std::string_view rest = text.text; !rest.empty();) {
        const unsigned char first = static_cast<unsigned char>(rest.front());
        char32_t c = TakeUtf8(rest);
        if (c == kInvalid) c = UnicodeFrom1252(first);
        if (c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0xFFFE || c == 0xFFFF) continue;
        AppendUtf8(shown.text, c);
    }
    if (shown.text.empty() || !Shows()) return;
    PutText(shown);
}

void VectorSink::Curve(const std::vector<VectorPoint>& points, uint32_t colour, double width) {
    VectorPen pen;
    pen.colour = colour, pen.width = width, pen.round = true;
    if (!Shows()) return;
    std::vector<VectorPoint> piece;
    const auto put = [&] {
        if (piece.size() > 1) {
            PutLine(Middles(piece), false, pen);
        } else if (piece.size() == 1) {
            PutDot(Middles(piece).front(), width, colour);
        }
        piece.clear();
    };
    for (const VectorPoint& point : points) {
        if (std::isnan(point.x) || std::isnan(point.y)) {
            put();
        } else {
            piece.push_back(point);
        }
    }
    put();
}
}  // namespace orvik::detail
