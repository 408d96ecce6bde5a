// GDI objects behind C++ objects, which own them. One thread at a time for one object.
// An object is made empty and then given a GDI object by Create... or Attach: 0 when the system makes none, or while it has one
// already. A constructor that makes one raises the resource exception when it cannot. Sizes are pixels, colours COLORREFs.
// FromHandle gives the object that owns the handle; for a handle that no object owns, a temporary object of the calling thread,
// which does not own it and is for use at once: it goes when the thread has asked for many others.
#pragma once

#include "afx/geometry.h"
#include "afx/object.h"

class CBitmap;
class CDC;

class ORVIK_API CGdiObject : public CObject {
    DECLARE_DYNCREATE(CGdiObject)

public:
    CGdiObject() = default;
    ~CGdiObject() override;

    HGDIOBJ m_hObject = nullptr;
    HGDIOBJ GetSafeHandle() const { return m_hObject; }
    operator HGDIOBJ() const { return m_hObject; }

    static CGdiObject* FromHandle(HGDIOBJ hObject);
    // Ends the calling thread's temporary objects.
    static void DeleteTempMap();

    // 0 for null, and while this object has a GDI object.
    BOOL Attach(HGDIOBJ hObject);
    HGDIOBJ Detach();
    // 0 when there is nothing to delete or the system refuses; there is no GDI object afterwards either way.
    BOOL DeleteObject();
    // The object's description, at most nCount bytes: the bytes copied, 0 without an object.
    int GetObject(int nCount, LPVOID lpObject) const;
    // An OBJ_ number, 0 without an object.
    UINT GetObjectType() const { return m_hObject != nullptr ? ::GetObjectType(m_hObject) : 0; }
    BOOL CreateStockObject(int nIndex) { return Attach(::GetStockObject(nIndex)); }
    BOOL operator==(const CGdiObject& obj) const { return m_hObject == obj.m_hObject; }
    BOOL operator!=(const CGdiObject& obj) const { return m_hObject != obj.m_hObject; }

protected:
    // The object that has the handle, else a temporary one; either is of the wanted class.
    static CGdiObject* FromHandle(HGDIOBJ hObject, CRuntimeClass* wanted);

private:
    bool m_temporary = false;
};

class ORVIK_API CPen : public CGdiObject {
    DECLARE_DYNCREATE(CPen)

public:
    CPen() = default;
    CPen(int nPenStyle, int nWidth, COLORREF crColor);
    operator HPEN() const { return static_cast<HPEN>(m_hObject); }
    static CPen* FromHandle(HPEN hPen) { return static_cast<CPen*>(CGdiObject::FromHandle(hPen, GetThisClass())); }

    BOOL CreatePen(int nPenStyle, int nWidth, COLORREF crColor);
    // With the caps, joins and type of ExtCreatePen.
    BOOL CreatePen(int nPenStyle, int nWidth, const LOGBRUSH* pLogBrush, int nStyleCount = 0, const DWORD* lpStyle = nullptr);
    BOOL CreatePenIndirect(const LOGPEN* lpLogPen);
    int GetLogPen(LOGPEN* pLogPen) const { return GetObject(sizeof(LOGPEN), pLogPen); }
};

class ORVIK_API CBrush : public CGdiObject {
    DECLARE_DYNCREATE(CBrush)

public:
    CBrush() = default;
    explicit CBrush(COLORREF crColor);
    CBrush(int nIndex, COLORREF crColor);
    explicit CBrush(CBitmap* pBitmap);
    operator HBRUSH() const { return static_cast<HBRUSH>(m_hObject); }
    static CBrush* FromHandle(HBRUSH hBrush) { return static_cast<CBrush*>(CGdiObject::FromHandle(hBrush, GetThisClass())); }

    BOOL CreateSolidBrush(COLORREF crColor);
    BOOL CreateHatchBrush(int nIndex, COLORREF crColor);
    BOOL CreateBrushIndirect(const LOGBRUSH* lpLogBrush);
    BOOL CreatePatternBrush(CBitmap* pBitmap);
    // The system's brush of a system colour, which the system keeps.
    BOOL CreateSysColorBrush(int nIndex);
    int GetLogBrush(LOGBRUSH* pLogBrush) const { return GetObject(sizeof(LOGBRUSH), pLogBrush); }
};

