// Walks through a recording, block by block, in the order in which it was written; also while it grows. What it gives was written
// so, or is not given: every block has a CRC that takes in its place and its file. What is damaged is passed over and told; where
// bytes were taken out of the file or put into it, that is all that follows.
// One thread for one reader, any number of readers for one file. Memory is that of the largest block met, whatever the length.
// Failures are Win32 codes; a file that is no recording is error 11, one of a later layout error 1306.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "propdb/property_db.h"
#include "record/recording_file.h"
#include "record/recording_types.h"

enum ERecordItem {
    RI_READING,  // Time, Values, Flags
    RI_GAP,      // Gap
    RI_EVENT,    // Event
    RI_FACTS,    // Facts have grown
    RI_INDEX,    // nothing that matters to who reads everything
    RI_DAMAGE,   // Damage: these bytes are lost
    RI_END,      // nothing more yet; asked again, the reader goes on with what has come since
    RI_FAILED,   // the file could not be read: Error. Asked again, it is tried again
};

class ORVIK_API CRecordingReader {
public:
    CRecordingReader();
    ~CRecordingReader();
    CRecordingReader(const CRecordingReader&) = delete;
    CRecordingReader& operator=(const CRecordingReader&) = delete;

    DWORD Open(const std::string& path);
    DWORD Open(std::unique_ptr<IRecordingFile> file);

    // How many values a reading has.
    size_t ChannelCount() const { return m_channels; }
    // What is known of the session: from the file's first block, and from those of the kind that were passed since. Sessions have
    // the keys of docs/formats.md, Logger the description.
    const CPropertyDB& Facts() const { return m_facts; }

    ERecordItem Next();
    // Of the last item.
    __int64 Time() const { return m_time; }
    const double* Values() const { return m_values.data(); }
    const BYTE* Flags() const { return m_flags.data(); }
    const CRecordedGap& Gap() const { return m_gap; }
    const CRecordedEvent& Event() const { return m_event; }
    const CRecordingDamage& Damage() const { return m_damage; }
    DWORD Error() const { return m_error; }
    // Where the last item begins, and where the next one will be looked for.
    unsigned __int64 ItemOffset() const { return m_item; }
    unsigned __int64 Position() const { return m_position; }
    // Goes on at a place where a block begins. Another place counts as damage up to the next block.
    void Seek(unsigned __int64 position);

    // Bytes behind the last whole block, at RI_END: a block that is being written, or one that was cut off. Where whole blocks stand
    // among them, only not at their places, they are RI_DAMAGE before.
    unsigned __int64 TornBytes() const { return m_torn; }

private:
    friend class CRecorder;
    friend class CRecordingIndex;

    bool Fetch(unsigned __int64 at, size_t size);
    const unsigned char* At(unsigned __int64 at) const { return m_buffer.data() + (at - m_bufferAt); }
    // What stands at m_position: a whole block, one with a header that is right and a payload that is not, no block at all, or the
    // end of what is there.
    enum class Found { Block, Spoilt, Nothing, End, Failed };
    Found Look();
    bool FindBlock(unsigned __int64& at);
    ERecordItem Take();
    bool TakeFacts(const unsigned char* bytes, size_t size);

    std::unique_ptr<IRecordingFile> m_file;
    DWORD m_number = 0;  // the file's
    size_t m_channels = 0;
    CPropertyDB m_facts;

    std::vector<unsigned char> m_buffer;  // bytes from m_bufferAt on, m_buffered of them
    unsigned __int64 m_bufferAt = 0;
    size_t m_buffered = 0;

    unsigned __int64 m_position = 0, m_item = 0, m_torn = 0;
    unsigned __int64 m_searched = 0;  // up to here no block begins behind m_position
    bool m_displaced = false;         // but one that belongs elsewhere does
    unsigned char m_type = 0;         // of the block at m_position
    DWORD m_length = 0;
    DWORD m_error = 0;

    __int64 m_time = 0;
    std::vector<double> m_values;
    std::vector<BYTE> m_flags;
    CRecordedGap m_gap;
    CRecordedEvent m_event;
    CRecordingDamage m_damage;
};
