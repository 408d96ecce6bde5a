#include "afx/gdi.h"
#include "tests/propdb/property_db_fixture.h"
#include "toolkit/bcgp_rect.h"

#include <cstring>
#include <memory>
#include <tuple>

namespace {
class PropertyDb : public testing::Test {
protected:
    CPropertyDB db;

    Keys Enum(const char* key, int fullKeys, int withValues) {
        CStringArray out;
        out.Add("stale");
        return db.Enum(key, out, fullKeys, withValues) ? ToKeys(out) : Keys{"failed"};
    }
    Keys Wildcard(const char* pattern) {
        CStringArray out;
        const BOOL grew = db.EnumWildcard(pattern, out);
        EXPECT_EQ(grew != 0, out.GetSize() > 0);
        return ToKeys(out);
    }
    template <class Value>
    bool Reads(const char* key, Value expected) {
        Value value{};
        return db.GetValue(key, value) && value == expected;
    }
};
}  // namespace

// ---- keys

TEST_F(PropertyDb, KeysSplitAtDotsOutsideQuotes) {
    struct Row {
        const char* key;
        Keys nodes;  // the segments above the value, each as a key of its own level
    };
    for (const Row& c : {Row{"a", {"a"}}, Row{"a.b", {"a", "b"}}, Row{"x.'a.b'.y", {"x", "'a.b'", "y"}},
                         Row{"x.\"a.b\".y", {"x", "\"a.b\"", "y"}}, Row{"x.'a\".b'.y", {"x", "'a\".b'", "y"}},
                         Row{"p'a.b'q.y", {"p'a.b'q", "y"}}, Row{"x.'a.b", {"x", "'a.b"}}, Row{".a.b", {".a.b"}},
                         Row{"a..b", {"a", ".b"}}, Row{"a.", {"a"}}}) {
        CPropertyDB one;
        ASSERT_TRUE(one.SetValue(c.key, 1)) << c.key;
        const CObject* object = &*one.GetValueObject("", 1);
        for (const std::string& segment : c.nodes) {
            const auto* node = As<CMapStringToOb>(object);
            ASSERT_TRUE(node) << c.key;
            CObject* child = nullptr;
            ASSERT_TRUE(node->Lookup(segment.c_str(), child)) << c.key << ": " << segment;
            object = child;
        }
        EXPECT_TRUE(one.IsFullKey(c.key)) << c.key;
        EXPECT_TRUE(one.Find(c.key)) << c.key;
    }
}

TEST_F(PropertyDb, EmptyKeyNamesTheRootForCountingAndNothingElse) {
    db.SetValue("a", 1);
    EXPECT_FALSE(db.SetValue("", 1) || db.SetValue(nullptr, 1) || db.SetPath("") || db.Find("") || db.Remove("") || db.Empty());
    EXPECT_EQ(db.Count("", 0), 1);
    EXPECT_EQ(db.Count(nullptr, 1), 1);
    EXPECT_EQ(Enum("", 1, 1), Keys{"a"});
    EXPECT_EQ(Contents(db), "a = CDWordArray 1\n");
}

TEST_F(PropertyDb, UsingPathsNest) {
    db.BeginUsing("Units"), db.BeginUsing("3");
    EXPECT_EQ(db.GetUsing(), "Units.3.");
    EXPECT_TRUE(db.SetValue("Name", "x") && db.Find("Name"));
    EXPECT_TRUE(db.Find(""));  // the node used
    EXPECT_EQ(db.Count("", 0), 1);
    db.EndUsing();
    EXPECT_EQ(db.GetUsing(), "Units.");
    db.EndUsing(), db.EndUsing();
    EXPECT_EQ(db.GetUsing(), "");
    EXPECT_TRUE(db.Find("Units.3.Name"));
    db.BeginUsing("Units");
    EXPECT_TRUE(db.Empty());
    db.EndUsing();
    EXPECT_TRUE(db.IsEmpty());
    db.BeginUsing("a."), db.BeginUsing(""), db.BeginUsing(nullptr);
    EXPECT_EQ(db.GetUsing(), "a.");
    db.EndUsing(), db.EndUsing(), db.EndUsing();
    EXPECT_EQ(db.GetUsing(), "");
    db.BeginUsing("");
    EXPECT_EQ(db.GetUsing(), "");
}

