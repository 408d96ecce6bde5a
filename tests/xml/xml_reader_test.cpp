#include "xml/xml_reader.h"

#include <gtest/gtest.h>

#include <string>

#include "platform/house_text_internal.h"

namespace {
// Writes what is reported, one line a call.
class Recorder : public CXMLReader {
public:
    std::string log;
    std::string stopAt;
    CFile* watched = nullptr;
    std::string positions;

    bool ReadText(std::string_view text, unsigned long depth = 0) {
        log.clear();
        std::string copy(text);
        CMemFile file(reinterpret_cast<BYTE*>(copy.data()), static_cast<UINT>(copy.size()));
        return Read(depth, &file) != 0;
    }

protected:
    void OnCommentTag(unsigned long depth, CString text) override { Note(depth, "comment", text, nullptr, ""); }
    void OnMetaTag(unsigned long depth, CString name, CMapStringToString& attrs) override {
        Note(depth, "meta", name, &attrs, "");
    }
    void OnAttributeTag(unsigned long depth, CString name, CMapStringToString& attrs) override {
        Note(depth, "empty", name, &attrs, "");
    }
    void OnSimpleTag(unsigned long depth, CString name, CMapStringToString& attrs, CString text) override {
        Note(depth, "simple", name, &attrs, text);
    }
    unsigned long OnOpenComplexTag(unsigned long depth, CString name, CMapStringToString& attrs) override {
        Note(depth, "open", name, &attrs, "");
        return depth + 10;
    }
    void OnCloseComplexTag(unsigned long depth, CString name) override { Note(depth, "close", name, nullptr, ""); }

private:
    void Note(unsigned long depth, const char* what, const CString& name, CMapStringToString* attrs, const CString& text) {
        log += std::to_string(depth) + ' ' + what + ' ' + name.GetString();
        if (attrs)
            for (POSITION at = attrs->GetStartPosition(); at;) {
                CString key, value;
                attrs->GetNextAssoc(at, key, value);
                log += ' ' + std::string(key) + "=[" + value.GetString() + ']';
            }
        if (*text) log += " {" + std::string(text) + '}';
        log += '\n';
        if (watched) positions += std::to_string(watched->GetPosition()) + ' ';
        if (!stopAt.empty() && stopAt == what) Break();
    }
};

struct Case {
    const char* text;
    bool accepted;
    const char* log;
};
class XmlReader : public testing::TestWithParam<Case> {};
}  // namespace

TEST_P(XmlReader, Reports) {
    Recorder reader;
    EXPECT_EQ(reader.ReadText(GetParam().text), GetParam().accepted) << GetParam().text;
    EXPECT_EQ(reader.log, orvik::detail::HouseFrom1252(GetParam().log)) << GetParam().text;
}

TEST(XmlReferences, OthersStandForThemselvesIn1252) {
    Recorder reader;
    EXPECT_TRUE(reader.ReadText("<a>&#x41;&#937;</a>"));
    EXPECT_EQ(reader.log, "0 simple a {&#x41;&#937;}\n");
}

