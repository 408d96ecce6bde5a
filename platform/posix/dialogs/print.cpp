// Printing by the desktop's printers: the page is a PDF file of the sheet's size, which a screen hands to them.
#include "platform/file_replacement.h"
#include "platform/house_text_internal.h"
#include "platform/picture_internal.h"
#include "platform/posix/dialogs/screen_answer_internal.h"
#include "platform/posix/files/path_internal.h"
#include "platform/posix/window/screen_internal.h"
#include "platform/vector_sink_internal.h"

namespace orvik::detail {
namespace {
constexpr DWORD kLongest = 60'000;  // ms for a printer's queue

class PdfJob final : public PrintJob {
public:
    PdfJob(HWND owner, std::string document, ScreenPrinters& printers, PrinterChoice choice, const SheetRoom& room)
        : m_owner(owner),
          m_document(std::move(document)),
          m_printers(printers),
          m_choice(std::move(choice)),
          m_target(
              MakeSheetTarget(room.size.cx, room.size.cy, {m_choice.sheet.width, m_choice.sheet.height, room.left, room.top})) {}
    ~PdfJob() override { m_printers.Forget(m_choice.number); }
    HDC Dc() const override { return m_target != nullptr ? m_target->Dc() : nullptr; }

    DWORD Send() override {
        std::string pdf;
        if (const DWORD unfinished = m_target->Finish(pdf)) return unfinished;
        if (!m_choice.file.empty()) return ReplaceWholeFile(HousePath(m_choice.file), pdf);
        const Asking owner(m_owner);
        const ScreenAnswer<DWORD> answer;
        m_printers.Print(m_choice.number, m_document, std::move(pdf), answer.Taker());
        return answer.Wait(kLongest).value_or(ERROR_TIMEOUT);
    }

private:
    HWND m_owner;
    std::string m_document;
    ScreenPrinters& m_printers;
    PrinterChoice m_choice;
    std::unique_ptr<PictureTarget> m_target;
};
}  // namespace

std::unique_ptr<PrintJob> AskForPrint(HWND owner, const std::string& document, SIZE& page, DWORD& error) {
    ScreenPrinters* const printers = OpenScreenNow() ? ThePrinters() : nullptr;
    if (printers == nullptr) {
        error = ERROR_NOT_SUPPORTED;
        return nullptr;
    }
    const std::string name = Utf8FromHouse(document);
    std::optional<PrinterChoice> choice;
    {
        const Asking asking(owner);
        const ScreenAnswer<std::optional<PrinterChoice>> answer;
        printers->Ask({asking.Root(), name}, answer.Taker());
        choice = answer.Wait().value_or(std::nullopt);
    }
    error = kGivenUp;
    if (!choice) return nullptr;
    const SheetRoom room = RoomOn(choice->sheet);
    auto job = std::make_unique<PdfJob>(owner, name, *printers, std::move(*choice), room);
    error = ERROR_NOT_ENOUGH_MEMORY;
    if (job->Dc() == nullptr) return nullptr;
    page = room.size;
    return job;
}

}  // namespace orvik::detail
