#include "plugins/text/text_pattern_parser.h"

#include <algorithm>
#include <stdexcept>

#include "plugins/text/text_escapes.h"
#include "plugins/text/text_letters.h"

namespace text {
namespace {
using Node = Pattern::Node;
using Set = CharacterSet;

constexpr size_t kDeepest = 50;
constexpr int kMostRepetitions = 1000;

bool IsWordCharacter(int c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }

[[noreturn]] void RefusePattern(const std::string& what) { throw std::invalid_argument(what); }

Set Only(char c) { return Set(static_cast<unsigned char>(c)); }

Set Stretches(std::initializer_list<std::pair<char, char>> stretches) {
    Set set;
    for (const auto& [from, to] : stretches) set.Add(static_cast<unsigned char>(from), static_cast<unsigned char>(to));
    return set;
}

class Parser {
public:
    Parser(std::string_view pattern, std::vector<Node>& tree, std::vector<std::string>& names)
        : m_rest(pattern), m_tree(tree), m_names(names) {}

    size_t Whole() {
        const size_t root = Choice();
        if (!m_rest.empty()) RefusePattern("a ) without its (");
        return root;
    }

private:
    char Look() const { return m_rest.empty() ? '\0' : m_rest[0]; }
    bool Take(std::string_view text) {
        if (!m_rest.starts_with(text)) return false;
        m_rest.remove_prefix(text.size());
        return true;
    }
    char Next() {
        if (m_rest.empty()) RefusePattern("it breaks off");
        const char c = m_rest[0];
        m_rest.remove_prefix(1);
        return c;
    }
    // The character that begins with the byte just taken.
    Set Letter() {
        char32_t character = 0;
        const char* const begin = m_rest.data() - 1;
        const size_t length = CharacterAt({begin, m_rest.size() + 1}, 0, character);
        m_rest.remove_prefix(length - 1);
        return Set(character);
    }
    size_t Add(Node node) {
        m_tree.push_back(std::move(node));
        return m_tree.size() - 1;
    }

    size_t Choice() {
        if (++m_depth > kDeepest) RefusePattern("brackets stand too deep in one another");
        Node choice{.kind = Node::Choice};
        do {
            choice.parts.push_back(Sequence());
        } while (Take("|"));
        --m_depth;
        return choice.parts.size() == 1 ? choice.parts[0] : Add(std::move(choice));
    }

    size_t Sequence() {
        Node sequence{.kind = Node::Sequence};
        while (!m_rest.empty() && Look() != '|' && Look() != ')') sequence.parts.push_back(Repeated());
        return Add(std::move(sequence));
    }

    size_t Repeated() {
        size_t item = Item();
        for (int least = 0, most = 0; Count(least, most);) {
            if (m_tree[item].kind == Node::Repeat) RefusePattern("a repetition of a repetition");
            const bool lazy = Take("?");
            item = Add({.kind = Node::Repeat, .parts = {item}, .least = least, .most = most, .lazy = lazy});
        }
        return item;
    }

    bool Count(int& least, int& most) {
        least = 0;
        most = -1;
        if (Take("*")) return true;
        if (Take("+")) {
            least = 1;
            return true;
        }
        if (Take("?")) {
            most = 1;
            return true;
        }
        if (!Take("{")) return false;
        least = most = Number();
        if (Take(",")) most = Look() == '}' ? -1 : Number();
        if (!Take("}") || (most >= 0 && most < least)) RefusePattern("a { that begins no count such as {2} or {2,5}");
        return true;
    }

    int Number() {
        int number = 0;
        if (Look() < '0' || Look() > '9') RefusePattern("a { that begins no count such as {2} or {2,5}");
        while (Look() >= '0' && Look() <= '9') {
            number = 10 * number + (Next() - '0');
            if (number > kMostRepetitions) RefusePattern("more than 1000 repetitions");
        }
        return number;
    }

