#include "tests/support/memory/memory_meter.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void __real_free(void* block);
}

namespace {
// Blocks made while a meter runs, in an open-addressing table of its own outside the heap that is measured.
struct Block {
    void* address;
    size_t size;
};
constexpr size_t kSlots = 1 << 22;
constexpr size_t kOverhead = 16;
Block* g_blocks = nullptr;

// A spin lock: a mutex may ask the heap itself.
constinit std::atomic_flag g_taken = ATOMIC_FLAG_INIT;
class Lock {
public:
    Lock() {
        while (g_taken.test_and_set(std::memory_order_acquire)) {
        }
    }
    ~Lock() { g_taken.clear(std::memory_order_release); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
};
bool g_running = false;
size_t g_now = 0;
size_t g_peak = 0;

Block* SlotOf(const void* address) {
    size_t slot = (reinterpret_cast<uintptr_t>(address) >> 4) * 0x9E3779B97F4A7C15u >> 20 & (kSlots - 1);
    while (g_blocks[slot].address != nullptr && g_blocks[slot].address != address) slot = (slot + 1) & (kSlots - 1);
    return &g_blocks[slot];
}

void Made(void* address, size_t size) {
    if (address == nullptr) return;
    const Lock lock;
    if (!g_running) return;
    *SlotOf(address) = {address, size + kOverhead};
    g_now += size + kOverhead;
    g_peak = std::max(g_peak, g_now);
}

// The entry stays with size 0: the address will come again.
void Gone(const void* address) {
    if (address == nullptr) return;
    const Lock lock;
    if (!g_running) return;
    Block* block = SlotOf(address);
    if (block->address == nullptr) return;
    g_now -= block->size;
    block->size = 0;
}
}  // namespace

extern "C" {
void* __wrap_malloc(size_t size) {
    void* block = __real_malloc(size);
    Made(block, size);
    return block;
}
void* __wrap_calloc(size_t count, size_t size) {
    void* block = __real_calloc(count, size);
    Made(block, count * size);
    return block;
}
void* __wrap_realloc(void* old, size_t size) {
    // Both blocks are there while the bytes are copied, at worst.
    Made(&g_peak, size);
    Gone(&g_peak);
    void* block = __real_realloc(old, size);
    if (block != nullptr || size == 0) Gone(old);
    Made(block, size);
    return block;
}
void __wrap_free(void* block) {
    Gone(block);
    __real_free(block);
}
}

void* operator new(size_t size) {
    if (void* block = __wrap_malloc(size != 0 ? size : 1)) return block;
    throw std::bad_alloc();
}
void* operator new[](size_t size) { return operator new(size); }
void operator delete(void* block) noexcept { __wrap_free(block); }
void operator delete(void* block, size_t) noexcept { __wrap_free(block); }
void operator delete[](void* block) noexcept { __wrap_free(block); }
void operator delete[](void* block, size_t) noexcept { __wrap_free(block); }

MemoryMeter::MemoryMeter() {
    auto* blocks = static_cast<Block*>(__real_calloc(kSlots, sizeof(Block)));
    const Lock lock;
    g_blocks = blocks;
    g_now = g_peak = 0;
    g_running = true;
}

MemoryMeter::~MemoryMeter() {
    const Lock lock;
    g_running = false;
    __real_free(g_blocks);
    g_blocks = nullptr;
}

size_t MemoryMeter::Peak() const { return g_peak; }
size_t MemoryMeter::Now() const { return g_now; }
