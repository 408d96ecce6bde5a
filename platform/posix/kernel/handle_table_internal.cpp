#include "platform/posix/kernel/handle_table_internal.h"

#include <array>
#include <atomic>
#include <mutex>
#include <vector>

namespace orvik::detail {

// The state word holds, from the top: the slot's generation (32 bits), whether its handle is open (1 bit), and the pins (31
// bits). An open handle is itself a pin, so a slot with no pins is closed, and whoever takes the last pin away empties it.
struct HandleSlot {
    std::atomic<uint64_t> state{uint64_t{1} << 32};
    std::shared_ptr<KernelObject> object;
    uint32_t index = 0;
};

namespace {
constexpr uint64_t kOpen = uint64_t{1} << 31;
constexpr uint64_t kPins = kOpen - 1;
constexpr uint32_t kChunk = 256, kChunks = 256;

// Slots never move and are never freed, so a look-up may touch any of them without a lock.
struct Table {
    std::array<std::atomic<HandleSlot*>, kChunks> chunks{};
    std::mutex lock;  // the free list and growth
    std::vector<HandleSlot*> free;
    uint32_t used = 0;
};

Table& TheTable() {
    static Table* table = new Table;  // never destroyed: static objects of other files still close handles at exit
    return *table;
}

// A handle is generation, index and two zero bits: never null (generations begin at 1), nor one of the small negative pseudo
// handles.
HANDLE HandleOf(uint64_t state, uint32_t index) {
    return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(((state >> 32) << 18) | (uint64_t{index} << 2)));
}

struct Named {
    HandleSlot* slot;
    uint64_t generation;
};
Named SlotOf(HANDLE handle) {
    const auto value = static_cast<uint64_t>(reinterpret_cast<uintptr_t>(handle));
    const uint64_t generation = value >> 18;
    const uint64_t index = (value >> 2) & 0xFFFF;
    if ((value & 3) != 0 || generation == 0 || generation > 0xFFFFFFFF) return {nullptr, 0};
    HandleSlot* chunk = TheTable().chunks[index / kChunk].load(std::memory_order_acquire);
    return {chunk == nullptr ? nullptr : chunk + index % kChunk, generation};
}

void Unpin(HandleSlot& slot) {
    const uint64_t before = slot.state.fetch_sub(1, std::memory_order_acq_rel);
    if ((before & kPins) != 1) return;
    const std::shared_ptr<KernelObject> last = std::move(slot.object);
    uint64_t generation = ((before >> 32) + 1) & 0xFFFFFFFF;
    if (generation == 0) generation = 1;
    slot.state.store(generation << 32, std::memory_order_release);
    Table& table = TheTable();
    const std::lock_guard guard(table.lock);
    table.free.push_back(&slot);
}
}  // namespace

PinnedObject::PinnedObject(HANDLE handle) {
    const Named named = SlotOf(handle);
    if (named.slot == nullptr) return;
    uint64_t state = named.slot->state.load(std::memory_order_relaxed);
    do {
        if ((state >> 32) != named.generation || (state & kOpen) == 0) return;
    } while (!named.slot->state.compare_exchange_weak(state, state + 1, std::memory_order_acquire, std::memory_order_relaxed));
    m_slot = named.slot;
}

void PinnedObject::Release() { Unpin(*m_slot); }
KernelObject* PinnedObject::Get() const { return m_slot == nullptr ? nullptr : m_slot->object.get(); }
const std::shared_ptr<KernelObject>& PinnedObject::Shared() const { return m_slot->object; }

bool IsOpenHandle(HANDLE handle) {
    const Named named = SlotOf(handle);
    if (named.slot == nullptr) return false;
    const uint64_t state = named.slot->state.load(std::memory_order_acquire);
    return (state >> 32) == named.generation && (state & kOpen) != 0;
}

HANDLE NewHandle(std::shared_ptr<KernelObject> object) {
    Table& table = TheTable();
    HandleSlot* slot = nullptr;
    {
        const std::lock_guard guard(table.lock);
        if (table.free.empty()) {
            if (table.used == kChunks) {
                SetLastError(ERROR_TOO_MANY_OPEN_FILES);
                return nullptr;
            }
            auto* chunk = new HandleSlot[kChunk];
            for (uint32_t i = kChunk; i-- > 0;) {
                chunk[i].index = table.used * kChunk + i;
                table.free.push_back(&chunk[i]);
            }
            table.chunks[table.used++].store(chunk, std::memory_order_release);
        }
        slot = table.free.back();
        table.free.pop_back();
    }
    slot->object = std::move(object);
    const uint64_t state = slot->state.load(std::memory_order_relaxed) | kOpen | 1;
    slot->state.store(state, std::memory_order_release);
    return HandleOf(state, slot->index);
}

DWORD RemoveHandle(HANDLE handle) {
    const Named named = SlotOf(handle);
    if (named.slot == nullptr) return ERROR_INVALID_HANDLE;
    uint64_t state = named.slot->state.load(std::memory_order_relaxed);
    do {
        if ((state >> 32) != named.generation || (state & kOpen) == 0) return ERROR_INVALID_HANDLE;
    } while (
        !named.slot->state.compare_exchange_weak(state, state & ~kOpen, std::memory_order_acquire, std::memory_order_relaxed));
    named.slot->object->Closing();
    Unpin(*named.slot);
    return ERROR_SUCCESS;
}

}  // namespace orvik::detail
