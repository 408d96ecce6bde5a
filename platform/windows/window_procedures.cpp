// Every procedure that takes this house's text has one that the system calls, out of a row of them: none is made while running.
#include <array>
#include <atomic>
#include <utility>

#include "platform/windows/message_text_internal.h"

namespace orvik::detail {
namespace {
constexpr size_t kMost = 128;  // different ones of a process; the house has two

// Procedures in the order in which they came; they stay.
class ProcedureList {
public:
    // Where it is, or kMost.
    size_t Find(WNDPROC procedure) const {
        for (size_t i = 0; i < kMost; ++i) {
            const WNDPROC entry = m_entries[i].load(std::memory_order_acquire);
            if (entry == procedure) return i;
            if (entry == nullptr) break;
        }
        return kMost;
    }
    // Where it is from now on, or kMost for a full list.
    size_t Add(WNDPROC procedure) {
        for (size_t i = 0; i < kMost; ++i) {
            WNDPROC entry = nullptr;
            if (m_entries[i].compare_exchange_strong(entry, procedure) || entry == procedure) return i;
        }
        return kMost;
    }
    WNDPROC At(size_t i) const { return m_entries[i].load(std::memory_order_acquire); }

private:
    std::array<std::atomic<WNDPROC>, kMost> m_entries{};
};
constinit ProcedureList g_narrow, g_wide;

template <size_t Index>
LRESULT CALLBACK CallNarrow(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    const WNDPROC procedure = g_narrow.At(Index);
    const auto way = [&](UINT each, WPARAM w, LPARAM l) { return procedure(window, each, w, l); };
    return ToNarrow(window, message, wParam, lParam, way);
}

template <size_t... Index>
constexpr std::array<WNDPROC, kMost> Callers(std::index_sequence<Index...>) {
    return {&CallNarrow<Index>...};
}
constexpr std::array<WNDPROC, kMost> kCallers = Callers(std::make_index_sequence<kMost>());
}  // namespace

bool IsWideProcedure(WNDPROC procedure) { return g_wide.Find(procedure) < kMost; }

WNDPROC WideProcedure(WNDPROC narrow) {
    if (narrow == nullptr || IsWideProcedure(narrow)) return narrow;
    const size_t index = g_narrow.Add(narrow);
    if (index < kMost) return kCallers[index];
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

WNDPROC NarrowProcedure(WNDPROC wide) {
    for (size_t i = 0; i < kMost; ++i)
        if (kCallers[i] == wide) return g_narrow.At(i);
    if (wide == nullptr || g_wide.Add(wide) < kMost) return wide;
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}
}  // namespace orvik::detail
