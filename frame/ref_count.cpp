#include "frame/ref_count.h"

CRefCount::CRefCount() = default;
// IRefCount holds nothing, so the virtual base starts afresh without loss.
CRefCount::CRefCount(const CRefCount& other) : IRefCount(), m_nRefCount(other.m_nRefCount) {}
CRefCount& CRefCount::operator=(const CRefCount& other) {
    m_nRefCount = other.m_nRefCount;
    return *this;
}
CRefCount::~CRefCount() = default;

DWORD CRefCount::AddRef() { return ++m_nRefCount; }

DWORD CRefCount::Release() {
    const DWORD left = --m_nRefCount;
    if (left == 0) delete this;
    return left;
}
