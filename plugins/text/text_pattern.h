// Regular expressions with named groups that take a time proportional to the text, whatever the pattern: all ways through it are
// followed side by side, none is tried again. So there is no pattern that runs for ever, and none that needs a deep stack.
//
// The language is what most tools have: . [a-z] [^,] \d \w \s \D \W \S \b \B ^ $ ( ) (?: ) (?<name> ) (?P<name> ) | * + ? {2}
// {2,} {2,5} and their lazy forms (*? ...), escapes \r \n \t \xHH and \ before any sign. Back references and looking around are
// not part of it. A turn of a repetition that takes nothing does not count: a group in it keeps what it took before. Characters
// are those of text_letters.h. A value that does not change; any thread.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "plugins/text/text_character_set.h"

namespace text {

class Pattern {
public:
    // What limits the work: steps of a pattern with its repetitions written out, and groups that remember.
    static constexpr size_t kMostSteps = 1000, kMostGroups = 32;

    // Throws std::invalid_argument with the reason.
    explicit Pattern(std::string_view pattern);

    // The names of the groups that have one, in the order of their brackets.
    const std::vector<std::string>& Names() const { return m_names; }

    // The first place where the pattern fits: of alternatives the first, of repetitions the longest (or, when lazy, the
    // shortest). `groups` has what each named group took last; one that took no part has no data.
    bool Find(std::string_view text, std::vector<std::string_view>& groups) const;

    // A text that fits the pattern, in which each named group is what `fill` says. It may not fit if `fill` says what its group
    // cannot take.
    std::string Example(const std::function<std::string(size_t)>& fill) const;

    // The pattern as a tree: what stands in what.
    struct Node {
        enum Kind { Set, Sequence, Choice, Repeat, Group, Begin, End, Border, NoBorder };
        Kind kind = Sequence;
        CharacterSet set = {};
        std::vector<size_t> parts = {};  // places in the tree
        int least = 0, most = 0;         // repetitions; most -1: any number
        bool lazy = false;
        size_t name = 0;  // of a group
    };

private:
    struct Step {
        enum Kind { Set, Split, Jump, Save, Begin, End, Border, NoBorder, Done };
        Kind kind;
        size_t next = 0, other = 0;  // where it goes on, the first before the other; Save: its slot is `other`
        CharacterSet set = {};
    };
    struct Ways;

    size_t Emit(Step step);
    void Compile(size_t node);
    void CompileRepeat(const Node& node);
    bool Fits(const Step& step, std::string_view text, size_t at) const;
    void Follow(Ways& ways, size_t step, std::string_view text, size_t at, std::vector<size_t>& slots) const;
    std::string ExampleOf(size_t node, const std::function<std::string(size_t)>& fill) const;
    bool HasName(size_t node) const;

    std::vector<Node> m_tree;
    std::vector<std::string> m_names;
    std::vector<Step> m_steps;
    size_t m_root = 0;
    size_t m_visits = 0;  // of the tree's nodes while it is compiled
};

}  // namespace text
