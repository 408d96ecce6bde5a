#include "plugins/text/text_fields.h"

#include <algorithm>
#include <cmath>
#include <deque>
#include <optional>

#include "platform/house_text.h"
#include "plugins/text/text_json.h"
#include "plugins/text/text_number.h"

namespace text {
namespace {
constexpr std::string_view kBlanks = " \t";

bool IsBlank(char c) { return c == ' ' || c == '\t'; }

// What a channel's place gave in a line: a field, or why there is none.
struct Found {
    std::optional<std::string> field;
    Sentence why = Sentence::FieldMissing;
    std::string text;
    bool noValue = false;  // and not by a text that says so
};

Found Missing(const std::string& what, std::string_view line) {
    return {std::nullopt, Sentence::FieldMissing, Say(Sentence::FieldMissing, {what, Shown(line)})};
}

// A line, taken apart once for all channels.
class Line {
public:
    Line(const Description& description, const std::string& line) : m_description(description), m_line(LineText(line)) {
        switch (description.style) {
            case FieldStyle::Separator:
                m_fields = SplitFields(m_line, description.separator, description.decimal);
                if (description.fieldCount != 0 && m_fields.size() != description.fieldCount)
                    Refuse(Sentence::FieldCount,
                           {std::to_string(m_fields.size()), std::to_string(description.fieldCount), Shown(m_line)});
                break;
            case FieldStyle::Regex:
                if (!description.pattern->Find(m_line, m_groups)) Refuse(Sentence::NoMatch, {Shown(m_line)});
                break;
            case FieldStyle::Json:
                if (!ReadJson(m_line, m_leaves)) Refuse(Sentence::NoJson, {Shown(m_line)});
                break;
            case FieldStyle::Columns:
            case FieldStyle::Keys:
                break;
        }
    }

    const std::string& Text() const { return m_line; }

    Found Find(const Channel& channel) const {
        if (m_why != Sentence::None) return {std::nullopt, m_why, m_text};
        switch (m_description.style) {
            case FieldStyle::Separator:
                if (channel.field > m_fields.size()) return Missing('#' + std::to_string(channel.field), m_line);
                return {WithUnit(channel), Sentence::None, {}};
            case FieldStyle::Columns:
                if (channel.column > m_line.size()) return Missing('#' + std::to_string(channel.column), m_line);
                return {m_line.substr(channel.column - 1, channel.width), Sentence::None, {}};
            case FieldStyle::Regex:
                if (m_groups[channel.group].data() == nullptr) return Missing(channel.where, m_line);
                return {std::string(m_groups[channel.group]), Sentence::None, {}};
            case FieldStyle::Keys: {
                std::string_view value;
                const size_t count = FindKey(m_line, channel.where, m_description.separator, m_description.decimal, value);
                if (count == 1) return {std::string(value), Sentence::None, {}};
                return count == 0 ? Missing(channel.where, m_line) : Twice(channel);
            }
            case FieldStyle::Json:
                return FindLeaf(channel);
        }
        return {};
    }

private:
    void Refuse(Sentence why, std::initializer_list<std::string_view> arguments) {
        m_why = why;
        m_text = Say(why, arguments);
    }

    // A unit that must be there may be the next field, as it is between blanks.
    std::string WithUnit(const Channel& channel) const {
        std::string field(m_fields[channel.field - 1]);
        double number = 0;
        std::string_view rest;
        const bool wanted = channel.number.suffix && !channel.number.suffix->empty();
        if (wanted && channel.field < m_fields.size() && SplitNumber(field, m_description.decimal, number, rest) && rest.empty())
            field += ' ' + std::string(m_fields[channel.field]);
        return field;
    }

    Found Twice(const Channel& channel) const {
        return {std::nullopt, Sentence::FieldTwice, Say(Sentence::FieldTwice, {channel.where, Shown(m_line)})};
    }