TEST_F(PropertyDb, UsingPathIsFormattedAndCut) {
    db.BeginUsingFmt("Units.%d.%s", 7, "x");
    EXPECT_EQ(db.GetUsing(), "Units.7.x.");
    db.EndUsing();
    const std::string longText(300, 'y');
    db.BeginUsingFmt("%s", longText.c_str());
    EXPECT_EQ(db.GetUsing().GetLength(), 255);  // 254 and the dot
}

TEST_F(PropertyDb, UsingPathBeyond65535IsRefusedAndStillPairs) {
    db.BeginUsing("a"), db.BeginUsing(std::string(70000, 'x').c_str());
    EXPECT_EQ(db.GetUsing(), "a.");
    db.BeginUsing("b");
    EXPECT_EQ(db.GetUsing(), "a.b.");
    db.EndUsing(), db.EndUsing();
    EXPECT_EQ(db.GetUsing(), "a.");
    db.BeginUsing(std::string(65532, 'x').c_str());  // with both dots exactly 65,535
    EXPECT_EQ(db.GetUsing().GetLength(), 65535);
    db.BeginUsing("y");
    EXPECT_EQ(db.GetUsing().GetLength(), 65535);
    db.EndUsing(), db.EndUsing(), db.EndUsing();
    EXPECT_EQ(db.GetUsing(), "");
}

TEST_F(PropertyDb, UniqueAndFullKeysIgnoreTheUsingPath) {
    db.SetValue("a.v", 1), db.SetPath("a.n"), db.BeginUsing("a");
    using Row = std::tuple<const char*, bool, bool>;
    for (const auto& [key, unique, full] : {Row{"a", false, false}, Row{"a.v", false, true}, Row{"a.n", false, false},
                                            Row{"v", true, false}, Row{"a.x", true, false}, Row{"x.y", true, false},
                                            Row{"a.v.z", false, false}, Row{"a.n.z", true, false}, Row{"", false, false}}) {
        EXPECT_EQ(db.IsUniqueKey(key) != 0, unique) << key;
        EXPECT_EQ(db.IsFullKey(key) != 0, full) << key;
    }
    EXPECT_FALSE(db.GetErrorState());
}

// ---- values

TEST_F(PropertyDb, KindsAreFixed) {
    EXPECT_TRUE(db.SetValue("a.b", 1.5f));
    double real = 7;
    EXPECT_FALSE(db.GetValue("a.b", real));
    EXPECT_EQ(real, 7);
    EXPECT_FALSE(db.SetValue("a.b", 2.0));
    EXPECT_FALSE(db.SetValue("a", 1));      // a node
    EXPECT_FALSE(db.SetValue("a.b.c", 1));  // below a value
    EXPECT_FALSE(db.SetPath("a.b"));
    EXPECT_FALSE(db.SetPath("a.b.c"));
    EXPECT_TRUE(Reads("a.b", 1.5f));
    EXPECT_TRUE(db.SetValue("a.b", -2.5f));
    EXPECT_TRUE(Reads("a.b", -2.5f));
}

TEST_F(PropertyDb, ScalarsRoundTripAndShareKinds) {
    db.SetValue("text", "abc"), db.SetValue("byte", static_cast<unsigned char>(200));
    db.SetValue("word", static_cast<unsigned short>(0x1234)), db.SetValue("int", -5), db.SetValue("uint", 4000000000u);
    db.SetValue("i64", static_cast<__int64>(-5000000000));
    EXPECT_EQ(Contents(db),
              "byte = CWordArray 200\ni64 = CInt64Array -5000000000\nint = CDWordArray 4294967291\ntext = CStringArray [abc]\n"
              "uint = CDWordArray 4000000000\nword = CWordArray 4660\n");
    db.SetValue("float", 0.1f), db.SetValue("double", 0.1);
    EXPECT_TRUE(Reads("text", CString("abc")));
    EXPECT_TRUE(Reads("word", static_cast<unsigned char>(0x34)) && Reads("byte", static_cast<unsigned short>(200)));
    EXPECT_TRUE(Reads("int", -5) && Reads("int", 4294967291u) && Reads("uint", 4000000000u));
    EXPECT_TRUE(Reads("float", 0.1f) && Reads("double", 0.1));
    EXPECT_TRUE(db.SetValue("text", static_cast<const char*>(nullptr)));
    EXPECT_TRUE(Reads("text", CString()));
}

