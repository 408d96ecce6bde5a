#include "platform/posix/drawing/raster_internal.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace orvik::detail::raster {
namespace {

// The eight rows of the hatches, a byte each, most significant bit left.
constexpr std::array<std::array<uint8_t, 8>, 6> kHatches = {{
    {0x00, 0x00, 0x00, 0xFF, 0x00, 0x00, 0x00, 0x00},  // horizontal
    {0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08, 0x08},  // vertical
    {0x80, 0x40, 0x20, 0x10, 0x08, 0x04, 0x02, 0x01},  // downwards
    {0x01, 0x02, 0x04, 0x08, 0x10, 0x20, 0x40, 0x80},  // upwards
    {0x08, 0x08, 0x08, 0xFF, 0x08, 0x08, 0x08, 0x08},  // cross
    {0x81, 0x42, 0x24, 0x18, 0x18, 0x24, 0x42, 0x81},  // diagonal cross
}};

int Modulo(int64_t value, int divisor) {
    const auto rest = static_cast<int>(value % divisor);
    return rest < 0 ? rest + divisor : rest;
}

uint32_t Ternary(DWORD code, uint32_t p, uint32_t s, uint32_t d) {
    uint32_t result = 0;
    for (DWORD bit = 0; bit < 8; ++bit)
        if (code >> bit & 1) result |= (bit & 4 ? p : ~p) & (bit & 2 ? s : ~s) & (bit & 1 ? d : ~d);
    return result & kColors;
}

// What a look has at a pixel; nothing between the lines of a hatch that lets the ground through.
class PatternReader {
public:
    explicit PatternReader(const FillLook& look)
        : m_look(look), m_color(PixelOf(look.color)), m_gap(look.gap.has_value() ? PixelOf(*look.gap) : 0) {}
    std::optional<uint32_t> At(int x, int y) const {
        if (m_look.kind == FillLook::kSolid) return m_color;
        const int64_t dx = int64_t{x} - m_look.origin.x, dy = int64_t{y} - m_look.origin.y;
        if (m_look.kind == FillLook::kTile) return m_look.tile.Row(Modulo(dy, m_look.tile.height))[Modulo(dx, m_look.tile.width)];
        const uint8_t row = kHatches[static_cast<size_t>(m_look.hatch)][static_cast<size_t>(Modulo(dy, 8))];
        if (row >> (7 - Modulo(dx, 8)) & 1) return m_color;
        return m_look.gap.has_value() ? std::optional(m_gap) : std::nullopt;
    }

private:
    const FillLook& m_look;
    const uint32_t m_color, m_gap;
};

void Apply(uint32_t* row, LONG count, PixelOp op) {
    if (op.keep == 0) {
        std::fill_n(row, count, op.flip);
    } else {
        for (LONG i = 0; i < count; ++i) row[i] = op(row[i]);
    }
}

int64_t FloorDivide(int64_t a, int64_t b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }

// A line in steps along its longer side: step i lies `Across(i)` pixels over. Both grow from 0.
struct Steps {
    int64_t length, rise;
    bool upperWins;  // what happens half way: the smaller offset, or the greater one
    int64_t Across(int64_t step) const { return FloorDivide(2 * step * rise + length - (upperWins ? 1 : 0), 2 * length); }
};

}  // namespace

PixelOp OpOf(int rop2, uint32_t pixel) {
    // Bits of the number minus one: the result for pen and destination 0 0, 0 1, 1 0 and 1 1.
    const auto table = static_cast<uint32_t>(rop2 - 1);
    const auto all = [&](uint32_t bit) { return (table >> bit & 1) != 0 ? ~0u : 0u; };
    const uint32_t onZero = (pixel & all(2)) | (~pixel & all(0)), onOne = (pixel & all(3)) | (~pixel & all(1));
    return {((onZero ^ onOne) & kColors) | ~kColors, onZero & kColors};
}

PixelOp PatternOpOf(DWORD code, uint32_t pattern) {
    const uint32_t onZero = Ternary(code, pattern, 0, 0), onOne = Ternary(code, pattern, 0, kColors);
    return {onZero ^ onOne, onZero};
}

bool ReadsSource(DWORD code) { return ((code >> 2) & 0x33) != (code & 0x33); }
bool ReadsPattern(DWORD code) { return (code >> 4 & 0x0F) != (code & 0x0F); }

