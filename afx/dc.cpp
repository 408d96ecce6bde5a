#include "afx/dc.h"

#include <memory>
#include <utility>

#include "afx/temporary_map.h"
#include "afx/wnd.h"

IMPLEMENT_DYNCREATE(CDC, CObject)

namespace {
orvik::detail::OwnerMap<HDC, CDC>& DcOwners() {
    // Never destroyed: static objects of other files end later.
    static auto& s_owners = *new orvik::detail::OwnerMap<HDC, CDC>;
    return s_owners;
}
orvik::detail::TemporaryRing<CDC>& TemporaryDcs() {
    thread_local orvik::detail::TemporaryRing<CDC> t_objects;
    return t_objects;
}

// Does the same on both DCs where they are two; the answer is the one of the DC that is asked for information.
template <class Action>
auto OnBoth(const CDC& dc, Action action) -> decltype(action(dc.m_hDC)) {
    decltype(action(dc.m_hDC)) result{};
    if (dc.m_hDC != nullptr && dc.m_hDC != dc.m_hAttribDC) result = action(dc.m_hDC);
    if (dc.m_hAttribDC != nullptr) result = action(dc.m_hAttribDC);
    return result;
}

CPoint Sized(HDC dc, SIZE size, BOOL(WINAPI* convert)(HDC, LPPOINT, int)) {
    // An extent is what lies between two points.
    POINT ends[] = {{0, 0}, {size.cx, size.cy}};
    convert(dc, ends, 2);
    return {ends[1].x - ends[0].x, ends[1].y - ends[0].y};
}
}  // namespace

CDC::~CDC() {
    if (m_hDC != nullptr && !m_temporary) DeleteDC();
}

CDC* CDC::FromHandle(HDC hDC) {
    if (hDC == nullptr) return nullptr;
    if (CDC* owner = DcOwners().Find(hDC)) return owner;
    return TemporaryDcs().Get([&](const CDC& dc) { return dc.m_hDC == hDC; },
                              [&] {
                                  auto made = std::make_unique<CDC>();
                                  made->m_hDC = made->m_hAttribDC = hDC;
                                  made->m_temporary = true;
                                  return made;
                              });
}

void CDC::DeleteTempMap() { TemporaryDcs().Clear(); }

CWnd* CDC::GetWindow() const { return CWnd::FromHandle(::WindowFromDC(m_hDC)); }

BOOL CDC::Attach(HDC hDC) {
    if (hDC == nullptr || m_hDC != nullptr) return FALSE;
    m_hDC = hDC;
    DcOwners().Set(hDC, this);
    SetAttribDC(hDC);
    m_bPrinting = ::GetDeviceCaps(hDC, TECHNOLOGY) != DT_RASDISPLAY;
    return TRUE;
}

HDC CDC::Detach() {
    if (m_hDC != nullptr && !m_temporary) DcOwners().Remove(m_hDC, this);
    ReleaseAttribDC();
    return std::exchange(m_hDC, nullptr);
}

void CDC::SetOutputDC(HDC hDC) {
    if (m_hDC != nullptr && !m_temporary) DcOwners().Remove(m_hDC, this);
    m_hDC = hDC;
    if (hDC != nullptr) DcOwners().Set(hDC, this);
}

void CDC::ReleaseOutputDC() { SetOutputDC(nullptr); }

BOOL CDC::CreateDC(LPCSTR lpszDriverName, LPCSTR lpszDeviceName, LPCSTR lpszOutput, const void* lpInitData) {
    return m_hDC == nullptr &&
           Attach(::CreateDCA(lpszDriverName, lpszDeviceName, lpszOutput, static_cast<const DEVMODEA*>(lpInitData)));
}

BOOL CDC::CreateCompatibleDC(CDC* pDC) {
    return m_hDC == nullptr && Attach(::CreateCompatibleDC(pDC != nullptr ? pDC->m_hDC : nullptr));
}

BOOL CDC::DeleteDC() {
    const HDC dc = Detach();
    return dc != nullptr && ::DeleteDC(dc);
}

int CDC::SaveDC() {
    return OnBoth(*this, [](HDC dc) { return ::SaveDC(dc); });
}

