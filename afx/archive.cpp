#include "afx/archive.h"

#include "afx/exception.h"
#include "afx/file.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

#include "platform/house_text_internal.h"

namespace {
constexpr WORD kNullTag = 0;
constexpr WORD kNewClassTag = 0xFFFF;
constexpr WORD kClassTag = 0x8000;
constexpr WORD kBigTag = 0x7FFF;
constexpr DWORD kBigClassTag = 0x80000000;
constexpr DWORD kMaxIndex = 0x3FFFFFFE;
constexpr WORD kMaxClassName = 64;
constexpr int kMaxDepth = 256;
constexpr ULONGLONG kUnknown = std::numeric_limits<ULONGLONG>::max();

uintptr_t EntryOf(const CRuntimeClass* known) { return reinterpret_cast<uintptr_t>(known) | 1; }
bool IsClass(uintptr_t entry) { return (entry & 1) != 0; }
CRuntimeClass* ClassOf(uintptr_t entry) { return reinterpret_cast<CRuntimeClass*>(entry & ~uintptr_t{1}); }
CObject* ObjectOf(uintptr_t entry) { return reinterpret_cast<CObject*>(entry); }
}  // namespace

CArchive::CArchive(CFile* pFile, UINT nMode, int nBufSize, void* lpBuf) : m_pFile(pFile), m_nMode(nMode) {
    if (pFile == nullptr) AfxThrowInvalidArgException();
    m_strFileName = pFile->GetFilePath();
    if (nBufSize < 128) {
        nBufSize = 128;
        lpBuf = nullptr;
    }
    m_size = static_cast<size_t>(nBufSize);
    if (lpBuf == nullptr) m_ownBuffer = std::make_unique_for_overwrite<BYTE[]>(m_size);
    m_start = lpBuf != nullptr ? static_cast<BYTE*>(lpBuf) : m_ownBuffer.get();
    m_cur = m_start;
    m_end = IsLoading() ? m_start : m_start + m_size;
}

CArchive::~CArchive() {
    if (m_pFile != nullptr && (m_nMode & bNoFlushOnDelete) == 0) {
        try {
            Close();
        } catch (CException* failure) {
            failure->Delete();
        }
    }
    Abort();
}

void CArchive::Throw(int cause) const { AfxThrowArchiveException(cause, m_strFileName); }
void CArchive::ThrowReadOnly() const { Throw(CArchiveException::readOnly); }
void CArchive::ThrowWriteOnly() const { Throw(CArchiveException::writeOnly); }

void CArchive::Flush() {
    if (m_pFile == nullptr) return;
    if (IsStoring()) {
        WriteBuffer();
        return;
    }
    const LONGLONG ahead = m_end - m_cur;
    m_cur = m_end = m_start;
    m_knowsFileLeft = false;
    if (ahead > 0) m_pFile->Seek(-ahead, CFile::current);
}

void CArchive::Close() {
    Flush();
    Abort();
}

void CArchive::Abort() noexcept {
    m_pFile = nullptr;
    m_cur = m_end = m_start;
}

void CArchive::WriteBuffer() {
    const auto count = static_cast<UINT>(m_cur - m_start);
    if (count == 0) return;
    m_pFile->Write(m_start, count);
    m_cur = m_start;
}

UINT CArchive::ReadFile(void* to, UINT count) {
    const UINT got = m_pFile->Read(to, count);
    if (m_knowsFileLeft && m_fileLeft != kUnknown) m_fileLeft -= std::min<ULONGLONG>(m_fileLeft, got);
    return got;
}

// Called with nothing left in the buffer.
void CArchive::FillBuffer() {
    m_cur = m_end = m_start;
    m_end += ReadFile(m_start, static_cast<UINT>(m_size));
}

UINT CArchive::Read(void* lpBuf, UINT nMax) {
    if (IsStoring()) ThrowWriteOnly();
    if (m_pFile == nullptr) Throw(CArchiveException::genericException);
    auto* to = static_cast<BYTE*>(lpBuf);
    UINT left = nMax;
    while (left > 0) {
        if (m_cur == m_end) {
            if (left >= m_size) {
                // A whole buffer and more goes straight to its place.
                const UINT got = ReadFile(to, left);
                if (got == 0) break;
                to += got;
                left -= got;
                continue;
            }
            FillBuffer();
            if (m_cur == m_end) break;
        }
        const UINT part = std::min(left, static_cast<UINT>(m_end - m_cur));
        std::memcpy(to, m_cur, part);
        m_cur += part;
        to += part;
        left -= part;
    }
    return nMax - left;
}

