#include "record/recorder.h"

#include <algorithm>
#include <limits>
#include <random>

#include "afx/exception.h"
#include "afx/file.h"
#include "platform/file_replacement.h"
#include "platform/house_text_internal.h"
#include "record/crc32c_internal.h"
#include "record/recording_format_internal.h"
#include "record/recording_index.h"

using namespace orvik::detail;

namespace {
// Whole UTF-8 in a process of that: by one stray byte readers would take all of it for Windows-1252.
std::string Written(const std::string& text) { return orvik::detail::HouseIsUtf8() ? orvik::detail::Utf8FromHouse(text) : text; }

constexpr __int64 kNever = std::numeric_limits<__int64>::min();

bool ArchiveOf(CPropertyDB& db, std::vector<unsigned char>& bytes) {
    CMemFile file(64 * 1024);
    if (!db.StoreToFile(&file, FALSE, FALSE) || file.GetLength() > kLongestBlock) return false;
    bytes.insert(bytes.end(), file.GetBufferPtr(), file.GetBufferPtr() + file.GetLength());
    return true;
}

// Puts the header in front of a payload for which room was left.
void Seal(std::vector<unsigned char>& block, unsigned char type, DWORD number, unsigned __int64 offset) {
    BlockHeader header;
    header.type = type;
    header.length = static_cast<uint32_t>(block.size() - kBlockHeader);
    header.payloadCrc = Crc32c(block.data() + kBlockHeader, header.length);
    WriteHeader(block.data(), number, offset, header);
}
}  // namespace

struct CRecorder::Span : CRecordingSpan {
    unsigned __int64 previous = 0;  // the last index block; 0 for none
};

CRecorder::CRecorder() : m_lastTime(kNever), m_lastMissing(kNever) {}
CRecorder::~CRecorder() = default;

DWORD CRecorder::Begin(CPropertyDB& facts, DWORD number, std::vector<unsigned char>& bytes, size_t& channels) {
    CStringArray keys;
    facts.Enum("Channels", keys, FALSE, FALSE);
    channels = static_cast<size_t>(keys.GetSize());
    if (channels > kMostChannels) return ERROR_INVALID_PARAMETER;
    Packer head(bytes);
    head.Bytes(kRecordMagic, sizeof kRecordMagic) << kRecordVersion << static_cast<uint16_t>(channels) << number;
    head << Crc32c(bytes.data(), bytes.size());
    std::vector<unsigned char> block(kBlockHeader);
    if (!ArchiveOf(facts, block)) return ERROR_INVALID_PARAMETER;
    Seal(block, kFactsBlock, number, bytes.size());
    bytes.insert(bytes.end(), block.begin(), block.end());
    return ERROR_SUCCESS;
}

DWORD CRecorder::Create(const std::string& path, CPropertyDB& facts, DWORD forceEvery) {
    if (GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES) return ERROR_FILE_EXISTS;
    std::vector<unsigned char> bytes;
    size_t channels = 0;
    if (const DWORD error = Begin(facts, std::random_device()(), bytes, channels)) return error;
    if (const DWORD error = ReplaceWholeFile(path, {reinterpret_cast<const char*>(bytes.data()), bytes.size()})) return error;
    return Resume(path, forceEvery);
}

DWORD CRecorder::Create(std::unique_ptr<IRecordingFile> file, CPropertyDB& facts) {
    std::vector<unsigned char> bytes;
    size_t channels = 0;
    if (const DWORD error = Begin(facts, std::random_device()(), bytes, channels)) return error;
    if (const DWORD error = file->Write(0, bytes.data(), static_cast<DWORD>(bytes.size()))) return error;
    if (const DWORD error = file->Force()) return error;
    return Resume(std::move(file));
}

DWORD CRecorder::Resume(const std::string& path, DWORD forceEvery) {
    std::unique_ptr<IRecordingFile> file;
    const DWORD error = CRecordingFile::OpenToWrite(path, forceEvery, file);
    return error != ERROR_SUCCESS ? error : Resume(std::move(file));
}

DWORD CRecorder::Resume(std::unique_ptr<IRecordingFile> file) {
    m_file.reset();
    CRecordingReader reader;
    if (const DWORD error = reader.Open(std::move(file))) return error;
    CRecordingIndex index;
    if (const DWORD error = index.Update(reader)) return error;
    m_number = reader.m_number;
    m_channels = reader.m_channels;
    m_end = reader.Position();
    m_readings = index.ReadingCount();
    m_lastGap = index.LastGap();
    m_lastTime = kNever;
    m_cutOff = reader.TornBytes();
    m_facts = reader.Facts();
    for (const CRecordingSpan& span : index.Spans()) {
        if (span.readings > 0) m_lastTime = span.lastTime;
    }
    m_lastMissing = kNever;
    if (!index.Spans().empty()) {
        reader.Seek(index.Spans().back().begin);
        for (ERecordItem item; (item = reader.Next()) != RI_END && item != RI_FAILED;) {
            if (item == RI_GAP) m_lastMissing = std::max(m_lastMissing, reader.Gap().until);
        }
    }
    m_span = std::make_unique<Span>();
    if (index.IsOpen()) static_cast<CRecordingSpan&>(*m_span) = index.Spans().back();
    m_span->previous = index.LastIndex();
    if (!index.IsOpen()) StartSpan();
    if (m_cutOff > 0) {
        if (const DWORD error = reader.m_file->Cut(m_end)) return error;
    }
    m_file = std::move(reader.m_file);
    return ERROR_SUCCESS;
}

