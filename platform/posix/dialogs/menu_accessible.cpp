// Menus for who does not see them: the bar with all that is below it, and each open popup with the marked item.
#include <algorithm>

#include "platform/posix/dialogs/menu_loop_internal.h"
#include "platform/posix/resources/resources.h"

namespace orvik::detail {
namespace {
// What lies deeper is filled in when it is opened, and told of then, as a popup of its own.
constexpr int kDeepest = 1;

OrvikAccessible Described(const MenuItem& item) {
    OrvikAccessible out;
    const auto [label, keys] = LabelAndKeys(item);
    out.name = label;
    out.keys = keys;
    out.role = item.Is(MF_SEPARATOR)     ? OrvikRole::Separator
               : item.submenu != nullptr ? OrvikRole::Menu
               : item.state & MF_CHECKED ? OrvikRole::CheckMenuItem
                                         : OrvikRole::MenuItem;
    out.Set(OrvikAccessible::kPressable, !item.Is(MF_SEPARATOR));
    out.Set(OrvikAccessible::kSelectable, !item.Is(MF_SEPARATOR));
    out.Set(OrvikAccessible::kChecked, (item.state & MF_CHECKED) != 0);
    out.Set(OrvikAccessible::kDisabled, !item.Usable() && !item.Is(MF_SEPARATOR));
    return out;
}

// What lies below an item, numbered in the order in which it is read.
void AddItems(OrvikAccessible& above, HMENU menu, unsigned& part, int depth) {
    if (depth > kDeepest) return;
    for (const MenuItem& item : MenuItemsOf(menu)) {
        OrvikAccessible& each = above.parts.emplace_back(Described(item));
        each.part = ++part;
        each.Set(OrvikAccessible::kOutOfSight, depth > 0);
        if (item.submenu != nullptr) AddItems(each, item.submenu, part, depth + 1);
    }
}

struct Found {
    HMENU menu = nullptr;
    int item = -1, depth = 0;
};
Found FindPart(HMENU menu, unsigned wanted, unsigned& part, int depth) {
    if (depth > kDeepest) return {};
    const std::vector<MenuItem> items = MenuItemsOf(menu);
    for (size_t i = 0; i < items.size(); ++i) {
        if (++part == wanted) return {menu, static_cast<int>(i), depth};
        if (items[i].submenu == nullptr) continue;
        if (const Found found = FindPart(items[i].submenu, wanted, part, depth + 1); found.menu != nullptr) return found;
    }
    return {};
}

// The letter that opens a menu of the bar, by its mnemonic.
char BarKeyOf(const std::string& label) {
    for (size_t i = 0; i + 1 < label.size(); ++i) {
        if (label[i] != '&') continue;
        if (label[i + 1] != '&') return label[i + 1];
        ++i;
    }
    return 0;
}
}  // namespace

bool DescribeMenuBar(HWND window, OrvikAccessible& out) {
    RECT place{};
    GetWindowRect(window, &place);
    const LONG width = place.right - place.left, height = MenuBarHeight(window, width);
    if (height == 0) return false;
    out.role = OrvikRole::MenuBar;
    out.place = {0, 0, width, height};
    out.part = kMenuParts;
    unsigned part = kMenuParts;
    AddItems(out, GetMenu(window), part, 0);
    const MenuFace face(window, GetMenu(window), width);
    const MenuLoop* const loop = MenuLoop::Current();
    const int hot = loop != nullptr ? loop->HotInBar(window) : -1;
    for (int i = 0; i < std::min(face.Count(), static_cast<int>(out.parts.size())); ++i) {
        OrvikAccessible& item = out.parts[static_cast<size_t>(i)];
        item.place = face.PlaceOf(i);
        item.Set(OrvikAccessible::kSelected, i == hot);
        item.Set(OrvikAccessible::kFocused, i == hot);
    }
    return true;
}

bool ActOnMenuBar(HWND window, unsigned part) {
    if (!IsWindowEnabled(window)) return false;
    unsigned count = kMenuParts;
    const Found found = FindPart(GetMenu(window), part, count, 0);
    if (found.menu == nullptr) return false;
    // What can be chosen is known when the menu is about to open.
    SendMessageA(window, WM_INITMENU, reinterpret_cast<WPARAM>(GetMenu(window)), 0);
    SendMessageA(window, WM_INITMENUPOPUP, reinterpret_cast<WPARAM>(found.menu), 0);
    const std::vector<MenuItem> items = MenuItemsOf(found.menu);
    if (static_cast<size_t>(found.item) >= items.size()) return false;
    const MenuItem& item = items[static_cast<size_t>(found.item)];
    if (!item.Usable()) return false;
    if (item.submenu == nullptr) return PostMessageA(window, WM_COMMAND, static_cast<WPARAM>(item.id), 0);
    const char letter = BarKeyOf(LabelAndKeys(item).first);
    return found.depth == 0 && letter != 0 && PostMessageA(window, WM_SYSCOMMAND, SC_KEYMENU, letter);
}

void MenuLoop::Describe(HWND popup, OrvikAccessible& out) const {
    out.role = OrvikRole::Menu;
    for (int i = 0; i <= Last(); ++i) {
        const Level& level = At(i);
        if (level.window != popup) continue;
        if (i > 0 && level.from >= 0 && level.from < At(i - 1).face->Count())
            out.name = LabelAndKeys((*At(i - 1).face)[level.from]).first;
        for (int item = 0; item < level.face->Count(); ++item) {
            OrvikAccessible& each = out.parts.emplace_back(Described((*level.face)[item]));
            each.part = static_cast<unsigned>(item) + 1;
            each.place = Within(level, item);
            each.Set(OrvikAccessible::kSelected, item == level.hot);
            // The keys are with the deepest popup that has a marked item.
            each.Set(OrvikAccessible::kFocused, item == level.hot && (i == Last() || At(i + 1).hot < 0));
        }
    }
}

bool MenuLoop::Act(HWND popup, const OrvikAccessibleAct& act) {
    for (int i = 0; i <= Last(); ++i) {
        const int item = static_cast<int>(act.part) - 1;
        if (At(i).window != popup || item < 0 || item >= At(i).face->Count() || !(*At(i).face)[item].Usable()) continue;
        Select(i, item, false);
        if (act.kind == OrvikAccessibleAct::Kind::Press) Enter(i, item);
        return true;
    }
    return false;
}

}  // namespace orvik::detail
