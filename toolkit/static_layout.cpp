#include "toolkit/static_layout.h"

#include <algorithm>

#include "afx/geometry.h"

namespace {
// A type is a pair of bits: 1 for horizontal, 2 for vertical.
int Share(int type, int bit, int percent) { return (type & bit) != 0 ? percent : 0; }

CSize ClientSize(const CWnd& window) {
    CRect client;
    window.GetClientRect(client);
    return client.Size();
}
}  // namespace

BOOL CBCGPStaticLayout::AddAnchor(UINT uiCtrlID, XMoveType typeMove, XSizeType typeSize, CPoint ptMovePercent,
                                  CSize szSizePercent) {
    return AddAnchor(::GetDlgItem(m_pHost->m_hWnd, static_cast<int>(uiCtrlID)), typeMove, typeSize, ptMovePercent, szSizePercent);
}

BOOL CBCGPStaticLayout::AddAnchor(HWND hWnd, XMoveType typeMove, XSizeType typeSize, CPoint ptMovePercent, CSize szSizePercent) {
    if (!::IsWindow(hWnd)) return FALSE;
    Anchor anchor = {hWnd, CPoint(Share(typeMove, 1, ptMovePercent.x), Share(typeMove, 2, ptMovePercent.y)),
                     CSize(Share(typeSize, 1, szSizePercent.cx), Share(typeSize, 2, szSizePercent.cy)), CRect(),
                     ClientSize(*m_pHost)};
    ::GetWindowRect(hWnd, anchor.place);
    m_pHost->ScreenToClient(anchor.place);
    std::erase_if(m_anchors, [hWnd](const Anchor& each) { return each.window == hWnd; });
    m_anchors.push_back(anchor);
    return TRUE;
}

void CBCGPStaticLayout::StartAnew(UINT dpi) {
    const auto scaled = [&](int pixels) { return ::MulDiv(pixels, static_cast<int>(dpi), static_cast<int>(m_dpi)); };
    m_minSize = CSize(scaled(m_minSize.cx), scaled(m_minSize.cy));
    m_dpi = dpi;
    for (Anchor& anchor : m_anchors) {
        anchor.hostStart = ClientSize(*m_pHost);
        ::GetWindowRect(anchor.window, anchor.place);
        m_pHost->ScreenToClient(anchor.place);
    }
}

void CBCGPStaticLayout::AdjustLayout() {
    const CSize now = ClientSize(*m_pHost);
    for (const Anchor& anchor : m_anchors) {
        const CSize grown = now - anchor.hostStart;
        const CPoint at(anchor.place.left + ::MulDiv(grown.cx, anchor.move.x, 100),
                        anchor.place.top + ::MulDiv(grown.cy, anchor.move.y, 100));
        const int width = std::max(0, anchor.place.Width() + ::MulDiv(grown.cx, anchor.size.cx, 100));
        const int height = std::max(0, anchor.place.Height() + ::MulDiv(grown.cy, anchor.size.cy, 100));
        ::SetWindowPos(anchor.window, nullptr, at.x, at.y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    }
}
