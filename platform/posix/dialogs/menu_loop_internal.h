// An open menu: its popups, or a window's bar with the popups below it, and the loop in which the user works on them. One at a
// time for a thread. The owner is told what happens; it may do anything meanwhile, also end the menu or go.
#pragma once

#include <memory>
#include <vector>

#include "platform/accessible.h"
#include "platform/letters.h"
#include "platform/posix/dialogs/menu_face_internal.h"
#include "platform/posix/window/window_internal.h"

namespace orvik::detail {

class MenuLoop {
public:
    MenuLoop(HWND owner, HMENU menu, UINT flags, bool bar);
    ~MenuLoop();
    MenuLoop(const MenuLoop&) = delete;
    MenuLoop& operator=(const MenuLoop&) = delete;
    static MenuLoop* Current();  // the calling thread's; null for none

    HWND Owner() const { return m_owner; }
    void End() { m_over = true; }
    // Where an item of one of its open menus is on the desktop; false for none.
    bool PlaceOf(HMENU menu, int item, RECT& screen) const;
    int HotInBar(HWND window) const;  // -1 for none
    void PaintPopup(HWND window, HDC dc, const RECT& client);
    HMENU MenuIn(HWND popup) const;
    // For who does not see it (platform/accessible.h).
    void Describe(HWND popup, OrvikAccessible& out) const;
    bool Act(HWND popup, const OrvikAccessibleAct& act);

    void OpenFirst(const PopupPlace& place);
    void MarkFirst() { Select(0, At(0).face->Step(-1, 1), false); }  // in the bar
    void Press(POINT screen, UINT message);
    void Character(WPARAM typed);
    bool HasHot() const { return !m_levels.empty() && m_levels.front().hot >= 0; }
    void Run();
    UINT Chosen() const { return m_chosen; }  // the command; 0 for none

private:
    // One menu that is open. The bar has no window of its own.
    struct Level {
        HWND window = nullptr;
        std::unique_ptr<MenuFace> face;
        int hot = -1, from = -1;  // the marked item; the item of the level above that it was opened from
        LONG scrolled = 0;        // what a popup too long for the desktop has above its upper edge
    };
    struct Hit {
        int level = -1, item = -1, scroll = 0;  // scroll: over a strip that scrolls up (-1) or down (1)
    };
    enum class Task { Open, ScrollUp, ScrollDown };  // what the timer is for

    // Levels (menu_levels.cpp).
    Level& At(int level) { return m_levels[static_cast<size_t>(level)]; }
    const Level& At(int level) const { return m_levels[static_cast<size_t>(level)]; }
    int Last() const { return static_cast<int>(m_levels.size()) - 1; }
    bool IsBar(int level) const { return m_bar && level == 0; }
    bool Show(HMENU menu, int from, const PopupPlace& place);
    void Open(int level, int item, bool markFirst);
    void CloseTo(int level);  // what lies deeper
    void Select(int level, int item, bool byMouse);
    void TellSelected(const Level& level, bool byMouse);
    void Reveal(Level& level, int item);
    void Scroll(Level& level, LONG by);
    RECT Within(const Level& level, int item) const;  // in the popup's window
    LONG Hidden(const Level& level) const;            // how far it can be scrolled
    Hit HitAt(POINT screen) const;
    void Refresh(const Level& level) const;

    // Hands (menu_input.cpp).
    void Handle(MSG& message);
    bool IsPressBeside(const MSG& message) const;
    void Move(POINT screen);
    void Release(POINT screen, UINT message);
    void Key(const MSG& message);
    bool MoveInBar(int by);
    void Back();
    void Enter(int level, int item);  // opens its submenu, or chooses it
    void Wait(Task task, int level, UINT milliseconds);
    void OnTimer();

    LRESULT Tell(UINT message, WPARAM wParam, LPARAM lParam) const;
    void Idle();
    void Close();

    const HWND m_owner;
    const HMENU m_menu;
    const UINT m_flags;
    const bool m_bar;
    std::vector<Level> m_levels;
    bool m_over = false, m_pressed = false, m_moved = false, m_idleTold = false;
    POINT m_last{};  // where the pointer was
    UINT m_chosen = 0;
    UINT_PTR m_timer = 0;
    Task m_task = Task::Open;
    int m_timed = -1;  // the level that the timer is for
    OrvikTypedText m_typed;
};

}  // namespace orvik::detail
