// The XML form: writing. Reading is in property_xml_reader.cpp.
#include "propdb/property_db.h"
#include "propdb/property_tree.h"
#include "propdb/property_xml_reader.h"
#include "xml/number_text.h"
#include "xml/short_text.h"
#include "xml/xml_writer.h"

#include <vector>

using orvik::detail::AsNode;
using orvik::detail::ShortText;

namespace {
constexpr char kElementSeparator = ';';

std::string_view ElementText(const CString& value) { return value.GetView(); }
orvik::detail::NumberText ElementText(double value) { return orvik::detail::GeneralText(value); }
orvik::detail::NumberText ElementText(__int64 value) { return orvik::detail::IntegerText(value); }
orvik::detail::NumberText ElementText(DWORD value) { return orvik::detail::UnsignedText(value); }
orvik::detail::NumberText ElementText(WORD value) { return orvik::detail::UnsignedText(value); }

std::string_view View(std::string_view text) { return text; }
std::string_view View(const orvik::detail::NumberText& text) { return text.View(); }

// The elements joined by ";", and nothing more: a text that holds a ";" reads back as several.
template <class Array>
INT_PTR Join(const CObject* object, ShortText& text) {
    const auto& array = static_cast<const Array&>(*object);
    const INT_PTR count = array.GetSize();
    for (INT_PTR index = 0; index < count; ++index) {
        if (index > 0) text << kElementSeparator;
        text << View(ElementText(array.GetData()[index]));
    }
    return count;
}

struct Kind {
    const char* tag;
    const CRuntimeClass* known;
    INT_PTR (*join)(const CObject* object, ShortText& text);
};
// Arrays of bytes and of 32-bit integers have no tag and stay out of XML files, on purpose.
const Kind kKinds[] = {
    {"str", RUNTIME_CLASS(CStringArray), Join<CStringArray>}, {"u16", RUNTIME_CLASS(CWordArray), Join<CWordArray>},
    {"u32", RUNTIME_CLASS(CDWordArray), Join<CDWordArray>},   {"r32", RUNTIME_CLASS(CFloatArray), Join<CFloatArray>},
    {"r64", RUNTIME_CLASS(CDoubleArray), Join<CDoubleArray>}, {"i64", RUNTIME_CLASS(CInt64Array), Join<CInt64Array>},
};
}  // namespace

BOOL CPropertyDB::SaveAsXML(CFile* pFile) {
    CXMLWriter writer(pFile);
    writer.BeginTag("PROPERTYDB");
    WriteXMLNodes(&m_root, writer);
    writer.EndTag();
    return TRUE;
}

// Depth first in the order in which the entries came, with a list of its own instead of the call stack.
void CPropertyDB::WriteXMLNodes(CMapStringToOb* node, CXMLWriter& writer) {
    struct Level {
        const CMapStringToOb* node;
        POSITION at;
    };
    std::vector<Level> levels{{node, node->GetStartPosition()}};
    ShortText text;
    for (;;) {
        Level& level = levels.back();
        if (!level.at) {
            levels.pop_back();
            if (levels.empty()) return;
            writer.EndTag();
            continue;
        }
        std::string_view name;
        CObject* child = nullptr;
        level.node->GetNextAssoc(level.at, name, child);
        if (!child) continue;
        if (const CMapStringToOb* const inner = AsNode(child)) {
            writer.BeginTag("PATH");
            writer.WriteAttr("name", name);
            levels.push_back({inner, inner->GetStartPosition()});
            continue;
        }
        for (const Kind& kind : kKinds) {
            if (child->GetRuntimeClass() != kind.known) continue;
            text.Clear();
            const INT_PTR size = kind.join(child, text);
            writer.BeginTag("PROPERTY");
            writer.WriteAttr("name", name);
            writer.WriteAttr("type", kind.tag);
            writer.WriteAttr("size", orvik::detail::IntegerText(size).View());
            writer.WriteText(text.View());
            writer.EndTag();
            break;
        }
    }
}

bool CPropertyDB::LoadXML(CFile& file) {
    const INT_PTR depth = m_usingStack.GetSize();
    const CString path = m_strUsing;
    const auto restore = [&] {
        m_strUsing = path;
        while (m_usingStack.GetSize() > depth) m_usingStack.RemoveAt(m_usingStack.GetSize() - 1);
    };
    try {
        const bool loaded = orvik::detail::PropertyXmlReader(*this, file).Read();
        restore();
        return loaded;
    } catch (...) {
        restore();
        throw;
    }
}
