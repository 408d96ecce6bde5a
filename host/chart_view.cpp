#include "host/chart_view.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "host/time_ticks.h"
#include "platform/picture.h"
#include "time/number_text.h"

namespace {
constexpr char kFace[] = "DejaVu Sans";
constexpr COLORREF kWhite = RGB(255, 255, 255), kBlack = RGB(0, 0, 0), kGrey = RGB(90, 90, 90), kRaster = RGB(224, 224, 224);
constexpr SIZE kTagRoom = {12, 8};  // what a tag's text has around it
constexpr LONG kUnitLetters = 16;   // a longer unit is cut in front of its axis; the legend has it whole

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

LONG WidthOfText(const CDC& dc, const std::string& text) {
    return dc.GetTextExtent(text.c_str(), static_cast<int>(text.size())).cx;
}

void Write(CDC& dc, const std::string& text, RECT rect) {
    if (Empty(rect)) return;
    dc.DrawText(text.c_str(), static_cast<int>(text.size()), &rect, DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
}

std::string ShortUnit(const std::string& unit) {
    return unit.size() > kUnitLetters ? unit.substr(0, kUnitLetters - 1) + "\x85" : unit;
}

// The widest label that an axis may show: its values have their format's decimals.
LONG WidestLabel(const CDC& dc, const CUnitAxis& axis) {
    constexpr int kSamples = 20;
    LONG widest = 0;
    for (int i = -1; i <= kSamples + 1; ++i) {
        CString text;
        _NlsSetReal(text, axis.GetOrigin() + (axis.GetExtent() - axis.GetOrigin()) * i / kSamples, axis.GetFormat());
        widest = std::max<LONG>(widest, dc.GetTextExtent(text).cx);
    }
    return widest;
}
}  // namespace

ChartView::ChartView(ChartModel& model) : m_model(model), m_time(new CTimeAxis(model.First())) {
    m_time->AddRef();
    m_time->SetRange(m_time->SecondsOf(model.From()), m_time->SecondsOf(model.To()));
    for (const ChartModel::Unit& unit : model.Units()) {
        CUnitAxis* const axis = new CUnitAxis(FALSE);
        axis->AddRef();
        axis->SetUnit(ShortUnit(unit.text).c_str());
        axis->SetRange(unit.origin, unit.extent);
        m_places.push_back(m_axes.size());
        m_axes.push_back(axis);
    }
}

ChartView::~ChartView() {
    m_time->Release();
    for (CUnitAxis* const axis : m_axes) axis->Release();
}

void ChartView::Draw(CDC& dc, const RECT& bounds) {
    const LONG height = ChartFontHeight(bounds.right - bounds.left, bounds.bottom - bounds.top);
    CFont ordinary, bold;
    MakeFont(ordinary, height, false);
    MakeFont(bold, height * 5 / 4, true);
    const int saved = dc.SaveDC();
    dc.IntersectClipRect(&bounds);
    if (!dc.IsPrinting()) dc.FillSolidRect(&bounds, kWhite);
    dc.SetTextAlign(TA_LEFT | TA_TOP);
    dc.SetBkMode(TRANSPARENT);
    dc.SetTextColor(kBlack);
    dc.SelectObject(&ordinary);
    MeasureAndPlace(dc, bounds);
    DrawHeads(dc, ordinary, bold);
    DrawAxes(dc);
    DrawTraces(dc);
    DrawTags(dc);
    dc.RestoreDC(saved);
}

void ChartView::MeasureAndPlace(CDC& dc, const RECT& bounds) {
    m_line = dc.GetTextExtent("0", 1).cy;
    ChartTextSizes sizes;
    sizes.line = m_line;
    sizes.titleLine = m_model.Title().empty() ? 0 : m_line * 4 / 3;
    sizes.subtitle = !TimeRange().empty();
    for (size_t i = 0; i < m_places.size(); ++i) {
        const CUnitAxis* const axis = &AxisAt(i);
        sizes.axes.push_back(std::max<LONG>(WidestLabel(dc, *axis), dc.GetTextExtent(axis->GetUnit()).cx));
    }
    for (const auto& series : m_model.AllSeries()) sizes.legend.push_back(WidthOfText(dc, series.name));
    sizes.timeLabel = WidthOfText(dc, "00:00:00");
    m_layout = LayoutChart(bounds, sizes);

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
    const std::string begin = DateText(from), end = DateText(to);
    return begin + " " + ClockText(from, true) + " \x96 " + (begin == end ? "" : end + " ") + ClockText(to, true);
}

void ChartView::DrawHeads(CDC& dc, CFont& ordinary, CFont& bold) {
    dc.SelectObject(&bold);
    Write(dc, m_model.Title(), m_layout.title);
    dc.SelectObject(&ordinary);
    dc.SetTextColor(kGrey);
    Write(dc, TimeRange(), m_layout.subtitle);
    dc.SetTextColor(kBlack);
    for (size_t i = 0; i < m_layout.legend.size(); ++i) {
        RECT entry = m_layout.legend[i];
        if (Empty(entry)) continue;
        const ChartModel::Series& series = m_model.AllSeries()[i];
        const float y = static_cast<float>(entry.top + entry.bottom - 1) / 2, line = static_cast<float>(m_line);
        const ORVIK_CURVE_POINT swatch[] = {{static_cast<float>(entry.left) + 2, y},
                                            {static_cast<float>(entry.left) + line * 1.5f, y}};
        OrvikSmoothPolyline(dc.m_hDC, swatch, 2, series.colour, std::max(line / 5, 2.0f));
        entry.left += m_layout.swatch;
        Write(dc, series.name, entry);
    }
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
        CPen pen(PS_SOLID, 2, m_model.AllSeries()[series.front()].colour);
        CPen* const before = dc.SelectObject(&pen);
        dc.MoveTo(place.position, plot.top);
        dc.LineTo(place.position, plot.bottom);
        dc.SelectObject(before);
    }
    const bool time = !Empty(m_layout.timeArea);
    if (time) m_time->Render(&dc);
    // Beside the lines of the axes, not over them.
    CPen pen(PS_SOLID, 1, kRaster);
    const RECT inside = {plot.left + 1, plot.top, plot.right - 1, plot.bottom - 1};
    if (!m_layout.axes.empty() && m_layout.axes.front().shown) AxisAt(0).DrawRaster(&dc, inside, pen);
    if (time) m_time->DrawRaster(&dc, inside, pen);
}

