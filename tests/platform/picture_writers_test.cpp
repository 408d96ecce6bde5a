// The writers of picture files by themselves, without a DC.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "platform/png_writer_internal.h"
#include "platform/vector_sink_internal.h"
#include "tests/platform/png_reader.h"

namespace {

// The writer of PDF files by itself, on both homes: a reader finds each object where the table says, and text as it was drawn.
TEST(PdfWriter, FileIsWellFormed) {
    using namespace orvik::detail;
    const auto sink = MakePdfWriter(400, 300);
    VectorText text;
    text.x = 100, text.y = 50, text.text = "(\xC3\xA5\xC2\xB0\xE2\x82\xAC\\", text.size = 12, text.anchor = VectorAnchor::end,
    text.width = 60;
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
