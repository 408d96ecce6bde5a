#include "propdb/ref_property_db.h"

#include "tests/propdb/property_db_fixture.h"

namespace {
// Tells when it dies.
class SharedDB : public CRefPropertyDB {
public:
    explicit SharedDB(bool& alive) : m_alive(&alive) { alive = true; }
    SharedDB(const SharedDB& src, bool& alive) : IPropertyDB(), CRefPropertyDB(src), m_alive(&alive) { alive = true; }
    SharedDB& operator=(const SharedDB& src) {
        CRefPropertyDB::operator=(src);
        return *this;
    }
    ~SharedDB() override { *m_alive = false; }

private:
    bool* m_alive;
};

struct RefPropertyDB : testing::Test {
    bool alive = false, copyAlive = false;
    SharedDB* db = new SharedDB(alive);

    void TearDown() override {
        if (alive) delete db;
    }
};

TEST_F(RefPropertyDB, IsOneDatabaseOnEveryPath) {
    EXPECT_EQ(static_cast<IPropertyDB*>(static_cast<CPropertyDB*>(db)),
              static_cast<IPropertyDB*>(static_cast<IRefPropertyDB*>(db)));
    IRefPropertyDB* const shared = db;
    shared->AddRef();
    EXPECT_TRUE(shared->SetValue("Units.C.sText", "temperature"));
    CString text;
    EXPECT_TRUE(db->GetValue("Units.C.sText", text));
    EXPECT_STREQ(text, "temperature");
    EXPECT_EQ(shared->Release(), 0u);
    EXPECT_FALSE(alive);
}

TEST_F(RefPropertyDB, ACopyInheritsTheCountAsItStands) {
    db->SetValue("a.b", 1), db->AddRef(), db->AddRef();
    auto* const copy = new SharedDB(*db, copyAlive);
    EXPECT_EQ(Contents(*copy), "a.b = CDWordArray 1\n");
    db->SetValue("a.b", 2);
    EXPECT_EQ(Contents(*copy), "a.b = CDWordArray 1\n");
    EXPECT_EQ(copy->Release(), 1u);
    EXPECT_EQ(copy->Release(), 0u);
    EXPECT_FALSE(copyAlive);
    EXPECT_TRUE(alive);
}

TEST_F(RefPropertyDB, AssignmentReplacesTheTreeAndKeepsTheCount) {
    db->SetValue("new", 1), db->AddRef();
    SharedDB target(copyAlive);
    target.SetValue("old", 2);
    for (int i = 0; i < 4; ++i) target.AddRef();
    target = *db;
    EXPECT_EQ(Contents(target), "new = CDWordArray 1\n");
    EXPECT_EQ(target.AddRef(), 5u);
    EXPECT_EQ(db->AddRef(), 2u);
}
}  // namespace
