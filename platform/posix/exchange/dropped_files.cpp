#include <map>
#include <mutex>

#include "platform/posix/exchange/dropped_files_internal.h"
#include "platform/posix/files/path_internal.h"
#include "platform/posix/text/letters_internal.h"
#include "platform/posix/window/window_internal.h"

namespace orvik::detail {
namespace {
struct Drop {
    std::vector<std::string> names;
    POINT point;
    bool inside;
};
struct Drops {
    std::mutex lock;
    std::map<HDROP, Drop> all;
    ULONG_PTR last = 0;
    static Drops& Get() {
        static Drops* drops = new Drops;
        return *drops;
    }
};
}  // namespace

void PostDrop(HWND window, const std::vector<std::string>& paths, POINT point) {
    RECT client{};
    if (paths.empty() || !GetClientRect(window, &client)) return;
    Drop drop{{}, point, PtInRect(&client, point) != FALSE};
    for (const std::string& path : paths) drop.names.push_back(HousePath(path));
    HDROP handle;
    {
        Drops& drops = Drops::Get();
        const std::lock_guard guard(drops.lock);
        handle = reinterpret_cast<HDROP>(drops.last += 4);
        drops.all.emplace(handle, std::move(drop));
    }
    if (!PostMessageA(window, WM_DROPFILES, reinterpret_cast<WPARAM>(handle), 0)) DragFinish(handle);
}

}  // namespace orvik::detail

using namespace orvik::detail;

void DragAcceptFiles(HWND window, BOOL accept) {
    const LONG_PTR style = GetWindowLongPtrA(window, GWL_EXSTYLE), bit = WS_EX_ACCEPTFILES;
    SetWindowLongPtrA(window, GWL_EXSTYLE, accept ? style | bit : style & ~bit);
    With<int>(window, [](const Window& changed) { return NoteChanged(changed), 0; });
}

UINT DragQueryFileA(HDROP handle, UINT index, LPSTR name, UINT size) {
    Drops& drops = Drops::Get();
    const std::lock_guard guard(drops.lock);
    const auto found = drops.all.find(handle);
    if (found == drops.all.end()) return 0;
    const auto& names = found->second.names;
    if (index == 0xFFFFFFFFu) return static_cast<UINT>(names.size());
    if (index >= names.size()) return 0;
    return static_cast<UINT>(name == nullptr ? names[index].size() : CopyLetters(names[index], name, size));
}

BOOL DragQueryPoint(HDROP handle, POINT* point) {
    Drops& drops = Drops::Get();
    const std::lock_guard guard(drops.lock);
    const auto found = drops.all.find(handle);
    if (found == drops.all.end() || point == nullptr) return FALSE;
    *point = found->second.point;
    return found->second.inside;
}

void DragFinish(HDROP handle) {
    Drops& drops = Drops::Get();
    const std::lock_guard guard(drops.lock);
    drops.all.erase(handle);
}
