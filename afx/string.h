// A narrow text, Windows-1252, that knows its length. One pointer in size; a copy is a copy, a move is cheap.
// A value type: one thread at a time for one string, no sharing between copies. Null texts count as empty texts.
// Positions and lengths count bytes. A position outside the text raises the invalid-argument exception, where no rule here says
// otherwise.
#pragma once

#include "platform/win32.h"

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace orvik::detail {
// In front of a string's characters; they are followed by a byte 0 that neither number counts.
struct StringHeader {
    uint32_t length;
    uint32_t capacity;
};
struct EmptyString {
    StringHeader header;
    char text[8];
};
// The text of every empty string that has no buffer of its own.
extern ORVIK_API const EmptyString g_emptyString;
}  // namespace orvik::detail

class ORVIK_API CString {
public:
    CString() noexcept : m_text(const_cast<char*>(orvik::detail::g_emptyString.text)) {}
    CString(const CString& other);
    CString(CString&& other) noexcept : m_text(other.m_text) {
        other.m_text = const_cast<char*>(orvik::detail::g_emptyString.text);
    }
    CString(LPCSTR text);
    CString(LPCSTR text, int length);
    explicit CString(std::string_view text);
    explicit CString(char ch, int repeat = 1);
    ~CString() { Free(); }

    CString& operator=(const CString& other);
    CString& operator=(CString&& other) noexcept;
    CString& operator=(LPCSTR text);
    CString& operator=(std::string_view text);
    CString& operator=(char ch);

    int GetLength() const { return static_cast<int>(Header().length); }
    BOOL IsEmpty() const { return Header().length == 0; }
    void Empty() { Free(), m_text = const_cast<char*>(orvik::detail::g_emptyString.text); }

    // The position just behind the last character may be read; it gives the final 0.
    char GetAt(int index) const {
        if (static_cast<unsigned>(index) > Header().length) ThrowIndex();
        return m_text[index];
    }
    char operator[](int index) const { return GetAt(index); }
    void SetAt(int index, char ch);

    operator LPCSTR() const { return m_text; }
    LPCSTR GetString() const { return m_text; }
    std::string_view GetView() const { return {m_text, Header().length}; }

    CString& operator+=(const CString& text) { return AppendBytes(text.m_text, text.Header().length); }
    CString& operator+=(LPCSTR text);
    CString& operator+=(std::string_view text) { return AppendBytes(text.data(), text.size()); }
    CString& operator+=(char ch) { return AppendBytes(&ch, 1); }
    void Append(const CString& text) { *this += text; }
    void Append(LPCSTR text) { *this += text; }
    void Append(LPCSTR text, int length);
    void AppendChar(char ch) { *this += ch; }

    // 0 for equal texts, below or above 0 as this one comes before or after, by unsigned byte values.
    int Compare(LPCSTR text) const;
    int Compare(const CString& text) const;
    // The same with the Windows-1252 letters folded to lower case, whatever the process locale.
    int CompareNoCase(LPCSTR text) const;

    // Parts of the text; counts and positions beyond the text are cut to it, negative ones are 0.
    CString Mid(int first) const;
    CString Mid(int first, int count) const;
    CString Left(int count) const;
    CString Right(int count) const;
    // The longest beginning of characters in (not in) the set.
    CString SpanIncluding(LPCSTR set) const;
    CString SpanExcluding(LPCSTR set) const;

    // The next piece between any of the separators, skipping empty pieces; `start` is 0 at first, -1 once there is none (and an
    // empty text is returned). A negative start raises.
    CString Tokenize(LPCSTR separators, int& start) const;

    // Positions, -1 for none.
    int Find(char ch, int start = 0) const;
    int Find(LPCSTR text, int start = 0) const;
    int ReverseFind(char ch) const;
    int FindOneOf(LPCSTR set) const;

