// Values of the user-interface classes: the toolkit's rectangle of doubles and the framework's font.
#include "afx/gdi.h"
#include "propdb/property_db.h"
#include "toolkit/bcgp_rect.h"

// Left and right come before top and bottom, unlike in a RECT: the stored order has always been this.
BOOL CPropertyDB::SetValue(const char* key, const CBCGPRect& value) {
    CDoubleArray array;
    for (const double part : {value.left, value.right, value.top, value.bottom}) array.Add(part);
    return SetValue(key, array);
}

BOOL CPropertyDB::GetValue(const char* key, CBCGPRect& value) const {
    CDoubleArray array;
    array.SetSize(1);  // empty afterwards only if an array without elements is stored
    if (!GetValue(key, array) && !array.IsEmpty()) return FALSE;
    const double left = array[0], right = array[1], top = array[2], bottom = array[3];
    value.left = left;
    value.right = right;
    value.top = top;
    value.bottom = bottom;
    return TRUE;
}

BOOL CPropertyDB::SetValue(const char* key, const CFont& value) {
    LOGFONTA description{};
    if (!::GetObjectA(value.GetSafeHandle(), sizeof description, &description)) return FALSE;
    return SetValue(key, description);
}

BOOL CPropertyDB::GetValue(const char* key, CFont& value) const {
    LOGFONTA description{};
    if (!GetValue(key, description)) return FALSE;
    if (value.GetSafeHandle() && !value.DeleteObject()) return FALSE;
    return value.Attach(::CreateFontIndirectA(&description));
}
