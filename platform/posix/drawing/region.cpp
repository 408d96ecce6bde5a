#include "platform/posix/drawing/region.h"

#include <algorithm>
#include <utility>

#include "platform/posix/drawing/gdi_internal.h"
#include "platform/posix/kernel/handle_table_internal.h"

namespace orvik::detail {
namespace {

// Joins the band that ends the list with the one before it where both have the same columns.
void CloseBand(std::vector<RECT>& rects, size_t& lastBand, size_t band) {
    const size_t count = rects.size() - band;
    bool same = count > 0 && band - lastBand == count && rects[lastBand].bottom == rects[band].top;
    for (size_t i = 0; same && i < count; ++i)
        same = rects[lastBand + i].left == rects[band + i].left && rects[lastBand + i].right == rects[band + i].right;
    if (same) {
        for (size_t i = 0; i < count; ++i) rects[lastBand + i].bottom = rects[band + i].bottom;
        rects.resize(band);
    } else if (count > 0) {
        lastBand = band;
    }
}

// The rectangles of a region that lie in a row; the list is sorted, so they stand together.
std::span<const RECT> BandAt(std::span<const RECT> rects, size_t& from, int y) {
    while (from < rects.size() && rects[from].bottom <= y) ++from;
    size_t to = from;
    while (to < rects.size() && rects[to].top <= y) ++to;
    return rects.subspan(from, to - from);
}

bool Keeps(bool first, bool second, int mode) {
    switch (mode) {
        case RGN_AND:
            return first && second;
        case RGN_OR:
            return first || second;
        case RGN_XOR:
            return first != second;
        default:
            return first && !second;
    }
}

}  // namespace

RECT CommonRectangle(const RECT& a, const RECT& b) {
    const RECT common{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
    return IsEmptyRectangle(common) ? RECT{} : common;
}

PixelRegion::PixelRegion(const RECT& rect) {
    if (!IsEmptyRectangle(rect)) m_rects.push_back(rect);
}

PixelRegion PixelRegion::FromSorted(std::vector<RECT> rects) {
    PixelRegion region;
    size_t lastBand = 0;
    for (size_t from = 0; from < rects.size();) {
        size_t to = from;
        const size_t band = region.m_rects.size();
        while (to < rects.size() && rects[to].top == rects[from].top) region.m_rects.push_back(rects[to++]);
        CloseBand(region.m_rects, lastBand, band);
        from = to;
    }
    return region;
}

RECT PixelRegion::Box() const {
    if (m_rects.empty()) return {0, 0, 0, 0};
    RECT box = {m_rects.front().left, m_rects.front().top, m_rects.front().right, m_rects.back().bottom};
    for (const RECT& rect : m_rects) box.left = std::min(box.left, rect.left), box.right = std::max(box.right, rect.right);
    return box;
}

bool PixelRegion::Contains(int x, int y) const {
    return std::any_of(m_rects.begin(), m_rects.end(), [&](const RECT& rect) { return PtInRect(&rect, {x, y}); });
}

bool PixelRegion::Touches(const RECT& rect) const {
    RECT both;
    return std::any_of(m_rects.begin(), m_rects.end(), [&](const RECT& own) { return IntersectRect(&both, &own, &rect); });
}

void PixelRegion::Offset(int dx, int dy) {
    for (RECT& rect : m_rects) OffsetRect(&rect, dx, dy);
}

void PixelRegion::Combine(const PixelRegion& other, int mode) {
    if (mode == RGN_COPY) {
        *this = other;
        return;
    }
    if (mode == RGN_AND && m_rects.size() == 1 && other.m_rects.size() == 1) {  // what nearly every clip is
        RECT both;
        if (IntersectRect(&both, &m_rects[0], &other.m_rects[0]))
            m_rects[0] = both;
        else
            m_rects.clear();
        return;
    }
    std::vector<LONG> rows, columns;
    for (const std::vector<RECT>* list : {&std::as_const(m_rects), &other.m_rects})
        for (const RECT& rect : *list) rows.push_back(rect.top), rows.push_back(rect.bottom);
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());

    std::vector<RECT> result;
    size_t lastBand = 0, from = 0, otherFrom = 0;
    for (size_t row = 0; row + 1 < rows.size(); ++row) {
        const std::span<const RECT> own = BandAt(m_rects, from, rows[row]), theirs = BandAt(other.m_rects, otherFrom, rows[row]);
        columns.clear();
        for (const auto& list : {own, theirs})
            for (const RECT& rect : list) columns.push_back(rect.left), columns.push_back(rect.right);
        std::sort(columns.begin(), columns.end());
        columns.erase(std::unique(columns.begin(), columns.end()), columns.end());
        const size_t band = result.size();
        size_t i = 0, j = 0;
        for (size_t column = 0; column + 1 < columns.size(); ++column) {
            const LONG x = columns[column];
            while (i < own.size() && own[i].right <= x) ++i;
            while (j < theirs.size() && theirs[j].right <= x) ++j;
            const bool first = i < own.size() && own[i].left <= x, second = j < theirs.size() && theirs[j].left <= x;
            if (!Keeps(first, second, mode)) continue;
            if (result.size() > band && result.back().right == x)
                result.back().right = columns[column + 1];
            else
                result.push_back({x, rows[row], columns[column + 1], rows[row + 1]});
        }
        CloseBand(result, lastBand, band);
    }
    m_rects = std::move(result);
}

bool PixelRegion::operator==(const PixelRegion& other) const {
    return std::equal(m_rects.begin(), m_rects.end(), other.m_rects.begin(), other.m_rects.end(),
                      [](const RECT& a, const RECT& b) { return EqualRect(&a, &b) != 0; });
}

int LooksOf(const PixelRegion& region) {
    return region.Empty() ? NULLREGION : region.Rects().size() == 1 ? SIMPLEREGION : COMPLEXREGION;
}

}  // namespace orvik::detail

