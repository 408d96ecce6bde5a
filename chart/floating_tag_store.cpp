// Tags in the property database, in today's layout and an older one.
#include <algorithm>
#include <charconv>
#include <limits>
#include <memory>
#include <vector>

#include "afx/app.h"
#include "afx/wnd.h"
#include "chart/floating_tag.h"
#include "platform/rich_text.h"
#include "propdb/property_db_interface.h"

namespace {

constexpr std::string_view kTagFolder = "Comment #";
constexpr unsigned kNoNumber = std::numeric_limits<unsigned>::max();

// Of a folder that OnDBSet has named.
unsigned NumberOf(std::string_view folder) {
    unsigned number = kNoNumber;
    if (!folder.starts_with(kTagFolder)) return kNoNumber;
    const char* const end = folder.data() + folder.size();
    const auto [stop, error] = std::from_chars(folder.data() + kTagFolder.size(), end, number);
    return stop == end && error == std::errc() ? number : kNoNumber;
}

struct Folder {
    CString name;
    unsigned number;
};

// The child folders of the current folder. They come by their bytes, "Comment #10" before "Comment #2"; the drawing order is that
// of the numbers.
std::vector<Folder> Folders(const IPropertyDB& db) {
    CStringArray names;
    db.Enum("", names, 0, 0);
    std::vector<Folder> folders;
    folders.reserve(static_cast<size_t>(names.GetSize()));
    for (INT_PTR i = 0; i < names.GetSize(); ++i) folders.push_back({names.GetAt(i), NumberOf(names.GetAt(i).GetView())});
    std::stable_sort(folders.begin(), folders.end(), [](const Folder& a, const Folder& b) { return a.number < b.number; });
    return folders;
}

}  // namespace

void CFloatingTagManager::OnDBSet(IPropertyDB* db) const {
    for (const Folder& folder : Folders(*db))
        if (folder.number != kNoNumber) db->Remove(folder.name);
    for (INT_PTR i = 0; i < m_tags.GetSize(); ++i) {
        db->BeginUsingFmt("Comment #%i", static_cast<int>(i));
        GetTag(i)->OnDBSet(db);
        db->EndUsing();
    }
}

void CFloatingTagManager::OnDBGet(IPropertyDB* db) {
    RemoveAllTags();
    for (const Folder& folder : Folders(*db)) {
        auto tag = std::make_unique<CFloatingTag>(this);
        db->BeginUsing(folder.name);
        tag->OnDBGet(db);
        db->EndUsing();
        m_tags.Add(tag.get());
        tag.release();
    }
}

void CFloatingTagManager::OnDBGet_Orvik5(IPropertyDB* db, LPCSTR context) {
    RemoveAllTags();
    const CWnd* const mainWindow = AfxGetMainWnd();
    const orvik::RichTextReader reader(mainWindow != nullptr ? mainWindow->GetSafeHwnd() : nullptr);
    for (const Folder& folder : Folders(*db)) {
        db->BeginUsing(folder.name);
        CString itsContext;
        db->GetValue("sContext", itsContext);
        if (itsContext == "*" || itsContext == context) {
            auto tag = std::make_unique<CFloatingTag>(this);
            tag->OnDBGet(db);
            tag->m_right = tag->m_left;
            tag->m_bottom = tag->m_top;
            if (reader.IsOpen()) tag->m_text = reader.ToPlain(tag->m_text);
            m_tags.Add(tag.get());
            tag.release();
        }
        db->EndUsing();
    }
}
