// The desktop's questions for a file: its portal's where there is one, else GTK's own.
#include <sstream>

#include "platform/screen_gtk3/gtk_screen.h"

using namespace orvik::detail;

namespace {
constexpr guint kFarewell = 1000;  // ms

struct Asked {
    GtkScreen& screen;
    FileQuestion question;
    FileAnswer answer;
};

void AddKinds(GtkFileChooser* chooser, const FileQuestion& question) {
    for (size_t i = 0; i < question.kinds.size(); ++i) {
        GtkFileFilter* const filter = gtk_file_filter_new();
        gtk_file_filter_set_name(filter, question.kinds[i].name.c_str());
        std::istringstream patterns(question.kinds[i].patterns);
        for (std::string pattern; std::getline(patterns, pattern, ';');)
            gtk_file_filter_add_pattern(filter, pattern == "*.*" ? "*" : pattern.c_str());
        gtk_file_chooser_add_filter(chooser, filter);
        if (i == question.kind) gtk_file_chooser_set_filter(chooser, filter);
    }
}

// Kinds have the order in which they were added.
std::optional<size_t> KindChosen(GtkFileChooser* chooser) {
    GSList* const filters = gtk_file_chooser_list_filters(chooser);
    const gint place = g_slist_index(filters, gtk_file_chooser_get_filter(chooser));
    g_slist_free(filters);
    return place >= 0 ? std::optional(static_cast<size_t>(place)) : std::nullopt;
}

void Ask(const Asked& asked) {
    const FileQuestion& question = asked.question;
    ScreenWindow* const owner = asked.screen.Find(question.owner);
    GtkFileChooserNative* const dialog = gtk_file_chooser_native_new(
        question.title.empty() ? nullptr : question.title.c_str(), owner != nullptr ? GTK_WINDOW(owner->Widget()) : nullptr,
        question.save ? GTK_FILE_CHOOSER_ACTION_SAVE : GTK_FILE_CHOOSER_ACTION_OPEN, nullptr, nullptr);
    GtkFileChooser* const chooser = GTK_FILE_CHOOSER(dialog);
    gtk_native_dialog_set_modal(GTK_NATIVE_DIALOG(dialog), TRUE);
    gtk_file_chooser_set_do_overwrite_confirmation(chooser, question.confirm);
    AddKinds(chooser, question);
    if (!question.folder.empty()) gtk_file_chooser_set_current_folder(chooser, question.folder.c_str());
    if (question.save && !question.name.empty()) {
        gchar* const shown = g_filename_display_name(question.name.c_str());
        gtk_file_chooser_set_current_name(chooser, shown);
        g_free(shown);
    }
    // Its own loop, in which the screen goes on: windows are painted and followed meanwhile.
    const gint response = gtk_native_dialog_run(GTK_NATIVE_DIALOG(dialog));
    std::optional<FileChoice> choice;
    if (gchar* const name = response == GTK_RESPONSE_ACCEPT ? gtk_file_chooser_get_filename(chooser) : nullptr) {
        choice = FileChoice{name, KindChosen(chooser).value_or(question.kind)};
        g_free(name);
    }
    // The key that ended it is still to be let go, and nothing that is gone can be told of that.
    g_timeout_add(
        kFarewell,
        +[](gpointer done) -> gboolean {
            g_object_unref(done);
            return G_SOURCE_REMOVE;
        },
        dialog);
    asked.answer(choice);
}
}  // namespace

void GtkScreen::AskForFile(FileQuestion question, FileAnswer answer) {
    g_idle_add_full(
        G_PRIORITY_DEFAULT,
        +[](gpointer given) -> gboolean {
            const std::unique_ptr<Asked> asked(static_cast<Asked*>(given));
            Ask(*asked);
            return G_SOURCE_REMOVE;
        },
        new Asked{*this, std::move(question), std::move(answer)}, nullptr);
}
