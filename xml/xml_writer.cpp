#include "xml/xml_writer.h"

#include "afx/exception.h"
#include "xml/number_text.h"
#include "xml/xml_escapes.h"

using orvik::detail::GeneralText;
using orvik::detail::IntegerText;
using orvik::detail::UnsignedText;

CXMLWriter::CXMLWriter(CFile* pFile) : m_pFile(pFile) { Write("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n"); }

void CXMLWriter::SetMeta(const char* text) { WriteLine("<?", text, "?>\r\n"); }
void CXMLWriter::SetComment(const char* text) { WriteLine("<!", text, "!>\r\n"); }

void CXMLWriter::BeginTag(const char* name) {
    ShortText line;
    AppendStart(line, name ? name : "");
    m_names.Add(name);
    m_states.Add(StateOpen);
    Write(line.View());
}

// Closes the parent's start tag, if this is its first child.
void CXMLWriter::AppendStart(ShortText& line, std::string_view name) {
    const int depth = Depth();
    if (depth > 0 && m_states.GetData()[depth - 1] != StateChildren) {
        line << ">\r\n";
        SetState(StateChildren);
    }
    Indent(line, depth);
    line << '<' << name;
}

void CXMLWriter::EndTag() {
    const int depth = Depth();
    if (depth == 0) AfxThrowInvalidArgException();
    const WORD state = m_states[depth - 1];
    if (state == StateOpen || state == StateAttribute) {
        Write("/>\r\n");
    } else {
        ShortText line;
        if (state == StateChildren) Indent(line, depth - 1);
        line << "</" << m_names[depth - 1].GetView() << ">\r\n";
        Write(line.View());
    }
    m_names.RemoveAt(depth - 1);
    m_states.RemoveAt(depth - 1);
}

void CXMLWriter::SetAttr(const char* name, CString value) { WriteAttr(name ? name : "", value.GetView()); }
void CXMLWriter::SetAttr(const char* name, int value) { WriteAttr(name ? name : "", IntegerText(value).View()); }
void CXMLWriter::SetAttr(const char* name, double value) { WriteAttr(name ? name : "", GeneralText(value).View()); }

void CXMLWriter::SetText(CString text) { WriteText(text.GetView()); }
void CXMLWriter::SetText(float value) { WriteText(GeneralText(value).View()); }
void CXMLWriter::SetText(double value) { WriteText(GeneralText(value).View()); }
void CXMLWriter::SetText(unsigned long value) { WriteText(UnsignedText(value).View()); }
void CXMLWriter::SetText(unsigned short value) { WriteText(UnsignedText(value).View()); }
void CXMLWriter::SetText(unsigned char value) { WriteText(UnsignedText(value).View()); }
void CXMLWriter::SetText(int value) { WriteText(IntegerText(value).View()); }

void CXMLWriter::WriteAttr(std::string_view name, std::string_view value) {
    SetState(StateAttribute);
    ShortText text;
    AppendAttribute(text, name, value);
    Write(text.View());
}

void CXMLWriter::AppendAttribute(ShortText& line, std::string_view name, std::string_view value) {
    line << ' ' << name << "=\"";
    orvik::detail::AppendEscapedAttribute(line, value);
    line << '"';
}

void CXMLWriter::WriteText(std::string_view value) {
    SetState(StateText);
    ShortText text;
    text << '>';
    orvik::detail::AppendEscapedText(text, value, m_entities);
    Write(text.View());
}

void CXMLWriter::WriteLine(std::string_view before, const char* text, std::string_view after) {
    ShortText line;
    Indent(line, Depth() - 1);
    line << before << (text ? text : "") << after;
    Write(line.View());
}

void CXMLWriter::Indent(ShortText& line, int spaces) {
    if (spaces > 0) line.Fill(static_cast<size_t>(spaces), ' ');
}

void CXMLWriter::Write(std::string_view text) { m_pFile->Write(text.data(), static_cast<UINT>(text.size())); }

void CXMLWriter::SetState(EState state) {
    const int depth = Depth();
    if (depth == 0) AfxThrowInvalidArgException();
    m_states.SetAt(depth - 1, state);
}

int CXMLWriter::Depth() const { return static_cast<int>(m_states.GetSize()); }
