// Where the controls of a window go when it is resized. Each control has an anchor: which share of the window's growth, in
// percent for each direction, moves it, and which share makes it larger. On the window's thread; windows are not owned.
// An anchor starts from the places at the moment it is added, so resizing back and forth loses no pixel.
#pragma once

#include <vector>

#include "afx/wnd.h"
#include "platform/dpi.h"

class ORVIK_API CBCGPStaticLayout {
public:
    enum XMoveType { e_MoveTypeNone, e_MoveTypeHorz, e_MoveTypeVert, e_MoveTypeBoth };
    enum XSizeType { e_SizeTypeNone, e_SizeTypeHorz, e_SizeTypeVert, e_SizeTypeBoth };

    explicit CBCGPStaticLayout(CWnd* pHost) : m_pHost(pHost) {}

    // A control of the host by id or window. A second anchor of the same window replaces the first. 0 for no such window.
    BOOL AddAnchor(UINT uiCtrlID, XMoveType typeMove, XSizeType typeSize, CPoint ptMovePercent = CPoint(100, 100),
                   CSize szSizePercent = CSize(100, 100));
    BOOL AddAnchor(HWND hWnd, XMoveType typeMove, XSizeType typeSize, CPoint ptMovePercent = CPoint(100, 100),
                   CSize szSizePercent = CSize(100, 100));
    BOOL IsEmpty() const { return m_anchors.empty(); }

    // The smallest size that the user can give the host, frame included; 0 for no limit.
    void SetMinSize(CSize size) { m_minSize = size, m_dpi = OrvikDpiOf(m_pHost->m_hWnd); }
    CSize GetMinSize() const { return m_minSize; }

    // The host and its controls have been scaled to other dots an inch: anchors start from where they are now, and the smallest
    // size is scaled as well.
    void StartAnew(UINT dpi);

    // Puts every control where the host's size wants it.
    void AdjustLayout();

private:
    struct Anchor {
        HWND window;
        CPoint move;      // percent
        CSize size;       // percent
        CRect place;      // in the host's client area, when that was
        CSize hostStart;  // this large
    };

    CWnd* m_pHost;
    std::vector<Anchor> m_anchors;
    CSize m_minSize;
    UINT m_dpi = USER_DEFAULT_SCREEN_DPI;  // of the smallest size
};
