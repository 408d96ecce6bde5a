#include "comm/comm_exception.h"

#include <iterator>

IMPLEMENT_DYNAMIC(CCommException, CException)

CCommException::CCommException(LONG nError, const CString& strError) : m_nError(nError), m_strError(strError) {}

void OrvikThrowCommException(int nError, const char* lpszText) {
    static constexpr UINT texts[] = {828, 829, 830, 831, 832, 833, 834, 835, 836, 837};
    constexpr UINT unknown = 838;

    CString message;
    if (lpszText) {
        message = lpszText;
    } else {
        message.LoadString(nError >= 0 && nError < static_cast<int>(std::size(texts)) ? texts[nError] : unknown);
    }
    throw new CCommException(nError, message);
}
