// The XML form: writing. Reading is in property_xml_reader.cpp.
#include "propdb/property_db.h"
#include "propdb/property_tree.h"
#include "propdb/property_xml_reader.h"
#include "xml/number_text.h"
#include "xml/short_text.h"
#include "xml/xml_escapes.h"
#include "xml/xml_writer.h"

#include <vector>

using orvik::detail::AsNode;
using orvik::detail::ShortText;
using orvik::detail::XmlEntities;

namespace {
constexpr char kElementSeparator = ';';

struct Manner {
    const XmlEntities& entities;
    bool exactReals;
};

template <class Real>
void AppendReal(ShortText& line, Real value, const Manner& manner) {
    line << (manner.exactReals ? orvik::detail::ExactText(value) : orvik::detail::GeneralText(value)).View();
}
void AppendElement(ShortText& line, const CString& value, const Manner& manner) {
    orvik::detail::AppendEscapedText(line, value.GetView(), manner.entities);
}
void AppendElement(ShortText& line, double value, const Manner& manner) { AppendReal(line, value, manner); }
void AppendElement(ShortText& line, float value, const Manner& manner) { AppendReal(line, value, manner); }
void AppendElement(ShortText& line, __int64 value, const Manner&) { line << orvik::detail::IntegerText(value).View(); }
void AppendElement(ShortText& line, DWORD value, const Manner&) { line << orvik::detail::UnsignedText(value).View(); }
void AppendElement(ShortText& line, WORD value, const Manner&) { line << orvik::detail::UnsignedText(value).View(); }

// The tag of each class; null for arrays of bytes and of 32-bit integers, which stay out of XML files, on purpose.
constexpr const char* TagOf(const CStringArray*) { return "str"; }
constexpr const char* TagOf(const CWordArray*) { return "u16"; }
constexpr const char* TagOf(const CDWordArray*) { return "u32"; }
constexpr const char* TagOf(const CFloatArray*) { return "r32"; }
constexpr const char* TagOf(const CDoubleArray*) { return "r64"; }
constexpr const char* TagOf(const CInt64Array*) { return "i64"; }
constexpr const char* TagOf(const CObject*) { return nullptr; }
}  // namespace

BOOL CPropertyDB::SaveAsXML(CFile* pFile) {
    CXMLWriter writer(pFile);
    writer.BeginTag("PROPERTYDB");
    if (!WriteXMLNodes(&m_root, writer)) return FALSE;
    writer.EndTag();
    return TRUE;
}

// Depth first in the order in which the entries came, with a list of its own instead of the call stack. False for a tree that
// could not be loaded again.
bool CPropertyDB::WriteXMLNodes(CMapStringToOb* node, CXMLWriter& writer) {
    struct Level {
        const CMapStringToOb* node;
        POSITION at;
    };
    std::vector<Level> levels{{node, node->GetStartPosition()}};
    for (;;) {
        Level& level = levels.back();
        if (!level.at) {
            levels.pop_back();
            if (levels.empty()) return true;
            writer.EndTag();
            continue;
        }
        std::string_view name;
        CObject* child = nullptr;
        level.node->GetNextAssoc(level.at, name, child);
        if (!child) continue;
        if (levels.size() > orvik::detail::kMaxFileDepth) return false;
        if (const CMapStringToOb* const inner = AsNode(child)) {
            writer.BeginTag("PATH");
            writer.WriteAttr("name", name);
            levels.push_back({inner, inner->GetStartPosition()});
            continue;
        }
        orvik::detail::WithValueClass(child->GetRuntimeClass(), [&](auto* none) {
            using Array = std::remove_pointer_t<decltype(none)>;
            if constexpr (TagOf(static_cast<const Array*>(nullptr)) != nullptr) {
                const auto& array = static_cast<const Array&>(*child);
                const INT_PTR size = array.GetSize();
                writer.WriteElement(
                    "PROPERTY", {{"name", name}, {"type", TagOf(&array)}, {"size", orvik::detail::IntegerText(size).View()}},
                    // The elements joined by ";", and nothing more: a text that holds a ";" reads back as several.
                    [&](ShortText& line, const XmlEntities& entities) {
                        const Manner manner{entities, m_exactReals};
                        for (INT_PTR index = 0; index < size; ++index) {
                            if (index > 0) line << kElementSeparator;
                            AppendElement(line, array.GetData()[index], manner);
                        }
                    });
            }
        });
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
