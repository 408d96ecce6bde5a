// show: the readings of a session file.
#include <cstdio>

#include "host/arguments.h"
#include "host/commands.h"
#include "host/database_file.h"
#include "host/session.h"
#include "host/texts.h"

namespace {
// One or more "@"; or "#" with at most one separator, "." or ",", among or in front of them.
bool IsPicture(const std::string& picture) {
    const auto only = [](const std::string& text, char c) { return text.find_first_not_of(c) == std::string::npos; };
    if (only(picture, '@')) return true;
    const size_t separator = picture.find_first_of(".,");
    if (separator == std::string::npos) return only(picture, '#');
    return only(picture.substr(0, separator), '#') && only(picture.substr(separator + 1), '#');
}
}  // namespace

ExitCode RunShow(CHostApp&, const Words& words) {
    const Arguments arguments(words, {"--picture"}, {"--csv"}, 1);
    const std::string& path = arguments.At(0, "FILE");
    const std::string picture = arguments.Get("--picture");
    if (!picture.empty() && !IsPicture(picture)) throw Failure{kWrongUse, Say(Text::NotAPicture, {ToUtf8(picture)})};
    CPropertyDB db;
    LoadDatabase(path, db);
    const Session session(db, path, 0);
    const std::string text = arguments.Has("--csv") ? session.Csv() : session.Table(picture);
    std::fwrite(text.data(), 1, text.size(), stdout);
    return kDone;
}
