#include "propdb/property_xml_reader.h"

#include "propdb/property_db_internal.h"
#include "propdb/property_key.h"
#include "propdb/property_tree.h"
#include "xml/number_text.h"

#include <algorithm>
#include <cstring>

namespace orvik::detail {
namespace {
constexpr std::string_view kRoot = "PROPERTYDB";
constexpr std::string_view kNode = "PATH";
constexpr char kElementSeparator = ';';

// Equality with a literal, compared in place.
template <size_t Size>
bool Is(std::string_view text, const char (&literal)[Size]) {
    return text.size() == Size - 1 && !std::memcmp(text.data(), literal, Size - 1);
}

// Elements make one node each; names with separators can make many.
bool HasSeparator(std::string_view name) { return name.find('.') != name.npos; }

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
    // A node costs far more memory than the two characters by which a name with separators can ask for one. An element for each
    // is longer than this many bytes, so only such names can use the nodes up, and a small file has some to spare.
    constexpr unsigned kBytesPerNode = 20, kNodesToSpare = 2000;
    m_elementsLeft = m_file.GetLength();
    m_nodesLeft = m_elementsLeft / kBytesPerNode + kNodesToSpare;
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
        if (m_manyNodes == 0 && HasSeparator(node)) m_manyNodes = m_database.m_usingStack.GetSize();
        m_node = nullptr;
    } else if (name != kRoot) {
        return false;
    }
    ++m_open;
    return true;
}

bool PropertyXmlReader::OnClose(unsigned long depth, std::string_view name) {
    if (name == kNode && depth > 0) {
        m_database.EndUsing();
        if (m_database.m_usingStack.GetSize() < m_manyNodes) m_manyNodes = 0;
        m_node = nullptr;
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
    if (depth == 0 || !Is(element, "PROPERTY")) return false;
    if (!attributes.Find("name", name) || !attributes.Find("type", type) || !attributes.Find("size", size)) return false;

    const auto integer = [](std::string_view number) { return ParseInteger(number); };
    const auto real = [](std::string_view number) { return ParseReal(number); };
    INT_PTR count = 0;
    if (Is(type, "str")) return Announce(size, count) && ReadStrings(name, count, text);
    if (Is(type, "u16")) return Announce(size, count) && ReadNumbers(m_words, name, count, text, integer);
    if (Is(type, "u32")) return Announce(size, count) && ReadNumbers(m_dwords, name, count, text, integer);
    if (Is(type, "r32")) return Announce(size, count) && ReadNumbers(m_floats, name, count, text, real);
    if (Is(type, "r64")) return Announce(size, count) && ReadNumbers(m_doubles, name, count, text, real);
    if (Is(type, "i64")) return Announce(size, count) && ReadNumbers(m_int64s, name, count, text, integer);
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
bool PropertyXmlReader::ReadStrings(std::string_view name, INT_PTR count, std::string_view text) {
    const INT_PTR held = text.empty() ? 0 : 1 + std::count(text.begin(), text.end(), kElementSeparator);
    m_strings.SetSize(std::max(count, held));
    for (INT_PTR index = 0; index < m_strings.GetSize(); ++index) m_strings.GetData()[index] = TakeElement(text);
    return Store(name, m_strings);
}

template <class Array, class Parse>
bool PropertyXmlReader::ReadNumbers(Array& array, std::string_view name, INT_PTR count, std::string_view text, Parse parse) {
    using Element = std::remove_reference_t<decltype(array[0])>;
    array.SetSize(count);
    for (INT_PTR index = 0; index < count; ++index) {
        if (text.empty()) {
            std::fill(array.GetData() + index, array.GetData() + count, Element{});
            break;
        }
        // The parsers stop at a separator themselves, so the last element need not be cut off.
        array.GetData()[index] = static_cast<Element>(parse(index + 1 == count ? text : TakeElement(text)));
    }
    return Store(name, array);
}

// Stores relative to the using path. The path is walked for the first value of a node; the others go straight to it, unless a
// quote in the path may reach into the key, or a derived class wants to see the calls. A key of another kind stays as it is.
// Large arrays are not kept: as much memory again as the tree takes would be too much. False when the file asks for more nodes
// than it has a right to.
template <class Array>
bool PropertyXmlReader::Store(std::string_view name, Array& array) {
    constexpr INT_PTR kSmall = 256;
    if (m_node && !name.empty() && !HasSeparator(name)) {
        CObject** const entry = CPropertyDB::MakeEntry(*m_node, name);
        if (entry && !*entry) *entry = new Array;
        if (entry && (*entry)->GetRuntimeClass() == Array::GetThisClass()) {
            static_cast<Array&>(**entry).Swap(array);
            m_database.m_bModified = TRUE;
        }
    } else {
        const char* const key = TerminatedName(name);
        if ((m_manyNodes != 0 || HasSeparator(name)) && !AffordNodes(key)) return false;
        m_database.SetMoving(key, array);
        FindNode();
    }
    if (array.GetSize() > kSmall) array.RemoveAll();
    return true;
}

// Counts the nodes that a value of this name makes on its way.
bool PropertyXmlReader::AffordNodes(const char* name) {
    const CPropertyDB::FullKey full(m_database, name, false);
    const CMapStringToOb* node = &m_database.m_root;
    std::string_view rest = full;
    ULONGLONG missing = 0;
    while (!rest.empty()) {
        const std::string_view segment = TakeSegment(rest);
        if (rest.empty()) break;
        CObject* child = nullptr;
        if (node && node->Lookup(segment, child) && child && !AsNode(child)) return true;  // a value in the way: nothing is made
        node = AsNode(child);
        missing += node == nullptr;
    }
    if (missing > m_nodesLeft) return false;
    m_nodesLeft -= missing;
    return true;
}

void PropertyXmlReader::FindNode() {
    const std::string_view path = m_database.m_strUsing.GetView();
    CObject* found = nullptr;
    if (IsOverridden(m_database) || path.find_first_of("'\"") != path.npos) return;
    if (m_database.Walk(path.substr(0, path.empty() ? 0 : path.size() - 1), found)) m_node = AsNode(found);
}

const char* PropertyXmlReader::TerminatedName(std::string_view name) {
    m_name.Clear();
    m_name << name << '\0';
    return m_name.View().data();
}
}  // namespace orvik::detail
