#include "platform/posix/kernel/memory.h"

#include <cstdlib>

#include "platform/posix/kernel/handle_table_internal.h"

using orvik::detail::Finish;

namespace {
void* Allocate(SIZE_T bytes, bool zero) {
    if (bytes == 0) bytes = 1;  // a block of no bytes is a block all the same
    void* block = zero ? std::calloc(1, bytes) : std::malloc(bytes);
    if (block == nullptr) SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return block;
}
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
