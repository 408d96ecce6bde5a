#include "xml/xml_writer.h"

#include "afx/exception.h"
#include "platform/house_text_internal.h"
#include "tests/support/raises.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {
constexpr const char kDeclaration[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n";

// What the calls write behind the declaration.
std::string Written(const std::function<void(CXMLWriter&)>& calls) {
    CMemFile file;
    CXMLWriter writer(&file);
    calls(writer);
    const std::string all(reinterpret_cast<const char*>(file.GetBufferPtr()), static_cast<size_t>(file.GetLength()));
    EXPECT_EQ(all.substr(0, sizeof kDeclaration - 1), kDeclaration);
    return all.substr(sizeof kDeclaration - 1);
}

std::string TextOf(const char* text) {
    const std::string all = Written([text](CXMLWriter& w) { w.BeginTag("A"), w.SetText(text), w.EndTag(); });
    return all.substr(3, all.size() - 9);
}
std::string AttributeOf(const char* value) {
    const std::string all = Written([value](CXMLWriter& w) { w.BeginTag("A"), w.SetAttr("n", value), w.EndTag(); });
    return all.substr(6, all.size() - 11);
}
}  // namespace

TEST(XmlWriter, TextEscapes) {
    EXPECT_EQ(TextOf(orvik::detail::HouseFrom1252("a<b & \xE4").c_str()), "a&lt;b &amp; &#xe4;");
    EXPECT_EQ(TextOf(orvik::detail::HouseFrom1252("\xE5\xE4\xF6\xC5\xC4\xD6\xB0>").c_str()),
              "&#xe5;&#xe4;&#xf6;&#xc5;&#xc4;&#xd6;&#xb0;&gt;");
    EXPECT_EQ(TextOf(orvik::detail::HouseFrom1252("'\" \xFC\xE9 &amp;").c_str()),
              orvik::detail::HouseFrom1252("'\" \xFC\xE9 &amp;amp;"));  // quotes and other bytes above 127 stay
    EXPECT_EQ(TextOf(""), "");
    EXPECT_EQ(TextOf(std::string(5000, '<').c_str()).size(), 20000u);
}

TEST(XmlWriter, AttributeEscapes) {
    EXPECT_EQ(AttributeOf(orvik::detail::HouseFrom1252("'\"&<>\xE4").c_str()),
              orvik::detail::HouseFrom1252("&apos;&quot;&amp;<>\xE4"));
}

TEST(XmlWriter, MetaAndCommentLines) {
    EXPECT_EQ(Written([](CXMLWriter& w) {
                  w.SetMeta("m a=\"1\""), w.SetComment("before"), w.BeginTag("A"), w.BeginTag("B"), w.EndTag();
                  w.SetComment("inside"), w.BeginTag("B"), w.BeginTag("C"), w.EndTag(), w.SetMeta("deep"), w.EndTag();
                  w.EndTag();
              }),
              "<?m a=\"1\"?>\r\n<!before!>\r\n<A>\r\n <B/>\r\n<!inside!>\r\n <B>\r\n  <C/>\r\n <?deep?>\r\n </B>\r\n</A>\r\n");
}

TEST(XmlWriter, CallsOutOfOrderWriteWhatTheySay) {
    EXPECT_EQ(Written([](CXMLWriter& w) { w.BeginTag("A"), w.SetText("t"), w.SetAttr("n", "v"), w.EndTag(); }),
              "<A>t n=\"v\"/>\r\n");
    EXPECT_EQ(Written([](CXMLWriter& w) { w.BeginTag("A"), w.SetText("t"), w.BeginTag("B"), w.EndTag(), w.EndTag(); }),
              "<A>t>\r\n <B/>\r\n</A>\r\n");
}

TEST(XmlWriter, NoOpenElementIsAnInvalidArgument) {
    CMemFile file;
    CXMLWriter writer(&file);
    const std::function<void()> calls[] = {[&] { writer.EndTag(); }, [&] { writer.SetText("x"); },
                                           [&] { writer.SetAttr("n", "x"); }, [&] { writer.SetAttr("n", 1); },
                                           [&] { writer.SetText(1.0); }};
    for (const auto& call : calls) EXPECT_TRUE(Raises<CInvalidArgException>(call));
    EXPECT_EQ(file.GetLength(), sizeof kDeclaration - 1);
}
