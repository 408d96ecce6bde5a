// The screen: a thread that runs GTK, and the windows on it.
#pragma once

#include <gtk/gtk.h>

#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

#include "platform/posix/window/screen_internal.h"
#include "platform/screen_gtk3/gtk_clipboard.h"
#include "platform/screen_gtk3/gtk_print.h"
#include "platform/screen_gtk3/gtk_window.h"

class GtkScreen final : public orvik::detail::Screen {
public:
    explicit GtkScreen(orvik::detail::ScreenHost& host) : m_host(host) {}

    // Starts the thread; false where there is no display.
    bool Start();

    // From any thread.
    void Changed(HWND window) override;
    void Damaged(HWND window, const RECT& area) override;
    void Described(HWND window, std::shared_ptr<const OrvikAccessible> said) override;
    void AskForFile(orvik::detail::FileQuestion question, orvik::detail::FileAnswer answer) override;
    orvik::detail::ScreenExchange* Exchange() override { return &m_clipboards; }
    orvik::detail::ScreenPrinters* Printers() override { return &m_printers; }
    void End() override;

    // For windows, on the module's thread.
    orvik::detail::ScreenHost& Host() { return m_host; }
    ScreenWindow* Find(HWND window);
    void Grab(ScreenWindow& popup);       // pointer and keys, for as long as it is there
    void Noted(const GdkEvent* event);    // a press, which a grab refers to
    void Focused(HWND window, bool has);  // as the desktop says; told on when it has settled

private:
    void Run(std::function<void(bool)> started);
    void Serve();
    void TellDesktop();
    void Follow(HWND window);
    void Release();
    void SettleFocus();
    void Schedule();

    orvik::detail::ScreenHost& m_host;
    std::thread m_thread;
    GMainLoop* m_loop = nullptr;
    GtkClipboards m_clipboards;
    GtkPrinters m_printers{*this};

    std::mutex m_lock;  // the notes
    std::set<HWND> m_changed;
    std::map<HWND, RECT> m_damaged;
    std::map<HWND, std::shared_ptr<const OrvikAccessible>> m_described;
    bool m_scheduled = false;

    std::map<HWND, std::unique_ptr<ScreenWindow>> m_windows;
    std::vector<HWND> m_popups;  // with the grab, the last one on top
    GdkEvent* m_press = nullptr;
    HWND m_focused = nullptr, m_told = nullptr;
    bool m_settling = false;
};
