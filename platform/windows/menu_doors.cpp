// Menus, message boxes and the questions for files.
#include "platform/windows/door_text_internal.h"

#include <vector>

using namespace orvik::detail;

namespace {
// A menu item's text; pictures and data of the owner are none.
class ItemText {
public:
    ItemText(UINT flags, LPCSTR text)
        : m_given(reinterpret_cast<LPCWSTR>(text)),
          m_text((flags & (MF_BITMAP | MF_OWNERDRAW | MF_SEPARATOR)) == 0 ? text : nullptr) {}
    operator LPCWSTR() const { return m_text != nullptr ? m_text : m_given; }

private:
    LPCWSTR m_given;
    WideArgument m_text;
};

// Texts one behind another, with one 0 after each and two after the last.
std::wstring WideList(LPCSTR texts) {
    if (texts == nullptr) return {};
    std::string_view each(texts);
    std::wstring wide;
    for (; !each.empty(); each = each.data() + each.size() + 1) wide += WideText(each) + L'\0';
    return wide + L'\0';
}

BOOL AskFile(BOOL(WINAPI* ask)(LPOPENFILENAMEW), OPENFILENAMEA& question) {
    OPENFILENAMEW wide{};
    wide.lStructSize = sizeof wide;
    wide.hwndOwner = question.hwndOwner;
    wide.hInstance = question.hInstance;
    const std::wstring kinds = WideList(question.lpstrFilter);
    wide.lpstrFilter = question.lpstrFilter != nullptr ? kinds.c_str() : nullptr;
    wide.nFilterIndex = question.nFilterIndex;
    std::vector<wchar_t> path(question.nMaxFile + 1);
    WideText(question.lpstrFile).copy(path.data(), question.nMaxFile);
    wide.lpstrFile = path.data();
    wide.nMaxFile = question.nMaxFile;
    const WideArgument folder(question.lpstrInitialDir), title(question.lpstrTitle), extension(question.lpstrDefExt);
    wide.lpstrInitialDir = folder;
    wide.lpstrTitle = title;
    wide.lpstrDefExt = extension;
    wide.Flags = question.Flags;
    if (!ask(&wide)) return FALSE;
    question.nFilterIndex = wide.nFilterIndex;
    question.Flags = wide.Flags;
    // A path that is cut would be another file's.
    if (NarrowLength(path.data()) >= question.nMaxFile) return FALSE;
    PutCut(path.data(), question.lpstrFile, static_cast<int>(question.nMaxFile));
    const std::string_view whole(question.lpstrFile);
    const size_t name = whole.find_last_of('\\') + 1, end = whole.find_last_of('.');
    question.nFileOffset = static_cast<WORD>(name);
    question.nFileExtension = static_cast<WORD>(end == whole.npos || end < name ? 0 : end + 1);
    return TRUE;
}
// What this door carries: one file, by the system's own dialog.
bool IsPlain(const OPENFILENAMEA& question) {
    return (question.Flags & (OFN_ALLOWMULTISELECT | OFN_ENABLEHOOK | OFN_ENABLETEMPLATE | OFN_ENABLETEMPLATEHANDLE)) == 0 &&
           question.lpstrCustomFilter == nullptr && question.lpstrFileTitle == nullptr && question.lpstrFile != nullptr;
}
}  // namespace

BOOL WINAPI OrvikAppendMenuA(HMENU menu, UINT flags, UINT_PTR id, LPCSTR text) {
    return HouseIsUtf8() ? AppendMenuW(menu, flags, id, ItemText(flags, text)) : AppendMenuA(menu, flags, id, text);
}

BOOL WINAPI OrvikInsertMenuA(HMENU menu, UINT position, UINT flags, UINT_PTR id, LPCSTR text) {
    return HouseIsUtf8() ? InsertMenuW(menu, position, flags, id, ItemText(flags, text))
                         : InsertMenuA(menu, position, flags, id, text);
}

BOOL WINAPI OrvikModifyMenuA(HMENU menu, UINT position, UINT flags, UINT_PTR id, LPCSTR text) {
    return HouseIsUtf8() ? ModifyMenuW(menu, position, flags, id, ItemText(flags, text))
                         : ModifyMenuA(menu, position, flags, id, text);
}

int WINAPI OrvikGetMenuStringA(HMENU menu, UINT item, LPSTR out, int size, UINT flags) {
    if (!HouseIsUtf8()) return GetMenuStringA(menu, item, out, size, flags);
    const int length = GetMenuStringW(menu, item, nullptr, 0, flags);
    if (length <= 0) {
        if (out != nullptr && size > 0) *out = 0;
        return length;
    }
    std::wstring text(static_cast<size_t>(length) + 1, L'\0');
    text.resize(static_cast<size_t>(GetMenuStringW(menu, item, text.data(), length + 1, flags)));
    return out == nullptr || size == 0 ? static_cast<int>(NarrowLength(text)) : PutCut(text, out, size);
}

int WINAPI OrvikMessageBoxA(HWND owner, LPCSTR text, LPCSTR caption, UINT kind) {
    return HouseIsUtf8() ? MessageBoxW(owner, WideArgument(text), WideArgument(caption), kind)
                         : MessageBoxA(owner, text, caption, kind);
}

BOOL WINAPI OrvikGetOpenFileNameA(LPOPENFILENAMEA question) {
    return HouseIsUtf8() && IsPlain(*question) ? AskFile(GetOpenFileNameW, *question) : GetOpenFileNameA(question);
}

BOOL WINAPI OrvikGetSaveFileNameA(LPOPENFILENAMEA question) {
    return HouseIsUtf8() && IsPlain(*question) ? AskFile(GetSaveFileNameW, *question) : GetSaveFileNameA(question);
}
