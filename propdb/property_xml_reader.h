// Loads the XML form of a property database, piece by piece through the database's own BeginUsing, SetValue and EndUsing.
// Internal. One thread. The database and the file are borrowed.
#pragma once

#include "afx/array.h"
#include "frame/numeric_arrays.h"
#include "propdb/property_db.h"
#include "xml/short_text.h"
#include "xml/xml_scanner.h"

namespace orvik::detail {
class PropertyXmlReader final : private XmlEvents {
public:
    PropertyXmlReader(CPropertyDB& database, CFile& file);

    // True when the whole document was read and its root closed. A stopped reading leaves the using path as it then was.
    bool Read();

private:
    bool OnComment(unsigned long depth, std::string_view text) override;
    bool OnMeta(unsigned long depth, std::string_view name, const XmlAttributes& attributes) override;
    bool OnEmptyElement(unsigned long depth, std::string_view name, const XmlAttributes& attributes) override;
    bool OnTextElement(unsigned long depth, std::string_view name, const XmlAttributes& attributes,
                       std::string_view text) override;
    bool OnOpen(unsigned long depth, std::string_view name, const XmlAttributes& attributes,
                unsigned long& contentDepth) override;
    bool OnClose(unsigned long depth, std::string_view name) override;

    bool Announce(std::string_view size, INT_PTR& count);
    bool ReadStrings(std::string_view name, INT_PTR count, std::string_view text);
    void FindNode();
    bool AffordNodes(const char* name);
    template <class Array>
    bool Store(std::string_view name, Array& array);
    template <class Array, class Parse>
    bool ReadNumbers(Array& array, std::string_view name, INT_PTR count, std::string_view text, Parse parse);
    const char* TerminatedName(std::string_view name);

    CPropertyDB& m_database;
    CFile& m_file;
    XmlEntities m_entities;
    // The node of the using path, once a value has been stored there and if the path can be cut from the key; see Store.
    CMapStringToOb* m_node = nullptr;
    ULONGLONG m_elementsLeft = 0;  // that may still be announced
    ULONGLONG m_nodesLeft = 0;     // that may still be made
    INT_PTR m_manyNodes = 0;       // depth of the using stack at the outermost open node whose name makes many; 0: none
    unsigned m_open = 0;
    bool m_rootClosed = false;
    ShortText m_name;
    // One of each kind, used over and over.
    CStringArray m_strings;
    CWordArray m_words;
    CDWordArray m_dwords;
    CFloatArray m_floats;
    CDoubleArray m_doubles;
    CInt64Array m_int64s;
};
}  // namespace orvik::detail
