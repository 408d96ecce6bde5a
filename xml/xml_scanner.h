// The grammar of the XML dialect: one pass over a seekable file, what is found handed on as pieces of the input, nothing copied.
// Internal: CXMLReader and the property database's loading stand on it. One thread. The file is borrowed.
//
// The rules speak of single bytes fetched from the file. Here they come out of a block, and the file's own position differs from
// the position in the document until ShowPosition() or the end of Read() puts it right.
#pragma once

#include "afx/file.h"
#include "xml/xml_text.h"

#include <cstring>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvik::detail {
// Elements may stand in one another this deep; a document that goes deeper is refused.
constexpr size_t kXmlMaxNesting = 256;

// The attributes of one tag in the order of the document, unescaped. Valid during the call that brings them.
class XmlAttributes {
public:
    size_t Count() const { return m_places.size(); }
    std::string_view Name(size_t index) const { return {m_base + m_places[index].name, m_places[index].nameLength}; }
    std::string_view Value(size_t index) const {
        const Place& place = m_places[index];
        return place.converted != 0 ? m_converted[place.converted - 1]
                                    : std::string_view(m_base + place.value, place.valueLength);
    }
    // Of attributes of the same name the last counts. The name is a literal.
    template <size_t Size>
    bool Find(const char (&name)[Size], std::string_view& value) const {
        for (size_t index = m_places.size(); index-- > 0;)
            if (m_places[index].nameLength == Size - 1 && !std::memcmp(m_base + m_places[index].name, name, Size - 1)) {
                value = Value(index);
                return true;
            }
        return false;
    }

private:
    friend class XmlScanner;
    struct Place {
        size_t name, nameLength, value, valueLength;  // offsets from the tag's first byte
        size_t converted = 0;                         // from 1 on: the value is one of `m_converted`
    };
    std::vector<Place> m_places;
    std::deque<std::string> m_converted;  // values whose characters are not those of the file
    const char* m_base = nullptr;
};

// What the scanner reports. Texts and attributes are valid during the call. Every function returns false to stop the reading.
class XmlEvents {
public:
    virtual bool OnComment(unsigned long depth, std::string_view text) = 0;
    virtual bool OnMeta(unsigned long depth, std::string_view name, const XmlAttributes& attributes) = 0;
    virtual bool OnEmptyElement(unsigned long depth, std::string_view name, const XmlAttributes& attributes) = 0;
    virtual bool OnTextElement(unsigned long depth, std::string_view name, const XmlAttributes& attributes,
                               std::string_view text) = 0;
    // An element with children opens; contentDepth is the depth that they are reported with. It closes with the depth it opened
    // with.
    virtual bool OnOpen(unsigned long depth, std::string_view name, const XmlAttributes& attributes,
                        unsigned long& contentDepth) = 0;
    virtual bool OnClose(unsigned long depth, std::string_view name) = 0;

protected:
    ~XmlEvents() = default;
};

class XmlScanner {
public:
    XmlScanner(CFile& file, const XmlEntities& entities, XmlEvents& events);

    // Reads from the file's position on. True when the reading ended at the end of the input (a byte 0 counts as one), which is
    // also so when the last byte was the one that did not fit: whoever needs a whole document checks that its root was closed.
    // The file is left behind the last byte taken.
    bool Read(unsigned long depth);

    // For events that let others see the file: its position becomes that of the document, and afterwards, if it was moved, the
    // reading goes on where it stands.
    void ShowPosition();
    void TakePosition();

private:
    struct OpenElement {
        size_t name;  // where its name begins in m_names
        unsigned long depth, contentDepth;
    };

    bool ReadWhole(unsigned long depth);
    bool ReadTag(unsigned long depth);
    bool ReadComment(unsigned long depth);
    bool ReadAttributes(char& ch);
    bool ReadPlainAttribute(char& ch);
    void ShowAttributes();  // ready for an event
    bool ReadEndTag();
    bool CloseElement();

    // In a UTF-8 process a file that is no UTF-8 as a whole is Windows-1252: true when `piece`, which the buffer holds, has to be
    // converted for that. Asks the file once, at the first byte above 127.
    bool IsForeign(std::string_view piece);
    bool RestIsUtf8(const char* from);

    bool Fill();
    char PeekSecond();  // the byte after the next one
    // The next byte; 0 at the end of the input. A byte 0 is such an end, and stays where it is.
    char Peek() {
        if (m_at == m_end && !Fill()) [[unlikely]]
            return 0;
        return m_buffer[m_at];
    }
    char Get() {
        const char ch = Peek();
        m_at += ch != 0;
        return ch;
    }
    char GetBeyondWhite() {
        SkipWhite();
        return Get();
    }
    void SkipWhite();
    bool SkipTo(char stop);
    void SkipKinds(unsigned char kinds);
    void SkipLastName();
    // Offsets are taken from the tag's first byte, which stays in the buffer until the next tag begins.
    size_t Offset() const { return m_at - m_keep; }
    std::string_view Piece(size_t from, size_t to) const { return {m_buffer.get() + m_keep + from, to - from}; }

    CFile& m_file;
    const XmlEntities& m_entities;
    XmlEvents& m_events;
    std::unique_ptr<char[]> m_buffer;  // a byte 0 stands behind what was fetched
    size_t m_capacity;
    size_t m_keep = 0;  // first byte of the tag at work
    size_t m_at = 0;    // the position in the document
    size_t m_end = 0;   // the file's position
    ULONGLONG m_shown = 0;
    XmlAttributes m_attributes;
    std::vector<OpenElement> m_open;
    std::string m_names;      // of the open elements, one behind another
    std::string m_lastName;   // of some element before
    std::string m_converted;  // the text of an element
    bool m_refused = false;
    const bool m_utf8;
    enum class Characters : unsigned char { Unknown, House, Windows1252 } m_characters = Characters::Unknown;
};
}  // namespace orvik::detail
