#include "afx/archive.h"
#include "platform/house_text_internal.h"
#include "tests/propdb/property_db_fixture.h"
#include "tests/support/table.h"
#include "tests/support/test_folder.h"

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <random>
#include <tuple>

namespace {
namespace fs = std::filesystem;

void WriteBytes(const std::string& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

bool LoadBytes(CPropertyDB& database, std::string bytes, bool xml) {
    CMemFile file(reinterpret_cast<BYTE*>(bytes.data()), static_cast<UINT>(bytes.size()));
    return database.LoadFromFile(&file, xml) != 0;
}
std::string StoredBytes(CPropertyDB& database, bool xml) {
    CMemFile file;
    EXPECT_TRUE(database.StoreToFile(&file, xml, 0));
    return {reinterpret_cast<const char*>(file.GetBufferPtr()), static_cast<size_t>(file.GetLength())};
}

class PropertyDbFiles : public testing::Test, protected TestFolder {
protected:
    CPropertyDB db;

    // One of each kind, in two nodes.
    void Fill() {
        CStringArray texts;
        for (const char* text : {"one", "", "three"}) texts.Add(text);
        CDoubleArray reals;
        for (double real : {0.1, -1e300, 5e-324}) reals.Add(real);
        CInt64Array wide;
        for (__int64 number : {std::numeric_limits<__int64>::min(), std::numeric_limits<__int64>::max()}) wide.Add(number);
        CInt32Array narrow;
        narrow.Add(-1);
        db.SetValue("Units.3.sName", orvik::detail::HouseFrom1252("m\xE4tv\xE4rde <&> 'x' \"y\"").c_str()),
            db.SetValue("Units.3.texts", texts);
        db.SetValue("Units.3.nMode", 4000000000u), db.SetValue("Units.word", static_cast<unsigned short>(65535));
        db.SetValue("Units.fLeft", 0.1f), db.SetValue("Units.reals", reals), db.SetValue("wide", wide);
        db.SetValue("narrow", narrow), db.SetValue("font", LOGFONTA{}), db.SetValue("none", CWordArray());
    }
};
constexpr const char kXml[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"
    "<PROPERTYDB>\r\n"
    " <PATH name=\"Units\">\r\n"
    "  <PATH name=\"3\">\r\n"
    "   <PROPERTY name=\"sName\" type=\"str\" size=\"1\">m&#xe4;tv&#xe4;rde &lt;&amp;&gt; 'x' \"y\"</PROPERTY>\r\n"
    "   <PROPERTY name=\"texts\" type=\"str\" size=\"3\">one;;three</PROPERTY>\r\n"
    "   <PROPERTY name=\"nMode\" type=\"u32\" size=\"1\">4000000000</PROPERTY>\r\n"
    "  </PATH>\r\n"
    "  <PROPERTY name=\"word\" type=\"u16\" size=\"1\">65535</PROPERTY>\r\n"
    "  <PROPERTY name=\"fLeft\" type=\"r32\" size=\"1\">0.1</PROPERTY>\r\n"
    "  <PROPERTY name=\"reals\" type=\"r64\" size=\"3\">0.1;-1E+300;4.94066E-324</PROPERTY>\r\n"
    " </PATH>\r\n"
    " <PROPERTY name=\"wide\" type=\"i64\" size=\"2\">-9223372036854775808;9223372036854775807</PROPERTY>\r\n"
    " <PROPERTY name=\"none\" type=\"u16\" size=\"0\"></PROPERTY>\r\n"
    "</PROPERTYDB>\r\n";

std::string Xml(const std::string& body) { return "<PROPERTYDB>" + body + "</PROPERTYDB>"; }
std::string P(const char* name, const char* type, const char* size, const std::string& text) {
    return std::string("<PROPERTY name=\"") + name + "\" type=\"" + type + "\" size=\"" + size + "\">" + text + "</PROPERTY>";
}
}  // namespace

// ---- the forms

TEST_F(PropertyDbFiles, XmlBytesAreTheDialectInEveryLocale) {
    Fill();
    const bool made = std::getenv("LOCPATH") != nullptr;
    for (const char* locale : {"C", "sv_SE.UTF-8", "de_DE.UTF-8"}) {
        const bool set = std::setlocale(LC_ALL, locale) != nullptr;
        EXPECT_TRUE(set || !made) << locale;
        EXPECT_EQ(StoredBytes(db, true), kXml) << locale;
        CPropertyDB read;
        EXPECT_TRUE(LoadBytes(read, kXml, true));
        EXPECT_EQ(Described(read, "Units.reals"), Described(db, "Units.reals"));
    }
    std::setlocale(LC_ALL, "C");
}

TEST_F(PropertyDbFiles, XmlBringsBackWhatItHolds) {
    Fill();
    CPropertyDB read;
    ASSERT_TRUE(LoadBytes(read, kXml, true));
    db.Remove("font"), db.Remove("narrow");  // have no form in XML
    EXPECT_EQ(Contents(read), Contents(db));
    EXPECT_EQ(StoredBytes(read, true), kXml);  // in the same order
    EXPECT_FALSE(read.IsModified());
}

TEST_F(PropertyDbFiles, ArchiveBytes) {
    db.SetValue("a", 1), db.SetValue("n.b", "x"), db.SetValue("n.c", 2);
    using namespace std::string_literals;
    EXPECT_EQ(StoredBytes(db, false), "\0\0\2\0\1a\xFF\xFF\0\0\x0B\0"s + "CDWordArray\1\0\1\0\0\0\1n\xFF\xFF\0\0\x0E\0"s +
                                          "CMapStringToOb\2\0\1"s + "b\xFF\xFF\0\0\x0C\0"s + "CStringArray\1\0\1x\1"s +
                                          "c\x01\x80\1\0\2\0\0\0"s);
}

TEST_F(PropertyDbFiles, ArchiveHoldsEverythingToTheLastBit) {
    Fill();
    db.SetPath("empty.node");
    CPropertyDB read;
    ASSERT_TRUE(LoadBytes(read, StoredBytes(db, false), false));
    EXPECT_EQ(Contents(read), Contents(db));
    EXPECT_FALSE(read.IsModified());
    EXPECT_EQ(StoredBytes(read, false), StoredBytes(db, false));
}

TEST_F(PropertyDbFiles, SpecialNumbersSurviveXml) {
    db.SetValue("inf", std::numeric_limits<double>::infinity()), db.SetValue("minus", -std::numeric_limits<float>::infinity());
    db.SetValue("nan", std::nan(""));
    CPropertyDB read;
    ASSERT_TRUE(LoadBytes(read, StoredBytes(db, true), true));
    EXPECT_EQ(Contents(read), Contents(db));
}

TEST_F(PropertyDbFiles, ExactRealsComeBackFromXmlBitByBit) {
    CDoubleArray doubles;
    CFloatArray floats;
    for (const double value :
         {5e-324, 2.2250738585072011e-308, 2.2250738585072014e-308, 1.7976931348623157e308, -1.7976931348623157e308, 0.1, 1.0 / 3,
          9007199254740993.0, 123456789012345680000.0, 1e23, -0.0, 1e-7})
        doubles.Add(value);
    // The shortest text of 7.038531e-26f, read as a double and rounded, is its neighbour.
    for (const float value : {1e-45f, 1.17549435e-38f, 3.40282347e38f, 0.1f, 1.0f / 3, -0.0f, 16777216.0f, 7.038531e-26f})
        floats.Add(value);
    std::mt19937 random(3);
    for (int i = 0; i < 20000; ++i) {
        const float single = std::bit_cast<float>(static_cast<uint32_t>(random()));
        const double real = std::bit_cast<double>(uint64_t{random()} << 32 | random());
        if (std::isfinite(single)) floats.Add(single);
        if (std::isfinite(real)) doubles.Add(real);
    }
    db.SetValue("d", doubles), db.SetValue("f", floats), db.SetExactReals(TRUE);
    CPropertyDB read;
    ASSERT_TRUE(LoadBytes(read, StoredBytes(db, true), true));
    CDoubleArray doublesBack;
    CFloatArray floatsBack;
    ASSERT_TRUE(read.GetValue("d", doublesBack) && read.GetValue("f", floatsBack));
    ASSERT_EQ(doublesBack.GetSize(), doubles.GetSize());
    ASSERT_EQ(floatsBack.GetSize(), floats.GetSize());
    for (INT_PTR i = 0; i < doubles.GetSize(); ++i)
        ASSERT_EQ(std::bit_cast<uint64_t>(doublesBack[i]), std::bit_cast<uint64_t>(doubles[i])) << doubles[i];
    for (INT_PTR i = 0; i < floats.GetSize(); ++i)
        ASSERT_EQ(std::bit_cast<uint32_t>(floatsBack[i]), std::bit_cast<uint32_t>(floats[i])) << floats[i];

    CPropertyDB shortest;
    shortest.SetExactReals(TRUE), shortest.SetValue("f", 0.1f), shortest.SetValue("d", 1e100);
    const std::string text = StoredBytes(shortest, true);
    EXPECT_NE(text.find(">0.1<"), text.npos) << text;
    EXPECT_NE(text.find(">1E+100<"), text.npos) << text;
}

TEST_F(PropertyDbFiles, EmptyDatabases) {
    EXPECT_EQ(StoredBytes(db, true), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<PROPERTYDB/>\r\n");
    EXPECT_EQ(StoredBytes(db, false), std::string(4, '\0'));
    for (const bool xml : {true, false}) EXPECT_TRUE(LoadBytes(db, StoredBytes(db, xml), xml) && db.IsEmpty());
}

TEST_F(PropertyDbFiles, EntriesWithoutObjectStayOut) {
    db.SetValue("a.v", 1), db.Rename("a.m", "x"), db.Rename("m", "y");
    for (bool xml : {true, false}) {
        CPropertyDB read;
        ASSERT_TRUE(LoadBytes(read, StoredBytes(db, xml), xml));
        EXPECT_EQ(Contents(read), "a.v = CDWordArray 1\n");
        EXPECT_FALSE(read.Find("a.x") || read.Find("y"));
    }
}

// ---- reading XML

TEST_F(PropertyDbFiles, XmlReadingTable) {
    const std::string a1 = P("a", "u16", "1", "1");
    using Row = std::pair<std::string, const char*>;
    for (const auto& [body, contents] :
         Table(Row{P("a", "str", "1", "a;b"), "a = CStringArray [a] [b]\n"},
               Row{P("a", "str", "3", "x"), "a = CStringArray [x] [] []\n"}, Row{P("a", "str", "0", ""), "a = CStringArray\n"},
               Row{P("a", "str", "1", " two words "), "a = CStringArray [two words]\n"},
               Row{P("a", "u16", "3", "65537;-1;x"), "a = CWordArray 1 65535 0\n"},
               Row{P("a", "u32", "2", " 4294967295 ; +7;9"), "a = CDWordArray 4294967295 7\n"},
               Row{P("a", "r64", "2", "1E-05;1,5"), "a = CDoubleArray 0x1.4f8b588e368f1p-17 0x1p+0\n"},
               Row{P("a", "i64", "1", "-5"), "a = CInt64Array -5\n"},
               Row{P("a", "u8", "1", "1") + P("b", "u16", "1", "1"), "b = CWordArray 1\n"},
               Row{P("&quot;a.b&quot;", "u16", "1", "1"), "\"a.b\" = CWordArray 1\n"},
               Row{"<PATH name=\"p\">" + a1 + "</PATH>", "p.a = CWordArray 1\n"},
               Row{a1 + P("n.m.a", "u16", "1", "2") + P("n.m.b", "u16", "1", "3") + P("a.x", "u16", "1", "4"),
                   "a = CWordArray 1\nn.m.a = CWordArray 2\nn.m.b = CWordArray 3\n"},
               Row{"<PATH name=\"p\"/><!c!><?m?>", ""})) {  // an empty node is not made again
        CPropertyDB read;
        EXPECT_TRUE(LoadBytes(read, Xml(body), true)) << body;
        EXPECT_EQ(Contents(read), contents) << body;
    }
    for (const std::string& body :
         Table(Xml("<PATH name=\"p\"/>"), std::string("<PROPERTY name=\"a\" type=\"u16\">1</PROPERTY>"),
               std::string("<PROPERTY name=\"a\" size=\"1\">1</PROPERTY>"),
               std::string("<PROPERTY type=\"u16\" size=\"1\">1</PROPERTY>"),
               std::string("<OTHER name=\"a\" type=\"u16\" size=\"1\">1</OTHER>"), std::string("<OTHER><x/></OTHER>"),
               std::string("<PATH><PATH name=\"a\"/></PATH>"), P("a", "u16", "4000000000", "1"),
               P("a", "str", "18446744073709551617", "1"), P("a", "u16", "-1", "1"), std::string("text"), std::string())) {
        CPropertyDB read;
        EXPECT_FALSE(LoadBytes(read, Xml(body), true)) << body;
        EXPECT_EQ(Contents(read), "") << body;
    }
    EXPECT_FALSE(LoadBytes(db, Xml(P("a", "u16", "60", "1") + P("b", "u16", "70", "1") + "......."), true));
}

TEST_F(PropertyDbFiles, LoadsAddToWhatIsThere) {
    for (bool xml : {true, false}) {
        CPropertyDB source, target;
        source.SetValue("n.a", 1), source.SetValue("b", 2);
        target.SetValue("b", 1), target.SetValue("c", 3);
        ASSERT_TRUE(LoadBytes(target, StoredBytes(source, xml), xml));
        EXPECT_EQ(Contents(target), "b = CDWordArray 2\nc = CDWordArray 3\nn.a = CDWordArray 1\n");
    }
    db.SetValue("b", "text");
    ASSERT_TRUE(LoadBytes(db, Xml("<PROPERTY name=\"b\" type=\"u16\" size=\"1\">1</PROPERTY>"), true));
    EXPECT_EQ(Contents(db), "b = CStringArray [text]\n");  // another kind stays as it is
}

TEST_F(PropertyDbFiles, StoppedLoadsLeaveTheUsingPath) {
    db.BeginUsing("here");
    EXPECT_FALSE(LoadBytes(db, Xml("<PATH name=\"p\"><PROPERTY name=\"a\" type=\"u16\" size=\"1\">1</PROPERTY><x>"), true));
    EXPECT_EQ(db.GetUsing(), "here.");
    EXPECT_EQ(Contents(db), "here.p.a = CWordArray 1\n");
    db.EndUsing();
    EXPECT_EQ(db.GetUsing(), "");
}

TEST_F(PropertyDbFiles, DeepTreesAreRefusedBothWays) {
    const auto key = [](int segments) {
        std::string text;
        for (int i = 1; i < segments; ++i) text += "a.";
        return text + "v";
    };
    db.SetValue(key(255).c_str(), 1);
    for (bool xml : {true, false}) {
        CPropertyDB read;
        EXPECT_TRUE(LoadBytes(read, StoredBytes(db, xml), xml));
        EXPECT_EQ(Contents(read), Contents(db));
    }
    db.SetValue(key(256).c_str(), 1);
    CMemFile file;
    EXPECT_FALSE(db.StoreToFile(&file, 1, 0));
    EXPECT_FALSE(db.StoreToFile(&file, 0, 0));
    EXPECT_FALSE(db.StoreToFile(Path("deep.odb").c_str(), 0) || db.StoreToFile(Path("deep.xml").c_str(), 0));
    EXPECT_EQ(Count(), 0u);

    std::string nested = "<PROPERTYDB>", archive("\0\0\1\0", 4);
    archive += std::string("\0\xFF\xFF\0\0\x0E\0", 7) + "CMapStringToOb" + std::string("\1\0", 2);
    for (int i = 0; i < 100000; ++i) {
        nested += "<PATH name=\"a\">";
        archive += std::string("\0\1\x80\1\0", 5);
    }
    EXPECT_FALSE(LoadBytes(db, nested, true));
    EXPECT_FALSE(LoadBytes(db, archive, false));
}

// ---- damage

TEST_F(PropertyDbFiles, EveryPrefixFailsAndLeavesTheDatabaseUsable) {
    Fill();
    for (bool xml : {true, false}) {
        std::string whole = StoredBytes(db, xml);
        if (xml) whole.resize(whole.size() - 2);  // the last line end may be missing
        for (size_t length = 0; length < whole.size(); ++length) {
            CPropertyDB read;
            ASSERT_FALSE(LoadBytes(read, whole.substr(0, length), xml)) << length;
            ASSERT_TRUE(read.SetValue("new", 1));
            ASSERT_EQ(read.GetUsing(), "");
        }
        CPropertyDB read;
        EXPECT_TRUE(LoadBytes(read, whole, xml));
    }
}

TEST_F(PropertyDbFiles, ForeignArchivesAreRefused) {
    const auto archive = [](std::string entry) { return std::string("\0\0\1\0\1a", 6) + entry; };
    const auto classTag = [](const char* name, char schema = 0) {
        std::string tag("\xFF\xFF", 2);
        tag += schema;
        tag += '\0';
        tag += static_cast<char>(std::strlen(name));
        return tag + '\0' + name;
    };
    using Row = std::tuple<const char*, std::string>;
    for (const auto& [what, bytes] :
         {Row{"unknown class", archive(classTag("CNothing"))},
          Row{"class outside the nine", archive(classTag("CVXTTime") + std::string(8, '\0'))},
          Row{"another outside the nine", archive(classTag("CMapStringToString") + std::string(2, '\0'))},
          Row{"wrong schema", archive(classTag("CDWordArray", 7) + std::string("\0\0", 2))},
          Row{"object met before", std::string("\0\0\2\0\1a", 6) + classTag("CDWordArray") + std::string("\0\0\1b\2\0", 6)},
          Row{"class index never given", archive(std::string("\5\x80\0\0", 4))},
          Row{"object taken for a class",
              std::string("\0\0\2\0\1a", 6) + classTag("CDWordArray") + std::string("\0\0\1b\2\x80\0\0", 8)},
          Row{"huge count", archive(classTag("CDWordArray") + std::string("\xFF\xFF\xFF\xFF\xFF\x7F", 6))},
          Row{"huger count", archive(classTag("CStringArray") + "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F")},
          Row{"huge root", std::string("\0\0\xFF\xFF\xFF\xFF\xFF\x7F", 8)},
          Row{"huge text", archive(classTag("CStringArray") + std::string("\1\0\xFF\xFF\xFF\xFF\xFF\xFF\x7F", 9))}}) {
        CPropertyDB read;
        EXPECT_FALSE(LoadBytes(read, bytes, false)) << what;
        EXPECT_TRUE(read.SetValue("new", 1));
    }
    // A null entry is left out.
    CPropertyDB read;
    EXPECT_TRUE(LoadBytes(read, archive(std::string("\0\0", 2)), false));
    EXPECT_TRUE(read.IsEmpty());
    // A name that comes twice holds the later object.
    EXPECT_TRUE(
        LoadBytes(read, std::string("\0\0\2\0\1a", 6) + classTag("CMapStringToOb") + std::string("\0\0\1a\1\x80\0\0", 8), false));
    EXPECT_EQ(Contents(read), "a = CMapStringToOb\n");
}

// ---- files by name

TEST_F(PropertyDbFiles, TheNameChoosesTheForm) {
    db.SetValue("a", 1);
    using Row = std::pair<const char*, char>;
    for (const auto& [name, first] :
         {Row{"a.xml", '<'}, Row{"b.XML", '<'}, Row{".xMl", '<'}, Row{"a.odb", '\0'}, Row{"xml", '\0'}, Row{"a.xml2", '\0'}}) {
        ASSERT_TRUE(db.StoreToFile(Path(name).c_str(), 0)) << name;
        EXPECT_EQ(BytesOf(Path(name))[0], first) << name;
        CPropertyDB read;
        EXPECT_TRUE(read.LoadFromFile(Path(name).c_str())) << name;
        EXPECT_EQ(Contents(read), Contents(db));
    }
    EXPECT_EQ(Count(), 6u);  // nothing else is left
}

TEST_F(PropertyDbFiles, PathAndFlagsFollowSuccess) {
    db.SetValue("a", 1);
    EXPECT_EQ(db.GetLoadFilePath(), "");
    EXPECT_EQ(db.GetFileName(1), "");
    for (const std::string& bad : {Path("no/such/folder.odb"), Folder().string(), std::string()})
        EXPECT_FALSE(db.StoreToFile(bad.c_str(), 0)) << bad;
    EXPECT_FALSE(db.StoreToFile(static_cast<const char*>(nullptr), 0));
    EXPECT_TRUE(db.IsModified());
    EXPECT_EQ(db.GetLoadFilePath(), "");
    ASSERT_TRUE(db.StoreToFile(Path("my.data.xml").c_str(), 0));
    EXPECT_FALSE(db.IsModified());
    EXPECT_EQ(std::string(db.GetLoadFilePath()), Path("my.data.xml"));
    EXPECT_EQ(db.GetFileName(1), "my.data.xml");
    EXPECT_EQ(db.GetFileName(0), "my.data");

    CPropertyDB read;
    for (const std::string& bad : {Path("missing.xml"), Folder().string(), std::string()})
        EXPECT_FALSE(read.LoadFromFile(bad.c_str()));
    EXPECT_EQ(read.GetLoadFilePath(), "");
    EXPECT_TRUE(read.LoadFromFile(Path("my.data.xml").c_str()));
    EXPECT_EQ(read.GetFileName(0), "my.data");
    EXPECT_FALSE(read.IsModified());
}

TEST_F(PropertyDbFiles, StoringIfModifiedLeavesAnUnchangedFileAlone) {
    db.SetValue("a", 1);
    const std::string path = Path("a.odb");
    ASSERT_TRUE(db.StoreToFile(path.c_str(), 1));
    WriteBytes(path, "touched");
    EXPECT_TRUE(db.StoreToFile(path.c_str(), 1));
    EXPECT_EQ(BytesOf(path), "touched");
    EXPECT_TRUE(db.StoreToFile(Path("b.odb").c_str(), 1));  // another file
    EXPECT_TRUE(db.StoreToFile(path.c_str(), 0));
    EXPECT_NE(BytesOf(path), "touched");
    fs::remove(path);
    EXPECT_TRUE(db.StoreToFile(path.c_str(), 1));
    EXPECT_TRUE(fs::exists(path));
}

// Loading begins where the file stands and leaves it behind the form.
TEST_F(PropertyDbFiles, FormsStandInsideOtherFiles) {
    db.SetValue("a", 1);
    for (bool xml : {true, false}) {
        CMemFile file;
        file.Write("head", 4);
        ASSERT_TRUE(db.StoreToFile(&file, xml, 0));
        const ULONGLONG end = file.GetPosition();
        file.Seek(4, CFile::begin);
        CPropertyDB read;
        EXPECT_TRUE(read.LoadFromFile(&file, xml));
        EXPECT_EQ(Contents(read), Contents(db));
        EXPECT_EQ(file.GetPosition(), end);
    }
}
