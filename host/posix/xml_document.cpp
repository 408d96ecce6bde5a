#include "host/session/xml_document.h"

#include <expat.h>

#include <memory>
#include <new>

#include "afx/file.h"
#include "host/session/xml_reading.h"

namespace {
struct Reading : XmlReading {
    Reading(XmlContent& content, XML_Parser used) : XmlReading(content), parser(used) {}
    // Stops at the place where something was thrown.
    void StopUnless(bool goOn) {
        if (!goOn) XML_StopParser(parser, XML_FALSE);
    }
    const XML_Parser parser;
    bool doctype = false;
};

void XMLCALL OnBegin(void* data, const XML_Char* name, const XML_Char** pairs) {
    auto& reading = *static_cast<Reading*>(data);
    std::vector<XmlAttribute> attributes;
    bool goOn = reading.Guard([&] {
        for (; *pairs != nullptr; pairs += 2) attributes.push_back({pairs[0], pairs[1]});
    });
    reading.StopUnless(goOn && reading.Begin(name, attributes));
}

void XMLCALL OnEnd(void* data, const XML_Char*) {
    auto& reading = *static_cast<Reading*>(data);
    reading.StopUnless(reading.End());
}

void XMLCALL OnText(void* data, const XML_Char* text, int length) {
    auto& reading = *static_cast<Reading*>(data);
    reading.StopUnless(reading.Text({text, static_cast<size_t>(length)}));
}

void XMLCALL OnDoctype(void* data, const XML_Char*, const XML_Char*, const XML_Char*, int) {
    auto& reading = *static_cast<Reading*>(data);
    reading.doctype = true;
    reading.StopUnless(false);
}

Text FaultOf(XML_Error error) {
    switch (error) {
        case XML_ERROR_TAG_MISMATCH:
            return Text::XmlEndTag;
        case XML_ERROR_DUPLICATE_ATTRIBUTE:
            return Text::XmlAttributeTwice;
        case XML_ERROR_UNDEFINED_ENTITY:
        case XML_ERROR_BAD_CHAR_REF:
            return Text::XmlEntity;
        case XML_ERROR_NO_ELEMENTS:
        case XML_ERROR_UNCLOSED_TOKEN:
        case XML_ERROR_UNCLOSED_CDATA_SECTION:
        case XML_ERROR_PARTIAL_CHAR:
            return Text::XmlCutShort;
        default:
            return Text::XmlNotFormed;
    }
}
}  // namespace

void ReadXml(CFile& file, XmlContent& content) {
    const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser(XML_ParserCreate("UTF-8"), XML_ParserFree);
    if (!parser) throw std::bad_alloc();
    Reading reading(content, parser.get());
    XML_SetUserData(parser.get(), &reading);
    XML_SetElementHandler(parser.get(), OnBegin, OnEnd);
    XML_SetCharacterDataHandler(parser.get(), OnText);
    XML_SetStartDoctypeDeclHandler(parser.get(), OnDoctype);
    for (bool last = false; !last;) {
        constexpr int kBlock = 1 << 16;
        void* const block = XML_GetBuffer(parser.get(), kBlock);
        if (block == nullptr) throw std::bad_alloc();
        const UINT got = file.Read(block, kBlock);
        last = got == 0;
        if (XML_ParseBuffer(parser.get(), static_cast<int>(got), last) == XML_STATUS_OK) continue;
        const XML_Error error = XML_GetErrorCode(parser.get());
        if (error == XML_ERROR_NO_MEMORY) throw std::bad_alloc();
        reading.Fail(static_cast<unsigned>(XML_GetCurrentLineNumber(parser.get())),
                     static_cast<unsigned>(XML_GetCurrentColumnNumber(parser.get())) + 1,
                     reading.doctype ? Text::XmlDoctype : FaultOf(error));
    }
}