    Found FindLeaf(const Channel& channel) const {
        const auto is = [&](const JsonLeaf& leaf) { return leaf.path == channel.where; };
        const auto leaf = std::find_if(m_leaves.begin(), m_leaves.end(), is);
        if (leaf == m_leaves.end()) return Missing(channel.where, m_line);
        if (std::find_if(leaf + 1, m_leaves.end(), is) != m_leaves.end()) return Twice(channel);
        switch (leaf->kind) {
            case JsonLeaf::Null:
                return {std::string(), Sentence::None, {}, true};
            case JsonLeaf::True:
                return {"1", Sentence::None, {}};
            case JsonLeaf::False:
                return {"0", Sentence::None, {}};
            default:
                return {leaf->text, Sentence::None, {}};
        }
    }

    const Description& m_description;
    const std::string m_line;
    std::vector<std::string_view> m_fields, m_groups;
    std::vector<JsonLeaf> m_leaves;
    Sentence m_why = Sentence::None;
    std::string m_text;
};

Outcome ValueOf(const Channel& channel, const Found& found, const std::string& line) {
    Outcome outcome;
    if (!found.field) {
        outcome.why = found.why;
        outcome.text = found.text;
        return outcome;
    }
    double number = 0;
    switch (found.noValue ? NumberResult::NoValue : ReadNumber(*found.field, channel.number, number)) {
        case NumberResult::NoValue:
            outcome.noValue = true;
            break;
        case NumberResult::OtherUnit:
            outcome.why = Sentence::OtherUnit;
            outcome.text = Say(Sentence::OtherUnit, {Shown(*found.field), *channel.number.suffix, Shown(line)});
            break;
        case NumberResult::Wrong:
            outcome.why = Sentence::NoNumber;
            outcome.text = Say(Sentence::NoNumber, {Shown(*found.field), Shown(line)});
            break;
        case NumberResult::Number: {
            const double scaled = number * channel.scale;
            outcome.value = channel.offset == 0 ? scaled : scaled + channel.offset;  // adding 0 would turn -0 into 0
            if (std::isfinite(outcome.value)) break;
            outcome.why = Sentence::NoNumber;
            outcome.text = Say(Sentence::NoNumber, {Shown(*found.field), Shown(line)});
            break;
        }
    }
    return outcome;
}
}  // namespace

std::string LineText(std::string_view line) {
    if (OrvikTextCodePage() == CP_UTF8) return OrvikUtf8FromText(line);
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(line[i]); };
    std::string text;
    for (size_t i = 0; i < line.size(); ++i) {
        if (byte(i) < 0x80) {
            text += line[i];
            continue;
        }
        // Other bytes above 127 than those of such letters: the line is no UTF-8, or says what Windows-1252 cannot.
        const unsigned char least = byte(i) == 0xC2 ? 0xA0 : 0x80;
        const bool letter =
            (byte(i) == 0xC2 || byte(i) == 0xC3) && i + 1 < line.size() && byte(i + 1) >= least && byte(i + 1) < 0xC0;
        if (!letter) return std::string(line);
        text += static_cast<char>((byte(i) & 3) << 6 | (byte(i + 1) & 0x3F));
        ++i;
    }
    return text;
}

std::vector<std::string_view> SplitFields(std::string_view line, const Separator& separator, char decimal) {
    std::string_view between = separator.text;
    if (separator.kind == Separator::Auto) {
        for (const std::string_view candidate : {";", "\t", ","}) {
            if (candidate[0] != decimal && line.find(candidate) != std::string_view::npos) {
                between = candidate;
                break;
            }
        }
    }
    std::vector<std::string_view> fields;
    if (between.empty()) {
        for (size_t at = line.find_first_not_of(kBlanks); at != std::string_view::npos;) {
            const size_t end = std::min(line.find_first_of(kBlanks, at), line.size());
            fields.push_back(line.substr(at, end - at));
            at = line.find_first_not_of(kBlanks, end);
        }
        return fields;
    }
    for (size_t at = 0;;) {
        const size_t end = line.find(between, at);
        fields.push_back(Trimmed(line.substr(at, end - at)));
        if (end == std::string_view::npos) return fields;
        at = end + between.size();
    }
}

