// XML files as people, editors and the module write them.
#include <gtest/gtest.h>

#include <fstream>

#include "host/session/database_file.h"
#include "host/session/value_text.h"
#include "host/words/texts.h"
#include "tests/host/sentence_of.h"

namespace {
constexpr const char* kPath = "database-xml-test.xml";

class DatabaseXml : public testing::Test {
protected:
    ~DatabaseXml() override { DeleteFileA(kPath); }

    // The values as "key=text" in UTF-8, or the sentence of the refusal.
    static std::string Read(const std::string& text, bool strict = false) {
        std::ofstream(kPath, std::ios::binary) << text;
        CPropertyDB db;
        std::string out;
        const auto load = [&] {
            LoadDatabase(kPath, db);
            if (strict) CheckXml(kPath);
        };
        if (const std::string sentence = SentenceOf(load, kFileFailed); !sentence.empty()) {
            EXPECT_TRUE(strict || db.IsEmpty()) << text;
            return sentence;
        }
        EXPECT_EQ(db.GetUsing(), "");
        CStringArray keys;
        db.EnumAll(keys);
        for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
            const CObject* const value = db.GetValueObject(keys[i], TRUE);
            out += (out.empty() ? "" : "|") + ToUtf8(keys[i].GetString()) + "=" + KindOf(value) + " " + TextOf(value);
        }
        return out;
    }
    static std::string In(const std::string& body) { return "<PROPERTYDB>\n" + body + "\n</PROPERTYDB>"; }
};
}  // namespace

TEST_F(DatabaseXml, IsReadAsXmlHasIt) {
    const struct {
        std::string text;
        const char* values;
    } table[] = {
        {"<?xml version='1.0' encoding='utf-8'?>\r\n<!-- one\r\n <PROPERTY> -->\r\n" + In("<PROPERTY name='a'>x</PROPERTY>"),
         "a=str x"},
        {"\xEF\xBB\xBF" + In("<PROPERTY\n\tname = \"a\" >\n  M\xC3\xA4t \xE2\x82\xAC \n</PROPERTY>"),
         "a=str M\xC3\xA4t \xE2\x82\xAC"},
        {In("<PROPERTY name=\"a\">&#228;&#xE4;&#x20AC;&quot;&apos;&amp;amp;</PROPERTY>"),
         "a=str \xC3\xA4\xC3\xA4\xE2\x82\xAC\"'&amp;"},
        {In("<PROPERTY name=\"a&lt;b\" type=\"str\" size=\"1\"><![CDATA[<&>]]>!</PROPERTY>"), "a<b=str <&>!"},
        {In("<!-- --><PROPERTY name=\"a\" type=\"u16\"> 1 ; 2;65535 </PROPERTY>"), "a=u16 1;2;65535"},
        {In("<!-- --><PROPERTY name=\"a\" type=\"r64\" size=\"2\">5e-324;-INF</PROPERTY>"), "a=r64 5e-324;-inf"},
        {In("<!-- --><PROPERTY name=\"a\" type=\"i64\" size=\"0\"></PROPERTY><PROPERTY name=\"b\"/>"), "a=i64 |b=str "},
        {In("<!-- --><PROPERTY name=\"a\" size=\"1\">one;two</PROPERTY>"), "a=str one;two"},
        {In("<PATH name='a'><PATH name=\"b\"/><PROPERTY name='c.d'>1</PROPERTY></PATH>"), "a.c.d=str 1"},
        // The module's own: raw Windows-1252, its comments, and what is no XML at all.
        {In("<!text!><PROPERTY name=\"a<b\" type=\"str\" size=\"1\">\xE9</PROPERTY>"), "a<b=str \xC3\xA9"},
        {In("<PROPERTY name=\"a\" type=\"str\" size=\"1\">one\r\ntwo</PROPERTY>"), "a=str one\r\ntwo"},
        {In("<PROPERTY name=\"a<b\" type=\"str\" size=\"1\">M\xC3\xA4t</PROPERTY>"), "a<b=str M\xC3\xA4t"},
        {In("<PROPERTY name=\"a\" type=\"later\" size=\"1\">x</PROPERTY>"), ""}};
    for (const auto& row : table) {
        EXPECT_EQ(Read(row.text), row.values) << row.text;
        const std::string brokenOff = Read(row.text.substr(0, row.text.rfind("</")));
        EXPECT_NE(brokenOff.find("cannot be read"), std::string::npos) << row.text << brokenOff;
    }
}

