// Broken lines: a line's points become those of its dashes and dots. Pure functions; any thread.
#pragma once

#include <vector>

#include "platform/picture.h"
#include "platform/win32.h"

// Pattern 0 is the line itself, 1 dashes, 2 dots, each further one dashes with one more dot between them. `width` is the line's,
// in pixels, and what dashes are measured by. What lies outside `clip` is left out, so that a line that leads far away costs
// nothing. A NaN parts pieces, as OrvikSmoothPolyline takes them; each piece begins with a dash.
std::vector<ORVIK_CURVE_POINT> DashedLine(const std::vector<ORVIK_CURVE_POINT>& line, size_t pattern, float width,
                                          const RECT& clip);

// How many times longer than can be followed a line's way through `clip` is: above 1 it fills an area rather than leading through
// it, and dashes are to be so many times longer.
double CrowdingOf(const std::vector<ORVIK_CURVE_POINT>& line, const RECT& clip);
