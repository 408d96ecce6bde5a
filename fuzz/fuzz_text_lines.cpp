// What printing loggers say: the input is a description, as lines of key=value, an empty line, and bytes. They are read by the
// description, whole and cut in two at every place, which must give the same; and a description is learnt from them, which must
// be one that can be used.
#include <cmath>

#include "comm/comm_exception.h"
#include "fuzz/fuzz_support.h"
#include "plugins/text/text_fields.h"
#include "plugins/text/text_learn.h"
#include "plugins/text/text_splitter.h"

namespace {
constexpr size_t kMostCuts = 40;

// True when it is a description.
bool Read(CPropertyDB& db, std::optional<text::Description>& description) {
    try {
        description.emplace(text::ReadDescription(db));
        return true;
    } catch (CCommException* failure) {
        FUZZ_REQUIRE(failure->m_nError == CCommException::BadProtocol && failure->m_strError.Find(':') > 0);
        failure->Delete();
        return false;
    }
}

std::vector<std::string> Lines(const text::Description& description, std::initializer_list<std::string_view> pieces) {
    text::Splitter splitter(description.end, description.longest);
    std::vector<std::string> lines;
    for (std::string_view piece : pieces) {
        while (!piece.empty()) {
            text::Splitter::Line line;
            bool whole = false;
            piece.remove_prefix(splitter.Take(piece, line, whole));
            if (!whole) continue;
            FUZZ_REQUIRE(line.text.size() <= description.longest && (!line.cut || line.text.size() == description.longest));
            lines.push_back(std::move(line.text));
        }
    }
    FUZZ_REQUIRE(splitter.Half().size() <= description.longest);
    return lines;
}

void Try(const text::Description& description, std::string_view bytes) {
    const std::vector<std::string> lines = Lines(description, {bytes});
    for (const std::string& line : lines) {
        std::string_view bare = line;
        text::TakeChecksum(description.checksum, bare);
        const auto outcomes = text::ReadFields(description, {std::string(bare)});
        FUZZ_REQUIRE(outcomes.size() == description.channels.size());
        for (const text::Outcome& outcome : outcomes) {
            FUZZ_REQUIRE(std::isfinite(outcome.value) || !outcome.IsValue());
            FUZZ_REQUIRE(outcome.IsValue() == outcome.text.empty() && outcome.text.size() < 20'000);
        }
    }
    for (size_t cut = 0; cut <= std::min(bytes.size(), kMostCuts); ++cut)
        FUZZ_REQUIRE(Lines(description, {bytes.substr(0, cut), bytes.substr(cut)}) == lines);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const size_t end = std::min(input.find("\n\n"), input.size());
    const std::string_view bytes = input.substr(std::min(end + 2, input.size()));
    CPropertyDB db;
    for (size_t at = 0; at < end;) {
        const size_t next = std::min(input.find('\n', at), end);
        const std::string line(input.substr(at, next - at));
        at = next + 1;
        const size_t sign = line.find('=');
        if (sign == std::string::npos || sign == 0) continue;
        db.SetValue(line.substr(0, sign).c_str(), line.substr(sign + 1).c_str());
    }
    std::optional<text::Description> description;
    if (Read(db, description)) Try(*description, bytes);

    CPropertyDB learnt;
    CString shown;
    const int sure = text::Learn(bytes, 0, learnt, shown);
    FUZZ_REQUIRE(sure >= 0 && sure <= 100);
    if (sure > 0) FUZZ_REQUIRE(Read(learnt, description));
    return 0;
}
