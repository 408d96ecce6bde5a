// The archive form: a word of 0, then the root as a CMapStringToOb stores itself. The bytes are those that the classes' own
// Serialize would write. The tree is walked here instead, because a file can nest deeper than the call stack, name one object
// twice or bring objects of other classes, and because entries without an object stay out of files.
#include "afx/archive.h"
#include "afx/exception.h"
#include "propdb/property_db.h"
#include "propdb/property_tree.h"

#include <memory>
#include <vector>

using orvik::detail::AsNode;
using orvik::detail::ForEachChild;
using orvik::detail::kMaxFileDepth;

namespace {
DWORD_PTR CountObjects(const CMapStringToOb& node) {
    DWORD_PTR count = 0;
    ForEachChild(node, [&count](std::string_view, const CObject* child) { count += child != nullptr; });
    return count;
}
}  // namespace

void CPropertyDB::Serialize(CArchive& ar) {
    WORD version = 0;
    if (ar.IsStoring()) {
        ar << version;
        StoreTree(ar);
    } else {
        ar >> version;
        m_bModified = TRUE;  // a load that fails half-way has changed the tree
        LoadTree(ar);
    }
    m_bModified = FALSE;
}

void CPropertyDB::StoreTree(CArchive& ar) {
    struct Level {
        const CMapStringToOb* node;
        POSITION at;
    };
    std::vector<Level> levels{{&m_root, m_root.GetStartPosition()}};
    ar.WriteCount(CountObjects(m_root));
    CString key;
    while (!levels.empty()) {
        Level& level = levels.back();
        if (!level.at) {
            levels.pop_back();
            continue;
        }
        CObject* child = nullptr;
        level.node->GetNextAssoc(level.at, key, child);
        if (!child) continue;
        // What lies deeper could not be loaded again.
        if (levels.size() > kMaxFileDepth) AfxThrowArchiveException(CArchiveException::genericException, ar.m_strFileName);
        ar << key;
        ar.WriteClass(child->GetRuntimeClass());
        ar.MapObject(child);
        if (const CMapStringToOb* const node = AsNode(child)) {
            ar.WriteCount(CountObjects(*node));
            levels.push_back({node, node->GetStartPosition()});
        } else {
            child->Serialize(ar);
        }
    }
}

// Adds to the tree as it reads, so that what was read before a failure stays. An entry that is there already is replaced.
void CPropertyDB::LoadTree(CArchive& ar) {
    struct Level {
        CMapStringToOb* node;
        DWORD_PTR left;
    };
    std::vector<Level> levels{{&m_root, ar.ReadCount()}};
    CString key;
    while (!levels.empty()) {
        Level& level = levels.back();
        if (level.left == 0) {
            levels.pop_back();
            continue;
        }
        --level.left;  // announced counts are not believed: each turn reads at least three bytes or raises
        ar >> key;
        DWORD tag = 0;
        UINT schema = 0;
        CRuntimeClass* const known = ar.ReadClass(nullptr, &schema, &tag);
        if (!known) {
            // A null entry is left out; an object met before would have two owners.
            if (tag != 0) AfxThrowArchiveException(CArchiveException::badIndex, ar.m_strFileName);
            continue;
        }
        if (schema != (known->m_wSchema & ~VERSIONABLE_SCHEMA))
            AfxThrowArchiveException(CArchiveException::badSchema, ar.m_strFileName);
        const bool isNode = known == RUNTIME_CLASS(CMapStringToOb);
        if (!isNode && !orvik::detail::IsValueClass(known))
            AfxThrowArchiveException(CArchiveException::badClass, ar.m_strFileName);
        if (isNode && levels.size() > kMaxFileDepth)
            AfxThrowArchiveException(CArchiveException::genericException, ar.m_strFileName);
        std::unique_ptr<CObject> object(isNode ? new CMapStringToOb(10) : known->CreateObject());
        ar.MapObject(nullptr);  // it takes its number, but nothing may refer to it
        if (!isNode) object->Serialize(ar);
        CObject*& entry = (*level.node)[key];
        DeleteObject(entry);
        entry = object.release();
        if (isNode) levels.push_back({static_cast<CMapStringToOb*>(entry), ar.ReadCount()});
    }
}
