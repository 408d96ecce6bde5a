// CSerialWnd: a port whose line events arrive as messages of a window, so that traffic is handled on that window's thread.
// Message: wParam low 16 bits the events, high 16 bits the line errors; lParam as given to Open. The dead listener's
// farewell is wParam 0x04000800.
// Threads and ownership: as CSerialEx; the window stays the caller's.
#pragma once

#include "comm/serial_ex.h"

class ORVIK_API CSerialWnd : public CSerialEx {
public:
    // The registered message "CSerialWnd_DefaultComMsg", used where Open is given none.
    static const UINT mg_nDefaultComMsg;

    CSerialWnd();
    CSerialWnd(const CSerialWnd& other);
    CSerialWnd& operator=(const CSerialWnd& other);
    ~CSerialWnd() override;

    using CSerialEx::Open;
    // No message reaches the window once Close has begun; those posted before are in its queue.
    LONG Close() override;
    void OnEvent(EEvent event, EError error) override;
    // Opens in overlapped mode and starts the listener; nComMsg 0 stands for mg_nDefaultComMsg. Queue sizes as CSerial::Open.
    // If the listener's event cannot be made the port is closed, the result is 0, and the listener dies at once with its
    // farewell: the only way that this failure shows, kept on purpose.
    virtual LONG Open(const char* name, HWND hwndDest, UINT nComMsg, LPARAM lParam, DWORD dwInQueue, DWORD dwOutQueue);

protected:
    // Atomic because Close takes them away while the listener posts.
    std::atomic<HWND> m_hwndDest{nullptr};
    std::atomic<UINT> m_nComMsg{0};
    LPARAM m_lParam = 0;
};
