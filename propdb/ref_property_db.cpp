#include "propdb/ref_property_db.h"

IRefPropertyDB::~IRefPropertyDB() = default;

CRefPropertyDB::CRefPropertyDB() = default;
CRefPropertyDB::~CRefPropertyDB() = default;

CRefPropertyDB::CRefPropertyDB(const CRefPropertyDB& src)
    : IPropertyDB(), CPropertyDB(src), IRefPropertyDB(), m_nRefCount(src.m_nRefCount) {}

CRefPropertyDB& CRefPropertyDB::operator=(const CRefPropertyDB& src) {
    CPropertyDB::operator=(src);
    return *this;
}

DWORD CRefPropertyDB::AddRef() { return ++m_nRefCount; }

DWORD CRefPropertyDB::Release() {
    const DWORD left = --m_nRefCount;
    if (left == 0) delete this;
    return left;
}
