#include "record/recording_reader.h"

#include <algorithm>

#include "afx/exception.h"
#include "afx/file.h"
#include "platform/house_text_internal.h"
#include "record/crc32c_internal.h"
#include "record/recording_format_internal.h"

using namespace orvik::detail;

namespace {
constexpr size_t kReadAhead = 256 * 1024, kLeastAhead = 4096;

// Whether a whole block stands here that was written for another place: bytes before it were lost, or came in. `budget`: how many
// bytes of payload may still be looked at, so that bytes which claim much cost little.
bool IsDisplaced(const unsigned char* bytes, size_t left, size_t& budget) {
    if (bytes[1] != kBlockMark[1] || bytes[2] < kFactsBlock || bytes[2] > kIndexBlock || bytes[3] != 0) return false;
    uint32_t length = 0, crc = 0;
    Unpacker(bytes + 4, 8) >> length >> crc;
    if (length < 8 || length > left - kBlockHeader || length > budget) return false;
    budget -= length;
    return Crc32c(bytes + kBlockHeader, length) == crc;
}
}  // namespace

CRecordingReader::CRecordingReader() = default;
CRecordingReader::~CRecordingReader() = default;

DWORD CRecordingReader::Open(const std::string& path) {
    std::unique_ptr<IRecordingFile> file;
    const DWORD error = CRecordingFile::OpenToRead(path, file);
    return error != ERROR_SUCCESS ? error : Open(std::move(file));
}

DWORD CRecordingReader::Open(std::unique_ptr<IRecordingFile> file) {
    m_file = std::move(file);
    m_facts.RemoveAll();
    m_buffered = 0;
    Seek(kRecordHead);
    unsigned char head[kRecordHead];
    DWORD got = 0;
    if (const DWORD error = m_file->Read(0, head, sizeof head, got)) return error;
    uint32_t crc = 0;
    if (got == sizeof head) std::memcpy(&crc, head + 16, 4);
    if (got != sizeof head || std::memcmp(head, kRecordMagic, sizeof kRecordMagic) != 0 || crc != Crc32c(head, 16))
        return ERROR_BAD_FORMAT;
    uint16_t version = 0, channels = 0;
    Unpacker(head + 8, 8) >> version >> channels >> m_number;
    if (version != kRecordVersion) return ERROR_REVISION_MISMATCH;
    if (channels > kMostChannels) return ERROR_BAD_FORMAT;
    m_channels = channels;
    m_values.assign(m_channels, 0);
    m_flags.assign(m_channels, 0);
    // The facts come first. Without them, readings have values without names.
    if (Look() == Found::Block && m_type == kFactsBlock) TakeFacts(At(m_position) + kBlockHeader, m_length);
    return ERROR_SUCCESS;
}

void CRecordingReader::Seek(unsigned __int64 position) {
    m_position = m_searched = position;
    m_displaced = false;
}

// Bytes from `at` on into the buffer, `size` of them if the file has so many. False when it has not, or fails (m_error).
bool CRecordingReader::Fetch(unsigned __int64 at, size_t size) {
    m_error = ERROR_SUCCESS;
    if (at >= m_bufferAt && at + size <= m_bufferAt + m_buffered) return true;
    // What is there already of it moves to the front; the rest is read, and a good piece more.
    size_t kept = 0;
    if (at >= m_bufferAt && at < m_bufferAt + m_buffered) {
        kept = static_cast<size_t>(m_bufferAt + m_buffered - at);
        std::memmove(m_buffer.data(), m_buffer.data() + (at - m_bufferAt), kept);
    }
    // Grown as far as bytes come: a length alone is no reason to believe in them.
    m_bufferAt = at;
    m_buffered = kept;
    // No room for more than the file has: whoever follows a thousand of them at their ends would hold a quarter of a gigabyte.
    unsigned __int64 whole = 0;
    const bool told = m_file->Size(whole) == ERROR_SUCCESS;
    const unsigned __int64 left = whole > at + kept ? whole - at - kept : 0;
    const size_t ahead = told ? static_cast<size_t>(std::clamp<unsigned __int64>(left, kLeastAhead, kReadAhead)) : kReadAhead;
    while (m_buffered < size) {
        const size_t wanted = std::max(ahead, std::min(size - m_buffered, std::max(ahead, m_buffered)));
        if (m_buffer.size() < m_buffered + wanted) m_buffer.resize(m_buffered + wanted);
        DWORD got = 0;
        m_error = m_file->Read(at + m_buffered, m_buffer.data() + m_buffered, static_cast<DWORD>(wanted), got);
        if (m_error != ERROR_SUCCESS || got == 0) return false;
        m_buffered += got;
    }
    return true;
}

CRecordingReader::Found CRecordingReader::Look() {
    if (!Fetch(m_position, kBlockHeader)) return m_error != ERROR_SUCCESS ? Found::Failed : Found::End;
    BlockHeader header;
    if (!ReadHeader(At(m_position), m_number, m_position, header)) return Found::Nothing;
    m_type = header.type;
    m_length = header.length;
    if (!Fetch(m_position, kBlockHeader + m_length)) return m_error != ERROR_SUCCESS ? Found::Failed : Found::End;
    return Crc32c(At(m_position) + kBlockHeader, m_length) == header.payloadCrc ? Found::Block : Found::Spoilt;
}

