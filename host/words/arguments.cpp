#include "host/words/arguments.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "host/words/console.h"
#include "host/words/nearest_word.h"
#include "host/words/plain_digits.h"
#include "host/words/span_words.h"
#include "host/words/texts.h"

Arguments::Arguments(const std::vector<std::string>& words, std::initializer_list<const char*> withValue,
                     std::initializer_list<const char*> flags, size_t most, std::initializer_list<const char*> repeated) {
    const auto listed = [](std::initializer_list<const char*> options, const std::string& word) {
        return std::any_of(options.begin(), options.end(), [&](const char* option) { return word == option; });
    };
    bool optionsEnded = false;
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (optionsEnded || word.size() < 2 || word[0] != '-') {
            if (m_arguments.size() == most) throw Failure{kWrongUse, Say(Text::ArgumentTooMany, {ToUtf8(word)})};
            m_arguments.push_back(word);
        } else if (word == "--") {
            optionsEnded = true;
        } else {
            const size_t sign = word.find('=');
            const std::string option = word.substr(0, sign);
            const bool again = listed(repeated, option), hasValue = again || listed(withValue, option);
            // A negative number is a value, not an option.
            if (!hasValue && !listed(flags, option)) {
                const bool number = word.find_first_not_of("0123456789.,eE+-;") == std::string::npos;
                if (!number || m_arguments.size() == most) {
                    std::vector<std::string> known(withValue.begin(), withValue.end());
                    known.insert(known.end(), flags.begin(), flags.end());
                    known.insert(known.end(), repeated.begin(), repeated.end());
                    const std::string meant = NearestWord(option, known);
                    throw Failure{kWrongUse, meant.empty() ? Say(Text::UnknownOption, {ToUtf8(option)})
                                                           : Say(Text::OptionMeant, {ToUtf8(option), meant})};
                }
                m_arguments.push_back(word);
                continue;
            }
            if (!again && Has(option.c_str())) throw Failure{kWrongUse, Say(Text::OptionTwice, {option})};
            if (!hasValue && sign != std::string::npos) throw Failure{kWrongUse, Say(Text::OptionTakesNoValue, {option})};
            std::string value = sign != std::string::npos ? word.substr(sign + 1) : "";
            if (hasValue && sign == std::string::npos) {
                // An option in the place of a value: the value was forgotten. One that looks so can be given behind "=".
                const std::string next = i + 1 < words.size() ? words[++i] : "";
                const std::string meant = next.substr(0, next.find('='));
                if (!listed(withValue, meant) && !listed(flags, meant) && !listed(repeated, meant)) value = next;
            }
            if (hasValue && value.empty()) throw Failure{kWrongUse, Say(Text::OptionNeedsValue, {option})};
            m_options[option].push_back(value);
        }
    }
}

std::string Arguments::Get(const char* option, const char* standard) const {
    const auto found = m_options.find(option);
    return found == m_options.end() ? standard : found->second.front();
}

std::vector<std::string> Arguments::All(const char* option) const {
    const auto found = m_options.find(option);
    return found == m_options.end() ? std::vector<std::string>() : found->second;
}

std::string Arguments::Require(const char* option) const {
    const std::string value = Get(option);
    if (value.empty()) throw Failure{kWrongUse, Say(Text::OptionMissing, {option})};
    return value;
}

DWORD Arguments::Number(const char* option, DWORD low, DWORD high, DWORD standard) const {
    if (!Has(option)) return standard;
    const std::string text = WithPlainDigits(Get(option));
    DWORD value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < low || value > high) {
        throw Failure{kWrongUse, Say(Text::NotANumber, {option, std::to_string(low), std::to_string(high)})};
    }
    return value;
}

DWORD Arguments::Milliseconds(const char* option, DWORD low, DWORD high, DWORD standard) const {
    constexpr __int64 kMillisecond = 1000;
    const __int64 span = Span(option, low * kMillisecond, high * kMillisecond, standard * kMillisecond);
    if (span % kMillisecond != 0) throw Failure{kWrongUse, Say(Text::NotWholeMilliseconds, {option})};
    return static_cast<DWORD>(span / kMillisecond);
}

__int64 Arguments::Span(const char* option, __int64 low, __int64 high, __int64 standard) const {
    if (!Has(option)) return standard;
    const std::optional<__int64> span = SpanFromWords(Get(option));
    if (!span) throw Failure{kWrongUse, Say(Text::NotASpan, {option})};
    if (*span < low || *span > high) {
        throw Failure{kWrongUse, Say(Text::SpanRange, {option, WordsFromSpan(low), WordsFromSpan(high)})};
    }
    return *span;
}

unsigned __int64 Arguments::Bytes(const char* option, unsigned __int64 low, unsigned __int64 high,
                                  unsigned __int64 standard) const {
    if (!Has(option)) return standard;
    const std::optional<unsigned __int64> bytes = BytesFromWords(Get(option));
    if (!bytes) throw Failure{kWrongUse, Say(Text::NotBytes, {option})};
    if (*bytes < low || *bytes > high) {
        throw Failure{kWrongUse, Say(Text::BytesRange, {option, std::to_string(low), std::to_string(high)})};
    }
    return *bytes;
}

const std::string& Arguments::At(size_t index, const char* name) const {
    if (index >= m_arguments.size()) throw Failure{kWrongUse, Say(Text::ArgumentMissing, {name})};
    return m_arguments[index];
}
