// Draws a page of lines, areas and text on a printer, in its own dots: as sharp as it prints. Internal; one thread.
#pragma once

#include "platform/vector_sink_internal.h"
#include "platform/win32.h"

namespace orvik::detail {

// Where the page lies among a printer's dots.
struct PrinterScale {
    double left, top;      // dots
    double across, along;  // dots a unit of the page
};
// The DC belongs to the caller and outlives the sink, which leaves its objects, clip and modes as they were.
std::unique_ptr<VectorSink> MakePrinterSink(HDC printer, int width, int height, const PrinterScale& scale);

}  // namespace orvik::detail
