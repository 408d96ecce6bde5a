// Printing on Windows: what is asked where there is no printer, and how a page comes to a printer's dots.
#include <gtest/gtest.h>

#include "platform/picture_internal.h"
#include "platform/print.h"
#include "platform/windows/metafile_internal.h"
#include "platform/windows/printer_sink_internal.h"

#include <winspool.h>

using namespace orvik::detail;

TEST(WindowsPrint, WithoutAPrinterThereIsAnErrorAndNoQuestion) {
    DWORD size = 0, count = 0;
    EnumPrintersA(PRINTER_ENUM_LOCAL | PRINTER_ENUM_CONNECTIONS, nullptr, 4, nullptr, 0, &size, &count);
    if (size > 0) GTEST_SKIP() << "this machine has a printer";
    SIZE page{};
    EXPECT_EQ(OrvikBeginPrint(nullptr, "week.odb", &page), nullptr);
    EXPECT_EQ(GetLastError(), kOrvikNoPrinter);
    EXPECT_FALSE(OrvikEndPrint(nullptr, TRUE));
    EXPECT_EQ(GetLastError(), DWORD{ERROR_INVALID_HANDLE});
}

// On a surface of four dots a unit across and two along, which begins 8 and 6 dots from the first one.
TEST(WindowsPrint, APageIsDrawnInThePrintersOwnDots) {
    constexpr int kWidth = 240, kHeight = 120;
    const PixelSurface paper(kWidth, kHeight);
    std::fill_n(paper.Bits(), kWidth * kHeight, 0xFFFFFFu);
    const auto at = [&](int x, int y) { return paper.Bits()[y * kWidth + x] & 0xFFFFFF; };

    const HDC page = CreateEnhMetaFileA(nullptr, nullptr, nullptr, nullptr);
    const RECT box{1, 1, 6, 4};
    const HBRUSH red = CreateSolidBrush(RGB(255, 0, 0));
    FillRect(page, &box, red);
    DeleteObject(red);
    const ORVIK_CURVE_POINT rise[] = {{10, 30.25f}, {20, 30.25f}};
    EXPECT_TRUE(KeepSmoothLine(page, SmoothPathOf(rise, 2), RGB(0, 0, 255), 1.5f));
    SaveDC(page);
    IntersectClipRect(page, 30, 0, 35, 50);
    MoveToEx(page, 25, 10, nullptr);
    LineTo(page, 45, 10);
    RestoreDC(page, -1);
    SetTextAlign(page, TA_LEFT | TA_BASELINE);
    TextOutA(page, 40, 40, "\xDF", 1);
    const HENHMETAFILE recorded = CloseEnhMetaFile(page);
    {
        const auto sink = MakePrinterSink(paper.Dc(), 60, 60, {8, 6, 4, 2});
        EXPECT_EQ(DrawMetafile(recorded, *sink), DWORD{ERROR_SUCCESS});
        sink->Finish();
    }
    DeleteEnhMetaFile(recorded);
    SettlePixels();

    EXPECT_EQ(at(12, 8), 0xFF0000u) << "the box's first dot";
    EXPECT_EQ(at(11, 8), 0xFFFFFFu);
    EXPECT_EQ(at(31, 13), 0xFF0000u) << "its last one";
    EXPECT_EQ(at(32, 13), 0xFFFFFFu);
    // 30.75 units from the top, three dots wide: at 67.5 dots, between pixels of the page.
    EXPECT_EQ(at(70, 67), 0x0000FFu);
    EXPECT_EQ(at(70, 70), 0xFFFFFFu);
    EXPECT_EQ(at(70, 64), 0xFFFFFFu);
    EXPECT_EQ(at(130, 27), 0u) << "within the clip";
    EXPECT_EQ(at(126, 27), 0xFFFFFFu);
    EXPECT_EQ(at(149, 27), 0xFFFFFFu);
    int ink = 0;
    for (int y = 60; y < 86; ++y)
        for (int x = 168; x < kWidth; ++x) ink += at(x, y) != 0xFFFFFF;
    EXPECT_GT(ink, 20) << "the letter";
    EXPECT_EQ(GetClipBox(paper.Dc(), std::make_unique<RECT>().get()), SIMPLEREGION);
}