BOOL CDC::RestoreDC(int nSavedDC) {
    // Both have been saved as often, so a level means the same in each.
    return OnBoth(*this, [&](HDC dc) { return ::RestoreDC(dc, nSavedDC); });
}

CGdiObject* CDC::SelectStockObject(int nIndex) {
    const HGDIOBJ object = ::GetStockObject(nIndex);
    return CGdiObject::FromHandle(OnBoth(*this, [&](HDC dc) { return ::SelectObject(dc, object); }));
}

CPen* CDC::SelectObject(CPen* pPen) {
    if (pPen == nullptr) return nullptr;
    return CPen::FromHandle(static_cast<HPEN>(OnBoth(*this, [&](HDC dc) { return ::SelectObject(dc, pPen->m_hObject); })));
}

CBrush* CDC::SelectObject(CBrush* pBrush) {
    if (pBrush == nullptr) return nullptr;
    return CBrush::FromHandle(static_cast<HBRUSH>(OnBoth(*this, [&](HDC dc) { return ::SelectObject(dc, pBrush->m_hObject); })));
}

CFont* CDC::SelectObject(CFont* pFont) {
    if (pFont == nullptr) return nullptr;
    return CFont::FromHandle(static_cast<HFONT>(OnBoth(*this, [&](HDC dc) { return ::SelectObject(dc, pFont->m_hObject); })));
}

CBitmap* CDC::SelectObject(CBitmap* pBitmap) {
    if (pBitmap == nullptr) return nullptr;
    // A bitmap goes to one DC alone: the one that is drawn on.
    return CBitmap::FromHandle(static_cast<HBITMAP>(::SelectObject(m_hDC, pBitmap->m_hObject)));
}

int CDC::SelectObject(CRgn* pRgn) { return SelectClipRgn(pRgn); }

CGdiObject* CDC::SelectObject(CGdiObject* pObject) {
    if (pObject == nullptr) return nullptr;
    return CGdiObject::FromHandle(OnBoth(*this, [&](HDC dc) { return ::SelectObject(dc, pObject->m_hObject); }));
}

COLORREF CDC::SetBkColor(COLORREF crColor) {
    return OnBoth(*this, [&](HDC dc) { return ::SetBkColor(dc, crColor); });
}

COLORREF CDC::SetTextColor(COLORREF crColor) {
    return OnBoth(*this, [&](HDC dc) { return ::SetTextColor(dc, crColor); });
}

int CDC::SetBkMode(int nBkMode) {
    return OnBoth(*this, [&](HDC dc) { return ::SetBkMode(dc, nBkMode); });
}

int CDC::SetPolyFillMode(int nPolyFillMode) {
    return OnBoth(*this, [&](HDC dc) { return ::SetPolyFillMode(dc, nPolyFillMode); });
}

int CDC::SetROP2(int nDrawMode) {
    return OnBoth(*this, [&](HDC dc) { return ::SetROP2(dc, nDrawMode); });
}

int CDC::SetStretchBltMode(int nStretchMode) {
    return OnBoth(*this, [&](HDC dc) { return ::SetStretchBltMode(dc, nStretchMode); });
}

UINT CDC::SetTextAlign(UINT nFlags) {
    return OnBoth(*this, [&](HDC dc) { return ::SetTextAlign(dc, nFlags); });
}

int CDC::SetMapMode(int nMapMode) {
    return OnBoth(*this, [&](HDC dc) { return ::SetMapMode(dc, nMapMode); });
}

CPoint CDC::SetBrushOrg(int x, int y) {
    CPoint before;
    ::SetBrushOrgEx(m_hDC, x, y, &before);
    return before;
}

CPoint CDC::GetViewportOrg() const {
    CPoint origin;
    ::GetViewportOrgEx(m_hAttribDC, &origin);
    return origin;
}

CPoint CDC::SetViewportOrg(int x, int y) {
    CPoint before;
    OnBoth(*this, [&](HDC dc) { return ::SetViewportOrgEx(dc, x, y, &before); });
    return before;
}

CPoint CDC::OffsetViewportOrg(int nWidth, int nHeight) {
    CPoint before;
    OnBoth(*this, [&](HDC dc) { return ::OffsetViewportOrgEx(dc, nWidth, nHeight, &before); });
    return before;
}

