// Finding and opening the module that shows windows.
#include <dlfcn.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <mutex>

#include "platform/posix/screen/screen_loading_internal.h"
#include "platform/posix/window/window_internal.h"
#include "platform/screen.h"

namespace orvik::detail {
namespace {
std::atomic<Screen*> g_screen{nullptr};
std::atomic<bool> g_inMemory{false};

std::string Setting(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

// Beside this library, or the program that it is linked into.
std::filesystem::path OwnFolder() {
    Dl_info info{};
    static const char s_here = 0;
    if (dladdr(&s_here, &info) == 0 || info.dli_fname == nullptr) return {};
    std::error_code error;
    const std::filesystem::path own = std::filesystem::canonical(info.dli_fname, error);
    return error ? std::filesystem::path() : own.parent_path();
}

Screen* Open() {
    if (g_inMemory || (Setting("DISPLAY").empty() && Setting("WAYLAND_DISPLAY").empty())) return nullptr;
    const std::string asked = Setting("ORVIK_SCREEN"), name = asked.empty() ? "gtk3" : asked;
    if (name == "none" || name.find('/') != std::string::npos) return nullptr;
    const std::string file = (OwnFolder() / "orvik" / ("screen_" + name + ".so")).string();
    void* const module = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) return nullptr;  // a machine for programs without windows
    const auto open = reinterpret_cast<OpenScreen*>(dlsym(module, "OrvikOpenScreen"));
    return open != nullptr ? open(kScreenSeam, TheScreenHost()) : nullptr;
}
}  // namespace

Screen* UseScreen(Screen* screen) { return g_screen.exchange(screen); }
Screen* TheScreen() { return g_screen.load(std::memory_order_acquire); }
ScreenExchange* TheExchange() {
    Screen* const screen = TheScreen();
    return screen != nullptr ? screen->Exchange() : nullptr;
}
ScreenPrinters* ThePrinters() {
    Screen* const screen = TheScreen();
    return screen != nullptr ? screen->Printers() : nullptr;
}
bool HasScreen() { return TheScreen() != nullptr; }

bool OpenScreenNow() {
    static std::once_flag opened;
    std::call_once(opened, [] {
        Screen* const screen = HasScreen() ? nullptr : Open();
        if (screen == nullptr) return;
        UseScreen(screen);
        // The screen's thread must not outlive what it asks.
        std::atexit([] { UseScreen(nullptr)->End(); });
    });
    return HasScreen();
}

void JoinScreen(HWND root) {
    if (!OpenScreenNow()) return;
    ListenToScreen();
    MINMAXINFO limits{};
    limits.ptMaxTrackSize = {32767, 32767};
    SendMessageA(root, WM_GETMINMAXINFO, 0, reinterpret_cast<LPARAM>(&limits));
    const std::lock_guard kernel(KernelLock());
    if (Window* window = FindWindowOf(root)) window->least = {limits.ptMinTrackSize.x, limits.ptMinTrackSize.y};
}

bool AskOnScreen(const FileQuestion& question, FileAnswer answer) {
    Screen* const screen = TheScreen();
    if (screen != nullptr) screen->AskForFile(question, std::move(answer));
    return screen != nullptr;
}

}  // namespace orvik::detail

BOOL OrvikHasScreen() { return orvik::detail::OpenScreenNow(); }

void OrvikKeepWindowsInMemory() { orvik::detail::g_inMemory = true; }