TEST_F(PropertyDb, TimesAndSpansAreInt64) {
    CVXTTime time;
    time.SetBinaryTime(1234567890123456);
    db.SetValue("t", time), db.SetValue("s", CVXTTimeSpan(-3, TST_SECONDS));
    EXPECT_TRUE(Reads("t", static_cast<__int64>(1234567890123456)));
    EXPECT_TRUE(Reads("s", static_cast<__int64>(-3000000)));
    CVXTTimeSpan span;
    EXPECT_TRUE(db.GetValue("t", span));
    EXPECT_EQ(span.CvtToInt64(), 1234567890123456);
    EXPECT_TRUE(db.GetValue("s", time));
    EXPECT_EQ(time.GetBinaryTime(), -3000000);
}

// Whatever the home's long is, it comes back whole, and reads what the other home's long has written.
TEST_F(PropertyDb, LongsAreNeverCut) {
    const long least = std::numeric_limits<long>::min();
    const unsigned long most = std::numeric_limits<unsigned long>::max();
    db.SetValue("l", least), db.SetValue("u", most);
    EXPECT_TRUE(Reads("l", least));
    EXPECT_TRUE(Reads("u", most));
    EXPECT_EQ(Described(db, "l").substr(0, 11), sizeof(long) == 8 ? "CInt64Array" : "CDWordArray");
    db.SetValue("d", -5);
    EXPECT_TRUE(Reads("d", -5L));
    EXPECT_TRUE(Reads("d", 4294967291UL));
    EXPECT_TRUE(db.SetValue("d", -7L));
    EXPECT_EQ(Described(db, "d"), "CDWordArray 4294967289");
    EXPECT_TRUE(db.SetValue("d", 4294967295UL));
    EXPECT_TRUE(Reads("d", 4294967295UL));
    if (sizeof(long) == 8) {
        EXPECT_FALSE(db.SetValue("d", least));
        EXPECT_TRUE(Reads("d", 4294967295u));
    }
}

TEST_F(PropertyDb, Structures) {
    db.SetValue("P", POINT{3, -4}), db.SetValue("R", RECT{1, 2, 3, -4}), db.SetValue("D", CBCGPRect(1, 2, 3, 4));
    EXPECT_EQ(Described(db, "P"), "CDWordArray 3 4294967292");
    EXPECT_EQ(Described(db, "D"), "CDoubleArray 0x1p+0 0x1.8p+1 0x1p+1 0x1p+2");  // left, right, top, bottom
    POINT point{};
    RECT rect{};
    CBCGPRect real;
    EXPECT_TRUE(db.GetValue("P", point) && point.x == 3 && point.y == -4);
    EXPECT_TRUE(db.GetValue("R", rect) && rect.left == 1 && rect.top == 2 && rect.right == 3 && rect.bottom == -4);
    EXPECT_TRUE(db.GetValue("D", real) && real == CBCGPRect(1, 2, 3, 4));
    EXPECT_TRUE(Reads("P", 3ul));
    EXPECT_TRUE(db.GetValue("R", point) && point.x == 1 && point.y == 2);  // a longer array gives its first elements
    EXPECT_FALSE(db.GetValue("D", rect));
    EXPECT_FALSE(db.GetValue("none", rect));
}

TEST_F(PropertyDb, ShortStructuresRaise) {
    db.SetValue("P", POINT{3, 4}), db.SetValue("one", 1);
    db.SetValue("empty", CDWordArray()), db.SetValue("reals", CDoubleArray());
    RECT rect{9, 9, 9, 9};
    POINT point{9, 9};
    CBCGPRect real;
    EXPECT_TRUE(RaisesInvalidArgument([&] { db.GetValue("P", rect); }));
    for (const char* key : {"one", "empty"}) EXPECT_TRUE(RaisesInvalidArgument([&] { db.GetValue(key, point); })) << key;
    EXPECT_TRUE(RaisesInvalidArgument([&] { db.GetValue("reals", real); }));
    EXPECT_TRUE(rect.left == 9 && point.x == 9);
}

