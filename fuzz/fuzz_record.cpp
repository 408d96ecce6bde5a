// Recordings: any bytes behind a right head, and the same bytes cut into payloads whose CRCs are right. The reader and the index
// come to an end, and say the same of the readings when the file is looked at again.
#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "fuzz/fuzz_support.h"
#include "record/crc32c_internal.h"
#include "record/recorder.h"
#include "record/recording_format_internal.h"
#include "record/recording_index.h"

using namespace orvik::detail;

namespace {
class Bytes : public IRecordingFile {
public:
    explicit Bytes(const std::vector<unsigned char>& bytes) : m_bytes(bytes) {}
    DWORD Read(unsigned __int64 at, void* bytes, DWORD size, DWORD& got) override {
        got = at >= m_bytes.size() ? 0 : static_cast<DWORD>(std::min<unsigned __int64>(size, m_bytes.size() - at));
        if (got > 0) std::memcpy(bytes, m_bytes.data() + at, got);
        return ERROR_SUCCESS;
    }
    DWORD Write(unsigned __int64 at, const void* bytes, DWORD size) override {
        if (m_bytes.size() < at + size) m_bytes.resize(at + size);
        std::memcpy(m_bytes.data() + at, bytes, size);
        return ERROR_SUCCESS;
    }
    DWORD Cut(unsigned __int64 size) override {
        m_bytes.resize(size);
        return ERROR_SUCCESS;
    }
    DWORD Force() override { return ERROR_SUCCESS; }
    DWORD Size(unsigned __int64& size) override {
        size = m_bytes.size();
        return ERROR_SUCCESS;
    }

private:
    std::vector<unsigned char> m_bytes;
};

void Look(const std::vector<unsigned char>& bytes) {
    CRecordingReader reader;
    if (reader.Open(std::make_unique<Bytes>(bytes)) != ERROR_SUCCESS) return;
    unsigned __int64 readings = 0, place = 0;
    bool told = false;  // by an index, which is believed
    for (ERecordItem item; (item = reader.Next()) != RI_END;) {
        FUZZ_REQUIRE(item != RI_FAILED);
        FUZZ_REQUIRE(reader.Position() > place);
        place = reader.Position();
        readings += item == RI_READING;
        told |= item == RI_INDEX;
    }
    FUZZ_REQUIRE(reader.Position() + reader.TornBytes() == bytes.size());
    CRecordingReader indexed;
    CRecordingIndex index;
    FUZZ_REQUIRE(indexed.Open(std::make_unique<Bytes>(bytes)) == ERROR_SUCCESS);
    FUZZ_REQUIRE(index.Update(indexed) == ERROR_SUCCESS);
    if (!told) FUZZ_REQUIRE(index.ReadingCount() == readings);
    index.Find(0);
    for (const CRecordingSpan& span : index.Spans()) FUZZ_REQUIRE(span.begin <= span.end && span.end <= bytes.size());
    CRecorder recorder;
    if (recorder.Resume(std::make_unique<Bytes>(bytes)) != ERROR_SUCCESS) return;
    const std::vector<double> values(recorder.ChannelCount(), 1.0);
    FUZZ_REQUIRE(recorder.AddReading(0, values.data()) == ERROR_SUCCESS);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    constexpr uint32_t kNumber = 7;
    const auto channels = static_cast<uint16_t>(data[0] % 4);
    std::vector<unsigned char> head;
    Packer pack(head);
    pack.Bytes(kRecordMagic, sizeof kRecordMagic) << kRecordVersion << channels << kNumber;
    pack << Crc32c(head.data(), head.size());
    std::vector<unsigned char> plain = head, sealed = head;
    plain.insert(plain.end(), data + 1, data + size);
    Look(plain);
    // A type, a length, and so many bytes: a block. A type beyond the known ones leaves its bytes without a header.
    for (size_t at = 1; at + 2 <= size;) {
        const unsigned type = data[at] % 8;
        const size_t length = std::min<size_t>(data[at + 1], size - at - 2);
        const unsigned char* const payload = data + at + 2;
        if (type < 7) {
            unsigned char header[kBlockHeader];
            WriteHeader(header, kNumber, sealed.size(),
                        {static_cast<unsigned char>(type), static_cast<uint32_t>(length), Crc32c(payload, length)});
            sealed.insert(sealed.end(), header, header + kBlockHeader);
        }
        sealed.insert(sealed.end(), payload, payload + length);
        at += 2 + length;
    }
    Look(sealed);
    return 0;
}
