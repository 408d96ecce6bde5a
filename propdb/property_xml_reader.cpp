#include "propdb/property_xml_reader.h"

#include "propdb/property_db_internal.h"
#include "xml/number_text.h"

#include <algorithm>

namespace orvik::detail {
namespace {
constexpr std::string_view kRoot = "PROPERTYDB";
constexpr std::string_view kNode = "PATH";
constexpr std::string_view kValue = "PROPERTY";
constexpr char kElementSeparator = ';';

// Cuts the text behind the next separator off and returns what stood before it.
std::string_view TakeElement(std::string_view& text) {
    const size_t end = text.find(kElementSeparator);
    const std::string_view element = text.substr(0, end);
    text = end == text.npos ? std::string_view() : text.substr(end + 1);
    return element;
}
}  // namespace

PropertyXmlReader::PropertyXmlReader(CPropertyDB& database, CFile& file) : m_database(database), m_file(file) {}

bool PropertyXmlReader::Read() {
    m_elementsLeft = m_file.GetLength();
    return XmlScanner(m_file, m_entities, *this).Read(0) && m_open == 0 && m_rootClosed;
}

bool PropertyXmlReader::OnComment(unsigned long, std::string_view) { return true; }
bool PropertyXmlReader::OnMeta(unsigned long, std::string_view, const XmlAttributes&) { return true; }

// An empty node, which is written like this, is not made again; an empty database is.
bool PropertyXmlReader::OnEmptyElement(unsigned long depth, std::string_view name, const XmlAttributes&) {
    if (depth == 0 && name == kRoot) m_rootClosed = true;
    return true;
}

bool PropertyXmlReader::OnOpen(unsigned long depth, std::string_view name, const XmlAttributes& attributes,
                               unsigned long& contentDepth) {
    contentDepth = depth + 1;
    if (name == kNode && depth > 0) {
        std::string_view node;
        if (!attributes.Find("name", node)) return false;
        m_database.BeginUsing(TerminatedName(node));
    } else if (name != kRoot) {
        return false;
    }
    ++m_open;
    return true;
}

bool PropertyXmlReader::OnClose(unsigned long depth, std::string_view name) {
    if (name == kNode && depth > 0) {
        m_database.EndUsing();
    } else if (name == kRoot && depth == 0) {
        m_rootClosed = true;
    } else {
        return false;
    }
    --m_open;
    return true;
}

bool PropertyXmlReader::OnTextElement(unsigned long depth, std::string_view element, const XmlAttributes& attributes,
                                      std::string_view text) {
    std::string_view name, type, size;
    if (depth == 0 || element != kValue) return false;
    if (!attributes.Find("name", name) || !attributes.Find("type", type) || !attributes.Find("size", size)) return false;

    const char* const key = TerminatedName(name);
    const auto integer = [](std::string_view number) { return ParseInteger(number); };
    const auto real = [](std::string_view number) { return ParseReal(number); };
    INT_PTR count = 0;
    if (type == "str") return Announce(size, count) && ReadStrings(key, count, text);
    if (type == "u16") return Announce(size, count) && ReadNumbers(m_words, key, count, text, integer);
    if (type == "u32") return Announce(size, count) && ReadNumbers(m_dwords, key, count, text, integer);
    if (type == "r32") return Announce(size, count) && ReadNumbers(m_floats, key, count, text, real);
    if (type == "r64") return Announce(size, count) && ReadNumbers(m_doubles, key, count, text, real);
    if (type == "i64") return Announce(size, count) && ReadNumbers(m_int64s, key, count, text, integer);
    return true;  // a type of another time
}

// All announced sizes together may not pass the file's length: no file that was written announces more.
bool PropertyXmlReader::Announce(std::string_view size, INT_PTR& count) {
    if (size.size() > 18) return false;  // more digits than any file has bytes
    const int64_t announced = ParseInteger(size);
    if (announced < 0 || static_cast<ULONGLONG>(announced) > m_elementsLeft) return false;
    m_elementsLeft -= static_cast<ULONGLONG>(announced);
    count = static_cast<INT_PTR>(announced);
    return true;
}

// As many elements as the text holds: a text that was written as one and holds separators comes back as several.
bool PropertyXmlReader::ReadStrings(const char* name, INT_PTR count, std::string_view text) {
    const INT_PTR held = text.empty() ? 0 : 1 + std::count(text.begin(), text.end(), kElementSeparator);
    m_strings.SetSize(std::max(count, held));
    for (INT_PTR index = 0; index < m_strings.GetSize(); ++index) m_strings.GetData()[index] = TakeElement(text);
    Store(name, m_strings);
    return true;
}

template <class Array, class Parse>
bool PropertyXmlReader::ReadNumbers(Array& array, const char* name, INT_PTR count, std::string_view text, Parse parse) {
    using Element = std::remove_reference_t<decltype(array[0])>;
    array.SetSize(count);
    for (INT_PTR index = 0; index < count; ++index) {
        if (text.empty()) {
            std::fill(array.GetData() + index, array.GetData() + count, Element{});
            break;
        }
        array.GetData()[index] = static_cast<Element>(parse(TakeElement(text)));
    }
    Store(name, array);
    return true;
}

// Large arrays are not kept: as much memory again as the tree takes would be too much. A key of another kind stays as it is.
template <class Array>
void PropertyXmlReader::Store(const char* name, Array& array) {
    constexpr INT_PTR kSmall = 256;
    m_database.SetMoving(name, array);
    if (array.GetSize() > kSmall) array.RemoveAll();
}

const char* PropertyXmlReader::TerminatedName(std::string_view name) {
    m_name.Clear();
    m_name << name << '\0';
    return m_name.View().data();
}
}  // namespace orvik::detail
