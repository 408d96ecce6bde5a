#include "xml/xml_scanner.h"

#include "platform/house_text_internal.h"
#include "xml/xml_escapes.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace orvik::detail {
namespace {
constexpr size_t kBlock = 16384;  // bytes fetched at a time; longer pieces make the buffer grow

enum : unsigned char { kWhite = 1, kLetterOrDigit = 2, kNameMark = 4, kValueStop = 8 };

constexpr std::array<unsigned char, 256> CharacterKinds() {
    std::array<unsigned char, 256> kinds{};
    for (const unsigned char ch : {' ', '\t', '\r', '\n'}) kinds[ch] = kWhite;
    for (unsigned ch = 0; ch < 26; ++ch) kinds['a' + ch] = kinds['A' + ch] = kLetterOrDigit;
    for (unsigned ch = 0; ch < 10; ++ch) kinds['0' + ch] = kLetterOrDigit;
    for (const unsigned char ch : {'.', '-', ':'}) kinds[ch] = kNameMark;
    for (const unsigned char ch : {'"', '&', '\0'}) kinds[ch] = kValueStop;
    return kinds;
}
constexpr auto kKinds = CharacterKinds();

bool Is(char ch, unsigned char kinds) { return (kKinds[static_cast<unsigned char>(ch)] & kinds) != 0; }

std::string_view Trimmed(std::string_view text) {
    const auto isWhite = [](char ch) { return ch == ' ' || (ch >= '\t' && ch <= '\r'); };
    while (!text.empty() && isWhite(text.front())) text.remove_prefix(1);
    while (!text.empty() && isWhite(text.back())) text.remove_suffix(1);
    return text;
}
}  // namespace

XmlScanner::XmlScanner(CFile& file, const XmlEntities& entities, XmlEvents& events)
    : m_file(file),
      m_entities(entities),
      m_events(events),
      m_buffer(new char[kBlock + 1]),
      m_capacity(kBlock),
      m_utf8(HouseIsUtf8()) {
    m_buffer[0] = 0;
}

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
    SkipLastName();
    SkipKinds(kLetterOrDigit | kNameMark);
    const size_t nameTo = Offset();
    char ch = Get();
    if (nameFrom == nameTo) return false;
    m_attributes.m_places.clear();
    m_attributes.m_converted.clear();
    if (Is(ch, kWhite)) {
        ch = GetBeyondWhite();
        if (!ReadAttributes(ch)) return false;
    }
    if (ch == '/' || ch == '?') {
        if (Get() != '>' || meta != (ch == '?')) return false;
        ShowAttributes();
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
    const bool escapes = !children && SkipTo('<');

    // From here on the buffer does not move until the event is over.
    ShowAttributes();
    const std::string_view name = Piece(nameFrom, nameTo);
    if (name.size() != m_lastName.size()) m_lastName = name;
    m_open.push_back({m_names.size(), depth, depth});
    m_names += name;
    if (children) {
        unsigned long contentDepth = depth;
        if (!m_events.OnOpen(depth, name, m_attributes, contentDepth)) return false;
        m_open.back().contentDepth = contentDepth;
        return true;
    }
    std::string_view text = Trimmed(Piece(textFrom, Offset()));
    if (IsForeign(text)) {
        m_converted = Utf8From1252(text);
        text = m_converted;
    }
    if (escapes) text = text.substr(0, UnescapeText(const_cast<char*>(text.data()), text.size(), m_entities));
    if (!m_events.OnTextElement(depth, name, m_attributes, text)) return false;
    if (!ReadEndTag()) return false;
    m_names.resize(m_open.back().name);
    m_open.pop_back();
    return true;
}

void XmlScanner::ShowAttributes() {
    m_attributes.m_base = m_buffer.get() + m_keep;
    if (!m_utf8) return;
    for (XmlAttributes::Place& place : m_attributes.m_places) {
        const std::string_view value(m_attributes.m_base + place.value, place.valueLength);
        if (!IsForeign(value)) continue;
        m_attributes.m_converted.push_back(Utf8From1252(value));
        place.converted = m_attributes.m_converted.size();
    }
}

bool XmlScanner::IsForeign(std::string_view piece) {
    if (!m_utf8 || m_characters == Characters::House || AsciiPrefix(piece) == piece.size()) return false;
    if (m_characters == Characters::Unknown)
        m_characters = RestIsUtf8(piece.data()) ? Characters::House : Characters::Windows1252;
    return m_characters == Characters::Windows1252;
}

// Of what the buffer holds from `from` on and what the file has behind it; the file's position stays.
bool XmlScanner::RestIsUtf8(const char* from) {
    std::string part(from, static_cast<size_t>(m_buffer.get() + m_end - from));
    const ULONGLONG position = m_file.Seek(0, CFile::current);
    bool good = true;
    for (bool atEnd = false; good && !atEnd;) {
        // A character may go on in the next part.
        std::string_view rest = part;
        rest.remove_prefix(AsciiPrefix(rest));
        constexpr size_t kLongest = 4;
        while (good && rest.size() >= kLongest) {
            good = TakeUtf8(rest) != kInvalid;
            rest.remove_prefix(AsciiPrefix(rest));
        }
        const size_t kept = rest.size();
        std::string next(rest);
        next.resize(kept + kBlock);
        const UINT got = good ? m_file.Read(next.data() + kept, static_cast<UINT>(kBlock)) : 0;
        next.resize(kept + got);
        part = std::move(next);
        atEnd = got == 0;
    }
    m_file.Seek(static_cast<LONGLONG>(position), CFile::begin);
    return good && IsUtf8(part);
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
    const std::string_view text = Piece(from, to);
    return m_events.OnComment(depth, IsForeign(text) ? Utf8From1252(text) : std::string(text));
}

