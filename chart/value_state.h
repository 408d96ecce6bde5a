// The value behind one row of a value list, and the row's colour.
// User-interface thread, since references are counted without a lock. A state holds one reference to its value while it lives.
#pragma once

#include "afx/object.h"
#include "frame/ref_count.h"

// What the list needs of the host's value object; the host's own interface may add operations behind this one.
class IVModelValue : public virtual IRefCount {
public:
    virtual COLORREF GetColor() = 0;

protected:
    ~IVModelValue() = default;
};

class ORVIK_API CValueState : public CObject {
public:
    // Takes a reference to the value, and its colour of this moment. A null value is black.
    explicit CValueState(IVModelValue* value);
    ~CValueState() override;
    CValueState(const CValueState&) = delete;
    CValueState& operator=(const CValueState&) = delete;

    IVModelValue* GetVModelValue() const { return m_pValue; }
    COLORREF GetColor() const { return m_color; }
    void SetColor(COLORREF color) { m_color = color; }

private:
    IVModelValue* m_pValue;
    COLORREF m_color = RGB(0, 0, 0);
};
