#include "host/chart/dashed_line.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {
constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
constexpr double kDash = 6, kGap = 3.5;  // widths of the line; its round ends take one off a gap

double Length(double x, double y) { return std::sqrt(x * x + y * y); }  // of pixels, far from any limit

// Lengths that are drawn and left out by turns; 0 is a dot.
std::vector<double> LengthsOf(size_t pattern, double width) {
    std::vector<double> lengths;
    if (pattern != 2) lengths = {kDash * width, kGap * width};
    for (size_t dots = pattern == 2 ? 1 : std::max<size_t>(pattern, 2) - 2; dots > 0; --dots) {
        lengths.push_back(0);
        lengths.push_back(kGap * width);
    }
    return lengths;
}

class Dashes {
public:
    Dashes(size_t pattern, double width, const RECT& clip) : m_lengths(LengthsOf(pattern, width)), m_clip(clip) {
        for (const double length : m_lengths) m_total += length;
        InflateRect(&m_clip, static_cast<int>(width) + 1, static_cast<int>(width) + 1);
    }

    void Begin(ORVIK_CURVE_POINT point) {
        End();
        m_at = 0, m_left = m_lengths[0];
        m_from = point;
        m_fresh = true;
    }
    void To(ORVIK_CURVE_POINT point) {
        const double dx = static_cast<double>(point.x) - m_from.x, dy = static_cast<double>(point.y) - m_from.y;
        const double length = Length(dx, dy);
        double first = 0, last = 1;  // the part of the segment that is in view
        Cut(m_from.x, dx, m_clip.left, m_clip.right, first, last);
        Cut(m_from.y, dy, m_clip.top, m_clip.bottom, first, last);
        if (length == 0) {
            return;
        } else if (first >= last) {
            Close();
            Skip(length);
        } else {
            if (first > 0) Close(), Skip(first * length);
            Draw(m_from, dx / length, dy / length, first * length, last * length);
            if (last < 1) Close(), Skip((1 - last) * length);
        }
        m_fresh = false;
        m_from = point;
    }
    // A piece of one point is a dot.
    void End() {
        if (m_fresh) Put(m_from);
        m_fresh = false;
        Close();
    }
    std::vector<ORVIK_CURVE_POINT> points;

private:
    static void Cut(double from, double by, double least, double most, double& first, double& last) {
        if (by == 0) {
            if (from < least || from > most) last = 0;
            return;
        }
        const double a = (least - from) / by, b = (most - from) / by;
        first = std::max(first, std::min(a, b)), last = std::min(last, std::max(a, b));
    }
    bool Drawn() const { return m_at % 2 == 0; }
    void Next() {
        m_at = (m_at + 1) % m_lengths.size();
        m_left = m_lengths[m_at];
    }
    void Skip(double length) {
        length = std::fmod(length, m_total);
        for (; length >= m_left; Next()) length -= m_left;
        m_left -= length;
    }
    void Draw(ORVIK_CURVE_POINT from, double x, double y, double at, double end) {
        const auto point = [&] {
            return ORVIK_CURVE_POINT{static_cast<float>(from.x + x * at), static_cast<float>(from.y + y * at)};
        };
        if (Drawn() && !m_open) Put(point());
        while (at < end) {
            const double step = std::min(m_left, end - at);
            at += step, m_left -= step;
            if (Drawn() && step > 0) Put(point());
            if (m_left > 0) continue;
            Close();
            Next();
            if (Drawn()) Put(point());
        }
    }
    void Put(ORVIK_CURVE_POINT point) {
        points.push_back(point);
        m_open = true;
    }
    void Close() {
        if (m_open) points.push_back({kNan, kNan});
        m_open = false;
    }

    std::vector<double> m_lengths;
    RECT m_clip;
    double m_total = 0, m_left = 0;
    size_t m_at = 0;
    ORVIK_CURVE_POINT m_from = {};
    bool m_open = false, m_fresh = false;
};
}  // namespace

std::vector<ORVIK_CURVE_POINT> DashedLine(const std::vector<ORVIK_CURVE_POINT>& line, size_t pattern, float width,
                                          const RECT& clip) {
    if (pattern == 0) return line;
    Dashes dashes(pattern, static_cast<double>(width), clip);
    bool open = false;
    for (const ORVIK_CURVE_POINT& point : line) {
        if (std::isnan(point.x)) {
            dashes.End();
        } else if (open) {
            dashes.To(point);
        } else {
            dashes.Begin(point);
        }
        open = !std::isnan(point.x);
    }
    dashes.End();
    return std::move(dashes.points);
}

double CrowdingOf(const std::vector<ORVIK_CURVE_POINT>& line, const RECT& clip) {
    constexpr double kWidths = 20;  // of the area, that an eye follows
    const auto within = [&](const ORVIK_CURVE_POINT& point) {
        return ORVIK_CURVE_POINT{std::clamp(point.x, static_cast<float>(clip.left), static_cast<float>(clip.right)),
                                 std::clamp(point.y, static_cast<float>(clip.top), static_cast<float>(clip.bottom))};
    };
    double length = 0;
    for (size_t i = 1; i < line.size(); ++i) {
        if (std::isnan(line[i - 1].x) || std::isnan(line[i].x)) continue;
        const ORVIK_CURVE_POINT a = within(line[i - 1]), b = within(line[i]);
        length += Length(static_cast<double>(b.x) - a.x, static_cast<double>(b.y) - a.y);
    }
    return length / (kWidths * std::max<LONG>(clip.right - clip.left, 1));
}
