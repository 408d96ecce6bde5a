#include "host/sending/recording_queue.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "afx/collections.h"
#include "frame/numeric_arrays.h"
#include "host/sending/recording_chain.h"
#include "host/session/recorded_notes.h"
#include "host/words/console.h"
#include "host/words/texts.h"

namespace {
constexpr DWORD kOpenEvery = 500;     // ms between two looks for a file that is to be there
constexpr DWORD kSeldomEvery = 5000;  // where others of a thousand loggers have begun one, and this one hardly has
constexpr DWORD kLookEvery = 10'000;  // for one that nothing told of
constexpr DWORD kCountEvery = 20'000;  // how much waits while nothing can be sent
constexpr DWORD kExpectFor = 15'000;  // how long one is expected that has no reading yet
constexpr size_t kNoteCosts = 8;      // a gap or an event counts as so many values
constexpr DWORD kDamageNumbers = 0x80000000;

std::string TextIn(const CPropertyDB& db, const std::string& key) {
    CString text;
    db.GetValue(key.c_str(), text);
    return ToUtf8(text.GetString());
}

std::string FileName(const std::string& path) { return path.substr(path.find_last_of("/\\") + 1); }

unsigned __int64 SizeOf(const std::string& path) {
    WIN32_FILE_ATTRIBUTE_DATA data;
    if (!GetFileAttributesExA(path.c_str(), GetFileExInfoStandard, &data)) return 0;
    return static_cast<unsigned __int64>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
}

bool IsAllMissing(const BYTE* flags, size_t channels) {
    return std::all_of(flags, flags + channels, [](BYTE flag) { return flag == RF_MISSING; });
}
}  // namespace

void DescribeSource(CPropertyDB& facts, CSinkSource& source) {
    source.device = TextIn(facts, "Session.sLogger");
    source.family = TextIn(facts, "Session.sFamily");
    source.port = TextIn(facts, "Session.sPort");
    source.channels.clear();
    for (const std::string& key : ChannelKeys(facts)) {
        const std::string at = "Channels." + key + ".";
        const std::string name = TextIn(facts, at + "sName");
        source.channels.push_back({ToUtf8(key), name.empty() ? ToUtf8(key) : name, TextIn(facts, at + "sUnit")});
    }
}

std::vector<CSinkComment> CommentsIn(CPropertyDB& facts) {
    CInt64Array times;
    CDoubleArray values;
    CStringArray channels;
    facts.GetValue("Chart.tTagTimes", times);
    facts.GetValue("Chart.rTagValues", values);
    facts.GetValue("Chart.sTagChannels", channels);
    const std::vector<std::string> keys = ChannelKeys(facts);
    std::vector<CSinkComment> comments;
    for (INT_PTR i = 0; i < std::min(times.GetSize(), values.GetSize()); ++i) {
        const std::string at = "Chart.Tags.Comment #" + std::to_string(i);
        if (!facts.Find(at.c_str())) break;
        const std::string channel = i < channels.GetSize() ? ToUtf8(channels.GetAt(i).GetString()) : std::string();
        const bool known = std::find(keys.begin(), keys.end(), channel) != keys.end();
        comments.push_back({times.GetAt(i), values.GetAt(i), known || keys.empty() ? channel : ToUtf8(keys.front()),
                            TextIn(facts, at + ".sText")});
    }
    return comments;
}

RecordingQueue::RecordingQueue(Plan plan, SentPlace place)
    : m_plan(std::move(plan)), m_place(std::move(place)), m_reached(m_place) {}

void RecordingQueue::Say(std::string sentence) {
    if (sentence == m_lastSentence) return;
    m_lastSentence = sentence;
    m_sentences.push_back(std::move(sentence));
}

std::vector<std::string> RecordingQueue::TakeSentences() { return std::exchange(m_sentences, {}); }

void RecordingQueue::Close() {
    m_reader.reset();
    m_file = nullptr;
}

// The file of the place, or where that is gone, the one that began next.
bool RecordingQueue::Open() {
    const DWORD now = GetTickCount();
    if (m_lookSoon) {
        m_lookSoon = false;
    } else if (now - m_looked < kOpenEvery) {
        return false;
    }
    m_looked = now;
    const std::vector<std::string> files = m_plan.alone ? std::vector<std::string>{m_plan.path} : RecordingsOf(m_plan.path);
    // Mostly it stands under its name.
    const auto named = std::find_if(files.begin(), files.end(), [&](const std::string& file) { return FileName(file) == m_reached.file; });
    __int64 began = 0;
    if (named != files.end() && BeginOfRecording(*named, began) == ERROR_SUCCESS && began == m_reached.began)
        return OpenAt(files, static_cast<size_t>(named - files.begin()), began);
    for (size_t i = 0; i < files.size(); ++i) {
        if (BeginOfRecording(files[i], began) != ERROR_SUCCESS) continue;
        if (m_reached.file.empty() || began >= m_reached.began) return OpenAt(files, i, began);
    }
    return false;
}

