// Reads a recorded drawing (an enhanced metafile) and draws it again on a page of lines, areas and text. Internal; one thread.
#pragma once

#include "platform/vector_sink_internal.h"
#include "platform/win32.h"

namespace orvik::detail {

// A smooth line stands in a metafile as a comment: this head, then the points of each piece with a NaN between pieces.
struct SmoothLineComment {
    char name[8];  // "orvikln1"
    COLORREF colour;
    float width;
    DWORD count;
};
inline constexpr char kSmoothLineName[8] = {'o', 'r', 'v', 'i', 'k', 'l', 'n', '1'};

// A Win32 code: 50 for records that cannot be told in lines, areas and text.
DWORD DrawMetafile(HENHMETAFILE file, VectorSink& sink);

}  // namespace orvik::detail
