// Pages are recorded as metafiles at the display's resolution, one unit a pixel, and written down at their end.
#include <cstring>
#include <limits>

#include "platform/picture_internal.h"
#include "platform/windows/metafile_internal.h"

namespace orvik::detail {
namespace {
class PageTarget : public PictureTarget {
public:
    PageTarget(PictureKind kind, int width, int height)
        : m_sink(kind == PictureKind::svg ? MakeSvgWriter(width, height) : MakePdfWriter(width, height)),
          m_dc(CreateEnhMetaFileA(nullptr, nullptr, nullptr, nullptr)) {
        // As on every other page nothing is drawn outside; the DC itself knows no size.
        if (m_dc != nullptr) IntersectClipRect(m_dc, 0, 0, width, height);
    }
    ~PageTarget() override {
        if (m_dc != nullptr) DeleteEnhMetaFile(CloseEnhMetaFile(m_dc));
    }
    HDC Dc() const override { return m_dc; }

    DWORD Finish(std::string& file) override {
        const HENHMETAFILE recorded = CloseEnhMetaFile(m_dc);
        m_dc = nullptr;
        if (recorded == nullptr) return ERROR_NOT_ENOUGH_MEMORY;
        const DWORD error = DrawMetafile(recorded, *m_sink);
        DeleteEnhMetaFile(recorded);
        if (error == ERROR_SUCCESS) file = m_sink->Finish();
        return error;
    }

private:
    std::unique_ptr<VectorSink> m_sink;
    HDC m_dc;
};
}  // namespace

std::unique_ptr<PictureTarget> MakePageTarget(PictureKind kind, int width, int height) {
    auto target = std::make_unique<PageTarget>(kind, width, height);
    return target->Dc() != nullptr ? std::move(target) : nullptr;
}

void SettlePixels() { GdiFlush(); }

BOOL KeepSmoothLine(HDC dc, const SmoothPath& path, COLORREF colour, float width) {
    if (GetObjectType(dc) != OBJ_ENHMETADC) return FALSE;
    SmoothLineComment head{};
    std::memcpy(head.name, kSmoothLineName, sizeof head.name);
    head.colour = colour, head.width = width, head.count = static_cast<DWORD>(path.size());
    const size_t size = path.size() * sizeof path[0];
    std::vector<BYTE> comment(sizeof head + size);
    std::memcpy(comment.data(), &head, sizeof head);
    std::memcpy(comment.data() + sizeof head, path.data(), size);
    return GdiComment(dc, static_cast<UINT>(comment.size()), comment.data());
}

DWORD BlendCoverage(HDC dc, const Coverage& coverage, COLORREF colour) {
    const PixelSurface surface(coverage.width, coverage.height);
    if (surface.Dc() == nullptr) return ERROR_NOT_ENOUGH_MEMORY;
    uint32_t blended[256];  // the colour at each coverage, multiplied by it as AlphaBlend wants it
    for (uint32_t alpha = 0; alpha < 256; ++alpha) {
        const auto part = [&](uint32_t value) { return (value * alpha + 127) / 255; };
        blended[alpha] = alpha << 24 | part(GetRValue(colour)) << 16 | part(GetGValue(colour)) << 8 | part(GetBValue(colour));
    }
    uint32_t* out = surface.Bits();
    for (const uint8_t alpha : coverage.pixels) *out++ = blended[alpha];
    constexpr BLENDFUNCTION kOver = {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    return GdiAlphaBlend(dc, coverage.left, coverage.top, coverage.width, coverage.height, surface.Dc(), 0, 0, coverage.width,
                         coverage.height, kOver)
               ? ERROR_SUCCESS
               : ERROR_INVALID_HANDLE;
}
}  // namespace orvik::detail
