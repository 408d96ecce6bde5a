#include "afx/string.h"

#include "afx/exception.h"
#include "afx/text_1252.h"
#include "platform/house_text_internal.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <string>

namespace orvik::detail {
constinit const EmptyString g_emptyString = {{0, 0}, {}};
}
static_assert(offsetof(orvik::detail::EmptyString, text) == sizeof(orvik::detail::StringHeader));
static_assert(sizeof(CString) == sizeof(void*), "arrays of strings count on it");

namespace {
constexpr size_t kMaxLength = 0x7FFFFFF0;

size_t LengthOf(LPCSTR text) { return text != nullptr ? std::strlen(text) : 0; }

int CompareBytes(std::string_view a, std::string_view b) {
    const int order = a.empty() || b.empty() ? 0 : std::memcmp(a.data(), b.data(), std::min(a.size(), b.size()));
    if (order != 0) return order;
    return a.size() < b.size() ? -1 : a.size() > b.size() ? 1 : 0;
}

bool IsOneOf(char ch, std::string_view set) { return set.find(ch) != std::string_view::npos; }

// The format with the Windows length prefixes I64 and I32 put into the language's own words.
std::string TranslateFormat(LPCSTR format) {
    std::string result;
    for (const char* at = format; *at != 0;) {
        result += *at;
        if (*at++ != '%') continue;
        while (*at != 0 && std::strchr("-+ #0123456789.*", *at) != nullptr) result += *at++;
        if (std::strncmp(at, "I64", 3) == 0) {
            result += "ll";
            at += 3;
        } else if (std::strncmp(at, "I32", 3) == 0) {
            at += 3;
        } else if (*at == 'I' && at[1] != 0 && std::strchr("diouxX", at[1]) != nullptr) {
            result += 'z';
            ++at;
        }
        if (*at != 0) result += *at++;
    }
    return result;
}
}  // namespace

CString::CString(const CString& other) : CString() { Assign(other.m_text, other.Header().length); }
CString::CString(LPCSTR text) : CString() { Assign(text, LengthOf(text)); }
CString::CString(LPCSTR text, int length) : CString() {
    if (length < 0 || (text == nullptr && length > 0)) AfxThrowInvalidArgException();
    Assign(text, static_cast<size_t>(length));
}
CString::CString(std::string_view text) : CString() { Assign(text.data(), text.size()); }
CString::CString(char ch, int repeat) : CString() {
    if (repeat <= 0) return;
    Reserve(static_cast<size_t>(repeat), true);
    std::memset(m_text, ch, static_cast<size_t>(repeat));
    SetLength(static_cast<size_t>(repeat));
}

CString& CString::operator=(const CString& other) {
    if (this != &other) Assign(other.m_text, other.Header().length);
    return *this;
}
CString& CString::operator=(CString&& other) noexcept {
    std::swap(m_text, other.m_text);
    return *this;
}
CString& CString::operator=(LPCSTR text) {
    Assign(text, LengthOf(text));
    return *this;
}
CString& CString::operator=(std::string_view text) {
    Assign(text.data(), text.size());
    return *this;
}
CString& CString::operator=(char ch) {
    Assign(&ch, 1);
    return *this;
}

void CString::ThrowIndex() { AfxThrowInvalidArgException(); }

void CString::FreeBuffer() noexcept { std::free(&Header()); }

// Makes room for `capacity` characters and keeps the present ones. The empty string's shared text is never written.
void CString::Reserve(size_t capacity, bool exactly) {
    if (capacity > kMaxLength) AfxThrowMemoryException();
    const size_t present = Header().capacity;
    if (OwnsBuffer() && capacity <= present) return;
    size_t room = capacity;
    if (!exactly) room = std::min(std::max(capacity, present + present / 2), kMaxLength);
    room = std::max<size_t>(room, 7);  // what the smallest block of the heap holds anyway
    void* block = std::realloc(OwnsBuffer() ? &Header() : nullptr, sizeof(StringHeader) + room + 1);
    if (block == nullptr) AfxThrowMemoryException();
    auto* header = static_cast<StringHeader*>(block);
    const bool fresh = present == 0;
    m_text = reinterpret_cast<char*>(header + 1);
    header->capacity = static_cast<uint32_t>(room);
    if (fresh) SetLength(0);
}

