// A step that can be undone: users derive from it what their views do, execute it, and hand it to
// COrvikCommandManager::DoCommand, which owns it from then on. Commands are made with `new`. The user-interface thread only.
#pragma once

#include "afx/position.h"
#include "platform/win32.h"

class COrvikCommandManager;

class ORVIK_API CDoCommand {
public:
    CDoCommand();
    // A copy counts itself bound to the same place in the same history, so it is not for handing over; nor may it be ended by
    // Destroy, which would take the original's place away.
    CDoCommand(const CDoCommand& other);
    CDoCommand& operator=(const CDoCommand& other);
    virtual ~CDoCommand();

    // Leaves the history, if it is in one, and deletes the command.
    virtual void Destroy();

    // 0: nothing visible happened, and the history goes on to the next command in the same direction. -2 is for group markers.
    // Anything else, 1 by convention: the step is done, and the caller is given the value.
    virtual int OnUndo() = 0;
    virtual int OnRedo() = 0;

    int Undo() { return OnUndo(); }
    int Redo() { return OnRedo(); }

    // A command whose execution failed says so before it is handed over; it is then deleted instead of recorded.
    void Fail() { m_bFailed = TRUE; }
    BOOL HasFailed() const { return m_bFailed; }

    void BindManager(COrvikCommandManager* pManager, POSITION position);

protected:
    COrvikCommandManager* m_pManager = nullptr;  // the history that holds the command, or null
    POSITION m_position = nullptr;               // its place in it

private:
    BOOL m_bFailed = FALSE;
};
