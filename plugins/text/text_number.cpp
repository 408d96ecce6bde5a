#include "plugins/text/text_number.h"

#include <algorithm>
#include <charconv>

#include "plugins/text/text_letters.h"

namespace text {
namespace {
constexpr size_t kLongestNumber = 60, kLongestUnit = 16;

bool IsLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || static_cast<unsigned char>(c) >= 0xA0; }
char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool SameText(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}
}  // namespace

std::string_view Trimmed(std::string_view text) {
    const size_t from = text.find_first_not_of(" \t");
    return from == std::string_view::npos ? std::string_view() : text.substr(from, text.find_last_not_of(" \t") - from + 1);
}

bool SplitNumber(std::string_view field, char decimal, double& number, std::string_view& rest) {
    field = Trimmed(field);
    std::string digits;  // as the standard library reads them
    if (!field.empty() && (field[0] == '+' || field[0] == '-')) {
        if (field[0] == '-') digits = "-";
        field = Trimmed(field.substr(1));
    }
    size_t at = 0;
    const auto takeDigits = [&] {
        const size_t before = at;
        while (at < field.size() && IsDigit(field[at])) digits += field[at++];
        return at - before;
    };
    size_t count = takeDigits();
    if (at < field.size() && field[at] == decimal) {
        digits += '.';
        ++at;
        count += takeDigits();
    }
    if (count == 0) return false;
    // An exponent has digits; else the letter begins a unit.
    if (at < field.size() && Lower(field[at]) == 'e') {
        const bool sign = at + 1 < field.size() && (field[at + 1] == '+' || field[at + 1] == '-');
        const size_t first = at + (sign ? 2 : 1);
        if (first < field.size() && IsDigit(field[first])) {
            digits += 'e';
            if (field[at + 1] == '-') digits += '-';
            at = first;
            takeDigits();
        }
    }
    if (digits.size() > kLongestNumber) return false;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size()) return false;
    rest = Trimmed(field.substr(at));
    // "0x1F" is no 0 with a unit.
    return at >= field.size() || Lower(field[at]) != 'x';
}

bool IsUnit(std::string_view rest) {
    if (rest.empty()) return true;
    if (rest.size() > kLongestUnit || !(IsLetter(rest[0]) || rest[0] == '%' || rest[0] == '\'' || rest[0] == '"')) return false;
    for (size_t i = 0; i < rest.size(); ++i) {
        if (static_cast<unsigned char>(rest[i]) < ' ' || rest[i] == '=' || rest[i] == ':') return false;
        if (!IsDigit(rest[i])) continue;
        // Of digits only exponents, and those of what is counted: m2, m3/h, m/s2, CO2.
        const bool exponent =
            (rest[i] == '2' || rest[i] == '3') && i > 0 && std::string_view("msO").find(rest[i - 1]) != rest.npos;
        if (!exponent || (i + 1 < rest.size() && (IsDigit(rest[i + 1]) || rest[i + 1] == '.' || rest[i + 1] == ',')))
            return false;
    }
    return true;
}

NumberResult ReadNumber(std::string_view field, const NumberRule& rule, double& number) {
    field = Trimmed(field);
    for (const std::string& none : rule.noValue) {
        if (SameText(field, none)) return NumberResult::NoValue;
    }
    if (!field.starts_with(rule.prefix)) return NumberResult::Wrong;
    field = Trimmed(field.substr(rule.prefix.size()));
    std::string_view rest;
    for (const std::string& none : rule.noValue) {
        if (SameText(field, none)) return NumberResult::NoValue;
    }
    double read = 0;
    if (!SplitNumber(field, rule.decimal, read, rest)) return NumberResult::Wrong;
    if (rule.suffix && rest != *rule.suffix) {
        if (std::find(rule.others.begin(), rule.others.end(), rest) != rule.others.end()) return NumberResult::NoValue;
        return IsUnit(rest) ? NumberResult::OtherUnit : NumberResult::Wrong;
    }
    if (!rule.suffix && !IsUnit(rest)) return NumberResult::Wrong;
    for (const std::string& none : rule.noValue) {
        double value = 0;
        if (SplitNumber(none, '.', value, rest) && rest.empty() && value == read) return NumberResult::NoValue;
    }
    number = read;
    return NumberResult::Number;
}

}  // namespace text
