#include "afx/gdi.h"

#include <utility>

IMPLEMENT_DYNCREATE(CGdiObject, CObject)
IMPLEMENT_DYNCREATE(CFont, CGdiObject)

CGdiObject::~CGdiObject() { DeleteObject(); }

BOOL CGdiObject::Attach(HGDIOBJ hObject) {
    if (hObject == nullptr || m_hObject != nullptr) return FALSE;
    m_hObject = hObject;
    return TRUE;
}

HGDIOBJ CGdiObject::Detach() { return std::exchange(m_hObject, nullptr); }

BOOL CGdiObject::DeleteObject() {
    const HGDIOBJ object = Detach();
    return object != nullptr && ::DeleteObject(object);
}

int CGdiObject::GetObject(int nCount, LPVOID lpObject) const {
    return m_hObject != nullptr ? ::GetObjectA(m_hObject, nCount, lpObject) : 0;
}

BOOL CFont::CreateFontIndirect(const LOGFONTA* lpLogFont) {
    if (lpLogFont == nullptr || m_hObject != nullptr) return FALSE;
    return Attach(::CreateFontIndirectA(lpLogFont));
}

int CFont::GetLogFont(LOGFONTA* pLogFont) const { return GetObject(sizeof(LOGFONTA), pLogFont); }