void CArchive::EnsureRead(void* lpBuf, UINT nCount) {
    if (Read(lpBuf, nCount) != nCount) Throw(CArchiveException::endOfFile);
}

void CArchive::Write(const void* lpBuf, UINT nMax) {
    if (IsLoading()) ThrowReadOnly();
    if (m_pFile == nullptr) Throw(CArchiveException::genericException);
    const auto* from = static_cast<const BYTE*>(lpBuf);
    if (static_cast<size_t>(m_end - m_cur) < nMax) {
        WriteBuffer();
        if (nMax >= m_size) {
            m_pFile->Write(from, nMax);
            return;
        }
    }
    if (nMax > 0) std::memcpy(m_cur, from, nMax);
    m_cur += nMax;
}

void CArchive::WriteString(LPCSTR lpsz) {
    if (lpsz != nullptr) Write(lpsz, static_cast<UINT>(std::strlen(lpsz)));
}

ULONGLONG CArchive::GetBytesLeft() {
    if (IsStoring() || m_pFile == nullptr) return 0;
    if (!m_knowsFileLeft) {
        m_knowsFileLeft = true;
        try {
            const ULONGLONG length = m_pFile->GetLength();
            const ULONGLONG position = m_pFile->GetPosition();
            m_fileLeft = length > position ? length - position : 0;
        } catch (CFileException* failure) {
            // A device or a pipe knows no length.
            failure->Delete();
            m_fileLeft = kUnknown;
        }
    }
    return m_fileLeft == kUnknown ? kUnknown : m_fileLeft + static_cast<ULONGLONG>(m_end - m_cur);
}

void CArchive::WriteCount(DWORD_PTR dwCount) {
    if (dwCount < 0xFFFF) {
        *this << static_cast<WORD>(dwCount);
        return;
    }
    *this << static_cast<WORD>(0xFFFF);
    if (dwCount < 0xFFFFFFFF || sizeof(DWORD_PTR) == 4) {
        *this << static_cast<uint32_t>(dwCount);
        return;
    }
    *this << static_cast<uint32_t>(0xFFFFFFFF) << static_cast<uint64_t>(dwCount);
}

DWORD_PTR CArchive::ReadCount() {
    WORD word = 0;
    *this >> word;
    if (word != 0xFFFF) return word;
    uint32_t dword = 0;
    *this >> dword;
    if (dword != 0xFFFFFFFF || sizeof(DWORD_PTR) == 4) return dword;
    uint64_t qword = 0;
    *this >> qword;
    return static_cast<DWORD_PTR>(qword);
}

DWORD CArchive::NextIndex() {
    if (m_count > kMaxIndex) Throw(CArchiveException::badIndex);
    return m_count++;
}

void CArchive::WriteClass(const CRuntimeClass* pClassRef) {
    if (IsLoading()) ThrowReadOnly();
    if (pClassRef == nullptr) AfxThrowInvalidArgException();
    if (pClassRef->m_wSchema == 0xFFFF) AfxThrowNotSupportedException();
    const auto found = m_stored.find(pClassRef);
    if (found == m_stored.end()) {
        *this << kNewClassTag;
        pClassRef->Store(*this);
        m_stored[pClassRef] = NextIndex();
    } else if (found->second < kBigTag) {
        *this << static_cast<WORD>(kClassTag | found->second);
    } else {
        *this << kBigTag << static_cast<uint32_t>(kBigClassTag | found->second);
    }
}

void CArchive::WriteObject(const CObject* pOb) {
    if (IsLoading()) ThrowReadOnly();
    if (pOb == nullptr) {
        *this << kNullTag;
        return;
    }
    const auto found = m_stored.find(pOb);
    if (found != m_stored.end()) {
        if (found->second < kBigTag)
            *this << static_cast<WORD>(found->second);
        else
            *this << kBigTag << static_cast<uint32_t>(found->second);
        return;
    }
    // What is nested deeper could not be read again.
    if (m_depth >= kMaxDepth) Throw(CArchiveException::genericException);
    WriteClass(pOb->GetRuntimeClass());
    m_stored[pOb] = NextIndex();
    struct Depth {
        int& depth;
        explicit Depth(int& d) : depth(d) { ++depth; }
        ~Depth() { --depth; }
    } const nested(m_depth);
    const_cast<CObject*>(pOb)->Serialize(*this);
}

