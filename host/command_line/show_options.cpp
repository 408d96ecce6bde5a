#include "host/command_line/show_options.h"

#include <limits>

#include "host/words/arguments.h"
#include "host/words/texts.h"
#include "host/words/time_input.h"
#include "time/span_text.h"

namespace {
// One or more "@"; or "#" with at most one separator, "." or ",", among or in front of them.
bool IsPicture(const std::string& picture) {
    const auto only = [](const std::string& text, char c) { return text.find_first_not_of(c) == std::string::npos; };
    if (only(picture, '@')) return true;
    const size_t separator = picture.find_first_of(".,");
    if (separator == std::string::npos) return only(picture, '#');
    return only(picture.substr(0, separator), '#') && only(picture.substr(separator + 1), '#');
}

// What stands in numbers, times and quoted texts parts no columns.
char SeparatorOf(const std::string& text) {
    if (text == "tab" || text == "\t") return '\t';
    const bool fits =
        text.size() == 1 && text[0] > ' ' && text[0] < 127 && std::string(".:+-\"'").find(text[0]) == std::string::npos;
    const bool letter = fits && ((text[0] >= '0' && text[0] <= '9') || ((text[0] | 0x20) >= 'a' && (text[0] | 0x20) <= 'z'));
    if (!fits || letter) throw Failure{kWrongUse, Say(Text::NotASeparator, {ToUtf8(text)})};
    return text[0];
}

class Checks {
public:
    explicit Checks(const Arguments& arguments) : m_arguments(arguments) {}
    void Exclude(const char* one, std::initializer_list<const char*> others) const {
        for (const char* other : others) {
            if (m_arguments.Has(one) && m_arguments.Has(other)) throw Failure{kWrongUse, Say(Text::OptionsExclude, {one, other})};
        }
    }
    void Need(const char* one, const char* other) const {
        if (m_arguments.Has(one) && !m_arguments.Has(other)) throw Failure{kWrongUse, Say(Text::OptionAlone, {one, other})};
    }

private:
    const Arguments& m_arguments;
};
constexpr __int64 kLongestRange = 1000ll * 366 * 86'400 * 1'000'000;  // us
}  // namespace

ShowOptions::ShowOptions(const Words& words) {
    const Arguments arguments(words, {"--picture", "--from", "--to", "--last", "--every", "--separator"},
                              {"--csv", "--json", "--influx", "--gaps", "--local", "--follow"}, 1, {"--channel"});
    path = arguments.At(0, "FILE");
    const Checks checks(arguments);
    checks.Exclude("--csv", {"--json", "--influx", "--gaps", "--picture"});
    checks.Exclude("--json", {"--influx", "--gaps", "--picture"});
    checks.Exclude("--influx", {"--gaps", "--picture"});
    checks.Exclude("--gaps", {"--picture", "--channel", "--every", "--follow"});
    checks.Exclude("--last", {"--from", "--to"});
    checks.Exclude("--follow", {"--to"});
    checks.Need("--separator", "--csv");
    checks.Need("--local", "--csv");
    form = arguments.Has("--csv")      ? Form::Csv
           : arguments.Has("--json")   ? Form::Json
           : arguments.Has("--influx") ? Form::LineProtocol
           : arguments.Has("--gaps")   ? Form::Gaps
                                       : Form::Table;
    picture = arguments.Get("--picture");
    if (!picture.empty() && !IsPicture(picture)) throw Failure{kWrongUse, Say(Text::NotAPicture, {ToUtf8(picture)})};
    if (arguments.Has("--local")) csv = SpreadsheetForm();
    const bool comma = csv.separator == ';';
    if (arguments.Has("--separator")) csv.separator = SeparatorOf(arguments.Get("--separator"));
    if (comma && csv.separator == ',') throw Failure{kWrongUse, Say(Text::SeparatorIsDecimalSign)};
    channels = arguments.All("--channel");
    every = arguments.Number("--every", 1, std::numeric_limits<DWORD>::max(), 1);
    follow = arguments.Has("--follow");
    if (arguments.Has("--from")) m_range.from = NeedTime(arguments.Get("--from"));
    if (arguments.Has("--to")) m_range.to = NeedTime(arguments.Get("--to"));
    if (arguments.Has("--from") && arguments.Has("--to") && m_range.from >= m_range.to)
        throw Failure{kWrongUse, Say(Text::ViewBackwards)};
    if (arguments.Has("--last")) m_last = arguments.Span("--last", 1, kLongestRange, 0);
}

TimeRange ShowOptions::Range(__int64 last) const {
    TimeRange range = m_range;
    if (m_last && last > std::numeric_limits<__int64>::min() + *m_last) range.from = last - *m_last;
    return range;
}

std::unique_ptr<ReadingWriter> ShowOptions::MakeWriter(const Session& session) const {
    const ShownChannels shown = ChannelsNamed(session, channels);
    switch (form) {
        case Form::Csv:
            return MakeCsvWriter(session, shown, csv);
        case Form::Json:
            return MakeJsonWriter(session, shown);
        case Form::LineProtocol:
            return MakeLineProtocolWriter(session, shown);
        default:
            return MakeTableWriter(session, shown, picture);
    }
}
