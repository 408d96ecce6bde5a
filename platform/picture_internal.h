// What the homes give to picture files. Internal; one thread for one picture.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/picture.h"
#include "platform/smooth_line_internal.h"

namespace orvik::detail {

enum class PictureKind { png, svg, pdf };

// A picture under way: its DC, and what becomes of it. Its end ends the DC.
class PictureTarget {
public:
    virtual ~PictureTarget() = default;
    virtual HDC Dc() const = 0;
    // The whole file; nothing may be drawn any more. A Win32 code.
    virtual DWORD Finish(std::string& file) = 0;
};

// Null and the last error where the system cannot give one.
std::unique_ptr<PictureTarget> MakeImageTarget(int width, int height);
std::unique_ptr<PictureTarget> MakePageTarget(PictureKind kind, int width, int height);
// A PDF picture on a sheet of paper; on Linux, where printers take it.
struct PdfSheet;
std::unique_ptr<PictureTarget> MakeSheetTarget(int width, int height, const PdfSheet& sheet);

// On a page (a DC without pixels) the path is kept as it is: TRUE. FALSE for every other DC.
BOOL KeepSmoothLine(HDC dc, const SmoothPath& path, COLORREF colour, float width);
// Lays the colour over a part of the DC, in logical units, as much as each pixel is covered. A Win32 code.
DWORD BlendCoverage(HDC dc, const Coverage& coverage, COLORREF colour);

// Lets what the system may still hold back reach the pixels of every surface.
void SettlePixels();

// A memory DC over 32-bit pixels, top row first.
class PixelSurface {
public:
    PixelSurface(int width, int height);
    ~PixelSurface();
    PixelSurface(const PixelSurface&) = delete;
    PixelSurface& operator=(const PixelSurface&) = delete;

    // Null when memory is short; the last error tells.
    HDC Dc() const { return m_dc; }
    uint32_t* Bits() const { return m_bits; }

private:
    HDC m_dc = nullptr;
    HBITMAP m_bitmap = nullptr;
    HGDIOBJ m_before = nullptr;
    uint32_t* m_bits = nullptr;
};

}  // namespace orvik::detail
