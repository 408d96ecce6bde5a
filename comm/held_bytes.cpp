#include <algorithm>
#include <atomic>
#include <cstring>
#include <map>
#include <mutex>
#include <string>

#include "comm/held_bytes_internal.h"

namespace orvik::detail {
namespace {
std::mutex g_lock;
std::map<HANDLE, std::string> g_held;
// There is hardly ever anything: a read then asks nothing but this.
std::atomic<bool> g_any{false};
}  // namespace

void HoldBytes(HANDLE port, const void* bytes, size_t count) {
    if (count == 0) return;
    const std::lock_guard lock(g_lock);
    g_held[port].insert(0, static_cast<const char*>(bytes), count);
    g_any = true;
}

size_t TakeHeldBytes(HANDLE port, void* out, size_t most) {
    if (!g_any) return 0;
    const std::lock_guard lock(g_lock);
    const auto found = g_held.find(port);
    if (found == g_held.end()) return 0;
    const size_t count = std::min(most, found->second.size());
    std::memcpy(out, found->second.data(), count);
    found->second.erase(0, count);
    if (found->second.empty()) g_held.erase(found);
    g_any = !g_held.empty();
    return count;
}

void DropHeldBytes(HANDLE port) {
    if (!g_any) return;
    const std::lock_guard lock(g_lock);
    g_held.erase(port);
    g_any = !g_held.empty();
}

}  // namespace orvik::detail
