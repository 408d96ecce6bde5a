#include "host/gui/clipboard_writer.h"

#include <cstdio>
#include <cstring>
#include <vector>

#include "host/words/console.h"
#include "host/words/texts.h"

std::string ClipboardLine(HWND owner) {
    constexpr int kMost = 4096;  // units of UTF-16, whatever comes
    if (!::OpenClipboard(owner)) return {};
    std::string line;
    if (const HANDLE memory = ::GetClipboardData(CF_UNICODETEXT)) {
        const auto* const units = static_cast<const WCHAR*>(::GlobalLock(memory));
        const size_t size = units != nullptr ? ::GlobalSize(memory) / sizeof(WCHAR) : 0;
        int length = 0;
        while (length < kMost && static_cast<size_t>(length) < size && units[length] != 0 && units[length] != '\r' &&
               units[length] != '\n')
            ++length;
        if (length > 0) {
            line.resize(static_cast<size_t>(length) * 3);
            const int bytes = static_cast<int>(line.size());
            line.resize(
                static_cast<size_t>(::WideCharToMultiByte(CP_ACP, 0, units, length, line.data(), bytes, nullptr, nullptr)));
        }
        ::GlobalUnlock(memory);
    }
    ::CloseClipboard();
    return line;
}

ClipboardWriter::ClipboardWriter(HWND owner) {
    if (!::OpenClipboard(owner)) throw Failure{kFileFailed, Say(Text::ClipboardBusy)};
    ::EmptyClipboard();
}

ClipboardWriter::~ClipboardWriter() { ::CloseClipboard(); }

void ClipboardWriter::Put(UINT format, const void* bytes, size_t size) {
    const HGLOBAL memory = ::GlobalAlloc(GMEM_MOVEABLE, size);
    if (memory == nullptr) throw Failure{kFileFailed, Reason(ERROR_NOT_ENOUGH_MEMORY)};
    std::memcpy(::GlobalLock(memory), bytes, size);
    ::GlobalUnlock(memory);
    if (::SetClipboardData(format, memory) != nullptr) return;
    const DWORD error = ::GetLastError();
    ::GlobalFree(memory);
    throw Failure{kFileFailed, Reason(error)};
}

void ClipboardWriter::PutText(const std::string& text) {
    std::string lines;
    for (const char letter : text) {
        if (letter == '\n') lines += '\r';
        lines += letter;
    }
    const int length = static_cast<int>(lines.size());
    std::vector<WCHAR> wide(lines.size() + 1);  // never more units than bytes
    if (length > 0) ::MultiByteToWideChar(CP_UTF8, 0, lines.data(), length, wide.data(), length);
    size_t units = 0;
    while (wide[units] != 0) ++units;
    Put(CF_UNICODETEXT, wide.data(), (units + 1) * sizeof(WCHAR));
}

// A page with a heading that says at which of its bytes what begins.
void ClipboardWriter::PutHtml(const std::string& body) {
    const std::string before = "<html><head><meta charset=\"utf-8\"></head><body><!--StartFragment-->",
                      after = "<!--EndFragment--></body></html>";
    char heading[128] = "";
    const auto fill = [&](size_t start) {
        const size_t fragment = start + before.size(), end = fragment + body.size();
        return std::snprintf(heading, sizeof heading,
                             "Version:0.9\r\nStartHTML:%010u\r\nEndHTML:%010u\r\nStartFragment:%010u\r\nEndFragment:%010u\r\n",
                             static_cast<unsigned>(start), static_cast<unsigned>(end + after.size()),
                             static_cast<unsigned>(fragment), static_cast<unsigned>(end));
    };
    fill(static_cast<size_t>(fill(0)));
    const std::string page = heading + before + body + after;
    Put(::RegisterClipboardFormatA("HTML Format"), page.c_str(), page.size() + 1);
}

// With 24 bits, which leave nobody in doubt about what shines through.
void ClipboardWriter::PutPicture(const DWORD* pixels, SIZE size) {
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof header;
    header.biWidth = size.cx;
    header.biHeight = size.cy;
    header.biPlanes = 1;
    header.biBitCount = 24;
    const auto width = static_cast<size_t>(size.cx), height = static_cast<size_t>(size.cy);
    const size_t row = (width * 3 + 3) / 4 * 4;
    header.biSizeImage = static_cast<DWORD>(row * height);
    std::vector<BYTE> bytes(sizeof header + row * height);
    std::memcpy(bytes.data(), &header, sizeof header);
    for (size_t y = 0; y < height; ++y) {
        BYTE* to = bytes.data() + sizeof header + (height - 1 - y) * row;
        for (size_t x = 0; x < width; ++x) {
            const DWORD pixel = pixels[y * width + x];
            for (const int shift : {0, 8, 16}) *to++ = static_cast<BYTE>(pixel >> shift & 0xFF);
        }
    }
    Put(CF_DIB, bytes.data(), bytes.size());
}