CRuntimeClass* CArchive::ReadClass(const CRuntimeClass* pClassRefRequested, UINT* pSchema, DWORD* pObTag) {
    if (IsStoring()) ThrowWriteOnly();
    if (pClassRefRequested != nullptr && pClassRefRequested->m_wSchema == 0xFFFF &&
        pClassRefRequested->m_pfnGetBaseClass != nullptr && pObTag == nullptr)
        AfxThrowNotSupportedException();

    WORD tag = 0;
    *this >> tag;
    DWORD index = 0;
    if (tag == kBigTag) {
        uint32_t big = 0;
        *this >> big;
        index = big;
    } else {
        index = (static_cast<DWORD>(tag & kClassTag) << 16) | static_cast<DWORD>(tag & ~kClassTag);
    }

    if ((index & kBigClassTag) == 0) {
        if (pObTag == nullptr) Throw(CArchiveException::badIndex);
        *pObTag = index;
        return nullptr;
    }

    CRuntimeClass* found = nullptr;
    UINT schema = 0;
    if (tag == kNewClassTag) {
        found = CRuntimeClass::Load(*this, &schema);
        if (found == nullptr) Throw(CArchiveException::badClass);
        const UINT own = found->m_wSchema & ~VERSIONABLE_SCHEMA;
        if (own != schema && (found->m_wSchema & VERSIONABLE_SCHEMA) == 0 && pSchema == nullptr)
            Throw(CArchiveException::badSchema);
        const DWORD next = NextIndex();
        if (own != schema) m_schemas[next] = schema;
        m_loaded.push_back(EntryOf(found));
    } else {
        index &= ~kBigClassTag;
        if (index == 0 || index > m_loaded.size()) Throw(CArchiveException::badIndex);
        const uintptr_t entry = m_loaded[index - 1];
        if (!IsClass(entry)) Throw(CArchiveException::badClass);
        found = ClassOf(entry);
        const auto other = m_schemas.find(index);
        schema = other != m_schemas.end() ? other->second : found->m_wSchema & ~VERSIONABLE_SCHEMA;
    }
    if (pClassRefRequested != nullptr && !found->IsDerivedFrom(pClassRefRequested)) Throw(CArchiveException::badClass);
    if (pSchema != nullptr) *pSchema = schema;
    if (pObTag != nullptr) *pObTag = index;
    m_nObjectSchema = schema;
    return found;
}

void CArchive::SerializeClass(const CRuntimeClass* pClassRef) {
    if (IsStoring())
        WriteClass(pClassRef);
    else
        ReadClass(pClassRef);
}

void CArchive::MapObject(const CObject* pOb) {
    const DWORD index = NextIndex();
    if (IsLoading())
        m_loaded.push_back(reinterpret_cast<uintptr_t>(pOb));
    else if (pOb != nullptr)
        m_stored[pOb] = index;
}

UINT CArchive::GetObjectSchema() { return std::exchange(m_nObjectSchema, 0xFFFFFFFF); }

void CArchive::ObjectTaken(const CObject* object) {
    const auto entry = std::find(m_loaded.rbegin(), m_loaded.rend(), reinterpret_cast<uintptr_t>(object));
    if (entry != m_loaded.rend()) *entry = 0;
}

// One level of ReadObject. The outermost one deletes what was made below it, unless it is told that all went well.
struct CArchive::LoadScope {
    CArchive& archive;
    const UINT schema;
    const size_t first;
    bool done = false;

    explicit LoadScope(CArchive& ar) : archive(ar), schema(ar.m_nObjectSchema), first(ar.m_loaded.size()) { ++ar.m_depth; }
    ~LoadScope() {
        archive.m_nObjectSchema = schema;
        if (--archive.m_depth > 0 || done) return;
        for (size_t i = archive.m_loaded.size(); i-- > first;) {
            const uintptr_t entry = archive.m_loaded[i];
            if (IsClass(entry)) continue;
            archive.m_loaded[i] = 0;
            delete ObjectOf(entry);
        }
    }
    LoadScope(const LoadScope&) = delete;
    LoadScope& operator=(const LoadScope&) = delete;
};

