#include "frame/numeric_arrays.h"

IMPLEMENT_SERIAL(CFloatArray, CObject, 1)
IMPLEMENT_SERIAL(CDoubleArray, CObject, 1)
IMPLEMENT_SERIAL(CInt32Array, CObject, 1)
IMPLEMENT_SERIAL(CInt64Array, CObject, 1)

CFloatArray::CFloatArray() = default;
CFloatArray::~CFloatArray() = default;
void CFloatArray::Serialize(CArchive& ar) { CArray::Serialize(ar); }

CDoubleArray::CDoubleArray() = default;
CDoubleArray::~CDoubleArray() = default;
void CDoubleArray::Serialize(CArchive& ar) { CArray::Serialize(ar); }

CInt32Array::CInt32Array() = default;
CInt32Array::~CInt32Array() = default;
void CInt32Array::Serialize(CArchive& ar) { CArray::Serialize(ar); }

CInt64Array::CInt64Array() = default;
CInt64Array::~CInt64Array() = default;
void CInt64Array::Serialize(CArchive& ar) { CArray::Serialize(ar); }
