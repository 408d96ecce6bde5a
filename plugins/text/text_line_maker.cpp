#include "plugins/text/text_line_maker.h"

#include <algorithm>
#include <map>

#include "plugins/text/text_json.h"
#include "plugins/text/text_letters.h"

namespace text {
namespace {
// A line under work, with the channels that stand in it.
struct Draft {
    const Description& description;
    const std::vector<std::string>& fields;
    std::vector<size_t> channels;
    std::string begin;  // that the line must have
};

std::string Between(const Description& description) {
    switch (description.separator.kind) {
        case Separator::Text:
            return description.separator.text;
        case Separator::Blanks:
            return " ";
        case Separator::Auto:
            break;
    }
    return description.decimal == ',' ? ";" : ",";
}

std::string Joined(const std::vector<std::string>& parts, const std::string& between) {
    std::string line;
    for (size_t i = 0; i < parts.size(); ++i) line += (i == 0 ? "" : between) + parts[i];
    return line;
}

std::string RowOf(const Draft& draft) {
    size_t count = draft.description.fieldCount;
    for (const size_t i : draft.channels) count = std::max(count, draft.description.channels[i].field);
    std::vector<std::string> row(count, "0");
    // What the line begins with may be fields of its own, the last one of them whole or not.
    const std::string between = Between(draft.description);
    size_t at = 0;
    for (size_t i = 0; i < row.size() && at < draft.begin.size(); ++i) {
        const size_t end = std::min(draft.begin.find(between, at), draft.begin.size());
        row[i] = draft.begin.substr(at, end - at);
        at = end + between.size();
    }
    for (const size_t i : draft.channels) row[draft.description.channels[i].field - 1] = draft.fields[i];
    return Joined(row, between);
}

size_t CountOf(std::string_view text) {
    size_t count = 0;
    char32_t character = 0;
    for (size_t at = 0; at < text.size(); at += CharacterAt(text, at, character)) ++count;
    return count;
}

std::string ColumnsOf(const Draft& draft) {
    std::string line = draft.begin;
    for (const size_t i : draft.channels) {
        const Channel& channel = draft.description.channels[i];
        const std::string& field = draft.fields[i];
        const size_t end = channel.column - 1 + channel.width;
        for (size_t has = CountOf(line); has < end; ++has) line += ' ';
        const size_t length = std::min(CountOf(field), channel.width), from = PlaceOf(line, end - length);
        line.replace(from, PlaceOf(line, end) - from, field, 0, PlaceOf(field, length));
    }
    return line;
}

std::string PairsOf(const Draft& draft) {
    std::vector<std::string> pairs;
    for (const size_t i : draft.channels) pairs.push_back(draft.description.channels[i].where + '=' + draft.fields[i]);
    const bool automatic = draft.description.separator.kind == Separator::Auto;
    const std::string line = Joined(pairs, automatic ? Between(draft.description) + ' ' : Between(draft.description));
    return line.starts_with(draft.begin) ? line : draft.begin + ' ' + line;
}

// JSON as a tree: names, or numbers in brackets, lead on.
struct Branch {
    std::map<std::string, Branch> names;
    std::vector<Branch> items;
    std::string value;

    std::string Text() const {
        std::vector<std::string> parts;
        if (!names.empty()) {
            for (const auto& [name, branch] : names) parts.push_back(JsonText(name) + ':' + branch.Text());
            return '{' + Joined(parts, ",") + '}';
        }
        if (items.empty()) return value.empty() ? "0" : value;
        for (const Branch& item : items) parts.push_back(item.Text());
        return '[' + Joined(parts, ",") + ']';
    }
};

std::string JsonOf(const Draft& draft) {
    constexpr size_t kMostItems = 1000;
    Branch root;
    for (const size_t i : draft.channels) {
        Branch* branch = &root;
        const std::string& path = draft.description.channels[i].where;
        for (size_t at = 0; at < path.size();) {
            const size_t end = std::min(path.find_first_of(".[", at + 1), path.size());
            const std::string name = path.substr(at, end - at);
            if (name[0] == '[') {
                const auto index = static_cast<size_t>(std::max(std::atoi(name.c_str() + 1), 0));
                if (branch->items.size() <= index) branch->items.resize(std::min(index, kMostItems) + 1);
                branch = &branch->items[std::min(index, kMostItems)];
            } else {
                branch = &branch->names[name[0] == '.' ? name.substr(1) : name];
            }
            at = end;
        }
        double number = 0;
        std::string_view rest;
        const bool bare = SplitNumber(draft.fields[i], '.', number, rest) && rest.empty();
        branch->value = bare ? draft.fields[i] : JsonText(draft.fields[i]);
    }
    return root.Text();
}

std::string LineOf(const Draft& draft) {
    switch (draft.description.style) {
        case FieldStyle::Separator:
            return RowOf(draft);
        case FieldStyle::Columns:
            return ColumnsOf(draft);
        case FieldStyle::Keys:
            return PairsOf(draft);
        case FieldStyle::Json:
            return JsonOf(draft);
        case FieldStyle::Regex:
            break;
    }
    return draft.description.pattern->Example([&](size_t group) {
        for (const size_t i : draft.channels) {
            if (draft.description.channels[i].group == group) return draft.fields[i];
        }
        return std::string("0");
    });
}
}  // namespace

std::vector<std::string> MakeLines(const Description& description, const std::vector<std::string>& fields) {
    std::vector<std::string> lines;
    for (size_t line = 1; line <= description.lines; ++line) {
        // A channel that is looked for in all lines stands in the first.
        Draft draft{description, fields, {}, line == 1 && !description.first.empty() ? description.first : description.start};
        for (size_t i = 0; i < fields.size(); ++i) {
            if (std::max<size_t>(description.channels[i].line, 1) == line) draft.channels.push_back(i);
        }
        lines.push_back(LineOf(draft));
    }
    return lines;
}

std::string MakeHeading(const Description& description) {
    std::vector<std::string> names;
    for (const Channel& channel : description.channels) names.push_back(channel.name);
    return Joined(names, Between(description));
}

}  // namespace text
