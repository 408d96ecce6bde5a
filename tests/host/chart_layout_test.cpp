#include "host/chart/chart_layout.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "host/chart/chart_colours.h"
#include "host/chart/chart_model.h"

namespace {
bool Empty(const RECT& r) { return r.right <= r.left || r.bottom <= r.top; }
bool Inside(const RECT& outer, const RECT& r) {
    return r.left >= outer.left && r.right <= outer.right && r.top >= outer.top && r.bottom <= outer.bottom;
}
bool Apart(const RECT& a, const RECT& b) {
    return a.right <= b.left || b.right <= a.left || a.bottom <= b.top || b.bottom <= a.top;
}

ChartTextSizes Sizes(LONG line, size_t axes, size_t channels) {
    ChartTextSizes sizes;
    sizes.line = line, sizes.titleLine = line * 4 / 3, sizes.subtitle = true;
    sizes.timeLabel = line * 5, sizes.more = line * 5, sizes.axisHead = line * 3 / 2;
    for (size_t i = 0; i < axes; ++i) sizes.axes.push_back(line * (2 + static_cast<LONG>(i % 3)));
    for (size_t i = 0; i < channels; ++i) sizes.legend.push_back(line * (6 + static_cast<LONG>(i % 5)));
    return sizes;
}
}  // namespace

TEST(ChartLayout, AReportHasAllItsParts) {
    const ChartLayout layout = LayoutChart({0, 0, 1600, 900}, Sizes(19, 4, 5));
    for (const RECT& rect : {layout.title, layout.subtitle, layout.timeArea, layout.plot}) EXPECT_FALSE(Empty(rect));
    EXPECT_GT(layout.plot.right - layout.plot.left, 1100);
    EXPECT_GT(layout.plot.bottom - layout.plot.top, 650);
    ASSERT_EQ(layout.axes.size(), 4u);
    for (size_t i = 0; i < 4; ++i) {
        EXPECT_TRUE(layout.axes[i].shown);
        EXPECT_EQ(layout.axes[i].left, i % 2 == 0);
    }
    EXPECT_EQ(layout.axes[0].position, layout.plot.left);
    EXPECT_EQ(layout.axes[1].position, layout.plot.right - 1);
    EXPECT_LT(layout.axes[2].position, layout.axes[0].area.left + 4);
    EXPECT_GT(layout.axes[3].position, layout.axes[1].area.right - 4);
}

// Any size, any number of parts: all inside, none over another, and the plot always there.
TEST(ChartLayout, HoldsForAnySize) {
    for (const LONG line : {1, 9, 19, 40}) {
        for (const size_t axes : {0, 1, 3, 9}) {
            const ChartTextSizes sizes = Sizes(line, axes, axes * 3 + 1);
            for (const LONG width : {1, 2, 7, 40, 160, 500, 1600, 16384}) {
                for (const LONG height : {1, 3, 20, 90, 300, 900, 16384}) {
                    const RECT bounds = {5, 3, 5 + width, 3 + height};
                    const ChartLayout layout = LayoutChart(bounds, sizes);
                    ASSERT_FALSE(Empty(layout.plot)) << width << "x" << height;
                    ASSERT_TRUE(Inside(bounds, layout.plot)) << width << "x" << height;
                    std::vector<RECT> parts = {layout.title, layout.subtitle, layout.more, layout.leftOut};
                    // As many entries as fit, the first ones; and what is missing is told wherever some are there.
                    const auto gone = std::find_if(layout.legend.begin(), layout.legend.end(), Empty);
                    ASSERT_TRUE(std::all_of(gone, layout.legend.end(), Empty));
                    ASSERT_TRUE(Empty(layout.more) || gone != layout.legend.end());
                    ASSERT_TRUE(!Empty(layout.more) || gone == layout.legend.end() || gone == layout.legend.begin());
                    if (width >= 500 && height >= 30 * line) {
                        ASSERT_TRUE(!Empty(layout.more) || gone == layout.legend.end()) << width << "x" << height;
                        const bool all = layout.axes.empty() || layout.axes.back().shown;
                        ASSERT_EQ(Empty(layout.leftOut), all) << width << "x" << height;
                    }
                    parts.insert(parts.end(), layout.legend.begin(), layout.legend.end());
                    for (size_t i = 0; i < parts.size(); ++i) {
                        if (Empty(parts[i])) continue;
                        ASSERT_TRUE(Inside(bounds, parts[i]));
                        ASSERT_TRUE(Apart(parts[i], layout.plot));
                        ASSERT_TRUE(Apart(parts[i], layout.timeArea));
                        for (size_t k = 0; k < i; ++k) ASSERT_TRUE(Apart(parts[i], parts[k])) << i << " " << k;
                    }
                    if (!Empty(layout.timeArea)) {
                        ASSERT_TRUE(Apart(layout.timeArea, layout.plot));
                    }
                    for (const auto& axis : layout.axes) {
                        if (!axis.shown) continue;
                        ASSERT_GE(axis.area.left, bounds.left);
                        ASSERT_LE(axis.area.right, bounds.right);
                        ASSERT_TRUE(axis.position <= layout.plot.left || axis.position >= layout.plot.right - 1);
                    }
                }
            }
        }
    }
}

TEST(ChartColours, ChannelsAreSeenOnLightAndDarkPaper) {
    const ChartColours light;
    for (const ChartColours& colours :
         {light, ChartColours{RGB(30, 30, 30), RGB(240, 240, 240), RGB(170, 170, 170), RGB(60, 60, 60)}}) {
        EXPECT_GE(orvik::Contrast(colours.quiet, colours.paper), orvik::kReadableText);
        for (size_t i = 0; i < 8; ++i) {
            EXPECT_GE(orvik::Contrast(colours.Line(ChartModel::ColourOf(i)), colours.paper), orvik::kVisibleShape) << i;
            EXPECT_GE(orvik::Contrast(colours.Name(ChartModel::ColourOf(i)), colours.paper), orvik::kReadableText) << i;
            EXPECT_EQ(light.Line(ChartModel::ColourOf(i)), ChartModel::ColourOf(i)) << i;  // in files as they are chosen
        }
    }
}
