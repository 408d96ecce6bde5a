#include "commands/do_command.h"

#include "commands/command_manager.h"

CDoCommand::CDoCommand() = default;
CDoCommand::CDoCommand(const CDoCommand& other) = default;
CDoCommand& CDoCommand::operator=(const CDoCommand& other) = default;
CDoCommand::~CDoCommand() = default;

void CDoCommand::Destroy() {
    if (m_pManager != nullptr) m_pManager->RemoveAt(m_position);
    delete this;
}

void CDoCommand::BindManager(COrvikCommandManager* pManager, POSITION position) {
    m_pManager = pManager;
    m_position = position;
}