// `ch` is the byte behind the white space that follows the name, and in the end the byte that follows the attributes.
bool XmlScanner::ReadAttributes(char& ch) {
    while (Is(ch, kLetterOrDigit)) {
        if (ReadPlainAttribute(ch)) continue;
        const size_t nameFrom = Offset() - 1;
        SkipKinds(kLetterOrDigit);
        const size_t nameTo = Offset();
        if (GetBeyondWhite() != '=' || GetBeyondWhite() != '"') return false;
        const size_t valueFrom = Offset();
        const bool escapes = SkipTo('"');
        size_t length = Offset() - valueFrom;
        if (Get() != '"') return false;
        IsForeign(Piece(valueFrom, valueFrom + length));  // to be asked of the bytes as they came
        if (escapes) length = UnescapeAttribute(m_buffer.get() + m_keep + valueFrom, length);
        m_attributes.m_places.push_back({nameFrom, nameTo - nameFrom, valueFrom, length});
        ch = GetBeyondWhite();
    }
    return true;
}

// The attribute as it is nearly always written: no white space, no escape, all of it in the buffer. False, and nothing taken, for
// any other. The 0 behind the buffer's last byte ends every loop.
bool XmlScanner::ReadPlainAttribute(char& ch) {
    const char* const tag = m_buffer.get() + m_keep;
    const char* const name = m_buffer.get() + m_at - 1;
    const char* at = name;
    while (Is(*at, kLetterOrDigit)) ++at;
    const char* const nameEnd = at;
    if (at[0] != '=' || at[1] != '"') return false;
    const char* const value = at += 2;
    while (!Is(*at, kValueStop)) ++at;
    if (*at != '"') return false;
    const char* const valueEnd = at++;
    while (Is(*at, kWhite)) ++at;
    if (*at == 0) return false;
    m_attributes.m_places.push_back({static_cast<size_t>(name - tag), static_cast<size_t>(nameEnd - name),
                                     static_cast<size_t>(value - tag), static_cast<size_t>(valueEnd - value)});
    ch = *at;
    m_at = static_cast<size_t>(at - m_buffer.get()) + 1;
    return true;
}

// The end tag of the innermost open element.
bool XmlScanner::ReadEndTag() {
    const std::string_view name = std::string_view(m_names).substr(m_open.back().name);
    const char* const tag = m_buffer.get() + m_at;
    if (m_end - m_at >= name.size() + 3 && tag[0] == '<' && tag[1] == '/' && tag[name.size() + 2] == '>' &&
        !std::memcmp(tag + 2, name.data(), name.size())) {
        m_at += name.size() + 3;
        return true;
    }
    m_keep = m_at;
    if (Get() != '<' || Get() != '/') return false;
    const size_t from = Offset();
    SkipKinds(kLetterOrDigit | kNameMark);
    const size_t to = Offset();
    if (Get() != '>') return false;
    return Piece(from, to) == name;
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
            std::unique_ptr<char[]> larger(new char[capacity + 1]);
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
    m_buffer[m_end] = 0;
    return got != 0;
}

// The byte after the next one.
char XmlScanner::PeekSecond() {
    while (m_end - m_at < 2)
        if (!Fill()) return 0;
    return m_buffer[m_at + 1];
}

void XmlScanner::SkipWhite() { SkipKinds(kWhite); }

// The byte 0 behind the buffer's last one ends the loops below; whether it is that one shows afterwards.
void XmlScanner::SkipKinds(unsigned char kinds) {
    do {
        const char* at = m_buffer.get() + m_at;
        while (Is(*at, kinds)) ++at;
        m_at = static_cast<size_t>(at - m_buffer.get());
    } while (m_at == m_end && Fill());
}

// Neighbours mostly have the same name, which one comparison then passes instead of a loop.
void XmlScanner::SkipLastName() {
    const size_t length = m_lastName.size();
    if (m_end - m_at > length && !std::memcmp(m_buffer.get() + m_at, m_lastName.data(), length)) m_at += length;
}

// Moves to the next `stop`, to a byte 0, or to the end of the input, whichever comes first. True when a "&" was passed.
bool XmlScanner::SkipTo(char stop) {
    bool escapes = false;
    for (;;) {
        const char* at = m_buffer.get() + m_at;
        while (*at != stop && *at != '&' && *at != 0) ++at;
        m_at = static_cast<size_t>(at - m_buffer.get());
        if (*at == '&' && stop != '&') {
            escapes = true;
            ++m_at;
        } else if (m_at != m_end || !Fill()) {
            return escapes;
        }
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
        m_buffer[m_end] = 0;
    }
}
}  // namespace orvik::detail
