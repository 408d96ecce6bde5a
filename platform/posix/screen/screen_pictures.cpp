// What was drawn, for the screen to show.
// A thread draws into its windows' pictures piece by piece: a background first, then what lies on it. The screen sees a copy,
// which is brought up to date when the thread is back at its messages and has nothing left to paint; so nobody sees half a
// picture.
#include <cstring>
#include <map>
#include <mutex>

#include "platform/posix/drawing/rect.h"
#include "platform/posix/screen/screen_accessible_internal.h"
#include "platform/posix/screen/screen_loading_internal.h"
#include "platform/posix/screen/screen_pictures_internal.h"
#include "platform/posix/window/window_internal.h"

namespace orvik::detail {
namespace {
constexpr int64_t kLongest = 40 * kMillisecond;  // that a thread may keep its drawing to itself

struct Picture {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;
    PixelView View() { return {pixels.data(), width, height, width}; }
};
struct Pictures {
    std::mutex lock;  // after the kernel lock
    std::map<HWND, Picture> shown;
};
Pictures& ThePictures() {
    static Pictures* pictures = new Pictures;
    return *pictures;
}

// Copies the area, and all of a picture that has another size than before.
void Copy(HWND window, Canvas& canvas, RECT area) {
    const PixelView from = canvas.Pixels();
    Pictures& pictures = ThePictures();
    const std::lock_guard lock(pictures.lock);
    Picture& shown = pictures.shown[window];
    if (shown.width != from.width || shown.height != from.height) {
        shown = {from.width, from.height,
                 std::vector<uint32_t>(static_cast<size_t>(from.width) * static_cast<size_t>(from.height))};
        area = {0, 0, from.width, from.height};
    }
    const PixelView to = shown.View();
    const RECT part = CommonRectangle(area, {0, 0, from.width, from.height});
    if (IsEmptyRectangle(part)) return;
    const auto length = static_cast<size_t>(part.right - part.left) * sizeof(uint32_t);
    for (int y = part.top; y < part.bottom; ++y) std::memcpy(to.Row(y) + part.left, from.Row(y) + part.left, length);
}
}  // namespace

void LendPicture(HWND window, const std::function<void(const PixelView&)>& take) {
    Pictures& pictures = ThePictures();
    const std::lock_guard lock(pictures.lock);
    const auto found = pictures.shown.find(window);
    if (found != pictures.shown.end()) take(found->second.View());
}

void ForgetPicture(HWND window) {
    if (!HasScreen()) return;
    Pictures& pictures = ThePictures();
    const std::lock_guard lock(pictures.lock);
    pictures.shown.erase(window);
}

void NoteDrawn(Window& root, const RECT& area) {
    if (IsEmptyRectangle(area)) return;
    root.drawn = IsEmptyRectangle(root.drawn)
                     ? area
                     : RECT{std::min(root.drawn.left, area.left), std::min(root.drawn.top, area.top),
                            std::max(root.drawn.right, area.right), std::max(root.drawn.bottom, area.bottom)};
    MessageQueue* const queue = QueueOf(root.thread);
    if (queue != nullptr && queue->drawnSince == 0) queue->drawnSince = NowNs();
}

bool DrawnIsDue() {
    if (!HasScreen()) return false;
    MessageQueue& queue = CurrentQueue();
    const std::lock_guard kernel(KernelLock());
    return queue.drawnSince != 0 && NowNs() - queue.drawnSince > kLongest;
}

void ShowDrawn() {
    if (!HasScreen()) return;
    struct Drawn {
        HWND window;
        std::shared_ptr<Canvas> canvas;
        RECT area;
    };
    std::vector<Drawn> drawn;
    {
        MessageQueue& queue = CurrentQueue();
        const std::lock_guard kernel(KernelLock());
        if (queue.contexts != 0) NoteOpenContexts(queue.thread);
        queue.drawnSince = 0;
        for (const HWND each : Desktop().children) {
            Window* const root = FindWindowOf(each);
            if (root == nullptr || root->thread != queue.thread || IsEmptyRectangle(root->drawn)) continue;
            if (root->canvas != nullptr) drawn.push_back({each, root->canvas, root->drawn});
            root->drawn = {};
        }
    }
    for (const Drawn& each : drawn) {
        Copy(each.window, *each.canvas, each.area);
        if (Screen* const screen = TheScreen()) screen->Damaged(each.window, each.area);
        NoteUndescribed(each.window);
    }
}

}  // namespace orvik::detail
