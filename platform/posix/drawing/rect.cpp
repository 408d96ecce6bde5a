#include "platform/posix/drawing/rect.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace {
// Rectangles are moved and grown without a check on Windows; a sum that leaves the range wraps there and must be defined here.
LONG Add(LONG a, LONG b) { return static_cast<LONG>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b)); }
bool IsEmpty(const RECT& rect) { return rect.left >= rect.right || rect.top >= rect.bottom; }
}  // namespace

BOOL SetRect(LPRECT rect, int left, int top, int right, int bottom) {
    if (rect == nullptr) return FALSE;
    *rect = {left, top, right, bottom};
    return TRUE;
}

BOOL SetRectEmpty(LPRECT rect) { return SetRect(rect, 0, 0, 0, 0); }

BOOL CopyRect(LPRECT to, const RECT* from) {
    if (to == nullptr || from == nullptr) return FALSE;
    *to = *from;
    return TRUE;
}

BOOL IsRectEmpty(const RECT* rect) { return rect == nullptr || IsEmpty(*rect); }

BOOL EqualRect(const RECT* first, const RECT* second) {
    return first != nullptr && second != nullptr && first->left == second->left && first->top == second->top &&
           first->right == second->right && first->bottom == second->bottom;
}

BOOL PtInRect(const RECT* rect, POINT point) {
    return rect != nullptr && point.x >= rect->left && point.x < rect->right && point.y >= rect->top && point.y < rect->bottom;
}

BOOL OffsetRect(LPRECT rect, int dx, int dy) {
    if (rect == nullptr) return FALSE;
    *rect = {Add(rect->left, dx), Add(rect->top, dy), Add(rect->right, dx), Add(rect->bottom, dy)};
    return TRUE;
}

BOOL InflateRect(LPRECT rect, int dx, int dy) {
    if (rect == nullptr) return FALSE;
    const auto minus = [](LONG a, LONG b) { return static_cast<LONG>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b)); };
    *rect = {minus(rect->left, dx), minus(rect->top, dy), Add(rect->right, dx), Add(rect->bottom, dy)};
    return TRUE;
}

BOOL IntersectRect(LPRECT result, const RECT* first, const RECT* second) {
    if (result == nullptr || first == nullptr || second == nullptr) return FALSE;
    const RECT both = {std::max(first->left, second->left), std::max(first->top, second->top),
                       std::min(first->right, second->right), std::min(first->bottom, second->bottom)};
    const bool empty = IsEmpty(*first) || IsEmpty(*second) || IsEmpty(both);
    *result = empty ? RECT{0, 0, 0, 0} : both;
    return !empty;
}

BOOL UnionRect(LPRECT result, const RECT* first, const RECT* second) {
    if (result == nullptr || first == nullptr || second == nullptr) return FALSE;
    if (IsEmpty(*first)) first = second;
    if (IsEmpty(*second)) second = first;
    if (IsEmpty(*first)) {
        SetRectEmpty(result);
        return FALSE;
    }
    *result = {std::min(first->left, second->left), std::min(first->top, second->top), std::max(first->right, second->right),
               std::max(first->bottom, second->bottom)};
    return TRUE;
}

BOOL SubtractRect(LPRECT result, const RECT* first, const RECT* second) {
    if (result == nullptr || first == nullptr || second == nullptr) return FALSE;
    RECT rest = *first, both;
    if (IsEmpty(rest)) {
        SetRectEmpty(result);
        return FALSE;
    }
    if (IntersectRect(&both, first, second)) {
        if (EqualRect(&both, &rest)) {
            SetRectEmpty(result);
            return FALSE;
        }
        if (both.top == rest.top && both.bottom == rest.bottom) {
            if (both.left == rest.left)
                rest.left = both.right;
            else if (both.right == rest.right)
                rest.right = both.left;
        } else if (both.left == rest.left && both.right == rest.right) {
            if (both.top == rest.top)
                rest.top = both.bottom;
            else if (both.bottom == rest.bottom)
                rest.bottom = both.top;
        }
    }
    *result = rest;
    return TRUE;
}

int MulDiv(int number, int numerator, int denominator) {
    if (denominator == 0) return -1;
    int64_t product = static_cast<int64_t>(number) * numerator, divisor = denominator;
    if (divisor < 0) product = -product, divisor = -divisor;
    const int64_t result = (product >= 0 ? product + divisor / 2 : product - divisor / 2) / divisor;
    if (result > std::numeric_limits<int>::max() || result < -std::numeric_limits<int>::max()) return -1;
    return static_cast<int>(result);
}