DWORD CRecorder::Close() {
    if (m_file == nullptr) return ERROR_SUCCESS;
    const DWORD indexed = m_span->readings > 0 ? AddIndex() : DWORD{ERROR_SUCCESS};
    const DWORD forced = m_file->Force();
    m_file.reset();
    return forced != ERROR_SUCCESS ? forced : indexed;
}

DWORD CRecorder::Force() { return m_file != nullptr ? m_file->Force() : DWORD{ERROR_INVALID_HANDLE}; }

DWORD CRecorder::CheckLength() {
    if (m_file == nullptr) return ERROR_INVALID_HANDLE;
    unsigned __int64 size = 0;
    if (const DWORD error = m_file->Size(size)) return error;
    return size < m_end ? DWORD{ERROR_HANDLE_EOF} : DWORD{ERROR_SUCCESS};
}

DWORD CRecorder::CheckPlace() {
    if (m_file == nullptr) return ERROR_INVALID_HANDLE;
    return m_file->IsInPlace() ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_FILE_NOT_FOUND};
}

void CRecorder::StartSpan() {
    static_cast<CRecordingSpan&>(*m_span) = {};
    m_span->begin = m_end;
    m_span->first = m_readings;
}

// Writes m_block, in which room for the header was left, behind what stands there.
DWORD CRecorder::Add(unsigned char type) {
    if (m_file == nullptr) return ERROR_INVALID_HANDLE;
    if (m_block.size() > kBlockHeader + kLongestBlock) return ERROR_INVALID_PARAMETER;
    Seal(m_block, type, m_number, m_end);
    const DWORD error = m_file->Write(m_end, m_block.data(), static_cast<DWORD>(m_block.size()));
    if (error != ERROR_SUCCESS) {
        m_file->Cut(m_end);  // if it can be; the next record stands there otherwise
        return error;
    }
    m_end += m_block.size();
    return ERROR_SUCCESS;
}

DWORD CRecorder::AddReading(__int64 time, const double* values, const BYTE* flags) {
    if (m_lastTime != kNever && time <= m_lastTime) time = m_lastTime + 1;
    m_block.resize(kBlockHeader);
    Packer payload(m_block);
    payload << time;
    payload.Bytes(values, 8 * m_channels);
    if (flags != nullptr) {
        payload.Bytes(flags, m_channels);
    } else {
        m_block.resize(m_block.size() + m_channels, RF_GOOD);
    }
    if (const DWORD error = Add(kReadingBlock)) return error;
    m_lastTime = time;
    ++m_readings;
    m_span->Add(time, values, m_channels);
    return AddIndexIfDue();
}

DWORD CRecorder::AddGap(const CRecordedGap& gap) {
    const std::string text = Written(gap.text);
    m_block.resize(kBlockHeader);
    Packer payload(m_block);
    payload << gap.number << gap.from << gap.until << gap.missed << gap.attempts << gap.cause
            << static_cast<uint16_t>(gap.channels.size());
    payload.Bytes(gap.channels.data(), 2 * gap.channels.size()).Bytes(text.data(), text.size());
    if (const DWORD error = Add(kGapBlock)) return error;
    m_lastGap = std::max(m_lastGap, gap.number);
    ++m_span->others;
    return AddIndexIfDue();
}

DWORD CRecorder::AddEvent(const CRecordedEvent& event) {
    m_block.resize(kBlockHeader);
    Packer payload(m_block);
    payload << event.time << event.kind << event.amount;
    const std::string text = Written(event.text);
    payload.Bytes(text.data(), text.size());
    if (const DWORD error = Add(kEventBlock)) return error;
    ++m_span->others;
    return AddIndexIfDue();
}

DWORD CRecorder::AddFacts(CPropertyDB& facts) {
    m_block.resize(kBlockHeader);
    if (!ArchiveOf(facts, m_block)) return ERROR_INVALID_PARAMETER;
    if (const DWORD error = Add(kFactsBlock)) return error;
    ++m_span->others;
    return AddIndexIfDue();
}

// An index block that could not be written is written later: readings do not depend on it.
DWORD CRecorder::AddIndexIfDue() {
    if (m_end - m_span->begin >= IndexDistance(m_channels)) AddIndex();
    return ERROR_SUCCESS;
}

DWORD CRecorder::AddIndex() {
    m_block.resize(kBlockHeader);
    Packer payload(m_block);
    const Span& span = *m_span;
    payload << span.previous << span.begin << span.first << span.readings << span.others << span.firstTime << span.lastTime;
    for (size_t i = 0; i < m_channels; ++i) {
        const CRecordingSpan::Extremes none{0, 0, span.readings, span.readings};
        const CRecordingSpan::Extremes& channel = i < span.channels.size() ? span.channels[i] : none;
        payload << channel.low << channel.high << channel.lowAt << channel.highAt;
    }
    // The highest gap's number, so that a program that goes on need not look for it.
    payload << m_lastGap;
    const unsigned __int64 offset = m_end;
    if (const DWORD error = Add(kIndexBlock)) return error;
    m_span->previous = offset;
    StartSpan();
    return ERROR_SUCCESS;
}
