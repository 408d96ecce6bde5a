// chart: a picture of a session's readings.
#include <algorithm>
#include <charconv>

#include "host/chart/chart_file.h"
#include "host/command_line/commands.h"
#include "host/session/database_file.h"
#include "host/session/session_file.h"
#include "host/session/value_text.h"
#include "host/words/arguments.h"
#include "host/words/texts.h"
#include "host/words/time_input.h"
#include "platform/picture.h"

namespace {
// "1600x900".
SIZE SizeFrom(const std::string& text) {
    SIZE size = {};
    const char* const end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, size.cx);
    const bool parted = width.ec == std::errc() && width.ptr < end && (*width.ptr == 'x' || *width.ptr == 'X');
    const auto height = parted ? std::from_chars(width.ptr + 1, end, size.cy) : width;
    const bool whole = parted && height.ec == std::errc() && height.ptr == end;
    const auto fits = [](LONG side) { return side >= 1 && side <= kOrvikPictureSide; };
    if (!whole || !fits(size.cx) || !fits(size.cy)) {
        throw Failure{kWrongUse, Say(Text::NotASize, {ToUtf8(text), std::to_string(kOrvikPictureSide)})};
    }
    return size;
}

// "TIME;VALUE;text"; the text may hold more semicolons.
void AddTag(ChartModel& model, const std::string& argument) {
    const size_t first = argument.find(';'), second = first == std::string::npos ? first : argument.find(';', first + 1);
    if (second == std::string::npos || second + 1 == argument.size())
        throw Failure{kWrongUse, Say(Text::NotATag, {ToUtf8(argument)})};
    const __int64 time = NeedTime(argument.substr(0, first));
    const std::string number = argument.substr(first + 1, second - first - 1);
    double value = 0;
    if (!RealFromText(ToUtf8(number), value)) throw Failure{kWrongUse, Say(Text::TagValue, {ToUtf8(number)})};
    model.AddTag(time, value, ToUtf8(argument.substr(second + 1)));
}
}  // namespace

ExitCode RunChart(CHostApp&, const Words& words) {
    const Arguments arguments(words, {"--out", "--size", "--from", "--to"}, {"--clear-tags"}, 1, {"--channel", "--tag"});
    const std::string& path = arguments.At(0, "FILE");
    const std::string out = arguments.Require("--out");
    RequirePictureName(out);
    const SIZE size = SizeFrom(arguments.Get("--size", "1600x900"));
    RequirePictureSize(out, size);
    RequireDifferentFiles({{"FILE", path}, {"--out", out}});

    const SessionFile file = OpenSession(path);
    if (!file.note.empty()) PrintError(file.note);
    CPropertyDB& db = *file.db;
    const Session& session = *file.session;
    ChartModel model(session, arguments.All("--channel"));
    model.Load(db);
    // An end that is not given is the session's, unless the other one lies beyond it: then there is nothing to show.
    const bool from = arguments.Has("--from"), to = arguments.Has("--to");
    if (from || to) {
        const __int64 begin = from ? NeedTime(arguments.Get("--from")) : model.First();
        const __int64 end = to ? NeedTime(arguments.Get("--to")) : std::max(model.Last(), begin + 1);
        model.SetView(from ? begin : std::min(begin, end - 1), end);
    }
    const std::vector<std::string> tags = arguments.All("--tag");
    if (arguments.Has("--clear-tags")) model.ClearTags();
    for (const std::string& tag : tags) AddTag(model, tag);
    const bool change = (arguments.Has("--clear-tags") || !tags.empty()) && model.Store(db);

    if (change) RequireSavable(file.path, session);
    RequireWritable(out);
    const bool tells = WriteChart(model, out, size);
    if (change) SaveSession(file.path, session, db);
    Print(Say(change ? Text::ChartMadeTagsKept : Text::ChartMade, {ToUtf8(out), ToUtf8(file.path)}));
    if (!tells) Print(Say(Text::PictureTooSmall));
    TellLettersWithoutFont(model);
    return kDone;
}
