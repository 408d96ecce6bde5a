// The part of the seam between windows and a screen (screen_internal.h) that is about printers.
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "platform/posix/window/messages.h"
#include "platform/print_internal.h"

namespace orvik::detail {

// Texts are UTF-8, paths the system's.
struct PrinterQuestion {
    HWND owner = nullptr;  // a top-level window, or null
    std::string document;
};
struct PrinterChoice {
    unsigned number = 0;  // by which it is told from others
    Sheet sheet;          // as it is to be read, landscape or portrait
    std::string file;     // to be written in place of printing; empty for a printer
};

// From any thread; none of these waits. Functions are called on the screen's thread, once; in any case, unless the screen ends.
class ScreenPrinters {
public:
    virtual void Ask(PrinterQuestion question, std::function<void(std::optional<PrinterChoice>)> answer) = 0;  // none: given up
    // One page, as a PDF file of the sheet's size, in the way that was chosen. The answer is a Win32 code, once the printer's
    // queue has taken it.
    virtual void Print(unsigned choice, std::string document, std::string pdf, std::function<void(DWORD)> answer) = 0;
    virtual void Forget(unsigned choice) = 0;  // which is not needed any more

protected:
    ~ScreenPrinters() = default;
};

ScreenPrinters* ThePrinters();  // null without a screen, or for one that has none

}  // namespace orvik::detail
