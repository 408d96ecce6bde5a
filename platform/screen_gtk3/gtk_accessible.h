// What a window says of itself, as objects of the desktop's accessibility bus: one for each part, below the accessible of the
// window's area. GTK brings them to the bus, and asks for them when somebody there does; with that the telling begins.
// For the module's thread.
#pragma once

#include <gtk/gtk-a11y.h>
#include <gtk/gtk.h>

#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "platform/posix/window/screen_internal.h"

class ScreenWindow;
class AccessibleWindow;

// What stands behind an object. It outlives its window: then it says nothing any more.
struct AccessiblePart {
    AccessibleWindow* owner = nullptr;      // null when it is gone
    const OrvikAccessible* said = nullptr;  // in the owner's tree; something empty when it is gone
    AtkObject* above = nullptr;
    int index = 0;
    std::vector<AtkObject*> below;
};
// An object of the type that has the interfaces of such a part. For one of these, never null.
AtkObject* MakeAccessible(const OrvikAccessible& said);
AccessiblePart& PartOf(gpointer object);
// Asks the part's window to act; nothing once that is gone.
void AskPart(gpointer object, OrvikAccessibleAct act);
bool IsAccessiblePart(gpointer object);
unsigned InterfacesOf(const OrvikAccessible& said);  // two parts with the same ones can share an object
AtkRole RoleOf(OrvikRole role);
void AddStates(AtkStateSet* set, const OrvikAccessible& said);

// A drawing area whose accessible has the window's parts below it.
GtkWidget* MakeAccessibleArea(ScreenWindow& window);

class AccessibleWindow {
public:
    explicit AccessibleWindow(ScreenWindow& window) : m_window(window) {}
    ~AccessibleWindow();
    AccessibleWindow(const AccessibleWindow&) = delete;
    AccessibleWindow& operator=(const AccessibleWindow&) = delete;

    // Takes the place of what was said before; whoever listens learns what is another now.
    void Show(std::shared_ptr<const OrvikAccessible> said);
    void TellFocus();  // once more: the keys have come back to this window
    void Ask(const OrvikAccessible& of, OrvikAccessibleAct act) const;

    const OrvikAccessible& Said() const;
    const std::vector<AtkObject*>& Parts() const { return m_top; }
    AtkObject* Area() const;
    // On the desktop, or within the window.
    GdkRectangle PlaceOf(const OrvikAccessible& said, AtkCoordType of) const;

private:
    using Key = std::pair<HWND, unsigned>;
    struct Change {
        AtkObject* object;
        const OrvikAccessible* before;  // null for a new one
    };
    struct Moves;
    void Take(const std::vector<OrvikAccessible>& said, AtkObject* above, std::vector<AtkObject*>& below, bool known,
              Moves& moves);
    void Tell(const Change& change) const;

    ScreenWindow& m_window;
    std::shared_ptr<const OrvikAccessible> m_said;
    std::map<Key, AtkObject*> m_objects;  // each held once
    std::vector<AtkObject*> m_top;
};
