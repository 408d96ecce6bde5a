#include "host/session/xml_document.h"

#include <algorithm>
#include <new>

#include "afx/file.h"
#include "host/session/xml_reading.h"
#include "platform/win32.h"

#include <objidl.h>
#include <xmllite.h>

namespace {
// Released when it goes.
template <class Interface>
struct Owned {
    ~Owned() {
        if (it != nullptr) it->Release();
    }
    Interface* it = nullptr;
};

// The file as the library takes it. Lives on the stack of the reading, so references are not counted.
class Stream : public ISequentialStream {
public:
    Stream(CFile& file, XmlReading& reading) : m_file(file), m_reading(reading) {}
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** out) override {
        const bool known = wanted == __uuidof(IUnknown) || wanted == __uuidof(ISequentialStream);
        *out = known ? this : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 1; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE Read(void* bytes, ULONG count, ULONG* read) override {
        UINT got = 0;
        if (!m_reading.Guard([&] { got = m_file.Read(bytes, count); })) return E_FAIL;
        if (read != nullptr) *read = got;
        return got < count ? S_FALSE : S_OK;
    }
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG*) override { return E_NOTIMPL; }

private:
    CFile& m_file;
    XmlReading& m_reading;
};

std::string Utf8(const WCHAR* text, UINT length) {
    if (length == 0) return {};
    const int wide = static_cast<int>(length);
    std::string utf8(static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text, wide, nullptr, 0, nullptr, nullptr)), 0);
    WideCharToMultiByte(CP_UTF8, 0, text, wide, utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr);
    return utf8;
}

// Of the node at hand.
std::string NameOf(IXmlReader& reader) {
    const WCHAR* text = nullptr;
    UINT length = 0;
    return SUCCEEDED(reader.GetQualifiedName(&text, &length)) ? Utf8(text, length) : std::string();
}
std::string ValueOf(IXmlReader& reader) {
    const WCHAR* text = nullptr;
    UINT length = 0;
    const HRESULT result = reader.GetValue(&text, &length);
    if (result == E_OUTOFMEMORY) throw std::bad_alloc();
    return SUCCEEDED(result) ? Utf8(text, length) : std::string();
}

bool BeginElement(IXmlReader& reader, XmlReading& reading) {
    std::string name;
    std::vector<XmlAttribute> attributes;
    bool empty = false;
    const bool taken = reading.Guard([&] {
        name = NameOf(reader);
        empty = reader.IsEmptyElement() != FALSE;
        for (HRESULT more = reader.MoveToFirstAttribute(); more == S_OK; more = reader.MoveToNextAttribute())
            attributes.push_back({NameOf(reader), ValueOf(reader)});
        reader.MoveToElement();
    });
    return taken && reading.Begin(name, attributes) && (!empty || reading.End());
}

// The library's own entries, which are not linked: not every tool chain knows it.
struct Library {
    template <class Function>
    static Function Find(const char* name) {
        static const HMODULE module = LoadLibraryA("xmllite.dll");
        void* const entry = module == nullptr ? nullptr : reinterpret_cast<void*>(GetProcAddress(module, name));
        return reinterpret_cast<Function>(entry);
    }
    decltype(&CreateXmlReader) makeReader = Find<decltype(&CreateXmlReader)>("CreateXmlReader");
    decltype(&CreateXmlReaderInputWithEncodingName) makeInput =
        Find<decltype(&CreateXmlReaderInputWithEncodingName)>("CreateXmlReaderInputWithEncodingName");
};

Text FaultOf(HRESULT error) {
    switch (static_cast<DWORD>(error)) {
        case static_cast<DWORD>(WC_E_ELEMENTMATCH):
            return Text::XmlEndTag;
        case static_cast<DWORD>(WC_E_UNIQUEATTRIBUTE):
            return Text::XmlAttributeTwice;
        case static_cast<DWORD>(WC_E_UNDECLAREDENTITY):
        case static_cast<DWORD>(WC_E_XMLCHARACTER):
            return Text::XmlEntity;
        case static_cast<DWORD>(WC_E_DTDPROHIBITED):
            return Text::XmlDoctype;
        case static_cast<DWORD>(MX_E_INPUTEND):
        case static_cast<DWORD>(WC_E_ROOTELEMENT):
            return Text::XmlCutShort;
        default:
            return Text::XmlNotFormed;
    }
}
}  // namespace

void ReadXml(CFile& file, XmlContent& content) {
    XmlReading reading(content);
    Stream stream(file, reading);
    Owned<IXmlReader> reader;
    Owned<IXmlReaderInput> input;
    const Library library;
    if (library.makeReader == nullptr || library.makeInput == nullptr) throw XmlFault{1, 1, Say(Text::XmlNoReader), false};
    if (FAILED(library.makeReader(__uuidof(IXmlReader), reinterpret_cast<void**>(&reader.it), nullptr)) ||
        FAILED(library.makeInput(&stream, nullptr, L"utf-8", FALSE, nullptr, &input.it)) || FAILED(reader.it->SetInput(input.it)))
        throw std::bad_alloc();
    reader.it->SetProperty(XmlReaderProperty_DtdProcessing, DtdProcessing_Prohibit);
    reader.it->SetProperty(XmlReaderProperty_MaxElementDepth,
                           2 * XmlReading::kDeepest);  // so that it is told as on the other home
    const auto fail = [&](Text fault) {
        UINT line = 0, column = 0;
        reader.it->GetLineNumber(&line);
        reader.it->GetLinePosition(&column);
        reading.Fail(std::max(line, 1u), std::max(column, 1u), fault);  // an empty document has no place
    };
    for (;;) {
        XmlNodeType node = XmlNodeType_None;
        const HRESULT result = reader.it->Read(&node);
        if (result == E_OUTOFMEMORY) throw std::bad_alloc();
        if (FAILED(result)) fail(FaultOf(result));
        if (result != S_OK && reading.IsComplete()) return;
        if (result != S_OK) fail(Text::XmlCutShort);
        bool goOn = true;
        if (node == XmlNodeType_Element) {
            goOn = BeginElement(*reader.it, reading);
        } else if (node == XmlNodeType_EndElement) {
            goOn = reading.End();
        } else if (node == XmlNodeType_Text || node == XmlNodeType_CDATA || node == XmlNodeType_Whitespace) {
            std::string text;
            goOn = reading.Guard([&] { text = ValueOf(*reader.it); });
            // Wine's library finds empty text for ever where a document breaks off.
            if (goOn && text.empty() && node != XmlNodeType_CDATA) fail(Text::XmlCutShort);
            goOn = goOn && reading.Text(text);
        } else if (node == XmlNodeType_DocumentType) {
            fail(Text::XmlDoctype);
        }
        if (!goOn) fail(Text::XmlNotFormed);
    }
}
