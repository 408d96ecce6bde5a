// Archive bytes against bytes written by hand, and what damaged archives raise.
#include "afx/archive.h"

#include <memory>
#include <tuple>

#include "afx/array.h"
#include "afx/collections.h"
#include "platform/house_text.h"
#include "tests/afx/bytes.h"

using namespace afx_test;

namespace {
// Counts its living objects, so that a load that fails can be seen to leave none.
class CArchiveProbe : public CObject {
    DECLARE_SERIAL(CArchiveProbe)

public:
    CArchiveProbe() { ++s_alive; }
    ~CArchiveProbe() override { --s_alive; }
    void Serialize(CArchive& ar) override {
        if (ar.IsStoring())
            ar << m_number << static_cast<const CObject*>(m_other);
        else
            ar >> m_number >> m_other;
    }
    static int s_alive;
    WORD m_number = 0;
    CObject* m_other = nullptr;
};
int CArchiveProbe::s_alive = 0;

// Owns what it reads, and says so.
class CArchiveOwner : public CArchiveProbe {
    DECLARE_SERIAL(CArchiveOwner)

public:
    ~CArchiveOwner() override { delete m_other; }
    void Serialize(CArchive& ar) override {
        CArchiveProbe::Serialize(ar);
        if (ar.IsLoading()) ar.ObjectTaken(m_other);
        if (ar.IsLoading()) ar >> m_number;
    }
};

class CVersionedProbe : public CObject {
    DECLARE_SERIAL(CVersionedProbe)

public:
    void Serialize(CArchive& ar) override {
        if (ar.IsLoading()) m_schema = ar.GetObjectSchema();
    }
    UINT m_schema = 0;
};
}  // namespace

IMPLEMENT_SERIAL(CArchiveProbe, CObject, 3)
IMPLEMENT_SERIAL(CArchiveOwner, CArchiveProbe, 3)
IMPLEMENT_SERIAL(CVersionedProbe, CObject, VERSIONABLE_SCHEMA | 2)

