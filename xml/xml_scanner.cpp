#include "xml/xml_scanner.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace orvik::detail {
namespace {
constexpr size_t kBlock = 32768;  // bytes fetched at a time; longer pieces make the buffer grow

enum : unsigned char { kWhite = 1, kLetterOrDigit = 2, kNameMark = 4 };

constexpr std::array<unsigned char, 256> CharacterKinds() {
    std::array<unsigned char, 256> kinds{};
    for (const unsigned char ch : {' ', '\t', '\r', '\n'}) kinds[ch] = kWhite;
    for (unsigned ch = 0; ch < 26; ++ch) kinds['a' + ch] = kinds['A' + ch] = kLetterOrDigit;
    for (unsigned ch = 0; ch < 10; ++ch) kinds['0' + ch] = kLetterOrDigit;
    for (const unsigned char ch : {'.', '-', ':'}) kinds[ch] = kNameMark;
    return kinds;
}
constexpr auto kKinds = CharacterKinds();

bool Is(char ch, unsigned char kinds) { return (kKinds[static_cast<unsigned char>(ch)] & kinds) != 0; }

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view white = " \t\n\v\f\r";
    const size_t first = text.find_first_not_of(white);
    if (first == text.npos) return text.substr(0, 0);
    return text.substr(first, text.find_last_not_of(white) - first + 1);
}
}  // namespace

XmlScanner::XmlScanner(CFile& file, const XmlEntities& entities, XmlEvents& events)
    : m_file(file), m_entities(entities), m_events(events), m_buffer(new char[kBlock]), m_capacity(kBlock) {}

bool XmlScanner::Read(unsigned long depth) {
    while (m_end < 3 && Fill()) {
    }
    bool complete = false;
    if (m_end >= 3) {
        if (!std::memcmp(m_buffer.get(), "\xEF\xBB\xBF", 3)) m_at = 3;
        while (ReadWhole(depth)) {
        }
        m_keep = m_at;
        complete = !m_refused && Peek() == 0;
    } else {
        m_at = m_end;
    }
    ShowPosition();
    return complete;
}

// One tag with everything in it. Elements inside elements are kept on a list of their own, not on the call stack.
bool XmlScanner::ReadWhole(unsigned long depth) {
    do {
        if (m_open.empty()) {
            if (!ReadTag(depth)) return false;
            continue;
        }
        SkipWhite();
        m_keep = m_at;
        const bool child = Peek() == '<' && PeekSecond() != '/';
        if (child ? !ReadTag(m_open.back().contentDepth) : !CloseElement()) return false;
    } while (!m_open.empty());
    return true;
}

bool XmlScanner::ReadTag(unsigned long depth) {
    SkipWhite();
    m_keep = m_at;
    if (Get() != '<') return false;
    if (Peek() == '!') return Get(), ReadComment(depth);
    const bool meta = Peek() == '?';
    if (meta) Get();

    const size_t nameFrom = Offset();
    SkipNameCharacters(kLetterOrDigit | kNameMark);
    const size_t nameTo = Offset();
    char ch = Get();
    if (nameFrom == nameTo) return false;
    m_attributes.m_places.clear();
    if (Is(ch, kWhite)) {
        ch = GetBeyondWhite();
        if (!ReadAttributes(ch)) return false;
    }
    if (ch == '/' || ch == '?') {
        if (Get() != '>' || meta != (ch == '?')) return false;
        m_attributes.m_base = m_buffer.get() + m_keep;
        const std::string_view name = Piece(nameFrom, nameTo);
        return meta ? m_events.OnMeta(depth, name, m_attributes) : m_events.OnEmptyElement(depth, name, m_attributes);
    }
    if (ch != '>') return false;
    if (m_open.size() == kXmlMaxNesting) {
        m_refused = true;
        return false;
    }
    SkipWhite();
    const size_t textFrom = Offset();
    const bool children = Peek() == '<' && PeekSecond() != '/';
    if (!children) SkipTo('<');

    // From here on the buffer does not move until the event is over.
    m_attributes.m_base = m_buffer.get() + m_keep;
    const std::string_view name = Piece(nameFrom, nameTo);
    m_open.push_back({m_names.size(), depth, depth});
    m_names += name;
    if (children) {
        unsigned long contentDepth = depth;
        if (!m_events.OnOpen(depth, name, m_attributes, contentDepth)) return false;
        m_open.back().contentDepth = contentDepth;
        return true;
    }
    const std::string_view raw = Trimmed(Piece(textFrom, Offset()));
    const std::string_view text = raw.substr(0, UnescapeText(const_cast<char*>(raw.data()), raw.size(), m_entities));
    if (!m_events.OnTextElement(depth, name, m_attributes, text)) return false;
    if (!ReadEndTag()) return false;
    m_names.resize(m_open.back().name);
    m_open.pop_back();
    return true;
}

