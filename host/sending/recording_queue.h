// The recordings of one logger as a queue: what they hold is handed out in order, file after file, also while they grow, and the
// place up to which it has arrived is known. One thread.
//
// What is damaged in a file is told, and becomes a gap with the cause 104 and a number of its own (from 0x80000000 on) that is the
// same however often it is sent.
#pragma once

#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/session/damage_gaps.h"
#include "record/recording_reader.h"
#include "record/sink.h"

// Up to where everything has arrived. Plain values, to be kept over the end of the program.
struct SentPlace {
    std::string file;  // without its folder; empty: nothing has arrived yet
    __int64 began = 0;
    unsigned __int64 item = 0, offset = 0;  // where the last block that arrived begins and ends
    __int64 time = std::numeric_limits<__int64>::min();  // of the last reading that arrived
};

class RecordingQueue {
public:
    struct Plan {
        std::string station, logger;
        std::string path;      // the logger's recording
        bool rotates = false;  // others follow beside it
        bool alone = false;    // this file only, whatever lies beside it
        // What was recorded before it is none of the sink's.
        __int64 notBefore = std::numeric_limits<__int64>::min();
    };
    RecordingQueue(Plan plan, SentPlace place);

    const Plan& Made() const { return m_plan; }

    // Adds what is there to the batch, values up to `room`, which gets less by them. True: there is more. The batch is good until
    // Accept or Reject.
    bool Fill(CSinkBatch& batch, size_t& room);
    // All that was added has arrived; or it is to be added again.
    void Accept();
    void Reject();

    // Another file has begun, or will soon.
    void LookSoon();

    const SentPlace& Place() const { return m_place; }
    unsigned __int64 Sent() const { return m_sent; }  // readings that arrived
    // Bytes of recordings that have not arrived yet.
    unsigned __int64 Behind();
    // What the user should know since this was last asked: sentences, UTF-8.
    std::vector<std::string> TakeSentences();

private:
    bool Open();
    bool OpenAt(const std::vector<std::string>& files, size_t which, __int64 began);
    bool OpenFile(const std::string& path);
    void FindResumePoint();
    void Close();
    bool MoveOn();
    unsigned __int64 BytesBehindPlace() const;
    bool IsPassedOver(__int64 time) const { return time <= m_skipUntil || time < m_plan.notBefore; }
    void Describe();
    void TakeFacts(CSinkPart& part);
    void Say(std::string sentence);

    const Plan m_plan;
    SentPlace m_place, m_reached;  // what arrived, and what was added
    unsigned __int64 m_sent = 0, m_added = 0;
    std::unique_ptr<CRecordingReader> m_reader;
    IRecordingFile* m_file = nullptr;  // the reader's
    std::string m_path;
    unsigned __int64 m_laterBytes = 0;  // of the files that follow
    std::optional<DWORD> m_counted;     // when what waits was last counted, in ticks, while no file is open
    unsigned __int64 m_waiting = 0;
    __int64 m_skipUntil = std::numeric_limits<__int64>::min();
    bool m_continued = false;  // this one says that another goes on
    bool m_lookSoon = true;
    DWORD m_looked = 0, m_expected = 0;  // when files were last looked for, and one was told of; in ticks
    std::optional<DamageGaps> m_damages;
    unsigned __int64 m_damageAt = 0;
    // A new one for each file, and where names change; those that parts speak of live until the batch has arrived.
    std::shared_ptr<CSinkSource> m_source;
    std::vector<std::shared_ptr<const CSinkSource>> m_spokenOf;
    std::vector<CSinkComment> m_comments;
    std::vector<std::string> m_sentences;
    std::string m_lastSentence;
};

// What a session's facts say of its source, and their comments where these have times of their own.
void DescribeSource(CPropertyDB& facts, CSinkSource& source);
std::vector<CSinkComment> CommentsIn(CPropertyDB& facts);