CObject* CArchive::ReadObject(const CRuntimeClass* pClassRefRequested) {
    if (IsStoring()) ThrowWriteOnly();
    const UINT outerSchema = m_nObjectSchema;
    DWORD index = 0;
    const CRuntimeClass* found = ReadClass(pClassRefRequested, nullptr, &index);
    const UINT schema = std::exchange(m_nObjectSchema, outerSchema);

    if (found == nullptr) {
        if (index == kNullTag) return nullptr;
        if ((m_nMode & bTreeOnly) != 0 || index > m_loaded.size()) Throw(CArchiveException::badIndex);
        const uintptr_t entry = m_loaded[index - 1];
        if (IsClass(entry)) Throw(CArchiveException::badClass);
        if (entry == 0) Throw(CArchiveException::badIndex);
        CObject* object = ObjectOf(entry);
        if (pClassRefRequested != nullptr && !object->IsKindOf(pClassRefRequested)) Throw(CArchiveException::badClass);
        return object;
    }

    if (m_depth >= kMaxDepth) Throw(CArchiveException::genericException);
    LoadScope scope(*this);
    NextIndex();
    if (m_loaded.size() == m_loaded.capacity()) m_loaded.reserve(m_loaded.size() + m_loaded.size() / 2 + 16);
    m_loaded.push_back(0);
    CObject* object = found->CreateObject();
    if (object == nullptr) Throw(CArchiveException::badClass);
    m_loaded.back() = reinterpret_cast<uintptr_t>(object);
    m_nObjectSchema = schema;
    object->Serialize(*this);
    scope.done = true;
    return object;
}

namespace orvik::detail {
CObject* ReadObject(CArchive& ar, const CRuntimeClass* expected) { return ar.ReadObject(expected); }
}  // namespace orvik::detail

void CRuntimeClass::Store(CArchive& ar) const {
    const auto length = static_cast<WORD>(std::strlen(m_lpszClassName));
    ar << static_cast<WORD>(m_wSchema) << length;
    ar.Write(m_lpszClassName, length);
}

CRuntimeClass* CRuntimeClass::Load(CArchive& ar, UINT* pwSchemaNum) {
    WORD schema = 0;
    WORD length = 0;
    ar >> schema >> length;
    if (pwSchemaNum != nullptr) *pwSchemaNum = schema;
    if (length > kMaxClassName) AfxThrowArchiveException(CArchiveException::badClass, ar.m_strFileName);
    char name[kMaxClassName + 1] = {};
    ar.EnsureRead(name, length);
    return FromName(name);
}

void AfxWriteStringLength(CArchive& ar, DWORD_PTR nLength) {
    if (nLength < 0xFF) {
        ar << static_cast<BYTE>(nLength);
    } else if (nLength < 0xFFFE) {
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(nLength);
    } else {
        ar << static_cast<BYTE>(0xFF) << static_cast<WORD>(0xFFFF) << static_cast<uint32_t>(nLength);
    }
}

namespace {
// The length of a text, in units of two bytes where it is `wide`: only a UTF-8 process can hold what such a text may say.
DWORD_PTR ReadTextLength(CArchive& ar, bool& wide) {
    BYTE small = 0;
    ar >> small;
    if (small != 0xFF) return small;
    WORD word = 0;
    ar >> word;
    if (word == 0xFFFE) {
        if (wide || !orvik::detail::HouseIsUtf8())
            AfxThrowArchiveException(CArchiveException::genericException, ar.m_strFileName);
        wide = true;
        return ReadTextLength(ar, wide);
    }
    if (word != 0xFFFF) return word;
    uint32_t dword = 0;
    ar >> dword;
    return dword;
}
}  // namespace

DWORD_PTR AfxReadStringLength(CArchive& ar) {
    bool wide = false;
    const DWORD_PTR length = ReadTextLength(ar, wide);
    // The caller expects bytes.
    if (wide) AfxThrowArchiveException(CArchiveException::genericException, ar.m_strFileName);
    return length;
}

