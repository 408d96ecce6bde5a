#include "plugins/text/text_learn.h"

#include <algorithm>

#include "comm/comm_exception.h"
#include "plugins/text/text_checksum.h"
#include "plugins/text/text_escapes.h"
#include "plugins/text/text_fields.h"
#include "plugins/text/text_sentences.h"
#include "plugins/text/text_shape.h"
#include "plugins/text/text_splitter.h"

namespace text {
namespace {
constexpr size_t kLongest = 4096;
constexpr size_t kMostLines = 300, kMostChannels = 64;  // more tell nothing new

// Whole lines of text, the first one left out: it may be half a one. None where too much is no text, as it is when the line's
// settings are wrong.
std::vector<std::string> LinesOf(std::string_view heard, std::string& first) {
    size_t strange = 0;
    for (const char c : heard) {
        const auto byte = static_cast<unsigned char>(c);
        strange += (byte < ' ' && c != '\r' && c != '\n' && c != '\t') || byte >= 0x7F;
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

void Describe(IPropertyDB& db, const Shape& shape, bool started, Checksum checksum, DWORD pause,
              const std::vector<std::string>& names) {
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
    const bool many = shape.cells.size() > 9;
    for (size_t i = 0; i < shape.cells.size(); ++i) {
        const Cell& cell = shape.cells[i];
        std::string key = std::to_string(i + 1);
        if (many && key.size() < 2) key.insert(0, "0");
        db.BeginUsing(("Channels." + key).c_str());
        const bool row = shape.style == FieldStyle::Separator;
        const std::string name = !row ? cell.where : names.empty() ? '#' + std::to_string(cell.field) : names[cell.field - 1];
        db.SetValue("sName", name.c_str());
        if (!cell.unit.empty()) db.SetValue("sUnit", cell.unit.c_str());
        if (!cell.unit.empty() && cell.attached) db.SetValue("sSuffix", Stored(cell.unit).c_str());
        if (row) {
            db.SetValue("nField", static_cast<unsigned int>(cell.field));
        } else {
            db.SetValue("sKey", cell.where.c_str());
        }
        db.EndUsing();
    }
}

std::string Table(const IPropertyDB& db, const Shape& shape) {
    std::string table;
    for (size_t i = 0; i < shape.cells.size(); ++i) {
        CString name;
        const std::string key = std::to_string(i + 1);
        if (!db.GetValue(("Channels." + key + ".sName").c_str(), name))
            db.GetValue(("Channels.0" + key + ".sName").c_str(), name);
        table += "  " + key + "  " + name.GetString() + "  " + shape.cells[i].number;
        if (!shape.cells[i].unit.empty() && !shape.cells[i].attached) table += ' ' + shape.cells[i].unit;
        table += '\n';
    }
    return table;
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
    std::vector<const std::string*> taken, others;
    std::vector<std::string> names;
    if (names = HeadingOf(first, shape); shape.style != FieldStyle::Separator) names.clear();
    for (size_t i = 0; i < lines.size(); ++i) {
        if (shapes[i].IsLike(*best)) {
            taken.push_back(&lines[i]);
            // A unit that changes is none of the channel's.
            for (size_t cell = 0; cell < shape.cells.size(); ++cell) {
                if (shapes[i].cells[cell].unit != shape.cells[cell].unit) shape.cells[cell].unit.clear();
            }
        } else if (const auto heading = HeadingOf(lines[i], shape); !heading.empty() && shape.style == FieldStyle::Separator) {
            names = heading;
        } else {
            others.push_back(&lines[i]);
        }
    }
    Describe(description, shape, !others.empty() && !shape.start.empty(), checksum, pause, names);
    if (!Reads(description, taken)) return 0;
    std::string text =
        Say(Sentence::Learned, {std::to_string(taken.size()), Shown(*taken.back())}) + '\n' + Table(description, shape);
    if (!others.empty()) text += Say(Sentence::LearnedOthers, {std::to_string(others.size()), Shown(*others.back())}) + '\n';
    shown = text.c_str();

    // A device with other line settings can give text by chance, but not the same form again and again.
    int sure = taken.size() >= 3 ? 80 : taken.size() == 2 ? 70 : 40;
    if (checksum != Checksum::None || shape.style == FieldStyle::Json) sure += 15;
    if (shape.style == FieldStyle::Keys) sure += 5;
    if (others.size() > taken.size()) sure -= 10;
    return sure;
}

}  // namespace text