TEST_F(PropertyDb, FontsAreTheirDescription) {
    LOGFONTA font{};
    font.lfHeight = -13;
    font.lfWeight = 700;
    std::strcpy(font.lfFaceName, "Arial");
    db.SetValue("f", font);
    LOGFONTA read{};
    EXPECT_TRUE(db.GetValue("f", read));
    EXPECT_EQ(std::memcmp(&font, &read, sizeof font), 0);
    EXPECT_EQ(db.Count("f", 0), 0);  // byte arrays are not counted

    CFont one;
    EXPECT_TRUE(db.GetValue("f", one));
    EXPECT_TRUE(db.SetValue("g", one));
    LOGFONTA again{};
    EXPECT_TRUE(db.GetValue("g", again));
    EXPECT_EQ(again.lfHeight, -13);
    EXPECT_STREQ(again.lfFaceName, "Arial");
    EXPECT_TRUE(db.GetValue("g", one));  // replaces the font it has
    CFont none;
    EXPECT_FALSE(db.SetValue("h", none));

    CByteArray shorter;
    shorter.SetSize(59);
    db.SetValue("s", shorter);
    EXPECT_FALSE(db.GetValue("s", read));
}

TEST_F(PropertyDb, ArraysAreCopiedWhole) {
    CInt32Array numbers;
    for (int i : {1, -2, 3}) numbers.Add(i);
    EXPECT_TRUE(db.SetValue("n", numbers));
    numbers[0] = 9;
    EXPECT_EQ(Described(db, "n"), "CInt32Array 1 -2 3");
    EXPECT_EQ(db.Count("n", 0), 0);  // nor are these
    numbers.SetSize(1);
    EXPECT_TRUE(db.SetValue("n", numbers));
    EXPECT_EQ(Described(db, "n"), "CInt32Array 9");
    CInt32Array out;
    EXPECT_TRUE(db.GetValue("n", out));
    out[0] = 5;
    EXPECT_EQ(Described(db, "n"), "CInt32Array 9");
    EXPECT_TRUE(db.SetValue("n", db.GetValueObject("n", 0), 0));  // onto itself
    EXPECT_EQ(Described(db, "n"), "CInt32Array 9");
}

TEST_F(PropertyDb, EmptyArraysReadAsFailureAndEmptyTheCallers) {
    db.SetValue("e", CStringArray());
    CStringArray out;
    out.Add("x");
    EXPECT_FALSE(db.GetValue("e", out));
    EXPECT_EQ(out.GetSize(), 0);
    CString text = "kept";
    EXPECT_FALSE(db.GetValue("e", text));
    EXPECT_EQ(text, "kept");
    out.Add("x");
    EXPECT_FALSE(db.GetValue("missing", out));
    EXPECT_EQ(out.GetSize(), 1);
    EXPECT_EQ(db.Count("e", 0), 0);
}

TEST_F(PropertyDb, ObjectsAreTakenByTheirClass) {
    struct Derived : CDWordArray {
    } derived;
    derived.Add(5);
    EXPECT_TRUE(db.SetValue("d", &derived, 0));
    EXPECT_EQ(Described(db, "d"), "CDWordArray 5");
    CMapStringToOb node;
    EXPECT_TRUE(db.SetValue("n.m", &node, 0));
    EXPECT_EQ(Described(db, "n.m"), "CMapStringToOb");
    EXPECT_FALSE(db.SetValue("n.m", &node, 0));  // there already
    EXPECT_FALSE(db.SetValue("x", static_cast<const CObject*>(nullptr), 0));
    const CVXTTime other;
    EXPECT_FALSE(db.SetValue("x.y", &other, 0));
    EXPECT_FALSE(db.Find("x"));
    db.BeginUsing("u");
    EXPECT_TRUE(db.SetValue("a", &derived, 1));
    EXPECT_TRUE(db.SetValue("a", &derived, 0));
    EXPECT_EQ(AllKeys(db), (Keys{"a", "d", "n.m", "u.a"}));
    // A node is made where the key leads from the using path; nothing else comes of it, and nothing of a failure.
    EXPECT_FALSE(db.SetValue("d.v", &node, 1));
    EXPECT_FALSE(db.SetValue("n.m", &node, 1));
    EXPECT_TRUE(db.SetValue("q.r", &node, 1));
    EXPECT_FALSE(db.SetValue("a", &node, 0));
    db.BeginUsing("none");
    EXPECT_FALSE(db.SetValue("", &node, 0));
    EXPECT_FALSE(db.IsUniqueKey("u.q.r"));
    for (const char* key : {"q.r", "u.none", "u.d"}) EXPECT_TRUE(db.IsUniqueKey(key)) << key;
}

