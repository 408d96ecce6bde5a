// Menus as they are kept: their items, what these say and whether they can be chosen.
#include <algorithm>
#include <map>
#include <mutex>

#include "platform/posix/dialogs/menu_internal.h"
#include "platform/posix/kernel/handle_table_internal.h"
#include "platform/posix/text/letters_internal.h"

namespace {
using Item = orvik::detail::MenuItem;

constexpr UINT kStates = MF_GRAYED | MF_DISABLED | MF_CHECKED | MF_HILITE | MF_DEFAULT;
constexpr UINT kTypes = MF_BITMAP | MF_MENUBARBREAK | MF_MENUBREAK | MF_OWNERDRAW | MF_SEPARATOR | MFT_RADIOCHECK;
constexpr size_t kMostItems = 0x7FFF;
constexpr int kDeepest = 25;  // as many levels as anybody can open

struct Menu {
    bool popup = false;
    std::vector<Item> items;
};

// All menus have one lock: whoever changes one is a window's thread, and quick.
struct Menus {
    std::mutex lock;
    std::map<HMENU, Menu> made;
    uintptr_t last = 0x20000;
};
Menus& TheMenus() {
    static Menus* menus = new Menus;
    return *menus;
}

HMENU NewMenu(bool popup) {
    Menus& menus = TheMenus();
    const std::lock_guard lock(menus.lock);
    const auto handle = reinterpret_cast<HMENU>(menus.last += 2);
    menus.made[handle].popup = popup;
    return handle;
}

Menu* FindMenu(HMENU handle) {
    Menus& menus = TheMenus();
    const auto found = menus.made.find(handle);
    return found == menus.made.end() ? nullptr : &found->second;
}

// The item that a position or a command names, the menu or a submenu holding it; null, with error 1456, for none.
Item* FindItem(HMENU handle, UINT item, UINT flags, HMENU* holder = nullptr, size_t* at = nullptr, int depth = 0) {
    Menu* menu = FindMenu(handle);
    if (menu == nullptr) {
        SetLastError(ERROR_INVALID_MENU_HANDLE);
        return nullptr;
    }
    const auto found = [&](size_t index) {
        if (holder != nullptr) *holder = handle;
        if (at != nullptr) *at = index;
        return &menu->items[index];
    };
    if ((flags & MF_BYPOSITION) != 0) {
        if (item < menu->items.size()) return found(item);
        SetLastError(ERROR_MENU_ITEM_NOT_FOUND);
        return nullptr;
    }
    for (size_t i = 0; i < menu->items.size(); ++i) {
        Item& each = menu->items[i];
        if (each.submenu == nullptr && each.id == item) return found(i);
        if (each.submenu == nullptr || depth == kDeepest || FindMenu(each.submenu) == nullptr) continue;
        if (Item* below = FindItem(each.submenu, item, flags, holder, at, depth + 1)) return below;
    }
    SetLastError(ERROR_MENU_ITEM_NOT_FOUND);
    return nullptr;
}

Item MakeItem(UINT flags, UINT_PTR id, LPCSTR text) {
    Item item;
    item.type = flags & kTypes;
    item.state = flags & kStates;
    item.id = id;
    if ((flags & MF_POPUP) != 0) item.submenu = reinterpret_cast<HMENU>(id);
    if ((flags & MF_OWNERDRAW) != 0)
        item.data = reinterpret_cast<ULONG_PTR>(text);
    else if ((flags & (MF_BITMAP | MF_SEPARATOR)) == 0 && text != nullptr)
        item.text = text;
    if (item.text.empty() && text == nullptr && (flags & (MF_BITMAP | MF_OWNERDRAW | MF_POPUP)) == 0) item.type |= MF_SEPARATOR;
    return item;
}

BOOL Insert(HMENU handle, UINT position, UINT flags, Item item) {
    Menus& menus = TheMenus();
    const std::lock_guard lock(menus.lock);
    Menu* menu = FindMenu(handle);
    if (menu == nullptr || (item.submenu != nullptr && FindMenu(item.submenu) == nullptr))
        return orvik::detail::Finish(ERROR_INVALID_MENU_HANDLE);
    if (menu->items.size() >= kMostItems) return orvik::detail::Finish(ERROR_NOT_ENOUGH_MEMORY);
    size_t at = menu->items.size();
    HMENU holder = handle;
    if ((flags & MF_BYPOSITION) != 0)
        at = std::min<size_t>(position, at);
    else if (FindItem(handle, position, flags, &holder, &at) != nullptr)
        menu = FindMenu(holder);
    menu->items.insert(menu->items.begin() + static_cast<ptrdiff_t>(at), std::move(item));
    return TRUE;
}

// Menus below, each once; a menu that holds itself does no harm.
void Collect(HMENU handle, std::vector<HMENU>& list) {
    list.push_back(handle);
    for (size_t i = 0; i < list.size(); ++i) {
        const Menu* menu = FindMenu(list[i]);
        if (menu == nullptr) continue;
        for (const Item& item : menu->items) {
            if (item.submenu != nullptr && std::find(list.begin(), list.end(), item.submenu) == list.end())
                list.push_back(item.submenu);
        }
    }
}
}  // namespace

