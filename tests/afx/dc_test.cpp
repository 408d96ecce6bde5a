// Drawing gives the same pixels on both homes. Expected pictures are worked out from GDI's documented rules.
#include "afx/dc.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

namespace {

// A memory DC over a white bitmap of 24 by 12 pixels, top row first, whose pixels can be read.
class DcTest : public testing::Test {
protected:
    static constexpr int kWidth = 24, kHeight = 12;

    void SetUp() override {
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = kWidth, info.bmiHeader.biHeight = -kHeight;
        info.bmiHeader.biPlanes = 1, info.bmiHeader.biBitCount = 32;
        void* bits = nullptr;
        ASSERT_TRUE(dc.CreateCompatibleDC(nullptr));
        ASSERT_TRUE(bitmap.Attach(::CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0)));
        pixels = static_cast<uint32_t*>(bits);
        before = dc.SelectObject(&bitmap);
        ASSERT_NE(before, nullptr);
        Clear();
    }
    void TearDown() override { dc.SelectObject(before); }

    void Clear() { dc.FillSolidRect(0, 0, kWidth, kHeight, RGB(255, 255, 255)); }
    std::vector<uint32_t> All() const {
        std::vector<uint32_t> all(pixels, pixels + kWidth * kHeight);
        for (uint32_t& pixel : all) pixel &= 0xFFFFFF;
        return all;
    }
    // A part of the picture: '#' black, '.' white, '+' anything else; rows are parted by '/'.
    std::string Picture(int width, int height) const {
        std::string text;
        for (int y = 0; y < height; ++y) {
            if (y > 0) text += '/';
            for (int x = 0; x < width; ++x) {
                const uint32_t pixel = pixels[y * kWidth + x] & 0xFFFFFF;
                text += pixel == 0 ? '#' : pixel == 0xFFFFFF ? '.' : '+';
            }
        }
        return text;
    }
    int Marks() const {
        const std::vector<uint32_t> all = All();
        return static_cast<int>(std::count_if(all.begin(), all.end(), [](uint32_t pixel) { return pixel != 0xFFFFFF; }));
    }

    CDC dc;
    CBitmap bitmap;
    CBitmap* before = nullptr;
    uint32_t* pixels = nullptr;
};

// Half way between two pixels the upper or left one is taken; the last pixel is not drawn.
TEST_F(DcTest, LinesInEveryOctant) {
    using Row = std::tuple<POINT, std::vector<POINT>>;
    for (const auto& [to, expected] :
         {Row{{8, 6}, {{4, 4}, {5, 4}, {6, 5}, {7, 5}}}, Row{{0, 6}, {{4, 4}, {3, 4}, {2, 5}, {1, 5}}},
          Row{{8, 2}, {{4, 4}, {5, 3}, {6, 3}, {7, 2}}}, Row{{0, 2}, {{4, 4}, {3, 3}, {2, 3}, {1, 2}}},
          Row{{6, 8}, {{4, 4}, {4, 5}, {5, 6}, {5, 7}}}, Row{{2, 8}, {{4, 4}, {3, 5}, {3, 6}, {2, 7}}},
          Row{{6, 0}, {{4, 4}, {4, 3}, {5, 2}, {5, 1}}}, Row{{2, 0}, {{4, 4}, {3, 3}, {3, 2}, {2, 1}}},
          Row{{7, 7}, {{4, 4}, {5, 5}, {6, 6}}}, Row{{1, 7}, {{4, 4}, {3, 5}, {2, 6}}}, Row{{7, 4}, {{4, 4}, {5, 4}, {6, 4}}},
          Row{{4, 1}, {{4, 4}, {4, 3}, {4, 2}}}, Row{{4, 4}, {}}}) {
        SCOPED_TRACE(testing::Message() << to.x << ", " << to.y);
        Clear();
        dc.MoveTo(4, 4);
        EXPECT_TRUE(dc.LineTo(to));
        EXPECT_EQ(Marks(), static_cast<int>(expected.size()));
        for (const POINT& point : expected) EXPECT_EQ(dc.GetPixel(point), RGB(0, 0, 0)) << point.x << ", " << point.y;
        EXPECT_TRUE(dc.GetCurrentPosition() == to);
    }
}

// A line far beyond the picture has the pixels of its visible part.
TEST_F(DcTest, LinesFromOutside) {
    dc.MoveTo(-100000, -50000), dc.LineTo(100000, 50000);
    EXPECT_EQ(Picture(6, 3), "##..../..##../....##");
}

