// Reads XML of the dialect that CXMLWriter writes, in one pass, and reports what it finds through virtual functions; it builds no
// document. Elements hold text or children, attributes stand in double quotes, comments between "<!" and "!>".
// One thread for one reader. The file is borrowed, must be seekable, and is read from its position on.
//
// A depth travels with every call: that given to Read for the outermost tags, and for an element's content the value that
// OnOpenComplexTag returned for it. Elements inside elements are read up to 256 deep; a deeper document is refused.
// During each call the file stands behind what has been reported; a function may move it, and the reading goes on from there.
#pragma once

#include "afx/collections.h"
#include "afx/file.h"
#include "afx/string.h"
#include "xml/xml_text.h"

class ORVIK_API CXMLReader {
public:
    CXMLReader();
    virtual ~CXMLReader();
    CXMLReader(const CXMLReader&) = delete;
    CXMLReader& operator=(const CXMLReader&) = delete;

    // Non-zero when the reading went on to the end of the input. 0 for a syntax error, for an end tag of another name, after
    // Break, and for less than three bytes; what was reported stays reported. A document that breaks off at its very end also
    // counts as read to the end: check that its root was closed. File errors are the CFileException of the file's Read and Seek.
    BOOL Read(unsigned long depth, CFile* pFile);

    // From within a call: reading stops when that call returns.
    void Break() { m_bBreak = TRUE; }

protected:
    // None of them does anything here, but for the depth that OnOpenComplexTag returns. Strings and maps are the callee's to
    // change.
    virtual void OnCommentTag(unsigned long depth, CString text);
    // A processing instruction: "<?name attributes?>".
    virtual void OnMetaTag(unsigned long depth, CString name, CMapStringToString& attrs);
    // An element without content: "<name attributes/>".
    virtual void OnAttributeTag(unsigned long depth, CString name, CMapStringToString& attrs);
    // An element with text, trimmed and unescaped; empty for an element that holds white space alone.
    virtual void OnSimpleTag(unsigned long depth, CString name, CMapStringToString& attrs, CString text);
    // An element with children; returns their depth, here depth + 1.
    virtual unsigned long OnOpenComplexTag(unsigned long depth, CString name, CMapStringToString& attrs);
    // Its end, with the depth that it was opened with.
    virtual void OnCloseComplexTag(unsigned long depth, CString name);

private:
    class Events;  // turns the scanner's pieces of text into strings

    orvik::detail::XmlEntities m_entities;
    CFile* m_pFile = nullptr;
    BOOL m_bBreak = FALSE;
};
