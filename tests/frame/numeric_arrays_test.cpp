#include "frame/numeric_arrays.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "afx/archive.h"
#include "afx/file.h"

namespace {

std::vector<unsigned char> Stored(CObject& object) {
    CMemFile file;
    {
        CArchive ar(&file, CArchive::store);
        object.Serialize(ar);
    }
    std::vector<unsigned char> bytes(static_cast<size_t>(file.GetLength()));
    file.SeekToBegin();
    if (!bytes.empty()) file.Read(bytes.data(), static_cast<UINT>(bytes.size()));
    return bytes;
}

// The archive exception's cause, 0 when the load succeeds.
int Load(CObject& object, std::vector<unsigned char> bytes) {
    CMemFile file;
    if (!bytes.empty()) file.Write(bytes.data(), static_cast<UINT>(bytes.size()));
    file.SeekToBegin();
    CArchive ar(&file, CArchive::load);
    try {
        object.Serialize(ar);
    } catch (CArchiveException* e) {
        const int cause = e->m_cause;
        e->Delete();
        return cause;
    }
    return CArchiveException::none;
}

}  // namespace

TEST(NumericArrays, RawLittleEndianElements) {
    CDoubleArray doubles;
    const double values[] = {1.5, -0.0, 1e300};
    for (const double value : values) doubles.Add(value);
    auto bytes = Stored(doubles);
    ASSERT_EQ(bytes.size(), 2u + 24u);
    EXPECT_EQ(bytes[0], 3);
    EXPECT_EQ(bytes[1], 0);
    EXPECT_EQ(std::memcmp(bytes.data() + 2, values, 24), 0);
    CDoubleArray back;
    back.Add(7);
    EXPECT_EQ(Load(back, bytes), 0);
    ASSERT_EQ(back.GetSize(), 3);
    EXPECT_EQ(back[2], 1e300);

    CInt64Array longs;
    longs.Add(-2);
    bytes = Stored(longs);
    const std::vector<unsigned char> expected = {1, 0, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(bytes, expected);
    CFloatArray floats;
    floats.Add(1.0f);
    EXPECT_EQ(Stored(floats), (std::vector<unsigned char>{1, 0, 0, 0, 0x80, 0x3F}));
}

TEST(NumericArrays, MadeByName) {
    for (const char* name : {"CFloatArray", "CDoubleArray", "CInt32Array", "CInt64Array"}) {
        const std::unique_ptr<CObject> made(CRuntimeClass::CreateObject(name));
        ASSERT_TRUE(made) << name;
        EXPECT_STREQ(made->GetRuntimeClass()->m_lpszClassName, name);
        EXPECT_TRUE(made->IsSerializable());
    }
    CInt32Array array;
    try {
        array.GetAt(0);
        FAIL() << "an index outside the array";
    } catch (CInvalidArgException* e) {
        e->Delete();
    }
}
