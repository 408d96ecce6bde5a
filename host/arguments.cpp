#include "host/arguments.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "host/console.h"
#include "host/texts.h"
#include "time/span_text.h"

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
            const bool again = listed(repeated, word), hasValue = again || listed(withValue, word);
            // A negative number is a value, not an option.
            if (!hasValue && !listed(flags, word)) {
                const bool number = word.find_first_not_of("0123456789.,eE+-;") == std::string::npos;
                if (!number || m_arguments.size() == most) throw Failure{kWrongUse, Say(Text::UnknownOption, {ToUtf8(word)})};
                m_arguments.push_back(word);
                continue;
            }
            if (!again && Has(word.c_str())) throw Failure{kWrongUse, Say(Text::OptionTwice, {word})};
            if (hasValue && i + 1 == words.size()) throw Failure{kWrongUse, Say(Text::OptionNeedsValue, {word})};
            m_options[word].push_back(hasValue ? words[++i] : "");
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
    const std::string text = Get(option);
    DWORD value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || value < low || value > high) {
        throw Failure{kWrongUse, Say(Text::NotANumber, {option, std::to_string(low), std::to_string(high)})};
    }
    return value;
}

DWORD Arguments::Milliseconds(const char* option, DWORD low, DWORD high, DWORD standard) const {
    if (!Has(option) || Get(option).find_first_not_of("0123456789") == std::string::npos)
        return Number(option, low, high, standard);
    CVXTTimeSpan span;
    if (!_NlsGetShortTimeSpan(Get(option).c_str(), span, TRUE)) throw Failure{kWrongUse, Say(Text::NotASpan, {option})};
    const __int64 milliseconds = span.GetTotalMilliSeconds();
    if (milliseconds < low || milliseconds > high) {
        throw Failure{kWrongUse, Say(Text::NotANumber, {option, std::to_string(low), std::to_string(high)})};
    }
    return static_cast<DWORD>(milliseconds);
}

const std::string& Arguments::At(size_t index, const char* name) const {
    if (index >= m_arguments.size()) throw Failure{kWrongUse, Say(Text::ArgumentMissing, {name})};
    return m_arguments[index];
}
