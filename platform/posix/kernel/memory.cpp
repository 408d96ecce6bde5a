#include "platform/posix/kernel/memory.h"

#include <cstdlib>
#include <map>
#include <mutex>

#include "platform/posix/kernel/handle_table_internal.h"

using orvik::detail::Finish;

namespace {
void* Allocate(SIZE_T bytes, bool zero) {
    if (bytes == 0) bytes = 1;  // a block of no bytes is a block all the same
    void* block = zero ? std::calloc(1, bytes) : std::malloc(bytes);
    if (block == nullptr) SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return block;
}

// The blocks that there are, so that a wrong handle is an error and no more.
struct GlobalBlocks {
    std::mutex lock;
    std::map<HGLOBAL, SIZE_T> sizes;
    static GlobalBlocks& Get() {
        static GlobalBlocks* blocks = new GlobalBlocks;
        return *blocks;
    }
    bool Find(HGLOBAL block, SIZE_T& size) {
        const std::lock_guard guard(lock);
        const auto found = sizes.find(block);
        if (found != sizes.end()) size = found->second;
        return found != sizes.end();
    }
};
}  // namespace

HANDLE GetProcessHeap() {
    static char heap;
    return &heap;
}

LPVOID HeapAlloc(HANDLE heap, DWORD flags, SIZE_T bytes) {
    if (heap != GetProcessHeap()) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    return Allocate(bytes, (flags & HEAP_ZERO_MEMORY) != 0);
}

BOOL HeapFree(HANDLE heap, DWORD, LPVOID block) {
    if (heap != GetProcessHeap()) return Finish(ERROR_INVALID_HANDLE);
    std::free(block);
    return TRUE;
}

HLOCAL LocalAlloc(UINT flags, SIZE_T bytes) {
    if ((flags & ~static_cast<UINT>(LPTR)) != 0) {  // movable blocks
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    return Allocate(bytes, (flags & LMEM_ZEROINIT) != 0);
}

HLOCAL LocalFree(HLOCAL block) {
    std::free(block);
    return nullptr;
}

HGLOBAL GlobalAlloc(UINT flags, SIZE_T bytes) {
    if ((flags & ~static_cast<UINT>(GHND)) != 0) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return nullptr;
    }
    void* const block = Allocate(bytes, (flags & GMEM_ZEROINIT) != 0);
    if (block == nullptr) return nullptr;
    GlobalBlocks& blocks = GlobalBlocks::Get();
    const std::lock_guard guard(blocks.lock);
    blocks.sizes[block] = bytes;
    return block;
}

LPVOID GlobalLock(HGLOBAL block) {
    SIZE_T size = 0;
    if (GlobalBlocks::Get().Find(block, size)) return block;
    SetLastError(ERROR_INVALID_HANDLE);
    return nullptr;
}

BOOL GlobalUnlock(HGLOBAL block) {
    SIZE_T size = 0;
    SetLastError(GlobalBlocks::Get().Find(block, size) ? ERROR_SUCCESS : ERROR_INVALID_HANDLE);
    return FALSE;
}

SIZE_T GlobalSize(HGLOBAL block) {
    SIZE_T size = 0;
    if (!GlobalBlocks::Get().Find(block, size)) SetLastError(ERROR_INVALID_HANDLE);
    return size;
}

HGLOBAL GlobalFree(HGLOBAL block) {
    if (block == nullptr) return nullptr;
    GlobalBlocks& blocks = GlobalBlocks::Get();
    const std::lock_guard guard(blocks.lock);
    if (blocks.sizes.erase(block) == 0) {
        SetLastError(ERROR_INVALID_HANDLE);
        return block;
    }
    std::free(block);
    return nullptr;
}
