// The framework's growing array, and its typed arrays of texts, bytes, words and double words.
// One thread at a time for one array. An array owns its elements. Up to eight bytes of elements lie inside the object itself, so
// that arrays of one number take no memory of their own.
// An index outside the array raises the invalid-argument exception; so does a negative size.
#pragma once

#include "afx/archive.h"
#include "afx/block_memory.h"
#include "afx/exception.h"
#include "afx/object.h"
#include "afx/string.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

// Elements in an archive: raw bytes for plain data, texts by their own form. An element type of another kind has an overload of
// its own beside its class, or raises the not-supported exception. Loading fills elements that are there already.
template <class TYPE>
void SerializeElements(CArchive& ar, TYPE* elements, INT_PTR count) {
    if constexpr (std::is_trivially_copyable_v<TYPE>) {
        constexpr INT_PTR kBlock = 0x7FFF0000 / static_cast<INT_PTR>(sizeof(TYPE));
        while (count > 0) {
            const INT_PTR part = (std::min)(count, kBlock);
            const auto bytes = static_cast<UINT>(static_cast<size_t>(part) * sizeof(TYPE));
            if (ar.IsStoring())
                ar.Write(elements, bytes);
            else
                ar.EnsureRead(elements, bytes);
            elements += part;
            count -= part;
        }
    } else {
        AfxThrowNotSupportedException();
    }
}
ORVIK_API void SerializeElements(CArchive& ar, CString* elements, INT_PTR count);

template <class TYPE, class ARG_TYPE = const TYPE&>
class CArray : public CObject {
public:
    CArray() = default;
    ~CArray() override { RemoveAll(); }

    INT_PTR GetSize() const { return m_nSize; }
    INT_PTR GetCount() const { return m_nSize; }
    BOOL IsEmpty() const { return m_nSize == 0; }
    INT_PTR GetUpperBound() const { return static_cast<INT_PTR>(m_nSize) - 1; }
    // New elements are value-initialised: numbers are 0, texts empty. nGrowBy is accepted and not needed: growth is geometric.
    void SetSize(INT_PTR nNewSize, INT_PTR nGrowBy = -1);

    void FreeExtra() { Reallocate(m_nSize); }
    void RemoveAll();

    TYPE& ElementAt(INT_PTR nIndex) { return Data()[Checked(nIndex)]; }
    const TYPE& ElementAt(INT_PTR nIndex) const { return Data()[Checked(nIndex)]; }
    TYPE& GetAt(INT_PTR nIndex) { return ElementAt(nIndex); }
    const TYPE& GetAt(INT_PTR nIndex) const { return ElementAt(nIndex); }
    void SetAt(INT_PTR nIndex, ARG_TYPE newElement) { ElementAt(nIndex) = newElement; }
    TYPE& operator[](INT_PTR nIndex) { return ElementAt(nIndex); }
    const TYPE& operator[](INT_PTR nIndex) const { return ElementAt(nIndex); }

    // The elements, one after another; valid until the array changes its size. Not null, even when the array is empty.
    TYPE* GetData() { return Data(); }
    const TYPE* GetData() const { return Data(); }

    void SetAtGrow(INT_PTR nIndex, ARG_TYPE newElement);
    // The index of the new element. The argument may be an element of this array.
    INT_PTR Add(ARG_TYPE newElement);
    // The index of the first element appended.
    INT_PTR Append(const CArray& src);
    void Copy(const CArray& src);
    // Exchanges the contents; nothing is copied.
    void Swap(CArray& other) noexcept {
        static_assert(orvik::detail::kBytewiseMovable<TYPE>);
        std::swap(m_store, other.m_store);
        std::swap(m_nSize, other.m_nSize);
        std::swap(m_nMaxSize, other.m_nMaxSize);
    }
    // At an index behind the end the array is extended first.
    void InsertAt(INT_PTR nIndex, ARG_TYPE newElement, INT_PTR nCount = 1);
    void InsertAt(INT_PTR nStartIndex, const CArray* pNewArray);
    void RemoveAt(INT_PTR nIndex, INT_PTR nCount = 1);

    // Count and elements. A load replaces the contents. When the file ends early the archive exception (endOfFile) is raised; the
    // array then has the announced size, or, if that is far beyond what the file holds, the size of what was read.
    void Serialize(CArchive& ar) override;

private:
    static constexpr int kInline = sizeof(TYPE) <= 8 && alignof(TYPE) <= 8 ? static_cast<int>(8 / sizeof(TYPE)) : 0;
    static constexpr INT_PTR kMaxSize =
        std::min<INT_PTR>(0x7FFFFFFF, static_cast<INT_PTR>((static_cast<size_t>(-1) / 2) / sizeof(TYPE)));
    static_assert(alignof(TYPE) <= alignof(std::max_align_t));