CPoint CDC::GetWindowOrg() const {
    CPoint origin;
    ::GetWindowOrgEx(m_hAttribDC, &origin);
    return origin;
}

CPoint CDC::SetWindowOrg(int x, int y) {
    CPoint before;
    OnBoth(*this, [&](HDC dc) { return ::SetWindowOrgEx(dc, x, y, &before); });
    return before;
}

CPoint CDC::OffsetWindowOrg(int nWidth, int nHeight) {
    CPoint before;
    OnBoth(*this, [&](HDC dc) { return ::OffsetWindowOrgEx(dc, nWidth, nHeight, &before); });
    return before;
}

void CDC::DPtoLP(SIZE* lpSize) const {
    const CPoint extent = Sized(m_hAttribDC, *lpSize, &::DPtoLP);
    *lpSize = {extent.x, extent.y};
}

void CDC::LPtoDP(SIZE* lpSize) const {
    const CPoint extent = Sized(m_hAttribDC, *lpSize, &::LPtoDP);
    *lpSize = {extent.x, extent.y};
}

int CDC::GetClipBox(LPRECT lpRect) const { return ::GetClipBox(m_hAttribDC, lpRect); }

int CDC::SelectClipRgn(CRgn* pRgn) {
    const HRGN region = pRgn != nullptr ? static_cast<HRGN>(*pRgn) : nullptr;
    return OnBoth(*this, [&](HDC dc) { return ::SelectClipRgn(dc, region); });
}

int CDC::SelectClipRgn(CRgn* pRgn, int nMode) {
    const HRGN region = pRgn != nullptr ? static_cast<HRGN>(*pRgn) : nullptr;
    return OnBoth(*this, [&](HDC dc) { return ::ExtSelectClipRgn(dc, region, nMode); });
}

int CDC::ExcludeClipRect(int x1, int y1, int x2, int y2) {
    return OnBoth(*this, [&](HDC dc) { return ::ExcludeClipRect(dc, x1, y1, x2, y2); });
}

int CDC::ExcludeClipRect(LPCRECT lpRect) { return ExcludeClipRect(lpRect->left, lpRect->top, lpRect->right, lpRect->bottom); }

int CDC::IntersectClipRect(int x1, int y1, int x2, int y2) {
    return OnBoth(*this, [&](HDC dc) { return ::IntersectClipRect(dc, x1, y1, x2, y2); });
}

int CDC::IntersectClipRect(LPCRECT lpRect) { return IntersectClipRect(lpRect->left, lpRect->top, lpRect->right, lpRect->bottom); }

int CDC::OffsetClipRgn(int x, int y) {
    return OnBoth(*this, [&](HDC dc) { return ::OffsetClipRgn(dc, x, y); });
}

CPoint CDC::GetCurrentPosition() const {
    CPoint position;
    ::GetCurrentPositionEx(m_hAttribDC, &position);
    return position;
}

CPoint CDC::MoveTo(int x, int y) {
    CPoint before;
    OnBoth(*this, [&](HDC dc) { return ::MoveToEx(dc, x, y, &before); });
    return before;
}

BOOL CDC::LineTo(int x, int y) {
    if (m_hAttribDC != nullptr && m_hDC != m_hAttribDC) ::MoveToEx(m_hAttribDC, x, y, nullptr);
    return ::LineTo(m_hDC, x, y);
}

BOOL CDC::PolyPolyline(const POINT* lpPoints, const DWORD* lpPolyPoints, int nCount) {
    return nCount > 0 && ::PolyPolyline(m_hDC, lpPoints, lpPolyPoints, static_cast<DWORD>(nCount));
}

BOOL CDC::PolylineTo(const POINT* lpPoints, int nCount) {
    return nCount >= 0 && ::PolylineTo(m_hDC, lpPoints, static_cast<DWORD>(nCount));
}

void CDC::FillRect(LPCRECT lpRect, CBrush* pBrush) { ::FillRect(m_hDC, lpRect, *pBrush); }
void CDC::FrameRect(LPCRECT lpRect, CBrush* pBrush) { ::FrameRect(m_hDC, lpRect, *pBrush); }

void CDC::FillSolidRect(LPCRECT lpRect, COLORREF clr) {
    ::SetBkColor(m_hDC, clr);
    ::ExtTextOutA(m_hDC, 0, 0, ETO_OPAQUE, lpRect, nullptr, 0, nullptr);
}

