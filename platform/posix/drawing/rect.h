// Rectangles: left and top belong to a rectangle, right and bottom do not. Plain arithmetic; any thread.
// Functions that tell whether something is left answer 0 for an empty result and for a null argument.
#pragma once

#include "platform/api.h"
#include "platform/posix/types.h"

ORVIK_API BOOL WINAPI SetRect(LPRECT rect, int left, int top, int right, int bottom);
ORVIK_API BOOL WINAPI SetRectEmpty(LPRECT rect);
ORVIK_API BOOL WINAPI CopyRect(LPRECT to, const RECT* from);
ORVIK_API BOOL WINAPI IsRectEmpty(const RECT* rect);
ORVIK_API BOOL WINAPI EqualRect(const RECT* first, const RECT* second);
ORVIK_API BOOL WINAPI PtInRect(const RECT* rect, POINT point);
ORVIK_API BOOL WINAPI OffsetRect(LPRECT rect, int dx, int dy);
ORVIK_API BOOL WINAPI InflateRect(LPRECT rect, int dx, int dy);
ORVIK_API BOOL WINAPI IntersectRect(LPRECT result, const RECT* first, const RECT* second);
// An empty rectangle adds nothing.
ORVIK_API BOOL WINAPI UnionRect(LPRECT result, const RECT* first, const RECT* second);
// Takes away what is a whole side of the first; else the result is the first.
ORVIK_API BOOL WINAPI SubtractRect(LPRECT result, const RECT* first, const RECT* second);
// number * numerator / denominator in 64 bits, rounded half away from zero; -1 for a denominator of 0 and beyond 32 bits.
ORVIK_API int WINAPI MulDiv(int number, int numerator, int denominator);
