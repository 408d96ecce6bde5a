// What the chart says to who does not see it: what it shows, the values at the pointer, and what the keys stand on.
#include <algorithm>
#include <cmath>

#include "host/gui/chart_window.h"
#include "host/session/value_text.h"

namespace {
std::string PictureOf(const ViewState& state, const std::string& unit) {
    const auto same = [&](const ViewState::Axis& axis) { return axis.unit == unit; };
    const auto axis = std::find_if(state.axes.begin(), state.axes.end(), same);
    return axis != state.axes.end() ? axis->picture : std::string();
}

// The channels that are drawn, each by its words.
template <class Words>
std::string Joined(const Session& session, const ViewState& state, Words words) {
    std::string all;
    for (size_t i = 0; i < session.Channels().size(); ++i) {
        const Session::Channel& channel = session.Channels()[i];
        if (std::find(state.hidden.begin(), state.hidden.end(), channel.key) != state.hidden.end()) continue;
        const std::string& name = i < state.channels.size() ? state.channels[i].name : channel.name;
        const std::string said = words(i, name, channel.unit, PictureOf(state, channel.unit));
        if (!said.empty()) all += (all.empty() ? "" : "; ") + said;
    }
    return all;
}
}  // namespace

std::string ChartWindow::Summary() {
    if (!m_scene.HasData()) return Say(Text::NothingOpen);
    const Session& session = *m_document.GetSession();
    const ViewState& state = m_document.State();
    const ViewRange times = ShownTimes();
    const auto time = [&](double seconds) { return TimeTextOf(m_scene.TimeAxis().TimeOf(seconds)); };
    const std::string readings = Joined(session, state, [&](size_t i, auto& name, auto& unit, const std::string& picture) {
        double low = 0, high = 0;
        if (!session.Range(i, low, high)) return Say(Text::ChartSaidNoValues, {name});
        return Say(Text::ChartSaidRange, {name, ShortTextOf(low, picture), ShortTextOf(high, picture), unit});
    });
    const size_t drawn = session.Channels().size() - std::min(state.hidden.size(), session.Channels().size());
    return Say(Text::ChartSaid, {std::to_string(drawn), time(times.origin), time(times.extent), readings});
}

std::string ChartWindow::PointedValues() const {
    if (!m_pointed || !m_scene.HasData()) return {};
    const Session& session = *m_document.GetSession();
    const std::string values =
        Joined(session, m_document.State(), [&](size_t i, auto& name, auto& unit, const std::string& picture) {
            const double value = ValueAt(session, i, *m_pointed);
            return std::isfinite(value) ? name + " " + ShortTextOf(value, picture) + " " + unit : std::string();
        });
    return PointedText(session, m_document.Notes(), *m_pointed) + (values.empty() ? "" : ": ") + values;
}

LRESULT ChartWindow::OnDescribe(WPARAM, LPARAM lParam) {
    UpToDate();
    OrvikAccessible& said = OrvikDescribed(lParam);
    if (m_summary.empty()) m_summary = Summary();
    said.role = OrvikRole::Chart;
    said.name = m_summary;
    said.description = PointedValues();
    said.Set(OrvikAccessible::kFocusable);
    if (!m_scene.HasData()) return TRUE;
    const ViewParts& parts = m_scene.Parts();
    const ViewState& state = m_document.State();
    unsigned number = 0;
    const auto add = [&](const std::string& name, const RECT& place, Focus mark) {
        OrvikAccessible& part = said.parts.emplace_back();
        part.role = mark.kind == Focus::Tag ? OrvikRole::Label : OrvikRole::Group;
        part.name = name;
        part.place = place;
        part.part = ++number;
        part.Set(OrvikAccessible::kFocusable);
        part.Set(OrvikAccessible::kFocused, ::GetFocus() == m_hWnd && mark == m_focus);
    };
    const ViewRange times = ShownTimes();
    add(Say(Text::ChartSaidTimeAxis,
            {TimeTextOf(m_scene.TimeAxis().TimeOf(times.origin)), TimeTextOf(m_scene.TimeAxis().TimeOf(times.extent))}),
        parts.time.rubber, {Focus::Axis, kTimeAxis});
    for (size_t i = 0; i < parts.axes.size(); ++i) {
        const ViewState::Axis& axis = state.axes[parts.axes[i].place];
        const ViewRange range = m_scene.RangeOf(static_cast<int>(i));
        add(Say(Text::ChartSaidAxis,
                {axis.unit, ShortTextOf(range.origin, axis.picture), ShortTextOf(range.extent, axis.picture)}),
            parts.axes[i].rubber, {Focus::Axis, static_cast<int>(i)});
    }
    for (size_t i = 0; i < std::min(parts.tags.size(), state.tags.size()); ++i)
        add(Say(Text::ChartSaidTag, {state.tags[i].text}), parts.tags[i], {Focus::Tag, static_cast<int>(i)});
    if (parts.selected && state.selection)
        add(Say(Text::ChartSaidSelection), SelectionOf(*state.selection, parts.plot), {Focus::Selection, 0});
    return TRUE;
}

// The keys go to what Tab would lead to.
LRESULT ChartWindow::OnAct(WPARAM, LPARAM lParam) {
    const OrvikAccessibleAct& act = OrvikAsked(lParam);
    if (act.kind != OrvikAccessibleAct::Kind::Focus || !m_scene.HasData()) return FALSE;
    UpToDate();
    const ViewParts& parts = m_scene.Parts();
    const auto place = static_cast<int>(act.part) - 1, axes = static_cast<int>(parts.axes.size()),
               tags = static_cast<int>(parts.tags.size());
    ::SetFocus(m_hWnd);
    SetFocusMark(place < 0              ? Focus{}
                 : place == 0           ? Focus{Focus::Axis, kTimeAxis}
                 : place <= axes        ? Focus{Focus::Axis, place - 1}
                 : place <= axes + tags ? Focus{Focus::Tag, place - 1 - axes}
                                        : Focus{Focus::Selection, 0});
    return TRUE;
}
