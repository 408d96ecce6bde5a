// GDI objects behind C++ objects, which own them. One thread at a time for one object.
#pragma once

#include "afx/object.h"

class ORVIK_API CGdiObject : public CObject {
    DECLARE_DYNCREATE(CGdiObject)

public:
    CGdiObject() = default;
    ~CGdiObject() override { DeleteObject(); }

    HGDIOBJ m_hObject = nullptr;
    HGDIOBJ GetSafeHandle() const { return m_hObject; }
    operator HGDIOBJ() const { return m_hObject; }

    // 0 for null, and while this object has a GDI object.
    BOOL Attach(HGDIOBJ hObject);
    HGDIOBJ Detach();
    // 0 when there is nothing to delete or the system refuses; there is no GDI object afterwards either way.
    BOOL DeleteObject();
    // The object's description, at most nCount bytes: the bytes copied, 0 without an object.
    int GetObject(int nCount, LPVOID lpObject) const;
};

class ORVIK_API CFont : public CGdiObject {
    DECLARE_DYNCREATE(CFont)

public:
    CFont() = default;
    operator HFONT() const { return static_cast<HFONT>(m_hObject); }

    // 0 when the system makes no such font, or while this object has one.
    BOOL CreateFontIndirect(const LOGFONTA* lpLogFont);
    // 0 without a font.
    int GetLogFont(LOGFONTA* pLogFont) const;
};
