#include "plugins/text/text_shape.h"

#include <algorithm>

#include "plugins/text/text_fields.h"
#include "plugins/text/text_json.h"
#include "plugins/text/text_letters.h"

namespace text {
namespace {
struct Named {
    const char* name;
    Separator separator;
};
constexpr size_t kMostSigns = 100;  // of names, in one line

const Named kSeparators[] = {{"semicolon", {Separator::Text, ";"}},
                             {"tab", {Separator::Text, "\t"}},
                             {"comma", {Separator::Text, ","}},
                             {"blanks", {Separator::Blanks, {}}}};

// A field that is a number, with its unit if it has one.
bool IsNumber(std::string_view field, char decimal, Cell& cell) {
    double number = 0;
    std::string_view rest;
    if (!SplitNumber(field, decimal, number, rest) || !IsUnit(rest)) return false;
    cell.number = field;
    cell.unit = rest;
    cell.attached = !rest.empty();
    return true;
}

Shape Row(const std::string& line, const Named& named, char decimal) {
    Shape shape;
    shape.separator = named.name;
    shape.decimal = decimal;
    const std::vector<std::string_view> fields = SplitFields(line, named.separator, decimal);
    shape.fields = fields.size();
    for (size_t i = 0; i < fields.size(); ++i) {
        Cell cell;
        if (IsNumber(fields[i], decimal, cell)) {
            cell.field = i + 1;
            shape.cells.push_back(cell);
        } else if (!shape.cells.empty() && shape.cells.back().field == i && shape.cells.back().unit.empty() &&
                   named.separator.kind == Separator::Blanks && !fields[i].empty() && IsUnit(fields[i])) {
            shape.cells.back().unit = fields[i];
        }
    }
    // The first field as the name of what the line is about.
    if (!fields.empty() && (shape.cells.empty() || shape.cells[0].field != 1) && HasLetter(fields[0]))
        shape.start = line.substr(0, static_cast<size_t>(fields[0].data() - line.data()) + fields[0].size());
    return shape;
}

Shape BestRow(const std::string& line) {
    Shape best;
    for (const Named& named : kSeparators) {
        for (const char decimal : {'.', ','}) {
            if (named.separator.text == std::string(1, decimal)) continue;
            Shape shape = Row(line, named, decimal);
            // The larger part of the fields that are numbers; as large, more of them.
            const size_t now = shape.cells.size() * std::max<size_t>(best.fields, 1), before = best.cells.size() * shape.fields;
            if (now > before || (now == before && shape.cells.size() > best.cells.size())) best = std::move(shape);
        }
    }
    return best;
}

bool IsNameCharacter(char c) { return (c >= '0' && c <= '9') || IsLetterByte(c) || c == '_' || c == '.' || c == '-'; }

Shape Pairs(const std::string& line, char decimal) {
    Shape shape;
    shape.style = FieldStyle::Keys;
    shape.separator = "auto";
    shape.decimal = decimal;
    size_t signs = 0;
    for (size_t sign = line.find_first_of("=:"); sign != std::string::npos; sign = line.find_first_of("=:", sign + 1)) {
        if (++signs > kMostSigns) break;
        const size_t end = line.find_last_not_of(" \t", sign == 0 ? 0 : sign - 1) + 1;
        size_t begin = end;
        while (begin > 0 && IsNameCharacter(line[begin - 1])) --begin;
        const std::string name = line.substr(begin, end - begin);
        if (!HasLetter(name)) continue;
        Cell cell;
        std::string_view value;
        if (FindKey(line, name, {}, decimal, value) != 1 || !IsNumber(value, decimal, cell)) continue;
        cell.where = name;
        shape.cells.push_back(cell);
    }
    if (shape.cells.size() > 0) {
        const size_t first = line.find(shape.cells[0].where);
        shape.start = line.substr(0, first + shape.cells[0].where.size());
    }
    return shape;
}

Shape Json(const std::string& line) {
    Shape shape;
    shape.style = FieldStyle::Json;
    std::vector<JsonLeaf> leaves;
    const size_t first = line.find_first_not_of(" \t");
    if (first == std::string::npos || (line[first] != '{' && line[first] != '[') || !ReadJson(line, leaves)) return shape;
    for (const JsonLeaf& leaf : leaves) {
        Cell cell;
        const bool text = leaf.kind == JsonLeaf::Text || leaf.kind == JsonLeaf::Number;
        const bool twice =
            std::count_if(leaves.begin(), leaves.end(), [&](const JsonLeaf& one) { return one.path == leaf.path; }) > 1;
        if (leaf.path.empty() || twice || !text || !IsNumber(leaf.text, '.', cell)) continue;
        cell.where = leaf.path;
        shape.cells.push_back(cell);
    }
    return shape;
}
}  // namespace

bool Shape::IsLike(const Shape& other) const {
    const auto same = [](const Cell& a, const Cell& b) { return a.field == b.field && a.where == b.where; };
    return style == other.style && std::string_view(separator) == other.separator && decimal == other.decimal &&
           fields == other.fields && start == other.start &&
           std::equal(cells.begin(), cells.end(), other.cells.begin(), other.cells.end(), same);
}

bool Shape::HasAnyOf(const Shape& other) const {
    return std::any_of(cells.begin(), cells.end(), [&](const Cell& cell) {
        return std::any_of(other.cells.begin(), other.cells.end(), [&](const Cell& one) { return one.where == cell.where; });
    });
}

Shape ShapeOf(const std::string& line) {
    if (Shape json = Json(line); !json.cells.empty()) return json;
    Shape best = BestRow(line);
    for (const char decimal : {'.', ','}) {
        Shape pairs = Pairs(line, decimal);
        // With names there is no doubt which number is which; what is no number with either sign is none.
        if (!pairs.cells.empty() && (best.style != FieldStyle::Keys || pairs.cells.size() > best.cells.size()))
            best = std::move(pairs);
    }
    return best;
}

std::vector<std::string> HeadingOf(const std::string& line, const Shape& shape) {
    std::vector<std::string> names;
    for (const Named& named : kSeparators) {
        if (std::string_view(named.name) != shape.separator) continue;
        for (const std::string_view field : SplitFields(line, named.separator, shape.decimal)) names.emplace_back(field);
    }
    const bool all = names.size() == shape.fields && std::all_of(names.begin(), names.end(), HasLetter) &&
                     std::none_of(names.begin(), names.end(), [&](const std::string& name) {
                         Cell cell;
                         return IsNumber(name, shape.decimal, cell);
                     });
    if (!all) names.clear();
    return names;
}

}  // namespace text
