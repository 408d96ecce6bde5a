#include "afx/object.h"

#include "afx/class_list.h"

#include <cstring>

CRuntimeClass CObject::classCObject = {"CObject", static_cast<int>(sizeof(CObject)), 0xFFFF, nullptr, nullptr, nullptr};

CRuntimeClass* CObject::GetThisClass() { return &classCObject; }
CRuntimeClass* CObject::GetRuntimeClass() const { return GetThisClass(); }
CObject::~CObject() = default;
void CObject::Serialize(CArchive&) {}

BOOL CObject::IsKindOf(const CRuntimeClass* pClass) const { return GetRuntimeClass()->IsDerivedFrom(pClass); }
BOOL CObject::IsSerializable() const { return GetRuntimeClass()->m_wSchema != 0xFFFF; }

CObject* AfxDynamicDownCast(const CRuntimeClass* pClass, CObject* object) {
    return object != nullptr && object->IsKindOf(pClass) ? object : nullptr;
}

CObject* CRuntimeClass::CreateObject() const { return m_pfnCreateObject != nullptr ? m_pfnCreateObject() : nullptr; }

CObject* CRuntimeClass::CreateObject(LPCSTR lpszClassName) {
    const CRuntimeClass* found = FromName(lpszClassName);
    return found != nullptr ? found->CreateObject() : nullptr;
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* pBaseClass) const {
    const CRuntimeClass* walk = this;
    while (walk != pBaseClass) {
        if (walk->m_pfnGetBaseClass == nullptr) return FALSE;
        walk = walk->m_pfnGetBaseClass();
    }
    return TRUE;
}

namespace {
using orvik::detail::ClassListLock;
// Constant-initialised, so that classes can enter it from any module's static initialisation.
constinit CRuntimeClass* g_firstClass = nullptr;
}  // namespace

constinit std::atomic_flag orvik::detail::ClassListLock::s_taken = ATOMIC_FLAG_INIT;

CRuntimeClass* CRuntimeClass::FromName(LPCSTR lpszClassName) {
    if (lpszClassName == nullptr) return nullptr;
    const ClassListLock lock;
    for (CRuntimeClass* walk = g_firstClass; walk != nullptr; walk = walk->m_pNextClass)
        if (std::strcmp(walk->m_lpszClassName, lpszClassName) == 0) return walk;
    return nullptr;
}

AFX_CLASSINIT::AFX_CLASSINIT(CRuntimeClass* pNewClass) : m_class(pNewClass) {
    const ClassListLock lock;
    m_class->m_pNextClass = g_firstClass;
    g_firstClass = m_class;
}

AFX_CLASSINIT::~AFX_CLASSINIT() {
    const ClassListLock lock;
    for (CRuntimeClass** link = &g_firstClass; *link != nullptr; link = &(*link)->m_pNextClass) {
        if (*link != m_class) continue;
        *link = m_class->m_pNextClass;
        m_class->m_pNextClass = nullptr;
        return;
    }
}
