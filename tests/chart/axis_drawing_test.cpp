// What an axis and a tag leave on a bitmap: the ticks and labels of the layout at their pixels, and nothing outside.
#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "afx/dc.h"
#include "chart/axis_layout.h"
#include "chart/floating_tag.h"
#include "chart/text_lines.h"
#include "chart/unit_axis.h"
#include "platform/house_text.h"
#include "platform/letters.h"
#include "time/locale_cache.h"
#include "time/number_text.h"
#include "toolkit/global_data.h"

namespace {

constexpr COLORREF kWhite = RGB(255, 255, 255);

// A white bitmap with a font that both homes have. Texts are noted, and drawn by the device beneath.
class NotingDC : public CDC {
public:
    NotingDC(int width, int height) {
        EXPECT_TRUE(CreateCompatibleDC(nullptr));
        m_bitmap.CreateBitmap(width, height, 1, 32, nullptr);
        m_oldBitmap = SelectObject(&m_bitmap);
        m_font.CreateFont(-12, 0, 0, 0, FW_NORMAL, 0, 0, 0, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                          ANTIALIASED_QUALITY, DEFAULT_PITCH, "DejaVu Sans");
        m_oldFont = SelectObject(&m_font);
        PatBlt(0, 0, width, height, WHITENESS);
    }
    ~NotingDC() override { SelectObject(m_oldFont), SelectObject(m_oldBitmap); }
    BOOL TextOut(int x, int y, LPCSTR text, int count) override {
        texts.push_back({CPoint(x, y), GetTextAlign(), std::string(text, static_cast<size_t>(count))});
        return CDC::TextOut(x, y, text, count);
    }
    using CDC::TextOut;
    // Dark pixels of a column or row, as "row ranges" would show them.
    int DarkInColumn(int x, int top, int bottom) const {
        int dark = 0;
        for (int y = top; y < bottom; ++y) dark += GetPixel(x, y) == RGB(0, 0, 0);
        return dark;
    }
    int DarkInRow(int y, int left, int right) const {
        int dark = 0;
        for (int x = left; x < right; ++x) dark += GetPixel(x, y) == RGB(0, 0, 0);
        return dark;
    }

    struct Text {
        CPoint at;
        UINT align;
        std::string text;
    };
    std::vector<Text> texts;

private:
    CBitmap m_bitmap;
    CFont m_font;
    CBitmap* m_oldBitmap;
    CFont* m_oldFont;
};

class AxisDrawing : public testing::Test {
protected:
    static void SetUpTestSuite() { NlsToolsRegister(); }
    void SetUp() override {
        globalData.clrWindow = kWhite;
        globalData.clrWindowText = RGB(0, 0, 0);
    }
    void TearDown() override { globalData.UpdateSysColors(); }

    // What the pure layout says of an axis, for the font of a DC.
    static orvik::AxisLayout LayoutOf(const CUnitAxis& axis, CDC& dc, orvik::AxisDivision& division) {
        const CString format = axis.GetFormat();
        const bool vertical = axis.GetOrientation() == CAxis::AX_VERTICAL;
        const CSize size = dc.GetTextExtent(format);
        const orvik::AxisDivisionRequest request{axis.GetMapping(), vertical ? size.cy : size.cx, format.GetView(),
                                                 NlsGetDecimalSep()};
        division = orvik::DivideAxis(request);
        orvik::AxisLayout layout;
        orvik::LayOutAxis(
            layout, request, division, axis.GetSubDivisions(),
            [&](double value, CString& text) { _NlsSetReal(text, value, format); },
            [&](const CString& text) { return LONG{dc.GetTextExtent(text).cx}; });
        return layout;
    }
};

}  // namespace

