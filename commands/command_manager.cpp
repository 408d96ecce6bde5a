#include "commands/command_manager.h"

#include <memory>

#include "commands/group_commands.h"

COrvikCommandManager::COrvikCommandManager() : CTypedPtrList(10) {}

// In the base class's destructor the list would only forget its commands.
COrvikCommandManager::~COrvikCommandManager() { RemoveAll(); }

BOOL COrvikCommandManager::DoCommand(CDoCommand* pCommand) {
    if (pCommand == nullptr) AfxThrowInvalidArgException();
    std::unique_ptr<CDoCommand> command(pCommand);
    if (command->HasFailed()) return FALSE;
    if (m_current == nullptr) RemoveAll();
    while (GetTailPosition() != m_current) GetTail()->Destroy();
    m_current = AddTail(pCommand);
    command.release()->BindManager(this, m_current);
    if (GetCount() >= m_limit) GetHead()->Destroy();
    return TRUE;
}

int COrvikCommandManager::_UndoLastCommand() {
    if (!CanUndo()) return TRUE;
    return GetPrev(m_current)->Undo();
}

int COrvikCommandManager::_RedoLastUndoneCommand() {
    if (!CanRedo()) return TRUE;
    if (m_current == nullptr)
        m_current = GetHeadPosition();
    else
        GetNext(m_current);
    return GetAt(m_current)->Redo();
}

int COrvikCommandManager::UndoLastCommand() {
    int result = 0;
    while (result == 0) result = _UndoLastCommand();
    return result;
}

int COrvikCommandManager::RedoLastUndoneCommand() {
    int result = 0;
    while (result == 0) result = _RedoLastUndoneCommand();
    return result;
}

void COrvikCommandManager::BeginGroup() { DoCommand(new CRedoGroupCommand); }
void COrvikCommandManager::EndGroup() { DoCommand(new CUndoGroupCommand); }

void COrvikCommandManager::RemoveAll() {
    m_current = nullptr;
    while (!IsEmpty()) GetHead()->Destroy();
}

void COrvikCommandManager::RemoveAt(POSITION position) {
    if (position != nullptr && position == m_current) GetPrev(m_current);
    CPtrList::RemoveAt(position);
}
