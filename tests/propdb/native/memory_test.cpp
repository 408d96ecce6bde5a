// How much memory a load takes: at most 32 times the input and 1 MiB, whatever the input announces.
#include "propdb/property_db.h"

#include <gtest/gtest.h>
#include <malloc.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

namespace {
std::atomic<size_t> g_live{0}, g_peak{0};

void* Counted(void* memory) {
    if (!memory) return nullptr;
    const size_t live = g_live += malloc_usable_size(memory);
    if (live > g_peak) g_peak = live;
    return memory;
}
void Uncounted(void* memory) {
    if (memory) g_live -= malloc_usable_size(memory);
}
}  // namespace

extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* memory, size_t size);
void __real_free(void* memory);
void* __wrap_malloc(size_t size) { return Counted(__real_malloc(size)); }
void* __wrap_calloc(size_t count, size_t size) { return Counted(__real_calloc(count, size)); }
void* __wrap_realloc(void* memory, size_t size) {
    Uncounted(memory);
    return Counted(__real_realloc(memory, size));
}
void __wrap_free(void* memory) {
    Uncounted(memory);
    __real_free(memory);
}
}
void* operator new(size_t size) {
    if (void* memory = __wrap_malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}
void* operator new[](size_t size) { return operator new(size); }
void operator delete(void* memory) noexcept { __wrap_free(memory); }
void operator delete[](void* memory) noexcept { __wrap_free(memory); }
void operator delete(void* memory, size_t) noexcept { __wrap_free(memory); }
void operator delete[](void* memory, size_t) noexcept { __wrap_free(memory); }

namespace {
std::string Repeated(const std::string& piece, size_t count) {
    std::string text;
    text.reserve(piece.size() * count);
    for (size_t i = 0; i < count; ++i) text += piece;
    return text;
}
// A name of few characters, different for every number.
std::string Name(size_t number) {
    std::string name;
    do name += static_cast<char>("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789"[number % 62]);
    while (number /= 62);
    return name;
}
std::string Numbered(const std::string& before, size_t count, const std::string& after) {
    std::string text;
    for (size_t i = 0; i < count; ++i) text += before + Name(i) + after;
    return text;
}

void ExpectBounded(const char* what, std::string input, bool xml) {
    CMemFile file(reinterpret_cast<BYTE*>(input.data()), static_cast<UINT>(input.size()));
    const size_t before = g_live;
    g_peak = before;
    {
        CPropertyDB database;
        database.LoadFromFile(&file, xml);
        const size_t used = g_peak - before;
        EXPECT_LE(used, 32 * input.size() + (1u << 20)) << what;
        std::printf("%-34s %9zu bytes, %5.1f times\n", what, input.size(),
                    static_cast<double>(used) / static_cast<double>(input.size()));
    }
    EXPECT_EQ(g_live, before) << what;
}

std::string Str(const std::string& text) {
    return "<PROPERTYDB><PROPERTY name=\"a\" type=\"str\" size=\"1\">" + text + "</PROPERTY></PROPERTYDB>";
}
}  // namespace

TEST(PropertyDbMemory, Xml) {
    constexpr size_t kCount = 100000;
    ExpectBounded("separators", Str(std::string(2 * kCount, ';')), true);
    ExpectBounded("one-letter elements", Str(Repeated("a;", kCount)), true);
    const std::string u16 = "\" type=\"u16\" size=\"1\">1</PROPERTY>", segments = "." + Repeated("a.", 200) + "a";
    using Row = std::pair<const char*, std::string>;
    for (const auto& [what, body] :
         {Row{"announced to the limit", "<PROPERTY name=\"a\" type=\"r64\" size=\"1000000\">1</PROPERTY>" +
                                            ("<PROPERTY name=\"b\" type=\"str\" size=\"1\">" + std::string(1000000, ';')) +
                                            "</PROPERTY>"},
          Row{"4,000,000,000 announced", "<PROPERTY name=\"a\" type=\"i64\" size=\"4000000000\">1</PROPERTY>"},
          Row{"tiny nodes", Numbered("<PATH name=\"", kCount, "\"><PATH name=\"\"><a/></PATH></PATH>")},
          Row{"tiny values", Numbered("<PROPERTY name=\"", kCount, "\" type=\"str\" size=\"1\">b</PROPERTY>")},
          Row{"one name of many segments", "<PROPERTY name=\"" + Repeated("a.", kCount) + "a" + u16},
          Row{"names of many segments", Numbered("<PROPERTY name=\"", 1000, segments + u16)},
          Row{"paths of many segments", Numbered("<PATH name=\"", 1000, segments + "\"><PROPERTY name=\"a" + u16 + "</PATH>")},
          Row{"attributes", "<PROPERTY " + Repeated("a=\"\"", kCount) + "/>"},
          Row{"one long name", "<PATH name=\"" + std::string(5000000, 'x') + "\"><a/></PATH>"}})
        ExpectBounded(what, "<PROPERTYDB>" + body + "</PROPERTYDB>", true);
    ExpectBounded("one long text", Str(std::string(5000000, 'x')), true);
    ExpectBounded("nested 100,000 deep", "<PROPERTYDB>" + Repeated("<PATH name=\"a\">", 100000), true);
    ExpectBounded("open elements", "<" + std::string(5000000, 'x'), true);
}

TEST(PropertyDbMemory, Archive) {
    constexpr size_t kCount = 100000;
    const auto count = [](size_t number) {
        std::string text("\xFF\xFF", 2);
        for (int shift = 0; shift < 32; shift += 8) text += static_cast<char>(number >> shift);
        return text;
    };
    const auto newClass = [](const char* name) {
        return std::string("\xFF\xFF\0\0", 4) + static_cast<char>(std::strlen(name)) + '\0' + name;
    };
    const std::string zero("\0\0", 2), one("\1\0", 2);
    const auto key = [](size_t number) {
        const std::string name = Name(number);
        return static_cast<char>(name.size()) + name;
    };
    std::string nodes = zero + count(kCount), arrays = nodes;
    nodes += std::string("\1-", 2) + newClass("CMapStringToOb") + zero;
    arrays += std::string("\1-", 2) + newClass("CDWordArray") + zero;
    for (size_t i = 0; i < kCount; ++i) {
        nodes += key(i) + std::string("\1\x80\0\0", 4);
        arrays += key(i) + std::string("\1\x80\0\0", 4);
    }
    ExpectBounded("tiny nodes", nodes, false), ExpectBounded("tiny arrays", arrays, false);
    const std::string texts = zero + one + std::string("\1a", 2) + newClass("CStringArray") + count(kCount);
    ExpectBounded("one-letter texts", texts + Repeated("\1a", kCount), false);
    ExpectBounded("announced texts", texts + "\1a", false);
    const std::string a = zero + one + std::string("\1a", 2);
    ExpectBounded("a large array", a + newClass("CDWordArray") + count(kCount) + std::string(kCount * 4, 'x'), false);
    ExpectBounded("an announced array", a + newClass("CDWordArray") + count(0x7FFFFFFF) + std::string(1000, 'x'), false);
    ExpectBounded("an announced text", a + newClass("CStringArray") + one + "\xFF\xFF\xFF\xFF\xFF\xFF\x7F", false);
}