TEST_F(AxisDrawing, AHorizontalAxisIsItsLayout) {
    NotingDC dc(700, 60);
    CUnitAxis axis(1);
    axis.SetPosition(20, 50, 600), axis.SetAreaRect(CRect(0, 0, 700, 60)), axis.SetUnit("V"), axis.SetRange(-3.2, 7.4);
    orvik::AxisDivision division;
    const orvik::AxisLayout layout = LayoutOf(axis, dc, division);
    CPen red(PS_SOLID, 1, RGB(255, 0, 0));
    CPen* const oldPen = dc.SelectObject(&red);
    dc.SetTextAlign(TA_RIGHT | TA_BOTTOM), dc.SetBkMode(OPAQUE);
    axis.Render(&dc);
    EXPECT_EQ(std::tuple(dc.GetCurrentPen()->GetSafeHandle(), dc.GetTextAlign(), dc.GetBkMode()),
              std::tuple(red.GetSafeHandle(), static_cast<UINT>(TA_RIGHT | TA_BOTTOM), OPAQUE));
    dc.SelectObject(oldPen);

    ASSERT_EQ(dc.texts.size(), layout.labels.size() + 1);
    for (size_t i = 0; i < layout.labels.size(); ++i) {
        EXPECT_EQ(dc.texts[i].text, std::string(layout.labels[i].text));
        EXPECT_EQ(dc.texts[i].at, CPoint(layout.labels[i].at, 24));
        EXPECT_EQ(dc.texts[i].align, static_cast<UINT>(TA_CENTER | TA_TOP));
    }
    EXPECT_EQ(dc.texts.back().text, "V");
    EXPECT_EQ(dc.texts.back().at, CPoint(std::max<int>(600, layout.labelEnd) + 2, 24));
    EXPECT_EQ(dc.DarkInRow(20, 0, 700), 551);  // with its last pixel
    // Ticks go from the line down: two pixels below it, or four, the last of which is in the labels' first row.
    int ticks = 0;
    for (const orvik::AxisTick& tick : layout.ticks) {
        EXPECT_EQ(dc.DarkInColumn(tick.at, 0, 24), tick.large ? 4 : 3) << tick.at;
        ++ticks;
    }
    EXPECT_EQ(dc.DarkInRow(21, 0, 700), ticks);
    EXPECT_EQ(std::tuple(axis.GetDivisions(), axis.GetOriginAlignment(), axis.GetExtentAlignment(), axis.GetOrigin()),
              std::tuple(division.count, division.originAlignment, division.extentAlignment, division.origin));

    // The raster stands at the large divisions, between the edges.
    dc.PatBlt(0, 0, 700, 60, WHITENESS);
    CPen black(PS_SOLID, 1, RGB(0, 0, 0));
    const CRect plot(50, 0, 601, 20);
    axis.DrawRaster(&dc, plot, black);
    std::vector<int> expected, found;
    for (const LONG offset : layout.offsets)
        if (offset > 0 && offset < 551) expected.push_back(50 + offset);
    for (int x = 0; x < 700; ++x)
        if (dc.DarkInColumn(x, 0, 20) == 20) found.push_back(x);
    EXPECT_EQ(found, expected);
}

TEST_F(AxisDrawing, AVerticalAxisHasItsLabelsOnItsSide) {
    for (const int side : {-1, 1}) {
        NotingDC dc(120, 420);
        CUnitAxis axis(0);
        axis.SetPosition(60, 20, 400), axis.SetUnit("\260C");
        side < 0 ? axis.SetAlignRight() : axis.SetAlignLeft();
        axis.SetRange(-12, 31);
        orvik::AxisDivision division;
        const orvik::AxisLayout layout = LayoutOf(axis, dc, division);
        axis.Render(&dc);
        const int height = dc.GetTextExtent("0", 1).cy;
        ASSERT_EQ(dc.texts.size(), layout.labels.size() + 1);
        for (size_t i = 0; i < layout.labels.size(); ++i) {
            EXPECT_EQ(dc.texts[i].text, std::string(layout.labels[i].text));
            EXPECT_EQ(dc.texts[i].at, CPoint(60 + 4 * side, layout.labels[i].at - height / 2));
            EXPECT_EQ(dc.texts[i].align, static_cast<UINT>(side < 0 ? TA_RIGHT : TA_LEFT));
        }
        EXPECT_EQ(dc.texts.back().at, CPoint(60, 20 - height - 4));
        EXPECT_EQ(dc.DarkInColumn(60, 0, 420), 381);
        EXPECT_EQ(dc.DarkInColumn(60 + side, 15, 405), static_cast<int>(layout.ticks.size()));
        EXPECT_EQ(dc.DarkInColumn(60 - side, 15, 405), 0);
    }
}

