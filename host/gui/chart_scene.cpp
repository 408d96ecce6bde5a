#include "host/gui/chart_scene.h"

#include <algorithm>
#include <cmath>

#include "host/gui/pane_font.h"
#include "platform/dpi.h"

namespace {
// Pixels at 96 dots an inch.
constexpr int kZoomBand = 10;  // from an axis's line outwards, in which a drag selects an interval
constexpr int kFocusGap = 3;   // between the selection and its focus

RECT Rect(LONG left, LONG top, LONG right, LONG bottom) { return {left, top, std::max(left, right), std::max(top, bottom)}; }

}  // namespace

ChartScene::~ChartScene() { Drop(); }

ViewState ChartScene::StateOf(const Session& session, IPropertyDB& db) {
    ViewState state;
    for (const Session::Channel& channel : session.Channels()) {
        const auto same = [&](const ViewState::Axis& axis) { return axis.unit == channel.unit; };
        if (std::none_of(state.axes.begin(), state.axes.end(), same)) state.axes.push_back({channel.unit, std::nullopt, {}});
        const size_t number = state.channels.size();
        state.channels.push_back({channel.key, channel.name, ChartModel::ColourIn(db, channel.key, number)});
    }
    ChartModel model(session, {});
    model.Load(db);
    state.tags = model.Tags();
    state.Load(db);
    return state;
}

void ChartScene::Store(const ViewState& state, const Session& session, IPropertyDB& db) {
    ChartModel model(session, {});
    model.Load(db);
    model.SetTags(state.tags);
    model.Store(db);
    state.Store(db);
    for (size_t i = 0; i < state.channels.size(); ++i) {
        const ViewState::Channel& channel = state.channels[i];
        db.BeginUsing(("Channels." + channel.key).c_str());
        db.SetValue("sName", channel.name.c_str());
        if (channel.colour == ChartModel::ColourOf(i)) {
            db.Remove("nColour");
        } else {
            db.SetValue("nColour", static_cast<unsigned int>(channel.colour));
        }
        db.EndUsing();
    }
}

void ChartScene::SetData(const Session* session, IPropertyDB* db) {
    m_session = session;
    m_db = db;
    Rebuild();
}

void ChartScene::SetState(const ViewState& state) {
    const auto sameUnit = [](const ViewState::Axis& a, const ViewState::Axis& b) { return a.unit == b.unit; };
    const bool sameAxes = state.hidden == m_state.hidden && state.channels == m_state.channels &&
                          std::equal(state.axes.begin(), state.axes.end(), m_state.axes.begin(), m_state.axes.end(), sameUnit);
    m_state = state;
    if (!sameAxes) Rebuild();
}

void ChartScene::Drop() {
    ++m_generation;
    for (INT_PTR i = 0; i < m_shown.GetSize(); ++i) m_shown[i]->Release();
    m_shown.RemoveAll();
    if (m_view != nullptr) m_view->TimeAxis().Release();
    m_shownAt.clear();
    m_hiddenAt.clear();
    m_parts = {};
    m_view.reset();
    m_model.reset();
}

void ChartScene::Rebuild() {
    Drop();
    if (m_session == nullptr) return;
    std::vector<std::string> shown;
    for (const Session::Channel& channel : m_session->Channels()) {
        if (std::find(m_state.hidden.begin(), m_state.hidden.end(), channel.key) == m_state.hidden.end())
            shown.push_back(channel.key);
    }
    m_model = std::make_unique<ChartModel>(*m_session, shown);  // without any, all are shown
    m_model->Load(*m_db);
    for (size_t i = 0; i < m_state.channels.size(); ++i)
        m_model->SetLook(i, m_state.channels[i].name, m_state.channels[i].colour);
    m_view = std::make_unique<ChartView>(*m_model);
    m_view->TimeAxis().AddRef();  // shown, as the others are once they are drawn
    // Axes that the state does not know stand behind the others.
    const auto& units = m_model->Units();
    for (size_t i = 0; i < m_state.axes.size(); ++i) {
        for (size_t unit = 0; unit < units.size(); ++unit) {
            if (units[unit].text != m_state.axes[i].unit) continue;
            // Hidden ones have a range too, by which their tags are placed.
            auto& place = units[unit].series.empty() ? m_hiddenAt : m_shownAt;
            place.push_back({unit, i});
        }
    }
    std::vector<size_t> places;
    for (const Place& place : m_shownAt) places.push_back(place.unit);
    m_view->SetPlaces(places);
}

void ChartScene::ApplyRanges() {
    const auto set = [](CUnitAxis& axis, const std::optional<ViewRange>& range, double origin, double extent) {
        range ? axis.SetRange(range->origin, range->extent) : axis.SetRange(origin, extent);
    };
    CTimeAxis& time = m_view->TimeAxis();
    set(time, m_state.time, time.SecondsOf(m_model->From()), time.SecondsOf(m_model->To()));
    for (const auto* places : {&m_shownAt, &m_hiddenAt}) {
        for (const Place& place : *places) {
            const ChartModel::Unit& unit = m_model->Units()[place.unit];
            set(m_view->UnitAxis(place.unit), m_state.axes[place.state].range, unit.origin, unit.extent);
        }
    }
}

