// The desktop's printers: its question for one, and what is printed.
// Requests come from any thread and are done on the module's.
#pragma once

#include <gtk/gtk.h>

#include <map>

#include "platform/posix/window/screen_print_internal.h"

class GtkScreen;
struct ChosenPrinter;

class GtkPrinters final : public orvik::detail::ScreenPrinters {
public:
    explicit GtkPrinters(GtkScreen& screen);
    ~GtkPrinters();

    void Ask(orvik::detail::PrinterQuestion question,
             std::function<void(std::optional<orvik::detail::PrinterChoice>)> answer) override;
    void Print(unsigned choice, std::string document, std::string pdf, std::function<void(DWORD)> answer) override;
    void Forget(unsigned choice) override;
    // At the module's end, on its thread.
    void Close();

private:
    std::optional<orvik::detail::PrinterChoice> AskNow(const orvik::detail::PrinterQuestion& question);
    orvik::detail::PrinterChoice Keep(GtkWidget* dialog);

    GtkScreen& m_screen;
    std::map<unsigned, ChosenPrinter> m_chosen;
    unsigned m_last = 0;
    GtkPrintSettings* m_settings = nullptr;  // of the question before
    GtkPageSetup* m_setup = nullptr;
};
