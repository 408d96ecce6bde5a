#include "frame/numeric_arrays.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/afx/bytes.h"

namespace {
std::string Bytes(CObject& object) {
    return afx_test::Stored([&](CArchive& ar) { object.Serialize(ar); });
}
}  // namespace

TEST(NumericArrays, RawLittleEndianElements) {
    CDoubleArray doubles;
    const double values[] = {1.5, -0.0, 1e300};
    for (const double value : values) doubles.Add(value);
    EXPECT_EQ(Bytes(doubles), afx_test::Word(3) + std::string(reinterpret_cast<const char*>(values), 24));
    CDoubleArray back;
    back.Add(7);
    afx_test::ExpectLoads(Bytes(doubles), [&](CArchive& ar) { back.Serialize(ar); });
    ASSERT_EQ(back.GetSize(), 3);
    EXPECT_EQ(back[2], 1e300);

    CInt64Array longs;
    longs.Add(-2);
    EXPECT_EQ(Bytes(longs), afx_test::Word(1) + "\xFE" + std::string(7, '\xFF'));
    CFloatArray floats;
    floats.Add(1.0f);
    EXPECT_EQ(Bytes(floats), afx_test::Word(1) + afx_test::DWord(0x3F800000));
}

TEST(NumericArrays, MadeByName) {
    for (const char* name : {"CFloatArray", "CDoubleArray", "CInt32Array", "CInt64Array"}) {
        const std::unique_ptr<CObject> made(CRuntimeClass::CreateObject(name));
        ASSERT_TRUE(made) << name;
        EXPECT_STREQ(made->GetRuntimeClass()->m_lpszClassName, name);
        EXPECT_TRUE(made->IsSerializable());
    }
    EXPECT_TRUE(Raises<CInvalidArgException>([] { CInt32Array().GetAt(0); })) << "an index outside the array";
}
