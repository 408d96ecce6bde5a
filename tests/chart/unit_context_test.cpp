// Remembered formats and ranges: the list, and both persistent forms.
#include "chart/unit_context.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "afx/array.h"
#include "afx/file.h"
#include "propdb/property_db.h"
#include "tests/afx/bytes.h"

namespace {

class UnitContext : public testing::Test {
protected:
    static std::string Names(const CUnitContextList& list) {
        std::string names;
        for (POSITION next = list.GetHeadPosition(); next != nullptr;) names += std::string(list.GetNext(next)->m_name) + " ";
        return names;
    }
    // In use, with a range that tells it apart.
    void Use(LPCSTR name, double extent) {
        CUnitContext changed(*list.AddContext(name));
        changed.m_extent = extent;
        changed.m_format = "@@";
        list.SetContext(&changed);
    }
    static int Load(CUnitContextList& to, const std::string& bytes) {
        return afx_test::Loaded(bytes, [&](CArchive& ar) { to.Serialize(ar); });
    }

    CUnitContextList list;
    CPropertyDB db;
};

}  // namespace

TEST_F(UnitContext, CountsItsUsers) {
    CUnitContext* const volt = list.AddContext("V");
    EXPECT_EQ(volt->m_extent, 100);
    EXPECT_EQ(volt->m_flag, 1);
    EXPECT_EQ(list.AddContext("V"), volt);
    EXPECT_EQ(volt->m_useCount, 2);
    EXPECT_NE(list.AddContext("v"), volt);  // another unit
    for (int i = 0; i < 3; ++i) list.ReleaseContext("V");
    EXPECT_EQ(volt->m_useCount, 0);
    EXPECT_EQ(list.GetContext("V"), volt);
    list.ReleaseContext("A"), list.Remove("A"), list.Remove("V");
    EXPECT_EQ(Names(list), "v ");
    EXPECT_EQ(list.GetContext("V"), nullptr);
}

TEST_F(UnitContext, SettingTakesFormatAndRangeAlone) {
    list.AddContext("V");
    CUnitContext given("V", UNITCONTEXT{"###", -1, 5, 1});
    given.m_useCount = 7;
    list.SetContext(&given);
    const CUnitContext& record = *list.GetContext("V");
    EXPECT_STREQ(record.m_format, "###");
    EXPECT_EQ(std::tuple(record.m_origin, record.m_extent, record.m_flag, record.m_useCount), std::tuple(-1, 5, 0, 1));
    given.m_name = "A";
    list.SetContext(&given), list.SetContext(nullptr);
    EXPECT_EQ(list.GetCount(), 1);
    EXPECT_EQ(CUnitContext(&given).m_useCount, 7);
}

TEST_F(UnitContext, ExchangeSwapsTheLastOfEachName) {
    for (const char* name : {"a", "b", "c"}) list.AddContext(name);
    list.AddTail(new CUnitContext("a"));
    EXPECT_EQ(list.Exchange("a", "d"), FALSE);
    EXPECT_EQ(Names(list), "a b c a ");
    EXPECT_EQ(list.Exchange("a", "b"), TRUE);
    EXPECT_EQ(Names(list), "a a c b ");
}

TEST_F(UnitContext, TheDatabaseHoldsWhatIsInUse) {
    Use("m/s", 10), Use("unused", 20);
    list.ReleaseContext("unused");
    Use("V", 30);
    list.OnDBSet(&db);
    CStringArray keys;
    db.EnumAll(keys);
    std::string all;
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) all += std::string(keys[i]) + " ";
    EXPECT_EQ(all,
              "UnitContexts.V.Index UnitContexts.V.rExt UnitContexts.V.rOrg UnitContexts.V.sFormat "
              "UnitContexts.m/s.Index UnitContexts.m/s.rExt UnitContexts.m/s.rOrg UnitContexts.m/s.sFormat ");
    int index = -1;
    db.GetValue("UnitContexts.V.Index", index);
    EXPECT_EQ(index, 1);

    // The next save drops what is no longer used.
    list.ReleaseContext("V"), list.OnDBSet(&db);
    EXPECT_FALSE(db.Find("UnitContexts.V"));
    EXPECT_TRUE(db.GetUsing().IsEmpty());
}