TEST_F(AxisDrawing, AnEmptyRangeDrawsItsLineAlone) {
    NotingDC dc(200, 60);
    CUnitAxis axis(1);
    axis.SetPosition(20, 10, 190), axis.SetRange(-5, 0), axis.SetRange(-5, -5), axis.Render(&dc);
    ASSERT_EQ(dc.texts.size(), 1u);
    EXPECT_EQ(dc.DarkInRow(20, 0, 200), 181);
    EXPECT_EQ(axis.GetDivisions(), 0);
    axis.DrawRaster(&dc, CRect(0, 0, 200, 60));
}

TEST_F(AxisDrawing, PrintingIsBlackOnThePaperThatIsThere) {
    NotingDC dc(200, 60);
    dc.m_bPrinting = TRUE;
    globalData.clrWindow = RGB(0, 0, 255);
    globalData.clrWindowText = RGB(255, 0, 0);
    CUnitAxis axis(1);
    axis.SetPosition(20, 10, 190), axis.SetAreaRect(CRect(0, 0, 200, 60)), axis.Render(&dc);
    EXPECT_EQ(dc.GetPixel(1, 1), kWhite);
    EXPECT_EQ(dc.DarkInRow(20, 0, 200), 181);
    dc.m_bPrinting = FALSE;
    axis.Render(&dc);
    EXPECT_EQ(dc.GetPixel(1, 1), RGB(0, 0, 255));
    EXPECT_EQ(dc.GetPixel(100, 20), RGB(255, 0, 0));
}

TEST_F(AxisDrawing, ATagStaysWithinItsRectangle) {
    for (const CRect& rect : {CRect(20, 10, 140, 50), CRect(20, 10, 26, 13), CRect(20, 10, 21, 11), CRect(20, 10, 60, 24)}) {
        NotingDC dc(200, 80);
        CFloatingTagManager manager;
        CFloatingTag& tag = *manager.CreateTag(CRect(0, 0, 200, 80), rect);
        tag.SetText("Pump started, and a good deal more to tell about it than there is room for");
        manager.RenderTags(CRect(0, 0, 200, 80), &dc);
        const COLORREF frame = dc.GetPixel(rect.left, rect.top);
        EXPECT_NE(frame, kWhite);
        tag.SetFocus(TRUE);
        manager.RenderTags(CRect(0, 0, 200, 80), &dc);
        EXPECT_NE(dc.GetPixel(rect.left, rect.top), frame);
        for (int y = 0; y < 80; ++y)
            for (int x = 0; x < 200; ++x)
                ASSERT_TRUE(rect.PtInRect(CPoint(x, y)) || dc.GetPixel(x, y) == kWhite) << x << ", " << y;
    }
    NotingDC dc(20, 20);
    CFloatingTagManager manager;
    manager.CreateTag(CRect(0, 0, 20, 20), CRect(5, 5, 5, 5)), manager.RenderTags(CRect(0, 0, 20, 20), &dc);
    EXPECT_TRUE(dc.texts.empty());
}

// One pixel a character.
TEST(TextLines, AreWrappedBetweenWordsAndEndInAnEllipsis) {
    const auto fit = [](std::string_view text, int width, size_t most) {
        std::string joined;
        for (const std::string& line : orvik::detail::FitLines(text, width, most, [](std::string_view part) {
                 return static_cast<int>(OrvikColumns(OrvikUtf8FromText(part)));
             }))
            joined += OrvikUtf8FromText(line) + "|";
        return joined;
    };
    EXPECT_EQ(fit("", 10, 3), "");
    EXPECT_EQ(fit("one two three", 20, 3), "one two three|");
    EXPECT_EQ(fit("one two three", 7, 3), "one two|three|");
    EXPECT_EQ(fit("one two three", 5, 3), "one|two|three|");
    EXPECT_EQ(fit("one two three", 7, 1), "one tw…|");
    EXPECT_EQ(fit("overlong", 3, 9), "ove|rlo|ng|");
    EXPECT_EQ(fit("a\r\nb\rc\nd\r\n\r\ne\tf", 9, 9), "a|b|c|d||e f|");
    EXPECT_EQ(fit("a\r\nb\r\nc", 9, 2), "a|b…|");
    EXPECT_EQ(fit("abc", 0, 9), "a|b|c|");
    EXPECT_EQ(fit("abc", -5, 0), "…|");
}