void CString::SetLength(size_t length) {
    Header().length = static_cast<uint32_t>(length);
    m_text[length] = 0;
}

// `text` may lie inside this string.
void CString::Assign(const char* text, size_t length) {
    if (length == 0) {
        // An own buffer is kept for the next text: strings that are filled again and again do not ask the heap each time.
        if (OwnsBuffer()) SetLength(0);
        return;
    }
    if (!OwnsBuffer() && length <= kMaxLength) {
        // The usual case: a new text.
        const size_t room = std::max<size_t>(length, 7);
        auto* const header = static_cast<StringHeader*>(std::malloc(sizeof(StringHeader) + room + 1));
        if (header == nullptr) AfxThrowMemoryException();
        header->length = static_cast<uint32_t>(length);
        header->capacity = static_cast<uint32_t>(room);
        m_text = static_cast<char*>(std::memcpy(header + 1, text, length));
        m_text[length] = 0;
        return;
    }
    if (length > Header().capacity) {
        CString other;
        other.Reserve(length, true);
        std::memcpy(other.m_text, text, length);
        other.SetLength(length);
        std::swap(m_text, other.m_text);
        return;
    }
    std::memmove(m_text, text, length);
    SetLength(length);
}

CString& CString::AppendBytes(const char* text, size_t length) {
    if (length == 0) return *this;
    const size_t old = Header().length;
    if (length > kMaxLength - old) AfxThrowMemoryException();
    const std::less<const char*> before;
    const bool inside = !before(text, m_text) && before(text, m_text + old);
    const size_t offset = inside ? static_cast<size_t>(text - m_text) : 0;
    Reserve(old + length, false);
    std::memcpy(m_text + old, inside ? m_text + offset : text, length);
    SetLength(old + length);
    return *this;
}

CString& CString::operator+=(LPCSTR text) { return AppendBytes(text, LengthOf(text)); }

void CString::Append(LPCSTR text, int length) {
    if (length < 0) AfxThrowInvalidArgException();
    if (text != nullptr) AppendBytes(text, strnlen(text, static_cast<size_t>(length)));
}

void CString::SetAt(int index, char ch) {
    if (static_cast<unsigned>(index) >= Header().length) ThrowIndex();
    m_text[index] = ch;
}

int CString::Compare(LPCSTR text) const {
    return CompareBytes(GetView(), text != nullptr ? std::string_view(text) : std::string_view());
}
int CString::Compare(const CString& text) const { return CompareBytes(GetView(), text.GetView()); }

int CString::CompareNoCase(LPCSTR text) const {
    if (orvik::detail::HouseIsUtf8()) return orvik::detail::CompareNoCase(GetView(), text != nullptr ? text : "");
    const auto* a = reinterpret_cast<const unsigned char*>(m_text);
    const auto* b = reinterpret_cast<const unsigned char*>(text != nullptr ? text : "");
    for (;; ++a, ++b) {
        const int order = orvik::detail::ToLower1252(*a) - orvik::detail::ToLower1252(*b);
        if (order != 0 || *a == 0) return order;
    }
}

CString CString::Mid(int first) const { return Mid(first, GetLength()); }

CString CString::Mid(int first, int count) const {
    first = std::clamp(first, 0, GetLength());
    count = std::clamp(count, 0, GetLength() - first);
    return CString(GetView().substr(static_cast<size_t>(first), static_cast<size_t>(count)));
}

CString CString::Left(int count) const { return Mid(0, count); }

CString CString::Right(int count) const {
    count = std::clamp(count, 0, GetLength());
    return Mid(GetLength() - count, count);
}

CString CString::SpanIncluding(LPCSTR set) const {
    if (set == nullptr) AfxThrowInvalidArgException();
    return CString(GetView().substr(0, GetView().find_first_not_of(set)));
}

CString CString::SpanExcluding(LPCSTR set) const {
    if (set == nullptr) AfxThrowInvalidArgException();
    return CString(GetView().substr(0, GetView().find_first_of(set)));
}