    bool IsInline() const { return m_nMaxSize <= kInline; }
    TYPE* Data() { return kInline > 0 && IsInline() ? reinterpret_cast<TYPE*>(m_store.bytes) : m_store.heap; }
    const TYPE* Data() const { return const_cast<CArray*>(this)->Data(); }
    INT_PTR Checked(INT_PTR index) const {
        if (static_cast<size_t>(index) >= static_cast<size_t>(m_nSize)) AfxThrowInvalidArgException();
        return index;
    }
    static void Move(TYPE* from, INT_PTR count, TYPE* to);
    void Reallocate(INT_PTR capacity);
    void Grow(INT_PTR size);
    TYPE* OpenGap(INT_PTR index, INT_PTR count);

    union Store {
        TYPE* heap;
        alignas(8) unsigned char bytes[8];
    } m_store = {nullptr};
    int m_nSize = 0;
    int m_nMaxSize = kInline;
};

// Moves elements to raw memory that does not overlap them, leaving raw memory behind.
template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::Move(TYPE* from, INT_PTR count, TYPE* to) {
    if constexpr (orvik::detail::kBytewiseMovable<TYPE>) {
        if (count > 0)
            std::memcpy(static_cast<void*>(to), static_cast<const void*>(from), static_cast<size_t>(count) * sizeof(TYPE));
    } else {
        std::uninitialized_move_n(from, count, to);
        std::destroy_n(from, count);
    }
}

