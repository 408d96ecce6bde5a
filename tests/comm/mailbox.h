// A message-only window, and the messages that were posted to it, in order.
#pragma once

#include <optional>

#include "platform/win32.h"
#include "tests/support/time_limit.h"

class Mailbox {
public:
    Mailbox() {
        static const ATOM windowClass = [] {
            WNDCLASSA about{};
            about.lpfnWndProc = ::DefWindowProcA;
            about.hInstance = ::GetModuleHandleA(nullptr);
            about.lpszClassName = "orvik_test_mailbox";
            return ::RegisterClassA(&about);
        }();
        if (windowClass) {
            m_window = ::CreateWindowExA(0, "orvik_test_mailbox", "", WS_POPUP, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                         ::GetModuleHandleA(nullptr), nullptr);
        }
    }
    ~Mailbox() { ::DestroyWindow(m_window); }
    Mailbox(const Mailbox&) = delete;
    Mailbox& operator=(const Mailbox&) = delete;

    HWND Window() const { return m_window; }

    // The next message, waiting for it up to `milliseconds`; none if nothing came.
    std::optional<MSG> Next(DWORD milliseconds = 5000) {
        const Awaiting post("a message to be posted to the window");
        MSG message{};
        const DWORD start = ::GetTickCount();
        for (;;) {
            if (::PeekMessageA(&message, m_window, 0, 0, PM_REMOVE)) return message;
            const DWORD gone = ::GetTickCount() - start;
            if (gone >= milliseconds) return std::nullopt;
            ::MsgWaitForMultipleObjects(0, nullptr, FALSE, milliseconds - gone, QS_ALLINPUT);
        }
    }
    std::optional<MSG> Waiting() { return Next(0); }
    int Empty() {
        int count = 0;
        while (Waiting()) ++count;
        return count;
    }

private:
    HWND m_window = nullptr;
};
