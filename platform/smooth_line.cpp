// A pixel is covered by how near its middle lies to the line: wholly up to half a pixel inside the line's edge, not at all from
// half a pixel outside. Where pieces of a line meet or cross the larger coverage counts, so joins are round and nothing is
// painted twice.
#include "platform/smooth_line_internal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace orvik::detail {
namespace {
constexpr float kFar = 1e6f, kWidest = 100;

// The edge fades over one pixel; a line thinner than a pixel is one pixel wide and fainter.
struct Width {
    explicit Width(float width) : reach(std::max(width, 1.0f) / 2 + 0.5f), strength(std::min(width, 1.0f) * 255) {}
    float reach, strength;
    uint8_t At(float distance) const { return static_cast<uint8_t>(std::clamp(reach - distance, 0.0f, 1.0f) * strength + 0.5f); }
};

class Segment {
public:
    Segment(const ORVIK_CURVE_POINT& a, const ORVIK_CURVE_POINT& b, const Width& width)
        : m_a(a), m_b(b), m_width(width), m_length(Length(b.x - a.x, b.y - a.y)) {
        if (m_length > 0) m_alongX = (b.x - a.x) / m_length, m_alongY = (b.y - a.y) / m_length;  // a dot lies any way
    }

    // All but the rows whose middles lie between `skipFrom` and `skipTo`.
    bool Cover(Coverage& coverage, float skipFrom = kFar, float skipTo = -kFar) const {
        const float reach = m_width.reach;
        const int top = std::max(Floor(std::min(m_a.y, m_b.y) - reach), coverage.top);
        const int bottom = std::min(Ceil(std::max(m_a.y, m_b.y) + reach), coverage.top + coverage.height - 1);
        if (m_a.x == m_b.x && m_length > 0) {
            CoverUpright(coverage, top, bottom);
        } else if (skipFrom > skipTo) {
            CoverRows(coverage, top, bottom);
        } else {
            CoverRows(coverage, top, std::min(bottom, Ceil(skipFrom) - 1));
            CoverRows(coverage, std::max(top, Floor(skipTo) + 1), bottom);
        }
        return top <= bottom;
    }

    static int Floor(float value) {
        const int whole = static_cast<int>(value);
        return whole - (static_cast<float>(whole) > value ? 1 : 0);
    }
    static int Ceil(float value) { return -Floor(-value); }

private:
    // Far points are near enough for a square; and calls of the library would take longer than a row does.
    static float Length(float x, float y) {
        const double wideX = static_cast<double>(x), wideY = static_cast<double>(y);
        return static_cast<float>(std::sqrt(wideX * wideX + wideY * wideY));
    }
    static uint8_t* PixelAt(Coverage& coverage, int x, int y) {
        return coverage.pixels.data() + static_cast<size_t>(y - coverage.top) * static_cast<size_t>(coverage.width) +
               static_cast<size_t>(x - coverage.left);
    }

    void CoverRows(Coverage& coverage, int top, int bottom) const {
        const float reach = m_width.reach;
        const float leftmost = std::min(m_a.x, m_b.x) - reach, rightmost = std::max(m_a.x, m_b.x) + reach;
        // The line without its ends crosses a row at a place that moves by `slope` from row to row, and is so wide along it.
        const bool crosses = std::abs(m_alongY) > 1e-3f;
        const float slope = crosses ? m_alongX / m_alongY : 0, half = crosses ? reach / std::abs(m_alongY) : 0;
        for (int y = top; y <= bottom; ++y) {
            float from = leftmost, to = rightmost;
            if (crosses) {
                const float middle = m_a.x + (static_cast<float>(y) - m_a.y) * slope;
                from = std::max(from, middle - half), to = std::min(to, middle + half);
            }
            const int left = std::max(Ceil(from), coverage.left), right = std::min(Floor(to), coverage.left + coverage.width - 1);
            if (left <= right) CoverRow(coverage, y, left, right);
        }
    }

    // Long series are upright lines for the most part; between their ends every row of one is the same.
    void CoverUpright(Coverage& coverage, int top, int bottom) const {
        const int left = std::max(Ceil(m_a.x - m_width.reach), coverage.left),
                  right = std::min(Floor(m_a.x + m_width.reach), coverage.left + coverage.width - 1);
        if (left > right) return;
        const int first = std::max(top, Ceil(std::min(m_a.y, m_b.y))), last = std::min(bottom, Floor(std::max(m_a.y, m_b.y)));
        for (int y = top; y <= bottom; ++y) {
            if (y >= first && y <= last) {
                y = last;
            } else {
                CoverRow(coverage, y, left, right);
            }
        }
        if (first > last) return;
        std::array<uint8_t, static_cast<size_t>(kWidest) + 2> row{};
        const int count = right - left + 1;
        for (int i = 0; i < count; ++i) row[static_cast<size_t>(i)] = m_width.At(std::abs(static_cast<float>(left + i) - m_a.x));
        uint8_t* pixel = PixelAt(coverage, left, first);
        for (int y = first; y <= last; ++y, pixel += coverage.width) {
            for (int i = 0; i < count; ++i) pixel[i] = std::max(pixel[i], row[static_cast<size_t>(i)]);
        }
    }

