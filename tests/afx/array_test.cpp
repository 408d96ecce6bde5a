// The growing arrays: bounds, order, archive bytes, and arrays that announce more than they hold.
#include "afx/array.h"

#include "afx/ptr_array.h"
#include "tests/afx/bytes.h"

using namespace afx_test;

namespace {
template <class Array>
std::vector<int> Values(const Array& array) {
    std::vector<int> values;
    for (INT_PTR i = 0; i < array.GetSize(); ++i) values.push_back(static_cast<int>(array[i]));
    return values;
}
using Ints = std::vector<int>;

TEST(Array, OneNumberNeedsNoMemoryOfItsOwn) {
    CArray<double, double> doubles;
    doubles.Add(1.5);
    const auto* self = reinterpret_cast<const char*>(&doubles);
    const auto* data = reinterpret_cast<const char*>(doubles.GetData());
    EXPECT_TRUE(data >= self && data < self + sizeof doubles);
    doubles.Add(2.5);
    EXPECT_EQ(doubles[0], 1.5);
    EXPECT_EQ(doubles[1], 2.5);
    doubles.RemoveAt(1);
    doubles.FreeExtra();  // back into the object
    EXPECT_EQ(doubles.GetAt(0), 1.5);
}

TEST(Array, RaisesOutsideItsBounds) {
    CWordArray array;
    ExpectInvalidArg([&] { (void)array[0]; });
    array.SetSize(2);
    ExpectInvalidArg([&] { (void)array.GetAt(2); });
    ExpectInvalidArg([&] { (void)array.ElementAt(-1); });
    ExpectInvalidArg([&] { array.SetAt(2, 1); });
    ExpectInvalidArg([&] { array.SetAtGrow(-1, 1); });
    ExpectInvalidArg([&] { array.SetSize(-1); });
    ExpectInvalidArg([&] { array.RemoveAt(1, 2); });
    ExpectInvalidArg([&] { array.RemoveAt(3, 0); });
    ExpectInvalidArg([&] { array.InsertAt(-1, 1); });
    ExpectInvalidArg([&] { array.InsertAt(0, 1, 0); });
    EXPECT_EQ(Values(array), (Ints{0, 0}));
}

TEST(Array, InsertsRemovesAndGrows) {
    CDWordArray array;
    EXPECT_EQ(array.Add(1), 0);
    EXPECT_EQ(array.Add(2), 1);
    array.InsertAt(1, 7, 2);
    EXPECT_EQ(Values(array), (Ints{1, 7, 7, 2}));
    array.InsertAt(6, 9);
    EXPECT_EQ(Values(array), (Ints{1, 7, 7, 2, 0, 0, 9}));
    array.RemoveAt(1, 2), array.SetAtGrow(6, 5);
    EXPECT_EQ(Values(array), (Ints{1, 2, 0, 0, 9, 0, 5}));
    CDWordArray other;
    other.Copy(array);
    EXPECT_EQ(other.Append(array), 7);
    EXPECT_EQ(other.GetSize(), 14);
    other.InsertAt(1, &other);
    EXPECT_EQ(other.GetSize(), 28);
    EXPECT_EQ(other[1], 1u);
    EXPECT_EQ(other[15], 2u);
    other.SetSize(2);
    EXPECT_EQ(Values(other), (Ints{1, 1}));
    other.Copy(other);
    EXPECT_EQ(other.GetUpperBound(), 1);
    other.SetSize(5);
    EXPECT_EQ(Values(other), (Ints{1, 1, 0, 0, 0}));
}

TEST(Array, AnElementMayBeAddedToItsOwnArray) {
    CStringArray array;
    array.Add("first");
    for (int i = 0; i < 100; ++i) array.Add(array[0]);
    array.InsertAt(50, array[100], 3);
    EXPECT_EQ(array.GetSize(), 104);
    for (INT_PTR i = 0; i < array.GetSize(); ++i) EXPECT_EQ(array[i], "first");
}

TEST(Array, HoldsTypesThatMustNotBeMovedByTheirBytes) {
    CArray<std::string> array;
    for (int i = 0; i < 200; ++i) array.Add("text number " + std::to_string(i));
    array.RemoveAt(0, 100), array.InsertAt(0, "front"), array.FreeExtra();
    EXPECT_EQ(array.GetSize(), 101);
    EXPECT_EQ(array[0], "front");
    EXPECT_EQ(array[100], "text number 199");
}

TEST(Array, LargeArraysComeBack) {
    CDWordArray array;
    for (DWORD i = 0; i < 70000; ++i) array.Add(i * 7);
    const std::string bytes = Stored([&](CArchive& ar) { array.Serialize(ar); });
    EXPECT_EQ(bytes.substr(0, 6), Word(0xFFFF) + DWord(70000));
    EXPECT_EQ(bytes.size(), 6u + 280000u);
    CDWordArray back;
    ExpectLoads(bytes, [&](CArchive& ar) { back.Serialize(ar); });
    EXPECT_EQ(Values(back), Values(array));
}

TEST(Array, AFileThatEndsEarlyLeavesTheAnnouncedSize) {
    CWordArray array;
    EXPECT_EQ(Loaded(Word(3) + Word(7), [&](CArchive& ar) { array.Serialize(ar); }), CArchiveException::endOfFile);
    EXPECT_EQ(array.GetSize(), 3);
    EXPECT_EQ(array[0], 7);
}

TEST(Array, HugeCountsFailWithWhatCame) {
    const std::string huge = Word(0xFFFF) + DWord(0xFFFFFFF0) + Word(7) + Word(8) + "x";
    CWordArray words;
    EXPECT_EQ(Loaded(huge, [&](CArchive& ar) { words.Serialize(ar); }), CArchiveException::endOfFile);
    EXPECT_EQ(Values(words), (Ints{7, 8}));
    CStringArray texts;
    EXPECT_EQ(Loaded(huge, [&](CArchive& ar) { texts.Serialize(ar); }), CArchiveException::endOfFile);
    CArray<double, double> doubles;
    EXPECT_EQ(Loaded(huge, [&](CArchive& ar) { doubles.Serialize(ar); }), CArchiveException::endOfFile);
    EXPECT_LE(doubles.GetSize(), 1);
    ExpectInvalidArg([&] { words.RemoveAt(0, 3); });
}

}  // namespace
