// How well colours can be told apart. Arithmetic only; any thread.
#pragma once

#include <algorithm>
#include <cmath>

#include "platform/win32.h"

namespace orvik {

inline constexpr double kReadableText = 4.5;  // the contrast that text needs, by the guidelines for accessible content (WCAG 2.1)
inline constexpr double kVisibleShape = 3.0;  // and lines, marks and frames

// How far two colours are apart to the eye: 1 (the same) to 21 (black and white), by their relative luminance (WCAG 2.1).
inline double Contrast(COLORREF first, COLORREF second) {
    const auto luminance = [](COLORREF colour) {
        const auto linear = [](int part) {
            const double value = part / 255.0;
            return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(GetRValue(colour)) + 0.7152 * linear(GetGValue(colour)) + 0.0722 * linear(GetBValue(colour));
    };
    const double one = luminance(first), other = luminance(second);
    return ((std::max)(one, other) + 0.05) / ((std::min)(one, other) + 0.05);
}

// `percent` of the second colour in the first.
inline COLORREF Mixed(COLORREF first, COLORREF second, int percent) {
    const auto part = [&](int a, int b) { return a + (b - a) * percent / 100; };
    return RGB(part(GetRValue(first), GetRValue(second)), part(GetGValue(first), GetGValue(second)),
               part(GetBValue(first), GetBValue(second)));
}

// The colour, as much darker or lighter as it takes to stand out from the ground.
inline COLORREF ReadableOn(COLORREF ground, COLORREF colour, double enough = kReadableText) {
    const COLORREF end =
        Contrast(ground, RGB(0, 0, 0)) >= Contrast(ground, RGB(255, 255, 255)) ? RGB(0, 0, 0) : RGB(255, 255, 255);
    COLORREF found = colour;
    for (int step = 1; step <= 16 && Contrast(ground, found) < enough; ++step) found = Mixed(colour, end, step * 100 / 16);
    return found;
}

}  // namespace orvik
