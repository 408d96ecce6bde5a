#include "host/recorded_notes.h"

#include <algorithm>

#include "frame/numeric_arrays.h"

namespace {
std::string WithoutSemicolons(std::string text) {
    std::replace(text.begin(), text.end(), ';', ',');
    return text;
}

// Keys by their places, joined by blanks.
std::string Joined(const std::vector<WORD>& places, const std::vector<std::string>& channels) {
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
    if (!m_gaps.empty()) {
        CInt64Array from, until;
        CDWordArray missed, attempts, causes;
        CStringArray texts, keys;
        for (const CRecordedGap& gap : m_gaps) {
            from.Add(gap.from);
            until.Add(gap.until);
            missed.Add(gap.missed);
            attempts.Add(gap.attempts);
            causes.Add(gap.cause);
            texts.Add(WithoutSemicolons(gap.text).c_str());
            keys.Add(Joined(gap.channels, channels).c_str());
        }
        db.BeginUsing(kGaps);
        db.SetValue("tFrom", from);
        db.SetValue("tUntil", until);
        db.SetValue("nMissed", missed);
        db.SetValue("nAttempts", attempts);
        db.SetValue("nCause", causes);
        db.SetValue("sCause", texts);
        db.SetValue("sChannels", keys);
        db.EndUsing();
    }
    if (!m_events.empty()) {
        CInt64Array times, amounts;
        CDWordArray kinds;
        CStringArray texts;
        for (const CRecordedEvent& event : m_events) {
            times.Add(event.time);
            kinds.Add(event.kind);
            amounts.Add(event.amount);
            texts.Add(WithoutSemicolons(event.text).c_str());
        }
        db.BeginUsing(kEvents);
        db.SetValue("tTime", times);
        db.SetValue("nKind", kinds);
        db.SetValue("nAmount", amounts);
        db.SetValue("sText", texts);
        db.EndUsing();
    }
}

void RecordedNotes::Load(IPropertyDB& db, const std::vector<std::string>& channels) {
    CInt64Array from, until, times, amounts;
    CDWordArray missed, attempts, causes, kinds;
    CStringArray causeTexts, keys, texts;
    db.BeginUsing(kGaps);
    db.GetValue("tFrom", from);
    db.GetValue("tUntil", until);
    db.GetValue("nMissed", missed);
    db.GetValue("nAttempts", attempts);
    db.GetValue("nCause", causes);
    db.GetValue("sCause", causeTexts);
    db.GetValue("sChannels", keys);
    db.EndUsing();
    db.BeginUsing(kEvents);
    db.GetValue("tTime", times);
    db.GetValue("nKind", kinds);
    db.GetValue("nAmount", amounts);
    db.GetValue("sText", texts);
    db.EndUsing();
    const auto text = [](const CStringArray& array, INT_PTR i) {
        return i < array.GetSize() ? std::string(array.GetAt(i).GetString()) : std::string();
    };
    const INT_PTR gaps = std::min({from.GetSize(), until.GetSize(), missed.GetSize(), attempts.GetSize(), causes.GetSize()});
    for (INT_PTR i = 0; i < gaps; ++i) {
        CRecordedGap gap;
        gap.number = static_cast<DWORD>(i + 1);
        gap.from = from.GetAt(i), gap.until = until.GetAt(i);
        gap.missed = missed.GetAt(i), gap.attempts = attempts.GetAt(i);
        gap.cause = static_cast<WORD>(causes.GetAt(i));
        gap.text = text(causeTexts, i);
        gap.channels = Parted(text(keys, i), channels);
        Add(gap);
    }
    const INT_PTR events = std::min({times.GetSize(), kinds.GetSize(), amounts.GetSize()});
    for (INT_PTR i = 0; i < events; ++i)
        Add(CRecordedEvent{times.GetAt(i), static_cast<WORD>(kinds.GetAt(i)), amounts.GetAt(i), text(texts, i)});
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