bool RecordingQueue::OpenAt(const std::vector<std::string>& files, size_t which, __int64 began) {
    const bool same = began == m_reached.began && !m_reached.file.empty();
    if (!OpenFile(files[which])) return false;
    m_source->began = began;
    m_reached.file = FileName(files[which]);
    if (same) {
        FindResumePoint();
    } else {
        m_reached.began = began;
        m_reached.item = m_reached.offset = 0;
    }
    m_laterBytes = 0;
    m_lookSoon = which + 1 < files.size();
    for (size_t i = which + 1; i < files.size(); ++i) m_laterBytes += SizeOf(files[i]);
    return true;
}

bool RecordingQueue::OpenFile(const std::string& path) {
    std::unique_ptr<IRecordingFile> file;
    DWORD error = CRecordingFile::OpenToRead(path, file);
    if (error == ERROR_SUCCESS) {
        m_file = file.get();
        m_reader = std::make_unique<CRecordingReader>();
        error = m_reader->Open(std::move(file));
    }
    if (error != ERROR_SUCCESS) {
        Close();
        Say(::Say(Text::FileNotOpened, {ToUtf8(path), Reason(error)}));
        return false;
    }
    m_path = path;
    m_skipUntil = std::numeric_limits<__int64>::min();
    m_continued = false;
    m_damages.emplace(m_reader->ChannelCount(), kDamageNumbers);
    m_source.reset();
    Describe();
    m_comments.clear();
    return true;
}

void RecordingQueue::Describe() {
    CPropertyDB facts;
    facts.OverlayCopy(&m_reader->Facts(), nullptr, nullptr, TRUE);
    auto source = std::make_shared<CSinkSource>();
    source->station = ToUtf8(m_plan.station);
    source->logger = ToUtf8(m_plan.logger);
    source->began = m_source != nullptr ? m_source->began : 0;
    DescribeSource(facts, *source);
    source->channels.resize(m_reader->ChannelCount());
    m_source = std::move(source);
}

// Behind the last block that arrived. Where that does not stand there any more (the end of the file was lost with the power, and
// another one was written), everything is passed again, and readings up to the last one that arrived are left out.
void RecordingQueue::FindResumePoint() {
    const unsigned __int64 start = m_reader->Position();
    if (m_reached.offset <= start) return;
    m_reader->Seek(m_reached.item);
    const ERecordItem item = m_reader->Next();
    const bool block = item != RI_DAMAGE && item != RI_END && item != RI_FAILED;
    if (block && m_reader->Position() == m_reached.offset && (item != RI_READING || m_reader->Time() <= m_reached.time)) return;
    m_reader->Seek(start);
    m_skipUntil = m_reached.time;
}

// At the end of a file: whether another one goes on.
bool RecordingQueue::MoveOn() {
    if (m_plan.alone) return false;
    const DWORD now = GetTickCount();
    const bool expected = now - m_expected < kExpectFor, follows = m_continued || m_laterBytes > 0 || (expected && m_plan.rotates);
    const bool told = follows || expected;
    if (!m_lookSoon && now - m_looked < (follows ? kOpenEvery : told ? kSeldomEvery : kLookEvery)) return false;
    m_lookSoon = false;
    m_looked = now;
    if (!told && !m_plan.rotates && m_file->IsInPlace()) return false;
    const std::vector<std::string> files = RecordingsOf(m_plan.path);
    const auto here = std::find_if(files.begin(), files.end(), [&](const std::string& file) { return FileName(file) == m_reached.file; });
    size_t next = 0;
    // Another one may have taken this one's place.
    if (here != files.end() && m_file->IsInPlace()) next = static_cast<size_t>(here - files.begin()) + 1;
    for (; next < files.size(); ++next) {
        __int64 began = 0;
        if (BeginOfRecording(files[next], began) != ERROR_SUCCESS || began <= m_source->began) continue;
        // Whatever came into this one before the next began is there by now.
        if (m_reader->Next() != RI_END) return m_reader->Seek(m_reached.offset), true;
        Close();
        m_lookSoon = true;
        m_reached.began = began;
        m_reached.file = FileName(files[next]);
        m_reached.item = m_reached.offset = 0;
        return Open();
    }
    return false;
}

void RecordingQueue::LookSoon() {
    m_lookSoon = true;
    m_expected = GetTickCount();
}

void RecordingQueue::TakeFacts(CSinkPart& part) {
    Describe();
    CPropertyDB facts;
    facts.OverlayCopy(&m_reader->Facts(), nullptr, nullptr, TRUE);
    std::vector<CSinkComment> comments = CommentsIn(facts);
    const auto same = [](const CSinkComment& a, const CSinkComment& b) {
        return a.time == b.time && a.value == b.value && a.channel == b.channel && a.text == b.text;
    };
    if (std::equal(comments.begin(), comments.end(), m_comments.begin(), m_comments.end(), same)) return;
    m_comments = comments;
    part.commented = true;
    part.comments = std::move(comments);
}

