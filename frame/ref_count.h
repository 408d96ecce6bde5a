// An intrusive reference count, mixed into classes whose objects are shared.
// One thread at a time: the count is not atomic. The last Release destroys the object; nobody else may.
#pragma once

#include "platform/win32.h"

class ORVIK_API IRefCount {
public:
    // Both give the new count.
    virtual DWORD AddRef() = 0;
    virtual DWORD Release() = 0;

protected:
    ~IRefCount() = default;
};

// A virtual base of IRefCount, so that a class that reaches it through several bases still holds one counter.
class ORVIK_API CRefCount : public virtual IRefCount {
public:
    CRefCount();  // counts from 0: the creator takes the first reference itself
    // A copy inherits the count as it stands, on purpose; it does not start again at 0.
    CRefCount(const CRefCount& other);
    CRefCount& operator=(const CRefCount& other);
    virtual ~CRefCount();

    DWORD AddRef() override;
    // At 0 the object is deleted. Releasing at 0 already wraps to 4294967295 and deletes nothing.
    DWORD Release() override;

private:
    DWORD m_nRefCount = 0;
};
