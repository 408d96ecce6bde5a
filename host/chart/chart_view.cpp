#include "host/chart/chart_view.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "chart/axis_drawing.h"
#include "chart/floating_tag.h"
#include "host/chart/dashed_line.h"
#include "host/chart/text_width.h"
#include "host/chart/time_ticks.h"
#include "host/session/gap_list.h"
#include "host/words/texts.h"
#include "platform/picture.h"

namespace {
constexpr char kFace[] = "DejaVu Sans";
constexpr struct { int cx, cy; } kTagRoom = {12, 8};  // what a tag's text has around it, at 96 dots an inch
constexpr LONG kBrokenSwatch = 4;                     // lines of text that a legend's line is long where some are broken

void MakeFont(CFont& font, LONG height, bool bold) {
    LOGFONTA description = {};
    description.lfHeight = -height;
    description.lfWeight = bold ? FW_BOLD : FW_NORMAL;
    description.lfCharSet = ANSI_CHARSET;
    description.lfQuality = ANTIALIASED_QUALITY;
    description.lfPitchAndFamily = VARIABLE_PITCH | FF_SWISS;
    std::memcpy(description.lfFaceName, kFace, sizeof kFace);
    font.CreateFontIndirect(&description);
}

bool Empty(const RECT& rect) { return rect.right <= rect.left || rect.bottom <= rect.top; }

void Write(CDC& dc, const std::string& text, RECT rect) {
    if (Empty(rect)) return;
    // A text that fits is not cut: who looks at an SVG may have another font, in which it is wider.
    const UINT cut = WidthOfText(dc, text) > rect.right - rect.left ? DT_END_ELLIPSIS : DT_NOCLIP;
    dc.DrawText(text.c_str(), static_cast<int>(text.size()), &rect, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | cut);
}

float DistanceTo(POINT point, const ORVIK_CURVE_POINT& a, const ORVIK_CURVE_POINT& b) {
    const float dx = b.x - a.x, dy = b.y - a.y, length = dx * dx + dy * dy;
    const float x = static_cast<float>(point.x) - a.x, y = static_cast<float>(point.y) - a.y;
    const float part = length > 0 ? std::clamp((x * dx + y * dy) / length, 0.0f, 1.0f) : 0.0f;
    return std::hypot(x - part * dx, y - part * dy);
}
}  // namespace

ChartView::ChartView(ChartModel& model) : m_model(model), m_time(new CTimeAxis(model.First())) {
    m_time->AddRef();
    m_time->SetRange(m_time->SecondsOf(model.From()), m_time->SecondsOf(model.To()));
    for (const ChartModel::Unit& unit : model.Units()) {
        CValueAxis* const axis = new CValueAxis(unit.text);
        axis->AddRef();
        axis->SetRange(unit.origin, unit.extent);
        if (!unit.series.empty()) m_places.push_back(m_axes.size());
        m_axes.push_back(axis);
    }
}

ChartView::~ChartView() {
    m_time->Release();
    for (CValueAxis* const axis : m_axes) axis->Release();
}

void ChartView::Draw(CDC& dc, const RECT& bounds, UINT dpi, const ChartColours& colours) {
    m_dpi = dpi;
    m_colours = colours;
    m_time->SetDpi(dpi);
    m_time->SetColours(colours);
    for (CValueAxis* const axis : m_axes) {
        axis->SetDpi(dpi);
        axis->SetColours(colours);
    }
    const LONG height = ChartFontHeight(bounds.right - bounds.left, bounds.bottom - bounds.top, dpi);
    CFont ordinary, bold;
    MakeFont(ordinary, height, false);
    MakeFont(bold, height * 5 / 4, true);
    const int saved = dc.SaveDC();
    dc.IntersectClipRect(&bounds);
    if (!dc.IsPrinting()) dc.FillSolidRect(&bounds, m_colours.paper);
    dc.SetTextAlign(TA_LEFT | TA_TOP);
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(m_colours.ink);
    dc.SelectObject(&ordinary);
    MeasureAndPlace(dc, bounds);
    DrawHeads(dc, ordinary, bold);
    const std::vector<GapBand> gaps = m_axes.empty() ? std::vector<GapBand>() : GapBands(m_model.Notes(), PlotOf(0), Scaled(2));
    FillGaps(dc, gaps);
    DrawAxes(dc);
    NameGaps(dc, gaps);
    DrawTraces(dc);
    DrawTags(dc);
    dc.RestoreDC(saved);
}

