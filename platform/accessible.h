// What windows say of themselves to people who do not see them, by way of the desktop's screen reader.
// On Linux a program's windows are described to the desktop's accessibility bus while somebody asks there: standard controls,
// menus and dialogs by themselves, a window that draws itself by answering the two messages below. On Windows nobody sends them:
// there the system knows its own controls, and a window that draws itself is known by its text alone.
//
// Both messages come to the window's procedure on its own thread, where that reads its messages; a window that
// answers neither is a pane with its text for a name. Texts are the house's (house_text.h). Places are pixels of the window's
// client area.
#pragma once

#include <string>
#include <vector>

#include "platform/win32.h"

enum class OrvikRole {
    Pane,
    Window,
    Dialog,
    Label,
    Button,
    CheckBox,
    RadioButton,
    Edit,
    ComboBox,
    List,
    ListItem,
    Table,  // its rows below it, their cells below them, each with its column's place; a Header of as many ColumnHeaders
    TableRow,
    TableCell,
    Header,
    ColumnHeader,
    Tree,
    TreeItem,
    Progress,
    ScrollBar,
    StatusBar,
    MenuBar,
    Menu,
    MenuItem,
    CheckMenuItem,
    Separator,
    Group,
    Image,
    Link,
    Chart
};

// A window, or a part of one: what it is, says and can, and what is in it.
// A plain value.
struct OrvikAccessible {
    enum State : unsigned {
        kDisabled = 1u << 0,
        kFocusable = 1u << 1,
        kFocused = 1u << 2,
        kSelectable = 1u << 3,
        kSelected = 1u << 4,
        kChecked = 1u << 5,
        kMixed = 1u << 6,  // neither checked nor not
        kExpandable = 1u << 7,
        kExpanded = 1u << 8,
        kReadOnly = 1u << 9,
        kMultiLine = 1u << 10,
        kDefault = 1u << 11,     // what Enter presses
        kSecret = 1u << 12,      // its letters are not to be read out
        kOutOfSight = 1u << 13,  // it is there, and scrolled away or folded
        kPressable = 1u << 14,   // can be pressed, whatever that means for its role
        kModal = 1u << 15
    };

    OrvikRole role = OrvikRole::Pane;
    unsigned states = 0;
    std::string name;         // as people would call it
    std::string value;        // what it holds: an edit's text, a list's choice, a cell's property
    std::string description;  // more about it
    std::string keys;         // that do the same: "Ctrl+O"
    RECT place{};
    size_t selectedFrom = 0, selectedTo = 0, caret = 0;  // of an edit, in its value: bytes
    int at = -1, of = 0;                  // the place among all of its kind, those included that are not told; -1: none
    double least = 0, most = 0, now = 0;  // of what has a position
    int columns = 0;                      // of a table
    unsigned part = 0;                    // names it within its window, as long as it is there; 0 is the window
    std::vector<OrvikAccessible> parts;
    HWND window = nullptr;  // filled in by who asks

    bool Is(unsigned asked) const { return (states & asked) != 0; }
    void Set(State state, bool on = true) { states = on ? states | state : states & ~static_cast<unsigned>(state); }
};

// What somebody wants done who has been told of a part.
struct OrvikAccessibleAct {
    enum class Kind {
        Press,   // the usual thing: press, check, choose, unfold
        Focus,   // bring the keyboard there
        Select,  // choose it in its list
        Text,    // `text` for its value
        Caret,   // the selection from `from` to `to`, in bytes of its value; the caret at the latter
        Value    // `value` for its position
    } kind;
    unsigned part = 0;
    std::string text{};
    size_t from = 0, to = 0;
    double value = 0;
};

// Describe yourself: lParam is an OrvikAccessible with role Pane, name, place and states as any window has them, to be completed.
// The answer is not looked at.
ORVIK_API UINT OrvikDescribeMessage();
// Do it: lParam is a const OrvikAccessibleAct. The answer is TRUE where it was done; else what any window can be asked is tried,
// which is to take the focus.
ORVIK_API UINT OrvikActMessage();

// For message maps: ON_REGISTERED_MESSAGE(kOrvikDescribe, OnDescribe).
inline const UINT kOrvikDescribe = OrvikDescribeMessage(), kOrvikAct = OrvikActMessage();
inline OrvikAccessible& OrvikDescribed(LPARAM lParam) { return *reinterpret_cast<OrvikAccessible*>(lParam); }
inline const OrvikAccessibleAct& OrvikAsked(LPARAM lParam) { return *reinterpret_cast<const OrvikAccessibleAct*>(lParam); }