CString CString::Tokenize(LPCSTR separators, int& start) const {
    if (start < 0) AfxThrowInvalidArgException();
    const std::string_view set = separators != nullptr ? separators : "";
    const std::string_view view = GetView();
    const size_t first =
        static_cast<size_t>(start) < view.size() ? view.find_first_not_of(set, static_cast<size_t>(start)) : view.npos;
    if (first == view.npos) {
        start = -1;
        return CString();
    }
    const size_t end = std::min(view.find_first_of(set, first), view.size());
    start = static_cast<int>(end) + 1;
    return CString(view.substr(first, end - first));
}

int CString::Find(char ch, int start) const {
    if (start < 0 || start > GetLength()) return -1;
    return static_cast<int>(GetView().find(ch, static_cast<size_t>(start)));
}

int CString::Find(LPCSTR text, int start) const {
    if (text == nullptr || start < 0 || start > GetLength()) return -1;
    return static_cast<int>(GetView().find(text, static_cast<size_t>(start)));
}

int CString::ReverseFind(char ch) const { return static_cast<int>(GetView().rfind(ch)); }

int CString::FindOneOf(LPCSTR set) const { return set == nullptr ? -1 : static_cast<int>(GetView().find_first_of(set)); }

int CString::Replace(char from, char to) {
    if (from == to) return 0;
    int count = 0;
    for (char* at = m_text; at != m_text + Header().length; ++at) {
        if (*at != from) continue;
        *at = to;
        ++count;
    }
    return count;
}

int CString::Replace(LPCSTR from, LPCSTR to) {
    const std::string_view find = from != nullptr ? from : "";
    if (find.empty()) return 0;
    size_t at = GetView().find(find);
    if (at == std::string_view::npos) return 0;
    const size_t put = LengthOf(to);
    CString result;
    size_t copied = 0;
    int count = 0;
    for (; at != std::string_view::npos; at = GetView().find(find, copied)) {
        result.AppendBytes(m_text + copied, at - copied);
        result.AppendBytes(to, put);
        copied = at + find.size();
        ++count;
    }
    result.AppendBytes(m_text + copied, Header().length - copied);
    std::swap(m_text, result.m_text);
    return count;
}

int CString::Remove(char ch) {
    if (IsEmpty()) return 0;
    const char* end = std::remove(m_text, m_text + Header().length, ch);
    const auto left = static_cast<size_t>(end - m_text);
    const int count = static_cast<int>(Header().length - left);
    if (count > 0) SetLength(left);
    return count;
}

int CString::Insert(int index, char ch) {
    index = std::clamp(index, 0, GetLength());
    *this = Left(index) + ch + Mid(index);
    return GetLength();
}

int CString::Insert(int index, LPCSTR text) {
    const size_t length = LengthOf(text);
    if (length == 0) return GetLength();
    const auto at = static_cast<size_t>(std::clamp(index, 0, GetLength()));
    CString result;
    result.Reserve(Header().length + length, true);
    result.AppendBytes(m_text, at);
    result.AppendBytes(text, length);
    result.AppendBytes(m_text + at, Header().length - at);
    std::swap(m_text, result.m_text);
    return GetLength();
}

int CString::Delete(int index, int count) {
    index = std::max(index, 0);
    if (index >= GetLength() || count <= 0) return GetLength();
    count = std::min(count, GetLength() - index);
    std::memmove(m_text + index, m_text + index + count, static_cast<size_t>(GetLength() - index - count));
    SetLength(Header().length - static_cast<size_t>(count));
    return GetLength();
}

namespace {
void ChangeCase(CString& text, char32_t (*character)(char32_t), unsigned char (*byte)(unsigned char)) {
    if (!orvik::detail::HouseIsUtf8() || orvik::detail::AsciiPrefix(text.GetView()) == text.GetView().size()) {
        const int length = text.GetLength();
        char* const buffer = length > 0 ? text.GetBuffer(length) : nullptr;
        for (int i = 0; i < length; ++i) buffer[i] = static_cast<char>(byte(static_cast<unsigned char>(buffer[i])));
        return;
    }
    std::string changed;
    for (std::string_view rest = text.GetView(); !rest.empty();) {
        // A byte that belongs to no character stays as it is.
        const char first = rest.front();
        const char32_t one = orvik::detail::TakeUtf8(rest);
        if (one == orvik::detail::kInvalid)
            changed += first;
        else
            orvik::detail::AppendUtf8(changed, character(one));
    }
    text = std::string_view(changed);
}
}  // namespace