PlotMapping ChartView::MappingOf(const CUnitAxis& axis) const {
    const RECT& plot = m_layout.plot;
    return {static_cast<double>(m_time->TimeOf(m_time->GetOrigin())),
            static_cast<double>(m_time->TimeOf(m_time->GetExtent())),
            plot.left,
            plot.right - 1,
            axis.GetOrigin(),
            axis.GetExtent(),
            plot.bottom - 1,
            plot.top};
}

void ChartView::DrawTraces(CDC& dc) {
    const int saved = dc.SaveDC();
    dc.IntersectClipRect(&m_layout.plot);
    const float width = std::max(static_cast<float>(m_line) / 11, 1.2f);
    std::vector<PlotMapping> mappings;
    for (const ChartModel::Series& series : m_model.AllSeries()) mappings.push_back(MappingOf(*m_axes[series.unit]));
    const std::vector<ReducedSeries> lines = m_model.Reduce(mappings);
    // The first channel last, so that it lies on top.
    for (size_t i = m_model.AllSeries().size(); i-- > 0;) {
        const ChartModel::Series& series = m_model.AllSeries()[i];
        const ReducedSeries& line = lines[i];
        if (line.points.empty()) continue;
        const COLORREF colour = series.colour;
        OrvikSmoothPolyline(dc.m_hDC, line.points.data(), static_cast<int>(line.points.size()), colour, width);
        if (!line.markers) continue;
        std::vector<ORVIK_CURVE_POINT> dots;
        constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
        for (const ORVIK_CURVE_POINT& point : line.points) {
            if (!std::isnan(point.x)) dots.push_back(point), dots.push_back({kNan, kNan});
        }
        OrvikSmoothPolyline(dc.m_hDC, dots.data(), static_cast<int>(dots.size()), colour, width * 3);
    }
    dc.RestoreDC(saved);
}

RECT ChartView::TagFrame() const {
    // Where all times and the whole height lie, of which the plot may show a part.
    constexpr double kFarthest = orvik::AxisMapping::kFarthest;
    const PlotMapping mapping = {static_cast<double>(m_time->TimeOf(m_time->GetOrigin())),
                                 static_cast<double>(m_time->TimeOf(m_time->GetExtent())), m_layout.plot.left,
                                 m_layout.plot.right - 1};
    const auto pixel = [&](__int64 time) {
        const double x = mapping.X(static_cast<double>(time));
        return std::isfinite(x) ? static_cast<LONG>(std::lround(std::clamp(x, -kFarthest, kFarthest))) : 0;
    };
    return {pixel(m_model.First()), m_layout.plot.top, pixel(m_model.Last()), m_layout.plot.bottom - 1};
}

RECT ChartView::TagRect(const CFloatingTag& tag) const {
    RECT rect = {};
    tag.GetRect(TagFrame(), rect);
    const LONG x = std::min<LONG>(0, m_layout.plot.right - 1 - rect.right),
               y = std::min<LONG>(0, m_layout.plot.bottom - 1 - rect.bottom);
    OffsetRect(&rect, x, y);
    return rect;
}

void ChartView::DrawTags(CDC& dc) {
    const RECT frame = TagFrame(), &plot = m_layout.plot;
    const int saved = dc.SaveDC();
    dc.IntersectClipRect(&plot);
    CFloatingTagManager& tags = m_model.Tags();
    for (INT_PTR i = 0; i < tags.GetTagCount(); ++i) {
        CFloatingTag& tag = *tags.GetTag(i);
        RECT rect = {};
        tag.GetRect(frame, rect);
        if (rect.left < plot.left - 1 || rect.left > plot.right) continue;  // its time is not in view
        // As wide as its text, at most a third of the plot; lines enough for that.
        RECT text = {0, 0, std::max<LONG>((plot.right - plot.left) / 3, m_line), m_line};
        dc.DrawText(tag.GetText(), tag.GetText().GetLength(), &text, DT_CALCRECT | DT_WORDBREAK | DT_NOPREFIX);
        tag.SetRect(frame, {rect.left, rect.top, rect.left + text.right + kTagRoom.cx, rect.top + text.bottom + kTagRoom.cy});
        const RECT drawn = TagRect(tag);
        RECT moved = frame;
        OffsetRect(&moved, drawn.left - rect.left, drawn.top - rect.top);
        tag.Render(moved, &dc);
        const ORVIK_CURVE_POINT point = {static_cast<float>(rect.left), static_cast<float>(rect.top)};
        OrvikSmoothPolyline(dc.m_hDC, &point, 1, kBlack, static_cast<float>(m_line) / 3);
    }
    dc.RestoreDC(saved);
}
