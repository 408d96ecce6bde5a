// Fonts that a page carries along, on both homes.
#include <gtest/gtest.h>
#include <zlib.h>

#include <cstdlib>
#include <fstream>
#include <random>

#include "platform/house_text_internal.h"
#include "platform/vector_sink_internal.h"

using namespace orvik::detail;

namespace {
// ORVIK_PICTURES keeps what was drawn, for whoever wants to look at it.
std::string PageOf(const std::vector<std::string>& lines, const char* name = nullptr) {
    const auto sink = MakePdfWriter(400, 300);
    VectorText text;
    text.x = 10, text.size = 12, text.face = "DejaVu Sans";
    for (const std::string& line : lines) {
        text.y += 20, text.text = line;
        sink->Text(text);
    }
    std::string page = sink->Finish();
    if (const char* keep = std::getenv("ORVIK_PICTURES"); keep != nullptr && name != nullptr)
        std::ofstream(std::string(keep) + '/' + name, std::ios::binary) << page;
    return page;
}

unsigned long NumberAfter(const std::string& text, const std::string& name, size_t from) {
    return std::strtoul(text.c_str() + text.find(name, from) + name.size(), nullptr, 10);
}

// The font files of a page.
std::vector<std::string> FontsOf(const std::string& pdf) {
    std::vector<std::string> fonts;
    for (size_t at = pdf.find("/Length1 "); at != pdf.npos; at = pdf.find("/Length1 ", at + 1)) {
        std::string font(NumberAfter(pdf, "/Length1 ", at), 0);
        const size_t head = pdf.rfind("obj\n", at), begin = pdf.find("stream\n", at) + 7;
        uLongf size = static_cast<uLongf>(font.size());
        EXPECT_EQ(Z_OK, uncompress(reinterpret_cast<Bytef*>(font.data()), &size, reinterpret_cast<const Bytef*>(&pdf[begin]),
                                   static_cast<uLong>(NumberAfter(pdf, "/Length ", head))));
        EXPECT_EQ(font.size(), size);
        fonts.push_back(std::move(font));
    }
    return fonts;
}

uint32_t Number(const std::string& bytes, size_t at, size_t size) {
    uint32_t value = 0;
    for (size_t i = 0; i < size; ++i) value = value << 8 | static_cast<unsigned char>(bytes.at(at + i));
    return value;
}

TEST(PageFonts, HoldTheGlyphsInUseAndSayTheirText) {
    const std::string pdf = PageOf({"k\u03A9", "\u00E9", "CO\u2082 \u03A9"});
    EXPECT_NE(pdf.npos, pdf.find("(\xE9) Tj")) << "readers have this";
    EXPECT_NE(pdf.npos, pdf.find("/Encoding /Identity-H"));
    for (const char* says : {"> <03A9>\n", "> <2082>\n", "> <006B>\n"}) EXPECT_NE(pdf.npos, pdf.find(says)) << says;
    EXPECT_EQ(pdf.npos, pdf.find("> <0041>\n"));
    const size_t table = NumberAfter(pdf, "startxref\n", 0), count = NumberAfter(pdf, "xref\n0 ", table);
    EXPECT_GT(count, 9u);
    for (size_t number = 1, first = pdf.find('\n', table + 5) + 1; number < count; ++number) {
        const std::string head = std::to_string(number) + " 0 obj\n";
        EXPECT_EQ(head, pdf.substr(std::strtoul(pdf.c_str() + first + 20 * number, nullptr, 10), head.size()));
    }

    const std::vector<std::string> fonts = FontsOf(pdf);
    ASSERT_FALSE(fonts.empty());
    for (const std::string& font : fonts) {
        uint32_t sum = 0;
        ASSERT_EQ(0u, font.size() % 4);
        for (size_t at = 0; at < font.size(); at += 4) sum += Number(font, at, 4);
        EXPECT_EQ(0xB1B0AFBA, sum);
        size_t outlines = 0;
        for (size_t i = 0; i < Number(font, 4, 2); ++i) {
            const size_t entry = 12 + 16 * i, begin = Number(font, entry + 8, 4), size = Number(font, entry + 12, 4);
            ASSERT_LE(begin + size, font.size());
            if (font.substr(entry, 4) == "glyf") outlines = size;
        }
        EXPECT_TRUE(outlines > 100 && outlines < 20'000) << outlines;
    }
}

TEST(PageFonts, AnyTextFindsItsWayToThePage) {
    std::vector<std::string> lines = {"\u0391\u03BD\u03C4\u03AF\u03C3\u03C4\u03B1\u03C3\u03B7 [k\u03A9]",
                                      "\u6E29\u5EA6 [\u2103]",
                                      "CO\u2082",
                                      "\u0645\u0642\u0627\u0648\u0645\u0629 = 12 k\u03A9",
                                      "\u092A\u094D\u0930\u0924\u093F\u0930\u094B\u0927",
                                      "cafe\u0301 x\u0302",
                                      "\U0001F321 \U0001F1F8\U0001F1EA"};
    std::mt19937 random(3);
    for (int i = 0; i < 8; ++i) {
        std::string& line = lines.emplace_back("x");
        for (int left = 8; left > 0; --left) AppendUtf8(line, static_cast<char32_t>(random() % (left % 2 ? 0x2FFF : 0x1FFFF)));
    }
    const std::string pdf = PageOf(lines, "any.pdf");
    EXPECT_EQ(lines.size(), [&] {
        size_t texts = 0;
        for (size_t at = pdf.find("\nET\n"); at != pdf.npos; at = pdf.find("\nET\n", at + 1)) ++texts;
        return texts;
    }());
    for (const char* says : {"> <03AF>\n", "> <2082>\n"}) EXPECT_NE(pdf.npos, pdf.find(says)) << says;
}

TEST(PageFonts, WhatNoFontHasIsToldAllTheSame) {
    const std::string pdf = PageOf({"\U0003FFFD", "\U0003FFFC"});
    EXPECT_NE(pdf.npos, pdf.find("> <D8BFDFFD>\n"));
    EXPECT_NE(pdf.npos, pdf.find("/ActualText <FEFFD8BFDFFC>"));
}

TEST(PageFonts, PagesOfSvgSayUtf8) {
    const auto sink = MakeSvgWriter(100, 100);
    VectorText text;
    text.size = 12, text.text = "k\u03A9 \xB5 <\U0001F321>\uFFFF\u0085";
    sink->Text(text);
    const std::string svg = sink->Finish();
    EXPECT_NE(svg.npos, svg.find(">k\u03A9 \u00B5 &lt;\U0001F321&gt;</text>")) << svg;
}
}  // namespace
