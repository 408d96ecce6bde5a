// Windows, classes, queues and timers as they are kept. Everything here is used under the kernel lock, and no window procedure is
// called under it.
#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/posix/wait_internal.h"
#include "platform/posix/window.h"

namespace orvik::detail {

struct WindowClass {
    std::string name;
    WNDCLASSEXA info;  // its text pointers point to `name`, or to nothing
    ATOM atom = 0;
    int windows = 0;
};

struct Window {
    HWND handle = nullptr;
    DWORD thread = 0;
    std::shared_ptr<WindowClass> windowClass;
    WNDPROC procedure = nullptr;
    HWND parent = nullptr;  // a child's parent or another window's owner
    bool destroying = false;
    DWORD style = 0, exStyle = 0;
    RECT rectangle{};
    std::string text;
    HINSTANCE instance = nullptr;
    LONG_PTR userData = 0, id = 0, font = 0;
    std::vector<unsigned char> extra;
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
    DWORD changed = 0;  // QS_ bits of what came since the thread last looked

    void Note(DWORD bits) {
        changed |= bits;
        waiter->Wake();
    }
    int64_t NextTimer() const;  // kNever without timers
};

// The calling thread's queue, made at the first call; takes the kernel lock itself.
MessageQueue& CurrentQueue();
MessageQueue* QueueOf(DWORD thread);  // null for a thread without one

Window* FindWindowOf(HWND handle);                           // null when there is no such window
std::vector<HWND> WindowsBelow(HWND parent, bool children);  // its children, or the windows it owns
void RemoveWindow(HWND handle);                              // with its timers and posted messages
void RemoveWindowsOfThread(DWORD thread);
void RemoveMessagesFor(HWND handle, DWORD thread);

// Calls the procedure without the lock; for a message that the calling thread may handle itself.
LRESULT CallProcedureOf(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
// Serves what other threads sent to the queue's thread, the caller. The lock is free while procedures run.
void ServeSentMessages(MessageQueue& queue, std::unique_lock<std::mutex>& kernel);

}  // namespace orvik::detail
