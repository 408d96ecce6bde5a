// The objects a property tree is made of: nodes and the eight kinds of value. Internal. Pure functions.
// Every node is exactly a CMapStringToOb and every stored value exactly one of the eight classes, because the database makes them
// all itself; only what callers hand in may be of a derived class.
#pragma once

#include "afx/array.h"
#include "afx/collections.h"
#include "frame/numeric_arrays.h"

#include <string_view>

namespace orvik::detail {
// A node that files can hold lies at most this many segments deep: in XML the root element and the value itself nest as well.
constexpr size_t kMaxFileDepth = 255;

inline CMapStringToOb* AsNode(CObject* object) {
    return object && object->GetRuntimeClass() == &CMapStringToOb::classCMapStringToOb ? static_cast<CMapStringToOb*>(object)
                                                                                       : nullptr;
}
inline const CMapStringToOb* AsNode(const CObject* object) { return AsNode(const_cast<CObject*>(object)); }

// Calls visit with the null pointer of the value's class, as an argument that chooses among templates; false for another class.
// The order is that of the database's tests. The classes are compared by their data: asking each for it costs more than all the
// rest.
template <class Visit>
bool WithValueClass(const CRuntimeClass* known, Visit visit) {
    if (known == &CStringArray::classCStringArray) return visit(static_cast<CStringArray*>(nullptr)), true;
    if (known == &CByteArray::classCByteArray) return visit(static_cast<CByteArray*>(nullptr)), true;
    if (known == &CWordArray::classCWordArray) return visit(static_cast<CWordArray*>(nullptr)), true;
    if (known == &CDWordArray::classCDWordArray) return visit(static_cast<CDWordArray*>(nullptr)), true;
    if (known == &CFloatArray::classCFloatArray) return visit(static_cast<CFloatArray*>(nullptr)), true;
    if (known == &CDoubleArray::classCDoubleArray) return visit(static_cast<CDoubleArray*>(nullptr)), true;
    if (known == &CInt64Array::classCInt64Array) return visit(static_cast<CInt64Array*>(nullptr)), true;
    if (known == &CInt32Array::classCInt32Array) return visit(static_cast<CInt32Array*>(nullptr)), true;
    return false;
}
inline bool IsValueClass(const CRuntimeClass* known) {
    return WithValueClass(known, [](auto*) {});
}

// The one of the eight classes that the object is of or derives from; null for anything else.
inline const CRuntimeClass* ValueClassOf(const CObject* object) {
    for (const CRuntimeClass* known = object ? object->GetRuntimeClass() : nullptr; known;
         known = known->m_pfnGetBaseClass ? known->m_pfnGetBaseClass() : nullptr)
        if (IsValueClass(known)) return known;
    return nullptr;
}

// Calls visit(name, child) for every entry of the node, in the order in which they came; children may be null.
template <class Visit>
void ForEachChild(const CMapStringToOb& node, Visit visit) {
    for (POSITION at = node.GetStartPosition(); at;) {
        std::string_view name;
        CObject* child = nullptr;
        node.GetNextAssoc(at, name, child);
        visit(name, child);
    }
}
}  // namespace orvik::detail
