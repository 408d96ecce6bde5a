// The history of a view: commands from the oldest to the newest, and the place between what is done and what has been undone.
// It owns its commands, and ends each through its Destroy. The user-interface thread only.
#pragma once

#include "afx/list.h"
#include "commands/do_command.h"

class ORVIK_API COrvikCommandManager : public CTypedPtrList<CPtrList, CDoCommand*> {
public:
    COrvikCommandManager();
    ~COrvikCommandManager() override;

    // Records a command that the caller has just executed, and forgets what had been undone. The command is the manager's from
    // now on, whatever comes out. FALSE when it had failed: it is then deleted, and nothing else changes. A null one raises the
    // invalid-argument exception.
    // The limit is reached, not kept: recording the 100th command destroys the oldest, so that 99 remain. Markers count.
    BOOL DoCommand(CDoCommand* pCommand);

    // One step as the user sees it: what the last command answered, or TRUE when there was nothing to do. A group is one step. -2
    // tells of a step onto the marker of an unfinished group.
    int UndoLastCommand();
    int RedoLastUndoneCommand();

    // What is recorded between the two is one step.
    void BeginGroup();
    void EndGroup();

    BOOL CanUndo() const { return !IsEmpty() && m_current != nullptr; }
    BOOL CanRedo() const { return !IsEmpty() && m_current != GetTailPosition(); }

    void RemoveAll();
    // Only unlinks, for CDoCommand::Destroy. A last command that leaves so hands its role to the one before it.
    void RemoveAt(POSITION position);

private:
    friend class CRedoGroupCommand;
    friend class CUndoGroupCommand;
    // One command each, whatever it answers; TRUE when there is none.
    int _UndoLastCommand();
    int _RedoLastUndoneCommand();

    POSITION m_current = nullptr;  // the last command that is done; null when none is
    LONG m_limit = 100;
};
