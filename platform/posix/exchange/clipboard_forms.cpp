#include "platform/posix/exchange/clipboard_forms_internal.h"

#include <cairo.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <optional>
#include <vector>

#include "platform/house_text_internal.h"
#include "platform/picture.h"
#include "platform/png_writer_internal.h"
#include "platform/posix/drawing/bitmap.h"

namespace orvik::detail {
namespace {
constexpr char32_t kReplacement = 0xFFFD;

bool IsHigh(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool IsLow(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

void AppendUnit(std::string& out, char32_t unit) {
    const auto value = static_cast<char16_t>(unit);
    out.append(reinterpret_cast<const char*>(&value), sizeof value);
}

std::string Utf8OfUtf16(std::string_view bytes) {
    std::string text;
    const auto unit = [&](size_t at) {
        char16_t value = 0;
        if (at + sizeof value <= bytes.size()) std::memcpy(&value, bytes.data() + at, sizeof value);
        return static_cast<char32_t>(value);
    };
    for (size_t at = 0; at + 1 < bytes.size() && unit(at) != 0; at += 2) {
        char32_t character = unit(at);
        if (IsHigh(character) && IsLow(unit(at + 2))) {
            character = 0x10000 + ((character - 0xD800) << 10) + (unit(at + 2) - 0xDC00);
            at += 2;
        } else if (IsHigh(character) || IsLow(character)) {
            character = kReplacement;
        }
        AppendUtf8(text, character);
    }
    return text;
}

// "\r\n", a lone "\r" and a lone "\n" are one line's end each.
std::string WithLineEnds(std::string_view text, std::string_view end) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\r' && text[i] != '\n') {
            out += text[i];
            continue;
        }
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') ++i;
        out += end;
    }
    return out;
}

std::string_view ToFirstNull(std::string_view text) { return text.substr(0, text.find('\0')); }
}  // namespace

std::string Utf8OfCopied(std::string_view unicode) { return WithLineEnds(Utf8OfUtf16(unicode), "\n"); }

std::string CopiedOfUtf8(std::string_view utf8) {
    const std::string lines = WithLineEnds(ToFirstNull(utf8), "\r\n");
    std::string out;
    for (std::string_view rest = lines; !rest.empty();) {
        const char32_t character = TakeUtf8(rest);
        if (character > 0x10FFFF) {
            AppendUnit(out, kReplacement);
        } else if (character >= 0x10000) {
            AppendUnit(out, 0xD800 + ((character - 0x10000) >> 10));
            AppendUnit(out, 0xDC00 + ((character - 0x10000) & 0x3FF));
        } else {
            AppendUnit(out, character);
        }
    }
    AppendUnit(out, 0);
    return out;
}

std::string HouseOfCopied(std::string_view unicode) {
    std::string house = HouseFromUtf8(WithLineEnds(Utf8OfUtf16(unicode), "\r\n"));
    house.push_back('\0');
    return house;
}

std::string CopiedOfHouse(std::string_view house) { return CopiedOfUtf8(Utf8FromHouse(ToFirstNull(house))); }

std::string PngOfDib(std::string_view dib) {
    BITMAPINFOHEADER header{};
    if (dib.size() < sizeof header) return {};
    std::memcpy(&header, dib.data(), sizeof header);
    const int64_t width = header.biWidth, height = std::abs(int64_t{header.biHeight});
    const bool plain = header.biSize >= sizeof header && header.biSize < dib.size() && header.biCompression == BI_RGB &&
                       (header.biBitCount == 24 || header.biBitCount == 32) && header.biClrUsed == 0;
    if (!plain || width <= 0 || height <= 0 || width > kOrvikPicturePixels / height) return {};
    const auto side = static_cast<size_t>(header.biBitCount / 8);
    const size_t row = (static_cast<size_t>(width) * side + 3) / 4 * 4;
    if ((dib.size() - header.biSize) / row < static_cast<size_t>(height)) return {};
    std::vector<uint32_t> pixels(static_cast<size_t>(width * height));
    for (int64_t y = 0; y < height; ++y) {
        const auto from = static_cast<size_t>(header.biHeight < 0 ? y : height - 1 - y);
        const auto* at = reinterpret_cast<const unsigned char*>(dib.data()) + header.biSize + from * row;
        for (int64_t x = 0; x < width; ++x, at += side)
            pixels[static_cast<size_t>(y * width + x)] =
                static_cast<uint32_t>(at[2]) << 16 | static_cast<uint32_t>(at[1]) << 8 | at[0];
    }
    return PngFile(pixels.data(), static_cast<size_t>(width), static_cast<int>(width), static_cast<int>(height));
}