DashPattern DashesOf(DWORD style) {
    // The lengths of cosmetic pens on a display, in pixels.
    DashPattern dashes;
    switch (style & PS_STYLE_MASK) {
        case PS_DASH:
            dashes.lengths = {18, 6};
            break;
        case PS_DOT:
            dashes.lengths = {3, 3};
            break;
        case PS_DASHDOT:
            dashes.lengths = {9, 6, 3, 6};
            break;
        case PS_DASHDOTDOT:
            dashes.lengths = {9, 3, 3, 3, 3, 3};
            break;
        default:
            break;
    }
    for (const int length : dashes.lengths) dashes.total += length;
    return dashes;
}

void Line(const PixelView& image, POINT from, POINT to, PixelOp on, std::optional<PixelOp> off, const DashPattern& dashes,
          int& dash, const PixelRegion& clip) {
    const int64_t dx = int64_t{to.x} - from.x, dy = int64_t{to.y} - from.y;
    const bool steep = std::abs(dy) > std::abs(dx);
    Steps steps{steep ? std::abs(dy) : std::abs(dx), steep ? std::abs(dx) : std::abs(dy), true};
    const int64_t along = (steep ? dy : dx) < 0 ? -1 : 1, across = (steep ? dx : dy) < 0 ? -1 : 1;
    steps.upperWins = across > 0;
    const int startDash = dash;
    if (dashes.total > 0) dash = static_cast<int>((dash + steps.length) % dashes.total);
    if (steps.length == 0) return;
    const RECT span = {std::min(from.x, to.x), std::min(from.y, to.y), std::max(from.x, to.x) + 1, std::max(from.y, to.y) + 1};

    for (const RECT& rect : clip.Rects()) {
        RECT part;
        if (!IntersectRect(&part, &rect, &span)) continue;
        // The steps within the rectangle, by the longer side alone; the shorter one is asked for at each pixel.
        const int64_t low = steep ? part.top : part.left, high = (steep ? part.bottom : part.right) - 1;
        const int64_t origin = steep ? from.y : from.x;
        int64_t first = std::max<int64_t>(0, along > 0 ? low - origin : origin - high);
        const int64_t last = std::min(steps.length - 1, along > 0 ? high - origin : origin - low);
        if (first > last) continue;
        const int64_t sideOrigin = steep ? from.x : from.y;
        const int64_t sideLow = steep ? part.left : part.top, sideHigh = steep ? part.right : part.bottom;

        int64_t side = steps.Across(first);
        // Numerator of the offset that is still missing to the next one.
        int64_t rest = 2 * first * steps.rise + steps.length - (steps.upperWins ? 1 : 0) - side * 2 * steps.length;
        int phase = dashes.total > 0 ? static_cast<int>((startDash + first) % dashes.total) : 0;
        size_t piece = 0;
        while (dashes.total > 0 && phase >= dashes.lengths[piece]) phase -= dashes.lengths[piece++];
        for (int64_t step = first; step <= last; ++step) {
            const int64_t sideAt = sideOrigin + across * side;
            if (sideAt >= sideLow && sideAt < sideHigh) {
                const int64_t alongAt = origin + along * step;
                uint32_t& pixel =
                    steep ? image.Row(static_cast<int>(alongAt))[sideAt] : image.Row(static_cast<int>(sideAt))[alongAt];
                if (piece % 2 == 0)
                    pixel = on(pixel);
                else if (off.has_value())
                    pixel = (*off)(pixel);
            }
            rest += 2 * steps.rise;
            if (rest >= 2 * steps.length) rest -= 2 * steps.length, ++side;
            if (dashes.total > 0 && ++phase == dashes.lengths[piece]) phase = 0, piece = (piece + 1) % dashes.lengths.size();
        }
    }
}

