// An XML document of anybody's, read by the system's own library: expat on Linux, XmlLite on Windows. The one header of both.
// UTF-8 text only, whatever a declaration says. No document type, so no entities but the five that every document has; comments
// and processing instructions are passed over. Nothing is kept of the document. One thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

class CFile;

struct XmlAttribute {
    std::string name, value;  // UTF-8
};

// What a document holds, in its order. An XmlRefusal thrown here ends the reading, and is told with its place; other exceptions
// pass through.
class XmlContent {
public:
    virtual void Begin(const std::string& name, const std::vector<XmlAttribute>& attributes) = 0;
    // A piece of an element's text, UTF-8; there may be several pieces between two tags.
    virtual void Text(std::string_view piece) = 0;
    virtual void End() = 0;

protected:
    ~XmlContent() = default;
};

struct XmlRefusal {
    std::string sentence;  // without a full stop
};

// Why a document could not be read, and where: line and column (in characters) from 1. For a refusal they are those of the
// element at hand, as near as the library tells.
struct XmlFault {
    unsigned line, column;
    std::string sentence;  // without a full stop
    bool refused;          // the document is XML, but its content was refused
};

// From the file's position to its end; what the file throws passes through. Otherwise ends by an XmlFault for what is no XML, is
// refused, or has elements in one another more than 256 deep.
void ReadXml(CFile& file, XmlContent& content);
