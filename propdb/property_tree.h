// The objects a property tree is made of: nodes and the eight kinds of value. Internal. Pure functions.
// Every node is exactly a CMapStringToOb and every stored value exactly one of the eight classes, because the database makes them
// all itself; only what callers hand in may be of a derived class.
#pragma once

#include "afx/array.h"
#include "afx/collections.h"
#include "frame/numeric_arrays.h"

#include <string_view>
#include <type_traits>

namespace orvik::detail {
// A node that files can hold lies at most this many segments deep: in XML the root element and the value itself nest as well.
constexpr size_t kMaxFileDepth = 255;

inline CMapStringToOb* AsNode(CObject* object) {
    return object && object->GetRuntimeClass() == RUNTIME_CLASS(CMapStringToOb) ? static_cast<CMapStringToOb*>(object) : nullptr;
}
inline const CMapStringToOb* AsNode(const CObject* object) { return AsNode(const_cast<CObject*>(object)); }

// The null pointer of the value's class, as an argument that chooses among templates; the order is that of the database's tests.
template <class Visit>
auto WithValueClass(const CRuntimeClass* known, Visit visit) {
    if (known == RUNTIME_CLASS(CStringArray)) return visit(static_cast<CStringArray*>(nullptr));
    if (known == RUNTIME_CLASS(CByteArray)) return visit(static_cast<CByteArray*>(nullptr));
    if (known == RUNTIME_CLASS(CWordArray)) return visit(static_cast<CWordArray*>(nullptr));
    if (known == RUNTIME_CLASS(CDWordArray)) return visit(static_cast<CDWordArray*>(nullptr));
    if (known == RUNTIME_CLASS(CFloatArray)) return visit(static_cast<CFloatArray*>(nullptr));
    if (known == RUNTIME_CLASS(CDoubleArray)) return visit(static_cast<CDoubleArray*>(nullptr));
    if (known == RUNTIME_CLASS(CInt64Array)) return visit(static_cast<CInt64Array*>(nullptr));
    return visit(static_cast<CInt32Array*>(nullptr));
}

inline bool IsValueClass(const CRuntimeClass* known) {
    return WithValueClass(known, [known](auto* none) { return known == RUNTIME_CLASS(std::remove_pointer_t<decltype(none)>); });
}

// The one of the eight classes that the object is of or derives from; null for anything else.
inline const CRuntimeClass* ValueClassOf(const CObject* object) {
    const CRuntimeClass* const classes[] = {RUNTIME_CLASS(CStringArray), RUNTIME_CLASS(CByteArray),  RUNTIME_CLASS(CWordArray),
                                            RUNTIME_CLASS(CDWordArray),  RUNTIME_CLASS(CFloatArray), RUNTIME_CLASS(CDoubleArray),
                                            RUNTIME_CLASS(CInt64Array),  RUNTIME_CLASS(CInt32Array)};
    if (!object) return nullptr;
    const CRuntimeClass* const own = object->GetRuntimeClass();
    for (const CRuntimeClass* known : classes)
        if (own == known) return known;
    for (const CRuntimeClass* known : classes)
        if (object->IsKindOf(known)) return known;
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
