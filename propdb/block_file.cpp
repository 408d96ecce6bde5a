#include "propdb/block_file.h"

#include <cstring>

namespace orvik::detail {
void BlockFile::Write(const void* data, UINT size) {
    if (size > kBlock - m_used) Flush();
    if (size > kBlock) {
        m_file.Write(data, size);
        return;
    }
    std::memcpy(m_block.get() + m_used, data, size);
    m_used += size;
}

void BlockFile::Flush() {
    const UINT used = m_used;
    m_used = 0;
    if (used > 0) m_file.Write(m_block.get(), used);
}
}  // namespace orvik::detail