TEST_F(DatabaseXml, AFaultIsToldWithItsPlace) {
    const struct {
        std::string text;
        const char* told;
    } table[] = {{In("<!-- --><PATH name='a'>\n</PROPERTYDB>"), "line 3, "},
                 {In("<PROPERTY name='a'>\n\xE4</PROPERTY>"), "line 3, column 1: this is neither"},
                 {"<!DOCTYPE x [<!ENTITY e 'e'>]>\n" + In("<PROPERTY name='a'>&e;</PROPERTY>"), "line 1, "},
                 {In("<PROPERTY name='a' name='b'>1</PROPERTY>"), "line 2, "},
                 {In("<PROPERTY name='a' type='u17'>1</PROPERTY>"), "u17"},
                 {In("<PROPERTY name='a' type='u16'>65536</PROPERTY>"), "65536"},
                 {In("<PROPERTY name='a' type='r64'>1,5</PROPERTY>"), "1,5"},
                 {In("<PROPERTY name='a' type='u16' size='2'>1</PROPERTY>"), "1 elements"},
                 {In("<PROPERTY name='a' type='u16' size='x'>1</PROPERTY>"), "\"x\""},
                 {In("<PROPERTY name='a' typ='u16'>1</PROPERTY>"), "typ"},
                 {In("<PROPERTY type='u16'>1</PROPERTY>"), "lacks its name"},
                 {In("<PROPERTY name='a'>1</PROPERTY><PROPERTY name='a'>2</PROPERTY>"), "twice"},
                 {In("<PROPERTY name='a'>1</PROPERTY><PROPERTY name='a.b'>2</PROPERTY>"), "a.b"},
                 {In("<PROPERTY name='a'><b>1</b></PROPERTY>"), "<b>"},
                 {In("stray <PATH name='a'/>"), "outside a PROPERTY"},
                 {In("<PROPERTY name='a'>1</PROPERTY>") + "<more/>", "line 3, "},
                 {In("<PATH name='" + std::string(3000, '.') + "'/>"), "too many folders"},
                 {"", "line 1, "},
                 {"no XML", "line 1, "}};
    for (const auto& row : table) {
        const std::string sentence = Read(row.text);
        EXPECT_NE(sentence.find(row.told), std::string::npos) << row.text << "\n" << sentence;
        EXPECT_NE(sentence.find("column"), std::string::npos) << row.text << "\n" << sentence;
    }
    std::string deep;
    for (int i = 0; i < 256; ++i) deep = "<PATH name='a'>" + deep + "</PATH>";
    EXPECT_NE(Read(In(deep)).find("more than 256"), std::string::npos);
    EXPECT_EQ(Read(In(deep.substr(15, deep.size() - 22))), "");
}

TEST_F(DatabaseXml, WhatTheModulePassesOverIsSeenWhenAskedFor) {
    EXPECT_NE(Read(In("<PROPERTY name=\"a\" type=\"int\" size=\"1\">1</PROPERTY>"), true).find("int"), std::string::npos);
    EXPECT_NE(Read(In("<PROPERTY name=\"a\" type=\"u16\" size=\"1\">12abc</PROPERTY>"), true).find("12abc"), std::string::npos);
    EXPECT_EQ(Read(In("<!text!><PROPERTY name=\"a\" type=\"u16\" size=\"1\">12</PROPERTY>"), true), "a=u16 12");
}

TEST_F(DatabaseXml, AStoredFileKeepsEveryDigit) {
    CPropertyDB db, read;
    db.SetValue("r", 0.1 + 0.2);
    StoreDatabase(kPath, db);
    LoadDatabase(kPath, read);
    double value = 0;
    EXPECT_TRUE(read.GetValue("r", value));
    EXPECT_EQ(value, 0.1 + 0.2);
}
