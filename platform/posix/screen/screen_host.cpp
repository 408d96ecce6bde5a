// What the library tells a screen of its windows.
#include "platform/house_text_internal.h"
#include "platform/posix/resources/images_internal.h"
#include "platform/posix/screen/screen_accessible_internal.h"
#include "platform/posix/screen/screen_events_internal.h"
#include "platform/posix/screen/screen_loading_internal.h"
#include "platform/posix/screen/screen_pictures_internal.h"
#include "platform/posix/window/dpi.h"
#include "platform/posix/window/window_internal.h"

namespace orvik::detail {
namespace {

CursorLook LookOf(HCURSOR cursor) {
    CursorLook look;
    const IconImage* const image = ImageOf(reinterpret_cast<HICON>(cursor));
    if (image == nullptr) return look;
    look.picture = image;
    look.systemId = image->systemId;
    look.width = image->width;
    look.height = image->height;
    look.hotX = image->hotX;
    look.hotY = image->hotY;
    look.pixels = image->pixels;
    return look;
}

class Host final : public ScreenHost {
public:
    bool Describe(HWND handle, ShownWindow& out) override {
        const std::lock_guard kernel(KernelLock());
        const Window* const window = FindWindowOf(handle);
        if (window == nullptr || window->destroying) return false;
        out.visible = (window->style & WS_VISIBLE) != 0 && !window->messageOnly;
        out.enabled = (window->style & WS_DISABLED) == 0;
        out.resizable = (window->style & WS_THICKFRAME) != 0;
        out.dialog = window->parent != nullptr && (window->style & WS_CAPTION) == WS_CAPTION;
        Window* const owner = window->parent != nullptr ? FindWindowOf(window->parent) : nullptr;
        out.owner = owner != nullptr ? RootOf(*owner).handle : nullptr;
        out.popup = window->popup;
        if (const Window* const base = out.popup ? FindWindowOf(out.popup->owner) : nullptr) {
            out.owner = base->handle;
            out.popup->anchor = Moved(out.popup->anchor, 0, base->bar);
        }
        out.size = {window->Width(), window->Height()};
        out.least = window->least;
        out.dots = window->dpi;
        out.sizedByScreen = window->sizedByScreen;
        out.raised = window->raised;
        out.state = window->state;
        out.stateAsked = window->stateAsked;
        out.title = Utf8FromHouse(window->text);
        out.takesFiles = (window->exStyle & WS_EX_ACCEPTFILES) != 0;
        out.caret = window->caret;
        const WNDCLASSEXA& info = window->windowClass->info;
        for (const HICON icon : {window->icons[ICON_BIG] != nullptr ? window->icons[ICON_BIG] : info.hIcon,
                                 window->icons[ICON_SMALL] != nullptr ? window->icons[ICON_SMALL] : info.hIconSm})
            if (icon != nullptr) out.icons.push_back(LookOf(icon));
        if (const MessageQueue* const queue = QueueOf(window->thread)) out.cursor = LookOf(queue->cursor);
        return true;
    }
    void Lend(HWND window, const std::function<void(const PixelView&)>& take) override { LendPicture(window, take); }
    void Post(HWND window, const ScreenEvent& event) override { PostScreenEvent(window, event); }
    void Listen() override { ListenToWindows(); }
    void Ask(HWND root, HWND window, const OrvikAccessibleAct& act) override { AskOfWindow(root, window, act); }
    void SetDesktop(SIZE pixels, UINT dots) override {
        OrvikSetSystemDpi(dots);
        const std::lock_guard kernel(KernelLock());
        Desktop().rectangle = {0, 0, pixels.cx, pixels.cy};
    }
    void SetLooks(const DesktopLooks& looks) override {
        if (!SetDesktopLooks(looks)) return;
        std::vector<HWND> roots;
        {
            const std::lock_guard kernel(KernelLock());
            roots = Desktop().children;
        }
        for (const HWND each : roots) PostScreenEvent(each, ScreenEvent{ScreenEvent::Kind::LooksChanged});
    }
};

}  // namespace

ScreenHost& TheScreenHost() {
    static Host* host = new Host;
    return *host;
}

void NoteChanged(const Window& window) {
    if (window.thread == 0 || (window.style & WS_CHILD) != 0 || window.messageOnly) return;
    if (Screen* const screen = TheScreen()) screen->Changed(window.handle);
}

void NoteCursor(DWORD thread) {
    Screen* const screen = TheScreen();
    if (screen == nullptr) return;
    for (const HWND each : Desktop().children) {
        const Window* const window = FindWindowOf(each);
        if (window != nullptr && window->thread == thread && (window->style & WS_VISIBLE) != 0) screen->Changed(each);
    }
}

}  // namespace orvik::detail