// The next place from `at` on that has a block's header. False, with `at` behind the last place that was looked at, if there is
// none.
bool CRecordingReader::FindBlock(unsigned __int64& at) {
    while (Fetch(at, kBlockHeader)) {
        const unsigned char* const begin = At(at);
        const unsigned char* const end = m_buffer.data() + m_buffered - kBlockHeader + 1;
        size_t budget = 2 * static_cast<size_t>(end - begin);
        for (const unsigned char* place = begin; place < end; ++place) {
            place = static_cast<const unsigned char*>(std::memchr(place, kBlockMark[0], static_cast<size_t>(end - place)));
            if (place == nullptr) break;
            BlockHeader header;
            const unsigned __int64 offset = at + static_cast<size_t>(place - begin);
            if (ReadHeader(place, m_number, offset, header)) {
                at = offset;
                return true;
            }
            const auto left = static_cast<size_t>(end - place) + kBlockHeader - 1;
            m_displaced = m_displaced || IsDisplaced(place, left, budget);
        }
        at += static_cast<size_t>(end - begin);
    }
    return false;
}

ERecordItem CRecordingReader::Next() {
    m_torn = 0;
    m_item = m_position;
    const Found found = Look();
    switch (found) {
        case Found::Block:
            return Take();
        case Found::Failed:
            return RI_FAILED;
        default:
            break;
    }
    // No whole block here. It is damage if something follows; else the end, which may still be written. The length of a spoilt
    // block is known, and taken at its word: looking for others within it would make room for endless work.
    unsigned __int64 size = 0;
    m_error = m_file->Size(size);
    if (m_error != ERROR_SUCCESS) return RI_FAILED;
    unsigned __int64 next = m_position + kBlockHeader + m_length;
    bool more = found == Found::Spoilt && next < size;
    if (found == Found::Nothing) {
        next = std::max(m_searched, m_position + 1);
        more = FindBlock(next);
        if (m_error != ERROR_SUCCESS) return RI_FAILED;
        m_searched = next;
        if (!more && m_displaced) {
            next = size;
            more = true;
        }
    }
    if (more) {
        m_damage = {m_position, next - m_position};
        Seek(next);
        return RI_DAMAGE;
    }
    m_torn = size > m_position ? size - m_position : 0;
    // What was read ahead may have been in the middle of being written.
    m_buffered = 0;
    return RI_END;
}

ERecordItem CRecordingReader::Take() {
    const unsigned char* const payload = At(m_position) + kBlockHeader;
    const unsigned __int64 begin = m_position;
    Unpacker in(payload, m_length);
    Seek(m_position + kBlockHeader + m_length);
    const auto damaged = [&] {  // its CRC is right, and yet it is not what its type says
        m_damage = {begin, m_position - begin};
        return RI_DAMAGE;
    };
    switch (m_type) {
        case kReadingBlock:
            if (m_length != ReadingSize(m_channels)) return damaged();
            in >> m_time;
            in.Bytes(m_values.data(), 8 * m_channels).Bytes(m_flags.data(), m_channels);
            return RI_READING;
        case kGapBlock: {
            uint16_t channels = 0;
            CRecordedGap gap;
            in >> gap.number >> gap.from >> gap.until >> gap.missed >> gap.attempts >> gap.cause >> channels;
            gap.channels.resize(std::min<size_t>(channels, in.Left() / 2));
            in.Bytes(gap.channels.data(), 2 * gap.channels.size());
            gap.text = HouseFromEither(in.Text(in.Left()));
            if (!in.Whole() || gap.channels.size() != channels) return damaged();
            m_gap = std::move(gap);
            return RI_GAP;
        }
        case kEventBlock: {
            CRecordedEvent event;
            in >> event.time >> event.kind >> event.amount;
            event.text = HouseFromEither(in.Text(in.Left()));
            if (!in.Whole()) return damaged();
            m_event = std::move(event);
            return RI_EVENT;
        }
        case kFactsBlock:
            return TakeFacts(payload, m_length) ? RI_FACTS : damaged();
        default:
            return RI_INDEX;  // or of a kind that later versions know
    }
}

// What a block of facts holds replaces what was known under the same first names.
bool CRecordingReader::TakeFacts(const unsigned char* bytes, size_t size) {
    std::vector<unsigned char> copy(bytes, bytes + size);
    CMemFile file(copy.data(), static_cast<UINT>(size));
    CPropertyDB facts;
    if (!facts.LoadFromFile(&file, FALSE)) return false;
    CStringArray names;
    facts.Enum("", names, FALSE, TRUE);
    for (INT_PTR i = 0; i < names.GetSize(); ++i) m_facts.Remove(names.GetAt(i));
    m_facts.OverlayCopy(facts, nullptr, nullptr, TRUE);
    return true;
}
