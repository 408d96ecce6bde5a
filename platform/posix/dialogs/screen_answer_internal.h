// Waiting for what a screen answers, with the messages of the window's thread handled meanwhile. Internal; that thread.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "platform/posix/window/messages.h"
#include "platform/posix/window/window_place.h"

namespace orvik::detail {

template <class Answer>
class ScreenAnswer {
public:
    // To be called on the screen's thread, at any time: also when nobody waits any more.
    std::function<void(Answer)> Taker() const {
        return [kept = m_kept, thread = m_thread](Answer answer) {
            kept->answer = std::move(answer);
            kept->there = true;
            PostThreadMessageA(thread, WM_NULL, 0, 0);
        };
    }
    // Nothing when the time is over, and at the quit message, which stays for the loop outside.
    std::optional<Answer> Wait(DWORD milliseconds = INFINITE) const {
        const DWORD begin = GetTickCount();
        MSG message;
        while (!m_kept->there) {
            while (!m_kept->there && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
                if (message.message == WM_QUIT) {
                    PostQuitMessage(static_cast<int>(message.wParam));
                    return std::nullopt;
                }
                TranslateMessage(&message);
                DispatchMessageA(&message);
            }
            if (m_kept->there) break;
            const DWORD gone = GetTickCount() - begin;
            if (milliseconds != INFINITE && gone >= milliseconds) return std::nullopt;
            MsgWaitForMultipleObjects(0, nullptr, FALSE, milliseconds == INFINITE ? INFINITE : milliseconds - gone, QS_ALLINPUT);
        }
        return std::move(m_kept->answer);
    }

private:
    struct Kept {
        std::atomic<bool> there{false};
        Answer answer{};
    };
    std::shared_ptr<Kept> m_kept = std::make_shared<Kept>();
    DWORD m_thread = GetCurrentThreadId();
};

// The window over which a question stands: disabled while this lives, as under every dialog.
class Asking {
public:
    explicit Asking(HWND owner) : m_root(owner != nullptr ? GetAncestor(owner, GA_ROOT) : nullptr) {
        m_disabled = m_root != nullptr && IsWindowEnabled(m_root);
        if (m_disabled) EnableWindow(m_root, FALSE);
    }
    ~Asking() {
        if (!m_disabled || !IsWindow(m_root)) return;
        EnableWindow(m_root, TRUE);
        SetActiveWindow(m_root);
    }
    Asking(const Asking&) = delete;
    Asking& operator=(const Asking&) = delete;
    HWND Root() const { return m_root; }

private:
    HWND m_root;
    bool m_disabled = false;
};

}  // namespace orvik::detail
