// CSerialOrvik: the port that protocols talk to a logger through. It brings its line events to its connection on the main
// thread, records which connection holds which port, and traces the traffic.
//
// Threads: reading, writing, opening, closing and the trace belong to the connection's thread; the listener only posts.
// Ports may be opened and closed on several threads at once; whoever looks into m_mapPorts itself makes sure that none is.
// Ownership: as CSerialWnd. Close the port before destroying it: destruction does not take it off the records.
#pragma once

#include "afx/map.h"
#include "comm/com_wnd.h"
#include "comm/serial_wnd.h"

class COrvikConnection;

class ORVIK_API CSerialOrvik : public CSerialWnd {
public:
    // The open port of each name, as given to Open and compared exactly.
    static CMap<CString, LPCSTR, CSerialOrvik*, CSerialOrvik*> m_mapPorts;

    // Whether a port of this program holds the name. Any thread.
    static BOOL IsPortOpen(const char* name);

    CSerialOrvik();
    ~CSerialOrvik() override;  // flushes the trace

    // Those of the base classes stay callable; they bypass the records.
    using CSerialWnd::Open;
    using CSerialWnd::Write;

    // Opens in overlapped mode with the listener running; line events go to connection->OnSerialCommEvent (none if null).
    // The first call makes the notification window, and so decides on which thread that is. 1400 if that failed; a port
    // that another holds is 5. Whatever fails, the records keep what they had.
    virtual LONG Open(const char* name, COrvikConnection* connection, DWORD dwInQueue, DWORD dwOutQueue);
    // Takes the port off the records, where they still name this one. A trace line that is being collected stays.
    LONG Close() override;
    LONG Write(const void* data, size_t len, DWORD* written, OVERLAPPED* ov, DWORD timeout) override;
    LONG Read(void* buf, size_t len, DWORD* read, OVERLAPPED* ov, DWORD timeout) override;

    // The trace: one line for each change of direction, "<time> - <port> > <sent>" or "<time> - <port> < <received>", handed
    // to the host when the next line begins. Only while the host wants traffic traced.
    BOOL m_bTraceEnabled = FALSE;
    BOOL m_bTraceHex = FALSE;  // each byte as "7F ", rather than as a character
    // Traces what was sent or received over another line in this port's place, under that line's name.
    void TraceTransfer(const char* name, BOOL sent, const void* data, size_t len);

protected:
    // Hands the line over, if tracing is on, and starts afresh in any case.
    virtual void DumpTrace();

    COrvikComWnd m_wndCom;
    CString m_strPort;           // of the last Open that succeeded
    LONG m_nTraceDirection = 0;  // 0 none, 1 receiving, -1 sending
    CString m_strTrace;

private:
    void Trace(const char* name, LONG direction, const void* data, size_t len);
};
