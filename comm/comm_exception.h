// CCommException: the one way in which a logger protocol reports a failed exchange. The serial classes below never throw.
// Made on the heap and thrown by pointer; whoever catches it ends it with Delete(). Any thread.
#pragma once

#include "afx/exception.h"

class ORVIK_API CCommException : public CException {
    DECLARE_DYNAMIC(CCommException)

public:
    // The codes that have a text of their own; any other number may be thrown as well.
    enum ECode : LONG {
        NoError = 0,
        GenericError = 1,
        ReceiveOverflow = 2,
        BadProtocol = 3,
        IllegalResponse = 4,
        AccessDenied = 5,
        DeviceNotOpen = 6,
        HardwareError = 7,
        ReceiveTimeout = 8,
        SessionAborted = 9,
    };

    CCommException(LONG nError, const CString& strError);

    LONG m_nError;
    CString m_strError;
};

// Throws. Without a text, the code's own in the user's language: string resources 828 to 837, 838 for a code without one.
[[noreturn]] ORVIK_API void OrvikThrowCommException(int nError, const char* lpszText);
