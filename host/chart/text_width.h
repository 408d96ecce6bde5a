// How much room a text takes in its line, in the units of the device context. The device context's thread.
#pragma once

#include <string>

#include "afx/dc.h"

inline LONG WidthOfText(const CDC& dc, const std::string& text) {
    return dc.GetTextExtent(text.c_str(), static_cast<int>(text.size())).cx;
}
