#include "record/recording_index.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "record/crc32c_internal.h"
#include "record/recording_format_internal.h"

using namespace orvik::detail;

void CRecordingSpan::Add(__int64 time, const double* values, size_t count) {
    // A place that no reading has stands for "none yet"; it moves on with the number of readings.
    constexpr DWORD kNone = std::numeric_limits<DWORD>::max();
    if (channels.size() != count) channels.assign(count, {0, 0, kNone, kNone});
    if (readings == 0) firstTime = time;
    lastTime = time;
    for (size_t i = 0; i < count; ++i) {
        Extremes& channel = channels[i];
        const double value = values[i];
        const bool none = channel.lowAt >= readings;
        if (!std::isfinite(value)) {
            if (none) channel.lowAt = channel.highAt = readings + 1;
            continue;
        }
        if (none || value < channel.low) channel.low = value, channel.lowAt = readings;
        if (none || value > channel.high) channel.high = value, channel.highAt = readings;
    }
    ++readings;
}

unsigned __int64 CRecordingIndex::ReadingCount() const {
    return m_spans.empty() ? 0 : m_spans.back().first + m_spans.back().readings;
}

size_t CRecordingIndex::Find(__int64 time) const {
    const auto before = [&](const CRecordingSpan& span) { return span.readings == 0 || span.lastTime < time; };
    // Spans without readings are few; they are passed over one by one.
    auto found = std::partition_point(m_spans.begin(), m_spans.end(), [&](const CRecordingSpan& span) { return span.lastTime < time; });
    while (found != m_spans.end() && before(*found)) ++found;
    return static_cast<size_t>(found - m_spans.begin());
}

bool CRecordingIndex::Range(size_t channel, double& low, double& high) const {
    bool any = false;
    for (const CRecordingSpan& span : m_spans) {
        if (channel >= span.channels.size() || span.channels[channel].lowAt >= span.readings) continue;
        const CRecordingSpan::Extremes& part = span.channels[channel];
        low = any ? std::min(low, part.low) : part.low;
        high = any ? std::max(high, part.high) : part.high;
        any = true;
    }
    return any;
}

DWORD CRecordingIndex::Update(CRecordingReader& reader) {
    if (m_end == 0) {
        if (!FollowChain(reader)) {
            m_spans.clear();
            m_lastIndex = 0;
            m_lastGap = 0;
            m_damaged = 0;
            m_end = kRecordHead;
        }
    }
    reader.Seek(m_end);
    return Walk(reader);
}

// From the last index block back to the first one. False where the chain does not hold; then everything has to be read.
bool CRecordingIndex::FollowChain(CRecordingReader& reader) {
    unsigned __int64 size = 0;
    if (reader.m_file->Size(size) != ERROR_SUCCESS || size <= kRecordHead) return false;
    // A block of comments may stand behind the last one, so the piece in which it is looked for grows.
    unsigned __int64 last = 0;
    for (unsigned __int64 piece = 2 * IndexDistance(reader.m_channels); last == 0; piece *= 4) {
        const bool all = piece >= size - kRecordHead;
        reader.Seek(all ? kRecordHead : size - piece);
        for (;;) {
            const ERecordItem item = reader.Next();
            if (item == RI_END) break;
            if (item == RI_FAILED) return false;
            if (item == RI_INDEX && reader.m_type == kIndexBlock) last = reader.ItemOffset();
        }
        if (all) break;
    }
    if (last == 0) return false;
    unsigned __int64 offset = last, previous = 0;
    for (; offset != 0; offset = previous) {
        if (!ReadIndexBlock(reader, offset, previous)) return false;
        const unsigned __int64 from = previous == 0 ? kRecordHead : previous + kBlockHeader + IndexSize(reader.m_channels);
        if (previous >= offset || m_spans.back().begin < from || m_spans.back().begin > offset) return false;
    }
    std::reverse(m_spans.begin(), m_spans.end());
    for (size_t i = 0; i < m_spans.size(); ++i) {
        CRecordingSpan& span = m_spans[i];
        if (span.first != (i == 0 ? 0 : m_spans[i - 1].first + m_spans[i - 1].readings)) return false;
        if (span.readings == 0) span.firstTime = span.lastTime = i == 0 ? std::numeric_limits<__int64>::min() : m_spans[i - 1].lastTime;
    }
    m_lastIndex = last;
    m_end = last + kBlockHeader + IndexSize(reader.m_channels);
    return true;
}

// Adds the span that it tells of, at the end.
bool CRecordingIndex::ReadIndexBlock(CRecordingReader& reader, unsigned __int64 offset, unsigned __int64& previous) {
    const size_t length = IndexSize(reader.m_channels);
    std::vector<unsigned char> block(kBlockHeader + length);
    DWORD got = 0;
    BlockHeader header;
    if (reader.m_file->Read(offset, block.data(), static_cast<DWORD>(block.size()), got) != ERROR_SUCCESS || got != block.size() ||
        !ReadHeader(block.data(), reader.m_number, offset, header) || header.type != kIndexBlock || header.length != length ||
        header.payloadCrc != Crc32c(block.data() + kBlockHeader, length))
        return false;
    CRecordingSpan span;
    DWORD lastGap = 0;
    Unpacker in(block.data() + kBlockHeader, length);
    in >> previous >> span.begin >> span.first >> span.readings >> span.others >> span.firstTime >> span.lastTime;
    span.channels.resize(reader.m_channels);
    for (CRecordingSpan::Extremes& channel : span.channels) in >> channel.low >> channel.high >> channel.lowAt >> channel.highAt;
    in >> lastGap;
    m_lastGap = std::max(m_lastGap, lastGap);
    span.end = offset;
    m_spans.push_back(std::move(span));
    return true;
}

CRecordingSpan& CRecordingIndex::OpenSpan(unsigned __int64 begin) {
    if (!m_open) {
        CRecordingSpan span;
        span.begin = begin;
        span.first = ReadingCount();
        span.firstTime = span.lastTime = m_spans.empty() ? std::numeric_limits<__int64>::min() : m_spans.back().lastTime;
        m_spans.push_back(std::move(span));
        m_open = true;
    }
    return m_spans.back();
}

// From where the reader stands to the end.
DWORD CRecordingIndex::Walk(CRecordingReader& reader) {
    for (;;) {
        const ERecordItem item = reader.Next();
        m_end = reader.Position();
        switch (item) {
            case RI_READING: {
                CRecordingSpan& span = OpenSpan(reader.ItemOffset());
                span.Add(reader.Time(), reader.Values(), reader.ChannelCount());
                span.end = m_end;
                // Where the file's own index is damaged, spans end by themselves.
                if (span.end - span.begin >= 4 * IndexDistance(reader.m_channels)) m_open = false;
                break;
            }
            case RI_GAP:
                m_lastGap = std::max(m_lastGap, reader.Gap().number);
                [[fallthrough]];
            case RI_EVENT:
            case RI_FACTS: {
                CRecordingSpan& span = OpenSpan(reader.ItemOffset());
                ++span.others;
                span.end = m_end;
                break;
            }
            case RI_INDEX:
                if (reader.m_type == kIndexBlock) {
                    m_lastIndex = reader.ItemOffset();
                    m_open = false;
                }
                break;
            case RI_DAMAGE:
                m_damaged += reader.Damage().size;
                break;
            case RI_END:
                return ERROR_SUCCESS;
            case RI_FAILED:
                return reader.Error();
        }
    }
}