TEST_F(DcTest, BrokenLinesBeginAnewAndFillTheirGaps) {
    CPen pen(PS_DOT, 1, RGB(0, 0, 0));
    CPen* const old = dc.SelectObject(&pen);
    dc.SetBkMode(TRANSPARENT);
    const POINT corner[] = {{0, 0}, {8, 0}, {8, 5}};
    dc.Polyline(corner, 3);
    EXPECT_EQ(Picture(10, 5), "###...###./........../........../........../........#.");
    Clear();
    dc.SetBkMode(OPAQUE), dc.SetBkColor(RGB(255, 0, 0)), dc.MoveTo(0, 0), dc.LineTo(8, 0);
    EXPECT_EQ(Picture(10, 1), "###+++##..");
    dc.SelectObject(old);
}

TEST_F(DcTest, EveryRasterOperation) {
    const uint32_t p = 0x0F0F0F, d = 0x33CC55, all = 0xFFFFFF;
    const uint32_t expected[] = {0,     ~(d | p), d & ~p, ~p,     p & ~d, ~d,     d ^ p, ~(d & p),
                                 d & p, ~(d ^ p), d,      d | ~p, p,      p | ~d, d | p, all};
    CPen pen(PS_SOLID, 1, RGB(0x0F, 0x0F, 0x0F));
    CBrush brush(RGB(0x0F, 0x0F, 0x0F));
    CPen* const oldPen = dc.SelectObject(&pen);
    CBrush* const oldBrush = dc.SelectObject(&brush);
    for (int mode = R2_BLACK; mode <= R2_WHITE; ++mode) {
        dc.FillSolidRect(0, 0, kWidth, kHeight, RGB(0x33, 0xCC, 0x55));
        EXPECT_NE(dc.SetROP2(mode), 0);
        dc.MoveTo(0, 0), dc.LineTo(1, 0), dc.Rectangle(2, 2, 6, 6);
        EXPECT_EQ(pixels[0] & all, expected[mode - 1] & all) << "line, mode " << mode;
        EXPECT_EQ(pixels[2 * kWidth + 2] & all, expected[mode - 1] & all) << "edge, mode " << mode;
        EXPECT_EQ(pixels[4 * kWidth + 4] & all, expected[mode - 1] & all) << "inside, mode " << mode;
    }
    EXPECT_EQ(dc.SetROP2(17), 0);
    dc.SelectObject(oldPen), dc.SelectObject(oldBrush);
}

TEST_F(DcTest, RectanglesExcludeTheirRightAndBottom) {
    dc.SelectStockObject(NULL_BRUSH), dc.Rectangle(1, 1, 5, 4);
    EXPECT_EQ(Picture(6, 5), "....../.####./.#..#./.####./......");
    Clear();
    dc.SelectStockObject(BLACK_BRUSH);
    dc.SelectStockObject(NULL_PEN);  // a pixel less on the right and below
    dc.Rectangle(1, 1, 5, 4);
    EXPECT_EQ(Picture(6, 5), "....../.###../.###../....../......");
    Clear();
    CBrush black(RGB(0, 0, 0));
    dc.FillRect(CRect(1, 1, 5, 4), &black);
    EXPECT_EQ(Picture(6, 5), "....../.####./.####./.####./......");
    Clear();
    dc.FrameRect(CRect(0, 0, 4, 3), &black), dc.Draw3dRect(5, 0, 3, 3, RGB(0, 0, 0), RGB(1, 1, 1));
    EXPECT_EQ(Picture(8, 3), "####.##+/#..#.#.+/####.+++");
}

TEST_F(DcTest, CopiesThatOverlapKeepTheSource) {
    for (const CPoint& shift : {CPoint(3, 2), CPoint(-3, -2), CPoint(4, 0), CPoint(0, -1)}) {
        SCOPED_TRACE(testing::Message() << shift.x << ", " << shift.y);
        Clear();
        for (int i = 0; i < 6; ++i) dc.SetPixel(8 + i, 4 + i % 3, RGB(i * 40, 0, 0));
        dc.BitBlt(8 + shift.x, 4 + shift.y, 6, 3, &dc, 8, 4, SRCCOPY);
        for (int i = 0; i < 6; ++i) EXPECT_EQ(dc.GetPixel(8 + shift.x + i, 4 + shift.y + i % 3), RGB(i * 40, 0, 0)) << i;
    }
    Clear();
    dc.PatBlt(0, 0, 2, 1, BLACKNESS);
    dc.BitBlt(1, 0, 3, 1, &dc, 0, 0, SRCINVERT);  // ..  white ^ black, black ^ black, white ^ white
    EXPECT_EQ(Picture(4, 1), "##.#");
}

