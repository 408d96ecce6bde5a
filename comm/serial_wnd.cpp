#include "comm/serial_wnd.h"

static_assert(sizeof(CSerialWnd) == (sizeof(void*) == 4 ? 48 : 88), "the layout that modules built apart rely on");

const UINT CSerialWnd::mg_nDefaultComMsg = ::RegisterWindowMessageA("CSerialWnd_DefaultComMsg");

CSerialWnd::CSerialWnd() = default;

CSerialWnd::CSerialWnd(const CSerialWnd& other)
    : CSerialEx(other), m_hwndDest(other.m_hwndDest.load()), m_nComMsg(other.m_nComMsg.load()), m_lParam(other.m_lParam) {}

CSerialWnd& CSerialWnd::operator=(const CSerialWnd& other) {
    CSerialEx::operator=(other);
    m_hwndDest = other.m_hwndDest.load();
    m_nComMsg = other.m_nComMsg.load();
    m_lParam = other.m_lParam;
    return *this;
}

CSerialWnd::~CSerialWnd() {
    if (m_hThread) CSerialWnd::Close();
}

LONG CSerialWnd::Open(const char* name, HWND hwndDest, UINT nComMsg, LPARAM lParam, DWORD dwInQueue, DWORD dwOutQueue) {
    if (const LONG error = CSerial::Open(name, dwInQueue, dwOutQueue, true)) return error;
    if (!CreateListenerEvent()) CSerial::Close();
    m_hwndDest = hwndDest;
    m_nComMsg = nComMsg ? nComMsg : mg_nDefaultComMsg;
    m_lParam = lParam;
    if (const LONG error = StartListener()) {
        Close();
        return Result(static_cast<DWORD>(error));
    }
    return ERROR_SUCCESS;
}

LONG CSerialWnd::Close() {
    m_hwndDest = nullptr;
    m_nComMsg = 0;
    return CSerialEx::Close();
}

void CSerialWnd::OnEvent(EEvent event, EError error) {
    // Both halves are cut to 16 bits.
    ::PostMessageA(m_hwndDest, m_nComMsg, MAKEWPARAM(event & 0xFFFF, error & 0xFFFF), m_lParam);
}
