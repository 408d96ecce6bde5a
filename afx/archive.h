// A binary stream of values and objects over a CFile, through a buffer of its own; a stream either stores or loads.
// One thread at a time. The file is not owned; while the archive is open nobody else moves it. Flush and Close put the file's
// position where the archive's user sees it.
//
// Format: values as raw little-endian bytes; a text is its length (one byte; 0xFF and a word; 0xFF, 0xFFFF and a double word) and
// its characters. An object is a tag and what its Serialize stores: 0 for null, 0xFFFF with schema, name length and name for a
// class met first, 0x8000 | index for a class met before, an index for an object met before, 0x7FFF and a double word for indexes
// that do not fit. Classes and objects share one count, from 1.
//
// Loading trusts nothing: lengths and counts are held against what the file can still give, objects nest at most 256 deep, and
// every failure is an exception by pointer (CArchiveException, or CFileException from the file). Ownership: objects that a
// ReadObject made, itself and nested, belong to the archive until the outermost ReadObject returns; if it fails, the archive
// deletes every one of them. So Serialize may put an object that it reads into its own members at once, as long as its destructor
// does not delete them; a class whose destructor does, calls ObjectTaken for each.
#pragma once

#include "afx/object.h"
#include "afx/string.h"

#include <bit>
#include <concepts>
#include <cstring>
#include <memory>
#include <type_traits>
#include <unordered_map>
#include <vector>

class CFile;

static_assert(std::endian::native == std::endian::little, "values are stored as they lie in memory");

namespace orvik::detail {
// The types that stand in an archive by their own bytes. `long` has the width that it has in the language.
template <class T>
concept ArchiveValue = (std::integral<T> || std::floating_point<T>)&&sizeof(T) <= 8 && !std::same_as<T, wchar_t>;
}  // namespace orvik::detail

class ORVIK_API CArchive {
public:
    enum Mode {
        store = 0,
        load = 1,
        bNoFlushOnDelete = 2,  // the destructor does not write what is still buffered
        bTreeOnly = 0x100      // loading refuses objects met before (badIndex), so that each one has exactly one container
    };

    // lpBuf: a buffer of nBufSize bytes that the caller keeps; null for one of the archive's own. Sizes below 128 become 128.
    CArchive(CFile* pFile, UINT nMode, int nBufSize = 4096, void* lpBuf = nullptr);
    // Closes. A failure to write is lost here: call Close where it matters.
    ~CArchive();
    CArchive(const CArchive&) = delete;
    CArchive& operator=(const CArchive&) = delete;

    BOOL IsLoading() const { return (m_nMode & load) != 0; }
    BOOL IsStoring() const { return (m_nMode & load) == 0; }
    // Null once closed.
    CFile* GetFile() const { return m_pFile; }

    void Flush();
    // Flushes and lets go of the file.
    void Close();
    // Lets go of the file without writing and without exceptions.
    void Abort() noexcept;

    // At most nMax bytes; fewer only at the end of the file.
    UINT Read(void* lpBuf, UINT nMax);
    // Exactly nCount bytes, or the exception for the end of the file.
    void EnsureRead(void* lpBuf, UINT nCount);
    void Write(const void* lpBuf, UINT nMax);

    // How many bytes the file can still give; the largest number when it cannot tell. Loading only.
    ULONGLONG GetBytesLeft();

    // A count of elements: a word; 0xFFFF and a double word; on 64-bit builds from 0xFFFFFFFF on also a quad word.
    void WriteCount(DWORD_PTR dwCount);
    DWORD_PTR ReadCount();

    void WriteString(LPCSTR lpsz);  // the characters alone