TEST_F(DcTest, ClipRegionsAndOriginsAreSavedAndRestored) {
    EXPECT_EQ(dc.SaveDC(), 1);
    dc.SetWindowOrg(-2, -1), dc.SetTextColor(RGB(1, 2, 3)), dc.IntersectClipRect(0, 0, 6, 4);
    EXPECT_EQ(dc.ExcludeClipRect(1, 1, 3, 2), COMPLEXREGION);
    CRect box;
    EXPECT_EQ(dc.GetClipBox(box), COMPLEXREGION);
    EXPECT_TRUE(box == CRect(0, 0, 6, 4));
    EXPECT_EQ(dc.SaveDC(), 2);
    dc.FillSolidRect(-50, -50, 200, 200, RGB(0, 0, 0));
    EXPECT_EQ(Picture(9, 6), "........./..######./..#..###./..######./..######./.........");
    CPoint point(5, 5);
    dc.LPtoDP(&point);
    EXPECT_TRUE(point == CPoint(7, 6));
    EXPECT_TRUE(dc.RestoreDC(1));
    EXPECT_FALSE(dc.RestoreDC(1));
    EXPECT_EQ(dc.GetTextColor(), RGB(0, 0, 0));
    EXPECT_TRUE(dc.GetWindowOrg() == CPoint(0, 0));
    EXPECT_EQ(dc.GetClipBox(box), SIMPLEREGION);
    EXPECT_TRUE(box == CRect(0, 0, kWidth, kHeight));
}

TEST_F(DcTest, RegionsCombine) {
    struct Row {
        int mode, looks;
        CRect box;
    };
    for (const Row& combination : {Row{RGN_AND, SIMPLEREGION, {2, 2, 4, 4}}, Row{RGN_OR, COMPLEXREGION, {0, 0, 6, 6}},
                                   Row{RGN_XOR, COMPLEXREGION, {0, 0, 6, 6}}, Row{RGN_DIFF, COMPLEXREGION, {0, 0, 4, 4}},
                                   Row{RGN_COPY, SIMPLEREGION, {0, 0, 4, 4}}}) {
        CRgn first, second, result;
        first.CreateRectRgn(0, 0, 4, 4), second.CreateRectRgn(2, 2, 6, 6), result.CreateRectRgn(0, 0, 0, 0);
        EXPECT_EQ(result.CombineRgn(&first, &second, combination.mode), combination.looks) << combination.mode;
        CRect box;
        result.GetRgnBox(box);
        EXPECT_TRUE(box == combination.box) << combination.mode;
        for (const POINT& point : {POINT{1, 1}, POINT{3, 3}, POINT{5, 5}}) {
            const bool one = point.x < 4, two = point.x >= 2;
            const bool expected = combination.mode == RGN_AND    ? one && two
                                  : combination.mode == RGN_OR   ? one || two
                                  : combination.mode == RGN_XOR  ? one != two
                                  : combination.mode == RGN_DIFF ? one && !two
                                                                 : one;
            EXPECT_EQ(result.PtInRegion(point) != 0, expected) << combination.mode << ": " << point.x;
        }
    }
}

// What is selected is deleted when the DC lets it go; a bitmap is for one DC at a time.
TEST_F(DcTest, ObjectsInUse) {
    HPEN pen = ::CreatePen(PS_SOLID, 1, RGB(1, 2, 3));
    const HGDIOBJ old = ::SelectObject(dc, pen);
    EXPECT_TRUE(::DeleteObject(pen));
    dc.MoveTo(0, 0), dc.LineTo(1, 0);
    EXPECT_EQ(dc.GetPixel(0, 0), RGB(1, 2, 3));
    ::SelectObject(dc, old);
    EXPECT_EQ(::GetObjectType(pen), 0u);
    CDC second;
    second.CreateCompatibleDC(&dc);
    EXPECT_EQ(second.SelectObject(&bitmap), nullptr);
    EXPECT_EQ(::SelectObject(dc, pen), nullptr);
    EXPECT_TRUE(::DeleteObject(::GetStockObject(BLACK_PEN)));
    EXPECT_EQ(::GetObjectType(::GetStockObject(BLACK_PEN)), OBJ_PEN);
}