namespace {
const std::string kProbe = NewClass("CArchiveProbe", 3);

TEST(Archive, StoresValuesAsTheyLie) {
    const std::string bytes = Stored([](CArchive& ar) {
        ar << static_cast<BYTE>(1) << static_cast<WORD>(0x0203) << static_cast<DWORD>(0x04050607) << -2LL << 1.5f << -0.25 << 'c'
           << true << static_cast<LONG>(-1);
    });
    EXPECT_EQ(bytes,
              std::string("\x01\x03\x02\x07\x06\x05\x04\xFE\xFF\xFF\xFF\xFF\xFF\xFF\xFF\0\0\xC0\x3F\0\0\0\0\0\0\xD0\xBF", 27) +
                  "c\x01" + std::string(4, '\xFF'));
    ExpectLoads(bytes, [](CArchive& ar) {
        BYTE b = 0;
        WORD w = 0;
        DWORD d = 0;
        long long q = 0;
        float f = 0;
        double r = 0;
        char c = 0;
        bool t = false;
        LONG l = 0;
        ar >> b >> w >> d >> q >> f >> r >> c >> t >> l;
        EXPECT_TRUE(b == 1 && w == 0x0203 && d == 0x04050607 && q == -2 && f == 1.5f && r == -0.25 && c == 'c' && t && l == -1);
        EXPECT_EQ(ar.GetBytesLeft(), 0u);
    });
}

TEST(Archive, TextLengthsUseOneThreeOrSevenBytes) {
    using Row = std::tuple<size_t, std::string>;
    for (const auto& [length, head] :
         {Row{0, std::string(1, 0)}, Row{254, "\xFE"}, Row{255, "\xFF" + Word(255)}, Row{0xFFFD, "\xFF" + Word(0xFFFD)},
          Row{0xFFFE, "\xFF" + Word(0xFFFF) + DWord(0xFFFE)}, Row{70000, "\xFF" + Word(0xFFFF) + DWord(70000)}}) {
        const std::string text(length, 'x');
        const std::string bytes = Stored([&](CArchive& ar) { ar << CString(text); });
        EXPECT_EQ(bytes, head + text) << length;
        CString back;
        ExpectLoads(bytes, [&](CArchive& ar) { ar >> back; });
        EXPECT_EQ(back.GetView(), text);
    }
}

TEST(Archive, RefusesTextsThatCannotBe) {
    CString text;
    const auto load = [&](CArchive& ar) { ar >> text; };
    EXPECT_EQ(Loaded("\xFF" + Word(0xFFFE) + "\x02" + "a\0b", load),
              OrvikTextCodePage() == CP_UTF8 ? CArchiveException::endOfFile : CArchiveException::genericException);
    EXPECT_EQ(Loaded("\005ab", load), CArchiveException::endOfFile);
    EXPECT_EQ(Loaded("\xFF" + Word(0xFFFF) + DWord(0xFFFFFFFF) + "ab", load), CArchiveException::endOfFile);
    EXPECT_EQ(Loaded("", load), CArchiveException::endOfFile);
}

TEST(Archive, CountsAreWordsAndDoubleWords) {
    using Row = std::tuple<DWORD_PTR, std::string>;
    for (const auto& [count, bytes] : {Row{0, Word(0)}, Row{0xFFFE, Word(0xFFFE)}, Row{0xFFFF, Word(0xFFFF) + DWord(0xFFFF)},
                                       Row{70000, Word(0xFFFF) + DWord(70000)}}) {
        EXPECT_EQ(Stored([&](CArchive& ar) { ar.WriteCount(count); }), bytes);
        ExpectLoads(bytes, [&](CArchive& ar) { EXPECT_EQ(ar.ReadCount(), count); });
    }
    if constexpr (sizeof(DWORD_PTR) == 8) {
        const std::string large = Word(0xFFFF) + DWord(0xFFFFFFFF) + DWord(0xFFFFFFFF) + DWord(0);
        EXPECT_EQ(Stored([](CArchive& ar) { ar.WriteCount(0xFFFFFFFF); }), large);
        ExpectLoads(large, [](CArchive& ar) { EXPECT_EQ(ar.ReadCount(), 0xFFFFFFFF); });
    }
}

TEST(Archive, DirectionIsKept) {
    EXPECT_EQ(Loaded("abcd", [](CArchive& ar) { ar << 1; }), CArchiveException::readOnly);
    EXPECT_EQ(Loaded("abcd", [](CArchive& ar) { ar.WriteObject(nullptr); }), CArchiveException::readOnly);
    CMemFile file;
    CArchive storing(&file, CArchive::store);
    int value = 0;
    EXPECT_EQ(CauseOf<CArchiveException>([&] { storing >> value; }), CArchiveException::writeOnly);
}

TEST(Archive, BuffersOfAnySizeGiveTheSameBytes) {
    std::string expected;
    for (int i = 0; i < 3000; ++i) expected += DWord(static_cast<unsigned>(i));
    for (const int size : {0, 128, 129, 4096, 100000}) {
        CMemFile file;
        CArchive storing(&file, CArchive::store, size);
        for (int i = 0; i < 1000; ++i) storing << i;
        storing.Write(expected.data() + 4000, 4000);
        for (int i = 2000; i < 3000; ++i) storing << i;
        storing.Close();
        ASSERT_EQ(std::string(reinterpret_cast<const char*>(file.GetBufferPtr()), 12000), expected);
        file.SeekToBegin();
        CArchive loading(&file, CArchive::load, size);
        std::string head(5001, 0), tail(9000, 0);
        loading.EnsureRead(head.data(), 5001);
        EXPECT_EQ(loading.GetBytesLeft(), 6999u);
        EXPECT_EQ(loading.Read(tail.data(), 9000), 6999u);  // what there is
        EXPECT_EQ(head + tail.substr(0, 6999), expected);
    }
}

TEST(Archive, ClosingALoadLeavesTheFileWhereReadingStopped) {
    CMemFile file;
    file.Write("abcdefgh", 8), file.SeekToBegin();
    CArchive archive(&file, CArchive::load);
    char ch = 0;
    archive >> ch >> ch >> ch;
    EXPECT_EQ(file.GetPosition(), 8u);  // the buffer took it all
    archive.Close();
    EXPECT_EQ(file.GetPosition(), 3u);
    EXPECT_EQ(archive.GetFile(), nullptr);
}

TEST(Archive, ObjectsAndClassesShareOneCount) {
    CArchiveProbe a, b;
    a.m_number = 0x1111;
    b.m_number = 0x2222;
    a.m_other = &b;
    b.m_other = &a;  // a ring
    const std::string bytes = Stored([&](CArchive& ar) { ar << static_cast<CObject*>(nullptr) << &a << &b; });
    // class 1, object 2 = a; class again, object 3 = b
    EXPECT_EQ(bytes, Word(0) + kProbe + Word(0x1111) + Word(0x8001) + Word(0x2222) + Word(2) + Word(3));
    ExpectLoads(bytes, [](CArchive& ar) {
        CObject* null = &*std::make_unique<CByteArray>();
        CArchiveProbe *first = nullptr, *second = nullptr;
        ar >> null >> first >> second;
        const std::unique_ptr<CObject> own1(first), own2(second);
        EXPECT_EQ(null, nullptr);
        EXPECT_EQ(first->m_number, 0x1111);
        EXPECT_EQ(second->m_number, 0x2222);
        EXPECT_EQ(first->m_other, second);
        EXPECT_EQ(second->m_other, first);
    });
    EXPECT_EQ(CArchiveProbe::s_alive, 2);
}

TEST(Archive, LargeIndexesTakeTheBigTag) {
    std::vector<std::unique_ptr<CByteArray>> objects(0x7FFF);
    const std::string bytes = Stored([&](CArchive& ar) {
        for (auto& object : objects) {
            object = std::make_unique<CByteArray>();
            ar << object.get();
        }
        ar << objects[0x7FFC].get() << objects[0x7FFD].get();  // indexes 0x7FFE and 0x7FFF
    });
    EXPECT_EQ(bytes.substr(bytes.size() - 8), Word(0x7FFE) + Word(0x7FFF) + DWord(0x7FFF));
    ExpectLoads(bytes, [](CArchive& ar) {
        std::vector<std::unique_ptr<CObject>> own;
        for (int i = 0; i < 0x7FFF; ++i) own.emplace_back(ar.ReadObject(nullptr));
        EXPECT_EQ(ar.ReadObject(nullptr), own[0x7FFC].get());
        EXPECT_EQ(ar.ReadObject(nullptr), own[0x7FFD].get());
    });
}

TEST(Archive, RefusesWhatItCannotTrust) {
    const std::string good = kProbe + Word(7) + Word(0);
    struct {
        const char* what;
        std::string bytes;
        int cause;
    } const cases[] = {
        {"unknown class", NewClass("CNobody") + Word(0), CArchiveException::badClass},
        {"class without serialisation", NewClass("CException", 0xFFFF) + Word(0), CArchiveException::badClass},
        {"name too long", NewClass(std::string(65, 'A')), CArchiveException::badClass},
        {"empty name", NewClass(""), CArchiveException::badClass},
        {"other schema", NewClass("CArchiveProbe", 4) + Word(0) + Word(0), CArchiveException::badSchema},
        {"class index that names nothing", Word(0x8001), CArchiveException::badIndex},
        {"class index 0", Word(0x8000), CArchiveException::badIndex},
        {"class index that names an object", kProbe + Word(1) + Word(0x8002), CArchiveException::badClass},
        {"object index that names nothing", Word(1), CArchiveException::badIndex},
        {"object index that names a class", kProbe + Word(1) + Word(1), CArchiveException::badClass},
        {"big object index that names nothing", Word(0x7FFF) + DWord(0x7FFFFFFF), CArchiveException::badIndex},
        {"big class index that names nothing", Word(0x7FFF) + DWord(0xFFFFFFFF), CArchiveException::badIndex},
    };
    for (const auto& c : cases)
        EXPECT_EQ(Loaded(c.bytes, [](CArchive& ar) { delete ar.ReadObject(nullptr); }), c.cause) << c.what;
    ExpectLoads(good, [](CArchive& ar) { delete ar.ReadObject(RUNTIME_CLASS(CArchiveProbe)); });
    EXPECT_EQ(Loaded(good, [](CArchive& ar) { delete ar.ReadObject(RUNTIME_CLASS(CByteArray)); }), CArchiveException::badClass);
    EXPECT_EQ(CArchiveProbe::s_alive, 0);
}

TEST(Archive, AVersionableClassReadsItsOlderSchemas) {
    const std::string bytes = NewClass("CVersionedProbe", 1) + Word(0x8001);
    ExpectLoads(bytes, [](CArchive& ar) {
        for (int i = 0; i < 2; ++i) {
            const std::unique_ptr<CObject> own(ar.ReadObject(RUNTIME_CLASS(CVersionedProbe)));
            EXPECT_EQ(static_cast<CVersionedProbe&>(*own).m_schema, 1u);
        }
    });
    EXPECT_EQ(Stored([](CArchive& ar) { ar.WriteClass(RUNTIME_CLASS(CVersionedProbe)); }), NewClass("CVersionedProbe", 2));
}

// A chain of `depth` probes, each naming the next.
std::string Chain(int depth) {
    std::string bytes;
    for (int i = 0; i < depth; ++i) bytes += (i == 0 ? kProbe : Word(0x8001)) + Word(static_cast<unsigned>(i));
    return bytes + Word(0);
}

TEST(Archive, NestsAtMost256Deep) {
    EXPECT_EQ(Loaded(Chain(257), [](CArchive& ar) { ar.ReadObject(nullptr); }), CArchiveException::genericException);
    EXPECT_EQ(Loaded(Chain(100000), [](CArchive& ar) { ar.ReadObject(nullptr); }), CArchiveException::genericException);
    EXPECT_EQ(CArchiveProbe::s_alive, 0);
    ExpectLoads(Chain(256), [](CArchive& ar) {
        const CObject* walk = ar.ReadObject(nullptr);
        EXPECT_EQ(CArchiveProbe::s_alive, 256);
        while (walk != nullptr) {
            const CObject* next = static_cast<const CArchiveProbe*>(walk)->m_other;
            delete walk;
            walk = next;
        }
    });

    // What could not be read again is not written either.
    std::vector<CArchiveProbe> chain(257);
    for (size_t i = 0; i + 1 < chain.size(); ++i) chain[i].m_other = &chain[i + 1];
    CMemFile file;
    CArchive archive(&file, CArchive::store);
    EXPECT_TRUE(Raises<CArchiveException>([&] { archive << &chain[0]; }));
    archive << &chain[1];  // and the archive is still usable
}

TEST(Archive, OwnersSayWhatTheyTook) {
    // The owner has taken its part when the archive ends in its own last number.
    const std::string bytes = NewClass("CArchiveOwner", 3) + Word(1) + kProbe + Word(2) + Word(0);
    EXPECT_EQ(Loaded(bytes, [](CArchive& ar) { ar.ReadObject(nullptr); }), CArchiveException::endOfFile);
    ExpectLoads(bytes + Word(9), [](CArchive& ar) { delete ar.ReadObject(nullptr); });
    EXPECT_EQ(CArchiveProbe::s_alive, 0);
}

TEST(Archive, ATreeHasNoSecondReferences) {
    const std::string bytes = kProbe + Word(1) + Word(2);  // names itself
    ExpectLoads(bytes, [](CArchive& ar) { delete ar.ReadObject(nullptr); });
    EXPECT_EQ(LoadedAsTree(bytes, [](CArchive& ar) { delete ar.ReadObject(nullptr); }), CArchiveException::badIndex);
    EXPECT_EQ(CArchiveProbe::s_alive, 0);
}

TEST(Archive, AnObjectDeletedByAFailedLoadCannotBeNamedLater) {
    const std::string bytes = kProbe + Word(1) + Word(0x8007) + Word(2);
    EXPECT_EQ(Loaded(bytes,
                     [](CArchive& ar) {
                         EXPECT_TRUE(Raises<CArchiveException>([&] { ar.ReadObject(nullptr); }));
                         ar.ReadObject(nullptr);
                     }),
              CArchiveException::badIndex);
}
}  // namespace
