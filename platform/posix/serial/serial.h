// Serial ports: line settings, time-outs, line events and errors.
// Any thread: one may wait in WaitCommEvent while others read, write, ask or close. A handle that is no open port gives error 6;
// a port whose device is gone gives 21, once the bytes received before are read. A pseudo-terminal has no modem lines, no error
// counters and no real line settings: the functions for modem lines fail with error 1 there, and settings are remembered and read
// back.
#pragma once

#include "platform/posix/kernel/io.h"

#define EV_RXCHAR 0x0001u
#define EV_RXFLAG 0x0002u
#define EV_TXEMPTY 0x0004u
#define EV_CTS 0x0008u
#define EV_DSR 0x0010u
#define EV_RLSD 0x0020u
#define EV_BREAK 0x0040u
#define EV_ERR 0x0080u
#define EV_RING 0x0100u
#define EV_PERR 0x0200u
#define EV_RX80FULL 0x0400u
#define EV_EVENT1 0x0800u
#define EV_EVENT2 0x1000u

#define CE_RXOVER 0x0001u
#define CE_OVERRUN 0x0002u
#define CE_RXPARITY 0x0004u
#define CE_FRAME 0x0008u
#define CE_BREAK 0x0010u
#define CE_TXFULL 0x0100u
#define CE_IOE 0x0400u
#define CE_MODE 0x8000u

#define PURGE_TXABORT 0x0001u
#define PURGE_RXABORT 0x0002u
#define PURGE_TXCLEAR 0x0004u
#define PURGE_RXCLEAR 0x0008u

#define MS_CTS_ON 0x0010u
#define MS_DSR_ON 0x0020u
#define MS_RING_ON 0x0040u
#define MS_RLSD_ON 0x0080u

#define NOPARITY 0
#define ODDPARITY 1
#define EVENPARITY 2
#define MARKPARITY 3
#define SPACEPARITY 4
#define ONESTOPBIT 0
#define ONE5STOPBITS 1
#define TWOSTOPBITS 2

#define CBR_110 110u
#define CBR_300 300u
#define CBR_600 600u
#define CBR_1200 1200u
#define CBR_2400 2400u
#define CBR_4800 4800u
#define CBR_9600 9600u
#define CBR_14400 14400u
#define CBR_19200 19200u
#define CBR_38400 38400u
#define CBR_57600 57600u
#define CBR_115200 115200u
#define CBR_128000 128000u
#define CBR_256000 256000u

#define DTR_CONTROL_DISABLE 0
#define DTR_CONTROL_ENABLE 1
#define DTR_CONTROL_HANDSHAKE 2
#define RTS_CONTROL_DISABLE 0
#define RTS_CONTROL_ENABLE 1
#define RTS_CONTROL_HANDSHAKE 2
#define RTS_CONTROL_TOGGLE 3

#define SETXOFF 1u
#define SETXON 2u
#define SETRTS 3u
#define CLRRTS 4u
#define SETDTR 5u
#define CLRDTR 6u
#define SETBREAK 8u
#define CLRBREAK 9u

struct DCB {
    DWORD DCBlength;
    DWORD BaudRate;
    DWORD fBinary : 1;
    DWORD fParity : 1;
    DWORD fOutxCtsFlow : 1;
    DWORD fOutxDsrFlow : 1;
    DWORD fDtrControl : 2;
    DWORD fDsrSensitivity : 1;
    DWORD fTXContinueOnXoff : 1;
    DWORD fOutX : 1;
    DWORD fInX : 1;
    DWORD fErrorChar : 1;
    DWORD fNull : 1;
    DWORD fRtsControl : 2;
    DWORD fAbortOnError : 1;
    DWORD fDummy2 : 17;
    WORD wReserved;
    WORD XonLim;
    WORD XoffLim;
    BYTE ByteSize;
    BYTE Parity;
    BYTE StopBits;
    char XonChar;
    char XoffChar;
    char ErrorChar;
    char EofChar;
    char EvtChar;
    WORD wReserved1;
};
static_assert(sizeof(DCB) == 28);
using LPDCB = DCB*;

