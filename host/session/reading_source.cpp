#include "host/session/reading_source.h"

#include "host/words/console.h"
#include "host/words/texts.h"

bool MemoryReadings::Next() {
    const CInt64Array& times = m_session.Times();
    while (m_next < times.GetSize()) {
        const INT_PTR at = m_next++;
        m_time = times.GetAt(at);
        if (m_time < m_range.from || m_time > m_range.to) continue;
        m_row.clear();
        for (const Session::Channel& channel : m_session.Channels()) m_row.push_back(channel.values.GetAt(at));
        m_values = m_row.data();
        return true;
    }
    return false;
}

RecordedReadings::RecordedReadings(const RecordedSeries& series, TimeRange range)
    : m_path(series.Path()), m_range(range), m_damages(series.ChannelCount(), series.Index().LastGap() + 1) {
    const DWORD error = m_reader.Open(m_path);
    if (error != ERROR_SUCCESS) throw Failure{kFileFailed, Say(Text::FileNotOpened, {ToUtf8(m_path), Reason(error)})};
    const std::vector<CRecordingSpan>& spans = series.Index().Spans();
    const size_t first = series.Index().Find(range.from);
    if (first < spans.size()) {
        m_reader.Seek(spans[first].begin);
    } else if (!spans.empty()) {
        m_reader.Seek(spans.back().begin);  // how it ended stands there
    }
    m_ended = series.Notes().Ended();
}

bool RecordedReadings::Next() {
    for (;;) {
        switch (m_reader.Next()) {
            case RI_READING:
                m_time = m_reader.Time();
                m_damage = m_damages.Before(m_time);
                if (m_time < m_range.from) break;
                if (m_time > m_range.to) {
                    m_ended = true;
                    return false;
                }
                m_values = m_reader.Values();
                m_marksGap = ::MarksGap(m_reader.Flags(), m_reader.ChannelCount());
                return true;
            case RI_EVENT: {
                const CRecordedEvent& event = m_reader.Event();
                if (event.kind == RE_STARTED) m_ended = false, m_continued.clear();
                if (event.kind == RE_ENDED) m_ended = true;
                if (event.kind == RE_CONTINUED) m_continued = event.text;
                break;
            }
            case RI_DAMAGE:
                m_damagedBytes += m_reader.Damage().size;
                m_damages.Damaged(m_reader.Damage().size);
                break;
            case RI_END:
                m_damage = m_damages.AtEnd();
                return false;
            case RI_FAILED:
                throw Failure{kFileFailed, Say(Text::FileNotOpened, {ToUtf8(m_path), Reason(m_reader.Error())})};
            default:
                break;
        }
    }
}

std::unique_ptr<ReadingSource> ReadingsOf(const Session& session, TimeRange range) {
    if (session.Recorded() != nullptr) return std::make_unique<RecordedReadings>(*session.Recorded(), range);
    return std::make_unique<MemoryReadings>(session, range);
}