class ORVIK_API CFont : public CGdiObject {
    DECLARE_DYNCREATE(CFont)

public:
    CFont() = default;
    operator HFONT() const { return static_cast<HFONT>(m_hObject); }
    static CFont* FromHandle(HFONT hFont) { return static_cast<CFont*>(CGdiObject::FromHandle(hFont, GetThisClass())); }

    // 0 when the system makes no such font, or while this object has one.
    BOOL CreateFontIndirect(const LOGFONTA* lpLogFont);
    BOOL CreateFont(int nHeight, int nWidth, int nEscapement, int nOrientation, int nWeight, BYTE bItalic, BYTE bUnderline,
                    BYTE cStrikeOut, BYTE nCharSet, BYTE nOutPrecision, BYTE nClipPrecision, BYTE nQuality, BYTE nPitchAndFamily,
                    LPCSTR lpszFacename);
    // Heights in tenths of a point, for the given DC or the display.
    BOOL CreatePointFont(int nPointSize, LPCSTR lpszFaceName, CDC* pDC = nullptr);
    BOOL CreatePointFontIndirect(const LOGFONTA* lpLogFont, CDC* pDC = nullptr);
    // 0 without a font.
    int GetLogFont(LOGFONTA* pLogFont) const;
};

class ORVIK_API CBitmap : public CGdiObject {
    DECLARE_DYNCREATE(CBitmap)

public:
    CBitmap() = default;
    operator HBITMAP() const { return static_cast<HBITMAP>(m_hObject); }
    static CBitmap* FromHandle(HBITMAP hBitmap) { return static_cast<CBitmap*>(CGdiObject::FromHandle(hBitmap, GetThisClass())); }

    BOOL CreateBitmap(int nWidth, int nHeight, UINT nPlanes, UINT nBitcount, const void* lpBits);
    BOOL CreateCompatibleBitmap(CDC* pDC, int nWidth, int nHeight);
    int GetBitmap(BITMAP* pBitMap) const { return GetObject(sizeof(BITMAP), pBitMap); }
};

class ORVIK_API CRgn : public CGdiObject {
    DECLARE_DYNCREATE(CRgn)

public:
    CRgn() = default;
    operator HRGN() const { return static_cast<HRGN>(m_hObject); }
    static CRgn* FromHandle(HRGN hRgn) { return static_cast<CRgn*>(CGdiObject::FromHandle(hRgn, GetThisClass())); }

    BOOL CreateRectRgn(int x1, int y1, int x2, int y2);
    BOOL CreateRectRgnIndirect(LPCRECT lpRect);
    void SetRectRgn(int x1, int y1, int x2, int y2) { ::SetRectRgn(*this, x1, y1, x2, y2); }
    void SetRectRgn(LPCRECT lpRect) { SetRectRgn(lpRect->left, lpRect->top, lpRect->right, lpRect->bottom); }
    int CombineRgn(const CRgn* pRgn1, const CRgn* pRgn2, int nCombineMode);
    int CopyRgn(const CRgn* pRgnSrc) { return CombineRgn(pRgnSrc, nullptr, RGN_COPY); }
    BOOL EqualRgn(const CRgn* pRgn) const { return ::EqualRgn(*this, *pRgn); }
    int OffsetRgn(int x, int y) { return ::OffsetRgn(*this, x, y); }
    int OffsetRgn(POINT point) { return OffsetRgn(point.x, point.y); }
    int GetRgnBox(LPRECT lpRect) const { return ::GetRgnBox(*this, lpRect); }
    BOOL PtInRegion(int x, int y) const { return ::PtInRegion(*this, x, y); }
    BOOL PtInRegion(POINT point) const { return PtInRegion(point.x, point.y); }
    BOOL RectInRegion(LPCRECT lpRect) const { return ::RectInRegion(*this, lpRect); }
};
