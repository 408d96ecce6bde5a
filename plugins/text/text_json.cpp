#include "plugins/text/text_json.h"

#include "platform/house_text.h"
#include "plugins/text/text_escapes.h"

namespace text {
namespace {

class JsonReader {
public:
    JsonReader(std::string_view line, std::vector<JsonLeaf>& leaves) : m_rest(line), m_leaves(leaves) {}

    bool ReadAll() {
        if (!Value({}, 0)) return false;
        Blanks();
        return m_rest.empty();
    }

private:
    void Blanks() {
        while (!m_rest.empty() && (m_rest[0] == ' ' || m_rest[0] == '\t')) m_rest.remove_prefix(1);
    }
    bool Take(char c) {
        Blanks();
        if (m_rest.empty() || m_rest[0] != c) return false;
        m_rest.remove_prefix(1);
        return true;
    }
    bool Word(std::string_view word) {
        if (!m_rest.starts_with(word)) return false;
        m_rest.remove_prefix(word.size());
        return true;
    }
    void Leaf(std::string path, JsonLeaf::Kind kind, std::string text) {
        if (path.size() <= kJsonPath) m_leaves.push_back({std::move(path), kind, std::move(text)});
    }

    bool Value(std::string path, size_t depth) {
        // Below a path that is too long nothing counts, and it need not grow further.
        if (path.size() > kJsonPath) path.resize(kJsonPath + 1);
        Blanks();
        if (m_rest.empty() || depth > kJsonDepth) return false;
        switch (m_rest[0]) {
            case '{':
                return Object(path, depth);
            case '[':
                return Array(path, depth);
            case '"': {
                std::string text;
                if (!Text(text)) return false;
                Leaf(std::move(path), JsonLeaf::Text, std::move(text));
                return true;
            }
            case 't':
                Leaf(std::move(path), JsonLeaf::True, {});
                return Word("true");
            case 'f':
                Leaf(std::move(path), JsonLeaf::False, {});
                return Word("false");
            case 'n':
                Leaf(std::move(path), JsonLeaf::Null, {});
                return Word("null");
            default:
                return Number(std::move(path));
        }
    }

    bool Object(const std::string& path, size_t depth) {
        Take('{');
        if (Take('}')) return true;
        do {
            std::string name;
            Blanks();
            if (!Text(name) || !Take(':')) return false;
            if (!Value(path.empty() ? name : path + '.' + name, depth + 1)) return false;
        } while (Take(','));
        return Take('}');
    }

    bool Array(const std::string& path, size_t depth) {
        Take('[');
        if (Take(']')) return true;
        size_t index = 0;
        do {
            if (!Value(path + '[' + std::to_string(index++) + ']', depth + 1)) return false;
        } while (Take(','));
        return Take(']');
    }

    size_t DigitsAt(size_t at) const {
        size_t count = 0;
        while (at + count < m_rest.size() && m_rest[at + count] >= '0' && m_rest[at + count] <= '9') ++count;
        return count;
    }
    char At(size_t at) const { return at < m_rest.size() ? m_rest[at] : '\0'; }

    bool Number(std::string path) {
        size_t at = At(0) == '-' ? 1 : 0;
        const size_t whole = DigitsAt(at);
        if (whole == 0 || (whole > 1 && At(at) == '0')) return false;
        at += whole;
        if (At(at) == '.') {
            const size_t decimals = DigitsAt(at + 1);
            if (decimals == 0) return false;
            at += 1 + decimals;
        }
        if (At(at) == 'e' || At(at) == 'E') {
            ++at;
            if (At(at) == '+' || At(at) == '-') ++at;
            const size_t exponent = DigitsAt(at);
            if (exponent == 0) return false;
            at += exponent;
        }
        Leaf(std::move(path), JsonLeaf::Number, std::string(m_rest.substr(0, at)));
        m_rest.remove_prefix(at);
        return true;
    }

    // What stood there by its numbers: one character in UTF-16 may need two of them.
    static void Append(std::string& text, std::basic_string<WCHAR>& units) {
        if (units.empty()) return;
        const auto narrow = [&](char* to, int size) {
            const DWORD exact = OrvikTextCodePage() == CP_UTF8 ? 0 : WC_NO_BEST_FIT_CHARS;  // "=" is no likeness of another sign
            return WideCharToMultiByte(OrvikTextCodePage(), exact, units.data(), static_cast<int>(units.size()), to, size,
                                       nullptr, nullptr);
        };
        const size_t before = text.size();
        const int size = narrow(nullptr, 0);
        text.resize(before + static_cast<size_t>(size));
        narrow(text.data() + before, size);
        units.clear();
    }

    bool Text(std::string& text) {
        if (m_rest.empty() || m_rest[0] != '"') return false;
        std::basic_string<WCHAR> units;
        for (size_t i = 1; i < m_rest.size(); ++i) {
            const char c = m_rest[i];
            if (c != '\\' || At(i + 1) != 'u') Append(text, units);
            if (c == '"') {
                m_rest.remove_prefix(i + 1);
                return true;
            }
            if (static_cast<unsigned char>(c) < ' ') return false;
            if (c != '\\') {
                text += c;
                continue;
            }
            static constexpr std::string_view kLetters = "\"\\/bfnrt", kMeant = "\"\\/\b\f\n\r\t";
            const char escaped = At(++i);
            if (escaped == 'u') {
                const auto high = HexByte(m_rest.substr(std::min(i + 1, m_rest.size()), 2));
                const auto low = HexByte(m_rest.substr(std::min(i + 3, m_rest.size()), 2));
                if (!high || !low) return false;
                units += static_cast<WCHAR>(*high << 8 | *low);
                i += 4;
            } else if (const size_t which = kLetters.find(escaped); escaped != 0 && which != std::string_view::npos) {
                text += kMeant[which];
            } else {
                return false;
            }
        }
        return false;
    }

    std::string_view m_rest;
    std::vector<JsonLeaf>& m_leaves;
};
}  // namespace

bool ReadJson(std::string_view line, std::vector<JsonLeaf>& leaves) {
    leaves.clear();
    if (JsonReader(line, leaves).ReadAll()) return true;
    leaves.clear();
    return false;
}

std::string JsonText(std::string_view text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') quoted += '\\';
        quoted += c;
    }
    return quoted + '"';
}

}  // namespace text
