// Growing arrays of plain numbers that archives and property databases store by class.
// One thread at a time for one array. Archive form: the count, then the numbers as raw little-endian bytes. A file that ends
// before the announced numbers raises the archive exception for the end of the file.
#pragma once

#include "afx/array.h"

class ORVIK_API CFloatArray : public CArray<float, const float&> {
    DECLARE_SERIAL(CFloatArray)

public:
    CFloatArray();
    ~CFloatArray() override;
    void Serialize(CArchive& ar) override;
};

class ORVIK_API CDoubleArray : public CArray<double, const double&> {
    DECLARE_SERIAL(CDoubleArray)

public:
    CDoubleArray();
    ~CDoubleArray() override;
    void Serialize(CArchive& ar) override;
};

class ORVIK_API CInt32Array : public CArray<int, const int&> {
    DECLARE_SERIAL(CInt32Array)

public:
    CInt32Array();
    ~CInt32Array() override;
    void Serialize(CArchive& ar) override;
};

class ORVIK_API CInt64Array : public CArray<__int64, const __int64&> {
    DECLARE_SERIAL(CInt64Array)

public:
    CInt64Array();
    ~CInt64Array() override;
    void Serialize(CArchive& ar) override;
};
