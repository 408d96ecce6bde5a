// The question is GTK's own; a page is handed to the chosen printer as a PDF file. One that is printed to a file of this machine
// is left to the library, which replaces files as a whole.
#include "platform/screen_gtk3/gtk_print.h"

#include <gtk/gtkunixprint.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

#include "platform/screen_gtk3/gtk_screen.h"

using namespace orvik::detail;

namespace {
constexpr guint kPrintFarewell = 1000;  // ms

template <class Object>
class Held {
public:
    explicit Held(Object* own = nullptr) : m_object(own) {}
    Held(Held&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    Held& operator=(Held&& other) noexcept {
        std::swap(m_object, other.m_object);
        return *this;
    }
    ~Held() {
        if (m_object != nullptr) g_object_unref(m_object);
    }
    operator Object*() const { return m_object; }

private:
    Object* m_object;
};

// What a job needs while it is on its way.
struct Sent {
    int file;
    std::function<void(DWORD)> answer;
};

DWORD CodeOf(const GError* error) {
    if (error == nullptr) return ERROR_SUCCESS;
    constexpr struct {
        GIOErrorEnum error;
        DWORD code;
    } kCodes[] = {{G_IO_ERROR_NO_SPACE, ERROR_DISK_FULL},           {G_IO_ERROR_PERMISSION_DENIED, ERROR_ACCESS_DENIED},
                  {G_IO_ERROR_READ_ONLY, ERROR_WRITE_PROTECT},      {G_IO_ERROR_NOT_FOUND, ERROR_PATH_NOT_FOUND},
                  {G_IO_ERROR_NOT_DIRECTORY, ERROR_PATH_NOT_FOUND}, {G_IO_ERROR_HOST_NOT_FOUND, kOrvikNoPrinter},
                  {G_IO_ERROR_CONNECTION_REFUSED, kOrvikNoPrinter}};
    for (const auto& [kind, code] : kCodes)
        if (g_error_matches(error, G_IO_ERROR, kind)) return code;
    return ERROR_GEN_FAILURE;
}

// In memory, under no name: nothing of it is left behind, however the program ends.
int FileOf(const std::string& content) {
    const int file = memfd_create("page", MFD_CLOEXEC);
    for (size_t written = 0; file >= 0 && written < content.size();) {
        const ssize_t part = write(file, content.data() + written, content.size() - written);
        if (part <= 0) {
            close(file);
            return -1;
        }
        written += static_cast<size_t>(part);
    }
    return file;
}

// A file's name for a document: without its folder and its kind.
std::string FileNameFor(const std::string& document) {
    std::string name = document.substr(0, document.find_last_of('.'));
    std::replace(name.begin(), name.end(), '/', '-');
    return name.empty() ? "output" : name;
}

// The sides of a landscape page: the sheet may be turned either way.
Sheet SheetOf(GtkPrinter* printer, GtkPageSetup* setup) {
    Sheet sheet;
    sheet.width = gtk_page_setup_get_paper_width(setup, GTK_UNIT_POINTS);
    sheet.height = gtk_page_setup_get_paper_height(setup, GTK_UNIT_POINTS);
    double top = 0, bottom = 0, left = 0, right = 0;
    if (gtk_printer_get_hard_margins(printer, &top, &bottom, &left, &right)) {
        if (sheet.width > sheet.height) {
            std::swap(top, left);
            std::swap(bottom, right);
        }
        sheet.left = sheet.right = std::max(left, right);
        sheet.top = sheet.bottom = std::max(top, bottom);
    }
    return sheet;
}
}  // namespace

struct ChosenPrinter {
    Held<GtkPrinter> printer;
    Held<GtkPrintSettings> settings;
    Held<GtkPageSetup> setup;
};

GtkPrinters::GtkPrinters(GtkScreen& screen) : m_screen(screen) {}
GtkPrinters::~GtkPrinters() = default;

void GtkPrinters::Close() {
    m_chosen.clear();
    g_clear_object(&m_settings);
    g_clear_object(&m_setup);
}

void GtkPrinters::Ask(PrinterQuestion question, std::function<void(std::optional<PrinterChoice>)> answer) {
    OnScreenThread([this, question = std::move(question), answer = std::move(answer)] { answer(AskNow(question)); });
}

std::optional<PrinterChoice> GtkPrinters::AskNow(const PrinterQuestion& question) {
    if (m_settings == nullptr) {
        m_settings = gtk_print_settings_new();
        m_setup = gtk_page_setup_new();
        gtk_page_setup_set_orientation(m_setup, GTK_PAGE_ORIENTATION_LANDSCAPE);  // as charts are
        gtk_print_settings_set_orientation(m_settings, GTK_PAGE_ORIENTATION_LANDSCAPE);
    }
    // Another document, another file: in the same folder.
    if (const gchar* const before = gtk_print_settings_get(m_settings, GTK_PRINT_SETTINGS_OUTPUT_URI)) {
        gchar* const folder = g_path_get_dirname(before);
        gchar* const path = g_filename_from_uri(folder, nullptr, nullptr);
        if (path != nullptr) gtk_print_settings_set(m_settings, GTK_PRINT_SETTINGS_OUTPUT_DIR, path);
        g_free(path);
        g_free(folder);
        gtk_print_settings_unset(m_settings, GTK_PRINT_SETTINGS_OUTPUT_URI);
    }
    gtk_print_settings_set(m_settings, GTK_PRINT_SETTINGS_OUTPUT_BASENAME, FileNameFor(question.document).c_str());

    ScreenWindow* const owner = m_screen.Find(question.owner);
    GtkWidget* const dialog = gtk_print_unix_dialog_new(nullptr, owner != nullptr ? GTK_WINDOW(owner->Widget()) : nullptr);
    g_object_ref(dialog);
    GtkPrintUnixDialog* const asking = GTK_PRINT_UNIX_DIALOG(dialog);
    gtk_print_unix_dialog_set_manual_capabilities(asking, GTK_PRINT_CAPABILITY_GENERATE_PDF);
    gtk_print_unix_dialog_set_embed_page_setup(asking, TRUE);
    gtk_print_unix_dialog_set_settings(asking, m_settings);
    gtk_print_unix_dialog_set_page_setup(asking, m_setup);
    // Its own loop, in which the screen goes on: windows are painted and followed meanwhile.
    const gint response = gtk_dialog_run(GTK_DIALOG(dialog));
    std::optional<PrinterChoice> choice;
    if (response == GTK_RESPONSE_OK && gtk_print_unix_dialog_get_selected_printer(asking) != nullptr) choice = Keep(dialog);
    gtk_widget_hide(dialog);
    // The key that ended it is still to be let go, and nothing that is gone can be told of that.
    g_timeout_add(
        kPrintFarewell,
        +[](gpointer done) -> gboolean {
            gtk_widget_destroy(GTK_WIDGET(done));
            g_object_unref(done);
            return G_SOURCE_REMOVE;
        },
        dialog);
    return choice;
}

PrinterChoice GtkPrinters::Keep(GtkWidget* dialog) {
    GtkPrintUnixDialog* const asked = GTK_PRINT_UNIX_DIALOG(dialog);
    GtkPrinter* const printer = gtk_print_unix_dialog_get_selected_printer(asked);
    g_object_unref(m_settings);
    g_object_unref(m_setup);
    m_settings = gtk_print_unix_dialog_get_settings(asked);
    m_setup = gtk_page_setup_copy(gtk_print_unix_dialog_get_page_setup(asked));
    gtk_print_settings_set_print_pages(m_settings, GTK_PRINT_PAGES_ALL);  // there is but one
    gtk_print_settings_unset(m_settings, GTK_PRINT_SETTINGS_PAGE_RANGES);
    PrinterChoice choice;
    choice.number = ++m_last;
    choice.sheet = SheetOf(printer, m_setup);
    const gchar* const uri = gtk_print_settings_get(m_settings, GTK_PRINT_SETTINGS_OUTPUT_URI);
    if (gtk_printer_is_virtual(printer) && uri != nullptr) {
        gchar* const path = g_filename_from_uri(uri, nullptr, nullptr);
        if (path != nullptr) choice.file = path;
        g_free(path);
    }
    m_chosen[choice.number] = {Held(GTK_PRINTER(g_object_ref(printer))), Held(gtk_print_settings_copy(m_settings)),
                               Held(gtk_page_setup_copy(m_setup))};
    return choice;
}

void GtkPrinters::Print(unsigned choice, std::string document, std::string pdf, std::function<void(DWORD)> answer) {
    OnScreenThread([this, choice, document = std::move(document), pdf = std::move(pdf), answer = std::move(answer)] {
        const auto chosen = m_chosen.find(choice);
        if (chosen == m_chosen.end()) return answer(kOrvikNoPrinter);
        const ChosenPrinter& use = chosen->second;
        if (!gtk_printer_is_active(use.printer)) return answer(kOrvikNoPrinter);
        const Held<GtkPrintJob> job(gtk_print_job_new(document.c_str(), use.printer, use.settings, use.setup));
        const int file = FileOf(pdf);
        if (file < 0) return answer(ERROR_NOT_ENOUGH_MEMORY);
        GError* error = nullptr;
        if (!gtk_print_job_set_source_fd(job, file, &error)) {
            answer(error != nullptr ? CodeOf(error) : ERROR_GEN_FAILURE);
            g_clear_error(&error);
            close(file);
            return;
        }
        gtk_print_job_send(
            job, +[](GtkPrintJob*, gpointer sent, const GError* failed) { static_cast<Sent*>(sent)->answer(CodeOf(failed)); },
            new Sent{file, answer},
            +[](gpointer sent) {
                close(static_cast<Sent*>(sent)->file);
                delete static_cast<Sent*>(sent);
            });
    });
}

void GtkPrinters::Forget(unsigned choice) {
    OnScreenThread([this, choice] { m_chosen.erase(choice); });
}