    void CoverRow(Coverage& coverage, int y, int left, int right) const {
        uint8_t* pixel = PixelAt(coverage, left, y);
        const float dy = static_cast<float>(y) - m_a.y;
        for (int x = left; x <= right; ++x, ++pixel) {
            const float dx = static_cast<float>(x) - m_a.x;
            const float along = dx * m_alongX + dy * m_alongY, aside = dx * m_alongY - dy * m_alongX;
            const float beyond = std::max(std::max(-along, along - m_length), 0.0f);
            *pixel = std::max(*pixel, m_width.At(std::sqrt(aside * aside + beyond * beyond)));
        }
    }

    ORVIK_CURVE_POINT m_a, m_b;
    Width m_width;
    float m_length, m_alongX = 1, m_alongY = 0;
};

// The points of a piece from `begin` to before `end` stand on one upright line, as those of a column of a long series do: up and
// down on it is the line from the lowest to the highest.
struct Upright {
    Upright(std::span<const ORVIK_CURVE_POINT> piece, size_t begin)
        : end(begin), x(piece[begin].x), low(piece[begin].y), high(low) {
        for (; end < piece.size() && piece[end].x == x; ++end)
            low = std::min(low, piece[end].y), high = std::max(high, piece[end].y);
    }
    size_t end;
    float x, low, high;
};
}  // namespace

SmoothPath SmoothPathOf(const ORVIK_CURVE_POINT* points, int count) {
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    SmoothPath path;
    path.reserve(static_cast<size_t>(count));
    bool open = true;
    for (const ORVIK_CURVE_POINT& point : std::span(points, static_cast<size_t>(count))) {
        if (std::isnan(point.x) || std::isnan(point.y)) {
            open = false;
            continue;
        }
        if (!open && !path.empty()) path.push_back({kNan, kNan});
        open = true;
        path.push_back({std::clamp(point.x, -kFar, kFar), std::clamp(point.y, -kFar, kFar)});
    }
    return path;
}

RECT SmoothBounds(const SmoothPath& path, float width) {
    if (path.empty()) return {};
    float left = kFar, top = kFar, right = -kFar, bottom = -kFar;
    for (const ORVIK_CURVE_POINT& point : path) {  // NaN is neither less nor more
        left = std::min(left, point.x), right = std::max(right, point.x);
        top = std::min(top, point.y), bottom = std::max(bottom, point.y);
    }
    const float reach = Width(width).reach;
    return {static_cast<LONG>(std::floor(left - reach)), static_cast<LONG>(std::floor(top - reach)),
            static_cast<LONG>(std::ceil(right + reach)) + 1, static_cast<LONG>(std::ceil(bottom + reach)) + 1};
}

bool CoverSmoothLine(const SmoothPath& path, float width, Coverage& coverage) {
    coverage.pixels.assign(static_cast<size_t>(coverage.width) * static_cast<size_t>(coverage.height), 0);
    const Width edges(width);
    bool touched = false;
    EachPiece(path, [&](std::span<const ORVIK_CURVE_POINT> piece) {
        Upright from(piece, 0);
        if (from.end == piece.size() && from.high == from.low) touched |= Segment(piece[0], piece[0], edges).Cover(coverage);
        for (;;) {
            if (from.high > from.low) touched |= Segment({from.x, from.low}, {from.x, from.high}, edges).Cover(coverage);
            const size_t at = from.end;
            if (at == piece.size()) break;
            const Upright to(piece, at);
            const Segment between(piece[at - 1], piece[at], edges);
            // Where two uprights stand beside each other, no pixel's middle lies between them, and each is nearer to one of them
            // than to what joins them: the rows that both have are covered.
            const bool beside = std::abs(to.x - from.x) <= 1 &&
                                Segment::Floor(std::min(from.x, to.x)) + 1 >= Segment::Ceil(std::max(from.x, to.x));
            touched |= beside ? between.Cover(coverage, std::max(from.low, to.low), std::min(from.high, to.high))
                              : between.Cover(coverage);
            from = to;
        }
    });
    return touched;
}
}  // namespace orvik::detail
