// Recordings as files: what was written is read, whatever became of the rest.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "record/crc32c_internal.h"
#include "record/recorder.h"
#include "record/recording_format_internal.h"
#include "record/recording_index.h"
#include "record/recording_reader.h"
#include "tests/record/faulty_disk.h"

namespace {
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

CPropertyDB Facts(int channels) {
    CPropertyDB facts;
    facts.SetValue("Session.sLogger", "Inlet");
    for (int i = 0; i < channels; ++i) facts.SetValue(("Channels.c" + std::to_string(i) + ".sName").c_str(), "some name");
    return facts;
}

// A reading that can be told from every other one.
constexpr __int64 TimeOf(unsigned n) { return 1'000'000'000'000'000 + static_cast<__int64>(n) * 1'000'000; }
double ValueOf(unsigned n, size_t channel) { return n * 1000.0 + static_cast<double>(channel) + 0.25; }

DWORD AddOne(CRecorder& recorder, unsigned n) {
    std::vector<double> values;
    for (size_t i = 0; i < recorder.ChannelCount(); ++i) values.push_back(ValueOf(n, i));
    return recorder.AddReading(TimeOf(n), values.data());
}

struct Read {
    std::vector<unsigned> readings;
    unsigned __int64 damaged = 0, torn = 0;
    bool wrong = false;
};

// All that a reader finds until the end; what is no reading of ours is `wrong`.
void ReadOn(CRecordingReader& reader, Read& read) {
    for (;;) {
        switch (reader.Next()) {
            case RI_READING: {
                const auto n = static_cast<unsigned>((reader.Time() - TimeOf(0)) / 1'000'000);
                read.wrong |= reader.Time() != TimeOf(n);
                for (size_t i = 0; i < reader.ChannelCount(); ++i)
                    read.wrong |= reader.Values()[i] != ValueOf(n, i) || reader.Flags()[i] != RF_GOOD;
                read.wrong |= !read.readings.empty() && n <= read.readings.back();
                read.readings.push_back(n);
                break;
            }
            case RI_DAMAGE:
                read.damaged += reader.Damage().size;
                break;
            case RI_END:
                read.torn = reader.TornBytes();
                return;
            case RI_FAILED:
                ADD_FAILURE();
                return;
            default:
                break;
        }
    }
}

Read ReadAll(const std::shared_ptr<faulty::Contents>& contents) {
    Read read;
    CRecordingReader reader;
    if (reader.Open(std::make_unique<faulty::File>(contents)) == 0) ReadOn(reader, read);
    return read;
}

class Recording : public testing::Test {
protected:
    std::shared_ptr<faulty::Contents> disk = std::make_shared<faulty::Contents>();
    CRecorder recorder;

    std::unique_ptr<faulty::File> File() const { return std::make_unique<faulty::File>(disk); }
    void Begin(int channels) {
        CPropertyDB facts = Facts(channels);
        ASSERT_EQ(recorder.Create(File(), facts), 0u);
    }
    void Add(unsigned from, unsigned to) {
        for (unsigned n = from; n < to; ++n) ASSERT_EQ(AddOne(recorder, n), 0u);
    }
    // Whole, with two channels. Returns where the readings begin.
    size_t Record(unsigned readings) {
        Begin(2);
        const size_t head = disk->bytes.size();
        Add(0, readings);
        recorder.Close();
        return head;
    }
};
}  // namespace

TEST(Crc32c, KnownValues) {
    using orvik::detail::Crc32c;
    const std::string digits = "123456789";
    EXPECT_EQ(Crc32c(digits.data(), digits.size()), 0xE3069283u);
    unsigned char block[32] = {};
    EXPECT_EQ(Crc32c(block, 32), 0x8A9136AAu);  // RFC 3720, B.4
    std::memset(block, 0xFF, 32);
    EXPECT_EQ(Crc32c(block, 32), 0x62A8AB43u);
    for (size_t i = 0; i < 32; ++i) block[i] = static_cast<unsigned char>(i);
    for (size_t size = 0; size <= 32; ++size) {
        EXPECT_EQ(Crc32c(block, size), orvik::detail::Crc32cByTables(block, size)) << size;
        EXPECT_EQ(Crc32c(block + size, 32 - size, Crc32c(block, size)), 0x46DD794Eu) << size;
    }
}

TEST_F(Recording, GivesBackWhatWasWritten) {
    Begin(3);
    Add(0, 2);
    CRecordedGap gap;
    gap.number = 7, gap.from = TimeOf(2), gap.until = TimeOf(5), gap.missed = 3, gap.attempts = 9, gap.cause = 8;
    gap.channels = {0, 2};
    gap.text = "Receive timeout";
    ASSERT_EQ(recorder.AddGap(gap), 0u);
    ASSERT_EQ(recorder.AddEvent({TimeOf(5), RE_CLOCK_STEPPED, -3'600'000'000, "set back"}), 0u);
    CPropertyDB more;
    more.SetValue("Chart.Tags.Comment #0.sText", "here");
    ASSERT_EQ(recorder.AddFacts(more), 0u);
    const double some[] = {kNan, -0.0, std::numeric_limits<double>::infinity()};
    const BYTE flags[] = {RF_MISSING, RF_GOOD, RF_GOOD};
    ASSERT_EQ(recorder.AddReading(TimeOf(1), some, flags), 0u);  // not later than the last
    ASSERT_EQ(recorder.Close(), 0u);

    CRecordingReader reader;
    ASSERT_EQ(reader.Open(File()), 0u);
    EXPECT_EQ(reader.ChannelCount(), 3u);
    CString text;
    EXPECT_TRUE(reader.Facts().GetValue("Session.sLogger", text) && text == "Inlet");
    std::vector<ERecordItem> items;
    for (ERecordItem item; (item = reader.Next()) != RI_END;) {
        items.push_back(item);
        if (item == RI_READING && items.size() > 6) {
            EXPECT_EQ(reader.Time(), TimeOf(1) + 1);
            EXPECT_EQ(std::memcmp(reader.Values(), some, sizeof some), 0);
            EXPECT_EQ(reader.Flags()[0], RF_MISSING);
        }
    }
    EXPECT_EQ(items,
              (std::vector<ERecordItem>{RI_FACTS, RI_READING, RI_READING, RI_GAP, RI_EVENT, RI_FACTS, RI_READING, RI_INDEX}));
    EXPECT_EQ(reader.Gap().channels, gap.channels);
    EXPECT_EQ(reader.Gap().text, gap.text);
    EXPECT_EQ(reader.Gap().until, gap.until);
    EXPECT_EQ(reader.Event().amount, -3'600'000'000);
    EXPECT_TRUE(reader.Facts().GetValue("Chart.Tags.Comment #0.sText", text) && text == "here");
    EXPECT_TRUE(reader.Facts().Find("Channels.c2"));
}

// Cut anywhere, every whole reading is there, a reader and a recorder say the same, and the recorder goes on.
TEST_F(Recording, EveryPrefixHoldsItsReadings) {
    Begin(2);
    const size_t head = disk->bytes.size();
    std::vector<size_t> ends;
    for (unsigned n = 0; n < 12; ++n) {
        Add(n, n + 1);
        ends.push_back(disk->bytes.size());
    }
    const faulty::Bytes whole = disk->bytes;
    for (size_t size = head; size <= whole.size(); ++size) {
        const auto cut = std::make_shared<faulty::Contents>();
        cut->bytes.assign(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const auto expected = static_cast<unsigned>(std::upper_bound(ends.begin(), ends.end(), size) - ends.begin());
        const Read read = ReadAll(cut);
        EXPECT_FALSE(read.wrong);
        ASSERT_EQ(read.readings.size(), expected) << size;
        CRecorder again;
        ASSERT_EQ(again.Resume(std::make_unique<faulty::File>(cut)), 0u);
        EXPECT_EQ(again.ReadingCount(), expected);
        EXPECT_EQ(again.CutOff(), read.torn);
        ASSERT_EQ(AddOne(again, 50), 0u);
        const Read after = ReadAll(cut);
        EXPECT_TRUE(!after.wrong && after.readings.size() == expected + 1 && after.damaged == 0) << size;
    }
}

// Any byte changed: at most the block it lies in is lost, nothing is made up, and the loss is told.
TEST_F(Recording, DamageCostsItsBlockAlone) {
    const size_t head = Record(12);
    const faulty::Bytes whole = disk->bytes;
    std::mt19937 random(1);
    for (size_t at = head; at < whole.size(); ++at) {
        disk->bytes = whole;
        disk->bytes[at] ^= static_cast<unsigned char>(1 + random() % 255);
        const Read read = ReadAll(disk);
        EXPECT_FALSE(read.wrong);
        EXPECT_GE(read.readings.size(), 11u) << at;
        EXPECT_GT(read.damaged + read.torn, 0u) << at;
    }
    // A long piece, a piece of the file itself in another place, and a piece of another file.
    for (int round = 0; round < 200; ++round) {
        disk->bytes = whole;
        const size_t size = random() % 200, from = random() % (whole.size() - size), to = random() % (whole.size() - size);
        std::copy_n(whole.begin() + static_cast<std::ptrdiff_t>(from), size,
                    disk->bytes.begin() + static_cast<std::ptrdiff_t>(to));
        EXPECT_FALSE(ReadAll(disk).wrong);
    }
    disk->bytes = whole;
    CRecorder other;
    const auto second = std::make_shared<faulty::Contents>();
    CPropertyDB facts = Facts(2);
    ASSERT_EQ(other.Create(std::make_unique<faulty::File>(second), facts), 0u);
    for (unsigned n = 100; n < 112; ++n) ASSERT_EQ(AddOne(other, n), 0u);
    std::copy(second->bytes.begin() + 200, second->bytes.end(), disk->bytes.begin() + 200);
    for (const unsigned n : ReadAll(disk).readings) EXPECT_LT(n, 100u);
}

// Bytes taken out or put in: what follows is not where it was written. It is told, and stays when somebody goes on behind it.
TEST_F(Recording, WhatStandsElsewhereIsToldAndKept) {
    const size_t head = Record(40);
    const faulty::Bytes whole = disk->bytes;
    std::mt19937 random(3);
    for (int round = 0; round < 300; ++round) {
        disk->bytes = whole;
        const auto at = static_cast<std::ptrdiff_t>(head + random() % (whole.size() / 2));
        const auto size = static_cast<std::ptrdiff_t>(1 + random() % 300);
        const auto begin = disk->bytes.begin() + at;
        if (round % 2) disk->bytes.erase(begin, begin + size);
        if (round % 2 == 0) disk->bytes.insert(begin, whole.begin() + at / 2, whole.begin() + at / 2 + size);
        const faulty::Bytes changed = disk->bytes;
        const Read read = ReadAll(disk);
        EXPECT_FALSE(read.wrong);
        EXPECT_GT(read.damaged, 0u);
        EXPECT_EQ(read.torn, 0u);
        CRecorder again;
        ASSERT_EQ(again.Resume(File()), 0u);
        ASSERT_EQ(AddOne(again, 50), 0u);
        EXPECT_TRUE(std::equal(changed.begin(), changed.end(), disk->bytes.begin()));
        const Read after = ReadAll(disk);
        EXPECT_TRUE(!after.wrong && after.readings.size() == read.readings.size() + 1 && after.readings.back() == 50) << round;
    }
}

TEST_F(Recording, AReaderFollowsWhileItGrows) {
    Begin(2);
    CRecordingReader reader;
    CRecordingIndex index;
    ASSERT_EQ(reader.Open(File()), 0u);
    CRecordingReader indexed;
    ASSERT_EQ(indexed.Open(File()), 0u);
    Read read;
    std::mt19937 random(2);
    for (unsigned n = 0; n < 3000;) {
        const auto more = static_cast<unsigned>(random() % 40);
        Add(n, n + more);
        n += more;
        // A write that is under way: the next block's first bytes.
        const faulty::Bytes before = disk->bytes;
        if (random() % 2) disk->bytes.insert(disk->bytes.end(), {0xD7, 0x4F, 2, 0, 30});
        ReadOn(reader, read);
        ASSERT_EQ(read.readings.size(), n);
        disk->bytes = before;
        ASSERT_EQ(index.Update(indexed), 0u);
        ASSERT_EQ(index.ReadingCount(), n);
    }
    EXPECT_FALSE(read.wrong);
    EXPECT_EQ(read.damaged, 0u);
}

// The index in the file, the one made without it, and the readings say the same.
TEST_F(Recording, TheIndexTellsWhatStandsWhere) {
    constexpr unsigned kCount = 20'000;
    Begin(2);
    Add(0, kCount);
    std::vector<CRecordingIndex> made;
    const auto make = [&] {
        CRecordingReader reader;
        EXPECT_EQ(reader.Open(File()), 0u);
        EXPECT_EQ(made.emplace_back().Update(reader), 0u);
    };
    make();
    recorder.Close();
    make();
    // Without the chain: one of its blocks is damaged.
    disk->bytes[made[1].Spans()[3].end + 20] ^= 1;
    make();
    EXPECT_EQ(made[1].DamagedBytes(), 0u);
    EXPECT_GT(made[2].DamagedBytes(), 0u);
    EXPECT_GT(made[1].Spans().size(), 5u);
    for (const CRecordingIndex& index : made) {
        ASSERT_EQ(index.ReadingCount(), kCount);
        double low = 0, high = 0;
        ASSERT_TRUE(index.Range(1, low, high));
        EXPECT_TRUE(low == ValueOf(0, 1) && high == ValueOf(kCount - 1, 1));
        unsigned __int64 first = 0;
        for (const CRecordingSpan& span : index.Spans()) {
            EXPECT_EQ(span.first, first);
            const auto n = static_cast<unsigned>(first);
            EXPECT_EQ(span.firstTime, TimeOf(n));
            EXPECT_EQ(span.lastTime, TimeOf(n + span.readings - 1));
            EXPECT_EQ(span.channels[0].high, ValueOf(n + span.readings - 1, 0));
            EXPECT_EQ(span.channels[0].highAt, span.readings - 1);
            first += span.readings;
            EXPECT_EQ(index.Find(span.lastTime), static_cast<size_t>(&span - index.Spans().data()));
        }
        EXPECT_EQ(index.Find(TimeOf(kCount)), index.Spans().size());
    }
    ASSERT_EQ(recorder.Resume(File()), 0u);
    EXPECT_EQ(recorder.ReadingCount(), kCount);
    EXPECT_EQ(recorder.LastTime(), TimeOf(kCount - 1));
}

// Announced lengths are not believed, and junk costs no more than its length.
TEST_F(Recording, HostileFilesEndSoon) {
    Begin(1);
    Add(0, 2);
    DWORD number = 0;
    std::memcpy(&number, disk->bytes.data() + 12, 4);
    for (int i = 0; i < 20'000; ++i) {  // headers that are right, of blocks that are not there
        unsigned char header[16];
        orvik::detail::WriteHeader(header, number, disk->bytes.size(), {2, 1u << 20, 0});
        disk->bytes.insert(disk->bytes.end(), header, header + 16);
    }
    EXPECT_EQ(ReadAll(disk).readings.size(), 2u);
    for (const char* text : {"", "ORVIKREC", "ORVIKREC\1\0\1\0", "<?xml version=\"1.0\"?>"}) {
        disk->bytes.assign(text, text + std::strlen(text));
        CRecordingReader reader;
        EXPECT_EQ(reader.Open(File()), static_cast<DWORD>(ERROR_BAD_FORMAT));
    }
}
