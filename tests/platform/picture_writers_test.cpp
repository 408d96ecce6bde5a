// The writers of picture files by themselves, without a DC.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "platform/png_writer_internal.h"
#include "platform/vector_sink_internal.h"
#include "tests/platform/png_reader.h"

namespace {
// Any pixels must come back, whatever patterns they make: noise, runs, repeated rows, plain areas, repetitions at the longest
// distance, and codes so uneven that they must be flattened.
TEST(PngWriter, PixelsComeBack) {
    std::mt19937 random(7);
    struct Row {
        int width, height;
        uint32_t colours;  // 0: all
    };
    for (const Row& c : {Row{1, 1, 2}, Row{2, 1, 0}, Row{7, 1, 0}, Row{1, 9, 3}, Row{300, 200, 1}, Row{257, 129, 0},
                         Row{640, 300, 40}, Row{10923, 5, 0}}) {
        const auto width = static_cast<size_t>(c.width);
        std::vector<uint32_t> pixels(width * static_cast<size_t>(c.height));
        for (size_t i = 0; i < pixels.size(); ++i) {
            const uint32_t any = static_cast<uint32_t>(random());
            const bool repeats = i >= width && i / width % 5 != 0;
            pixels[i] = repeats ? pixels[i - width] : c.colours == 0 ? any & 0xFFFFFF : any % c.colours * 0x010305;
        }
        const PngImage image = ReadPng(orvik::detail::PngFile(pixels.data(), width, c.width, c.height));
        EXPECT_EQ(image.width, c.width);
        EXPECT_EQ(image.pixels, pixels) << c.width << " x " << c.height;
    }
}

// The writer of PDF files by itself, on both homes: a reader finds each object where the table says, and text as it was drawn.
TEST(PdfWriter, FileIsWellFormed) {
    using namespace orvik::detail;
    const auto sink = MakePdfWriter(400, 300);
    VectorText text;
    text.x = 100, text.y = 50, text.text = "(\xC3\xA5\xC2\xB0\xE2\x82\xAC\\", text.size = 12, text.anchor = VectorAnchor::end, text.width = 60;
    sink->Text(text);
    const std::vector<VectorRect> nothing, left = {{0, 0, 10, 300}};
    sink->SetClip(&nothing), sink->Fill({1, 1, 77, 77}, 0), sink->SetClip(&left), sink->Fill({1, 1, 55, 33}, 0x0000FF);
    const std::string pdf = sink->Finish();

    const size_t table = std::strtoul(pdf.c_str() + pdf.find("startxref\n") + 10, nullptr, 10);
    EXPECT_EQ(pdf.substr(table, 9), "xref\n0 9\n");
    for (size_t number = 1; number < 9; ++number) {
        const size_t place = std::strtoul(pdf.c_str() + table + 9 + 20 * number, nullptr, 10);
        const std::string head = std::to_string(number) + " 0 obj\n";
        EXPECT_EQ(pdf.substr(place, head.size()), head);
    }
    const size_t stream = pdf.find("stream\n") + 7, length = std::strtoul(pdf.c_str() + pdf.find("/Length ") + 8, nullptr, 10);
    EXPECT_EQ(pdf.substr(stream + length, 10), "\nendstream");
    EXPECT_NE(pdf.find("(\\(\xE5\xB0\x80\\\\) Tj"), std::string::npos);
    EXPECT_NE(pdf.find(" 40 50 Tm"), std::string::npos) << "the text ends at 100 and is 60 wide";
    EXPECT_EQ(pdf.find("76 76"), std::string::npos) << "clipped away";
    EXPECT_NE(pdf.find("q\n0 0 10 300 re\nW n\nq\n1 0 0 rg\n1 1 54 32 re\nf\nQ\nQ\n"), std::string::npos);
}

TEST(VectorNumbers, HaveTwoDecimalsAtMost) {
    using orvik::detail::VectorNumber;
    const std::pair<double, const char*> cases[] = {{0, "0"},          {-0.001, "0"},   {12.5, "12.5"},
                                                    {-3.254, "-3.25"}, {0.005, "0.01"}, {1.999, "2"},
                                                    {7.05, "7.05"},    {-0.5, "-0.5"},  {1e300, "1000000000"}};
    for (const auto& [value, text] : cases) EXPECT_EQ(VectorNumber(value), text);
}
}  // namespace
