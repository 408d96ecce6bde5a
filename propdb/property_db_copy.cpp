// Copying between databases.
#include "afx/exception.h"
#include "propdb/property_db.h"
#include "propdb/property_key.h"

#include <string>

using orvik::detail::TextOrEmpty;

BOOL CPropertyDB::Copy(const CPropertyDB& src, const char* srcKey, const char* dstKey, int bFullKeys) {
    return Copy(static_cast<const IPropertyDB*>(&src), srcKey, dstKey, bFullKeys);
}

BOOL CPropertyDB::OverlayCopy(const CPropertyDB& src, const char* srcKey, const char* dstKey, int bFullKeys) {
    return OverlayCopy(static_cast<const IPropertyDB*>(&src), srcKey, dstKey, bFullKeys);
}

BOOL CPropertyDB::Copy(const IPropertyDB* src, const char* srcKey, const char* dstKey, int bFullKeys) {
    if (!src || src == static_cast<const IPropertyDB*>(this)) return src != nullptr;
    RemoveAll();
    return OverlayCopy(src, srcKey, dstKey, bFullKeys);
}

BOOL CPropertyDB::OverlayCopy(const IPropertyDB* src, const char* srcKey, const char* dstKey, int bFullKeys) {
    if (!src) return FALSE;
    std::string prefix(TextOrEmpty(dstKey));
    if (dstKey) {
        if (prefix.empty()) AfxThrowInvalidArgException();
        if (prefix.back() != '.') prefix += '.';
    }
    if (!srcKey && !bFullKeys) AfxThrowInvalidArgException();  // nothing to leave out of the keys

    const std::string_view selected = TextOrEmpty(srcKey);
    CStringArray keys;
    src->EnumAll(keys);
    for (INT_PTR index = 0; index < keys.GetSize(); ++index) {
        const std::string_view key = keys[index].GetView();
        if (!key.starts_with(selected)) continue;
        size_t from = 0;
        if (!bFullKeys) {
            if (key.size() > selected.size() && key[selected.size()] == '.') {
                from = selected.size() + 1;
            } else {
                // A key that the text names in part, or a value that it names exactly, keeps its last segment.
                const size_t dot = key.substr(0, selected.size()).rfind('.');
                if (dot == key.npos) AfxThrowInvalidArgException();
                from = dot + 1;
            }
        }
        const std::string target = prefix + std::string(key.substr(from));
        SetValue(target.c_str(), src->GetValueObject(keys[index], 1), bFullKeys ? 0 : 1);
    }
    m_bModified = TRUE;
    return TRUE;
}
