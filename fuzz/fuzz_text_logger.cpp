// Asked loggers that print lines, whose answers come damaged as far as their checksum can tell, cut, late or not at all: what a
// reading gives was sent in that reading, for that channel.
#include "fuzz/fuzz_line.h"
#include "plugins/text/text_fields.h"
#include "plugins/text/text_logger.h"
#include "plugins/text/text_simulator.h"

namespace {
constexpr size_t kLinesOfAnswer = 2;

text::Description Device(text::Checksum checksum, bool twoLines, bool keys) {
    text::Description description;
    description.ask = "MEAS?\r\n";
    description.checksum = checksum;
    description.style = keys ? text::FieldStyle::Keys : text::FieldStyle::Separator;
    description.lines = twoLines ? kLinesOfAnswer : 1;
    if (twoLines) description.first = keys ? "T" : "1;";
    description.separator = {text::Separator::Text, ";"};
    for (size_t i = 0; i < 3; ++i) {
        text::Channel& channel = description.channels.emplace_back();
        channel.key = channel.where = std::string(1, static_cast<char>('T' + i));
        channel.field = i + 2;
        channel.line = keys ? 0 : twoLines && i == 2 ? 2 : 1;
        channel.number.noValue = {"nan"};
    }
    return description;
}

// A sound line with a number of its own for each field of each answer.
class Line : public fuzz::DamagedLine {
public:
    // One bit that is wrong is found by any checksum, three by the CRC.
    Line(fuzz::Input& input, const text::Description& description)
        : DamagedLine(input, {.flips = description.checksum == text::Checksum::None    ? 0
                                       : description.checksum == text::Checksum::Crc16 ? 3
                                                                                       : 1,
                              .stray = description.checksum == text::Checksum::Crc16,
                              .latest = 50}),
          m_description(description) {}

private:
    std::vector<BYTE> AnswerTo(std::span<const BYTE> asked, std::multimap<size_t, double>& sent) override {
        FUZZ_REQUIRE(std::equal(asked.begin(), asked.end(), m_description.ask.begin(), m_description.ask.end()));
        const bool keys = m_description.style == text::FieldStyle::Keys;
        std::string lines[kLinesOfAnswer];
        ++m_answers;
        for (size_t i = 0; i < m_description.channels.size(); ++i) {
            const size_t at = m_description.lines > 1 && i == 2 ? 1 : 0;
            const double value = 1000.0 * static_cast<double>(i + 1) + m_answers + 0.25;
            if (keys) lines[at] += m_description.channels[i].key + "=";
            if (!keys && lines[at].empty()) lines[at] = at == 0 ? "1;" : "2;0;0;";
            char number[32];
            std::snprintf(number, sizeof number, "%.2f;", value);
            lines[at] += number;
            sent.emplace(i, value);
        }
        std::vector<BYTE> answer;
        for (size_t i = 0; i < m_description.lines; ++i) {
            lines[i].pop_back();
            AddChecksum(m_description.checksum, lines[i]);
            lines[i] += "\r\n";
            answer.insert(answer.end(), lines[i].begin(), lines[i].end());
        }
        return answer;
    }

    const text::Description& m_description;
    int m_answers = 0;
};
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    fuzz::Input input(data, std::min<size_t>(size, 512));
    const BYTE kind = input.Next();
    const text::Description description = Device(static_cast<text::Checksum>(kind % 4), (kind & 4) != 0, (kind & 8) != 0);
    auto* const line = new Line(input, description);
    text::Logger logger(description, std::unique_ptr<ITransport>(line));
    fuzz::ReadDamaged(logger, *line, "COM1", input);
    return 0;
}