    // The object is stored with its class the first time, by its index afterwards.
    void WriteObject(const CObject* pOb);
    // The next object, new or met before, or null. badClass when it is not of that class (any, if null).
    CObject* ReadObject(const CRuntimeClass* pClassRefRequested);
    void WriteClass(const CRuntimeClass* pClassRef);
    // With pSchema another schema than the class's own is accepted and told. With pObTag an object's index is accepted too: the
    // result is then null and *pObTag the index.
    CRuntimeClass* ReadClass(const CRuntimeClass* pClassRefRequested = nullptr, UINT* pSchema = nullptr, DWORD* pObTag = nullptr);
    void SerializeClass(const CRuntimeClass* pClassRef);
    // Gives an object the next index without storing or loading it, for code that does this itself. Loading: the object then
    // belongs to the archive as if ReadObject had made it; null takes the index and lets nothing refer to it.
    void MapObject(const CObject* pOb);
    // The schema of the object being read; asking gives (UINT)-1 from then on.
    UINT GetObjectSchema();
    void SetObjectSchema(UINT nSchema) { m_nObjectSchema = nSchema; }
    // Loading: the caller's destructor deletes `object`; a load that fails leaves it alone.
    void ObjectTaken(const CObject* object);

    template <orvik::detail::ArchiveValue T>
    CArchive& operator<<(T value) {
        if (IsLoading()) ThrowReadOnly();
        if (static_cast<size_t>(m_end - m_cur) < sizeof value) {
            Write(&value, sizeof value);
        } else {
            std::memcpy(m_cur, &value, sizeof value);
            m_cur += sizeof value;
        }
        return *this;
    }
    template <orvik::detail::ArchiveValue T>
    CArchive& operator>>(T& value) {
        if (IsStoring()) ThrowWriteOnly();
        if constexpr (std::same_as<T, bool>) {
            unsigned char flag = 0;
            *this >> flag;
            value = flag != 0;
        } else if (static_cast<size_t>(m_end - m_cur) < sizeof value) {
            EnsureRead(&value, sizeof value);
        } else {
            std::memcpy(&value, m_cur, sizeof value);
            m_cur += sizeof value;
        }
        return *this;
    }

    // The name in the exceptions raised here: the file's path.
    CString m_strFileName;

private:
    struct LoadScope;
    [[noreturn]] void Throw(int cause) const;
    [[noreturn]] void ThrowReadOnly() const;
    [[noreturn]] void ThrowWriteOnly() const;
    void FillBuffer();
    void WriteBuffer();
    UINT ReadFile(void* to, UINT count);
    DWORD NextIndex();

    CFile* m_pFile;
    UINT m_nMode;
    std::unique_ptr<BYTE[]> m_ownBuffer;
    BYTE* m_start;
    size_t m_size;
    // Loading: the bytes not yet taken. Storing: the room not yet filled.
    BYTE* m_cur;
    BYTE* m_end;
    ULONGLONG m_fileLeft = 0;  // what is left of the file behind the buffer, once m_knowsFileLeft
    bool m_knowsFileLeft = false;

    int m_depth = 0;
    UINT m_nObjectSchema = 0xFFFFFFFF;
    DWORD m_count = 1;                                // the next index
    std::unordered_map<const void*, DWORD> m_stored;  // index of what was stored
    std::vector<uintptr_t> m_loaded;                  // [index - 1]: an object, a class with bit 0 set, or 0 for an object let go
    std::unordered_map<DWORD, UINT> m_schemas;        // schemas of loaded classes that differ from the class's own
};

inline CArchive& operator<<(CArchive& ar, const CObject* pOb) {
    ar.WriteObject(pOb);
    return ar;
}
inline CArchive& operator>>(CArchive& ar, CObject*& pOb) {
    pOb = ar.ReadObject(nullptr);
    return ar;
}
ORVIK_API CArchive& operator<<(CArchive& ar, const CString& text);
ORVIK_API CArchive& operator>>(CArchive& ar, CString& text);

// The length in front of a text. Lengths of two-byte texts are neither written nor read: such a text raises the archive
// exception.
ORVIK_API void AfxWriteStringLength(CArchive& ar, DWORD_PTR nLength);
ORVIK_API DWORD_PTR AfxReadStringLength(CArchive& ar);
