#include "host/session/recorded_notes.h"

#include <algorithm>

#include "frame/numeric_arrays.h"

namespace {
std::string WithoutSemicolons(std::string text) {
    std::replace(text.begin(), text.end(), ';', ',');
    return text;
}

// Keys by their places, joined by blanks.
std::string JoinedNames(const std::vector<WORD>& places, const std::vector<std::string>& channels) {
    std::string text;
    for (const WORD place : places) {
        if (place >= channels.size()) continue;
        text += (text.empty() ? "" : " ") + channels[place];
    }
    return WithoutSemicolons(text);
}

// And back. Keys may hold blanks, so the longest one that fits is taken.
std::vector<WORD> Parted(const std::string& text, const std::vector<std::string>& channels) {
    std::vector<WORD> places;
    for (size_t at = 0; at < text.size();) {
        size_t longest = 0, found = channels.size();
        for (size_t i = 0; i < channels.size(); ++i) {
            const std::string key = WithoutSemicolons(channels[i]);
            const size_t end = at + key.size();
            if (key.size() <= longest || text.compare(at, key.size(), key) != 0) continue;
            if (end == text.size() || text[end] == ' ') longest = key.size(), found = i;
        }
        if (found < channels.size()) places.push_back(static_cast<WORD>(found));
        at = found < channels.size() ? at + longest + 1 : std::min(text.find(' ', at), text.size() - 1) + 1;
    }
    return places;
}

// How gaps and events stand in a database: a column for each thing that is known of them.
struct GapColumns {
    CInt64Array from, until;
    CDWordArray missed, attempts, causes;
    CStringArray texts, channels;

    template <class Do>
    void Each(Do column) {
        column("tFrom", from);
        column("tUntil", until);
        column("nMissed", missed);
        column("nAttempts", attempts);
        column("nCause", causes);
        column("sCause", texts);
        column("sChannels", channels);
    }
};

struct EventColumns {
    CInt64Array times, amounts;
    CDWordArray kinds;
    CStringArray texts;

    template <class Do>
    void Each(Do column) {
        column("tTime", times);
        column("nKind", kinds);
        column("nAmount", amounts);
        column("sText", texts);
    }
};
}  // namespace

void RecordedNotes::Add(const CRecordedGap& gap) {
    const auto [place, isNew] = m_places.try_emplace(gap.number, m_gaps.size());
    if (isNew) {
        m_gaps.push_back(gap);
    } else {
        m_gaps[place->second] = gap;
    }
}

unsigned __int64 RecordedNotes::Missed() const {
    unsigned __int64 missed = 0;
    for (const CRecordedGap& gap : m_gaps) missed += gap.channels.empty() ? gap.missed : 0;
    return missed;
}

bool RecordedNotes::Ended() const {
    const auto tells = [](const CRecordedEvent& event) { return event.kind == RE_STARTED || event.kind == RE_ENDED; };
    const auto last = std::find_if(m_events.rbegin(), m_events.rend(), tells);
    return last != m_events.rend() && last->kind == RE_ENDED;
}

void RecordedNotes::Store(IPropertyDB& db, const std::vector<std::string>& channels) const {
    db.Remove(kGaps);
    db.Remove(kEvents);
    const auto set = [&](const char* key, const auto& column) { db.SetValue(key, column); };
    if (!m_gaps.empty()) {
        GapColumns columns;
        for (const CRecordedGap& gap : m_gaps) {
            columns.from.Add(gap.from);
            columns.until.Add(gap.until);
            columns.missed.Add(gap.missed);
            columns.attempts.Add(gap.attempts);
            columns.causes.Add(gap.cause);
            columns.texts.Add(WithoutSemicolons(gap.text).c_str());
            columns.channels.Add(JoinedNames(gap.channels, channels).c_str());
        }
        db.BeginUsing(kGaps);
        columns.Each(set);
        db.EndUsing();
    }
    if (!m_events.empty()) {
        EventColumns columns;
        for (const CRecordedEvent& event : m_events) {
            columns.times.Add(event.time);
            columns.kinds.Add(event.kind);
            columns.amounts.Add(event.amount);
            columns.texts.Add(WithoutSemicolons(event.text).c_str());
        }
        db.BeginUsing(kEvents);
        columns.Each(set);
        db.EndUsing();
    }
}

void RecordedNotes::Load(IPropertyDB& db, const std::vector<std::string>& channels) {
    const auto get = [&](const char* key, auto& column) { db.GetValue(key, column); };
    GapColumns gaps;
    db.BeginUsing(kGaps);
    gaps.Each(get);
    db.EndUsing();
    EventColumns events;
    db.BeginUsing(kEvents);
    events.Each(get);
    db.EndUsing();

    const auto text = [](const CStringArray& array, INT_PTR i) {
        return i < array.GetSize() ? std::string(array.GetAt(i).GetString()) : std::string();
    };
    const INT_PTR gapCount = std::min(
        {gaps.from.GetSize(), gaps.until.GetSize(), gaps.missed.GetSize(), gaps.attempts.GetSize(), gaps.causes.GetSize()});
    for (INT_PTR i = 0; i < gapCount; ++i) {
        CRecordedGap gap;
        gap.number = static_cast<DWORD>(i + 1);
        gap.from = gaps.from.GetAt(i), gap.until = gaps.until.GetAt(i);
        gap.missed = gaps.missed.GetAt(i), gap.attempts = gaps.attempts.GetAt(i);
        gap.cause = static_cast<WORD>(gaps.causes.GetAt(i));
        gap.text = text(gaps.texts, i);
        gap.channels = Parted(text(gaps.channels, i), channels);
        Add(gap);
    }
    const INT_PTR eventCount = std::min({events.times.GetSize(), events.kinds.GetSize(), events.amounts.GetSize()});
    for (INT_PTR i = 0; i < eventCount; ++i)
        Add(CRecordedEvent{events.times.GetAt(i), static_cast<WORD>(events.kinds.GetAt(i)), events.amounts.GetAt(i),
                           text(events.texts, i)});
}

std::string NumberedKey(size_t number, size_t count) {
    const std::string text = std::to_string(number);
    return std::string(std::to_string(count).size() - text.size(), '0') + text;
}

std::vector<std::string> ChannelKeys(IPropertyDB& db) {
    CStringArray found;
    db.Enum("Channels", found, FALSE, FALSE);
    std::vector<std::string> keys;
    for (INT_PTR i = 0; i < found.GetSize(); ++i) keys.emplace_back(found.GetAt(i).GetString());
    return keys;
}
