// A file to write into in small pieces, which hands them on to another file in blocks. Internal.
// One thread. The other file is borrowed. What is still held is handed on by Flush alone, never by the destructor: a failure
// would be lost.
#pragma once

#include "afx/file.h"

#include <memory>

namespace orvik::detail {
class BlockFile final : public CFile {
public:
    explicit BlockFile(CFile& file) : m_file(file), m_block(new char[kBlock]) {}

    void Write(const void* data, UINT size) override;
    void Flush() override;  // hands on; does not flush the other file

private:
    static constexpr UINT kBlock = 65536;
    CFile& m_file;
    std::unique_ptr<char[]> m_block;
    UINT m_used = 0;
};
}  // namespace orvik::detail
