// Writes an XML document from front to back into an open file: one space of indentation a level, lines ended by carriage return
// and line feed. It keeps no document, only the names and states of the open elements. Used by one thread at a time. The file is
// borrowed: it stays the caller's and must outlive the writer.
//
// Write an element's attributes first, then either its text or its children. Nothing checks that: an attribute after the text
// lands in the content. The destructor closes nothing; elements left open stay open.
#pragma once

#include "afx/array.h"
#include "afx/file.h"
#include "afx/string.h"
#include "xml/short_text.h"
#include "xml/xml_text.h"

#include <initializer_list>
#include <string_view>

class CPropertyDB;

class ORVIK_API CXMLWriter {
public:
    // Writes the declaration line at once. Every function here lets the CFileException of a failing write pass.
    explicit CXMLWriter(CFile* pFile);
    CXMLWriter(const CXMLWriter&) = delete;
    CXMLWriter& operator=(const CXMLWriter&) = delete;

    // A line "<?text?>" or "<!text!>" (not the usual comment marks: the format has its own). They change no element's state, so
    // they belong before the first element or behind a child.
    void SetMeta(const char* text);
    void SetComment(const char* text);

    void BeginTag(const char* name);

    // The functions below need an open element and raise the invalid-argument exception without one.
    void EndTag();
    void SetAttr(const char* name, CString value);
    void SetAttr(const char* name, int value);
    void SetAttr(const char* name, double value);  // "%G"

    void SetText(CString text);
    void SetText(float value);   // "%G"
    void SetText(double value);  // "%G"
    void SetText(unsigned long value);
    void SetText(unsigned short value);
    void SetText(unsigned char value);
    void SetText(int value);

private:
    friend class CPropertyDB;  // writes its texts without making strings of them

    enum EState : WORD {
        StateOpen,       // start tag without attributes, not closed yet
        StateAttribute,  // start tag with attributes, not closed yet
        StateText,
        StateChildren
    };

    using ShortText = orvik::detail::ShortText;
    struct Attribute {
        std::string_view name, value;
    };
    // An element with text, in one piece: what BeginTag, SetAttr, SetText and EndTag write. appendText(line, entities) adds the
    // text, escaped.
    template <class AppendText>
    void WriteElement(std::string_view name, std::initializer_list<Attribute> attributes, AppendText appendText) {
        ShortText line;
        AppendStart(line, name);
        for (const Attribute& attribute : attributes) AppendAttribute(line, attribute.name, attribute.value);
        line << '>';
        appendText(line, m_entities);
        line << "</" << name << ">\r\n";
        Write(line.View());
    }

    void AppendStart(ShortText& line, std::string_view name);
    static void AppendAttribute(ShortText& line, std::string_view name, std::string_view value);
    void WriteAttr(std::string_view name, std::string_view value);
    void WriteText(std::string_view text);
    void WriteLine(std::string_view before, const char* text, std::string_view after);
    static void Indent(ShortText& line, int spaces);
    void Write(std::string_view text);
    void SetState(EState state);  // of the innermost element, which must be there
    int Depth() const;

    orvik::detail::XmlEntities m_entities;
    CWordArray m_states;
    CStringArray m_names;
    CFile* m_pFile;
};
