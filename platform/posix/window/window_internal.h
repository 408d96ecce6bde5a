// Windows, classes, queues and timers as they are kept. Everything here is used under the kernel lock, and no window procedure is
// called under it.
#pragma once

#include <array>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/posix/drawing/pixel_region_internal.h"
#include "platform/posix/input/input.h"
#include "platform/posix/kernel/wait_internal.h"
#include "platform/posix/window/screen_internal.h"
#include "platform/posix/window/scroll.h"

namespace orvik::detail {

struct WindowClass {
    std::string name;
    WNDCLASSEXA info;  // its text pointers point to `name`, or to nothing
    ATOM atom = 0;
    int windows = 0;
    bool system = false;  // there for every program, and to stay
};

class Canvas;

struct Window {
    HWND handle = nullptr;
    DWORD thread = 0;  // 0 for the desktop alone
    std::shared_ptr<WindowClass> windowClass;
    WNDPROC procedure = nullptr;
    HWND parent = nullptr;     // a child's parent or another window's owner
    bool messageOnly = false;  // not on the desktop; a top-level window's
    bool destroying = false;
    DWORD style = 0, exStyle = 0;
    RECT rectangle{};            // in its parent's client area, or on the desktop
    std::vector<HWND> children;  // the top one first; of the desktop, all top-level windows
    std::string text;
    HINSTANCE instance = nullptr;
    LONG_PTR userData = 0, id = 0;
    UINT dpi = 96;  // of a top-level window's screen; below it that one counts
    std::vector<unsigned char> extra;
    std::shared_ptr<void> control;  // what a window of a system class keeps; ends without asking for the lock

    PixelRegion update;  // what is to be painted, in client coordinates
    bool erase = false, internalPaint = false;
    std::shared_ptr<Canvas> canvas;  // of a top-level window that was drawn on: its menu bar and, below that, its client area
    std::vector<HDC> contexts;       // got from it and not yet released
    HMENU menu = nullptr;
    RECT drawn{};                         // since a screen saw the picture
    SIZE least{1, 1};                     // a top-level window's, for who sizes it on a screen
    bool sizedByScreen = false;           // the size that it has came from there
    unsigned raised = 0, stateAsked = 0;  // count what the program wants of a screen
    ShownWindow::State state = ShownWindow::State::Normal;
    LONG bar = 0;                     // height of the menu bar, which lies above the client area; 0 for none
    std::optional<PopupPlace> popup;  // of a popup
    RECT caret{};                     // a top-level window's, in its picture: where letters are typed in it; empty for nowhere
    std::array<HICON, 2> icons{};     // by ICON_SMALL and ICON_BIG, as WM_SETICON gave them
    std::array<SCROLLINFO, 2> scroll{SCROLLINFO{sizeof(SCROLLINFO), SIF_ALL, 0, 100, 0, 0, 0},
                                     SCROLLINFO{sizeof(SCROLLINFO), SIF_ALL, 0, 100, 0, 0, 0}};

    LONG Width() const { return rectangle.right - rectangle.left; }
    LONG Height() const { return rectangle.bottom - rectangle.top; }
    RECT Client() const { return {0, 0, Width(), Height() - bar}; }
};

// A message on its way to another thread's window, shared by both threads.
struct SentMessage {
    MSG message;
    Waiter* sender = nullptr;  // null when nobody waits for the answer any more
    bool done = false, answered = false;
    LRESULT result = 0;
};

struct Timer {
    HWND window;
    UINT_PTR id;
    int64_t period, due;  // ns
    TIMERPROC procedure;
};

struct MessageQueue {
    DWORD thread = 0;
    Waiter* waiter = nullptr;
    std::deque<MSG> posted;
    std::deque<std::shared_ptr<SentMessage>> sent;
    std::vector<Timer> timers;
    UINT_PTR lastTimerId = 0;
    bool quit = false;
    int quitCode = 0;
    int64_t drawnSince = 0;  // what a screen has not seen yet; 0 for nothing
    size_t contexts = 0;     // over its windows, not yet released
    bool MayHaveDrawn() const { return drawnSince != 0 || contexts != 0; }
    DWORD changed = 0;      // QS_ bits of what came since the thread last looked
    bool mayPaint = false;  // some window of the thread may have something to paint

