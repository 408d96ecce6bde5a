// What the two readers of XML documents share: the depth of nesting, and what their content throws while the library, which knows
// no exceptions, stands between it and the caller.
#pragma once

#include <exception>

#include "host/session/xml_document.h"
#include "host/words/texts.h"

class XmlReading {
public:
    static constexpr unsigned kDeepest = 256;

    explicit XmlReading(XmlContent& content) : m_content(content) {}

    // Each is false when the reading is to end.
    bool Begin(const std::string& name, const std::vector<XmlAttribute>& attributes) {
        return Guard([&] {
            m_begun = true;
            if (++m_depth > kDeepest) throw XmlRefusal{Say(Text::XmlTooDeep)};
            m_content.Begin(name, attributes);
        });
    }
    bool Text(std::string_view piece) {
        return Guard([&] { m_content.Text(piece); });
    }
    bool End() {
        return Guard([&] {
            --m_depth;
            m_content.End();
        });
    }
    // Whether there was an element, and its end.
    bool IsComplete() const { return m_begun && m_depth == 0; }

    template <class Act>
    bool Guard(Act act) {
        if (m_thrown) return false;
        try {
            act();
            return true;
        } catch (...) {
            m_thrown = std::current_exception();
            return false;
        }
    }

    // Ends the reading at this place with what was thrown, or with `fault` if nothing was.
    [[noreturn]] void Fail(unsigned line, unsigned column, enum Text fault) const {
        try {
            if (m_thrown) std::rethrow_exception(m_thrown);
        } catch (const XmlRefusal& refusal) {
            throw XmlFault{line, column, refusal.sentence, true};
        }
        throw XmlFault{line, column, Say(fault), false};
    }

private:
    XmlContent& m_content;
    unsigned m_depth = 0;
    bool m_begun = false;
    std::exception_ptr m_thrown;
};