PixelRegion PolygonRows(std::span<const POINT> points, std::span<const DWORD> counts, int mode, const RECT& bounds) {
    struct Edge {
        POINT upper, lower;
        int winding;
    };
    std::vector<Edge> edges;
    size_t begin = 0;
    for (const DWORD count : counts) {
        for (size_t i = 0; i < count; ++i) {
            const POINT a = points[begin + i], b = points[begin + (i + 1) % count];
            if (a.y == b.y || std::max(a.y, b.y) <= bounds.top || std::min(a.y, b.y) >= bounds.bottom) continue;
            edges.push_back(a.y < b.y ? Edge{a, b, 1} : Edge{b, a, -1});
        }
        begin += count;
    }
    std::sort(edges.begin(), edges.end(), [](const Edge& a, const Edge& b) { return a.upper.y < b.upper.y; });
    struct Crossing {
        LONG x;
        int winding;
    };
    PixelRegion rows;
    std::vector<Crossing> crossings;
    std::vector<Edge> active;
    std::vector<RECT> spans;
    size_t next = 0;
    for (LONG y = bounds.top; y < bounds.bottom; ++y) {
        while (next < edges.size() && edges[next].upper.y <= y) active.push_back(edges[next++]);
        std::erase_if(active, [&](const Edge& edge) { return edge.lower.y <= y; });
        if (active.empty()) {
            if (next == edges.size()) break;
            continue;
        }
        crossings.clear();
        for (const Edge& edge : active) {
            const int64_t height = int64_t{edge.lower.y} - edge.upper.y, width = int64_t{edge.lower.x} - edge.upper.x;
            const int64_t x = edge.upper.x - FloorDivide(-width * (int64_t{y} - edge.upper.y), height);  // upwards
            crossings.push_back({static_cast<LONG>(x), edge.winding});
        }
        std::sort(crossings.begin(), crossings.end(), [](const Crossing& a, const Crossing& b) { return a.x < b.x; });
        int inside = 0;
        for (size_t i = 0; i + 1 < crossings.size(); ++i) {
            inside += mode == WINDING ? crossings[i].winding : 1;
            const bool filled = mode == WINDING ? inside != 0 : inside % 2 != 0;
            const LONG left = std::max(crossings[i].x, bounds.left), right = std::min(crossings[i + 1].x, bounds.right);
            if (!filled || left >= right) continue;
            if (!spans.empty() && spans.back().top == y && spans.back().right == left)
                spans.back().right = right;
            else
                spans.push_back({left, y, right, y + 1});
        }
    }
    return PixelRegion::FromSorted(std::move(spans));
}

void Fill(const PixelView& image, const RECT& rect, const FillLook& look, DWORD code, const PixelRegion& clip) {
    const bool even = look.kind == FillLook::kSolid || !ReadsPattern(code);
    const PixelOp op = PatternOpOf(code, PixelOf(look.color));
    const PatternReader pattern(look);
    for (const RECT& visible : clip.Rects()) {
        RECT part;
        if (!IntersectRect(&part, &visible, &rect)) continue;
        for (LONG y = part.top; y < part.bottom; ++y) {
            uint32_t* row = image.Row(y);
            if (even) {
                Apply(row + part.left, part.right - part.left, op);
                continue;
            }
            for (LONG x = part.left; x < part.right; ++x)
                if (const auto color = pattern.At(x, y)) row[x] = Ternary(code, *color, 0, row[x]);
        }
    }
}

void Mask(const PixelView& image, const uint8_t* coverage, ptrdiff_t stride, const RECT& place, PixelOp op,
          const PixelRegion& clip) {
    for (const RECT& visible : clip.Rects()) {
        RECT part;
        if (!IntersectRect(&part, &visible, &place)) continue;
        for (LONG y = part.top; y < part.bottom; ++y) {
            uint32_t* row = image.Row(y);
            const uint8_t* covered = coverage + (y - place.top) * stride - place.left;
            for (LONG x = part.left; x < part.right; ++x)
                if (covered[x] >= 128) row[x] = op(row[x]);
        }
    }
}

void Blend(const PixelView& image, const uint8_t* coverage, ptrdiff_t stride, const RECT& place, uint32_t color,
           const PixelRegion& clip) {
    const uint32_t redBlue = color & 0xFF00FF, green = color & 0x00FF00;
    for (const RECT& visible : clip.Rects()) {
        RECT part;
        if (!IntersectRect(&part, &visible, &place)) continue;
        for (LONG y = part.top; y < part.bottom; ++y) {
            uint32_t* row = image.Row(y);
            const uint8_t* covered = coverage + (y - place.top) * stride - place.left;
            for (LONG x = part.left; x < part.right; ++x) {
                if (covered[x] == 0) continue;
                const uint32_t weight = covered[x] + (covered[x] >> 7u), under = 256 - weight, old = row[x];  // 0..256
                row[x] = ((((old & 0xFF00FF) * under + redBlue * weight) >> 8) & 0xFF00FF) |
                         ((((old & 0x00FF00) * under + green * weight) >> 8) & 0x00FF00);
            }
        }
    }
}