TEST_F(PropertyDb, DerivedClassesSeeEveryWrite) {
    struct Watcher : CPropertyDB {
        int words = 0, objects = 0;
        using CPropertyDB::SetValue;
        BOOL SetValue(const char* key, const CDWordArray& value) override {
            ++words;
            EXPECT_EQ(CPropertyDB::SetValue((std::string(key) + "2").c_str(), value), 1);
            return CPropertyDB::SetValue(key, value);
        }
        BOOL SetValue(const char* key, const CObject* value, int absolute) override {
            ++objects;
            return CPropertyDB::SetValue(key, value, absolute);
        }
        void BeginUsing(const char* path) override { CPropertyDB::BeginUsing((std::string("w") + path).c_str()); }
    } watcher;
    watcher.SetValue("a", 5), watcher.SetValue("p", POINT{1, 2});
    EXPECT_EQ(watcher.words, 2);
    EXPECT_EQ(watcher.objects, 4);
    EXPECT_EQ(Contents(watcher), "a = CDWordArray 5\na2 = CDWordArray 5\np = CDWordArray 1 2\np2 = CDWordArray 1 2\n");
    watcher.BeginUsingFmt("%d", 5);
    EXPECT_EQ(watcher.GetUsing(), "w5.");
}

TEST_F(PropertyDb, FlagsSayWhatHappened) {
    EXPECT_FALSE(db.IsModified());
    int value = 0;
    EXPECT_FALSE(db.GetValue("x", value));
    EXPECT_TRUE(db.GetErrorState());
    db.ResetErrorState(0);
    EXPECT_FALSE(db.Find("x") || db.Remove("x") || db.IsFullKey("x"));
    EXPECT_FALSE(db.GetErrorState());
    EXPECT_FALSE(db.IsModified());
    EXPECT_EQ(db.Count("x", 0), -1);
    EXPECT_TRUE(db.GetErrorState());
    db.SetValue("x", 1);
    EXPECT_TRUE(db.IsModified());
    EXPECT_TRUE(db.GetErrorState());  // stays until reset
}

// ---- removing and renaming

TEST_F(PropertyDb, RenameMovesWithinTheNode) {
    db.SetValue("a.b.c", 1), db.SetValue("a.d", 2);
    EXPECT_TRUE(db.Rename("a.b", "n"));
    EXPECT_TRUE(db.Rename("a", "top"));
    EXPECT_EQ(Contents(db), "top.d = CDWordArray 2\ntop.n.c = CDWordArray 1\n");
    const CObject* const replaced = db.GetValueObject("top.d", 0);
    EXPECT_TRUE(db.Rename("top.n", "d"));
    EXPECT_EQ(Contents(db), "top.d.c = CDWordArray 1\n");
    EXPECT_EQ(static_cast<const CDWordArray*>(replaced)->GetAt(0), 2u);  // still there for who looks at it
    EXPECT_FALSE(db.Rename("none.x", "y"));
    EXPECT_TRUE(db.GetErrorState());
    db.BeginUsing("top.d");
    EXPECT_TRUE(db.Rename("c", "x.y"));  // one segment, not split
    db.EndUsing();
    EXPECT_EQ(Enum("top.d", 0, 1), Keys{"x.y"});
}

TEST_F(PropertyDb, RenamingNothingLeavesAnEmptyEntry) {
    db.SetValue("a.v", 1);
    EXPECT_TRUE(db.Rename("a.m", "x"));
    EXPECT_TRUE(db.Find("a.x"));
    EXPECT_EQ(db.Count("a", 0), 2);
    EXPECT_EQ(db.Count("a", 1), 1);
    EXPECT_EQ(db.Count("a.x", 0), -1);
    EXPECT_FALSE(db.IsFullKey("a.x"));
    EXPECT_FALSE(db.IsUniqueKey("a.x"));
    EXPECT_EQ(Enum("a", 0, 1), Keys{"v"});
    EXPECT_EQ(AllKeys(db), Keys{"a.v"});
    EXPECT_TRUE(db.SetValue("a.x", 2));  // stored over
    EXPECT_EQ(AllKeys(db), (Keys{"a.v", "a.x"}));
    EXPECT_TRUE(db.Rename("a.m", "z"));
    EXPECT_TRUE(db.Remove("a.z"));
    EXPECT_FALSE(db.Find("a.z"));
}

// ---- lists

