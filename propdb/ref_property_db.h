// A property database that several holders share through IRefPropertyDB; it is deleted when the last one releases it.
// Keys, values and files are those of CPropertyDB. The user-interface thread only: the count is not atomic.
#pragma once

#include "propdb/property_db.h"

class ORVIK_API IRefPropertyDB : public virtual IPropertyDB {
public:
    ~IRefPropertyDB() override;
    // Both give the new count.
    virtual DWORD AddRef() = 0;
    virtual DWORD Release() = 0;
};

// Instances are made by derived classes, on the heap. Both paths to IPropertyDB lead to one and the same.
class ORVIK_API CRefPropertyDB : public CPropertyDB, public IRefPropertyDB {
public:
    // The tree is copied, and the count as it stands, on purpose; it does not start again at 0.
    CRefPropertyDB(const CRefPropertyDB& src);
    // The tree alone: the holders of this database stay as many as they are.
    CRefPropertyDB& operator=(const CRefPropertyDB& src);
    ~CRefPropertyDB() override;

    DWORD AddRef() override;
    // At 0 the object is deleted. Releasing at 0 already wraps to 4294967295 and deletes nothing.
    DWORD Release() override;

protected:
    CRefPropertyDB();  // counts from 0: the creator takes the first reference itself

private:
    DWORD m_nRefCount = 0;
};
