#include "comm/com_wnd.h"

#include "comm/orvik_connection.h"

const UINT COrvikComWnd::ComMsg = ::RegisterWindowMessageA("COrvikComWnd_ComMsg");

IMPLEMENT_DYNAMIC(COrvikComWnd, CWnd)

BEGIN_MESSAGE_MAP(COrvikComWnd, CWnd)
ON_REGISTERED_MESSAGE(ComMsg, OnOrvikmSerial)
END_MESSAGE_MAP()

COrvikComWnd::COrvikComWnd() = default;
COrvikComWnd::~COrvikComWnd() { DestroyWindow(); }

BOOL COrvikComWnd::Create() {
    static const CString windowClass = AfxRegisterWndClass(CS_PARENTDC | CS_SAVEBITS);
    return CreateEx(0, windowClass, "SerialWnd", WS_POPUP, 0, 0, 0, 0, HWND_MESSAGE, nullptr);
}

LRESULT COrvikComWnd::OnOrvikmSerial(WPARAM wParam, LPARAM lParam) {
    if (auto* const connection = reinterpret_cast<COrvikConnection*>(lParam)) {
        connection->OnSerialCommEvent(static_cast<CSerial::EEvent>(LOWORD(wParam)), static_cast<CSerial::EError>(HIWORD(wParam)));
    }
    return 0;
}
