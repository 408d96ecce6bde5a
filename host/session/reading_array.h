// Times, or the values of a channel, of a session in memory: in an array of its own, or where a database keeps them, so that a session
// that was loaded is in memory once. What is shared must outlast it and stay as it is; it is copied before anything changes it.
#pragma once

#include <type_traits>

#include "frame/numeric_arrays.h"

template <class Array>  // CInt64Array, CDoubleArray
class ReadingArray {
public:
    using Element = std::remove_cvref_t<decltype(Array().GetAt(0))>;

    ReadingArray() = default;
    ReadingArray(const ReadingArray& other) : m_shared(other.m_shared) { m_own.Copy(other.m_own); }
    ReadingArray& operator=(const ReadingArray&) = delete;

    void Share(const Array& kept) { m_shared = &kept; }
    bool IsShared() const { return m_shared != nullptr; }

    const Array& Whole() const { return m_shared != nullptr ? *m_shared : m_own; }
    INT_PTR GetSize() const { return Whole().GetSize(); }
    Element GetAt(INT_PTR at) const { return Whole().GetAt(at); }
    const Element* GetData() const { return Whole().GetData(); }

    void Add(Element element) { Own().Add(element); }
    void SetAt(INT_PTR at, Element element) { Own().SetAt(at, element); }

private:
    Array& Own() {
        if (m_shared != nullptr) m_own.Copy(*m_shared);
        m_shared = nullptr;
        return m_own;
    }

    Array m_own;
    const Array* m_shared = nullptr;
};
