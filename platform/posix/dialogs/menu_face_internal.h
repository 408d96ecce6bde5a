// A menu laid out: where its items stand in a popup or a bar, and how they look. Read from the menu when it opens; on its
// window's thread. Places are pixels from the upper left corner of the popup or bar.
#pragma once

#include <string>
#include <vector>

#include "platform/posix/dialogs/menu_internal.h"
#include "platform/posix/dialogs/menu_looks_internal.h"

namespace orvik::detail {

class MenuFace {
public:
    // A popup, or a bar of that width; the owner measures and draws what is its own to draw.
    MenuFace(HWND owner, HMENU menu)
        : m_looks(static_cast<int>(GetDpiForWindow(owner))), m_owner(owner), m_menu(menu), m_items(MenuItemsOf(menu)) {
        ArrangePopup();
    }
    MenuFace(HWND owner, HMENU menu, LONG width)
        : m_looks(static_cast<int>(GetDpiForWindow(owner))),
          m_owner(owner),
          m_menu(menu),
          m_bar(true),
          m_items(MenuItemsOf(menu)) {
        ArrangeBar(width);
    }

    const MenuLooks& Looks() const { return m_looks; }
    HMENU Menu() const { return m_menu; }
    SIZE Size() const { return m_size; }
    int Count() const { return static_cast<int>(m_items.size()); }
    const MenuItem& operator[](int item) const { return m_items[static_cast<size_t>(item)]; }
    RECT PlaceOf(int item) const { return m_cells[static_cast<size_t>(item)].place; }
    int ItemAt(POINT point) const;  // -1 for none

    // The next item from there that is no separator, going round; -1 as `from` begins before the first, or behind the last.
    int Step(int from, int by) const;
    int Beside(int item, int by) const;  // in the column to the right (1) or left (-1) at about that height; -1 for none
    // The items that the letter stands for: by their mnemonics, or where none has it, by the first letter of those without one.
    std::vector<int> ItemsFor(const std::string& letter) const;

    // Draws an item at a place; the popup or bar around it is its own background.
    void Paint(HDC dc, int item, const RECT& place, bool hot) const;

private:
    struct Cell {
        RECT place{};
        int column = 0;
    };
    void ArrangePopup();
    void ArrangeBar(LONG width);
    SIZE Measure(HDC dc, const MenuItem& item, LONG& keys) const;
    void PaintMark(HDC dc, const MenuItem& item, const RECT& place, COLORREF ink) const;
    void PaintArrow(HDC dc, const RECT& place, COLORREF ink) const;
    void LetOwnerPaint(HDC dc, const MenuItem& item, const RECT& place, bool hot) const;

    MenuLooks m_looks;
    HWND m_owner;
    HMENU m_menu;
    bool m_bar = false;
    std::vector<MenuItem> m_items;
    std::vector<Cell> m_cells;
    SIZE m_size{};
};

// What an item says, and the name of its keys.
std::pair<std::string, std::string> LabelAndKeys(const MenuItem& item);

}  // namespace orvik::detail
