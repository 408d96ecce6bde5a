#include "afx/gdi.h"

#include <cstdlib>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <utility>

#include "afx/dc.h"
#include "afx/exception.h"
#include "afx/temporary_map.h"

IMPLEMENT_DYNCREATE(CGdiObject, CObject)
IMPLEMENT_DYNCREATE(CPen, CGdiObject)
IMPLEMENT_DYNCREATE(CBrush, CGdiObject)
IMPLEMENT_DYNCREATE(CFont, CGdiObject)
IMPLEMENT_DYNCREATE(CBitmap, CGdiObject)
IMPLEMENT_DYNCREATE(CRgn, CGdiObject)

namespace {
orvik::detail::OwnerMap<HGDIOBJ, CGdiObject>& ObjectOwners() {
    // Never destroyed: static objects of other files end later.
    static auto& s_owners = *new orvik::detail::OwnerMap<HGDIOBJ, CGdiObject>;
    return s_owners;
}
orvik::detail::TemporaryRing<CGdiObject>& TemporaryObjects() {
    thread_local orvik::detail::TemporaryRing<CGdiObject> t_objects;
    return t_objects;
}
void Need(BOOL made) {
    if (!made) AfxThrowResourceException();
}
}  // namespace

CGdiObject::~CGdiObject() {
    if (!m_temporary) DeleteObject();
}

CGdiObject* CGdiObject::FromHandle(HGDIOBJ hObject) { return FromHandle(hObject, GetThisClass()); }

CGdiObject* CGdiObject::FromHandle(HGDIOBJ hObject, CRuntimeClass* wanted) {
    if (hObject == nullptr) return nullptr;
    CGdiObject* owner = ObjectOwners().Find(hObject);
    if (owner != nullptr && owner->IsKindOf(wanted)) return owner;
    return TemporaryObjects().Get(
        [&](const CGdiObject& object) { return object.m_hObject == hObject && object.IsKindOf(wanted); },
        [&] {
            auto made = std::unique_ptr<CGdiObject>(static_cast<CGdiObject*>(wanted->CreateObject()));
            made->m_hObject = hObject;
            made->m_temporary = true;
            return made;
        });
}

void CGdiObject::DeleteTempMap() { TemporaryObjects().Clear(); }

BOOL CGdiObject::Attach(HGDIOBJ hObject) {
    if (hObject == nullptr || m_hObject != nullptr) return FALSE;
    m_hObject = hObject;
    ObjectOwners().Set(hObject, this);
    return TRUE;
}

HGDIOBJ CGdiObject::Detach() {
    if (m_hObject != nullptr && !m_temporary) ObjectOwners().Remove(m_hObject, this);
    return std::exchange(m_hObject, nullptr);
}

BOOL CGdiObject::DeleteObject() {
    const HGDIOBJ object = Detach();
    return object != nullptr && ::DeleteObject(object);
}

int CGdiObject::GetObject(int nCount, LPVOID lpObject) const {
    return m_hObject != nullptr ? ::GetObjectA(m_hObject, nCount, lpObject) : 0;
}

CPen::CPen(int nPenStyle, int nWidth, COLORREF crColor) { Need(CreatePen(nPenStyle, nWidth, crColor)); }

BOOL CPen::CreatePen(int nPenStyle, int nWidth, COLORREF crColor) {
    return m_hObject == nullptr && Attach(::CreatePen(nPenStyle, nWidth, crColor));
}

BOOL CPen::CreatePen(int nPenStyle, int nWidth, const LOGBRUSH* pLogBrush, int nStyleCount, const DWORD* lpStyle) {
    return m_hObject == nullptr && Attach(::ExtCreatePen(static_cast<DWORD>(nPenStyle), static_cast<DWORD>(nWidth), pLogBrush,
                                                         static_cast<DWORD>(nStyleCount), lpStyle));
}

BOOL CPen::CreatePenIndirect(const LOGPEN* lpLogPen) { return m_hObject == nullptr && Attach(::CreatePenIndirect(lpLogPen)); }

CBrush::CBrush(COLORREF crColor) { Need(CreateSolidBrush(crColor)); }
CBrush::CBrush(int nIndex, COLORREF crColor) { Need(CreateHatchBrush(nIndex, crColor)); }
CBrush::CBrush(CBitmap* pBitmap) { Need(CreatePatternBrush(pBitmap)); }