TEST_F(UnitContext, LoadingReplacesByNameInTheOrderOfIndexes) {
    const std::pair<const char*, int> stored[] = {{"a", 2}, {"b", 0}, {"c", 1}, {"d", 1}, {"e", 5}, {"f", 6}};
    for (const auto& [name, index] : stored) {
        const CString folder = CString("UnitContexts.") + name;
        db.SetValue(folder + ".sFormat", "@@@"), db.SetValue(folder + ".rOrg", 1.0), db.SetValue(folder + ".rExt", 2.0);
        db.SetValue(folder + ".Index", index);
    }
    db.Remove("UnitContexts.e.rOrg"), db.Remove("UnitContexts.f.Index");
    db.SetValue("UnitContexts.f.Index", "6");  // not a number
    Use("x", 7), Use("c", 8);
    list.OnDBGet(&db);
    EXPECT_EQ(Names(list), "x b c d a ");
    EXPECT_EQ(list.GetContext("c")->m_extent, 2);
    EXPECT_EQ(list.GetContext("c")->m_useCount, 0);
    EXPECT_EQ(list.GetContext("x")->m_extent, 7);
    EXPECT_TRUE(db.GetUsing().IsEmpty());

    CPropertyDB empty;
    list.OnDBGet(&empty);
    EXPECT_EQ(list.GetCount(), 5);
    EXPECT_FALSE(empty.GetErrorState());
}

TEST_F(UnitContext, AnyUnitTextComesBack) {
    const char* const names[] = {"\260C", "kg.m/s", ".",          "",    "5' 3\"", "\"\"",
                                 "'",     "\"",     "\".'\".\"'", "''.", "a\"b.c", "% of 1.0 'norm'"};
    double extent = 1;
    for (const char* name : names) {
        EXPECT_STREQ(UnQuote(ReQuote(name)), name);
        Use(name, extent++);
    }
    list.OnDBSet(&db);
    CUnitContextList loaded;
    loaded.OnDBGet(&db);
    EXPECT_EQ(Names(loaded), Names(list));
    extent = 1;
    for (const char* name : names) EXPECT_EQ(loaded.GetContext(name)->m_extent, extent++) << name;
    EXPECT_STREQ(ReQuote("it's 1.5"), "\"it's 1.5\"");
    EXPECT_STREQ(ReQuote("3\""), "'3\"'");
}

TEST_F(UnitContext, TheArchiveHoldsTheListAndEveryPrefixLeavesItAlone) {
    Use("V", 10), Use("A", 20);
    list.AddContext("unused"), list.ReleaseContext("unused");
    const std::string bytes = afx_test::Stored([&](CArchive& ar) { list.Serialize(ar); });
    // A count, then for each a name, a format and two doubles.
    ASSERT_EQ(bytes.size(), 2u + 2 * (2 + 3 + 16));
    EXPECT_EQ(bytes.substr(2, 5), "\x01V\x02@@");

    CUnitContextList loaded;
    loaded.AddContext("old");
    for (size_t length = 0; length < bytes.size(); ++length) {
        EXPECT_EQ(Load(loaded, bytes.substr(0, length)), CArchiveException::endOfFile) << length;
        EXPECT_EQ(Names(loaded), "old ");
    }
    EXPECT_EQ(Load(loaded, bytes), -1);
    EXPECT_EQ(Names(loaded), "V A ");
    const CUnitContext& last = *loaded.GetContext("A");
    EXPECT_EQ(std::tuple(last.m_extent, last.m_flag, last.m_useCount), std::tuple(20, 0, 0));
}