using orvik::detail::Finish;

std::vector<orvik::detail::MenuItem> orvik::detail::MenuItemsOf(HMENU handle) {
    const std::lock_guard lock(TheMenus().lock);
    const Menu* menu = FindMenu(handle);
    return menu == nullptr ? std::vector<MenuItem>() : menu->items;
}

HMENU CreateMenu() { return NewMenu(false); }
HMENU CreatePopupMenu() { return NewMenu(true); }

BOOL IsMenu(HMENU menu) {
    const std::lock_guard lock(TheMenus().lock);
    return FindMenu(menu) != nullptr;
}

BOOL DestroyMenu(HMENU menu) {
    Menus& menus = TheMenus();
    const std::lock_guard lock(menus.lock);
    if (FindMenu(menu) == nullptr) return Finish(ERROR_INVALID_MENU_HANDLE);
    std::vector<HMENU> gone;
    Collect(menu, gone);
    for (const HMENU each : gone) menus.made.erase(each);
    return TRUE;
}

BOOL AppendMenuA(HMENU menu, UINT flags, UINT_PTR id, LPCSTR text) {
    return Insert(menu, 0xFFFFFFFFu, flags | MF_BYPOSITION, MakeItem(flags, id, text));
}

BOOL InsertMenuA(HMENU menu, UINT position, UINT flags, UINT_PTR id, LPCSTR text) {
    return Insert(menu, position, flags, MakeItem(flags, id, text));
}

BOOL ModifyMenuA(HMENU menu, UINT position, UINT flags, UINT_PTR id, LPCSTR text) {
    const std::lock_guard lock(TheMenus().lock);
    Item* item = FindItem(menu, position, flags);
    if (item == nullptr) return FALSE;
    *item = MakeItem(flags, id, text);
    return TRUE;
}

BOOL RemoveMenu(HMENU menu, UINT position, UINT flags) {
    const std::lock_guard lock(TheMenus().lock);
    HMENU holder = nullptr;
    size_t at = 0;
    if (FindItem(menu, position, flags, &holder, &at) == nullptr) return FALSE;
    auto& items = FindMenu(holder)->items;
    items.erase(items.begin() + static_cast<ptrdiff_t>(at));
    return TRUE;
}

BOOL DeleteMenu(HMENU menu, UINT position, UINT flags) {
    HMENU submenu = nullptr;
    {
        const std::lock_guard lock(TheMenus().lock);
        if (const Item* item = FindItem(menu, position, flags)) submenu = item->submenu;
    }
    if (!RemoveMenu(menu, position, flags)) return FALSE;
    if (submenu != nullptr) DestroyMenu(submenu);
    return TRUE;
}

int GetMenuItemCount(HMENU handle) {
    const std::lock_guard lock(TheMenus().lock);
    const Menu* menu = FindMenu(handle);
    if (menu == nullptr) SetLastError(ERROR_INVALID_MENU_HANDLE);
    return menu == nullptr ? -1 : static_cast<int>(menu->items.size());
}

