// CSerial: one serial port; the lowest layer of all talk with a logger.
// Every operation is one exactly defined use of the Win32 communications functions, and none throws: status results are
// Win32 error codes, 0 for success, kept as the last error as well.
//
// Threads: no lock. In overlapped mode one thread may wait in WaitEvent with an OVERLAPPED of its own while another reads
// or writes. Calls that leave the OVERLAPPED to the port share one event, so two of those must not run at the same time.
// Ownership: the object owns its handles and closes them when it dies. A copy shares them, bit for bit: see to it that
// only one of the two closes them.
// Times are milliseconds; INFINITE waits for ever.
#pragma once

#include <atomic>
#include <cstddef>

#include "platform/win32.h"

class ORVIK_API CSerial {
public:
    // What CheckPort found out.
    enum EPort : LONG {
        PortUnknownError = -1,
        PortAvailable = 0,
        PortMissing = 1,
        PortInUse = 2,
    };

    // Line settings carry the numbers of the Win32 DCB, which they are stored in; -1 is a query that failed.
    // A baud rate is the rate itself, in bits per second: any number may be cast to it.
    enum EBaudrate : LONG {
        BaudrateUnknown = -1,
        Baudrate300 = 300,
        Baudrate600 = 600,
        Baudrate1200 = 1200,
        Baudrate2400 = 2400,
        Baudrate4800 = 4800,
        Baudrate9600 = 9600,
        Baudrate19200 = 19200,
        Baudrate38400 = 38400,
        Baudrate57600 = 57600,
        Baudrate115200 = 115200,
        Baudrate230400 = 230400,
    };
    enum EDataBits : LONG { DataBitsUnknown = -1, DataBits5 = 5, DataBits6 = 6, DataBits7 = 7, DataBits8 = 8 };
    enum EParity : LONG {
        ParityUnknown = -1,
        ParityNone = 0,
        ParityOdd = 1,
        ParityEven = 2,
        ParityMark = 3,
        ParitySpace = 4,
    };
    enum EStopBits : LONG { StopBitsUnknown = -1, StopBits1 = 0, StopBits1_5 = 1, StopBits2 = 2 };
    enum EHandshake : LONG { HandshakeUnknown = -1, HandshakeOff = 0, HandshakeHardware = 1, HandshakeSoftware = 2 };

    // How a read treats a receive queue that holds less than asked for.
    enum EReadTimeout : LONG {
        ReadNonBlocking = 0,  // return at once with what is there
        ReadBlocking = 1,     // wait for the whole count
    };

    // Line events, a set of the Win32 EV_ bits.
    enum EEvent : DWORD {
        EventNone = 0,
        EventReceived = 0x0001,
        EventCharReceived = 0x0002,  // the event character came in
        EventSent = 0x0004,          // the transmit buffer ran empty
        EventCts = 0x0008,
        EventDsr = 0x0010,
        EventRlsd = 0x0020,
        EventBreak = 0x0040,
        EventLineError = 0x0080,
        EventRing = 0x0100,
        EventPrinterError = 0x0200,
        EventReceive80Full = 0x0400,
        EventProvider1 = 0x0800,
        EventProvider2 = 0x1000,
    };

    // Line errors, a set of the Win32 CE_ bits.
    enum EError : DWORD {
        ErrorNone = 0,
        ErrorReceiveOverflow = 0x0001,
        ErrorOverrun = 0x0002,
        ErrorParity = 0x0004,
        ErrorFraming = 0x0008,
        ErrorBreak = 0x0010,
        ErrorTransmitFull = 0x0100,
        ErrorIo = 0x0400,
        ErrorMode = 0x8000,
    };

    CSerial();
    CSerial(const CSerial& other);
    CSerial& operator=(const CSerial& other);
    virtual ~CSerial();

    // Opens the port exclusively. A name without the device prefix \\.\ gets it, so ports above 9 open by their plain name.
    // Non-zero queue sizes (bytes) are asked of the driver. `overlapped` holds until the port is closed.
    // Starts with the mask 0x00C1 (received, break, line error), non-blocking reads and the system's default line settings.
    // 1247 if already open, which changes nothing; 2 if there is no such port, 5 if somebody holds it. A failed Open leaves
    // the object closed.
    virtual LONG Open(const char* name, DWORD dwInQueue, DWORD dwOutQueue, bool fOverlapped);
    // Closing a closed port is no error. Resets the last error, whatever came before.
    virtual LONG Close();

