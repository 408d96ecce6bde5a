// Maps and lists: order, growth, walks that remove, archive bytes and damaged archives.
#include "afx/collections.h"

#include <map>
#include <memory>
#include <random>

#include "afx/array.h"
#include "afx/list.h"
#include "afx/map.h"
#include "tests/afx/bytes.h"
#include "tests/afx/object_tree.h"

using namespace afx_test;

namespace {
std::string Keys(const CMapStringToString& map) {
    std::string keys;
    for (POSITION position = map.GetStartPosition(); position != nullptr;) {
        CString key, value;
        map.GetNextAssoc(position, key, value);
        keys += key.GetString();
        keys += '=';
        keys += value.GetString();
        keys += ' ';
    }
    return keys;
}

TEST(StringMap, KeepsTheOrderInWhichKeysCame) {
    CMapStringToString map;
    EXPECT_EQ(map.GetStartPosition(), nullptr);
    map.SetAt("b", "1"), map.SetAt("a", "2");
    map["c"] = "3";
    map.SetAt("b", "4");  // keeps its place
    EXPECT_EQ(Keys(map), "b=4 a=2 c=3 ");
    EXPECT_TRUE(map.RemoveKey("a"));
    EXPECT_FALSE(map.RemoveKey("a"));
    map.SetAt("a", "5");
    EXPECT_EQ(Keys(map), "b=4 c=3 a=5 ");
    EXPECT_EQ(map.GetCount(), 3);
    CString value = "same";
    EXPECT_FALSE(map.Lookup("x", value));
    EXPECT_EQ(value, "same");
    EXPECT_TRUE(map.Lookup(CString("c"), value));
    EXPECT_EQ(value, "3");
    EXPECT_TRUE(map.Lookup(std::string_view("cx", 1), value));
    map.SetAt(static_cast<LPCSTR>(nullptr), "null");
    EXPECT_TRUE(map.Lookup("", value));
    EXPECT_EQ(value, "null");
    map.RemoveAll();
    EXPECT_TRUE(map.IsEmpty());
    EXPECT_EQ(Keys(map), "");
}

TEST(StringMap, KeysDifferInCaseAndInEveryByte) {
    CMapStringToString map;
    const char* const keys[] = {"key",          "Key",          "key ",      "ke",        "keykeykeykey",
                                "keykeykeykex", "xeykeykeykey", "aaaabaaaa", "aaaacaaaa", ""};
    for (const char* key : keys) map.SetAt(key, key);
    EXPECT_EQ(map.GetCount(), 10);
    for (const char* key : keys) EXPECT_EQ(map[key], key);
}

TEST(StringMap, AWalkMayRemoveWhatItWasGiven) {
    CMapStringToString map;
    for (int i = 0; i < 100; ++i) map.SetAt(std::to_string(i).c_str(), "");
    int seen = 0;
    for (POSITION position = map.GetStartPosition(); position != nullptr; ++seen) {
        CString key, value;
        map.GetNextAssoc(position, key, value);
        EXPECT_EQ(key, std::to_string(seen).c_str());
        if (seen % 2 == 0) map.RemoveKey(key);
    }
    EXPECT_EQ(seen, 100);
    EXPECT_EQ(map.GetCount(), 50);
    POSITION position = map.GetStartPosition();
    map.RemoveAll();
    CString key, value;
    ExpectInvalidArg([&] { map.GetNextAssoc(position, key, value); });
    position = nullptr;
    ExpectInvalidArg([&] { map.GetNextAssoc(position, key, value); });
}

TEST(StringMap, RemembersItsTableSize) {
    CMapStringToOb map;
    EXPECT_EQ(map.GetHashTableSize(), 17u);
    map.InitHashTable(10);
    EXPECT_EQ(map.GetHashTableSize(), 10u);
    CObject*& slot = map["x"];
    EXPECT_EQ(slot, nullptr);
    EXPECT_EQ(map.GetCount(), 1);
    EXPECT_NE(map.Find("x"), nullptr);
    EXPECT_EQ(map.Find("y"), nullptr);
}

TEST(MapStringToOb, ArchivesCountKeysAndObjects) {
    CMapStringToOb root, node;
    CWordArray words;
    words.Add(7);
    root.SetAt("n", &node);
    node.SetAt("w", &words);
    root.SetAt("nil", nullptr);
    const std::string bytes = Stored([&](CArchive& ar) { root.Serialize(ar); });
    EXPECT_EQ(bytes, Word(2) + Text("n") + NewClass("CMapStringToOb") + Word(1) + Text("w") + NewClass("CWordArray") + Word(1) +
                         Word(7) + Text("nil") + Word(0));
    CMapStringToOb back;
    EXPECT_EQ(LoadedAsTree(bytes, [&](CArchive& ar) { back.Serialize(ar); }), -1);
    EXPECT_EQ(Stored([&](CArchive& ar) { back.Serialize(ar); }), bytes);
    DeleteTree(back);
}

TEST(MapStringToOb, AFailedLoadKeepsWhatCameBefore) {
    const std::string bytes = Word(2) + Text("a") + NewClass("CWordArray") + Word(0) + Text("b") + NewClass("CMapStringToOb") +
                              Word(9) + Text("c") + Word(0x8001) + Word(0);
    CMapStringToOb map;
    EXPECT_EQ(LoadedAsTree(bytes, [&](CArchive& ar) { map.Serialize(ar); }), CArchiveException::endOfFile);
    EXPECT_EQ(map.GetCount(), 1);
    EXPECT_NE(map["a"], nullptr);
    DeleteTree(map);
}

TEST(MapStringToOb, AKeyComesOnceInAnArchive) {
    const std::string bytes = Word(2) + Text("a") + NewClass("CWordArray") + Word(0) + Text("a") + Word(0x8001) + Word(0);
    CMapStringToOb map;
    EXPECT_EQ(Loaded(bytes, [&](CArchive& ar) { map.Serialize(ar); }), CArchiveException::genericException);
    DeleteTree(map);
    CWordArray own;
    map.SetAt("a", &own);  // one that was there before is replaced; its owner knows it
    ExpectLoads(Word(1) + bytes.substr(2, bytes.size() - 8), [&](CArchive& ar) { map.Serialize(ar); });
    EXPECT_NE(map["a"], &own);
    DeleteTree(map);
}

TEST(MapStringToString, Archives) {
    CMapStringToString map;
    map.SetAt("k", "v"), map.SetAt("", "w");
    const std::string bytes = Word(2) + Text("k") + Text("v") + Text("") + Text("w");
    EXPECT_EQ(Stored([&](CArchive& ar) { map.Serialize(ar); }), bytes);
    CMapStringToString back;
    ExpectLoads(bytes, [&](CArchive& ar) { back.Serialize(ar); });
    EXPECT_EQ(Keys(back), "k=v =w ");
    for (size_t length = 0; length < bytes.size(); ++length)
        EXPECT_EQ(Loaded(bytes.substr(0, length), [&](CArchive& ar) { back.Serialize(ar); }), CArchiveException::endOfFile);
}

TEST(Map, MapsAnyKeyToAnyValue) {
    CMap<CString, LPCSTR, int, int> byName;
    for (int i = 0; i < 50; ++i) byName.SetAt(("COM" + std::to_string(i)).c_str(), i);
    int value = -1;
    EXPECT_TRUE(byName.Lookup("COM49", value));
    EXPECT_EQ(value, 49);
    EXPECT_FALSE(byName.Lookup("COM50", value));
    EXPECT_TRUE(byName.RemoveKey("COM0"));
    POSITION position = byName.GetStartPosition();
    CString key;
    byName.GetNextAssoc(position, key, value);
    EXPECT_EQ(key, "COM1");

    CMap<int, int, std::string, const std::string&> byNumber;
    byNumber[7] = "seven";
    byNumber.SetAt(-1, "minus one");
    EXPECT_EQ(byNumber[7], "seven");
    EXPECT_EQ(byNumber[8], "");
    EXPECT_EQ(byNumber.GetCount(), 3);
    byNumber.RemoveAll();
    EXPECT_TRUE(byNumber.IsEmpty());
}

TEST(PtrList, LinksBothWays) {
    int things[4] = {};
    CTypedPtrList<CPtrList, int*> list(10);
    ExpectInvalidArg([&] { list.GetHead(); });
    ExpectInvalidArg([&] { list.RemoveTail(); });
    const POSITION b = list.AddTail(&things[1]);
    list.AddHead(&things[0]), list.AddTail(&things[3]), list.InsertAfter(b, &things[2]);
    std::vector<int*> forward, backward;
    for (POSITION p = list.GetHeadPosition(); p != nullptr;) forward.push_back(list.GetNext(p));
    for (POSITION p = list.GetTailPosition(); p != nullptr;) backward.insert(backward.begin(), list.GetPrev(p));
    EXPECT_EQ(forward, (std::vector<int*>{&things[0], &things[1], &things[2], &things[3]}));
    EXPECT_EQ(backward, forward);
    EXPECT_EQ(list.Find(&things[1]), b);
    EXPECT_EQ(list.Find(&things[1], b), nullptr);
    EXPECT_EQ(list.FindIndex(1), b);
    EXPECT_EQ(list.FindIndex(4), nullptr);
    list.RemoveAt(b);
    EXPECT_EQ(list.RemoveHead(), &things[0]);
    EXPECT_EQ(list.RemoveTail(), &things[3]);
    EXPECT_EQ(list.GetHead(), list.GetTail());
    list.CPtrList::AddTail(&list);
    EXPECT_EQ(list.GetCount(), 2);
    POSITION none = nullptr;
    ExpectInvalidArg([&] { list.GetNext(none); });
    ExpectInvalidArg([&] { list.RemoveAt(nullptr); });
}
}  // namespace
