// The seam between windows in memory and a screen that shows them. A screen is a module of its own, loaded when a window is first
// shown and a display is there (screen/screen.cpp); without one nothing here does anything.
//
// A screen has a thread of its own and asks for what it needs: whatever changes is only named (Screen::Changed, Screen::Damaged),
// and the screen, in its own time, has the window described and its picture lent. So no thread of the program waits for a screen,
// and none is called by it: what the user does is posted to the queue of the window's thread.
// All sizes are pixels of the window's picture; a screen knows how many of them make one of its own units.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/accessible.h"
#include "platform/posix/drawing/canvas_internal.h"
#include "platform/posix/drawing/desktop_looks_internal.h"
#include "platform/posix/window/messages.h"
#include "platform/posix/window/popup_place_internal.h"
#include "platform/posix/window/screen_exchange_internal.h"
#include "platform/posix/window/screen_print_internal.h"

namespace orvik::detail {
struct Window;

inline constexpr unsigned kScreenSeam = 3;  // grows with each change of this header: a module of another one is not used

// A cursor's look: one of the system's, or pixels.
struct CursorLook {
    WORD systemId = 32512;          // IDC_ARROW's; 0 for none at all
    const void* picture = nullptr;  // tells one from another
    int width = 0, height = 0, hotX = 0, hotY = 0;
    std::vector<uint32_t> pixels;  // 0xAARRGGBB, not premultiplied
};

// A top-level window as a screen is to show it.
struct ShownWindow {
    bool visible = false, enabled = true, resizable = false, dialog = false;
    HWND owner = nullptr;             // a top-level window, or null
    std::optional<PopupPlace> popup;  // its anchor is in the owner's picture
    SIZE size{}, least{1, 1};
    UINT dots = 96;              // an inch, that the window knows of
    bool sizedByScreen = false;  // the size is what the screen said last, or was about to be overtaken
    unsigned raised = 0;         // grows when the program brings the window to the front
    enum class State { Normal, Minimised, Maximised } state = State::Normal;
    unsigned stateAsked = 0;  // grows when the program asks for the state
    std::string title;        // UTF-8
    CursorLook cursor;
    bool takesFiles = false;        // that are dropped on it, while it is enabled
    std::vector<CursorLook> icons;  // of several sizes; none where the program has chosen none
    RECT caret{};                   // where letters are typed, in the picture: for the list of an input method
};

// What comes from the user or the desktop.
struct ScreenEvent {
    enum class Kind {
        Pointer,
        Key,
        Text,
        Resized,
        State,
        Focused,
        Left,
        CloseWished,
        DotsChanged,
        Placed,
        Dismissed,
        LooksChanged,
        Described,
        Asked,
        Dropped
    } kind;
    // Pointer: a mouse message, a point in the picture, the wheel's parts. Key: its VK_ code, whether it goes down. Resized: the
    // size. Dismissed: the desktop has taken a popup away. State: one of ShownWindow::State. DotsChanged: dots an inch, and the
    // size by these. Placed: where a popup came to lie in its owner's picture. Dropped: files, at a point. Described and Asked
    // are the library's own, for what is asked by ScreenHost::Listen and Ask.
    UINT code = 0;
    int x = 0, y = 0, wheel = 0;
    bool down = false;
    bool untyped = false;              // of a key that writes nothing by itself, an input method having taken it (VK_PROCESSKEY)
    std::u16string letters{};          // Text; of a key, what it writes if it is not the keyboard's usual
    std::vector<std::string> paths{};  // the system's
};

// A question for a file, by the desktop's own dialog. Texts are UTF-8, paths the system's.
struct FileQuestion {
    struct Kind {
        std::string name, patterns;  // "Sessions", "*.odb;*.xml"
    };
    HWND owner = nullptr;
    bool save = false, confirm = false;  // `confirm`: asks before a file is replaced
    std::string title, folder, name;
    std::vector<Kind> kinds;
    size_t kind = 0;  // the one that is chosen at first
};
struct FileChoice {
    std::string path;
    size_t kind = 0;  // the one that was chosen at last
};
using FileAnswer = std::function<void(std::optional<FileChoice>)>;  // nothing when the user gives up

// What the library offers a screen. For the screen's thread, which holds no lock of its own meanwhile.
class ScreenHost {
public:
    virtual bool Describe(HWND window, ShownWindow& out) = 0;  // false for one that is gone
    // Calls with the picture as it was drawn last; not at all for a window without one.
    virtual void Lend(HWND window, const std::function<void(const PixelView&)>& take) = 0;
    virtual void Post(HWND window, const ScreenEvent& event) = 0;
    virtual void SetDesktop(SIZE pixels, UINT dots) = 0;
    virtual void SetLooks(const DesktopLooks& looks) = 0;  // at first, and when they change
    // For who does not see the windows: from now on they are told by Screen::Described. And what somebody asks of one, or a part
    // of it, that was told: texts in UTF-8, places in them in characters; what cannot be done is not.
    virtual void Listen() = 0;
    virtual void Ask(HWND root, HWND window, const OrvikAccessibleAct& act) = 0;

protected:
    ~ScreenHost() = default;
};

// What a screen does. From any thread, often under the kernel lock: each only leaves a note for the screen's own thread.
class Screen {
public:
    virtual void Changed(HWND window) = 0;  // made, shown, hidden, sized, renamed, gone ...
    virtual void Damaged(HWND window, const RECT& area) = 0;
    virtual void AskForFile(FileQuestion question, FileAnswer answer) = 0;  // which is called on the screen's thread
    // What a top-level window says of itself, after Listen: texts in UTF-8, places in its picture.
    virtual void Described(HWND window, std::shared_ptr<const OrvikAccessible> said) = 0;
    virtual ScreenExchange* Exchange() { return nullptr; }
    virtual ScreenPrinters* Printers() { return nullptr; }
    virtual void End() = 0;  // returns when the screen's thread has gone

protected:
    ~Screen() = default;
};

// The one function of a module, "OrvikOpenScreen": null where there is no display, or with the reason why none can be used.
using OpenScreen = Screen*(unsigned seam, ScreenHost& host);

// For the window layer, under the kernel lock; nothing without a screen.
bool HasScreen();
void NoteChanged(const Window& window);
void NoteCursor(DWORD thread);                   // it has chosen another one
void NoteDrawn(Window& root, const RECT& area);  // in its picture
void ForgetPicture(HWND window);                 // of a window that goes
// Without the lock, by the window's thread.
bool OpenScreenNow();  // whether windows come to a screen; looks for one if nobody has
bool AskOnScreen(const FileQuestion& question, FileAnswer answer);  // false without a screen
void JoinScreen(HWND root);                                         // it is about to be shown
void ShowDrawn();                                                   // what the calling thread has drawn since comes to the screen
void DescribeDrawn();  // and is told to who does not see it; where messages are read, and nowhere else
bool DrawnIsDue();     // it has waited for long: the thread is not back at its messages

}  // namespace orvik::detail