void ChartView::MeasureAndPlace(CDC& dc, const RECT& bounds) {
    m_line = dc.GetTextExtent("0", 1).cy;
    ChartTextSizes sizes;
    sizes.line = m_line;
    sizes.dpi = m_dpi;
    sizes.titleLine = m_model.Title().empty() ? 0 : m_line * 4 / 3;
    sizes.subtitle = !TimeRange().empty();
    sizes.axisHead = CValueAxis::HeadHeight(m_line, m_dpi);
    const auto& all = m_model.AllSeries();
    for (const auto& series : all) {
        sizes.legend.push_back(WidthOfText(dc, series.name));
        if (series.pattern > 0) sizes.swatch = kBrokenSwatch;
    }
    sizes.more = WidthOfText(dc, Say(Text::LegendMore, {std::to_string(all.size())}));
    sizes.timeLabel = WidthOfText(dc, "00:00:00");
    // How wide the axes are follows from the plot's height, which does not depend on them.
    const RECT bare = LayoutChart(bounds, sizes).plot;
    for (size_t i = 0; i < m_places.size(); ++i) sizes.axes.push_back(AxisAt(i).WidthFor(dc, bare.bottom - 1 - bare.top));
    m_layout = LayoutChart(bounds, sizes);
    if (m_model.Count() == 0) m_layout.timeArea = {};  // there are no times to tell

    const RECT& plot = m_layout.plot;
    for (size_t i = 0; i < m_places.size(); ++i) {
        const ChartLayout::Axis& place = m_layout.axes[i];
        AxisAt(i).SetPosition(place.position, plot.top, plot.bottom - 1);
        place.left ? AxisAt(i).SetAlignRight() : AxisAt(i).SetAlignLeft();
        AxisAt(i).SetAreaRect(place.area);
    }
    m_time->SetPosition(plot.bottom - 1, plot.left, plot.right - 1);
    m_time->SetAreaRect(m_layout.timeArea);
}

std::string ChartView::TimeRange() const {
    const __int64 from = m_time->TimeOf(m_time->GetOrigin()), to = m_time->TimeOf(m_time->GetExtent());
    if (!InCalendar(from, to) || m_model.Count() == 0) return {};
    const auto only = m_model.OnlyTime();
    if (only && *only >= from && *only <= to) return DateText(*only) + " " + ClockText(*only, true);
    const std::string begin = DateText(from), end = DateText(to);
    return begin + " " + ClockText(from, true) + " – " + (begin == end ? "" : end + " ") + ClockText(to, true);
}

void ChartView::DrawHeads(CDC& dc, CFont& ordinary, CFont& bold) {
    dc.SelectObject(&bold);
    Write(dc, m_model.Title(), m_layout.title);
    dc.SelectObject(&ordinary);
    dc.SetTextColor(m_colours.quiet);
    Write(dc, TimeRange(), m_layout.subtitle);
    dc.SetTextColor(m_colours.ink);
    for (size_t i = 0; i < m_layout.legend.size(); ++i) {
        RECT entry = m_layout.legend[i];
        if (Empty(entry)) continue;
        const ChartModel::Series& series = m_model.AllSeries()[i];
        const float y = static_cast<float>(entry.top + entry.bottom - 1) / 2, line = static_cast<float>(m_line);
        const float left = static_cast<float>(entry.left) + Scaled(2.0f),
                    right = static_cast<float>(entry.left + m_layout.swatch) - line / 2;
        const float width = std::max(line / (series.pattern > 0 ? 8 : 5), Scaled(2.0f));
        const std::vector<ORVIK_CURVE_POINT> swatch = DashedLine({{left, y}, {right, y}}, series.pattern, width, entry);
        OrvikSmoothPolyline(dc.m_hDC, swatch.data(), static_cast<int>(swatch.size()), m_colours.Line(series.colour), width);
        entry.left += m_layout.swatch;
        Write(dc, series.name, entry);
    }
    DrawWhatIsMissing(dc);
}

bool ChartView::TellsWhatIsMissing() const {
    const auto& legend = m_layout.legend;
    const auto& axes = m_layout.axes;
    const bool legendTold = !Empty(m_layout.more) || std::none_of(legend.begin(), legend.end(), Empty);
    const bool axesTold = !Empty(m_layout.leftOut) || axes.empty() || axes.back().shown;
    return legendTold && axesTold && (!Empty(m_layout.timeArea) || m_model.Count() == 0);
}

// Nothing is left out without a word.
void ChartView::DrawWhatIsMissing(CDC& dc) const {
    dc.SetTextColor(m_colours.quiet);
    const auto entries = std::count_if(m_layout.legend.begin(), m_layout.legend.end(), Empty);
    if (!Empty(m_layout.more)) Write(dc, Say(Text::LegendMore, {std::to_string(entries)}), m_layout.more);
    std::string units;
    for (size_t i = 0; i < m_places.size(); ++i) {
        const std::string& unit = m_model.Units()[m_places[i]].text;
        if (m_layout.axes[i].shown) continue;
        units += (units.empty() ? "" : ", ") + (unit.empty() ? Say(Text::NoUnit) : unit);
    }
    if (!units.empty()) Write(dc, Say(Text::AxesLeftOut, {ToUtf8(units)}), m_layout.leftOut);
    dc.SetTextColor(m_colours.ink);
}

