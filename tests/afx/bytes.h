// Archives as byte strings, written by hand and read back, and the exceptions that a test waits for.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "afx/archive.h"
#include "afx/exception.h"
#include "afx/file.h"
#include "tests/support/raises.h"

namespace afx_test {
inline std::string Word(unsigned value) {
    const char bytes[] = {static_cast<char>(value & 0xFF), static_cast<char>((value >> 8) & 0xFF)};
    return std::string(bytes, 2);
}
inline std::string DWord(unsigned value) { return Word(value & 0xFFFF) + Word(value >> 16); }
// A class met first, with schema 0.
inline std::string NewClass(const std::string& name, unsigned schema = 0) {
    return Word(0xFFFF) + Word(schema) + Word(static_cast<unsigned>(name.size())) + name;
}
inline std::string Text(const std::string& text) { return static_cast<char>(text.size()) + text; }

// What `store` writes.
template <class Store>
std::string Stored(Store store) {
    CMemFile file;
    CArchive archive(&file, CArchive::store);
    store(archive);
    archive.Close();
    return std::string(reinterpret_cast<const char*>(file.GetBufferPtr()), static_cast<size_t>(file.GetLength()));
}

// Runs `load` on those bytes. The cause of the archive exception that it raises, or -1.
template <class Load>
int Loaded(const std::string& bytes, Load load, UINT mode = CArchive::load) {
    std::string copy = bytes;
    CMemFile file(reinterpret_cast<BYTE*>(copy.data()), static_cast<UINT>(copy.size()));
    return CauseOf<CArchiveException>([&] {
        CArchive archive(&file, mode);
        load(archive);
    });
}

template <class Load>
int LoadedAsTree(const std::string& bytes, Load load) {
    return Loaded(bytes, load, CArchive::load | CArchive::bTreeOnly);
}
template <class Load>
void ExpectLoads(const std::string& bytes, Load load) {
    EXPECT_EQ(Loaded(bytes, load), -1);
}

template <class Call>
void ExpectInvalidArg(Call call) {
    EXPECT_TRUE(Raises<CInvalidArgException>(call));
}

// The cause of the file exception that the call raises, or -1.
template <class Call>
int FileCause(Call call) {
    return CauseOf<CFileException>(call);
}
}  // namespace afx_test
