#include "platform/posix/accessible/accessible_tree_internal.h"

#include <algorithm>

#include "platform/house_text_internal.h"
#include "platform/posix/dialogs/menu_internal.h"
#include "platform/posix/window/window_internal.h"

namespace orvik::detail {
namespace {

size_t Characters(const std::string& house, size_t bytes) {
    const std::string utf8 = Utf8FromHouse(house.substr(0, std::min(bytes, house.size())));
    return static_cast<size_t>(
        std::count_if(utf8.begin(), utf8.end(), [](char each) { return (static_cast<unsigned char>(each) & 0xC0) != 0x80; }));
}

// Takes the marks of mnemonics away; gives the letter that is one.
std::string TakeMnemonic(std::string& text) {
    std::string plain, letter;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '&' && i + 1 < text.size()) {
            if (text[++i] != '&') letter = text.substr(i, 1);
        }
        plain += text[i];
    }
    text = plain;
    if (letter.empty() || static_cast<unsigned char>(letter[0]) > 0x7E) return {};
    if (letter[0] >= 'a' && letter[0] <= 'z') letter[0] = static_cast<char>(letter[0] - 32);
    return letter;
}

bool HasMnemonic(OrvikRole role) {
    switch (role) {
        case OrvikRole::Label:
        case OrvikRole::Button:
        case OrvikRole::CheckBox:
        case OrvikRole::RadioButton:
        case OrvikRole::Group:
        case OrvikRole::Menu:
        case OrvikRole::MenuItem:
        case OrvikRole::CheckMenuItem:
            return true;
        default:
            return false;
    }
}

// What a label in front of it stands for.
bool IsNamedByLabel(OrvikRole role) {
    switch (role) {
        case OrvikRole::Edit:
        case OrvikRole::ComboBox:
        case OrvikRole::List:
        case OrvikRole::Table:
        case OrvikRole::Tree:
        case OrvikRole::Progress:
        case OrvikRole::ScrollBar:
            return true;
        default:
            return false;
    }
}

// Of fields that share a label, or stand beside a choice: the nearest to the left in the same line.
std::string NameBeside(const std::vector<OrvikAccessible>& before, const RECT& field) {
    const OrvikAccessible* nearest = nullptr;
    const LONG middle = (field.top + field.bottom) / 2;
    for (const OrvikAccessible& each : before) {
        const bool names =
            each.role == OrvikRole::Label || each.role == OrvikRole::RadioButton || each.role == OrvikRole::CheckBox;
        if (!names || each.place.top > middle || each.place.bottom < middle || each.place.right > field.left) continue;
        if (nearest == nullptr || each.place.right > nearest->place.right) nearest = &each;
    }
    return nearest != nullptr ? nearest->name : std::string();
}

// The texts and places of a window and its own parts, as they are told.
void Finish(OrvikAccessible& each, HWND window, POINT origin) {
    each.window = window;
    each.place = Moved(each.place, origin.x, origin.y);
    if (each.role == OrvikRole::Edit) {
        each.caret = Characters(each.value, each.caret);
        each.selectedFrom = Characters(each.value, each.selectedFrom);
        each.selectedTo = Characters(each.value, each.selectedTo);
    }
    if (HasMnemonic(each.role)) {
        const std::string letter = TakeMnemonic(each.name);
        const bool inMenu = each.role == OrvikRole::Menu || each.role == OrvikRole::MenuItem;
        if (!letter.empty() && each.keys.empty() && !inMenu) each.keys = "Alt+" + letter;
    }
    for (std::string* text : {&each.name, &each.value, &each.description, &each.keys}) *text = Utf8FromHouse(*text);
    for (OrvikAccessible& part : each.parts) Finish(part, window, origin);
}

bool HasFocusWithin(const OrvikAccessible& each) {
    return std::any_of(each.parts.begin(), each.parts.end(),
                       [](const OrvikAccessible& part) { return part.Is(OrvikAccessible::kFocused) || HasFocusWithin(part); });
}

