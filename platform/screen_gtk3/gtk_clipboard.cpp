#include "platform/screen_gtk3/gtk_clipboard.h"

#include <gtk/gtk.h>

#include <utility>
#include <vector>

using namespace orvik::detail;

namespace {
constexpr const char* kHtml = "text/html";
constexpr const char* kPng = "image/png";
constexpr const char *kUtf8 = "text/plain;charset=utf-8", *kPlain = "text/plain";

struct Offered {
    std::shared_ptr<const CopiedData> data;
    std::function<void()> lost;
};

GtkClipboard* At(CopyPlace place) {
    return gtk_clipboard_get(place == CopyPlace::Clipboard ? GDK_SELECTION_CLIPBOARD : GDK_SELECTION_PRIMARY);
}

bool IsPlainText(GdkAtom target) {
    const auto is = [&](const char* name) { return target == gdk_atom_intern_static_string(name); };
    return is(kUtf8) || is(kPlain);
}

void Give(GtkClipboard*, GtkSelectionData* out, guint form, gpointer given) {
    const CopiedData& data = *static_cast<const Offered*>(given)->data;
    const auto set = [&](const std::string& bytes) {
        gtk_selection_data_set(out, gtk_selection_data_get_target(out), 8, reinterpret_cast<const guchar*>(bytes.data()),
                               static_cast<gint>(bytes.size()));
    };
    switch (static_cast<CopiedForm>(form)) {
        case CopiedForm::Text:
            // The toolkit would write these in the letters of the locale, and lose those that it lacks.
            if (IsPlainText(gtk_selection_data_get_target(out))) return set(data.text);
            gtk_selection_data_set_text(out, data.text.data(), static_cast<gint>(data.text.size()));
            return;
        case CopiedForm::Html:
            return set(data.html);
        case CopiedForm::Picture:
            return set(data.png);
    }
}

void Lost(GtkClipboard*, gpointer given) {
    const std::unique_ptr<Offered> offered(static_cast<Offered*>(given));
    offered->lost();
}

void OfferNow(GtkClipboard* clipboard, std::unique_ptr<Offered> offered) {
    if (offered->data == nullptr) {
        gtk_clipboard_clear(clipboard);
        return;
    }
    GtkTargetList* const list = gtk_target_list_new(nullptr, 0);
    const CopiedData& data = *offered->data;
    // The richest first: some programs take the first that they know.
    if (!data.html.empty())
        gtk_target_list_add(list, gdk_atom_intern_static_string(kHtml), 0, static_cast<guint>(CopiedForm::Html));
    for (const char* name : {kUtf8, "UTF8_STRING", kPlain, "TEXT", "STRING", "COMPOUND_TEXT"})
        if (!data.text.empty())
            gtk_target_list_add(list, gdk_atom_intern_static_string(name), 0, static_cast<guint>(CopiedForm::Text));
    if (!data.png.empty())
        gtk_target_list_add(list, gdk_atom_intern_static_string(kPng), 0, static_cast<guint>(CopiedForm::Picture));
    gint count = 0;
    GtkTargetEntry* const targets = gtk_target_table_new_from_list(list, &count);
    if (count == 0) {
        gtk_clipboard_clear(clipboard);
    } else if (gtk_clipboard_set_with_data(clipboard, targets, static_cast<guint>(count), &Give, &Lost, offered.get())) {
        offered.release();
        gtk_clipboard_set_can_store(clipboard, nullptr, 0);
    }
    gtk_target_table_free(targets, count);
    gtk_target_list_unref(list);
}

template <class Answer>
std::unique_ptr<std::function<void(Answer)>> Taken(gpointer given) {
    return std::unique_ptr<std::function<void(Answer)>>(static_cast<std::function<void(Answer)>*>(given));
}

void TakeForms(GtkClipboard*, GdkAtom* targets, gint count, gpointer given) {
    unsigned forms = 0;
    const auto add = [&](bool there, CopiedForm form) { forms |= there ? static_cast<unsigned>(form) : 0; };
    if (targets != nullptr) {
        add(gtk_targets_include_text(targets, count) != FALSE, CopiedForm::Text);
        for (gint i = 0; i < count; ++i) {
            add(targets[i] == gdk_atom_intern_static_string(kHtml), CopiedForm::Html);
            add(targets[i] == gdk_atom_intern_static_string(kPng), CopiedForm::Picture);
        }
    }
    (*Taken<unsigned>(given))(forms);
}

void TakeText(GtkClipboard*, const gchar* text, gpointer given) { (*Taken<std::string>(given))(text != nullptr ? text : ""); }

void TakeBytes(GtkClipboard*, GtkSelectionData* data, gpointer given) {
    gint length = 0;
    const guchar* const bytes = gtk_selection_data_get_data_with_length(data, &length);
    (*Taken<std::string>(given))(bytes != nullptr && length > 0
                                     ? std::string(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length))
                                     : std::string());
}
}  // namespace

void OnScreenThread(std::function<void()> work) {
    g_idle_add_full(
        G_PRIORITY_DEFAULT,
        +[](gpointer given) -> gboolean {
            const std::unique_ptr<std::function<void()>> taken(static_cast<std::function<void()>*>(given));
            (*taken)();
            return G_SOURCE_REMOVE;
        },
        new std::function<void()>(std::move(work)), nullptr);
}

void GtkClipboards::Offer(CopyPlace place, std::shared_ptr<const CopiedData> data, std::function<void()> lost) {
    OnScreenThread([place, data, lost] { OfferNow(At(place), std::make_unique<Offered>(Offered{data, lost})); });
}

void GtkClipboards::AskForms(CopyPlace place, std::function<void(unsigned)> answer) {
    OnScreenThread(
        [place, answer] { gtk_clipboard_request_targets(At(place), &TakeForms, new std::function<void(unsigned)>(answer)); });
}

void GtkClipboards::Ask(CopyPlace place, CopiedForm form, std::function<void(std::string)> answer) {
    OnScreenThread([place, form, answer] {
        auto* const taker = new std::function<void(std::string)>(answer);
        if (form == CopiedForm::Text)
            gtk_clipboard_request_text(At(place), &TakeText, taker);
        else
            gtk_clipboard_request_contents(At(place), gdk_atom_intern_static_string(form == CopiedForm::Html ? kHtml : kPng),
                                           &TakeBytes, taker);
    });
}

void GtkClipboards::Store() { gtk_clipboard_store(At(CopyPlace::Clipboard)); }
