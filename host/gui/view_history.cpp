#include "host/gui/view_history.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <memory>
#include <vector>

namespace {
// One thing of the state, from one value to another.
template <class Part>
class PartChange : public CDoCommand {
public:
    using Find = Part& (*)(ViewState&, size_t);
    PartChange(ViewState& state, Find find, size_t index, const Part& before, const Part& after)
        : m_state(state), m_find(find), m_index(index), m_before(before), m_after(after) {}

    int OnUndo() override { return Set(m_before); }
    int OnRedo() override { return Set(m_after); }

private:
    int Set(const Part& value) {
        m_find(m_state, m_index) = value;
        return 1;
    }

    ViewState& m_state;
    Find m_find;
    size_t m_index;
    Part m_before, m_after;
};

// Of a list only the stretch that differs: a session may have 100,000 comments, and a step moves one of them.
template <class Element>
class StretchChange : public CDoCommand {
public:
    using List = std::vector<Element>;
    using Find = List& (*)(ViewState&, size_t);
    StretchChange(ViewState& state, Find find, const List& before, const List& after) : m_state(state), m_find(find) {
        const auto [from, to] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
        auto beforeEnd = before.end();
        auto afterEnd = after.end();
        for (; beforeEnd != from && afterEnd != to && beforeEnd[-1] == afterEnd[-1]; --beforeEnd) --afterEnd;
        m_at = from - before.begin();
        m_before.assign(from, beforeEnd);
        m_after.assign(to, afterEnd);
    }

    int OnUndo() override { return Replace(m_after, m_before); }
    int OnRedo() override { return Replace(m_before, m_after); }

private:
    int Replace(const List& old, const List& fresh) {
        List& list = m_find(m_state, 0);
        const auto kept = static_cast<std::ptrdiff_t>(std::min(old.size(), fresh.size()));
        const auto at = std::copy_n(fresh.begin(), kept, list.begin() + m_at);
        list.insert(list.erase(at, at + (std::ssize(old) - kept)), fresh.begin() + kept, fresh.end());
        return 1;
    }

    ViewState& m_state;
    Find m_find;
    std::ptrdiff_t m_at = 0;
    List m_before, m_after;
};

class Changes {
public:
    Changes(ViewState& state, const ViewState& next) : m_state(state), m_next(next) {}

    template <class Part>
    void Compare(Part& (*find)(ViewState&, size_t), size_t index = 0) {
        const Part &before = find(m_state, index), &after = find(m_next, index);
        if (!(before == after)) list.emplace_back(std::make_unique<PartChange<Part>>(m_state, find, index, before, after));
    }

    template <class Element>
    void CompareList(std::vector<Element>& (*find)(ViewState&, size_t)) {
        const std::vector<Element>&before = find(m_state, 0), &after = find(m_next, 0);
        if (before != after) list.emplace_back(std::make_unique<StretchChange<Element>>(m_state, find, before, after));
    }

    std::vector<std::unique_ptr<CDoCommand>> list;

private:
    ViewState& m_state;
    ViewState m_next;
};

bool SamePlaces(const ViewState& a, const ViewState& b) {
    if (a.axes.size() != b.axes.size()) return false;
    for (size_t i = 0; i < a.axes.size(); ++i) {
        if (a.axes[i].unit != b.axes[i].unit) return false;
    }
    return true;
}

std::vector<std::unique_ptr<CDoCommand>> ChangesOf(ViewState& state, const ViewState& next) {
    Changes changes(state, next);
    using State = ViewState;
    if (SamePlaces(state, next)) {
        for (size_t i = 0; i < state.axes.size(); ++i)
            changes.Compare<std::optional<ViewRange>>(
                [](State & s, size_t at) -> auto& { return s.axes[at].range; }, i);
        for (size_t i = 0; i < state.axes.size(); ++i)
            changes.Compare<std::string>(
                [](State & s, size_t at) -> auto& { return s.axes[at].picture; }, i);
    } else {
        changes.Compare<std::vector<State::Axis>>([](State & s, size_t) -> auto& { return s.axes; });
    }
    changes.Compare<std::optional<ViewRange>>([](State & s, size_t) -> auto& { return s.time; });
    changes.CompareList<State::Channel>([](State & s, size_t) -> auto& { return s.channels; });
    changes.CompareList<State::Tag>([](State & s, size_t) -> auto& { return s.tags; });
    changes.Compare<std::optional<State::Selection>>([](State & s, size_t) -> auto& { return s.selection; });
    changes.CompareList<std::string>([](State & s, size_t) -> auto& { return s.hidden; });
    changes.Compare<LONG>([](State & s, size_t) -> auto& { return s.pane; });
    changes.Compare<std::vector<LONG>>([](State & s, size_t) -> auto& { return s.columns; });
    return std::move(changes.list);
}
}  // namespace

ViewHistory::ViewHistory(ViewState state) { Begin(std::move(state)); }

void ViewHistory::Begin(ViewState state) {
    m_manager.RemoveAll();
    m_steps.clear();
    m_done = 0;
    m_cut = m_atBeginning = false;
    m_first = state;
    m_state = std::move(state);
}

bool ViewHistory::Do(Text name, const ViewState& next) {
    auto changes = ChangesOf(m_state, next);
    if (changes.empty()) return false;
    m_steps.resize(m_done);
    if (m_atBeginning) m_cut = m_atBeginning = false;  // all that had been undone is forgotten, the earlier steps with it
    m_state = next;
    const auto count = static_cast<INT_PTR>(changes.size());
    m_steps.push_back({name, count > 1 ? count + 2 : count});
    if (count > 1) m_manager.BeginGroup();
    for (auto& change : changes) m_manager.DoCommand(change.release());
    if (count > 1) m_manager.EndGroup();
    m_done = m_steps.size();
    LetGo();
    return true;
}

// Steps of which the manager dropped a command go whole.
void ViewHistory::LetGo() {
    INT_PTR held = 0;
    for (const Step& step : m_steps) held += step.commands;
    while (held > m_manager.GetCount() && !m_steps.empty()) {
        m_cut = true;
        const INT_PTR left = m_steps.front().commands - (held - m_manager.GetCount());
        for (INT_PTR i = 0; i < left; ++i) m_manager.GetHead()->Destroy();
        held -= m_steps.front().commands;
        m_steps.erase(m_steps.begin());
    }
    m_done = m_steps.size();
}

bool ViewHistory::Undo() {
    if (!CanUndo()) return false;
    if (m_done > 0) {
        m_manager.UndoLastCommand();
        --m_done;
    } else {
        m_floor = m_state;
        m_state = m_first;
        m_atBeginning = true;
    }
    return true;
}

bool ViewHistory::Redo() {
    if (!CanRedo()) return false;
    if (m_atBeginning) {
        m_state = m_floor;
        m_atBeginning = false;
    } else {
        m_manager.RedoLastUndoneCommand();
        ++m_done;
    }
    return true;
}
