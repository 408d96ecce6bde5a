// What the homes give to printing. Internal; the user-interface thread.
#pragma once

#include <memory>
#include <string>

#include "platform/print.h"

namespace orvik::detail {

// A page under way: its DC, and what becomes of it. Its end ends the DC.
class PrintJob {
public:
    virtual ~PrintJob() = default;
    virtual HDC Dc() const = 0;
    virtual DWORD Send() = 0;  // once; a Win32 code, or kGivenUp
};
inline constexpr DWORD kGivenUp = 0xFFFFFFFF;  // by the user: no error, and nothing printed

// Asks the user. Null with a Win32 code, or kGivenUp.
std::unique_ptr<PrintJob> AskForPrint(HWND owner, const std::string& document, SIZE& page, DWORD& error);

bool IsPrintJob(HDC dc);

// In points, which are 1/72 inch.
struct Sheet {
    double width = 0, height = 0;
    double left = 0, top = 0, right = 0, bottom = 0;  // where the printer cannot print
};
// What is left within the margins: its corner in points, its size in 1/96 inch.
struct SheetRoom {
    double left = 0, top = 0;
    SIZE size{};
};
SheetRoom RoomOn(const Sheet& sheet);

}  // namespace orvik::detail