UINT GetMenuItemID(HMENU menu, int position) {
    const std::lock_guard lock(TheMenus().lock);
    const Item* item = FindItem(menu, static_cast<UINT>(position), MF_BYPOSITION);
    return item == nullptr || item->submenu != nullptr ? 0xFFFFFFFFu : static_cast<UINT>(item->id);
}

HMENU GetSubMenu(HMENU menu, int position) {
    const std::lock_guard lock(TheMenus().lock);
    const Item* item = FindItem(menu, static_cast<UINT>(position), MF_BYPOSITION);
    return item == nullptr ? nullptr : item->submenu;
}

int GetMenuStringA(HMENU menu, UINT which, LPSTR out, int size, UINT flags) {
    if (out != nullptr && size > 0) *out = 0;
    const std::lock_guard lock(TheMenus().lock);
    const Item* item = FindItem(menu, which, flags);
    if (item == nullptr) return 0;
    if (out == nullptr || size <= 0) return static_cast<int>(item->text.size());
    return static_cast<int>(orvik::detail::CopyLetters(item->text, out, static_cast<size_t>(size)));
}

UINT GetMenuState(HMENU menu, UINT which, UINT flags) {
    const std::lock_guard lock(TheMenus().lock);
    const Item* item = FindItem(menu, which, flags);
    if (item == nullptr) return 0xFFFFFFFFu;
    const UINT state = item->state | item->type;
    if (item->submenu == nullptr) return state;
    const Menu* below = FindMenu(item->submenu);
    return ((state | MF_POPUP) & 0xFF) | (below == nullptr ? 0 : static_cast<UINT>(below->items.size() & 0xFF) << 8);
}

BOOL EnableMenuItem(HMENU menu, UINT which, UINT enable) {
    const std::lock_guard lock(TheMenus().lock);
    Item* item = FindItem(menu, which, enable);
    if (item == nullptr) return -1;
    const UINT before = item->state & (MF_GRAYED | MF_DISABLED);
    item->state = (item->state & ~(MF_GRAYED | MF_DISABLED)) | (enable & (MF_GRAYED | MF_DISABLED));
    return static_cast<BOOL>(before);
}

DWORD CheckMenuItem(HMENU menu, UINT which, UINT check) {
    const std::lock_guard lock(TheMenus().lock);
    Item* item = FindItem(menu, which, check);
    if (item == nullptr) return 0xFFFFFFFFu;
    const DWORD before = item->state & MF_CHECKED;
    item->state = (item->state & ~MF_CHECKED) | (check & MF_CHECKED);
    return before;
}

BOOL CheckMenuRadioItem(HMENU menu, UINT first, UINT last, UINT which, UINT flags) {
    const std::lock_guard lock(TheMenus().lock);
    bool found = false;
    for (UINT each = first; each <= last && each - first <= kMostItems; ++each) {
        Item* item = FindItem(menu, each, flags);
        if (item == nullptr || (item->type & MF_SEPARATOR) != 0) continue;
        if (each == which) {
            item->type |= MFT_RADIOCHECK;
            item->state |= MF_CHECKED;
            found = true;
        } else {
            item->state &= ~MF_CHECKED;
        }
    }
    return found;
}

BOOL SetMenuDefaultItem(HMENU handle, UINT which, UINT byPosition) {
    const std::lock_guard lock(TheMenus().lock);
    Menu* menu = FindMenu(handle);
    if (menu == nullptr) return Finish(ERROR_INVALID_MENU_HANDLE);
    Item* item = which == 0xFFFFFFFFu ? nullptr : FindItem(handle, which, byPosition ? MF_BYPOSITION : MF_BYCOMMAND);
    if (item == nullptr && which != 0xFFFFFFFFu) return FALSE;
    for (Item& each : menu->items) each.state &= ~MF_DEFAULT;
    if (item != nullptr) item->state |= MF_DEFAULT;
    return TRUE;
}
