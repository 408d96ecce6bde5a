#include "plugins/text/text_pattern.h"

#include <algorithm>
#include <stdexcept>

#include "plugins/text/text_letters.h"
#include "plugins/text/text_pattern_parser.h"

namespace text {
namespace {
constexpr size_t kNowhere = std::string_view::npos;
constexpr int kAnyNumber = -1;
constexpr size_t kMostVisits = 20 * Pattern::kMostSteps;
constexpr char kTooLarge[] = "it is too large; repetitions count as often as they repeat";

bool IsWordAt(std::string_view text, size_t at) {
    if (at >= text.size()) return false;
    const char c = text[at];
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_';
}
}  // namespace

// The steps that the text so far has led to, the preferred ones first, and what the groups took on the way to each.
struct Pattern::Ways {
    explicit Ways(size_t steps) : seen(steps, kNowhere) {}
    void Clear() {
        order.clear();
        slots.clear();
    }
    std::vector<size_t> order;
    std::vector<std::vector<size_t>> slots;  // beside order
    std::vector<size_t> seen;                // at which place in the text a step was last reached
};

Pattern::Pattern(std::string_view pattern) {
    m_root = ParsePattern(pattern, m_tree, m_names);
    Compile(m_root);
    Emit({Step::Done});
}

size_t Pattern::Emit(Step step) {
    if (m_steps.size() == kMostSteps) throw std::invalid_argument(kTooLarge);
    m_steps.push_back(step);
    m_steps.back().next = m_steps.size();
    return m_steps.size() - 1;
}

void Pattern::Compile(size_t place) {
    // Repeated emptiness makes no steps.
    if (++m_visits > kMostVisits) throw std::invalid_argument(kTooLarge);
    const Node& node = m_tree[place];
    switch (node.kind) {
        case Node::Set:
            Emit({.kind = Step::Set, .set = node.set});
            break;
        case Node::Sequence:
            for (const size_t part : node.parts) Compile(part);
            break;
        case Node::Choice: {
            std::vector<size_t> ends;
            for (size_t i = 0; i + 1 < node.parts.size(); ++i) {
                const size_t split = Emit({Step::Split});
                Compile(node.parts[i]);
                ends.push_back(Emit({Step::Jump}));
                m_steps[split].other = m_steps.size();
            }
            Compile(node.parts.back());
            for (const size_t end : ends) m_steps[end].next = m_steps.size();
            break;
        }
        case Node::Repeat:
            CompileRepeat(node);
            break;
        case Node::Group:
            Emit({.kind = Step::Save, .other = 2 * node.name});
            Compile(node.parts[0]);
            Emit({.kind = Step::Save, .other = 2 * node.name + 1});
            break;
        case Node::Begin:
            Emit({Step::Begin});
            break;
        case Node::End:
            Emit({Step::End});
            break;
        case Node::Border:
            Emit({Step::Border});
            break;
        case Node::NoBorder:
            Emit({Step::NoBorder});
            break;
    }
}

void Pattern::CompileRepeat(const Node& node) {
    // A way around what is optional; `behind` is known later.
    std::vector<size_t> splits;
    const auto optional = [&] {
        splits.push_back(Emit({Step::Split}));
        return splits.back();
    };
    for (int i = 0; i < node.least; ++i) Compile(node.parts[0]);
    if (node.most == kAnyNumber) {
        const size_t again = optional();
        Compile(node.parts[0]);
        const size_t jump = Emit({Step::Jump});
        m_steps[jump].next = again;
    }
    for (int i = node.least; i < node.most; ++i) {
        optional();
        Compile(node.parts[0]);
    }
    for (const size_t split : splits) {
        m_steps[split].other = m_steps.size();
        if (node.lazy) std::swap(m_steps[split].next, m_steps[split].other);
    }
}

bool Pattern::Fits(const Step& step, std::string_view text, size_t at) const {
    const bool border = IsWordAt(text, at) != (at > 0 && IsWordAt(text, at - 1));
    switch (step.kind) {
        case Step::Begin:
            return at == 0;
        case Step::End:
            return at == text.size();
        case Step::Border:
            return border;
        default:
            return !border;
    }
}

// Adds what can be reached from a step without a character, in the order of preference.
void Pattern::Follow(Ways& ways, size_t step, std::string_view text, size_t at, std::vector<size_t>& slots) const {
    struct Pending {
        size_t step;
        size_t slot = kNowhere, value = 0;  // a slot to be put back first, and then nothing
    };
    std::vector<Pending> pending = {{step}};
    while (!pending.empty()) {
        const Pending now = pending.back();
        pending.pop_back();
        if (now.slot != kNowhere) {
            slots[now.slot] = now.value;
            continue;
        }
        if (ways.seen[now.step] == at) continue;
        ways.seen[now.step] = at;
        const Step& what = m_steps[now.step];
        switch (what.kind) {
            case Step::Split:
                pending.push_back({what.other});
                pending.push_back({what.next});
                break;
            case Step::Jump:
                pending.push_back({what.next});
                break;
            case Step::Save:
                pending.push_back({0, what.other, slots[what.other]});
                slots[what.other] = at;
                pending.push_back({what.next});
                break;
            case Step::Set:
            case Step::Done:
                ways.order.push_back(now.step);
                ways.slots.push_back(slots);
                break;
            default:
                if (Fits(what, text, at)) pending.push_back({what.next});
                break;
        }
    }
}

bool Pattern::Find(std::string_view text, std::vector<std::string_view>& groups) const {
    groups.assign(m_names.size(), {});
    Ways now(m_steps.size()), then(m_steps.size());
    std::vector<size_t> slots(2 * m_names.size(), kNowhere), best;
    bool found = false;
    char32_t character = 0;
    for (size_t at = 0, next = 0; at <= text.size(); at = next) {
        next = at + (at < text.size() ? CharacterAt(text, at, character) : 1);
        if (!found) {
            // A later beginning comes after all ways that began before.
            std::fill(slots.begin(), slots.end(), kNowhere);
            Follow(now, 0, text, at, slots);
        }
        if (now.order.empty() && found) break;
        then.Clear();
        for (size_t i = 0; i < now.order.size(); ++i) {
            const Step& step = m_steps[now.order[i]];
            if (step.kind == Step::Done) {
                best = now.slots[i];
                found = true;
                break;  // the ways behind this one are not preferred
            }
            if (at < text.size() && step.set.Has(character)) Follow(then, step.next, text, next, now.slots[i]);
        }
        std::swap(now, then);
    }
    if (!found) return false;
    for (size_t i = 0; i < groups.size(); ++i) {
        if (best[2 * i] != kNowhere && best[2 * i + 1] != kNowhere)
            groups[i] = text.substr(best[2 * i], best[2 * i + 1] - best[2 * i]);
    }
    return true;
}

std::string Pattern::Example(const std::function<std::string(size_t)>& fill) const { return ExampleOf(m_root, fill); }

bool Pattern::HasName(size_t place) const {
    const Node& node = m_tree[place];
    return node.kind == Node::Group ||
           std::any_of(node.parts.begin(), node.parts.end(), [&](size_t part) { return HasName(part); });
}

std::string Pattern::ExampleOf(size_t place, const std::function<std::string(size_t)>& fill) const {
    const Node& node = m_tree[place];
    std::string example;
    switch (node.kind) {
        case Node::Set:
            for (const char* c = " 0aA.,:;-+"; *c != 0; ++c) {
                if (node.set.Has(static_cast<unsigned char>(*c))) return {*c};
            }
            return TextOf(node.set.Least());
        case Node::Sequence:
            for (const size_t part : node.parts) example += ExampleOf(part, fill);
            return example;
        case Node::Choice: {
            const auto named = std::find_if(node.parts.begin(), node.parts.end(), [&](size_t part) { return HasName(part); });
            return ExampleOf(named == node.parts.end() ? node.parts[0] : *named, fill);
        }
        case Node::Repeat:
            for (int i = 0; i < std::max(node.least, HasName(node.parts[0]) ? 1 : 0); ++i)
                example += ExampleOf(node.parts[0], fill);
            return example;
        case Node::Group:
            return fill(node.name);
        default:
            return example;
    }
}

}  // namespace text
