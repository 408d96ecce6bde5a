// Printing by the system's dialog and spooler. The page is recorded as pictures are, and drawn in the printer's own dots at its
// end.
#include "platform/windows/door_text_internal.h"

#include <commdlg.h>
#include <winspool.h>

#include <utility>

#include "platform/print_internal.h"
#include "platform/windows/metafile_internal.h"
#include "platform/windows/printer_sink_internal.h"

namespace orvik::detail {
namespace {
// What was chosen last, for the next question. The user-interface thread.
HGLOBAL g_device = nullptr, g_names = nullptr;

DWORD CodeOf(DWORD dialogError) {
    switch (dialogError) {
        case 0:
            return kGivenUp;
        case PDERR_NODEFAULTPRN:
        case PDERR_NODEVICES:
        case PDERR_PRINTERNOTFOUND:
        case PDERR_DEFAULTDIFFERENT:
            return kOrvikNoPrinter;
        case CDERR_MEMALLOCFAILURE:
        case CDERR_MEMLOCKFAILURE:
            return ERROR_NOT_ENOUGH_MEMORY;
        default:
            return ERROR_GEN_FAILURE;
    }
}

// The spooler's last error after a call that has failed.
DWORD SpoolError() {
    switch (const DWORD error = GetLastError()) {
        case ERROR_CANCELLED:
        case ERROR_PRINT_CANCELLED:
            return kGivenUp;
        case ERROR_INVALID_PRINTER_NAME:
        case kOrvikNoPrinter:
        case ERROR_UNKNOWN_PORT:
            return kOrvikNoPrinter;
        case ERROR_SUCCESS:
            return ERROR_GEN_FAILURE;
        default:
            return error;
    }
}

// The dialog would stand there with nothing to choose.
bool HasPrinter() {
    DWORD size = 0, count = 0;
    constexpr DWORD kNames = 4;  // what of each is asked: the cheapest
    EnumPrintersW(PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS, nullptr, kNames, nullptr, 0, &size, &count);
    return size > 0;
}

// The default printer with its sheet turned as charts lie; nothing without one.
void ChooseFirst() {
    PRINTDLGW ask{};
    ask.lStructSize = sizeof ask;
    ask.Flags = PD_RETURNDEFAULT | PD_NOWARNING;
    if (!PrintDlgW(&ask)) return;
    g_device = ask.hDevMode;
    g_names = ask.hDevNames;
    auto* const settings = g_device != nullptr ? static_cast<DEVMODEW*>(GlobalLock(g_device)) : nullptr;
    if (settings == nullptr) return;
    settings->dmOrientation = DMORIENT_LANDSCAPE;
    settings->dmFields |= DM_ORIENTATION;
    GlobalUnlock(g_device);
}

class PrinterJob final : public PrintJob {
public:
    PrinterJob(HDC printer, const std::string& document) : m_printer(printer), m_document(WideText(document)) {
        const auto points = [&](int index, int dots) { return GetDeviceCaps(printer, index) * 72.0 / dots; };
        const int across = GetDeviceCaps(printer, LOGPIXELSX), along = GetDeviceCaps(printer, LOGPIXELSY);
        if (across <= 0 || along <= 0) return;
        Sheet sheet;
        sheet.width = points(PHYSICALWIDTH, across), sheet.height = points(PHYSICALHEIGHT, along);
        sheet.left = points(PHYSICALOFFSETX, across), sheet.top = points(PHYSICALOFFSETY, along);
        sheet.right = sheet.width - sheet.left - points(HORZRES, across);
        sheet.bottom = sheet.height - sheet.top - points(VERTRES, along);
        m_room = RoomOn(sheet);
        // Its origin is where it can begin to print.
        m_scale = {(m_room.left - sheet.left) * across / 72, (m_room.top - sheet.top) * along / 72, across / 96.0, along / 96.0};
        m_dc = CreateEnhMetaFileW(nullptr, nullptr, nullptr, nullptr);
        if (m_dc != nullptr) IntersectClipRect(m_dc, 0, 0, m_room.size.cx, m_room.size.cy);
    }
    ~PrinterJob() override {
        if (m_dc != nullptr) DeleteEnhMetaFile(CloseEnhMetaFile(m_dc));
        DeleteDC(m_printer);
    }
    HDC Dc() const override { return m_dc; }
    SIZE Page() const { return m_room.size; }

    DWORD Send() override {
        const HENHMETAFILE page = CloseEnhMetaFile(m_dc);
        m_dc = nullptr;
        if (page == nullptr) return ERROR_NOT_ENOUGH_MEMORY;
        const DWORD error = Print(page);
        DeleteEnhMetaFile(page);
        return error;
    }

private:
    DWORD Print(HENHMETAFILE page) const {
        DOCINFOW info{};
        info.cbSize = sizeof info;
        info.lpszDocName = m_document.c_str();
        SetLastError(ERROR_SUCCESS);
        if (StartDocW(m_printer, &info) <= 0) return SpoolError();
        DWORD error = ERROR_SUCCESS;
        if (StartPage(m_printer) <= 0) {
            error = SpoolError();
        } else {
            error = DrawMetafile(page, *MakePrinterSink(m_printer, m_room.size.cx, m_room.size.cy, m_scale));
            if (error == ERROR_SUCCESS && EndPage(m_printer) <= 0) error = SpoolError();
        }
        if (error == ERROR_SUCCESS) return EndDoc(m_printer) > 0 ? ERROR_SUCCESS : SpoolError();
        AbortDoc(m_printer);
        return error;
    }

    HDC m_printer;
    std::wstring m_document;
    SheetRoom m_room;
    PrinterScale m_scale{};
    HDC m_dc = nullptr;
};
}  // namespace

std::unique_ptr<PrintJob> AskForPrint(HWND owner, const std::string& document, SIZE& page, DWORD& error) {
    if (!HasPrinter()) {
        error = kOrvikNoPrinter;
        return nullptr;
    }
    if (g_device == nullptr) ChooseFirst();
    PRINTDLGW ask{};
    ask.lStructSize = sizeof ask;
    ask.hwndOwner = owner != nullptr ? GetAncestor(owner, GA_ROOT) : nullptr;
    ask.hDevMode = g_device;
    ask.hDevNames = g_names;
    ask.nCopies = 1;
    ask.Flags = PD_RETURNDC | PD_NOPAGENUMS | PD_NOSELECTION | PD_USEDEVMODECOPIESANDCOLLATE | PD_NOWARNING;
    const BOOL chosen = PrintDlgW(&ask);
    error = chosen ? ERROR_SUCCESS : CodeOf(CommDlgExtendedError());
    // It may have taken others in their place, also when it was given up.
    g_device = ask.hDevMode;
    g_names = ask.hDevNames;
    if (chosen && ask.hDC == nullptr) error = kOrvikNoPrinter;
    if (error == kOrvikNoPrinter) {
        // The one of last time may be gone: the next question begins anew.
        GlobalFree(std::exchange(g_device, nullptr));
        GlobalFree(std::exchange(g_names, nullptr));
    }
    if (error != ERROR_SUCCESS) return nullptr;
    auto job = std::make_unique<PrinterJob>(ask.hDC, document);
    error = ERROR_GEN_FAILURE;
    if (job->Dc() == nullptr) return nullptr;
    page = job->Page();
    return job;
}

}  // namespace orvik::detail
