#include "host/gui/script.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "host/words/console.h"
#include "host/words/texts.h"

namespace {
constexpr int kDragMoves = 5;  // a drag is drawn on its way, not only at its end
constexpr int kLeastSide = 1, kMostSide = 8192;
constexpr double kFarthest = 32767;  // what a mouse message can say

struct KeyName {
    const char* name;
    WORD key;
};
constexpr KeyName kKeys[] = {{"escape", VK_ESCAPE},  {"enter", VK_RETURN},  {"tab", VK_TAB},        {"space", VK_SPACE},
                             {"left", VK_LEFT},      {"right", VK_RIGHT},   {"up", VK_UP},          {"down", VK_DOWN},
                             {"home", VK_HOME},      {"end", VK_END},       {"pageup", VK_PRIOR},   {"pagedown", VK_NEXT},
                             {"insert", VK_INSERT},  {"delete", VK_DELETE}, {"backspace", VK_BACK}, {"plus", VK_ADD},
                             {"minus", VK_SUBTRACT}, {"menu", VK_APPS},     {"f1", VK_F1},          {"f2", VK_F2},
                             {"f6", VK_F6},          {"f10", VK_F10}};

std::string Lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return text;
}

// One line: its words, and what stands behind the first of them.
class Line {
public:
    Line(const std::string& script, int number, std::string_view text) : m_script(script), m_number(number) {
        size_t at = 0;
        while ((at = text.find_first_not_of(" \t", at)) != text.npos) {
            const size_t end = std::min(text.find_first_of(" \t", at), text.size());
            if (m_words.size() == 1) m_rest = text.substr(at);
            m_words.emplace_back(text.substr(at, end - at));
            at = end;
        }
        while (!m_rest.empty() && (m_rest.back() == ' ' || m_rest.back() == '\t')) m_rest.pop_back();
    }

    [[noreturn]] void Fail(Text text, std::initializer_list<std::string_view> arguments = {}) const {
        throw Failure{kWrongUse, Say(Text::ScriptLine, {m_script, std::to_string(m_number), Say(text, arguments)})};
    }

    bool Empty() const { return m_words.empty() || m_words[0][0] == '#'; }
    std::string Verb() const { return Lower(m_words[0]); }
    const std::string& Next() {
        if (m_at == m_words.size()) Fail(Text::ScriptMissing, {m_words[0]});
        return m_words[m_at++];
    }
    bool More() const { return m_at < m_words.size(); }
    void End() const {
        if (More()) Fail(Text::ScriptTooMuch, {m_words[m_at]});
    }
    // All of the line behind the verb, as text.
    std::string Rest(bool required) {
        m_at = m_words.size();
        if (required && m_rest.empty()) Fail(Text::ScriptMissing, {m_words[0]});
        std::string text;
        if (!m_rest.empty() && !FromUtf8(m_rest, text)) Fail(Text::ScriptLetters);
        return text;
    }
    int Whole(int least, int most) {
        const std::string& word = Next();
        int value = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
        if (error != std::errc() || end != word.data() + word.size() || value < least || value > most)
            Fail(Text::NotANumber, {word, std::to_string(least), std::to_string(most)});
        return value;
    }
    ScriptPoint Point() {
        const std::string& word = Next();
        ScriptPoint point;
        const size_t colon = word.find(':'), comma = word.find(',', colon == word.npos ? 0 : colon);
        if (comma == word.npos) Fail(Text::ScriptPoint, {word});
        if (colon != word.npos) {
            point.place = Lower(word.substr(0, colon));
            if (!IsPlace(point.place)) Fail(Text::ScriptPlace, {word.substr(0, colon)});
        }
        const size_t begin = colon == word.npos ? 0 : colon + 1;
        const double most = colon == word.npos ? kFarthest : 1000;
        const auto number = [&](size_t from, size_t to) {
            double value = 0;
            const auto [end, error] = std::from_chars(word.data() + from, word.data() + to, value);
            if (error != std::errc() || end != word.data() + to || !(std::abs(value) <= most)) Fail(Text::ScriptPoint, {word});
            return value;
        };
        point.x = number(begin, comma);
        point.y = number(comma + 1, word.size());
        return point;
    }
    // The words "shift", "ctrl" and so on that may follow.
    void Manner(ScriptStep& step, bool buttons) {
        while (More()) {
            const std::string word = Lower(Next());
            if (word == "shift") {
                step.shift = true;
            } else if (word == "ctrl") {
                step.control = true;
            } else if (buttons && word == "right") {
                step.right = true;
            } else if (buttons && word == "double") {
                step.twice = true;
            } else if (!buttons || word != "left") {
                Fail(Text::ScriptTooMuch, {word});
            }
        }
    }
    void Key(ScriptStep& step) {
        std::string word = Lower(Next());
        for (size_t plus; (plus = word.find('+')) != word.npos && plus + 1 < word.size(); word.erase(0, plus + 1)) {
            const std::string held = word.substr(0, plus);
            if (held == "shift") {
                step.shift = true;
            } else if (held == "ctrl") {
                step.control = true;
            } else {
                Fail(Text::ScriptKey, {held});
            }
        }
        const auto named = std::find_if(std::begin(kKeys), std::end(kKeys), [&](const KeyName& key) { return key.name == word; });
        const bool letter = word.size() == 1 && ((word[0] >= 'a' && word[0] <= 'z') || (word[0] >= '0' && word[0] <= '9'));
        if (named != std::end(kKeys)) {
            step.key = named->key;
        } else if (letter) {
            step.key = static_cast<WORD>(word[0] >= 'a' ? word[0] - 32 : word[0]);
        } else {
            Fail(Text::ScriptKey, {word});
        }
    }

private:
    static bool IsPlace(const std::string& place) {
        for (const char* whole : {"window", "plot", "time", "timerubber", "list", "bar", "selection"}) {
            if (place == whole) return true;
        }
        for (const char* numbered : {"axis", "rubber", "drag", "tag", "column"}) {
            const std::string_view name = numbered;
            if (place.size() > name.size() && place.size() <= name.size() + 3 && place.compare(0, name.size(), name) == 0)
                return std::all_of(place.begin() + static_cast<std::ptrdiff_t>(name.size()), place.end(),
                                   [](char c) { return c >= '0' && c <= '9'; });
        }
        return false;
    }

