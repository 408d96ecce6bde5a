// What lies beneath the DCs of this home: canvases that several DCs share.
#include <gtest/gtest.h>

#include "platform/posix/drawing/canvas_internal.h"
#include "platform/posix/drawing/text_places_internal.h"
#include "platform/posix/kernel/errors.h"
#include "tests/support/last_error.h"

using namespace orvik::detail;

namespace {

TEST(Canvas, DcsShareItByOriginAndClip) {
    const std::shared_ptr<Canvas> canvas = MakeImageCanvas(20, 10);
    ASSERT_NE(canvas, nullptr);
    const HWND window = reinterpret_cast<HWND>(uintptr_t{0x10004});
    const HDC child = MakeCanvasDC({canvas, {5, 2}, RECT{5, 2, 500, 8}, window}),
              whole = MakeCanvasDC({canvas, {0, 0}, RECT{0, 0, 20, 10}});
    RECT box;
    EXPECT_EQ(GetClipBox(child, &box), SIMPLEREGION);
    EXPECT_TRUE(box.left == 0 && box.top == 0 && box.right == 15 && box.bottom == 6);
    PatBlt(child, -50, -50, 200, 200, WHITENESS);
    EXPECT_EQ(GetPixel(whole, 5, 2), RGB(255, 255, 255));
    EXPECT_EQ(GetPixel(whole, 4, 2), RGB(0, 0, 0));
    EXPECT_EQ(GetPixel(whole, 5, 8), RGB(0, 0, 0));
    EXPECT_EQ(GetPixel(child, 0, 6), CLR_INVALID) << "outside of what it may see";
    EXPECT_EQ(WindowFromDC(child), window);
    EXPECT_FALSE(DeleteDC(child)) << "a window's DC goes back to the window";

    IntersectClipRect(child, 0, 0, 2, 2);
    ASSERT_TRUE(PlaceCanvasDC(child, {canvas, {10, 0}, RECT{10, 0, 20, 10}, window}));
    PatBlt(child, -50, -50, 200, 200, BLACKNESS);
    EXPECT_EQ(GetPixel(whole, 10, 2), RGB(255, 255, 255)) << "the clip region moved along";
    const std::optional<CanvasTarget> target = TargetOf(child);
    ASSERT_TRUE(target.has_value());
    EXPECT_EQ(target->offset.x, 10);
    EXPECT_EQ(target->clip.Box().right, 12);
    EXPECT_TRUE(EndCanvasDC(child));
    EXPECT_FALSE(EndCanvasDC(child));
    EXPECT_FAILS(SetROP2(child, R2_NOT), ERROR_INVALID_HANDLE);
    EXPECT_TRUE(EndCanvasDC(whole));
    EXPECT_EQ(MakeImageCanvas(0, 5), nullptr);
    EXPECT_EQ(MakeImageCanvas(40000, 5), nullptr);
}

// A process that did not choose UTF-8 has a letter for every byte.
TEST(Canvas, BytesAreLettersOfWindows1252) {
    const HDC dc = CreateCompatibleDC(nullptr);
    const char text[] = "k\xCE\xA9 \xE9\xFF\x80";
    constexpr int kLength = sizeof text - 1;
    int widths[kLength] = {}, singles[256] = {}, fit = 0, sum = 0;
    SIZE size;
    ASSERT_TRUE(GetCharWidth32A(dc, 0, 255, singles));
    EXPECT_FALSE(GetCharWidth32A(dc, 0, 256, singles));
    ASSERT_TRUE(GetTextExtentExPointA(dc, text, kLength, 1000, &fit, widths, &size));
    EXPECT_EQ(kLength, fit);
    for (int i = 0; i < kLength; ++i) {
        EXPECT_GT(singles[static_cast<unsigned char>(text[i])], 0);
        EXPECT_EQ(sum, LetterX(dc, text, static_cast<size_t>(i)));
        sum += singles[static_cast<unsigned char>(text[i])];
        EXPECT_EQ(sum, widths[i]);
        EXPECT_EQ(static_cast<size_t>(i), LetterAtX(dc, text, sum - singles[static_cast<unsigned char>(text[i])]));
    }
    EXPECT_EQ(sum, size.cx);
    DeleteDC(dc);
}

}  // namespace