TEST_F(DcTest, HandlesFindTheirObjects) {
    CPen pen(PS_SOLID, 1, 0);
    CPen* const stock = dc.SelectObject(&pen);
    ASSERT_NE(stock, nullptr);
    EXPECT_EQ(static_cast<HGDIOBJ>(*stock), ::GetStockObject(BLACK_PEN));
    EXPECT_EQ(dc.SelectObject(stock), &pen);
    EXPECT_EQ(CDC::FromHandle(dc.m_hDC), &dc);
    EXPECT_EQ(CPen::FromHandle(pen), &pen);
    EXPECT_FALSE(pen.CreatePen(PS_SOLID, 1, RGB(0, 0, 0))) << "it has one";
}

// Widths add up and are those of the characters; the alignment shifts the marks by them.
TEST_F(DcTest, TextMeasuresAndAlignment) {
    CFont font;
    ASSERT_TRUE(font.CreateFont(-12, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, "DejaVu Sans"));
    CFont* const old = dc.SelectObject(&font);
    const CSize one = dc.GetTextExtent("1", 1), two = dc.GetTextExtent("12", 2), other = dc.GetTextExtent("2", 1);
    EXPECT_GT(one.cx, 0);
    EXPECT_EQ(two.cx, one.cx + other.cx);
    TEXTMETRICA metrics;
    ASSERT_TRUE(dc.GetTextMetrics(&metrics));
    EXPECT_EQ(one.cy, metrics.tmHeight);
    EXPECT_EQ(metrics.tmHeight, metrics.tmAscent + metrics.tmDescent);

    dc.SetBkMode(TRANSPARENT);
    const auto draw = [&](UINT align, int x, int y) {
        Clear();
        dc.SetBkMode(TRANSPARENT), dc.SetTextAlign(align), dc.TextOut(x, y, "1", 1);
        return All();
    };
    const std::vector<uint32_t> left = draw(TA_LEFT | TA_TOP, 5, -1);
    EXPECT_GT(Marks(), 5);
    EXPECT_EQ(draw(TA_RIGHT | TA_TOP, 5 + one.cx, -1), left);
    EXPECT_EQ(draw(TA_CENTER | TA_TOP, 5 + one.cx / 2, -1), left);
    EXPECT_EQ(draw(TA_LEFT | TA_BASELINE, 5, -1 + metrics.tmAscent), left);
    EXPECT_EQ(draw(TA_LEFT | TA_BOTTOM, 5, -1 + metrics.tmHeight), left);
    dc.MoveTo(5, -1);
    EXPECT_EQ(draw(TA_LEFT | TA_TOP | TA_UPDATECP, 77, 77), left);
    EXPECT_TRUE(dc.GetCurrentPosition() == CPoint(5 + one.cx, -1));
    dc.SetTextAlign(TA_LEFT | TA_TOP);

    // The prefix is no character; the rectangle grows to what the text needs.
    CRect rect(0, 0, 5, 5);
    EXPECT_EQ(dc.DrawText("&1\n12", -1, rect, DT_LEFT | DT_CALCRECT), 2 * metrics.tmHeight);
    EXPECT_TRUE(rect == CRect(0, 0, two.cx, 2 * metrics.tmHeight));
    dc.SelectObject(old);
}

TEST(Geometry, Rectangles) {
    CRect rect(7, 9, 2, 3);
    rect.NormalizeRect();
    EXPECT_TRUE(rect == CRect(2, 3, 7, 9));
    EXPECT_TRUE(rect.PtInRect({2, 3}) && !rect.PtInRect({7, 3}) && !rect.PtInRect({2, 9}));
    EXPECT_TRUE((rect & CRect(5, 5, 20, 20)) == CRect(5, 5, 7, 9));
    EXPECT_TRUE((rect & CRect(7, 3, 20, 20)).IsRectNull());
    EXPECT_TRUE((rect | CRect(0, 0, 0, 50)) == rect) << "an empty rectangle adds nothing";
    CRect rest;
    EXPECT_TRUE(rest.SubtractRect(rect, CRect(0, 0, 4, 20)));
    EXPECT_TRUE(rest == CRect(4, 3, 7, 9));
    rest.SubtractRect(rect, CRect(0, 0, 4, 5));
    EXPECT_TRUE(rest == rect) << "a corner is no whole side";
    EXPECT_EQ(::MulDiv(7, 3, 2), 11);
    EXPECT_EQ(::MulDiv(-7, 3, 2), -11);
    EXPECT_EQ(::MulDiv(1, 1, 0), -1);
    EXPECT_TRUE(CPoint(static_cast<LPARAM>(0xFFFE0003u)) == CPoint(3, -2));
}

}  // namespace