    const std::string& m_script;
    int m_number;
    std::vector<std::string> m_words;
    std::string m_rest;
    size_t m_at = 1;
};

// A press at a, a release at b, and moves between them.
void AddDrag(std::vector<ScriptStep>& steps, ScriptStep step, const ScriptPoint& a, const ScriptPoint& b) {
    step.kind = ScriptStep::Press;
    step.point = a;
    steps.push_back(step);
    step.kind = ScriptStep::Move;
    for (int i = 1; i <= kDragMoves && a.place == b.place; ++i) {
        const double part = static_cast<double>(i) / kDragMoves;
        step.point = {a.place, a.x + (b.x - a.x) * part, a.y + (b.y - a.y) * part};
        steps.push_back(step);
    }
    step.point = b;
    if (a.place != b.place) steps.push_back(step);
    step.kind = ScriptStep::Release;
    steps.push_back(step);
}

void AddLine(std::vector<ScriptStep>& steps, Line& line, int number) {
    ScriptStep step;
    step.line = number;
    const std::string verb = line.Verb();
    if (verb == "drag") {
        const ScriptPoint from = line.Point(), to = line.Point();
        line.Manner(step, false);
        return AddDrag(steps, step, from, to);
    }
    if (verb == "click") {
        step.point = line.Point();
        line.Manner(step, true);
        step.kind = ScriptStep::Press;
        steps.push_back(step);
        step.kind = ScriptStep::Release;
        return steps.push_back(step);
    }
    if (verb == "press" || verb == "move" || verb == "release") {
        step.kind = verb == "press" ? ScriptStep::Press : verb == "move" ? ScriptStep::Move : ScriptStep::Release;
        step.point = line.Point();
        line.Manner(step, verb != "move");
    } else if (verb == "wheel") {
        step.kind = ScriptStep::Wheel;
        step.point = line.Point();
        step.number = line.Whole(-100, 100);
        line.Manner(step, false);
    } else if (verb == "key") {
        step.kind = ScriptStep::Key;
        line.Key(step);
    } else if (verb == "type" || verb == "menu" || verb == "picture") {
        step.kind = verb == "type" ? ScriptStep::Type : verb == "menu" ? ScriptStep::Menu : ScriptStep::Picture;
        step.text = line.Rest(true);
    } else if (verb == "save") {
        step.kind = ScriptStep::Save;
        step.text = line.Rest(false);
    } else if (verb == "remember") {
        step.kind = ScriptStep::Remember;
    } else if (verb == "expect") {
        step.kind = ScriptStep::Expect;
        step.text = Lower(line.Next());
        if (step.text != "same" && step.text != "other") line.Fail(Text::ScriptTooMuch, {step.text});
    } else if (verb == "size") {
        step.kind = ScriptStep::Size;
        step.number = line.Whole(kLeastSide, kMostSide);
        step.second = line.Whole(kLeastSide, kMostSide);
    } else {
        line.Fail(Text::ScriptVerb, {verb});
    }
    steps.push_back(step);
}
}  // namespace

std::vector<ScriptStep> ParseScript(const std::string& name, const std::string& text) {
    std::vector<ScriptStep> steps;
    int number = 0;
    for (size_t at = 0; at < text.size();) {
        const size_t end = std::min(text.find('\n', at), text.size());
        std::string_view line(text.data() + at, end - at);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        if (++number == 1 && line.substr(0, 3) == "\xEF\xBB\xBF") line.remove_prefix(3);
        Line words(name, number, line);
        if (!words.Empty()) {
            AddLine(steps, words, number);
            words.End();
        }
        at = end + 1;
    }
    return steps;
}
