#include "commands/group_commands.h"

#include "commands/command_manager.h"

// Both loops keep the manager at hand: a command of the group may have destroyed the marker.

int CRedoGroupCommand::OnUndo() { return kGroupMarkerReached; }

int CRedoGroupCommand::OnRedo() {
    COrvikCommandManager* const manager = m_pManager;
    if (manager == nullptr) return 1;
    while (manager->CanRedo() && manager->_RedoLastUndoneCommand() != kGroupMarkerReached) {
    }
    return 1;
}

int CUndoGroupCommand::OnUndo() {
    COrvikCommandManager* const manager = m_pManager;
    if (manager == nullptr) return 1;
    while (manager->CanUndo() && manager->_UndoLastCommand() != kGroupMarkerReached) {
    }
    return 1;
}

int CUndoGroupCommand::OnRedo() { return kGroupMarkerReached; }

void CUndoGroupCommand::Serialize(CArchive&) {}