struct Seen {
    OrvikAccessible said;
    POINT origin{};
    bool child = true;
};
Seen See(const Window& window, POINT rootAt, LONG bar) {
    Seen seen;
    const POINT at = OriginOf(window);
    seen.origin = {at.x - rootAt.x, at.y - rootAt.y + bar};
    seen.child = (window.style & WS_CHILD) != 0;
    seen.said.name = window.text;
    seen.said.place = window.Client();
    seen.said.Set(OrvikAccessible::kDisabled, (window.style & WS_DISABLED) != 0);
    seen.said.Set(OrvikAccessible::kFocusable, (window.style & (WS_DISABLED | WS_TABSTOP)) == WS_TABSTOP);
    return seen;
}

void AddChildren(OrvikAccessible& above, HWND window, POINT rootAt, LONG bar);

OrvikAccessible Tell(HWND window, Seen seen, POINT rootAt, LONG bar) {
    const bool focused = GetFocus() == window;
    seen.said.Set(OrvikAccessible::kFocused, focused);
    SendMessageA(window, OrvikDescribeMessage(), 0, reinterpret_cast<LPARAM>(&seen.said));
    Finish(seen.said, window, seen.origin);
    seen.said.part = 0;
    AddChildren(seen.said, window, rootAt, bar);
    if (focused && HasFocusWithin(seen.said)) seen.said.Set(OrvikAccessible::kFocused, false);
    if (seen.said.Is(OrvikAccessible::kFocused)) seen.said.Set(OrvikAccessible::kFocusable);
    return std::move(seen.said);
}

void AddChildren(OrvikAccessible& above, HWND window, POINT rootAt, LONG bar) {
    std::vector<HWND> children;
    {
        const std::lock_guard kernel(KernelLock());
        children = WindowsBelow(window, true);
    }
    const OrvikAccessible* label = nullptr;
    above.parts.reserve(above.parts.size() + children.size());  // labels stay where they are
    for (const HWND each : children) {
        Seen seen;
        {
            const std::lock_guard kernel(KernelLock());
            const Window* const found = FindWindowOf(each);
            if (found == nullptr || (found->style & WS_VISIBLE) == 0 || found->destroying) continue;
            seen = See(*found, rootAt, bar);
        }
        OrvikAccessible said = Tell(each, std::move(seen), rootAt, bar);
        if (said.role == OrvikRole::Pane && said.parts.empty()) said.name.clear();
        // A combo box's own field is called as the box is.
        if (above.role == OrvikRole::ComboBox && said.name.empty()) said.name = above.name;
        if (label != nullptr && said.name.empty() && IsNamedByLabel(said.role)) {
            said.name = label->name;
            if (said.keys.empty()) said.keys = label->keys;
            for (OrvikAccessible& part : said.parts)
                if (part.role == OrvikRole::Edit && part.name.empty()) part.name = said.name;
        }
        if (said.name.empty() && IsNamedByLabel(said.role)) said.name = NameBeside(above.parts, said.place);
        above.parts.push_back(std::move(said));
        label = above.parts.back().role == OrvikRole::Label ? &above.parts.back() : nullptr;
    }
}

}  // namespace

OrvikAccessible DescribeWindow(HWND root) {
    Seen seen;
    POINT rootAt{};
    LONG bar = 0;
    {
        const std::lock_guard kernel(KernelLock());
        const Window* const window = FindWindowOf(root);
        if (window == nullptr || window->destroying) return {};
        bar = window->bar;
        rootAt = OriginOf(*window);
        seen = See(*window, rootAt, bar);
        const bool dialog = window->parent != nullptr && (window->style & WS_CAPTION) == WS_CAPTION;
        seen.said.role = dialog ? OrvikRole::Dialog : window->popup ? OrvikRole::Pane : OrvikRole::Window;
        const Window* const owner = dialog ? FindWindowOf(window->parent) : nullptr;
        seen.said.Set(OrvikAccessible::kModal, owner != nullptr && (owner->style & WS_DISABLED) != 0);
    }
    OrvikAccessible all = Tell(root, std::move(seen), rootAt, bar);
    OrvikAccessible menu;
    if (bar > 0 && DescribeMenuBar(root, menu)) {
        Finish(menu, root, {});
        all.parts.insert(all.parts.begin(), std::move(menu));
    }
    return all;
}

}  // namespace orvik::detail