bool RecordingQueue::Fill(CSinkBatch& batch, size_t& room) {
    if (m_reader == nullptr && !Open()) return false;
    const size_t channels = m_reader->ChannelCount();
    CSinkPart part;
    part.source = m_source.get();
    const std::shared_ptr<const CSinkSource> source = m_source;
    const auto isEmpty = [&] { return part.times.empty() && part.gaps.empty() && part.events.empty() && !part.commented; };
    bool more = true;
    while (more) {
        if (room < std::max<size_t>(channels, 1) && !(batch.parts.empty() && isEmpty())) break;
        const ERecordItem item = m_reader->Next();
        size_t cost = 0;
        switch (item) {
            case RI_READING: {
                const __int64 time = m_reader->Time();
                if (const auto gap = m_damages->Before(time); gap && !IsPassedOver(time)) {
                    part.gaps.push_back(*gap);
                    part.gaps.back().number = kDamageNumbers | static_cast<DWORD>(m_damageAt & 0x7FFFFFFF);
                }
                const BYTE* const flags = m_reader->Flags();
                if (IsPassedOver(time) || IsAllMissing(flags, channels)) break;
                part.times.push_back(time);
                part.values.insert(part.values.end(), m_reader->Values(), m_reader->Values() + channels);
                part.flags.insert(part.flags.end(), flags, flags + channels);
                m_reached.time = time;
                ++m_added;
                cost = channels;
                break;
            }
            case RI_GAP:
                if (m_reader->Gap().until >= m_plan.notBefore) part.gaps.push_back(m_reader->Gap());
                cost = kNoteCosts;
                break;
            case RI_EVENT:
                if (m_reader->Event().time >= m_plan.notBefore) part.events.push_back(m_reader->Event());
                if (m_reader->Event().kind == RE_CONTINUED) m_continued = m_lookSoon = true;
                cost = kNoteCosts;
                break;
            case RI_FACTS:
                TakeFacts(part);
                cost = part.comments.size() * kNoteCosts;
                break;
            case RI_INDEX:
                break;
            case RI_DAMAGE:
                m_damageAt = m_reader->Damage().offset;
                m_damages->Damaged(m_reader->Damage().size);
                Say(::Say(Text::RecordingDamaged, {ToUtf8(m_path), std::to_string(m_reader->Damage().size)}));
                break;
            case RI_FAILED:
                Say(::Say(Text::FileNotOpened, {ToUtf8(m_path), Reason(m_reader->Error())}));
                more = false;
                break;
            case RI_END:
                if (isEmpty()) return MoveOn();
                // The part speaks of this file; the next one has its own.
                batch.parts.push_back(std::move(part));
                m_spokenOf.push_back(source);
                return !m_plan.alone && (m_continued || m_laterBytes > 0 || m_lookSoon);
        }
        if (item != RI_FAILED) {
            m_reached.item = m_reader->ItemOffset();
            m_reached.offset = m_reader->Position();
        }
        room -= std::min(room, cost);
    }
    if (isEmpty()) return more;
    batch.parts.push_back(std::move(part));
    m_spokenOf.push_back(source);
    return more;
}

void RecordingQueue::Accept() {
    m_place = m_reached;
    m_sent += std::exchange(m_added, 0);
    m_spokenOf.clear();
    m_lastSentence.clear();
}

void RecordingQueue::Reject() {
    m_reached = m_place;
    m_added = 0;
    m_spokenOf.clear();
    m_comments.clear();
    Close();
    m_lookSoon = true;
}

// While nothing is read from it the files themselves say how much waits; they are looked at now and then, for there may be many.
unsigned __int64 RecordingQueue::Behind() {
    unsigned __int64 size = 0;
    if (m_file == nullptr) {
        const DWORD now = GetTickCount();
        if (!m_counted || now - *m_counted >= kCountEvery) {
            m_counted = now;
            m_waiting = BytesBehindPlace();
        }
        return m_waiting;
    }
    m_counted.reset();
    if (m_file->Size(size) != ERROR_SUCCESS) return 0;
    const unsigned __int64 arrived = m_place.file == FileName(m_path) ? m_place.offset : 0;
    return (size > arrived ? size - arrived : 0) + m_laterBytes;
}

// A folder of a thousand loggers is not listed for each of them, if one file tells.
unsigned __int64 RecordingQueue::BytesBehindPlace() const {
    const std::string folder = m_plan.path.substr(0, m_plan.path.size() - FileName(m_plan.path).size());
    if (!m_place.file.empty()) {
        const unsigned __int64 size = SizeOf(folder + m_place.file);
        if (size != 0) return size - std::min(size, m_place.offset) + m_laterBytes;
    } else if (!m_plan.rotates) {
        return SizeOf(m_plan.path);
    }
    unsigned __int64 bytes = 0;
    for (const std::string& file : RecordingsOf(m_plan.path)) bytes += SizeOf(file);
    return bytes;
}
