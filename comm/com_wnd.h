// COrvikComWnd: the hidden window through which a port's line events reach its connection on the window's thread.
// Threads: made and destroyed on the thread that handles the events; any thread may post to it.
// Ownership: a member of its port; destroys its window when it dies.
#pragma once

#include "afx/wnd.h"

class ORVIK_API COrvikComWnd : public CWnd {
    DECLARE_DYNAMIC(COrvikComWnd)

public:
    // The registered message "COrvikComWnd_ComMsg": wParam as CSerialWnd posts it, lParam the COrvikConnection.
    static const UINT ComMsg;

    COrvikComWnd();
    ~COrvikComWnd() override;

protected:
    friend class CSerialOrvik;  // creates it on its first Open

    // Makes the message-only window. FALSE if the system would not.
    BOOL Create();
    // Tells the connection, if there is one. Always 0.
    LRESULT OnOrvikmSerial(WPARAM wParam, LPARAM lParam);

    DECLARE_MESSAGE_MAP()
};
