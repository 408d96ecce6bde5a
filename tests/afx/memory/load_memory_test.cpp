// Loading archives made to be expensive: at every moment the memory held stays below 32 times the input plus 1 MiB, and nothing
// stays behind a load that failed.
#include <cstdio>

#include "afx/array.h"
#include "afx/collections.h"
#include "tests/afx/bytes.h"
#include "tests/afx/object_tree.h"
#include "tests/support/memory/memory_meter.h"

using namespace afx_test;

namespace {
// Loads the bytes as a tree of maps; what comes of it is deleted again.
void LoadTree(CFile& file) {
    CMapStringToOb map;
    try {
        CArchive archive(&file, CArchive::load | CArchive::bTreeOnly);
        map.Serialize(archive);
    } catch (CException* failure) {
        failure->Delete();
    }
    DeleteTree(map);
}

void ExpectCheap(const char* what, const std::string& bytes) {
    {
        // What the run-time library keeps from the first exception of a thread on is not the load's.
        CMemFile empty;
        LoadTree(empty);
    }
    std::string copy = bytes;
    CMemFile file(reinterpret_cast<BYTE*>(copy.data()), static_cast<UINT>(copy.size()));
    size_t peak = 0, left = 0;
    {
        const MemoryMeter meter;
        LoadTree(file);
        peak = meter.Peak();
        left = meter.Now();
    }
    EXPECT_LT(peak, 32 * bytes.size() + (1 << 20)) << what;
    EXPECT_EQ(left, 0u) << what;
    std::printf("%-28s %8zu bytes, %5.1f times\n", what, bytes.size(),
                static_cast<double>(peak) / static_cast<double>(bytes.size()));
}

constexpr int kMany = 60000;
std::string Key(int i) { return std::string(1, static_cast<char>(2)) + static_cast<char>(i & 0xFF) + static_cast<char>(i >> 8); }
std::string Huge(unsigned count) { return Word(0xFFFF) + DWord(count); }

// `count` entries with two-byte keys, each an object of the class with that body.
std::string Wide(const char* className, const std::string& body, int count = kMany) {
    std::string bytes = Word(static_cast<unsigned>(count));
    for (int i = 0; i < count; ++i) bytes += Key(i) + (i == 0 ? NewClass(className) : Word(0x8001)) + body;
    return bytes;
}

TEST(LoadMemory, StaysWithin32TimesTheInput) {
    ExpectCheap("empty nodes", Wide("CMapStringToOb", Word(0)));
    ExpectCheap("nodes of one null", Wide("CMapStringToOb", Word(1) + Text("") + Word(0)));
    ExpectCheap("nodes of three nulls",
                Wide("CMapStringToOb", Word(3) + Text("") + Word(0) + Text("a") + Word(0) + Text("b") + Word(0)));
    ExpectCheap("empty word arrays", Wide("CWordArray", Word(0)));
    ExpectCheap("word arrays of one", Wide("CWordArray", Word(1) + Word(1)));
    ExpectCheap("empty text arrays", Wide("CStringArray", Word(0)));
    ExpectCheap("text arrays of one", Wide("CStringArray", Word(1) + Text("x")));
    ExpectCheap("text arrays of nine", Wide("CStringArray", Word(9) + std::string(9, '\0'), 6000));
    std::string nulls = Word(kMany);
    for (int i = 0; i < kMany; ++i) nulls += Key(i) + Word(0);
    ExpectCheap("null children", nulls);

    const auto texts = [](const std::string& each, unsigned count) {
        std::string bytes = Word(1) + Text("t") + NewClass("CStringArray") + Huge(count);
        for (unsigned i = 0; i < count; ++i) bytes += each;
        return bytes;
    };
    ExpectCheap("empty texts", texts(Text(""), 500000));
    ExpectCheap("texts of one", texts(Text("x"), 300000));
}

TEST(LoadMemory, BelievesNoCount) {
    for (const char* array : {"CByteArray", "CWordArray", "CDWordArray", "CStringArray"})
        ExpectCheap(array, Word(1) + Text("a") + NewClass(array) + Huge(0xFFFFFFFE) + std::string(3, '\0'));
    ExpectCheap("half as many texts", Word(1) + Text("a") + NewClass("CStringArray") + Huge(1000000) + std::string(500000, '\0'));
    ExpectCheap("half the double words",
                Word(1) + Text("a") + NewClass("CDWordArray") + Huge(1000000) + std::string(2000000, '\1'));
    ExpectCheap("entries", Huge(0xFFFFFFFE) + Text("a") + Word(0));
    ExpectCheap("a long key", Word(1) + "\xFF" + Word(0xFFFF) + DWord(0x7FFFFFFF) + "a");
    ExpectCheap("a long text",
                Word(1) + Text("a") + NewClass("CStringArray") + Word(1) + "\xFF" + Word(0xFFFF) + DWord(0xFFFFFFFF) + "a");
    std::string deep = Word(1) + Text("") + NewClass("CMapStringToOb");
    for (int i = 0; i < 100000; ++i) deep += Word(1) + Text("") + Word(0x8001);
    ExpectCheap("nesting", deep);
}
}  // namespace