namespace {
// Of its heading, before anything is unpacked: a file of some bytes may say that it is a picture of many.
std::optional<SIZE> SizeOfPng(std::string_view png) {
    constexpr std::string_view kMark("\x89PNG\r\n\x1A\n", 8);
    if (png.size() < 24 || png.substr(0, kMark.size()) != kMark) return std::nullopt;
    const auto number = [&](size_t at) {
        uint32_t value = 0;
        for (size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(png[at + i]);
        return value;
    };
    const uint32_t width = number(16), height = number(20);
    if (width == 0 || height == 0 || width > 0x7FFF || height > 0x7FFF || width > kOrvikPicturePixels / height)
        return std::nullopt;
    return SIZE{static_cast<LONG>(width), static_cast<LONG>(height)};
}
}  // namespace

// On white, where it lets something through.
std::string DibOfPng(std::string_view png) {
    const auto size = SizeOfPng(png);
    if (!size) return {};
    std::string_view rest = png;
    cairo_surface_t* const picture = cairo_image_surface_create_from_png_stream(
        +[](void* from, unsigned char* data, unsigned length) {
            auto& left = *static_cast<std::string_view*>(from);
            if (left.size() < length) return CAIRO_STATUS_READ_ERROR;
            std::memcpy(data, left.data(), length);
            left.remove_prefix(length);
            return CAIRO_STATUS_SUCCESS;
        },
        &rest);
    if (cairo_surface_status(picture) != CAIRO_STATUS_SUCCESS) {
        cairo_surface_destroy(picture);
        return {};
    }
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = size->cx;
    header.biHeight = size->cy;
    header.biPlanes = 1;
    header.biBitCount = 32;
    const size_t row = static_cast<size_t>(size->cx) * sizeof(uint32_t);
    header.biSizeImage = static_cast<DWORD>(row * static_cast<size_t>(size->cy));
    std::string dib;
    cairo_surface_t* const page = cairo_image_surface_create(CAIRO_FORMAT_RGB24, size->cx, size->cy);
    cairo_t* const painter = cairo_create(page);
    cairo_set_source_rgb(painter, 1, 1, 1);
    cairo_paint(painter);
    cairo_set_source_surface(painter, picture, 0, 0);
    cairo_paint(painter);
    if (cairo_status(painter) == CAIRO_STATUS_SUCCESS) {
        cairo_surface_flush(page);
        dib.assign(reinterpret_cast<const char*>(&header), sizeof header);
        for (LONG y = size->cy; y-- > 0;)
            dib.append(reinterpret_cast<const char*>(cairo_image_surface_get_data(page)) +
                           static_cast<ptrdiff_t>(y) * cairo_image_surface_get_stride(page),
                       row);
    }
    cairo_destroy(painter);
    cairo_surface_destroy(page);
    cairo_surface_destroy(picture);
    return dib;
}

namespace {
// A number of the heading, "StartHTML:0000000105".
std::optional<size_t> NumberOf(std::string_view copied, std::string_view name) {
    const std::string_view heading = copied.substr(0, copied.find('<'));
    const size_t at = heading.find(name);
    if (at == heading.npos) return std::nullopt;
    const char* const from = heading.data() + at + name.size();
    size_t value = 0;
    if (std::from_chars(from, heading.data() + heading.size(), value).ec != std::errc() || value > copied.size())
        return std::nullopt;
    return value;
}
}  // namespace

std::string HtmlOfCopied(std::string_view copied) {
    copied = ToFirstNull(copied);
    auto start = NumberOf(copied, "StartHTML:"), end = NumberOf(copied, "EndHTML:");
    if (!start || !end) start = NumberOf(copied, "StartFragment:"), end = NumberOf(copied, "EndFragment:");
    return start && end && *start < *end ? std::string(copied.substr(*start, *end - *start)) : std::string();
}

std::string CopiedOfHtml(std::string_view html) {
    if (html.substr(0, 2) == "\xFF\xFE") return CopiedOfHtml(Utf8OfUtf16(html.substr(2)));
    html = ToFirstNull(html);
    if (html.empty()) return {};
    constexpr std::string_view kBegin = "<!--StartFragment-->", kEnd = "<!--EndFragment-->";
    std::string page(html);
    if (page.find(kBegin) == page.npos || page.find(kEnd) == page.npos)
        page = "<html><body>" + std::string(kBegin) + page + std::string(kEnd) + "</body></html>";
    char heading[128];
    const auto fill = [&](size_t start) {
        const int length =
            std::snprintf(heading, sizeof heading,
                          "Version:0.9\r\nStartHTML:%010zu\r\nEndHTML:%010zu\r\nStartFragment:%010zu\r\n"
                          "EndFragment:%010zu\r\n",
                          start, start + page.size(), start + page.find(kBegin) + kBegin.size(), start + page.find(kEnd));
        return static_cast<size_t>(length);
    };
    fill(fill(0));
    return heading + page + '\0';
}

}  // namespace orvik::detail