CString& CString::MakeLower() {
    ChangeCase(*this, orvik::detail::LowerCase, orvik::detail::ToLower1252);
    return *this;
}
CString& CString::MakeUpper() {
    ChangeCase(*this, orvik::detail::UpperCase, orvik::detail::ToUpper1252);
    return *this;
}

namespace {
constexpr char kSpaces[] = " \t\n\v\f\r";
}

CString& CString::Trim() { return Trim(kSpaces); }
CString& CString::Trim(char ch) { return TrimRight(ch).TrimLeft(ch); }
CString& CString::Trim(LPCSTR set) { return TrimRight(set).TrimLeft(set); }
CString& CString::TrimLeft() { return TrimLeft(kSpaces); }
CString& CString::TrimRight() { return TrimRight(kSpaces); }

CString& CString::TrimLeft(char ch) {
    const char set[2] = {ch, 0};
    return TrimLeft(set);
}

CString& CString::TrimRight(char ch) {
    const char set[2] = {ch, 0};
    return TrimRight(set);
}

CString& CString::TrimLeft(LPCSTR set) {
    if (set == nullptr) return *this;
    int count = 0;
    while (count < GetLength() && IsOneOf(m_text[count], set)) ++count;
    Delete(0, count);
    return *this;
}

CString& CString::TrimRight(LPCSTR set) {
    if (set == nullptr) return *this;
    size_t length = Header().length;
    while (length > 0 && IsOneOf(m_text[length - 1], set)) --length;
    if (length != Header().length) SetLength(length);
    return *this;
}

void CString::Format(LPCSTR format, ...) {
    va_list args;
    va_start(args, format);
    FormatV(format, args);
    va_end(args);
}

void CString::FormatV(LPCSTR format, va_list args) {
    CString result;
    result.AppendFormatV(format, args);
    std::swap(m_text, result.m_text);
}

void CString::AppendFormat(LPCSTR format, ...) {
    va_list args;
    va_start(args, format);
    AppendFormatV(format, args);
    va_end(args);
}

void CString::AppendFormatV(LPCSTR format, va_list args) {
    if (format == nullptr) AfxThrowInvalidArgException();
    const std::string translated = std::strstr(format, "I") != nullptr ? TranslateFormat(format) : format;
    char small[256];
    va_list again;
    va_copy(again, args);
    const int length = std::vsnprintf(small, sizeof small, translated.c_str(), args);
    if (length < 0) {
        va_end(again);
        AfxThrowInvalidArgException();
    }
    const auto size = static_cast<size_t>(length);
    if (size < sizeof small) {
        AppendBytes(small, size);
    } else {
        CString large;
        large.Reserve(size, true);
        std::vsnprintf(large.m_text, size + 1, translated.c_str(), again);
        large.SetLength(size);
        AppendBytes(large.m_text, size);
    }
    va_end(again);
}

char* CString::GetBuffer(int minLength) {
    if (minLength < 0) AfxThrowInvalidArgException();
    Reserve(std::max(static_cast<size_t>(minLength), static_cast<size_t>(Header().length)), true);
    return m_text;
}

char* CString::GetBufferSetLength(int length) {
    GetBuffer(length);
    SetLength(static_cast<size_t>(length));
    return m_text;
}

void CString::ReleaseBuffer(int newLength) {
    const size_t capacity = Header().capacity;
    if (newLength > 0 && static_cast<size_t>(newLength) > capacity) AfxThrowInvalidArgException();
    if (!OwnsBuffer()) return;
    SetLength(newLength < 0 ? strnlen(m_text, capacity) : static_cast<size_t>(newLength));
}

void CString::Preallocate(int length) {
    if (length > 0) Reserve(static_cast<size_t>(length), true);
}

void CString::FreeExtra() {
    if (OwnsBuffer() && Header().length < Header().capacity) *this = CString(GetView());
}

CString operator+(const CString& a, const CString& b) {
    CString result;
    result.Preallocate(a.GetLength() + b.GetLength());
    result += a;
    return result += b;
}
CString operator+(const CString& a, LPCSTR b) { return CString(a) += b; }
CString operator+(LPCSTR a, const CString& b) { return CString(a) += b; }
CString operator+(const CString& a, char b) { return CString(a) += b; }
CString operator+(char a, const CString& b) { return CString(a) += b; }