namespace {
constexpr WORD kTwoByteText = 0xFFFE;

// What an archive holds for a text of a UTF-8 process: Windows-1252 where that can say it, so that any reader can read it, else
// UTF-16.
struct ArchivedText {
    std::string bytes;
    std::u16string units;
    bool wide = false;
};
ArchivedText Archived(std::string_view text) {
    ArchivedText out;
    for (std::string_view rest = text; !rest.empty();) {
        const char32_t character = orvik::detail::TakeHouse(rest);
        const int byte = orvik::detail::ByteFromUnicode(character);
        out.wide |= byte < 0;
        out.bytes += static_cast<char>(byte);
        if (character >= 0x10000) {
            out.units += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
            out.units += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
        } else {
            out.units += static_cast<char16_t>(character);
        }
    }
    return out;
}

// So many bytes behind what `text` holds. Short lengths are cheap to believe; the others are held against the file.
void ReadBytes(CArchive& ar, CString& text, DWORD_PTR length) {
    constexpr DWORD_PTR kBlock = 65536;
    if (length > 255 && length > ar.GetBytesLeft()) AfxThrowArchiveException(CArchiveException::endOfFile, ar.m_strFileName);
    for (DWORD_PTR have = 0; have < length;) {
        // A file of unknown length is believed block by block.
        const DWORD_PTR part =
            ar.GetBytesLeft() >= length && ar.GetBytesLeft() != ~0ULL ? length : std::min(length - have, kBlock);
        const DWORD_PTR want = std::min(length - have, part);
        char* buffer = text.GetBuffer(static_cast<int>(std::min<DWORD_PTR>(have + want, 0x7FFFFFFF)));
        ar.EnsureRead(buffer + have, static_cast<UINT>(want));
        have += want;
        text.ReleaseBuffer(static_cast<int>(have));
    }
}

// Units of UTF-16, little-endian. A unit that is half of a character without the other half becomes U+FFFD.
std::string HouseFromUnits(std::string_view bytes) {
    const auto unit = [&](size_t at) {
        return static_cast<char32_t>(static_cast<unsigned char>(bytes[at]) | static_cast<unsigned char>(bytes[at + 1]) << 8);
    };
    std::string out;
    for (size_t at = 0; at + 1 < bytes.size(); at += 2) {
        char32_t character = unit(at);
        const bool first = character >= 0xD800 && character < 0xDC00;
        if (first && at + 3 < bytes.size() && unit(at + 2) >= 0xDC00 && unit(at + 2) < 0xE000) {
            at += 2;
            character = 0x10000 + ((character - 0xD800) << 10) + (unit(at) - 0xDC00);
        } else if (character >= 0xD800 && character < 0xE000) {
            character = 0xFFFD;
        }
        orvik::detail::AppendHouse(out, character);
    }
    return out;
}
}  // namespace

CArchive& operator<<(CArchive& ar, const CString& text) {
    if (orvik::detail::HouseIsUtf8() && orvik::detail::AsciiPrefix(text.GetView()) != text.GetView().size()) {
        const ArchivedText archived = Archived(text.GetView());
        if (archived.wide) {
            ar << static_cast<BYTE>(0xFF) << kTwoByteText;
            AfxWriteStringLength(ar, archived.units.size());
            for (const char16_t unit : archived.units) ar << static_cast<WORD>(unit);
        } else {
            AfxWriteStringLength(ar, archived.bytes.size());
            ar.Write(archived.bytes.data(), static_cast<UINT>(archived.bytes.size()));
        }
        return ar;
    }
    const auto length = static_cast<UINT>(text.GetLength());
    AfxWriteStringLength(ar, length);
    ar.Write(text.GetString(), length);
    return ar;
}

CArchive& operator>>(CArchive& ar, CString& text) {
    bool wide = false;
    const DWORD_PTR length = ReadTextLength(ar, wide);
    text.Empty();
    if (length == 0) return ar;
    if (!wide) {
        ReadBytes(ar, text, length);
        if (orvik::detail::HouseIsUtf8() && orvik::detail::AsciiPrefix(text.GetView()) != text.GetView().size())
            text = orvik::detail::HouseFrom1252(text.GetView());
        return ar;
    }
    if (length > 0x3FFFFFFF) AfxThrowArchiveException(CArchiveException::endOfFile, ar.m_strFileName);
    CString units;
    ReadBytes(ar, units, length * 2);
    text = HouseFromUnits(units.GetView());
    return ar;
}