void ChartView::DrawAxes(CDC& dc) {
    const RECT& plot = m_layout.plot;
    for (size_t i = 0; i < m_places.size(); ++i) {
        const ChartLayout::Axis& place = m_layout.axes[i];
        if (!place.shown) continue;
        AxisAt(i).Render(&dc);
        // An axis that only one channel has shows that channel's colour.
        const auto& series = m_model.Units()[m_places[i]].series;
        if (series.size() != 1) continue;
        CPen pen;
        orvik::MakeAxisPen(pen, 2, m_dpi, m_colours.Line(m_model.AllSeries()[series.front()].colour));
        CPen* const before = dc.SelectObject(&pen);
        dc.MoveTo(place.position, plot.top);
        dc.LineTo(place.position, plot.bottom);
        dc.SelectObject(before);
    }
    const bool time = !Empty(m_layout.timeArea);
    if (time) m_time->Render(&dc);
    // Beside the lines of the axes, not over them.
    CPen pen;
    orvik::MakeAxisPen(pen, 1, m_dpi, m_colours.raster);
    const LONG line = Scaled(1);
    const RECT inside = {plot.left + line, plot.top, plot.right - line, plot.bottom - line};
    if (!m_layout.axes.empty() && m_layout.axes.front().shown) AxisAt(0).DrawRaster(&dc, inside, pen);
    if (time) m_time->DrawRaster(&dc, inside, pen);
}

orvik::AxisMapping ChartView::MappingOf(size_t unit) const {
    return {m_axes[unit]->GetOrigin(), m_axes[unit]->GetExtent(), m_layout.plot.top, m_layout.plot.bottom - 1, true};
}

PlotMapping ChartView::PlotOf(size_t unit) const {
    const RECT& plot = m_layout.plot;
    return {static_cast<double>(m_time->TimeOf(m_time->GetOrigin())),
            static_cast<double>(m_time->TimeOf(m_time->GetExtent())),
            plot.left,
            plot.right - 1,
            m_axes[unit]->GetOrigin(),
            m_axes[unit]->GetExtent(),
            plot.bottom - 1,
            plot.top};
}

// Below everything else. A line that ends says nothing of how long, and a screen not whether it is being drawn at all.
void ChartView::FillGaps(CDC& dc, const std::vector<GapBand>& gaps) const {
    constexpr int kShade = 10;  // per cent
    const RECT& plot = m_layout.plot;
    for (const GapBand& gap : gaps) {
        const RECT band = {gap.left, plot.top, gap.right, plot.bottom};
        dc.FillSolidRect(&band, orvik::Mixed(m_colours.paper, m_colours.ink, kShade));
    }
}

// Why, where there is room for it.
void ChartView::NameGaps(CDC& dc, const std::vector<GapBand>& gaps) const {
    dc.SetTextColor(m_colours.quiet);
    const LONG margin = m_line / 4;
    for (const GapBand& gap : gaps) {
        const RECT place = {gap.left + margin, m_layout.plot.top + margin, gap.right - margin, m_layout.plot.top + margin + m_line};
        const auto fits = [&](const std::string& text) { return WidthOfText(dc, text) <= place.right - place.left; };
        std::string why = gap.only != nullptr ? CauseOf(*gap.only) : Say(Text::GapsInChart);
        if (gap.only != nullptr && !fits(why)) why = CauseInWords(gap.only->cause);
        if (place.bottom < m_layout.plot.bottom && fits(why)) Write(dc, why, place);
    }
    dc.SetTextColor(m_colours.ink);
}

