// The root of the framework's classes: run-time class information, dynamic creation by class or by name, serialisation.
// CObject has no state and may be used on any thread; the list of classes that can be found by name is locked inside.
// A CRuntimeClass is static data of the module that implements its class: it is found by name from that module's load to its
// unload.
#pragma once

#include "platform/win32.h"

class CArchive;
class CObject;

// What is known of a class at run time. A class without dynamic creation has no m_pfnCreateObject; one without serialisation has
// schema 0xFFFF.
struct ORVIK_API CRuntimeClass {
    LPCSTR m_lpszClassName;
    int m_nObjectSize;  // bytes
    UINT m_wSchema;     // the schema number of its archives, perhaps with VERSIONABLE_SCHEMA
    CObject* (*m_pfnCreateObject)();
    CRuntimeClass* (*m_pfnGetBaseClass)();
    CRuntimeClass* m_pNextClass;  // the list of classes found by name

    // A new object of the class, which the caller owns; null when the class cannot be created dynamically.
    CObject* CreateObject() const;
    static CObject* CreateObject(LPCSTR lpszClassName);

    // Non-zero for the class itself and for every class derived from pBaseClass.
    BOOL IsDerivedFrom(const CRuntimeClass* pBaseClass) const;

    // The serialisable class of that name in any loaded module, or null. The module loaded last wins.
    static CRuntimeClass* FromName(LPCSTR lpszClassName);

    // The class's part of an archive: schema, name length, name. Load returns null for a class that is not there and raises the
    // archive exception (badClass) for a name longer than 64 characters.
    void Store(CArchive& ar) const;
    static CRuntimeClass* Load(CArchive& ar, UINT* pwSchemaNum);
};

// Schema flag: the class reads older schemas itself (CArchive::GetObjectSchema).
#define VERSIONABLE_SCHEMA 0x80000000u

class ORVIK_API CObject {
public:
    virtual CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject();
    // Stores to or loads from the archive, as its mode says. The base class does nothing.
    virtual void Serialize(CArchive& ar);

    BOOL IsKindOf(const CRuntimeClass* pClass) const;
    // Non-zero when objects of the class can be stored by CArchive::WriteObject.
    BOOL IsSerializable() const;

    static CRuntimeClass* GetThisClass();
    static CRuntimeClass classCObject;

    // Objects have identity. A derived value type defines its own copying.
    CObject(const CObject&) = delete;
    CObject& operator=(const CObject&) = delete;

protected:
    CObject() = default;
};

// `object` if it is not null and of that class, else null.
ORVIK_API CObject* AfxDynamicDownCast(const CRuntimeClass* pClass, CObject* object);
inline const CObject* AfxDynamicDownCast(const CRuntimeClass* pClass, const CObject* object) {
    return AfxDynamicDownCast(pClass, const_cast<CObject*>(object));
}

// Makes a class known by name while this object lives; IMPLEMENT_SERIAL keeps one as static data of the module.
struct ORVIK_API AFX_CLASSINIT {
    explicit AFX_CLASSINIT(CRuntimeClass* pNewClass);
    ~AFX_CLASSINIT();
    AFX_CLASSINIT(const AFX_CLASSINIT&) = delete;
    AFX_CLASSINIT& operator=(const AFX_CLASSINIT&) = delete;

private:
    CRuntimeClass* m_class;
};

namespace orvik::detail {
// CArchive::ReadObject for code that does not know CArchive yet.
ORVIK_API CObject* ReadObject(CArchive& ar, const CRuntimeClass* expected);
}  // namespace orvik::detail

#define RUNTIME_CLASS(class_name) (class_name::GetThisClass())
#define DYNAMIC_DOWNCAST(class_name, object) (static_cast<class_name*>(AfxDynamicDownCast(RUNTIME_CLASS(class_name), object)))
#define STATIC_DOWNCAST(class_name, object) (static_cast<class_name*>(object))

#define DECLARE_DYNAMIC(class_name)         \
public:                                     \
    static CRuntimeClass class##class_name; \
    static CRuntimeClass* GetThisClass();   \
    CRuntimeClass* GetRuntimeClass() const override;

#define DECLARE_DYNCREATE(class_name) \
    DECLARE_DYNAMIC(class_name)       \
    static CObject* CreateObject();

// The extraction operator hands the object to its caller: `ar >> pointer`.
#define DECLARE_SERIAL(class_name)                                                                    \
    DECLARE_DYNCREATE(class_name)                                                                     \
    friend CArchive& operator>>(CArchive& ar, class_name*& object) {                                  \
        object = static_cast<class_name*>(orvik::detail::ReadObject(ar, class_name::GetThisClass())); \
        return ar;                                                                                    \
    }

#define IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, schema, create)                                     \
    CRuntimeClass class_name::class##class_name = {#class_name, static_cast<int>(sizeof(class_name)), schema,   \
                                                   create,      &base_class_name::GetThisClass,       nullptr}; \
    CRuntimeClass* class_name::GetThisClass() { return &class_name::class##class_name; }                        \
    CRuntimeClass* class_name::GetRuntimeClass() const { return GetThisClass(); }

#define IMPLEMENT_DYNAMIC(class_name, base_class_name) IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, nullptr)

#define IMPLEMENT_DYNCREATE(class_name, base_class_name)           \
    CObject* class_name::CreateObject() { return new class_name; } \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, &class_name::CreateObject)

#define IMPLEMENT_SERIAL(class_name, base_class_name, schema)                              \
    CObject* class_name::CreateObject() { return new class_name; }                         \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, schema, &class_name::CreateObject) \
    namespace {                                                                            \
    AFX_CLASSINIT g_register##class_name(class_name::GetThisClass());                      \
    }