namespace {
// Of "name = value": where the value begins, if `text` begins with a sign that gives one; else npos.
size_t BehindSign(std::string_view text) {
    const size_t sign = text.find_first_not_of(kBlanks);
    return sign != std::string_view::npos && (text[sign] == '=' || text[sign] == ':') ? sign + 1 : std::string_view::npos;
}

// The first of the signs that part values. A comma between digits is none: it may be a decimal sign that nobody told of.
size_t EndOfPart(std::string_view text, const std::string& parts) {
    const auto digit = [&](size_t i) { return i < text.size() && text[i] >= '0' && text[i] <= '9'; };
    size_t at = text.find_first_of(parts);
    while (at != std::string_view::npos && at > 0 && text[at] == ',' && digit(at - 1) && digit(at + 1))
        at = text.find_first_of(parts, at + 1);
    return at;
}

// Where a value ends that nothing else parts from the next name: before the blanks in front of it.
size_t EndBeforeName(std::string_view text) {
    const size_t sign = text.find_first_of("=:");
    if (sign == std::string_view::npos) return text.size();
    const size_t name = text.find_last_not_of(kBlanks, sign == 0 ? 0 : sign - 1);
    const size_t blank = name == std::string_view::npos ? name : text.find_last_of(kBlanks, name);
    return blank == std::string_view::npos ? text.size() : blank;
}
}  // namespace

size_t FindKey(std::string_view line, std::string_view key, const Separator& separator, char decimal, std::string_view& value) {
    size_t count = 0;
    if (separator.kind == Separator::Text) {
        for (const std::string_view field : SplitFields(line, separator, decimal)) {
            if (!field.starts_with(key)) continue;
            const size_t begin = BehindSign(field.substr(key.size()));
            if (begin == std::string_view::npos) continue;
            value = Trimmed(field.substr(key.size() + begin));
            ++count;
        }
        return count;
    }
    std::string parts = ";\t|{}()";
    if (decimal != ',') parts += ',';
    for (size_t at = line.find(key); at != std::string_view::npos; at = line.find(key, at + 1)) {
        const bool begins = at == 0 || IsBlank(line[at - 1]) || parts.find(line[at - 1]) != std::string::npos;
        const std::string_view rest = line.substr(at + key.size());
        const size_t begin = begins ? BehindSign(rest) : std::string_view::npos;
        if (begin == std::string_view::npos) continue;
        value = rest.substr(begin);
        value = value.substr(0, EndOfPart(value, parts));
        const size_t lead = std::min(value.find_first_not_of(kBlanks), value.size());
        value = Trimmed(value.substr(0, lead + EndBeforeName(value.substr(lead))));
        ++count;
    }
    return count;
}

std::vector<Outcome> ReadFields(const Description& description, const std::vector<std::string>& lines) {
    std::deque<Line> parted;  // they look into themselves, and must not move
    for (const std::string& line : lines) parted.emplace_back(description, line);
    std::vector<Outcome> outcomes;
    for (const Channel& channel : description.channels) {
        Outcome outcome;
        outcome.why = Sentence::FieldMissing;
        bool settled = false;
        for (size_t i = 0; i < parted.size() && !settled; ++i) {
            if (channel.line != 0 && channel.line != i + 1) continue;
            const Found found = parted[i].Find(channel);
            settled = found.field || found.why == Sentence::FieldTwice;
            if (settled || outcome.text.empty()) outcome = ValueOf(channel, found, parted[i].Text());
        }
        outcomes.push_back(std::move(outcome));
    }
    return outcomes;
}

}  // namespace text