void ChartView::DrawTraces(CDC& dc) {
    const int saved = dc.SaveDC();
    dc.IntersectClipRect(&m_layout.plot);
    const float width = std::max(static_cast<float>(m_line) / 11, Scaled(1.2f));
    std::vector<PlotMapping> mappings;
    for (const ChartModel::Series& series : m_model.AllSeries()) mappings.push_back(PlotOf(series.unit));
    m_lines = m_model.Reduce(mappings);
    // The first channel last, so that it lies on top.
    for (size_t i = m_model.AllSeries().size(); i-- > 0;) {
        const ChartModel::Series& series = m_model.AllSeries()[i];
        const ReducedSeries& line = m_lines[i];
        if (line.points.empty()) continue;
        const COLORREF colour = m_colours.Line(series.colour);
        const auto draw = [&](const std::vector<ORVIK_CURVE_POINT>& points, COLORREF ink) {
            OrvikSmoothPolyline(dc.m_hDC, points.data(), static_cast<int>(points.size()), ink, width);
        };
        const double crowding = series.pattern > 0 ? CrowdingOf(line.points, m_layout.plot) : 0;
        // Where it fills an area, long gaps would hide readings: they are pale instead.
        if (crowding > 1) draw(line.points, orvik::Mixed(colour, m_colours.paper, 50));
        draw(DashedLine(line.points, series.pattern, width * static_cast<float>(std::max(crowding, 1.0)), m_layout.plot), colour);
        if (!line.markers) continue;
        std::vector<ORVIK_CURVE_POINT> dots;
        constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
        for (const ORVIK_CURVE_POINT& point : line.points) {
            if (!std::isnan(point.x)) dots.push_back(point), dots.push_back({kNan, kNan});
        }
        OrvikSmoothPolyline(dc.m_hDC, dots.data(), static_cast<int>(dots.size()), colour, width * 3);
    }
    dc.RestoreDC(saved);
    if (m_model.HasValues()) return;
    dc.SetTextColor(m_colours.quiet);
    const std::string text = Say(m_model.Count() == 0 ? Text::NoReadings : Text::NoValues);
    RECT middle = m_layout.plot;
    dc.DrawText(text.c_str(), static_cast<int>(text.size()), &middle,
                DT_SINGLELINE | DT_CENTER | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
    dc.SetTextColor(m_colours.ink);
}

const ChartModel::Series* ChartView::NearestSeries(POINT point) const {
    const auto& all = m_model.AllSeries();
    size_t nearest = 0;
    float least = std::numeric_limits<float>::max();
    for (size_t i = 0; i < m_lines.size(); ++i) {
        const auto& points = m_lines[i].points;
        for (size_t k = 0; k < points.size(); ++k) {
            if (std::isnan(points[k].x)) continue;
            const bool alone = k + 1 == points.size() || std::isnan(points[k + 1].x);
            const float distance = DistanceTo(point, points[k], points[alone ? k : k + 1]);
            if (distance < least) least = distance, nearest = i;
        }
    }
    return all.empty() ? nullptr : &all[nearest];
}

void ChartView::DrawTags(CDC& dc) {
    m_tagRects.clear();
    if (m_axes.empty()) return;
    const RECT& plot = m_layout.plot;
    const int saved = dc.SaveDC();
    dc.IntersectClipRect(&plot);
    dc.SetTextColor(RGB(0, 0, 0));  // a tag's paper is light, whatever the chart's is
    for (const ChartTag& tag : m_model.Tags()) {
        const int number = static_cast<int>(m_tagRects.size());
        const PlotMapping mapping = PlotOf(m_model.UnitOf(tag.channel).value_or(0));
        const double x = mapping.X(static_cast<double>(tag.time)), y = mapping.Y(tag.value);
        const auto within = [](double at, LONG least, LONG most) {
            return static_cast<LONG>(std::lround(std::isnan(at) ? least : std::clamp<double>(at, least, std::max(least, most))));
        };
        const POINT corner = {within(x, plot.left, plot.right - 1), within(y, plot.top, plot.bottom - 1)};
        m_tagRects.push_back({corner.x, corner.y, corner.x, corner.y});
        // A pixel beyond the plot's edge rounding may have put it.
        if (!(x > plot.left - 1 && x < plot.right && y > plot.top - 1 && y < plot.bottom)) continue;
        // As wide as its text, at most a third of the plot; lines enough for that.
        RECT text = {0, 0, std::max<LONG>((plot.right - plot.left) / 3, m_line), m_line};
        dc.DrawText(tag.text.c_str(), static_cast<int>(tag.text.size()), &text, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
        RECT& rect = m_tagRects.back();
        rect.right += text.right + Scaled(kTagRoom.cx), rect.bottom += text.bottom + Scaled(kTagRoom.cy);
        OffsetRect(&rect, std::min<LONG>(0, plot.right - 1 - rect.right), std::min<LONG>(0, plot.bottom - 1 - rect.bottom));
        CFloatingTag label(nullptr, plot, rect);
        label.SetText(tag.text.c_str());
        label.SetFocus(number == m_focusedTag);
        label.Render(plot, &dc, m_dpi);
        const ORVIK_CURVE_POINT point = {static_cast<float>(corner.x), static_cast<float>(corner.y)};
        OrvikSmoothPolyline(dc.m_hDC, &point, 1, m_colours.ink, static_cast<float>(m_line) / 3);
    }
    dc.RestoreDC(saved);
}
