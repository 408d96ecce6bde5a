// Bytes that a read had taken from a port when its time ran out. The system gives them back to nobody, so they are kept here for
// the port's next read. Kept by the port's handle, which copies of a port share. Any thread.
#pragma once

#include <cstddef>

#include "platform/win32.h"

namespace orvik::detail {

void HoldBytes(HANDLE port, const void* bytes, size_t count);
// Moves the first ones, `most` at most, to `out`; returns how many.
size_t TakeHeldBytes(HANDLE port, void* out, size_t most);
void DropHeldBytes(HANDLE port);

}  // namespace orvik::detail