void CDC::FillSolidRect(int x, int y, int cx, int cy, COLORREF clr) { FillSolidRect(CRect(x, y, x + cx, y + cy), clr); }

void CDC::Draw3dRect(int x, int y, int cx, int cy, COLORREF clrTopLeft, COLORREF clrBottomRight) {
    FillSolidRect(x, y, cx - 1, 1, clrTopLeft);
    FillSolidRect(x, y, 1, cy - 1, clrTopLeft);
    FillSolidRect(x + cx - 1, y, 1, cy, clrBottomRight);
    FillSolidRect(x, y + cy - 1, cx - 1, 1, clrBottomRight);
}

void CDC::Draw3dRect(LPCRECT lpRect, COLORREF clrTopLeft, COLORREF clrBottomRight) {
    Draw3dRect(lpRect->left, lpRect->top, lpRect->right - lpRect->left, lpRect->bottom - lpRect->top, clrTopLeft, clrBottomRight);
}

BOOL CDC::FillRgn(CRgn* pRgn, CBrush* pBrush) { return ::FillRgn(m_hDC, *pRgn, *pBrush); }

BOOL CDC::BitBlt(int x, int y, int nWidth, int nHeight, CDC* pSrcDC, int xSrc, int ySrc, DWORD dwRop) {
    return ::BitBlt(m_hDC, x, y, nWidth, nHeight, pSrcDC != nullptr ? pSrcDC->m_hDC : nullptr, xSrc, ySrc, dwRop);
}

BOOL CDC::StretchBlt(int x, int y, int nWidth, int nHeight, CDC* pSrcDC, int xSrc, int ySrc, int nSrcWidth, int nSrcHeight,
                     DWORD dwRop) {
    return ::StretchBlt(m_hDC, x, y, nWidth, nHeight, pSrcDC != nullptr ? pSrcDC->m_hDC : nullptr, xSrc, ySrc, nSrcWidth,
                        nSrcHeight, dwRop);
}

BOOL CDC::TextOut(int x, int y, LPCSTR lpszString, int nCount) { return ::TextOutA(m_hDC, x, y, lpszString, nCount); }
BOOL CDC::TextOut(int x, int y, const CString& str) { return TextOut(x, y, str.GetString(), str.GetLength()); }

BOOL CDC::ExtTextOut(int x, int y, UINT nOptions, LPCRECT lpRect, LPCSTR lpszString, UINT nCount, const int* lpDxWidths) {
    return ::ExtTextOutA(m_hDC, x, y, nOptions, lpRect, lpszString, nCount, lpDxWidths);
}

BOOL CDC::ExtTextOut(int x, int y, UINT nOptions, LPCRECT lpRect, const CString& str, const int* lpDxWidths) {
    return ExtTextOut(x, y, nOptions, lpRect, str.GetString(), static_cast<UINT>(str.GetLength()), lpDxWidths);
}

int CDC::DrawText(LPCSTR lpszString, int nCount, LPRECT lpRect, UINT nFormat) {
    return ::DrawTextA(m_hDC, lpszString, nCount, lpRect, nFormat);
}

int CDC::DrawText(const CString& str, LPRECT lpRect, UINT nFormat) {
    return DrawText(str.GetString(), str.GetLength(), lpRect, nFormat);
}

CSize CDC::GetTextExtent(LPCSTR lpszString, int nCount) const {
    CSize size;
    ::GetTextExtentPoint32A(m_hAttribDC, lpszString, nCount, &size);
    return size;
}

CSize CDC::GetTextExtent(const CString& str) const { return GetTextExtent(str.GetString(), str.GetLength()); }

CSize CDC::GetOutputTextExtent(LPCSTR lpszString, int nCount) const {
    CSize size;
    ::GetTextExtentPoint32A(m_hDC, lpszString, nCount, &size);
    return size;
}

CSize CDC::GetOutputTextExtent(const CString& str) const { return GetOutputTextExtent(str.GetString(), str.GetLength()); }

int CDC::GetTextFace(CString& rString) const {
    char name[256] = {};
    const int length = ::GetTextFaceA(m_hAttribDC, static_cast<int>(sizeof name), name);
    rString = name;
    return length;
}