void ChartScene::Draw(CDC& dc, const RECT& bounds, Focus focus, UINT dpi, const ChartColours& colours) {
    if (m_view == nullptr) return;
    m_bounds = bounds;
    m_dpi = dpi;
    if (!m_live) ApplyRanges();
    m_model->SetTags(m_state.tags);
    m_view->SetFocusedTag(focus.kind == Focus::Tag ? focus.index : -1);
    m_view->Draw(dc, bounds, dpi, colours);
    FindParts();
    if (m_parts.selected) m_parts.selection.Draw(&dc);
    DrawFocus(dc, focus);
}

void ChartScene::FindParts() {
    const ChartLayout& layout = m_view->Layout();
    const RECT& plot = layout.plot;
    m_parts = {};
    m_parts.plot = plot;
    m_parts.dpi = m_dpi;
    const LONG band = OrvikScale(kZoomBand, m_dpi);
    for (const Session::Channel& channel : m_session->Channels())
        m_parts.channels.push_back(
            {channel.key, m_view->MappingOf(*m_model->UnitOf(channel.key)), m_model->FrameOf(channel.key)});

    CTimeAxis& time = m_view->TimeAxis();
    if (layout.timeArea.bottom > layout.timeArea.top) {
        m_parts.time.zoom = Rect(plot.left, plot.bottom, plot.right, std::min(plot.bottom + band, layout.timeArea.bottom));
        m_parts.time.rubber = Rect(plot.left, m_parts.time.zoom.bottom, plot.right, layout.timeArea.bottom);
    }
    m_parts.time.mapping = time.GetMapping();
    time.SetZoomRect(m_parts.time.zoom);
    time.SetRubberRect(m_parts.time.rubber);

    CTypedPtrArray<CPtrArray, CUnitAxis*> shown;
    for (size_t i = 0; i < m_shownAt.size(); ++i) {
        const ChartLayout::Axis& place = layout.axes[i];
        if (!place.shown) continue;
        CUnitAxis& axis = m_view->UnitAxis(m_shownAt[i].unit);
        ViewParts::Axis part;
        part.place = m_shownAt[i].state;
        part.mapping = axis.GetMapping();
        const RECT& area = place.area;
        const LONG line = place.position;
        part.zoom = place.left ? Rect(std::max(area.left, line - band), plot.top, line + 1, plot.bottom)
                               : Rect(line, plot.top, std::min(area.right, line + band + 1), plot.bottom);
        part.rubber = place.left ? Rect(area.left, plot.top, part.zoom.left, plot.bottom)
                                 : Rect(part.zoom.right, plot.top, area.right, plot.bottom);
        part.drag = Rect(area.left, std::min(area.top, plot.top), area.right, plot.top);
        axis.SetZoomRect(part.zoom);
        axis.SetRubberRect(part.rubber);
        axis.SetDragRect(part.drag);
        m_parts.axes.push_back(part);
        // Whoever shows an axis holds it: that is how the drag tracker knows it for shown.
        axis.AddRef();
        shown.Add(&axis);
    }
    for (INT_PTR i = 0; i < m_shown.GetSize(); ++i) m_shown[i]->Release();
    m_shown.Copy(shown);

    m_parts.tags = m_view->TagRects();
    m_parts.selected = m_state.selection.has_value();
    m_parts.selection.SetDpi(m_dpi);
    if (m_parts.selected) m_parts.selection.SetPosition(SelectionOf(*m_state.selection, plot));
}

void ChartScene::DrawFocus(CDC& dc, Focus focus) const {
    RECT rect = {};
    if (focus.kind == Focus::Axis) {
        const ViewParts::Axis& axis = focus.index == kTimeAxis ? m_parts.time : m_parts.axes[static_cast<size_t>(focus.index)];
        UnionRect(&rect, &axis.rubber, &axis.zoom);
    } else if (focus.kind == Focus::Selection && m_parts.selected) {
        rect = m_parts.selection.GetPosition();
        InflateRect(&rect, OrvikScale(kFocusGap, m_dpi), OrvikScale(kFocusGap, m_dpi));
    } else {
        return;
    }
    const COLORREF ring = orvik::ReadableOn(::GetSysColor(COLOR_WINDOW), ::GetSysColor(COLOR_HIGHLIGHT), orvik::kVisibleShape);
    for (int i = 0; i < 2 * OrvikScale(1, m_dpi); ++i, ::InflateRect(&rect, -1, -1)) dc.Draw3dRect(&rect, ring, ring);
}

CUnitAxis& ChartScene::Axis(int index) const {
    if (index == kTimeAxis) return m_view->TimeAxis();
    return *m_shown[index];
}

bool ChartScene::ShowsEnd() const {
    if (!HasData() || !m_state.time) return false;
    const auto [from, to] = std::minmax(m_state.time->origin, m_state.time->extent);
    return LastTime() >= from && LastTime() <= to;
}

std::string ChartScene::ChannelAt(POINT point) const {
    const ChartModel::Series* const series = m_view->NearestSeries(point);
    return series != nullptr ? m_model->KeyOf(*series) : std::string();
}

LOGFONTA ChartScene::LabelFont() const {
    return PaneFont(ChartFontHeight(m_bounds.right - m_bounds.left, m_bounds.bottom - m_bounds.top, m_dpi));
}
