#include "platform/picture.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <mutex>
#include <new>
#include <optional>

#include "platform/file_replacement.h"
#include "platform/picture_internal.h"
#include "platform/png_writer_internal.h"
#include "platform/print_internal.h"

namespace orvik::detail {
namespace {

struct Picture {
    std::string path;
    PictureKind kind;
    std::unique_ptr<PictureTarget> target;
};

struct Pictures {
    std::mutex lock;
    std::map<HDC, Picture> open;
};

Pictures& ThePictures() {
    static auto* pictures = new Pictures;  // outlives every thread that may still draw
    return *pictures;
}

std::optional<PictureKind> KindOf(const std::string& path) {
    constexpr size_t kEnding = 4;
    if (path.size() <= kEnding) return std::nullopt;
    std::string ending = path.substr(path.size() - kEnding);
    for (char& c : ending) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
    if (ending == ".png") return PictureKind::png;
    if (ending == ".svg") return PictureKind::svg;
    if (ending == ".pdf") return PictureKind::pdf;
    return std::nullopt;
}

bool IsSide(LONG side) { return side >= 1 && side <= kOrvikPictureSide; }
bool HasTooManyPixels(LONG width, LONG height) { return static_cast<long long>(width) * height > kOrvikPicturePixels; }

BOOL Done(DWORD error) {
    if (error != ERROR_SUCCESS) SetLastError(error);
    return error == ERROR_SUCCESS;
}

// Memory may end while the file is put together; the caller gets a code like any other.
template <class Work>
DWORD Guarded(Work work) {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}

class ImageTarget : public PictureTarget {
public:
    ImageTarget(int width, int height) : m_width(width), m_height(height), m_surface(width, height) {
        if (m_surface.Dc() != nullptr)
            std::fill_n(m_surface.Bits(), static_cast<size_t>(width) * static_cast<size_t>(height), 0xFFFFFFu);
    }
    HDC Dc() const override { return m_surface.Dc(); }
    DWORD Finish(std::string& file) override {
        SettlePixels();
        file = PngFile(m_surface.Bits(), static_cast<size_t>(m_width), m_width, m_height);
        return ERROR_SUCCESS;
    }

private:
    int m_width, m_height;
    PixelSurface m_surface;
};
}  // namespace

std::unique_ptr<PictureTarget> MakeImageTarget(int width, int height) {
    auto target = std::make_unique<ImageTarget>(width, height);
    return target->Dc() != nullptr ? std::move(target) : nullptr;
}

PixelSurface::PixelSurface(int width, int height) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    info.bmiHeader.biCompression = BI_RGB;
    void* bits = nullptr;
    m_bitmap = CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (m_bitmap == nullptr) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return;
    }
    m_bits = static_cast<uint32_t*>(bits);
    m_dc = CreateCompatibleDC(nullptr);
    if (m_dc != nullptr) m_before = SelectObject(m_dc, m_bitmap);
}

PixelSurface::~PixelSurface() {
    if (m_dc != nullptr) {
        SelectObject(m_dc, m_before);
        DeleteDC(m_dc);
    }
    if (m_bitmap != nullptr) DeleteObject(m_bitmap);
}
}  // namespace orvik::detail

using namespace orvik::detail;

HDC OrvikBeginPicture(LPCSTR path, int width, int height) {
    HDC dc = nullptr;
    const DWORD error = Guarded([&]() -> DWORD {
        const auto kind = path != nullptr ? KindOf(path) : std::nullopt;
        if (!kind || !IsSide(width) || !IsSide(height)) return ERROR_INVALID_PARAMETER;
        if (*kind == PictureKind::png && HasTooManyPixels(width, height)) return ERROR_NOT_ENOUGH_MEMORY;
        auto target = *kind == PictureKind::png ? MakeImageTarget(width, height) : MakePageTarget(*kind, width, height);
        if (target == nullptr) return GetLastError() != ERROR_SUCCESS ? GetLastError() : ERROR_NOT_ENOUGH_MEMORY;
        Pictures& pictures = ThePictures();
        const std::lock_guard guard(pictures.lock);
        const HDC made = target->Dc();
        pictures.open[made] = {path, *kind, std::move(target)};
        dc = made;
        return ERROR_SUCCESS;
    });
    if (error != ERROR_SUCCESS) SetLastError(error);
    return dc;
}

