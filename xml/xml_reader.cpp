#include "xml/xml_reader.h"

#include "xml/xml_scanner.h"

using orvik::detail::XmlAttributes;
using orvik::detail::XmlScanner;

class CXMLReader::Events final : public orvik::detail::XmlEvents {
public:
    explicit Events(CXMLReader& reader) : m_reader(reader), m_scanner(*reader.m_pFile, reader.m_entities, *this) {}

    bool Read(unsigned long depth) { return m_scanner.Read(depth); }

    bool OnComment(unsigned long depth, std::string_view text) override {
        const CString comment(text);
        return Report([&] { m_reader.OnCommentTag(depth, comment); });
    }
    bool OnMeta(unsigned long depth, std::string_view name, const XmlAttributes& attributes) override {
        Take(name, attributes);
        return Report([&] { m_reader.OnMetaTag(depth, m_name, m_attributes); });
    }
    bool OnEmptyElement(unsigned long depth, std::string_view name, const XmlAttributes& attributes) override {
        Take(name, attributes);
        return Report([&] { m_reader.OnAttributeTag(depth, m_name, m_attributes); });
    }
    bool OnTextElement(unsigned long depth, std::string_view name, const XmlAttributes& attributes,
                       std::string_view text) override {
        Take(name, attributes);
        const CString content(text);
        return Report([&] { m_reader.OnSimpleTag(depth, m_name, m_attributes, content); });
    }
    bool OnOpen(unsigned long depth, std::string_view name, const XmlAttributes& attributes,
                unsigned long& contentDepth) override {
        Take(name, attributes);
        return Report([&] { contentDepth = m_reader.OnOpenComplexTag(depth, m_name, m_attributes); });
    }
    bool OnClose(unsigned long depth, std::string_view name) override {
        const CString closed(name);
        return Report([&] { m_reader.OnCloseComplexTag(depth, closed); });
    }

private:
    // The strings are made before the call: while it runs, the scanner's buffer may not be looked at.
    void Take(std::string_view name, const XmlAttributes& attributes) {
        m_name = name;
        m_attributes.RemoveAll();
        for (size_t index = 0; index < attributes.Count(); ++index)
            m_attributes.SetAt(CString(attributes.Name(index)), CString(attributes.Value(index)));
    }
    template <class Call>
    bool Report(Call call) {
        m_scanner.ShowPosition();
        call();
        m_scanner.TakePosition();
        return !m_reader.m_bBreak;
    }

    CXMLReader& m_reader;
    XmlScanner m_scanner;
    CString m_name;
    CMapStringToString m_attributes;
};

CXMLReader::CXMLReader() = default;
CXMLReader::~CXMLReader() = default;

BOOL CXMLReader::Read(unsigned long depth, CFile* pFile) {
    m_pFile = pFile;
    m_bBreak = FALSE;
    return Events(*this).Read(depth);
}

void CXMLReader::OnCommentTag(unsigned long, CString) {}
void CXMLReader::OnMetaTag(unsigned long, CString, CMapStringToString&) {}
void CXMLReader::OnAttributeTag(unsigned long, CString, CMapStringToString&) {}
void CXMLReader::OnSimpleTag(unsigned long, CString, CMapStringToString&, CString) {}
unsigned long CXMLReader::OnOpenComplexTag(unsigned long depth, CString, CMapStringToString&) { return depth + 1; }
void CXMLReader::OnCloseComplexTag(unsigned long, CString) {}