TEST_F(PropertyDb, EnumListsOneNode) {
    for (const char* key : {"Units.b.v", "Units.a.v", "Units.V", "top"}) db.SetValue(key, 1);
    using Row = std::tuple<const char*, const char*, int, int, Keys>;
    for (const auto& [path, key, fullKeys, withValues, keys] :
         {Row{"", "", 0, 0, {"Units"}}, Row{"", "", 0, 1, {"Units", "top"}}, Row{"", "Units", 0, 1, {"V", "a", "b"}},
          Row{"", "Units", 1, 0, {"Units.a", "Units.b"}}, Row{"", "top", 0, 1, {"failed"}}, Row{"", "none", 0, 1, {"failed"}},
          Row{"Units", "", 1, 1, {"V", "a", "b"}}, Row{"Units", "a", 1, 1, {"a.v"}}}) {
        db.BeginUsing(path);
        EXPECT_EQ(Enum(key, fullKeys, withValues), keys) << path << ' ' << key;
        db.EndUsing();
    }
    db.BeginUsing("Units");
    EXPECT_EQ(AllKeys(db), (Keys{"Units.V", "Units.a.v", "Units.b.v", "top"}));
}

TEST_F(PropertyDb, NamesComeInTheOrderOfTheirBytes) {
    // Alike for eight bytes and more, one the beginning of another, letters above the ASCII ones.
    const Keys inOrder = {"k",           "k 10",          "k 2",           "kabcdefgh",     "kabcdefgh1",
                          "kabcdefgh10", "kabcdefgh2",    "kabcdefgh\xC3", "kabcdefgi",     "k\xC3\xA5",
                          "k\xC3\xA5r",  "k\xC3\xA5rabcdefg", "k\xE2"};
    for (size_t i = 0; i < inOrder.size(); ++i) {
        const std::string& name = inOrder[(i * 5 + 3) % inOrder.size()];
        ASSERT_TRUE(db.SetValue(("node." + name).c_str(), 1));
    }
    EXPECT_EQ(Enum("node", 0, 1), inOrder);
}

TEST_F(PropertyDb, EnumFindWantsAPart) {
    for (const char* key : {"n.abc", "n.bcd", "n.xyz", "n.ABC"}) db.SetValue(key, 1);
    CStringArray out;
    EXPECT_TRUE(db.EnumFind("n", "bc", out, 0));
    EXPECT_EQ(ToKeys(out), (Keys{"abc", "bcd"}));
    EXPECT_TRUE(db.EnumFind("n", "", out, 1));
    EXPECT_EQ(ToKeys(out), (Keys{"n.ABC", "n.abc", "n.bcd", "n.xyz"}));
    EXPECT_TRUE(db.EnumFind("", "n", out, 1));
    EXPECT_EQ(ToKeys(out), Keys{".n"});
    EXPECT_FALSE(db.EnumFind("none", "b", out, 0));
}

TEST_F(PropertyDb, EnumWildcardFindsEverySegment) {
    for (const char* key : {"Units.A.Name", "Units.B.Name", "Units.C.Other", "Units.V", "Top.A.Name", "n.*x.Name"})
        db.SetValue(key, 1);
    using Row = std::pair<const char*, Keys>;
    for (const auto& [pattern, keys] :
         {Row{"Units.*.Name", {"Units.A.Name", "Units.B.Name"}}, Row{"Units.*", {"Units.A", "Units.B", "Units.C", "Units.V"}},
          Row{".*.*.Name", {"Top.A.Name", "Units.A.Name", "Units.B.Name", "n.*x.Name"}}, Row{".*", {"Top", "Units", "n"}},
          Row{"Units.A.Name", {"Units.A.Name"}}, Row{"Units.*.None", {}}, Row{"None.*", {}},
          Row{"n.*.Name", {"n.*x.Name"}}})  // names that look like wildcards are names
        EXPECT_EQ(Wildcard(pattern), keys) << pattern;
    CStringArray out;
    out.Add("first");
    EXPECT_TRUE(db.EnumWildcard("Units.*.Name", out));
    EXPECT_EQ(ToKeys(out), (Keys{"first", "Units.A.Name", "Units.B.Name"}));
    EXPECT_FALSE(db.EnumWildcard("No.*", out));
    db.BeginUsing("Units");
    EXPECT_EQ(Wildcard(".*.Name"), (Keys{"A.Name", "B.Name"}));
}

