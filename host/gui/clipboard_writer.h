// What is copied, put on the clipboard in all the forms that other programs may ask for; and text that comes from there.
// User-interface thread.
#pragma once

#include <string>

#include "platform/win32.h"

// The first line of the text that is there, in house text; empty where there is none.
std::string ClipboardLine(HWND owner);

class ClipboardWriter {
public:
    // Takes what was there away. A Failure while another program holds the clipboard.
    explicit ClipboardWriter(HWND owner);
    ~ClipboardWriter();
    ClipboardWriter(const ClipboardWriter&) = delete;
    ClipboardWriter& operator=(const ClipboardWriter&) = delete;

    // UTF-8. A Failure where memory is short; so for the others.
    void PutText(const std::string& text);  // lines end with "\n"
    void PutHtml(const std::string& body);  // what stands in a page's body
    // `pixels` are 0x00RRGGBB, row after row from the top.
    void PutPicture(const DWORD* pixels, SIZE size);

private:
    void Put(UINT format, const void* bytes, size_t size);
};