INSTANTIATE_TEST_SUITE_P(Elements, XmlReader,
                         testing::Values(Case{"<a></a>", true, "0 simple a\n"}, Case{"<a> \t\r\n </a>", true, "0 simple a\n"},
                                         Case{"<a/>", true, "0 empty a\n"}, Case{"<a />", true, "0 empty a\n"},
                                         Case{"<a ></a>", true, "0 simple a\n"},
                                         Case{"<a n=\"1\"  >t</a>", true, "0 simple a n=[1] {t}\n"},
                                         Case{"<a n = \"1\"m=\"2\"/>", true, "0 empty a n=[1] m=[2]\n"},
                                         Case{"<a n=\"1\" n=\"2\"/>", true, "0 empty a n=[2]\n"},
                                         Case{"<a.b-c:D9>t</a.b-c:D9>", true, "0 simple a.b-c:D9 {t}\n"},
                                         Case{" <a> x y </a> \r\n", true, "0 simple a {x y}\n"},
                                         Case{"<a><b>t</b><c/></a>", true, "0 open a\n10 simple b {t}\n10 empty c\n0 close a\n"},
                                         Case{"<a>\r\n <b n=\"\">\r\n  <c/>\r\n </b>\r\n</a>\r\n", true,
                                              "0 open a\n10 open b n=[]\n20 empty c\n10 close b\n0 close a\n"},
                                         Case{"<a/><b>t</b>", true, "0 empty a\n0 simple b {t}\n"},
                                         Case{"\xEF\xBB\xBF<a/>", true, "0 empty a\n"},
                                         Case{"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<a/>", true,
                                              "0 meta xml version=[1.0] encoding=[UTF-8]\n0 empty a\n"},
                                         Case{"<?m?><a/>", true, "0 meta m\n0 empty a\n"}));

INSTANTIATE_TEST_SUITE_P(Comments, XmlReader,
                         testing::Values(Case{"<!hello!><a/>", true, "0 comment hello\n0 empty a\n"},
                                         Case{"<!!><a/>", true, "0 comment \n0 empty a\n"},
                                         Case{"<a><!first!><b/><!last!></a>", true,
                                              "0 open a\n10 comment first\n10 empty b\n10 comment last\n0 close a\n"},
                                         Case{"<!-- x --><a/>", false, ""}, Case{"<!a > b!><a/>", false, ""},
                                         Case{"<!a! b!><a/>", false, ""}, Case{"<!><a/>", false, ""}));

INSTANTIATE_TEST_SUITE_P(Escapes, XmlReader,
                         testing::Values(Case{"<a>&lt;&gt;&amp;&#xe5;&#xe4;&#xf6;&#xc5;&#xc4;&#xd6;&#xb0;&quot;&x</a>",
                                              true, "0 simple a {<>&\xE5\xE4\xF6\xC5\xC4\xD6\xB0&quot;&x}\n"},
                                         Case{"<a>&amp;lt; &amp;amp; &</a>", true, "0 simple a {&lt; &amp; &}\n"},
                                         Case{"<a n=\"&amp;&apos;&quot;&lt;\"/>", true, "0 empty a n=[&'\"&lt;]\n"},
                                         Case{"<a n=\"&amp;quot;&amp;apos;&amp;amp;\"/>", true, "0 empty a n=[\"'&amp;]\n"}));

// Every one is followed by more, so that the reading does not end at the end of the input.
INSTANTIATE_TEST_SUITE_P(
    Refused, XmlReader,
    testing::Values(Case{"<a n='1'/>..", false, ""}, Case{"<a n=1/>..", false, ""}, Case{"<a n/>..", false, ""},
                    Case{"<></>..", false, ""}, Case{"< a/>..", false, ""}, Case{"<a_b/>..", false, ""},
                    Case{"<a/ >..", false, ""}, Case{"<?a/>..", false, ""}, Case{"<a?>..", false, ""},
                    Case{"text<a/>", false, ""}, Case{"<a>t</b>..", false, "0 simple a {t}\n"},
                    Case{"<a>t</a >..", false, "0 simple a {t}\n"}, Case{"<a>t<b/></a>..", false, "0 simple a {t}\n"},
                    Case{"<a><b/>t</a>..", false, "0 open a\n10 empty b\n"}, Case{"<ab", true, ""},
                    Case{"<a>t", true, "0 simple a {t}\n"}, Case{"<a><b/></c>..", false, "0 open a\n10 empty b\n"},
                    Case{"ab", false, ""}, Case{"", false, ""}));

TEST(XmlReaderEnd, ZeroByteEndsTheInput) {
    Recorder reader;
    EXPECT_TRUE(reader.ReadText(std::string_view("<a/>\0", 5)));
    EXPECT_TRUE(reader.ReadText(std::string_view("<a/>\0junk", 9)));
    EXPECT_EQ(reader.log, "0 empty a\n");
    EXPECT_TRUE(reader.ReadText(std::string_view("<a>t\0</a>", 9)));  // as if it broke off there
    EXPECT_EQ(reader.log, "0 simple a {t}\n");
}