TEST_F(PropertyDb, DeepTreesNeedNoStack) {
    std::string key;
    for (int i = 0; i < 200000; ++i) key += "a.";
    key += 'v';
    EXPECT_TRUE(db.SetValue(key.c_str(), 1));
    EXPECT_TRUE(db.IsFullKey(key.c_str()));
    EXPECT_EQ(AllKeys(db), Keys{key});
    std::string pattern;
    for (int i = 0; i < 200; ++i) pattern += i ? ".*" : "a.*";
    EXPECT_EQ(Wildcard(pattern.c_str()).size(), 1u);
    EXPECT_TRUE(db.Remove("a"));
}

// ---- copies

TEST_F(PropertyDb, CopiesHoldTheTreeAlone) {
    db.SetValue("a.v", 1), db.SetPath("a.empty"), db.BeginUsing("a");
    const CPropertyDB copy(db);
    EXPECT_EQ(Contents(copy), "a.empty = CMapStringToOb\na.v = CDWordArray 1\n");
    EXPECT_EQ(copy.GetUsing(), "");
    CPropertyDB assigned;
    assigned.SetValue("old", 1);
    assigned = copy;
    EXPECT_EQ(Contents(assigned), Contents(copy));
    assigned = *&assigned;
    EXPECT_EQ(Contents(assigned), Contents(copy));
    EXPECT_TRUE(assigned.Copy(assigned, nullptr, nullptr, 1));
    EXPECT_EQ(Contents(assigned), Contents(copy));
}

TEST_F(PropertyDb, OverlayCopyTable) {
    CPropertyDB source;
    for (const char* key : {"A.B.x", "A.B.y", "A.BC.x", "A.v", "top"}) source.SetValue(key, 1);
    using Row = std::tuple<const char*, const char*, int, Keys>;
    for (const auto& [srcKey, dstKey, fullKeys, keys] :
         {Row{nullptr, nullptr, 1, {"A.B.x", "A.B.y", "A.BC.x", "A.v", "top"}},
          Row{"A.B", nullptr, 1, {"A.B.x", "A.B.y", "A.BC.x"}}, Row{"A.B.", "D", 1, {"D.A.B.x", "D.A.B.y"}},
          Row{"A.B", "D.", 0, {"D.BC.x", "D.x", "D.y"}}, Row{"A", "D", 0, {"D.B.x", "D.B.y", "D.BC.x", "D.v"}},
          Row{"A.v", nullptr, 0, {"v"}}, Row{"none", nullptr, 0, {}}}) {
        CPropertyDB target;
        EXPECT_TRUE(target.OverlayCopy(source, srcKey, dstKey, fullKeys));
        EXPECT_EQ(AllKeys(target), keys) << (srcKey ? srcKey : "null");
        EXPECT_TRUE(target.IsModified());
    }
    EXPECT_TRUE(RaisesInvalidArgument([&] { db.OverlayCopy(source, nullptr, "", 1); }));
    EXPECT_TRUE(RaisesInvalidArgument([&] { db.OverlayCopy(source, "top", nullptr, 0); }));
    EXPECT_TRUE(RaisesInvalidArgument([&] { db.OverlayCopy(source, nullptr, nullptr, 0); }));
}

TEST_F(PropertyDb, OverlayCopyMergesAndKeepsKinds) {
    CPropertyDB source;
    source.SetValue("a", 1), source.SetValue("b", 2), source.SetPath("n"), source.BeginUsing("ignored");
    db.SetValue("u.a", "text"), db.SetValue("u.kept", 3), db.BeginUsing("u");
    EXPECT_TRUE(db.OverlayCopy(source, nullptr, nullptr, 1));  // relative to this database's using path
    EXPECT_EQ(Contents(db), "u.a = CStringArray [text]\nu.b = CDWordArray 2\nu.kept = CDWordArray 3\nu.n = CMapStringToOb\n");
    EXPECT_TRUE(db.Copy(source, nullptr, nullptr, 1));
    EXPECT_EQ(AllKeys(db), (Keys{"u.a", "u.b", "u.n"}));
}

TEST_F(PropertyDb, OverlayCopyWithoutFullKeysIsAbsolute) {
    CPropertyDB source;
    source.SetValue("s.a", 1);
    db.BeginUsing("u");
    EXPECT_TRUE(db.OverlayCopy(source, "s", "d", 0));
    EXPECT_EQ(AllKeys(db), Keys{"d.a"});
}