    HWND active = nullptr, focus = nullptr, capture = nullptr;
    HCURSOR cursor = nullptr;
    int cursorShown = 0;
    std::array<BYTE, 256> keys{};
    UINT menuKey = 0;    // Alt or F10, while it is down and nothing else was pressed: letting go of it opens the menu bar
    HWND hot = nullptr;  // the window that the pointer moved on last
    DWORD lastTime = 0;  // of the message read last
    POINT lastPoint{};
    struct Hook {
        HHOOK handle;
        HOOKPROC procedure;
    };
    std::vector<Hook> hooks;  // the newest last

    void Note(DWORD bits) {
        changed |= bits;
        waiter->Wake();
    }
    int64_t NextTimer() const;  // kNever without timers
};

// The calling thread's queue, made at the first call; takes the kernel lock itself.
MessageQueue& CurrentQueue();
MessageQueue* QueueOf(DWORD thread);  // null for a thread without one

Window* FindWindowOf(HWND handle);  // null when there is no such window
// What `ask` gives for the window under the lock, which is taken here; with error 1400, an empty result for one that is gone.
template <class Result, class Ask>
Result With(HWND handle, Ask ask) {
    const std::lock_guard kernel(KernelLock());
    if (Window* window = FindWindowOf(handle)) return ask(*window);
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return Result{};
}

std::vector<HWND> WindowsBelow(HWND parent, bool children);  // its children, or the windows it owns
void RemoveWindow(HWND handle);                              // with its timers and posted messages
void RemoveWindowsOfThread(DWORD thread);
void RemoveMessagesFor(HWND handle, DWORD thread);

// The tree as it lies on the desktop. Under the kernel lock.
Window& Desktop();
Window* ContainerOf(
    const Window& window);    // the parent of a child, else the desktop; null for a message-only window and the desktop
void Unlink(Window& window);  // out of its container's order
void Link(Window& window);    // into it: a child at the bottom, another window at the top
Window& RootOf(Window& window);
HWND RootHandle(HWND handle);                                                           // takes the lock; null for no window
bool CanBeSeen(const Window& window);                                                   // it and all above it are shown
POINT OriginOf(const Window& window);                                                   // its client area's corner on the desktop
PixelRegion VisibleRegion(const Window& window, bool clipChildren, bool clipSiblings);  // in the root's client coordinates
bool IsBelow(const Window& window, HWND above);                                         // or the window itself

// Painting, under the kernel lock. Areas are in client coordinates.
void InvalidateRegion(Window& window, PixelRegion area, UINT redrawFlags);
void ValidateRegion(Window& window, const PixelRegion& area, UINT redrawFlags);
bool NextPaint(MessageQueue& queue, bool (*takes)(HWND window, const void* filter), const void* filter, HWND& out);
PixelRegion PixelsOf(HRGN region);   // empty for a bad handle
void RefreshContexts(Window& root);  // gives every context below it the area that can be seen now
void ResizeCanvas(Window& root);
void DropContexts(Window& window);    // of a window that goes
void NoteOpenContexts(DWORD thread);  // whoever holds one may have drawn on it: for a screen
// Without the lock: erases what is to be erased in the window and below it.
void EraseNow(HWND window);

// Popups. Where one of that size lies on the desktop; under the lock.
RECT PopupRectangle(const PopupPlace& place, SIZE size);
// Moves the popup there and remembers how it lies, without the lock and without activating it.
void PutPopup(HWND popup, const PopupPlace& place, SIZE size);

// Focus and activation, without the lock; all windows are the calling thread's.
bool Activate(HWND window, bool byMouse, bool byScreen = false);  // `byScreen`: it is in front there already
void MoveFocus(HWND window);                                      // null for nobody; the messages of a focus change
void LeaveWindow(HWND window);                    // it was hidden or goes: activation, focus and capture go elsewhere
HWND ForegroundWindow();                          // under the lock
void RunMessageHooks(MSG& message, UINT remove);  // without the lock
LRESULT DefaultAnswer(HWND window, UINT message, WPARAM wParam, LPARAM lParam);  // to what concerns place, painting and input
LRESULT PaintingAnswer(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
POINT PointerPlace();        // under the lock
bool IsPress(UINT message);  // a button goes down, once or twice

// Calls the procedure without the lock; for a message that the calling thread may handle itself.
LRESULT CallProcedureOf(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// Serves what other threads sent to the queue's thread, the caller. The lock is free while procedures run.
void ServeSentMessages(MessageQueue& queue, std::unique_lock<std::mutex>& kernel);

}  // namespace orvik::detail