    // Changes in place; Replace and Remove return how many were changed, Insert and Delete the new length.
    int Replace(char from, char to);
    int Replace(LPCSTR from, LPCSTR to);
    int Remove(char ch);
    int Insert(int index, char ch);
    int Insert(int index, LPCSTR text);
    int Delete(int index, int count = 1);
    CString& MakeLower();
    CString& MakeUpper();
    // White space: space, tab, line feed, vertical tab, form feed, carriage return.
    CString& Trim();
    CString& Trim(char ch);
    CString& Trim(LPCSTR set);
    CString& TrimLeft();
    CString& TrimLeft(char ch);
    CString& TrimLeft(LPCSTR set);
    CString& TrimRight();
    CString& TrimRight(char ch);
    CString& TrimRight(LPCSTR set);

    // printf's language of the C library, plus "I64" and "I32" as length prefixes; "%ld" takes the language's long. A null format
    // raises. The arguments may be parts of this string.
    void Format(LPCSTR format, ...);
    void FormatV(LPCSTR format, va_list args);
    void AppendFormat(LPCSTR format, ...);
    void AppendFormatV(LPCSTR format, va_list args);

    // The text of a string resource, searched in the application and in the linked libraries. 0, and the text empty, when there
    // is none.
    BOOL LoadString(UINT id);

    // Room for at least minLength characters and the final 0, to be written by the caller up to the next call of any other
    // member.
    char* GetBuffer(int minLength = 0);
    char* GetBufferSetLength(int length);
    // Takes over what was written: newLength characters, or with -1 up to the first 0.
    void ReleaseBuffer(int newLength = -1);
    void ReleaseBufferSetLength(int newLength) { ReleaseBuffer(newLength); }
    void Preallocate(int length);
    void FreeExtra();

private:
    using StringHeader = orvik::detail::StringHeader;
    const StringHeader& Header() const { return reinterpret_cast<const StringHeader*>(m_text)[-1]; }
    StringHeader& Header() { return reinterpret_cast<StringHeader*>(m_text)[-1]; }
    bool OwnsBuffer() const { return Header().capacity != 0; }
    void Free() noexcept {
        if (OwnsBuffer()) FreeBuffer();
    }
    void FreeBuffer() noexcept;
    void Assign(const char* text, size_t length);
    CString& AppendBytes(const char* text, size_t length);
    void Reserve(size_t capacity, bool exactly);
    void SetLength(size_t length);
    [[noreturn]] static void ThrowIndex();

    char* m_text;  // never null; a StringHeader stands in front of it
};

ORVIK_API CString operator+(const CString& a, const CString& b);
ORVIK_API CString operator+(const CString& a, LPCSTR b);
ORVIK_API CString operator+(LPCSTR a, const CString& b);
ORVIK_API CString operator+(const CString& a, char b);
ORVIK_API CString operator+(char a, const CString& b);

inline bool operator==(const CString& a, const CString& b) { return a.GetView() == b.GetView(); }
inline bool operator==(const CString& a, LPCSTR b) { return a.Compare(b) == 0; }
inline bool operator==(LPCSTR a, const CString& b) { return b.Compare(a) == 0; }
inline bool operator!=(const CString& a, const CString& b) { return !(a == b); }
inline bool operator!=(const CString& a, LPCSTR b) { return !(a == b); }
inline bool operator!=(LPCSTR a, const CString& b) { return !(a == b); }
inline bool operator<(const CString& a, const CString& b) { return a.Compare(b) < 0; }
inline bool operator<(const CString& a, LPCSTR b) { return a.Compare(b) < 0; }
inline bool operator<(LPCSTR a, const CString& b) { return b.Compare(a) > 0; }
inline bool operator>(const CString& a, const CString& b) { return a.Compare(b) > 0; }
inline bool operator>(const CString& a, LPCSTR b) { return a.Compare(b) > 0; }
inline bool operator>(LPCSTR a, const CString& b) { return b.Compare(a) < 0; }
inline bool operator<=(const CString& a, const CString& b) { return a.Compare(b) <= 0; }
inline bool operator<=(const CString& a, LPCSTR b) { return a.Compare(b) <= 0; }
inline bool operator<=(LPCSTR a, const CString& b) { return b.Compare(a) >= 0; }
inline bool operator>=(const CString& a, const CString& b) { return a.Compare(b) >= 0; }
inline bool operator>=(const CString& a, LPCSTR b) { return a.Compare(b) >= 0; }
inline bool operator>=(LPCSTR a, const CString& b) { return b.Compare(a) <= 0; }
