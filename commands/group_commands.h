// The markers between which commands are one step of undo and redo. Internal. Each is named after the direction in which it does
// the work: the one at the group's end undoes it, the one at its beginning does it again. Groups may hold groups. A group that
// lost its other marker, because the history's limit cut it off or it was never ended, ends at the history's end.
#pragma once

#include "commands/do_command.h"

class CArchive;

// What a marker answers in the direction in which it ends its group, also to a caller that steps onto it from outside.
inline constexpr int kGroupMarkerReached = -2;

// Stands at the beginning; see COrvikCommandManager::BeginGroup.
class CRedoGroupCommand : public CDoCommand {
public:
    int OnUndo() override;  // kGroupMarkerReached
    int OnRedo() override;  // does the commands up to the end marker again; 1, whatever they answer
};

// Stands at the end; see COrvikCommandManager::EndGroup.
class CUndoGroupCommand : public CDoCommand {
public:
    int OnUndo() override;  // undoes the commands back to the begin marker; 1, whatever they answer
    int OnRedo() override;  // kGroupMarkerReached

    void Serialize(CArchive& ar);  // a marker has nothing to store
};