// Gives the elements room for exactly `capacity`, which holds them all.
template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::Reallocate(INT_PTR capacity) {
    if (capacity <= kInline) {
        if (IsInline()) {
            if constexpr (kInline == 0) return;
        } else {
            TYPE* old = m_store.heap;
            m_nMaxSize = kInline;
            Move(old, m_nSize, Data());
            std::free(static_cast<void*>(old));
        }
        return;
    }
    if (capacity == m_nMaxSize) return;
    const size_t bytes = static_cast<size_t>(capacity) * sizeof(TYPE);
    TYPE* fresh = nullptr;
    if constexpr (orvik::detail::kBytewiseMovable<TYPE>) {
        fresh = static_cast<TYPE*>(std::realloc(IsInline() ? nullptr : static_cast<void*>(m_store.heap), bytes));
        if (fresh == nullptr) AfxThrowMemoryException();
        if (IsInline()) Move(Data(), m_nSize, fresh);
    } else {
        fresh = static_cast<TYPE*>(std::malloc(bytes));
        if (fresh == nullptr) AfxThrowMemoryException();
        Move(Data(), m_nSize, fresh);
        if (!IsInline()) std::free(static_cast<void*>(m_store.heap));
    }
    m_store.heap = fresh;
    m_nMaxSize = static_cast<int>(capacity);
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::Grow(INT_PTR size) {
    if (size <= m_nMaxSize) return;
    if (size > kMaxSize) AfxThrowMemoryException();
    const INT_PTR half = static_cast<INT_PTR>(m_nMaxSize) + m_nMaxSize / 2;
    Reallocate((std::min)((std::max)({size, half, static_cast<INT_PTR>(4)}), kMaxSize));
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::RemoveAll() {
    std::destroy_n(Data(), m_nSize);
    m_nSize = 0;
    if (!IsInline()) {
        std::free(static_cast<void*>(m_store.heap));
        m_nMaxSize = kInline;
        m_store = {nullptr};
    }
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::SetSize(INT_PTR nNewSize, INT_PTR) {
    if (nNewSize < 0) AfxThrowInvalidArgException();
    if (nNewSize == 0) {
        RemoveAll();
        return;
    }
    if (nNewSize < m_nSize) {
        std::destroy_n(Data() + nNewSize, m_nSize - nNewSize);
    } else {
        if (nNewSize > kMaxSize) AfxThrowMemoryException();
        // The first size is taken as it is; arrays that go on growing do so geometrically.
        if (nNewSize > m_nMaxSize) m_nSize == 0 ? Reallocate(nNewSize) : Grow(nNewSize);
        std::uninitialized_value_construct_n(Data() + m_nSize, nNewSize - m_nSize);
    }
    m_nSize = static_cast<int>(nNewSize);
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::SetAtGrow(INT_PTR nIndex, ARG_TYPE newElement) {
    if (nIndex < 0) AfxThrowInvalidArgException();
    if (nIndex < m_nSize) {
        Data()[nIndex] = newElement;
        return;
    }
    TYPE copy(newElement);
    SetSize(nIndex + 1);
    Data()[nIndex] = std::move(copy);
}

template <class TYPE, class ARG_TYPE>
INT_PTR CArray<TYPE, ARG_TYPE>::Add(ARG_TYPE newElement) {
    if (m_nSize == m_nMaxSize) {
        TYPE copy(newElement);
        Grow(static_cast<INT_PTR>(m_nSize) + 1);
        new (static_cast<void*>(Data() + m_nSize)) TYPE(std::move(copy));
    } else {
        new (static_cast<void*>(Data() + m_nSize)) TYPE(newElement);
    }
    return m_nSize++;
}

template <class TYPE, class ARG_TYPE>
INT_PTR CArray<TYPE, ARG_TYPE>::Append(const CArray& src) {
    const INT_PTR first = m_nSize;
    const INT_PTR count = src.m_nSize;
    if (count == 0) return first;
    Grow(first + count);
    std::uninitialized_copy_n(src.Data(), count, Data() + first);
    m_nSize = static_cast<int>(first + count);
    return first;
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::Copy(const CArray& src) {
    if (this == &src) return;
    if (src.m_nSize > m_nMaxSize || m_nMaxSize / 2 > src.m_nSize) {
        RemoveAll();
        if (src.m_nSize == 0) return;
        Reallocate(src.m_nSize);
    } else {
        std::destroy_n(Data(), m_nSize);
        m_nSize = 0;
    }
    std::uninitialized_copy_n(src.Data(), src.m_nSize, Data());
    m_nSize = src.m_nSize;
}

// Makes `count` value-initialised elements at `index`, moving up what stands there.
template <class TYPE, class ARG_TYPE>
TYPE* CArray<TYPE, ARG_TYPE>::OpenGap(INT_PTR index, INT_PTR count) {
    const INT_PTR old = m_nSize;
    if (count > kMaxSize || (std::max)(index, old) > kMaxSize - count) AfxThrowMemoryException();
    SetSize((std::max)(index, old) + count);
    if (index < old) std::rotate(Data() + index, Data() + old, Data() + old + count);
    return Data() + index;
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::InsertAt(INT_PTR nIndex, ARG_TYPE newElement, INT_PTR nCount) {
    if (nIndex < 0 || nCount <= 0) AfxThrowInvalidArgException();
    const TYPE copy(newElement);
    std::fill_n(OpenGap(nIndex, nCount), nCount, copy);
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::InsertAt(INT_PTR nStartIndex, const CArray* pNewArray) {
    if (nStartIndex < 0 || pNewArray == nullptr) AfxThrowInvalidArgException();
    if (pNewArray == this) {
        CArray copy;
        copy.Copy(*this);
        InsertAt(nStartIndex, &copy);
        return;
    }
    if (pNewArray->m_nSize == 0) return;
    std::copy_n(pNewArray->Data(), pNewArray->m_nSize, OpenGap(nStartIndex, pNewArray->m_nSize));
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::RemoveAt(INT_PTR nIndex, INT_PTR nCount) {
    if (nIndex < 0 || nCount < 0 || nIndex > m_nSize || nCount > m_nSize - nIndex) AfxThrowInvalidArgException();
    TYPE* end = Data() + m_nSize;
    TYPE* left = std::move(Data() + nIndex + nCount, end, Data() + nIndex);
    std::destroy(left, end);
    m_nSize -= static_cast<int>(nCount);
}

template <class TYPE, class ARG_TYPE>
void CArray<TYPE, ARG_TYPE>::Serialize(CArchive& ar) {
    if (ar.IsStoring()) {
        ar.WriteCount(static_cast<DWORD_PTR>(m_nSize));
        SerializeElements(ar, Data(), m_nSize);
        return;
    }
    const DWORD_PTR count = ar.ReadCount();
    RemoveAll();
    // An element takes at least one byte of the file, plain data all of theirs. An announced size is believed as far as the file
    // can fill it, or as long as it costs little; beyond that the elements are read as they come, until the file ends.
    constexpr size_t kLeast = std::is_trivially_copyable_v<TYPE> ? sizeof(TYPE) : 1;
    constexpr DWORD_PTR kCheap = 256 * 1024 / sizeof(TYPE);
    const bool known = ar.GetBytesLeft() != static_cast<ULONGLONG>(-1);
    if (count <= kCheap || (known && count <= ar.GetBytesLeft() / kLeast)) {
        SetSize(static_cast<INT_PTR>(count));
        SerializeElements(ar, Data(), m_nSize);
        return;
    }
    for (DWORD_PTR have = 0; have < count;) {
        const DWORD_PTR part =
            (std::min)({count - have, kCheap, static_cast<DWORD_PTR>(known ? ar.GetBytesLeft() / kLeast : kCheap)});
        if (part == 0) AfxThrowArchiveException(CArchiveException::endOfFile, ar.m_strFileName);
        SetSize(static_cast<INT_PTR>(have + part));
        SerializeElements(ar, Data() + have, static_cast<INT_PTR>(part));
        have += part;
    }
}

// The typed arrays, found by name in archives.
class ORVIK_API CByteArray : public CArray<BYTE, BYTE> {
    DECLARE_SERIAL(CByteArray)
};
class ORVIK_API CWordArray : public CArray<WORD, WORD> {
    DECLARE_SERIAL(CWordArray)
};
class ORVIK_API CDWordArray : public CArray<DWORD, DWORD> {
    DECLARE_SERIAL(CDWordArray)
};
class ORVIK_API CStringArray : public CArray<CString, const CString&> {
    DECLARE_SERIAL(CStringArray)

public:
    using CArray<CString, const CString&>::Add;
    using CArray<CString, const CString&>::SetAt;
    INT_PTR Add(LPCSTR newElement);
    void SetAt(INT_PTR nIndex, LPCSTR newElement) { ElementAt(nIndex) = newElement; }
};

// Pointers, which it does not own. There is no archive form of them: Serialize raises the not-supported exception.
class ORVIK_API CPtrArray : public CArray<void*, void*> {
    DECLARE_DYNAMIC(CPtrArray)

public:
    void Serialize(CArchive& ar) override;
};
