#include "plugins/text/text_verdict.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>

#include "comm/comm_exception.h"
#include "plugins/text/text_checksum.h"
#include "plugins/text/text_letters.h"

namespace text {
namespace {
// Up to the first number; digits that end a name, as in "T1=", are none.
std::string_view LeadOf(std::string_view line) {
    size_t at = line.find_first_of("0123456789+-");
    while (at != line.npos && at > 0 && IsLetterByte(line[at - 1]) && IsDigit(line[at])) {
        const size_t end = line.find_first_not_of("0123456789", at);
        if (end == line.npos || std::string_view("=:\"").find(line[end]) == std::string_view::npos) break;
        at = line.find_first_of("0123456789+-", end);
    }
    std::string_view lead = Trimmed(line.substr(0, at));
    // The signs in front of the number may be what is damaged.
    while (HasLetter(lead) && !IsLetterByte(lead.back()) && !IsDigit(lead.back())) lead.remove_suffix(1);
    return lead;
}

// As many fields as there are to be, but not each of them a name of its own.
bool IsRow(const Description& description, const std::string& line) {
    if (description.style != FieldStyle::Separator || description.fieldCount < 2) return false;
    const std::vector<std::string_view> fields = SplitFields(line, description.separator, description.decimal);
    const bool heading = std::all_of(fields.begin(), fields.end(), HasLetter) &&
                         std::set<std::string_view>(fields.begin(), fields.end()).size() == fields.size();
    return fields.size() == description.fieldCount && !heading;
}
}  // namespace

Failure BadLine(Sentence why, std::initializer_list<std::string_view> arguments) {
    return {CCommException::BadProtocol, why, Say(why, arguments)};
}

Failure SilentFor(std::chrono::steady_clock::duration time) {
    char seconds[32];
    std::snprintf(seconds, sizeof seconds, "%g", std::round(std::chrono::duration<double>(time).count() * 10) / 10);
    return {CCommException::ReceiveTimeout, Sentence::Silent, Say(Sentence::Silent, {seconds})};
}

Verdict Judge(const Description& description, const Splitter::Line& line, Failure& failure) {
    if (!LineBegins(line.text, description.start)) return Verdict::PassedOver;
    if (line.cut) {
        failure = BadLine(Sentence::TooLong, {std::to_string(description.longest), Shown(line.text)});
        return Verdict::Bad;
    }
    std::string_view rest = line.text;
    switch (TakeChecksum(description.checksum, rest)) {
        case ChecksumResult::Missing:
            failure = BadLine(Sentence::NoChecksum, {Shown(line.text)});
            return Verdict::Bad;
        case ChecksumResult::Wrong:
            failure = BadLine(Sentence::WrongChecksum, {Shown(line.text)});
            return Verdict::Bad;
        case ChecksumResult::Right:
            break;
    }
    return Verdict::Good;
}

std::string Bare(const Description& description, const std::string& line) {
    std::string_view rest = line;
    TakeChecksum(description.checksum, rest);
    return std::string(rest);
}

Failure ReadLines(const Description& description, std::vector<std::string> lines, const std::vector<BYTE>& due,
                  std::vector<Outcome>& outcomes) {
    for (std::string& line : lines) line = Bare(description, line);
    outcomes = ReadFields(description, lines);
    const Outcome* worst = nullptr;
    for (size_t i = 0; i < outcomes.size(); ++i) {
        if (i < due.size() && due[i] == 0) continue;
        if (outcomes[i].IsValue()) return {};
        if (worst == nullptr) worst = &outcomes[i];
    }
    if (worst == nullptr) return {};
    Failure failure{CCommException::IllegalResponse, worst->why, worst->text};
    outcomes.clear();
    return failure;
}

void RememberLead(std::vector<std::string>& leads, const std::string& line) {
    constexpr size_t kMost = 16;
    std::string lead(LeadOf(line));
    if (leads.size() < kMost && std::find(leads.begin(), leads.end(), lead) == leads.end()) leads.push_back(std::move(lead));
}

bool IsMeant(const Description& description, const std::vector<std::string>& leads, const std::string& line) {
    if (!description.start.empty()) return LineBegins(line, description.start);
    const size_t digit = line.find_first_of("0123456789");
    return std::any_of(leads.begin(), leads.end(), [&](const std::string& lead) {
        const std::string_view trimmed = Trimmed(line);
        if (HasLetter(lead))
            return trimmed.starts_with(lead) && (trimmed.size() == lead.size() || !IsLetterByte(trimmed[lead.size()]));
        if (IsRow(description, line)) return true;
        return digit != std::string::npos &&
               std::count_if(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(digit), IsLetterByte) <= 1;
    });
}

}  // namespace text