BOOL CBrush::CreateSolidBrush(COLORREF crColor) { return m_hObject == nullptr && Attach(::CreateSolidBrush(crColor)); }
BOOL CBrush::CreateHatchBrush(int nIndex, COLORREF crColor) {
    return m_hObject == nullptr && Attach(::CreateHatchBrush(nIndex, crColor));
}
BOOL CBrush::CreateBrushIndirect(const LOGBRUSH* lpLogBrush) {
    return m_hObject == nullptr && Attach(::CreateBrushIndirect(lpLogBrush));
}
BOOL CBrush::CreatePatternBrush(CBitmap* pBitmap) {
    return m_hObject == nullptr && pBitmap != nullptr && Attach(::CreatePatternBrush(*pBitmap));
}
BOOL CBrush::CreateSysColorBrush(int nIndex) { return Attach(::GetSysColorBrush(nIndex)); }

BOOL CFont::CreateFontIndirect(const LOGFONTA* lpLogFont) {
    if (lpLogFont == nullptr || m_hObject != nullptr) return FALSE;
    return Attach(::CreateFontIndirectA(lpLogFont));
}

BOOL CFont::CreateFont(int nHeight, int nWidth, int nEscapement, int nOrientation, int nWeight, BYTE bItalic, BYTE bUnderline,
                       BYTE cStrikeOut, BYTE nCharSet, BYTE nOutPrecision, BYTE nClipPrecision, BYTE nQuality,
                       BYTE nPitchAndFamily, LPCSTR lpszFacename) {
    return m_hObject == nullptr &&
           Attach(::CreateFontA(nHeight, nWidth, nEscapement, nOrientation, nWeight, bItalic, bUnderline, cStrikeOut, nCharSet,
                                nOutPrecision, nClipPrecision, nQuality, nPitchAndFamily, lpszFacename));
}

BOOL CFont::CreatePointFont(int nPointSize, LPCSTR lpszFaceName, CDC* pDC) {
    LOGFONTA font = {};
    font.lfHeight = nPointSize;
    font.lfCharSet = DEFAULT_CHARSET;
    if (lpszFaceName != nullptr)
        for (int i = 0; i < LF_FACESIZE - 1 && lpszFaceName[i] != 0; ++i) font.lfFaceName[i] = lpszFaceName[i];
    return CreatePointFontIndirect(&font, pDC);
}

BOOL CFont::CreatePointFontIndirect(const LOGFONTA* lpLogFont, CDC* pDC) {
    constexpr int kTenthsPerInch = 720;
    constexpr int kDisplayDots = 96;
    if (lpLogFont == nullptr) return FALSE;
    LOGFONTA font = *lpLogFont;
    const int dots = pDC != nullptr ? pDC->GetDeviceCaps(LOGPIXELSY) : kDisplayDots;
    font.lfHeight = -std::abs(::MulDiv(font.lfHeight, dots, kTenthsPerInch));
    return CreateFontIndirect(&font);
}

int CFont::GetLogFont(LOGFONTA* pLogFont) const { return GetObject(sizeof(LOGFONTA), pLogFont); }

BOOL CBitmap::CreateBitmap(int nWidth, int nHeight, UINT nPlanes, UINT nBitcount, const void* lpBits) {
    return m_hObject == nullptr && Attach(::CreateBitmap(nWidth, nHeight, nPlanes, nBitcount, lpBits));
}

BOOL CBitmap::CreateCompatibleBitmap(CDC* pDC, int nWidth, int nHeight) {
    return m_hObject == nullptr && pDC != nullptr && Attach(::CreateCompatibleBitmap(*pDC, nWidth, nHeight));
}

BOOL CRgn::CreateRectRgn(int x1, int y1, int x2, int y2) {
    return m_hObject == nullptr && Attach(::CreateRectRgn(x1, y1, x2, y2));
}

BOOL CRgn::CreateRectRgnIndirect(LPCRECT lpRect) { return m_hObject == nullptr && Attach(::CreateRectRgnIndirect(lpRect)); }

int CRgn::CombineRgn(const CRgn* pRgn1, const CRgn* pRgn2, int nCombineMode) {
    return ::CombineRgn(*this, *pRgn1, pRgn2 != nullptr ? static_cast<HRGN>(*pRgn2) : nullptr, nCombineMode);
}
