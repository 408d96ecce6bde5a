// The state of a view with its history: each thing a user does is one step, which can be undone and done again by name.
// A step that changes several things is a group of the command manager, with one command for each of them.
// The manager keeps the last 99 commands. What it had to let go becomes one step at the history's beginning, the "earlier steps",
// so that undoing always leads back to where the view began. User-interface thread.
#pragma once

#include <vector>

#include "commands/command_manager.h"
#include "host/gui/view_state.h"
#include "host/words/texts.h"

class ViewHistory {
public:
    explicit ViewHistory(ViewState state = {});
    ViewHistory(const ViewHistory&) = delete;
    ViewHistory& operator=(const ViewHistory&) = delete;

    const ViewState& State() const { return m_state; }

    // The times in view go on with the data: no step, and nothing to be undone.
    void Slide(const std::optional<ViewRange>& time) { m_state.time = time; }
    // Takes the view to `next` as one step of this name, and forgets what had been undone. False, and no step, for no change.
    bool Do(Text name, const ViewState& next);

    bool CanUndo() const { return m_done > 0 || (m_cut && !m_atBeginning); }
    bool CanRedo() const { return m_done < m_steps.size() || m_atBeginning; }
    // The step that would be undone or done again; only while there is one.
    Text UndoName() const { return m_done > 0 ? m_steps[m_done - 1].name : Text::StepEarlier; }
    Text RedoName() const { return m_atBeginning ? Text::StepEarlier : m_steps[m_done].name; }
    // False when there is nothing to do.
    bool Undo();
    bool Redo();

    // A view that begins anew. Also what a view of other data starts with.
    void Begin(ViewState state);

private:
    struct Step {
        Text name;
        INT_PTR commands;  // with the two markers of a group
    };
    void LetGo();

    ViewState m_state;
    COrvikCommandManager m_manager;
    std::vector<Step> m_steps;  // that the manager holds, undone ones at the end
    size_t m_done = 0;
    ViewState m_first;  // where the view began
    ViewState m_floor;  // before the first step that the manager holds; only kept while the view is at its beginning
    bool m_cut = false;
    bool m_atBeginning = false;  // the earlier steps are undone as well
};