namespace {

// For each column (or row) of a destination the one of the source, -1 outside the source.
std::vector<int> Nearest(LONG from, LONG to, LONG visibleFrom, LONG visibleTo, int source) {
    std::vector<int> index(static_cast<size_t>(visibleTo - visibleFrom));
    const int64_t extent = std::abs(int64_t{to} - from);
    for (LONG at = visibleFrom; at < visibleTo; ++at) {
        const int64_t step = to > from ? int64_t{at} - from : int64_t{from} - 1 - at;
        const int64_t value = (2 * step + 1) * source / (2 * extent);
        index[static_cast<size_t>(at - visibleFrom)] = value >= 0 && value < source ? static_cast<int>(value) : -1;
    }
    return index;
}

template <class Combine>
void ForStretched(const PixelView& image, const PixelView& source, const RECT& to, const PixelRegion& clip, Combine combine) {
    const RECT place = {std::min(to.left, to.right), std::min(to.top, to.bottom), std::max(to.left, to.right),
                        std::max(to.top, to.bottom)};
    for (const RECT& visible : clip.Rects()) {
        RECT part;
        if (!IntersectRect(&part, &visible, &place)) continue;
        const std::vector<int> columns = Nearest(to.left, to.right, part.left, part.right, source.width),
                               rows = Nearest(to.top, to.bottom, part.top, part.bottom, source.height);
        for (LONG y = part.top; y < part.bottom; ++y) {
            const uint32_t* from = source.Row(rows[static_cast<size_t>(y - part.top)]);
            uint32_t* row = image.Row(y);
            for (LONG x = part.left; x < part.right; ++x)
                row[x] = combine(x, y, from[columns[static_cast<size_t>(x - part.left)]], row[x]);
        }
    }
}

}  // namespace

void Copy(const PixelView& image, const PixelView& source, const RECT& to, DWORD code, const FillLook& pattern,
          const PixelRegion& clip) {
    constexpr DWORD kCopy = 0xCC;
    if (source.width <= 0 || source.height <= 0) return;
    const bool same = to.right - to.left == source.width && to.bottom - to.top == source.height;
    if (same && code == kCopy && clip.Rects().size() == 1) {
        RECT part;
        if (!IntersectRect(&part, &clip.Rects()[0], &to)) return;
        // A source in the same image may overlap: rows go in the order that reads each before it is written.
        const bool downwards =
            std::less<const uint32_t*>()(source.Row(part.top - to.top), image.Row(part.top)) == (image.stride > 0);
        const LONG rows = part.bottom - part.top;
        for (LONG i = 0; i < rows; ++i) {
            const LONG y = downwards ? part.bottom - 1 - i : part.top + i;
            std::memmove(image.Row(y) + part.left, source.Row(y - to.top) + (part.left - to.left),
                         static_cast<size_t>(part.right - part.left) * sizeof(uint32_t));
        }
        return;
    }
    const PatternReader reader(pattern);
    ForStretched(image, source, to, clip, [&](LONG x, LONG y, uint32_t s, uint32_t d) {
        if (code == kCopy) return s & kColors;
        return Ternary(code, ReadsPattern(code) ? reader.At(x, y).value_or(d) : 0, s, d);
    });
}

void Overlay(const PixelView& image, const PixelView& source, const RECT& to, const PixelRegion& clip) {
    if (source.width <= 0 || source.height <= 0) return;
    ForStretched(image, source, to, clip, [](LONG, LONG, uint32_t s, uint32_t d) {
        const uint32_t alpha = s >> 24, weight = alpha + (alpha >> 7), under = 256 - weight;
        return ((((d & 0xFF00FF) * under + (s & 0xFF00FF) * weight) >> 8) & 0xFF00FF) |
               ((((d & 0x00FF00) * under + (s & 0x00FF00) * weight) >> 8) & 0x00FF00);
    });
}

}  // namespace orvik::detail::raster