    virtual LONG Setup(EBaudrate baudrate, EDataBits dataBits, EParity parity, EStopBits stopBits);
    // `fAdjustMask` adds EventCharReceived to the mask; whether that succeeded is not reported.
    virtual LONG SetEventChar(BYTE ch, bool fAdjustMask);
    virtual LONG SetMask(DWORD mask);
    // Waits for an event of the mask; GetEventType then tells which. With an OVERLAPPED of the caller's it returns at once
    // and the caller waits. A port without overlapped mode takes neither OVERLAPPED nor time-out: error 1.
    // 1460 when the time ran out.
    virtual LONG WaitEvent(OVERLAPPED* ov, DWORD timeout);
    // Sets the flow control. 0x80070057 for an unknown mode; the port is then left as it was.
    virtual LONG SetupHandshaking(EHandshake mode);
    // As above for an unknown mode. The write time-outs stay as they are.
    virtual LONG SetupReadTimeouts(EReadTimeout mode);

    virtual EBaudrate GetBaudrate();
    virtual EDataBits GetDataBits();
    virtual EParity GetParity();  // none while parity checking is off, whatever kind the driver remembers
    virtual EStopBits GetStopBits();
    virtual EHandshake GetHandshaking();
    virtual DWORD GetEventMask();  // the mask last set with success
    virtual BYTE GetEventChar();

    // The text without its terminator, through the form for bytes.
    virtual LONG Write(const char* text, DWORD* written, OVERLAPPED* ov, DWORD timeout);
    // `written` may be null. The rules for `ov` and `timeout` are those of WaitEvent. After a time-out (1460) the write has
    // been cancelled and `written` is 0; a part may have gone out.
    virtual LONG Write(const void* data, size_t len, DWORD* written, OVERLAPPED* ov, DWORD timeout);
    // As Write. How much must arrive is the read time-out mode's business. After a time-out `read` is 0, and what had come by
    // then is what the next read begins with; one with an OVERLAPPED of the caller's then ends at once with those bytes alone.
    virtual LONG Read(void* buf, size_t len, DWORD* read, OVERLAPPED* ov, DWORD timeout);

    // Empties both queues; reads and writes under way go on.
    LONG Purge();
    // Holds the line in the break state for 100 ms.
    LONG Break();

    // The events of the last wait that the mask asks for; a second call gives none. While a listener runs (CSerialEx) its
    // events are its own: nobody else may ask.
    EEvent GetEventType();
    // The line errors since the last call; the driver's error state is cleared.
    EError GetError();

    // The modem lines. On a closed port false, with error 6.
    bool GetCTS();
    bool GetDSR();
    bool GetRing();
    bool GetRLSD();

    LONG GetLastError() const;
    HANDLE GetCommHandle();
    bool IsOpen() const;

    // Whether a port exists and is free. It is opened for a moment and not kept.
    static EPort CheckPort(const char* name);

protected:
    BOOL CancelCommIo();
    // A place to check an operation's arguments; there is nothing to check.
    void CheckRequirements(OVERLAPPED* ov, DWORD timeout) const;

    // The last error and the mask are atomic because a listener thread writes the one and reads the other while the
    // owner's thread works; they keep their size and meaning.
    std::atomic<LONG> m_lLastError{0};
    HANDLE m_hFile = nullptr;  // null exactly when closed
    EEvent m_eEvent = EventNone;
    std::atomic<DWORD> m_dwEventMask{0};
    HANDLE m_hevtOverlapped = nullptr;  // manual reset; non-null exactly in overlapped mode

    // Stores a result as the last error and gives it back. An operation returns its own result even where another thread's
    // operation has stored a later one meanwhile.
    LONG Result(DWORD code);

private:
    // The system's own error of the call that just failed, stored.
    LONG Failed();
    LONG GetState(DCB& dcb);
    LONG SetState(DCB& dcb);
    bool ModemLine(DWORD bit);
    bool IsNonBlocking();
    void CloseHandles();
    template <class Start>
    LONG Perform(OVERLAPPED* ov, DWORD timeout, DWORD* count, bool unlinked, Start start);
    LONG Complete(OVERLAPPED& ov, DWORD timeout, DWORD* count);
    LONG Abandon(OVERLAPPED& ov, DWORD* count);
};
