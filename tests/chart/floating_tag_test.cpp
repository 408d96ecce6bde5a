// Comments on a plot: where they lie, how they are stored, and the older layout.
#include "chart/floating_tag.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "afx/geometry.h"
#include "platform/house_text_internal.h"
#include "propdb/property_db.h"

namespace {

const CRect kPlot(100, 100, 500, 300);
const CRect kTag(200, 150, 260, 170);

CRect RectOf(const CFloatingTag& tag, const CRect& plot) {
    CRect rect;
    tag.GetRect(plot, rect);
    return rect;
}

std::string Texts(const CFloatingTagManager& manager) {
    std::string texts;
    for (INT_PTR i = 0; i < manager.GetTagCount(); ++i) texts += std::string(manager.GetTag(i)->GetText()) + "|";
    return texts;
}

}  // namespace

TEST(FloatingTag, StaysAtItsSpotOfThePlotWithItsSize) {
    CFloatingTagManager manager;
    CFloatingTag& tag = *manager.CreateTag(kPlot, kTag);
    EXPECT_STREQ(tag.GetText(), "<New floating tag>");
    EXPECT_EQ(tag.GetManager(), &manager);
    EXPECT_EQ(RectOf(tag, kPlot), kTag);
    const CRect larger(0, 0, 800, 400);
    EXPECT_EQ(RectOf(tag, larger), CRect(200, 100, 260, 120));
    EXPECT_TRUE(tag.HitTest(larger, CPoint(200, 100)));
    EXPECT_TRUE(tag.HitTest(larger, CPoint(259, 119)));
    EXPECT_FALSE(tag.HitTest(larger, CPoint(260, 119)));
    EXPECT_FALSE(tag.HitTest(larger, CPoint(199, 100)));

    // An empty plot gives a size, no place.
    tag.SetRect(CRect(0, 0, 0, 50), CRect(0, 0, 10, 12));
    EXPECT_EQ(RectOf(tag, kPlot), CRect(200, 150, 210, 162));
    // Outside the plot, and rounded: a third of 401 pixels is 133.67.
    tag.SetRect(CRect(0, 0, 300, 300), CRect(100, -30, 110, -20));
    EXPECT_EQ(RectOf(tag, CRect(0, 0, 401, 100)), CRect(134, -9, 144, 1));
}

TEST(FloatingTag, TheTopmostTagIsHit) {
    CFloatingTagManager manager;
    CFloatingTag* const below = manager.CreateTag(kPlot, kTag);
    CFloatingTag* const above = manager.CreateTag(kPlot, kTag + CPoint(20, 0));
    EXPECT_EQ(manager.HitTestTags(kPlot, CPoint(230, 160)), above);
    EXPECT_EQ(manager.HitTestTags(kPlot, CPoint(210, 160)), below);
    EXPECT_EQ(manager.HitTestTags(kPlot, CPoint(10, 10)), nullptr);
    CFloatingTagManager other;
    other.RemoveTag(below);
    manager.RemoveTag(nullptr), manager.RemoveTag(above);
    EXPECT_EQ(manager.GetTagCount(), 1);
    EXPECT_EQ(manager.HitTestTags(kPlot, CPoint(230, 160)), below);
}

// Beside a plain list; grown and shrunk past the points at which gaps are closed.
TEST(FloatingTag, TagsKeepTheirPlacesWhateverIsTakenOut) {
    CFloatingTagManager manager;
    std::vector<CFloatingTag*> tags;
    unsigned random = 1;
    const auto below = [&](size_t n) { return (random = random * 1664525u + 1013904223u) / 65536u % n; };
    for (const size_t goal : {70u, 3u, 200u, 0u, 5u}) {
        while (tags.size() != goal) {
            if (tags.size() < goal) tags.push_back(manager.CreateTag(kPlot, kTag));
            if (tags.empty() || (tags.size() <= goal && below(3) > 0)) continue;
            const auto one = tags.begin() + static_cast<std::ptrdiff_t>(below(tags.size()));
            manager.RemoveTag(*one);
            tags.erase(one);
            ASSERT_EQ(manager.GetTagCount(), static_cast<INT_PTR>(tags.size()));
            for (size_t i = 0; i < tags.size(); ++i) ASSERT_EQ(manager.GetTag(static_cast<INT_PTR>(i)), tags[i]);
        }
    }
}

TEST(FloatingTag, TagsComeBackInTheirOrder) {
    CFloatingTagManager manager;
    std::string expected;
    for (int i = 0; i < 12; ++i) {
        CString text;
        text.Format("tag %d, \xE5", i);
        manager.CreateTag(kPlot, kTag + CPoint(i, 2 * i))->SetText(text);
        expected += std::string(text) + "|";
    }
    CPropertyDB db;
    db.SetValue("Comment #40.sText", "earlier"), db.SetValue("Name", "not a tag");
    manager.OnDBSet(&db);
    EXPECT_TRUE(db.GetUsing().IsEmpty());
    float left = 0;
    EXPECT_TRUE(db.GetValue("Comment #0.fLeft", left));
    EXPECT_EQ(left, 0.25f);
    EXPECT_FALSE(db.Find("Comment #40"));
    EXPECT_TRUE(db.Find("Name"));

    CFloatingTagManager loaded;
    loaded.CreateTag(kPlot, kTag), loaded.OnDBGet(&db);
    EXPECT_EQ(Texts(loaded), expected);
    EXPECT_EQ(RectOf(*loaded.GetTag(3), kPlot), CRect(203, 156, 203, 156));  // without a size until the view gives one
    EXPECT_TRUE(db.GetUsing().IsEmpty());
}

TEST(FloatingTag, StrangeFractionsStayWithinBounds) {
    CPropertyDB db;
    CFloatingTagManager manager;
    for (const float fraction : {std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity(), NAN, 3e38f}) {
        db.SetValue("Comment #0.fLeft", fraction);
        manager.OnDBGet(&db);
        const LONG left = RectOf(*manager.GetTag(0), kPlot).left;
        EXPECT_EQ(left, std::isnan(fraction) ? 100 : fraction > 0 ? 0x10000000 : -0x10000000);
    }
    EXPECT_STREQ(manager.GetTag(0)->GetText(), "<New floating tag>");  // no text was stored
}

TEST(FloatingTag, TheOlderLayoutIsReadForItsContext) {
    CPropertyDB db;
    db.BeginUsing("Chart");
    using Row = std::tuple<const char*, const char*, const char*>;
    for (const auto& [folder, context, text] : {Row{"C1", "A", "{\\rtf1\\ansi \\b Pump\\b0  started\\par at 5 \\'b0C\\par}"},
                                                Row{"C2", "*", "plain\ntext"}, Row{"C3", "B", "other"}, Row{"C4", "A", ""}}) {
        db.BeginUsing(folder), db.SetValue("sContext", context), db.SetValue("sText", text), db.SetValue("fLeft", 0.5f);
        db.SetValue("fTop", 0.25f), db.EndUsing();
    }
    db.SetValue("NoContext.sText", "x");
    CFloatingTagManager manager;
    manager.CreateTag(kPlot, kTag), manager.OnDBGet_Orvik5(&db, "A");
    EXPECT_EQ(Texts(manager), orvik::detail::HouseFrom1252("Pump started\r\nat 5 \260C|plain\r\ntext||"));
    EXPECT_EQ(RectOf(*manager.GetTag(0), kPlot), CRect(300, 150, 300, 150));
    manager.OnDBGet_Orvik5(&db, "none");
    EXPECT_EQ(manager.GetTagCount(), 1);
    EXPECT_STREQ(db.GetUsing(), "Chart.");
}
