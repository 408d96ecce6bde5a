#include "propdb/property_db.h"

#include "propdb/property_tree.h"

#include <vector>

IPropertyDB::~IPropertyDB() = default;

CPropertyDB::CPropertyDB() = default;

CPropertyDB::CPropertyDB(const CPropertyDB& src) : IPropertyDB(), CObject() {
    CPropertyDB::OverlayCopy(&src, nullptr, nullptr, 1);
}

CPropertyDB& CPropertyDB::operator=(const CPropertyDB& src) {
    if (this == &src) return *this;
    RemoveAll();
    OverlayCopy(&src, nullptr, nullptr, 1);
    return *this;
}

CPropertyDB::~CPropertyDB() {
    CPropertyDB::RemoveAll();
    for (CObject* const object : m_replaced) DeleteObject(object);
}

CString CPropertyDB::GetLoadFilePath() const { return m_strFilePath; }

CString CPropertyDB::GetFileName(int bWithExtension) const {
    std::string_view name = m_strFilePath.GetView();
    name = name.substr(name.find_last_of("\\/") + 1);  // npos + 1 is 0
    if (!bWithExtension) name = name.substr(0, name.rfind('.'));
    return CString(name);
}

BOOL CPropertyDB::IsEmpty() const { return m_root.IsEmpty(); }
BOOL CPropertyDB::IsModified() const { return m_bModified; }
BOOL CPropertyDB::GetErrorState() const { return m_bError; }
void CPropertyDB::ResetErrorState(int value) { m_bError = value; }

void CPropertyDB::RemoveAll() {
    DeleteChildren(m_root);
    m_bModified = TRUE;
}

void CPropertyDB::DeleteObject(CObject* object) {
    if (CMapStringToOb* const node = orvik::detail::AsNode(object)) DeleteChildren(*node);
    delete object;
}

// Works down the tree with a list of its own: a key may name more levels than the call stack has room for.
void CPropertyDB::DeleteChildren(CMapStringToOb& top) {
    std::vector<CMapStringToOb*> nodes;
    const auto take = [&nodes](std::string_view, CObject* child) {
        if (CMapStringToOb* const node = orvik::detail::AsNode(child))
            nodes.push_back(node);
        else
            delete child;
    };
    orvik::detail::ForEachChild(top, take);
    top.RemoveAll();
    while (!nodes.empty()) {
        CMapStringToOb* const node = nodes.back();
        nodes.pop_back();
        orvik::detail::ForEachChild(*node, take);
        delete node;
    }
}
