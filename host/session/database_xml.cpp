#include "host/session/database_xml.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "afx/collections.h"
#include "frame/numeric_arrays.h"
#include "host/words/texts.h"

namespace {
using Said = Text;  // a member below is called Text, too

constexpr char kWhite[] = " \t\r\n";

std::string_view Trimmed(std::string_view text) {
    const size_t from = text.find_first_not_of(kWhite);
    return from == text.npos ? std::string_view() : text.substr(from, text.find_last_not_of(kWhite) + 1 - from);
}

class DatabaseContent final : public XmlContent {
public:
    explicit DatabaseContent(CPropertyDB& db) : m_db(db) {}
    ~DatabaseContent() {
        while (m_folders-- > 0) m_db.EndUsing();  // of a document that was not read to its end
    }
    DatabaseContent(const DatabaseContent&) = delete;
    DatabaseContent& operator=(const DatabaseContent&) = delete;

    void Begin(const std::string& element, const std::vector<XmlAttribute>& attributes) override {
        const bool top = !m_inRoot;
        const bool folder = element == "PATH", value = element == "PROPERTY";
        if (m_inValue || (top ? element != "PROPERTYDB" : !folder && !value)) throw XmlRefusal{Say(Said::XmlElement, {element})};
        if (top) {
            m_inRoot = true;
            return;  // its attributes mean nothing here: name spaces, where a schema lies
        }
        m_name.reset(), m_type.reset(), m_size.reset();
        for (const XmlAttribute& attribute : attributes) TakeAttribute(element, attribute, value);
        if (!m_name || m_name->empty()) throw XmlRefusal{Say(Said::XmlNameless, {element})};
        m_nodes += static_cast<size_t>(std::count(m_name->begin(), m_name->end(), '.'));
        if (m_nodes > kMostNodes) throw XmlRefusal{Say(Said::XmlNodes)};
        m_inValue = value;
        if (value) {
            m_text.clear();
        } else {
            m_db.BeginUsing(m_name->c_str());
            ++m_folders;
        }
    }

    void Text(std::string_view piece) override {
        if (m_inValue) {
            m_text += piece;
        } else if (piece.find_first_not_of(kWhite) != piece.npos) {
            throw XmlRefusal{Say(Said::XmlStrayText)};
        }
    }

    void End() override {
        if (m_inValue) {
            m_inValue = false;
            Store();
        } else if (m_folders > 0) {
            m_db.EndUsing();
            --m_folders;
        }
    }

private:
    static constexpr size_t kMostNodes = 2000;  // by separators, of which two characters cost a whole folder

    void TakeAttribute(const std::string& element, const XmlAttribute& attribute, bool value) {
        std::optional<std::string>* const place = attribute.name == "name"            ? &m_name
                                                  : value && attribute.name == "type" ? &m_type
                                                  : value && attribute.name == "size" ? &m_size
                                                                                      : nullptr;
        if (place == nullptr) throw XmlRefusal{Say(Said::XmlAttribute, {element, attribute.name})};
        if (*place) throw XmlRefusal{Say(Said::XmlAttributeTwice)};
        *place = attribute.value;
    }

    void Store() {
        const std::string type = m_type.value_or("str");
        if (type == "str") return StoreTexts();
        if (type == "u16") return StoreNumbers<CWordArray, WORD>(type);
        if (type == "u32") return StoreNumbers<CDWordArray, DWORD>(type);
        if (type == "i64") return StoreNumbers<CInt64Array, __int64>(type);
        if (type == "r32") return StoreNumbers<CFloatArray, float>(type);
        if (type == "r64") return StoreNumbers<CDoubleArray, double>(type);
        throw XmlRefusal{Say(Said::XmlType, {ToUtf8(type)})};
    }

    void StoreTexts() {
        CStringArray texts;
        ForEachElement([&](std::string_view element) { texts.Add(CString(element)); });
        Set(texts);
    }

    template <class Array, class Element>
    void StoreNumbers(const std::string& type) {
        Array array;
        ForEachElement([&](std::string_view text) {
            text = Trimmed(text);
            Element element{};
            const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), element);
            if (error != std::errc() || end != text.data() + text.size())
                throw XmlRefusal{Say(Said::XmlNumber, {ToUtf8(text), type})};
            array.Add(element);
        });
        Set(array);
    }

    // An empty text is one empty element, unless the size says that there is none.
    template <class Take>
    void ForEachElement(Take take) {
        std::string_view rest = Trimmed(m_text);
        size_t count = 0;
        if (!rest.empty() || m_size != "0") {
            for (bool more = true; more; ++count) {
                const size_t end = rest.find(';');
                take(rest.substr(0, end));
                more = end != rest.npos;
                rest.remove_prefix(more ? end + 1 : rest.size());
            }
        }
        // Texts with ";" in them were written as fewer than they are read as.
        size_t said = count;
        const auto [end, error] =
            m_size ? std::from_chars(m_size->data(), m_size->data() + m_size->size(), said) : std::from_chars_result{};
        const bool number = !m_size || (error == std::errc() && end == m_size->data() + m_size->size());
        const bool fits = m_type.value_or("str") == "str" ? said <= count : said == count;
        if (!number || !fits) throw XmlRefusal{Say(Said::XmlSize, {ToUtf8(*m_size), std::to_string(count)})};
    }

    template <class Array>
    void Set(const Array& array) {
        if (m_db.Find(m_name->c_str())) throw XmlRefusal{Say(Said::XmlTwice, {ToUtf8(*m_name)})};
        if (!m_db.SetValue(m_name->c_str(), array)) throw XmlRefusal{Say(Said::XmlKey, {ToUtf8(*m_name)})};
    }

    CPropertyDB& m_db;
    bool m_inRoot = false, m_inValue = false;
    unsigned m_folders = 0;
    size_t m_nodes = 0;
    std::optional<std::string> m_name, m_type, m_size;  // of the element at hand
    std::string m_text;
};
}  // namespace

void LoadStandardXml(CFile& file, CPropertyDB& db) {
    DatabaseContent content(db);
    ReadXml(file, content);
}