using namespace orvik::detail;

namespace {
std::shared_ptr<RegionObject> Find(HRGN region) {
    auto found = FindGdi<RegionObject>(region, OBJ_REGION);
    if (found == nullptr) SetLastError(ERROR_INVALID_HANDLE);
    return found;
}

RECT Ordered(int left, int top, int right, int bottom) {
    return {std::min(left, right), std::min(top, bottom), std::max(left, right), std::max(top, bottom)};
}
}  // namespace

HRGN CreateRectRgn(int left, int top, int right, int bottom) {
    auto region = std::make_shared<RegionObject>();
    region->pixels = PixelRegion(Ordered(left, top, right, bottom));
    return static_cast<HRGN>(AddGdiObject(std::move(region)));
}

HRGN CreateRectRgnIndirect(const RECT* rect) {
    if (rect == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return CreateRectRgn(rect->left, rect->top, rect->right, rect->bottom);
}

BOOL SetRectRgn(HRGN region, int left, int top, int right, int bottom) {
    const auto found = Find(region);
    if (found == nullptr) return FALSE;
    found->pixels = PixelRegion(Ordered(left, top, right, bottom));
    return TRUE;
}

int CombineRgn(HRGN result, HRGN first, HRGN second, int mode) {
    const auto to = Find(result), one = Find(first), two = mode == RGN_COPY ? one : Find(second);
    if (to == nullptr || one == nullptr || two == nullptr) return 0;
    if (mode < RGN_AND || mode > RGN_COPY) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    PixelRegion combined = one->pixels;
    if (mode != RGN_COPY) combined.Combine(two->pixels, mode);
    to->pixels = std::move(combined);
    return LooksOf(to->pixels);
}

int OffsetRgn(HRGN region, int dx, int dy) {
    const auto found = Find(region);
    if (found == nullptr) return 0;
    found->pixels.Offset(dx, dy);
    return LooksOf(found->pixels);
}

int GetRgnBox(HRGN region, LPRECT box) {
    const auto found = Find(region);
    if (found == nullptr || box == nullptr) return 0;
    *box = found->pixels.Box();
    return LooksOf(found->pixels);
}

BOOL EqualRgn(HRGN first, HRGN second) {
    const auto one = Find(first), two = Find(second);
    return one != nullptr && two != nullptr && one->pixels == two->pixels;
}

BOOL PtInRegion(HRGN region, int x, int y) {
    const auto found = Find(region);
    return found != nullptr && found->pixels.Contains(x, y);
}

BOOL RectInRegion(HRGN region, const RECT* rect) {
    const auto found = Find(region);
    return found != nullptr && rect != nullptr && found->pixels.Touches(*rect);
}