TEST(XmlReaderEnd, BreakStopsAfterTheCall) {
    for (const char* what : {"comment", "meta", "empty", "simple", "open", "close"}) {
        Recorder reader;
        reader.stopAt = what;
        EXPECT_FALSE(reader.ReadText("<!c!><?m?><e/><a><s>t</s></a><after/>"));
        const size_t at = reader.log.find(what);
        ASSERT_NE(at, std::string::npos);
        EXPECT_EQ(reader.log.find('\n', at), reader.log.size() - 1) << "no call after " << reader.log;
        reader.stopAt.clear();
        EXPECT_TRUE(reader.ReadText("<a/>")) << "Read clears the flag";
    }
}

TEST(XmlReaderEnd, DepthTravels) {
    Recorder reader;
    EXPECT_TRUE(reader.ReadText("<a><b/></a>", 7));
    EXPECT_EQ(reader.log, "7 open a\n17 empty b\n7 close a\n");
}

TEST(XmlReaderEnd, NestingIsBounded) {
    const auto nested = [](int depth) {
        std::string text;
        for (int i = 0; i < depth; ++i) text += "<a>";
        for (int i = 0; i < depth; ++i) text += "</a>";
        return text;
    };
    Recorder reader;
    EXPECT_TRUE(reader.ReadText(nested(256)));
    EXPECT_FALSE(reader.ReadText(nested(257)));
    EXPECT_FALSE(reader.ReadText(nested(100000)));
    std::string opened;
    for (int i = 0; i < 100000; ++i) opened += "<a>";
    EXPECT_FALSE(reader.ReadText(opened));
}

TEST(XmlReaderFile, PositionIsThatOfTheDocument) {
    std::string text = "..<!c!> <a> <b>tt</b> </a>x..";
    CMemFile file(reinterpret_cast<BYTE*>(text.data()), static_cast<UINT>(text.size()));
    Recorder reader;
    reader.watched = &file;
    file.Seek(2, CFile::begin);
    EXPECT_FALSE(reader.Read(0, &file));
    EXPECT_EQ(reader.log, "0 comment c\n0 open a\n10 simple b {tt}\n0 close a\n");
    EXPECT_EQ(reader.positions, "7 12 17 26 ");
    EXPECT_EQ(file.GetPosition(), 27u);  // behind the byte that was no tag
}

TEST(XmlReaderFile, ReadingGoesOnWhereACallbackMovesTheFile) {
    struct Skipper : Recorder {
        CFile* file = nullptr;
        void OnMetaTag(unsigned long depth, CString name, CMapStringToString& attrs) override {
            Recorder::OnMetaTag(depth, name, attrs);
            file->Seek(5, CFile::current);
        }
    } reader;
    std::string text = "<?m?>12345<a/>";
    CMemFile file(reinterpret_cast<BYTE*>(text.data()), static_cast<UINT>(text.size()));
    reader.file = &file;
    EXPECT_TRUE(reader.Read(0, &file));
    EXPECT_EQ(reader.log, "0 meta m\n0 empty a\n");
}

// Pieces longer than a block, and pieces that cross its borders, are reported whole.
TEST(XmlReaderFile, BlocksDoNotShow) {
    for (size_t length : {32700u, 32760u, 32768u, 65536u, 200000u}) {
        const std::string text(length, 'x');
        Recorder reader;
        ASSERT_TRUE(reader.ReadText("<a n=\"" + text + "\"><b m=\"&amp;\">" + text + "&lt;</b></a>"));
        EXPECT_EQ(reader.log, "0 open a n=[" + text + "]\n10 simple b m=[&] {" + text + "<}\n0 close a\n");
    }
}
