#include "host/logger/line_faults.h"

#include <charconv>

#include "host/words/console.h"
#include "host/words/texts.h"

namespace {
// Noise without a number: every third answer comes after stray bytes, every fifth with one bit flipped, so that a master that
// asks again gets through.
constexpr unsigned kStrayEvery = 3, kFlipEvery = 5;
constexpr BYTE kStray[] = {0xFF, 0x00, 0x11, 0x04, 0xA5};
constexpr unsigned kAnswersBeforeUnplug = 3;

unsigned Percent(const std::string& name, const std::string& text) {
    unsigned percent = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), percent);
    if (error != std::errc() || end != text.data() + text.size() || percent > 100)
        throw Failure{kWrongUse, Say(Text::NotANumber, {"--fault " + ToUtf8(name), "0", "100"})};
    return percent;
}
}  // namespace

LineFaults::LineFaults(const std::vector<std::string>& words, ILoggerSimulator& simulator, DWORD lateBy, DWORD seed)
    : m_lateBy(lateBy), m_random(seed) {
    const std::pair<const char*, unsigned*> own[] = {
        {"late", &m_late}, {"noise", &m_noise}, {"silent", &m_silent}, {"split", &m_split}, {"drop", &m_drop}};
    for (const std::string& word : words) {
        const size_t sign = word.find('=');
        const std::string name = word.substr(0, sign);
        const unsigned percent = sign == std::string::npos ? 100 : Percent(name, word.substr(sign + 1));
        if (word == "noise") {
            m_regularNoise = true;
            continue;
        }
        if (word == "unplug") {
            m_unplug = true;
            continue;
        }
        bool known = false;
        for (const auto& [fault, place] : own) {
            if (name != fault) continue;
            *place = percent;
            known = true;
        }
        if (!known && !simulator.SetFault(name.c_str(), static_cast<int>(percent)))
            throw Failure{kWrongUse, Say(Text::UnknownFault, {ToUtf8(word)})};
    }
}

LineFaults::Fate LineFaults::Next(const CByteArray& answer) {
    Fate fate;
    // The plug is pulled in place of an answer: what was answered before has been read by then.
    fate.unplug = m_unplug && m_answers == kAnswersBeforeUnplug;
    if (fate.unplug) return fate;
    // Every answer draws the same number of times, so that one fault more leaves the others where they were.
    const bool silent = Happens(m_silent), late = Happens(m_late), noise = Happens(m_noise), split = Happens(m_split);
    fate.drop = Happens(m_drop);
    if (silent || fate.drop) return fate;
    ++m_answers;
    fate.bytes.assign(answer.GetData(), answer.GetData() + answer.GetSize());
    if (m_regularNoise && m_answers % kFlipEvery == 0) fate.bytes[fate.bytes.size() / 2] ^= 0x10;
    if (m_regularNoise && m_answers % kStrayEvery == 0)
        fate.bytes.insert(fate.bytes.begin(), std::begin(kStray), std::end(kStray));
    if (noise) Spoil(fate.bytes);
    if (late) fate.late = m_lateBy;
    if (split && fate.bytes.size() > 1) fate.first = 1 + m_random() % (fate.bytes.size() - 1);
    return fate;
}

void LineFaults::Spoil(std::vector<BYTE>& bytes) {
    if (m_random() % 2 == 0) {
        bytes[m_random() % bytes.size()] ^= static_cast<BYTE>(1u << m_random() % 8);
    } else {
        bytes.insert(bytes.begin(), std::begin(kStray), std::end(kStray));
    }
}
