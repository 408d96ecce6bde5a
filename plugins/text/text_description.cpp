#include "plugins/text/text_description.h"

#include <algorithm>
#include <stdexcept>

#include "afx/collections.h"
#include "plugins/support/description_reading.h"
#include "plugins/text/text_escapes.h"
#include "plugins/text/text_letters.h"

namespace text {
namespace {
using namespace orvik::description;

// What a description of a logger that prints lines may be told besides what any may be: texts of the module.
enum TextComplaint : UINT {
    NoEscape = 8400,
    IsEmpty,
    BeyondFields,
    NoSuchGroup,
    LongEnd,
    NotWhenAsked,
    DecimalParts,
    NoPattern,  // and why
    NeedsFirst,
    GroupOfIntervals,  // where the pattern's was meant
    OnlyForRegex,
    NoPath,
};

std::string ReadBytes(IPropertyDB& db, const CString& key) {
    const auto bytes = Unescape(ReadText(db, key, ""));
    if (!bytes) Refuse(key, NoEscape);
    return *bytes;
}

// What is looked for in lines as text.
std::string ReadLetters(IPropertyDB& db, const CString& key) { return LineText(ReadBytes(db, key)); }

Separator ReadSeparator(IPropertyDB& db) {
    const CString key = "sSeparator";
    CString name = ReadText(db, key, "auto").c_str();
    name.MakeLower();
    const struct {
        const char* name;
        Separator separator;
    } known[] = {{"auto", {Separator::Auto, {}}},
                 {"blanks", {Separator::Blanks, {}}},
                 {"comma", {Separator::Text, ","}},
                 {"tab", {Separator::Text, "\t"}},
                 {"semicolon", {Separator::Text, ";"}}};
    for (const auto& one : known) {
        if (name == one.name) return one.separator;
    }
    const std::string text = ReadLetters(db, key);
    if (text.empty()) Refuse(key, IsEmpty);
    return {Separator::Text, text};
}

std::vector<std::string> ReadNoValue(IPropertyDB& db) {
    std::vector<std::string> texts;
    const std::string list = ReadLetters(db, "sNoValue");
    for (size_t at = 0; at <= list.size();) {
        const size_t end = std::min(list.find('|', at), list.size());
        texts.emplace_back(Trimmed(std::string_view(list).substr(at, end - at)));
        at = end + 1;
    }
    // A description that says nothing of it does not mean the empty text.
    if (texts.size() == 1 && texts[0].empty()) texts.clear();
    texts.push_back("nan");
    return texts;
}

size_t Whole(IPropertyDB& db, const CString& key, DWORD low, DWORD high, std::optional<DWORD> standard) {
    return ReadWhole(db, key, low, high, standard);
}

// Of JSON: names between points, and numbers of items in brackets.
bool CanBePath(const std::string& path) {
    if (path.back() == '.' || path.find("..") != std::string::npos) return false;
    for (size_t at = path.find('['); at != std::string::npos; at = path.find('[', at + 1)) {
        const size_t end = path.find(']', at);
        if (end == std::string::npos || end == at + 1) return false;
    }
    return true;
}

void ReadPlace(IPropertyDB& db, const CString& at, const Description& description, Channel& channel) {
    const auto most = static_cast<DWORD>(description.longest);
    const auto text = [&](const char* name) {
        channel.where = ReadText(db, at + name, "");
        if (channel.where.empty()) Refuse(at + name, IsMissing);
    };
    switch (description.style) {
        case FieldStyle::Separator:
            channel.field = Whole(db, at + "nField", 1, most, std::nullopt);
            if (description.fieldCount != 0 && channel.field > description.fieldCount) Refuse(at + "nField", BeyondFields);
            break;
        case FieldStyle::Columns:
            channel.column = Whole(db, at + "nColumn", 1, most, std::nullopt);
            channel.width = Whole(db, at + "nWidth", 1, most, std::nullopt);
            break;
        case FieldStyle::Regex: {
            if (!db.Find(at + "sCapture") && db.Find(at + "sGroup")) Refuse(at + "sGroup", GroupOfIntervals);
            text("sCapture");
            const auto& names = description.pattern->Names();
            const auto found = std::find(names.begin(), names.end(), channel.where);
            if (found == names.end()) Refuse(at + "sCapture", NoSuchGroup);
            channel.group = static_cast<size_t>(found - names.begin());
            break;
        }
        case FieldStyle::Keys:
            text("sKey");
            break;
        case FieldStyle::Json:
            text("sKey");
            if (!CanBePath(channel.where)) Refuse(at + "sKey", NoPath);
            break;
    }
}

Channel ReadChannel(IPropertyDB& db, const char* key, const Description& description, const std::vector<std::string>& noValue) {
    const CString at = CString("Channels.") + key + ".";
    Channel channel;
    channel.key = key;
    channel.name = ReadText(db, at + "sName", key);
    ReadPlace(db, at, description, channel);
    // A place by number means nothing without the line's; what has a name is looked for.
    const bool byPlace = description.style == FieldStyle::Separator || description.style == FieldStyle::Columns;
    channel.line = Whole(db, at + "nLine", 1, static_cast<DWORD>(description.lines), byPlace ? 1u : 0u);
    channel.number.decimal = description.style == FieldStyle::Json ? '.' : description.decimal;
    channel.number.prefix = ReadLetters(db, at + "sPrefix");
    if (db.Find(at + "sSuffix")) {
        const std::string suffix = ReadLetters(db, at + "sSuffix");
        channel.number.suffix = std::string(Trimmed(suffix));
    }
    channel.number.noValue = noValue;
    channel.scale = ReadReal(db, at + "rScale", 1);
    channel.offset = ReadReal(db, at + "rOffset", 0);
    if (channel.scale == 0) Refuse(at + "rScale", ScaleOfZero);
    return channel;
}

// Channels of the same place that differ in the unit: each knows the others'.
void ShareUnits(std::vector<Channel>& channels) {
    for (Channel& channel : channels) {
        for (const Channel& other : channels) {
            const bool same = channel.line == other.line && channel.field == other.field && channel.column == other.column &&
                              channel.where == other.where && channel.number.prefix == other.number.prefix;
            if (same && channel.number.suffix && other.number.suffix && *channel.number.suffix != *other.number.suffix)
                channel.number.others.push_back(*other.number.suffix);
        }
    }
}
}  // namespace

const char* const* DescriptionKeys() {
    static const char* const keys[] = {"sAsk",
                                       "sEnd",
                                       "nLines",
                                       "nSkip",
                                       "nEvery",
                                       "nMostLength",
                                       "sFields",
                                       "nFields",
                                       "sSeparator",
                                       "sDecimal",
                                       "sChecksum",
                                       "sPattern",
                                       "sNoValue",
                                       "sStart",
                                       "sFirst",
                                       "Line.nBaud",
                                       "Line.nDataBits",
                                       "Line.sParity",
                                       "Line.nStopBits",
                                       "Channels.*.nLine",
                                       "Channels.*.nField",
                                       "Channels.*.nColumn",
                                       "Channels.*.nWidth",
                                       "Channels.*.sKey",
                                       "Channels.*.sCapture",
                                       "Channels.*.sPrefix",
                                       "Channels.*.sSuffix",
                                       "Channels.*.rScale",
                                       "Channels.*.rOffset",
                                       nullptr};
    return keys;
}

Description ReadDescription(IPropertyDB& db) {
    Description description;
    description.line = ReadLine(db);
    description.ask = ReadBytes(db, "sAsk");
    description.end = ReadBytes(db, "sEnd");
    if (description.end.size() > 16) Refuse("sEnd", LongEnd);
    description.lines = Whole(db, "nLines", 1, 100, 1u);
    description.skip = Whole(db, "nSkip", 0, 10'000, 0u);
    if (description.skip > 0 && !description.ask.empty()) Refuse("nSkip", NotWhenAsked);
    description.longest = Whole(db, "nMostLength", 1, 16'384, 4096u);
    description.every = ReadWhole(db, "nEvery", 1, 86'400'000, 1000u);
    description.style = ReadChoice<FieldStyle>(db, "sFields", "separator",
                                               {{"separator", FieldStyle::Separator},
                                                {"columns", FieldStyle::Columns},
                                                {"regex", FieldStyle::Regex},
                                                {"keys", FieldStyle::Keys},
                                                {"json", FieldStyle::Json}});
    description.separator = ReadSeparator(db);
    description.fieldCount = Whole(db, "nFields", 1, 16'384, 0u);
    description.decimal = ReadChoice<char>(db, "sDecimal", "point", {{"point", '.'}, {"comma", ','}, {".", '.'}, {",", ','}});
    if (description.separator.kind == Separator::Text && description.separator.text[0] == description.decimal)
        Refuse("sDecimal", DecimalParts);
    description.checksum = ReadChoice<Checksum>(
        db, "sChecksum", "none",
        {{"none", Checksum::None}, {"sum", Checksum::Sum}, {"xor", Checksum::Xor}, {"crc16", Checksum::Crc16}});
    if (description.style == FieldStyle::Regex) {
        try {
            description.pattern.emplace(ReadText(db, "sPattern", ""));
        } catch (const std::invalid_argument& why) {
            Refuse("sPattern", NoPattern, why.what());
        }
    } else if (db.Find("sPattern")) {
        Refuse("sPattern", OnlyForRegex);
    }
    description.start = ReadBytes(db, "sStart");
    description.first = ReadBytes(db, "sFirst");
    if (description.lines > 1 && description.ask.empty() && description.first.empty()) Refuse("sFirst", NeedsFirst);
    const std::vector<std::string> noValue = ReadNoValue(db);
    CStringArray keys;
    if (!db.Enum("Channels", keys, FALSE, FALSE) || keys.GetSize() == 0) Refuse("Channels", NoChannels);
    for (INT_PTR i = 0; i < keys.GetSize(); ++i)
        description.channels.push_back(ReadChannel(db, keys.GetAt(i), description, noValue));
    ShareUnits(description.channels);
    return description;
}

}  // namespace text
