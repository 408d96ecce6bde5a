#include "plugins/text/text_learn.h"

#include <algorithm>
#include <map>

#include "comm/comm_exception.h"
#include "platform/house_text.h"
#include "plugins/text/text_checksum.h"
#include "plugins/text/text_escapes.h"
#include "plugins/text/text_fields.h"
#include "plugins/text/text_json.h"
#include "plugins/text/text_sentences.h"
#include "plugins/text/text_shape.h"
#include "plugins/text/text_splitter.h"

namespace text {
namespace {
constexpr size_t kLongest = 4096;
constexpr size_t kMostSources = 8;                      // values of what tells them apart
constexpr size_t kMostLines = 300, kMostChannels = 64;  // more tell nothing new

// Whole lines of text, the first one left out: it may be half a one. None where too much is no text, as it is when the line's
// settings are wrong.
std::vector<std::string> LinesOf(std::string_view heard, std::string& first) {
    // From one line's end to another's: what is cut there may be no UTF-8.
    const size_t from = std::min(heard.find('\n'), heard.size()), until = heard.rfind('\n');
    std::string text;
    const bool letters = OrvikTextCodePage() == CP_UTF8 && OrvikTextFromUtf8(heard.substr(from, until - from), text);
    size_t strange = 0;
    for (const char c : heard) {
        const auto byte = static_cast<unsigned char>(c);
        strange += (byte < ' ' && c != '\r' && c != '\n' && c != '\t') || byte == 0x7F || (byte > 0x7F && !letters);
    }
    std::vector<std::string> lines;
    if (5 * strange > heard.size()) return lines;
    Splitter splitter({}, kLongest);
    for (size_t at = 0; at < heard.size();) {
        Splitter::Line line;
        bool whole = false;
        at += splitter.Take(heard.substr(at), line, whole);
        if (whole && !line.cut) lines.push_back(LineText(line.text));
    }
    if (lines.empty()) return lines;
    first = lines.front();
    lines.erase(lines.begin(), lines.end() - static_cast<std::ptrdiff_t>(std::min(lines.size() - 1, kMostLines)));
    return lines;
}

// The kind of checksum that all lines end in, which is taken off.
Checksum TakeAll(std::vector<std::string>& lines) {
    for (const Checksum kind : {Checksum::Xor, Checksum::Crc16, Checksum::Sum}) {
        std::vector<std::string> bare;
        for (const std::string& line : lines) {
            std::string_view rest = line;
            if (TakeChecksum(kind, rest) == ChecksumResult::Right) bare.emplace_back(rest);
        }
        // One that fits may do so by chance.
        if (bare.size() != lines.size() || bare.size() < 2) continue;
        lines = std::move(bare);
        return kind;
    }
    return Checksum::None;
}

// As a value of a description: what its files cannot hold is escaped.
std::string Stored(std::string_view text) { return Escape(text, ";"); }

// A number of the lines, with the units that it came with, the empty one among them where it had none.
struct Field {
    Cell cell;
    std::string name;
    std::vector<std::string> units;
};

void AddUnit(Field& field, const std::string& unit) {
    if (std::find(field.units.begin(), field.units.end(), unit) == field.units.end()) field.units.push_back(unit);
}

// What is to be a channel: a field, or one of a field's units.
struct Planned {
    const Field& field;
    std::string name, unit;
};

std::vector<Planned> Plan(const std::vector<Field>& fields) {
    std::vector<Planned> plan;
    for (const Field& field : fields) {
        const bool several = field.units.size() > 1;
        for (const std::string& unit : field.units) {
            if (several && unit.empty()) continue;
            plan.push_back({field, field.name + (several ? ' ' + unit : ""), unit});
        }
    }
    return plan;
}

void Describe(IPropertyDB& db, const Shape& shape, bool started, Checksum checksum, DWORD pause,
              const std::vector<Planned>& plan) {
    static constexpr const char* kStyles[] = {"separator", "columns", "regex", "keys", "json"};
    static constexpr const char* kChecksums[] = {"none", "sum", "xor", "crc16"};
    db.SetValue("sFields", kStyles[static_cast<size_t>(shape.style)]);
    if (shape.style == FieldStyle::Separator) {
        db.SetValue("sSeparator", shape.separator);
        db.SetValue("nFields", static_cast<unsigned int>(shape.fields));
    }
    if (shape.decimal != '.') db.SetValue("sDecimal", ",");
    if (checksum != Checksum::None) db.SetValue("sChecksum", kChecksums[static_cast<size_t>(checksum)]);
    if (started) db.SetValue("sStart", Stored(shape.start).c_str());
    if (pause >= 100) db.SetValue("nEvery", static_cast<unsigned int>((pause + 50) / 100 * 100));
    for (size_t i = 0; i < plan.size(); ++i) {
        std::string key = std::to_string(i + 1);
        if (plan.size() > 9 && key.size() < 2) key.insert(0, "0");
        db.BeginUsing(("Channels." + key).c_str());
        db.SetValue("sName", plan[i].name.c_str());
        if (!plan[i].unit.empty()) {
            db.SetValue("sUnit", plan[i].unit.c_str());
            db.SetValue("sSuffix", Stored(plan[i].unit).c_str());
        }
        if (shape.style == FieldStyle::Separator) {
            db.SetValue("nField", static_cast<unsigned int>(plan[i].field.cell.field));
        } else {
            db.SetValue("sKey", plan[i].field.cell.where.c_str());
        }
        db.EndUsing();
    }
}

std::string Table(const std::vector<Planned>& plan) {
    std::string table;
    for (size_t i = 0; i < plan.size(); ++i) {
        const Cell& cell = plan[i].field.cell;
        table += "  " + std::to_string(i + 1) + "  " + plan[i].name + "  ";
        // The number as it was heard, with its unit; of several units, the unit alone.
        const bool heard = plan[i].unit == cell.unit;
        table += heard ? cell.number : plan[i].unit;
        if (heard && !cell.unit.empty() && !cell.attached) table += ' ' + cell.unit;
        table += '\n';
    }
    return table;
}

std::string Quoted(const std::vector<std::string>& values) {
    std::string list;
    for (const std::string& value : values) list += (list.empty() ? "" : ", ") + Shown(value);
    return list;
}

// What may tell several sources or units apart, and no channel shows: texts of JSON that change between a few values, and a whole
// number in front of each line that does.
std::string Warnings(const Shape& shape, const std::vector<const std::string*>& lines) {
    std::map<std::string, std::vector<std::string>> values;
    for (const std::string* line : lines) {
        const auto add = [&](const std::string& where, const std::string& value) {
            std::vector<std::string>& known = values[where];
            if (std::find(known.begin(), known.end(), value) == known.end()) known.push_back(value);
        };
        std::vector<JsonLeaf> leaves;
        if (shape.style == FieldStyle::Json && ReadJson(*line, leaves)) {
            for (const JsonLeaf& leaf : leaves) {
                const bool channel = std::any_of(shape.cells.begin(), shape.cells.end(),
                                                 [&](const Cell& cell) { return cell.where == leaf.path; });
                if (leaf.kind == JsonLeaf::Text && !channel) add(leaf.path, leaf.text);
            }
        } else if (shape.style == FieldStyle::Separator && shape.cells.size() > 1 && shape.cells[0].field == 1) {
            add("#1", ShapeOf(*line).cells[0].number);
        }
    }
    std::string text;
    for (const auto& [where, known] : values) {
        const bool row = shape.style == FieldStyle::Separator;
        // Another one each time is a time or a count.
        const bool counts = known.size() == lines.size() && (row || known.size() > 2);
        const bool time = std::any_of(known.begin(), known.end(), [](const std::string& value) {
            return std::count_if(value.begin(), value.end(), [](char c) { return c >= '0' && c <= '9'; }) >= 6;
        });
        if (known.size() < 2 || known.size() > kMostSources || counts || time) continue;
        const bool source = std::all_of(known.begin(), known.end(), [](const std::string& value) {
            return value.size() <= 3 && value.find_first_not_of("0123456789") == std::string::npos;
        });
        if (row && !source) continue;
        text += Say(row ? Sentence::LearnedSources : Sentence::LearnedChanging, {where, Quoted(known)}) + '\n';
    }
    return text;
}

// Whether the description reads these lines.
bool Reads(IPropertyDB& db, const std::vector<const std::string*>& lines) {
    try {
        const Description description = ReadDescription(db);
        for (const std::string* line : lines) {
            for (const Outcome& outcome : ReadFields(description, {*line})) {
                if (!outcome.IsValue()) return false;
            }
        }
        return true;
    } catch (CCommException* failure) {
        failure->Delete();
        return false;
    }
}
}  // namespace

int Learn(std::string_view heard, DWORD pause, IPropertyDB& description, CString& shown) {
    std::string first;
    std::vector<std::string> lines = LinesOf(heard, first);
    if (lines.empty()) return 0;
    const Checksum checksum = TakeAll(lines);
    std::vector<Shape> shapes;
    for (const std::string& line : lines) shapes.push_back(ShapeOf(line));

    // The kind of line that comes most often; of equals, the one with most numbers.
    const Shape* best = nullptr;
    size_t most = 0;
    for (const Shape& shape : shapes) {
        const auto alike =
            static_cast<size_t>(std::count_if(shapes.begin(), shapes.end(), [&](const Shape& one) { return one.IsLike(shape); }));
        if (shape.cells.empty() || alike < most || (alike == most && best != nullptr && shape.cells.size() <= best->cells.size()))
            continue;
        best = &shape;
        most = alike;
    }
    if (best == nullptr) return 0;
    Shape shape = *best;
    shape.cells.resize(std::min(shape.cells.size(), kMostChannels));
    std::vector<Field> fields;
    for (const Cell& cell : shape.cells) fields.push_back({cell, {}, {}});
    std::vector<const std::string*> taken;
    std::vector<size_t> partial, others;  // of the lines
    std::vector<std::string> names;
    if (names = HeadingOf(first, shape); shape.style != FieldStyle::Separator) names.clear();
    for (size_t i = 0; i < lines.size(); ++i) {
        if (shapes[i].IsLike(*best)) {
            taken.push_back(&lines[i]);
            for (size_t cell = 0; cell < fields.size(); ++cell) AddUnit(fields[cell], shapes[i].cells[cell].unit);
        } else if (const auto heading = HeadingOf(lines[i], shape); !heading.empty() && shape.style == FieldStyle::Separator) {
            names = heading;
        } else {
            const bool some = shape.style == FieldStyle::Keys && shapes[i].style == FieldStyle::Keys && shapes[i].HasAnyOf(shape);
            (some ? partial : others).push_back(i);
        }
    }
    std::string text = Say(Sentence::Learned, {std::to_string(taken.size()), Shown(*taken.back())}) + '\n', notes;
    for (Field& field : fields) {
        const bool row = shape.style == FieldStyle::Separator;
        field.name = !row            ? field.cell.where
                     : names.empty() ? '#' + std::to_string(field.cell.field)
                                     : names[field.cell.field - 1];
        if (field.units.size() < 2) continue;
        std::vector<std::string> units = field.units;
        const bool bare = std::erase(units, std::string()) > 0;
        if (units.size() > 1) notes += Say(Sentence::LearnedUnits, {field.name, Quoted(units)}) + '\n';
        if (bare) notes += Say(Sentence::LearnedBareToo, {field.name}) + '\n';
    }
    const std::vector<Planned> plan = Plan(fields);
    Describe(description, shape, partial.empty() && !others.empty() && !shape.start.empty(), checksum, pause, plan);
    // What is to be told as missing is not to be read.
    const auto lacksUnit = [&](const std::string* line) {
        const Shape one = ShapeOf(*line);
        for (size_t i = 0; i < fields.size(); ++i) {
            if (fields[i].units.size() > 1 && one.cells[i].unit.empty()) return true;
        }
        return false;
    };
    std::vector<const std::string*> whole = taken;
    std::erase_if(whole, lacksUnit);
    if (!Reads(description, whole)) return 0;
    text += Table(plan) + notes + Warnings(shape, taken);
    if (!partial.empty())
        text += Say(Sentence::LearnedPartial, {std::to_string(partial.size()), Shown(lines[partial.back()])}) + '\n';
    if (!others.empty()) {
        const auto alike = [&](size_t one) {
            return std::count_if(others.begin(), others.end(), [&](size_t other) { return shapes[one].IsLike(shapes[other]); });
        };
        const size_t usual =
            *std::max_element(others.begin(), others.end(), [&](size_t a, size_t b) { return alike(a) < alike(b); });
        text += Say(Sentence::LearnedOthers, {std::to_string(others.size()), Shown(lines[usual])}) + '\n';
    }
    shown = text.c_str();

    // A device with other line settings can give text by chance, but not the same form again and again.
    int sure = taken.size() >= 3 ? 80 : taken.size() == 2 ? 70 : 40;
    if (checksum != Checksum::None || shape.style == FieldStyle::Json) sure += 15;
    if (shape.style == FieldStyle::Keys) sure += 5;
    if (others.size() > taken.size()) sure -= 10;
    return sure;
}

}  // namespace text