    size_t Item() {
        const char c = Next();
        switch (c) {
            case '(':
                return Group();
            case '[':
                return Add({.kind = Node::Set, .set = Class()});
            case '.':
                return Add({.kind = Node::Set, .set = Set().Others()});
            case '^':
                return Add({.kind = Node::Begin});
            case '$':
                return Add({.kind = Node::End});
            case '*':
            case '+':
            case '?':
            case '{':
                RefusePattern(std::string("a ") + c + " with nothing to repeat");
            case '\\':
                if (Take("b")) return Add({.kind = Node::Border});
                if (Take("B")) return Add({.kind = Node::NoBorder});
                return Add({.kind = Node::Set, .set = Escaped()});
            default:
                return Add({.kind = Node::Set, .set = Letter()});
        }
    }

    size_t Group() {
        Node group{.kind = Node::Sequence};
        if (Take("?<") || Take("?P<")) {
            if (Look() == '=' || Look() == '!') RefusePattern("looking back is not possible");
            std::string name;
            while (Look() != '>') name += Next();
            Next();
            if (name.empty() || !std::all_of(name.begin(), name.end(), [](unsigned char c) { return IsWordCharacter(c); }))
                RefusePattern("the name of a group is made of letters, digits and _");
            if (std::find(m_names.begin(), m_names.end(), name) != m_names.end()) RefusePattern("two groups are called " + name);
            if (m_names.size() == Pattern::kMostGroups) RefusePattern("more than 32 named groups");
            group.kind = Node::Group;
            group.name = m_names.size();
            m_names.push_back(name);
        } else if (!Take("?:") && Look() == '?') {
            RefusePattern("looking around is not possible, nor any other (? than (?: and (?<name>");
        }
        group.parts.push_back(Choice());
        if (!Take(")")) RefusePattern("a ( without its )");
        return Add(std::move(group));
    }

    // Behind a backslash.
    Set Escaped() {
        const char c = Next();
        static const Set digits = Stretches({{'0', '9'}}), word = Stretches({{'0', '9'}, {'A', 'Z'}, {'a', 'z'}, {'_', '_'}}),
                         blanks = Stretches({{' ', ' '}, {'\t', '\r'}});
        switch (c) {
            case 'd':
            case 'D':
                return c == 'D' ? digits.Others() : digits;
            case 'w':
            case 'W':
                return c == 'W' ? word.Others() : word;
            case 's':
            case 'S':
                return c == 'S' ? blanks.Others() : blanks;
            case 'r':
                return Only('\r');
            case 'n':
                return Only('\n');
            case 't':
                return Only('\t');
            case 'x': {
                const auto byte = HexByte(m_rest.substr(0, 2));
                if (!byte) RefusePattern("\\x without two hexadecimal digits");
                m_rest.remove_prefix(2);
                return Set(CharacterOf(*byte));
            }
            default:
                if (IsWordCharacter(static_cast<unsigned char>(c))) RefusePattern(std::string("there is no \\") + c);
                return Letter();
        }
    }

    // Behind a "[".
    Set Class() {
        Set set;
        const bool turned = Take("^");
        for (bool first = true; first || Look() != ']'; first = false) {
            const Set low = ClassCharacter();
            if (Look() != '-' || m_rest.size() < 2 || m_rest[1] == ']') {
                set.Add(low);
                continue;
            }
            Next();
            const auto from = low.Only(), to = ClassCharacter().Only();
            if (!from || !to) RefusePattern("a range whose ends are no characters");
            if (*from > *to) RefusePattern("a range that runs backwards");
            set.Add(*from, *to);
        }
        Next();
        return turned ? set.Others() : set;
    }
    Set ClassCharacter() {
        const char c = Next();
        return c == '\\' ? Escaped() : Letter();
    }

    std::string_view m_rest;
    std::vector<Node>& m_tree;
    std::vector<std::string>& m_names;
    size_t m_depth = 0;
};
}  // namespace

size_t ParsePattern(std::string_view pattern, std::vector<Node>& tree, std::vector<std::string>& names) {
    return Parser(pattern, tree, names).Whole();
}

}  // namespace text
