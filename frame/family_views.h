// The view bases of the device families. Creating one dynamically asks the host's factory of the family for the real view.
// User-interface thread. CreateObject gives the factory's view, which the caller owns, or null: without a host, without such a
// family, or when the factory has no view.
#pragma once

#include "afx/view.h"

class ORVIK_API CAlderViewBase : public CView {
    DECLARE_DYNCREATE(CAlderViewBase)

protected:
    CAlderViewBase();
};

class ORVIK_API CBirchViewBase : public CView {
    DECLARE_DYNCREATE(CBirchViewBase)

protected:
    CBirchViewBase();
};

class ORVIK_API CCedarViewBase : public CView {
    DECLARE_DYNCREATE(CCedarViewBase)

protected:
    CCedarViewBase();
};

class ORVIK_API CModbusViewBase : public CView {
    DECLARE_DYNCREATE(CModbusViewBase)

protected:
    CModbusViewBase();
};

class ORVIK_API COPCClientViewBase : public CView {
    DECLARE_DYNCREATE(COPCClientViewBase)

protected:
    COPCClientViewBase();
};