bool XmlScanner::ReadComment(unsigned long depth) {
    const size_t from = Offset();
    for (char ch = Peek(); ch != '!'; ch = Peek()) {
        if (ch == '>' || ch == 0) return false;
        Get();
    }
    const size_t to = Offset();
    Get();
    if (Get() != '>') return false;
    return m_events.OnComment(depth, Piece(from, to));
}

// `ch` is the byte behind the white space that follows the name, and in the end the byte that follows the attributes.
bool XmlScanner::ReadAttributes(char& ch) {
    while (Is(ch, kLetterOrDigit)) {
        const size_t nameFrom = Offset() - 1;
        SkipNameCharacters(kLetterOrDigit);
        const size_t nameTo = Offset();
        if (GetBeyondWhite() != '=' || GetBeyondWhite() != '"') return false;
        const size_t valueFrom = Offset();
        SkipTo('"');
        const size_t valueTo = Offset();
        if (Get() != '"') return false;
        const size_t length = UnescapeAttribute(m_buffer.get() + m_keep + valueFrom, valueTo - valueFrom);
        m_attributes.m_places.push_back({nameFrom, nameTo - nameFrom, valueFrom, length});
        ch = GetBeyondWhite();
    }
    return true;
}

// The end tag of the innermost open element.
bool XmlScanner::ReadEndTag() {
    m_keep = m_at;
    if (Get() != '<' || Get() != '/') return false;
    const size_t from = Offset();
    SkipNameCharacters(kLetterOrDigit | kNameMark);
    const size_t to = Offset();
    if (Get() != '>') return false;
    return Piece(from, to) == std::string_view(m_names).substr(m_open.back().name);
}

bool XmlScanner::CloseElement() {
    if (!ReadEndTag()) return false;
    const OpenElement closed = m_open.back();
    m_open.pop_back();
    const bool goOn = m_events.OnClose(closed.depth, std::string_view(m_names).substr(closed.name));
    m_names.resize(closed.name);
    return goOn;
}

// Fetches more bytes behind those that are there; false at the end of the file.
bool XmlScanner::Fill() {
    if (m_end == m_capacity) {
        const size_t kept = m_end - m_keep;
        if (kept > m_capacity / 2) {
            const size_t capacity = m_capacity * 2;
            std::unique_ptr<char[]> larger(new char[capacity]);
            std::memcpy(larger.get(), m_buffer.get() + m_keep, kept);
            m_buffer = std::move(larger);
            m_capacity = capacity;
        } else {
            std::memmove(m_buffer.get(), m_buffer.get() + m_keep, kept);
        }
        m_at -= m_keep;
        m_end = kept;
        m_keep = 0;
    }
    const UINT room = static_cast<UINT>(std::min<size_t>(m_capacity - m_end, 1u << 30));
    const UINT got = m_file.Read(m_buffer.get() + m_end, room);
    m_end += got;
    return got != 0;
}

// The next byte; 0 at the end of the input. A byte 0 is such an end, and stays where it is.
char XmlScanner::Get() {
    const char ch = Peek();
    if (ch != 0) ++m_at;
    return ch;
}

char XmlScanner::GetBeyondWhite() {
    SkipWhite();
    return Get();
}

char XmlScanner::Peek() {
    if (m_at == m_end && !Fill()) return 0;
    return m_buffer[m_at];
}

// The byte after the next one.
char XmlScanner::PeekSecond() {
    while (m_end - m_at < 2)
        if (!Fill()) return 0;
    return m_buffer[m_at + 1];
}

void XmlScanner::SkipWhite() {
    while (Is(Peek(), kWhite)) ++m_at;
}

void XmlScanner::SkipNameCharacters(unsigned char kinds) {
    while (Is(Peek(), kinds)) ++m_at;
}

// Moves to the next `stop`, to a byte 0, or to the end of the input, whichever comes first.
void XmlScanner::SkipTo(char stop) {
    for (;;) {
        const char* const from = m_buffer.get() + m_at;
        const size_t size = m_end - m_at;
        const void* const found = size ? std::memchr(from, stop, size) : nullptr;
        const size_t before = found ? static_cast<size_t>(static_cast<const char*>(found) - from) : size;
        if (const void* const zero = before ? std::memchr(from, 0, before) : nullptr) {
            m_at += static_cast<size_t>(static_cast<const char*>(zero) - from);
            return;
        }
        m_at += before;
        if (found || !Fill()) return;
    }
}

void XmlScanner::ShowPosition() {
    if (m_at != m_end)
        m_shown = m_file.Seek(-static_cast<LONGLONG>(m_end - m_at), CFile::current);
    else
        m_shown = m_file.Seek(0, CFile::current);
}

void XmlScanner::TakePosition() {
    if (m_file.Seek(0, CFile::current) == m_shown) {
        m_file.Seek(static_cast<LONGLONG>(m_end - m_at), CFile::current);
    } else {
        m_at = m_end = m_keep;
    }
}
}  // namespace orvik::detail
