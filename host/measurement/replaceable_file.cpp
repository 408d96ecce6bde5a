#include "host/measurement/replaceable_file.h"

#include <vector>

#include "host/measurement/download.h"
#include "host/session/database_file.h"
#include "host/session/recording_files.h"
#include "host/session/value_text.h"
#include "host/words/console.h"
#include "host/words/texts.h"
#include "record/recording_reader.h"

namespace {
constexpr char kTags[] = "Chart.Tags", kOwnComment[] = "Session.sOwnComment";

std::string TextAt(const CPropertyDB& db, const std::string& key) {
    CString text;
    db.GetValue(key.c_str(), text);
    return text.GetString();
}

// All values under a folder, as text.
std::vector<std::string> ValuesUnder(const CPropertyDB& db, const std::string& folder) {
    CStringArray keys;
    db.EnumAll(keys);
    std::vector<std::string> values;
    for (INT_PTR i = 0; i < keys.GetSize(); ++i) {
        const std::string key = keys.GetAt(i).GetString();
        if (key.compare(0, folder.size(), folder) != 0) continue;
        const CObject* const value = db.GetValueObject(key.c_str(), TRUE);
        if (!KindOf(value).empty()) values.push_back(key.substr(folder.size()) + "=" + TextOf(value));
    }
    return values;
}
}  // namespace

size_t CommentCount(const CPropertyDB& session) {
    const std::string own = TextAt(session, kOwnComment);
    CStringArray names;
    session.Enum(kTags, names, FALSE, FALSE);
    size_t count = 0;
    for (INT_PTR i = 0; i < names.GetSize(); ++i) {
        const std::string text = TextAt(session, std::string(kTags) + "." + names.GetAt(i).GetString() + ".sText");
        if (own.empty() || text != own) ++count;
    }
    return count;
}

void RequireReplaceable(const std::string& path, CPropertyDB& description) {
    if (!FileExists(path) || FileSize(path) == 0) return;
    CPropertyDB session;
    if (IsRecording(path)) {
        CRecordingReader reader;
        reader.Open(path);
        bool ended = true, any = false;
        for (ERecordItem item; (item = reader.Next()) != RI_END && item != RI_FAILED;) {
            any |= item == RI_READING;
            if (item == RI_EVENT) ended = reader.Event().kind == RE_ENDED || reader.Event().kind == RE_CONTINUED;
            if (item == RI_READING) ended = false;
        }
        if (any && !ended) throw Failure{kFileFailed, Say(Text::NotEnded, {ToUtf8(path)})};
        session = reader.Facts();
    } else {
        try {
            LoadDatabase(path, session);
        } catch (const Failure&) {
            session.RemoveAll();
        }
        if (!session.Find("Session") || !session.Find("Channels")) throw Failure{kFileFailed, Say(Text::NotOurs, {ToUtf8(path)})};
    }
    if (const size_t comments = CommentCount(session))
        throw Failure{kFileFailed, Say(Text::HasComments, {ToUtf8(path), std::to_string(comments)})};
    if (!IsOfLogger(session, description)) {
        const std::string name = TextAt(session, "Session.sLogger");
        throw Failure{kFileFailed,
                      Say(Text::OfOtherLogger, {ToUtf8(path), ToUtf8(name.empty() ? TextAt(session, "Session.sFamily") : name)})};
    }
}

bool IsOfLogger(const CPropertyDB& session, CPropertyDB& description) {
    CPropertyDB wished;
    wished.OverlayCopy(description, nullptr, "Logger", TRUE);
    bool same = ValuesUnder(session, "Logger.") == ValuesUnder(wished, "Logger.");
    if (!session.Find("Logger")) {
        // One from before sessions held their description: it must have the same channels.
        CPropertyDB channels;
        DescribeSession(description, {}, channels);
        const auto named = [](const CPropertyDB& db) {
            std::vector<std::string> values = ValuesUnder(db, "Channels.");
            std::erase_if(values, [](const std::string& value) {
                return value.find(".sName=") == std::string::npos && value.find(".sUnit=") == std::string::npos;
            });
            return values;
        };
        same = named(session) == named(channels);
    }
    return same;
}

void RequireSameLogger(const std::string& path, const CPropertyDB& session, CPropertyDB& description) {
    if (!IsOfLogger(session, description)) throw Failure{kWrongUse, Say(Text::OtherLogger, {ToUtf8(path)})};
}
