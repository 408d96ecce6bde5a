// Where version.cpp gets its bytes from: a file's version record, whichever home the file is for. Offsets and counts come from
// the file, so each read is checked against the file's length, and nothing is read twice on the file's word.
#pragma once

#include <string>
#include <vector>

#include "platform/posix/resources/version.h"
#include "platform/posix/types.h"

namespace orvik::detail {

constexpr size_t kMaxVersionResource = 0xFFFF;  // a version block tells its own length in 16 bits

// The file, open to be read.
class VersionSource {
public:
    explicit VersionSource(const std::string& path);
    ~VersionSource();
    VersionSource(const VersionSource&) = delete;
    VersionSource& operator=(const VersionSource&) = delete;

    // Whether it is a regular file that could be opened; a Win32 code.
    DWORD Check() const;
    // All the bytes or failure.
    bool Read(ULONGLONG at, unsigned char* out, size_t size) const;

private:
    const int m_fd;
};

// The bytes of a file's version resource, at most 65,535. An error code, as GetFileVersionInfoSizeA has it.
DWORD ReadVersionResource(LPCSTR name, std::vector<unsigned char>& bytes);

// The same of a program or library of Windows, and of this system.
DWORD ReadPeVersion(const VersionSource& file, std::vector<unsigned char>& bytes);
DWORD ReadElfVersion(const VersionSource& file, std::vector<unsigned char>& bytes);

}  // namespace orvik::detail