BOOL OrvikEndPicture(HDC dc, BOOL keep) {
    Picture picture;
    {
        Pictures& pictures = ThePictures();
        const std::lock_guard guard(pictures.lock);
        const auto found = pictures.open.find(dc);
        if (found == pictures.open.end()) return Done(ERROR_INVALID_HANDLE);
        picture = std::move(found->second);
        pictures.open.erase(found);
    }
    const DWORD error = !keep ? ERROR_SUCCESS : Guarded([&]() -> DWORD {
        std::string file;
        if (const DWORD unfinished = picture.target->Finish(file)) return unfinished;
        return ReplaceWholeFile(picture.path, file);
    });
    picture.target.reset();
    return Done(error);
}

BOOL OrvikIsPrinting(HDC dc) {
    Pictures& pictures = ThePictures();
    const std::lock_guard guard(pictures.lock);
    const auto found = pictures.open.find(dc);
    return (found != pictures.open.end() && found->second.kind == PictureKind::pdf) || IsPrintJob(dc);
}

BOOL OrvikSmoothPolyline(HDC dc, const ORVIK_CURVE_POINT* points, int count, COLORREF colour, float width) {
    constexpr float kThinnest = 0.1f, kWidest = 100;
    if (count < 0 || (points == nullptr && count > 0) || !(width >= kThinnest && width <= kWidest))
        return Done(ERROR_INVALID_PARAMETER);
    return Done(Guarded([&]() -> DWORD {
        const SmoothPath path = SmoothPathOf(points, count);
        if (!path.empty() && KeepSmoothLine(dc, path, colour, width)) return ERROR_SUCCESS;
        RECT clip{};
        constexpr int kRefused = 0;  // what GetClipBox calls ERROR
        if (GetClipBox(dc, &clip) == kRefused) return ERROR_INVALID_HANDLE;
        if (path.empty()) return ERROR_SUCCESS;
        const RECT bounds = SmoothBounds(path, width);
        const int left = std::max(bounds.left, clip.left), right = std::min(bounds.right, clip.right);
        const int bottom = std::min(bounds.bottom, clip.bottom);
        if (left >= right) return ERROR_SUCCESS;
        // In bands, so that a large picture needs little memory beside its own.
        constexpr int kBandPixels = 1 << 20;
        const int rows = std::max(1, kBandPixels / (right - left));
        Coverage coverage;
        coverage.left = left, coverage.width = right - left;
        for (int top = std::max(bounds.top, clip.top); top < bottom; top += rows) {
            coverage.top = top, coverage.height = std::min(rows, bottom - top);
            if (!CoverSmoothLine(path, width, coverage)) continue;
            if (const DWORD error = BlendCoverage(dc, coverage, colour)) return error;
        }
        return ERROR_SUCCESS;
    }));
}

BOOL OrvikSavePixels(HDC dc, const RECT* area, LPCSTR path) {
    return Done(Guarded([&]() -> DWORD {
        if (path == nullptr || KindOf(path) != PictureKind::png || area == nullptr) return ERROR_INVALID_PARAMETER;
        const LONG width = area->right - area->left, height = area->bottom - area->top;
        if (!IsSide(width) || !IsSide(height) || HasTooManyPixels(width, height)) return ERROR_INVALID_PARAMETER;
        const PixelSurface surface(width, height);
        if (surface.Dc() == nullptr) return ERROR_NOT_ENOUGH_MEMORY;
        if (!BitBlt(surface.Dc(), 0, 0, width, height, dc, area->left, area->top, SRCCOPY)) {
            const DWORD error = GetLastError();
            return error != ERROR_SUCCESS ? error : ERROR_INVALID_HANDLE;
        }
        SettlePixels();
        return ReplaceWholeFile(path, PngFile(surface.Bits(), static_cast<size_t>(width), width, height));
    }));
}