struct COMMTIMEOUTS {
    DWORD ReadIntervalTimeout;
    DWORD ReadTotalTimeoutMultiplier;
    DWORD ReadTotalTimeoutConstant;
    DWORD WriteTotalTimeoutMultiplier;
    DWORD WriteTotalTimeoutConstant;
};
using LPCOMMTIMEOUTS = COMMTIMEOUTS*;

struct COMMCONFIG {
    DWORD dwSize;
    WORD wVersion;
    WORD wReserved;
    DCB dcb;
    DWORD dwProviderSubType;
    DWORD dwProviderOffset;
    DWORD dwProviderSize;
    WCHAR wcProviderData[1];
};
static_assert(sizeof(COMMCONFIG) == 52);
using LPCOMMCONFIG = COMMCONFIG*;

struct COMSTAT {
    DWORD fCtsHold : 1;
    DWORD fDsrHold : 1;
    DWORD fRlsdHold : 1;
    DWORD fXoffHold : 1;
    DWORD fXoffSent : 1;
    DWORD fEof : 1;
    DWORD fTxim : 1;
    DWORD fReserved : 25;
    DWORD cbInQue;
    DWORD cbOutQue;
};
static_assert(sizeof(COMSTAT) == 12);
using LPCOMSTAT = COMSTAT*;

ORVIK_API BOOL WINAPI GetCommState(HANDLE port, LPDCB dcb);
// Error 87, and the port as it was, for a rate of 0, a byte size outside 5 to 8, an unknown parity or stop-bit number, 1.5 stop
// bits with more than 5 data bits, 2 stop bits with 5, or settings that the device does not take.
ORVIK_API BOOL WINAPI SetCommState(HANDLE port, LPDCB dcb);
ORVIK_API BOOL WINAPI GetCommTimeouts(HANDLE port, LPCOMMTIMEOUTS timeouts);  // milliseconds
ORVIK_API BOOL WINAPI SetCommTimeouts(HANDLE port, LPCOMMTIMEOUTS timeouts);
// Sizes in bytes of the port's own receive buffer (4 KiB to 1 MiB, 64 KiB at first; never below what it holds) and of the
// transmit queue, which is the system's and stays as it is.
ORVIK_API BOOL WINAPI SetupComm(HANDLE port, DWORD inQueue, DWORD outQueue);

ORVIK_API BOOL WINAPI GetCommMask(HANDLE port, LPDWORD mask);
// A pending WaitCommEvent ends with the event 0.
ORVIK_API BOOL WINAPI SetCommMask(HANDLE port, DWORD mask);
// Ends with the events of the mask that came since the last one ended. One at a time: a second is error 87, as is an empty mask.
// Modem lines are looked at every 10 ms and error counters every 50 ms while the mask holds them and the driver has them, for the
// system wakes nobody for these.
ORVIK_API BOOL WINAPI WaitCommEvent(HANDLE port, LPDWORD events, LPOVERLAPPED overlapped);

// Errors (CE_*) since the last call; `status` may be null.
ORVIK_API BOOL WINAPI ClearCommError(HANDLE port, LPDWORD errors, LPCOMSTAT status);
ORVIK_API BOOL WINAPI PurgeComm(HANDLE port, DWORD flags);
ORVIK_API BOOL WINAPI SetCommBreak(HANDLE port);
ORVIK_API BOOL WINAPI ClearCommBreak(HANDLE port);
ORVIK_API BOOL WINAPI GetCommModemStatus(HANDLE port, LPDWORD status);
ORVIK_API BOOL WINAPI EscapeCommFunction(HANDLE port, DWORD function);

// The settings a port starts with (9600, 8 data bits, no parity, 1 stop bit, DTR and RTS on) for a name that a present port has;
// error 2 for another name, 122 with the size in `size` when it is too small.
ORVIK_API BOOL WINAPI GetDefaultCommConfigA(LPCSTR name, LPCOMMCONFIG config, LPDWORD size);
ORVIK_API BOOL WINAPI SetCommConfig(HANDLE port, LPCOMMCONFIG config, DWORD size);
