#include "host/logger/description_check.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "afx/collections.h"
#include "host/session/value_text.h"
#include "host/words/console.h"
#include "host/words/nearest_word.h"
#include "host/words/texts.h"
#include "propdb/key_segments.h"

namespace {
using Segments = std::vector<std::string>;

constexpr const char* kHostKeys[] = {
    "sFamily", "sName", "Channels.*.sName", "Channels.*.sUnit", "Channels.*.rInterval", "Channels.*.sGroup", "Groups.*.rInterval",
    nullptr};

Segments SegmentsOf(std::string_view key) {
    Segments segments;
    while (!key.empty()) segments.emplace_back(orvik::detail::TakeSegment(key));
    return segments;
}

std::string Joined(const Segments& segments) {
    std::string key;
    for (const std::string& segment : segments) key += (key.empty() ? "" : ".") + segment;
    return key;
}

std::string Lower(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

bool IsAny(const std::string& patternSegment) { return patternSegment == "*"; }

// How many segments from the first on are those of the pattern but for the case of letters.
size_t CountFitting(const Segments& key, const Segments& pattern) {
    size_t count = 0;
    while (count < std::min(key.size(), pattern.size()) && (IsAny(pattern[count]) || Lower(key[count]) == Lower(pattern[count])))
        ++count;
    return count;
}

// What was probably meant: the name alone where only that differs, else the whole key.
std::string Nearest(const Segments& key, const std::vector<Segments>& patterns) {
    size_t least = std::string::npos;
    std::string nearest;
    for (const Segments& pattern : patterns) {
        // Keys of another depth are compared by their names alone, and stand behind all others that are as near.
        const bool sameDepth = key.size() == pattern.size();
        size_t distance = sameDepth ? 0 : 1 + LetterDistance(key.back(), pattern.back());
        Segments meant = pattern;
        for (size_t i = 0; i < meant.size(); ++i) {
            if (IsAny(meant[i])) {
                meant[i] = sameDepth ? key[i] : "<key>";
            } else if (sameDepth) {
                distance += LetterDistance(key[i], meant[i]);
            }
        }
        if (distance >= least) continue;
        least = distance;
        nearest = sameDepth && CountFitting(key, pattern) + 1 == key.size() ? meant.back() : Joined(meant);
    }
    return nearest;
}

std::vector<Segments> Patterns(const char* const* familyKeys, const char* const* hostKeys = kHostKeys) {
    std::vector<Segments> patterns;
    for (const char* const* keys : {hostKeys, familyKeys}) {
        for (; keys != nullptr && *keys != nullptr; ++keys) patterns.push_back(SegmentsOf(*keys));
    }
    return patterns;
}

bool IsKnown(const Segments& segments, const std::vector<Segments>& patterns, bool folder) {
    return std::any_of(patterns.begin(), patterns.end(), [&](const Segments& pattern) {
        return CountFitting(segments, pattern) == segments.size() && (folder || segments.size() == pattern.size());
    });
}

// `strict`: keys that no pattern fits are refused, and not only left alone.
void Spell(CPropertyDB& description, const std::vector<Segments>& patterns, bool strict) {
    CStringArray keys;
    description.EnumAll(keys);
    CPropertyDB spelt;
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        const std::string key = keys.GetAt(i).GetString();
        const CObject* const value = description.GetValueObject(key.c_str(), TRUE);
        const bool folder = KindOf(value).empty();  // one without anything in it
        Segments segments = SegmentsOf(key);
        const auto best = std::max_element(patterns.begin(), patterns.end(), [&](const Segments& a, const Segments& b) {
            return CountFitting(segments, a) < CountFitting(segments, b);
        });
        const size_t fitting = CountFitting(segments, *best);
        for (size_t at = 0; at < fitting; ++at) {
            if (!IsAny((*best)[at])) segments[at] = (*best)[at];
        }
        const bool known = IsKnown(segments, patterns, folder);
        const std::string name = Joined(segments);
        if (strict && !known) throw Failure{kWrongUse, Say(Text::UnknownKey, {ToUtf8(key), ToUtf8(Nearest(segments, patterns))})};
        if (strict && description.Count(key.c_str(), FALSE) > 1 && !folder)
            throw Failure{kWrongUse, Say(Text::SeveralValues, {ToUtf8(key)})};
        if (spelt.Find(name.c_str()) && !folder) throw Failure{kWrongUse, Say(Text::KeyTwice, {ToUtf8(name)})};
        if (folder) {
            spelt.SetPath(name.c_str());
        } else if (!spelt.SetValue(name.c_str(), value, TRUE)) {
            throw Failure{kWrongUse, Say(Text::KeyTwice, {ToUtf8(name)})};
        }
    }
    description = spelt;
}
}  // namespace

void SpellHostKeys(CPropertyDB& description) { Spell(description, Patterns(nullptr), false); }

void CheckKeys(CPropertyDB& description, const char* const* familyKeys) {
    Spell(description, Patterns(familyKeys), familyKeys != nullptr);
}

void SpellKeys(CPropertyDB& db, const char* const* keys) { Spell(db, Patterns(nullptr, keys), false); }

std::vector<StrayKey> FindStrayKeys(const CPropertyDB& db, const char* const* known) {
    const std::vector<Segments> patterns = Patterns(nullptr, known);
    CStringArray keys;
    db.EnumAll(keys);
    std::vector<StrayKey> strays;
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        const std::string key = keys.GetAt(i).GetString();
        const Segments segments = SegmentsOf(key);
        const bool folder = KindOf(db.GetValueObject(key.c_str(), TRUE)).empty();
        if (!IsKnown(segments, patterns, folder)) strays.push_back({key, Nearest(segments, patterns)});
    }
    return strays;
}
